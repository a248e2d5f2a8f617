// Drivers of reductions: floating sums in the order of a contract, and exact sums and extremes of integers, which have
// none.
#pragma once

#include "frame/drive.h"
#include "frame/result.h"

namespace tzm {

// ---- Ordered sums ----

// The lanes of a complex sum: as many of each part.
template <class Lanes>
struct ComplexLanes {
  using D = typename Lanes::D;
  static constexpr size_t kWidth = Lanes::kWidth, kRegisters = Lanes::kRegisters;
  Lanes re, im;

  static TZM_INLINE ComplexLanes Set(hn::TFromD<D> value) { return {Lanes::Set(value), Lanes::Set(value)}; }
};

// How lanes become one sum. The halves of the lanes first: of four (l0+l2) + (l1+l3), and +0 onto that, so that no sum
// is -0.
struct HalvesFirst {
  template <class T, size_t kLanes>
  TZM_INLINE T operator()(const LaneArray<T, kLanes>& lanes) const { return lanes.FoldHalves() + T(0); }
  template <class Lanes>
  TZM_INLINE auto operator()(const ComplexLanes<Lanes>& lanes) const {
    return Complex<hn::TFromD<typename Lanes::D>>{operator()(lanes.re), operator()(lanes.im)};
  }
};
// Neighbours first: of four (l0+l1) + (l2+l3). Interleaved lanes hold kParts parts, each with a sum of its own.
template <size_t kParts = 1>
struct NeighboursFirst {
  template <class T, size_t kLanes>
  TZM_INLINE auto operator()(const LaneArray<T, kLanes>& lanes) const {
    if constexpr (kParts == 1) return lanes.FoldPairs();
    else return Complex<T>{lanes.template FoldPairs<2>(0), lanes.template FoldPairs<2>(1)};
  }
};
// The halves of the lanes are added to each other, then neighbours first.
struct HalvesThenNeighbours {
  template <class T, size_t kLanes>
  TZM_INLINE T operator()(const LaneArray<T, kLanes>& lanes) const { return lanes.Halved().FoldPairs(); }
};

// The order of a sum, which stands at the member. The elements up to the last multiple of kStep go to the lanes, of
// element i those with the number i modulo their count; the folded lanes are the sum so far, to which the others are
// added one by one.
template <class SumLanes, size_t kStep, class Fold>
struct OrderedSum {
  using Lanes = SumLanes;
  using Element = hn::TFromD<typename Lanes::D>;
  static constexpr size_t kLanes = Lanes::kRegisters * Lanes::kWidth, kBlock = kStep;

  // step(i, lanes) adds kAtOnce elements from i on, tail(i, sum) the element i; kTurn elements make a turn of the loop.
  // Lanes start at +0: sums of anything but products that underflow never become -0 there.
  template <size_t kAtOnce = kLanes, size_t kTurn = std::max(kStep, 4 * kAtOnce), class Step, class Tail>
  static TZM_INLINE auto Of(size_t len, Step&& step, Tail&& tail, Element start = 0) {
    static_assert(kTurn % kStep == 0 && kStep % kAtOnce == 0);
    Lanes lanes = Lanes::Set(start);
    const size_t body = len - len % kStep;
    size_t i = 0;
    if (body >= kTurn) [[unlikely]] {  // as in Steps
      for (; body - i >= kTurn; i += kTurn)
        Unrolled<kTurn / kAtOnce>([&](auto k) TZM_LAMBDA { step(i + k * kAtOnce, lanes); });
    }
    for (; i < body; i += kAtOnce) step(i, lanes);
    auto sum = Fold()(lanes);
    for (; i < len; ++i) tail(i, sum);
    return sum;
  }
};

// Elements in lanes of their own type or of a wider one.
template <class Lanes, class T>
TZM_INLINE Lanes LoadLanes(const T* from) {
  return Lanes::Each([&](size_t r) TZM_LAMBDA { return LoadFloating(typename Lanes::D(), from + r * Lanes::kWidth); });
}

// ---- Exact sums ----

// A sum of which the 32-bit lanes hold no more than a part: a flush empties them into 64 bits.
template <class T>
struct NarrowSum {
  Vec<Full<T>> lanes = hn::Zero(Full<T>());
  hwy::MakeWide<T> total = 0;

  TZM_INLINE void Flush() {
    total += WideSum(lanes);
    lanes = hn::Zero(Full<T>());
  }
};

// Fewer elements than a step, and zeros behind them.
template <class T, size_t kStep>
struct ZeroFilled {
  T element[kStep];

  TZM_INLINE const T* Copy(const T* from, size_t count) {
    constexpr T kZero = {};
    TakeFew<kStep>(from, element, count, &kZero);
    return element;
  }
};

// Calls step(arrays + i...) for steps of kStep elements, the last one on copies filled up with zeros, and flush() after
// at most kSteps of them and at the end: an exact integer reduction keeps narrow lanes in step and empties them into
// wide ones in flush.
template <size_t kStep, size_t kSteps = size_t{1} << 32, class Step, class Flush, class... T>
TZM_INLINE void ReduceSteps(size_t len, Step&& step, Flush&& flush, const T*... arrays) {
  for (size_t i = 0; i < len;) {
    const size_t end = std::min(len, i + kSteps * kStep);
    for (; end - i >= 2 * kStep; i += 2 * kStep) {
      step((arrays + i)...);
      step((arrays + (i + kStep))...);
    }
    if (end - i >= kStep) {
      step((arrays + i)...);
      i += kStep;
    }
    if (i < end) {
      std::tuple<ZeroFilled<T, kStep>...> rest;
      std::apply([&](auto&... few) TZM_LAMBDA { step(few.Copy(arrays + i, end - i)...); }, rest);
      i = end;
    }
    flush();
  }
}

// The same with step(one register from each array).
template <size_t kSteps = size_t{1} << 32, class Step, class Flush, class T, class... More>
TZM_INLINE void ReduceRegisters(size_t len, Step&& step, Flush&& flush, const T* array, const More*... more) {
  const Full<T> d;
  ReduceSteps<hn::MaxLanes(d), kSteps>(len, [&](const T* from, const More*... others) TZM_LAMBDA {
    step(hn::LoadU(d, from), hn::LoadU(d, others)...);
  }, flush, array, more...);
}

}  // namespace tzm
