// Butterflies, and the passes that take an array through one or several levels of the graph. docs/transforms.md has
// the graph: what is computed is told there, the order in which it is done here.
#pragma once

#include "lanes.h"

#include <algorithm>

namespace tzm::fft {

template <class D>
TZM_INLINE Cx<D> Product(const Cx<D>& w, const Cx<D>& x) {
  return {hn::NegMulAdd(w.im, x.im, hn::Mul(w.re, x.re)), hn::MulAdd(w.im, x.re, hn::Mul(w.re, x.im))};
}
// The same by -i w.
template <class D>
TZM_INLINE Cx<D> QuarterProduct(const Cx<D>& w, const Cx<D>& x) {
  return {hn::MulAdd(w.re, x.im, hn::Mul(w.im, x.re)), hn::NegMulAdd(w.re, x.re, hn::Mul(w.im, x.im))};
}
// a, b <- a + t, a - t, where t is b itself, -i b, or what is given.
template <class D>
TZM_INLINE void Combine(Cx<D>& a, Cx<D>& b, const Cx<D>& t) {
  const Cx<D> sum = {hn::Add(a.re, t.re), hn::Add(a.im, t.im)};
  b = {hn::Sub(a.re, t.re), hn::Sub(a.im, t.im)};
  a = sum;
}
template <class D>
TZM_INLINE void Combine(Cx<D>& a, Cx<D>& b) {
  Combine(a, b, Cx<D>(b));
}
template <class D>
TZM_INLINE void CombineQuarter(Cx<D>& a, Cx<D>& b) {
  const Cx<D> sum = {hn::Add(a.re, b.im), hn::Sub(a.im, b.re)};
  b = {hn::Sub(a.re, b.im), hn::Add(a.im, b.re)};
  a = sum;
}

// 2^L points as L levels of radix 2. They are read in the order of reversed bits.
template <size_t L>
struct PowerOfTwo {
  static constexpr size_t kRadix = size_t{1} << L;
  static constexpr size_t kTwiddles = kRadix / 2;

  static constexpr size_t From(size_t i) {
    size_t reversed = 0;
    for (size_t bit = 0; bit < L; ++bit) reversed |= (i >> bit & 1) << (L - 1 - bit);
    return reversed;
  }

  // The first levels of the graph.
  template <class D>
  static TZM_INLINE void First(D d, Cx<D>* x) {
    using T = hn::TFromD<D>;
    constexpr T kCos = static_cast<T>(0.92387953251128675613), kSin = static_cast<T>(0.38268343236508977173);
    constexpr T kHalf = static_cast<T>(0.7071067811865475244);
    const auto w = [=](T re, T im) TZM_LAMBDA { return Cx<D>{hn::Set(d, re), hn::Set(d, -im)}; };
    Unrolled<kRadix / 2>([&](auto g) TZM_LAMBDA { Combine(x[2 * g], x[2 * g + 1]); });
    if constexpr (L >= 2) Unrolled<kRadix / 4>([&](auto g) TZM_LAMBDA {
      Combine(x[4 * g], x[4 * g + 2]);
      CombineQuarter(x[4 * g + 1], x[4 * g + 3]);
    });
    if constexpr (L >= 3) Unrolled<kRadix / 8>([&](auto g) TZM_LAMBDA {
      auto* const y = x + 8 * g;
      Combine(y[0], y[4]);
      Combine(y[1], y[5], Product(w(kHalf, kHalf), y[5]));
      CombineQuarter(y[2], y[6]);
      Combine(y[3], y[7], QuarterProduct(w(kHalf, kHalf), y[7]));
    });
    if constexpr (L >= 4) Unrolled<kRadix / 16>([&](auto g) TZM_LAMBDA {
      constexpr T kRe[] = {1, kCos, kHalf, kSin}, kIm[] = {0, kSin, kHalf, kCos};
      Unrolled<4>([&](auto i) TZM_LAMBDA {
        auto* const y = x + 16 * g + i;
        Combine(y[0], y[8], Product(w(kRe[i], kIm[i]), y[8]));
        Combine(y[4], y[12], QuarterProduct(w(kRe[i], kIm[i]), y[12]));
      });
    });
  }

  // Later levels: `twiddle` is a function of the number, of kTwiddles.
  template <class D>
  static TZM_INLINE void Next(D, Cx<D>* x, auto twiddle) {
    Unrolled<L>([&](auto level) TZM_LAMBDA {
      constexpr size_t kHalf = size_t{1} << level, kQuarter = kHalf > 1 ? kHalf / 2 : 1;
      Unrolled<kQuarter>([&](auto i) TZM_LAMBDA {
        const Cx<D> w = twiddle(kHalf / 2 + i);
        Unrolled<kRadix / 2 / kHalf>([&](auto g) TZM_LAMBDA {
          auto* const y = x + 2 * kHalf * g + i;
          Combine(y[0], y[kHalf], Product(w, y[kHalf]));
          if constexpr (kHalf > 1)
            Combine(y[kQuarter], y[kQuarter + kHalf], QuarterProduct(w, y[kQuarter + kHalf]));
        });
      });
    });
  }

