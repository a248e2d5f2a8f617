// Norms and norm differences: one plain loop for each kind, over the samples or their differences.
#include <gtest/gtest.h>
#include <signal_tzm/reduce.h>

#include <cmath>
#include <limits>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

template <class T>
constexpr auto RealOf() {
  if constexpr (requires(T x) { x.re; }) return decltype(T::re)();
  else return T();
}
template <class T>
using Real = decltype(RealOf<T>());

template <class T>
T Minus(T a, T b) {
  if constexpr (requires { a.re; }) return {a.re - b.re, a.im - b.im};
  else return a - b;
}

// ---- The kinds ----

template <class T>
Real<T> Size(T x) {  // magnitude of a real sample, squared magnitude of a complex one
  if constexpr (requires { x.re; }) return std::fma(x.re, x.re, x.im * x.im);
  else return std::fabs(x);
}

template <size_t kStep, class T>
double Largest(const std::vector<T>& x) {
  const size_t body = x.size() / kStep * kStep;
  Real<T> result = 0;
  for (size_t i = 0; i < body; ++i)
    if (std::isnan(Size(x[i])) || std::isnan(result)) result = std::numeric_limits<Real<T>>::quiet_NaN();
    else result = std::fmax(result, Size(x[i]));
  for (size_t i = body; i < x.size(); ++i)
    if (Size(x[i]) > result) result = Size(x[i]);
  if constexpr (requires { x[0].re; }) return std::sqrt(double(result));
  else return result;
}

// Real samples, in lanes of their own type.
template <size_t kLanes, bool kSquares, class T>
T RealSum(const std::vector<T>& x) {
  const size_t body = x.size() / kLanes * kLanes;
  T lane[4] = {};
  const auto add = [](T& sum, T value) { sum = kSquares ? std::fma(value, value, sum) : sum + std::fabs(value); };
  for (size_t i = 0; i < body; ++i) add(lane[i % kLanes], x[i]);
  T sum = (lane[0] + lane[1]) + (lane[2] + lane[3]);
  for (size_t i = body; i < x.size(); ++i) add(sum, x[i]);
  return kSquares ? std::sqrt(sum) : sum;
}

template <size_t kStep, class T>
double ComplexL1(const std::vector<T>& x) {
  const size_t body = x.size() / kStep * kStep;
  double lane[2] = {};
  for (size_t i = 0; i < body; ++i) lane[i % 2] += std::sqrt(Size(x[i]));
  double sum = lane[0] + lane[1];
  for (size_t i = body; i < x.size(); ++i) sum += std::sqrt(double(Size(x[i])));
  return sum;
}

template <size_t kLanes, class T>
double ComplexL2(const std::vector<T>& x) {
  const size_t body = x.size() / kLanes * kLanes;
  Real<T> lane[4] = {};
  for (size_t i = 0; i < body; ++i) {
    Real<T>& sum = lane[i % kLanes];
    sum = std::fma(x[i].im, x[i].im, std::fma(x[i].re, x[i].re, sum));
  }
  double sum = (lane[0] + lane[1]) + (lane[2] + lane[3]);
  for (size_t i = body; i < x.size(); ++i) sum += Size(x[i]);
  return std::sqrt(sum);
}

// ---- Floats ----

// Arrays of all varieties and lengths up to some blocks; of each length one with a single NaN.
template <class T, class Result, class Oracle, class DiffOracle>
void CheckFloats(OrvaStatus (*norm)(const T*, int32_t, Result*),
                 OrvaStatus (*norm_diff)(const T*, const T*, int32_t, Result*), Oracle oracle, DiffOracle diff_oracle) {
  uint64_t seed = 0;
  for (int32_t len = 1; len < 1100; len += len < 70 ? 1 : 93) {
    for (Variety variety : {Variety::kModerate, Variety::kModerate, Variety::kWide, Variety::kSpecial}) {
      auto a = RandomArray<T>(len, ++seed, variety);
      const auto b = RandomArray<T>(len, ++seed, variety);
      if (seed % 8 == 2) reinterpret_cast<Real<T>*>(&a[seed / 8 % len])[0] = std::numeric_limits<Real<T>>::quiet_NaN();
      std::vector<T> difference;
      for (int32_t i = 0; i < len; ++i) difference.push_back(Minus(a[i], b[i]));
      const Result expected[] = {static_cast<Result>(oracle(a)), static_cast<Result>(diff_oracle(difference))};
      const GuardedArray<T> src1(a), src2(b);
      Result actual[2];
      if (norm != nullptr) {
        ASSERT_EQ(norm(src1.data(), len, &actual[0]), ORVA_STS_NO_ERR);
        ASSERT_TRUE(SameBits("norm", &expected[0], &actual[0], 1, seed)) << "length " << len;
      }
      ASSERT_EQ(norm_diff(src1.data(), src2.data(), len, &actual[1]), ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("norm of the difference", &expected[1], &actual[1], 1, seed)) << "length " << len;
    }
  }
}
template <class T, class Result, class Oracle>
void CheckFloats(OrvaStatus (*norm)(const T*, int32_t, Result*),
                 OrvaStatus (*norm_diff)(const T*, const T*, int32_t, Result*), Oracle oracle) {
  CheckFloats(norm, norm_diff, oracle, oracle);
}

