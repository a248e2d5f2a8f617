// Floating lanes to integers: to nearest, ties to even, unless told otherwise; beyond the range the nearest end;
// NaN to 0. AArch64's conversion does all of that by itself, x86's gives the least integer for whatever it cannot
// represent.
#pragma once

#include "frame/vector/minimum.h"

#include <limits>

namespace tzm {

#if HWY_ARCH_X86
// The instruction alone; Highway's form of it repairs what our callers see to themselves.
template <class V>
TZM_INLINE auto ConvertNearest(V x) {
  const hn::Rebind<int32_t, hn::DFromV<V>> d32;
  using Integers = Vec<decltype(d32)>;
  if constexpr (sizeof(hn::TFromV<V>) == 8) {
    if constexpr (sizeof(x.raw) == 16) return Integers{_mm_cvtpd_epi32(x.raw)};
#if HWY_TARGET <= HWY_AVX3
    else if constexpr (sizeof(x.raw) == 64) return Integers{_mm512_cvtpd_epi32(x.raw)};
#endif
    else return Integers{_mm256_cvtpd_epi32(x.raw)};
  } else {
    if constexpr (sizeof(x.raw) == 16) return Integers{_mm_cvtps_epi32(x.raw)};
#if HWY_TARGET <= HWY_AVX3
    else if constexpr (sizeof(x.raw) == 64) return Integers{_mm512_cvtps_epi32(x.raw)};
#endif
    else return Integers{_mm256_cvtps_epi32(x.raw)};
  }
}
#endif

// binary32 lanes as integers of T, in 32 bits that a saturating narrowing takes to T. Where the conversion does not
// saturate, what narrow ones cannot hold is clamped first.
template <class T, class V>
TZM_INLINE auto RoundFor(V x) {
#if HWY_ARCH_X86
  const hn::DFromV<V> d;
  if constexpr (sizeof(T) < 4) {
    if constexpr (std::is_signed_v<T>) x = hn::IfThenElseZero(hn::Eq(x, x), x);
    else x = MaxOrSecond(x, hn::Zero(d));
    return ConvertNearest(MinOrSecond(x, hn::Set(d, std::numeric_limits<T>::max())));
  } else {
    const hn::RebindToSigned<decltype(d)> d32;
    const auto above = hn::RebindMask(d32, hn::Ge(x, hn::Set(d, 2147483648.0f)));
    const auto fixed = hn::IfThenElse(above, hn::Set(d32, std::numeric_limits<int32_t>::max()), ConvertNearest(x));
    return hn::IfThenZeroElse(hn::RebindMask(d32, hn::IsNaN(x)), fixed);
  }
#else
  return hn::NearestInt(x);
#endif
}

// binary64 lanes to half as many 32-bit integer lanes, toward zero and to nearest.
template <class V>
TZM_INLINE auto TruncateToInt32(V x) {
  const hn::DFromV<V> df;
  const hn::Rebind<int32_t, decltype(df)> d32;
#if HWY_ARCH_X86
  x = hn::IfThenZeroElse(hn::IsNaN(x), x);
#endif
  return hn::DemoteTo(d32, x);
}
template <class V>
TZM_INLINE auto RoundToInt32(V x) {
  const hn::DFromV<V> df;
#if HWY_ARCH_X86
  x = hn::IfThenElseZero(hn::Eq(x, x), x);
  return ConvertNearest(MinOrSecond(x, hn::Set(df, 2147483647.0)));
#else
  const hn::Rebind<int32_t, decltype(df)> d32;
  return Vec<decltype(d32)>(vqmovn_s64(vcvtnq_s64_f64(x.raw)));
#endif
}

// binary64 lanes to 64-bit integer lanes.
template <class V>
TZM_INLINE auto RoundToInt64(V x) {
  const hn::DFromV<V> df;
  const hn::RebindToSigned<decltype(df)> d64;
#if HWY_ARCH_X86
  x = hn::Round(hn::IfThenElseZero(hn::Eq(x, x), x));
#if HWY_TARGET <= HWY_AVX3
  return hn::ConvertTo(d64, x);
#else
  // In two halves, each an integer below 2^52 that an addition puts into the low bits of a binary64 number.
  const auto twoTo32 = hn::Set(df, 0x1p32);
  const auto least = hn::Max(x, hn::Set(df, -0x1p63));
  const auto high = hn::Floor(hn::Mul(least, hn::Set(df, 0x1p-32)));
  const auto low = hn::NegMulAdd(high, twoTo32, least);
  const hn::Repartition<int32_t, decltype(df)> d32;
  const auto bits = [&](auto v, double magic) TZM_LAMBDA { return hn::BitCast(d64, hn::Add(v, hn::Set(df, magic))); };
  const auto both = hn::OddEven(hn::BitCast(d32, hn::ShiftLeft<32>(bits(high, 0x1.8p52))),
                                hn::BitCast(d32, bits(low, 0x1p52)));
  const auto above = hn::RebindMask(d64, hn::Ge(x, hn::Set(df, 0x1p63)));
  return hn::IfThenElse(above, hn::Set(d64, std::numeric_limits<int64_t>::max()), hn::BitCast(d64, both));
#endif
#else
  return Vec<decltype(d64)>(vcvtnq_s64_f64(x.raw));
#endif
}

// ---- One value ----

// Rounds one value to the nearest integer, ties to even, and saturates it to the range of T; NaN gives
// 0. The bounds are those of T as values of F.
template <class T, class F>
TZM_INLINE T RoundSaturate(F value) {
  using Limits = std::numeric_limits<T>;
  if (value >= static_cast<F>(Limits::max())) return Limits::max();
  if (value <= static_cast<F>(Limits::min())) return Limits::min();
  if (value != value) return 0;
  const hn::CappedTag<F, 1> one;
  return static_cast<T>(hn::GetLane(hn::Round(hn::Set(one, value))));
}

}  // namespace tzm
