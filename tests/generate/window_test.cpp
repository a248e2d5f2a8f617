// Hann, Hamming, Blackman, Bartlett and Kaiser windows against a restatement, one value at a time, and against
// their formulas.
#include <gtest/gtest.h>
#include <signal_tzm/generate.h>

#include <bit>
#include <cmath>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr long double kPi = 3.14159265358979323846264338327950288L;

template <class Sample>
constexpr bool kInteger = SampleOf<Sample>().kind <= Kind::k64s;
template <class Sample>
constexpr bool kDouble = SampleOf<Sample>().kind == Kind::k64f;
template <class Sample>
using Value = std::conditional_t<kDouble<Sample>, double, float>;

enum Shape { kHann, kHamming, kBartlett, kBlackman, kBlackmanOpt, kKaiser };

// Sine (quarter 0) or cosine (quarter 1) as the seed makes it.
double Seed(double x, int quarter) {
  if (quarter == 1 && x < 1.4901e-08) return 1;
  const double shift = 6755399441055744.0;
  const double q = std::fma(quarter == 1 ? x + 1.5707963267948966 : x, 0.3183098861837907, shift);
  const double n = q - shift - 0.5 * quarter;
  double r = std::fma(n, -3.141592653589793, x);
  r = std::fma(n, -1.224646799147353e-16, r);
  r = std::fma(n, -2.165713347843828e-32, r);
  double p = -7.37705809619668e-13;
  for (double next : {1.6048414030217128e-10, -2.5051890975380964e-08, 2.7557316777625683e-06,
                      -0.00019841269826540578, 0.008333333333291278, -0.1666666666666626})
    p = std::fma(p, r * r, next);
  const double y = std::fma(r * r * r, p, r);
  return std::bit_cast<uint64_t>(q) & 1 ? -y : y;
}

// The cosine of index i of a member with `lanes` indices a step: from lane i mod lanes after i / lanes turns.
std::vector<double> Cosines(int lanes, int n, double w) {
  std::vector<double> cosines;
  for (int i = 0; i < n; ++i) {
    const int lane = i % lanes;
    double c = lanes == 4 ? Seed(lane * w, 1) : lane == 0 ? 1 : std::cos(w);
    double s = lanes == 4 ? Seed(lane * w, 0) : lane == 0 ? 0 : std::sin(w);
    const double turnC = std::cos(lanes * w), turnS = std::sin(lanes * w);
    for (int turn = 0; turn < i / lanes; ++turn) {
      const double next = std::fma(-s, turnS, c * turnC);
      s = std::fma(c, turnS, s * turnC);
      c = next;
    }
    cosines.push_back(c);
  }
  return cosines;
}

double TableSine(int k) {
  static const auto table = [] {
    std::vector<double> sines;
    for (int i = 0; i < 64; ++i) sines.push_back(i == 32 ? 1.2246e-16 : static_cast<double>(sinl(2 * kPi * i / 64)));
    return sines;
  }();
  return table[static_cast<size_t>(k & 63)];
}

float HammingBlock(int i, float s) {
  const float c1 = std::bit_cast<float>(0x3DC90FDB), c2 = std::bit_cast<float>(0xBB9DDB32),
              c3 = std::bit_cast<float>(0xB92554AA);
  const float x = static_cast<float>(i) * s, n = std::nearbyint(x), r = x - n;
  const int k = static_cast<int>(n);
  const float sn = static_cast<float>(TableSine(k)), cs = static_cast<float>(TableSine(16 - k));
  const float value = std::fma(-(r * std::fma(r * r, c3, c1)), sn, cs * std::fma(r * r, c2, 1.0f));
  const float product = value * 0.46f;
  return 0.54f - product;
}

float HammingTail(int i, double s) {
  const double c1 = 0.09817477042468103, c2 = -0.004817389940423465, c3 = -0.00015767166072981726;
  const double x = i * (s * c1) * 10.185916357881302, n = std::trunc(static_cast<float>(x)), r = x - n;
  const int k = static_cast<int>(n);
  const float value = static_cast<float>(
      std::fma(-(r * std::fma(r * r, c3, c1)), TableSine(k), TableSine(16 - k) * std::fma(r * r, c2, 1.0)));
  return static_cast<float>(std::fma(-static_cast<double>(value), 0.46, 0.54));
}

// The series of I0(x) as a function of x/2.
float Bessel(float half) {
  float sum = 1, term = 1;
  for (int k = 1; k <= 32; ++k) {
    term = term * (half * half / static_cast<float>(k * k));
    sum = sum + term;
  }
  return sum;
}
double Bessel(double half) {
  double sum = 1, term = 1, last = 0;
  for (int k = 1; sum != last && sum == sum; ++k) {
    term = term * (half * half / (k * k));
    last = sum;
    sum = sum + term;
  }
  return sum;
}

