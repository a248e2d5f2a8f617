// Sparse FIR filter: every output one fused chain from the largest delay, across calls of any size; delay
// lines, statuses, failures.
#include <signal_tzm/fir.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "filter_oracle.h"
#include "support/arguments.h"
#include "support/compare.h"
#include "support/faults.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

// Delay lines of the interface hold the most recent sample first.
std::vector<Orva32f> Reversed(const Orva32f* first, size_t n) {
  std::vector<Orva32f> values(first, first + n);
  std::reverse(values.begin(), values.end());
  return values;
}

TEST(FIRSparse, ChainsRunFromTheLargestDelay) {
  const std::vector<std::vector<int32_t>> cases = {{0}, {1}, {0, 1, 2, 3}, {2, 15}, {0, 16}, {5, 6, 17, 40},
                                                   {3, 47, 48, 49, 200}, {0, 7, 64, 65, 100, 129}};
  for (Variety variety : {Variety::kModerate, Variety::kSpecial}) {
    for (const auto& positions : cases) {
      const int32_t count = static_cast<int32_t>(positions.size()), order = positions.back();
      const auto place = count % 2 != 0 ? Place::kEnd : Place::kUnaligned;
      const GuardedArray<Orva32f> taps(RandomArray<Orva32f>(count, 3, variety), place);
      const GuardedArray<int32_t> at(positions, place);
      std::vector<Orva32f> history = RandomArray<Orva32f>(order, 4, variety);
      const GuardedArray<Orva32f> given(Reversed(history.data(), history.size()), place);
      FIRSparseState* state = nullptr;
      ASSERT_EQ(ORVAS_FIRSparseInit_32f(taps.data(), at.data(), count, order > 0 ? given.data() : nullptr, &state), 0);
      uint64_t seed = 0;
      for (int32_t len : {1, 5, 15, 16, 17, 40, 64, 3, 200, 333, 1000}) {
        const auto src = RandomArray<Orva32f>(len, ++seed, variety);
        const auto line = Join(history, src);
        std::vector<Orva32f> expected;
        for (int32_t n = 0; n < len; ++n) {
          float sum = 0;
          for (int32_t k = count - 1; k >= 0; --k) sum = std::fma(taps.data()[k], line[order + n - positions[k]], sum);
          expected.push_back(sum);
        }
        history.assign(line.end() - order, line.end());
        const GuardedArray<Orva32f> from(src, place);
        GuardedArray<Orva32f> dst(len, place), got(order, place);
        SetCallUnderTest("FIRSparse_32f order " + std::to_string(order) + " length " + std::to_string(len));
        ASSERT_EQ(ORVAS_FIRSparse_32f(from.data(), dst.data(), len, state), 0);
        ASSERT_TRUE(SameBits("FIRSparse_32f", expected.data(), dst.data(), len, seed)) << "order " << order;
        if (order == 0) continue;
        ASSERT_EQ(ORVAS_FIRSparseGetDlyLine_32f(state, got.data()), 0);
        ASSERT_TRUE(SameBits("GetDlyLine", Reversed(history.data(), order).data(), got.data(), order, seed));
      }
      EXPECT_EQ(ORVAS_FIRSparseRelease_32f(state), 0);
    }
  }
}

TEST(FIRSparse, LineIsSetAndCleared) {
  const Orva32f taps[] = {1, 10}, line[] = {5, 6, 7}, src[] = {1, 2};
  const int32_t positions[] = {0, 3};
  Orva32f dst[2], got[3];
  FIRSparseState* state = nullptr;
  ASSERT_EQ(ORVAS_FIRSparseInit_32f(taps, positions, 2, nullptr, &state), 0);
  ASSERT_EQ(ORVAS_FIRSparseSetDlyLine_32f(state, line), 0);
  ASSERT_EQ(ORVAS_FIRSparse_32f(src, dst, 2, state), 0);
  EXPECT_EQ(dst[0], 71);
  EXPECT_EQ(dst[1], 62);
  ASSERT_EQ(ORVAS_FIRSparseGetDlyLine_32f(state, got), 0);
  EXPECT_EQ(std::vector<Orva32f>(got, got + 3), (std::vector<Orva32f>{2, 1, 5}));
  ASSERT_EQ(ORVAS_FIRSparseSetDlyLine_32f(state, nullptr), 0);
  ASSERT_EQ(ORVAS_FIRSparseGetDlyLine_32f(state, got), 0);
  EXPECT_EQ(std::vector<Orva32f>(got, got + 3), std::vector<Orva32f>(3));
  ORVAS_FIRSparseRelease_32f(state);
}

