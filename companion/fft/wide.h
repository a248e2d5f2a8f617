// Double-double arithmetic, on one number and on registers of them: some 100 bits, for tables.
#pragma once

#include "lanes.h"

namespace tzm::fft {

using tzm::Fma;
template <class V, class = hn::TFromV<V>>
TZM_INLINE V Fma(V a, V b, V c) {
  return hn::MulAdd(a, b, c);
}
template <class V, class = hn::TFromV<V>>
TZM_INLINE V Fms(V a, V b, V c) {
  return hn::MulSub(a, b, c);
}
TZM_INLINE double Fms(double a, double b, double c) { return Fma(a, b, -c); }

// The sum of two. Of what an operation gives, the lower part may reach into the last bits of the upper one; where many
// follow upon each other that has to be put right.
template <class N>
struct Wide {
  N hi, lo;
};
template <class N>
TZM_INLINE Wide<N> operator+(Wide<N> a, Wide<N> b) {
  const N hi = a.hi + b.hi, part = hi - a.hi;
  const N lost = (a.hi - (hi - part)) + (b.hi - part);
  return {hi, lost + (a.lo + b.lo)};
}
template <class N>
TZM_INLINE Wide<N> operator-(Wide<N> a, Wide<N> b) {
  const N hi = a.hi - b.hi, part = hi - a.hi;
  const N lost = (a.hi - (hi - part)) - (b.hi + part);
  return {hi, lost + (a.lo - b.lo)};
}
template <class N>
TZM_INLINE Wide<N> operator*(Wide<N> a, Wide<N> b) {
  const N hi = a.hi * b.hi;
  return {hi, Fma(a.hi, b.lo, Fma(a.lo, b.hi, Fms(a.hi, b.hi, hi)))};
}
// With the nearest binary64 number as the upper part.
inline Wide<double> Normalized(Wide<double> x) {
  const double hi = x.hi + x.lo;
  return {hi, x.lo - (hi - x.hi)};
}
constexpr Wide<double> operator-(Wide<double> a) { return {-a.hi, -a.lo}; }
inline Wide<double> operator/(Wide<double> a, double by) {
  const double inverse = 1 / by, first = a.hi * inverse, rest = Fma(-first, by, a.hi) + a.lo;
  return {first, rest * inverse};
}

template <class N>
TZM_INLINE Number<Wide<N>> operator+(const Number<Wide<N>>& a, const Number<Wide<N>>& b) {
  return {a.re + b.re, a.im + b.im};
}
template <class N>
TZM_INLINE Number<Wide<N>> operator-(const Number<Wide<N>>& a, const Number<Wide<N>>& b) {
  return {a.re - b.re, a.im - b.im};
}
template <class N>
TZM_INLINE Number<Wide<N>> operator*(Wide<N> a, const Number<Wide<N>>& b) {
  return {a * b.re, a * b.im};
}
template <class N>
TZM_INLINE Number<Wide<N>> operator*(const Number<Wide<N>>& a, const Number<Wide<N>>& b) {
  return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

inline Number<Wide<double>> Normalized(const Number<Wide<double>>& x) { return {Normalized(x.re), Normalized(x.im)}; }

// Its four parts, each `apart` from the one before: of one number, or of a register of them.
TZM_INLINE Number<Wide<double>> GetParts(const double* from, size_t apart) {
  return {{from[0], from[apart]}, {from[2 * apart], from[3 * apart]}};
}
template <class D>
TZM_INLINE Number<Wide<Vec<D>>> GetParts(D d, const double* from, size_t apart) {
  const auto part = [&](size_t p) TZM_LAMBDA { return hn::LoadU(d, from + p * apart); };
  return {{part(0), part(1)}, {part(2), part(3)}};
}
TZM_INLINE void PutParts(const Number<Wide<double>>& x, double* to, size_t apart) {
  to[0] = x.re.hi, to[apart] = x.re.lo, to[2 * apart] = x.im.hi, to[3 * apart] = x.im.lo;
}
template <class V>
TZM_INLINE void PutParts(const Number<Wide<V>>& x, double* to, size_t apart) {
  const hn::DFromV<V> d;
  hn::StoreU(x.re.hi, d, to);
  hn::StoreU(x.re.lo, d, to + apart);
  hn::StoreU(x.im.hi, d, to + 2 * apart);
  hn::StoreU(x.im.lo, d, to + 3 * apart);
}
// The numbers f(lane) in a register, and f(lane, number) for those of one.
template <class D>
TZM_INLINE Number<Wide<Vec<D>>> FromLanes(D d, auto&& f) {
  double parts[4 * kLanes<D>];
  for (size_t lane = 0; lane < kLanes<D>; ++lane) PutParts(f(lane), parts + lane, kLanes<D>);
  return GetParts(d, parts, kLanes<D>);
}
template <class V>
TZM_INLINE void ForEachLane(const Number<Wide<V>>& x, auto&& f) {
  constexpr size_t kLane = kLanes<hn::DFromV<V>>;
  double parts[4 * kLane];
  PutParts(x, parts, kLane);
  for (size_t lane = 0; lane < kLane; ++lane) f(lane, GetParts(parts + lane, kLane));
}

}  // namespace tzm::fft
