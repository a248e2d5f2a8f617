#include <signal_tzm/arith.h>

#include "members.h"

namespace tzm_test {

static const Rows rows("arith", {
    MEMBER(ORVAS_Div_32f),
    MEMBER(ORVAS_Div_64f),
    MEMBER(ORVAS_Div_32f_I),
    MEMBER(ORVAS_Div_64f_I),
    MEMBER(ORVAS_Div_32fc),
    MEMBER(ORVAS_Div_32fc_I),
    MEMBER(ORVAS_Div_64fc),
    MEMBER(ORVAS_Div_64fc_I),
    MEMBER(ORVAS_Div_8u_S),
    MEMBER(ORVAS_Div_16u_S),
    MEMBER(ORVAS_Div_16s_S),
    MEMBER(ORVAS_Div_32s_S),
    MEMBER(ORVAS_Div_32s16s_S),
    MEMBER(ORVAS_Div_16sc_S),
    MEMBER(ORVAS_Div_8u_IS),
    MEMBER(ORVAS_Div_16u_IS),
    MEMBER(ORVAS_Div_16s_IS),
    MEMBER(ORVAS_Div_32s_IS),
    MEMBER(ORVAS_Div_16sc_IS),
    MEMBER(ORVAS_Div_Round_8u_S).Constants({{0}, {1}, {2}}),
    MEMBER(ORVAS_Div_Round_16u_S).Constants({{0}, {1}, {2}}),
    MEMBER(ORVAS_Div_Round_16s_S).Constants({{0}, {1}, {2}}),
    MEMBER(ORVAS_Div_Round_8u_IS).Constants({{0}, {1}, {2}}),
    MEMBER(ORVAS_Div_Round_16u_IS).Constants({{0}, {1}, {2}}),
    MEMBER(ORVAS_Div_Round_16s_IS).Constants({{0}, {1}, {2}}),
    MEMBER(ORVAS_DivC_32f).BadConstants({0}, ORVA_STS_DIV_BY_ZERO_ERR).BadConstants({-0.0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_DivC_64f).BadConstants({0}, ORVA_STS_DIV_BY_ZERO_ERR).BadConstants({-0.0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_DivC_32f_I).BadConstants({0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_DivC_64f_I).BadConstants({0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_DivC_32fc).BadConstants({0, 0}, ORVA_STS_DIV_BY_ZERO_ERR)
                           .BadConstants({1e-30, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_DivC_64fc).BadConstants({0, 0}, ORVA_STS_DIV_BY_ZERO_ERR)
                           .BadConstants({0, 1e-200}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_DivC_32fc_I).BadConstants({0, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_DivC_64fc_I).BadConstants({0, 0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_DivC_8u_S).BadConstants({0}, ORVA_STS_DIV_BY_ZERO_ERR).ScaleFirst(),
    MEMBER(ORVAS_DivC_16u_S).BadConstants({0}, ORVA_STS_DIV_BY_ZERO_ERR).ScaleFirst(),
    MEMBER(ORVAS_DivC_16s_S).BadConstants({0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_DivC_16sc_S).BadConstants({0, 0}, ORVA_STS_DIV_BY_ZERO_ERR).ScaleFirst(),
    MEMBER(ORVAS_DivC_8u_IS).BadConstants({0}, ORVA_STS_DIV_BY_ZERO_ERR).ScaleFirst(),
    MEMBER(ORVAS_DivC_16u_IS).BadConstants({0}, ORVA_STS_DIV_BY_ZERO_ERR).ScaleFirst(),
    MEMBER(ORVAS_DivC_16s_IS).BadConstants({0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_DivC_16sc_IS).BadConstants({0, 0}, ORVA_STS_DIV_BY_ZERO_ERR).ScaleFirst(),
    MEMBER(ORVAS_DivC_64s_IS).BadConstants({0}, ORVA_STS_DIV_BY_ZERO_ERR),
    MEMBER(ORVAS_DivCRev_32f),
    MEMBER(ORVAS_DivCRev_16u).Constants({{0}, {7}, {60000}}),
    MEMBER(ORVAS_DivCRev_32f_I),
    MEMBER(ORVAS_DivCRev_16u_I).Constants({{0}, {7}, {60000}}),
});

}  // namespace tzm_test
