// Element-wise work on narrow integers in lanes of binary32, by whole registers: widened, rounded and narrowed.
#pragma once

#include "frame/drive.h"

namespace tzm {

// As many lanes of binary32 as a register holds integers of type T.
template <class T>
using FloatLanes = LaneArray<float, hn::MaxLanes(Full<T>())>;

// Lanes from floats, or from integers of up to 32 bits; those of more than 24 are rounded.
template <class Lanes, class T>
TZM_INLINE Lanes LoadFloats(const T* from) {
  const Full<float> d;
#if HWY_ARCH_ARM_A64  // a narrow load costs as much as a whole one
  const auto half = [=](auto v, size_t which) TZM_LAMBDA {
    const hn::Half<hn::DFromV<decltype(v)>> narrow;
    return ToFloating(d, which % 2 == 0 ? hn::LowerHalf(narrow, v) : hn::UpperHalf(narrow, v));
  };
  if constexpr (std::is_same_v<Lanes, FloatLanes<T>> && sizeof(T) == 2) {
    const auto all = hn::LoadU(Full<T>(), from);
    return Lanes::Each([&](size_t r) TZM_LAMBDA { return half(all, r); });
  } else if constexpr (std::is_same_v<Lanes, FloatLanes<T>> && sizeof(T) == 1) {
    const auto all = LoadWidened(Full<uint16_t>(), from);
    return Lanes::Each([&](size_t r) TZM_LAMBDA { return half(r < 2 ? all.low : all.high, r); });
  }
#endif
  return Lanes::Each([&](size_t r) TZM_LAMBDA { return LoadFloating(d, from + r * Lanes::kWidth); });
}

// Lanes to integers of 8 or 16 bits, rounded to nearest, ties to even, and saturated; NaN gives 0.
template <class T>
TZM_INLINE void StoreRoundedLanes(const FloatLanes<T>& lanes, T* to) {
  const Full<T> d;
  const auto rounded = [&](size_t r) TZM_LAMBDA { return RoundFor<T>(lanes.v[r]); };
  if constexpr (sizeof(T) == 2) {
    hn::StoreU(NarrowPair(d, rounded(0), rounded(1)), d, to);
  } else {
    const auto half = [&](size_t r) TZM_LAMBDA { return NarrowPair(Full<int16_t>(), rounded(r), rounded(r + 1)); };
    hn::StoreU(NarrowPair(d, half(0), half(2)), d, to);
  }
}

// dst[i] = kernel(src[i]...), rounded, with `kernel` on lanes of binary32.
template <class T, class Kernel, class... Src>
TZM_INLINE void RoundEach(size_t len, Kernel&& kernel, T* dst, const Src*... src) {
  using Lanes = FloatLanes<T>;
  ForEach<hn::MaxLanes(Full<T>()), sizeof(T)>(len, [&](T* to, const Src*... from) TZM_LAMBDA {
    const auto each = [&](const auto&... loaded) TZM_LAMBDA {
      return Lanes::Each([&](size_t r) TZM_LAMBDA { return kernel(loaded.v[r]...); });
    };
    StoreRoundedLanes<T>(each(LoadFloats<Lanes>(from)...), to);
  }, dst, src...);
}

}  // namespace tzm
