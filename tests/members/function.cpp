#include <signal_tzm/elementary.h>

#include "members.h"

namespace tzm_test {

// Exp in place looks at its length first, and hears of a failed allocation from the copy.
static const Rows rows("elementary", {
    MEMBER(ORVAS_Exp_32f),
    MEMBER(ORVAS_Exp_64f),
    MEMBER(ORVAS_Exp_32f_I).LengthFirst().Allocates(ORVA_STS_NULL_PTR_ERR),
    MEMBER(ORVAS_Exp_64f_I).LengthFirst().Allocates(ORVA_STS_NULL_PTR_ERR),
    MEMBER(ORVAS_Ln_32f),
    MEMBER(ORVAS_Ln_64f),
    MEMBER(ORVAS_Ln_32f_I),
    MEMBER(ORVAS_Ln_64f_I),
    MEMBER(ORVAS_Log10_32f),
    MEMBER(ORVAS_Log10_64f),
    MEMBER(ORVAS_Sin_32f),
    MEMBER(ORVAS_Sin_64f),
    MEMBER(ORVAS_Cos_32f),
    MEMBER(ORVAS_Cos_64f),
    MEMBER(ORVAS_Tan_32f),
    MEMBER(ORVAS_Tan_64f),
    MEMBER(ORVAS_Arctan_32f),
    MEMBER(ORVAS_Arctan_64f),
    MEMBER(ORVAS_Arctan_32f_I),
    MEMBER(ORVAS_Arctan_64f_I),
    MEMBER(ORVAS_Arctan2_32f),
    MEMBER(ORVAS_Arctan2_64f),
    MEMBER(ORVAS_Pow_32f),
    MEMBER(ORVAS_Pow_64f),
});

}  // namespace tzm_test
