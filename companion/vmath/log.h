// log x = k log 2 + log c + log(1 + r) with x = 2^k c (1 + r), c one of 16, |r| < 1/32.2.
#pragma once

#include "constants.h"

namespace vmath {

// x = 2^k fraction, `index` the number of c in its low bits; for positive normal x.
struct LogArgument {
  V k, fraction;
  I index;
};
TZM_INLINE LogArgument SplitForLog(V x) {
  const I one = SetBits(uint64_t{1023} << 52), shifted = hn::Add(BitsOf(x), hn::Sub(one, SetBits(kLogStart)));
  const V biased = OfBits(hn::Or(ShiftRightLogical<52>(shifted), SetBits(uint64_t{0x433} << 52)));  // 2^52 + 1023 + k
  const I exponent = hn::And(hn::Sub(shifted, one), SetBits(0xfff0000000000000));
  return {hn::Sub(biased, C(0x1p52 + 1023)), OfBits(hn::Sub(BitsOf(x), exponent)), ShiftRightLogical<48>(shifted)};
}

struct Natural {
  static constexpr Middle kMiddles[] = {{-0x1.1c2b1fp+2, -0x1.1c2b1ep+2}, {0x1.1fcbcfp+1, 0x1.1fcbcep+1},
                                        {0x1.1e0695p+4, 0x1.1e0696p+4}, {0x1.a9a3f1p+5, 0x1.a9a3f2p+5},
                                        {0x1.08b511p+6, 0x1.08b512p+6}};
  static constexpr auto& kTable = kLogTable;
  static constexpr auto& kOf2 = kLn2;
};
struct Decimal {
  static constexpr Middle kMiddles[] = {{-0x1.d33a45p+4, -0x1.d33a46p+4}};
  static constexpr auto& kTable = kLog10Table;
  static constexpr auto& kOf2 = kLog10Of2;
};

TZM_INLINE M IsPositiveNormal(V x) { return hn::And(hn::Ge(x, C(0x1p-1022)), hn::Lt(x, C(kInfinity))); }
// The logarithm of what is no positive number, x itself for the rest.
TZM_INLINE V LogOfOther(V x) {
  const V negative = hn::IfThenElse(hn::Lt(x, hn::Zero(D())), C(kNaN), x);
  return hn::IfThenElse(hn::Eq(x, hn::Zero(D())), C(-kInfinity), negative);
}

// Within 0.54 ulp. k log 2 + log c is exact; r comes with the rest of its rounding, and so does the sum of the two.
template <class Base>
struct Log64 {
  TZM_INLINE V operator()(V x) const {
    const V y = OfNormal(x, hn::Zero(D()));
    const M other = hn::Not(IsPositiveNormal(x));
    if (Any(other)) return hn::IfThenElse(other, OfOther(x), y);
    return y;
  }

 private:
  static TZM_INLINE V OfNormal(V x, V shift) {
    const LogArgument a = SplitForLog(x);
    const V k = hn::Sub(a.k, shift);
    const auto [inverse, log] = Lookup<Base::kTable>(a.index).number;
    const V product = hn::Mul(a.fraction, inverse), r = hn::Sub(product, C(1));
    const V rRest = Fms(a.fraction, inverse, product);
    const V exact = Fma(k, C(Base::kOf2[0]), log), r2 = hn::Mul(r, r);
    if constexpr (std::is_same_v<Base, Natural>) {
      const Sum sum = FastTwoSum(exact, r);
      const V low = Fma(k, C(Base::kOf2[1]), hn::Add(Fnma(rRest, r, rRest), sum.rest));
      return hn::Add(sum.sum, Fma(r2, PolynomialInTwo(kLogPoly, r, r2), low));
    } else {
      const V first = hn::Mul(r, C(kLog10E)), firstRest = Fma(rRest, C(kLog10E), Fms(r, C(kLog10E), first));
      const Sum sum = FastTwoSum(exact, first);
      const V low = Fma(k, C(Base::kOf2[1]), hn::Add(Fnma(firstRest, r, firstRest), sum.rest));
      return hn::Add(sum.sum, Fma(r, PolynomialInTwo(kLog10Poly, r, r2), low));
    }
  }
  static __attribute__((noinline)) V OfOther(V x) {
    const M subnormal = hn::And(hn::Gt(x, hn::Zero(D())), hn::Lt(x, C(0x1p-1022)));
    const V y = OfNormal(hn::Mul(x, C(0x1p54)), C(54));
    return hn::IfThenElse(subnormal, y, LogOfOther(x));
  }
};

// Correctly rounded to binary32, of numbers of that type.
template <class Base>
struct Log32 {
  TZM_INLINE V operator()(V x) const {
    const LogArgument a = SplitForLog(x);
    const auto [inverse, log] = Lookup<Base::kTable>(a.index).number;
    const V r = Fms(a.fraction, inverse, C(1)), r2 = hn::Mul(r, r), exact = Fma(a.k, C(Base::kOf2[0]), log);
    V y;
    if constexpr (std::is_same_v<Base, Natural>) {
      const V rest = Fma(a.k, C(Base::kOf2[1]), hn::Mul(r2, PolynomialInTwo(kLogPoly32, r, r2)));
      y = hn::Add(exact, hn::Add(r, rest));
    } else {
      const V rest = Fma(a.k, C(Base::kOf2[1]), hn::Mul(r, PolynomialInTwo(kLog10Poly32, r, r2)));
      y = hn::Add(exact, Fma(r, C(kLog10E), rest));
    }
    // The middles share one rare branch with what has no logarithm.
    const M other = hn::Or(hn::Not(IsPositiveNormal(x)), IsMiddle(y));
    if (Any(other)) return hn::IfThenElse(IsPositiveNormal(x), Settled(Base::kMiddles, y), LogOfOther(x));
    return y;
  }
};

}  // namespace vmath
