#include <signal_tzm/companion.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("companion", {
    MEMBERS(ORVAS_Copy_16s, ORVAS_Copy_16sc, ORVAS_Copy_32f, ORVAS_Copy_32fc, ORVAS_Copy_64f, ORVAS_Copy_64fc,
            ORVAS_Move_16s, ORVAS_Move_32f),
    MEMBERS(ORVAS_Zero_8u, ORVAS_Zero_16s, ORVAS_Zero_16sc, ORVAS_Zero_32f, ORVAS_Zero_32fc, ORVAS_Zero_64f,
            ORVAS_Zero_64fc, ORVAS_Set_32f, ORVAS_Set_64f),
    MEMBERS(ORVAS_Set_32fc, ORVAS_Set_64fc).Constants({{1.5, -2}}),
    MEMBERS(ORVAS_Add_32f_I, ORVAS_Add_64f_I, ORVAS_Conj_32fc, ORVAS_Conj_64fc, ORVAS_Conj_32fc_I,
            ORVAS_Conj_64fc_I, ORVAS_Flip_32f, ORVAS_Flip_32fc, ORVAS_Flip_64f, ORVAS_Flip_64fc),
    MEMBERS(ORVAS_Convert_16s32f, ORVAS_Convert_32f64f, ORVAS_Convert_64f32f, ORVAS_CplxToReal_16sc,
            ORVAS_CplxToReal_32fc, ORVAS_CplxToReal_64fc, ORVAS_RealToCplx_32f, ORVAS_RealToCplx_64f),
    MEMBERS(ORVAS_Convert_64f16s_S).Constants({{0}, {1}}).BadConstants({2}, ORVA_STS_ROUND_MODE_ERR),
    MEMBERS(ORVAS_Max_64f, ORVAS_Min_64f, ORVAS_MaxAbs_32f, ORVAS_MaxAbs_64f),
});

}  // namespace tzm_test
