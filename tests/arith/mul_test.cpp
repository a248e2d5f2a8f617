// Products and squares against exact 128-bit integers, or plain scalars where they are floating or coarser.
#include "check.h"

namespace tzm_test {
namespace {

const auto exact = [](auto a, auto b, At at) {
  if constexpr (std::is_class_v<decltype(a)>) return Scaled<decltype(a)>(Product(a, b), at.exponent);
  else return Scaled<decltype(b)>(Int128{a} * b, at.exponent);
};
const auto square = [](auto a, At at) { return exact(a, a, at); };

const auto plain = [](auto a, auto b, At) {
  if constexpr (!std::is_class_v<decltype(a)>) return a * b;
  else return decltype(a){std::fma(a.re, b.re, -(a.im * b.im)), std::fma(a.im, b.re, a.re * b.im)};
};
const auto plainSquare = [](auto a, At) {
  if constexpr (!std::is_class_v<decltype(a)>) return a * a;
  else return decltype(a){std::fma(a.re, a.re, -(a.im * a.im)), a.im * a.re + a.im * a.re};
};

// The exact product rounded to F, times the factor in F.
template <class F>
constexpr auto coarse = [](auto a, decltype(a) b, At at) {
  return RoundSaturate<decltype(a)>(static_cast<F>(int64_t{a} * b) * static_cast<F>(at.Factor()));
};

TEST(Mul, Floating) {
  Check(plain, MEMBER(ORVAS_Mul_32f), MEMBER(ORVAS_Mul_64f), MEMBER(ORVAS_Mul_32fc), MEMBER(ORVAS_Mul_64fc));
  CHECK(ORVAS_Mul_32f32fc, [](float a, Orva32fc b, At) { return Orva32fc{a * b.re, a * b.im}; });
  CHECK(ORVAS_Mul_16s32f, [](int a, int b, At) { return static_cast<float>(a * b); });
  Check(plain, MEMBER(ORVAS_MulC_32f), MEMBER(ORVAS_MulC_64f), MEMBER(ORVAS_MulC_64fc));
  CHECK(ORVAS_MulC_32fc, [](Orva32fc a, Orva32fc b, At) {  // rounds the other product of the imaginary part
    return Orva32fc{std::fma(a.re, b.re, -(a.im * b.im)), std::fma(a.re, b.im, a.im * b.re)};
  });
  Check(plainSquare, MEMBER(ORVAS_Sqr_32f), MEMBER(ORVAS_Sqr_64f), MEMBER(ORVAS_Sqr_32fc), MEMBER(ORVAS_Sqr_64fc));
}

TEST(Mul, IntegersAreExact) {
  CHECK(ORVAS_Mul_8u16u, [](Orva8u a, Orva8u b, At) { return static_cast<Orva16u>(a * b); });
  Check(exact, MEMBER(ORVAS_Mul_16s), MEMBER(ORVAS_Mul_8u_S), MEMBER(ORVAS_Mul_16u_S), MEMBER(ORVAS_Mul_16s_S),
        MEMBER(ORVAS_Mul_16u16s_S));
  CHECK(ORVAS_Mul_16s32s_S, [](int a, int b, At at) { return Scaled<Orva32s>(Int128{a} * b, at.exponent); });
  Check(exact, MEMBER(ORVAS_Mul_16sc_S), MEMBER(ORVAS_Mul_32sc_S), MEMBER(ORVAS_MulC_8u_S), MEMBER(ORVAS_MulC_16u_S),
        MEMBER(ORVAS_MulC_16sc_S));
  Check(square, MEMBER(ORVAS_Sqr_16sc_S));
}

TEST(Mul, EveryProductOfBytesAndEverySquareOf16Bits) {
  std::vector<Orva8u> a(65536), b(65536);
  for (int i = 0; i < 65536; ++i) a[i] = i & 255, b[i] = i >> 8;
  for (int exponent = -17; exponent <= 33; ++exponent) {
    CheckOn<Orva8u>("ORVAS_Mul_8u_S", ORVAS_Mul_8u_S, exact, exponent, a, b);
    CheckOn<Orva8u>("ORVAS_Sqr_8u_S", ORVAS_Sqr_8u_S, square, exponent, a);
    CheckOn<Orva16u>("ORVAS_Sqr_16u_S", ORVAS_Sqr_16u_S, square, exponent, AllValues<Orva16u>());
    CheckOn<Orva16s>("ORVAS_Sqr_16s_S", ORVAS_Sqr_16s_S, square, exponent, AllValues<Orva16s>());
  }
}

// The one sum that leaves its lane: the imaginary part of four most negative parts.
template <class T, class Product, class ConstantProduct>
void CheckOverflow(Product product, ConstantProduct constantProduct) {
  const T least{std::numeric_limits<decltype(T::re)>::min(), std::numeric_limits<decltype(T::re)>::min()};
  const std::vector<T> a(24, least);
  for (int exponent = -3; exponent <= 66; ++exponent) {
    CheckOn<T>("array", product, exact, exponent, a, a);
    CheckOn<T>("constant", constantProduct, exact, exponent, a, least);
  }
}
TEST(Mul, ComplexOverflow) {
  CheckOverflow<Orva16sc>(ORVAS_Mul_16sc_S, ORVAS_MulC_16sc_S);
  CheckOverflow<Orva32sc>(ORVAS_Mul_32sc_S, ORVAS_MulC_32sc_S);
}

TEST(Mul, CoarserMembers) {
  Check(coarse<double>, MEMBER(ORVAS_Mul_32s_S), MEMBER(ORVAS_MulC_32s_S));
  Check(coarse<float>, MEMBER(ORVAS_MulC_16s_S));
  CheckOn<Orva16s>("in binary32", ORVAS_MulC_16s_S, [](auto...) { return 16388; }, 11, std::vector<Orva16s>{2037},
                   Orva16s{16477});
  const auto tailRoundsFirst = [](Orva32sc a, Orva32sc b, At at) {
    if (at.exponent < 23 || at.exponent > 63 || at.InBody(8)) return exact(a, b, at);
    const auto rounded = [&](Int128 x) { return RoundSaturate<Orva32s>(static_cast<double>(x) * at.Factor()); };
    return Orva32sc{rounded(Product(a, b).re), rounded(Product(a, b).im)};
  };
  CHECK(ORVAS_MulC_32sc_S, tailRoundsFirst);
  CheckOn<Orva32sc>("next to a tie", ORVAS_MulC_32sc_S, tailRoundsFirst, 31,
                    std::vector<Orva32sc>(11, {(1 << 29) + 1, 1}), Orva32sc{1 << 30, -1});
  CHECK(ORVAS_MulC_Low_32f16s, [](float a, float b, At) { return RoundSaturate<Orva16s>(b * a); });
  CHECK(ORVAS_MulC_32f16s_S, [](float a, float b, At at) {
    return RoundSaturate<Orva16s>(b * a * static_cast<float>(at.Factor()));
  });
}

TEST(Mul, InPlaceOnly) {
  CHECK((kOutOfPlace<ORVAS_MulC_16s_I, Orva16s, Orva16s>), exact);
  CHECK((kOutOfPlace<ORVAS_MulC_64f64s_IS, double, Orva64s, double>), [](Orva64s a, double b, At at) {
    return RoundSaturate<Orva64s>(static_cast<double>(a) * b * at.Factor());
  });
  CHECK((kOutOfPlace<ORVAS_MulC_64s_IS, Orva64s, Orva64s, double>), [](Orva64s a, Orva64s b, At at) {
    const auto wrapped = static_cast<Orva64s>(static_cast<uint64_t>(a) * static_cast<uint64_t>(b));
    return RoundSaturate<Orva64s>(static_cast<double>(wrapped) * at.Factor());
  });
}

}  // namespace
}  // namespace tzm_test
