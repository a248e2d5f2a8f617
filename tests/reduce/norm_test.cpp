// Norms and norm differences: one plain loop for each kind, over the samples or their differences.
#include <gtest/gtest.h>
#include <signal_tzm/reduce.h>

#include "support/reduction.h"

namespace tzm_test {
namespace {

template <class To, class T>
std::vector<To> Differences(const std::vector<T>& a, const std::vector<T>& b) {
  std::vector<To> x;
  for (size_t i = 0; i < a.size(); ++i) {
    if constexpr (IsComplex<T>) x.push_back({a[i].re - b[i].re, a[i].im - b[i].im});
    else x.push_back(static_cast<To>(a[i]) - b[i]);
  }
  return x;
}

// ---- Floats ----

template <class T>
Real<T> Size(T x) {  // magnitude of a real sample, squared magnitude of a complex one
  if constexpr (IsComplex<T>) return std::fma(x.re, x.re, x.im * x.im);
  else return std::fabs(x);
}

// A NaN in the body stays, one in the tail is passed over.
template <size_t kStep>
constexpr auto kLargest = []<class T>(const std::vector<T>& x) {
  const auto body = [&](Real<T>& result, size_t i) {
    result = std::isnan(Size(x[i])) || std::isnan(result) ? NAN : std::fmax(result, Size(x[i]));
  };
  const auto tail = [&](Real<T>& result, size_t i) { result = Size(x[i]) > result ? Size(x[i]) : result; };
  const Real<T> result = LaneSum<Real<T>>(x.size(), 1, kStep, Fold::kPairs, body, tail);
  return IsComplex<T> ? std::sqrt(double(result)) : double(result);
};

template <size_t kLanes>
constexpr auto kMagnitudes = []<class T>(const std::vector<T>& x) {
  const auto add = [&](T& sum, size_t i) { sum += std::fabs(x[i]); };
  return LaneSum<T>(x.size(), kLanes, kLanes, Fold::kPairs, add, add);
};

template <size_t kLanes>
constexpr auto kLength = []<class T>(const std::vector<T>& x) {
  const auto add = [&](T& sum, size_t i) { sum = std::fma(x[i], x[i], sum); };
  return std::sqrt(LaneSum<T>(x.size(), kLanes, kLanes, Fold::kPairs, add, add));
};

// The body's root is taken in the precision of the source, the tail's in binary64.
template <size_t kStep>
constexpr auto kComplexMagnitudes = [](const auto& x) {
  const auto body = [&](double& sum, size_t i) { sum += std::sqrt(Size(x[i])); };
  const auto tail = [&](double& sum, size_t i) { sum += std::sqrt(double(Size(x[i]))); };
  return LaneSum<double>(x.size(), 2, kStep, Fold::kPairs, body, tail);
};

// The body's sum has the precision of the source, the tail's binary64.
template <size_t kLanes>
constexpr auto kComplexLength = []<class T>(const std::vector<T>& x) {
  const auto add = [&](Real<T>& sum, size_t i) { sum = std::fma(x[i].im, x[i].im, std::fma(x[i].re, x[i].re, sum)); };
  const size_t body = x.size() / kLanes * kLanes;
  double sum = LaneSum<Real<T>>(body, kLanes, kLanes, Fold::kPairs, add, add);
  for (size_t i = body; i < x.size(); ++i) sum += Size(x[i]);
  return std::sqrt(sum);
};

template <class T, class Result>
void CheckDifference(auto norm_diff, auto oracle) {
  CheckReduction<T, T>(norm_diff, [&](auto& a, auto& b) { return Result(oracle(Differences<T>(a, b))); });
  for (size_t len = 1; len < 40; ++len)  // a single NaN
    for (size_t at = 0; at < len; ++at) {
      auto a = RandomArray<T>(len, len);
      const auto b = RandomArray<T>(len, at);
      reinterpret_cast<Real<T>*>(&a[at])[0] = NAN;
      ExpectResult(Result(oracle(Differences<T>(a, b))), at, norm_diff, a, b);
    }
}
template <class T, class Result>
void CheckBoth(auto norm, auto norm_diff, auto oracle, auto diff_oracle) {
  CheckReduction<T>(norm, [&](auto& src) { return Result(oracle(src)); });
  CheckDifference<T, Result>(norm_diff, diff_oracle);
}

TEST(Norm, RealFloats) {
  // The largest magnitude of one array is the companion's, and tested with it.
  ExpectResult(7.0f, 0, ORVAS_Norm_Inf_32f, std::vector<Orva32f>{1, -7, 3, 2, -4});
  ExpectResult(7.0, 0, ORVAS_Norm_Inf_64f, std::vector<Orva64f>{1, -7, 3, 2, -4});
  CheckDifference<Orva32f, Orva32f>(ORVAS_NormDiff_Inf_32f, kLargest<4>);
  CheckDifference<Orva64f, Orva64f>(ORVAS_NormDiff_Inf_64f, kLargest<2>);
  CheckBoth<Orva32f, Orva32f>(ORVAS_Norm_L1_32f, ORVAS_NormDiff_L1_32f, kMagnitudes<4>, kMagnitudes<4>);
  CheckBoth<Orva64f, Orva64f>(ORVAS_Norm_L1_64f, ORVAS_NormDiff_L1_64f, kMagnitudes<2>, kMagnitudes<2>);
  CheckBoth<Orva32f, Orva32f>(ORVAS_Norm_L2_32f, ORVAS_NormDiff_L2_32f, kLength<4>, kLength<4>);
  CheckBoth<Orva64f, Orva64f>(ORVAS_Norm_L2_64f, ORVAS_NormDiff_L2_64f, kLength<2>, kLength<2>);
}

TEST(Norm, ComplexFloats) {
  CheckBoth<Orva32fc, Orva32f>(ORVAS_Norm_Inf_32fc32f, ORVAS_NormDiff_Inf_32fc32f, kLargest<4>, kLargest<8>);
  CheckBoth<Orva64fc, Orva64f>(ORVAS_Norm_Inf_64fc64f, ORVAS_NormDiff_Inf_64fc64f, kLargest<2>, kLargest<2>);
  CheckBoth<Orva32fc, Orva64f>(ORVAS_Norm_L1_32fc64f, ORVAS_NormDiff_L1_32fc64f, kComplexMagnitudes<4>,
                               kComplexMagnitudes<4>);
  CheckBoth<Orva64fc, Orva64f>(ORVAS_Norm_L1_64fc64f, ORVAS_NormDiff_L1_64fc64f, kComplexMagnitudes<2>,
                               kComplexMagnitudes<2>);
  CheckBoth<Orva32fc, Orva64f>(ORVAS_Norm_L2_32fc64f, ORVAS_NormDiff_L2_32fc64f, kComplexLength<4>, kComplexLength<4>);
  CheckBoth<Orva64fc, Orva64f>(ORVAS_Norm_L2_64fc64f, ORVAS_NormDiff_L2_64fc64f, kComplexLength<2>, kComplexLength<2>);
}

// ---- Integers ----

using Integers = std::vector<int32_t>;

int64_t Largest(const Integers& x) {
  int64_t largest = 0;
  for (const int64_t each : x) largest = std::max(largest, std::abs(each));
  return largest;
}
int64_t Sum(const Integers& x) {
  int64_t sum = 0;
  for (const int64_t each : x) sum += std::abs(each);
  return sum;
}
int64_t Squares(const Integers& x) {
  int64_t sum = 0;
  for (const int64_t each : x) sum += each * each;
  return sum;
}
int32_t Wrapped(const Integers& x) { return static_cast<int32_t>(static_cast<uint32_t>(Sum(x))); }
double Root(const Integers& x) { return std::sqrt(static_cast<double>(Squares(x))); }

// result(value) of arrays of all lengths, and of extremes whose sums pass 32 bits; `most` of them.
void CheckIntegers(auto norm, auto norm_diff, auto value, auto norm_result, auto diff_result,
                   size_t most = 65537) {
  const auto one = [&](const std::vector<Orva16s>& a) { return norm_result(value(Integers(a.begin(), a.end()))); };
  const auto two = [&](const auto& a, const auto& b) { return diff_result(value(Differences<int32_t>(a, b))); };
  CheckReduction<Orva16s>(norm, one);
  CheckReduction<Orva16s, Orva16s>(norm_diff, two);
  for (size_t len : {size_t{1}, size_t{33}, most}) {
    const std::vector<Orva16s> low(len, -32768), high(len, 32767);
    ExpectResult(one(low), len, norm, low);
    ExpectResult(two(low, high), len, norm_diff, low, high);
  }
}

TEST(Norm, Integers) {
  const auto narrow = [](auto value) { return static_cast<float>(value); };
  constexpr size_t kMost = 1100001;  // more than 32-bit lanes hold
  CheckIntegers(ORVAS_Norm_Inf_16s32f, ORVAS_NormDiff_Inf_16s32f, Largest, narrow, narrow, kMost);
  CheckIntegers(ORVAS_Norm_L1_16s32f, ORVAS_NormDiff_L1_16s32f, Wrapped, narrow, narrow, kMost);
  CheckIntegers(ORVAS_Norm_L2_16s32f, ORVAS_NormDiff_L2_16s32f, Root, narrow, narrow, kMost);
}

// Scaled results are truncated toward zero. Either norm may hold the factor as a binary32 number.
template <class Result>
void CheckScaled(auto norm, auto norm_diff, auto value, bool narrow_norm = false, bool narrow_diff = false) {
  for (int exponent : {0, 1, 2, 40, 149, 160, 1023, -1, -15, -16, -40, -127, -160, -1074}) {
    const auto truncated = [exponent](bool narrow) {
      const double factor = std::pow(2.0, -exponent);
      const double held = !narrow || std::abs(exponent) < 150 ? factor : exponent > 0 ? 0.0 : INFINITY;
      return [=](auto exact) { return RoundSaturate<Result>(std::trunc(static_cast<double>(exact) * held)); };
    };
    const double scale = std::ldexp(1.0, exponent);
    CheckIntegers(With(norm, scale), With(norm_diff, scale), value, truncated(narrow_norm), truncated(narrow_diff));
  }
}

TEST(Norm, ScaledIntegers) {
  CheckScaled<Orva32s>(ORVAS_Norm_Inf_16s32s_S, ORVAS_NormDiff_Inf_16s32s_S, Largest, false, true);
  CheckScaled<Orva32s>(ORVAS_Norm_L1_16s32s_S, ORVAS_NormDiff_L1_16s32s_S, Wrapped);
  CheckScaled<Orva64s>(ORVAS_Norm_L1_16s64s_S, ORVAS_NormDiff_L1_16s64s_S, Sum);
  CheckScaled<Orva32s>(ORVAS_Norm_L2_16s32s_S, ORVAS_NormDiff_L2_16s32s_S, Root, true, false);
  CheckScaled<Orva64s>(ORVAS_Norm_L2Sqr_16s64s_S, ORVAS_NormDiff_L2Sqr_16s64s_S, Squares);
}

}  // namespace
}  // namespace tzm_test
