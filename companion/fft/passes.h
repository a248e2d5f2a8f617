// Butterflies, and the passes that take an array through one or several levels of the graph. docs/transforms.md has
// the graph: what is computed is told there, the order in which it is done here.
#pragma once

#include "lanes.h"

#include <algorithm>
#include <array>

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
// By a number that the compiler knows, and by -i times it.
template <class D, class T = hn::TFromD<D>>
TZM_INLINE Cx<D> Times(T re, T im, const Cx<D>& x) {
  const D d;
  return Product({hn::Set(d, re), hn::Set(d, im)}, x);
}
template <class D, class T = hn::TFromD<D>>
TZM_INLINE Cx<D> QuarterTimes(T re, T im, const Cx<D>& x) {
  const D d;
  return QuarterProduct({hn::Set(d, re), hn::Set(d, im)}, x);
}
template <size_t kValue>
using Constant = std::integral_constant<size_t, kValue>;

template <class D>
TZM_INLINE Cx<D> Sum(const Cx<D>& a, const Cx<D>& b) {
  return {hn::Add(a.re, b.re), hn::Add(a.im, b.im)};
}
// c x and c x + b for the same real number c in all lanes.
template <class D>
TZM_INLINE Cx<D> Scaled(Vec<D> c, const Cx<D>& x) {
  return {hn::Mul(c, x.re), hn::Mul(c, x.im)};
}
template <class D>
TZM_INLINE Cx<D> Scaled(Vec<D> c, const Cx<D>& x, const Cx<D>& b) {
  return {hn::MulAdd(c, x.re, b.re), hn::MulAdd(c, x.im, b.im)};
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

// The same with -i c b, rounded once.
template <class D>
TZM_INLINE void CombineQuarter(Cx<D>& a, Cx<D>& b, Vec<D> c) {
  const Cx<D> sum = {hn::MulAdd(c, b.im, a.re), hn::NegMulAdd(c, b.re, a.im)};
  b = {hn::NegMulAdd(c, b.im, a.re), hn::MulAdd(c, b.re, a.im)};
  a = sum;
}

// What load(i) of a pass gives: Cx, or in a first pass of few points any other kind of complex number.
template <class Load>
using Loaded = std::remove_cvref_t<decltype(std::declval<Load>()(Constant<0>()))>;

// The factors of a butterfly of the levels of a radix, the first of which takes transforms of s points each. Of the
// results k of these they are f(order, times, plus): the root of that order to the power times * k + plus.
constexpr size_t TwiddleCount(size_t radix) { return radix % 2 == 0 ? radix / 2 : radix - 1; }
template <class F>
constexpr void ForEachTwiddle(size_t radix, size_t s, F&& f) {
  if (radix == 9) {  // two levels
    ForEachTwiddle(3, s, f);
    for (size_t k = 0; k < 3; ++k) for (size_t j = 1; j < 3; ++j) f(9 * s, j, j * k * s);
    return;
  }
  if (radix % 2 == 1) {
    for (size_t j = 1; j < radix; ++j) f(radix * s, j, 0);
    return;
  }
  for (size_t half = 1; half < radix; half *= 2)
    for (size_t i = 0; i < (half + 1) / 2; ++i) f(2 * half * s, 1, i * s);
}

// 2^L points as L levels of radix 2. load(i) gives point i, and store(t, x) takes result t, of constants i and t.
template <size_t L>
struct PowerOfTwo {
  static constexpr size_t kRadix = size_t{1} << L;
  static constexpr size_t kTwiddles = TwiddleCount(kRadix);

  // The first levels of the graph.
  template <class D>
  static TZM_INLINE void First(D, auto load, auto store) {
    using T = hn::TFromD<D>;
    constexpr T kCos = static_cast<T>(0.92387953251128675613), kSin = static_cast<T>(0.38268343236508977173);
    constexpr T kHalf = static_cast<T>(0.7071067811865475244);
    const auto combine = [&](auto half, auto i, auto* x) TZM_LAMBDA {
      if constexpr (half == 1) {
        Combine(x[0], x[1]);
      } else if constexpr (half == 2 || (half == 4 && i == 0)) {
        Combine(x[0], x[half]);
        CombineQuarter(x[half / 2], x[half / 2 + half]);
      } else {
        constexpr T kRe[] = {1, kCos, kHalf, kSin}, kIm[] = {0, kSin, kHalf, kCos};
        constexpr T kTurn[] = {kRe[i * 8 / half], -kIm[i * 8 / half]};
        Combine(x[i], x[i + half], Times(kTurn[0], kTurn[1], x[i + half]));
        Combine(x[i + half / 2], x[i + half / 2 + half], QuarterTimes(kTurn[0], kTurn[1], x[i + half / 2 + half]));
      }
    };
    Loaded<decltype(load)> x[kRadix];
    Walk(x, load, combine, store);
  }

  // Later levels: `twiddle` is a function of the number, of kTwiddles.
  template <class D>
  static TZM_INLINE void Next(D, auto load, auto twiddle, auto store) {
    const auto combine = [&](auto half, auto i, auto* x) TZM_LAMBDA {
      const auto w = twiddle(half / 2 + i);
      Combine(x[i], x[i + half], Product(w, x[i + half]));
      if constexpr (half > 1)
        Combine(x[i + half / 2], x[i + half / 2 + half], QuarterProduct(w, x[i + half / 2 + half]));
    };
    Loaded<decltype(load)> x[kRadix];
    Walk(x, load, combine, store);
  }

 private:
  static constexpr size_t Reversed(size_t i) {
    size_t reversed = 0;
    for (size_t bit = 0; bit < L; ++bit) reversed |= (i >> bit & 1) << (L - 1 - bit);
    return reversed;
  }

  // What is done at x + at: point `at` is loaded where `half` is 0, else numbers i and i + half are combined, and those
  // half / 2 behind them.
  struct Step {
    size_t half, at, i;
  };
  // x takes the points in the order of reversed bits, and a level as soon as its points are there: depth first, which
  // keeps the fewest numbers alive.
  static constexpr size_t kLoads = kRadix, kCombines = L < 2 ? L : kRadix / 4 * (L + 1);
  static constexpr std::array<Step, kLoads + kCombines> Steps() {
    std::array<Step, kLoads + kCombines> steps = {};
    size_t count = 0;
    for (size_t end = 1; end <= kRadix; ++end) {
      steps[count++] = {0, end - 1, 0};
      for (size_t half = 1; end % (2 * half) == 0; half *= 2)
        for (size_t i = 0; i < (half + 1) / 2; ++i) steps[count++] = {half, end - 2 * half, i};
    }
    return steps;
  }

  static TZM_INLINE void Walk(auto* x, const auto& load, const auto& combine, const auto& store) {
    static constexpr auto kSteps = Steps();
    Unrolled<kSteps.size()>([&](auto k) TZM_LAMBDA {
      constexpr Step kStep = kSteps[k];
      if constexpr (kStep.half == 0) x[kStep.at] = load(Constant<Reversed(kStep.at)>());
      else combine(Constant<kStep.half>(), Constant<kStep.i>(), x + kStep.at);
      if constexpr (L == 0) store(Constant<0>(), x[0]);
      if constexpr (L > 0 && kStep.half == kRadix / 2) Unrolled<std::min<size_t>(4, kRadix)>([&](auto part) TZM_LAMBDA {
        constexpr size_t kPlace = kStep.i + part * (kRadix > 2 ? kRadix / 4 : 1);
        store(Constant<kPlace>(), x[kPlace]);
      });
    });
  }
};

// cos and sin of 2 pi i / R.
template <class T, size_t R>
struct Circle;
#define TZM_CIRCLE(R, ...)                          \
  template <class T>                                \
  struct Circle<T, R> {                             \
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
  static constexpr size_t kTwiddles = TwiddleCount(R);

  template <class D>
  static TZM_INLINE void First(D d, auto load, auto store) {
    using T = hn::TFromD<D>;
    using N = Loaded<decltype(load)>;
    constexpr size_t kPairs = R / 2;
    N sum[kPairs], difference[kPairs];
    const N first = load(Constant<0>());
    N total = first;
    Unrolled<kPairs>([&](auto i) TZM_LAMBDA {
      sum[i] = load(Constant<i + 1>());
      difference[i] = load(Constant<R - 1 - i>());
      Combine(sum[i], difference[i]);
      total = Sum(total, sum[i]);
    });
    store(Constant<0>(), total);
    Unrolled<kPairs>([&](auto k) TZM_LAMBDA {
      N even = first, odd;
      Unrolled<kPairs>([&](auto i) TZM_LAMBDA {
        constexpr size_t kAt = (k + 1) * (i + 1) % R;
        constexpr const T* kPart = Circle<T, R>::kParts[kAt > kPairs ? R - kAt : kAt];
        const auto c = hn::Set(d, kPart[0]), s = hn::Set(d, kAt > kPairs ? -kPart[1] : kPart[1]);
        even = Scaled(c, sum[i], even);
        if constexpr (R == 3) CombineQuarter(even, odd = difference[i], s);
        else if constexpr (i == 0) odd = Scaled(s, difference[i]);
        else odd = Scaled(s, difference[i], odd);
      });
      if constexpr (R > 3) CombineQuarter(even, odd);
      store(Constant<k + 1>(), even);
      store(Constant<R - 1 - k>(), odd);
    });
  }
  template <class D>
  static TZM_INLINE void Next(D d, auto load, auto twiddle, auto store) {
    const auto turned = [&](auto j) TZM_LAMBDA {
      if constexpr (j == 0) return load(j);
      else return Product(twiddle(j - 1), load(j));
    };
    First(d, turned, store);
  }
};

// The levels of radix A and then of radix B; None are no levels.
template <class A, class B = PowerOfTwo<0>>
struct Chain {
  static constexpr size_t kRadix = A::kRadix * B::kRadix;
  static constexpr size_t kTwiddles = A::kTwiddles + A::kRadix * B::kTwiddles;

  // load(x, part) brings the points part + B i to x[i], first(get, put) takes these through A, second(k, get, put) the
  // results k of all parts through B, and store(x, k) takes the results k + A t from x[t].
  template <class D>
  static TZM_INLINE void Run(auto load, auto first, auto second, auto store) {
    const auto get = [](const Cx<D>* x) TZM_LAMBDA { return [x](auto i) TZM_LAMBDA { return x[i]; }; };
    const auto put = [](Cx<D>* x) TZM_LAMBDA {
      return [x](auto t, const Cx<D>& result) TZM_LAMBDA { Copy(result, x[t]); };
    };
    Cx<D> x[A::kRadix];
    if constexpr (B::kRadix == 1) {
      load(x, Constant<0>());
      first(get(x), put(x));
      store(x, Constant<0>());
    } else {
      Cx<D> middle[kRadix], y[B::kRadix];
      Repeat<B::kRadix>([&](auto part) TZM_LAMBDA {
        load(x, part);
        first(get(x), put(middle + part * A::kRadix));
      });
      Repeat<A::kRadix>([&](auto k) TZM_LAMBDA {
        second(k, [&](auto part) TZM_LAMBDA {
          const Cx<D>& number = middle[part * A::kRadix + k];
          return Cx<D>{number.re, number.im};
        }, put(y));
        store(y, k);
      });
    }
  }
  // f(0) ... f(kCount - 1), written out where a side has few points: the processor mispredicts short loops.
  template <size_t kCount, class F>
  static TZM_INLINE void Repeat(F&& f) {
    if constexpr (kRadix <= 15) Unrolled<kCount>(f);
    else for (size_t k = 0; k < kCount; ++k) f(k);
  }

  // The same in one straight line: load(i), twiddle(q) and store(t, x) of constants.
  template <class N, class D>
  static TZM_INLINE void Straight(D d, auto load, auto twiddle, auto store) {
    if constexpr (B::kRadix == 1) {
      A::Next(d, load, twiddle, store);
    } else {
      N middle[B::kRadix][A::kRadix];
#pragma GCC unroll 16
      for (size_t part = 0; part < B::kRadix; ++part) {
        A::Next(d, [&](auto i) TZM_LAMBDA { return load(part + B::kRadix * i); }, twiddle,
                [&](auto t, const N& x) TZM_LAMBDA { Copy(x, middle[part][t]); });
      }
#pragma GCC unroll 16
      for (size_t k = 0; k < A::kRadix; ++k) {
        B::Next(d, [&](auto part) TZM_LAMBDA { return Same(middle[part][k]); },
                [&](size_t q) TZM_LAMBDA { return twiddle(A::kTwiddles + k * B::kTwiddles + q); },
                [&](auto t, const N& x) TZM_LAMBDA { store(k + A::kRadix * t, x); });
      }
    }
  }

  template <class D>
  static TZM_INLINE void Next(D d, auto load, auto twiddle, auto store) {
    Straight<Cx<D>>(d, load, twiddle, store);
  }

  // The factors of a chain that takes transforms of s points each, in the order of their use.
  template <class F>
  static constexpr void ForEachFactor(size_t s, F&& f) {
    const auto with = [&](size_t k) {
      return [&f, k](size_t order, size_t times, size_t plus) { f(order, times, plus, k); };
    };
    ForEachTwiddle(A::kRadix, s, with(0));
    for (size_t k = 0; k < A::kRadix && B::kRadix > 1; ++k) ForEachTwiddle(B::kRadix, s * A::kRadix, with(k));
  }
  static constexpr size_t kApart = B::kRadix == 1 ? 1 : A::kRadix;  // results that are stored together
};

using None = PowerOfTwo<0>;
using Two = PowerOfTwo<1>;
using Four = PowerOfTwo<2>;
using Eight = PowerOfTwo<3>;
using Sixteen = PowerOfTwo<4>;
using Three = Odd<3>;
using Five = Odd<5>;
using Seven = Odd<7>;
using Eleven = Odd<11>;
using Thirteen = Odd<13>;

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

// One pass of the levels that `Levels` stands for. Middle passes along rows have one group, whose butterflies take the
// next block of each point in turn.
template <class Levels, Twiddles kKind, bool kGrouped, class D, class T = hn::TFromD<D>>
TZM_INLINE void Pass(D d, const auto& in, const auto& out, const Geometry& geometry, const T* twiddles) {
  constexpr size_t kRadix = Levels::kRadix;
  constexpr bool kWalks = TZM_PAIRED_MOVES && !kGrouped;  // the addresses of points move on
  const Geometry g = geometry;
  const auto source = in;
  const auto target = out;
  const size_t inPoint = g.count * g.inRow;
  [[maybe_unused]] const T* points[kRadix];
  if constexpr (kWalks) Unrolled<kRadix>([&](auto i) TZM_LAMBDA { points[i] = source + i * inPoint; });
  for (size_t p = 0; p < g.count; ++p) {
    const T* w = twiddles;
    size_t from = p * g.inRow, to = p * kRadix * g.outRow;
    for (size_t k = 0; k < g.steps; ++k, from += g.inStep, to += g.outStep) {
      for (size_t b = 0; b < (kGrouped ? g.groups : 1); ++b) {
        const size_t fromGroup = from + b * g.inGroup, toGroup = to + b * g.outGroup;
        const T* const v = w + b * g.twiddleGroup;
        const auto load = [&](auto i) TZM_LAMBDA {
          if constexpr (kWalks) return LoadMoving<1>(d, points[i]);
          else return Load(d, source, fromGroup + i * inPoint);
        };
        const auto store = [&](auto t, const Cx<D>& x) TZM_LAMBDA { Store(d, x, target, toGroup + t * g.outRow); };
        if constexpr (kKind == Twiddles::kNone) Levels::First(d, load, store);
        else if constexpr (kKind == Twiddles::kShared) Levels::Next(d, load, [&](size_t q) TZM_LAMBDA {
          return Cx<D>{hn::Set(d, w[2 * q]), hn::Set(d, w[2 * q + 1])};
        }, store);
        else Levels::Next(d, load, [&](size_t q) TZM_LAMBDA { return LoadBlock(d, v + kBlock<D> * q); }, store);
      }
      if constexpr (kKind == Twiddles::kShared) w += 2 * Levels::kTwiddles;
      else if constexpr (kKind == Twiddles::kLanes) w += kBlock<D> * Levels::kTwiddles;
    }
  }
}

// The first pass over `count` registers of columns of a matrix of kRadix rows, which are `columns` long, transposed:
// number k of column j goes to lane k of the block at out + j kBlock, of V numbers at `part` from the one before.
template <class Levels, class D, class T = hn::TFromD<D>>
TZM_INLINE void PassTransposed(D d, const auto& in, T* out, size_t columns, size_t count, size_t part) {
  constexpr size_t kRadix = Levels::kRadix, kLane = kLanes<D>;
  Rows<kRadix, D, std::remove_cvref_t<decltype(in)>> rows(d, in, columns);
  T* blocks[kRadix / kLane];
  Unrolled<kRadix / kLane>([&](auto g) TZM_LAMBDA { blocks[g] = Opaque(out + g * part); });
  for (size_t at = 0; at < count * kLane; at += kLane) {
    Cx<D> x[kRadix];
    Levels::First(d, [&](auto i) TZM_LAMBDA { return Load(d, rows.Next(i, at), 0); },
                  [&](auto t, const Cx<D>& result) TZM_LAMBDA { x[t] = result; });
    Unrolled<kRadix / kLane>([&](auto g) TZM_LAMBDA {
      Vec<D> re[kLane], im[kLane];
      Unrolled<kLane>([&](auto t) TZM_LAMBDA {
        re[t] = x[g * kLane + InOrder<D>(t)].re;
        im[t] = x[g * kLane + InOrder<D>(t)].im;
      });
      StoreTransposed(d, re, im, blocks[g] + at * kBlock<D>);
    });
  }
}

}  // namespace tzm::fft
