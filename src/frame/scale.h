// The scale rule: a scale becomes a power of two, its mantissa dropped; a result is multiplied by the
// reciprocal power once, rounded to nearest with ties to even, and saturated.
#pragma once

#include "frame/vector.h"

#include <cmath>

namespace tzm {

// log2(scale) truncated toward zero: 3.0 gives 1, 0.3 gives -1, everything between 0.5 and 2 gives 0.
inline int ScaleExponent(double scale) {
  int exponent;
  const double mantissa = frexp(scale, &exponent);  // in [0.5, 1)
  return exponent > 0 || mantissa == 0.5 ? exponent - 1 : exponent;
}

// 2^-exponent: above 1 the scale shrinks, below 1 it enlarges. Infinite for the smallest scales.
inline double ScaleFactor(int exponent) { return pow(2.0, -exponent); }

// The same in binary32, for quotients of integers. They lie within 2^32 of 1, so that beyond 2^64 either
// way they are 0 or saturate; there the factor stays, and infinity times it is never a NaN.
inline float QuotientFactor(double scale) {
  return static_cast<float>(ScaleFactor(HWY_MAX(-64, HWY_MIN(ScaleExponent(scale), 64))));
}

// Rounds one value to the nearest integer, ties to even, and saturates it to the range of T; NaN gives
// 0. The bounds are those of T as values of F.
template <class T, class F>
TZM_INLINE T RoundSaturate(F value) {
  using Limits = std::numeric_limits<T>;
  if (value >= static_cast<F>(Limits::max())) return Limits::max();
  if (value <= static_cast<F>(Limits::min())) return Limits::min();
  if (value != value) return 0;
  const hn::CappedTag<F, 1> one;
  return static_cast<T>(hn::GetLane(hn::Round(hn::Set(one, value))));
}

}  // namespace tzm
