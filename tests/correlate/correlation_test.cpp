// Auto- and cross-correlation: sums to the bit on the direct route, the FFT route within its error, routes, statuses.
#include <signal_tzm/correlate.h>

#include <cmath>

#include "support/testing.h"

namespace tzm_test::correlation_test {

template <class Sample>
struct Members;
#define MEMBERS(type, real, lags, group, accumulators, limit)                            \
  template <>                                                                            \
  struct Members<Orva##type> {                                                           \
    using Real = real;                                                                   \
    static constexpr auto AutoInit = ORVAS_AutoCorrInit_##type;                          \
    static constexpr auto Auto = ORVAS_AutoCorrNorm_##type;                              \
    static constexpr auto CrossInit = ORVAS_CrossCorrInit_##type;                        \
    static constexpr auto Cross = ORVAS_CrossCorrNorm_##type;                            \
    static constexpr auto Release = ORVAS_CorrRelease_##type;                            \
    static constexpr int64_t kLags = lags, kGroup = group, kAccumulators = accumulators; \
    static constexpr int32_t kLimit = limit;                                             \
    static constexpr bool kComplex = sizeof(Orva##type) > sizeof(real);                  \
  };
MEMBERS(32f, float, 16, 4, 4, 0x10000001) MEMBERS(64f, double, 4, 2, 4, 0x8000001)
MEMBERS(32fc, float, 8, 4, 2, 0x8000001) MEMBERS(64fc, double, 4, 2, 2, 0x4000001)

// A sum of conj(x)*y, fused as in a lane or one by one as in a remainder.
template <class T, class Real = typename Members<T>::Real>
struct Sum {
  Real re = 0, im = 0;
  void Add(T x, T y, bool fused) {
    if constexpr (!Members<T>::kComplex) {
      re = std::fma(x, y, re);
    } else if (fused) {
      re = std::fma(x.im, y.im, std::fma(x.re, y.re, re));
      im = std::fma(-x.im, y.re, std::fma(x.re, y.im, im));
    } else {
      re += std::fma(x.re, y.re, x.im * y.im);
      im += std::fma(x.re, y.im, -(y.re * x.im));
    }
  }
  // Division by the constant of a biased correlation is a product with its reciprocal.
  T Value(int32_t normalisation, int64_t biased, int64_t unbiased) const {
    const Real factor = normalisation == 1 ? 1 / static_cast<Real>(biased) : 1;
    const Real divisor = normalisation == 2 ? static_cast<Real>(unbiased) : 1;
    if constexpr (Members<T>::kComplex) return {re * factor / divisor, im * factor / divisor};
    else return re * factor / divisor;
  }
  friend Sum operator+(Sum a, Sum b) { return {a.re + b.re, a.im + b.im}; }
};

template <class T>
Sum<T> FoldNeighbours(const Sum<T>* lane) {
  return Members<T>::kGroup == 2 ? lane[0] + lane[1] : (lane[0] + lane[1]) + (lane[2] + lane[3]);
}

// A single lag: all accumulators, then the first one, then one by one.
template <class T>
Sum<T> SingleLag(const T* x, const T* y, int64_t count) {
  constexpr int64_t kGroup = Members<T>::kGroup, kStep = Members<T>::kAccumulators * kGroup;
  Sum<T> acc[4][4];
  int64_t i = 0;
  for (; i < count / kStep * kStep; ++i) acc[i % kStep / kGroup][i % kGroup].Add(x[i], y[i], true);
  for (; i < count / kGroup * kGroup; ++i) acc[0][i % kGroup].Add(x[i], y[i], true);
  for (int64_t l = 0; l < kGroup; ++l) {
    acc[0][l] = acc[1][l] + acc[0][l];
    if (Members<T>::kAccumulators == 4) acc[0][l] = acc[0][l] + (acc[2][l] + acc[3][l]);
  }
  auto sum = FoldNeighbours(acc[0]);
  for (; i < count; ++i) sum.Add(x[i], y[i], false);
  return sum;
}

// A lag of a block: the groups that the last lag of the block has too, and the rest from zero.
template <class T>
Sum<T> BlockLag(const T* x, int64_t len, int64_t lag) {
  using M = Members<T>;
  const int64_t last = lag / M::kLags * M::kLags + M::kLags - 1;
  const int64_t body = std::max<int64_t>(len - last, 0) / M::kGroup * M::kGroup;
  Sum<T> acc[4], rest;
  for (int64_t i = 0; i < body; ++i) acc[i % M::kGroup].Add(x[i], x[i + lag], true);
  for (int64_t i = body; i + lag < len; ++i) rest.Add(x[i], x[i + lag], false);
  return FoldNeighbours(acc) + rest;
}

// The arguments of an auto- or cross-correlation; the first takes no second sequence, and its lags begin at 0.
struct Call {
  bool cross;
  int32_t len1, len2, dstLen, low;