  // Of sub-transforms of s points the twiddle of element k: its root as (order, power).
  template <class F>
  static void ForEachTwiddle(size_t s, F&& f) {
    for (size_t half = 1; half < kRadix; half *= 2)
      for (size_t i = 0; i < (half > 1 ? half / 2 : 1); ++i) f(2 * half * s, 1, i * s);
  }
};

// cos and sin of 2 pi i / R.
template <class T, size_t R>
struct Circle;
#define TZM_CIRCLE(R, ...)                        \
  template <class T>                              \
  struct Circle<T, R> {                           \
    static constexpr T kParts[][2] = {__VA_ARGS__}; \
  };
#define TZM_TURN(cos, sin) {static_cast<T>(cos), static_cast<T>(sin)}
TZM_CIRCLE(3, {}, TZM_TURN(-0.5, 0.86602540378443864676))
TZM_CIRCLE(5, {}, TZM_TURN(0.3090169943749474241, 0.95105651629515357212),
           TZM_TURN(-0.8090169943749474241, 0.58778525229247312917))
TZM_CIRCLE(7, {}, TZM_TURN(0.62348980185873353053, 0.78183148246802980871),
           TZM_TURN(-0.22252093395631440429, 0.97492791218182360702),
           TZM_TURN(-0.90096886790241912624, 0.43388373911755812048))
TZM_CIRCLE(11, {}, TZM_TURN(0.84125353283118116886, 0.54064081745559758211),
           TZM_TURN(0.41541501300188642553, 0.90963199535451837141),
           TZM_TURN(-0.14231483827328514044, 0.98982144188093273238),
           TZM_TURN(-0.65486073394528506406, 0.75574957435425828377),
           TZM_TURN(-0.95949297361449738989, 0.28173255684142969771))
TZM_CIRCLE(13, {}, TZM_TURN(0.8854560256532098959, 0.46472317204376854566),
           TZM_TURN(0.56806474673115580251, 0.82298386589365639458),
           TZM_TURN(0.12053668025532305335, 0.9927088740980539928),
           TZM_TURN(-0.35460488704253562597, 0.93501624268541482344),
           TZM_TURN(-0.74851074817110109863, 0.66312265824079520238),
           TZM_TURN(-0.97094181742605202716, 0.23931566428755776715))
#undef TZM_TURN
#undef TZM_CIRCLE

// R points by the sums and differences of pairs.
template <size_t R>
struct Odd {
  static constexpr size_t kRadix = R;
  static constexpr size_t kTwiddles = R - 1;
  static constexpr size_t From(size_t i) { return i; }

  template <class D>
  static TZM_INLINE void First(D d, Cx<D>* x) {
    using T = hn::TFromD<D>;
    constexpr size_t kPairs = R / 2;
    Cx<D> sum[kPairs], difference[kPairs];
    const Cx<D> first = x[0];
    Unrolled<kPairs>([&](auto i) TZM_LAMBDA {
      sum[i] = x[i + 1];
      difference[i] = x[R - 1 - i];
      Combine(sum[i], difference[i]);
      x[0] = {hn::Add(x[0].re, sum[i].re), hn::Add(x[0].im, sum[i].im)};
    });
    Unrolled<kPairs>([&](auto k) TZM_LAMBDA {
      Cx<D> even = first, odd;
      Unrolled<kPairs>([&](auto i) TZM_LAMBDA {
        constexpr size_t kAt = (k + 1) * (i + 1) % R;
        constexpr const T* kPart = Circle<T, R>::kParts[kAt > kPairs ? R - kAt : kAt];
        const auto c = hn::Set(d, kPart[0]), s = hn::Set(d, kAt > kPairs ? -kPart[1] : kPart[1]);
        even = {hn::MulAdd(c, sum[i].re, even.re), hn::MulAdd(c, sum[i].im, even.im)};
        if constexpr (i == 0) odd = {hn::Mul(s, difference[i].re), hn::Mul(s, difference[i].im)};
        else odd = {hn::MulAdd(s, difference[i].re, odd.re), hn::MulAdd(s, difference[i].im, odd.im)};
      });
      x[k + 1] = even;
      x[R - 1 - k] = odd;
      CombineQuarter(x[k + 1], x[R - 1 - k]);
    });
  }
  template <class D>
  static TZM_INLINE void Next(D d, Cx<D>* x, auto twiddle) {
    Unrolled<R - 1>([&](auto j) TZM_LAMBDA { x[j + 1] = Product(twiddle(j), x[j + 1]); });
    First(d, x);
  }

