// The reciprocal estimate of AArch64's vector unit and the step that refines it, with the same bits on
// every machine: some results are defined by these instructions.
#pragma once

#include "frame/vector.h"

namespace tzm {

// 1/x of binary32 lanes to eight bits of fraction: the reciprocal of the middle of the interval of x that
// share their eight leading bits of fraction. Infinite for zero and below 2^-128 in magnitude.
template <class V>
TZM_INLINE V ReciprocalEstimate(V x) {
#if HWY_ARCH_ARM_A64
  return V(vrecpeq_f32(x.raw));
#else
  const hn::DFromV<V> d;
  const hn::RebindToUnsigned<decltype(d)> bits;
  // An exact factor to both x and the result keeps what is between away from subnormal numbers.
  const auto factor = hn::IfThenElse(hn::Lt(hn::Abs(x), hn::Set(d, 1.0f)), hn::Set(d, 4.0f), hn::Set(d, 0.25f));
  const auto leading = hn::And(hn::BitCast(bits, hn::Mul(x, factor)), hn::Set(bits, 0xffff8000));
  const auto middle = hn::BitCast(d, hn::Or(leading, hn::Set(bits, 0x4000)));
  const auto finite = hn::IsFinite(x);
  const auto quotient = hn::Div(hn::Set(d, 1.0f), hn::IfThenElse(finite, middle, x));
  // To nearest; a tie cannot be, since the odd denominator does not divide a power of two.
  const auto rounded = hn::And(hn::Add(hn::BitCast(bits, quotient), hn::Set(bits, 0x4000)), hn::Set(bits, 0xffff8000));
  return hn::IfThenElse(finite, hn::Mul(hn::BitCast(d, rounded), factor), quotient);
#endif
}

// 2 - a*b with one rounding, the factor of a Newton step towards 1/a; 2 where zero meets infinity.
template <class V>
TZM_INLINE V ReciprocalStep(V a, V b) {
#if HWY_ARCH_ARM_A64
  return V(vrecpsq_f32(a.raw, b.raw));
#else
  const hn::DFromV<V> d;
  const auto two = hn::Set(d, 2.0f);
  const auto step = hn::NegMulAdd(a, b, two);
  const auto zeroByInfinity = hn::AndNot(hn::Or(hn::IsNaN(a), hn::IsNaN(b)), hn::IsNaN(step));
  return hn::IfThenElse(zeroByInfinity, two, step);
#endif
}

}  // namespace tzm