template <class T>
T Kaiser(int i, int len, T alpha) {
  const T n = static_cast<T>(len - 1), index = static_cast<T>(i);
  return Bessel(std::sqrt((n - index) * index) * alpha * T(0.5)) / Bessel(alpha * n * T(0.5) * T(0.5));
}

// The window of indices below len / 2, by the arithmetic of Sample.
template <class Sample>
std::vector<Value<Sample>> Window(Shape shape, int len, double alpha) {
  using T = Value<Sample>;
  const int lanes = kDouble<Sample> ? 2 : 4, half = len / 2, body = half - half % lanes;
  const double w = kTwoPi / (len - 1);
  if (!kDouble<Sample>) alpha = static_cast<float>(alpha);
  std::vector<double> cosines = Cosines(lanes, body, w);
  for (int i = body; i < half; ++i) cosines.push_back(std::cos(i * w));
  if (shape == kBlackmanOpt) {
    if (kDouble<Sample>) alpha = -0.25 / (1 + std::cos(w));
    else if (kInteger<Sample>) alpha = -0.5f / (1.0f + static_cast<float>(std::cos(w)));
    else alpha = -0.5 / (1 + std::cos(w));
  }
  std::vector<T> window;
  for (int i = 0; i < half; ++i) {
    const double c = cosines[static_cast<size_t>(i)];
    const float cf = static_cast<float>(c), af = static_cast<float>(alpha);
    const double hann = std::fma(-c, 0.5, 0.5);
    double value = 0;
    if (shape == kKaiser) {
      value = Kaiser(i, len, static_cast<T>(alpha));
    } else if (shape == kBartlett) {
      value = static_cast<T>(i) * (T(2) / static_cast<T>(len - 1));
    } else if (shape == kHamming && kDouble<Sample>) {
      value = std::fma(-std::cos(i * w), 0.46, 0.54);
    } else if (shape == kHamming) {
      const bool block = len >= 10 && i < (((len - 6) / 2 - 2) & ~3) + 5;
      value = block ? HammingBlock(i, static_cast<float>(64.0 / (len - 1))) : HammingTail(i, 64.0 / (len - 1));
    } else if (kInteger<Sample> && i < body) {
      const float half_term = std::fma(-cf, 0.5f, 0.5f), rest = std::fma(-(cf * cf), af, af);
      value = shape == kHann ? half_term : half_term + rest;
    } else if (kInteger<Sample>) {
      value = std::fma(-static_cast<double>(cf), 0.5, 0.5);
      if (shape != kHann) value += std::fma(-(cf * cf), af, af);
    } else if (shape == kHann) {
      value = hann;
    } else if (shape == kBlackmanOpt && kDouble<Sample>) {
      const double cos2 = i < body ? std::fma(2.0, c * c, -1.0) : std::fma(2 * c, c, -1.0);
      value = std::fma(-alpha, cos2, std::fma(-c, 0.5, alpha + 0.5));
    } else {
      value = hann + std::fma(-(c * c), alpha, alpha);
    }
    window.push_back(static_cast<T>(value));
  }
  return window;
}

template <class Part, class T>
Part Product(Part x, T w) {
  const T product = static_cast<T>(x) * w;
  if constexpr (std::is_integral_v<Part>) return static_cast<Part>(std::clamp(std::nearbyint(product), -32768.f, 32767.f));
  else return product;
}

template <class Part>
Part HammingEnd(Part x, bool complex) {
  if (std::is_same_v<Part, float> && complex) return static_cast<Part>(static_cast<float>(x) * 0.08f);
  return static_cast<Part>(static_cast<double>(x) * 0.08000000000000002);
}

template <class Sample>
std::vector<Sample> Expected(const std::vector<Sample>& src, Shape shape, double alpha) {
  std::vector<Sample> dst = src;  // with the middle
  const auto window = Window<Sample>(shape, static_cast<int>(src.size()), alpha);
  const auto part = [&](auto& x, size_t i) {
    x = shape == kHamming && i == 0 ? HammingEnd(x, SampleOf<Sample>().parts == 2) : Product(x, window[i]);
  };
  for (size_t i = 0; i < window.size(); ++i) {
    for (Sample* x : {&dst[i], &dst[src.size() - 1 - i]}) {
      if constexpr (SampleOf<Sample>().parts == 2) part(x->re, i), part(x->im, i);
      else part(*x, i);
    }
  }
  return dst;
}

