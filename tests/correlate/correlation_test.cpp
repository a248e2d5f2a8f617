#include <gtest/gtest.h>
#include <signal_tzm/correlate.h>

#include <cmath>
#include <complex>

#include "support/arguments.h"
#include "support/compare.h"
#include "support/faults.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {

namespace {

// A sum of conj(x)*y as a lane and as the scalar remainder take it.
template <class Real>
struct RealSum {
  Real re = 0;
  void Fused(Real x, Real y) { re = std::fma(x, y, re); }
  void OneByOne(Real x, Real y) { Fused(x, y); }
  void Divide(Real by) { re /= by; }
  void Multiply(Real by) { re *= by; }
  friend RealSum operator+(RealSum a, RealSum b) { return {a.re + b.re}; }
};
template <class Real>
struct ComplexSum {
  Real re = 0, im = 0;
  template <class C>
  void Fused(C x, C y) {
    re = std::fma(x.im, y.im, std::fma(x.re, y.re, re));
    im = std::fma(-x.im, y.re, std::fma(x.re, y.im, im));
  }
  template <class C>
  void OneByOne(C x, C y) {
    re += std::fma(x.re, y.re, x.im * y.im);
    im += std::fma(x.re, y.im, -(y.re * x.im));
  }
  void Divide(Real by) { re /= by, im /= by; }
  void Multiply(Real by) { re *= by, im *= by; }
  friend ComplexSum operator+(ComplexSum a, ComplexSum b) { return {a.re + b.re, a.im + b.im}; }
};

template <class Sample>
struct Members;
#define MEMBERS(type, real, sum, lags, group, accumulators, limit)                                \
  template <>                                                                                     \
  struct Members<Orva##type> {                                                                    \
    using Real = real;                                                                            \
    using Sum = sum<real>;                                                                        \
    static constexpr auto AutoInit = ORVAS_AutoCorrInit_##type;                                   \
    static constexpr auto Auto = ORVAS_AutoCorrNorm_##type;                                       \
    static constexpr auto CrossInit = ORVAS_CrossCorrInit_##type;                                 \
    static constexpr auto Cross = ORVAS_CrossCorrNorm_##type;                                     \
    static constexpr auto Release = ORVAS_CorrRelease_##type;                                     \
    static constexpr int64_t kLags = lags, kGroup = group, kAccumulators = accumulators;          \
    static constexpr int32_t kLimit = limit;                                                      \
    static constexpr bool kComplex = sizeof(Sum) > sizeof(real);                                  \
  };
MEMBERS(32f, float, RealSum, 16, 4, 4, 0x10000001)
MEMBERS(64f, double, RealSum, 4, 2, 4, 0x8000001)
MEMBERS(32fc, float, ComplexSum, 8, 4, 2, 0x8000001)
MEMBERS(64fc, double, ComplexSum, 4, 2, 2, 0x4000001)
#undef MEMBERS

template <class T>
class Correlation : public testing::Test {};
using Types = testing::Types<Orva32f, Orva64f, Orva32fc, Orva64fc>;
TYPED_TEST_SUITE(Correlation, Types);

template <class Sum>
Sum FoldNeighbours(const Sum* lane, int64_t lanes) {
  return lanes == 1 ? *lane : FoldNeighbours(lane, lanes / 2) + FoldNeighbours(lane + lanes / 2, lanes / 2);
}

// A single lag: all accumulators, then the first one, then one by one.
template <class Sample>
auto SingleLag(const Sample* x, const Sample* y, int64_t count) {
  using M = Members<Sample>;
  constexpr int64_t kGroup = M::kGroup, kStep = M::kAccumulators * kGroup;
  typename M::Sum acc[4][4], total[4];
  int64_t i = 0;
  for (; count - i >= kStep; i += kStep)
    for (int64_t l = 0; l < kStep; ++l) acc[l / kGroup][l % kGroup].Fused(x[i + l], y[i + l]);
  for (; count - i >= kGroup; i += kGroup)
    for (int64_t l = 0; l < kGroup; ++l) acc[0][l].Fused(x[i + l], y[i + l]);
  for (int64_t l = 0; l < kGroup; ++l) {
    total[l] = acc[1][l] + acc[0][l];
    if (M::kAccumulators == 4) total[l] = total[l] + (acc[2][l] + acc[3][l]);
  }
  auto sum = FoldNeighbours(total, kGroup);
  for (; i < count; ++i) sum.OneByOne(x[i], y[i]);
  return sum;
}

