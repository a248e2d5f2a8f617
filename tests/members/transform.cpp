#include <signal_tzm/transform.h>

#include <bit>

#include "members.h"
#include "support/random.h"

namespace tzm_test {

namespace {

using Spec = OrvaTransformSpec;

Spec* Make(OrvaStatus (*init)(int32_t, int32_t, int32_t, Spec**), int32_t size) {
  Spec* spec = nullptr;
  init(size, 1, 4, &spec);
  return spec;
}
Spec* Make(OrvaStatus (*init)(int32_t, int32_t, Spec**), int32_t size) {
  Spec* spec = nullptr;
  init(size, 4, &spec);
  return spec;
}

template <class Src, class T>
OrvaStatus Run(OrvaStatus (*run)(Src*, T*, const Spec*), T* src, T* dst, size_t, const Spec* spec) {
  return run(src, dst, spec);
}
// Split arrays: two halves of each.
template <class T>
OrvaStatus Run(OrvaStatus (*run)(const T*, const T*, T*, T*, const Spec*), T* src, T* dst, size_t n, const Spec* spec) {
  return run(src, src + n, dst, dst + n, spec);
}

// Times a transform of `len` points; `parts` samples of T in, and as many out, for each.
template <class T>
std::function<Timed(int32_t)> TimeSpec(bool order, int parts, auto init, auto run, OrvaStatus (*release)(Spec*)) {
  return [=](int32_t len) {
    const std::shared_ptr<Spec> spec(Make(init, order ? std::countr_zero(static_cast<uint32_t>(len)) : len), release);
    const size_t n = static_cast<size_t>(len);
    const auto src = SharedArray<T>(2 * int64_t{len} + 2), dst = SharedArray<T>(2 * int64_t{len} + 2);
    return Timed{[=] { return Run(run, src->data(), dst->data(), n, spec.get()); },
                 2 * parts * static_cast<int64_t>(sizeof(T) * n)};
  };
}

#define SPEC(kind, type, order, parts)                                                                     \
  Member({"ORVAS_" #kind "_" #type, "ORVAS_" #kind "Init_" #type, "ORVAS_" #kind "Release_" #type})        \
      .Benchmark(TimeSpec<Orva##type>(order, parts, ORVAS_##kind##Init_##type, ORVAS_##kind##_##type,      \
                                      ORVAS_##kind##Release_##type))

// As many bins as samples, all at frequency 0: the time does not depend on the values.
template <class T, class C>
std::function<Timed(int32_t)> TimeChirp(OrvaStatus (*run)(const T*, int32_t, C*, int32_t, C, C)) {
  return [=](int32_t len) {
    const auto src = SharedArray<T>(len);
    const auto dst = SharedArray<C>(len);
    return Timed{[=] { return run(src->data(), len, dst->data(), len, {1, 0}, {1, 0}); },
                 static_cast<int64_t>(sizeof(T) + sizeof(C)) * len};
  };
}

// Segments of 1024 samples, half of them shared.
template <class T, class R>
std::function<Timed(int32_t)> TimeWelch(OrvaStatus (*run)(const T*, const R*, R*, int32_t, int32_t, int32_t, double)) {
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

const Rows rows("transform", {
    SPEC(FFTCToC, 32fc, true, 1),
    SPEC(FFTCToC, 64fc, true, 1),
    SPEC(FFTCToC, 32f, true, 2),
    SPEC(FFTCToC, 64f, true, 2),
    SPEC(FFTRToC, 32f, true, 1),
    SPEC(FFTRToC, 64f, true, 1),
    SPEC(FFTCToR, 32f, true, 1),
    SPEC(FFTCToR, 64f, true, 1),
    SPEC(DFTCToC, 32fc, false, 1),
    SPEC(DFTCToC, 64fc, false, 1),
    SPEC(DFTCToC, 32f, false, 2),
    SPEC(DFTCToC, 64f, false, 2),
    SPEC(DFTRToC, 32f, false, 1),
    SPEC(DFTRToC, 64f, false, 1),
    SPEC(DFTCToR, 32f, false, 1),
    SPEC(DFTCToR, 64f, false, 1),
    Member({"ORVAS_FFTCToC_32fc_I", "ORVAS_FFTCToC_64fc_I"}),

    MEMBER(ORVAS_FFTShift_32f),
    MEMBER(ORVAS_FFTShift_64f),
    MEMBER(ORVAS_FFTShift_32fc),
    MEMBER(ORVAS_FFTShift_64fc),

    Member({"ORVAS_CZT_32f"}).Benchmark(TimeChirp(ORVAS_CZT_32f)),
    Member({"ORVAS_CZT_64f"}).Benchmark(TimeChirp(ORVAS_CZT_64f)),
    Member({"ORVAS_CZT_32fc"}).Benchmark(TimeChirp(ORVAS_CZT_32fc)),
    Member({"ORVAS_CZT_64fc"}).Benchmark(TimeChirp(ORVAS_CZT_64fc)),

    MEMBER(ORVAS_Goertz_32f)
        .Constants({{0.1}, {0}, {0.75}})
        .BadConstants({-0.1}, ORVA_STS_REL_FREQ_ERR)
        .BadConstants({1}, ORVA_STS_REL_FREQ_ERR),
    MEMBER(ORVAS_Goertz_64f)
        .Constants({{0.1}, {0}, {0.75}})
        .BadConstants({-0.1}, ORVA_STS_REL_FREQ_ERR)
        .BadConstants({1}, ORVA_STS_REL_FREQ_ERR),
    MEMBER(ORVAS_Goertz_32fc)
        .Constants({{0.1}, {0}, {1}})
        .BadConstants({-0.1}, ORVA_STS_REL_FREQ_ERR)
        .BadConstants({1.0001}, ORVA_STS_REL_FREQ_ERR),
    MEMBER(ORVAS_Goertz_64fc)
        .Constants({{0.1}, {0}, {0.75}})
        .BadConstants({-0.1}, ORVA_STS_REL_FREQ_ERR)
        .BadConstants({1}, ORVA_STS_REL_FREQ_ERR),

    Member({"ORVAS_Hilbert_32f32fc", "ORVAS_HilbertInit_32f32fc", "ORVAS_HilbertRelease_32f32fc"})
        .Benchmark(TimeHilbert),

    Member({"ORVAS_Pwelch_32f"}).Benchmark(TimeWelch(ORVAS_Pwelch_32f)),
    Member({"ORVAS_Pwelch_64f"}).Benchmark(TimeWelch(ORVAS_Pwelch_64f)),
    Member({"ORVAS_Pwelch_32fc"}).Benchmark(TimeWelch(ORVAS_Pwelch_32fc)),
    Member({"ORVAS_Pwelch_64fc"}).Benchmark(TimeWelch(ORVAS_Pwelch_64fc)),
});
#undef SPEC

}  // namespace

}  // namespace tzm_test
