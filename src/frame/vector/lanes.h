// The lanes of ordered sums.
#pragma once

#include "frame/vector/base.h"

namespace tzm {

// Exactly N lanes of T, in as few registers as the machine allows. An ordered sum names its lanes with
// this type: a wider register holds more of them at once and never changes the order.
template <class T, size_t N>
struct LaneArray {
  using D = hn::CappedTag<T, N>;
  static constexpr size_t kWidth = hn::MaxLanes(D());
  static constexpr size_t kRegisters = N / kWidth;

  Vec<D> v[kRegisters];

  // The array of make(r) for every register r. Unrolled here: GCC keeps arrays of registers in memory
  // where it leaves a loop over them.
  template <class Make>
  static TZM_INLINE LaneArray Each(Make make) {
    return [&]<size_t... r>(std::index_sequence<r...>) TZM_LAMBDA {
      return LaneArray{{make(r)...}};
    }(std::make_index_sequence<kRegisters>());
  }

  static TZM_INLINE LaneArray Set(T value) {
    return Each([&](size_t) TZM_LAMBDA { return hn::Set(D(), value); });
  }
  static TZM_INLINE LaneArray Load(const T* from) {
    return Each([&](size_t r) TZM_LAMBDA { return hn::LoadU(D(), from + r * kWidth); });
  }
  // The real and the imaginary parts of N complex elements.
  static TZM_INLINE void LoadComplex(const T* from, LaneArray& re, LaneArray& im) {
    re = Each([&](size_t r) TZM_LAMBDA {
      Vec<D> real;
      hn::LoadInterleaved2(D(), from + 2 * r * kWidth, real, im.v[r]);
      return real;
    });
  }
  TZM_INLINE void Store(T* to) const {
    Each([&](size_t r) TZM_LAMBDA {
      hn::StoreU(v[r], D(), to + r * kWidth);
      return v[r];
    });
  }

  // One rounding a lane: a*b + c, c - a*b.
  friend TZM_INLINE LaneArray MulAdd(const LaneArray& a, const LaneArray& b, const LaneArray& c) {
    return Each([&](size_t r) TZM_LAMBDA { return hn::MulAdd(a.v[r], b.v[r], c.v[r]); });
  }
  friend TZM_INLINE LaneArray NegMulAdd(const LaneArray& a, const LaneArray& b, const LaneArray& c) {
    return Each([&](size_t r) TZM_LAMBDA { return hn::NegMulAdd(a.v[r], b.v[r], c.v[r]); });
  }
  friend TZM_INLINE LaneArray MulSub(const LaneArray& a, const LaneArray& b, const LaneArray& c) {
    return Each([&](size_t r) TZM_LAMBDA { return hn::MulSub(a.v[r], b.v[r], c.v[r]); });
  }
  friend TZM_INLINE LaneArray operator+(const LaneArray& a, const LaneArray& b) {
    return Each([&](size_t r) TZM_LAMBDA { return hn::Add(a.v[r], b.v[r]); });
  }
  friend TZM_INLINE LaneArray operator-(const LaneArray& a, const LaneArray& b) {
    return Each([&](size_t r) TZM_LAMBDA { return hn::Sub(a.v[r], b.v[r]); });
  }
  friend TZM_INLINE LaneArray operator*(const LaneArray& a, const LaneArray& b) {
    return Each([&](size_t r) TZM_LAMBDA { return hn::Mul(a.v[r], b.v[r]); });
  }

  friend TZM_INLINE LaneArray operator/(const LaneArray& a, const LaneArray& b) {
    return Each([&](size_t r) TZM_LAMBDA { return hn::Div(a.v[r], b.v[r]); });
  }
  friend TZM_INLINE LaneArray Abs(const LaneArray& a) {
    return Each([&](size_t r) TZM_LAMBDA { return hn::Abs(a.v[r]); });
  }
  friend TZM_INLINE LaneArray Sqrt(const LaneArray& a) {
    return Each([&](size_t r) TZM_LAMBDA { return hn::Sqrt(a.v[r]); });
  }

  // Half as many lanes, each the sum of lane k and lane k + N/2.
  TZM_INLINE LaneArray<T, N / 2> Halved() const {
    if constexpr (kRegisters > 1) {
      return LaneArray<T, N / 2>::Each([&](size_t r) TZM_LAMBDA { return hn::Add(v[r], v[r + kRegisters / 2]); });
    } else {
      const hn::Half<D> half;
      return {{hn::Add(hn::LowerHalf(half, v[0]), hn::UpperHalf(half, v[0]))}};
    }
  }
  // Sum of all lanes, lane k and lane k + N/2 first: (l0+l2) + (l1+l3) of four.
  TZM_INLINE T FoldHalves() const {
    if constexpr (N == 1) return hn::GetLane(v[0]);
    else return Halved().FoldHalves();
  }
  // Sum of all lanes, neighbours first: (l0+l1) + (l2+l3) of four. Of interleaved parts, the sum of the
  // lanes of one of them.
  template <size_t kParts = 1>
  TZM_INLINE T FoldPairs(size_t part = 0) const {
    T lane[N];
    Store(lane);
    return PairSum<N / kParts, kParts>(lane + part);
  }

 private:
  template <size_t kCount, size_t kStride>
  static TZM_INLINE T PairSum(const T* lane) {
    if constexpr (kCount == 1) return *lane;
    else return PairSum<kCount / 2, kStride>(lane) + PairSum<kCount / 2, kStride>(lane + kCount / 2 * kStride);
  }
};

}  // namespace tzm
