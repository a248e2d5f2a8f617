// The walk of a symmetric window over a signal: each window value is made once and multiplies the sample at
// its index and the one at the mirror; the middle sample of an odd length is copied.
#pragma once

#include "frame/calls.h"
#include "frame/scale.h"
#include "frame/vector.h"

namespace tzm {

// How samples are held and multiplied: integers in binary32, floating samples in their own type.
template <class Sample>
struct WindowTypes {
  using Part = PartOf<Sample>;
  using Real = std::conditional_t<std::is_same_v<Part, double>, double, float>;
  static constexpr size_t kParts = tzm::kParts<Sample>;
  // Indices of one block: the lanes of a 128-bit vector.
  static constexpr size_t kBlock = 16 / sizeof(Real);
  using Block = hn::FixedTag<Real, kBlock>;
};

template <class Sample, class Real>
TZM_INLINE void WeighSample(const Sample* src, Sample* dst, size_t i, Real value) {
  using Part = typename WindowTypes<Sample>::Part;
  constexpr size_t kParts = WindowTypes<Sample>::kParts;
  for (size_t k = i * kParts; k < (i + 1) * kParts; ++k) {
    const Real product = static_cast<Real>(LoadElement(reinterpret_cast<const Part*>(src) + k)) * value;
    Part* const to = reinterpret_cast<Part*>(dst) + k;
    if constexpr (std::is_integral_v<Part>) StoreElement(RoundSaturate<Part>(product), to);
    else StoreElement(product, to);
  }
}

// {v0, v0, v1, v1, ...}: one value for each part of complex samples, in two registers.
template <class D>
TZM_INLINE void Duplicate(D d, Vec<D> v, Vec<D> (&parts)[2]) {
  if constexpr (hn::MaxLanes(d) * sizeof(hn::TFromD<D>) == 16) {
    parts[0] = hn::InterleaveLower(d, v, v);
    parts[1] = hn::InterleaveUpper(d, v, v);
  } else {
    using Index = hn::TFromD<hn::RebindToSigned<D>>;
    const hn::RebindToSigned<D> di;
    const auto low = hn::ShiftRight<1>(hn::Iota(di, 0));
    const auto high = hn::Add(low, hn::Set(di, static_cast<Index>(hn::MaxLanes(d) / 2)));
    parts[0] = hn::TableLookupLanes(v, hn::IndicesFromVec(d, low));
    parts[1] = hn::TableLookupLanes(v, hn::IndicesFromVec(d, high));
  }
}

// Multiplies `src` by a window from the index `first` up and from its mirror down. The window has
//   D            the tag of its widest block of values,
//   Block(d, i)  the values at i, i + 1, ... in a vector: of D first, then in 128-bit blocks, then
//   One(i)       for the pairs that are left; without it they take the values of one more block.
// Calls come in ascending order of i. Both halves of a block are read before it is written.
template <class Sample, class Window>
TZM_INLINE void ApplyWindow(const Sample* src, Sample* dst, int32_t len, size_t first, Window window) {
  using Types = WindowTypes<Sample>;
  using Part = typename Types::Part;
  using Real = typename Types::Real;
  constexpr size_t kParts = Types::kParts;
  const Part* const from = reinterpret_cast<const Part*>(src);
  Part* const to = reinterpret_cast<Part*>(dst);
  const size_t n = static_cast<size_t>(len), half = n / 2;
  size_t i = first;

  const auto blocks = [&](auto d) TZM_LAMBDA {
    const size_t lanes = hn::Lanes(d);
    for (; half - i >= lanes; i += lanes) {
      Vec<decltype(d)> values[kParts];
      if constexpr (kParts == 1) values[0] = window.Block(d, i);
      else Duplicate(d, window.Block(d, i), values);
      for (size_t k = 0; k < kParts; ++k) {
        const size_t front = i * kParts + k * lanes, back = (n - i) * kParts - (k + 1) * lanes;
        const auto low = LoadFloating(d, from + front), high = LoadFloating(d, from + back);
        StoreRounded(hn::Mul(low, values[k]), to + front);
        StoreRounded(hn::Mul(high, hn::Reverse(d, values[k])), to + back);
      }
    }
  };
  const auto pair = [&](Real value) TZM_LAMBDA {
    WeighSample(src, dst, i, value);
    WeighSample(src, dst, n - 1 - i, value);
  };

  const typename Window::D d;
  const typename Types::Block block;
  blocks(d);
  if constexpr (hn::MaxLanes(d) > Types::kBlock) blocks(block);
  if constexpr (requires { window.One(i); }) {
    for (; i < half; ++i) pair(window.One(i));
  } else if (i < half) {
    Real values[Types::kBlock];
    hn::StoreU(window.Block(block, i), block, values);
    for (size_t k = 0; i < half; ++i) pair(values[k++]);
  }
  if (n % 2 != 0) StoreElement(LoadElement(src + half), dst + half);
}

}  // namespace tzm
