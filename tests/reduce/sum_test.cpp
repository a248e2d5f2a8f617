// Sums, means and deviations against loops that add one sample after the other where it belongs.
#include <gtest/gtest.h>
#include <signal_tzm/reduce.h>

#include <cmath>
#include <limits>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Scales with their factors.
constexpr struct { double scale, factor; } kScales[] = {
    {1, 1}, {1.999, 1}, {0.6, 1}, {2, 0.5}, {3, 0.5}, {0.3, 2}, {0x1p9, 0x1p-9}, {0x1p-9, 0x1p9}, {0x1p40, 0x1p-40},
    {0x1p1023, 0x1p-1023}, {0x1p-1074, kInfinity}};

template <class T>
T RoundOracle(double y) {
  if (std::isnan(y)) return 0;
  const double low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
  return static_cast<T>(std::fmin(high, std::fmax(low, std::nearbyint(y))));
}

// One part of an array, as numbers of type X.
template <class X, class T>
std::vector<X> Part(const std::vector<T>& src, int part) {
  std::vector<X> values;
  for (const T& sample : src) {
    if constexpr (requires { sample.re; }) values.push_back(part == 0 ? sample.re : sample.im);
    else values.push_back(sample);
  }
  return values;
}

template <class X>
X LaneOracle(const std::vector<X>& x, size_t lanes, size_t step, X start = 0) {
  const size_t body = x.size() / step * step;
  X lane[4] = {start, start, start, start};
  for (size_t i = 0; i < body; ++i) lane[i % lanes] += x[i];
  X sum = lanes == 4 ? (lane[0] + lane[1]) + (lane[2] + lane[3]) : lane[0] + lane[1];
  if (body == 0) sum = 0;
  for (size_t i = body; i < x.size(); ++i) sum += x[i];
  return sum;
}

double BlockOracle(const std::vector<double>& x) {
  const size_t body = x.size() / 8 * 8;
  double lane[2] = {0, 0};
  for (size_t i = 0; i < body; i += 8) {
    lane[0] = ((x[i] + x[i + 1]) + lane[0]) + (x[i + 4] + x[i + 5]);
    lane[1] = ((x[i + 2] + x[i + 3]) + lane[1]) + (x[i + 6] + x[i + 7]);
  }
  double sum = lane[0] + lane[1];
  for (size_t i = body; i < x.size(); ++i) sum += x[i];
  return sum;
}

double DeviationOracle(const std::vector<double>& x, double mean, size_t step) {
  const size_t body = x.size() / step * step;
  double lane[2] = {0, 0};
  for (size_t i = 0; i < body; ++i) lane[i % 2] = std::fma(x[i] - mean, x[i] - mean, lane[i % 2]);
  double sum = lane[0] + lane[1];
  for (size_t i = body; i < x.size(); ++i) sum = std::fma(x[i] - mean, x[i] - mean, sum);
  return std::sqrt(sum / (x.size() - 1.0));
}

template <class T>
double ExactSum(const std::vector<T>& src, int part) {
  __int128 sum = 0;
  for (const int64_t x : Part<int64_t>(src, part)) sum += x;
  return static_cast<double>(sum);
}

// A result of one part or two, from a function of the part.
template <class Result, class F>
Result Each(F f) {
  if constexpr (requires(Result r) { r.re; }) return {f(0), f(1)};
  else return f(0);
}

// Calls check(samples, seed) with arrays of lengths from `least` to some blocks, of all varieties.
template <class T, class Check>
void ForArrays(size_t least, Check check) {
  uint64_t seed = 0;
  for (size_t len = least; len < 1100; len += len < 70 ? 1 : 93)
    for (Variety variety : kVarieties) {
      ++seed;
      check(RandomArray<T>(len, seed, variety), seed);
      if (testing::Test::HasFailure()) return;
    }
}

// One call: success, and the result that is expected.
template <class Result, class T, class... Option>
void ExpectResult(std::type_identity_t<Result> expected, uint64_t seed,
                  OrvaStatus (*operation)(const T*, int32_t, Result*, Option...),
                  const std::type_identity_t<std::vector<T>>& src, std::type_identity_t<Option>... option) {
  const GuardedArray<T> guarded(src);
  Result result;
  ASSERT_EQ(operation(guarded.data(), static_cast<int32_t>(src.size()), &result, option...), ORVA_STS_NO_ERR);
  EXPECT_TRUE(SameBits(__PRETTY_FUNCTION__, &expected, &result, 1, seed)) << "length " << src.size();
}

