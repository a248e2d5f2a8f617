// The modified Bessel function I0 in binary64, by its power series: what a Kaiser window is made of.
#pragma once

#include "frame/vector.h"

namespace tzm {

// The largest argument whose I0 is finite by a margin; from 714 on the sum overflows.
constexpr double kBesselI0Limit = 713;

// 1 + sum over k of t(k) with t(0) = 1 and t(k) = t(k - 1) * ((x/2)^2 / k^2), until no sum changes any more; a
// NaN counts as unchanged. The terms of a lane that stands still only shrink, so it does not matter how long
// other lanes keep it going. A finite sum stands still after 472 terms at most; the bound is for a caller who
// rounds upward, in whose sums every term, however small, counts.
template <class D>
TZM_INLINE Vec<D> BesselI0(D d, Vec<D> x) {
  const auto half = hn::Mul(x, hn::Set(d, 0.5)), square = hn::Mul(half, half);
  auto sum = hn::Set(d, 1.0), term = sum, last = sum;
  constexpr double kMostTerms = 512;
  double k = 0;
  do {
    ++k;
    last = sum;
    term = hn::Mul(term, hn::Div(square, hn::Set(d, k * k)));
    sum = hn::Add(sum, term);
  } while (k < kMostTerms && !hn::AllTrue(d, hn::Or(hn::Eq(sum, last), hn::IsNaN(sum))));
  return sum;
}

}  // namespace tzm
