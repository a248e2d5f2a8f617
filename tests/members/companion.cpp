#include <signal_tzm/companion.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("companion", {
    MEMBER(ORVAS_Copy_16s),
    MEMBER(ORVAS_Copy_16sc),
    MEMBER(ORVAS_Copy_32f),
    MEMBER(ORVAS_Copy_32fc),
    MEMBER(ORVAS_Copy_64f),
    MEMBER(ORVAS_Copy_64fc),
    MEMBER(ORVAS_Move_16s),
    MEMBER(ORVAS_Move_32f),
    MEMBER(ORVAS_Zero_8u),
    MEMBER(ORVAS_Zero_16s),
    MEMBER(ORVAS_Zero_16sc),
    MEMBER(ORVAS_Zero_32f),
    MEMBER(ORVAS_Zero_32fc),
    MEMBER(ORVAS_Zero_64f),
    MEMBER(ORVAS_Zero_64fc),
    MEMBER(ORVAS_Set_32f),
    MEMBER(ORVAS_Set_32fc).Constants({{1.5, -2}}),
    MEMBER(ORVAS_Set_64f),
    MEMBER(ORVAS_Set_64fc).Constants({{1.5, -2}}),
    MEMBER(ORVAS_Add_32f_I),
    MEMBER(ORVAS_Add_64f_I),
    MEMBER(ORVAS_Conj_32fc),
    MEMBER(ORVAS_Conj_64fc),
    MEMBER(ORVAS_Conj_32fc_I),
    MEMBER(ORVAS_Conj_64fc_I),
    MEMBER(ORVAS_Flip_32f).NotInPlace(),
    MEMBER(ORVAS_Flip_32fc).NotInPlace(),
    MEMBER(ORVAS_Flip_64f).NotInPlace(),
    MEMBER(ORVAS_Flip_64fc).NotInPlace(),
    MEMBER(ORVAS_Convert_16s32f),
    MEMBER(ORVAS_Convert_32f64f),
    MEMBER(ORVAS_Convert_64f32f),
    MEMBER(ORVAS_Convert_64f16s_S).Constants({{0}, {1}}).BadConstants({2}, ORVA_STS_ROUND_MODE_ERR),
    MEMBER(ORVAS_CplxToReal_16sc),
    MEMBER(ORVAS_CplxToReal_32fc),
    MEMBER(ORVAS_CplxToReal_64fc),
    MEMBER(ORVAS_RealToCplx_32f),
    MEMBER(ORVAS_RealToCplx_64f),
    MEMBER(ORVAS_Max_64f),
    MEMBER(ORVAS_Min_64f),
    MEMBER(ORVAS_MaxAbs_32f),
    MEMBER(ORVAS_MaxAbs_64f),
});

}  // namespace tzm_test
