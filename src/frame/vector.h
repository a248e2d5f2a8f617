// The vector layer: Google Highway with one target fixed at compile time, and what it lacks or leaves
// open between architectures. Kernel text names no architecture; this header is the one that does.
#pragma once

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

// For function objects and lambdas on the road of a vector: GCC will not inline a kernel with several
// call sites by itself.
#define TZM_INLINE inline __attribute__((always_inline))
#define TZM_LAMBDA __attribute__((always_inline))

// An intrinsic of the whole register, by its name behind the prefix of the width.
#if HWY_ARCH_X86
#if HWY_TARGET <= HWY_AVX3
#define TZM_X86(operation) _mm512_##operation
#else
#define TZM_X86(operation) _mm256_##operation
#endif
#endif

namespace tzm {

namespace hn = hwy::HWY_NAMESPACE;

template <class T>
using Full = hn::ScalableTag<T>;  // a whole register of T
template <class D>
using Vec = hn::Vec<D>;
template <class D>
using Mask = hn::Mask<D>;

// The parts of a complex array as one array of reals.
template <class Complex>
TZM_INLINE auto* Parts(Complex* array) {
  using Part = std::remove_reference_t<decltype((array->re))>;
  return reinterpret_cast<Part*>(array);
}

// Element of an array that need not be aligned.
template <class T>
TZM_INLINE T LoadElement(const T* from) {
  T value;
  std::memcpy(&value, from, sizeof(T));
  return value;
}
template <class T>
TZM_INLINE void StoreElement(T value, T* to) {
  std::memcpy(to, &value, sizeof(T));
}

constexpr double kPi = 3.141592653589793, kTwoPi = 2 * kPi;

// a*b + c of one value with one rounding.
TZM_INLINE float Fma(float a, float b, float c) { return __builtin_fmaf(a, b, c); }
TZM_INLINE double Fma(double a, double b, double c) { return __builtin_fma(a, b, c); }

// Whether a condition has held in any lane so far: what a warning is made of.
template <class D>
class AnyLane {
 public:
  TZM_INLINE void See(Mask<D> condition) { seen_ = hn::Or(seen_, condition); }
  TZM_INLINE bool Seen() const { return !hn::AllFalse(D(), seen_); }

