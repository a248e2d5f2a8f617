// FIR design: taps against the formulas in long double, symmetry to the bit, unit gain, statuses, failures.
#include <signal_tzm/fir.h>

#include <gtest/gtest.h>
#include <signal_tzm/generate.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "support/arguments.h"
#include "support/compare.h"
#include "support/faults.h"
#include "support/guarded.h"

namespace tzm_test {
namespace {

constexpr long double kPi = 3.14159265358979323846264338327950288L, kEpsilon = 0x1p-52L;

enum Shape { kLowpass, kHighpass, kBandpass, kBandstop };
constexpr Shape kShapes[] = {kLowpass, kHighpass, kBandpass, kBandstop};

bool IsBand(Shape shape) { return shape == kBandpass || shape == kBandstop; }

OrvaStatus Design(Shape shape, double low, double high, double* taps, int32_t size, int32_t window, int32_t normal,
                  FIRGenState* buffer) {
  switch (shape) {
    case kLowpass: return ORVAS_FIRGenLowpass_64f(low, taps, size, window, normal, buffer);
    case kHighpass: return ORVAS_FIRGenHighpass_64f(low, taps, size, window, normal, buffer);
    case kBandpass: return ORVAS_FIRGenBandpass_64f(low, high, taps, size, window, normal, buffer);
    default: return ORVAS_FIRGenBandstop_64f(low, high, taps, size, window, normal, buffer);
  }
}

// The ideal response's tap at m, apart from the window.
long double Ideal(Shape shape, long double low, long double high, long double m, bool even) {
  const auto sine = [&](long double f) { return std::sin(2 * kPi * f * m) / kPi; };
  switch (shape) {
    case kLowpass: return sine(low) / m;
    case kHighpass: return (even ? -std::cos(2 * kPi * low * m) / kPi : -sine(low)) / m;
    case kBandpass: return (sine(high) - sine(low)) / m;
    default: return (sine(low) - sine(high) + (even ? std::sin(kPi * m) / kPi : 0)) / m;
  }
}
double Centre(Shape shape, double low, double high) {
  switch (shape) {
    case kLowpass: return 2 * low;
    case kHighpass: return 1 - 2 * low;
    case kBandpass: return 2 * (high - low);
    default: return 1 + 2 * (low - high);
  }
}

OrvaStatus (*const kWindows[])(double*, int32_t) = {ORVAS_WinBartlett_64f_I, ORVAS_WinBlackmanOpt_64f_I,
                                                     ORVAS_WinHamming_64f_I, ORVAS_WinHann_64f_I};

struct Band { double low, high; };
constexpr Band kBands[] = {{0.1, 0.3}, {0.25, 0.375}, {0.013, 0.49}};
constexpr int32_t kSizes[] = {5, 6, 7, 8, 9, 31, 64, 101, 254};

// A tone's error: the recurrence makes less than three roundings a step, which grow by 1/sin(b) at most;
// the start angle carries its own rounding. Two tones in a band.
long double ToneBound(int32_t size, Band band) {
  const auto growth = [](double f) { return 1 / std::sin(2 * kPi * f); };
  return 2 * 4 * kEpsilon * size * std::max(growth(band.low), growth(band.high));
}

TEST(FIRGen, TapsFollowTheFormulas) {
  FIRGenState* buffer = nullptr;
  ASSERT_EQ(ORVAS_FIRGenInit_64f(254, &buffer), 0);
  for (Shape shape : kShapes) {
    for (Band band : kBands) {
      for (int32_t size : kSizes) {
        for (int32_t window = 0; window < 4; ++window) {
          const bool even = size % 2 == 0;
          GuardedArray<double> taps(size, size % 3 == 0 ? Place::kUnaligned : Place::kEnd);
          SetCallUnderTest("FIRGen " + std::to_string(shape) + " taps " + std::to_string(size));
          ASSERT_EQ(Design(shape, band.low, band.high, taps.data(), size, window, 0, buffer), 0);
          std::vector<double> weights(size, 1.0);
          ASSERT_EQ(kWindows[window](weights.data(), size), 0);
          for (int32_t k = 0; k < size / 2; ++k) {
            const long double m = k - (size - 1) / 2.0L;
            const long double expected = weights[k] * Ideal(shape, band.low, band.high, m, even);
            const long double bound = ToneBound(size, band) * std::abs(weights[k] / m) + 4 * kEpsilon * std::abs(expected);
            ASSERT_NEAR(taps[k], static_cast<double>(expected), static_cast<double>(bound))
                << "shape " << shape << ", " << size << " taps, window " << window << ", tap " << k;
            const bool odd = shape == kHighpass && even;
            const double mirrored = odd ? -taps[k] : taps[k];
            ASSERT_TRUE(SameBits("mirror", &mirrored, &taps[size - 1 - k], 1));
          }
          if (!even) {
            EXPECT_EQ(taps[size / 2], Centre(shape, band.low, band.high));
          }
        }
      }
    }
  }
  EXPECT_EQ(ORVAS_FIRGenRelease(buffer), 0);
}

// One factor for all taps makes the gain 1; the sum of their magnitudes bounds its error.
TEST(FIRGen, NormalisedGainIsOne) {
  FIRGenState* buffer = nullptr;
  ASSERT_EQ(ORVAS_FIRGenInit_64f(254, &buffer), 0);
  for (Shape shape : kShapes) {
    for (Band band : kBands) {
      const double at = shape == kHighpass ? 0.5 : shape == kBandpass ? (band.low + band.high) / 2 : 0;
      for (int32_t size : kSizes) {
        std::vector<double> taps(size), plain(size);
        ASSERT_EQ(Design(shape, band.low, band.high, taps.data(), size, 2, 1, buffer), 0);
        ASSERT_EQ(Design(shape, band.low, band.high, plain.data(), size, 2, 0, buffer), 0);
        long double gain = 0, sum = 0;
        for (int32_t k = 0; k < size; ++k) {
          const long double angle = 2 * kPi * at * (k - (size - 1) / 2.0L);
          gain += taps[k] * (shape == kHighpass && size % 2 == 0 ? std::sin(angle) : std::cos(angle));
          sum += std::abs(taps[k]);
        }
        const long double bound = sum * (at > 0 && at < 0.5 ? ToneBound(size, {at, at}) : size * kEpsilon);
        EXPECT_NEAR(static_cast<double>(std::abs(gain)), 1, static_cast<double>(bound))
            << "shape " << shape << ", " << size << " taps";
        const auto largest = std::max_element(plain.begin(), plain.end(),
                                              [](double a, double b) { return std::abs(a) < std::abs(b); });
        const long double factor = taps[largest - plain.begin()] / static_cast<long double>(*largest);
        EXPECT_GT(factor, 0);
        for (int32_t k = 0; k < size; ++k)
          ASSERT_NEAR(taps[k], static_cast<double>(plain[k] * factor), 2 * 0x1p-52 * std::abs(taps[k])) << k;
      }
    }
  }
  ORVAS_FIRGenRelease(buffer);
}

TEST(FIRGen, StatusesInTheirOrder) {
  FIRGenState* buffer = nullptr;
  EXPECT_EQ(ORVAS_FIRGenInit_64f(4, nullptr), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(ORVAS_FIRGenInit_64f(4, &buffer), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(ORVAS_FIRGenInit_64f(INT32_MAX, &buffer), ORVA_STS_OVERFLOW_ERR);
  EXPECT_EQ(ORVAS_FIRGenInit_64f(89478485, &buffer), ORVA_STS_OVERFLOW_ERR);
  FailRequest(1);
  EXPECT_EQ(ORVAS_FIRGenInit_64f(89478484, &buffer), ORVA_STS_MEM_ALLOC_ERR);
  FailRequest(0);
  EXPECT_EQ(buffer, nullptr);
  ASSERT_EQ(ORVAS_FIRGenInit_64f(8, &buffer), 0);

  const double nan = std::numeric_limits<double>::quiet_NaN();
  std::vector<double> taps(8, 7), unscaled(8);
  for (Shape shape : kShapes) {
    const auto status = [&](double low, double high, int32_t size = 8, int32_t window = 3) {
      return Design(shape, low, high, taps.data(), size, window, 0, buffer);
    };
    EXPECT_EQ(Design(shape, 0, 0, nullptr, 4, 9, 0, buffer), ORVA_STS_NULL_PTR_ERR);
    EXPECT_EQ(Design(shape, 0, 0, taps.data(), 4, 9, 0, nullptr), ORVA_STS_NULL_PTR_ERR);
    EXPECT_EQ(status(0.1, 0.2, 4, 9), ORVA_STS_SIZE_ERR);
    for (double bad : {0.0, -0.1, 0.5, nan}) {
      EXPECT_EQ(status(bad, 0.3, 8, 9), ORVA_STS_SIZE_ERR) << bad;
    }
    for (double bad : {0.0, 0.1, 0.5, nan}) {  // an upper frequency, which only the bands look at
      EXPECT_EQ(status(0.1, bad, 8, 9), IsBand(shape) ? ORVA_STS_SIZE_ERR : ORVA_STS_FIRGEN_WINDOW_ERR) << bad;
    }
    EXPECT_EQ(status(0.1, 0.2, 8, 4), ORVA_STS_FIRGEN_WINDOW_ERR);
    EXPECT_EQ(status(0.1, 0.2, 8, -1), ORVA_STS_FIRGEN_WINDOW_ERR);
    EXPECT_EQ(taps, std::vector<double>(8, 7));
    // Only a flag of exactly 1 scales.
    ASSERT_EQ(Design(shape, 0.1, 0.2, unscaled.data(), 8, 3, 0, buffer), 0);
    std::vector<double> other(8);
    ASSERT_EQ(Design(shape, 0.1, 0.2, other.data(), 8, 3, 2, buffer), 0);
    EXPECT_EQ(other, unscaled);
  }
  EXPECT_EQ(ORVAS_FIRGenRelease(buffer), 0);
  EXPECT_EQ(ORVAS_FIRGenRelease(nullptr), 0);
}

}  // namespace
}  // namespace tzm_test
