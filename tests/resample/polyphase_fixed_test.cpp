// Fixed-ratio polyphase resampler: its sum against the filter that it gives, exact time, quality.
#include <signal_tzm/resample.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>

#include "support/arguments.h"
#include "support/compare.h"
#include "support/exact.h"
#include "support/faults.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

template <class SampleType>
struct Kind;
template <>
struct Kind<Orva32f> {
  static constexpr auto kInit = ORVAS_ResamplePolyphaseFixedInit_32f;
  static constexpr auto kRun = ORVAS_ResamplePolyphaseFixed_32f;
  static constexpr auto kSet = ORVAS_ResamplePolyphaseFixedSetFilter_32f;
  static constexpr auto kGet = ORVAS_ResamplePolyphaseFixedGetFilter_32f;
  static constexpr auto kRelease = ORVAS_ResamplePolyphaseFixedRelease_32f;
};
template <>
struct Kind<Orva16s> {
  static constexpr auto kInit = ORVAS_ResamplePolyphaseFixedInit_16s;
  static constexpr auto kRun = ORVAS_ResamplePolyphaseFixed_16s;
  static constexpr auto kSet = ORVAS_ResamplePolyphaseFixedSetFilter_16s;
  static constexpr auto kGet = ORVAS_ResamplePolyphaseFixedGetFilter_16s;
  static constexpr auto kRelease = ORVAS_ResamplePolyphaseFixedRelease_16s;
};

struct Rates {
  int32_t in, out;
};
constexpr Rates kRates[] = {{48000, 16000}, {44100, 48000}, {16000, 48000}, {48000, 44100}, {7, 5}, {1, 1},
                            {1000000007, 1000000007}};

template <class Sample>
class Resampler {
 public:
  using K = Kind<Sample>;
  explicit Resampler(Rates rates, float window = 40, float rollf = 0.9f, float alpha = 9) : rates_(rates) {
    EXPECT_EQ(K::kInit(rates.in, rates.out, window, rollf, alpha, &state_), 0);
  }
  ~Resampler() { EXPECT_EQ(K::kRelease(state_), 0); }
  Resampler(const Resampler&) = delete;

  ResamplePolyphaseFixedState* State() { return state_; }
  int32_t Up() const { return rates_.out / std::gcd(rates_.in, rates_.out); }
  int32_t Reach() const { return static_cast<int32_t>(Filter().size()) / (2 * Up()); }
  std::vector<Orva32f> Filter() const {
    int32_t len = 0;
    EXPECT_EQ(K::kGet(state_, nullptr, &len), 0);
    std::vector<Orva32f> taps(static_cast<size_t>(len));
    EXPECT_EQ(K::kGet(state_, taps.data(), &len), 0);
    return taps;
  }
  // A whole stream in blocks, by the recipe of the header.
  std::vector<Sample> Stream(const std::vector<Sample>& samples, const std::vector<size_t>& blocks) {
    const int32_t reach = Reach();
    std::vector<Sample> buffer(static_cast<size_t>(reach) - 1), out;
    int64_t time = int64_t{reach - 1} * rates_.out;
    const auto feed = [&](const std::vector<Sample>& block) {
      buffer.insert(buffer.end(), block.begin(), block.end());
      const int64_t len = static_cast<int64_t>(buffer.size()) - reach - time / rates_.out;
      if (len < 1) return;
      GuardedArray<Sample> src(buffer), dst(static_cast<size_t>(len) * rates_.out / rates_.in + 2);
      int32_t count = 0;
      EXPECT_EQ(K::kRun(src.data(), static_cast<int32_t>(len), dst.data(), 1, &time, &count, state_), 0);
      out.insert(out.end(), dst.begin(), dst.begin() + count);
      const int64_t drop = std::min<int64_t>(time / rates_.out - (reach - 1), static_cast<int64_t>(buffer.size()));
      buffer.erase(buffer.begin(), buffer.begin() + drop);
      time -= drop * rates_.out;
    };
    for (size_t begin = 0, k = 0; begin < samples.size(); ++k) {
      const size_t end = std::min(samples.size(), begin + blocks[k % blocks.size()]);
      feed({samples.begin() + static_cast<ptrdiff_t>(begin), samples.begin() + static_cast<ptrdiff_t>(end)});
      begin = end;
    }
    feed(std::vector<Sample>(static_cast<size_t>(reach)));
    return out;
  }

 private:
  Rates rates_;
  ResamplePolyphaseFixedState* state_ = nullptr;
};

