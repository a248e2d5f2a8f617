#include <signal_tzm/elementary.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("elementary", {
    MEMBER(ORVAS_Phase_32f).NotInPlace().Allocates(),
    MEMBER(ORVAS_Phase_64f).NotInPlace().Allocates(),
    MEMBER(ORVAS_Phase_16s32f).NotInPlace().Allocates(),
    MEMBER(ORVAS_Phase_16s_S).NotInPlace().Allocates(),
    MEMBER(ORVAS_Phase_32fc).NotInPlace().Allocates(),
    MEMBER(ORVAS_Phase_64fc).NotInPlace().Allocates(),
    MEMBER(ORVAS_Phase_16sc32f).NotInPlace().Allocates(),
    MEMBER(ORVAS_Phase_16sc_S).NotInPlace().Allocates(),
    MEMBER(ORVAS_CartToPolar_32f).NotInPlace(),
    MEMBER(ORVAS_CartToPolar_64f).NotInPlace(),
    MEMBER(ORVAS_CartToPolar_32fc).NotInPlace(),
    MEMBER(ORVAS_CartToPolar_64fc).NotInPlace().Inexact(),  // as its magnitude
    MEMBER(ORVAS_CartToPolar_16sc_S).NotInPlace().Allocates(),
    MEMBER(ORVAS_PolarToCart_32f).NotInPlace(),
    MEMBER(ORVAS_PolarToCart_64f).NotInPlace(),
    MEMBER(ORVAS_PolarToCart_32fc).NotInPlace().Allocates(),
    MEMBER(ORVAS_PolarToCart_64fc).NotInPlace().Allocates(),
    MEMBER(ORVAS_PolarToCart_16sc_S).NotInPlace(),
});

}  // namespace tzm_test
