// Transforms against their definitions in long double, and what a spec owes its caller.
#include <signal_tzm/transform.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <string>

#include "support/arguments.h"
#include "support/compare.h"
#include "support/faults.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

using Wide = std::complex<long double>;
constexpr long double kTwoPi = 6.283185307179586476925286766559L;

Wide Turn(long double cycles) {
  const long double angle = kTwoPi * (cycles - std::floor(cycles));
  return {std::cos(angle), std::sin(angle)};
}

template <class C>
std::vector<Wide> Widen(const std::vector<C>& values) {
  std::vector<Wide> wide;
  for (const C& v : values) {
    if constexpr (std::is_floating_point_v<C>) wide.push_back({v, 0});
    else wide.push_back({v.re, v.im});
  }
  return wide;
}

// sign -1 forward, +1 inverse; no normalisation.
std::vector<Wide> Definition(const std::vector<Wide>& x, int sign) {
  const size_t n = x.size();
  std::vector<Wide> turns, result;
  for (size_t k = 0; k < n; ++k) turns.push_back(Turn(sign * static_cast<long double>(k) / static_cast<long double>(n)));
  for (size_t k = 0; k < n; ++k) {
    Wide sum = 0;
    for (size_t i = 0; i < n; ++i) sum += x[i] * turns[i * k % n];
    result.push_back(sum);
  }
  return result;
}

template <class C>
void ExpectNear(const std::vector<Wide>& expected, const C* actual, long double scale, const std::string& what) {
  using Real = decltype(actual->re);
  long double error = 0, power = 0;
  for (size_t i = 0; i < expected.size(); ++i) {
    error += std::norm(expected[i] * scale - Wide(actual[i].re, actual[i].im));
    power += std::norm(expected[i] * scale);
  }
  const long double bound = 4 * std::numeric_limits<Real>::epsilon();
  EXPECT_LE(error, bound * bound * power) << what;
}

template <class Real>
struct Names;
#define NAMES(Real, bits, C)                                                                      \
  template <>                                                                                     \
  struct Names<Real> {                                                                            \
    using Complex = C;                                                                            \
    static constexpr auto kFftInit = ORVAS_FFTCToCInit_##bits##fc;                                \
    static constexpr auto kDftInit = ORVAS_DFTCToCInit_##bits##fc;                                \
    static constexpr auto kFft = ORVAS_FFTCToC_##bits##fc, kDft = ORVAS_DFTCToC_##bits##fc;       \
    static constexpr auto kInPlace = ORVAS_FFTCToC_##bits##fc_I;                                  \
    static constexpr auto kRelease = ORVAS_DFTCToCRelease_##bits##fc;                             \
    static constexpr auto kSplitInit = ORVAS_DFTCToCInit_##bits##f;                               \
    static constexpr auto kSplit = ORVAS_DFTCToC_##bits##f;                                       \
    static constexpr auto kRealInit = ORVAS_DFTRToCInit_##bits##f;                                \
    static constexpr auto kReal = ORVAS_DFTRToC_##bits##f;                                        \
    static constexpr auto kBackInit = ORVAS_DFTCToRInit_##bits##f;                                \
    static constexpr auto kBack = ORVAS_DFTCToR_##bits##f;                                        \
    static constexpr auto kChirpReal = ORVAS_CZT_##bits##f;                                       \
    static constexpr auto kChirp = ORVAS_CZT_##bits##fc;                                          \
    static constexpr auto kGoertzelReal = ORVAS_Goertz_##bits##f;                                 \
    static constexpr auto kGoertzel = ORVAS_Goertz_##bits##fc;                                    \
    static constexpr auto kWelch = ORVAS_Pwelch_##bits##f;                                        \
    static constexpr auto kWelchComplex = ORVAS_Pwelch_##bits##fc;                                \
  };
NAMES(Orva32f, 32, Orva32fc)
NAMES(Orva64f, 64, Orva64fc)
#undef NAMES

template <class Real>
class Transform : public testing::Test {};
using Reals = testing::Types<Orva32f, Orva64f>;
TYPED_TEST_SUITE(Transform, Reals);

