// Fixed-ratio polyphase resampler: its sum against the filter that it gives, exact time, quality, refusals.
#include <signal_tzm/resample.h>

#include <cmath>
#include <numbers>
#include <numeric>

#include "support/testing.h"

namespace tzm_test::polyphase_fixed_test {

template <class Sample>
class ResamplePolyphaseFixed : public testing::Test {};
using Types = testing::Types<Orva32f, Orva16s>;
TYPED_TEST_SUITE(ResamplePolyphaseFixed, Types);

template <class Sample>
struct Members;
#define MEMBERS(type)                                                             \
  template <>                                                                     \
  struct Members<Orva##type> {                                                    \
    static constexpr auto Init = ORVAS_ResamplePolyphaseFixedInit_##type;         \
    static constexpr auto Run = ORVAS_ResamplePolyphaseFixed_##type;              \
    static constexpr auto Set = ORVAS_ResamplePolyphaseFixedSetFilter_##type;     \
    static constexpr auto Get = ORVAS_ResamplePolyphaseFixedGetFilter_##type;     \
    static constexpr auto Release = ORVAS_ResamplePolyphaseFixedRelease_##type;   \
  };
MEMBERS(32f) MEMBERS(16s)

// The defining sum in long double, in one call and in blocks; with the filter of Init, a caller's, and one of zeros.
TYPED_TEST(ResamplePolyphaseFixed, IsTheDefiningSumInBlocksOfAnySize) {
  using M = Members<TypeParam>;
  constexpr bool kInteger = std::is_integral_v<TypeParam>;
  for (auto [in, out] : {std::pair{48000, 16000}, {44100, 48000}, {16000, 48000}, {7, 5}, {1000000007, 1000000007}})
    for (double scale : {-1.0, 0.01, 0.0}) {
      ResamplePolyphaseFixedState* state = nullptr;
      int32_t taps = 0;
      ASSERT_EQ(M::Init(in, out, 40, 0.9f, 9, &state), 0);
      ASSERT_EQ(M::Get(state, nullptr, &taps), 0);
      std::vector<Orva32f> filter = RandomArray<Orva32f>(taps, 3), own = filter;
      for (Orva32f& tap : own) tap *= static_cast<float>(scale);
      EXPECT_EQ(scale < 0 ? 0 : M::Set(state, own.data(), taps), 0);
      ASSERT_EQ(M::Get(state, filter.data(), &taps), 0);
      for (int32_t n = 0; n < taps && scale >= 0; ++n) ASSERT_NEAR(filter[n], own[n], kInteger ? 3e-9 * scale : 0) << n;
      const int64_t unit = std::gcd(in, out), up = out / unit, reach = taps / (2 * up), len = 21;
      const auto samples = RandomArray<TypeParam>(500, 1);
      for (int64_t part : {int64_t{0}, up / 2, up - 1}) {
        const int64_t start = (reach - 1) * out + part * unit, count = (len * out - part * unit + in - 1) / in;
        const int64_t last = (start + (count - 1) * in) / out;
        const GuardedArray<TypeParam> src(std::vector(samples.begin(), samples.begin() + last + reach + 1));
        GuardedArray<TypeParam> dst(static_cast<size_t>(count)), parts(static_cast<size_t>(count));
        int64_t time = start;
        int32_t made = 0;
        ASSERT_EQ(M::Run(src.data(), len, dst.data(), 1.5f, &time, &made, state), 0);
        ASSERT_EQ(made, count);
        EXPECT_EQ(time, start + count * in);
        int64_t sum = 0;
        for (time = start; time / out < reach - 1 + len; sum += made) {
          const auto block = static_cast<int32_t>(std::min(1 + sum % 5, reach - 1 + len - time / out));
          ASSERT_EQ(M::Run(src.data(), block, parts.data() + sum, 1.5f, &time, &made, state), 0);
        }
        ASSERT_EQ(sum, count);
        EXPECT_TRUE(SameBits("ResamplePolyphaseFixed in blocks", dst.data(), parts.data(), dst.size()));
        for (int64_t j = 0; j < count; ++j) {
          const int64_t at = (start + j * in) / unit;  // in steps of the filter
          long double exact = 0, magnitude = 0;
          for (int64_t m = at / up - reach + 1; m <= at / up + reach; ++m) {
            const long double product = 1.5L * src.data()[m] * filter[up * reach + at - m * up];
            exact += product;
            magnitude += std::fabs(product);
          }
          EXPECT_NEAR(dst[j], exact, (kInteger ? 0.501L : 0.0L) + magnitude * 0x1p-22L) << j;
        }
      }
      M::Release(state);
    }
}

