// Moves of elements whose number is constant, and of fewer than that.
#pragma once

#include "frame/vector/base.h"

namespace tzm {

// Copies a constant number of elements by moves of registers.
template <size_t kCount, class T>
TZM_INLINE void CopyElements(const T* from, T* to) {
  constexpr size_t kBytes = kCount * sizeof(T), kRegister = hn::MaxLanes(Full<uint8_t>());
  if constexpr (kBytes < kRegister) {
    std::memcpy(to, from, kBytes);
  } else {
    static_assert(kBytes % kRegister == 0);
    const Full<uint8_t> d;
    Unrolled<kBytes / kRegister>([&](auto i) TZM_LAMBDA {
      const auto* const source = reinterpret_cast<const uint8_t*>(from) + i * kRegister;
      hn::StoreU(hn::LoadU(d, source), d, reinterpret_cast<uint8_t*>(to) + i * kRegister);
    });
  }
}

// kCount copies of one element.
template <size_t kCount, class T>
TZM_INLINE void Fill(const T* from, T* to) {
  if constexpr (sizeof(T) > 8) {
    Unrolled<kCount>([&](auto i) TZM_LAMBDA { StoreElement(LoadElement(from), to + i); });
  } else {
    const hn::CappedTag<hwy::UnsignedFromSize<sizeof(T)>, kCount> d;
    constexpr size_t kLanes = hn::MaxLanes(d);
    hn::TFromD<decltype(d)> bits;
    std::memcpy(&bits, from, sizeof bits);
    Unrolled<kCount / kLanes>([&](auto i) TZM_LAMBDA {
      hn::StoreU(hn::Set(d, bits), d, reinterpret_cast<hn::TFromD<decltype(d)>*>(to + i * kLanes));
    });
  }
}

#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
// Calls use(d, at, belongs) for each register of kStep elements of T: the tag of its bytes, its place, and which of
// them belong to the first `count` elements.
template <class T, size_t kStep, class Use>
TZM_INLINE void EachMask(size_t count, Use&& use) {
  constexpr size_t kBytes = kStep * sizeof(T);
  const hn::CappedTag<uint8_t, kBytes> d;
  constexpr size_t kWidth = hn::MaxLanes(d);
  Unrolled<kBytes / kWidth>([&](auto i) TZM_LAMBDA {
    const size_t bytes = count * sizeof(T);
    use(d, i * kWidth, hn::FirstN(d, bytes > i * kWidth ? std::min(bytes - i * kWidth, kWidth) : 0));
  });
}
#else
// A register of bytes, or a part of one: the first `count` bytes in memory, whole elements, and behind them those of
// `filler`. The bits of `count` tell which halves are loaded whole; what follows such a half is taken first, then moved
// up.
template <size_t kElement, class V>
TZM_INLINE V TakeBytes(const uint8_t* from, size_t count, V filler) {
  const hn::DFromV<V> d;
  constexpr size_t kHalf = hn::MaxLanes(d) / 2;
  if constexpr (kHalf < kElement) {
    return filler;
  } else {
    const hn::Half<decltype(d)> half;
    const auto low = hn::LowerHalf(half, filler);
    const auto rest = TakeBytes<kElement>(from + (count & kHalf), count, low);
    return count & kHalf ? hn::Combine(d, rest, hn::LoadU(half, from)) : hn::Combine(d, low, rest);
  }
}
// The first `count` bytes to memory, by the same halves.
template <size_t kElement, class V>
TZM_INLINE void GiveBytes(V v, uint8_t* to, size_t count) {
  const hn::DFromV<V> d;
  constexpr size_t kHalf = hn::MaxLanes(d) / 2;
  if constexpr (kHalf >= kElement) {
    const hn::Half<decltype(d)> half;
    auto rest = hn::LowerHalf(half, v);
    if (count & kHalf) {
      hn::StoreU(rest, half, to);
      rest = hn::UpperHalf(half, v);
    }
    GiveBytes<kElement>(rest, to + (count & kHalf), count);
  }
}
#endif

// The first `count` elements, below kStep, of an array into an array of kStep, whose others become *filler, and back.
// The latter stays in registers.
template <size_t kStep, class T>
TZM_INLINE void TakeFew(const T* array, T* element, size_t count, const T* filler) {
  Fill<kStep>(filler, element);
  const auto* const from = reinterpret_cast<const uint8_t*>(array);
  auto* const to = reinterpret_cast<uint8_t*>(element);
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
  EachMask<T, kStep>(count, [&](auto d, size_t at, auto belongs) TZM_LAMBDA {
    hn::StoreU(hn::IfThenElse(belongs, hn::MaskedLoad(belongs, d, from + at), hn::LoadU(d, to + at)), d, to + at);
  });
#else
  constexpr size_t kHalf = kStep / 2;
  const hn::CappedTag<uint8_t, kStep * sizeof(T)> d;
  if constexpr (kStep * sizeof(T) == hn::MaxLanes(d)) {
    hn::StoreU(TakeBytes<sizeof(T)>(from, count * sizeof(T), hn::LoadU(d, to)), d, to);
  } else if (count >= kHalf) {
    TakeFew<kHalf>(array + kHalf, element + kHalf, count % kHalf, filler);
    CopyElements<kHalf>(array, element);
  } else {
    TakeFew<kHalf>(array, element, count, filler);
  }
#endif
}
template <size_t kStep, class T>
TZM_INLINE void GiveFew(const T* element, T* array, size_t count) {
  const auto* const from = reinterpret_cast<const uint8_t*>(element);
  auto* const to = reinterpret_cast<uint8_t*>(array);
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
  EachMask<T, kStep>(count, [&](auto d, size_t at, auto belongs) TZM_LAMBDA {
    hn::BlendedStore(hn::LoadU(d, from + at), belongs, d, to + at);
  });
#else
  constexpr size_t kHalf = kStep / 2;
  const hn::CappedTag<uint8_t, kStep * sizeof(T)> d;
  if constexpr (kStep * sizeof(T) == hn::MaxLanes(d)) {
    GiveBytes<sizeof(T)>(hn::LoadU(d, from), to, count * sizeof(T));
  } else if (count >= kHalf) {
    CopyElements<kHalf>(element, array);
    GiveFew<kHalf>(element + kHalf, array + kHalf, count % kHalf);
  } else {
    GiveFew<kHalf>(element, array, count);
  }
#endif
}

}  // namespace tzm
