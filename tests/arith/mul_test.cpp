// Products: an oracle in exact 128-bit integers, or in plain scalar arithmetic where a member is floating
// or deliberately coarser.
#include <gtest/gtest.h>
#include <signal_tzm/arith.h>

#include <cmath>
#include <type_traits>

#include "support/exact.h"
#include "support/guarded.h"

namespace tzm_test {
namespace {

const int kExponents[] = {0, 1, 2, 3, 7, 8, 9, 14, 15, 16, 17, 22, 23, 30, 31, 32, 33, 40, 62, 63, 64, 65, 300, 1023,
                          -1, -2, -7, -8, -9, -15, -16, -17, -30, -31, -32, -33, -62, -63, -64, -65, -300, -1073};
const int kLengths[] = {1, 2, 7, 8, 9, 15, 16, 17, 31, 33, 63, 64, 65, 130};

// Parts from all over the range, many at its ends, few small ones that meet ties.
template <class T>
std::vector<T> Operands(size_t n, uint64_t seed) {
  return RandomArray<T>(n, seed, kVarieties[seed % 3]);
}

template <class T>
T Plain(T a, T b) { return a * b; }
Orva32fc Plain(Orva32fc a, Orva32fc b) {
  return {std::fma(a.re, b.re, -(a.im * b.im)), std::fma(a.im, b.re, a.re * b.im)};
}
Orva64fc Plain(Orva64fc a, Orva64fc b) {
  return {std::fma(a.re, b.re, -(a.im * b.im)), std::fma(a.im, b.re, a.re * b.im)};
}
Orva32fc PlainConstant(Orva32fc a, Orva32fc b) {
  return {std::fma(a.re, b.re, -(a.im * b.im)), std::fma(a.re, b.im, a.im * b.re)};
}

// Runs a member over lengths (and exponents) and compares each element with oracle(a, b, exponent, i, len).
template <class A, class B, class Dst, class... Scale, class Oracle>
void Compare(const char* name, OrvaStatus (*member)(const A*, const B*, Dst*, int32_t, Scale...), Oracle oracle) {
  for (int exponent : kExponents) {
    if (sizeof...(Scale) == 0 && exponent != 0) break;
    for (int len : kLengths) {
      const uint64_t seed = 100 * len + exponent + 2000;
      const GuardedArray<A> a(Operands<A>(len, seed));
      const GuardedArray<B> b(Operands<B>(len, seed + 1));
      GuardedArray<Dst> dst(len);
      std::vector<Dst> expected(len);
      for (int i = 0; i < len; ++i) expected[i] = oracle(a.data()[i], b.data()[i], exponent);
      OrvaStatus status;
      if constexpr (sizeof...(Scale) == 0) status = member(a.data(), b.data(), dst.data(), len);
      else status = member(a.data(), b.data(), dst.data(), len, std::ldexp(1.0, exponent));
      ASSERT_EQ(status, ORVA_STS_NO_ERR) << name;
      ASSERT_TRUE(SameBits(name, expected.data(), dst.data(), len, seed)) << "exponent " << exponent;
    }
  }
}
template <class T, class V, class Dst, class... Scale, class Oracle>
void CompareConstant(const char* name, OrvaStatus (*member)(const T*, V, Dst*, int32_t, Scale...), Oracle oracle) {
  for (int exponent : kExponents) {
    if (sizeof...(Scale) == 0 && exponent != 0) break;
    for (int len : kLengths) {
      const uint64_t seed = 100 * len + exponent + 2000;
      const GuardedArray<T> a(Operands<T>(len, seed));
      const V value = Operands<V>(4, seed + 1)[seed % 4];
      GuardedArray<Dst> dst(len);
      std::vector<Dst> expected(len);
      for (int i = 0; i < len; ++i) expected[i] = oracle(a.data()[i], value, exponent, i, len);
      OrvaStatus status;
      if constexpr (sizeof...(Scale) == 0) status = member(a.data(), value, dst.data(), len);
      else status = member(a.data(), value, dst.data(), len, std::ldexp(1.0, exponent));
      ASSERT_EQ(status, ORVA_STS_NO_ERR) << name;
      ASSERT_TRUE(SameBits(name, expected.data(), dst.data(), len, seed)) << "exponent " << exponent;
    }
  }
}
#define COMPARE(member, ...) Compare(#member, member, __VA_ARGS__)
#define COMPARE_CONSTANT(member, ...) CompareConstant(#member, member, __VA_ARGS__)

const auto exact = [](auto a, auto b, int exponent, auto...) {
  if constexpr (std::is_class_v<decltype(a)>) return Scaled<decltype(a)>(Product(a, b), exponent);
  else return Scaled<decltype(b)>(Int128{a} * b, exponent);
};
const auto plain = [](auto a, auto b, auto...) { return Plain(a, b); };

// The exact product, rounded to F, times the factor in F.
template <class F, class T>
T Coarse(T a, T b, int exponent) {
  return RoundSaturate<T>(static_cast<F>(int64_t{a} * b) * static_cast<F>(std::ldexp(1.0, -exponent)));
}

TEST(Mul, Floating) {
  COMPARE(ORVAS_Mul_32f, plain);
  COMPARE(ORVAS_Mul_64f, plain);
  COMPARE(ORVAS_Mul_32fc, plain);
  COMPARE(ORVAS_Mul_64fc, plain);
  COMPARE(ORVAS_Mul_32f32fc, [](float a, Orva32fc b, int) { return Orva32fc{a * b.re, a * b.im}; });
  COMPARE(ORVAS_Mul_16s32f, [](int a, int b, int) { return static_cast<float>(a * b); });
}

TEST(Mul, IntegersAreExact) {
  COMPARE(ORVAS_Mul_8u16u, [](Orva8u a, Orva8u b, int) { return static_cast<Orva16u>(a * b); });
  COMPARE(ORVAS_Mul_16s, exact);
  COMPARE(ORVAS_Mul_8u_S, exact);
  COMPARE(ORVAS_Mul_16u_S, exact);
  COMPARE(ORVAS_Mul_16s_S, exact);
  COMPARE(ORVAS_Mul_16u16s_S, exact);
  COMPARE(ORVAS_Mul_16s32s_S, [](int a, int b, int exponent) { return Scaled<Orva32s>(Int128{a} * b, exponent); });
  COMPARE(ORVAS_Mul_16sc_S, exact);
  COMPARE(ORVAS_Mul_32sc_S, exact);
}

TEST(Mul, Binary64Detour) { COMPARE(ORVAS_Mul_32s_S, Coarse<double, Orva32s>); }

TEST(Mul, EveryProductOfBytes) {
  for (int exponent = -17; exponent <= 17; ++exponent) {
    std::vector<Orva8u> a(65536), b(65536), expected(65536), dst(65536);
    for (int i = 0; i < 65536; ++i) {
      a[i] = i & 255;
      b[i] = i >> 8;
      expected[i] = Scaled<Orva8u>(a[i] * b[i], exponent);
    }
    ORVAS_Mul_8u_S(a.data(), b.data(), dst.data(), 65536, std::ldexp(1.0, exponent));
    ASSERT_TRUE(SameBits("ORVAS_Mul_8u_S", expected.data(), dst.data(), 65536)) << "exponent " << exponent;
  }
}

TEST(Mul, ComplexOverflow) {
  const Orva16s low16 = -32768;
  const Orva32s low32 = std::numeric_limits<Orva32s>::min();
  for (int exponent = -3; exponent <= 66; ++exponent) {
    const double scale = std::ldexp(1.0, exponent);
    const std::vector<Orva16sc> a16(21, {low16, low16}), expected16(21, Scaled<Orva16sc>({0, Int128{1} << 31}, exponent));
    std::vector<Orva16sc> dst16(21);
    ORVAS_Mul_16sc_S(a16.data(), a16.data(), dst16.data(), 21, scale);
    EXPECT_TRUE(SameBits("ORVAS_Mul_16sc_S", expected16.data(), dst16.data(), 21)) << exponent;
    ORVAS_MulC_16sc_S(a16.data(), a16[0], dst16.data(), 21, scale);
    EXPECT_TRUE(SameBits("ORVAS_MulC_16sc_S", expected16.data(), dst16.data(), 21)) << exponent;
    const std::vector<Orva32sc> a32(21, {low32, low32}), expected32(21, Scaled<Orva32sc>({0, Int128{1} << 63}, exponent));
    std::vector<Orva32sc> dst32(21);
    ORVAS_Mul_32sc_S(a32.data(), a32.data(), dst32.data(), 21, scale);
    EXPECT_TRUE(SameBits("ORVAS_Mul_32sc_S", expected32.data(), dst32.data(), 21)) << exponent;
    ORVAS_MulC_32sc_S(a32.data(), a32[0], dst32.data(), 21, scale);
    EXPECT_TRUE(SameBits("ORVAS_MulC_32sc_S", expected32.data(), dst32.data(), 21)) << exponent;
  }
}

TEST(MulC, Floating) {
  COMPARE_CONSTANT(ORVAS_MulC_32f, plain);
  COMPARE_CONSTANT(ORVAS_MulC_64f, plain);
  COMPARE_CONSTANT(ORVAS_MulC_32fc, [](Orva32fc a, Orva32fc b, auto...) { return PlainConstant(a, b); });
  COMPARE_CONSTANT(ORVAS_MulC_64fc, plain);
}

TEST(MulC, IntegersAreExact) {
  COMPARE_CONSTANT(ORVAS_MulC_8u_S, exact);
  COMPARE_CONSTANT(ORVAS_MulC_16u_S, exact);
  COMPARE_CONSTANT(ORVAS_MulC_16sc_S, exact);
}

TEST(MulC, Coarser) {
  COMPARE_CONSTANT(ORVAS_MulC_16s_S,
                   [](Orva16s a, Orva16s b, int exponent, auto...) { return Coarse<float>(a, b, exponent); });
  COMPARE_CONSTANT(ORVAS_MulC_32s_S,
                   [](Orva32s a, Orva32s b, int exponent, auto...) { return Coarse<double>(a, b, exponent); });
  COMPARE_CONSTANT(ORVAS_MulC_32sc_S, [](Orva32sc a, Orva32sc b, int exponent, int i, int len) {
    if (exponent < 23 || exponent > 63 || i < len - len % 8) return exact(a, b, exponent);
    const Exact product = Product(a, b);
    const double factor = std::ldexp(1.0, -exponent);
    return Orva32sc{RoundSaturate<Orva32s>(static_cast<double>(product.re) * factor),
                    RoundSaturate<Orva32s>(static_cast<double>(product.im) * factor)};
  });
  const Orva16s value = 16477, src = 2037;
  Orva16s dst;
  ORVAS_MulC_16s_S(&src, value, &dst, 1, 2048.0);
  EXPECT_EQ(dst, 16388);
  ORVAS_Mul_16s_S(&src, &value, &dst, 1, 2048.0);
  EXPECT_EQ(dst, 16389);
}

TEST(MulC, FloatsToIntegers) {
  COMPARE_CONSTANT(ORVAS_MulC_Low_32f16s, [](float a, float b, auto...) { return RoundSaturate<Orva16s>(b * a); });
  COMPARE_CONSTANT(ORVAS_MulC_32f16s_S, [](float a, float b, int exponent, auto...) {
    return RoundSaturate<Orva16s>(b * a * static_cast<float>(std::ldexp(1.0, -exponent)));
  });
}

// In-place members without a twin, through the out-of-place shape.
template <auto kMember, class T, class V, class... Scale>
OrvaStatus OutOfPlace(const T* src, V value, T* dst, int32_t len, Scale... scale) {
  std::copy(src, src + len, dst);
  return kMember(value, dst, len, scale...);
}

TEST(MulC, InPlaceOnly) {
  COMPARE_CONSTANT((OutOfPlace<ORVAS_MulC_16s_I, Orva16s, Orva16s>), exact);
  COMPARE_CONSTANT((OutOfPlace<ORVAS_MulC_64f64s_IS, Orva64s, Orva64f, double>), [](Orva64s a, double b, int exponent, auto...) {
    return RoundSaturate<Orva64s>(static_cast<double>(a) * b * std::ldexp(1.0, -exponent));
  });
  COMPARE_CONSTANT((OutOfPlace<ORVAS_MulC_64s_IS, Orva64s, Orva64s, double>), [](Orva64s a, Orva64s b, int exponent, auto...) {
    const auto wrapped = static_cast<Orva64s>(static_cast<uint64_t>(a) * static_cast<uint64_t>(b));
    return RoundSaturate<Orva64s>(static_cast<double>(wrapped) * std::ldexp(1.0, -exponent));
  });
}

}  // namespace
}  // namespace tzm_test