// What a flag divides by.
long double Divisor(int32_t flag, bool forward, size_t n) {
  if (flag == 3) return std::sqrt(static_cast<long double>(n));
  return flag == (forward ? 1 : 2) ? static_cast<long double>(n) : 1;
}

TYPED_TEST(Transform, Specs) {
  using Real = TypeParam;
  using N = Names<Real>;
  using C = typename N::Complex;
  for (size_t n : {1, 2, 3, 4, 5, 8, 12, 31, 32, 45, 64, 97, 128}) {
    const auto len = static_cast<int32_t>(n);
    const auto x = RandomArray<C>(n, n);
    const auto real = RandomArray<Real>(n, n + 1);
    for (int32_t flag = 1; flag <= 4; ++flag) {
      for (int32_t direction : {1, 0, -5}) {
        const bool forward = direction > 0;
        const auto expected = Definition(Widen(x), forward ? -1 : 1);
        const long double scale = 1 / Divisor(flag, forward, n);
        const std::string what = "length " + std::to_string(n) + " flag " + std::to_string(flag);
        OrvaTransformSpec* spec = nullptr;
        const GuardedArray<C> src(x);
        GuardedArray<C> dst(n);
        ASSERT_EQ(ORVA_STS_NO_ERR, N::kDftInit(len, direction, flag, &spec));
        EXPECT_EQ(ORVA_STS_NO_ERR, N::kDft(src.data(), dst.data(), spec));
        ExpectNear(expected, dst.data(), scale, what);
        EXPECT_EQ(ORVA_STS_NO_ERR, N::kRelease(spec));
        if ((n & (n - 1)) == 0) {
          ASSERT_EQ(ORVA_STS_NO_ERR, N::kFftInit(static_cast<int32_t>(std::log2(n)), direction, flag, &spec));
          EXPECT_EQ(ORVA_STS_NO_ERR, N::kFft(src.data(), dst.data(), spec));
          ExpectNear(expected, dst.data(), scale, what + " FFT");
          GuardedArray<C> srcDst(x, Place::kUnaligned);
          EXPECT_EQ(ORVA_STS_NO_ERR, N::kInPlace(srcDst.data(), spec));
          ExpectNear(expected, srcDst.data(), scale, what + " in place");
          EXPECT_EQ(ORVA_STS_NO_ERR, N::kRelease(spec));
        }

        GuardedArray<Real> re(n), im(n), outRe(n), outIm(n);
        for (size_t i = 0; i < n; ++i) re[i] = x[i].re, im[i] = x[i].im;
        ASSERT_EQ(ORVA_STS_NO_ERR, N::kSplitInit(len, direction, flag, &spec));
        EXPECT_EQ(ORVA_STS_NO_ERR, N::kSplit(re.data(), im.data(), outRe.data(), outIm.data(), spec));
        EXPECT_EQ(ORVA_STS_NO_ERR, N::kRelease(spec));
        std::vector<C> joined;
        for (size_t i = 0; i < n; ++i) joined.push_back({outRe[i], outIm[i]});
        ExpectNear(expected, joined.data(), scale, what + " split");
      }
      OrvaTransformSpec* spec = nullptr;
      auto expected = Definition(Widen(real), -1);
      const auto whole = expected;
      expected.resize(n / 2 + 1);
      const GuardedArray<Real> src(real);
      GuardedArray<Real> half(n / 2 * 2 + 2), back(n);
      ASSERT_EQ(ORVA_STS_NO_ERR, N::kRealInit(len, flag, &spec));
      EXPECT_EQ(ORVA_STS_NO_ERR, N::kReal(src.data(), half.data(), spec));
      EXPECT_EQ(ORVA_STS_NO_ERR, N::kRelease(spec));
      ExpectNear(expected, reinterpret_cast<C*>(half.data()), 1 / Divisor(flag, true, n), "RToC " + std::to_string(n));
      ASSERT_EQ(ORVA_STS_NO_ERR, N::kBackInit(len, flag, &spec));
      for (size_t k = 0; k <= n / 2; ++k) {
        half[2 * k] = static_cast<Real>(whole[k].real());
        half[2 * k + 1] = static_cast<Real>(whole[k].imag());
      }
      EXPECT_EQ(ORVA_STS_NO_ERR, N::kBack(half.data(), back.data(), spec));
      EXPECT_EQ(ORVA_STS_NO_ERR, N::kRelease(spec));
      const Real gain = static_cast<Real>(n / Divisor(flag, false, n));
      for (size_t i = 0; i < n; ++i)
        EXPECT_NEAR(real[i] * gain, back[i], 20 * std::numeric_limits<Real>::epsilon() * static_cast<double>(n));
    }
  }
}