// The defining sum in long double, to the accuracy of the sums.
template <class Sample>
void CompareWithDefinition() {
  for (const Rates& rates : kRates) {
    Resampler<Sample> resampler(rates);
    const auto filter = resampler.Filter();
    const int64_t up = resampler.Up(), unit = rates.out / up, reach = resampler.Reach();
    const auto samples = RandomArray<Sample>(500, 1);
    for (int64_t part : {int64_t{0}, up / 2, up - 1}) {
      const int64_t start = (reach - 1) * rates.out + part * unit;
      const int32_t len = 21;
      const int64_t count = (int64_t{len} * rates.out - part * unit + rates.in - 1) / rates.in;
      const int64_t last = (start + (count - 1) * rates.in) / rates.out;
      GuardedArray<Sample> src(std::vector<Sample>(samples.begin(), samples.begin() + last + reach + 1));
      GuardedArray<Sample> dst(static_cast<size_t>(count));
      int64_t time = start;
      int32_t actual = 0;
      ASSERT_EQ(Kind<Sample>::kRun(src.data(), len, dst.data(), 1.5f, &time, &actual, resampler.State()), 0);
      ASSERT_EQ(actual, count);
      EXPECT_EQ(time, start + count * rates.in);
      for (int64_t j = 0; j < count; ++j) {
        const int64_t at = (start + j * rates.in) / unit;  // in steps of the filter
        long double sum = 0, magnitude = 0;
        for (int64_t m = at / up - reach + 1; m <= at / up + reach; ++m) {
          const long double product = static_cast<long double>(src[m]) * filter[up * reach + at - m * up];
          sum += product;
          magnitude += std::fabs(product);
        }
        const bool integer = std::is_integral_v<Sample>;
        EXPECT_NEAR(dst[j], 1.5L * sum, (integer ? 0.501L : 0.0L) + magnitude * 1.5L * 0x1p-20L) << j;
      }
    }
  }
}

TEST(ResamplePolyphaseFixed, IsTheDefiningSum) {
  CompareWithDefinition<Orva32f>();
  CompareWithDefinition<Orva16s>();
}

template <class Sample>
void CompareBlocks() {
  const auto samples = RandomArray<Sample>(3000, 1);
  for (const Rates& rates : kRates) {
    Resampler<Sample> resampler(rates);
    const auto whole = resampler.Stream(samples, {samples.size()});
    const int64_t count = (int64_t{3000} * rates.out + rates.in - 1) / rates.in;
    ASSERT_EQ(static_cast<int64_t>(whole.size()), count);
    for (const std::vector<size_t>& blocks : {std::vector<size_t>{1}, {7, 100, 3}, {441}}) {
      const auto parts = resampler.Stream(samples, blocks);
      ASSERT_EQ(parts.size(), whole.size());
      EXPECT_TRUE(SameBits("ResamplePolyphaseFixed", whole.data(), parts.data(), whole.size()))
          << rates.in << " to " << rates.out;
    }
  }
}

TEST(ResamplePolyphaseFixed, BlocksOfAnySizeGiveWhatOneCallGives) {
  CompareBlocks<Orva32f>();
  CompareBlocks<Orva16s>();
}

// Signal to noise in dB, of a sine of `frequency` cycles a second through the middle of a stream.
template <class Sample>
double SineQuality(Rates rates, double frequency, double amplitude) {
  Resampler<Sample> resampler(rates, 64, 0.9f, 10);
  const auto sine = [=](size_t i, int32_t rate) {
    return amplitude * std::sin(2 * std::numbers::pi * frequency * static_cast<double>(i) / rate);
  };
  std::vector<Sample> samples(8000);
  for (size_t i = 0; i < samples.size(); ++i) {
    const double value = sine(i, rates.in);
    samples[i] = static_cast<Sample>(std::is_integral_v<Sample> ? std::nearbyint(value) : value);
  }
  const auto out = resampler.Stream(samples, {1000});
  double signal = 0, noise = 0;
  for (size_t i = out.size() / 4; i < out.size() * 3 / 4; ++i) {
    const double expected = sine(i, rates.out);
    signal += expected * expected;
    noise += (out[i] - expected) * (out[i] - expected);
  }
  return 10 * std::log10(signal / noise);
}

TEST(ResamplePolyphaseFixed, KeepsASine) {
  for (const Rates& rates : {Rates{48000, 16000}, {44100, 48000}, {16000, 48000}}) {
    EXPECT_GT(SineQuality<Orva32f>(rates, 997, 1), 95) << rates.in;
    EXPECT_GT(SineQuality<Orva32f>(rates, 5000, 1), 95) << rates.in;
    EXPECT_GT(SineQuality<Orva16s>(rates, 997, 30000), 94) << rates.in;
  }
}

