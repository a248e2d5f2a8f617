// The scale rule said plainly, in exact 128-bit integers and in scalar floating arithmetic.
#pragma once

#include <signal_tzm/types.h>

#include <cmath>
#include <limits>

#include "compare.h"
#include "random.h"

namespace tzm_test {

__extension__ typedef __int128 Int128;

template <class T>
T Saturated(Int128 value) {
  using Limits = std::numeric_limits<T>;
  return value > Limits::max() ? Limits::max() : value < Limits::min() ? Limits::min() : static_cast<T>(value);
}

// value * 2^-exponent, to nearest with ties to even, saturated. `value` is below 2^66.
template <class T>
T Scaled(Int128 value, int exponent) {
  if (value == 0 || exponent > 100) return 0;
  if (exponent < -60) return Saturated<T>(value < 0 ? -(Int128{1} << 100) : Int128{1} << 100);
  if (exponent <= 0) return Saturated<T>(value * (Int128{1} << -exponent));
  const Int128 unit = Int128{1} << exponent;
  Int128 quotient = value / unit, rest = value % unit;
  if (rest < 0) rest += unit, --quotient;
  if (2 * rest > unit || (2 * rest == unit && quotient % 2 != 0)) ++quotient;
  return Saturated<T>(quotient);
}

// A complex product before the scale.
struct Exact {
  Int128 re, im;
};
template <class Complex>
Exact Product(Complex a, Complex b) {
  return {Int128{a.re} * b.re - Int128{a.im} * b.im, Int128{a.im} * b.re + Int128{a.re} * b.im};
}
template <class Complex>
Complex Scaled(Exact value, int exponent) {
  using Part = decltype(Complex::re);
  return {Scaled<Part>(value.re, exponent), Scaled<Part>(value.im, exponent)};
}

// A floating value to the nearest integer, ties to even, saturated; NaN gives 0.
template <class T, class F>
T RoundSaturate(F value) {
  using Limits = std::numeric_limits<T>;
  if (value >= static_cast<F>(Limits::max())) return Limits::max();
  if (value <= static_cast<F>(Limits::min())) return Limits::min();
  return value == value ? static_cast<T>(std::nearbyint(value)) : 0;
}

}  // namespace tzm_test