// The filter's gain, in parts of the one at frequency 0, at frequencies in parts of the lower Nyquist frequency.
TYPED_TEST(ResamplePolyphaseFixed, PassesAndStops) {
  for (auto [in, out] : {std::pair{48000, 16000}, {44100, 48000}, {1, 3}}) {
    ResamplePolyphaseFixedState* state = nullptr;
    std::vector<Orva32f> taps(160 * 64 + 500);
    int32_t len = 0;
    ASSERT_EQ(Members<TypeParam>::Init(in, out, 64, 0.9f, 10, &state), 0);
    ASSERT_EQ(Members<TypeParam>::Get(state, taps.data(), &len), 0);
    Members<TypeParam>::Release(state);
    const auto gain = [&, up = out / std::gcd(in, out), lower = std::min(1.0, 1.0 * out / in)](double frequency) {
      double sum = 0;
      const double angle = std::numbers::pi * frequency * lower / up;
      for (int32_t n = 0; n < len; ++n) sum += taps[n] * std::cos(angle * (n - len / 2));
      return std::fabs(sum) / up;
    };
    constexpr double kRipple = 1.05e-5;  // alpha 10 stops by 99.6 dB, and ripples as much where it passes
    for (double passed : {0.0, 0.8}) EXPECT_NEAR(gain(passed), 1, kRipple) << passed;
    EXPECT_NEAR(gain(0.9), 0.5, kRipple);
    for (double stopped : {1.0, 1.1, 1.5, 1.9}) EXPECT_LT(gain(stopped), kRipple) << stopped;
  }
}

// A tap is there where its distance from the centre, in steps of 1/U, is at most half the window, both edges alike; and
// the least window and cut-off, with the least and the largest alpha, make a filter whose phases sum to 1.
TYPED_TEST(ResamplePolyphaseFixed, TapsReachTheEdgesOfTheWindow) {
  using M = Members<TypeParam>;
  struct { int32_t in, out; float window, rollf, alpha; } const shapes[] = {
      {8, 3, 8, 0.57f, 2}, {7, 5, 28, 0.9f, 3}, {8, 7, 17, 0.9f, 2}, {3, 2, 20, 0.8f, 4}, {5, 3, 6, 0.9f, 1},
      {3, 8, 9, 0.9f, 2}, {9, 7, 2, 0.9f, 1}, {1, 2, 2, 1, 713}, {3, 100, 2, 1e-45f, 713}, {100, 3, 2, 1e-45f, 1}};
  for (const auto& [in, out, window, rollf, alpha] : shapes) {
    SCOPED_TRACE(testing::Message() << in << " to " << out << ", window " << window);
    ResamplePolyphaseFixedState* state = nullptr;
    int32_t len = 0;
    ASSERT_EQ(M::Init(in, out, window, rollf, alpha, &state), 0);
    ASSERT_EQ(M::Get(state, nullptr, &len), 0);
    GuardedArray<Orva32f> taps(len);
    ASSERT_EQ(M::Get(state, taps.data(), &len), 0);
    ASSERT_EQ(M::Set(state, taps.data(), len), 0);
    M::Release(state);
    for (int32_t phase = 0; phase < out; ++phase) {
      double sum = 0;
      for (int32_t n = phase; n < len; n += out) sum += taps[n];
      ASSERT_NEAR(sum, 1, 1e-5) << phase;
    }
    for (int32_t k = 1; k < len / 2 && alpha < 700; ++k) {
      ASSERT_EQ(taps[len / 2 + k] != 0, 2 * k <= window * std::max(in, out)) << k;
      ASSERT_NEAR(taps[len / 2 - k], taps[len / 2 + k], 1e-7) << k;
    }
  }
}

