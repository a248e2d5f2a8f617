#include <signal_tzm/reduce.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("reduce", {
    MEMBER(ORVAS_Sum_32f).Constants({{0}, {1}, {-1}}),
    MEMBER(ORVAS_Sum_32fc).Constants({{0}, {1}, {-1}}),
    MEMBER(ORVAS_Sum_64f),
    MEMBER(ORVAS_Sum_64fc),
    MEMBER(ORVAS_Sum_16s_S),
    MEMBER(ORVAS_Sum_32s_S),
    MEMBER(ORVAS_Sum_16s32s_S),
    MEMBER(ORVAS_Sum_16sc_S),
    MEMBER(ORVAS_Sum_16sc32sc_S),
    MEMBER(ORVAS_Mean_32f).Constants({{0}, {1}, {-1}}),
    MEMBER(ORVAS_Mean_32fc).Constants({{0}, {1}, {-1}}),
    MEMBER(ORVAS_Mean_64f),
    MEMBER(ORVAS_Mean_64fc),
    MEMBER(ORVAS_Mean_16s_S),
    MEMBER(ORVAS_Mean_32s_S),
    MEMBER(ORVAS_Mean_16sc_S),
    MEMBER(ORVAS_StdDev_32f).Constants({{0}, {1}, {-1}}).MinLength(2).LengthFirst(2),
    MEMBER(ORVAS_StdDev_64f).MinLength(2).LengthFirst(2),
    MEMBER(ORVAS_StdDev_16s_S).MinLength(2),
    MEMBER(ORVAS_StdDev_16s32s_S).MinLength(2),
    MEMBER(ORVAS_MeanStdDev_32f).Constants({{0}, {1}, {-1}}).MinLength(2).LengthFirst(3),
    MEMBER(ORVAS_MeanStdDev_64f).MinLength(2).LengthFirst(3),
    MEMBER(ORVAS_MeanStdDev_16s_S).MinLength(2),
    MEMBER(ORVAS_MeanStdDev_16s32s_S).MinLength(2),
    MEMBER(ORVAS_SumLn_32f),
    MEMBER(ORVAS_SumLn_64f),
    MEMBER(ORVAS_SumLn_32f64f).Allocates(ORVA_STS_NULL_PTR_ERR),
    MEMBER(ORVAS_SumLn_16s32f),
});

}  // namespace tzm_test
