// Transforms against their definitions in long double, and what a spec owes its caller.
#include <fftw3.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/transform.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <complex>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "support/testing.h"

namespace tzm_test::transform_test {

using Wide = std::complex<long double>;
constexpr long double kTwoPi = 6.283185307179586476925286766559L;

Wide Turn(long double cycles) {
  const long double angle = kTwoPi * (cycles - std::floor(cycles));
  return {std::cos(angle), std::sin(angle)};
}

std::vector<Wide> Widen(auto&& values) {
  std::vector<Wide> wide;
  for (const auto& v : values) {
    if constexpr (std::is_floating_point_v<std::decay_t<decltype(v)>>) wide.push_back({v, 0});
    else wide.push_back({v.re, v.im});
  }
  return wide;
}

// Bins 0, step, 2*step ... of the transform; sign -1 forward, +1 inverse; no normalisation.
std::vector<Wide> Definition(const std::vector<Wide>& x, int sign, size_t step = 1) {
  const size_t n = x.size();
  static std::vector<Wide> turns;  // kept for the next transform of the length
  std::vector<Wide> bins;
  if (turns.size() != n) turns.clear();
  for (size_t k = turns.size(); k < n; ++k) turns.push_back(Turn(static_cast<long double>(k) / n));
  for (size_t k = 0; k < n; k += step) {
    long double re = 0, im = 0;
    for (size_t i = 0; i < n; ++i) {
      const Wide turn(turns[i * k % n].real(), sign * turns[i * k % n].imag());
      re += x[i].real() * turn.real() - x[i].imag() * turn.imag();
      im += x[i].real() * turn.imag() + x[i].imag() * turn.real();
    }
    bins.push_back({re, im});
  }
  return bins;
}

// The power of the error of the values 0, step ... of `actual`, as far as there are any, beside their own.
double RelativeError(const std::vector<Wide>& expected, const std::vector<Wide>& actual, size_t step = 1) {
  long double error = 0, power = std::numeric_limits<long double>::min();
  for (size_t k = 0; k * step < actual.size(); ++k) {
    error += std::norm(expected[k] - actual[k * step]);
    power += std::norm(expected[k]);
  }
  return static_cast<double>(error / power);
}

template <class Real>
void ExpectNear(const std::vector<Wide>& expected, auto& actual, double epsilons) {
  EXPECT_LE(std::sqrt(RelativeError(expected, Widen(actual))), epsilons * std::numeric_limits<Real>::epsilon());
}

// ---- Specs ----

using Spec = OrvaTransformSpec;

enum Kind { kComplex, kSplit, kForward, kBack };  // the order of a family's lists
constexpr Kind kKinds[] = {kComplex, kSplit, kForward, kBack};

#define FAMILY(Name, bits, fftw)                                                                                     \
  struct Name##bits {                                                                                                \
    using Real = Orva##bits##f;                                                                                      \
    using C = Orva##bits##fc;                                                                                        \
    using Bins = fftw##_complex*;                                                                                    \
    static constexpr bool kByOrder = #Name[0] == 'F';                                                                \
    static constexpr std::array kInits{ORVAS_##Name##CToCInit_##bits##fc, ORVAS_##Name##CToCInit_##bits##f};         \
    static constexpr std::array kRealInits{ORVAS_##Name##RToCInit_##bits##f, ORVAS_##Name##CToRInit_##bits##f};      \
    static constexpr std::array kReleases{ORVAS_##Name##CToCRelease_##bits##fc, ORVAS_##Name##CToCRelease_##bits##f, \
                                          ORVAS_##Name##RToCRelease_##bits##f, ORVAS_##Name##CToRRelease_##bits##f}; \
    static constexpr auto kComplexRun = ORVAS_##Name##CToC_##bits##fc;                                               \
    static constexpr auto kInPlaceRun = ORVAS_FFTCToC_##bits##fc_I; /* for the DFT family too: a spec is a spec */   \
    static constexpr auto kSplitRun = ORVAS_##Name##CToC_##bits##f;                                                  \
    static constexpr auto kForwardRun = ORVAS_##Name##RToC_##bits##f;                                                \
    static constexpr auto kBackRun = ORVAS_##Name##CToR_##bits##f;                                                   \
    static constexpr auto kPlan = fftw##_plan_dft_1d;                                                                \
    static constexpr auto kPlanForward = fftw##_plan_dft_r2c_1d;                                                     \
    static constexpr auto kPlanBack = fftw##_plan_dft_c2r_1d;                                                        \
    static constexpr auto kExecute = fftw##_execute;                                                                 \
    static constexpr auto kDestroy = fftw##_destroy_plan;                                                            \
  };
FAMILY(FFT, 32, fftwf) FAMILY(FFT, 64, fftw) FAMILY(DFT, 32, fftwf) FAMILY(DFT, 64, fftw)

template <class F>
class Specs : public testing::Test {};
using Families = testing::Types<FFT32, FFT64, DFT32, DFT64>;
TYPED_TEST_SUITE(Specs, Families);

template <class F>
OrvaStatus Init(Kind kind, int32_t length, int32_t direction, int32_t flag, Spec** spec) {
  return kind < kForward ? F::kInits[kind](length, direction, flag, spec)
                         : F::kRealInits[kind - kForward](length, flag, spec);
}

// Reals of one source and of one destination array.
size_t Sources(Kind kind, size_t n) { return kind == kComplex ? 2 * n : kind == kBack ? n / 2 * 2 + 2 : n; }
size_t Results(Kind kind, size_t n) { return kind == kComplex ? 2 * n : kind == kForward ? n / 2 * 2 + 2 : n; }

// The samples of a transform, split ones as two halves of one array.
template <class F>
std::vector<typename F::Real> Samples(Kind kind, size_t n, size_t seed = 0) {
  auto samples = RandomArray<typename F::Real>((kind == kSplit ? 2 : 1) * Sources(kind, n), seed);
  if (kind == kBack) samples[1] = 0, samples[n % 2 == 0 ? n + 1 : 1] = 0;  // both ends of a spectrum are real
  return samples;
}

// Sources or results as complex numbers; all n sources, also of a half spectrum.
std::vector<Wide> Complexes(Kind kind, size_t n, const auto& values, bool sources) {
  std::vector<Wide> all;
  const bool half = kind == (sources ? kBack : kForward), reals = kind == (sources ? kForward : kBack);
  for (size_t i = 0; i < (half && !sources ? n / 2 + 1 : n); ++i) {
    const size_t at = half && i > n / 2 ? n - i : i;
    if (reals) all.push_back(values[i]);
    else if (kind == kSplit) all.push_back({values[i], values[n + i]});
    else all.push_back({values[2 * at], at == i ? values[2 * at + 1] : -values[2 * at + 1]});
  }
  return all;
}

// A spec, and arrays for each of its runs.
template <class F>
class Transform {
 public:
  using Real = typename F::Real;
  Transform(Kind kind, size_t n, int32_t direction = ORVA_DIRECTION_FORWARD, int32_t flag = ORVA_DIVIDE_NONE)
      : kind_(kind), n_(n) {
    const auto length = static_cast<int32_t>(F::kByOrder ? static_cast<size_t>(std::countr_zero(n)) : n);
    EXPECT_EQ(ORVA_STS_NO_ERR, Init<F>(kind, length, direction, flag, &spec_));
  }
  Transform(const Transform&) = delete;
  ~Transform() { EXPECT_EQ(ORVA_STS_NO_ERR, F::kReleases[kind_](spec_)); }

  using Reals = std::vector<Real>;
  Reals operator()(const Reals& samples, Place place = Place::kStart, bool inPlace = false) const {
    const size_t sources = Sources(kind_, n_), results = Results(kind_, n_), room = std::max(sources, results);
    GuardedArray<Real> in(inPlace ? room : sources, place), inIm(sources, place), out(results, place), outIm(n_, place);
    std::copy_n(samples.begin(), sources, in.data());
    if (kind_ == kSplit) std::copy_n(&samples[n_], n_, inIm.data());
    Real *const to = (inPlace ? in : out).data(), *const toIm = (inPlace ? inIm : outIm).data();
    using C = typename F::C;
    auto *const bins = reinterpret_cast<C*>(in.data()), *const toBins = reinterpret_cast<C*>(to);
    const OrvaStatus status = kind_ == kSplit     ? F::kSplitRun(in.data(), inIm.data(), to, toIm, spec_)
                              : kind_ == kForward ? F::kForwardRun(in.data(), to, spec_)
                              : kind_ == kBack    ? F::kBackRun(in.data(), to, spec_)
                              : inPlace           ? F::kInPlaceRun(bins, spec_)
                                                  : F::kComplexRun(bins, toBins, spec_);
    EXPECT_EQ(ORVA_STS_NO_ERR, status);
    EXPECT_TRUE(inPlace || kind_ == kBack || SameBits("source", samples.data(), in.data(), sources));
    std::vector<Real> result(to, to + results);
    if (kind_ == kSplit) result.insert(result.end(), toIm, toIm + n_);
    return result;
  }

 private:
  Kind kind_;
  size_t n_;
  Spec* spec_ = nullptr;
};

// FFTW's own transform; instead of split arrays, of interleaved ones, exchanged for an inverse transform.
template <class F>
std::vector<typename F::Real> Fftw(Kind kind, int sign, size_t n, const auto& samples) {
  std::unique_ptr<void, decltype(&fftw_free)> source(fftw_malloc(16 * n + 16), fftw_free);
  std::unique_ptr<void, decltype(&fftw_free)> result(fftw_malloc(16 * n + 16), fftw_free);
  auto *const in = static_cast<typename F::Real*>(source.get());
  auto *const out = static_cast<typename F::Real*>(result.get());
  auto *const bins = reinterpret_cast<typename F::Bins>(in), *const outBins = reinterpret_cast<typename F::Bins>(out);
  const int length = static_cast<int>(n);
  const bool exchanged = kind == kSplit && sign > 0;
  const auto plan = kind == kForward ? F::kPlanForward(length, in, outBins, FFTW_ESTIMATE)
                    : kind == kBack  ? F::kPlanBack(length, bins, out, FFTW_ESTIMATE)
                                     : F::kPlan(length, bins, outBins, exchanged ? -1 : sign, FFTW_ESTIMATE);
  for (size_t i = 0; i < samples.size(); ++i) in[kind == kSplit ? i % n * 2 + (i / n != exchanged) : i] = samples[i];
  F::kExecute(plan);
  F::kDestroy(plan);
  for (size_t i = 0; exchanged && i < n; ++i) std::swap(out[2 * i], out[2 * i + 1]);
  return {out, out + Results(kind == kSplit ? kComplex : kind, n)};
}

// Against the definition: not much worse than FFTW at one length, where chance decides too, over all by 15 % at most
// (its error differs by machine: on AArch64 ours has been 11 % above it); the same bits at any address and in place.
TYPED_TEST(Specs, Accuracy) {
  std::vector<size_t> lengths = {97, 128, 251, 256, 1009, 2187};
  ORVAS_SetFFTNumberThreads(1);
  for (size_t n = 1; n <= 64; ++n) lengths.push_back(n);
  if (TypeParam::kByOrder) std::erase_if(lengths, [](size_t n) { return !std::has_single_bit(n); });
  double allOurs[4] = {}, allFftw[4] = {};  // by kind
  for (size_t n : lengths) {
    const size_t step = n <= 64 ? 1 : n / 32;
    for (Kind kind : kKinds) {
      const std::string what = std::to_string(n) + " points, kind " + std::to_string(kind);
      double ours = 0, fftw = 0;
      for (size_t seed = 0; seed < 2 + 160 / n; ++seed) {
        const int sign = kind == kForward ? -1 : kind == kBack ? 1 : seed % 2 == 0 ? -1 : 1;
        const auto samples = Samples<TypeParam>(kind, n, seed);
        const auto expected = Definition(Complexes(kind, n, samples, true), sign, step);
        const Transform<TypeParam> transform(kind, n, -sign);
        const auto actual = transform(samples);
        ours += RelativeError(expected, Complexes(kind, n, actual, false), step);
        const auto other = Fftw<TypeParam>(kind, sign, n, samples);
        fftw += RelativeError(expected, Complexes(kind == kSplit ? kComplex : kind, n, other, false), step);
        for (bool inPlace : {false, true})
          for (Place place : {Place::kEnd, Place::kUnaligned}) {
            const auto moved = transform(samples, place, inPlace);
            EXPECT_TRUE(SameBits(what, actual.data(), moved.data(), actual.size()));
          }
      }
      EXPECT_LE(std::sqrt(ours), 1.6 * std::sqrt(fftw)) << what;
      allOurs[kind] += ours;
      allFftw[kind] += fftw;
    }
  }
  for (Kind kind : kKinds) EXPECT_LE(std::sqrt(allOurs[kind]), 1.15 * std::sqrt(allFftw[kind])) << kind;
}

// A flag multiplies by the divisor's reciprocal, rounded once, and does nothing else.
TYPED_TEST(Specs, Normalisation) {
  using Real = typename TypeParam::Real;
  for (size_t n : {2, 8, 64, 6, 31}) {
    if (TypeParam::kByOrder && !std::has_single_bit(n)) break;
    for (int which = 0; which < 12; ++which) {
      const Kind kind = kKinds[which / 3];
      const int32_t direction = which % 3 == 0 ? 1 : which % 3 == 1 ? 0 : -5;
      const bool forward = kind == kForward || (kind != kBack && direction > 0);
      const auto samples = Samples<TypeParam>(kind, n);
      const auto plain = Transform<TypeParam>(kind, n, direction)(samples);
      for (int32_t flag : {ORVA_DIVIDE_FORWARD, ORVA_DIVIDE_INVERSE, ORVA_DIVIDE_BY_ROOT}) {
        const Real root = static_cast<Real>(std::sqrt(static_cast<double>(n)));
        const int32_t own = forward ? ORVA_DIVIDE_FORWARD : ORVA_DIVIDE_INVERSE;
        const Real by = flag == ORVA_DIVIDE_BY_ROOT ? root : flag == own ? static_cast<Real>(n) : 1;
        auto expected = plain;
        for (Real& value : expected) value *= 1 / by;
        const auto actual = Transform<TypeParam>(kind, n, direction, flag)(samples, Place::kEnd);
        EXPECT_TRUE(SameBits("flag " + std::to_string(flag), expected.data(), actual.data(), actual.size())) << n;
      }
    }
  }
}

TYPED_TEST(Specs, Statuses) {
  using F = TypeParam;
  Spec *const untouched = reinterpret_cast<Spec*>(1), *spec = untouched;
  const auto bad = [](int32_t length) {
    return F::kByOrder ? ORVA_STS_FFT_ORDER_ERR : length < 1 ? ORVA_STS_SIZE_ERR : ORVA_STS_MEM_ALLOC_ERR;
  };
  for (Kind kind : kKinds) {
    for (int32_t length : {-1, INT32_MIN, 134217729}) EXPECT_EQ(bad(length), Init<F>(kind, length, 1, 9, &spec));
    EXPECT_EQ(F::kByOrder ? ORVA_STS_FFT_ORDER_ERR : ORVA_STS_FFT_FLAG_ERR, Init<F>(kind, 28, 1, 9, &spec));
    for (int32_t flag : {0, 5, -1}) EXPECT_EQ(ORVA_STS_FFT_FLAG_ERR, Init<F>(kind, 8, 1, flag, &spec));
    EXPECT_EQ(untouched, spec);
    EXPECT_EQ(2, ForEachFaultOfInit([=](auto** made) { return Init<F>(kind, 5, 1, 1, made); }, F::kReleases[kind]));
  }

  typename F::Real reals[4][18] = {};
  ASSERT_EQ(ORVA_STS_NO_ERR, Init<F>(kComplex, 3, 1, 1, &spec));
  struct Fields { void* plan; int32_t len; };  // with which a spec begins
  const Fields made = std::exchange(*reinterpret_cast<Fields*>(spec), {nullptr, 0});
  EXPECT_EQ(ORVA_STS_NULL_PTR_ERR, F::kForwardRun(reals[0], reals[1], spec));
  for (int32_t length : {0, -1, 134217729}) {
    *reinterpret_cast<Fields*>(spec) = {made.plan, length};
    EXPECT_EQ(bad(length), F::kForwardRun(reals[0], reals[1], spec));
  }
  F::kReleases[kComplex](spec);
}

// 16 threads run the same specs and, in between, others of more kinds and lengths than plans are kept.
TYPED_TEST(Specs, ManyThreads) {
  using F = TypeParam;
  constexpr size_t kCount = 4 * 14;
  const auto lengthOf = [](size_t c) -> size_t {
    if (c / 4 == 13) return F::kByOrder ? 32768 : 32767;
    return F::kByOrder ? size_t{1} << c / 4 : 7 * (c / 4) * (c / 4) + 1;
  };
  const auto make = [&](size_t c) { return std::make_unique<const Transform<F>>(kKinds[c % 4], lengthOf(c)); };
  std::unique_ptr<const Transform<F>> shared[kCount];
  std::vector<typename F::Real> samples[kCount], expected[kCount];
  for (size_t c = 0; c < kCount; ++c) {
    samples[c] = Samples<F>(kKinds[c % 4], lengthOf(c));
    ORVAS_SetFFTNumberThreads(1);
    const auto alone = (*make(c))(samples[c]);
    ORVAS_SetFFTNumberThreads(8);
    expected[c] = (*make(c))(samples[c]);
    EXPECT_EQ(alone, expected[c]) << c;
    if (c / 4 % 5 == 3) shared[c] = make(c);  // of every fifth length, the longest too
  }
  std::vector<std::thread> threads;
  for (size_t thread = 0; thread < 16; ++thread) threads.emplace_back([&, thread] {
    for (size_t round = 0; round < 2 * kCount; ++round) {
      const size_t c = (round * 9 + thread * 5) % kCount;
      const auto own = shared[c] == nullptr ? make(c) : nullptr;
      const Transform<F>& transform = own == nullptr ? *shared[c] : *own;
      EXPECT_EQ(expected[c], transform(samples[c], round % 3 == 0 ? Place::kUnaligned : Place::kStart)) << c;
    }
  });
  for (std::thread& thread : threads) thread.join();
  tzm_fftf_cleanup_threads();  // plans made before outlive it
  EXPECT_EQ(expected[kCount - 1], (*shared[kCount - 1])(samples[kCount - 1]));
  ORVAS_SetFFTNumberThreads(8);
}

TEST(Spectra, ThreadCount) {
  const char* const variable = "ORVA_FFT_THREAD_NUM";
  const auto got = [&](const char* text) {
    int32_t count = 0;
    if (text != nullptr) setenv(variable, text, 1);
    else unsetenv(variable);
    EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_GetFFTNumberThreads(&count));
    return count;
  };
  EXPECT_EQ(8, got(nullptr));
  for (const char* text : {"", "0", "-3", "abc", "4294967296"}) EXPECT_EQ(8, got(text));
  EXPECT_EQ(5, got(" 5x"));
  EXPECT_EQ(1, got("4294967297"));
  EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_SetFFTNumberThreads(4));
  for (int32_t bad : {0, -1}) EXPECT_EQ(ORVA_STS_BAD_ARG_ERR, ORVAS_SetFFTNumberThreads(bad));
  EXPECT_STREQ("4", getenv(variable));
}

// Deliberately three reals, of which a transform of one sample writes two: a signalling NaN shows the third.
TEST(Specs, AnFftOfOneSampleDividesThreeReals) {
  Spec* spec = nullptr;
  const Orva32f one = 1;
  Orva32f bins[3] = {7, 7, std::bit_cast<Orva32f>(0x7fa00000)};
  ASSERT_EQ(ORVAS_FFTRToCInit_32f(0, ORVA_DIVIDE_FORWARD, &spec), ORVA_STS_NO_ERR);
  EXPECT_EQ(ORVAS_FFTRToC_32f(&one, bins, spec), ORVA_STS_NO_ERR);
  EXPECT_EQ(std::bit_cast<uint32_t>(bins[2]), 0x7fe00000u);
  ORVAS_FFTRToCRelease_32f(spec);
}

// A spec holds one plan, whichever call runs it.
TEST(Specs, OfAnotherKindRunTheirPlan) {
  for (int32_t n : {1, 16, 100, 1009}) {
    Spec *complex, *real, *half, *split;
    ASSERT_EQ(ORVAS_DFTCToCInit_32fc(n, ORVA_DIRECTION_INVERSE, ORVA_DIVIDE_NONE, &complex), ORVA_STS_NO_ERR);
    ASSERT_EQ(ORVAS_DFTRToCInit_32f(n, ORVA_DIVIDE_NONE, &real), ORVA_STS_NO_ERR);
    ASSERT_EQ(ORVAS_DFTCToRInit_32f(n, ORVA_DIVIDE_NONE, &half), ORVA_STS_NO_ERR);
    ASSERT_EQ(ORVAS_DFTCToCInit_32f(n, ORVA_DIRECTION_FORWARD, ORVA_DIVIDE_NONE, &split), ORVA_STS_NO_ERR);
    OrvaStatus (*const runs[])(Orva32fc*, Orva32fc*, const Spec*) = {
        [](Orva32fc* x, Orva32fc* y, const Spec* s) { return ORVAS_DFTCToC_32fc(x, y, s); },
        [](Orva32fc* x, Orva32fc* y, const Spec* s) { return ORVAS_DFTRToC_32f(&x->re, &y->re, s); },
        [](Orva32fc* x, Orva32fc* y, const Spec* s) { return ORVAS_DFTCToR_32f(&x->re, &y->re, s); }};
    const auto result = [&](const Spec* spec, auto run) {
      auto src = RandomArray<Orva32fc>(n + 1, 5), dst = RandomArray<Orva32fc>(n + 1, 6);
      EXPECT_EQ(run(src.data(), dst.data(), spec), ORVA_STS_NO_ERR);
      return dst;
    };
    for (const auto& [spec, own] : {std::pair{complex, 0}, {real, 1}, {half, 2}, {split, 0}}) {
      const auto expected = result(spec, runs[own]);
      for (auto run : runs) {
        const auto actual = result(spec, run);
        EXPECT_TRUE(SameBits("kind " + std::to_string(own), expected.data(), actual.data(), actual.size())) << n;
      }
      EXPECT_EQ(ORVAS_DFTCToRRelease_32f(spec), ORVA_STS_NO_ERR);
    }
  }
}

// ---- Chirp-Z, Hilbert ----

TEST(Spectra, ChirpZ) {
  const auto powers = [](Wide z, size_t count) {
    std::vector<Wide> result = {1};
    while (result.size() < count) result.push_back(result.back() * z);
    return result;
  };
  const auto check = [&]<class S, class C>(OrvaStatus (*chirp)(const S*, int32_t, C*, int32_t, C, C)) {
    using Real = decltype(C::re);
    const C w = {Real(0.9976), Real(-0.0817)}, a = {Real(0.903), Real(0.425)};
    for (auto [srcLen, dstLen] : {std::pair{1, 1}, {1, 2}, {2, 1}, {7, 7}, {16, 3}, {3, 40}, {33, 32}}) {
      const auto n = static_cast<size_t>(srcLen), bins = static_cast<size_t>(dstLen);
      const auto src = RandomArray<S>(n, 5);
      const auto wPowers = powers({w.re, w.im}, n * bins), aPowers = powers(1.0L / Wide(a.re, a.im), n);
      std::vector<Wide> expected(bins);
      for (size_t k = 0; k < bins; ++k)
        for (size_t i = 0; i < n; ++i) expected[k] += Widen(src)[i] * aPowers[i] * wPowers[i * k];
      GuardedArray<C> dst(bins);
      EXPECT_EQ(ORVA_STS_NO_ERR, chirp(GuardedArray<S>(src).data(), srcLen, dst.data(), dstLen, w, a));
      ExpectNear<Real>(expected, dst, 300);
    }
    const S src[4] = {};
    C dst[4] = {{77, 0}};
    const int32_t most = INT32_MAX, limit = sizeof(Real) == 4 ? 0x8000000 : 0x4000000;  // of the transform
    for (auto [srcLen, dstLen] : {std::pair{0, most}, {most, 0}})
      EXPECT_EQ(ORVA_STS_SIZE_ERR, chirp(src, srcLen, dst, dstLen, w, a));
    for (auto [srcLen, dstLen] : {std::pair{most, most}, {0x3fffffff, 1}, {0x3ffffffe, 1}, {limit + 1, 1}})
      EXPECT_EQ(ORVA_STS_OVERFLOW_ERR, chirp(src, srcLen, dst, dstLen, w, a));
    EXPECT_EQ(ORVA_STS_MEM_ALLOC_ERR, WithoutMemory([&] { return chirp(src, limit, dst, 1, w, a); }));
    EXPECT_EQ(5, ForEachFault([&] {
      dst[0].re = 77;
      const OrvaStatus status = chirp(src, 4, dst, 4, w, a);
      EXPECT_EQ(status != ORVA_STS_NO_ERR, dst[0].re == 77);
      return status;
    }));
  };
  check(ORVAS_CZT_32f), check(ORVAS_CZT_64f), check(ORVAS_CZT_32fc), check(ORVAS_CZT_64fc);
}

TEST(Spectra, Hilbert) {
  OrvaHilbertSpec *const untouched = reinterpret_cast<OrvaHilbertSpec*>(1), *spec = untouched;
  for (int32_t len : {1, 2, 3, 4, 5, 16, 31, 64}) {
    const auto n = static_cast<size_t>(len);
    const auto src = RandomArray<Orva32f>(n, n);
    auto bins = Definition(Widen(src), -1);
    for (size_t k = 0; k < n; ++k) bins[k] *= (k == 0 || 2 * k == n ? 1.0L : 2 * k < n ? 2.0L : 0.0L) / len;
    ASSERT_EQ(ORVA_STS_NO_ERR, ORVAS_HilbertInit_32f32fc(len, &spec));
    GuardedArray<Orva32fc> dst(n);
    EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_Hilbert_32f32fc(GuardedArray<Orva32f>(src).data(), dst.data(), len, spec));
    ExpectNear<Orva32f>(Definition(bins, 1), dst, 4);
    EXPECT_EQ(ORVA_STS_LEN_MISMATCH_ERR, ORVAS_Hilbert_32f32fc(src.data(), dst.data(), len + 1, spec));
    EXPECT_EQ(ORVA_STS_SIZE_ERR, ORVAS_Hilbert_32f32fc(src.data(), dst.data(), 0, spec));
    EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_HilbertRelease_32f32fc(std::exchange(spec, untouched)));
  }
  EXPECT_EQ(ORVA_STS_SIZE_ERR, ORVAS_HilbertInit_32f32fc(0, &spec));
  for (int32_t len : {0x8000001, INT32_MAX}) EXPECT_EQ(ORVA_STS_MEM_ALLOC_ERR, ORVAS_HilbertInit_32f32fc(len, &spec));
  EXPECT_EQ(untouched, spec);
  const auto init = [](auto** made) { return ORVAS_HilbertInit_32f32fc(12, made); };
  EXPECT_EQ(3, ForEachFaultOfInit(init, ORVAS_HilbertRelease_32f32fc));
}

