// Generators: tones, noise, chirps.
#include <signal_tzm/generate.h>

#include "members.h"
#include "support/random.h"

namespace tzm_test {

namespace {

template <class T, class State>
std::function<Timed(int32_t)> TimeNoise(OrvaStatus (*init)(State**, T, T, uint32_t),
                                        OrvaStatus (*generate)(T*, int32_t, const State*),
                                        OrvaStatus (*release)(State*)) {
  return [=](int32_t len) {
    State* made = nullptr;
    init(&made, 100, 20, 1);
    const std::shared_ptr<State> state(made, release);
    const auto dst = SharedArray<T>(len);
    return Timed{[=] { return generate(dst->data(), len, state.get()); }, static_cast<int64_t>(sizeof(T)) * len};
  };
}

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
  }).Benchmark(TimeNoise(ORVAS_RandGaussInit_##type, ORVAS_RandGauss_##type, ORVAS_RandGaussRelease_##type))

// Magnitude and frequency.
#define TONE(type, bound)                                         \
  MEMBER(ORVAS_Tone_##type)                                       \
      .Start(0.5)                                                 \
      .Constants({{1000, 0.1}, {3, 0}, {32767, 0.37}})            \
      .BadConstants({0, 0.1}, ORVA_STS_RANGE_ERR)                 \
      .BadConstants({-3, 0.1}, ORVA_STS_RANGE_ERR)                \
      .BadConstants({3, -0.1}, ORVA_STS_RANGE_ERR)                \
      .BadConstants({3, bound}, ORVA_STS_RANGE_ERR)

#define CHIRP(type) MEMBER(ORVAS_VectorJaehne_##type).Constants({{0}, {100}, {200}})
#define SIGNED_CHIRP(type) CHIRP(type).BadConstants({-1}, ORVA_STS_RANGE_ERR)

const Rows rows("generate", {
    TONE(16s, 0.5),
    TONE(32f, 0.5),
    TONE(64f, 0.5),
    TONE(16sc, 1),
    TONE(32fc, 1),
    TONE(64fc, 1),
    NOISE(8u),
    NOISE(16s),
    NOISE(32f),
    NOISE(64f),
    CHIRP(8u),
    CHIRP(16u),
    SIGNED_CHIRP(16s),
    SIGNED_CHIRP(32s),
    SIGNED_CHIRP(32f),
    SIGNED_CHIRP(64f),
});

}  // namespace

}  // namespace tzm_test