TEST(Transform, SpecStatuses) {
  OrvaTransformSpec* const untouched = reinterpret_cast<OrvaTransformSpec*>(1);
  OrvaTransformSpec* spec = untouched;
  for (int32_t order : {28, -1, INT32_MIN}) EXPECT_EQ(ORVA_STS_FFT_ORDER_ERR, ORVAS_FFTCToCInit_32fc(order, 1, 9, &spec));
  EXPECT_EQ(ORVA_STS_SIZE_ERR, ORVAS_DFTCToCInit_32f(0, 1, 9, &spec));
  EXPECT_EQ(ORVA_STS_MEM_ALLOC_ERR, ORVAS_DFTRToCInit_64f(134217729, 9, &spec));
  for (int32_t flag : {0, 5, -1}) EXPECT_EQ(ORVA_STS_FFT_FLAG_ERR, ORVAS_DFTCToRInit_32f(8, flag, &spec));
  EXPECT_EQ(ORVA_STS_NULL_PTR_ERR, ORVAS_FFTRToCInit_32f(99, 9, nullptr));
  EXPECT_EQ(untouched, spec);
  EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_FFTCToRRelease_64f(nullptr));

  ASSERT_EQ(ORVA_STS_NO_ERR, ORVAS_FFTCToCInit_64f(3, 1, 1, &spec));
  Orva64f data[4][8] = {};
  CheckNulls(ORVAS_FFTCToC_64f, data[0], data[1], data[2], data[3], spec);
  EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_FFTCToCRelease_64f(spec));

  const auto faults = [](auto init, auto release) {
    return ForEachFault([=] {
      OrvaTransformSpec* made = nullptr;
      const OrvaStatus status = init(&made);
      EXPECT_EQ(status == ORVA_STS_NO_ERR, made != nullptr);
      if (made != nullptr) release(made);
      return status;
    });
  };
  EXPECT_EQ(2, faults([](auto** s) { return ORVAS_FFTCToCInit_32fc(4, 1, 1, s); }, ORVAS_FFTCToCRelease_32fc));
  EXPECT_EQ(2, faults([](auto** s) { return ORVAS_DFTCToCInit_64f(6, 1, 1, s); }, ORVAS_DFTCToCRelease_64f));
  EXPECT_EQ(2, faults([](auto** s) { return ORVAS_FFTRToCInit_64f(4, 1, s); }, ORVAS_FFTRToCRelease_64f));
  EXPECT_EQ(2, faults([](auto** s) { return ORVAS_DFTCToRInit_32f(5, 1, s); }, ORVAS_DFTCToRRelease_32f));
}

template <class T>
void ExpectShift(OrvaStatus (*shift)(const T*, T*, int32_t)) {
  for (size_t n = 1; n < 70; ++n) {
    const auto values = RandomArray<T>(n, n, Variety::kWide);
    auto expected = values;
    std::rotate(expected.begin(), expected.begin() + static_cast<long>((n + 1) / 2), expected.end());
    GuardedArray<T> src(values), dst(n);
    EXPECT_EQ(ORVA_STS_NO_ERR, shift(src.data(), dst.data(), static_cast<int32_t>(n)));
    EXPECT_TRUE(SameBits("FFTShift", expected.data(), dst.data(), n));
    EXPECT_EQ(ORVA_STS_NO_ERR, shift(src.data(), src.data(), static_cast<int32_t>(n)));
    EXPECT_TRUE(SameBits("FFTShift in place", expected.data(), src.data(), n));
  }
}

