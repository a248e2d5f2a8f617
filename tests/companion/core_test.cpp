// The values of the core companion. Statuses, array ends, alignment and in-place use of its operations are
// checked by the frame test.
#include <signal_tzm/companion.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <vector>

#include "support/compare.h"
#include "support/random.h"

namespace tzm_test {
namespace {

// Bodies of every vector width, and remainders of every length.
constexpr int32_t kMost = 150;

TEST(Memory, BlocksHoldWhatIsAskedForAndGoBackEitherWay) {
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
    use(ORVAS_Malloc_64f(count), count, ORVA_Free);
  }
  ORVA_Free(nullptr);
  ORVAS_Free(nullptr);
  constexpr int32_t kHuge = 1 << 29;  // 2^32 bytes
  if (double* block = ORVAS_Malloc_64f(kHuge)) {
    block[kHuge - 1] = 1;
    ORVAS_Free(block);
  }
}

// Runs `call(src, dst, len)` for every length on elements of type S, and holds dst against `element(src, i, len)`.
template <class S, class D, class Call, class Element>
void ExpectElements(const char* name, Call call, Element element) {
  for (int32_t len = 1; len <= kMost; ++len) {
    const auto src = RandomArray<S>(len, len, Variety::kSpecial);
    std::vector<D> expected(len), dst(len);
    for (int32_t i = 0; i < len; ++i) expected[i] = element(src, i, len);
    ASSERT_EQ(call(src.data(), dst.data(), len), ORVA_STS_NO_ERR);
    ASSERT_TRUE(SameBits(name, expected.data(), dst.data(), len, len)) << "length " << len;
  }
}

template <class T>
using InOut = OrvaStatus (*)(const T*, T*, int32_t);

template <class T>
void ExpectMove(InOut<T> move) {
  for (int32_t shift : {-17, -1, 0, 1, 17}) {
    std::vector<T> line(kMost + 40);
    std::iota(line.begin(), line.end(), T(1));
    auto expected = line;
    for (int32_t i = 0; i < kMost; ++i) expected[20 + shift + i] = line[20 + i];
    ASSERT_EQ(move(&line[20], &line[20 + shift], kMost), ORVA_STS_NO_ERR);
    ASSERT_EQ(line, expected) << shift;
  }
}

TEST(Copy, MovesBetweenOverlappingArrays) {
  ExpectMove(ORVAS_Move_16s);
  ExpectMove(ORVAS_Move_32f);
}

template <class T>
void ExpectFlip(const char* name, InOut<T> flip) {
  const auto element = [](const auto& src, int32_t i, int32_t len) { return src[len - 1 - i]; };
  ExpectElements<T, T>(name, flip, element);
  ExpectElements<T, T>(name, [=](const T* src, T* dst, int32_t len) {
    std::copy_n(src, len, dst);
    return flip(dst, dst, len);
  }, element);
}

TEST(Copy, FlipsInPlaceToo) {
  ExpectFlip("Flip_32f", ORVAS_Flip_32f);
  ExpectFlip("Flip_32fc", ORVAS_Flip_32fc);
  ExpectFlip("Flip_64f", ORVAS_Flip_64f);
  ExpectFlip("Flip_64fc", ORVAS_Flip_64fc);
}

template <class T>
void ExpectSet(const char* name, OrvaStatus (*set)(T, T*, int32_t)) {
  const T value = RandomArray<T>(1, 5)[0];
  ExpectElements<T, T>(name, [=](const T*, T* dst, int32_t len) { return set(value, dst, len); },
                       [=](const auto&, int32_t, int32_t) { return value; });
}

TEST(Set, WritesTheValue) {
  ExpectSet("Set_32f", ORVAS_Set_32f);
  ExpectSet("Set_32fc", ORVAS_Set_32fc);
  ExpectSet("Set_64f", ORVAS_Set_64f);
  ExpectSet("Set_64fc", ORVAS_Set_64fc);
}

template <class T>
void ExpectAdd(const char* name, InOut<T> add) {
  const auto other = RandomArray<T>(kMost, 6, Variety::kSpecial);
  ExpectElements<T, T>(name, [&](const T* src, T* dst, int32_t len) {
    std::copy_n(other.data(), len, dst);
    return add(src, dst, len);
  }, [&](const auto& src, int32_t i, int32_t) { return other[i] + src[i]; });
}

template <class C>
void ExpectConj(const char* name, InOut<C> conj, OrvaStatus (*inPlace)(C*, int32_t)) {
  const auto element = [](const auto& src, int32_t i, int32_t) { return C{src[i].re, -src[i].im}; };
  ExpectElements<C, C>(name, conj, element);
  ExpectElements<C, C>(name, [=](const C* src, C* dst, int32_t len) {
    std::copy_n(src, len, dst);
    return inPlace(dst, len);
  }, element);
}

TEST(Arithmetic, AddsAndConjugates) {
  ExpectAdd("Add_32f_I", ORVAS_Add_32f_I);
  ExpectAdd("Add_64f_I", ORVAS_Add_64f_I);
  ExpectConj("Conj_32fc", ORVAS_Conj_32fc, ORVAS_Conj_32fc_I);
  ExpectConj("Conj_64fc", ORVAS_Conj_64fc, ORVAS_Conj_64fc_I);
}

template <class T, class C>
void ExpectSplit(const char* name, OrvaStatus (*split)(const C*, T*, T*, int32_t),
                 OrvaStatus (*join)(const T*, const T*, C*, int32_t) = nullptr) {
  std::vector<T> re(kMost), im(kMost);
  ExpectElements<C, T>(name, [&](const C* src, T* dst, int32_t len) { return split(src, dst, im.data(), len); },
                       [](const auto& src, int32_t i, int32_t) { return src[i].re; });
  ExpectElements<C, T>(name, [&](const C* src, T* dst, int32_t len) { return split(src, re.data(), dst, len); },
                       [](const auto& src, int32_t i, int32_t) { return src[i].im; });
  if (join == nullptr) return;
  ExpectElements<T, C>(name, [&](const T* src, C* dst, int32_t len) { return join(src, im.data(), dst, len); },
                       [&](const auto& src, int32_t i, int32_t) { return C{src[i], im[i]}; });
}

TEST(Convert, SplitsAndJoinsComplexArrays) {
  ExpectSplit<Orva16s>("16sc", ORVAS_CplxToReal_16sc);
  ExpectSplit("32fc", ORVAS_CplxToReal_32fc, ORVAS_RealToCplx_32f);
  ExpectSplit("64fc", ORVAS_CplxToReal_64fc, ORVAS_RealToCplx_64f);
}

TEST(Convert, KeepsOrRoundsTheValue) {
  ExpectElements<Orva16s, Orva32f>("Convert_16s32f", ORVAS_Convert_16s32f,
                                   [](const auto& src, int32_t i, int32_t) { return Orva32f(src[i]); });
  ExpectElements<Orva32f, Orva64f>("Convert_32f64f", ORVAS_Convert_32f64f,
                                   [](const auto& src, int32_t i, int32_t) { return Orva64f(src[i]); });
  ExpectElements<Orva64f, Orva32f>("Convert_64f32f", ORVAS_Convert_64f32f,
                                   [](const auto& src, int32_t i, int32_t) { return Orva32f(src[i]); });
  const std::vector<Orva64f> src = {1 + 0x1p-24, 1 + 0x3p-24, 0x1.ffffffp127, 0x1p-150, 0x1.8p-150};
  const std::vector<Orva32f> expected = {1, 1 + 0x1p-22f, std::numeric_limits<float>::infinity(), 0, 0x1p-149f};
  std::vector<Orva32f> dst(src.size());
  ORVAS_Convert_64f32f(src.data(), dst.data(), src.size());
  EXPECT_EQ(dst, expected);
}

TEST(Convert, ScalesRoundsAndSaturates) {
  const double kInf = std::numeric_limits<double>::infinity(), kNan = std::numeric_limits<double>::quiet_NaN();
  const struct { double value, scale; Orva16s nearest, towardZero; } kTable[] = {
      {0.5, 1, 0, 0}, {1.5, 1, 2, 1}, {2.5, 1, 2, 2}, {-0.5, 1, 0, 0}, {-1.5, 1, -2, -1}, {-2.5, 1, -2, -2},
      {std::nextafter(0.5, 0), 1, 0, 0}, {std::nextafter(0.5, 1), 1, 1, 0}, {32766.5, 1, 32766, 32766},
      {32767, 1, 32767, 32767}, {32767.5, 1, 32767, 32767}, {-32768.5, 1, -32768, -32768}, {1e300, 1, 32767, 32767},
      {2147483648.0, 1, 32767, 32767}, {-1e10, 1, -32768, -32768}, {kInf, 1, 32767, 32767},
      {-kInf, 1, -32768, -32768}, {kNan, 1, 0, 0}, {3, 1.999, 3, 3}, {3, 2, 2, 1}, {5, 3.5, 2, 2}, {7, 2, 4, 3},
      {1.25, 0.3, 2, 2}, {3, 0.9, 3, 3}, {1, 0x1p-1074, 32767, 32767}, {-1, 0x1p-1074, -32768, -32768},
      {0, 0x1p-1074, 0, 0}, {0x1p1023, 0x1p1023, 1, 1}, {-0x1.8p1023, 0x1p1023, -2, -1}};
  for (const auto& row : kTable) {
    for (int32_t len = 1; len <= 40; ++len) {
      const std::vector<Orva64f> src(len, row.value);
      for (uint32_t mode : {0, 1}) {
        const std::vector<Orva16s> expected(len, mode == 1 ? row.nearest : row.towardZero);
        std::vector<Orva16s> dst(len, 99);
        ASSERT_EQ(ORVAS_Convert_64f16s_S(src.data(), dst.data(), len, mode, row.scale), ORVA_STS_NO_ERR);
        ASSERT_EQ(dst, expected) << row.value << " scale " << row.scale << " mode " << mode << " length " << len;
      }
    }
  }
}

template <class T>
void ExpectLargest(const char* name, OrvaStatus (*largest)(const T*, int32_t, T*), T (*key)(T), T sign) {
  constexpr T kInf = std::numeric_limits<T>::infinity(), kNan = std::numeric_limits<T>::quiet_NaN();
  const auto expect = [&](T expected, const std::vector<T>& src) {
    T result = 99;
    ASSERT_EQ(largest(src.data(), src.size(), &result), ORVA_STS_NO_ERR);
    ASSERT_TRUE(SameBits(name, &expected, &result, 1)) << "length " << src.size();
  };
  for (int32_t len = 1; len <= kMost; ++len) {
    for (Variety variety : kVarieties) {
      const auto src = RandomArray<T>(len, len, variety);
      T expected = kNan;
      for (T x : src)
        if (!(sign * key(x) <= sign * expected) && !std::isnan(x)) expected = key(x);
      expect(expected, src);
    }
    for (int32_t i = 0; i < len; ++i) {  // one value among NaNs, and one NaN among values
      std::vector<T> src(len, kNan);
      src[i] = sign * -kInf;
      expect(key(src[i]), src);
      src.assign(len, -T(3));
      src[i] = kNan;
      expect(len == 1 ? kNan : key(-3), src);
      src.assign(len, T(0));
      std::fill_n(src.begin(), i + 1, -T(0));  // the first zero counts
      expect(key(-T(0)), src);
    }
  }
}

TEST(Extreme, PassesOverNaN) {
  ExpectLargest<Orva64f>("Max_64f", ORVAS_Max_64f, [](double x) { return x; }, 1);
  ExpectLargest<Orva64f>("Min_64f", ORVAS_Min_64f, [](double x) { return x; }, -1);
  ExpectLargest<Orva32f>("MaxAbs_32f", ORVAS_MaxAbs_32f, [](float x) { return std::abs(x); }, 1);
  ExpectLargest<Orva64f>("MaxAbs_64f", ORVAS_MaxAbs_64f, [](double x) { return std::abs(x); }, 1);
}

}  // namespace
}  // namespace tzm_test
