#include <signal_tzm/elementary.h>

#include "members.h"

namespace tzm_test {

#define POWX(name) MEMBER(name).Constants({{2.5}, {-3}, {0}, {-0.5}})

static const Rows rows("elementary", {
    POWX(ORVAS_Powx_32f_A11),
    POWX(ORVAS_Powx_32f_A21),
    POWX(ORVAS_Powx_32f_A24),
    POWX(ORVAS_Powx_64f_A26),
    POWX(ORVAS_Powx_64f_A50),
    POWX(ORVAS_Powx_64f_A53),
});

}  // namespace tzm_test
