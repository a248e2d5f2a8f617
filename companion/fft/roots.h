// Roots of unity, correctly rounded: from integers by double-double arithmetic, the same on every machine.
#pragma once

#include "wide.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <numeric>
#include <vector>

namespace tzm::fft {

// cos + i sin of one part in `whole` of a circle, at most an eighth of it, by the Taylor series from the last term.
inline Number<Wide<double>> TurnBy(size_t whole) {
  const Wide<double> circle = {0x1.921fb54442d18p+2, 0x1.1a62633145c07p-52};
  const Wide<double> x = circle / static_cast<double>(whole), square = x * x;
  // 1 + q v for a small q. The parts wait for each other in the end only.
  const auto onePlus = [](Wide<double> q, Wide<double> v) {
    const double product = q.hi * v.hi, hi = 1 + product;
    const double lost = product - (hi - 1), below = Fma(q.hi, v.hi, -product) + Fma(q.hi, v.lo, q.lo * v.hi);
    return Wide<double>{hi, lost + below};
  };
  Wide<double> cos = {1, 0}, sin = cos;
#pragma GCC unroll 14
  for (int k = 28; k >= 2; k -= 2) {
    cos = onePlus(square / (-k * (k - 1)), cos);  // nothing waits for the quotients
    sin = onePlus(square / (-k * (k + 1)), sin);
  }
  return {cos, x * sin};
}

// To the nearest T: the bits that binary32 drops are first made to tell of what lies below binary64.
template <class T>
T Rounded(Wide<double> x) {
  x = Normalized(x);
  if constexpr (std::is_same_v<T, Wide<double>>) {
    return x;
  } else {
    auto bits = std::bit_cast<int64_t>(x.hi);
    if (sizeof(T) < 8 && x.lo != 0 && bits % 2 == 0) bits += (x.lo > 0) == (x.hi > 0) ? 1 : -1;
    return static_cast<T>(std::bit_cast<double>(bits));
  }
}

// exp(-2 pi i j / n) from its octant and the turn by the rest of j/n, at most an eighth of the circle: counted from the
// octant's beginning where that is a whole number of quarters, else back from its end. All of this is exact. A zero
// part is that of the turn by nothing, +0, or its negative: 1 is (1, -0), -i is (-0, -1).
template <class T>
constexpr Number<T> InOctant(size_t octant, Number<T> turn) {
  const T cos = turn.re, sin = octant % 2 == 0 ? turn.im : -turn.im;
  switch ((octant + 1) / 2 % 4) {
    case 0: return {cos, -sin};
    case 1: return {-sin, -cos};
    case 2: return {-cos, sin};
    default: return {sin, cos};
  }
}

#if defined(__SIZEOF_FLOAT128__)
__extension__ typedef __float128 Quad;
#else
using Quad = long double;
#endif

// exp(-2 pi i j / n) for the compiler.
template <class T, size_t n>
struct KnownRoots {
  constexpr Number<T> operator()(size_t j) const {
    const size_t octant = 8 * j / n, rest = octant % 2 == 0 ? 8 * j - octant * n : (octant + 1) * n - 8 * j;
    const Quad eighth = Quad(0x1.921fb54442d18p-1) + Quad(0x1.1a62633145c07p-55) + Quad(-0x1.f1976b7ed8fbcp-111);
    const Quad x = eighth * static_cast<Quad>(rest) / static_cast<Quad>(n);
    Quad cos = 1, sin = 1;
    for (int k = 28; k >= 2; k -= 2) {
      cos = 1 - x * x * cos / (k * (k - 1));
      sin = 1 - x * x * sin / (k * (k + 1));
    }
    return InOctant<T>(octant, {static_cast<T>(cos), static_cast<T>(x * sin)});
  }
};

// exp(-2 pi i j / n) for all j. An eighth of the circle is stored.
template <class T>
class Roots {
 public:
  explicit Roots(size_t n) : scale_(8 / std::gcd(size_t{8}, n)), eighth_(n * scale_ / 8), roots_(eighth_ + 1) {
    // A turn is the product of a coarse and a fine one, and these are products of their halves.
    int bits = 0;
    while ((size_t{1} << 2 * bits) <= eighth_) ++bits;
    const size_t fine = size_t{1} << bits, whole = n * scale_;
    const Turns low(fine + 1, TurnBy(whole)), high(eighth_ / fine + 1, low.Get(fine));
    const Full<double> d;
    for (size_t r = 0; r <= eighth_; r += fine) {
      const auto each = high.Get(r / fine);
      const auto by = FromLanes(d, [&](size_t) { return each; });
      const size_t count = std::min(fine, eighth_ + 1 - r);
      for (size_t k = 0; k < count; k += hn::Lanes(d)) {
        ForEachLane(by * low.Load(d, k), [&](size_t lane, const auto& turn) {
          if (k + lane < count) roots_[r + k + lane] = {Rounded<T>(turn.re), Rounded<T>(turn.im)};
        });
      }
    }
  }

  Number<T> operator()(size_t j) const {
    const size_t units = j * scale_, octant = units / eighth_;
    const Number<T> turn = roots_[octant % 2 == 0 ? units - octant * eighth_ : (octant + 1) * eighth_ - units];
    return InOctant(octant, turn);
  }

 private:
  // The powers of a turn, from 0 on.
  class Turns {
   public:
    Turns(size_t count, const Number<Wide<double>>& step)
        : count_(count + hn::MaxLanes(Full<double>())), parts_(4 * count_) {
      Put(0, {{1, 0}, {0, 0}});
      if (count > 1) Put(1, step);
      for (size_t k = 2; k < count; ++k) Put(k, Get(k / 2) * Get(k - k / 2));
    }
    Number<Wide<double>> Get(size_t k) const { return GetParts(&parts_[k], count_); }
    template <class D>
    Number<Wide<Vec<D>>> Load(D d, size_t k) const {
      return GetParts(d, &parts_[k], count_);
    }

   private:
    void Put(size_t k, const Number<Wide<double>>& turn) { PutParts(Normalized(turn), &parts_[k], count_); }
    size_t count_;
    std::vector<double> parts_;
  };

  size_t scale_, eighth_;  // j/n of a circle is j * scale_ / eighth_ eighths of it
  std::vector<Number<T>> roots_;
};

}  // namespace tzm::fft
