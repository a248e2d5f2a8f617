// Hann, Hamming, Blackman, Bartlett and Kaiser windows: the bits of a restatement, one value at a time, which itself
// is held against the formulas.
#include <gtest/gtest.h>
#include <signal_tzm/generate.h>

#include <bit>
#include <cmath>

#include "support/compare.h"
#include "support/exact.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

constexpr double kTwoPi = 6.283185307179586;

template <class Sample>
constexpr bool kInteger = SampleOf<Sample>().kind <= Kind::k64s;
template <class Sample>
constexpr bool kDouble = SampleOf<Sample>().kind == Kind::k64f;

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

// The cosines of `n` indices: those below `body` by the seed and its rotation `lanes` indices on.
std::vector<double> Cosines(int lanes, int body, int n, double w) {
  const double turnC = std::cos(lanes * w), turnS = std::sin(lanes * w);
  std::vector<double> c, s;
  for (int i = 0; i < n; ++i) {
    if (i >= lanes && i < body) {
      const double c0 = c[static_cast<size_t>(i - lanes)], s0 = s[static_cast<size_t>(i - lanes)];
      c.push_back(std::fma(-s0, turnS, c0 * turnC));
      s.push_back(std::fma(c0, turnS, s0 * turnC));
    } else {
      const bool seed = lanes == 4 && i < body;
      c.push_back(seed ? Seed(i * w, 1) : std::cos(i * w));
      s.push_back(seed ? Seed(i * w, 0) : std::sin(i * w));
    }
  }
  return c;
}

double TableSine(int k) {
  k &= 63;
  return k == 32 ? 1.2246e-16 : static_cast<double>(sinl(3.14159265358979323846264338327950288L * k / 32));
}

// The cosine of x 64ths of a turn, from the table at n.
template <class T>
T TableCosine(T x, T n) {
  const T c1 = T(0.09817477042468103), c2 = T(-0.004817389940423465), c3 = T(-0.00015767166072981726), r = x - n;
  const int k = static_cast<int>(n);
  return std::fma(-(r * std::fma(r * r, c3, c1)), T(TableSine(k)), T(TableSine(16 - k)) * std::fma(r * r, c2, T(1)));
}

float Hamming(int i, int len) {
  const double s = 64.0 / (len - 1);
  if (len >= 10 && i < (((len - 6) / 2 - 2) & ~3) + 5) {
    const float x = static_cast<float>(i) * static_cast<float>(s);
    const float product = TableCosine(x, std::nearbyint(x)) * 0.46f;
    return 0.54f - product;
  }
  const double x = i * (s * 0.09817477042468103) * 10.185916357881302;
  const float value = static_cast<float>(TableCosine(x, static_cast<double>(std::trunc(static_cast<float>(x)))));
  return static_cast<float>(std::fma(-static_cast<double>(value), 0.46, 0.54));
}

// The series of I0(x) as a function of x/2.
template <class T>
T Series(T half) {
  T sum = 1, term = 1, last = 0;
  for (int k = 1; sizeof(T) == 4 ? k <= 32 : sum != last && sum == sum; ++k) {
    term = term * (half * half / static_cast<T>(k * k));
    last = sum;
    sum = sum + term;
  }
  return sum;
}
template <class T>
T Kaiser(int i, int len, T alpha) {
  const T n = static_cast<T>(len - 1), index = static_cast<T>(i);
  return Series(std::sqrt((n - index) * index) * alpha * T(0.5)) / Series(alpha * n * T(0.5) * T(0.5));
}

// The window of indices below len / 2, by the arithmetic of Sample, with the samples' type T.
template <class Sample, class T>
std::vector<T> Window(Shape shape, int len, double alpha) {
  const int lanes = kDouble<Sample> ? 2 : 4, half = len / 2, body = half - half % lanes;
  const double w = kTwoPi / (len - 1);
  const std::vector<double> cosines = Cosines(lanes, body, half, w);
  if (shape == kBlackmanOpt) {
    if (kDouble<Sample>) alpha = -0.25 / (1 + std::cos(w));
    else if (kInteger<Sample>) alpha = -0.5f / (1.0f + static_cast<float>(std::cos(w)));
    else alpha = -0.5 / (1 + std::cos(w));
  }
  std::vector<T> window;
  for (int i = 0; i < half; ++i) {
    const double c = cosines[static_cast<size_t>(i)];
    double value = 0;
    if (shape == kKaiser) {
      value = Kaiser(i, len, static_cast<T>(alpha));
    } else if (shape == kBartlett) {
      value = static_cast<T>(i) * (T(2) / static_cast<T>(len - 1));
    } else if (shape == kHamming) {
      value = kDouble<Sample> ? std::fma(-std::cos(i * w), 0.46, 0.54) : Hamming(i, len);
    } else if (shape == kBlackmanOpt && kDouble<Sample>) {
      const double cos2 = i < body ? std::fma(2.0, c * c, -1.0) : std::fma(2 * c, c, -1.0);
      value = std::fma(-alpha, cos2, std::fma(-c, 0.5, alpha + 0.5));
    } else {  // integers, in blocks, in binary32 throughout
      using Work = std::conditional_t<kInteger<Sample>, float, double>;
      const Work cw = static_cast<Work>(c), aw = static_cast<Work>(alpha);
      const Work rest = shape == kHann ? 0 : std::fma(-(cw * cw), aw, aw);
      if (i < body) value = std::fma(-cw, Work(0.5), Work(0.5)) + rest;
      else value = std::fma(-static_cast<double>(cw), 0.5, 0.5) + rest;
    }
    window.push_back(static_cast<T>(value));
  }
  return window;
}

