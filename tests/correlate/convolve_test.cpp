#include <gtest/gtest.h>
#include <signal_tzm/correlate.h>

#include <cmath>

#include "support/arguments.h"
#include "support/compare.h"
#include "support/faults.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {

namespace {

template <class T>
struct Members;
template <>
struct Members<Orva32f> {
  static constexpr auto Init = ORVAS_ConvInit_32f;
  static constexpr auto Run = ORVAS_Convolve_32f;
  static constexpr auto Release = ORVAS_ConvRelease_32f;
  static constexpr int32_t kBlock = 16, kLimit = 0x8000001;
};
template <>
struct Members<Orva64f> {
  static constexpr auto Init = ORVAS_ConvInit_64f;
  static constexpr auto Run = ORVAS_Convolve_64f;
  static constexpr auto Release = ORVAS_ConvRelease_64f;
  static constexpr int32_t kBlock = 8, kLimit = 0x4000001;
};

template <class T>
class Convolution : public testing::Test {};
using Types = testing::Types<Orva32f, Orva64f>;
TYPED_TEST_SUITE(Convolution, Types);

// A chain over from <= i < end, in which src2 is zero beyond its ends.
template <class T>
T Chain(const std::vector<T>& src1, const std::vector<T>& src2, int64_t k, int64_t from, int64_t end) {
  T sum = 0;
  for (int64_t i = from; i < end; ++i) {
    const int64_t at = k - i;
    sum = std::fma(at >= 0 && at < std::ssize(src2) ? src2[at] : T(0), src1[i], sum);
  }
  return sum;
}

template <class T>
std::vector<T> DirectOracle(const std::vector<T>& src1, const std::vector<T>& src2) {
  const int64_t len1 = std::ssize(src1), len2 = std::ssize(src2), count = len1 + len2 - 1;
  const int64_t block = Members<T>::kBlock, blocks = len2 > 16 ? count / block * block : 0;
  std::vector<T> dst(count);
  for (int64_t k = 0; k < count; ++k) {
    const int64_t first = k < blocks ? k / block * block : k, last = k < blocks ? first + block - 1 : k;
    dst[k] = Chain(src1, src2, k, std::max<int64_t>(first - len2 + 1, 0), std::min(last + 1, len1));
  }
  return dst;
}

template <class T>
void CheckDirect(int32_t len1, int32_t len2, const std::vector<T>& values1, const std::vector<T>& values2, Place place) {
  const std::vector<T> expected = DirectOracle(values1, values2);
  const GuardedArray<T> src1(values1, place), src2(values2, place);
  GuardedArray<T> dst(expected.size(), place);
  ConvState* state = nullptr;
  ASSERT_EQ(Members<T>::Init(9, 7, 1, &state), ORVA_STS_NO_ERR);  // other lengths: they do not matter
  ASSERT_EQ(Members<T>::Run(src1.data(), len1, src2.data(), len2, dst.data(), state), ORVA_STS_NO_ERR);
  Members<T>::Release(state);
  const std::vector<T> actual(dst.begin(), dst.end());
  ASSERT_TRUE(SameBits("direct convolution", expected.data(), actual.data(), expected.size())) << len1 << " by " << len2;
}

TYPED_TEST(Convolution, Direct) {
  using T = TypeParam;
  const T tiny = sizeof(T) == 4 ? T(0x1p-78) : T(0x1p-542);  // products round to zeros of both signs
  for (int32_t len1 : {1, 2, 7, 15, 16, 17, 31, 40, 64, 100, 129, 300})
    for (int32_t len2 : {1, 2, 9, 16, 17, 18, 24, 33, 47, 64, 95, 128, 210, 301})
      for (Variety variety : {Variety::kModerate, Variety::kSpecial}) {
        auto src1 = RandomArray<T>(len1, len1, variety), src2 = RandomArray<T>(len2, len2, variety);
        CheckDirect(len1, len2, src1, src2, Place::kEnd);
        if (variety != Variety::kModerate) continue;
        CheckDirect(len1, len2, src1, src2, Place::kStart);
        for (T& value : src1) value *= tiny;
        for (T& value : src2) value *= tiny;
        CheckDirect(len1, len2, src1, src2, Place::kUnaligned);
      }
}

TYPED_TEST(Convolution, NonFiniteSampleReachesItsBlock) {
  using T = TypeParam;
  constexpr int32_t kLen1 = 40, kLen2 = 17, kBlock = Members<T>::kBlock;
  std::vector<T> src1(kLen1, 1), src2(kLen2, 1);
  src1[1] = INFINITY;
  std::vector<T> dst(kLen1 + kLen2 - 1);
  ConvState* state = nullptr;
  ASSERT_EQ(Members<T>::Init(kLen1, kLen2, 1, &state), ORVA_STS_NO_ERR);
  ASSERT_EQ(Members<T>::Run(src1.data(), kLen1, src2.data(), kLen2, dst.data(), state), ORVA_STS_NO_ERR);
  Members<T>::Release(state);
  EXPECT_TRUE(std::isnan(dst[0]));  // does not overlap sample 1, but its block does
  EXPECT_TRUE(std::isinf(dst[kLen2]));
  EXPECT_TRUE(std::isnan(dst[kLen2 + 1]));
  EXPECT_TRUE(std::isfinite(dst[kLen2 / kBlock * kBlock + kBlock]));
}

// The other members of the family against sums in binary80 or wider, within the error of the transforms.
template <class T>
void CheckNear(const std::vector<T>& src1, const std::vector<T>& src2, const T* dst) {
  const int64_t count = std::ssize(src1) + std::ssize(src2) - 1;
  double norm1 = 0, norm2 = 0;
  for (T x : src1) norm1 += double(x) * x;
  for (T x : src2) norm2 += double(x) * x;
  const double bound = 4 * std::numeric_limits<T>::epsilon() * std::log2(count + 1) * std::sqrt(norm1 * norm2);
  for (int64_t k = 0; k < count; ++k) {
    long double sum = 0;
    for (int64_t i = std::max<int64_t>(k - std::ssize(src2) + 1, 0); i < std::min<int64_t>(k + 1, std::ssize(src1)); ++i)
      sum += static_cast<long double>(src1[i]) * src2[k - i];
    ASSERT_NEAR(static_cast<double>(sum), dst[k], bound) << k;
  }
}

TYPED_TEST(Convolution, ByTransforms) {
  using T = TypeParam;
  for (auto [len1, len2] : {std::pair{1, 1}, {1, 2}, {5, 4}, {200, 57}, {17, 496}, {300, 300}}) {
    const auto src1 = RandomArray<T>(len1, 3), src2 = RandomArray<T>(len2, 4);
    const GuardedArray<T> from1(src1), from2(src2);
    GuardedArray<T> dst(len1 + len2 - 1);
    ConvState* state = nullptr;
    ASSERT_EQ(Members<T>::Init(len1, len2, 2, &state), ORVA_STS_NO_ERR);
    for (int run = 0; run < 2; ++run)
      ASSERT_EQ(Members<T>::Run(from1.data(), len1, from2.data(), len2, dst.data(), state), ORVA_STS_NO_ERR);
    CheckNear(src1, src2, dst.data());
    Members<T>::Release(state);
  }
}

TYPED_TEST(Convolution, LengthsOfOneState) {
  using T = TypeParam;
  const auto src1 = RandomArray<T>(64, 5), src2 = RandomArray<T>(64, 6);
  std::vector<T> dst(64, 77), untouched = dst;
  ConvState* state = nullptr;
  ASSERT_EQ(Members<T>::Init(30, 20, 2, &state), ORVA_STS_NO_ERR);  // transforms of 64
  EXPECT_EQ(Members<T>::Run(src1.data(), 20, src2.data(), 13, dst.data(), state), ORVA_STS_LEN_MISMATCH_ERR);
  EXPECT_EQ(Members<T>::Run(src1.data(), 40, src2.data(), 26, dst.data(), state), ORVA_STS_LEN_MISMATCH_ERR);
  EXPECT_EQ(Members<T>::Run(src1.data(), INT32_MAX, src2.data(), INT32_MAX, dst.data(), state),
            ORVA_STS_LEN_MISMATCH_ERR);
  EXPECT_EQ(dst, untouched);
  for (auto [len1, len2] : {std::pair{20, 14}, {40, 25}, {64, 1}}) {
    ASSERT_EQ(Members<T>::Run(src1.data(), len1, src2.data(), len2, dst.data(), state), ORVA_STS_NO_ERR);
    CheckNear<T>({src1.begin(), src1.begin() + len1}, {src2.begin(), src2.begin() + len2}, dst.data());
  }
  Members<T>::Release(state);
}

TYPED_TEST(Convolution, RoutesAndFaults) {
  using T = TypeParam;
  using M = Members<T>;
  // State and table, or state, three buffers and two plans.
  constexpr int kDirect = 2, kFft = 6;
  const auto requests = [](int32_t len1, int32_t len2, int32_t kind) {
    return ForEachFault([=] {
      ConvState* const none = reinterpret_cast<ConvState*>(8);
      ConvState* state = none;
      const OrvaStatus status = M::Init(len1, len2, kind, &state);
      EXPECT_EQ(state == none, status != ORVA_STS_NO_ERR);
      if (status == ORVA_STS_NO_ERR) M::Release(state);
      return status;
    });
  };
  EXPECT_EQ(requests(17, 496, 0), kFft);
  EXPECT_EQ(requests(496, 17, 0), kFft);
  EXPECT_EQ(requests(17, 495, 0), kDirect);
  EXPECT_EQ(requests(16, 1000, 0), kDirect);
  EXPECT_EQ(requests(1000, 16, 0), kDirect);
  EXPECT_EQ(requests(INT32_MAX, 16, 0), kDirect);
  EXPECT_EQ(requests(1000, 1000, 1), kDirect);
  EXPECT_EQ(requests(1000, 1000, 5), kDirect);
  EXPECT_EQ(requests(INT32_MAX, INT32_MAX, -1), kDirect);
  EXPECT_EQ(requests(1, 1, 2), kFft);

  ConvState* state = nullptr;
  const int live = LiveBlocks();
  EXPECT_EQ(M::Init(0, 1, 1, nullptr), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(M::Init(0, 1, 1, &state), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(M::Init(1, -1, 1, &state), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(M::Init(M::kLimit - 40, 40, 0, &state), ORVA_STS_OVERFLOW_ERR);
  EXPECT_EQ(M::Init(INT32_MAX, INT32_MAX, 2, &state), ORVA_STS_OVERFLOW_ERR);
  FailRequest(1);
  EXPECT_EQ(M::Init(INT32_MAX, INT32_MAX, 2, &state), ORVA_STS_MEM_ALLOC_ERR);
  FailRequest(0);
  EXPECT_EQ(state, nullptr);
  EXPECT_EQ(LiveBlocks(), live);
  EXPECT_EQ(M::Release(nullptr), ORVA_STS_NO_ERR);
}

TYPED_TEST(Convolution, Arguments) {
  using T = TypeParam;
  T x = 2, y = 3, z = 77;
  for (int32_t kind : {1, 2}) {
    ConvState* state = nullptr;
    ASSERT_EQ(Members<T>::Init(1, 1, kind, &state), ORVA_STS_NO_ERR);
    CheckNulls(Members<T>::Run, &x, 1, &y, 1, &z, state);
    EXPECT_EQ(Members<T>::Run(nullptr, 0, &y, 1, &z, state), ORVA_STS_NULL_PTR_ERR);
    EXPECT_EQ(Members<T>::Run(&x, 0, &y, 1, &z, state), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(Members<T>::Run(&x, 1, &y, -1, &z, state), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(z, 77);
    EXPECT_EQ(Members<T>::Run(&x, 1, &y, 1, &z, state), ORVA_STS_NO_ERR);
    EXPECT_EQ(z, 6);
    z = 77;
    Members<T>::Release(state);
  }
}

TEST(PartialConvolution, WindowAndIndex) {
  for (int32_t len1 : {1, 5, 16, 30, 80, 150})
    for (int32_t len2 : {1, 4, 16, 20, 75, 140})
      for (int32_t bias : {0, 1, 3, 17, 200, -1, -4, -33}) {
        const int32_t dstLen = len1 + len2 + 3;
        const auto src1 = RandomArray<Orva32f>(len1, 7), around = RandomArray<Orva32f>(len2, 8);
        std::vector<Orva32f> expected(dstLen);
        for (int32_t k = 0; k < dstLen; ++k) {
          const int32_t end = bias <= len1 - 1 - k ? bias + 1 + k : len1;
          for (int32_t i = std::max(bias + 1 + k - len2, 0); i < end; ++i)
            expected[k] = std::fma(src1[i], around[k - i + bias], expected[k]);
        }
        for (Place place : {Place::kEnd, Place::kStart, Place::kUnaligned}) {
          // Exactly what the indices from -bias on may reach.
          const GuardedArray<Orva32f> from1(src1, place), from2(around, place);
          GuardedArray<Orva32f> dst(dstLen, place);
          ASSERT_EQ(ORVAS_ConvBiased_32f(from1.data(), len1, from2.data() + bias, len2, dst.data(), dstLen, bias),
                    ORVA_STS_NO_ERR);
          const std::vector<Orva32f> actual(dst.begin(), dst.end());
          ASSERT_TRUE(SameBits("ORVAS_ConvBiased_32f", expected.data(), actual.data(), dstLen))
              << len1 << " by " << len2 << ", bias " << bias;
        }
      }
}

TEST(PartialConvolution, Arguments) {
  Orva32f x = 2, y[] = {3, 4}, z = 77;
  CheckNulls(ORVAS_ConvBiased_32f, &x, 1, y, 1, &z, 1, 0);
  EXPECT_EQ(ORVAS_ConvBiased_32f(nullptr, 0, y, 1, &z, 1, 0), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(ORVAS_ConvBiased_32f(&x, 0, y, 1, &z, 1, 0), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(ORVAS_ConvBiased_32f(&x, 1, y, 0, &z, 1, 0), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(ORVAS_ConvBiased_32f(&x, 1, y, 1, &z, -5, 0), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(z, 77);
  for (int32_t bias : {INT32_MIN, INT32_MAX}) {  // windows without a sample
    z = 77;
    EXPECT_EQ(ORVAS_ConvBiased_32f(&x, 1, y, 2, &z, 1, bias), ORVA_STS_NO_ERR);
    EXPECT_EQ(z, 0);
  }
}

}  // namespace

}  // namespace tzm_test