TYPED_TEST(ResamplePolyphaseFixed, StatusesInTheirOrderAndFaults) {
  using M = Members<TypeParam>;
  constexpr int32_t kMost = INT32_MAX;
  ResamplePolyphaseFixedState* state = nullptr;
  const auto init = [&](int32_t in, int32_t out, float window, float rollf, float alpha) {
    state = reinterpret_cast<ResamplePolyphaseFixedState*>(8);
    const OrvaStatus status = M::Init(in, out, window, rollf, alpha, &state);
    EXPECT_EQ(state == nullptr, status != 0);
    return status;
  };
  EXPECT_EQ(init(0, 1, 0, 0, 0), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(init(1, -1, 0, 0, 0), ORVA_STS_SIZE_ERR);
  for (float window : {1.9f, -1.0f, NAN}) EXPECT_EQ(init(kMost, 2, window, 0.9f, 5), ORVA_STS_BAD_ARG_ERR);
  for (float rollf : {0.0f, 1.1f, NAN}) EXPECT_EQ(init(kMost, 2, 8, rollf, 5), ORVA_STS_BAD_ARG_ERR);
  for (float alpha : {0.9f, 713.1f, NAN}) EXPECT_EQ(init(kMost, 2, 8, 0.9f, alpha), ORVA_STS_BAD_ARG_ERR);
  for (float window : {8.0f, 3e38f, INFINITY})
    for (auto [in, out] : {std::pair{kMost, 1}, {1, kMost}, {kMost, kMost - 1}})
      EXPECT_EQ(init(in, out, window, 0.9f, 5), ORVA_STS_OVERFLOW_ERR) << window;
  const auto valid = [](auto** made) { return M::Init(3, 2, 8, 0.9f, 5, made); };
  EXPECT_EQ(ForEachFaultOfInit(valid, M::Release, true), 2);

  ASSERT_EQ(init(300, 400, 8, 0.9f, 5), 0);  // 4 samples on either side, 32 taps
  const std::vector<TypeParam> src(50, 1);
  std::vector<TypeParam> dst(50, 77);
  std::vector<Orva32f> taps(32);
  int64_t time = 1200;
  int32_t count = -5;
  EXPECT_EQ(M::Set(state, taps.data(), 31), ORVA_STS_SIZE_ERR);
  const auto run = [&](int32_t len, int64_t at) {
    const OrvaStatus status = M::Run(src.data(), len, dst.data(), 1, &(time = at), &count, state);
    EXPECT_TRUE(status == 0 || time == at);
    return status;
  };
  EXPECT_EQ(run(0, -1), ORVA_STS_SIZE_ERR);
  for (int64_t bad : {int64_t{1100}, int64_t{1250}, int64_t{-1200}, int64_t{400} << 31, INT64_MIN, INT64_MAX})
    EXPECT_EQ(run(10, bad), ORVA_STS_BAD_ARG_ERR) << bad;
  EXPECT_EQ(run(kMost, 1200), ORVA_STS_OVERFLOW_ERR);
  EXPECT_EQ(count, -5);
  EXPECT_EQ(dst, std::vector<TypeParam>(50, 77));
  EXPECT_EQ(run(10, 1300), 0);
  EXPECT_EQ(count, 13);
  M::Release(state);
}

}  // namespace tzm_test::polyphase_fixed_test
