// Transforms and what is built on them: what the digest runs; shifts and Goertzel bins by their oracles.
#include <signal_tzm/transform.h>

#include <algorithm>
#include <array>
#include <bit>
#include <complex>

#include "bench/transform_call.h"
#include "members.h"

namespace tzm_test::transform_rows {

using tzm_bench::InitSpec, tzm_bench::RunSpec, tzm_bench::Spec;

// Both directions where there are two: powers of two, or all kinds of factors, up to what takes threads.
template <class Src, class... P>
void Specs(Digest& digest, bool order, OrvaStatus (*run)(Src*, P...), auto init, auto release) {
  using T = std::remove_const_t<Src>;
  for (int32_t len : {1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 4096, 65536, 3, 6, 15, 17, 31, 45, 60, 67, 100, 105,
                      179, 257, 360, 729, 1000, 1009, 1155, 1920, 4410, 10007, 48000}) {
    if (order && !std::has_single_bit(static_cast<uint32_t>(len))) break;
    for (int32_t direction : {ORVA_DIRECTION_FORWARD, ORVA_DIRECTION_INVERSE}) {
      const size_t n = static_cast<size_t>(len);
      const int32_t size = order ? std::countr_zero(static_cast<uint32_t>(len)) : len;
      Spec* spec = nullptr;
      digest.Call([&] { return InitSpec(init, size, direction, ORVA_DIVIDE_NONE, &spec); });
      auto src = RandomArray<T>(2 * n + 2, n);
      std::vector<T> dst(2 * n + 2);
      digest.Call([&] { return RunSpec(run, src.data(), dst.data(), n, spec); });
      digest.Call(release, spec);
      digest.Add(dst.data(), dst.size());
    }
  }
}

void ByOrder(Digest& digest, auto... operations) { Specs(digest, true, operations...); }
void ByLength(Digest& digest, auto... operations) { Specs(digest, false, operations...); }

template <class C>
void InPlace(Digest& digest, OrvaStatus (*run)(C*, const Spec*), auto init, auto release) {
  for (int32_t order : {0, 3, 6, 11}) {
    auto data = RandomArray<C>(size_t{1} << order, 1);
    Spec* spec = nullptr;
    digest.Call(init, order, 1, 3, &spec);
    digest.Call(run, data.data(), spec);
    digest.Call(release, spec);
    digest.Add(data.data(), data.size());
  }
}

template <class T, class C>
void Chirp(Digest& digest, OrvaStatus (*run)(const T*, int32_t, C*, int32_t, C, C)) {
  using Real = decltype(C::re);
  for (Variety variety : {Variety::kModerate, Variety::kSpecial})
    for (auto [len, bins] : {std::array{1, 1}, {7, 30}, {100, 57}, {1000, 900}}) {
      const auto src = RandomArray<T>(static_cast<size_t>(len), 1, variety);
      std::vector<C> dst(static_cast<size_t>(bins));
      digest.Call(run, src.data(), len, dst.data(), bins, C{Real(0.9976), Real(-0.0817)}, C{Real(1.003), Real(0.1)});
      digest.Add(dst.data(), dst.size());
    }
}

void Hilbert(Digest& digest, auto run, auto init, auto release) {
  for (int32_t len : {1, 2, 5, 64, 100, 679, 4096}) {
    const auto src = RandomArray<Orva32f>(static_cast<size_t>(len), 1);
    std::vector<Orva32fc> dst(src.size());
    OrvaHilbertSpec* spec = nullptr;
    digest.Call(init, len, &spec);
    digest.Call(run, src.data(), dst.data(), len, spec);
    digest.Call(release, spec);
    digest.Add(dst.data(), dst.size());
  }
}

// Whole segments, and segments folded onto a shorter transform.
template <class T, class R>
void Welch(Digest& digest, OrvaStatus (*run)(const T*, const R*, R*, int32_t, int32_t, int32_t, double)) {
  const auto src = RandomArray<T>(3000, 1);
  const auto window = RandomArray<R>(500, 2);
  for (int32_t nfft : {0, 16, 77, 100, 499})
    for (const R* weights : {window.data(), static_cast<const R*>(nullptr)}) {
      std::vector<R> dst(500);
      digest.Call(run, src.data(), weights, dst.data(), 3000, nfft, 500, 0.4);
      digest.Add(dst.data(), dst.size());
    }
}

const auto rotated = []<class T>(std::vector<T> src, At) {
  std::rotate(src.begin(), src.begin() + static_cast<ptrdiff_t>((src.size() + 1) / 2), src.end());
  return src;
};

// One bin in the order of the contract, one lane at a time; NaN if moderate samples give another sum than the formula.
const auto goertzel = []<class S, class Real>(const std::vector<S>& src, Real frequency, At) {
  using C = std::conditional_t<sizeof(Real) == 4, Orva32fc, Orva64fc>;
  constexpr size_t kLanes = 16 / sizeof(Real);
  constexpr bool kComplex = std::is_same_v<S, C>;
  const double theta = 6.283185307179586 * frequency, s = std::sin(theta), c = std::cos(theta);
  const double c2 = std::fma(2 * c, c, -1.0), s2 = 2 * s * c, c3 = std::fma(4 * c, c, -3.0) * c,
               s3 = std::fma(-4 * s, s, 3.0) * s, c4 = std::fma(2 * c2, c2, -1.0), s4 = 2 * s2 * c2;
  const Real laneCos[] = {1, Real(c), Real(c2), Real(c3)}, laneSin[] = {0, Real(s), Real(s2), Real(s3)};
  const Real stepCos = Real(kLanes == 4 ? c4 : c2), stepSin = Real(kLanes == 4 ? s4 : s2);
  const auto at = [&](size_t i) -> C {
    if constexpr (kComplex) return i < src.size() ? src[i] : C{0, 0};
    else return {i < src.size() ? src[i] : 0, 0};
  };
  C lanes[4];
  for (size_t lane = 0; lane < kLanes; ++lane) {
    size_t i = src.size() / kLanes * kLanes + lane;
    C z = at(i);
    while (i >= kLanes) {
      const C x = at(i -= kLanes);
      z = {std::fma(z.im, stepSin, std::fma(z.re, stepCos, x.re)),
           std::fma(-z.re, stepSin, kComplex ? std::fma(z.im, stepCos, x.im) : z.im * stepCos)};
    }
    lanes[lane] = {std::fma(z.im, laneSin[lane], z.re * laneCos[lane]),
                   std::fma(-z.re, laneSin[lane], z.im * laneCos[lane])};
  }
  const auto sum = [](C a, C b) { return C{a.re + b.re, a.im + b.im}; };
  const C bin = kLanes == 2 ? sum(lanes[0], lanes[1]) : sum(sum(lanes[0], lanes[1]), sum(lanes[2], lanes[3]));
  std::complex<double> exact = 0;
  double most = 0;
  for (size_t i = 0; i < src.size(); ++i) {
    const std::complex<double> x(at(i).re, at(i).im);
    exact += x * std::polar(1.0, -theta * static_cast<double>(i));
    most = std::max(most, std::abs(x));
  }
  const double bound = 60 * std::numeric_limits<Real>::epsilon() * static_cast<double>(src.size()) * most;
  return most <= 8 && std::abs(exact - std::complex<double>(bin.re, bin.im)) > bound ? C{NAN, NAN} : bin;
};
const auto kFrequencies = []<class S>(S, auto run) {
  for (size_t n = 1; n < 40; ++n)
    for (double frequency : {0.0, -0.0, 0.123, 0.25, 0.9, double(NAN)})
      run(Case(RandomArray<S>(n, n)).With({frequency}));
};

void ThreadCount(Digest& digest, auto get, auto set) {
  for (int32_t count : {3, 0, -1, 1, 8}) {
    int32_t threads = 0;
    digest.Call(set, count);
    digest.Call(get, &threads);
    digest.Add(&threads, 1);
  }
}

#define SPEC(run, kind, type) \
  SCENARIO(run, ORVAS_##kind##_##type, ORVAS_##kind##Init_##type, ORVAS_##kind##Release_##type)
#define SPECS(run, kind)                                                                                            \
  SPEC(run, kind##CToC, 32fc), SPEC(run, kind##CToC, 64fc), SPEC(run, kind##CToC, 32f), SPEC(run, kind##CToC, 64f), \
      SPEC(run, kind##RToC, 32f), SPEC(run, kind##RToC, 64f), SPEC(run, kind##CToR, 32f), SPEC(run, kind##CToR, 64f)

const Rows rows("transform", {
    SPECS(ByOrder, FFT), SPECS(ByLength, DFT),
    Member("ORVAS_FFTCToC_32fc_I, ORVAS_FFTCToC_64fc_I", [](Digest& digest) {
      InPlace(digest, ORVAS_FFTCToC_32fc_I, ORVAS_FFTCToCInit_32fc, ORVAS_FFTCToCRelease_32fc);
      InPlace(digest, ORVAS_FFTCToC_64fc_I, ORVAS_FFTCToCInit_64fc, ORVAS_FFTCToCRelease_64fc);
    }),

    SCENARIO(Chirp, ORVAS_CZT_32f), SCENARIO(Chirp, ORVAS_CZT_64f),
    SCENARIO(Chirp, ORVAS_CZT_32fc), SCENARIO(Chirp, ORVAS_CZT_64fc),

    MEMBERS(ORVAS_FFTShift_32f, ORVAS_FFTShift_64f, ORVAS_FFTShift_32fc, ORVAS_FFTShift_64fc).Gives(rotated),
    MEMBERS(ORVAS_Goertz_32f, ORVAS_Goertz_64f, ORVAS_Goertz_64fc).Gives(goertzel).On(kFrequencies)
        .Constants({{0.1}, {0}, {0.75}}).BadConstants({{-0.1}, {1}}, ORVA_STS_REL_FREQ_ERR),
    MEMBERS(ORVAS_Goertz_32fc).Gives(goertzel).On(kFrequencies)
        .Constants({{0.1}, {0}, {1}}).BadConstants({{-0.1}, {1.0001}}, ORVA_STS_REL_FREQ_ERR),

    SCENARIO(ThreadCount, ORVAS_GetFFTNumberThreads, ORVAS_SetFFTNumberThreads),
    SCENARIO(Hilbert, ORVAS_Hilbert_32f32fc, ORVAS_HilbertInit_32f32fc, ORVAS_HilbertRelease_32f32fc),

    SCENARIO(Welch, ORVAS_Pwelch_32f), SCENARIO(Welch, ORVAS_Pwelch_64f),
    SCENARIO(Welch, ORVAS_Pwelch_32fc), SCENARIO(Welch, ORVAS_Pwelch_64fc),
});

}  // namespace tzm_test::transform_rows
