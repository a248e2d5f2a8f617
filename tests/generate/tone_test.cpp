// Tones and chirps: bits of a plain restatement, and the functions that they stand for.
#include <gtest/gtest.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>
#include <signal_tzm/generate.h>

#include <cmath>
#include <limits>

#include "support/compare.h"
#include "support/guarded.h"

namespace tzm_test {
namespace {

constexpr double kTwoPi = 6.283185307179586;

// Sample n of the cosine (quarter 0) or sine (quarter 1) of angles p + n w, of `len` samples, the last ones of
// which are not made by the recurrence.
double ToneValue(int n, int len, int step, double w, double p, int quarter) {
  if (n >= 4 && n >= len - len % step) return quarter == 0 ? std::cos(std::fma(w, n, p)) : std::sin(std::fma(w, n, p));
  const double angles[] = {p, p + w};
  double cw;
  ORVAS_Cos_64f(&w, &cw, 1);
  double y[4];
  (quarter == 0 ? ORVAS_Cos_64f : ORVAS_Sin_64f)(angles, y, 2);
  y[2] = std::fma(2 * cw, y[1], -y[0]);
  y[3] = std::fma(2 * cw, y[2], -y[1]);
  double before = y[n % 2], now = n < 2 ? before : y[2 + n % 2];
  const double k = std::fma(2 * cw, 2 * cw, -2.0);
  for (int at = n % 2 + 2; at < n; at += 2) {
    const double next = std::fma(k, now, -before);
    before = now;
    now = next;
  }
  return now;
}

template <class Part>
Part ToneSample(double value) {
  if constexpr (std::is_integral_v<Part>) {
    if (std::isnan(value)) return 0;
    return static_cast<Part>(std::clamp(std::trunc(value), -32768.0, 32767.0));
  } else {
    return static_cast<Part>(value);
  }
}

template <class Sample, class Magnitude, class Real>
void CheckTone(OrvaStatus (*tone)(Sample*, int32_t, Magnitude, Real, const Real*), Magnitude magn) {
  constexpr bool kComplex = SampleOf<Sample>().parts == 2;
  constexpr int kStep = std::is_integral_v<Magnitude> ? 4 : 2;
  const Real nan = std::numeric_limits<Real>::quiet_NaN();
  for (int len = 1; len < 140; len += len < 20 ? 1 : 13) {
    for (Real phase : {Real(0), Real(1.25), Real(6.2831850), nan}) {
      for (Real frequency : {Real(0), Real(0.017), Real(0.25), Real(0.4999), kComplex ? Real(0.97) : Real(0.3), nan}) {
        GuardedArray<Sample> dst(static_cast<size_t>(len));
        ASSERT_EQ(tone(dst.data(), len, magn, frequency, &phase), ORVA_STS_NO_ERR);
        std::vector<Sample> expected(static_cast<size_t>(len));
        for (int n = 0; n < len; ++n) {
          const auto part = [&](int quarter) {
            const double value = ToneValue(n, len, kStep, static_cast<double>(frequency) * kTwoPi, phase, quarter);
            using Part = std::conditional_t<std::is_integral_v<Magnitude>, Orva16s, Real>;
            return ToneSample<Part>(value * static_cast<double>(magn));
          };
          if constexpr (kComplex) expected[static_cast<size_t>(n)] = {part(0), part(1)};
          else expected[static_cast<size_t>(n)] = part(0);
        }
        ASSERT_TRUE(SameBits("tone", expected.data(), dst.data(), expected.size())) << len << " " << frequency;
      }
    }
  }
}

TEST(Tone, Bits) {
  CheckTone(ORVAS_Tone_16s, Orva16s{32767});
  CheckTone(ORVAS_Tone_32f, 1.75f);
  CheckTone(ORVAS_Tone_64f, 1e3);
  CheckTone(ORVAS_Tone_16sc, Orva16s{1001});
  CheckTone(ORVAS_Tone_32fc, 1e-3f);
  CheckTone(ORVAS_Tone_64fc, std::numeric_limits<double>::quiet_NaN());
  CheckTone(ORVAS_Tone_64fc, 0.1);
}

// The sinusoid itself, at whatever frequency and phase.
TEST(Tone, FrequencyAndPhase) {
  for (double frequency : {0.001, 0.1234, 0.25, 0.4, 0.77}) {
    for (double phase : {0.0, 0.5, 4.0}) {
      std::vector<Orva64fc> dst(20001);
      ASSERT_EQ(ORVAS_Tone_64fc(dst.data(), 20001, 3, frequency, &phase), ORVA_STS_NO_ERR);
      for (size_t n = 0; n < dst.size(); n += 101) {
        const long double angle = 2 * 3.14159265358979323846264338327950288L * frequency * static_cast<long double>(n) + phase;
        ASSERT_NEAR(dst[n].re, static_cast<double>(3 * cosl(angle)), 1e-8) << frequency << " " << n;
        ASSERT_NEAR(dst[n].im, static_cast<double>(3 * sinl(angle)), 1e-8) << frequency << " " << n;
      }
    }
  }
}

// Phase, then length, then magnitude and frequency.
TEST(Tone, StatusOrder) {
  Orva16s x[5] = {7};
  const Orva32f phase = 0, negative = -1e-9f, turn = 6.2831855f, below = 6.283185f;
  EXPECT_EQ(ORVAS_Tone_16s(nullptr, 0, 5, 0.1f, &negative), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(ORVAS_Tone_16s(x, 0, 5, 0.1f, &negative), ORVA_STS_RANGE_ERR);
  EXPECT_EQ(ORVAS_Tone_16s(x, 5, 5, 0.1f, &turn), ORVA_STS_RANGE_ERR);
  EXPECT_EQ(ORVAS_Tone_16s(x, 0, 0, 0.1f, &phase), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(ORVAS_Tone_16s(x, 5, -1, 0.1f, &phase), ORVA_STS_RANGE_ERR);
  EXPECT_EQ(ORVAS_Tone_16s(x, 5, 5, 0.5f, &phase), ORVA_STS_RANGE_ERR);
  EXPECT_EQ(x[0], 7);
  EXPECT_EQ(ORVAS_Tone_16s(x, 5, 5, 0.0f, &below), ORVA_STS_NO_ERR);
  Orva64f y;
  const Orva64f turn64 = kTwoPi, below64 = std::nextafter(kTwoPi, 0.0);
  EXPECT_EQ(ORVAS_Tone_64f(&y, 1, 5, 0.1, &turn64), ORVA_STS_RANGE_ERR);
  EXPECT_EQ(ORVAS_Tone_64f(&y, 1, 5, 0.1, &below64), ORVA_STS_NO_ERR);
}

template <class T, class F>
void CheckJaehne(OrvaStatus (*jaehne)(T*, int32_t, T), void (*vector_sine)(int32_t, const F*, F*), std::vector<T> magnitudes) {
  constexpr int kBlock = 16 / sizeof(F);
  for (int len : {1, 2, 3, 4, 5, 6, 7, 8, 15, 16, 17, 19, 20, 23, 31, 40, 255, 256, 257, 300, 1000, 1027}) {
    for (T magn : magnitudes) {
      std::vector<T> expected(static_cast<size_t>(len));
      const F s = static_cast<F>(1.5707963267948966 / len);
      for (int i = 0; i < len && len > 1; ++i) {
        F angle = s * static_cast<F>(i) * static_cast<F>(i);
        double value = std::sin(static_cast<double>(angle)) * static_cast<double>(magn);
        if (i < len - len % kBlock) {
          vector_sine(1, &angle, &angle);
          value = angle * static_cast<F>(magn);
        }
        if constexpr (std::is_integral_v<T>) {
          using Limits = std::numeric_limits<T>;
          value = std::clamp<double>(std::nearbyint(value), Limits::min(), Limits::max());
        }
        expected[static_cast<size_t>(i)] = static_cast<T>(value);
      }
      GuardedArray<T> dst(expected.size());
      ASSERT_EQ(jaehne(dst.data(), len, magn), ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("chirp", expected.data(), dst.data(), expected.size())) << "length " << len;
    }
  }
}

TEST(Jaehne, Bits) {
  CheckJaehne<Orva8u>(ORVAS_VectorJaehne_8u, vssin, {0, 100, 255});
  CheckJaehne<Orva16u>(ORVAS_VectorJaehne_16u, vssin, {0, 100, 65535});
  CheckJaehne<Orva16s>(ORVAS_VectorJaehne_16s, vssin, {0, 100, 32767});
  CheckJaehne<Orva32s>(ORVAS_VectorJaehne_32s, vdsin, {0, 100, 2147483647});
  CheckJaehne<Orva32f>(ORVAS_VectorJaehne_32f, vssin, {0, 1, 1e30f, NAN});
  CheckJaehne<Orva64f>(ORVAS_VectorJaehne_64f, vdsin, {0, 1, 1e300});
}

TEST(Jaehne, Formula) {
  std::vector<Orva64f> dst(777);
  ASSERT_EQ(ORVAS_VectorJaehne_64f(dst.data(), 777, 2), ORVA_STS_NO_ERR);
  for (size_t i = 0; i < dst.size(); i += 7) {
    const long double n = static_cast<long double>(i);
    ASSERT_NEAR(dst[i], static_cast<double>(2 * sinl(n * n * acosl(0) / 777)), 1e-12);
  }
}

}  // namespace
}  // namespace tzm_test
