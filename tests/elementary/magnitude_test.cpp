// Magnitude and power spectrum: each member against a scalar statement of its own sum, root and rounding.
#include <gtest/gtest.h>
#include <signal_tzm/elementary.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

// Both forms of a member against `value` of the parts, which is told whether the element is in the tail
// of a body of kBlock elements, at every length to 70 and over all kinds of values.
template <int32_t kBlock, class Complex, class Result, class Value, class... Scale>
void CheckComplex(OrvaStatus (*member)(const Complex*, Result*, int32_t, Scale...), Value value, Scale... scale) {
  for (Variety variety : kVarieties) {
    for (int32_t len = 1; len <= 70; ++len) {
      const GuardedArray<Complex> src(RandomArray<Complex>(len, len, variety));
      GuardedArray<Result> dst(len);
      std::vector<Result> expected(len);
      for (int32_t i = 0; i < len; ++i)
        expected[i] = value(src.data()[i].re, src.data()[i].im, i >= len - len % kBlock);
      ASSERT_EQ(member(src.data(), dst.data(), len, scale...), ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("complex", expected.data(), dst.data(), len, len));
    }
  }
}
template <int32_t kBlock, class T, class Result, class Value, class... Scale>
void CheckPair(OrvaStatus (*member)(const T*, const T*, Result*, int32_t, Scale...), Value value, Scale... scale) {
  for (Variety variety : kVarieties) {
    for (int32_t len = 1; len <= 70; ++len) {
      const GuardedArray<T> re(RandomArray<T>(len, len, variety)), im(RandomArray<T>(len, 100 + len, variety));
      GuardedArray<Result> dst(len);
      std::vector<Result> expected(len);
      for (int32_t i = 0; i < len; ++i)
        expected[i] = value(re.data()[i], im.data()[i], i >= len - len % kBlock);
      ASSERT_EQ(member(re.data(), im.data(), dst.data(), len, scale...), ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("pair", expected.data(), dst.data(), len, len));
    }
  }
}

template <class T>
T Fused(T re, T im) {
  return std::fma(re, re, im * im);
}
template <class T>
T Rounded(T re, T im) {
  return re * re + im * im;
}
int64_t Exact(int64_t re, int64_t im) {
  return static_cast<int64_t>(static_cast<uint64_t>(re * re) + static_cast<uint64_t>(im * im));
}

// Rounds to nearest, ties to even, and saturates; NaN gives 0.
template <class Result>
Result RoundSaturated(double value) {
  using Limits = std::numeric_limits<Result>;
  if (std::isnan(value)) return 0;
  return static_cast<Result>(std::fmin(std::fmax(std::nearbyint(value), Limits::min()), Limits::max()));
}

struct Scale {
  double scale;
  int exponent;
};
constexpr Scale kScales[] = {{1, 0},           {1.9, 0},          {2, 1},         {3, 1},         {0.3, -1},
                             {0.25, -2},       {0x1p15, 15},      {0x1p16, 16},   {0x1p17, 17},   {0x1p31, 31},
                             {0x1p32, 32},     {0x1p-16, -16},    {0x1p-40, -40}, {0x1p200, 200}, {0x1p-200, -200},
                             {0x1p1023, 1023}, {0x1p-1074, -1074}};

TEST(PowerSpectrum, OnlyTheBinary32PairIsFused) {
  CheckPair<1>(ORVAS_PowerSpectr_32f, [](float re, float im, bool) { return Fused(re, im); });
  CheckComplex<1>(ORVAS_PowerSpectr_32fc, [](float re, float im, bool) { return Rounded(re, im); });
  CheckPair<1>(ORVAS_PowerSpectr_64f, [](double re, double im, bool) { return Rounded(re, im); });
  CheckComplex<1>(ORVAS_PowerSpectr_64fc, [](double re, double im, bool) { return Rounded(re, im); });
}

