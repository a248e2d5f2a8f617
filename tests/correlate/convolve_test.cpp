// Convolutions: chains to the bit on the direct route, the FFT route within its error, windows, routes and statuses.
#include <signal_tzm/correlate.h>

#include <cmath>

#include "support/testing.h"

namespace tzm_test::convolve_test {

template <class T>
struct Members {
  static constexpr bool kSingle = sizeof(T) == 4;
  static constexpr auto Init = kSingle ? ORVAS_ConvInit_32f : ORVAS_ConvInit_64f;
  static constexpr auto Release = kSingle ? ORVAS_ConvRelease_32f : ORVAS_ConvRelease_64f;
  static constexpr int32_t kBlock = kSingle ? 16 : 8, kLimit = kSingle ? 0x8000001 : 0x4000001;
  static OrvaStatus Run(const T* src1, auto... rest) {
    if constexpr (kSingle) return ORVAS_Convolve_32f(src1, rest...);
    else return ORVAS_Convolve_64f(src1, rest...);
  }
};

template <class T>
class Convolution : public testing::Test {};
using Types = testing::Types<Orva32f, Orva64f>;
TYPED_TEST_SUITE(Convolution, Types);

// Chains in ascending i; in a block of outputs each over all samples of src1 that it needs, zeros beyond src2's ends.
template <class T>
std::vector<T> DirectOracle(const std::vector<T>& src1, const std::vector<T>& src2) {
  const int64_t len1 = std::ssize(src1), len2 = std::ssize(src2), count = len1 + len2 - 1;
  const int64_t block = Members<T>::kBlock, blocks = len2 > 16 ? count / block * block : 0;
  std::vector<T> dst(count);
  for (int64_t k = 0; k < count; ++k) {
    const int64_t first = k < blocks ? k / block * block : k, last = k < blocks ? first + block - 1 : k;
    for (int64_t i = std::max<int64_t>(first - len2 + 1, 0); i < std::min(last + 1, len1); ++i)
      dst[k] = std::fma(k - i >= 0 && k - i < len2 ? src2[k - i] : T(0), src1[i], dst[k]);
  }
  return dst;
}

// One call with a state made for other lengths: equal bits, or `near` by the error of the transforms.
template <class T>
void Check(const std::vector<T>& src1, const std::vector<T>& src2, ConvState* state, bool near, Place place) {
  const int32_t len1 = static_cast<int32_t>(src1.size()), len2 = static_cast<int32_t>(src2.size());
  const std::vector<T> expected = DirectOracle(src1, src2);
  const GuardedArray<T> from1(src1, place), from2(src2, place);
  GuardedArray<T> dst(expected.size(), place);
  ASSERT_EQ(Members<T>::Run(from1.data(), len1, from2.data(), len2, dst.data(), state), ORVA_STS_NO_ERR);
  const std::vector<T> actual(dst.begin(), dst.end());
  const double bound = 64 * std::numeric_limits<T>::epsilon() * std::min(len1, len2);  // of products below 64
  for (size_t k = 0; near && k < expected.size(); ++k) ASSERT_NEAR(expected[k], actual[k], bound) << k;
  if (near) return;
  ASSERT_TRUE(SameBits("convolution", expected.data(), actual.data(), actual.size())) << len1 << " by " << len2;
}

TYPED_TEST(Convolution, Direct) {
  using T = TypeParam;
  const T tiny = sizeof(T) == 4 ? T(0x1p-78) : T(0x1p-542);  // products round to zeros of both signs
  ConvState* state = nullptr;
  ASSERT_EQ(Members<T>::Init(9, 7, ORVA_ROUTE_DIRECT, &state), ORVA_STS_NO_ERR);
  for (int32_t len1 : {1, 2, 7, 15, 16, 17, 31, 40, 64, 100, 129, 300})
    for (int32_t len2 : {1, 2, 9, 16, 17, 18, 24, 31, 33, 47, 63, 64, 95, 128, 210, 301}) {
      Check(RandomArray<T>(len1, 1, Variety::kSpecial), RandomArray<T>(len2, 2, Variety::kSpecial), state, false,
            Place::kEnd);
      auto src1 = RandomArray<T>(len1, len1), src2 = RandomArray<T>(len2, len2);
      Check(src1, src2, state, false, Place::kStart);
      for (T& value : src1) value *= tiny;
      for (T& value : src2) value *= tiny;
      Check(src1, src2, state, false, Place::kUnaligned);
    }
  Members<T>::Release(state);
}

// A state serves all lengths of its transform's.
TYPED_TEST(Convolution, ByTransforms) {
  using T = TypeParam;
  std::vector<T> src = RandomArray<T>(64, 5), dst(64, 77), untouched = dst;
  for (auto [len1, len2] : {std::pair{1, 1}, {1, 2}, {5, 4}, {200, 57}, {17, 496}, {300, 300}, {30, 20}}) {
    ConvState* state = nullptr;
    ASSERT_EQ(Members<T>::Init(len1, len2, ORVA_ROUTE_FFT, &state), ORVA_STS_NO_ERR);
    for (uint64_t seed : {3, 4}) Check(RandomArray<T>(len1, seed), RandomArray<T>(len2, 9), state, true, Place::kEnd);
    if (len1 == 30) {  // transforms of 64
      for (auto [other1, other2] : {std::pair{20, 14}, {40, 25}, {64, 1}})
        Check(RandomArray<T>(other1, 5), RandomArray<T>(other2, 6), state, true, Place::kUnaligned);
      for (auto [bad1, bad2] : {std::pair{20, 13}, {40, 26}, {INT32_MAX, INT32_MAX}})
        EXPECT_EQ(Members<T>::Run(src.data(), bad1, src.data(), bad2, dst.data(), state), ORVA_STS_LEN_MISMATCH_ERR);
    }
    Members<T>::Release(state);
  }
  EXPECT_EQ(dst, untouched);
}

TYPED_TEST(Convolution, RoutesStatusesAndFaults) {
  using T = TypeParam;
  using M = Members<T>;
  constexpr int32_t kMost = INT32_MAX;
  // State and table, or state, three buffers and two plans.
  constexpr int kDirect = 2, kFft = 6;
  for (auto [len1, len2, kind, requests] :
       {std::array{17, 496, 0, kFft}, {496, 17, 0, kFft}, {17, 495, 0, kDirect}, {16, 1000, 0, kDirect},
        {1000, 16, 0, kDirect}, {kMost, 16, 0, kDirect}, {1000, 1000, 1, kDirect}, {1000, 1000, 5, kDirect},
        {kMost, kMost, -1, kDirect}, {1, 1, 2, kFft}}) {
    const auto init = [len1 = len1, len2 = len2, kind = kind](auto** s) { return M::Init(len1, len2, kind, s); };
    EXPECT_EQ(requests, ForEachFaultOfInit(init, M::Release)) << len1 << " by " << len2 << ", kind " << kind;
  }
  ConvState* state = nullptr;
  const int live = LiveBlocks();
  for (auto [len1, len2] : {std::pair{0, 1}, {1, -1}}) EXPECT_EQ(M::Init(len1, len2, 1, &state), ORVA_STS_SIZE_ERR);
  for (auto [len1, len2] : {std::pair{M::kLimit - 40, 40}, {kMost, kMost}})
    EXPECT_EQ(M::Init(len1, len2, 0, &state), ORVA_STS_OVERFLOW_ERR);
  EXPECT_EQ(WithoutMemory([&] { return M::Init(kMost, kMost, ORVA_ROUTE_FFT, &state); }), ORVA_STS_MEM_ALLOC_ERR);
  EXPECT_EQ(state, nullptr);
  EXPECT_EQ(LiveBlocks(), live);

  T x = 2, y = 3, z = 77;
  for (int32_t kind : {ORVA_ROUTE_DIRECT, ORVA_ROUTE_FFT}) {
    ASSERT_EQ(M::Init(1, 1, kind, &state), ORVA_STS_NO_ERR);
    EXPECT_EQ(M::Run(&x, 0, &y, 1, &z, state), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(M::Run(&x, 1, &y, -1, &z, state), ORVA_STS_SIZE_ERR);
    M::Release(state);
  }
  EXPECT_EQ(z, 77);
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
        for (Place place : {Place::kEnd, Place::kStart}) {  // exactly what the indices from -bias on may reach
          const GuardedArray<Orva32f> from1(src1, place), from2(around, place);
          GuardedArray<Orva32f> dst(dstLen, place);
          ASSERT_EQ(ORVAS_ConvBiased_32f(from1.data(), len1, from2.data() + bias, len2, dst.data(), dstLen, bias), 0);
          ASSERT_TRUE(SameBits("ORVAS_ConvBiased_32f", expected.data(), dst.data(), dstLen))
              << len1 << " by " << len2 << ", bias " << bias;
        }
      }
}

TEST(PartialConvolution, Arguments) {
  Orva32f x = 2, y[] = {3, 4}, z = 77;
  for (auto [len1, len2, dstLen] : {std::array{0, 1, 1}, {1, 0, 1}, {1, 1, -5}})
    EXPECT_EQ(ORVAS_ConvBiased_32f(&x, len1, y, len2, &z, dstLen, 0), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(z, 77);
  for (int32_t bias : {INT32_MIN, INT32_MAX}) {  // windows without a sample
    z = 77;
    EXPECT_EQ(ORVAS_ConvBiased_32f(&x, 1, y, 2, &z, 1, bias), ORVA_STS_NO_ERR);
    EXPECT_EQ(z, 0);
  }
}

}  // namespace tzm_test::convolve_test
