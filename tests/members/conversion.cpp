#include <signal_tzm/arith.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("arith", {
    MEMBER(ORVAS_Convert_16s16f).Constants({{0}, {1}}).BadConstants({2}, ORVA_STS_ROUND_MODE_ERR)
                                .BadConstants({4294967295.0}, ORVA_STS_ROUND_MODE_ERR),
    MEMBER(ORVAS_Convert_32f16f).Constants({{0}, {1}}).BadConstants({2}, ORVA_STS_ROUND_MODE_ERR),
    MEMBER(ORVAS_Convert_16f32f),
    MEMBER(ORVAS_Convert_16f16s_S).Constants({{0}, {1}}).BadConstants({2}, ORVA_STS_ROUND_MODE_ERR),
    MEMBER(ORVAS_Normalize_32f).BadConstants({1, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_Normalize_64f).BadConstants({1, -0.0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_Normalize_32fc).BadConstants({1, 1, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_Normalize_64fc).BadConstants({1, 1, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_Normalize_16s_S).BadConstants({1, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_Normalize_16sc_S).BadConstants({1, 1, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_Normalize_32f_I).BadConstants({1, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_Normalize_64f_I).BadConstants({1, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_Normalize_32fc_I).BadConstants({1, 1, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_Normalize_64fc_I).BadConstants({1, 1, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_Normalize_16s_IS).BadConstants({1, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_Normalize_16sc_IS).BadConstants({1, 1, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
});

}  // namespace tzm_test
