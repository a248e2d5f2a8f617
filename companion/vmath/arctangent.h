// Arctangents. In binary64 that of a ratio n/d is arctan c + arctan((n - c d)/(d + c n)) with c one of 32.
#pragma once

#include "constants.h"
#include "second_step.h"

namespace vmath {

// arctan(n/d) = most + more + rest, most of 42 fraction bits, the rest so small that its sums' roundings do not count;
// products of n, d and c in range. `near` has the bits of a number near to the ratio: four intervals for each power of
// two of it between 1/16 and 16; the first holds all below, with c = 0, the last all above, with a c beside which n and
// d do not count. The rounding of d - below, which is exact for angles that are not steep, takes 0.04 ulp at most;
// where d is 1, as kOne says, that and c d are exact.
struct Angle {
  V most, more, rest;
};
template <bool kOne = false>
TZM_INLINE Angle ArctanOfRatio(V n, V d, I near) {
  const Bits32 d32;  // of whose lanes every second counts
  const I32 clamped = hn::Min(hn::Max(hn::BitCast(d32, near), hn::Set(d32, 0x3fb00000)), hn::Set(d32, 0x402fffff));
  const auto [c, arcMost, arcMore, arcRest] = Lookup<kAtanTable, 50>(hn::BitCast(Bits(), clamped)).number;

  const V below = Fma(c, n, d), belowRest = Fma(c, n, hn::Sub(d, below)), inverse = hn::Div(C(1), below);
  const V product = kOne ? c : hn::Mul(c, d), above = hn::Sub(n, product), t = hn::Mul(above, inverse);
  V error = Fnma(t, belowRest, Fnma(t, below, above));
  if constexpr (!kOne) error = hn::Sub(error, Fms(c, d, product));
  const V t2 = hn::Mul(t, t), rest = Fma(hn::Mul(t, t2), Polynomial<kAtanPoly>(t2), Fma(error, inverse, arcRest));
  return {hn::Add(arcMost, arcMore), t, rest};
}

// Within 0.56 ulp.
struct Atan64 {
  TZM_INLINE V operator()(V x) const {
    const V a = InOrder(C(0x1p100), hn::Abs(x)).least;  // no angle differs beyond
    const Angle angle = ArctanOfRatio<true>(a, C(1), BitsOf(a));
    const Sum sum = FastTwoSum(angle.most, angle.more);
    return hn::CopySign(hn::Add(sum.sum, hn::Add(sum.rest, angle.rest)), x);
  }
};

// Within 0.58 ulp.
struct Atan2_64 {
  TZM_INLINE V operator()(V y, V x) const {
    const V ay = hn::Abs(y), ax = hn::Abs(x), result = FromQuadrant(y, x, OfQuadrant(ay, ax));
    const auto [least, most] = InOrder(ax, ay);
    const M usual = LessWhere(hn::Gt(least, C(0x1p-240)), most, C(0x1p240));
    if (NotAll(usual)) return hn::IfThenElse(usual, result, OfAny(y, x));
    return result;
  }