template <class T>
void CheckBinary32(OrvaStatus (*sum)(const T*, int32_t, T*, int32_t), OrvaStatus (*mean)(const T*, int32_t, T*, int32_t)) {
  ForArrays<T>(1, [&](const std::vector<T>& src, uint64_t seed) {
    const float len = static_cast<float>(src.size());
    const auto fast = [&](int part) { return LaneOracle(Part<float>(src, part), 4, 4); };
    const auto fast_mean = [&](int part) {
      auto x = Part<float>(src, part);
      for (float& each : x) each /= len;
      return LaneOracle(x, 4, 4);
    };
    const auto accurate = [&](int part) { return LaneOracle(Part<double>(src, part), 2, 4); };
    ExpectResult(Each<T>(fast), seed, sum, src, 1);
    ExpectResult(Each<T>(fast_mean), seed, mean, src, 1);
    for (int32_t hint : {0, 2, -1}) {
      ExpectResult(Each<T>([&](int part) { return static_cast<float>(accurate(part)); }), seed, sum, src, hint);
      ExpectResult(Each<T>([&](int part) { return static_cast<float>(accurate(part) / len); }), seed, mean, src, hint);
    }
  });
}

TEST(Sum, Binary32) {
  CheckBinary32<Orva32f>(ORVAS_Sum_32f, ORVAS_Mean_32f);
  CheckBinary32<Orva32fc>(ORVAS_Sum_32fc, ORVAS_Mean_32fc);
}

TEST(Sum, Binary64) {
  ForArrays<Orva64f>(1, [](const std::vector<Orva64f>& src, uint64_t seed) {
    const Orva64f sum = LaneOracle(src, 2, 2, -0.0);
    ExpectResult(sum, seed, ORVAS_Sum_64f, src);
    ExpectResult(sum / src.size(), seed, ORVAS_Mean_64f, src);
  });
  ForArrays<Orva64fc>(1, [](const std::vector<Orva64fc>& src, uint64_t seed) {
    const auto sum = [&](int part) { return BlockOracle(Part<double>(src, part)); };
    ExpectResult(Each<Orva64fc>(sum), seed, ORVAS_Sum_64fc, src);
    const auto mean = [&](int part) { return sum(part) / src.size(); };
    ExpectResult(Each<Orva64fc>(mean), seed, ORVAS_Mean_64fc, src);
  });
}

TEST(Sum, SignOfZero) {
  for (size_t len = 1; len <= 9; ++len) {
    const std::vector<Orva32f> narrow(len, -0.0f);
    for (int32_t hint : {0, 1}) ExpectResult(0.0f, 0, ORVAS_Sum_32f, narrow, hint);
    const std::vector<Orva64f> wide(len, -0.0);
    ExpectResult(len == 1 ? 0.0 : -0.0, 0, ORVAS_Sum_64f, wide);
    const std::vector<Orva64fc> complex(len, {-0.0, -0.0});
    ExpectResult({0, 0}, 0, ORVAS_Sum_64fc, complex);
  }
}

template <class T, class Result>
void CheckScaled(OrvaStatus (*operation)(const T*, int32_t, Result*, double), bool mean) {
  ForArrays<T>(1, [&](const std::vector<T>& src, uint64_t seed) {
    const double sums[] = {ExactSum(src, 0), ExactSum(src, 1)};
    for (const auto& [scale, factor] : kScales) {
      const auto value = [&, by = factor](int part) {
        const double y = sums[part] * by / (mean ? src.size() : 1.0);
        if constexpr (requires(Result r) { r.re; }) return RoundOracle<decltype(Result::re)>(y);
        else return RoundOracle<Result>(y);
      };
      ExpectResult(Each<Result>(value), seed, operation, src, scale);
    }
  });
}

TEST(Sum, Integers) {
  CheckScaled<Orva16s, Orva16s>(ORVAS_Sum_16s_S, false);
  CheckScaled<Orva32s, Orva32s>(ORVAS_Sum_32s_S, false);
  CheckScaled<Orva16s, Orva32s>(ORVAS_Sum_16s32s_S, false);
  CheckScaled<Orva16sc, Orva16sc>(ORVAS_Sum_16sc_S, false);
  CheckScaled<Orva16sc, Orva32sc>(ORVAS_Sum_16sc32sc_S, false);
  CheckScaled<Orva16s, Orva16s>(ORVAS_Mean_16s_S, true);
  CheckScaled<Orva32s, Orva32s>(ORVAS_Mean_32s_S, true);
  CheckScaled<Orva16sc, Orva16sc>(ORVAS_Mean_16sc_S, true);
}

TEST(Sum, IntegersOverMillions) {
  // More than 32-bit lanes hold. The sums over 2^16 are -550000.5 and 549983.7.
  const std::vector<Orva16s> real(1100001, -32768);
  ExpectResult(-550000, 0, ORVAS_Sum_16s32s_S, real, 0x1p16);
  ExpectResult(-32768, 0, ORVAS_Mean_16s_S, real, 1);
  const std::vector<Orva16sc> complex(1100001, {-32768, 32767});
  ExpectResult({-550000, 549984}, 0, ORVAS_Sum_16sc32sc_S, complex, 0x1p16);
  const std::vector<Orva32s> wide(300001, std::numeric_limits<int32_t>::min());
  ExpectResult(-300001, 0, ORVAS_Sum_32s_S, wide, 0x1p31);
}