TEST(FIRSparse, StatusesInTheirOrder) {
  const Orva32f taps[] = {1, 2}, sample = 3;
  const int32_t equal[] = {3, 3}, falling[] = {3, 2}, negative[] = {-1, 2}, good[] = {1, 3}, zero[] = {0};
  FIRSparseState* state = nullptr;
  CheckNulls(ORVAS_FIRSparseInit_32f, taps, equal, 2, nullptr, &state);
  EXPECT_EQ(ORVAS_FIRSparseInit_32f(nullptr, good, 0, nullptr, nullptr), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(ORVAS_FIRSparseInit_32f(taps, negative, 0, nullptr, nullptr), ORVA_STS_SIZE_ERR);
  for (const int32_t* positions : {equal, falling, negative})
    EXPECT_EQ(ORVAS_FIRSparseInit_32f(taps, positions, 2, nullptr, &state), ORVA_STS_SPARSE_DELAY_ERR);

  // Without a delay there is no line: a given one is refused with the status of copying nothing.
  EXPECT_EQ(ForEachFault([&] { return ORVAS_FIRSparseInit_32f(taps, zero, 1, &sample, &state); },
                         ORVA_STS_MEM_ALLOC_ERR, ORVA_STS_SIZE_ERR), 1);
  EXPECT_EQ(state, nullptr);
  ASSERT_EQ(ORVAS_FIRSparseInit_32f(taps, zero, 1, nullptr, &state), 0);
  Orva32f out = 7;
  EXPECT_EQ(ORVAS_FIRSparseGetDlyLine_32f(state, &out), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(ORVAS_FIRSparseSetDlyLine_32f(state, &sample), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(ORVAS_FIRSparseSetDlyLine_32f(state, nullptr), ORVA_STS_SIZE_ERR);
  CheckNulls(ORVAS_FIRSparse_32f, &sample, &out, 1, state);
  EXPECT_EQ(ORVAS_FIRSparse_32f(&sample, nullptr, 0, state), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(ORVAS_FIRSparse_32f(&sample, &out, 0, nullptr), ORVA_STS_SIZE_ERR);
  CheckNulls(ORVAS_FIRSparseGetDlyLine_32f, state, &out);
  EXPECT_EQ(ORVAS_FIRSparseSetDlyLine_32f(nullptr, nullptr), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(out, 7);
  EXPECT_EQ(ORVAS_FIRSparseRelease_32f(state), 0);
  EXPECT_EQ(ORVAS_FIRSparseRelease_32f(nullptr), 0);
}

TEST(FIRSparse, SizesAtTheLimitAndFailure) {
  const Orva32f tap = 1;
  FIRSparseState* state = nullptr;
  // With every request refused, 9 says that the size was accepted: 40 bytes of fields, 32 of taps and
  // delays, the line, and 16 of taps fourfold stay below 2^31.
  const auto status = [&](int32_t position) {
    FailRequest(1);
    const OrvaStatus result = ORVAS_FIRSparseInit_32f(&tap, &position, 1, nullptr, &state);
    FailRequest(0);
    return result;
  };
  EXPECT_EQ(status(268435436), ORVA_STS_MEM_ALLOC_ERR);
  EXPECT_EQ(status(268435437), ORVA_STS_OVERFLOW_ERR);
  EXPECT_EQ(status(0xFFFFFFF), ORVA_STS_OVERFLOW_ERR);
  EXPECT_EQ(status(INT32_MAX), ORVA_STS_OVERFLOW_ERR);
  EXPECT_EQ(state, nullptr);
}

}  // namespace
}  // namespace tzm_test
