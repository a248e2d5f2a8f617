#include <signal_tzm/reduce.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("reduce", {
    MEMBER(ORVAS_DotProd_32f),
    MEMBER(ORVAS_DotProd_64f),
    MEMBER(ORVAS_DotProd_32f64f),
    MEMBER(ORVAS_DotProd_32fc),
    MEMBER(ORVAS_DotProd_64fc),
    MEMBER(ORVAS_DotProd_32fc64fc),
    MEMBER(ORVAS_DotProd_32f32fc),
    MEMBER(ORVAS_DotProd_32f32fc64fc),
    MEMBER(ORVAS_DotProd_64f64fc),
    MEMBER(ORVAS_DotProd_16s32f),
    MEMBER(ORVAS_DotProd_16s64s),
    MEMBER(ORVAS_DotProd_16sc64sc),
    MEMBER(ORVAS_DotProd_16s16sc64sc),
    MEMBER(ORVAS_DotProd_16s32s_S),
    MEMBER(ORVAS_DotProd_16s32s32s_S),
    MEMBER(ORVAS_DotProd_32s_S),
});

}  // namespace tzm_test
