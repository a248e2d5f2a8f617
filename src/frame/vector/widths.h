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

// Integers of up to 32 bits as lanes of binary32, rounded where they have more than 24.
template <class D, class T>
TZM_INLINE Vec<D> LoadAsFloat(D d, const T* from) {
  const hn::RebindToSigned<D> d32;
  if constexpr (sizeof(T) == 4) return hn::ConvertTo(d, hn::LoadU(d32, from));
  else return hn::ConvertTo(d, hn::PromoteTo(d32, hn::LoadU(hn::Rebind<T, D>(), from)));
}

// One register of binary32 lanes as integers of up to 32 bits.
template <class V, class T>
TZM_INLINE void StoreRounded(V x, T* to) {
  const hn::Rebind<T, hn::DFromV<V>> dn;
  if constexpr (sizeof(T) == 4) hn::StoreU(RoundFor<T>(x), dn, to);
  else hn::StoreU(hn::DemoteTo(dn, RoundFor<T>(x)), dn, to);
}

// Half a register of elements from memory, each in two lanes in a row: a real factor for complex elements.
template <class D>
TZM_INLINE Vec<D> LoadTwice(D d, const float* from) {
  const hn::Half<D> half;
#if HWY_ARCH_X86
  alignas(64) static constexpr int32_t kTwice[] = {0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7};
  return hn::TableLookupLanes(hn::ZeroExtendVector(d, hn::LoadU(half, from)), hn::SetTableIndices(d, kTwice));
#else
  const auto narrow = hn::ZeroExtendVector(d, hn::LoadU(half, from));
  return hn::InterleaveLower(d, narrow, narrow);
#endif
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
