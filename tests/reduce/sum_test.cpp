// Sums, means and deviations against loops that add one sample after the other where it belongs.
#include <gtest/gtest.h>
#include <signal_tzm/reduce.h>

#include "support/reduction.h"

namespace tzm_test {
namespace {

template <class X>
X Lanes(const std::vector<X>& x, size_t lanes, size_t step, X start = 0) {
  const auto add = [&](X& sum, size_t i) { sum += x[i]; };
  return LaneSum<X>(x.size(), lanes, step, Fold::kPairs, add, add, start);
}

// The order of the complex binary64 sum.
double Blocks(const std::vector<double>& x) {
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

double Deviation(const std::vector<double>& x, double mean, size_t step) {
  const auto add = [&](double& sum, size_t i) { sum = std::fma(x[i] - mean, x[i] - mean, sum); };
  return std::sqrt(LaneSum<double>(x.size(), 2, step, Fold::kPairs, add, add) / (double(x.size()) - 1));
}

template <class T>
double ExactSum(const std::vector<T>& src, int part) {
  Int128 sum = 0;
  for (const int64_t x : PartOf<int64_t>(src, part)) sum += x;
  return static_cast<double>(sum);
}

template <class T>
void CheckBinary32(auto sum, auto mean) {
  const auto accurate = [](const std::vector<T>& src, int part) { return Lanes(PartOf<double>(src, part), 2, 4); };
  const auto fast = [](const std::vector<T>& src, float divisor) {
    return EachPart<T>([&](int part) {
      auto x = PartOf<float>(src, part);
      for (float& each : x) each /= divisor;
      return Lanes(x, 4, 4);
    });
  };
  CheckReduction<T>(With(sum, 1), [&](auto& src) { return fast(src, 1); });
  CheckReduction<T>(With(mean, 1), [&](auto& src) { return fast(src, float(src.size())); });
  for (int32_t hint : {0, 2, -1}) {
    CheckReduction<T>(With(sum, hint), [&](auto& src) { return EachPart<T>([&](int k) { return accurate(src, k); }); });
    CheckReduction<T>(With(mean, hint), [&](auto& src) {
      return EachPart<T>([&](int k) { return accurate(src, k) / double(src.size()); });
    });
  }
}

TEST(Sum, Binary32) {
  CheckBinary32<Orva32f>(ORVAS_Sum_32f, ORVAS_Mean_32f);
  CheckBinary32<Orva32fc>(ORVAS_Sum_32fc, ORVAS_Mean_32fc);
}

TEST(Sum, Binary64) {
  const auto real = [](const auto& src) { return Lanes(src, 2, 2, -0.0); };
  CheckReduction<Orva64f>(ORVAS_Sum_64f, real);
  CheckReduction<Orva64f>(ORVAS_Mean_64f, [&](auto& src) { return real(src) / double(src.size()); });
  const auto complex = [](const auto& src, double divisor) {
    return EachPart<Orva64fc>([&](int part) { return Blocks(PartOf<double>(src, part)) / divisor; });
  };
  CheckReduction<Orva64fc>(ORVAS_Sum_64fc, [&](auto& src) { return complex(src, 1); });
  CheckReduction<Orva64fc>(ORVAS_Mean_64fc, [&](auto& src) { return complex(src, double(src.size())); });
}

TEST(Sum, SignOfZero) {
  for (size_t len = 1; len <= 9; ++len) {
    for (int32_t hint : {0, 1}) ExpectResult(0.0f, 0, With(ORVAS_Sum_32f, hint), std::vector<Orva32f>(len, -0.0f));
    ExpectResult(len == 1 ? 0.0 : -0.0, 0, ORVAS_Sum_64f, std::vector<Orva64f>(len, -0.0));
    ExpectResult(Orva64fc{0, 0}, 0, ORVAS_Sum_64fc, std::vector<Orva64fc>(len, {-0.0, -0.0}));
  }
}

template <class T, class Result>
void CheckScaled(auto operation, bool mean) {
  for (const auto& [scale, by] : kFactors) {
    const double factor = by;
    CheckReduction<T>(With(operation, scale), [=](const auto& src) {
      return EachPart<Result>([&](int part) {
        return RoundSaturate<Real<Result>>(ExactSum(src, part) * factor / (mean ? double(src.size()) : 1));
      });
    });
  }
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
  // More than 32-bit lanes hold. The sums over 2^16 are -550000.5 and 549983.7.
  const std::vector<Orva16s> real(1100001, -32768);
  ExpectResult(Orva32s{-550000}, 0, With(ORVAS_Sum_16s32s_S, 0x1p16), real);
  ExpectResult(Orva16s{-32768}, 0, With(ORVAS_Mean_16s_S, 1), real);
  const std::vector<Orva16sc> complex(1100001, {-32768, 32767});
  ExpectResult(Orva32sc{-550000, 549984}, 0, With(ORVAS_Sum_16sc32sc_S, 0x1p16), complex);
  const std::vector<Orva32s> wide(300001, std::numeric_limits<int32_t>::min());
  ExpectResult(Orva32s{-300001}, 0, With(ORVAS_Sum_32s_S, 0x1p31), wide);
}

TEST(Sum, IntegerTies) {
  const auto expect = [](Orva16s expected, auto operation, std::vector<Orva16s> src, double scale) {
    ExpectResult(expected, 0, With(operation, scale), src);
  };
  expect(2, ORVAS_Sum_16s_S, {2, 3}, 2);
  expect(4, ORVAS_Sum_16s_S, {4, 3}, 2);
  expect(2, ORVAS_Mean_16s_S, {1, 2}, 1);
  expect(32767, ORVAS_Sum_16s_S, {32767, 32767}, 1);
  expect(32767, ORVAS_Sum_16s_S, {32767, 32767}, 2);
}

// `both` writes mean and deviation, `alone` the deviation; mean(src) and deviation(src) are what they should be.
template <class T>
void CheckDeviation(auto both, auto alone, auto mean, auto deviation) {
  CheckReduction<T>([=](auto src, auto len, auto result) {
    auto second = *result;
    return both(src, len, result, &second);
  }, mean, 2);
  CheckReduction<T>([=](auto src, auto len, auto result) {
    auto first = *result;
    return both(src, len, &first, result);
  }, deviation, 2);
  CheckReduction<T>(alone, deviation, 2);
}

TEST(Deviation, Floats) {
  const auto about = [](const auto& src, auto mean) {
    return std::isfinite(mean) ? decltype(mean)(Deviation(PartOf<double>(src, 0), mean, 4)) : 0;
  };
  for (int32_t hint : {0, 1}) {
    const auto mean = [=](const std::vector<Orva32f>& src) {
      Orva32f value;
      ORVAS_Mean_32f(src.data(), static_cast<int32_t>(src.size()), &value, hint);
      return value;
    };
    CheckDeviation<Orva32f>(With(ORVAS_MeanStdDev_32f, hint), With(ORVAS_StdDev_32f, hint), mean,
                            [=](auto& src) { return about(src, mean(src)); });
  }
  const auto mean = [](const std::vector<Orva64f>& src) { return Lanes(src, 2, 2, -0.0) / double(src.size()); };
  CheckDeviation<Orva64f>(ORVAS_MeanStdDev_64f, ORVAS_StdDev_64f, mean,
                          [=](auto& src) { return about(src, mean(src)); });
}

template <class Result>
void CheckScaledDeviation(auto both, auto alone) {
  for (const auto& [scale, by] : kFactors) {
    const double factor = by;
    const auto mean = [](const auto& src) { return ExactSum(src, 0) / double(src.size()); };
    CheckDeviation<Orva16s>(
        With(both, scale), With(alone, scale),
        [=](auto& src) { return RoundSaturate<Result>(mean(src) * factor); },
        [=](auto& src) { return RoundSaturate<Result>(Deviation(PartOf<double>(src, 0), mean(src), 8) * factor); });
  }
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
