// Phase and polar forms: against their composition from the companions' functions, and sharp values.
#include <gtest/gtest.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "support/compare.h"
#include "support/faults.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

int16_t RoundSaturated(double value) {
  if (std::isnan(value)) return 0;
  return static_cast<int16_t>(std::clamp(std::nearbyint(value), -32768.0, 32767.0));
}
float Arctan(float x) { vsatan(1, &x, &x); return x; }
double Arctan(double x) { vdatan(1, &x, &x); return x; }
template <class T>
T Arctan2(T y, T x) {
  if constexpr (sizeof(T) == 4) vsatan2(1, &y, &x, &y);
  else vdatan2(1, &y, &x, &y);
  return y;
}

// arctan(im/re) and a correction that moves it to the right quadrant.
template <class T>
T Angle(T re, T im) {
  const T pi = static_cast<T>(3.14159265358979323846), half = re < 0 ? pi : T(0);
  return Arctan(im / re) + (im < 0 ? -half : half);
}

template <class Complex>
struct Source {  // one set of samples in both forms
  using Part = decltype(Complex::re);
  Source(int32_t len, Variety variety) : z(RandomArray<Complex>(len, len, variety)), re(len), im(len) {
    for (int32_t i = 0; i < len; ++i) re[i] = z[i].re, im[i] = z[i].im;
  }
  GuardedArray<Complex> z;
  GuardedArray<Part> re, im;
};

template <class Complex, class Result, class Value, class... Scale>
void CheckPhase(OrvaStatus (*complex)(const Complex*, Result*, int32_t, Scale...),
                OrvaStatus (*pair)(const decltype(Complex::re)*, const decltype(Complex::re)*, Result*, int32_t,
                                   Scale...),
                Value value, Scale... scale) {
  for (Variety variety : kVarieties) {
    for (int32_t len = 1; len <= 40; ++len) {
      Source<Complex> src(len, variety);
      GuardedArray<Result> dst(len);
      std::vector<Result> expected(len);
      for (int32_t i = 0; i < len; ++i) expected[i] = value(src.re[i], src.im[i]);
      ASSERT_EQ(complex(src.z.data(), dst.data(), len, scale...), ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("complex", expected.data(), dst.data(), len, len));
      ASSERT_EQ(pair(src.re.data(), src.im.data(), dst.data(), len, scale...), ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("pair", expected.data(), dst.data(), len, len));
    }
  }
}

TEST(Phase, ArctangentOfTheRatioAndACorrection) {
  CheckPhase(ORVAS_Phase_32fc, ORVAS_Phase_32f, [](float re, float im) { return Angle(re, im); });
  CheckPhase(ORVAS_Phase_64fc, ORVAS_Phase_64f, [](double re, double im) { return Angle(re, im); });
  CheckPhase(ORVAS_Phase_16sc32f, ORVAS_Phase_16s32f, [](float re, float im) { return Angle(re, im); });
  for (int exponent : {0, -13, -14, 1, -1000, 1000}) {
    const float factor = static_cast<float>(std::ldexp(1, -exponent));
    CheckPhase(ORVAS_Phase_16sc_S, ORVAS_Phase_16s_S,
               [&](float re, float im) { return RoundSaturated(Angle(re, im) * factor); }, std::ldexp(1, exponent));
  }
}

TEST(Phase, Axes) {
  const Orva32fc z[] = {{1, 1}, {-1, 0}, {-1, -0.0f}, {0, -1}, {1, -0.0f}, {0, 0}, {-1, -1}, {-0.0f, 1}};
  float angle[8];
  EXPECT_EQ(ORVAS_Phase_32fc(z, angle, 8), ORVA_STS_NO_ERR);
  const float pi = 3.14159274f;
  EXPECT_FLOAT_EQ(angle[0], pi / 4);
  EXPECT_EQ(angle[1], pi);
  EXPECT_EQ(angle[2], pi);  // a negative zero is not below 0
  EXPECT_FLOAT_EQ(angle[3], -pi / 2);
  EXPECT_EQ(angle[4], 0);
  EXPECT_TRUE(std::isnan(angle[5]));
  EXPECT_FLOAT_EQ(angle[6], -0.75f * pi);
  // 1/-0 is negative infinity, and no correction makes up for it.
  EXPECT_FLOAT_EQ(angle[7], -pi / 2);
  const Orva16sc zero = {0, 0};
  int16_t scaled = 7;
  EXPECT_EQ(ORVAS_Phase_16sc_S(&zero, &scaled, 1, 1), ORVA_STS_NO_ERR);
  EXPECT_EQ(scaled, 0);
}

TEST(Phase, FailedAllocationLeavesTheDestination) {
  const Orva32fc z = {1, 1};
  float angle = 7;
  EXPECT_EQ(ForEachFault([&] { return angle == 7 ? ORVAS_Phase_32fc(&z, &angle, 1) : ORVA_STS_BAD_ARG_ERR; }), 3);
  const Orva16sc sample = {1, 1};
  int16_t dst;
  EXPECT_EQ(ForEachFault([&] { return ORVAS_Phase_16sc_S(&sample, &dst, 1, 1); }), 4);
}

