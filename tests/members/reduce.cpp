#include <signal_tzm/reduce.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("reduce", {
    MEMBERS(ORVAS_DotProd_32f, ORVAS_DotProd_64f, ORVAS_DotProd_32f64f, ORVAS_DotProd_32fc, ORVAS_DotProd_64fc,
            ORVAS_DotProd_32fc64fc, ORVAS_DotProd_32f32fc, ORVAS_DotProd_32f32fc64fc, ORVAS_DotProd_64f64fc,
            ORVAS_DotProd_16s32f, ORVAS_DotProd_16s64s, ORVAS_DotProd_16sc64sc, ORVAS_DotProd_16s16sc64sc,
            ORVAS_DotProd_16s32s_S, ORVAS_DotProd_16s32s32s_S, ORVAS_DotProd_32s_S),

    MEMBERS(ORVAS_Sum_64f, ORVAS_Sum_64fc, ORVAS_Sum_16s_S, ORVAS_Sum_32s_S, ORVAS_Sum_16s32s_S, ORVAS_Sum_16sc_S,
            ORVAS_Sum_16sc32sc_S, ORVAS_Mean_64f, ORVAS_Mean_64fc, ORVAS_Mean_16s_S, ORVAS_Mean_32s_S,
            ORVAS_Mean_16sc_S, ORVAS_SumLn_32f, ORVAS_SumLn_64f, ORVAS_SumLn_16s32f),
    MEMBERS(ORVAS_Sum_32f, ORVAS_Sum_32fc, ORVAS_Mean_32f, ORVAS_Mean_32fc)
        .Constants({{0}, {1}, {-1}}),
    MEMBERS(ORVAS_StdDev_16s_S, ORVAS_StdDev_16s32s_S, ORVAS_MeanStdDev_16s_S, ORVAS_MeanStdDev_16s32s_S)
        .MinLength(2),
    MEMBERS(ORVAS_StdDev_32f).Constants({{0}, {1}, {-1}}).MinLength(2).LengthFirst(2),
    MEMBERS(ORVAS_StdDev_64f).MinLength(2).LengthFirst(2),
    MEMBERS(ORVAS_MeanStdDev_32f).Constants({{0}, {1}, {-1}}).MinLength(2).LengthFirst(3),
    MEMBERS(ORVAS_MeanStdDev_64f).MinLength(2).LengthFirst(3),
    MEMBERS(ORVAS_SumLn_32f64f).Allocates(ORVA_STS_NULL_PTR_ERR),

    MEMBERS(ORVAS_Norm_Inf_16s32f, ORVAS_Norm_Inf_32f, ORVAS_Norm_Inf_64f, ORVAS_Norm_Inf_32fc32f,
            ORVAS_Norm_Inf_64fc64f, ORVAS_Norm_Inf_16s32s_S, ORVAS_Norm_L1_16s32f, ORVAS_Norm_L1_32f,
            ORVAS_Norm_L1_64f, ORVAS_Norm_L1_32fc64f, ORVAS_Norm_L1_64fc64f, ORVAS_Norm_L1_16s32s_S,
            ORVAS_Norm_L1_16s64s_S, ORVAS_Norm_L2_16s32f, ORVAS_Norm_L2_32f, ORVAS_Norm_L2_64f,
            ORVAS_Norm_L2_32fc64f, ORVAS_Norm_L2_64fc64f, ORVAS_Norm_L2_16s32s_S, ORVAS_Norm_L2Sqr_16s64s_S),
    MEMBERS(ORVAS_NormDiff_Inf_16s32f, ORVAS_NormDiff_Inf_32f, ORVAS_NormDiff_Inf_64f, ORVAS_NormDiff_Inf_32fc32f,
            ORVAS_NormDiff_Inf_64fc64f, ORVAS_NormDiff_Inf_16s32s_S, ORVAS_NormDiff_L1_16s32f,
            ORVAS_NormDiff_L1_32f, ORVAS_NormDiff_L1_64f, ORVAS_NormDiff_L1_32fc64f, ORVAS_NormDiff_L1_64fc64f,
            ORVAS_NormDiff_L1_16s32s_S, ORVAS_NormDiff_L1_16s64s_S, ORVAS_NormDiff_L2_16s32f,
            ORVAS_NormDiff_L2_32f, ORVAS_NormDiff_L2_64f, ORVAS_NormDiff_L2_32fc64f, ORVAS_NormDiff_L2_64fc64f,
            ORVAS_NormDiff_L2_16s32s_S, ORVAS_NormDiff_L2Sqr_16s64s_S),

    MEMBERS(ORVAS_AggSum_16s, ORVAS_AggSum_32s, ORVAS_AggSum_64s, ORVAS_AggSum_64f, ORVAS_AggSum_decimal64,
            ORVAS_AggSum_decimal128, ORVAS_AggMean_16s, ORVAS_AggMean_32s, ORVAS_AggMean_64s, ORVAS_AggMean_64f,
            ORVAS_AggMean_decimal64, ORVAS_AggMean_decimal128),
});

}  // namespace tzm_test