// ---- Welch ----

template <class Real, class S>
std::vector<Wide> PlainWelch(const std::vector<S>& src, const std::vector<Real>& window, size_t n, size_t step) {
  constexpr bool kReal = std::is_same_v<S, Real>;
  const size_t segments = (src.size() - (window.size() - step)) / step;
  std::vector<Wide> psd(kReal ? n / 2 + 1 : n);
  long double scale = 0;
  for (Real w : window) scale += static_cast<long double>(w) * w * segments * kTwoPi;
  for (size_t s = 0; s < segments; ++s) {
    std::vector<Wide> segment(n);
    for (size_t i = 0; i < window.size(); ++i)
      segment[i % n] += Widen(src)[s * step + i] * static_cast<long double>(window[i]);
    const auto bins = Definition(segment, -1);
    for (size_t k = 0; k < psd.size(); ++k)
      psd[k] += std::norm(bins[k]) / scale * (kReal && k >= 1 && k <= (n - 1) / 2 ? 2 : 1);
  }
  return psd;
}

TEST(Spectra, Welch) {
  const auto check = []<class S, class Real>(
      OrvaStatus (*welch)(const S*, const Real*, Real*, int32_t, int32_t, int32_t, double)) {
    const auto src = RandomArray<S>(150, 1);
    for (auto [winLen, nfft] : {std::pair{2, 0}, {3, -4}, {9, 4}, {16, 16}, {31, 0}, {64, 17}, {64, 1}})
      for (double overlap : {0.01, 0.5}) {
        const auto count = static_cast<size_t>(winLen);
        const auto step = static_cast<size_t>(winLen - std::ceil(winLen * overlap));
        const bool windowed = nfft != 0;
        const auto window = windowed ? RandomArray<Real>(count, 9) : std::vector<Real>(count, 1);
        const auto expected = PlainWelch(src, window, nfft > 0 ? static_cast<size_t>(nfft) : count, step);
        const GuardedArray<Real> weights(window);
        GuardedArray<Real> dst(expected.size());
        EXPECT_EQ(ORVA_STS_NO_ERR, welch(GuardedArray<S>(src).data(), windowed ? weights.data() : nullptr, dst.data(),
                                         150, nfft, winLen, overlap));
        ExpectNear<Real>(expected, dst, 20);
      }
    const Real zeros[8] = {};
    Real dst[20] = {77};
    struct { int32_t srcLen, nfft, winLen; double overlap; } refused[] = {
        {0, 0, 8, 0.5}, {20, 0, 0, 0.5}, {20, 0, 1, 0.5}, {7, 0, 8, 0.5}, {20, 9, 8, 0.5}, {0x40000000, 0, 8, 0.5},
        {0x3fffffff, 0, sizeof(Real) == 4 ? 0x10000000 : 0x8000000, 0.5}, {20, 0, 8, 0}, {20, 0, 8, -1},
        {20, 0, 8, 0.9501}, {20, 0, 8, INFINITY}, {20, 0, 8, NAN}, {20, 0, 10, 0.95} /* no sample would be new */};
    for (const auto& [srcLen, nfft, winLen, overlap] : refused)
      EXPECT_EQ(ORVA_STS_SIZE_ERR, welch(src.data(), nullptr, dst, srcLen, nfft, winLen, overlap)) << overlap;
    EXPECT_EQ(6, ForEachFault([&] {
      dst[0] = 77;
      const OrvaStatus status = welch(src.data(), nullptr, dst, 20, 3, 8, 0.5);
      EXPECT_EQ(status != ORVA_STS_NO_ERR, dst[0] == 77);
      return status;
    }));
    // A window of zeros leaves the sum, of zeros, undivided.
    EXPECT_EQ(ORVA_STS_NO_ERR, welch(src.data(), zeros, dst, 20, 0, 8, 0.5));
    EXPECT_EQ(0, dst[0]);
  };
  check(ORVAS_Pwelch_32f), check(ORVAS_Pwelch_64f), check(ORVAS_Pwelch_32fc), check(ORVAS_Pwelch_64fc);
}

}  // namespace tzm_test::transform_test