TEST(Transform, Shift) {
  ExpectShift<Orva32f>(ORVAS_FFTShift_32f);
  ExpectShift<Orva64f>(ORVAS_FFTShift_64f);
  ExpectShift<Orva32fc>(ORVAS_FFTShift_32fc);
  ExpectShift<Orva64fc>(ORVAS_FFTShift_64fc);
}

// ---- Chirp-Z ----

TYPED_TEST(Transform, ChirpZ) {
  using Real = TypeParam;
  using N = Names<Real>;
  using C = typename N::Complex;
  for (auto [srcLen, dstLen] : {std::pair{1, 1}, {1, 2}, {2, 1}, {7, 7}, {16, 3}, {3, 40}, {33, 32}}) {
    const Wide w = Turn(-0.013L) * 1.001L, a = Turn(0.07L) * 0.998L;
    const C wSample = {static_cast<Real>(w.real()), static_cast<Real>(w.imag())};
    const C aSample = {static_cast<Real>(a.real()), static_cast<Real>(a.imag())};
    const auto check = [&](const auto& src, auto member) {
      const auto wide = Widen(src);
      std::vector<Wide> expected;
      for (int k = 0; k < dstLen; ++k) {
        Wide sum = 0;
        for (int n = 0; n < srcLen; ++n)
          sum += wide[static_cast<size_t>(n)] *
                 std::pow(Wide(aSample.re, aSample.im), static_cast<long double>(-n)) *
                 std::pow(Wide(wSample.re, wSample.im), static_cast<long double>(n * k));
        expected.push_back(sum);
      }
      GuardedArray<C> dst(static_cast<size_t>(dstLen));
      ASSERT_EQ(ORVA_STS_NO_ERR, member(src.data(), srcLen, dst.data(), dstLen, wSample, aSample));
      long double error = 0, power = 1e-30L;
      for (size_t k = 0; k < expected.size(); ++k) {
        error += std::norm(expected[k] - Wide(dst[k].re, dst[k].im));
        power += std::norm(expected[k]);
      }
      EXPECT_LE(std::sqrt(error / power), 300 * std::numeric_limits<Real>::epsilon()) << srcLen << " to " << dstLen;
    };
    check(RandomArray<Real>(static_cast<size_t>(srcLen), 5), N::kChirpReal);
    check(RandomArray<C>(static_cast<size_t>(srcLen), 6), N::kChirp);
  }
  Real src[4] = {1, 2, 3, 4};
  C dst[4] = {};
  CheckNulls(N::kChirpReal, src, 4, dst, 4, {1, 0}, {1, 0});
  EXPECT_EQ(ORVA_STS_SIZE_ERR, N::kChirpReal(src, 0, dst, 4, {1, 0}, {1, 0}));
  EXPECT_EQ(ORVA_STS_SIZE_ERR, N::kChirpReal(src, 4, dst, 0, {1, 0}, {1, 0}));
  EXPECT_EQ(ORVA_STS_OVERFLOW_ERR, N::kChirpReal(src, INT32_MAX, dst, INT32_MAX, {1, 0}, {1, 0}));
  EXPECT_EQ(ORVA_STS_OVERFLOW_ERR, N::kChirpReal(src, 0x3ffffffe, dst, 1, {1, 0}, {1, 0}));
  EXPECT_EQ(5, ForEachFault([&] {
    dst[0].re = 77;
    const OrvaStatus status = N::kChirpReal(src, 4, dst, 4, {1, 0}, {1, 0});
    EXPECT_EQ(status != ORVA_STS_NO_ERR, dst[0].re == 77);
    return status;
  }));
}

// ---- Goertzel ----