TEST(Sum, IntegerTies) {
  ExpectResult(2, 0, ORVAS_Sum_16s_S, {2, 3}, 2);
  ExpectResult(4, 0, ORVAS_Sum_16s_S, {4, 3}, 2);
  ExpectResult(2, 0, ORVAS_Mean_16s_S, {1, 2}, 1);
  ExpectResult(32767, 0, ORVAS_Sum_16s_S, {32767, 32767}, 1);
  ExpectResult(32767, 0, ORVAS_Sum_16s_S, {32767, 32767}, 2);
}

template <class T>
void CheckDeviation(const std::vector<T>& src, T mean, uint64_t seed, auto mean_std_dev, auto std_dev) {
  const T expected = std::isfinite(mean) ? T(DeviationOracle(Part<double>(src, 0), mean, 4)) : T(0);
  const GuardedArray<T> guarded(src);
  T pair[2], alone;
  ASSERT_EQ(mean_std_dev(guarded.data(), static_cast<int32_t>(src.size()), &pair[0], &pair[1]), 0);
  ASSERT_EQ(std_dev(guarded.data(), static_cast<int32_t>(src.size()), &alone), 0);
  EXPECT_TRUE(SameBits("mean", &mean, &pair[0], 1, seed)) << "length " << src.size();
  EXPECT_TRUE(SameBits("deviation", &expected, &pair[1], 1, seed)) << "length " << src.size();
  EXPECT_TRUE(SameBits("deviation alone", &expected, &alone, 1, seed)) << "length " << src.size();
}

TEST(Deviation, Floats) {
  ForArrays<Orva32f>(2, [](const std::vector<Orva32f>& src, uint64_t seed) {
    for (int32_t hint : {0, 1}) {
      Orva32f mean;
      ASSERT_EQ(ORVAS_Mean_32f(src.data(), static_cast<int32_t>(src.size()), &mean, hint), 0);
      CheckDeviation(
          src, mean, seed, [=](auto... a) { return ORVAS_MeanStdDev_32f(a..., hint); },
          [=](auto... a) { return ORVAS_StdDev_32f(a..., hint); });
    }
  });
  ForArrays<Orva64f>(2, [](const std::vector<Orva64f>& src, uint64_t seed) {
    const Orva64f mean = LaneOracle(src, 2, 2, -0.0) / src.size();
    CheckDeviation(src, mean, seed, ORVAS_MeanStdDev_64f, ORVAS_StdDev_64f);
  });
}

template <class Result>
void CheckScaledDeviation(OrvaStatus (*both)(const Orva16s*, int32_t, Result*, Result*, double),
                          OrvaStatus (*alone)(const Orva16s*, int32_t, Result*, double)) {
  ForArrays<Orva16s>(2, [&](const std::vector<Orva16s>& src, uint64_t seed) {
    const double mean = ExactSum(src, 0) / src.size();
    const double deviation = DeviationOracle(Part<double>(src, 0), mean, 8);
    for (const auto& [scale, factor] : kScales) {
      const Result expected[2] = {RoundOracle<Result>(mean * factor), RoundOracle<Result>(deviation * factor)};
      const GuardedArray<Orva16s> guarded(src);
      Result actual[3];
      ASSERT_EQ(both(guarded.data(), static_cast<int32_t>(src.size()), &actual[0], &actual[1], scale), 0);
      ASSERT_EQ(alone(guarded.data(), static_cast<int32_t>(src.size()), &actual[2], scale), 0);
      EXPECT_TRUE(SameBits("mean, deviation", expected, actual, 2, seed)) << "length " << src.size();
      EXPECT_EQ(actual[1], actual[2]);
    }
  });
}

TEST(Deviation, Integers) {
  CheckScaledDeviation<Orva16s>(ORVAS_MeanStdDev_16s_S, ORVAS_StdDev_16s_S);
  CheckScaledDeviation<Orva32s>(ORVAS_MeanStdDev_16s32s_S, ORVAS_StdDev_16s32s_S);
}

TEST(Deviation, OrderOfChecks) {
  const Orva32f src[2] = {1, 2};
  Orva32f mean = 7, deviation = 7;
  EXPECT_EQ(ORVAS_MeanStdDev_32f(nullptr, 1, nullptr, nullptr, 0), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(ORVAS_MeanStdDev_32f(nullptr, 1, nullptr, &deviation, 0), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(ORVAS_MeanStdDev_32f(src, 2, nullptr, &deviation, 0), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(ORVAS_MeanStdDev_32f(nullptr, 2, &mean, &deviation, 0), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(mean, 7);
  EXPECT_EQ(deviation, 7);
}

}  // namespace
}  // namespace tzm_test
