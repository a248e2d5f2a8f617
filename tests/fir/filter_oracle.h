// The plainest statement of the streaming filters' arithmetic, in the order of their contract.
#pragma once

#include <signal_tzm/types.h>

#include <cmath>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace tzm_test {

// What a tap type and a sample type are summed in.
template <class Sample>
struct WideOf { using Type = Sample; };
template <> struct WideOf<Orva16s> { using Type = Orva32f; };
template <> struct WideOf<Orva16sc> { using Type = Orva32fc; };
template <class Sample>
using Wide = typename WideOf<Sample>::Type;

inline Orva32f Widen(Orva16s x) { return x; }
inline Orva32fc Widen(Orva16sc x) { return {static_cast<float>(x.re), static_cast<float>(x.im)}; }
template <class T>
T Widen(T x) { return x; }

// One tap of a strict chain of fused steps.
template <class Tap, class Sum>
void Fuse(Tap tap, Sum x, Sum& sum) {
  if constexpr (std::is_floating_point_v<Sum>) {
    sum = std::fma(tap, x, sum);
  } else if constexpr (std::is_floating_point_v<Tap>) {
    sum = {std::fma(tap, x.re, sum.re), std::fma(tap, x.im, sum.im)};
  } else {
    sum.re = std::fma(-tap.im, x.im, std::fma(tap.re, x.re, sum.re));
    sum.im = std::fma(tap.im, x.re, std::fma(tap.re, x.im, sum.im));
  }
}

// To nearest, ties to even, saturated; NaN gives `nan`.
inline Orva16s Round(float value, Orva16s nan) {
  if (std::isnan(value)) return nan;
  if (value >= 32767.0f) return 32767;
  if (value <= -32768.0f) return -32768;
  return static_cast<Orva16s>(std::nearbyint(value));
}
inline Orva16s NanToZero(float value) { return Round(value, 0); }
inline Orva16s NanBySign(float value) { return Round(value, std::signbit(value) ? -32768 : 32767); }

template <class Sample, Orva16s (*kRound)(float)>
Sample Narrow(Wide<Sample> value) {
  if constexpr (std::is_same_v<Sample, Orva16s>) return kRound(value);
  else if constexpr (std::is_same_v<Sample, Orva16sc>) return {kRound(value.re), kRound(value.im)};
  else return value;
}

// The signal behind and in front of a call's first sample.
template <class T>
std::vector<T> Join(const std::vector<T>& before, const std::vector<T>& after) {
  std::vector<T> all = before;
  all.insert(all.end(), after.begin(), after.end());
  return all;
}

}  // namespace tzm_test
