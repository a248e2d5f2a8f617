// What to time of the operations that work on a state object, or whose arrays differ in length: by name, a call for a
// length.
#include "states.h"

#include <signal_tzm.h>

#include <bit>
#include <cmath>
#include <memory>

#include "transform_call.h"

namespace tzm_bench {

namespace {

using namespace tzm_test;

// ---- Noise ----

template <class T, class State>
Make TimeNoise(OrvaStatus (*init)(State**, T, T, uint32_t),
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

// ---- Filters ----

constexpr int32_t kTaps = 64;

template <class State, class Tap, class Sample>
Make Time(auto make, auto run, OrvaStatus (*release)(State*), int64_t in, int64_t out) {
  return [=](int32_t len) {
    const auto taps = SharedArray<Tap>(kTaps);
    State* made = nullptr;
    make(taps->data(), len, &made);
    const std::shared_ptr<State> state(made, release);
    const auto src = SharedArray<Sample>(in * len), dst = SharedArray<Sample>(out * len);
    const auto delay = SharedArray<Sample>(kTaps);
    return Timed{[=] { return run(src->data(), dst->data(), len, state.get(), delay->data(), delay->data()); },
                 static_cast<int64_t>(sizeof(Sample)) * (in + out) * len};
  };
}

// Times design(taps, tapsLen, winType, doNormal, buffer) with the optimal Blackman window.
Make TimeDesign(auto design) {
  return [=](int32_t taps_len) {
    FIRGenState* made = nullptr;
    ORVAS_FIRGenInit_64f(taps_len, &made);
    const std::shared_ptr<FIRGenState> buffer(made, ORVAS_FIRGenRelease);
    const auto taps = SharedArray<Orva64f>(taps_len);
    return Timed{[=] { return design(taps->data(), taps_len, 1, 1, buffer.get()); }, 8 * int64_t{taps_len}};
  };
}

// ---- Resamplers ----

// From 44.1 to 48 kHz through 64 taps.
template <class Sample, class Init, class Run>
Timed TimeFactor(int32_t len, Init init, Run run) {
  ResamplePolyphaseState* made = nullptr;
  init(64, 512, 0.9f, 9, 0, &made);
  const std::shared_ptr<ResamplePolyphaseState> state(made, ORVAS_ResamplePolyphaseRelease_32f);
  const auto src = SharedArray<Sample>(len + 80), dst = SharedArray<Sample>(len * 160 / 147 + 2);
  return {[=] {
            double time = 40;
            int32_t count;
            return run(src->data(), len, dst->data(), 160 / 147., 1, &time, &count, state.get());
          },
          int64_t{len} * 307 / 147 * static_cast<int64_t>(sizeof(Sample))};
}
template <class Sample, class Init, class Run>
Timed TimeRates(int32_t len, Init init, Run run) {
  ResamplePolyphaseFixedState* made = nullptr;
  init(44100, 48000, 64, 0.9f, 9, &made);
  const std::shared_ptr<ResamplePolyphaseFixedState> state(made, ORVAS_ResamplePolyphaseFixedRelease_32f);
  const auto src = SharedArray<Sample>(len + 80), dst = SharedArray<Sample>(len * 160 / 147 + 2);
  return {[=] {
            int64_t time = 40 * 48000;
            int32_t count;
            return run(src->data(), len, dst->data(), 1, &time, &count, state.get());
          },
          int64_t{len} * 307 / 147 * static_cast<int64_t>(sizeof(Sample))};
}

// ---- Correlation ----

// Benchmarks: a kernel of a thousand samples, or as many lags, and a sequence of `len`.
constexpr int32_t kKernel = 1000;

template <class T>
Make TimeConvolution(auto init, auto run, auto release, int32_t kind) {
  return [=](int32_t len) {
    ConvState* made = nullptr;
    init(len, kKernel, kind, &made);
    const std::shared_ptr<ConvState> state(made, release);
    const auto src1 = SharedArray<T>(len), src2 = SharedArray<T>(kKernel), dst = SharedArray<T>(len + kKernel);
    return Timed{[=] { return run(src1->data(), len, src2->data(), kKernel, dst->data(), state.get()); },
                 2 * static_cast<int64_t>(sizeof(T)) * len};
  };
}

template <class T>
Make TimeAutocorrelation(auto init, auto run, auto release, int32_t kind) {
  return [=](int32_t len) {
    CorrState* made = nullptr;
    init(len, kKernel, kind, &made);
    const std::shared_ptr<CorrState> state(made, release);
    const auto src = SharedArray<T>(len), dst = SharedArray<T>(kKernel);
    return Timed{[=] { return run(src->data(), len, dst->data(), kKernel, 2, state.get()); },
                 static_cast<int64_t>(sizeof(T)) * len};
  };
}

template <class T>
Make TimeCrossCorrelation(auto init, auto run, auto release, int32_t kind) {
  return [=](int32_t len) {
    CorrState* made = nullptr;
    init(kKernel, len, len, 0, kind, &made);
    const std::shared_ptr<CorrState> state(made, release);
    const auto src1 = SharedArray<T>(kKernel), src2 = SharedArray<T>(len), dst = SharedArray<T>(len);
    return Timed{[=] {
      return run(src1->data(), kKernel, src2->data(), len, dst->data(), len, 0, 2, state.get());
    }, 2 * static_cast<int64_t>(sizeof(T)) * len};
  };
}

Timed TimeBiased(int32_t len) {
  const auto src1 = SharedArray<Orva32f>(len), src2 = SharedArray<Orva32f>(kKernel), dst = SharedArray<Orva32f>(len);
  return {[=] { return ORVAS_ConvBiased_32f(src1->data(), len, src2->data(), kKernel, dst->data(), len, 0); },
          int64_t{8} * len};
}

// Square matrices of about `len` elements.
template <class T>
Make TimeProduct(OrvaStatus (*run)(const T*, const T*, T*, int32_t, int32_t, int32_t)) {
  return [=](int32_t len) {
    const int32_t side = static_cast<int32_t>(std::sqrt(len));
    const auto a = SharedArray<T>(side * side), c = SharedArray<T>(side * side);
    return Timed{[=] { return run(a->data(), a->data(), c->data(), side, side, side); },
                 3 * static_cast<int64_t>(sizeof(T)) * side * side};
  };
}

// ---- Transforms ----

// Times a transform of `len` points; `parts` samples of T in, and as many out, for each.
template <class T>
Make TimeSpec(bool order, int parts, auto init, auto run, OrvaStatus (*release)(Spec*)) {
  return [=](int32_t len) {
    const int32_t size = order ? std::countr_zero(static_cast<uint32_t>(len)) : len;
    Spec* made = nullptr;
    InitSpec(init, size, ORVA_DIRECTION_FORWARD, ORVA_DIVIDE_NONE, &made);
    const std::shared_ptr<Spec> spec(made, release);
    const size_t n = static_cast<size_t>(len);
    const auto src = SharedArray<T>(2 * int64_t{len} + 2), dst = SharedArray<T>(2 * int64_t{len} + 2);
    return Timed{[=] { return RunSpec(run, src->data(), dst->data(), n, spec.get()); },
                 2 * parts * static_cast<int64_t>(sizeof(T) * n)};
  };
}

// As many bins as samples, all at frequency 0: the time does not depend on the values.
template <class T, class C>
Make TimeChirp(OrvaStatus (*run)(const T*, int32_t, C*, int32_t, C, C)) {
  return [=](int32_t len) {
    const auto src = SharedArray<T>(len);
    const auto dst = SharedArray<C>(len);
    return Timed{[=] { return run(src->data(), len, dst->data(), len, {1, 0}, {1, 0}); },
                 static_cast<int64_t>(sizeof(T) + sizeof(C)) * len};
  };
}

// Segments of 1024 samples, half of them shared.
template <class T, class R>
Make TimeWelch(OrvaStatus (*run)(const T*, const R*, R*, int32_t, int32_t, int32_t, double)) {
  return [=](int32_t len) {
    const auto src = SharedArray<T>(len);
    const auto window = SharedArray<R>(1024), dst = SharedArray<R>(1024);
    return Timed{[=] { return run(src->data(), window->data(), dst->data(), len, 0, 1024, 0.5); },
                 static_cast<int64_t>(sizeof(T)) * len};
  };
}

Timed TimeHilbert(int32_t len) {
  OrvaHilbertSpec* made = nullptr;
  ORVAS_HilbertInit_32f32fc(len, &made);
  const std::shared_ptr<OrvaHilbertSpec> spec(made, ORVAS_HilbertRelease_32f32fc);
  const auto src = SharedArray<Orva32f>(len);
  const auto dst = SharedArray<Orva32fc>(len);
  return {[=] { return ORVAS_Hilbert_32f32fc(src->data(), dst->data(), len, spec.get()); }, int64_t{12} * len};
}

#define NOISE(type)                                                                            \
  {"ORVAS_RandGauss_" #type, TimeNoise(ORVAS_RandGaussInit_##type, ORVAS_RandGauss_##type,     \
                                       ORVAS_RandGaussRelease_##type)}

// 64 taps on both routes; 64 taps down by 4.
#define ROUTE(name, kind, run, init, tap, sample)                                                                    \
  {"ORVAS_FIRSR" name, Time<FIRSRState, tap, sample>(                                                                \
      [](const tap* taps, int32_t len, FIRSRState** made) { ORVAS_FIRSRInit##init(taps, kTaps, len, kind, made); },  \
      ORVAS_FIRSR##run, ORVAS_FIRSRRelease##init, 1, 1)}
#define SINGLE_RATE(run, init, tap, sample) \
  ROUTE(#run, 1, run, init, tap, sample), ROUTE(#run "/fft", 2, run, init, tap, sample)
#define MULTI_RATE(run, init, tap, sample)                                                                           \
  {"ORVAS_FIRMR" #run, Time<FIRMRState, tap, sample>(                                                                \
      [](const tap* taps, int32_t, FIRMRState** made) { ORVAS_FIRMRInit##init(taps, kTaps, 1, 0, 4, 0, made); },     \
      ORVAS_FIRMR##run, ORVAS_FIRMRRelease##init, 4, 1)}
#define PAIRINGS(row)                                                                                          \
  row(_32f, _32f, Orva32f, Orva32f), row(_16s, _32f, Orva32f, Orva16s), row(_64f, _64f, Orva64f, Orva64f),     \
      row(_32fc, _32fc, Orva32fc, Orva32fc), row(_16sc, _32fc, Orva32fc, Orva16sc),                            \
      row(_64fc, _64fc, Orva64fc, Orva64fc), row(32f_32fc, 32f_32fc, Orva32f, Orva32fc)
#define ADAPTIVE(name, sample)                                                                                       \
  {"ORVAS_FIRLMS" #name, Time<FIRLMSState, Orva32f, sample>(                                                         \
      [](const Orva32f* taps, int32_t, FIRLMSState** made) { ORVAS_FIRLMSInit##name(made, taps, kTaps, nullptr, 0); }, \
      [](const sample* src, sample* dst, int32_t len, FIRLMSState* state, const sample*, sample*) {                  \
        return ORVAS_FIRLMS##name(state, src, src, dst, len, 0x1p-30f);                                              \
      },                                                                                                             \
      ORVAS_FIRLMSRelease##name, 2, 1)}
#define DESIGN(name, ...) \
  {"ORVAS_FIRGen" #name, TimeDesign([](auto... rest) { return ORVAS_FIRGen##name(__VA_ARGS__, rest...); })}
#define RESAMPLE(type)                                                                                            \
  {"ORVAS_ResamplePolyphase_" #type, [](int32_t len) {                                                            \
    return TimeFactor<Orva##type>(len, ORVAS_ResamplePolyphaseInit_##type, ORVAS_ResamplePolyphase_##type);       \
  }}, {"ORVAS_ResamplePolyphaseFixed_" #type, [](int32_t len) {                                                   \
    return TimeRates<Orva##type>(len, ORVAS_ResamplePolyphaseFixedInit_##type, ORVAS_ResamplePolyphaseFixed_##type); \
  }}
#define CONVOLUTION(type)                                                                                         \
  {"ORVAS_Convolve_" #type, TimeConvolution<Orva##type>(ORVAS_ConvInit_##type, ORVAS_Convolve_##type,             \
                                                        ORVAS_ConvRelease_##type, 2)}
#define CORRELATION(type)                                                                                         \
  {"ORVAS_AutoCorrNorm_" #type, TimeAutocorrelation<Orva##type>(                                                  \
      ORVAS_AutoCorrInit_##type, ORVAS_AutoCorrNorm_##type, ORVAS_CorrRelease_##type, 1)},                        \
      {"ORVAS_CrossCorrNorm_" #type, TimeCrossCorrelation<Orva##type>(                                            \
          ORVAS_CrossCorrInit_##type, ORVAS_CrossCorrNorm_##type, ORVAS_CorrRelease_##type, 1)}
#define SPEC(kind, type, order, parts)                                                                            \
  {"ORVAS_" #kind "_" #type, TimeSpec<Orva##type>(order, parts, ORVAS_##kind##Init_##type, ORVAS_##kind##_##type, \
                                                  ORVAS_##kind##Release_##type)}
#define SPECS(kind, order)                                                                                   \
  SPEC(kind##CToC, 32fc, order, 1), SPEC(kind##CToC, 64fc, order, 1), SPEC(kind##CToC, 32f, order, 2),       \
      SPEC(kind##CToC, 64f, order, 2), SPEC(kind##RToC, 32f, order, 1), SPEC(kind##RToC, 64f, order, 1),     \
      SPEC(kind##CToR, 32f, order, 1), SPEC(kind##CToR, 64f, order, 1)
#define PLAIN(time, name) {#name, time(name)}

}  // namespace

const std::map<std::string, Make>& AllStates() {
  static const std::map<std::string, Make> all = {
      NOISE(8u), NOISE(16s), NOISE(32f), NOISE(64f),
      PAIRINGS(SINGLE_RATE), PAIRINGS(MULTI_RATE), ADAPTIVE(_32f, Orva32f), ADAPTIVE(32f_16s, Orva16s),
      // 64 taps, spread over 64 times as many samples.
      {"ORVAS_FIRSparse_32f", Time<FIRSparseState, Orva32f, Orva32f>(
          [](const Orva32f* taps, int32_t, FIRSparseState** made) {
            std::vector<int32_t> positions;
            for (int32_t k = 0; k < kTaps; ++k) positions.push_back(kTaps * k + k % 7);
            ORVAS_FIRSparseInit_32f(taps, positions.data(), kTaps, nullptr, made);
          },
          [](const Orva32f* src, Orva32f* dst, int32_t len, FIRSparseState* state, const Orva32f*, Orva32f*) {
            return ORVAS_FIRSparse_32f(src, dst, len, state);
          },
          ORVAS_FIRSparseRelease_32f, 1, 1)},
      DESIGN(Lowpass_64f, 0.2), DESIGN(Highpass_64f, 0.2), DESIGN(Bandpass_64f, 0.1, 0.35),
      DESIGN(Bandstop_64f, 0.1, 0.35),
      RESAMPLE(16s), RESAMPLE(32f),
      CONVOLUTION(32f), CONVOLUTION(64f), CORRELATION(32f), CORRELATION(64f), CORRELATION(32fc), CORRELATION(64fc),
      {"ORVAS_ConvBiased_32f", TimeBiased},
      PLAIN(TimeProduct, ORVAS_MMul_32f), PLAIN(TimeProduct, ORVAS_MMul_64f), PLAIN(TimeProduct, ORVAS_MMul_32fc),
      PLAIN(TimeProduct, ORVAS_MMul_64fc),
      SPECS(FFT, true), SPECS(DFT, false),
      PLAIN(TimeChirp, ORVAS_CZT_32f), PLAIN(TimeChirp, ORVAS_CZT_64f), PLAIN(TimeChirp, ORVAS_CZT_32fc),
      PLAIN(TimeChirp, ORVAS_CZT_64fc),
      {"ORVAS_Hilbert_32f32fc", TimeHilbert},
      PLAIN(TimeWelch, ORVAS_Pwelch_32f), PLAIN(TimeWelch, ORVAS_Pwelch_64f), PLAIN(TimeWelch, ORVAS_Pwelch_32fc),
      PLAIN(TimeWelch, ORVAS_Pwelch_64fc)};
  return all;
}

}  // namespace tzm_bench
