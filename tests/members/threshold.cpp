#include <signal_tzm/threshold.h>

#include <cmath>

#include "members.h"

namespace tzm_test {

// A member and its in-place companion.
#define BOTH(name) ORVAS_Threshold_##name, ORVAS_Threshold_##name##_I

static const Rows rows("threshold", {
    MEMBERS(BOTH(16s)).Constants({{3, 0}, {3, 4}}),
    MEMBERS(BOTH(32f), BOTH(64f)).Constants({{0.5, 0}, {0.5, 4}}),
    MEMBERS(BOTH(32fc)).Constants({{0.5, 0}, {2, 4}}),
    MEMBERS(BOTH(LT_16s), BOTH(LT_32s), BOTH(GT_16s), BOTH(GT_32s)).Constants({{3}, {-100}}),
    MEMBERS(BOTH(LT_32f), BOTH(LT_64f), BOTH(GT_32f), BOTH(GT_64f)).Constants({{0.5}, {0}, {NAN}}),
    MEMBERS(BOTH(LT_32fc), BOTH(GT_32fc))
        .Constants({{0.5}, {2}, {0}})
        .BadConstants({-1}, ORVA_STS_THRESH_NEG_ERR),
    MEMBERS(BOTH(LTVal_16s), BOTH(GTVal_16s)).Constants({{3, 77}}),
    MEMBERS(BOTH(LTVal_32f), BOTH(LTVal_64f), BOTH(GTVal_32f), BOTH(GTVal_64f))
        .Constants({{0.5, 77}, {NAN, 77}}),
    MEMBERS(BOTH(LTVal_32fc), BOTH(GTVal_32fc))
        .Constants({{2, 7, 8}})
        .BadConstants({-1, 7, 8}, ORVA_STS_THRESH_NEG_ERR),
    MEMBERS(BOTH(LTValGTVal_16s), BOTH(LTValGTVal_32s))
        .Constants({{-3, 7, 30, 8}})
        .BadConstants({2, 7, 1, 8}, ORVA_STS_THRESH_ORDER_ERR),
    MEMBERS(BOTH(LTValGTVal_32f), BOTH(LTValGTVal_64f))
        .Constants({{-0.5, 7, 0.5, 8}})
        .BadConstants({2, 7, 1, 8}, ORVA_STS_THRESH_ORDER_ERR),
    MEMBERS(BOTH(LTAbs_16s), BOTH(GTAbs_16s))
        .Constants({{30}, {0}, {32767}})
        .BadConstants({-1}, ORVA_STS_THRESH_NEG_ERR),
    MEMBERS(BOTH(LTAbs_32s), BOTH(GTAbs_32s))
        .Constants({{300}, {0}, {2147483647}})
        .BadConstants({-1}, ORVA_STS_THRESH_NEG_ERR),
    MEMBERS(BOTH(LTAbs_32f), BOTH(LTAbs_64f), BOTH(GTAbs_32f), BOTH(GTAbs_64f))
        .Constants({{0.5}, {0}})
        .BadConstants({-1}, ORVA_STS_THRESH_NEG_ERR),
    MEMBERS(BOTH(LTAbsVal_16s)).Constants({{30, 77}, {-5, 77}, {-32768, 77}}),
    MEMBERS(BOTH(LTAbsVal_32s)).Constants({{300, 77}, {-5, 77}}),
    MEMBERS(BOTH(LTAbsVal_32f), BOTH(LTAbsVal_64f)).Constants({{0.5, 77}, {-5, 77}}),
    MEMBERS(BOTH(LTInv_32f), BOTH(LTInv_64f), BOTH(LTInv_32fc))
        .Constants({{0.5}, {0}, {NAN}})
        .BadConstants({-1}, ORVA_STS_THRESH_NEG_ERR),
});

}  // namespace tzm_test
