// FIR design: taps against the formulas in long double, symmetry to the bit, unit gain, statuses, failures.
#include <signal_tzm/fir.h>
#include <signal_tzm/generate.h>

#include <algorithm>
#include <cmath>

#include "support/testing.h"

namespace tzm_test::design_test {

constexpr long double kPi = 3.14159265358979323846264338327950288L, kEpsilon = 0x1p-52L;

enum Shape { kLowpass, kHighpass, kBandpass, kBandstop };
constexpr Shape kShapes[] = {kLowpass, kHighpass, kBandpass, kBandstop};

OrvaStatus Design(Shape shape, double low, double high, double* taps, int32_t size, int32_t window, int32_t normal,
                  FIRGenState* buffer) {
  switch (shape) {
    case kLowpass: return ORVAS_FIRGenLowpass_64f(low, taps, size, window, normal, buffer);
    case kHighpass: return ORVAS_FIRGenHighpass_64f(low, taps, size, window, normal, buffer);
    case kBandpass: return ORVAS_FIRGenBandpass_64f(low, high, taps, size, window, normal, buffer);
    default: return ORVAS_FIRGenBandstop_64f(low, high, taps, size, window, normal, buffer);
  }
}

// The ideal response's tap at m apart from the window; at 0 its limit.
long double Ideal(Shape shape, long double low, long double high, long double m, bool even) {
  const auto sine = [&](long double f) { return m == 0 ? 2 * f : std::sin(2 * kPi * f * m) / kPi / m; };
  switch (shape) {
    case kLowpass: return sine(low);
    case kHighpass: return even ? -std::cos(2 * kPi * low * m) / kPi / m : (m == 0) - sine(low);
    case kBandpass: return sine(high) - sine(low);
    default: return sine(low) - sine(high) + (m == 0 ? 1 : even ? std::sin(kPi * m) / kPi / m : 0);
  }
}

struct Band { double low, high; };

// The error of a band's two tones: three roundings a step, which grow by 1/sin(b) at most, and the start angle's.
long double ToneBound(int32_t size, Band band) {
  const auto growth = [](double f) { return 1 / std::sin(2 * kPi * f); };
  return 2 * 4 * kEpsilon * size * std::max(growth(band.low), growth(band.high));
}

// Normalising multiplies all taps by one factor, which makes the gain 1 at one frequency.
TEST(FIRGen, TapsFollowTheFormulasAndNormalisedHaveUnitGain) {
  OrvaStatus (*const windows[])(double*, int32_t) = {ORVAS_WinBartlett_64f_I, ORVAS_WinBlackmanOpt_64f_I,
                                                     ORVAS_WinHamming_64f_I, ORVAS_WinHann_64f_I};
  FIRGenState* buffer = nullptr;
  ASSERT_EQ(ORVAS_FIRGenInit_64f(254, &buffer), 0);
  for (Shape shape : kShapes)
    for (Band band : {Band{0.1, 0.3}, {0.25, 0.375}, {0.013, 0.49}})
      for (int32_t size : {5, 6, 7, 8, 9, 31, 64, 101, 254})
        for (int32_t window = 0; window < 4; ++window) {
          SCOPED_TRACE(testing::Message() << "shape " << shape << ", " << size << " taps, window " << window);
          const bool even = size % 2 == 0, odd = shape == kHighpass && even;
          GuardedArray<double> taps(size, size % 3 == 0 ? Place::kUnaligned : Place::kEnd), scaled(size);
          ASSERT_EQ(Design(shape, band.low, band.high, taps.data(), size, window, 0, buffer), 0);
          ASSERT_EQ(Design(shape, band.low, band.high, scaled.data(), size, window, 1, buffer), 0);
          std::vector<double> weights(size, 1.0);
          ASSERT_EQ(windows[window](weights.data(), size), 0);
          if (!even) weights[size / 2] = 1;
          const double at = shape == kHighpass ? 0.5 : shape == kBandpass ? (band.low + band.high) / 2 : 0;
          const auto bySize = [](double a, double b) { return std::abs(a) < std::abs(b); };
          const size_t largest = std::max_element(taps.begin(), taps.end(), bySize) - taps.begin();
          const long double factor = scaled[largest] / static_cast<long double>(taps[largest]);
          EXPECT_GT(factor, 0);
          long double gain = 0, sum = 0;
          for (int32_t k = 0; k < size; ++k) {
            const long double m = k - (size - 1) / 2.0L, angle = 2 * kPi * at * m;
            const long double ideal = weights[k] * Ideal(shape, band.low, band.high, m, even);
            const long double tones = m == 0 ? 0 : ToneBound(size, band) * std::abs(weights[k] / m);
            ASSERT_LE(std::abs(taps[k] - ideal), tones + 4 * kEpsilon * std::abs(ideal)) << k;
            ASSERT_LE(std::abs(scaled[k] - taps[k] * factor), 2 * kEpsilon * std::abs(scaled[k])) << k;
            ASSERT_EQ(odd ? -taps[k] : taps[k], taps[size - 1 - k]) << k;
            ASSERT_EQ(odd ? -scaled[k] : scaled[k], scaled[size - 1 - k]) << k;
            gain += scaled[k] * (odd ? std::sin(angle) : std::cos(angle));
            sum += std::abs(scaled[k]);
          }
          const long double bound = at > 0 && at < 0.5 ? ToneBound(size, {at, at}) : size * kEpsilon;
          EXPECT_LE(std::abs(std::abs(gain) - 1), sum * bound);
        }
  EXPECT_EQ(ORVAS_FIRGenRelease(buffer), 0);
}

TEST(FIRGen, StatusesInTheirOrder) {
  FIRGenState* buffer = nullptr;
  EXPECT_EQ(ORVAS_FIRGenInit_64f(4, &buffer), ORVA_STS_SIZE_ERR);
  for (int32_t size : {INT32_MAX, 89478485}) EXPECT_EQ(ORVAS_FIRGenInit_64f(size, &buffer), ORVA_STS_OVERFLOW_ERR);
  EXPECT_EQ(WithoutMemory([&] { return ORVAS_FIRGenInit_64f(89478484, &buffer); }), ORVA_STS_MEM_ALLOC_ERR);
  EXPECT_EQ(buffer, nullptr);
  ASSERT_EQ(ORVAS_FIRGenInit_64f(5, &buffer), 0);
  ORVAS_FIRGenRelease(buffer);
  ASSERT_EQ(ORVAS_FIRGenInit_64f(8, &buffer), 0);
  for (Shape shape : kShapes) {
    std::vector<double> taps(8, 7), unscaled(8), other(8);
    const auto status = [&](double low, double high, int32_t size = 8, int32_t window = 9) {
      return Design(shape, low, high, taps.data(), size, window, 0, buffer);
    };
    EXPECT_EQ(status(0.1, 0.2, 4), ORVA_STS_SIZE_ERR);
    for (double bad : {0.0, -0.1, 0.5, double{NAN}}) EXPECT_EQ(status(bad, 0.3), ORVA_STS_SIZE_ERR) << bad;
    const bool band = shape == kBandpass || shape == kBandstop;  // only these look at an upper frequency
    for (double bad : {0.0, 0.1, 0.5, double{NAN}})
      EXPECT_EQ(status(0.1, bad), band ? ORVA_STS_SIZE_ERR : ORVA_STS_FIRGEN_WINDOW_ERR) << bad;
    for (int32_t window : {4, -1}) EXPECT_EQ(status(0.1, 0.2, 8, window), ORVA_STS_FIRGEN_WINDOW_ERR);
    EXPECT_EQ(taps, std::vector<double>(8, 7));
    // Only a flag of exactly 1 scales.
    ASSERT_EQ(Design(shape, 0.1, 0.2, unscaled.data(), 8, ORVA_WINDOW_HANN, 0, buffer), 0);
    ASSERT_EQ(Design(shape, 0.1, 0.2, other.data(), 8, ORVA_WINDOW_HANN, 2, buffer), 0);
    EXPECT_EQ(other, unscaled);
  }
  EXPECT_EQ(ORVAS_FIRGenRelease(buffer), 0);
}

}  // namespace tzm_test::design_test