TEST(PowerSpectrum, IntegersAreExact) {
  const auto value = [](int16_t re, int16_t im, bool) { return static_cast<float>(Exact(re, im)); };
  CheckPair<1>(ORVAS_PowerSpectr_16s32f, value);
  CheckComplex<1>(ORVAS_PowerSpectr_16sc32f, value);
  for (Scale s : kScales) {
    const auto scaled = [&](int16_t re, int16_t im, bool) {
      // An integer times a power of two is exact in binary64; beyond its range only the sign matters.
      return RoundSaturated<int16_t>(
          std::ldexp(static_cast<double>(Exact(re, im)), std::clamp(-s.exponent, -900, 900)));
    };
    CheckPair<1>(ORVAS_PowerSpectr_16s_S, scaled, s.scale);
    CheckComplex<1>(ORVAS_PowerSpectr_16sc_S, scaled, s.scale);
  }
}

TEST(PowerSpectrum, LargestSum) {
  const Orva16sc least = {-32768, -32768};
  Orva32f wide;
  EXPECT_EQ(ORVAS_PowerSpectr_16sc32f(&least, &wide, 1), ORVA_STS_NO_ERR);
  EXPECT_EQ(wide, 2147483648.0f);
  Orva16s narrow;
  EXPECT_EQ(ORVAS_PowerSpectr_16sc_S(&least, &narrow, 1, 0x1p30), ORVA_STS_NO_ERR);
  EXPECT_EQ(narrow, 2);
  EXPECT_EQ(ORVAS_PowerSpectr_16sc_S(&least, &narrow, 1, 0x1p32), ORVA_STS_NO_ERR);  // a half, to even
  EXPECT_EQ(narrow, 0);
}

// The root of a^2 + b^2 on scaled numbers, with the high halves of the exact products apart.
double ScaledHypot(double re, double im) {
  if (std::isinf(re) || std::isinf(im)) return HUGE_VAL;
  if (std::isnan(re) || std::isnan(im)) return NAN;
  const auto word = [](double x) { return std::bit_cast<uint64_t>(x) >> 32; };
  const auto head = [](double x) { return std::bit_cast<double>(std::bit_cast<uint64_t>(x) >> 32 << 32); };
  double a = std::fmax(std::fabs(re), std::fabs(im)), b = std::fmin(std::fabs(re), std::fabs(im));
  if (b == 0) return a;
  if (word(a) - word(b) > 0x03c00000) return a + b;
  int shift = 0;
  if (word(a) > 0x5f300000) shift = -600;
  if (word(b) <= 0x23cfffff) shift = 600;
  if (word(b) <= 0x000fffff) shift = 1022;
  a = std::ldexp(a, shift);
  b = std::ldexp(b, shift);
  const double w = a - b;
  if (w > b) {
    const double t1 = head(a), t2 = a - t1;
    return std::sqrt(t1 * t1 - (b * -b - t2 * (a + t1))) * std::ldexp(1, -shift);
  }
  const double y1 = head(b), y2 = b - y1, t1 = head(a + a) * 2, t2 = (a + a) - t1;
  return std::sqrt(t1 * y1 - (w * -w - (t1 * y2 + t2 * b))) * std::ldexp(1, -shift);
}

TEST(Magnitude, Floats) {
  CheckPair<1>(ORVAS_Magnitude_32f, [](float re, float im, bool) { return std::sqrt(Fused(re, im)); });
  CheckComplex<1>(ORVAS_Magnitude_32fc, [](float re, float im, bool) { return std::sqrt(Rounded(re, im)); });
  CheckPair<1>(ORVAS_Magnitude_64f, [](double re, double im, bool) { return std::sqrt(Fused(re, im)); });
  CheckComplex<2>(ORVAS_Magnitude_64fc, [](double re, double im, bool tail) {
    return tail ? std::hypot(re + 0 * im, im) : ScaledHypot(re, im);
  });
}