template <class Sample, class Call>
void CheckBits(const char* name, Shape shape, double alpha, Call call) {
  for (int len : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 30, 31, 32, 33, 36,
                  37, 47, 48, 49, 63, 64, 65, 66, 67, 71, 100, 127, 129, 514, 777}) {
    if (len < (shape == kBlackmanOpt ? 4 : shape == kKaiser ? 1 : 3)) continue;
    const uint64_t seed = static_cast<uint64_t>(len);
    for (Variety variety : {Variety::kModerate, kInteger<Sample> ? Variety::kWide : Variety::kSpecial}) {
      const auto src = RandomArray<Sample>(static_cast<size_t>(len), seed, variety);
      GuardedArray<Sample> from(src), to(src.size());
      ASSERT_EQ(call(from.data(), to.data(), len), ORVA_STS_NO_ERR) << name;
      ASSERT_TRUE(SameBits(name, Expected(src, shape, alpha).data(), to.data(), src.size(), seed)) << "length " << len;
    }
  }
}

#define CHECK_BITS(name, shape, type) CheckBits<Orva##type>(#name "_" #type, shape, -0.16, ORVAS_Win##name##_##type)
#define CHECK_BLACKMAN(type, alpha)                                                                   \
  CheckBits<Orva##type>("Blackman_" #type, kBlackman, alpha, [](auto* src, auto* dst, int32_t len) { \
    return ORVAS_WinBlackman_##type(src, dst, len, alpha);                                            \
  })
#define CHECK_KAISER(type, alpha)                                                                   \
  CheckBits<Orva##type>("Kaiser_" #type, kKaiser, alpha, [](auto* src, auto* dst, int32_t len) { \
    return ORVAS_WinKaiser_##type(src, dst, len, alpha);                                            \
  })
#define CHECK_ALL(type)                           \
  CHECK_BITS(Hann, kHann, type);                  \
  CHECK_BITS(Hamming, kHamming, type);            \
  CHECK_BITS(Bartlett, kBartlett, type);          \
  CHECK_BITS(BlackmanStd, kBlackman, type);       \
  CHECK_BITS(BlackmanOpt, kBlackmanOpt, type);    \
  CHECK_BLACKMAN(type, 0.3f);                     \
  CHECK_KAISER(type, 0.0f);                       \
  CHECK_KAISER(type, -0.09f);                     \
  CHECK_KAISER(type, 1e-4f)

TEST(Window, Bits16s) { CHECK_ALL(16s); }
TEST(Window, Bits16sc) { CHECK_ALL(16sc); }
TEST(Window, Bits32f) { CHECK_ALL(32f); }
TEST(Window, Bits32fc) { CHECK_ALL(32fc); }
TEST(Window, Bits64f) { CHECK_ALL(64f); }
TEST(Window, Bits64fc) { CHECK_ALL(64fc); }

// A window over ones is its formula, symmetric to the bit, within a few roundings and the drift of the rotation.
template <class T, class Call, class Formula>
void CheckFormula(Call call, Formula formula, long double bound) {
  for (int len : {4, 9, 64, 1001, 30000}) {
    const size_t n = static_cast<size_t>(len);
    std::vector<T> w(n, 1);
    ASSERT_EQ(call(w.data(), len), ORVA_STS_NO_ERR);
    for (size_t i = 0; i < n / 2; ++i) {
      ASSERT_EQ(w[i], w[n - 1 - i]) << "length " << len << " index " << i;
      if (i % (n / 200 + 1) != 0) continue;  // long double is slow on AArch64
      ASSERT_NEAR(static_cast<double>(formula(2 * kPi * static_cast<long double>(i) / (len - 1), len) - w[i]), 0,
                  static_cast<double>(bound)) << "length " << len << " index " << i;
    }
    if (n % 2 != 0) {
      ASSERT_EQ(w[n / 2], 1);
    }
  }
}

template <class T>
void CheckFormulas(auto hann, auto hamming, auto bartlett, auto blackman, auto optimum, long double bound) {
  CheckFormula<T>(hann, [](long double x, int) { return 0.5L - 0.5L * cosl(x); }, bound);
  CheckFormula<T>(hamming, [](long double x, int) { return 0.54L - 0.46L * cosl(x); }, bound);
  CheckFormula<T>(bartlett, [](long double x, int) { return x / kPi; }, bound);
  const auto any = [](long double x, long double alpha) { return (alpha + 1) / 2 - 0.5L * cosl(x) - alpha / 2 * cosl(2 * x); };
  CheckFormula<T>(blackman, [=](long double x, int) { return any(x, -0.16L); }, bound);
  CheckFormula<T>(optimum, [=](long double x, int len) { return any(x, -0.5L / (1 + cosl(2 * kPi / (len - 1)))); }, bound);
}