// A lag of a block: the groups that the last lag of the block has too, and the rest from zero.
template <class Sample>
auto BlockLag(const Sample* x, int64_t len, int64_t lag) {
  using M = Members<Sample>;
  const int64_t last = lag / M::kLags * M::kLags + M::kLags - 1;
  const int64_t body = std::max<int64_t>(len - last, 0) / M::kGroup * M::kGroup;
  typename M::Sum acc[4], rest;
  for (int64_t i = 0; i < body; ++i) acc[i % M::kGroup].Fused(x[i], x[i + lag]);
  for (int64_t i = body; i + lag < len; ++i) rest.OneByOne(x[i], x[i + lag]);
  return FoldNeighbours(acc, M::kGroup) + rest;
}

template <class Sample>
Sample ToSample(const typename Members<Sample>::Sum& sum) {
  if constexpr (Members<Sample>::kComplex) return {sum.re, sum.im};
  else return sum.re;
}

// Division by the constant of a biased correlation is a product with its reciprocal.
template <class Sample>
void Normalise(typename Members<Sample>::Sum& sum, int32_t kind, int64_t biased, int64_t unbiased) {
  using Real = typename Members<Sample>::Real;
  if (kind == 1) sum.Multiply(1 / static_cast<Real>(biased));
  if (kind == 2) sum.Divide(static_cast<Real>(unbiased));
}

template <class Sample>
std::vector<Sample> AutoOracle(const std::vector<Sample>& src, int64_t dstLen, int32_t kind) {
  const int64_t len = std::ssize(src), lags = std::min(len, dstLen);
  std::vector<Sample> dst(dstLen);
  for (int64_t k = 0; k < lags; ++k) {
    auto sum = k < lags / Members<Sample>::kLags * Members<Sample>::kLags ? BlockLag(src.data(), len, k)
                                                                           : SingleLag(&src[0], &src[k], len - k);
    Normalise<Sample>(sum, kind, len, len - k);
    dst[k] = ToSample<Sample>(sum);
  }
  return dst;
}

template <class Sample>
std::vector<Sample> CrossOracle(const std::vector<Sample>& src1, const std::vector<Sample>& src2, int64_t dstLen,
                                int64_t lowLag, int32_t kind) {
  const int64_t len1 = std::ssize(src1), len2 = std::ssize(src2);
  std::vector<Sample> dst(dstLen);
  for (int64_t j = 0; j < dstLen; ++j) {
    const int64_t k = lowLag + j, from = std::max<int64_t>(-k, 0), count = std::min(len2 - k, len1) - from;
    if (count <= 0) continue;
    auto sum = SingleLag(&src1[from], &src2[from + k], count);
    Normalise<Sample>(sum, kind, std::min(len1, len2), count);
    dst[j] = ToSample<Sample>(sum);
  }
  return dst;
}

template <class Sample>
std::complex<double> Value(Sample x) {
  if constexpr (Members<Sample>::kComplex) return {x.re, x.im};
  else return x;
}

// Against the oracle of the direct route, within the error of the transforms; exact zeros beyond.
template <class Sample>
void CheckNear(const std::vector<Sample>& expected, const Sample* actual, int64_t products) {
  using Real = typename Members<Sample>::Real;
  const double bound = 2000 * std::numeric_limits<Real>::epsilon() * static_cast<double>(products);
  for (size_t j = 0; j < expected.size(); ++j)
    ASSERT_LT(std::abs(Value(expected[j]) - Value(actual[j])), bound) << j;
}

