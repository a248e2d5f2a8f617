#include <signal_tzm/arith.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("arith", {
    MEMBER(ORVAS_Sqr_32f),
    MEMBER(ORVAS_Sqr_64f),
    MEMBER(ORVAS_Sqr_32fc),
    MEMBER(ORVAS_Sqr_64fc),
    MEMBER(ORVAS_Sqr_8u_S),
    MEMBER(ORVAS_Sqr_16u_S),
    MEMBER(ORVAS_Sqr_16s_S),
    MEMBER(ORVAS_Sqr_16sc_S),
    MEMBER(ORVAS_Sqr_32f_I),
    MEMBER(ORVAS_Sqr_64f_I),
    MEMBER(ORVAS_Sqr_32fc_I),
    MEMBER(ORVAS_Sqr_64fc_I),
    MEMBER(ORVAS_Sqr_8u_IS),
    MEMBER(ORVAS_Sqr_16u_IS),
    MEMBER(ORVAS_Sqr_16s_IS),
    MEMBER(ORVAS_Sqr_16sc_IS),
    MEMBER(ORVAS_Sqrt_32f),
    MEMBER(ORVAS_Sqrt_64f),
    MEMBER(ORVAS_Sqrt_32fc),
    MEMBER(ORVAS_Sqrt_64fc),
    MEMBER(ORVAS_Sqrt_8u_S),
    MEMBER(ORVAS_Sqrt_16u_S),
    MEMBER(ORVAS_Sqrt_16s_S),
    MEMBER(ORVAS_Sqrt_16sc_S),
    MEMBER(ORVAS_Sqrt_32s16s_S),
    MEMBER(ORVAS_Sqrt_32f_I),
    MEMBER(ORVAS_Sqrt_64f_I),
    MEMBER(ORVAS_Sqrt_32fc_I),
    MEMBER(ORVAS_Sqrt_64fc_I),
    MEMBER(ORVAS_Sqrt_8u_IS),
    MEMBER(ORVAS_Sqrt_16u_IS),
    MEMBER(ORVAS_Sqrt_16s_IS),
    MEMBER(ORVAS_Sqrt_16sc_IS),
    MEMBER(ORVAS_Cubrt_32f),
    MEMBER(ORVAS_Cubrt_32s16s_S),
});

}  // namespace tzm_test
