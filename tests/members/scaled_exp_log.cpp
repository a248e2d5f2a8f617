#include <signal_tzm/elementary.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("elementary", {
    MEMBER(ORVAS_Exp_16s_S),
    MEMBER(ORVAS_Exp_32s_S),
    MEMBER(ORVAS_Exp_16s_IS),
    MEMBER(ORVAS_Exp_32s_IS),
    MEMBER(ORVAS_Ln_16s_S),
    MEMBER(ORVAS_Ln_32s_S),
    MEMBER(ORVAS_Ln_16s_IS),
    MEMBER(ORVAS_Ln_32s_IS),
});

}  // namespace tzm_test
