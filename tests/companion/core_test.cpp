// What the table of members does not say of the core companion: memory, overlapping arrays.
#include <signal_tzm/companion.h>

#include <gtest/gtest.h>

#include <cstring>
#include <numeric>
#include <vector>

namespace tzm_test::core_test {

TEST(Core, Memory) {
  for (int32_t count : {0, -1, INT32_MIN}) {
    EXPECT_EQ(ORVA_Malloc(count), nullptr);
    EXPECT_EQ(ORVAS_Malloc_64f(count), nullptr);
  }
  const auto use = [](auto* block, int32_t count, void (*release)(void*)) {
    ASSERT_NE(block, nullptr);
    std::memset(block, 0xff, count * sizeof *block);
    release(block);
  };
  for (int32_t count : {1, 63, 64, 65, 100000}) {
    use(static_cast<Orva8u*>(ORVA_Malloc(count)), count, ORVAS_Free);
    use(ORVAS_Malloc_8u(count), count, ORVA_Free);
    use(ORVAS_Malloc_16s(count), count, ORVAS_Free);
    use(ORVAS_Malloc_32f(count), count, ORVA_Free);
    use(ORVAS_Malloc_64f(count), count, ORVAS_Free);
  }
  ORVA_Free(nullptr);
  ORVAS_Free(nullptr);
  constexpr int32_t kHuge = 1 << 29;  // 2^32 bytes
  if (double* block = ORVAS_Malloc_64f(kHuge)) {
    block[kHuge - 1] = 1;
    ORVAS_Free(block);
  }
}

template <class T>
void ExpectMove(OrvaStatus (*move)(const T*, T*, int32_t)) {
  for (int32_t shift : {-17, -1, 0, 1, 17}) {
    std::vector<T> line(200);
    std::iota(line.begin(), line.end(), T(1));
    auto expected = line;
    for (int32_t i = 0; i < 150; ++i) expected[20 + shift + i] = line[20 + i];
    ASSERT_EQ(move(&line[20], &line[20 + shift], 150), ORVA_STS_NO_ERR);
    ASSERT_EQ(line, expected) << shift;
  }
}

TEST(Core, MovesBetweenOverlappingArrays) {
  ExpectMove(ORVAS_Move_16s);
  ExpectMove(ORVAS_Move_32f);
}

}  // namespace tzm_test::core_test
