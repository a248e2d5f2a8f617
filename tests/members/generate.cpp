// Windows, tones, noise, chirps.
#include <signal_tzm/generate.h>

#include "members.h"
#include "support/random.h"

namespace tzm_test {

namespace {

template <class T, class State>
void DigestNoise(Digest& digest, OrvaStatus (*init)(State**, T, T, uint32_t),
                 OrvaStatus (*generate)(T*, int32_t, const State*), OrvaStatus (*release)(State*)) {
  for (int32_t len : {1, 4, 7, 8, 9, 500}) {
    State* state = nullptr;
    init(&state, 100, 80, static_cast<uint32_t>(len));
    std::vector<T> dst(static_cast<size_t>(len));
    digest.AddStatus(generate(dst.data(), len, state));
    digest.Add(dst.data(), dst.size());
    release(state);
  }
}

#define NOISE(type)                                                                                            \
  Member({"ORVAS_RandGauss_" #type, "ORVAS_RandGaussInit_" #type, "ORVAS_RandGaussRelease_" #type},            \
         [](Digest& digest) {                                                                                  \
    DigestNoise(digest, ORVAS_RandGaussInit_##type, ORVAS_RandGauss_##type, ORVAS_RandGaussRelease_##type);    \
  })

// Magnitude and frequency, which real tones take below 0.5 and complex ones below 1.
#define TONES(bound, ...)                                                 \
  MEMBERS(__VA_ARGS__)                                                    \
      .Start(0.5)                                          \
      .Constants({{1000, 0.1}, {3, 0}, {32767, 0.37}})     \
      .BadConstants({0, 0.1}, ORVA_STS_RANGE_ERR)          \
      .BadConstants({-3, 0.1}, ORVA_STS_RANGE_ERR)         \
      .BadConstants({3, -0.1}, ORVA_STS_RANGE_ERR)         \
      .BadConstants({3, bound}, ORVA_STS_RANGE_ERR)

// A window on reals and complex samples of one part type, and in place; of all types.
#define PART(name, part)                                                                        \
  ORVAS_Win##name##_##part, ORVAS_Win##name##_##part##c, ORVAS_Win##name##_##part##_I, \
      ORVAS_Win##name##_##part##c_I
#define WINDOW(name, shortest) \
  MEMBERS(PART(name, 16s), PART(name, 32f), PART(name, 64f)).MinLength(shortest)

const Rows rows("generate", {
    WINDOW(Hann, 3),
    WINDOW(Hamming, 3),
    WINDOW(Bartlett, 3),
    WINDOW(Blackman, 3).Constants({{-0.16}, {0.3}, {-20}}),
    WINDOW(BlackmanStd, 3),
    WINDOW(BlackmanOpt, 4),
    MEMBERS(PART(Kaiser, 16s), PART(Kaiser, 32f))
        .Constants({{1e-6}, {0.01}, {-0.05}})
        .BadConstants({3.9}, ORVA_STS_KAISER_ALPHA_ERR),
    MEMBERS(PART(Kaiser, 64f))
        .Constants({{1e-6}, {0.01}, {-0.05}})
        .BadConstants({31}, ORVA_STS_KAISER_ALPHA_ERR),
    TONES(0.5, ORVAS_Tone_16s, ORVAS_Tone_32f, ORVAS_Tone_64f),
    TONES(1, ORVAS_Tone_16sc, ORVAS_Tone_32fc, ORVAS_Tone_64fc),
    NOISE(8u),
    NOISE(16s),
    NOISE(32f),
    NOISE(64f),
    MEMBERS(ORVAS_VectorJaehne_8u, ORVAS_VectorJaehne_16u).Constants({{0}, {100}, {200}}),
    MEMBERS(ORVAS_VectorJaehne_16s, ORVAS_VectorJaehne_32s, ORVAS_VectorJaehne_32f, ORVAS_VectorJaehne_64f)
        .Constants({{0}, {100}, {200}})
        .BadConstants({-1}, ORVA_STS_RANGE_ERR),
});

}  // namespace

}  // namespace tzm_test