TEST(Norm, RealInf) {  // the norms of one array are the companion's maxima, and tested with them
  CheckFloats<Orva32f, Orva32f>(nullptr, ORVAS_NormDiff_Inf_32f, Largest<4, Orva32f>);
  CheckFloats<Orva64f, Orva64f>(nullptr, ORVAS_NormDiff_Inf_64f, Largest<2, Orva64f>);
  const Orva32f src[5] = {1, -7, 3, 2, -4};
  Orva32f norm;
  EXPECT_EQ(ORVAS_Norm_Inf_32f(src, 5, &norm), ORVA_STS_NO_ERR);
  EXPECT_EQ(norm, 7);
}

TEST(Norm, RealSums) {
  CheckFloats(ORVAS_Norm_L1_32f, ORVAS_NormDiff_L1_32f, RealSum<4, false, Orva32f>);
  CheckFloats(ORVAS_Norm_L1_64f, ORVAS_NormDiff_L1_64f, RealSum<2, false, Orva64f>);
  CheckFloats(ORVAS_Norm_L2_32f, ORVAS_NormDiff_L2_32f, RealSum<4, true, Orva32f>);
  CheckFloats(ORVAS_Norm_L2_64f, ORVAS_NormDiff_L2_64f, RealSum<2, true, Orva64f>);
}

TEST(Norm, Complex) {
  CheckFloats(ORVAS_Norm_Inf_32fc32f, ORVAS_NormDiff_Inf_32fc32f, Largest<4, Orva32fc>, Largest<8, Orva32fc>);
  CheckFloats(ORVAS_Norm_Inf_64fc64f, ORVAS_NormDiff_Inf_64fc64f, Largest<2, Orva64fc>);
  CheckFloats(ORVAS_Norm_L1_32fc64f, ORVAS_NormDiff_L1_32fc64f, ComplexL1<4, Orva32fc>);
  CheckFloats(ORVAS_Norm_L1_64fc64f, ORVAS_NormDiff_L1_64fc64f, ComplexL1<2, Orva64fc>);
  CheckFloats(ORVAS_Norm_L2_32fc64f, ORVAS_NormDiff_L2_32fc64f, ComplexL2<4, Orva32fc>);
  CheckFloats(ORVAS_Norm_L2_64fc64f, ORVAS_NormDiff_L2_64fc64f, ComplexL2<2, Orva64fc>);
}

// ---- Integers ----

struct Exact {
  int64_t largest = 0, sum = 0, squares = 0;
  explicit Exact(const std::vector<int32_t>& x) {
    for (const int64_t each : x) {
      largest = std::max(largest, std::abs(each));
      sum += std::abs(each);
      squares += each * each;
    }
  }
  int32_t Wrapped() const { return static_cast<int32_t>(static_cast<uint32_t>(sum)); }
  double Root() const { return std::sqrt(static_cast<double>(squares)); }
};

// Calls norm(Exact, src1, len) and diff(Exact, src1, src2, len) for arrays of all varieties.
template <class Norm, class Diff>
void ForIntegers(Norm norm, Diff diff) {
  const auto run = [&](const std::vector<Orva16s>& a, const std::vector<Orva16s>& b) {
    std::vector<int32_t> difference;
    for (size_t i = 0; i < a.size(); ++i) difference.push_back(a[i] - b[i]);
    const GuardedArray<Orva16s> src1(a), src2(b);
    const int32_t len = static_cast<int32_t>(a.size());
    norm(Exact({a.begin(), a.end()}), src1.data(), len);
    diff(Exact(difference), src1.data(), src2.data(), len);
    ASSERT_FALSE(testing::Test::HasFailure()) << "length " << len;
  };
  uint64_t seed = 0;
  for (size_t len = 1; len < 1100; len += len < 70 ? 1 : 93)
    for (Variety variety : kVarieties) {
      seed += 2;
      run(RandomArray<Orva16s>(len, seed, variety), RandomArray<Orva16s>(len, seed + 1, variety));
    }
  for (size_t len : {1, 33, 65537, 1500001})  // the extremes, up to more than 32-bit lanes hold
    run(std::vector<Orva16s>(len, -32768), std::vector<Orva16s>(len, 32767));
}

