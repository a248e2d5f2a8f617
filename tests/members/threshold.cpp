#include <signal_tzm/threshold.h>

#include <cmath>

#include "members.h"

namespace tzm_test {

// A member and its in-place companion, with the same sets of constants.
#define BOTH(name, ...)                                    \
  MEMBER(ORVAS_Threshold_##name).Constants(__VA_ARGS__), \
      MEMBER(ORVAS_Threshold_##name##_I).Constants(__VA_ARGS__)
#define BOTH_REFUSING(name, bad, status, ...)                               \
  MEMBER(ORVAS_Threshold_##name).Constants(__VA_ARGS__).BadConstants(bad, status), \
      MEMBER(ORVAS_Threshold_##name##_I).Constants(__VA_ARGS__).BadConstants(bad, status)
#define LIST(...) {__VA_ARGS__}

static const Rows rows("threshold", {
    BOTH(16s, {{3, 0}, {3, 4}}),
    BOTH(32f, {{0.5, 0}, {0.5, 4}}),
    BOTH(64f, {{0.5, 0}, {0.5, 4}}),
    BOTH(32fc, {{0.5, 0}, {2, 4}}),
    BOTH(LT_16s, {{3}, {-100}}),
    BOTH(LT_32s, {{3}, {-100}}),
    BOTH(LT_32f, {{0.5}, {0}, {NAN}}),
    BOTH(LT_64f, {{0.5}, {0}, {NAN}}),
    BOTH_REFUSING(LT_32fc, LIST(-1), ORVA_STS_THRESH_NEG_ERR, {{0.5}, {2}, {0}}),
    BOTH(GT_16s, {{3}, {-100}}),
    BOTH(GT_32s, {{3}, {-100}}),
    BOTH(GT_32f, {{0.5}, {0}, {NAN}}),
    BOTH(GT_64f, {{0.5}, {0}, {NAN}}),
    BOTH_REFUSING(GT_32fc, LIST(-1), ORVA_STS_THRESH_NEG_ERR, {{0.5}, {2}, {0}}),
    BOTH(LTVal_16s, {{3, 77}}),
    BOTH(LTVal_32f, {{0.5, 77}, {NAN, 77}}),
    BOTH(LTVal_64f, {{0.5, 77}, {NAN, 77}}),
    BOTH_REFUSING(LTVal_32fc, LIST(-1, 7, 8), ORVA_STS_THRESH_NEG_ERR, {{2, 7, 8}}),
    BOTH(GTVal_16s, {{3, 77}}),
    BOTH(GTVal_32f, {{0.5, 77}, {NAN, 77}}),
    BOTH(GTVal_64f, {{0.5, 77}, {NAN, 77}}),
    BOTH_REFUSING(GTVal_32fc, LIST(-1, 7, 8), ORVA_STS_THRESH_NEG_ERR, {{2, 7, 8}}),
    BOTH_REFUSING(LTValGTVal_16s, LIST(2, 7, 1, 8), ORVA_STS_THRESH_ORDER_ERR, {{-3, 7, 30, 8}}),
    BOTH_REFUSING(LTValGTVal_32s, LIST(2, 7, 1, 8), ORVA_STS_THRESH_ORDER_ERR, {{-3, 7, 30, 8}}),
    BOTH_REFUSING(LTValGTVal_32f, LIST(2, 7, 1, 8), ORVA_STS_THRESH_ORDER_ERR, {{-0.5, 7, 0.5, 8}}),
    BOTH_REFUSING(LTValGTVal_64f, LIST(2, 7, 1, 8), ORVA_STS_THRESH_ORDER_ERR, {{-0.5, 7, 0.5, 8}}),
    BOTH_REFUSING(LTAbs_16s, LIST(-1), ORVA_STS_THRESH_NEG_ERR, {{30}, {0}, {32767}}),
    BOTH_REFUSING(LTAbs_32s, LIST(-1), ORVA_STS_THRESH_NEG_ERR, {{300}, {0}, {2147483647}}),
    BOTH_REFUSING(LTAbs_32f, LIST(-1), ORVA_STS_THRESH_NEG_ERR, {{0.5}, {0}}),
    BOTH_REFUSING(LTAbs_64f, LIST(-1), ORVA_STS_THRESH_NEG_ERR, {{0.5}, {0}}),
    BOTH_REFUSING(GTAbs_16s, LIST(-1), ORVA_STS_THRESH_NEG_ERR, {{30}, {0}, {32767}}),
    BOTH_REFUSING(GTAbs_32s, LIST(-1), ORVA_STS_THRESH_NEG_ERR, {{300}, {0}, {2147483647}}),
    BOTH_REFUSING(GTAbs_32f, LIST(-1), ORVA_STS_THRESH_NEG_ERR, {{0.5}, {0}}),
    BOTH_REFUSING(GTAbs_64f, LIST(-1), ORVA_STS_THRESH_NEG_ERR, {{0.5}, {0}}),
    BOTH(LTAbsVal_16s, {{30, 77}, {-5, 77}, {-32768, 77}}),
    BOTH(LTAbsVal_32s, {{300, 77}, {-5, 77}}),
    BOTH(LTAbsVal_32f, {{0.5, 77}, {-5, 77}}),
    BOTH(LTAbsVal_64f, {{0.5, 77}, {-5, 77}}),
    BOTH_REFUSING(LTInv_32f, LIST(-1), ORVA_STS_THRESH_NEG_ERR, {{0.5}, {0}, {NAN}}),
    BOTH_REFUSING(LTInv_64f, LIST(-1), ORVA_STS_THRESH_NEG_ERR, {{0.5}, {0}, {NAN}}),
    BOTH_REFUSING(LTInv_32fc, LIST(-1), ORVA_STS_THRESH_NEG_ERR, {{0.5}, {0}, {NAN}}),
});

}  // namespace tzm_test