template <class Sample>
CorrState* AutoState(int32_t srcLen, int32_t dstLen, int32_t kind) {
  CorrState* state = nullptr;
  EXPECT_EQ(Members<Sample>::AutoInit(srcLen, dstLen, kind, &state), ORVA_STS_NO_ERR);
  return state;
}
template <class Sample>
CorrState* CrossState(int32_t len1, int32_t len2, int32_t dstLen, int32_t lowLag, int32_t kind) {
  CorrState* state = nullptr;
  EXPECT_EQ(Members<Sample>::CrossInit(len1, len2, dstLen, lowLag, kind, &state), ORVA_STS_NO_ERR);
  return state;
}

TYPED_TEST(Correlation, AutoDirect) {
  using T = TypeParam;
  CorrState* const state = AutoState<T>(1, 1, 1);  // other lengths: they do not matter
  for (int32_t len : {1, 2, 3, 7, 16, 19, 37, 64, 90, 131})
    for (int32_t dstLen : {1, 3, 4, 8, 15, 17, 35, 64, 83, 140})
      for (Variety variety : {Variety::kModerate, Variety::kSpecial})
        for (Place place : {Place::kEnd, Place::kUnaligned}) {
          const int32_t kind = (len + dstLen) % 4;
          const auto values = RandomArray<T>(len, len, variety);
          const auto expected = AutoOracle(values, dstLen, kind);
          const GuardedArray<T> src(values, place);
          GuardedArray<T> dst(dstLen, place);
          ASSERT_EQ(Members<T>::Auto(src.data(), len, dst.data(), dstLen, kind, state), ORVA_STS_NO_ERR);
          const std::vector<T> actual(dst.begin(), dst.end());
          ASSERT_TRUE(SameBits("autocorrelation", expected.data(), actual.data(), dstLen))
              << len << " samples, normalisation " << kind;
        }
  Members<T>::Release(state);
}

TYPED_TEST(Correlation, CrossDirect) {
  using T = TypeParam;
  for (int32_t len1 : {1, 2, 9, 16, 33, 70})
    for (int32_t len2 : {1, 3, 8, 40, 71})
      for (auto [low, dstLen] : {std::pair{0, 1}, {-len1 - 3, len1 + len2 + 5}, {-5, 40}, {3, 9}, {len2 - 1, 4}, {-len1, 2}})
        for (Variety variety : {Variety::kModerate, Variety::kSpecial})
          for (Place place : {Place::kEnd, Place::kStart}) {
            const int32_t kind = (len1 + len2) % 4;
            const auto values1 = RandomArray<T>(len1, len1, variety), values2 = RandomArray<T>(len2, 100 + len2, variety);
            const auto expected = CrossOracle(values1, values2, dstLen, low, kind);
            const GuardedArray<T> src1(values1, place), src2(values2, place);
            GuardedArray<T> dst(dstLen, place);
            CorrState* const state = CrossState<T>(len1, len2, dstLen, low, 1);
            ASSERT_EQ(Members<T>::Cross(src1.data(), len1, src2.data(), len2, dst.data(), dstLen, low, kind, state),
                      ORVA_STS_NO_ERR);
            Members<T>::Release(state);
            const std::vector<T> actual(dst.begin(), dst.end());
            ASSERT_TRUE(SameBits("cross-correlation", expected.data(), actual.data(), dstLen))
                << len1 << " by " << len2 << " from lag " << low << ", normalisation " << kind;
          }
}

