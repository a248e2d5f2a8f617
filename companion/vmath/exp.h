// e^x = 2^(k/16) e^f with |f| <= ln 2/32, k an integer.
#pragma once

#include "constants.h"

namespace vmath {

// e^(x + rest) = root (1 + p), 2^(floor(k/16)) apart; the low bits of `k` are those of the integer.
struct Exponential {
  V root, p;
  I k;
  // The power of two put in, for results that are normal numbers.
  TZM_INLINE V Normal() const {
    const V power = OfBits(hn::Add(BitsOf(root), hn::ShiftLeft<48>(k)));
    return Fma(power, p, power);
  }
};
// To 0.03 ulp before the last rounding, for |x| < 1000; `rest` is a register, or nothing.
template <class... Rest>
TZM_INLINE Exponential ExpParts(V x, Rest... rest) {
  const V shifted = Fma(x, C(kSixteenByLn2), C(kToInteger)), k = hn::Sub(shifted, C(kToInteger));
  V f = Fnma(k, C(kLn2By16[1]), Fnma(k, C(kLn2By16[0]), x));
  ((f = hn::Add(f, rest)), ...);
  const V f2 = hn::Mul(f, f);
  const auto [root, lost] = Lookup<kExpTable>(BitsOf(shifted)).number;
  return {root, hn::Add(f, Fma(f2, PolynomialInTwo<kExpPoly>(f, f2), lost)), BitsOf(shifted)};
}

// Arguments whose result is certainly normal.
constexpr double kExpNormal = 708;

// For any argument: results below the least normal number are rounded once, to their own last place.
inline __attribute__((noinline)) V ExpOfAny(V x, V rest) {
  constexpr double kLogOfLeastNormal = -0x1.6232bdd7abcd2p+9;
  const V most = C(800), clamped = MinOrSecond(most, MaxOrSecond(hn::Neg(most), x));
  const Exponential e = ExpParts(clamped, hn::IfThenElseZero(hn::Eq(clamped, x), rest));
  const I sixteenth = hn::Sub(e.k, BitsOf(C(kToInteger))), index = hn::And(sixteenth, SetBits(15));
  const I exponent = hn::ShiftLeft<48>(hn::Sub(sixteenth, index));  // where a binary64 number has it
  const auto scale = [&](int bias) TZM_LAMBDA {
    return OfBits(hn::Add(exponent, SetBits(uint64_t(1023 + bias) << 52)));
  };
  const V root = OfBits(hn::Add(BitsOf(e.root), hn::ShiftLeft<48>(index)));
  const V large = hn::Mul(hn::Mul(Fma(root, e.p, root), scale(-512)), C(0x1p512));
  const V units = hn::Mul(root, scale(1074));  // of the least number above 0
  const Sum sum = FastTwoSum(C(0x1p52), units);
  const V count = hn::Sub(hn::Add(sum.sum, Fma(units, e.p, sum.rest)), C(0x1p52));
  const V small = hn::Mul(count, C(0x1p-1074));
  const V either = hn::IfThenElse(hn::Gt(x, hn::Zero(D())), large, small);
  return hn::IfThenElse(hn::Lt(hn::Abs(x), C(-kLogOfLeastNormal)), e.Normal(), either);
}

// Within 0.54 ulp.
struct Exp64 {
  TZM_INLINE V operator()(V x) const {
    const V y = ExpParts(x).Normal();
    const M usual = AbsLess(x, C(kExpNormal));
    if (NotAll(usual)) return hn::IfThenElse(usual, y, ExpOfAny(x, hn::Zero(D())));
    return y;
  }
};

// Correctly rounded: 2^k root (1 + f + p), |f| <= ln 2/32, k in sixteenths. The first step is good to kExpError32 of
// the result, which what comes with the root makes greater by as much: rounded, that and what is less by twice as much
// agree.
struct Exp32 {
  TZM_INLINE F operator()(F x) const {
    constexpr float kToSixteenths = kToInteger32 / 16, kNormal = 87;
    const F shifted = Fma(x, C32(1 / kLn2Of32[0]), C32(kToSixteenths)), k = hn::Sub(shifted, C32(kToSixteenths));
    const F root = Lookup32<kExpTable32, 0>(BitsOf(shifted)), other = Lookup32<kExpTable32, 1>(BitsOf(shifted));
    const F f = Fnma(k, C32(kLn2Of32[0]), x);  // exact
    const F fRest = Fnma(k, C32(kLn2Of32[1]), other), both = hn::Add(f, fRest);
    const F p = Fma(hn::Mul(both, both), Polynomial<kExpPoly32>(both), fRest);
    const F sum = Fma(root, f, root), rest = Fma(root, p, Fma(root, f, hn::Sub(root, sum)));
    const F y = hn::Add(sum, rest), least = hn::Add(sum, Fnma(root, C32(2 * kExpError32), rest));
    const M32 sure = EqualWhere(AbsLess(x, C32(kNormal)), y, least);
    if (NotAll(sure)) return SecondStep<Exp64>(x);
    return OfBits(hn::Add(BitsOf(y), hn::ShiftLeft<23>(hn::ShiftRight<4>(BitsOf(shifted)))));
  }
};

}  // namespace vmath
