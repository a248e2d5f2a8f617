#include <signal_tzm/reduce.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("reduce", {
    MEMBER(ORVAS_Norm_Inf_16s32f),
    MEMBER(ORVAS_Norm_Inf_32f),
    MEMBER(ORVAS_Norm_Inf_64f),
    MEMBER(ORVAS_Norm_Inf_32fc32f),
    MEMBER(ORVAS_Norm_Inf_64fc64f),
    MEMBER(ORVAS_Norm_Inf_16s32s_S),
    MEMBER(ORVAS_Norm_L1_16s32f),
    MEMBER(ORVAS_Norm_L1_32f),
    MEMBER(ORVAS_Norm_L1_64f),
    MEMBER(ORVAS_Norm_L1_32fc64f),
    MEMBER(ORVAS_Norm_L1_64fc64f),
    MEMBER(ORVAS_Norm_L1_16s32s_S),
    MEMBER(ORVAS_Norm_L1_16s64s_S),
    MEMBER(ORVAS_Norm_L2_16s32f),
    MEMBER(ORVAS_Norm_L2_32f),
    MEMBER(ORVAS_Norm_L2_64f),
    MEMBER(ORVAS_Norm_L2_32fc64f),
    MEMBER(ORVAS_Norm_L2_64fc64f),
    MEMBER(ORVAS_Norm_L2_16s32s_S),
    MEMBER(ORVAS_Norm_L2Sqr_16s64s_S),
    MEMBER(ORVAS_NormDiff_Inf_16s32f),
    MEMBER(ORVAS_NormDiff_Inf_32f),
    MEMBER(ORVAS_NormDiff_Inf_64f),
    MEMBER(ORVAS_NormDiff_Inf_32fc32f),
    MEMBER(ORVAS_NormDiff_Inf_64fc64f),
    MEMBER(ORVAS_NormDiff_Inf_16s32s_S),
    MEMBER(ORVAS_NormDiff_L1_16s32f),
    MEMBER(ORVAS_NormDiff_L1_32f),
    MEMBER(ORVAS_NormDiff_L1_64f),
    MEMBER(ORVAS_NormDiff_L1_32fc64f),
    MEMBER(ORVAS_NormDiff_L1_64fc64f),
    MEMBER(ORVAS_NormDiff_L1_16s32s_S),
    MEMBER(ORVAS_NormDiff_L1_16s64s_S),
    MEMBER(ORVAS_NormDiff_L2_16s32f),
    MEMBER(ORVAS_NormDiff_L2_32f),
    MEMBER(ORVAS_NormDiff_L2_64f),
    MEMBER(ORVAS_NormDiff_L2_32fc64f),
    MEMBER(ORVAS_NormDiff_L2_64fc64f),
    MEMBER(ORVAS_NormDiff_L2_16s32s_S),
    MEMBER(ORVAS_NormDiff_L2Sqr_16s64s_S),
});

}  // namespace tzm_test