TYPED_TEST(Correlation, ByTransforms) {
  using T = TypeParam;
  const T zero = {};
  for (int32_t kind : {0, 1, 2}) {
    for (auto [len, dstLen] : {std::pair{1, 1}, {1, 5}, {2, 2}, {100, 30}, {100, 130}, {300, 300}}) {
      const auto values = RandomArray<T>(len, 11);
      const GuardedArray<T> src(values);
      GuardedArray<T> dst(dstLen);
      CorrState* const state = AutoState<T>(len, dstLen, 2);
      for (int run = 0; run < 2; ++run)
        ASSERT_EQ(Members<T>::Auto(src.data(), len, dst.data(), dstLen, kind, state), ORVA_STS_NO_ERR);
      Members<T>::Release(state);
      CheckNear(AutoOracle(values, dstLen, kind), dst.data(), len);
      for (int32_t k = len; k < dstLen; ++k) ASSERT_TRUE(SameBits("lags beyond", &zero, &dst[k], 1));
    }
    // The last ones need several blocks of lags, the first of which begins before src2.
    for (auto [len1, len2, low, dstLen] :
         {std::array{1, 1, 0, 1}, {2, 1, -1, 2}, {60, 90, 0, 1}, {50, 70, -80, 200}, {5, 900, -9, 920}, {20, 700, 100, 650}}) {
      const auto values1 = RandomArray<T>(len1, 12), values2 = RandomArray<T>(len2, 13);
      const GuardedArray<T> src1(values1), src2(values2);
      GuardedArray<T> dst(dstLen);
      CorrState* const state = CrossState<T>(len1, len2, dstLen, low, 2);
      for (int run = 0; run < 2; ++run)
        ASSERT_EQ(Members<T>::Cross(src1.data(), len1, src2.data(), len2, dst.data(), dstLen, low, kind, state),
                  ORVA_STS_NO_ERR);
      Members<T>::Release(state);
      CheckNear(CrossOracle(values1, values2, dstLen, low, kind), dst.data(), std::min(len1, len2));
      for (int32_t j = 0; j < dstLen; ++j) {
        const bool overlap = low + j > -len1 && low + j < len2;
        if (!overlap) {
          ASSERT_TRUE(SameBits("lags beyond", &zero, &dst[j], 1));
        }
      }
    }
  }
}

// A state serves all arguments of its transform length, with the lags that it was made for.
TYPED_TEST(Correlation, LengthsOfOneState) {
  using T = TypeParam;
  using M = Members<T>;
  const auto src = RandomArray<T>(100, 14);
  std::vector<T> dst(100, src[0]), untouched = dst;
  CorrState* state = AutoState<T>(40, 20, 2);  // transforms of 64, 20 lags
  EXPECT_EQ(M::Auto(src.data(), 33, dst.data(), 33, 0, state), ORVA_STS_LEN_MISMATCH_ERR);
  EXPECT_EQ(M::Auto(src.data(), 20, dst.data(), 9, 0, state), ORVA_STS_LEN_MISMATCH_ERR);
  EXPECT_EQ(M::Auto(src.data(), INT32_MAX, dst.data(), INT32_MAX, 0, state), ORVA_STS_LEN_MISMATCH_ERR);
  EXPECT_TRUE(SameBits("mismatch", untouched.data(), dst.data(), dst.size()));
  ASSERT_EQ(M::Auto(src.data(), 40, dst.data(), 10, 2, state), ORVA_STS_NO_ERR);
  auto expected = AutoOracle<T>({src.begin(), src.begin() + 40}, 20, 0);
  const auto unbiased = AutoOracle<T>({src.begin(), src.begin() + 40}, 10, 2);
  std::copy(unbiased.begin(), unbiased.end(), expected.begin());
  CheckNear(expected, dst.data(), 40);
  M::Release(state);

  dst = untouched;
  state = CrossState<T>(30, 90, 30, -4, 2);  // transforms of 64
  EXPECT_EQ(M::Cross(src.data(), 30, src.data(), 90, dst.data(), 36, -4, 0, state), ORVA_STS_LEN_MISMATCH_ERR);
  EXPECT_EQ(M::Cross(src.data(), 30, src.data(), 90, dst.data(), 30, 90, 0, state), ORVA_STS_LEN_MISMATCH_ERR);
  EXPECT_EQ(M::Cross(src.data(), 30, src.data(), 90, dst.data(), 30, INT32_MIN, 0, state),
            ORVA_STS_LEN_MISMATCH_ERR);
  EXPECT_TRUE(SameBits("mismatch", untouched.data(), dst.data(), dst.size()));
  ASSERT_EQ(M::Cross(src.data(), 30, src.data(), 80, dst.data(), 20, -1, 0, state), ORVA_STS_NO_ERR);
  CheckNear(CrossOracle<T>({src.begin(), src.begin() + 30}, {src.begin(), src.begin() + 80}, 30, -1, 0), dst.data(), 30);
  M::Release(state);

  // Directly all lags of the call are summed, and those of Init divided.
  state = CrossState<T>(30, 90, 3, 0, 1);
  ASSERT_EQ(M::Cross(src.data(), 30, src.data(), 90, dst.data(), 8, 0, 2, state), ORVA_STS_NO_ERR);
  const std::vector<T> src1(src.begin(), src.begin() + 30), src2(src.begin(), src.begin() + 90);
  expected = CrossOracle(src1, src2, 8, 0, 0);
  const auto divided = CrossOracle(src1, src2, 3, 0, 2);
  std::copy(divided.begin(), divided.end(), expected.begin());
  EXPECT_TRUE(SameBits("cross-correlation", expected.data(), dst.data(), 8));
  M::Release(state);
}