// Random exponents seldom bring the parts close to each other: all ratios, at all sizes.
TEST(Magnitude, OverflowSafeFormAtEverySize) {
  Random random(5);
  for (int exponent = -1074; exponent < 1024; ++exponent) {
    Orva64fc src[16];
    Orva64f dst[16], expected[16];
    for (Orva64fc& z : src) {
      z = {std::ldexp(random.Unit() + 0.5, exponent), std::ldexp(random.Unit() + 0.5, exponent)};
      if (random.Below(2)) z.im = std::ldexp(z.im, -static_cast<int>(random.Below(70)));
      if (random.Below(2)) std::swap(z.re, z.im);
      if (random.Below(2)) z.re = -z.re;
    }
    for (int i = 0; i < 16; ++i) expected[i] = ScaledHypot(src[i].re, src[i].im);
    ASSERT_EQ(ORVAS_Magnitude_64fc(src, dst, 16), ORVA_STS_NO_ERR);
    ASSERT_TRUE(SameBits("ORVAS_Magnitude_64fc", expected, dst, 16, exponent));
    for (int i = 0; i < 16 && exponent > -1000 && exponent < 1020; ++i)
      ASSERT_NEAR(dst[i] / std::hypot(src[i].re, src[i].im), 1, 4e-16);
  }
}

TEST(Magnitude, InfinityBesideNaN) {
  // In the body infinity prevails. The argument of the tail's cabs is re + i*im, where a NaN of `im` reaches
  // the real part too.
  const Orva64fc src[] = {{HUGE_VAL, NAN}, {NAN, -HUGE_VAL}, {HUGE_VAL, NAN}};
  Orva64f dst[3];
  EXPECT_EQ(ORVAS_Magnitude_64fc(src, dst, 3), ORVA_STS_NO_ERR);
  EXPECT_EQ(dst[0], HUGE_VAL);
  EXPECT_EQ(dst[1], HUGE_VAL);
  EXPECT_TRUE(std::isnan(dst[2]));
}

TEST(Magnitude, IntegersToFloat) {
  const auto tail32 = [](int16_t re, int16_t im) {
    return static_cast<float>(std::sqrt(static_cast<double>(Exact(re, im))));
  };
  CheckPair<4>(ORVAS_Magnitude_16s32f, [&](int16_t re, int16_t im, bool tail) {
    return tail ? tail32(re, im) : std::sqrt(static_cast<float>(Exact(re, im)));
  });
  CheckComplex<4>(ORVAS_Magnitude_16sc32f, [&](int16_t re, int16_t im, bool tail) {
    return tail ? tail32(re, im) : std::sqrt(Fused<float>(re, im));
  });
}

TEST(Magnitude, Scaled) {
  for (Scale s : kScales) {
    const double factor = std::ldexp(1, -s.exponent);
    const float factor32 = static_cast<float>(factor);
    const auto exact = [&](int16_t re, int16_t im) { return std::sqrt(static_cast<double>(Exact(re, im))) * factor32; };
    CheckComplex<1>(ORVAS_Magnitude_16sc_S,
                    [&](int16_t re, int16_t im, bool) { return RoundSaturated<int16_t>(exact(re, im)); }, s.scale);
    CheckPair<8>(ORVAS_Magnitude_16s_S, [&](int16_t re, int16_t im, bool tail) {
      const float body = std::sqrt(static_cast<float>(Exact(re, im))) * factor32;
      return RoundSaturated<int16_t>(tail ? exact(re, im) : body);
    }, s.scale);
    CheckComplex<4>(ORVAS_Magnitude_32sc_S, [&](int32_t re, int32_t im, bool tail) {
      const double sum = tail ? static_cast<double>(Exact(re, im)) : Fused<double>(re, im);
      return RoundSaturated<int32_t>(std::sqrt(sum) * factor);
    }, s.scale);
  }
}

TEST(Magnitude, TailOf32scWrapsAtTwoLeastParts) {
  const Orva32s least = -2147483647 - 1;
  const Orva32sc src[] = {{least, least}, {3, 4}, {3, 4}, {3, 4}, {least, least}};
  Orva32s dst[5];
  EXPECT_EQ(ORVAS_Magnitude_32sc_S(src, dst, 5, 2.0), ORVA_STS_NO_ERR);
  EXPECT_EQ(dst[0], 1518500250);
  EXPECT_EQ(dst[1], 2);  // 2.5 to even
  EXPECT_EQ(dst[4], 0);
}

}  // namespace
}  // namespace tzm_test
