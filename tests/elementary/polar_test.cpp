// Magnitude, power spectrum, phase and polar forms: each member against a scalar statement of its own sums, roots,
// angles and roundings.
#include <gtest/gtest.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "support/compare.h"
#include "support/random.h"

namespace tzm_test {
namespace {

// call(re, im, dst, len) against value(re, im, whether the element is in the tail of a body of kBlock elements).
template <int32_t kBlock, class T, class Result, class Call, class Value>
void Check(Call call, Value value) {
  for (Variety variety : kVarieties) {
    for (int32_t len = 1; len <= 70; ++len) {
      const auto seed = static_cast<uint64_t>(len);
      const auto re = RandomArray<T>(len, seed, variety), im = RandomArray<T>(len, 100 + seed, variety);
      std::vector<Result> dst(len), expected(len);
      for (int32_t i = 0; i < len; ++i) expected[i] = value(re[i], im[i], i >= len - len % kBlock);
      ASSERT_EQ(call(re.data(), im.data(), dst.data(), len), ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("member", expected.data(), dst.data(), len, seed));
    }
  }
}
// The parts as two arrays, and as one.
template <int32_t kBlock, class T, class Result, class Value, class... Scale>
void CheckPair(OrvaStatus (*member)(const T*, const T*, Result*, int32_t, Scale...), Value value, Scale... scale) {
  Check<kBlock, T, Result>([=](auto... arguments) { return member(arguments..., scale...); }, value);
}
template <class Complex, class T>
std::vector<Complex> Join(const T* re, const T* im, int32_t len) {
  std::vector<Complex> z(len);
  for (int32_t i = 0; i < len; ++i) z[i] = {re[i], im[i]};
  return z;
}
template <int32_t kBlock, class Complex, class Result, class Value, class... Scale>
void CheckComplex(OrvaStatus (*member)(const Complex*, Result*, int32_t, Scale...), Value value, Scale... scale) {
  using T = decltype(Complex::re);
  Check<kBlock, T, Result>([=](const T* re, const T* im, Result* dst, int32_t len) {
    return member(Join<Complex>(re, im, len).data(), dst, len, scale...);
  }, value);
}

constexpr auto kFused = [](auto re, auto im, bool = false) { return std::fma(re, re, im * im); };
constexpr auto kRounded = [](auto re, auto im, bool = false) { return re * re + im * im; };
int64_t Exact(int64_t re, int64_t im) {  // wraps for two parts of -2^31
  return static_cast<int64_t>(static_cast<uint64_t>(re * re) + static_cast<uint64_t>(im * im));
}
double Root(int64_t re, int64_t im) { return std::sqrt(static_cast<double>(Exact(re, im))); }

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
  double Factor() const { return std::ldexp(1, -exponent); }
  float FloatFactor() const { return static_cast<float>(Factor()); }
};
constexpr Scale kScales[] = {{1, 0},      {1.9, 0},     {3, 1},       {0.3, -1},          {0x1p15, 15},
                             {0x1p16, 16}, {0x1p17, 17}, {0x1p31, 31}, {0x1p32, 32},       {0x1p-13, -13},
                             {0x1p-40, -40}, {0x1p200, 200}, {0x1p1023, 1023}, {0x1p-1074, -1074}};

TEST(PowerSpectrum, OnlyTheBinary32PairIsFusedAndIntegersAreExact) {
  CheckPair<1>(ORVAS_PowerSpectr_32f, kFused);
  CheckComplex<1>(ORVAS_PowerSpectr_32fc, kRounded);
  CheckPair<1>(ORVAS_PowerSpectr_64f, kRounded);
  CheckComplex<1>(ORVAS_PowerSpectr_64fc, kRounded);
  const auto value = [](int16_t re, int16_t im, bool) { return static_cast<float>(Exact(re, im)); };
  CheckPair<1>(ORVAS_PowerSpectr_16s32f, value);
  CheckComplex<1>(ORVAS_PowerSpectr_16sc32f, value);
  for (Scale s : kScales) {
    const auto scaled = [=](int16_t re, int16_t im, bool) {
      // Exact in binary64; beyond its range only the sign matters.
      const double sum = static_cast<double>(Exact(re, im));
      return RoundSaturated<int16_t>(std::ldexp(sum, std::clamp(-s.exponent, -900, 900)));
    };
    CheckPair<1>(ORVAS_PowerSpectr_16s_S, scaled, s.scale);
    CheckComplex<1>(ORVAS_PowerSpectr_16sc_S, scaled, s.scale);
  }
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
  const int shift = word(b) <= 0x000fffff ? 1022 : word(b) <= 0x23cfffff ? 600 : word(a) > 0x5f300000 ? -600 : 0;
  a = std::ldexp(a, shift), b = std::ldexp(b, shift);
  const double w = a - b;
  if (w > b) {
    const double t1 = head(a), t2 = a - t1;
    return std::sqrt(t1 * t1 - (b * -b - t2 * (a + t1))) * std::ldexp(1, -shift);
  }
  const double y1 = head(b), y2 = b - y1, t1 = head(a + a) * 2, t2 = (a + a) - t1;
  return std::sqrt(t1 * y1 - (w * -w - (t1 * y2 + t2 * b))) * std::ldexp(1, -shift);
}

constexpr auto kMagnitude = [](auto re, auto im, bool) { return std::sqrt(kFused(re, im)); };
// The tail's cabs of re + i*im takes 0*im into its real part, so that there infinity does not prevail over NaN.
constexpr auto kComplexMagnitude = [](auto re, auto im, bool tail) {
  if constexpr (sizeof(re) == 4) return std::sqrt(kRounded(re, im));
  else return tail ? std::hypot(re + 0 * im, im) : ScaledHypot(re, im);
};

TEST(Magnitude, Floats) {
  CheckPair<1>(ORVAS_Magnitude_32f, kMagnitude);
  CheckPair<1>(ORVAS_Magnitude_64f, kMagnitude);
  CheckComplex<1>(ORVAS_Magnitude_32fc, kComplexMagnitude);
  CheckComplex<2>(ORVAS_Magnitude_64fc, kComplexMagnitude);
}

// Random exponents seldom bring the parts close to each other: all ratios, at all sizes.
TEST(Magnitude, OverflowSafeFormAtEverySize) {
  Random random(5);
  for (int exponent = -1074; exponent < 1024; ++exponent) {
    Orva64fc src[16];
    Orva64f dst[16], expected[16];
    for (int i = 0; i < 16; ++i) {
      double part[] = {std::ldexp(random.Unit() + 0.5, exponent), std::ldexp(random.Unit() + 0.5, exponent)};
      if (random.Below(2)) part[i % 2] = std::ldexp(part[i % 2], -static_cast<int>(random.Below(70)));
      src[i] = {random.Below(2) ? -part[0] : part[0], part[1]};
      expected[i] = ScaledHypot(src[i].re, src[i].im);
    }
    ASSERT_EQ(ORVAS_Magnitude_64fc(src, dst, 16), ORVA_STS_NO_ERR);
    ASSERT_TRUE(SameBits("ORVAS_Magnitude_64fc", expected, dst, 16, exponent));
    for (int i = 0; i < 16 && exponent > -1000 && exponent < 1020; ++i)
      ASSERT_NEAR(dst[i] / std::hypot(src[i].re, src[i].im), 1, 4e-16);
  }
}

TEST(Magnitude, Integers) {
  CheckPair<4>(ORVAS_Magnitude_16s32f, [](int16_t re, int16_t im, bool tail) {
    return tail ? static_cast<float>(Root(re, im)) : std::sqrt(static_cast<float>(Exact(re, im)));
  });
  CheckComplex<4>(ORVAS_Magnitude_16sc32f, [](int16_t re, int16_t im, bool tail) {
    return tail ? static_cast<float>(Root(re, im)) : std::sqrt(kFused(float(re), float(im)));
  });
  for (Scale s : kScales) {
    const auto exact = [=](int16_t re, int16_t im, bool) {
      return RoundSaturated<int16_t>(Root(re, im) * s.FloatFactor());
    };
    CheckComplex<1>(ORVAS_Magnitude_16sc_S, exact, s.scale);
    CheckPair<8>(ORVAS_Magnitude_16s_S, [=](int16_t re, int16_t im, bool tail) {
      const float body = std::sqrt(static_cast<float>(Exact(re, im))) * s.FloatFactor();
      return tail ? exact(re, im, tail) : RoundSaturated<int16_t>(body);
    }, s.scale);
    CheckComplex<4>(ORVAS_Magnitude_32sc_S, [=](int32_t re, int32_t im, bool tail) {
      return RoundSaturated<int32_t>((tail ? Root(re, im) : std::sqrt(kFused(double(re), double(im)))) * s.Factor());
    }, s.scale);
  }
  const Orva32s least = std::numeric_limits<Orva32s>::min();  // two of them wrap in the tail
  const Orva32sc src[] = {{least, least}, {3, 4}, {3, 4}, {3, 4}, {least, least}};
  Orva32s dst[5];
  EXPECT_EQ(ORVAS_Magnitude_32sc_S(src, dst, 5, 2.0), ORVA_STS_NO_ERR);
  EXPECT_EQ((std::vector<Orva32s>(dst, dst + 5)), (std::vector<Orva32s>{1518500250, 2, 2, 2, 0}));  // 2.5 to even
}

// The companion's functions, one value at a time.
float Arctan(float x) { vsatan(1, &x, &x); return x; }
double Arctan(double x) { vdatan(1, &x, &x); return x; }
float Arctan2(float y, float x) { vsatan2(1, &y, &x, &y); return y; }
double Arctan2(double y, double x) { vdatan2(1, &y, &x, &y); return y; }
void Sincos(float x, float& sine, float& cosine) { vssincos(1, &x, &sine, &cosine); }
void Sincos(double x, double& sine, double& cosine) { vdsincos(1, &x, &sine, &cosine); }

// arctan(im/re) and a correction that moves it to the right quadrant.
template <class T>
T Angle(T re, T im, bool = false) {
  const T pi = static_cast<T>(3.14159265358979323846), half = re < 0 ? pi : T(0);
  return Arctan(im / re) + (im < 0 ? -half : half);
}

TEST(Phase, ArctangentOfTheRatioAndACorrection) {
  CheckPair<1>(ORVAS_Phase_32f, Angle<float>);
  CheckComplex<1>(ORVAS_Phase_32fc, Angle<float>);
  CheckPair<1>(ORVAS_Phase_16s32f, Angle<float>);
  CheckComplex<1>(ORVAS_Phase_16sc32f, Angle<float>);
  CheckPair<1>(ORVAS_Phase_64f, Angle<double>);
  CheckComplex<1>(ORVAS_Phase_64fc, Angle<double>);
  for (Scale s : kScales) {
    const auto scaled = [=](float re, float im, bool) {
      return RoundSaturated<int16_t>(Angle(re, im) * s.FloatFactor());
    };
    CheckPair<1>(ORVAS_Phase_16s_S, scaled, s.scale);
    CheckComplex<1>(ORVAS_Phase_16sc_S, scaled, s.scale);
  }
}

// Two results as one.
template <class Complex>
OrvaStatus Zip(Complex* dst, int32_t len, auto call) {
  std::vector<decltype(Complex::re)> first(len), second(len);
  const OrvaStatus status = call(first.data(), second.data());
  for (int32_t i = 0; i < len; ++i) dst[i] = {first[i], second[i]};
  return status;
}

// There and back, in either form. Any two arrays are magnitudes and angles.
template <class T, int32_t kBlock, class Complex>
void CheckPolar(auto pair, auto joined, auto back, auto backJoined) {
  const auto polar = [](auto magnitude) {
    return [=](T re, T im, bool tail) { return Complex{magnitude(re, im, tail), Arctan2(im, re)}; };
  };
  const auto cartesian = [](T mag, T phase, bool) {
    T sine, cosine;
    Sincos(phase, sine, cosine);
    return Complex{mag * cosine, mag * sine};
  };
  Check<1, T, Complex>([=](auto re, auto im, auto dst, int32_t n) {
    return Zip(dst, n, [&](T* mag, T* phase) { return pair(re, im, mag, phase, n); });
  }, polar(kMagnitude));
  Check<kBlock, T, Complex>([=](auto re, auto im, auto dst, int32_t n) {
    return Zip(dst, n, [&](T* mag, T* phase) { return joined(Join<Complex>(re, im, n).data(), mag, phase, n); });
  }, polar(kComplexMagnitude));
  Check<1, T, Complex>([=](auto mag, auto phase, auto dst, int32_t n) {
    return Zip(dst, n, [&](T* re, T* im) { return back(mag, phase, re, im, n); });
  }, cartesian);
  Check<1, T, Complex>(backJoined, cartesian);
}
TEST(PolarForms, Floats) {
  CheckPolar<float, 1, Orva32fc>(ORVAS_CartToPolar_32f, ORVAS_CartToPolar_32fc, ORVAS_PolarToCart_32f,
                                 ORVAS_PolarToCart_32fc);
  CheckPolar<double, 2, Orva64fc>(ORVAS_CartToPolar_64f, ORVAS_CartToPolar_64fc, ORVAS_PolarToCart_64f,
                                  ORVAS_PolarToCart_64fc);
}

TEST(PolarForms, Integers) {
  const auto round = RoundSaturated<int16_t>;
  for (auto [m, p] : {std::pair(0, 0), {2, 9}, {3, 2}, {11, 0}, {0, 12}, {13, 1}}) {
    const Scale mag = kScales[m], phase = kScales[p];
    Check<1, int16_t, Orva16sc>([=](auto re, auto im, auto dst, int32_t n) {
      return Zip(dst, n, [&](int16_t* r, int16_t* phi) {
        return ORVAS_CartToPolar_16sc_S(Join<Orva16sc>(re, im, n).data(), r, phi, n, mag.scale, phase.scale);
      });
    }, [=](int16_t re, int16_t im, bool) {
      return Orva16sc{round(Root(re, im) * mag.FloatFactor()),
                      round(Arctan2(float(im), float(re)) * phase.FloatFactor())};
    });
    Check<1, int16_t, Orva16sc>([=](auto... arguments) {
      return ORVAS_PolarToCart_16sc_S(arguments..., mag.scale, phase.scale);
    }, [=](int16_t r, int16_t phi, bool) {
      float sine, cosine;
      Sincos(phi * phase.FloatFactor(), sine, cosine);
      return Orva16sc{round(r * cosine * mag.FloatFactor()), round(r * sine * mag.FloatFactor())};
    });
  }
}

}  // namespace
}  // namespace tzm_test
