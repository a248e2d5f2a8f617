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
double FloatLargest(const std::vector<T>& x) {
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
  CheckFloats<Orva32f, Orva32f>(nullptr, ORVAS_NormDiff_Inf_32f, FloatLargest<4, Orva32f>);
  CheckFloats<Orva64f, Orva64f>(nullptr, ORVAS_NormDiff_Inf_64f, FloatLargest<2, Orva64f>);
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
  CheckFloats(ORVAS_Norm_Inf_32fc32f, ORVAS_NormDiff_Inf_32fc32f, FloatLargest<4, Orva32fc>, FloatLargest<8, Orva32fc>);
  CheckFloats(ORVAS_Norm_Inf_64fc64f, ORVAS_NormDiff_Inf_64fc64f, FloatLargest<2, Orva64fc>);
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
};

// Two arrays, and what is exact about the first and about their difference.
struct Case {
  GuardedArray<Orva16s> src1, src2;
  int32_t len;
  Exact one, difference;

  Case(const std::vector<Orva16s>& a, const std::vector<Orva16s>& b)
      : src1(a), src2(b), len(static_cast<int32_t>(a.size())), one({a.begin(), a.end()}), difference(Minus(a, b)) {}
  static std::vector<int32_t> Minus(const std::vector<Orva16s>& a, const std::vector<Orva16s>& b) {
    std::vector<int32_t> x(a.begin(), a.end());
    for (size_t i = 0; i < x.size(); ++i) x[i] -= b[i];
    return x;
  }
};

// All varieties at lengths up to some blocks, and the extremes up to more than 32-bit lanes hold.
template <class Check>
void ForCases(Check check) {
  uint64_t seed = 0;
  for (size_t len = 1; len < 1100; len += len < 70 ? 1 : 93) {
    for (Variety variety : kVarieties) {
      seed += 2;
      check(Case(RandomArray<Orva16s>(len, seed, variety), RandomArray<Orva16s>(len, seed + 1, variety)));
      ASSERT_FALSE(testing::Test::HasFailure()) << "length " << len;
    }
  }
  for (size_t len : {1, 33, 65537, 1100001}) {
    check(Case(std::vector<Orva16s>(len, -32768), std::vector<Orva16s>(len, 32767)));
    ASSERT_FALSE(testing::Test::HasFailure()) << "length " << len;
  }
}

template <class Value>
void CheckUnscaled(const Case& x, OrvaStatus (*norm)(const Orva16s*, int32_t, Orva32f*),
                   OrvaStatus (*norm_diff)(const Orva16s*, const Orva16s*, int32_t, Orva32f*), Value value) {
  Orva32f result[2];
  ASSERT_EQ(norm(x.src1.data(), x.len, &result[0]), ORVA_STS_NO_ERR);
  ASSERT_EQ(norm_diff(x.src1.data(), x.src2.data(), x.len, &result[1]), ORVA_STS_NO_ERR);
  EXPECT_EQ(result[0], static_cast<float>(value(x.one)));
  EXPECT_EQ(result[1], static_cast<float>(value(x.difference)));
}

int64_t Largest(const Exact& x) { return x.largest; }
int64_t Sum(const Exact& x) { return x.sum; }
int64_t Squares(const Exact& x) { return x.squares; }
int32_t Wrapped(const Exact& x) { return static_cast<int32_t>(static_cast<uint32_t>(x.sum)); }
double Root(const Exact& x) { return std::sqrt(static_cast<double>(x.squares)); }

TEST(Norm, Integers) {
  ForCases([](const Case& x) {
    CheckUnscaled(x, ORVAS_Norm_Inf_16s32f, ORVAS_NormDiff_Inf_16s32f, Largest);
    CheckUnscaled(x, ORVAS_Norm_L1_16s32f, ORVAS_NormDiff_L1_16s32f, Wrapped);
    CheckUnscaled(x, ORVAS_Norm_L2_16s32f, ORVAS_NormDiff_L2_16s32f, Root);
  });
}

template <class T>
T Truncated(double y) {
  if (std::isnan(y)) return 0;
  if (y >= static_cast<double>(std::numeric_limits<T>::max())) return std::numeric_limits<T>::max();
  if (y <= static_cast<double>(std::numeric_limits<T>::min())) return std::numeric_limits<T>::min();
  return static_cast<T>(std::trunc(y));
}

// Scales of 2^exponent. The factor of either norm may be a binary32 number.
template <class Result, class Value>
void CheckScaled(const Case& x, OrvaStatus (*norm)(const Orva16s*, int32_t, Result*, double),
                 OrvaStatus (*norm_diff)(const Orva16s*, const Orva16s*, int32_t, Result*, double), Value value,
                 bool narrow_norm = false, bool narrow_diff = false) {
  for (int exponent : {0, 1, 2, 7, 40, 140, 160, 1023, -1, -15, -16, -40, -120, -160, -1074}) {
    const double scale = std::ldexp(1.0, exponent), factor = std::pow(2.0, -exponent);
    const auto expected = [&](const Exact& exact, bool narrow) {
      const double held = !narrow || (exponent <= 149 && exponent >= -127) ? factor : exponent > 0 ? 0.0 : INFINITY;
      return Truncated<Result>(static_cast<double>(value(exact)) * held);
    };
    Result result[2];
    ASSERT_EQ(norm(x.src1.data(), x.len, &result[0], scale), ORVA_STS_NO_ERR);
    ASSERT_EQ(norm_diff(x.src1.data(), x.src2.data(), x.len, &result[1], scale), ORVA_STS_NO_ERR);
    EXPECT_EQ(result[0], expected(x.one, narrow_norm)) << "exponent " << exponent;
    EXPECT_EQ(result[1], expected(x.difference, narrow_diff)) << "exponent " << exponent;
    if (x.len > 2000) return;  // long arrays are there for the sums, not for the scales
  }
}

TEST(Norm, ScaledIntegers) {
  ForCases([](const Case& x) {
    CheckScaled<Orva32s>(x, ORVAS_Norm_Inf_16s32s_S, ORVAS_NormDiff_Inf_16s32s_S, Largest, false, true);
    CheckScaled<Orva32s>(x, ORVAS_Norm_L1_16s32s_S, ORVAS_NormDiff_L1_16s32s_S, Wrapped);
    CheckScaled<Orva64s>(x, ORVAS_Norm_L1_16s64s_S, ORVAS_NormDiff_L1_16s64s_S, Sum);
    CheckScaled<Orva32s>(x, ORVAS_Norm_L2_16s32s_S, ORVAS_NormDiff_L2_16s32s_S, Root, true, false);
    CheckScaled<Orva64s>(x, ORVAS_Norm_L2Sqr_16s64s_S, ORVAS_NormDiff_L2Sqr_16s64s_S, Squares);
  });
}

}  // namespace
}  // namespace tzm_test
