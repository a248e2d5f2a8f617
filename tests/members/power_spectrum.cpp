#include <signal_tzm/elementary.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("elementary", {
    MEMBER(ORVAS_PowerSpectr_32f),
    MEMBER(ORVAS_PowerSpectr_64f),
    MEMBER(ORVAS_PowerSpectr_32fc),
    MEMBER(ORVAS_PowerSpectr_64fc),
    MEMBER(ORVAS_PowerSpectr_16s32f),
    MEMBER(ORVAS_PowerSpectr_16sc32f),
});

}  // namespace tzm_test
