// Minimum and maximum with one meaning on every architecture.
#pragma once

#include "frame/vector/base.h"

namespace tzm {

// `b` where `a` is NaN or the comparison fails: the second operand wins ties of signed zeros too.
template <class V>
TZM_INLINE V MinOrSecond(V a, V b) {
#if HWY_ARCH_X86
  return hn::Min(a, b);
#else
  return hn::IfThenElse(hn::Lt(a, b), a, b);
#endif
}
template <class V>
TZM_INLINE V MaxOrSecond(V a, V b) {
#if HWY_ARCH_X86
  return hn::Max(a, b);
#else
  return hn::IfThenElse(hn::Gt(a, b), a, b);
#endif
}
// The larger of a magnitude, which starts at +0, and another; NaN where either is NaN.
template <class V>
TZM_INLINE V MaxMagnitude(V best, V magnitude) {
#if HWY_ARCH_X86  // as integers magnitudes keep their order; NaN, less its sign, stands above infinity
  const hn::DFromV<V> d;
  const hn::RebindToSigned<decltype(d)> bits;
  return hn::BitCast(d, hn::Max(hn::BitCast(bits, best), hn::BitCast(bits, hn::Abs(magnitude))));
#else
  if constexpr (sizeof(hn::TFromV<V>) == 4) return V(vmaxq_f32(best.raw, magnitude.raw));
  else return V(vmaxq_f64(best.raw, magnitude.raw));
#endif
}

// AArch64's own: NaN where either operand is NaN, and -0 below +0.
template <class V>
TZM_INLINE V MinOrNaN(V a, V b) {
#if HWY_ARCH_X86
  const auto least = hn::IfThenElse(hn::Eq(a, b), hn::Or(a, b), hn::Min(a, b));
  return hn::IfThenElse(hn::Or(hn::IsNaN(a), hn::IsNaN(b)), hn::Add(a, b), least);
#else
  if constexpr (sizeof(hn::TFromV<V>) == 4) return V(vminq_f32(a.raw, b.raw));
  else return V(vminq_f64(a.raw, b.raw));
#endif
}
template <class V>
TZM_INLINE V MaxOrNaN(V a, V b) {
#if HWY_ARCH_X86
  const auto most = hn::IfThenElse(hn::Eq(a, b), hn::And(a, b), hn::Max(a, b));
  return hn::IfThenElse(hn::Or(hn::IsNaN(a), hn::IsNaN(b)), hn::Add(a, b), most);
#else
  if constexpr (sizeof(hn::TFromV<V>) == 4) return V(vmaxq_f32(a.raw, b.raw));
  else return V(vmaxq_f64(a.raw, b.raw));
#endif
}

}  // namespace tzm