TEST(Window, Formulas) {
  CheckFormulas<Orva64f>(ORVAS_WinHann_64f_I, ORVAS_WinHamming_64f_I, ORVAS_WinBartlett_64f_I,
                         ORVAS_WinBlackmanStd_64f_I, ORVAS_WinBlackmanOpt_64f_I, 1e-12L);
  // Between its 64 entries the table's polynomial, of the third degree, errs by up to 5e-7 (4e-6 where n is truncated).
  CheckFormulas<Orva32f>(ORVAS_WinHann_32f_I, ORVAS_WinHamming_32f_I, ORVAS_WinBartlett_32f_I,
                         ORVAS_WinBlackmanStd_32f_I, ORVAS_WinBlackmanOpt_32f_I, 4e-6L);
}

// alpha N / 2 from next to nothing to the limits, against I0 in long double.
template <class T, class Call>
void CheckKaiser(Call call, std::vector<double> betas, long double bound) {
  const auto bessel = [](long double x) {
    long double sum = 1, term = 1;
    for (int k = 1; term > sum * 1e-20L; ++k) sum += term *= x * x / (4.0L * k * k);
    return sum;
  };
  for (double beta : betas) {
    const int len = 73, n = len - 1;
    std::vector<T> w(static_cast<size_t>(len), 1);
    const T alpha = static_cast<T>(beta * 2 / n);
    ASSERT_EQ(call(w.data(), len, alpha), ORVA_STS_NO_ERR);
    for (int i = 0; i < n / 2; i += 5) {
      const long double x = alpha * sqrtl(static_cast<long double>(n - i) * i);
      const T expected = static_cast<T>(bessel(x) / bessel(alpha * static_cast<long double>(n) / 2));
      ASSERT_NEAR(w[static_cast<size_t>(i)], expected, static_cast<double>(bound)) << beta << " index " << i;
    }
  }
}

TEST(Window, Kaiser) {
  CheckKaiser<Orva64f>(ORVAS_WinKaiser_64f_I, {1e-9, 0.1, 3, 8.6, 40, 307.9}, 1e-13L);
  CheckKaiser<Orva32f>(ORVAS_WinKaiser_32f_I, {1e-9, 0.1, 3, 8.6, 20}, 5e-6L);  // beta roundings or so
  CheckKaiser<Orva32f>(ORVAS_WinKaiser_32f_I, {37.9}, 1e-4L);  // 32 terms are not quite enough
}

TEST(Window, KaiserLimits) {
  Orva32f x[] = {2, 3};
  EXPECT_EQ(ORVAS_WinKaiser_32f_I(x, 2, std::nextafter(-76.0f, -77.0f)), ORVA_STS_KAISER_ALPHA_ERR);
  EXPECT_EQ(x[1], 3);
  EXPECT_EQ(ORVAS_WinKaiser_32f_I(x, 2, 76), ORVA_STS_NO_ERR);
  EXPECT_LT(x[0], 1e-14f);
  Orva64f y[] = {2, 3};
  EXPECT_EQ(ORVAS_WinKaiser_64f_I(y, 2, std::nextafter(616.0, 617.0)), ORVA_STS_KAISER_ALPHA_ERR);
  EXPECT_EQ(ORVAS_WinKaiser_64f_I(y, 2, -616), ORVA_STS_NO_ERR);
  EXPECT_EQ(ORVAS_WinKaiser_64f_I(y, 2, NAN), ORVA_STS_NO_ERR);
  EXPECT_TRUE(std::isnan(y[0]));
}

TEST(Window, EndsAndMiddle) {
  Orva16s x[] = {32767, -32768, 32767};
  ASSERT_EQ(ORVAS_WinHamming_16s_I(x, 3), ORVA_STS_NO_ERR);
  EXPECT_EQ(x[0], 2621);  // 2621.36
  EXPECT_EQ(x[1], -32768);
  EXPECT_EQ(x[2], 2621);
  Orva16s y[] = {-32767, 1, 19};  // 1.52 would round to 2
  ASSERT_EQ(ORVAS_WinHamming_16s_I(y, 3), ORVA_STS_NO_ERR);
  EXPECT_EQ(y[0], -2621);
  EXPECT_EQ(y[2], 1);
  for (auto call : {ORVAS_WinHann_64f_I, ORVAS_WinBartlett_64f_I, ORVAS_WinBlackmanStd_64f_I}) {
    Orva64f z[] = {5, 7, 9};
    ASSERT_EQ(call(z, 3), ORVA_STS_NO_ERR);
    EXPECT_NEAR(z[0], 0, 1e-15);
    EXPECT_EQ(z[1], 7);
    EXPECT_NEAR(z[2], 0, 1e-15);
  }
}

}  // namespace
}  // namespace tzm_test
