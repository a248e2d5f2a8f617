// Sparse FIR filter: every output one fused chain from the largest delay, across calls of any size; lines, statuses.
#include <signal_tzm/fir.h>

#include <cmath>

#include "support/testing.h"

namespace tzm_test::sparse_test {

using Samples = std::vector<Orva32f>;

TEST(FIRSparse, ChainsRunFromTheLargestDelay) {
  const std::vector<std::vector<int32_t>> cases = {{0}, {1}, {0, 1, 2, 3}, {2, 15}, {0, 16}, {5, 6, 17, 40},
                                                   {3, 47, 48, 49, 200}, {0, 7, 64, 65, 100, 129}};
  for (Variety variety : {Variety::kModerate, Variety::kSpecial})
    for (const auto& positions : cases) {
      const int32_t count = static_cast<int32_t>(positions.size()), order = positions.back();
      const auto place = count % 2 != 0 ? Place::kEnd : Place::kUnaligned;
      const auto taps = RandomArray<Orva32f>(count, 3, variety);
      Samples history = RandomArray<Orva32f>(order, 4, variety);
      const GuardedArray<Orva32f> given(Samples(history.rbegin(), history.rend()), place);  // most recent first
      FIRSparseState* state = nullptr;
      const bool set = count % 2 == 0 && order > 0;  // or given at the start, or zeros
      ASSERT_EQ(ORVAS_FIRSparseInit_32f(GuardedArray(taps, place).data(), GuardedArray(positions, place).data(), count,
                                        set || order < 2 ? nullptr : given.data(), &state), 0);
      EXPECT_EQ(set ? ORVAS_FIRSparseSetDlyLine_32f(state, given.data()) : 0, 0);
      if (!set && order < 2) history.assign(order, 0);
      uint64_t seed = 0;
      for (int32_t len : {1, 5, 15, 16, 17, 40, 64, 3, 200, 333, 1000}) {
        SCOPED_TRACE(testing::Message() << "order " << order << ", length " << len);
        const auto src = RandomArray<Orva32f>(len, ++seed, variety);
        history.insert(history.end(), src.begin(), src.end());
        Samples expected(len);
        for (int32_t k = count; k-- > 0;)
          for (int32_t n = 0, at = order - positions[k]; n < len; ++n)
            expected[n] = std::fma(taps[k], history[at + n], expected[n]);
        history.erase(history.begin(), history.end() - order);
        GuardedArray<Orva32f> from(src, place), dst(len, place), got(order, place);
        ASSERT_EQ(ORVAS_FIRSparse_32f(from.data(), dst.data(), len, state), 0);
        ASSERT_TRUE(SameBits("FIRSparse_32f", expected.data(), dst.data(), len, seed));
        if (order == 0) continue;
        if (len == 40) {  // forgets what it saw
          ASSERT_EQ(ORVAS_FIRSparseSetDlyLine_32f(state, nullptr), 0);
          history.assign(order, 0);
        }
        ASSERT_EQ(ORVAS_FIRSparseGetDlyLine_32f(state, got.data()), 0);
        ASSERT_TRUE(SameBits("delay line", Samples(history.rbegin(), history.rend()).data(), got.data(), order, seed));
      }
      EXPECT_EQ(ORVAS_FIRSparseRelease_32f(state), 0);
    }
}

TEST(FIRSparse, StatusesInTheirOrderSizesAtTheLimitAndFaults) {
  const Orva32f taps[] = {1, 2}, sample = 3;
  const int32_t zero[] = {0}, bad[][2] = {{3, 3}, {3, 2}, {-1, 2}};
  FIRSparseState* state = nullptr;
  for (const auto& positions : bad)
    EXPECT_EQ(ORVAS_FIRSparseInit_32f(taps, positions, 2, nullptr, &state), ORVA_STS_SPARSE_DELAY_ERR);
  // 9, with all memory refused, says that the size was accepted: 40 bytes of fields, 32 of taps and delays, the
  // line, and 16 of taps fourfold stay below 2^31.
  struct { int32_t position; OrvaStatus status; } const sizes[] = {
      {268435436, ORVA_STS_MEM_ALLOC_ERR}, {268435437, ORVA_STS_OVERFLOW_ERR}, {INT32_MAX, ORVA_STS_OVERFLOW_ERR}};
  for (const auto& size : sizes)
    EXPECT_EQ(WithoutMemory([&] { return ORVAS_FIRSparseInit_32f(taps, &size.position, 1, nullptr, &state); }),
              size.status) << size.position;
  // Without a delay there is no line: a given one is refused with the status of copying nothing.
  EXPECT_EQ(ForEachFault([&] { return ORVAS_FIRSparseInit_32f(taps, zero, 1, &sample, &state); },
                         ORVA_STS_MEM_ALLOC_ERR, ORVA_STS_SIZE_ERR), 1);
  EXPECT_EQ(state, nullptr);
  ASSERT_EQ(ORVAS_FIRSparseInit_32f(taps, zero, 1, nullptr, &state), 0);
  Orva32f out = 7;
  EXPECT_EQ(ORVAS_FIRSparseGetDlyLine_32f(state, &out), ORVA_STS_SIZE_ERR);
  for (const Orva32f* line : {&sample, static_cast<const Orva32f*>(nullptr)})
    EXPECT_EQ(ORVAS_FIRSparseSetDlyLine_32f(state, line), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(out, 7);
  EXPECT_EQ(ORVAS_FIRSparseRelease_32f(state), 0);
}

}  // namespace tzm_test::sparse_test