TYPED_TEST(Correlation, NoOverlap) {
  using T = TypeParam;
  const auto src = RandomArray<T>(9, 15);
  const std::vector<T> zeros(9);
  for (auto [low, dstLen] : {std::pair{4, 9}, {INT32_MAX, 9}, {-9, 4}, {INT32_MIN, 9}}) {
    std::vector<T> dst = src;
    const int live = LiveBlocks();
    CorrState* const state = CrossState<T>(6, 4, dstLen, low, 2);
    EXPECT_EQ(LiveBlocks(), live + 1);
    ASSERT_EQ(Members<T>::Cross(src.data(), 6, src.data(), 4, dst.data(), 9, low, 1, state), ORVA_STS_NO_ERR);
    EXPECT_TRUE(SameBits("no overlap", zeros.data(), dst.data(), 9));
    Members<T>::Release(state);
  }
}

TYPED_TEST(Correlation, RoutesAndFaults) {
  using T = TypeParam;
  using M = Members<T>;
  constexpr int kDirect = 1, kAutoFft = M::kComplex ? 4 : 5, kCrossFft = M::kComplex ? 5 : 6;
  const auto requests = [](auto init) {
    return ForEachFault([=] {
      CorrState* const none = reinterpret_cast<CorrState*>(8);
      CorrState* state = none;
      const OrvaStatus status = init(&state);
      EXPECT_EQ(state == none, status != ORVA_STS_NO_ERR);
      if (status == ORVA_STS_NO_ERR) M::Release(state);
      return status;
    });
  };
  const auto autoRequests = [&](int32_t len, int32_t dstLen, int32_t kind) {
    return requests([=](CorrState** state) { return M::AutoInit(len, dstLen, kind, state); });
  };
  EXPECT_EQ(autoRequests(33, 33, 0), kAutoFft);
  EXPECT_EQ(autoRequests(64, 32, 0), kDirect);
  EXPECT_EQ(autoRequests(65, 32, 0), kAutoFft);
  EXPECT_EQ(autoRequests(2048, 1, 0), kDirect);
  EXPECT_EQ(autoRequests(2049, 1, 0), kAutoFft);
  EXPECT_EQ(autoRequests(1, 1, 2), kAutoFft);
  EXPECT_EQ(autoRequests(INT32_MAX, INT32_MAX, 1), kDirect);
  EXPECT_EQ(autoRequests(100, 100, 7), kDirect);
  const auto crossRequests = [&](int32_t len1, int32_t len2, int32_t dstLen, int32_t low, int32_t kind) {
    return requests([=](CorrState** state) { return M::CrossInit(len1, len2, dstLen, low, kind, state); });
  };
  EXPECT_EQ(crossRequests(1, 100, 65, 0, 0), kCrossFft);
  EXPECT_EQ(crossRequests(64, 100, 64, 0, 0), kDirect);
  EXPECT_EQ(crossRequests(65, 100, 64, 0, 0), kCrossFft);
  EXPECT_EQ(crossRequests(4096, 100, 1, 0, 0), kDirect);
  EXPECT_EQ(crossRequests(4097, 100, 1, 0, 0), kCrossFft);
  EXPECT_EQ(crossRequests(1, 1, 1, 0, 2), kCrossFft);
  EXPECT_EQ(crossRequests(500, 500, 500, 0, 3), kDirect);
  EXPECT_EQ(crossRequests(INT32_MAX, INT32_MAX, INT32_MAX, INT32_MIN, 1), kDirect);

  CorrState* state = nullptr;
  const int live = LiveBlocks();
  EXPECT_EQ(M::AutoInit(0, 1, 1, nullptr), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(M::AutoInit(0, 1, 1, &state), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(M::AutoInit(1, -1, 1, &state), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(M::AutoInit(M::kLimit, 1, 2, &state), ORVA_STS_OVERFLOW_ERR);
  EXPECT_EQ(M::AutoInit(INT32_MAX, INT32_MAX, 0, &state), ORVA_STS_OVERFLOW_ERR);
  constexpr int32_t kCrossLimit = M::kLimit / 2 + 1;
  EXPECT_EQ(M::CrossInit(0, 1, 1, 0, 1, nullptr), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(M::CrossInit(0, 1, 1, 0, 1, &state), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(M::CrossInit(1, 0, 1, 0, 1, &state), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(M::CrossInit(1, 1, 0, 0, 1, &state), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(M::CrossInit(kCrossLimit, 1, 1, 0, 2, &state), ORVA_STS_OVERFLOW_ERR);
  EXPECT_EQ(M::CrossInit(INT32_MAX, INT32_MAX, INT32_MAX, -5, 0, &state), ORVA_STS_OVERFLOW_ERR);
  EXPECT_EQ(state, nullptr);
  EXPECT_EQ(LiveBlocks(), live);
  EXPECT_EQ(M::Release(nullptr), ORVA_STS_NO_ERR);
}

TYPED_TEST(Correlation, Arguments) {
  using T = TypeParam;
  using M = Members<T>;
  const auto src = RandomArray<T>(4, 16);
  std::vector<T> dst = RandomArray<T>(4, 17), untouched = dst;
  for (int32_t kind : {1, 2}) {
    CorrState* state = AutoState<T>(4, 4, kind);
    CheckNulls(M::Auto, src.data(), 4, dst.data(), 4, 0, state);
    EXPECT_EQ(M::Auto(nullptr, 0, dst.data(), 4, 0, state), ORVA_STS_NULL_PTR_ERR);
    EXPECT_EQ(M::Auto(src.data(), 0, dst.data(), 4, 0, state), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(M::Auto(src.data(), 4, dst.data(), -1, 0, state), ORVA_STS_SIZE_ERR);
    M::Release(state);
    state = CrossState<T>(4, 4, 4, 0, kind);
    CheckNulls(M::Cross, src.data(), 4, src.data(), 4, dst.data(), 4, 0, 0, state);
    EXPECT_EQ(M::Cross(nullptr, 0, src.data(), 4, dst.data(), 4, 0, 0, state), ORVA_STS_NULL_PTR_ERR);
    EXPECT_EQ(M::Cross(src.data(), 0, src.data(), 4, dst.data(), 4, 0, 0, state), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(M::Cross(src.data(), 4, src.data(), 0, dst.data(), 4, 0, 0, state), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(M::Cross(src.data(), 4, src.data(), 4, dst.data(), 0, 0, 0, state), ORVA_STS_SIZE_ERR);
    M::Release(state);
  }
  EXPECT_TRUE(SameBits("refused", untouched.data(), dst.data(), dst.size()));
}

}  // namespace

}  // namespace tzm_test