// The function that the window is.
double Formula(Shape shape, int i, int len, double alpha) {
  const double x = kTwoPi * i / (len - 1), hann = 0.5 - 0.5 * std::cos(x);
  const auto blackman = [=](double a) { return (a + 1) / 2 - 0.5 * std::cos(x) - a / 2 * std::cos(2 * x); };
  switch (shape) {
    case kHann: return hann;
    case kHamming: return 0.08 + 0.92 * hann;
    case kBartlett: return 2.0 * i / (len - 1);
    case kBlackman: return blackman(alpha);
    case kBlackmanOpt: return blackman(-0.5 / (1 + std::cos(kTwoPi / (len - 1))));
    default: return Series(alpha * std::sqrt((len - 1.0 - i) * i) / 2) / Series(alpha * (len - 1) / 4);
  }
}

// A sample's part times a window value of type T, and an end of a Hamming window, which integers truncate.
template <class Part, class T>
Part Product(Part x, T w) {
  const T product = static_cast<T>(x) * w;
  if constexpr (std::is_integral_v<Part>) return RoundSaturate<Part>(product);
  else return product;
}
template <class Part>
Part HammingEnd(Part x, bool complex) {
  if (std::is_same_v<Part, float> && complex) return static_cast<Part>(static_cast<float>(x) * 0.08f);
  return static_cast<Part>(static_cast<double>(x) * 0.08000000000000002);
}

// Every length of a few blocks, and longer ones.
template <class Sample, class... Alpha>
void CheckBits(Shape shape, OrvaStatus (*call)(const Sample*, Sample*, int32_t, Alpha...),
               std::type_identity_t<Alpha>... given) {
  constexpr bool kComplex = SampleOf<Sample>().parts == 2;
  double alpha = kDouble<Sample> ? -0.16 : -0.16f;
  ((alpha = given), ...);
  const int shortest = shape == kBlackmanOpt ? 4 : shape == kKaiser ? 1 : 3;
  for (int len = shortest; len < 780; len += len < 50 ? 1 : len < 140 ? 7 : 127) {
    const auto window = Window<Sample, std::conditional_t<kDouble<Sample>, double, float>>(shape, len, alpha);
    for (int i = 0; i < len / 2; ++i)  // between its 64 entries the table of the Hamming window errs by up to 4e-6
      ASSERT_NEAR(window[static_cast<size_t>(i)], Formula(shape, i, len, alpha), kDouble<Sample> ? 1e-12 : 5e-6);
    for (Variety variety : {Variety::kModerate, kInteger<Sample> ? Variety::kWide : Variety::kSpecial}) {
      const auto src = RandomArray<Sample>(static_cast<size_t>(len), 1, variety);
      std::vector<Sample> expected = src;  // with the middle
      const auto part = [&](auto& x, size_t i) {
        x = shape == kHamming && i == 0 ? HammingEnd(x, kComplex) : Product(x, window[i]);
      };
      for (size_t i = 0; i < window.size(); ++i) {
        for (Sample* x : {&expected[i], &expected[src.size() - 1 - i]}) {
          if constexpr (kComplex) part(x->re, i), part(x->im, i);
          else part(*x, i);
        }
      }
      GuardedArray<Sample> from(src), to(src.size());
      ASSERT_EQ(call(from.data(), to.data(), len, given...), ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("shape " + std::to_string(shape), expected.data(), to.data(), src.size()));
    }
  }
}

#define CHECK_BITS(type)                                      \
  TEST(Window, Bits##type) {                                  \
    CheckBits(kHann, ORVAS_WinHann_##type);                   \
    CheckBits(kHamming, ORVAS_WinHamming_##type);             \
    CheckBits(kBartlett, ORVAS_WinBartlett_##type);           \
    CheckBits(kBlackman, ORVAS_WinBlackman_##type, 0.3f);     \
    CheckBits(kBlackman, ORVAS_WinBlackmanStd_##type);        \
    CheckBits(kBlackmanOpt, ORVAS_WinBlackmanOpt_##type);     \
    CheckBits(kKaiser, ORVAS_WinKaiser_##type, -0.09f);       \
    CheckBits(kKaiser, ORVAS_WinKaiser_##type, 1e-4f);        \
  }
CHECK_BITS(16s)
CHECK_BITS(16sc)
CHECK_BITS(32f)
CHECK_BITS(32fc)
CHECK_BITS(64f)
CHECK_BITS(64fc)

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

}  // namespace
}  // namespace tzm_test
