#include <signal_tzm/reduce.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("reduce", {
    MEMBER(ORVAS_AggSum_16s),
    MEMBER(ORVAS_AggSum_32s),
    MEMBER(ORVAS_AggSum_64s),
    MEMBER(ORVAS_AggSum_64f),
    MEMBER(ORVAS_AggSum_decimal64),
    MEMBER(ORVAS_AggSum_decimal128),
    MEMBER(ORVAS_AggMean_16s),
    MEMBER(ORVAS_AggMean_32s),
    MEMBER(ORVAS_AggMean_64s),
    MEMBER(ORVAS_AggMean_64f),
    MEMBER(ORVAS_AggMean_decimal64),
    MEMBER(ORVAS_AggMean_decimal128),
});

}  // namespace tzm_test
