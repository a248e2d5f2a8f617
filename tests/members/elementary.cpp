#include <signal_tzm/elementary.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("elementary", {
    MEMBERS(ORVAS_Exp_32f, ORVAS_Exp_64f, ORVAS_Ln_32f, ORVAS_Ln_64f, ORVAS_Ln_32f_I, ORVAS_Ln_64f_I,
            ORVAS_Log10_32f, ORVAS_Log10_64f, ORVAS_Sin_32f, ORVAS_Sin_64f, ORVAS_Cos_32f, ORVAS_Cos_64f,
            ORVAS_Tan_32f, ORVAS_Tan_64f, ORVAS_Arctan_32f, ORVAS_Arctan_64f, ORVAS_Arctan_32f_I,
            ORVAS_Arctan_64f_I, ORVAS_Arctan2_32f, ORVAS_Arctan2_64f, ORVAS_Pow_32f, ORVAS_Pow_64f),
    // Looks at its length first, and hears of a failed allocation from the copy.
    MEMBERS(ORVAS_Exp_32f_I, ORVAS_Exp_64f_I)
        .LengthFirst(size_t(-1)).Allocates(ORVA_STS_NULL_PTR_ERR),
    MEMBERS(ORVAS_Powx_32f_A11, ORVAS_Powx_32f_A21, ORVAS_Powx_32f_A24, ORVAS_Powx_64f_A26, ORVAS_Powx_64f_A50,
            ORVAS_Powx_64f_A53).Constants({{2.5}, {-3}, {0}, {-0.5}}),
    MEMBERS(ORVAS_Exp_16s_S, ORVAS_Exp_32s_S, ORVAS_Exp_16s_IS, ORVAS_Exp_32s_IS, ORVAS_Ln_16s_S, ORVAS_Ln_32s_S,
            ORVAS_Ln_16s_IS, ORVAS_Ln_32s_IS),
    MEMBERS(ORVAS_Log10_32fc, ORVAS_Log10_64fc, ORVAS_Sin_32fc, ORVAS_Sin_64fc, ORVAS_Cos_32fc, ORVAS_Cos_64fc),

    MEMBERS(ORVAS_PowerSpectr_32f, ORVAS_PowerSpectr_64f, ORVAS_PowerSpectr_32fc, ORVAS_PowerSpectr_64fc,
            ORVAS_PowerSpectr_16s32f, ORVAS_PowerSpectr_16sc32f, ORVAS_PowerSpectr_16s_S, ORVAS_PowerSpectr_16sc_S),
    MEMBERS(ORVAS_Magnitude_32f, ORVAS_Magnitude_64f, ORVAS_Magnitude_32fc, ORVAS_Magnitude_16s32f,
            ORVAS_Magnitude_16sc32f, ORVAS_Magnitude_16s_S, ORVAS_Magnitude_16sc_S, ORVAS_Magnitude_32sc_S),
    // The last bit of the system's cabs differs between machines.
    MEMBERS(ORVAS_Magnitude_64fc).Inexact(),
    MEMBERS(ORVAS_CartToPolar_64fc).NotInPlace().Inexact(),
    MEMBERS(ORVAS_CartToPolar_32f, ORVAS_CartToPolar_64f, ORVAS_CartToPolar_32fc, ORVAS_PolarToCart_32f,
            ORVAS_PolarToCart_64f, ORVAS_PolarToCart_16sc_S).NotInPlace(),
    MEMBERS(ORVAS_Phase_32f, ORVAS_Phase_64f, ORVAS_Phase_16s32f, ORVAS_Phase_16s_S, ORVAS_Phase_32fc,
            ORVAS_Phase_64fc, ORVAS_Phase_16sc32f, ORVAS_Phase_16sc_S, ORVAS_CartToPolar_16sc_S,
            ORVAS_PolarToCart_32fc, ORVAS_PolarToCart_64fc)
        .NotInPlace().Allocates(ORVA_STS_MEM_ALLOC_ERR),
});

}  // namespace tzm_test
