#include <signal_tzm/transform.h>

#include "members.h"

namespace tzm_test {

namespace {

#define SPEC(kind, type) \
  Member({"ORVAS_" #kind "_" #type, "ORVAS_" #kind "Init_" #type, "ORVAS_" #kind "Release_" #type})

const Rows rows("transform", {
    SPEC(FFTCToC, 32fc),
    SPEC(FFTCToC, 64fc),
    SPEC(FFTCToC, 32f),
    SPEC(FFTCToC, 64f),
    SPEC(FFTRToC, 32f),
    SPEC(FFTRToC, 64f),
    SPEC(FFTCToR, 32f),
    SPEC(FFTCToR, 64f),
    SPEC(DFTCToC, 32fc),
    SPEC(DFTCToC, 64fc),
    SPEC(DFTCToC, 32f),
    SPEC(DFTCToC, 64f),
    SPEC(DFTRToC, 32f),
    SPEC(DFTRToC, 64f),
    SPEC(DFTCToR, 32f),
    SPEC(DFTCToR, 64f),
    Member({"ORVAS_FFTCToC_32fc_I", "ORVAS_FFTCToC_64fc_I"}),

    Member({"ORVAS_CZT_32f"}), Member({"ORVAS_CZT_64f"}),
    Member({"ORVAS_CZT_32fc"}), Member({"ORVAS_CZT_64fc"}),

    MEMBERS(ORVAS_Goertz_32f, ORVAS_Goertz_64f, ORVAS_Goertz_64fc)
        .Constants({{0.1}, {0}, {0.75}})
        .BadConstants({-0.1}, ORVA_STS_REL_FREQ_ERR)
        .BadConstants({1}, ORVA_STS_REL_FREQ_ERR),
    MEMBERS(ORVAS_Goertz_32fc)
        .Constants({{0.1}, {0}, {1}})
        .BadConstants({-0.1}, ORVA_STS_REL_FREQ_ERR)
        .BadConstants({1.0001}, ORVA_STS_REL_FREQ_ERR),

    Member({"ORVAS_Hilbert_32f32fc", "ORVAS_HilbertInit_32f32fc", "ORVAS_HilbertRelease_32f32fc"}),

    Member({"ORVAS_Pwelch_32f"}), Member({"ORVAS_Pwelch_64f"}),
    Member({"ORVAS_Pwelch_32fc"}), Member({"ORVAS_Pwelch_64fc"}),
});
#undef SPEC

}  // namespace

}  // namespace tzm_test
