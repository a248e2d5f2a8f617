// The scale rule said plainly, in exact 128-bit integers and in scalar floating arithmetic; results within a bound.
#pragma once

#include <signal_tzm/types.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tzm_test {

__extension__ typedef __int128 Int128;

template <class T>
T Saturated(Int128 value) {
  using Limits = std::numeric_limits<T>;
  return value > Limits::max() ? Limits::max() : value < Limits::min() ? Limits::min() : static_cast<T>(value);
}

enum class Ties { kTruncate, kToEven, kAway };

// numerator / denominator * 2^-exponent, to nearest unless it is to be truncated, saturated; by zero the nearest
// end, or 0. `numerator` is below 2^66, and below 2^33 where `denominator` is not 1.
template <class T>
T Quotient(Int128 numerator, Int128 denominator, int exponent, Ties ties = Ties::kToEven) {
  const auto magnitude = [](Int128 x) { return x < 0 ? -x : x; };
  if (denominator == 0) return Saturated<T>(numerator << 60);
  if (exponent < -60 && denominator == 1) return Saturated<T>(numerator << 60);
  const Int128 n = magnitude(numerator) << std::min(70, std::max(-exponent, 0));
  const Int128 d = magnitude(denominator) << std::min(70, std::max(exponent, 0));
  Int128 quotient = n / d;
  const Int128 twice = 2 * (n % d);
  if (ties == Ties::kToEven && (twice > d || (twice == d && quotient % 2 != 0))) ++quotient;
  if (ties == Ties::kAway && twice >= d) ++quotient;
  return Saturated<T>((numerator < 0) != (denominator < 0) ? -quotient : quotient);
}
template <class T>
T Scaled(Int128 value, int exponent) {
  return Quotient<T>(value, 1, exponent);
}

// A complex product before the scale.
struct Exact { Int128 re, im; };
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

// The actual result where it is within so many units of the last place of the exact one, else that.
template <class T>
T Near(T actual, long double exact, double ulps) {
  using Limits = std::numeric_limits<T>;
  const T rounded = static_cast<T>(exact);
  if (!std::isfinite(rounded) || !std::isfinite(actual) || exact == 0) return rounded;
  const int exponent = std::max(std::ilogb(exact), Limits::min_exponent - 1) + 1 - Limits::digits;
  return std::fabs(actual - exact) <= std::ldexp(static_cast<long double>(ulps), exponent) ? actual : rounded;
}

}  // namespace tzm_test
