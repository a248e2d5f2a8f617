// Arctangents: in binary64 arctan c + arctan((x - c)/(1 + c x)) with c one of 32, of a ratio n/d <= 1 with one of 16.
#pragma once

#include "constants.h"
#include "second_step.h"

namespace vmath {

// arctan t = t + t^3 p(t^2), without the first t; `rest` belongs to the result as well.
TZM_INLINE V ArctanRest(V t, V rest) {
  const V t2 = hn::Mul(t, t);
  return Fma(hn::Mul(t, t2), Polynomial<kAtanPoly>(t2), rest);
}

// Within 0.56 ulp. Four intervals for each power of two between 1/16 and 16; the first holds all below, with c = 0, the
// last all above, with a c beside which x and 1 do not count.
struct Atan64 {
  TZM_INLINE V operator()(V x) const {
    const V a = MinOrSecond(C(0x1p100), hn::Abs(x)), one = C(1);  // no angle differs beyond
    const Bits32 d32;  // of whose lanes every second counts
    const I32 upper = hn::Min(hn::Max(hn::BitCast(d32, a), hn::Set(d32, 0x3fb00000)), hn::Set(d32, 0x402fffff));
    const auto [c, arcMost, arcMore, arcRest] = Lookup<kAtanTable, 50>(hn::BitCast(Bits(), upper)).number;

    const V below = Fma(c, a, one), belowRest = Fma(c, a, hn::Sub(one, below)), inverse = hn::Div(one, below);
    const V above = hn::Sub(a, c), t = hn::Mul(above, inverse);
    const V error = Fnma(t, belowRest, Fnma(t, below, above));
    const Sum sum = FastTwoSum(hn::Add(arcMost, arcMore), t);
    const V rest = ArctanRest(t, Fma(error, inverse, arcRest));
    return hn::CopySign(hn::Add(sum.sum, hn::Add(sum.rest, rest)), x);
  }
};

// arctan(n/d) = most + more + rest, most of 44 fraction bits, the rest so small that its sums' roundings do not count;
// 0 <= n <= d, and the products of both far from the ends of the range.
struct Angle {
  V most, more, rest;
};
TZM_INLINE Angle ArctanOfRatio(V n, V d) {
  // Four intervals for each power of two of the ratio, by the difference of the bits; what lies below is the first.
  const V least = OfBits(hn::Sub(BitsOf(d), SetBits(uint64_t{63} << 48)));
  const I difference = hn::Sub(BitsOf(MaxOrSecond(n, least)), hn::Add(BitsOf(d), SetBits(1)));
  const auto [c, arc, arcRest] = Lookup<kRatioTable, 50>(difference).number;

  const V below = Fma(c, n, d), belowRest = Fma(c, n, hn::Sub(d, below)), inverse = hn::Div(C(1), below);
  const V product = hn::Mul(c, d), productRest = Fms(c, d, product);
  const V above = hn::Sub(n, product);  // less productRest
  const V t = hn::Mul(above, inverse);
  const V error = hn::Sub(Fnma(t, belowRest, Fnma(t, below, above)), productRest);
  return {arc, t, ArctanRest(t, Fma(error, inverse, arcRest))};
}
// base + angle, or base - angle where `sign` is negative; base is 0 or above the angle, of 43 fraction bits and a rest.
TZM_INLINE V Turn(V base, V baseRest, Angle angle, V sign) {
  const V signs = hn::And(sign, C(-0.0));
  const Sum sum = FastTwoSum(hn::Add(base, hn::Xor(angle.most, signs)), hn::Xor(angle.more, signs));
  return hn::Add(sum.sum, hn::Add(sum.rest, hn::Add(baseRest, hn::Xor(angle.rest, signs))));
}

// Within 0.56 ulp: the angle of the first octant, and from it that of the others.
struct Atan2_64 {
  TZM_INLINE V operator()(V y, V x) const {
    const V ay = hn::Abs(y), ax = hn::Abs(x);
    const M steep = hn::Gt(ay, ax);
    const V n = hn::IfThenElse(steep, ax, ay), d = hn::IfThenElse(steep, ay, ax);
    const V result = FromOctant(y, x, steep, ArctanOfRatio(n, d));
    const M usual = hn::And(hn::Gt(n, C(kLeast)), hn::Lt(d, C(kMost)));
    if (NotAll(usual)) return hn::IfThenElse(usual, result, OfAny(y, x));
    return result;
  }

 private:
  static constexpr double kLeast = 0x1p-400, kMost = 0x1p500;

