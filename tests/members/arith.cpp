#include <signal_tzm/arith.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("arith", {
    MEMBERS(ORVAS_Mul_32f, ORVAS_Mul_64f, ORVAS_Mul_32fc, ORVAS_Mul_64fc, ORVAS_Mul_32f32fc, ORVAS_Mul_16s32f,
            ORVAS_Mul_8u16u, ORVAS_Mul_16s, ORVAS_Mul_8u_S, ORVAS_Mul_16u_S, ORVAS_Mul_16s_S, ORVAS_Mul_32s_S,
            ORVAS_Mul_16s32s_S, ORVAS_Mul_16u16s_S, ORVAS_Mul_16sc_S, ORVAS_Mul_32sc_S,
            ORVAS_Mul_16s_I, ORVAS_Mul_32f_I, ORVAS_Mul_64f_I, ORVAS_Mul_32fc_I, ORVAS_Mul_64fc_I,
            ORVAS_Mul_32f32fc_I, ORVAS_Mul_8u_IS, ORVAS_Mul_16u_IS, ORVAS_Mul_16s_IS, ORVAS_Mul_32s_IS,
            ORVAS_Mul_16sc_IS, ORVAS_Mul_32sc_IS),
    MEMBERS(ORVAS_MulC_32f, ORVAS_MulC_64f, ORVAS_MulC_32fc, ORVAS_MulC_64fc, ORVAS_MulC_8u_S, ORVAS_MulC_16u_S,
            ORVAS_MulC_16sc_S, ORVAS_MulC_32sc_S, ORVAS_MulC_16s_S, ORVAS_MulC_32s_S, ORVAS_MulC_Low_32f16s,
            ORVAS_MulC_32f16s_S, ORVAS_MulC_32f_I, ORVAS_MulC_64f_I, ORVAS_MulC_32fc_I, ORVAS_MulC_64fc_I,
            ORVAS_MulC_16s_I, ORVAS_MulC_8u_IS, ORVAS_MulC_16u_IS, ORVAS_MulC_16s_IS, ORVAS_MulC_32s_IS,
            ORVAS_MulC_16sc_IS, ORVAS_MulC_32sc_IS, ORVAS_MulC_64f64s_IS, ORVAS_MulC_64s_IS),

    MEMBERS(ORVAS_Div_32f, ORVAS_Div_64f, ORVAS_Div_32fc, ORVAS_Div_64fc, ORVAS_Div_32f_I, ORVAS_Div_64f_I,
            ORVAS_Div_32fc_I, ORVAS_Div_64fc_I, ORVAS_Div_8u_S, ORVAS_Div_16u_S, ORVAS_Div_16s_S, ORVAS_Div_32s_S,
            ORVAS_Div_32s16s_S, ORVAS_Div_16sc_S, ORVAS_Div_8u_IS, ORVAS_Div_16u_IS, ORVAS_Div_16s_IS,
            ORVAS_Div_32s_IS, ORVAS_Div_16sc_IS),
    MEMBERS(ORVAS_Div_Round_8u_S, ORVAS_Div_Round_16u_S, ORVAS_Div_Round_16s_S, ORVAS_Div_Round_8u_IS,
            ORVAS_Div_Round_16u_IS, ORVAS_Div_Round_16s_IS).Each(&Member::Constants, {{0}, {1}, {2}}),
    MEMBERS(ORVAS_DivC_32f, ORVAS_DivC_64f, ORVAS_DivC_32f_I, ORVAS_DivC_64f_I)
        .Each(&Member::BadConstants, {0}, ORVA_STS_DIV_BY_ZERO_ERR)
        .Each(&Member::BadConstants, {-0.0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBERS(ORVAS_DivC_32fc, ORVAS_DivC_32fc_I)
        .Each(&Member::BadConstants, {0, 0}, ORVA_STS_DIV_BY_ZERO_ERR)
        .Each(&Member::BadConstants, {1e-30, 0}, ORVA_STS_DIV_BY_ZERO_ERR),  // its square underflows
    MEMBERS(ORVAS_DivC_64fc, ORVAS_DivC_64fc_I)
        .Each(&Member::BadConstants, {0, 0}, ORVA_STS_DIV_BY_ZERO_ERR)
        .Each(&Member::BadConstants, {0, 1e-200}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBERS(ORVAS_DivC_8u_S, ORVAS_DivC_16u_S, ORVAS_DivC_8u_IS, ORVAS_DivC_16u_IS)
        .Each(&Member::BadConstants, {0}, ORVA_STS_DIV_BY_ZERO_ERR).Each(&Member::ScaleFirst),
    MEMBERS(ORVAS_DivC_16sc_S, ORVAS_DivC_16sc_IS)
        .Each(&Member::BadConstants, {0, 0}, ORVA_STS_DIV_BY_ZERO_ERR).Each(&Member::ScaleFirst),
    MEMBERS(ORVAS_DivC_16s_S, ORVAS_DivC_16s_IS, ORVAS_DivC_64s_IS)
        .Each(&Member::BadConstants, {0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBERS(ORVAS_DivCRev_32f, ORVAS_DivCRev_32f_I),
    MEMBERS(ORVAS_DivCRev_16u, ORVAS_DivCRev_16u_I).Each(&Member::Constants, {{0}, {7}, {60000}}),

    MEMBERS(ORVAS_Sqr_32f, ORVAS_Sqr_64f, ORVAS_Sqr_32fc, ORVAS_Sqr_64fc, ORVAS_Sqr_8u_S, ORVAS_Sqr_16u_S,
            ORVAS_Sqr_16s_S, ORVAS_Sqr_16sc_S, ORVAS_Sqr_32f_I, ORVAS_Sqr_64f_I, ORVAS_Sqr_32fc_I,
            ORVAS_Sqr_64fc_I, ORVAS_Sqr_8u_IS, ORVAS_Sqr_16u_IS, ORVAS_Sqr_16s_IS, ORVAS_Sqr_16sc_IS),
    MEMBERS(ORVAS_Sqrt_32f, ORVAS_Sqrt_64f, ORVAS_Sqrt_32fc, ORVAS_Sqrt_64fc, ORVAS_Sqrt_8u_S, ORVAS_Sqrt_16u_S,
            ORVAS_Sqrt_16s_S, ORVAS_Sqrt_16sc_S, ORVAS_Sqrt_32s16s_S, ORVAS_Sqrt_32f_I, ORVAS_Sqrt_64f_I,
            ORVAS_Sqrt_32fc_I, ORVAS_Sqrt_64fc_I, ORVAS_Sqrt_8u_IS, ORVAS_Sqrt_16u_IS, ORVAS_Sqrt_16s_IS,
            ORVAS_Sqrt_16sc_IS, ORVAS_Cubrt_32f, ORVAS_Cubrt_32s16s_S),

    MEMBERS(ORVAS_Convert_16s16f, ORVAS_Convert_32f16f, ORVAS_Convert_16f16s_S)
        .Each(&Member::Constants, {{0}, {1}})
        .Each(&Member::BadConstants, {2}, ORVA_STS_ROUND_MODE_ERR)
        .Each(&Member::BadConstants, {4294967295.0}, ORVA_STS_ROUND_MODE_ERR),
    MEMBER(ORVAS_Convert_16f32f),
    MEMBERS(ORVAS_Normalize_32f, ORVAS_Normalize_64f, ORVAS_Normalize_16s_S, ORVAS_Normalize_32f_I,
            ORVAS_Normalize_64f_I, ORVAS_Normalize_16s_IS)
        .Each(&Member::BadConstants, {1, 0}, ORVA_STS_DIV_BY_ZERO_ERR)
        .Each(&Member::BadConstants, {1, -0.0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBERS(ORVAS_Normalize_32fc, ORVAS_Normalize_64fc, ORVAS_Normalize_16sc_S, ORVAS_Normalize_32fc_I,
            ORVAS_Normalize_64fc_I, ORVAS_Normalize_16sc_IS)
        .Each(&Member::BadConstants, {1, 1, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
});

}  // namespace tzm_test
