// Loads and stores that widen and narrow, and those that take complex elements apart.
#pragma once

#include "frame/vector/rounding.h"

namespace tzm {

// {first, first + 1, ...} in floating lanes, rounded from the integers.
template <class D, class T = hn::TFromD<D>>
TZM_INLINE Vec<D> Indices(D d, size_t first) {
  const hn::Rebind<int32_t, D> di;
  const auto index = hn::Add(hn::Set(di, static_cast<int32_t>(first)), hn::Iota(di, 0));
  if constexpr (sizeof(T) == 8) return hn::PromoteTo(d, index);
  else return hn::ConvertTo(d, index);
}

// One register of narrow elements from memory to two of twice the width, in order.
template <class D>
struct Widened {
  Vec<D> low, high;
};
template <class D, class T>
TZM_INLINE Widened<D> LoadWidened(D d, const T* from) {
  static_assert(sizeof(T) * 2 == sizeof(hn::TFromD<D>));
#if HWY_ARCH_X86  // widening loads: no shuffle for the halves
  const hn::Rebind<T, D> dn;
  return {hn::PromoteTo(d, hn::LoadU(dn, from)), hn::PromoteTo(d, hn::LoadU(dn, from + hn::Lanes(dn)))};
#else
  const hn::Twice<hn::Rebind<T, D>> dn;
  const auto all = hn::LoadU(dn, from);
  return {hn::PromoteTo(d, hn::LowerHalf(all)), hn::PromoteTo(d, hn::UpperHalf(hn::Half<decltype(dn)>(), all))};
#endif
}

// One byte from memory to each lane of unsigned integers.
template <class D>
TZM_INLINE Vec<D> LoadBytes(D d, const uint8_t* from) {
  if constexpr (sizeof(hn::TFromD<D>) < 8) {
    return hn::PromoteTo(d, hn::LoadU(hn::Rebind<uint8_t, D>(), from));
  } else {
#if HWY_ARCH_X86  // in one step
    if constexpr (hn::MaxLanes(D()) == 4) {
      int32_t bytes;
      std::memcpy(&bytes, from, sizeof bytes);
      return Vec<D>{_mm256_cvtepu8_epi64(_mm_cvtsi32_si128(bytes))};
    }
#if HWY_TARGET <= HWY_AVX3
    if constexpr (hn::MaxLanes(D()) == 8) return Vec<D>{_mm512_cvtepu8_epi64(_mm_loadu_si64(from))};
#endif
#endif
    const hn::Rebind<uint32_t, D> d32;
    return hn::PromoteTo(d, hn::PromoteTo(d32, hn::LoadU(hn::Rebind<uint8_t, D>(), from)));
  }
}

// Lanes of integers of up to 32 bits, or floating ones no wider than those of D, as floating lanes: exact, but for
// integers of more than 24 bits in binary32, which are rounded.
template <class D, class V>
TZM_INLINE Vec<D> ToFloating(D d, V v) {
  using T = hn::TFromV<V>;
  constexpr bool kSingle = sizeof(hn::TFromD<D>) == 4;
  if constexpr (std::is_same_v<T, hn::TFromD<D>>) return v;
  else if constexpr (sizeof(T) == 4 && kSingle) return hn::ConvertTo(d, v);
  else if constexpr (sizeof(T) == 4) return hn::PromoteTo(d, v);
  else return ToFloating(d, hn::PromoteTo(hn::Rebind<int32_t, D>(), v));
}
template <class D, class T>
TZM_INLINE Vec<D> LoadFloating(D d, const T* from) {
  return ToFloating(d, hn::LoadU(hn::Rebind<T, D>(), from));
}

// Floating lanes as lanes of T: floating ones no wider, or integers of up to 32 bits, saturated.
template <class T, class V>
TZM_INLINE auto RoundTo(V x) {
  const hn::Rebind<T, hn::DFromV<V>> dn;
  constexpr bool kSingle = sizeof(hn::TFromV<V>) == 4;
  if constexpr (std::is_same_v<T, hn::TFromV<V>>) return x;
  else if constexpr (std::is_floating_point_v<T>) return hn::DemoteTo(dn, x);
  else if constexpr (sizeof(T) == 4 && kSingle) return RoundFor<T>(x);
  else if constexpr (sizeof(T) == 4) return RoundToInt32(x);
  else if constexpr (kSingle) return hn::DemoteTo(dn, RoundFor<T>(x));
  else return hn::DemoteTo(dn, RoundToInt32(x));
}
template <class V, class T>
TZM_INLINE void StoreRounded(V x, T* to) {
  hn::StoreU(RoundTo<T>(x), hn::Rebind<T, hn::DFromV<V>>(), to);
}

#if HWY_ARCH_X86
// In each 128-bit block two lanes of `a` and two of `b`, two bits of kLanes naming each.
template <int kLanes, class V>
TZM_INLINE V ShufflePairs(V a, V b) {
#if HWY_TARGET <= HWY_AVX3
  if constexpr (sizeof(a.raw) == 64) return V{_mm512_shuffle_ps(a.raw, b.raw, kLanes)};
  else
#endif
    return V{_mm256_shuffle_ps(a.raw, b.raw, kLanes)};
}
#endif

// The real and the imaginary parts of a register's worth of complex elements, and back. The order of
// the elements in the registers is the machine's own: enough for element-wise work, and cheaper than
// the memory order where registers are made of 128-bit blocks.
template <class D, class T = hn::TFromD<D>>
TZM_INLINE void LoadParts(D d, const T* from, Vec<D>& re, Vec<D>& im) {
#if HWY_ARCH_X86
  if constexpr (sizeof(T) == 8 || (sizeof(T) == 4 && hn::MaxLanes(D()) >= 8)) {
    // Loaded once where the machine loads one register a cycle, not two: as an operand it would be loaded twice.
    const auto first = InRegister(hn::LoadU(d, from));
    auto second = hn::LoadU(d, from + hn::Lanes(d));
    if constexpr (hn::MaxLanes(D()) * sizeof(T) == 64) second = InRegister(second);
    if constexpr (sizeof(T) == 8) {
      re = hn::InterleaveLower(d, first, second);
      im = hn::InterleaveUpper(d, first, second);
    } else {
      const hn::RebindToFloat<D> df;
      re = hn::BitCast(d, ShufflePairs<0x88>(hn::BitCast(df, first), hn::BitCast(df, second)));
      im = hn::BitCast(d, ShufflePairs<0xdd>(hn::BitCast(df, first), hn::BitCast(df, second)));
    }
    return;
  }
#endif
  hn::LoadInterleaved2(d, from, re, im);
}
// The order of memory for what was computed from the parts.
template <class V>
TZM_INLINE V PartsInOrder(V v) {
#if HWY_ARCH_X86
  if constexpr (sizeof(hn::TFromV<V>) >= 4) {
    const hn::Repartition<uint64_t, hn::DFromV<V>> d64;
#if HWY_TARGET <= HWY_AVX3
    const __m512i evenFirst = _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7);
    const auto sorted = _mm512_permutexvar_epi64(evenFirst, hn::BitCast(d64, v).raw);
#else
    const auto sorted = _mm256_permute4x64_epi64(hn::BitCast(d64, v).raw, 0xd8);
#endif
    return hn::BitCast(hn::DFromV<V>(), Vec<decltype(d64)>{sorted});
  }
#endif
  return v;
}
// Two registers of numbers to one of half their width, in order: signed integers, saturating, or floats.
template <class D, class V, class T = hn::TFromD<D>>
TZM_INLINE Vec<D> NarrowPair(D d, V low, V high) {
  const hn::Half<D> half;
  if constexpr (std::is_same_v<T, float>) return hn::Combine(d, hn::DemoteTo(half, high), hn::DemoteTo(half, low));
#if HWY_ARCH_X86  // the machine narrows within 128-bit blocks
  const auto pack = [](auto a, auto b) TZM_LAMBDA {
    if constexpr (std::is_same_v<T, int16_t>) return TZM_X86(packs_epi32)(a, b);
    else if constexpr (std::is_same_v<T, uint16_t>) return TZM_X86(packus_epi32)(a, b);
    else if constexpr (std::is_same_v<T, uint8_t>) return TZM_X86(packus_epi16)(a, b);
  };
  if constexpr (std::is_integral_v<T>) {
    const Vec<Full<int32_t>> blocks{pack(low.raw, high.raw)};
    return hn::BitCast(d, PartsInOrder(blocks));
  }
#else
  if constexpr (std::is_same_v<T, int32_t>) return Vec<D>(vqmovn_high_s64(vqmovn_s64(low.raw), high.raw));
  else if constexpr (std::is_same_v<T, int16_t>) return Vec<D>(vqmovn_high_s32(vqmovn_s32(low.raw), high.raw));
  else if constexpr (std::is_same_v<T, uint16_t>) return Vec<D>(vqmovun_high_s32(vqmovun_s32(low.raw), high.raw));
  else if constexpr (std::is_same_v<T, uint8_t>) return Vec<D>(vqmovun_high_s16(vqmovun_s16(low.raw), high.raw));
#endif
}