  template <class F>
  static void ForEachTwiddle(size_t s, F&& f) {
    for (size_t j = 1; j < R; ++j) f(R * s, j, 0);
  }
};

// Where a pass finds its data, from an array T* of blocks or a View of the caller's, in elements of the array:
// x[j] of butterfly (p, k) of transform b at (p + j count) inRow + k inStep + b inGroup, and its result t at
// (p R + t) outRow + k outStep + b outGroup.
struct Geometry {
  size_t count, steps, groups;  // p < count, k < steps, b < groups
  size_t inRow, inStep, inGroup;
  size_t outRow, outStep, outGroup;
  size_t twiddleGroup;
};

enum class Twiddles { kNone, kShared, kLanes };  // none; one number for all lanes; a number for each

template <size_t N, class D, class T = hn::TFromD<D>>
TZM_INLINE void Load(D d, const T* from, Cx<D>* x, auto at) {
  Unrolled<N>([&](auto i) TZM_LAMBDA { x[i] = LoadBlock(d, from + at(i)); });
}
template <size_t N, class D, class T = hn::TFromD<D>>
TZM_INLINE void Load(D d, const View<const T>& from, Cx<D>* x, auto at) {
  LoadUser<N>(d, from, x, at);
}
template <size_t N, class D, class T = hn::TFromD<D>>
TZM_INLINE void Store(D d, T* to, const Cx<D>* x, auto at) {
  Unrolled<N>([&](auto i) TZM_LAMBDA { StoreBlock(d, x[i], to + at(i)); });
}
template <size_t N, class D, class T = hn::TFromD<D>>
TZM_INLINE void Store(D d, const View<T>& to, const Cx<D>* x, auto at) {
  StoreUser<N>(d, to, x, at);
}

// One pass of the levels that `Levels` stands for. Middle passes along rows have one group.
template <class Levels, Twiddles kKind, bool kGrouped, class D, class T = hn::TFromD<D>>
TZM_INLINE void Pass(D d, const auto& in, const auto& out, const Geometry& geometry, const T* twiddles) {
  constexpr size_t kRadix = Levels::kRadix;
  const Geometry g = geometry;
  const auto source = in;
  const auto target = out;
  const size_t inPoint = g.count * g.inRow;
  for (size_t p = 0; p < g.count; ++p) {
    const T* w = twiddles;
    size_t from = p * g.inRow, to = p * kRadix * g.outRow;
    for (size_t k = 0; k < g.steps; ++k, from += g.inStep, to += g.outStep) {
      for (size_t b = 0; b < (kGrouped ? g.groups : 1); ++b) {
        const size_t fromGroup = from + b * g.inGroup, toGroup = to + b * g.outGroup;
        const T* const v = w + b * g.twiddleGroup;
        Cx<D> x[kRadix];
        Load<kRadix>(d, source, x, [&](auto i) TZM_LAMBDA { return fromGroup + Levels::From(i) * inPoint; });
        if constexpr (kKind == Twiddles::kNone) Levels::First(d, x);
        else if constexpr (kKind == Twiddles::kShared) Levels::Next(d, x, [&](size_t q) TZM_LAMBDA {
          return Cx<D>{hn::Set(d, w[2 * q]), hn::Set(d, w[2 * q + 1])};
        });
        else Levels::Next(d, x, [&](size_t q) TZM_LAMBDA { return LoadBlock(d, v + kBlock<D> * q); });
        Store<kRadix>(d, target, x, [&](auto t) TZM_LAMBDA { return toGroup + t * g.outRow; });
      }
      if constexpr (kKind == Twiddles::kShared) w += 2 * Levels::kTwiddles;
      else if constexpr (kKind == Twiddles::kLanes) w += kBlock<D> * Levels::kTwiddles;
    }
  }
}

// The first pass over columns first ... first + V - 1 of a matrix of kRadix rows, transposed: number k of column j
// goes to lane k of the block at out + j kBlock, of V numbers at `part` from the one before.
template <class Levels, class D, class T = hn::TFromD<D>>
TZM_INLINE void PassTransposed(D d, const View<const T>& in, T* out, size_t columns, size_t first, size_t end,
                                 size_t part) {
  constexpr size_t kRadix = Levels::kRadix, kLane = kLanes<D>;
  const View<const T> source = in;
  for (size_t j = first; j < end; j += kLane) {
    const size_t at = std::min(j, columns - kLane);  // the last columns once more
    Cx<D> x[kRadix];
    LoadUser<kRadix>(d, source, x, [&](auto i) TZM_LAMBDA { return at + Levels::From(i) * columns; });
    Levels::First(d, x);
    Unrolled<kRadix / kLane>([&](auto g) TZM_LAMBDA {
      Vec<D> y[kLane];
      Unrolled<kLane>([&](auto t) TZM_LAMBDA { y[t] = x[g * kLane + InOrder<D>(t)].re; });
      StoreTransposed(d, y, out + g * part + at * kBlock<D>, kBlock<D>);
      Unrolled<kLane>([&](auto t) TZM_LAMBDA { y[t] = x[g * kLane + InOrder<D>(t)].im; });
      StoreTransposed(d, y, out + g * part + at * kBlock<D> + kLane, kBlock<D>);
    });
  }
}

}  // namespace tzm::fft