template <class Sample>
void CheckOwnFilter() {
  using K = Kind<Sample>;
  Resampler<Sample> resampler({2, 3}, 16);
  auto filter = resampler.Filter();
  const int32_t len = static_cast<int32_t>(filter.size()), reach = resampler.Reach();
  // Linear interpolation.
  for (int32_t n = 0; n < len; ++n) filter[n] = std::max(0.0f, 1 - static_cast<float>(std::abs(n - 3 * reach)) / 3.0f);
  EXPECT_EQ(K::kSet(resampler.State(), filter.data(), len - 1), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(K::kSet(resampler.State(), filter.data(), len), 0);
  const auto held = resampler.Filter();
  for (int32_t n = 0; n < len; ++n) EXPECT_NEAR(held[n], filter[n], std::is_integral_v<Sample> ? 1e-9 : 0);
  EXPECT_EQ(K::kSet(resampler.State(), held.data(), len), 0);
  EXPECT_EQ(resampler.Filter(), held);
  std::vector<Sample> src(40);
  for (int32_t i = 0; i < 40; ++i) src[i] = static_cast<Sample>(300 * i);
  Sample dst[15];
  int64_t time = 3 * 10;
  int32_t count = 0;
  ASSERT_EQ(K::kRun(src.data(), 10, dst, 1, &time, &count, resampler.State()), 0);
  ASSERT_EQ(count, 15);
  for (int32_t j = 0; j < 15; ++j) EXPECT_NEAR(dst[j], 3000 + 200 * j, std::is_integral_v<Sample> ? 0.5 : 1e-2);
  const std::vector<Orva32f> nothing(filter.size());
  EXPECT_EQ(K::kSet(resampler.State(), nothing.data(), len), 0);
  EXPECT_EQ(resampler.Filter(), nothing);
}

TEST(ResamplePolyphaseFixed, TakesAFilterAndGivesItBack) {
  CheckOwnFilter<Orva32f>();
  CheckOwnFilter<Orva16s>();
}

template <class Sample>
void CheckStatuses() {
  using K = Kind<Sample>;
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInfinity = std::numeric_limits<float>::infinity();
  constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
  int dummy;
  ResamplePolyphaseFixedState* state = nullptr;
  const auto init = [&](int32_t in, int32_t out, float window, float rollf, float alpha) {
    state = reinterpret_cast<ResamplePolyphaseFixedState*>(&dummy);
    const OrvaStatus status = K::kInit(in, out, window, rollf, alpha, &state);
    EXPECT_EQ(state == nullptr, status != 0);
    return status;
  };
  EXPECT_EQ(K::kInit(0, 0, 0, 0, 0, nullptr), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(init(0, 1, 0, 0, 0), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(init(1, -1, 0, 0, 0), ORVA_STS_SIZE_ERR);
  for (float window : {1.9f, -1.0f, kNan}) EXPECT_EQ(init(kMost, 2, window, 0.9f, 5), ORVA_STS_BAD_ARG_ERR);
  for (float rollf : {0.0f, 1.1f, kNan}) EXPECT_EQ(init(kMost, 2, 8, rollf, 5), ORVA_STS_BAD_ARG_ERR);
  for (float alpha : {0.9f, kNan}) EXPECT_EQ(init(kMost, 2, 8, 0.9f, alpha), ORVA_STS_BAD_ARG_ERR);
  for (float window : {8.0f, 3e38f, kInfinity}) {
    EXPECT_EQ(init(kMost, 1, window, 0.9f, 5), ORVA_STS_OVERFLOW_ERR) << window;
    EXPECT_EQ(init(1, kMost, window, 0.9f, 5), ORVA_STS_OVERFLOW_ERR) << window;
    EXPECT_EQ(init(kMost, kMost - 1, window, 0.9f, 5), ORVA_STS_OVERFLOW_ERR) << window;
  }
  EXPECT_EQ(ForEachFault([&] {
    const OrvaStatus status = init(3, 2, 8, 0.9f, 5);
    K::kRelease(state);
    return status;
  }), 2);

  ASSERT_EQ(init(300, 400, 8, 0.9f, 5), 0);  // 4 samples on either side
  const std::vector<Sample> src(50, 1);
  std::vector<Sample> dst(50, 77);
  std::vector<Orva32f> taps(32);
  int64_t time = 1200;
  int32_t count = -5;
  CheckNulls(K::kRun, src.data(), 0, dst.data(), 1.0f, &time, &count, state);
  CheckNulls(K::kSet, state, taps.data(), 5);
  CheckNulls(K::kGet, state, nullptr, &count);
  const auto run = [&](int32_t len, int64_t at) {
    time = at;
    const OrvaStatus status = K::kRun(src.data(), len, dst.data(), 1, &time, &count, state);
    EXPECT_TRUE(status == 0 || time == at);
    return status;
  };
  EXPECT_EQ(run(0, -1), ORVA_STS_SIZE_ERR);
  for (int64_t bad : {int64_t{1100}, int64_t{1250}, int64_t{-1200}, int64_t{400} << 31, INT64_MIN, INT64_MAX})
    EXPECT_EQ(run(10, bad), ORVA_STS_BAD_ARG_ERR) << bad;
  EXPECT_EQ(run(kMost, 1200), ORVA_STS_OVERFLOW_ERR);
  EXPECT_EQ(count, -5);
  EXPECT_EQ(dst, std::vector<Sample>(50, 77));
  EXPECT_EQ(run(10, 1300), 0);
  EXPECT_EQ(count, 13);
  K::kRelease(state);
  EXPECT_EQ(K::kRelease(nullptr), 0);
}

TEST(ResamplePolyphaseFixed, StatusesInTheirOrderAndFaults) {
  CheckStatuses<Orva32f>();
  CheckStatuses<Orva16s>();
}

}  // namespace
}  // namespace tzm_test