// The told order, one lane at a time.
template <class C, class S>
C PlainGoertzel(const std::vector<S>& src, double frequency) {
  using Real = decltype(C::re);
  constexpr size_t kLanes = 16 / sizeof(Real);
  const double theta = 6.283185307179586 * frequency, s = std::sin(theta), c = std::cos(theta);
  const double c2 = std::fma(2 * c, c, -1.0), s2 = 2 * s * c, c3 = std::fma(4 * c, c, -3.0) * c,
               s3 = std::fma(-4 * s, s, 3.0) * s, c4 = std::fma(2 * c2, c2, -1.0), s4 = 2 * s2 * c2;
  const Real laneCos[] = {1, Real(c), Real(c2), Real(c3)}, laneSin[] = {0, Real(s), Real(s2), Real(s3)};
  const Real stepCos = Real(kLanes == 4 ? c4 : c2), stepSin = Real(kLanes == 4 ? s4 : s2);
  Real re[4], im[4];
  for (size_t lane = 0; lane < kLanes; ++lane) {
    const auto part = [&](size_t i) -> std::pair<Real, Real> {
      if (i >= src.size()) return {0, 0};
      if constexpr (std::is_same_v<S, Real>) return {src[i], 0};
      else return {src[i].re, src[i].im};
    };
    const size_t blocks = src.size() / kLanes;
    auto [a, b] = part(blocks * kLanes + lane);
    for (size_t block = blocks; block-- > 0;) {
      const auto [x, y] = part(block * kLanes + lane);
      const Real nextA = std::fma(b, stepSin, std::fma(a, stepCos, x));
      b = std::fma(-a, stepSin, std::is_same_v<S, Real> ? b * stepCos : std::fma(b, stepCos, y));
      a = nextA;
    }
    re[lane] = std::fma(b, laneSin[lane], a * laneCos[lane]);
    im[lane] = std::fma(-a, laneSin[lane], b * laneCos[lane]);
  }
  if (kLanes == 2) return {re[0] + re[1], im[0] + im[1]};
  return {(re[0] + re[1]) + (re[2] + re[3]), (im[0] + im[1]) + (im[2] + im[3])};
}

TYPED_TEST(Transform, Goertzel) {
  using Real = TypeParam;
  using N = Names<Real>;
  using C = typename N::Complex;
  const auto check = [](const auto& values, auto member, Real frequency) {
    using S = typename std::decay_t<decltype(values)>::value_type;
    const GuardedArray<S> src(values);
    C bin;
    EXPECT_EQ(ORVA_STS_NO_ERR, member(src.data(), static_cast<int32_t>(values.size()), &bin, frequency));
    const C expected = PlainGoertzel<C>(values, frequency);
    EXPECT_TRUE(SameBits("Goertz", &expected, &bin, 1)) << values.size();
    Wide sum = 0;
    const auto wide = Widen(values);
    for (size_t i = 0; i < wide.size(); ++i) sum += wide[i] * Turn(-static_cast<long double>(frequency) * static_cast<long double>(i));
    EXPECT_LE(std::abs(sum - Wide(bin.re, bin.im)), 60 * static_cast<long double>(values.size()) * std::numeric_limits<Real>::epsilon());
  };
  for (size_t n = 1; n < 40; ++n) {
    for (Real frequency : {Real(0), Real(0.123), Real(0.25), Real(0.9)}) {
      check(RandomArray<Real>(n, n), N::kGoertzelReal, frequency);
      check(RandomArray<C>(n, n), N::kGoertzel, frequency);
    }
  }
  Real x = 3;
  C z = {1, 2}, bin = {77, 77};
  for (Real bad : {Real(-0.1), Real(1.5)}) EXPECT_EQ(ORVA_STS_REL_FREQ_ERR, N::kGoertzelReal(&x, 1, &bin, bad));
  EXPECT_EQ(ORVA_STS_REL_FREQ_ERR, N::kGoertzelReal(&x, 1, &bin, 1));
  EXPECT_EQ(77, bin.re);
  EXPECT_EQ(sizeof(Real) == 4 ? ORVA_STS_NO_ERR : ORVA_STS_REL_FREQ_ERR, N::kGoertzel(&z, 1, &bin, 1));
  EXPECT_EQ(ORVA_STS_NO_ERR, N::kGoertzelReal(&x, 1, &bin, Real(-0.0)));
  EXPECT_EQ(3, bin.re);
  EXPECT_EQ(ORVA_STS_NO_ERR, N::kGoertzelReal(&x, 1, &bin, std::numeric_limits<Real>::quiet_NaN()));
}