 private:
  Mask<D> seen_ = hn::MaskFromVec(hn::Zero(D()));
};

// f(0), f(1), ... f(N-1), written out, the number being a constant expression: GCC leaves loops over arrays
// of registers rolled, and the arrays in memory.
template <size_t N, class F>
TZM_INLINE void Unrolled(F&& f) {
  [&]<size_t... i>(std::index_sequence<i...>) TZM_LAMBDA {
    (f(std::integral_constant<size_t, i>()), ...);
  }(std::make_index_sequence<N>());
}

// Keeps a value that was loaded once in its register: GCC on x86 rather loads it again in each operation.
template <class V>
TZM_INLINE V InRegister(V v) {
#if HWY_ARCH_X86
  asm("" : "+x"(v.raw));
#endif
  return v;
}

// ---- Minimum and maximum with one meaning ----
// `b` where `a` is NaN or the comparison fails: the second operand wins ties of signed zeros too.
template <class V>
TZM_INLINE V MinOrSecond(V a, V b) {
#if HWY_ARCH_X86
  return hn::Min(a, b);
#else
  return hn::IfThenElse(hn::Lt(a, b), a, b);
#endif
}
template <class V>
TZM_INLINE V MaxOrSecond(V a, V b) {
#if HWY_ARCH_X86
  return hn::Max(a, b);
#else
  return hn::IfThenElse(hn::Gt(a, b), a, b);
#endif
}
// The larger of a magnitude, which starts at +0, and another; NaN where either is NaN.
template <class V>
TZM_INLINE V MaxMagnitude(V best, V magnitude) {
#if HWY_ARCH_X86  // as integers magnitudes keep their order; NaN, less its sign, stands above infinity
  const hn::DFromV<V> d;
  const hn::RebindToSigned<decltype(d)> bits;
  return hn::BitCast(d, hn::Max(hn::BitCast(bits, best), hn::BitCast(bits, hn::Abs(magnitude))));
#else
  if constexpr (sizeof(hn::TFromV<V>) == 4) return V(vmaxq_f32(best.raw, magnitude.raw));
  else return V(vmaxq_f64(best.raw, magnitude.raw));
#endif
}

// AArch64's own: NaN where either operand is NaN, and -0 below +0.
template <class V>
TZM_INLINE V MinOrNaN(V a, V b) {
#if HWY_ARCH_X86
  const auto least = hn::IfThenElse(hn::Eq(a, b), hn::Or(a, b), hn::Min(a, b));
  return hn::IfThenElse(hn::Or(hn::IsNaN(a), hn::IsNaN(b)), hn::Add(a, b), least);
#else
  if constexpr (sizeof(hn::TFromV<V>) == 4) return V(vminq_f32(a.raw, b.raw));
  else return V(vminq_f64(a.raw, b.raw));
#endif
}
template <class V>
TZM_INLINE V MaxOrNaN(V a, V b) {
#if HWY_ARCH_X86
  const auto most = hn::IfThenElse(hn::Eq(a, b), hn::And(a, b), hn::Max(a, b));
  return hn::IfThenElse(hn::Or(hn::IsNaN(a), hn::IsNaN(b)), hn::Add(a, b), most);
#else
  if constexpr (sizeof(hn::TFromV<V>) == 4) return V(vmaxq_f32(a.raw, b.raw));
  else return V(vmaxq_f64(a.raw, b.raw));
#endif
}

// ---- Floating to integer ----
// To nearest, ties to even, unless told otherwise; beyond the range the nearest end; NaN to 0. AArch64's
// conversion does all of that by itself, x86's gives the least integer for whatever it cannot represent.

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

// ---- Widths ----

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
// Lanes of 32-bit integers as integers of up to 32 bits, saturated.
template <class V, class T>
TZM_INLINE void StoreSaturated(V v, T* to) {
  const hn::Rebind<T, hn::DFromV<V>> dn;
#if HWY_ARCH_X86  // Highway's narrowing to 8 bits does not saturate what has more than 15
  static_assert(sizeof(T) > 1);
#endif
  if constexpr (sizeof(T) == 4) hn::StoreU(v, dn, to);
  else hn::StoreU(hn::DemoteTo(dn, v), dn, to);
}

// One register of binary32 lanes as integers of up to 32 bits.
template <class V, class T>
TZM_INLINE void StoreRounded(V x, T* to) {
  const hn::Rebind<T, hn::DFromV<V>> dn;
  if constexpr (sizeof(T) == 4) hn::StoreU(RoundFor<T>(x), dn, to);
  else hn::StoreU(hn::DemoteTo(dn, RoundFor<T>(x)), dn, to);
}

// The real and the imaginary parts of a register's worth of complex elements, and back. The order of
// the elements in the registers is the machine's own: enough for element-wise work, and cheaper than
// the memory order where registers are made of 128-bit blocks.
template <class D, class T = hn::TFromD<D>>
TZM_INLINE void LoadParts(D d, const T* from, Vec<D>& re, Vec<D>& im) {
#if HWY_ARCH_X86
  if constexpr (sizeof(T) == 8) {
    const auto first = hn::LoadU(d, from), second = hn::LoadU(d, from + hn::Lanes(d));
    re = hn::InterleaveLower(d, first, second);
    im = hn::InterleaveUpper(d, first, second);
    return;
  } else if constexpr (sizeof(T) == 4 && hn::MaxLanes(D()) == hn::MaxLanes(Full<T>())) {
    const hn::RebindToFloat<D> df;
    const auto first = hn::BitCast(df, hn::LoadU(d, from)), second = hn::BitCast(df, hn::LoadU(d, from + hn::Lanes(d)));
    re = hn::BitCast(d, Vec<decltype(df)>{TZM_X86(shuffle_ps)(first.raw, second.raw, 0x88)});
    im = hn::BitCast(d, Vec<decltype(df)>{TZM_X86(shuffle_ps)(first.raw, second.raw, 0xdd)});
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

template <class D, class T = hn::TFromD<D>>
TZM_INLINE void StoreParts(Vec<D> re, Vec<D> im, D d, T* to) {
#if HWY_ARCH_X86
  if constexpr (sizeof(T) >= 4) {
    hn::StoreU(hn::InterleaveLower(d, re, im), d, to);
    hn::StoreU(hn::InterleaveUpper(d, re, im), d, to + hn::Lanes(d));
    return;
  }
#endif
  hn::StoreInterleaved2(re, im, d, to);
}

// Half a register of binary32 elements from memory, each in two lanes in a row: a real factor for complex
// elements.
TZM_INLINE Vec<Full<float>> LoadTwice(Full<float> d, const float* from) {
  const hn::Repartition<uint64_t, Full<float>> dw;
  const auto narrow = hn::LoadU(hn::Rebind<uint32_t, decltype(dw)>(), reinterpret_cast<const uint32_t*>(from));
  const auto wide = hn::PromoteTo(dw, narrow);
  return hn::BitCast(d, hn::Or(wide, hn::ShiftLeft<32>(wide)));
}

// ---- Products of integers, summed ----

// Exact sums of products of 16-bit integers in two 64-bit lanes: of each four products in a row the
// first two go to lane 0, the others to lane 1.
class ProductSums16 {
 public:
  using D = Full<int16_t>;

  TZM_INLINE void Add(Vec<D> a, Vec<D> b) {
#if HWY_ARCH_ARM_A64
    sums_ = vpadalq_s32(sums_, vmull_s16(vget_low_s16(a.raw), vget_low_s16(b.raw)));
    sums_ = vpadalq_s32(sums_, vmull_high_s16(a.raw, b.raw));
#else
    // A pair of products lies in [-2^31 + 2^16, 2^31]; with 2^31 - 1 added it is an unsigned number.
    const hn::Repartition<uint32_t, D> d32;
    const Vec<decltype(d32)> pairs{TZM_X86(madd_epi16)(a.raw, b.raw)};
    const auto biased = hn::BitCast(D64(), hn::Add(pairs, hn::Set(d32, kBias)));
    even_ = hn::Add(even_, hn::And(biased, hn::Set(D64(), 0xffffffff)));
    odd_ = hn::Add(odd_, hn::ShiftRight<32>(biased));
    pairs_ += hn::Lanes(D64());
#endif
  }
  TZM_INLINE int64_t Lane(int which) const {
#if HWY_ARCH_ARM_A64
    return which == 0 ? vgetq_lane_s64(sums_, 0) : vgetq_lane_s64(sums_, 1);
#else
    return static_cast<int64_t>(hn::GetLane(hn::SumOfLanes(D64(), which == 0 ? even_ : odd_)) - pairs_ * kBias);
#endif
  }

 private:
#if HWY_ARCH_ARM_A64
  int64x2_t sums_ = vdupq_n_s64(0);
#else
  using D64 = hn::Repartition<uint64_t, D>;
  static constexpr uint32_t kBias = 0x7fffffff;
  Vec<D64> even_ = hn::Zero(D64()), odd_ = hn::Zero(D64());
  uint64_t pairs_ = 0;
#endif
};

// Adds the sum of each two neighbours to a lane of twice their width. The lanes have room for
// kPairSums registers.
constexpr size_t kPairSums = size_t{1} << 15;
TZM_INLINE Vec<Full<int32_t>> AddPairs(Vec<Full<int32_t>> sums, Vec<Full<int16_t>> v) {
#if HWY_ARCH_ARM_A64
  return Vec<Full<int32_t>>(vpadalq_s16(sums.raw, v.raw));
#else
  return hn::Add(sums, Vec<Full<int32_t>>{TZM_X86(madd_epi16)(v.raw, TZM_X86(set1_epi16)(1))});
#endif
}
TZM_INLINE Vec<Full<uint32_t>> AddPairs(Vec<Full<uint32_t>> sums, Vec<Full<uint16_t>> v) {
#if HWY_ARCH_ARM_A64
  return Vec<Full<uint32_t>>(vpadalq_u16(sums.raw, v.raw));
#else
  const Full<uint32_t> d;
  const auto pairs = hn::BitCast(d, v);
  return hn::Add(hn::Add(sums, hn::And(pairs, hn::Set(d, 0xffff))), hn::ShiftRight<16>(pairs));
#endif
}

// The sum of 32-bit lanes as a 64-bit integer.
template <class V>
TZM_INLINE auto WideSum(V v) {
  const hn::Half<hn::DFromV<V>> half;
  const hn::RepartitionToWide<hn::DFromV<V>> wide;
  const auto low = hn::PromoteTo(wide, hn::LowerHalf(half, v)), high = hn::PromoteTo(wide, hn::UpperHalf(half, v));
  return hn::GetLane(hn::SumOfLanes(wide, hn::Add(low, high)));
}

// {a0*b0 + a1*b1, a2*b2 + a3*b3} in binary64, each product rounded and then each sum.
using FourInts = hn::FixedTag<int32_t, 4>;
using TwoDoubles = hn::FixedTag<double, 2>;
TZM_INLINE Vec<TwoDoubles> PairSumsOfProducts(Vec<FourInts> a, Vec<FourInts> b) {
#if HWY_ARCH_ARM_A64
  const auto low = vcvtq_f64_s64(vmull_s32(vget_low_s32(a.raw), vget_low_s32(b.raw)));
  const auto high = vcvtq_f64_s64(vmull_high_s32(a.raw, b.raw));
  return Vec<TwoDoubles>(vpaddq_f64(low, high));
#else  // the factors are exact in binary64, so their product rounds as the integer product would
  const hn::FixedTag<double, 4> d;
  const auto products = hn::Mul(hn::PromoteTo(d, a), hn::PromoteTo(d, b));
  const auto low = hn::LowerHalf(products), high = hn::UpperHalf(TwoDoubles(), products);
  return hn::Add(hn::ConcatEven(TwoDoubles(), high, low), hn::ConcatOdd(TwoDoubles(), high, low));
#endif
}

// ---- Lane structures of ordered reductions ----

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
  // Elements of a narrower type, widened.
  template <class Narrow>
  static TZM_INLINE LaneArray LoadWiden(const Narrow* from) {
    const hn::Rebind<Narrow, D> dn;
    return Each([&](size_t r) TZM_LAMBDA { return hn::PromoteTo(D(), hn::LoadU(dn, from + r * kWidth)); });
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