template <class T, class Complex>
void CheckPolar(OrvaStatus (*pair)(const T*, const T*, T*, T*, int32_t),
                OrvaStatus (*complex)(const Complex*, T*, T*, int32_t),
                OrvaStatus (*magnitude)(const T*, const T*, T*, int32_t),
                OrvaStatus (*complexMagnitude)(const Complex*, T*, int32_t),
                OrvaStatus (*back)(const T*, const T*, T*, T*, int32_t),
                OrvaStatus (*backComplex)(const T*, const T*, Complex*, int32_t),
                void (*sincos)(int32_t, const T*, T*, T*)) {
  for (Variety variety : kVarieties) {
    for (int32_t len : {1, 2, 3, 5, 17, 40}) {
      Source<Complex> src(len, variety);
      GuardedArray<T> mag(len), phase(len);
      std::vector<T> expectedMag(len), expectedPhase(len);
      for (int32_t i = 0; i < len; ++i) expectedPhase[i] = Arctan2(src.im[i], src.re[i]);
      magnitude(src.re.data(), src.im.data(), expectedMag.data(), len);
      ASSERT_EQ(pair(src.re.data(), src.im.data(), mag.data(), phase.data(), len), ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("phase", expectedPhase.data(), phase.data(), len, len));
      ASSERT_TRUE(SameBits("magnitude", expectedMag.data(), mag.data(), len, len));
      complexMagnitude(src.z.data(), expectedMag.data(), len);
      ASSERT_EQ(complex(src.z.data(), mag.data(), phase.data(), len), ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("phase", expectedPhase.data(), phase.data(), len, len));
      ASSERT_TRUE(SameBits("magnitude", expectedMag.data(), mag.data(), len, len));

      // Any two arrays are magnitudes and angles.
      GuardedArray<T> re(len), im(len);
      GuardedArray<Complex> z(len);
      std::vector<T> expectedRe(len), expectedIm(len);
      for (int32_t i = 0; i < len; ++i) {
        T sine, cosine;
        sincos(1, &src.im[i], &sine, &cosine);
        expectedRe[i] = src.re[i] * cosine;
        expectedIm[i] = src.re[i] * sine;
      }
      ASSERT_EQ(back(src.re.data(), src.im.data(), re.data(), im.data(), len), ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("re", expectedRe.data(), re.data(), len, len));
      ASSERT_TRUE(SameBits("im", expectedIm.data(), im.data(), len, len));
      ASSERT_EQ(backComplex(src.re.data(), src.im.data(), z.data(), len), ORVA_STS_NO_ERR);
      for (int32_t i = 0; i < len; ++i) re[i] = z[i].re, im[i] = z[i].im;
      ASSERT_TRUE(SameBits("re", expectedRe.data(), re.data(), len, len));
      ASSERT_TRUE(SameBits("im", expectedIm.data(), im.data(), len, len));
    }
  }
}

TEST(PolarForms, Floats) {
  CheckPolar<Orva32f, Orva32fc>(ORVAS_CartToPolar_32f, ORVAS_CartToPolar_32fc, ORVAS_Magnitude_32f,
                                ORVAS_Magnitude_32fc, ORVAS_PolarToCart_32f, ORVAS_PolarToCart_32fc, vssincos);
  CheckPolar<Orva64f, Orva64fc>(ORVAS_CartToPolar_64f, ORVAS_CartToPolar_64fc, ORVAS_Magnitude_64f,
                                ORVAS_Magnitude_64fc, ORVAS_PolarToCart_64f, ORVAS_PolarToCart_64fc, vdsincos);
}

TEST(PolarForms, Integers) {
  struct { double magScale, phaseScale; int magExponent, phaseExponent; } scales[] = {
      {1, 1, 0, 0}, {3, 0x1p-13, 1, -13}, {0.3, 0x1p13, -1, 13}, {0x1p-1000, 1, -1000, 0}, {1, 0x1p-1000, 0, -1000}};
  for (auto s : scales) {
    const float magFactor = static_cast<float>(std::ldexp(1, -s.magExponent));
    const float phaseFactor = static_cast<float>(std::ldexp(1, -s.phaseExponent));
    for (int32_t len = 1; len <= 40; ++len) {
      Source<Orva16sc> src(len, len % 2 ? Variety::kWide : Variety::kSpecial);
      GuardedArray<int16_t> mag(len), phase(len);
      std::vector<int16_t> expectedMag(len), expectedPhase(len);
      for (int32_t i = 0; i < len; ++i)
        expectedPhase[i] = RoundSaturated(Arctan2<float>(src.im[i], src.re[i]) * phaseFactor);
      ORVAS_Magnitude_16sc_S(src.z.data(), expectedMag.data(), len, s.magScale);
      ASSERT_EQ(ORVAS_CartToPolar_16sc_S(src.z.data(), mag.data(), phase.data(), len, s.magScale, s.phaseScale),
                ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("phase", expectedPhase.data(), phase.data(), len, len));
      ASSERT_TRUE(SameBits("magnitude", expectedMag.data(), mag.data(), len, len));

      GuardedArray<Orva16sc> z(len);
      std::vector<Orva16sc> expected(len);
      for (int32_t i = 0; i < len; ++i) {
        float sine, cosine;
        const float phaseSample = src.im[i], angle = phaseSample * phaseFactor, m = src.re[i];
        vssincos(1, &angle, &sine, &cosine);
        expected[i] = {RoundSaturated((m * cosine) * magFactor), RoundSaturated((m * sine) * magFactor)};
      }
      ASSERT_EQ(ORVAS_PolarToCart_16sc_S(src.re.data(), src.im.data(), z.data(), len, s.magScale, s.phaseScale),
                ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("ORVAS_PolarToCart_16sc_S", expected.data(), z.data(), len, len));
    }
  }
}

TEST(PolarForms, EitherScaleIsTested) {
  const Orva16sc z = {3, 4};
  int16_t mag = 7, phase = 7;
  EXPECT_EQ(ORVAS_CartToPolar_16sc_S(&z, &mag, &phase, 1, 1, 0), ORVA_STS_SCALE_ERR);
  EXPECT_EQ(ORVAS_CartToPolar_16sc_S(&z, &mag, &phase, 1, NAN, 1), ORVA_STS_SCALE_ERR);
  EXPECT_EQ(mag + phase, 14);
}

}  // namespace
}  // namespace tzm_test