// ---- Hilbert ----

TEST(Transform, Hilbert) {
  for (int32_t len : {1, 2, 3, 4, 5, 16, 31, 64}) {
    const auto n = static_cast<size_t>(len);
    const auto x = RandomArray<Orva32f>(n, n);
    auto bins = Definition(Widen(x), -1);
    for (size_t k = 1; k < n; ++k) bins[k] *= 2 * k < n ? 2 : 2 * k == n ? 1 : 0;
    OrvaHilbertSpec* spec = nullptr;
    ASSERT_EQ(ORVA_STS_NO_ERR, ORVAS_HilbertInit_32f32fc(len, &spec));
    const GuardedArray<Orva32f> src(x);
    GuardedArray<Orva32fc> dst(n);
    EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_Hilbert_32f32fc(src.data(), dst.data(), len, spec));
    ExpectNear(Definition(bins, 1), dst.data(), 1.0L / len, "Hilbert " + std::to_string(len));
    EXPECT_EQ(ORVA_STS_LEN_MISMATCH_ERR, ORVAS_Hilbert_32f32fc(src.data(), dst.data(), len + 1, spec));
    EXPECT_EQ(ORVA_STS_SIZE_ERR, ORVAS_Hilbert_32f32fc(src.data(), dst.data(), 0, spec));
    CheckNulls(ORVAS_Hilbert_32f32fc, src.data(), dst.data(), len, spec);
    EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_HilbertRelease_32f32fc(spec));
  }
  EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_HilbertRelease_32f32fc(nullptr));
  EXPECT_EQ(3, ForEachFault([] {
    OrvaHilbertSpec* spec = nullptr;
    const OrvaStatus status = ORVAS_HilbertInit_32f32fc(12, &spec);
    EXPECT_EQ(status == ORVA_STS_NO_ERR, spec != nullptr);
    ORVAS_HilbertRelease_32f32fc(spec);
    return status;
  }));
}

// ---- Welch ----

template <class Real, class S>
std::vector<long double> PlainWelch(const std::vector<S>& src, const std::vector<Real>& window, size_t n, size_t step) {
  const auto wide = Widen(src);
  const size_t winLen = window.size(), segments = (src.size() - (winLen - step)) / step;
  constexpr bool kReal = std::is_same_v<S, Real>;
  std::vector<long double> psd(kReal ? n / 2 + 1 : n);
  long double energy = 0;
  for (Real w : window) energy += static_cast<long double>(w) * w;
  for (size_t s = 0; s < segments; ++s) {
    std::vector<Wide> segment(n);
    for (size_t i = 0; i < winLen; ++i) segment[i % n] += wide[s * step + i] * static_cast<long double>(window[i]);
    const auto bins = Definition(segment, -1);
    for (size_t k = 0; k < psd.size(); ++k) psd[k] += std::norm(bins[k]);
  }
  for (size_t k = 0; k < psd.size(); ++k) {
    psd[k] /= static_cast<long double>(segments) * energy * kTwoPi;
    if (kReal && k >= 1 && k <= (n - 1) / 2) psd[k] *= 2;
  }
  return psd;
}

