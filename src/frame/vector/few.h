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

// Copies 1 to 2 * kPiece - 1 elements by two moves of constant size, which overlap; kPiece is a power of two.
template <size_t kPiece, class T>
TZM_INLINE void CopyFew(const T* from, T* to, size_t count) {
  if (kPiece == 1 || count >= kPiece) {
    CopyElements<kPiece>(from, to);
    const size_t rest = count % kPiece;
    CopyElements<kPiece>(from + rest, to + rest);
  } else {
    CopyFew<(kPiece + 1) / 2>(from, to, count);
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

#if HWY_ARCH_X86
// Masked moves: of bytes with AVX-512, of 32 bits with AVX2, whose masked stores are slow.
using MaskLane = std::conditional_t<HWY_TARGET <= HWY_AVX3, uint8_t, uint32_t>;

// Calls use(d, at, belongs) for each register of kStep elements of T: its tag, its place, and which of its lanes belong
// to the first `count` elements.
template <class T, size_t kStep, class Use>
TZM_INLINE void EachMask(size_t count, Use&& use) {
  constexpr size_t kLanes = kStep * sizeof(T) / sizeof(MaskLane);
  const hn::CappedTag<MaskLane, kLanes> d;
  constexpr size_t kWidth = hn::MaxLanes(d);
  Unrolled<kLanes / kWidth>([&](auto i) TZM_LAMBDA {
    const size_t lanes = count * sizeof(T) / sizeof(MaskLane);
    const size_t few = lanes > i * kWidth ? std::min(lanes - i * kWidth, kWidth) : 0;
#if HWY_TARGET <= HWY_AVX3
    use(d, i * kWidth, hn::FirstN(d, few));
#else
    static constexpr uint32_t kBelongs[] = {~0u, ~0u, ~0u, ~0u, ~0u, ~0u, ~0u, ~0u, 0, 0, 0, 0, 0, 0, 0, 0};
    use(d, i * kWidth, hn::MaskFromVec(hn::LoadU(d, kBelongs + 8 - few)));
#endif
  });
}
#endif

// The first `count` elements, 1 to kStep - 1, of an array into an array of kStep, whose others stay, and back. Masked
// moves leave the latter in registers.
template <size_t kStep, class T>
TZM_INLINE void TakeFew(const T* array, T* element, size_t count) {
#if HWY_ARCH_X86
  if constexpr (sizeof(T) >= sizeof(MaskLane)) {
    EachMask<T, kStep>(count, [&](auto d, size_t at, auto belongs) TZM_LAMBDA {
      MaskLane* const to = reinterpret_cast<MaskLane*>(element) + at;
      const auto taken = hn::MaskedLoad(belongs, d, reinterpret_cast<const MaskLane*>(array) + at);
      hn::StoreU(hn::IfThenElse(belongs, taken, hn::LoadU(d, to)), d, to);
    });
    return;
  }
#endif
  CopyFew<kStep / 2>(array, element, count);
}
template <size_t kStep, class T>
TZM_INLINE void GiveFew(const T* element, T* array, size_t count) {
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
  EachMask<T, kStep>(count, [&](auto d, size_t at, auto belongs) TZM_LAMBDA {
    const auto given = hn::LoadU(d, reinterpret_cast<const MaskLane*>(element) + at);
    hn::BlendedStore(given, belongs, d, reinterpret_cast<MaskLane*>(array) + at);
  });
#else
  CopyFew<kStep / 2>(element, array, count);
#endif
}

}  // namespace tzm