template <class Value>
void CheckUnscaled(OrvaStatus (*norm)(const Orva16s*, int32_t, Orva32f*),
                   OrvaStatus (*norm_diff)(const Orva16s*, const Orva16s*, int32_t, Orva32f*), Value value) {
  ForIntegers(
      [&](const Exact& exact, const Orva16s* src, int32_t len) {
        Orva32f result;
        ASSERT_EQ(norm(src, len, &result), ORVA_STS_NO_ERR);
        EXPECT_EQ(result, static_cast<float>(value(exact)));
      },
      [&](const Exact& exact, const Orva16s* src1, const Orva16s* src2, int32_t len) {
        Orva32f result;
        ASSERT_EQ(norm_diff(src1, src2, len, &result), ORVA_STS_NO_ERR);
        EXPECT_EQ(result, static_cast<float>(value(exact)));
      });
}

TEST(Norm, Integers) {
  CheckUnscaled(ORVAS_Norm_Inf_16s32f, ORVAS_NormDiff_Inf_16s32f, [](const Exact& x) { return x.largest; });
  CheckUnscaled(ORVAS_Norm_L1_16s32f, ORVAS_NormDiff_L1_16s32f, [](const Exact& x) { return x.Wrapped(); });
  CheckUnscaled(ORVAS_Norm_L2_16s32f, ORVAS_NormDiff_L2_16s32f, [](const Exact& x) { return x.Root(); });
}

template <class T>
T Truncated(double y) {
  if (std::isnan(y)) return 0;
  if (y >= static_cast<double>(std::numeric_limits<T>::max())) return std::numeric_limits<T>::max();
  if (y <= static_cast<double>(std::numeric_limits<T>::min())) return std::numeric_limits<T>::min();
  return static_cast<T>(std::trunc(y));
}

// Scales of 2^exponent; the factor of the first norm may be a binary32 number.
template <class Result, class Value>
void CheckScaled(OrvaStatus (*norm)(const Orva16s*, int32_t, Result*, double),
                 OrvaStatus (*norm_diff)(const Orva16s*, const Orva16s*, int32_t, Result*, double), Value value,
                 bool narrow_norm = false, bool narrow_diff = false) {
  const auto check = [&](const Exact& exact, bool narrow, auto call) {
    for (int exponent : {0, 1, 2, 7, 40, 140, 160, 1023, -1, -15, -16, -40, -120, -160, -1074}) {
      double factor = exponent == -1074 ? std::numeric_limits<double>::infinity() : std::ldexp(1.0, -exponent);
      if (narrow) factor = std::abs(exponent) > 149 || exponent < -127 ? (exponent < 0 ? INFINITY : 0.0) : factor;
      Result result;
      ASSERT_EQ(call(&result, std::ldexp(1.0, exponent)), ORVA_STS_NO_ERR);
      EXPECT_EQ(result, Truncated<Result>(static_cast<double>(value(exact)) * factor)) << "exponent " << exponent;
    }
  };
  ForIntegers(
      [&](const Exact& exact, const Orva16s* src, int32_t len) {
        check(exact, narrow_norm, [&](Result* result, double scale) { return norm(src, len, result, scale); });
      },
      [&](const Exact& exact, const Orva16s* src1, const Orva16s* src2, int32_t len) {
        check(exact, narrow_diff,
              [&](Result* result, double scale) { return norm_diff(src1, src2, len, result, scale); });
      });
}

TEST(Norm, ScaledIntegers) {
  CheckScaled<Orva32s>(ORVAS_Norm_Inf_16s32s_S, ORVAS_NormDiff_Inf_16s32s_S, [](const Exact& x) { return x.largest; },
                       false, true);
  CheckScaled<Orva32s>(ORVAS_Norm_L1_16s32s_S, ORVAS_NormDiff_L1_16s32s_S, [](const Exact& x) { return x.Wrapped(); });
  CheckScaled<Orva64s>(ORVAS_Norm_L1_16s64s_S, ORVAS_NormDiff_L1_16s64s_S, [](const Exact& x) { return x.sum; });
  CheckScaled<Orva32s>(ORVAS_Norm_L2_16s32s_S, ORVAS_NormDiff_L2_16s32s_S, [](const Exact& x) { return x.Root(); },
                       true, false);
  CheckScaled<Orva64s>(ORVAS_Norm_L2Sqr_16s64s_S, ORVAS_NormDiff_L2Sqr_16s64s_S,
                       [](const Exact& x) { return x.squares; });
}

}  // namespace
}  // namespace tzm_test
