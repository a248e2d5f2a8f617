// What the table of members does not say of the core companion: memory, overlapping arrays, scaled rounding.
#include <signal_tzm/companion.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <numeric>
#include <vector>

namespace tzm_test {
namespace {

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

TEST(Core, ScalesRoundsAndSaturates) {
  const struct { double value, scale; Orva16s nearest, towardZero; } kTable[] = {
      {0.5, 1, 0, 0}, {1.5, 1, 2, 1}, {-0.5, 1, 0, 0}, {-1.5, 1, -2, -1}, {-2.5, 1, -2, -2},
      {std::nextafter(0.5, 0), 1, 0, 0}, {std::nextafter(0.5, 1), 1, 1, 0}, {32766.5, 1, 32766, 32766},
      {32767.5, 1, 32767, 32767}, {-32768.5, 1, -32768, -32768}, {1e300, 1, 32767, 32767},
      {2147483648.0, 1, 32767, 32767}, {-1e10, 1, -32768, -32768}, {INFINITY, 1, 32767, 32767},
      {-INFINITY, 1, -32768, -32768}, {NAN, 1, 0, 0}, {3, 1.999, 3, 3}, {3, 2, 2, 1}, {5, 3.5, 2, 2}, {7, 2, 4, 3},
      {1.25, 0.3, 2, 2}, {3, 0.9, 3, 3}, {1, 0x1p-1074, 32767, 32767}, {-1, 0x1p-1074, -32768, -32768},
      {0, 0x1p-1074, 0, 0}, {0x1p1023, 0x1p1023, 1, 1}, {-0x1.8p1023, 0x1p1023, -2, -1}};
  for (const auto& row : kTable) {
    for (int32_t len : {1, 15, 40}) {
      for (uint32_t mode : {0, 1}) {
        const std::vector<Orva64f> src(len, row.value);
        const std::vector<Orva16s> expected(len, mode == 1 ? row.nearest : row.towardZero);
        std::vector<Orva16s> dst(len, 99);
        ASSERT_EQ(ORVAS_Convert_64f16s_S(src.data(), dst.data(), len, mode, row.scale), ORVA_STS_NO_ERR);
        ASSERT_EQ(dst, expected) << row.value << " scale " << row.scale << " mode " << mode;
      }
    }
  }
}

}  // namespace
}  // namespace tzm_test
