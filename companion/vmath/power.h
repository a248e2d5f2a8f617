// x^y = e^(y ln x), the logarithm and the product in two parts.
#pragma once

#include "exp.h"
#include "log.h"
#include "second_step.h"

namespace vmath {

// ln x, x as IsForLog(), less shift ln 2: to 2^-67 of it.
TZM_INLINE Sum LogInTwo(V x, V shift) {
  const LogArgument a = SplitForLog(x);
  const V k = hn::Sub(a.k, shift);
  const auto [inverse, log] = Lookup<kLogTable, kLogIndex>(a.index).number;
  const auto [logRest] = Lookup<kLogRest, kLogIndex>(a.index).number;
  const V product = hn::Mul(a.fraction, inverse);
  const Sum r = FastTwoSum(hn::Sub(product, C(1)), Fms(a.fraction, inverse, product));

  const V square = hn::Mul(r.sum, r.sum), squareRest = Fma(hn::Add(r.sum, r.sum), r.rest, Fms(r.sum, r.sum, square));
  const V cube = hn::Mul(square, r.sum);
  const V cubeRest = Fma(square, r.rest, Fma(squareRest, r.sum, Fms(square, r.sum, cube)));
  const V third = hn::Mul(cube, C(kThird[0]));
  const V thirdRest = Fma(cubeRest, C(kThird[0]), Fma(cube, C(kThird[1]), Fms(cube, C(kThird[0]), third)));
  const V others = hn::Mul(hn::Mul(cube, r.sum), PolynomialInTwo<kPowLogPoly>(r.sum, square));

  const Sum first = FastTwoSum(Fma(k, C(kLn2[0]), log), r.sum);
  const Sum second = FastTwoSum(first.sum, hn::Mul(square, C(-0.5))), sum = FastTwoSum(second.sum, third);
  const V rests = hn::Add(hn::Add(first.rest, second.rest), hn::Add(sum.rest, r.rest));
  const V constants = Fma(k, C(kLn2[1]), logRest), series = hn::Add(Fnma(squareRest, C(0.5), thirdRest), others);
  return FastTwoSum(sum.sum, hn::Add(rests, hn::Add(constants, series)));
}

// The same to 2^-56 of it, of numbers of binary32.
TZM_INLINE Sum LogInTwo32(V x) {
  const LogArgument a = SplitForLog(x);
  const auto [inverse, log] = Lookup<kLogTable, kLogIndex>(a.index).number;
  const V r = Fms(a.fraction, inverse, C(1)), r2 = hn::Mul(r, r);
  const Sum sum = FastTwoSum(Fma(a.k, C(kLn2[0]), log), r);
  return FastTwoSum(sum.sum, Fma(r2, PolynomialInTwo<kLogPoly>(r, r2), Fma(a.k, C(kLn2[1]), sum.rest)));
}

TZM_INLINE Sum Times(V y, Sum log) {
  const V product = hn::Mul(y, log.sum);
  return {product, Fma(y, log.rest, Fms(y, log.sum, product))};
}

// What x^y is beside `power` = |x|^y: signs, and the cases that the logarithm does not see.
TZM_INLINE V PowerOfAny(V x, V y, V power) {
  const V one = C(1), zero = hn::Zero(D()), half = hn::Mul(y, C(0.5));
  const M odd = hn::And(hn::And(hn::Eq(hn::Round(y), y), hn::Ne(hn::Round(half), half)), hn::Lt(hn::Abs(y), C(0x1p53)));
  const M noInteger = hn::Ne(hn::Round(y), y), negative = hn::Lt(x, zero);
  V result = hn::IfThenElse(hn::And(negative, hn::And(hn::IsFinite(x), noInteger)), C(kNaN), power);
  result = hn::IfThenElse(odd, hn::CopySign(result, x), result);
  result = hn::IfThenElse(hn::And(hn::Eq(x, C(-1)), hn::IsInf(y)), one, result);
  result = hn::IfThenElse(hn::Or(hn::IsNaN(x), hn::IsNaN(y)), C(kNaN), result);
  return hn::IfThenElse(hn::Or(hn::Eq(x, one), hn::Eq(y, zero)), one, result);
}
// y ln |x| where |x| or y has no finite logarithm or product: an infinity of the right sign.
TZM_INLINE Sum ProductOfAny(V a, V y, Sum log) {
  const V infinite = hn::IfThenElse(hn::Eq(a, hn::Zero(D())), C(-kInfinity), hn::IfThenElse(hn::IsInf(a), a, log.sum));
  const V product = hn::Mul(y, infinite);
  const Sum usual = Times(y, log);
  const M far = hn::Not(hn::Lt(hn::Abs(product), C(1000)));
  return {hn::IfThenElse(far, product, usual.sum), hn::IfThenZeroElse(far, usual.rest)};
}

// Within 0.56 ulp.
struct Pow64 {
  TZM_INLINE V operator()(V x, V y) const {
    const Sum product = Times(y, LogInTwo(x, hn::Zero(D())));
    const V power = ExpParts(product.sum, product.rest).Normal();
    const M usual = LessWhere(IsForLog(x), hn::Abs(product.sum), C(kExpNormal));
    if (NotAll(usual)) return hn::IfThenElse(usual, power, OfAny(x, y));
    return power;
  }

 private:
  static __attribute__((noinline)) V OfAny(V x, V y) {
    const V a = hn::Abs(x);
    const M small = hn::Lt(a, C(kLeastForLog));
    const V scaled = hn::IfThenElse(small, hn::Mul(a, C(0x1p54)), a);
    const Sum product = ProductOfAny(a, y, LogInTwo(scaled, hn::IfThenElseZero(small, C(54))));
    return PowerOfAny(x, y, ExpOfAny(product.sum, product.rest));
  }
};

// Correctly rounded to binary32, of numbers of that type: the first step is good to 2^-49 (make/logarithm.gappa); one
// power in a million goes to the second.
struct Pow32 {
  static constexpr int kUnits = 0x100;
  static TZM_INLINE F First(F x, F y, V& low, V& high, M32& holds) {
    const Halves a = Widen(x), b = Widen(y);
    const auto power = [](V x, V y, V& product) TZM_LAMBDA {
      const Sum both = Times(y, LogInTwo32(x));
      product = both.sum;
      return ExpParts(both.sum, both.rest).Normal();
    };
    V lowProduct, highProduct;
    low = power(a.low, b.low, lowProduct);
    high = power(a.high, b.high, highProduct);
    // Of greater logarithms results may be no normal numbers of binary32.
    holds = hn::And(IsPositiveNormal(x), WordsBelow({lowProduct, highProduct}, 87));
    return NarrowPair(S(), low, high);
  }
  static __attribute__((noinline)) V Second(V, V x, V y) {
    const V a = hn::Abs(x);
    const Sum product = ProductOfAny(a, y, LogInTwo32(a));
    V power = ExpOfAny(product.sum, product.rest);
    const M open = hn::And(IsOpen(power), hn::Lt(hn::Abs(product.sum), C(110)));
    if (Any(open)) power = Decided(power, a, y, open, DecidePower);
    return PowerOfAny(x, y, power);
  }
};

}  // namespace vmath