  static TZM_INLINE V FromOctant(V y, V x, M steep, Angle angle) {
    const M left = hn::Lt(hn::CopySign(C(1), x), hn::Zero(D()));
    const auto base = [&](int part) TZM_LAMBDA {
      return hn::IfThenElse(steep, C(kPiShort[part] / 2), hn::IfThenElseZero(left, C(kPiShort[part])));
    };
    // Steep angles are measured from the axis of y, and those on the left from the other side.
    const V sign = hn::Xor(hn::IfThenElseZero(steep, C(-0.0)), x);
    return hn::CopySign(Turn(base(0), base(1), angle, sign), y);
  }
  // Numbers near the ends of the range are scaled; of ratios below 2^-60 the angle is the ratio, rounded once.
  static __attribute__((noinline)) V OfAny(V y, V x) {
    const V ay = hn::Abs(y), ax = hn::Abs(x), one = C(1), zero = hn::Zero(D());
    const M steep = hn::Gt(ay, ax);
    V n = hn::IfThenElse(steep, ax, ay), d = hn::IfThenElse(steep, ay, ax);
    const M bothInfinite = hn::Eq(n, C(kInfinity)), bothZero = hn::Eq(d, zero);
    n = hn::IfThenElse(bothInfinite, one, n);
    d = hn::IfThenElse(hn::Or(bothInfinite, bothZero), one, d);
    const V ratio = hn::Div(n, d);
    const V up = hn::IfThenElse(hn::Lt(d, C(0x1p-300)), C(0x1p600), one);
    const V scale = hn::IfThenElse(hn::Ge(d, C(kMost)), C(0x1p-600), up);
    const M small = hn::Lt(ratio, C(0x1p-60));
    n = hn::IfThenElse(small, zero, hn::Mul(n, scale));
    d = hn::IfThenElse(small, one, hn::Mul(d, scale));
    Angle angle = ArctanOfRatio(n, d);
    angle.more = hn::IfThenElse(small, ratio, angle.more);
    const V result = FromOctant(y, x, steep, angle);
    return hn::IfThenElse(hn::Or(hn::IsNaN(x), hn::IsNaN(y)), C(kNaN), result);
  }
};

// ---- Correctly rounded to binary32, of numbers of that type ----

// arctan x = 0, pi/4 or pi/2 and the arctangent of x, (x - 1)/(x + 1) or -1/x, which is below sqrt(2) - 1.
constexpr double kTanOfPiBy8 = 0.41421356237309503;
// The arctangent of q, |q| < sqrt(2) - 1: to 2^-44.
TZM_INLINE V SmallArctan(V q) {
  const V q2 = hn::Mul(q, q);
  return hn::Mul(q, PolynomialInTwo<kAtanPoly32>(q2, hn::Mul(q2, q2)));
}
constexpr Middle kAtanMiddles[] = {{0x1.1a6385p-4, 0x1.1a6386p-4}};
struct Atan32 {
  TZM_INLINE F operator()(F x) const {
    const Halves a = Widen(hn::Abs(x)), y = {OfPositive(a.low), OfPositive(a.high)};
    F angle = NarrowPair(S(), y.low, y.high);
    if (NotAll(IsSureWithin<0x200>(y))) angle = SecondStep<Atan64, kAtanMiddles>(hn::Abs(x));
    return hn::CopySign(angle, x);
  }

 private:
  static TZM_INLINE V OfPositive(V a) {
    const V one = C(1);
    const M steep = hn::Gt(a, C(1 / kTanOfPiBy8)), middle = hn::Gt(a, C(kTanOfPiBy8));
    const V n = hn::IfThenElse(steep, C(-1), hn::IfThenElse(middle, hn::Sub(a, one), a));
    const V d = hn::IfThenElse(steep, a, hn::IfThenElse(middle, hn::Add(a, one), one));
    const V base = hn::IfThenElseZero(middle, hn::IfThenElse(steep, C(kHalfPi[0]), C(kHalfPi[0] / 2)));
    return hn::Add(base, SmallArctan(hn::Div(n, d)));
  }
};

// The same of n/d <= 1, with (n - d)/(n + d) in the middle, and the octants: good to 2^-45 in the first step
// (make/arctangent.gappa).
struct Atan2_32 {
  static TZM_INLINE FirstStep First(V y, V x) {
    const V ay = hn::Abs(y), ax = hn::Abs(x), zero = hn::Zero(D());
    const M steep = hn::Gt(ay, ax), left = hn::Lt(hn::CopySign(C(1), x), zero);
    const V n = hn::IfThenElse(steep, ax, ay), d = hn::IfThenElse(steep, ay, ax);
    const M middle = hn::Gt(n, hn::Mul(d, C(kTanOfPiBy8)));
    const V sign = hn::And(hn::Xor(hn::IfThenElseZero(steep, C(-0.0)), x), C(-0.0));
    const V fromAxis = hn::IfThenElse(steep, C(kHalfPi[0]), hn::IfThenElseZero(left, C(kPi[0])));
    const V base = hn::Add(fromAxis, hn::Or(sign, hn::IfThenElseZero(middle, C(kHalfPi[0] / 2))));
    const V q = hn::Div(hn::IfThenElse(middle, hn::Sub(n, d), n), hn::IfThenElse(middle, hn::Add(n, d), d));
    const V angle = hn::Add(base, hn::Xor(SmallArctan(q), sign));
    return {hn::CopySign(angle, y), hn::AndNot(IsOpenWithin<0x200>(angle), hn::Gt(angle, C(0x1p-120)))};
  }
  // Zeros, infinities and NaN too.
  static __attribute__((noinline)) V Second(V first, V y, V x) {
    const V ay = hn::Abs(y), ax = hn::Abs(x), zero = hn::Zero(D());
    V angle = hn::Abs(first);
    const M left = hn::Lt(hn::CopySign(C(1), x), zero);
    const M flat = hn::Or(hn::Eq(ay, zero), hn::And(hn::IsFinite(ay), hn::IsInf(x)));
    angle = hn::IfThenElse(flat, hn::IfThenElseZero(left, C(kPi[0])), angle);
    const V diagonal = hn::IfThenElse(left, C(1.5 * kHalfPi[0]), C(kHalfPi[0] / 2));
    angle = hn::IfThenElse(hn::And(hn::IsInf(ay), hn::IsInf(ax)), diagonal, angle);
    const M open = hn::And(hn::And(IsOpen(angle), hn::IsFinite(ax)), hn::And(hn::IsFinite(ay), hn::Gt(ay, zero)));
    if (Any(open)) angle = Decided(angle, ay, x, open, DecideAngle);
    return hn::IfThenElse(hn::Or(hn::IsNaN(x), hn::IsNaN(y)), C(kNaN), hn::CopySign(angle, y));
  }
};

}  // namespace vmath
