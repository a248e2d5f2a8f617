// Tones and chirps: bits of a plain restatement, and the functions that they stand for.
#include <gtest/gtest.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>
#include <signal_tzm/generate.h>

#include <cmath>

#include "support/compare.h"
#include "support/guarded.h"

namespace tzm_test {
namespace {

constexpr double kTwoPi = 6.283185307179586;

// The cosine (quarter 0) or sine (1) of p + n w for `len` values of n, the last of which, past the steps, are the
// system's.
std::vector<double> Sinusoid(int len, int step, double w, double p, int quarter) {
  const double angles[] = {p, p + w};
  double cw, y[4];
  ORVAS_Cos_64f(&w, &cw, 1);
  (quarter == 0 ? ORVAS_Cos_64f : ORVAS_Sin_64f)(angles, y, 2);
  y[2] = std::fma(2 * cw, y[1], -y[0]);
  y[3] = std::fma(2 * cw, y[2], -y[1]);
  const double k = std::fma(2 * cw, 2 * cw, -2.0);
  std::vector<double> values(y, y + 4);
  for (int n = 4; n < len; ++n) {
    const double angle = std::fma(w, n, p), value = quarter == 0 ? std::cos(angle) : std::sin(angle);
    const double *before = &values[values.size() - 4], next = std::fma(k, before[2], -before[0]);
    values.push_back(n < len - len % step ? next : value);
    EXPECT_FALSE(std::abs(values.back() - value) > 1e-11) << "the sinusoid itself, or a NaN";
  }
  return values;
}

template <class Part>
Part ToneSample(double value) {
  if constexpr (std::is_integral_v<Part>)
    return static_cast<Part>(std::isnan(value) ? 0 : std::clamp(std::trunc(value), -32768.0, 32767.0));
  else return static_cast<Part>(value);
}

template <class Sample, class Magnitude, class Real>
void CheckTone(OrvaStatus (*tone)(Sample*, int32_t, Magnitude, Real, const Real*), Magnitude magn) {
  constexpr bool kComplex = SampleOf<Sample>().parts == 2;
  using Part = std::conditional_t<std::is_integral_v<Magnitude>, Orva16s, Real>;
  for (int len = 1; len < 140; len += len < 20 ? 1 : 13) {
    for (Real phase : {Real(0), Real(1.25), Real(6.2831850), Real(NAN)}) {
      for (Real frequency : {Real(0), Real(0.017), Real(0.4999), kComplex ? Real(0.97) : Real(0.3), Real(NAN)}) {
        std::vector<Sample> expected(static_cast<size_t>(len));
        for (int quarter = 0; quarter < (kComplex ? 2 : 1); ++quarter) {
          const auto values = Sinusoid(len, std::is_integral_v<Magnitude> ? 4 : 2, frequency * kTwoPi, phase, quarter);
          for (size_t n = 0; n < expected.size(); ++n) {
            const Part part = ToneSample<Part>(values[n] * static_cast<double>(magn));
            if constexpr (kComplex) (quarter == 0 ? expected[n].re : expected[n].im) = part;
            else expected[n] = part;
          }
        }
        GuardedArray<Sample> dst(expected.size());
        ASSERT_EQ(tone(dst.data(), len, magn, frequency, &phase), ORVA_STS_NO_ERR);
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
  CheckTone<Orva64fc, double>(ORVAS_Tone_64fc, NAN);
  CheckTone(ORVAS_Tone_64fc, 0.1);
}

// Phase, then length, then magnitude and frequency. The turn in binary32 is above 2 pi.
TEST(Tone, StatusOrder) {
  Orva16s x[5] = {7};
  const Orva32f zero = 0, negative = -1e-9f, turn = 6.2831855f, below = 6.283185f;
  EXPECT_EQ(ORVAS_Tone_16s(nullptr, 0, 5, 0.1f, &negative), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(ORVAS_Tone_16s(x, 0, 5, 0.1f, &negative), ORVA_STS_RANGE_ERR);
  EXPECT_EQ(ORVAS_Tone_16s(x, 5, 5, 0.1f, &turn), ORVA_STS_RANGE_ERR);
  EXPECT_EQ(ORVAS_Tone_16s(x, 0, 0, 0.1f, &zero), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(x[0], 7);
  EXPECT_EQ(ORVAS_Tone_16s(x, 5, 5, 0.0f, &below), ORVA_STS_NO_ERR);
  const Orva64f turn64 = kTwoPi, below64 = std::nextafter(kTwoPi, 0.0);
  Orva64f y;
  EXPECT_EQ(ORVAS_Tone_64f(&y, 1, 5, 0.1, &turn64), ORVA_STS_RANGE_ERR);
  EXPECT_EQ(ORVAS_Tone_64f(&y, 1, 5, 0.1, &below64), ORVA_STS_NO_ERR);
}

template <class T, class F>
void CheckJaehne(OrvaStatus (*jaehne)(T*, int32_t, T), void (*vector_sine)(int32_t, const F*, F*),
                 std::initializer_list<T> magnitudes) {
  for (int len = 1; len < 1100; len += len < 41 ? 1 : 107) {
    for (T magn : magnitudes) {
      std::vector<T> expected(static_cast<size_t>(len));
      const F s = static_cast<F>(1.5707963267948966 / len);
      for (int i = 0; i < len && len > 1; ++i) {
        F angle = s * static_cast<F>(i) * static_cast<F>(i);
        double value = std::sin(static_cast<double>(angle)) * static_cast<double>(magn);
        if (i < len - len % static_cast<int>(16 / sizeof(F))) {
          vector_sine(1, &angle, &angle);
          value = angle * static_cast<F>(magn);
        }
        using Limits = std::numeric_limits<T>;
        if (std::is_integral_v<T>) value = std::clamp<double>(std::nearbyint(value), Limits::min(), Limits::max());
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

}  // namespace
}  // namespace tzm_test