  template <class T>
  OrvaStatus Init(int32_t kind, CorrState** state) const {
    return cross ? Members<T>::CrossInit(len1, len2, dstLen, low, kind, state)
                 : Members<T>::AutoInit(len1, dstLen, kind, state);
  }
  template <class T>
  OrvaStatus Run(const T* src1, const T* src2, T* dst, int32_t normalisation, CorrState* state) const {
    return cross ? Members<T>::Cross(src1, len1, src2, len2, dst, dstLen, low, normalisation, state)
                 : Members<T>::Auto(src1, len1, dst, dstLen, normalisation, state);
  }
  int64_t Skip() const { return cross ? std::max<int64_t>(int64_t{1} - len1 - low, 0) : 0; }
  int64_t Count() const { return std::min<int64_t>(int64_t{len2} - low, dstLen) - Skip(); }
  int64_t Products(int64_t lag) const { return std::min<int64_t>(len2 - lag, len1) - std::max<int64_t>(-lag, 0); }
};
Call Auto(int32_t len, int32_t dstLen) { return {false, len, len, dstLen, 0}; }
Call Cross(int32_t len1, int32_t len2, int32_t dstLen, int32_t low) { return {true, len1, len2, dstLen, low}; }

template <class T>
class Correlation : public testing::Test {};
using Types = testing::Types<Orva32f, Orva64f, Orva32fc, Orva64fc>;
TYPED_TEST_SUITE(Correlation, Types);

// A call with a state `made` for other arguments: equal bits, or on the FFT route within the transforms' error. There
// as many lags are written as the state was made for; in cross-correlation as many are divided.
template <class T>
void Check(const Call& made, const Call& call, int32_t kind, int32_t normalisation, Variety variety, Place place) {
  using Real = typename Members<T>::Real;
  const auto values1 = RandomArray<T>(call.len1, 1, variety);
  const auto values2 = call.cross ? RandomArray<T>(call.len2, 2, variety) : values1;
  const GuardedArray<T> src1(values1, place), src2(values2, place);
  const int64_t size = std::max<int64_t>(call.dstLen, kind == ORVA_ROUTE_FFT ? call.Skip() + made.Count() : 0);
  GuardedArray<T> dst(size, place);
  CorrState* state = nullptr;
  ASSERT_EQ(made.Init<T>(kind, &state), ORVA_STS_NO_ERR);
  for (int run = 0; run < kind; ++run)  // by FFT a second time, on buffers that the first has filled
    ASSERT_EQ(call.Run(src1.data(), src2.data(), dst.data(), normalisation, state), ORVA_STS_NO_ERR);
  Members<T>::Release(state);

  const int64_t blocks = call.cross ? 0 : call.Count() / Members<T>::kLags * Members<T>::kLags;
  const int64_t divided = call.Skip() + (call.cross ? made : call).Count();
  // No product of two values is above 64.
  const double bound = 64 * std::numeric_limits<Real>::epsilon() * std::min(call.len1, call.len2);
  for (int64_t j = 0; j < size; ++j) {
    const int64_t lag = call.low + j, from = std::max<int64_t>(-lag, 0), count = call.Products(lag);
    T expected = {};
    if (count > 0) {
      const auto sum = j < blocks ? BlockLag(&values1[0], call.len1, lag)
                                  : SingleLag(&values1[from], &values2[from + lag], count);
      expected = sum.Value(j < divided ? normalisation : 0, std::min(call.len1, call.len2), count);
    }
    const auto* const parts = reinterpret_cast<const Real*>(&expected);
    const auto* const actual = reinterpret_cast<const Real*>(&dst[j]);
    for (size_t p = 0; kind == ORVA_ROUTE_FFT && count > 0 && p < sizeof(T) / sizeof(Real); ++p)
      ASSERT_NEAR(parts[p], actual[p], bound) << "lag " << lag;
    if (kind == ORVA_ROUTE_FFT && count > 0) continue;
    ASSERT_TRUE(SameBits("correlation", &expected, &dst[j], 1)) << call.len1 << " by " << call.len2 << ", lag " << lag;
  }
}

TYPED_TEST(Correlation, Direct) {
  for (int32_t len1 : {1, 2, 3, 7, 9, 16, 19, 33, 37, 64, 90, 131})
    for (auto [variety, place] : {std::pair{Variety::kModerate, Place::kEnd}, {Variety::kSpecial, Place::kStart},
                                  {Variety::kModerate, Place::kUnaligned}}) {
      for (int32_t dstLen : {1, 3, 4, 8, 15, 17, 35, 64, 83, 140})
        Check<TypeParam>(Auto(1, 1), Auto(len1, dstLen), ORVA_ROUTE_DIRECT, (len1 + dstLen) % 4, variety, place);
      for (int32_t len2 : {1, 3, 8, 40, 71})
        for (auto [low, dstLen] : {std::pair{0, 1}, {-len1 - 3, len1 + len2 + 5}, {-5, 40}, {3, 9}, {len2 - 1, 4},
                                   {len2, 9}, {INT32_MAX, 9}, {-len1, 2}, {-len1, 1}, {INT32_MIN, 9}}) {
          const Call call = Cross(len1, len2, dstLen, low);
          Check<TypeParam>(call, call, ORVA_ROUTE_DIRECT, (len1 + len2) % 4, variety, place);
        }
    }
}

TYPED_TEST(Correlation, ByTransforms) {
  // The longest ones take several blocks of lags, the first of which begins before src2; the last have no lag.
  for (const Call& call :
       {Auto(1, 1), Auto(1, 5), Auto(2, 2), Auto(100, 30), Auto(100, 130), Auto(300, 300), Cross(1, 1, 1, 0),
        Cross(2, 1, 2, -1), Cross(60, 90, 1, 0), Cross(50, 70, 200, -80), Cross(5, 900, 920, -9),
        Cross(20, 700, 650, 100), Cross(6, 4, 9, 4), Cross(6, 4, 9, INT32_MAX), Cross(6, 4, 9, INT32_MIN)})
    for (int32_t normalisation : {0, 1, 2})
      Check<TypeParam>(call, call, ORVA_ROUTE_FFT, normalisation, Variety::kModerate, Place::kEnd);
}

// A state serves all arguments of its transform length, 64 here, even those without a lag.
TYPED_TEST(Correlation, ArgumentsOtherThanThoseOfInit) {
  using T = TypeParam;
  const auto check = [](const Call& made, const Call& call, int32_t kind, int32_t normalisation) {
    Check<T>(made, call, kind, normalisation, Variety::kModerate, Place::kEnd);
  };
  check(Auto(40, 20), Auto(40, 10), ORVA_ROUTE_FFT, ORVA_NORMALISATION_UNBIASED);
  check(Cross(30, 90, 30, -4), Cross(30, 80, 20, -1), ORVA_ROUTE_FFT, ORVA_NORMALISATION_NONE);
  check(Cross(40, 90, 20, 0), Cross(40, 30, 25, 30), ORVA_ROUTE_FFT, ORVA_NORMALISATION_NONE);
  // Directly all lags of the call are summed.
  check(Cross(30, 90, 3, 0), Cross(30, 90, 8, 0), ORVA_ROUTE_DIRECT, ORVA_NORMALISATION_UNBIASED);
  const auto src = RandomArray<T>(100, 14);
  std::vector<T> dst = src;
  for (auto [made, call] : {std::pair{Auto(40, 20), Auto(33, 33)}, {Auto(40, 20), Auto(20, 9)},
                            {Auto(40, 20), Auto(INT32_MAX, INT32_MAX)}, {Cross(30, 90, 30, -4), Cross(30, 90, 36, -4)},
                            {Cross(30, 90, 30, -4), Cross(30, 90, 30, 90)},
                            {Cross(30, 90, 30, -4), Cross(65, 90, 30, 90)}}) {
    CorrState* state = nullptr;
    ASSERT_EQ(made.template Init<T>(ORVA_ROUTE_FFT, &state), ORVA_STS_NO_ERR);
    EXPECT_EQ(call.Run(src.data(), src.data(), dst.data(), 0, state), ORVA_STS_LEN_MISMATCH_ERR);
    Members<T>::Release(state);
  }
  EXPECT_TRUE(SameBits("mismatch", src.data(), dst.data(), dst.size()));
}

TYPED_TEST(Correlation, RoutesStatusesAndFaults) {
  using T = TypeParam;
  using M = Members<T>;
  constexpr int32_t kMost = INT32_MAX;
  // The state, and on the FFT route its buffers and two plans.
  constexpr int kDirect = 1, kAutoFft = M::kComplex ? 4 : 5, kCrossFft = kAutoFft + 1;
  struct { Call call; int32_t kind; int requests; } const routes[] = {
      {Auto(33, 33), 0, kAutoFft},         {Auto(64, 32), 0, kDirect},       {Auto(65, 32), 0, kAutoFft},
      {Auto(2048, 1), 0, kDirect},         {Auto(2049, 1), 0, kAutoFft},     {Auto(1, 1), 2, kAutoFft},
      {Auto(kMost, kMost), 1, kDirect},    {Auto(100, 100), 7, kDirect},     {Cross(1, 100, 65, 0), 0, kCrossFft},
      {Cross(64, 100, 64, 0), 0, kDirect}, {Cross(65, 100, 64, 0), 0, kCrossFft}, {Cross(4096, 100, 1, 0), 0, kDirect},
      {Cross(4097, 100, 1, 0), 0, kCrossFft}, {Cross(1, 1, 1, 0), 2, kCrossFft}, {Cross(500, 500, 500, 0), 3, kDirect},
      {Cross(kMost, kMost, kMost, INT32_MIN), 1, kDirect}, {Cross(6, 4, 9, 4), 2, kDirect}};
  for (const auto& [call, kind, requests] : routes)
    EXPECT_EQ(requests, ForEachFaultOfInit([call = call, kind = kind](CorrState** state) {
      return call.template Init<T>(kind, state);
    }, M::Release)) << call.cross << " " << call.len1 << " " << call.dstLen;
  CorrState* state = nullptr;
  const int live = LiveBlocks();
  for (const Call& call : {Auto(0, 1), Auto(1, -1), Cross(0, 1, 1, 0), Cross(1, 0, 1, 0), Cross(1, 1, 0, 0)})
    EXPECT_EQ(call.Init<T>(ORVA_ROUTE_DIRECT, &state), ORVA_STS_SIZE_ERR);
  for (const Call& call : {Auto(M::kLimit, 1), Auto(kMost, kMost), Cross(M::kLimit / 2 + 1, 1, 1, 0),
                           Cross(kMost, kMost, kMost, -5)})
    EXPECT_EQ(call.Init<T>(ORVA_ROUTE_FFT, &state), ORVA_STS_OVERFLOW_ERR);
  EXPECT_EQ(state, nullptr);
  EXPECT_EQ(LiveBlocks(), live);

  const auto src = RandomArray<T>(4, 16);
  std::vector<T> dst = src;
  for (int32_t kind : {ORVA_ROUTE_DIRECT, ORVA_ROUTE_FFT})
    for (const Call& made : {Auto(4, 4), Cross(4, 4, 4, 0)}) {
      ASSERT_EQ(made.Init<T>(kind, &state), ORVA_STS_NO_ERR);
      for (const Call& bad : {Call{made.cross, 0, 4, 4, 0}, {made.cross, 4, 4, -1, 0}, {true, 4, 0, 4, 0}})
        EXPECT_EQ(bad.Run(src.data(), src.data(), dst.data(), 0, state), ORVA_STS_SIZE_ERR);
      M::Release(state);
    }
  EXPECT_TRUE(SameBits("refused", src.data(), dst.data(), dst.size()));
}

}  // namespace tzm_test::correlation_test
