// The values of the core companion. Statuses, array ends, alignment and in-place use of its operations are
// checked by the frame test.
#include <signal_tzm/companion.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <numeric>
#include <vector>

#include "support/compare.h"
#include "support/random.h"

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

// The shapes of the operations on one source and one destination, which holds values before the call. Pairs of real
// arrays are made of, or into, a complex one.
template <class S, class D>
OrvaStatus Call(OrvaStatus (*f)(const S*, D*, int32_t), const S* src, D* dst, int32_t len) { return f(src, dst, len); }
template <class T>
OrvaStatus Call(OrvaStatus (*f)(T*, int32_t), const T* src, T* dst, int32_t len) {
  std::copy_n(src, len, dst);
  return f(dst, len);
}
template <class T>
OrvaStatus Call(OrvaStatus (*f)(T, T*, int32_t), const T* src, T* dst, int32_t len) { return f(*src, dst, len); }
template <class C, class T>
OrvaStatus Call(OrvaStatus (*split)(const C*, T*, T*, int32_t), const C* src, C* dst, int32_t len) {
  std::vector<T> re(len), im(len);
  const OrvaStatus status = split(src, re.data(), im.data(), len);
  for (int32_t i = 0; i < len; ++i) dst[i] = {re[i], im[i]};
  return status;
}
template <class C, class T>
OrvaStatus Call(OrvaStatus (*join)(const T*, const T*, C*, int32_t), const C* src, C* dst, int32_t len) {
  std::vector<T> re(len), im(len);
  for (int32_t i = 0; i < len; ++i) re[i] = src[i].re, im[i] = src[i].im;
  return join(re.data(), im.data(), dst, len);
}

// Bodies of every vector width, and remainders of every length: element(src, i, dst[i] before the call).
template <class S, class D, class F, class Element>
void Expect(const char* name, F f, Element element) {
  for (int32_t len = 1; len <= 150; ++len) {
    const auto src = RandomArray<S>(len, len, Variety::kSpecial);
    auto dst = RandomArray<D>(len, 6, Variety::kSpecial), expected = dst;
    for (int32_t i = 0; i < len; ++i) expected[i] = element(src, i, dst[i]);
    ASSERT_EQ(Call(f, src.data(), dst.data(), len), ORVA_STS_NO_ERR);
    ASSERT_TRUE(SameBits(name, expected.data(), dst.data(), len, len)) << "length " << len;
  }
}

#define EXPECT_ELEMENTS(operation, S, D, ...) \
  Expect<Orva##S, Orva##D>(#operation, operation, []([[maybe_unused]] const auto& x, [[maybe_unused]] int32_t i, \
                                                     [[maybe_unused]] Orva##D y) -> Orva##D { return __VA_ARGS__; })
#define EXPECT_COPIES(type)                                           \
  EXPECT_ELEMENTS(ORVAS_Copy_##type, type, type, x[i]);               \
  EXPECT_ELEMENTS(ORVAS_Zero_##type, type, type, {})
#define EXPECT_FILLS(type)                                            \
  EXPECT_COPIES(type);                                                \
  EXPECT_ELEMENTS(ORVAS_Set_##type, type, type, x[0]);                \
  EXPECT_ELEMENTS(ORVAS_Flip_##type, type, type, x[x.size() - 1 - i])
#define EXPECT_COMPLEX(type)                                          \
  EXPECT_ELEMENTS(ORVAS_Conj_##type, type, type, {x[i].re, -x[i].im}); \
  EXPECT_ELEMENTS(ORVAS_Conj_##type##_I, type, type, {x[i].re, -x[i].im})

TEST(Core, Elements) {
  EXPECT_ELEMENTS(ORVAS_Zero_8u, 8u, 8u, {});
  EXPECT_COPIES(16s);
  EXPECT_COPIES(16sc);
  EXPECT_FILLS(32f);
  EXPECT_FILLS(32fc);
  EXPECT_FILLS(64f);
  EXPECT_FILLS(64fc);
  EXPECT_COMPLEX(32fc);
  EXPECT_COMPLEX(64fc);
  EXPECT_ELEMENTS(ORVAS_Add_32f_I, 32f, 32f, y + x[i]);
  EXPECT_ELEMENTS(ORVAS_Add_64f_I, 64f, 64f, y + x[i]);
  EXPECT_ELEMENTS(ORVAS_CplxToReal_16sc, 16sc, 16sc, x[i]);
  EXPECT_ELEMENTS(ORVAS_CplxToReal_32fc, 32fc, 32fc, x[i]);
  EXPECT_ELEMENTS(ORVAS_CplxToReal_64fc, 64fc, 64fc, x[i]);
  EXPECT_ELEMENTS(ORVAS_RealToCplx_32f, 32fc, 32fc, x[i]);
  EXPECT_ELEMENTS(ORVAS_RealToCplx_64f, 64fc, 64fc, x[i]);
  EXPECT_ELEMENTS(ORVAS_Convert_16s32f, 16s, 32f, Orva32f(x[i]));
  EXPECT_ELEMENTS(ORVAS_Convert_32f64f, 32f, 64f, Orva64f(x[i]));
  EXPECT_ELEMENTS(ORVAS_Convert_64f32f, 64f, 32f, Orva32f(x[i]));
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

// The first of the elements with the largest sign * key, those that are NaN passed over.
template <class T>
void ExpectLargest(OrvaStatus (*largest)(const T*, int32_t, T*), T (*key)(T), T sign) {
  const auto expect = [&](const std::vector<T>& src) {
    T expected = NAN, result = 99;
    for (T x : src)
      if (!(sign * key(x) <= sign * expected) && !std::isnan(x)) expected = key(x);
    ASSERT_EQ(largest(src.data(), src.size(), &result), ORVA_STS_NO_ERR);
    ASSERT_TRUE(SameBits("largest", &expected, &result, 1)) << "length " << src.size();
  };
  for (int32_t len = 1; len <= 150; ++len) {
    for (Variety variety : kVarieties) expect(RandomArray<T>(len, len, variety));
    for (int32_t i = 0; i < len; ++i) {
      // One value among NaNs, one NaN among values, and where +0 follows -0.
      for (auto [one, others] : {std::pair<T, T>(sign * -INFINITY, NAN), std::pair<T, T>(NAN, -3)}) {
        std::vector<T> src(len, others);
        src[i] = one;
        expect(src);
      }
      std::vector<T> zeros(len);
      std::fill_n(zeros.begin(), i + 1, -T(0));
      expect(zeros);
    }
  }
}

TEST(Core, LargestPassesOverNaN) {
  ExpectLargest<Orva64f>(ORVAS_Max_64f, [](double x) { return x; }, 1);
  ExpectLargest<Orva64f>(ORVAS_Min_64f, [](double x) { return x; }, -1);
  ExpectLargest<Orva32f>(ORVAS_MaxAbs_32f, [](float x) { return std::abs(x); }, 1);
  ExpectLargest<Orva64f>(ORVAS_MaxAbs_64f, [](double x) { return std::abs(x); }, 1);
}

}  // namespace
}  // namespace tzm_test