 private:
  static TZM_INLINE Angle OfQuadrant(V ay, V ax) {
    return ArctanOfRatio(ay, ax, hn::Sub(BitsOf(ay), hn::Sub(BitsOf(ax), BitsOf(C(1)))));
  }
  // On the left from the other side.
  static TZM_INLINE V FromQuadrant(V y, V x, Angle angle) {
    const V left = OfBits(hn::BroadcastSignBit(BitsOf(x))), sign = hn::And(left, C(-0.0));
    const V base = hn::And(left, C(kPiShort[0])), baseRest = hn::And(left, C(kPiShort[1]));
    const Sum sum = FastTwoSum(hn::Add(base, hn::Xor(angle.most, sign)), hn::Xor(angle.more, sign));
    return hn::CopySign(hn::Add(sum.sum, hn::Add(sum.rest, hn::Add(baseRest, hn::Xor(angle.rest, sign)))), y);
  }
  // Numbers near the ends of the range are scaled; of ratios below 2^-60 the angle is the ratio, rounded once.
  static __attribute__((noinline)) V OfAny(V y, V x) {
    const V one = C(1), zero = hn::Zero(D());
    V ay = hn::Abs(y), ax = hn::Abs(x);
    const M bothInfinite = hn::And(hn::IsInf(ay), hn::IsInf(ax)), bothZero = hn::Eq(hn::Add(ay, ax), zero);
    ay = hn::IfThenElse(bothInfinite, one, ay);
    ax = hn::IfThenElse(hn::Or(bothInfinite, bothZero), one, ax);
    const M steep = hn::Gt(ay, ax);
    const V n = hn::IfThenElse(steep, ax, ay), d = hn::IfThenElse(steep, ay, ax), ratio = hn::Div(n, d);
    const V up = hn::IfThenElse(hn::Lt(d, C(0x1p-300)), C(0x1p600), one);
    const V scale = hn::IfThenElse(hn::Ge(d, C(0x1p300)), C(0x1p-700), up);
    const M small = hn::Lt(ratio, C(0x1p-60));
    ay = hn::IfThenElse(small, hn::IfThenElseZero(steep, one), hn::Mul(ay, scale));
    ax = hn::IfThenElse(small, hn::IfThenZeroElse(steep, one), hn::Mul(ax, scale));
    Angle angle = OfQuadrant(ay, ax);
    angle.more = hn::IfThenElse(hn::AndNot(steep, small), ratio, angle.more);
    const V result = FromQuadrant(y, x, angle);
    return hn::IfThenElse(hn::Or(hn::IsNaN(x), hn::IsNaN(y)), C(kNaN), result);
  }
};

// ---- Correctly rounded to binary32, of numbers of that type ----

// arctan x = 0, pi/4 or pi/2 and the arctangent of x, (x - 1)/(x + 1) or -1/x, which is below sqrt(2) - 1.
constexpr double kTanOfPiBy8 = 0.41421356237309503;
// The arctangent of q, |q| < sqrt(2) - 1, and an angle to which it is added: to 2^-44.
TZM_INLINE V AddArctan(V base, V q) {
  const V q2 = hn::Mul(q, q);
  return Fma(q, PolynomialInTwo<kAtanPoly32>(q2, hn::Mul(q2, q2)), base);
}
constexpr Middle kAtanMiddles[] = {{0x1.1a6385p-4, 0x1.1a6386p-4}};
struct Atan32 : InStages<Atan32> {
  struct Part {
    V base, q;
    TZM_INLINE V Angle() const { return AddArctan(base, q); }
  };
  struct Stage {
    Part low, high;
  };
  static TZM_INLINE Stage Begin(F x) {
    const Halves a = Widen(hn::Abs(x));
    return {OfPositive(a.low), OfPositive(a.high)};
  }
  static TZM_INLINE F End(F x, const Stage& stage) {
    const Halves y = {stage.low.Angle(), stage.high.Angle()};
    F angle = NarrowPair(S(), y.low, y.high);
    if (AnyOpen<0x200>(y)) angle = SecondStep<Atan64, kAtanMiddles>(hn::Abs(x));
    return hn::CopySign(angle, x);
  }

 private:
  static TZM_INLINE Part OfPositive(V a) {
    const V one = C(1);
    const M steep = hn::Gt(a, C(1 / kTanOfPiBy8)), middle = hn::Gt(a, C(kTanOfPiBy8));
    const V n = SubWhere(middle, hn::IfThenZeroElse(steep, a), one);
    const V d = AddWhere(middle, hn::IfThenZeroElse(steep, one), a);
    const V base = hn::IfThenElse(steep, C(kHalfPi[0]), hn::IfThenElseZero(middle, C(kHalfPi[0] / 2)));
    return {base, hn::Div(n, d)};
  }
};

// The same of n/d <= 1, the lesser by the greater of |y| and |x|, with (n - d)/(n + d) in the middle: good to 2^-45 in
// the first step (make/arctangent.gappa). The angle is that of n/d, less as many pi/2 as tells the octant: up to the
// sign.
struct Atan2_32 {
  static constexpr uint32_t kUnits = 0x200;
  static TZM_INLINE F First(F y, F x, V& low, V& high, M32& holds) {
    const F ay = hn::Abs(y), ax = hn::Abs(x), one = C32(1), side = hn::CopySign(one, x);
    const auto [least, most] = InOrder(ay, ax);
    const Halves n = Widen(least), d = Widen(most);
    const Halves count = Widen(hn::IfThenElse(hn::Gt(ay, ax), side, hn::Sub(one, side)));
    const auto angle = [](V n, V d, V count) TZM_LAMBDA {
      const M middle = hn::Gt(n, hn::Mul(d, C(kTanOfPiBy8)));
      const V q = hn::Div(SubWhere(middle, n, d), AddWhere(middle, d, n));
      return Fnma(count, C(kHalfPi[0]), AddArctan(hn::IfThenElseZero(middle, C(kHalfPi[0] / 2)), q));
    };
    low = angle(n.low, d.low, count.low), high = angle(n.high, d.high, count.high);
    const F rounded = NarrowPair(S(), low, high);
    holds = AbsGreater(rounded, C32(0x1p-120f));
    return hn::CopySign(rounded, y);
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
