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
    MEMBER(ORVAS_PowerSpectr_16s_S),
    MEMBER(ORVAS_PowerSpectr_16sc_S),
    MEMBER(ORVAS_Magnitude_32f),
    MEMBER(ORVAS_Magnitude_64f),
    MEMBER(ORVAS_Magnitude_32fc),
    MEMBER(ORVAS_Magnitude_64fc).Inexact(),  // the last bit of the system's cabs differs between machines
    MEMBER(ORVAS_Magnitude_16s32f),
    MEMBER(ORVAS_Magnitude_16sc32f),
    MEMBER(ORVAS_Magnitude_16s_S),
    MEMBER(ORVAS_Magnitude_16sc_S),
    MEMBER(ORVAS_Magnitude_32sc_S),
});

}  // namespace tzm_test