// Two registers in turns to memory: the first of one, the first of the other, the second of the one ...
template <class D, class T = hn::TFromD<D>>
TZM_INLINE void StoreInterleaved(Vec<D> even, Vec<D> odd, D d, T* to) {
#if HWY_ARCH_ARM_A64 && !defined(__clang__)
  // GCC 12 copies both registers before the intrinsic stores them; what is to be in a register with a name it computes
  // there. A Neoverse N1 takes 1.39 cycles an element of Mul_32fc so, 1.63 with the copies, 1.68 with zip1, zip2 and
  // plain stores. "Utv" is GCC's constraint for the address of such a store, and "<>" lets the store move it on.
  if constexpr (sizeof(even.raw) == 16 && sizeof(T) > 1) {
    register auto first asm("v30") = even.raw;
    register auto second asm("v31") = odd.raw;
    struct __attribute__((may_alias, packed)) Both { uint8x16_t pair[2]; };
    Both& both = *reinterpret_cast<Both*>(to);
    if constexpr (sizeof(T) == 2) asm("st2 {%1.8h, %2.8h}, %0" : "=Utv<>"(both) : "w"(first), "w"(second));
    else if constexpr (sizeof(T) == 4) asm("st2 {%1.4s, %2.4s}, %0" : "=Utv<>"(both) : "w"(first), "w"(second));
    else asm("st2 {%1.2d, %2.2d}, %0" : "=Utv<>"(both) : "w"(first), "w"(second));
    return;
  }
#endif
  hn::StoreInterleaved2(even, odd, d, to);
}

template <class D, class T = hn::TFromD<D>>
TZM_INLINE void StoreParts(Vec<D> re, Vec<D> im, D d, T* to) {
#if HWY_ARCH_X86
  if constexpr (sizeof(T) >= 4) {
    const auto first = hn::InterleaveLower(d, re, im), second = hn::InterleaveUpper(d, re, im);
    if constexpr (hn::MaxLanes(d) < hn::MaxLanes(Full<T>())) {  // at once, as it may be read back
      const hn::Twice<D> both;
      hn::StoreU(hn::Combine(both, second, first), both, to);
    } else {
      hn::StoreU(first, d, to);
      hn::StoreU(second, d, to + hn::Lanes(d));
    }
    return;
  }
#endif
  StoreInterleaved(re, im, d, to);
}

}  // namespace tzm
