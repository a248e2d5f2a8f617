#include <signal_tzm/elementary.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("elementary", {
    MEMBER(ORVAS_Log10_32fc),
    MEMBER(ORVAS_Log10_64fc),
    MEMBER(ORVAS_Sin_32fc),
    MEMBER(ORVAS_Sin_64fc),
    MEMBER(ORVAS_Cos_32fc),
    MEMBER(ORVAS_Cos_64fc),
});

}  // namespace tzm_test