TYPED_TEST(Transform, Welch) {
  using Real = TypeParam;
  using N = Names<Real>;
  using C = typename N::Complex;
  const auto check = [](const auto& src, auto member, size_t winLen, int32_t nfft, double overlap, bool windowed) {
    auto window = RandomArray<Real>(winLen, 9);
    if (!windowed) std::fill(window.begin(), window.end(), Real(1));
    const size_t n = nfft > 0 ? static_cast<size_t>(nfft) : winLen;
    const auto noverlap = static_cast<size_t>(std::ceil(static_cast<double>(winLen) * overlap));
    const auto expected = PlainWelch(src, window, n, winLen - noverlap);
    const GuardedArray<Real> weights(window);
    GuardedArray<Real> dst(expected.size());
    ASSERT_EQ(ORVA_STS_NO_ERR, member(src.data(), windowed ? weights.data() : nullptr, dst.data(),
                                      static_cast<int32_t>(src.size()), nfft, static_cast<int32_t>(winLen), overlap));
    const long double peak = *std::max_element(expected.begin(), expected.end());
    for (size_t k = 0; k < expected.size(); ++k)
      EXPECT_NEAR(expected[k] / peak, dst[k] / peak, 60 * std::numeric_limits<Real>::epsilon()) << winLen << " " << nfft << " bin " << k;
  };
  for (auto [winLen, nfft] : {std::pair{2, 0}, {3, -4}, {9, 4}, {16, 16}, {31, 0}, {64, 17}, {64, 1}}) {
    for (double overlap : {0.01, 0.5}) {
      if (std::ceil(winLen * overlap) == winLen) continue;
      check(RandomArray<Real>(150, 1), N::kWelch, static_cast<size_t>(winLen), nfft, overlap, true);
      check(RandomArray<C>(150, 2), N::kWelchComplex, static_cast<size_t>(winLen), nfft, overlap, nfft != 0);
    }
  }

  Real src[20] = {1, 2, 3}, zeros[8] = {}, dst[20] = {77};
  CheckNulls(N::kWelch, src, nullptr, dst, 20, 0, 8, 0.5);
  const auto refused = [&](int32_t srcLen, int32_t nfft, int32_t winLen, double overlap) {
    return N::kWelch(src, nullptr, dst, srcLen, nfft, winLen, overlap) == ORVA_STS_SIZE_ERR;
  };
  EXPECT_TRUE(refused(0, 0, 8, 0.5));
  EXPECT_TRUE(refused(20, 0, 0, 0.5));
  for (double overlap : {0.0, -1.0, 0.9501, 2.0, double(INFINITY), double(NAN)}) EXPECT_TRUE(refused(20, 0, 8, overlap)) << overlap;
  EXPECT_TRUE(refused(20, 0, 10, 0.95));  // no sample would be new
  EXPECT_TRUE(refused(20, 0, 1, 0.5));
  EXPECT_TRUE(refused(7, 0, 8, 0.5));
  EXPECT_TRUE(refused(20, 9, 8, 0.5));
  EXPECT_TRUE(refused(0x40000000, 0, 8, 0.5));
  EXPECT_TRUE(refused(0x3fffffff, 0, 0x10000000, 0.5));
  EXPECT_EQ(77, dst[0]);
  // A window of zeros leaves the sum, of zeros, undivided.
  EXPECT_EQ(ORVA_STS_NO_ERR, N::kWelch(src, zeros, dst, 20, 0, 8, 0.5));
  EXPECT_EQ(0, dst[0]);
  EXPECT_EQ(6, ForEachFault([&] {
    dst[0] = 77;
    const OrvaStatus status = N::kWelch(src, nullptr, dst, 20, 3, 8, 0.5);
    EXPECT_EQ(status != ORVA_STS_NO_ERR, dst[0] == 77);
    return status;
  }));
}

// ---- Thread count ----

TEST(Transform, ThreadCount) {
  const char* const variable = "ORVA_FFT_THREAD_NUM";
  int32_t count = 0;
  const auto got = [&](const char* text) {
    if (text != nullptr) setenv(variable, text, 1);
    else unsetenv(variable);
    EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_GetFFTNumberThreads(&count));
    return count;
  };
  EXPECT_EQ(8, got(nullptr));
  for (const char* text : {"", "0", "-3", "abc", "4294967296"}) EXPECT_EQ(8, got(text)) << text;
  EXPECT_EQ(5, got(" 5x"));
  EXPECT_EQ(1, got("4294967297"));
  EXPECT_EQ(ORVA_STS_NO_ERR, ORVAS_SetFFTNumberThreads(4));
  EXPECT_STREQ("4", getenv(variable));
  for (int32_t bad : {0, -1}) EXPECT_EQ(ORVA_STS_BAD_ARG_ERR, ORVAS_SetFFTNumberThreads(bad));
  EXPECT_STREQ("4", getenv(variable));
  EXPECT_EQ(ORVA_STS_NULL_PTR_ERR, ORVAS_GetFFTNumberThreads(nullptr));
}

}  // namespace
}  // namespace tzm_test
