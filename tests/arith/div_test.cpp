// Quotients against exact ones in wide integers, or against the contract's own floating steps.
#include <signal_tzm/arith.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

#include "support/compare.h"
#include "support/random.h"

namespace tzm_test {
namespace {

// A scale, and log2 of it truncated toward zero.
constexpr struct { double scale; int exponent; } kScales[] = {
    {1, 0}, {1.9, 0}, {3, 1}, {0.3, -1}, {128, 7}, {0x1p-7, -7}, {0x1p-16, -16}, {0x1p17, 17}, {0x1p-31, -31},
    {0x1p40, 40}, {0x1p-70, -70}, {0x1p-1074, -1074}, {0x1p1023, 1023}};

using Wide = __int128;

template <class T>
T Saturate(Wide x) {
  using Limits = std::numeric_limits<T>;
  return static_cast<T>(x > Limits::max() ? Limits::max() : x < Limits::min() ? Limits::min() : x);
}

// numerator / denominator / 2^exponent, exactly, rounded by mode: 0 toward zero, 1 to nearest with ties to
// even, 2 with ties away from zero. Operands of at most 32 bits.
template <class T>
T Exact(Wide numerator, Wide denominator, int exponent, int mode = 1) {
  exponent = std::max(-70, std::min(exponent, 70));
  if (denominator == 0) return numerator == 0 ? T(0) : Saturate<T>(numerator > 0 ? Wide(1) << 70 : -(Wide(1) << 70));
  const bool negative = (numerator < 0) != (denominator < 0);
  const Wide n = std::abs(static_cast<int64_t>(numerator)) * (Wide(1) << std::max(-exponent, 0));
  const Wide d = std::abs(static_cast<int64_t>(denominator)) * (Wide(1) << std::max(exponent, 0));
  Wide quotient = n / d;
  const Wide twice = 2 * (n % d);
  if (mode == 1 && (twice > d || (twice == d && quotient % 2 != 0))) ++quotient;
  if (mode == 2 && twice >= d) ++quotient;
  return Saturate<T>(negative ? -quotient : quotient);
}

template <class T, class F>
T Nearest(F y) {
  if (std::isnan(y)) return 0;
  if (y >= static_cast<F>(std::numeric_limits<T>::max())) return std::numeric_limits<T>::max();
  if (y <= static_cast<F>(std::numeric_limits<T>::min())) return std::numeric_limits<T>::min();
  return static_cast<T>(std::nearbyint(y));
}

// Values of all sizes, one in `zeros` of them 0.
template <class T>
std::vector<T> Integers(size_t n, uint64_t seed, uint64_t zeros) {
  std::vector<T> values(n);
  Random random(seed);
  for (T& value : values)
    value = random.Below(zeros) == 0 ? T(0)
            : random.Below(8) == 0   ? (random.Below(2) ? std::numeric_limits<T>::max() : std::numeric_limits<T>::min())
                                     : static_cast<T>(random.Next() >> random.Below(64));
  return values;
}

// Runs op(divisor, dividend, dst, len, scale) at every length up to two steps and a bit, with and without
// zero divisors. expected(a, b, exponent, inBody) gives an element, warns(a, b, inBody) its warning.
template <class A, class B, class T, class Op, class Expected, class Warns>
void CheckScaled(const char* name, Op op, int step, Expected expected, Warns warns) {
  for (const auto& [scale, exponent] : kScales) {
    for (int len = 1; len <= 2 * step + 5; ++len) {
      const uint64_t seed = 1000 * len + exponent;
      const auto a = Integers<A>(len, seed, len % 2 ? 4 : 1u << 30);
      const auto b = Integers<B>(len, seed + 1, 5);
      std::vector<T> dst(len), want(len);
      bool warn = false;
      for (int i = 0; i < len; ++i) {
        const bool inBody = i < len - len % step;
        want[i] = expected(a[i], b[i], exponent, inBody);
        warn |= warns(a[i], b[i], inBody);
      }
      EXPECT_EQ(op(a.data(), b.data(), dst.data(), len, scale), warn ? 300 : 0) << name << " len " << len;
      ASSERT_TRUE(SameBits(name, want.data(), dst.data(), len, seed)) << "len " << len << " scale " << scale;
    }
  }
}

constexpr auto kZeroWarns = [](auto a, auto, bool) { return a == 0; };

TEST(Division, ScaledIntegersAreExact) {
  const auto exact = [](auto a, auto b, int exponent, bool inBody) {
    using T = decltype(b);
    return a == 0 && !inBody && std::is_unsigned_v<T> ? std::numeric_limits<T>::max() : Exact<T>(b, a, exponent);
  };
  CheckScaled<Orva8u, Orva8u, Orva8u>("ORVAS_Div_8u_S", ORVAS_Div_8u_S, 48, exact, kZeroWarns);
  CheckScaled<Orva16u, Orva16u, Orva16u>("ORVAS_Div_16u_S", ORVAS_Div_16u_S, 24, exact, kZeroWarns);
  CheckScaled<Orva16s, Orva16s, Orva16s>("ORVAS_Div_16s_S", ORVAS_Div_16s_S, 8, exact, kZeroWarns);
}

TEST(Division, CoarserMembersRoundTheQuotientFirst) {
  CheckScaled<Orva32s, Orva32s, Orva32s>("ORVAS_Div_32s_S", ORVAS_Div_32s_S, 4,
                                         [](auto a, auto b, int exponent, bool inBody) {
    if (a == 0) return Exact<Orva32s>(b, a, 0);
    if (inBody) return Nearest<Orva32s>(std::ldexp(double(b) / double(a), -exponent));
    return Nearest<Orva32s>(static_cast<float>(std::ldexp(double(float(b) / float(a)), -exponent)));
  }, kZeroWarns);
  CheckScaled<Orva16s, Orva32s, Orva16s>("ORVAS_Div_32s16s_S", ORVAS_Div_32s16s_S, 4,
                                         [](auto a, auto b, int exponent, bool) {
    return a == 0 ? Exact<Orva16s>(b, a, 0) : Nearest<Orva16s>(std::ldexp(float(b) / float(a), -exponent));
  }, kZeroWarns);
}

TEST(Division, EveryQuotientOf8Bits) {
  std::vector<Orva8u> a(65536), b(65536), dst(65536), want(65536);
  for (int i = 0; i < 65536; ++i) a[i] = i / 256, b[i] = i % 256;
  const int body = 65536 - 65536 % 48;
  for (const auto& [scale, exponent] : kScales) {
    for (int mode = 0; mode < 3; ++mode) {
      for (int i = 0; i < 65536; ++i) want[i] = Exact<Orva8u>(b[i], a[i], exponent, mode);
      EXPECT_EQ(ORVAS_Div_Round_8u_S(a.data(), b.data(), dst.data(), 65536, mode, scale), 300);
      ASSERT_TRUE(SameBits("ORVAS_Div_Round_8u_S", want.data(), dst.data(), 65536)) << mode << " " << scale;
      if (mode != 1) continue;
      ORVAS_Div_8u_S(a.data(), b.data(), dst.data(), 65536, scale);
      ASSERT_TRUE(SameBits("ORVAS_Div_8u_S", want.data(), dst.data(), body)) << scale;
      for (int value = 1; value < 256; ++value) {
        Orva8u quotient[256];
        ORVAS_DivC_8u_S(&b[0], value, quotient, 256, scale);
        ASSERT_TRUE(SameBits("ORVAS_DivC_8u_S", &want[256 * value], quotient, 256)) << value << " " << scale;
      }
    }
  }
}

// Quotients around every integer and tie that 16 bits of divisor allow.
TEST(Division, SixteenBitsNearTies) {
  Random random(5);
  for (const auto& [scale, exponent] : kScales) {
    std::vector<Orva16u> a(4800), b(4800), dst(4800), want(4800);
    std::vector<Orva16s> as(4800), bs(4800), dsts(4800), wants(4800);
    for (int i = 0; i < 4800; ++i) {
      a[i] = static_cast<Orva16u>(random.Next() >> random.Below(15) | 1);
      const double quotient = static_cast<double>(random.Below(1 + 2 * 65535 / a[i])) / 2;
      b[i] = static_cast<Orva16u>(std::min(65535.0, quotient * a[i] + static_cast<double>(random.Below(3)) - 1));
      as[i] = static_cast<Orva16s>(a[i]), bs[i] = static_cast<Orva16s>(b[i]);
    }
    for (int mode = 0; mode < 3; ++mode) {
      for (int i = 0; i < 4800; ++i) {
        want[i] = Exact<Orva16u>(b[i], a[i], exponent, mode);
        wants[i] = Exact<Orva16s>(bs[i], as[i], exponent, mode);
      }
      ORVAS_Div_Round_16u_S(a.data(), b.data(), dst.data(), 4800, mode, scale);
      ASSERT_TRUE(SameBits("ORVAS_Div_Round_16u_S", want.data(), dst.data(), 4800)) << mode << " " << scale;
      ORVAS_Div_Round_16s_S(as.data(), bs.data(), dsts.data(), 4800, mode, scale);
      ASSERT_TRUE(SameBits("ORVAS_Div_Round_16s_S", wants.data(), dsts.data(), 4800)) << mode << " " << scale;
    }
    for (int k = 0; k < 100; ++k) {
      const Orva16u value = a[k];
      for (int i = 0; i < 4800; ++i) want[i] = Exact<Orva16u>(b[i], value, exponent);
      ORVAS_DivC_16u_S(b.data(), value, dst.data(), 4800, scale);
      ASSERT_TRUE(SameBits("ORVAS_DivC_16u_S", want.data(), dst.data(), 4800)) << value << " " << scale;
    }
  }
}

// ---- Rounding modes ----

template <class T, class Op>
void CheckRounded(const char* name, Op op, int step, bool tailWarns) {
  for (const int mode : {0, 1, 2, 3, -1}) {
    const bool known = mode >= 0 && mode < 3;
    CheckScaled<T, T, T>(name, [&](const T* a, const T* b, T* dst, int len, double scale) {
      for (int i = 0; i < len; ++i) dst[i] = 77;
      return op(a, b, dst, len, mode, scale);
    }, step, [&](T a, T b, int exponent, bool inBody) {
      return known ? Exact<T>(b, a, exponent, mode) : T(inBody ? 0 : 77);
    }, [&](T a, T, bool inBody) { return a == 0 && (inBody || (known && tailWarns)); });
  }
}

TEST(Division, RoundingModes) {
  CheckRounded<Orva8u>("ORVAS_Div_Round_8u_S", ORVAS_Div_Round_8u_S, 32, false);
  CheckRounded<Orva16u>("ORVAS_Div_Round_16u_S", ORVAS_Div_Round_16u_S, 16, true);
  CheckRounded<Orva16s>("ORVAS_Div_Round_16s_S", ORVAS_Div_Round_16s_S, 8, true);
}

// ---- Complex ----

TEST(Division, Complex16WrapsInTheTail) {
  const auto numerators = [](Orva16sc a, Orva16sc b, bool inBody) {  // denominator, real, imaginary
    const int64_t c = a.re, d = a.im;
    std::array<int64_t, 3> exact = {c * c + d * d, c * b.re + d * b.im, c * b.im - d * b.re};
    if (!inBody)
      for (int64_t& part : exact) part = static_cast<int32_t>(static_cast<uint32_t>(part));
    return exact;
  };
  Random random(3);
  for (const auto& [scale, exponent] : kScales) {
    for (int len = 1; len <= 21; ++len) {
      auto parts = Integers<Orva16s>(4 * len, random.Next(), 3);
      for (auto& part : parts)
        if (random.Below(2)) part = -32768;
      std::vector<Orva16sc> a(len), b(len), dst(len), want(len);
      bool warn = false;
      for (int i = 0; i < len; ++i) {
        a[i] = {parts[4 * i], parts[4 * i + 1]}, b[i] = {parts[4 * i + 2], parts[4 * i + 3]};
        const auto [den, re, im] = numerators(a[i], b[i], i < len - len % 8);
        want[i] = {Exact<Orva16s>(re, den, exponent), Exact<Orva16s>(im, den, exponent)};
        warn |= a[i].re == 0 && a[i].im == 0;
      }
      EXPECT_EQ(ORVAS_Div_16sc_S(a.data(), b.data(), dst.data(), len, scale), warn ? 300 : 0);
      ASSERT_TRUE(SameBits("ORVAS_Div_16sc_S", want.data(), dst.data(), len)) << "len " << len << " scale " << scale;
    }
  }
}

template <class Complex, class Op, class Expected>
void CheckComplex(const char* name, Op op, Expected expected) {
  for (const Variety variety : kVarieties) {
    for (int len = 1; len <= 37; ++len) {
      auto a = RandomArray<Complex>(len, len, variety), b = RandomArray<Complex>(len, len + 99, variety);
      if (len % 3 == 0) a[len / 2] = {0, -0.0f}, b[len - 1] = {0, 0};
      std::vector<Complex> dst(len), want(len);
      bool warn = false;
      for (int i = 0; i < len; ++i) want[i] = expected(a[i].re, a[i].im, b[i].re, b[i].im, i < len - len % 16, warn);
      EXPECT_EQ(op(a.data(), b.data(), dst.data(), len), warn ? 300 : 0) << name << " len " << len;
      ASSERT_TRUE(SameBits(name, want.data(), dst.data(), len)) << "len " << len;
    }
  }
}

TEST(Division, ComplexFloating) {
  const auto narrow = [](float c, float d, float a, float b, bool inBody, bool& warn) {
    const float cc = c * c, dd = d * d, da = d * a, bc = b * c;
    const float den = inBody ? cc + dd : std::fma(c, c, dd), re = std::fma(c, a, d * b);
    const float im = inBody ? bc - da : std::fma(c, b, -da);
    warn |= (inBody ? den : re) == 0;
    return Orva32fc{re / den, im / den};
  };
  CheckComplex<Orva32fc>("ORVAS_Div_32fc", ORVAS_Div_32fc, narrow);
  const auto wide = [](double c, double d, double a, double b, bool, bool& warn) {
    const double cc = c * c, dd = d * d, ca = c * a, db = d * b, cb = c * b, da = d * a;
    const double t = 1.0 / (cc + dd);
    warn |= cc + dd == 0;
    return Orva64fc{(ca + db) * t, (cb - da) * t};
  };
  CheckComplex<Orva64fc>("ORVAS_Div_64fc", ORVAS_Div_64fc, wide);
}

TEST(Division, RealFloatingWarnsAtEveryPlace) {
  for (int len = 1; len <= 70; ++len) {
    std::vector<Orva32f> a(len, 2), b(len, 1), dst(len);
    std::vector<Orva64f> a64(len, 2), b64(len, 1), dst64(len);
    EXPECT_EQ(ORVAS_Div_32f(a.data(), b.data(), dst.data(), len), 0);
    EXPECT_EQ(ORVAS_Div_64f(a64.data(), b64.data(), dst64.data(), len), 0);
    EXPECT_EQ(dst[len / 2], 0.5f);  // the first array divides
    for (int i = 0; i < len; ++i) {
      a[i] = a64[i] = -0.0;
      EXPECT_EQ(ORVAS_Div_32f(a.data(), b.data(), dst.data(), len), 300);
      EXPECT_EQ(ORVAS_Div_64f(a64.data(), b64.data(), dst64.data(), len), 300);
      EXPECT_EQ(dst[i], -INFINITY);
      EXPECT_EQ(dst64[i], -INFINITY);
      a[i] = a64[i] = 2;
    }
  }
}

// ---- Constants ----

TEST(DivisionByConstant, RealIsTheProductWithTheReciprocal) {
  const auto src = RandomArray<Orva32f>(999, 1, Variety::kSpecial);
  const auto src64 = RandomArray<Orva64f>(999, 2, Variety::kSpecial);
  for (const float value : {3.0f, -7.5f, 1e-42f, 3e38f, INFINITY, NAN}) {
    std::vector<Orva32f> dst(999), want(999);
    std::vector<Orva64f> dst64(999), want64(999);
    for (int i = 0; i < 999; ++i) want[i] = src[i] * (1 / value), want64[i] = src64[i] * (1 / double(value));
    EXPECT_EQ(ORVAS_DivC_32f(src.data(), value, dst.data(), 999), 0);
    EXPECT_EQ(ORVAS_DivC_64f(src64.data(), value, dst64.data(), 999), 0);
    EXPECT_TRUE(SameBits("ORVAS_DivC_32f", want.data(), dst.data(), 999)) << value;
    EXPECT_TRUE(SameBits("ORVAS_DivC_64f", want64.data(), dst64.data(), 999)) << value;
  }
}

TEST(DivisionByConstant, ComplexGoesThroughTheMultiplication) {
  const auto src = RandomArray<Orva32fc>(37, 1);
  const auto src64 = RandomArray<Orva64fc>(37, 2);
  std::vector<Orva32fc> dst(37), want(37);
  std::vector<Orva64fc> dst64(37), want64(37);
  const float imim = 3.7f * 3.7f, r = 1 / std::fma(-1.3f, -1.3f, imim);
  const double imim64 = 3.7 * 3.7, r64 = 1 / std::fma(-1.3, -1.3, imim64);
  EXPECT_EQ(ORVAS_DivC_32fc(src.data(), {-1.3f, 3.7f}, dst.data(), 37), 0);
  EXPECT_EQ(ORVAS_DivC_64fc(src64.data(), {-1.3, 3.7}, dst64.data(), 37), 0);
  ORVAS_MulC_32fc(src.data(), {r * -1.3f, -(r * 3.7f)}, want.data(), 37);
  ORVAS_MulC_64fc(src64.data(), {r64 * -1.3, -(r64 * 3.7)}, want64.data(), 37);
  EXPECT_TRUE(SameBits("ORVAS_DivC_32fc", want.data(), dst.data(), 37));
  EXPECT_TRUE(SameBits("ORVAS_DivC_64fc", want64.data(), dst64.data(), 37));
}

TEST(DivisionByConstant, ReciprocalMembersAreAsCoarseAsTold) {
  const int n = 65536 + 3;
  std::vector<Orva16s> src(n), dst(n), want(n);
  for (int i = 0; i < n; ++i) src[i] = static_cast<Orva16s>(i);
  const auto src64 = Integers<Orva64s>(n, 1, 9);
  std::vector<Orva64s> dst64(n), want64(n);
  for (const auto& [scale, exponent] : kScales) {
    for (const int value : {1, -1, 2, 3, -7, 10, 127, 1000, 32767, -32768}) {
      const float f = static_cast<float>(std::ldexp(1.0, -exponent)), r = 1.0f / static_cast<float>(value);
      const double f64 = std::ldexp(1.0, -exponent), r64 = 1.0 / value;
      for (int i = 0; i < n; ++i) {
        want[i] = Nearest<Orva16s>((static_cast<float>(src[i]) * r) * f);
        want64[i] = Nearest<Orva64s>((static_cast<double>(src64[i]) * r64) * f64);
      }
      EXPECT_EQ(ORVAS_DivC_16s_S(src.data(), static_cast<Orva16s>(value), dst.data(), n, scale), 0);
      ASSERT_TRUE(SameBits("ORVAS_DivC_16s_S", want.data(), dst.data(), n)) << value << " " << scale;
      dst64 = src64;
      EXPECT_EQ(ORVAS_DivC_64s_IS(value, dst64.data(), n, scale), 0);
      ASSERT_TRUE(SameBits("ORVAS_DivC_64s_IS", want64.data(), dst64.data(), n)) << value << " " << scale;
    }
    const auto parts = Integers<Orva16s>(2 * 1000, 7, 9);
    std::vector<Orva16sc> src16(1000), dst16(1000), want16(1000);
    for (const Orva16sc value : {Orva16sc{3, -4}, {0, 1}, {-32768, -32768}, {7, 32767}}) {
      const double re = value.re, im = value.im, t = (1.0 / (re * re + im * im)) * std::ldexp(1.0, -exponent);
      for (int i = 0; i < 1000; ++i) {
        src16[i] = {parts[2 * i], parts[2 * i + 1]};
        want16[i] = {Nearest<Orva16s>((src16[i].re * re + src16[i].im * im) * t),
                     Nearest<Orva16s>((src16[i].im * re - src16[i].re * im) * t)};
      }
      EXPECT_EQ(ORVAS_DivC_16sc_S(src16.data(), value, dst16.data(), 1000, scale), 0);
      ASSERT_TRUE(SameBits("ORVAS_DivC_16sc_S", want16.data(), dst16.data(), 1000)) << re << " " << im << " " << scale;
    }
  }
}

TEST(DivisionOfConstant, Unsigned16) {
  for (const Orva16u value : {0, 1, 7, 1000, 65535}) {
    for (int len = 1; len <= 101; ++len) {
      const auto src = Integers<Orva16u>(len, len, len % 2 ? 5 : 1u << 30);
      std::vector<Orva16u> dst(len), want(len);
      bool warn = false;
      for (int i = 0; i < len; ++i) {
        warn |= src[i] == 0;
        if (src[i] != 0) want[i] = Nearest<Orva16u>(static_cast<float>(value) / static_cast<float>(src[i]));
        else want[i] = value == 0 && i < len - len % 48 ? 0 : 65535;
      }
      EXPECT_EQ(ORVAS_DivCRev_16u(src.data(), value, dst.data(), len), warn ? 300 : 0);
      ASSERT_TRUE(SameBits("ORVAS_DivCRev_16u", want.data(), dst.data(), len)) << "len " << len << " value " << value;
    }
  }
}

// The estimate as its tables tell it: x = m * 2^e, m in [256, 512) truncated; round(2^18 / (2m + 1)).
float Estimate(float x) {
  if (std::isnan(x)) return x;
  if (std::isinf(x)) return std::copysign(0.0f, x);
  if (std::fabs(x) < 0x1p-128f) return std::copysign(INFINITY, x);
  int exponent;
  const int m = static_cast<int>(std::frexp(std::fabs(x), &exponent) * 512);
  const int estimate = ((1 << 19) / (2 * m + 1) + 1) / 2;
  return std::copysign(static_cast<float>(std::ldexp(estimate, -exponent - 8)), x);
}

float Step(float a, float b) {
  return (std::isinf(a) && b == 0) || (a == 0 && std::isinf(b)) ? 2.0f : std::fma(-a, b, 2.0f);
}

TEST(DivisionOfConstant, BodyRefinesAnEstimateAndExchangesInfinities) {
  std::vector<float> src = {0.0f, -0.0f, 0x1p-149f, -0x1p-149f, 0x1.fffffcp-129f, 0x1p-128f, 0x1p-127f, -0x1.8p-128f,
                            0x1p-126f, 0x1p125f, 0x1p126f, 0x1.8p126f, 0x1.fffffep126f, 0x1p127f, -0x1.fffffep127f,
                            INFINITY, -INFINITY, NAN, 1.0f, 3.0f};
  for (uint32_t top = 0; top < 0x10000; ++top) {  // every sign, exponent and leading seven bits of fraction
    const uint32_t bits = top << 16 | (top * 40503 & 0xffff);
    float x;
    std::memcpy(&x, &bits, sizeof x);
    src.push_back(x);
  }
  src.insert(src.end(), {0.0f, -0.0f, 3.0f});  // a tail of 3
  const size_t n = src.size();
  ASSERT_EQ(n % 4, 3u);
  for (const float value : {1.0f, -3.7f, 0.0f}) {
    std::vector<float> dst(n), want(n);
    for (size_t i = 0; i < n; ++i) {
      float e = Estimate(src[i]);
      e = Step(src[i], e) * e;
      e = Step(src[i], e) * e;
      if (std::isinf(e)) e = -e;
      want[i] = i < n - 3 ? value * e : value / src[i];
    }
    EXPECT_EQ(ORVAS_DivCRev_32f(src.data(), value, dst.data(), static_cast<int32_t>(n)), 300);
    ASSERT_TRUE(SameBits("ORVAS_DivCRev_32f", want.data(), dst.data(), n)) << value;
  }
  for (int len = 1; len <= 40; ++len) {
    std::vector<float> ones(len, 1), dst(len);
    EXPECT_EQ(ORVAS_DivCRev_32f(ones.data(), 1, dst.data(), len), 0);
    ones[len - 1] = -0.0f;
    EXPECT_EQ(ORVAS_DivCRev_32f(ones.data(), 1, dst.data(), len), 300);
    EXPECT_EQ(dst[len - 1], len % 4 == 0 ? INFINITY : -INFINITY);
  }
}

}  // namespace
}  // namespace tzm_test
