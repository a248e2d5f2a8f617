// Roots of unity, correctly rounded: from integers by double-double arithmetic, the same on every machine.
#pragma once

#include "lanes.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <numeric>
#include <vector>

namespace tzm::fft {

TZM_INLINE Vec<Full<double>> Fma(Vec<Full<double>> a, Vec<Full<double>> b, Vec<Full<double>> c) {
  return hn::MulAdd(a, b, c);
}
TZM_INLINE Vec<Full<double>> Negated(Vec<Full<double>> a) { return hn::Neg(a); }
TZM_INLINE double Negated(double a) { return -a; }
using tzm::Fma;

// The sum of two binary64 numbers, or of two registers of them, the second being small beside the first.
template <class N>
struct Wide {
  N hi, lo;

  static TZM_INLINE Wide Of(N large, N small) {
    const N hi = large + small;
    return {hi, small - (hi - large)};
  }
};
template <class N>
TZM_INLINE Wide<N> operator+(Wide<N> a, Wide<N> b) {
  const N hi = a.hi + b.hi, part = hi - a.hi;
  const N lost = (a.hi - (hi - part)) + (b.hi - part);
  return Wide<N>::Of(hi, lost + (a.lo + b.lo));
}
template <class N>
TZM_INLINE Wide<N> operator*(Wide<N> a, Wide<N> b) {
  const N hi = a.hi * b.hi;
  return Wide<N>::Of(hi, Fma(a.hi, b.lo, Fma(a.lo, b.hi, Fma(a.hi, b.hi, Negated(hi)))));
}
inline Wide<double> operator/(Wide<double> a, double by) {
  const double inverse = 1 / by, first = a.hi * inverse, rest = Fma(-first, by, a.hi) + a.lo;
  return Wide<double>::Of(first, rest * inverse);
}

// cos + i sin of an angle, and the product of two: the sum of the angles.
template <class N>
struct Turn {
  Wide<N> cos, sin;
};
template <class N>
TZM_INLINE Turn<N> operator*(const Turn<N>& a, const Turn<N>& b) {
  const auto ss = a.sin * b.sin;
  return {a.cos * b.cos + Wide<N>{Negated(ss.hi), Negated(ss.lo)}, a.cos * b.sin + a.sin * b.cos};
}

// The turn by one part in `whole` of a circle, at most an eighth of it, by the Taylor series from the last term.
inline Turn<double> TurnBy(size_t whole) {
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
  return {Wide<double>::Of(cos.hi, cos.lo), x * sin};
}

// To the nearest T: the bits that binary32 drops are first made to tell of what lies below binary64.
template <class T>
T Rounded(double hi, double lo) {
  if constexpr (sizeof(T) == 8) return hi;
  auto bits = std::bit_cast<int64_t>(hi);
  if (lo != 0 && bits % 2 == 0) bits += (lo > 0) == (hi > 0) ? 1 : -1;
  return static_cast<T>(std::bit_cast<double>(bits));
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

// The address of a table of these, which the compiler does not see through: on AArch64 it would give each number that
// it knows a place and an address of its own.
template <class T>
TZM_INLINE const T* Opaque(const T* table) {
#if HWY_ARCH_ARM_A64
  asm("" : "+r"(table));
#endif
  return table;
}

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
      const Turn<Vec<Full<double>>> by = {{hn::Set(d, each.cos.hi), hn::Set(d, each.cos.lo)},
                                          {hn::Set(d, each.sin.hi), hn::Set(d, each.sin.lo)}};
      const size_t count = std::min(fine, eighth_ + 1 - r);
      for (size_t k = 0; k < count; k += hn::Lanes(d)) {
        const auto turn = by * low.Load(d, k);
        HWY_ALIGN double part[4][hn::MaxLanes(d)];
        hn::Store(turn.cos.hi, d, part[0]);
        hn::Store(turn.cos.lo, d, part[1]);
        hn::Store(turn.sin.hi, d, part[2]);
        hn::Store(turn.sin.lo, d, part[3]);
        for (size_t v = 0; v < hn::Lanes(d) && k + v < count; ++v)
          roots_[r + k + v] = {Rounded<T>(part[0][v], part[1][v]), Rounded<T>(part[2][v], part[3][v])};
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
    Turns(size_t count, const Turn<double>& step) : count_(count + hn::MaxLanes(Full<double>())), parts_(4 * count_) {
      Put(0, {{1, 0}, {0, 0}});
      if (count > 1) Put(1, step);
      for (size_t k = 2; k < count; ++k) Put(k, Get(k / 2) * Get(k - k / 2));
    }
    Turn<double> Get(size_t k) const {
      const double* const at = &parts_[k];
      return {{at[0], at[count_]}, {at[2 * count_], at[3 * count_]}};
    }
    template <class D>
    Turn<Vec<D>> Load(D d, size_t k) const {
      const double* const at = &parts_[k];
      return {{hn::LoadU(d, at), hn::LoadU(d, at + count_)},
              {hn::LoadU(d, at + 2 * count_), hn::LoadU(d, at + 3 * count_)}};
    }

   private:
    void Put(size_t k, const Turn<double>& turn) {
      double* const at = &parts_[k];
      at[0] = turn.cos.hi, at[count_] = turn.cos.lo, at[2 * count_] = turn.sin.hi, at[3 * count_] = turn.sin.lo;
    }
    size_t count_;
    std::vector<double> parts_;
  };

  size_t scale_, eighth_;  // j/n of a circle is j * scale_ / eighth_ eighths of it
  std::vector<Number<T>> roots_;
};

}  // namespace tzm::fft
