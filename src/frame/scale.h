// The scale rule: a scale becomes a power of two, its mantissa dropped; a result is multiplied by the
// reciprocal power once, rounded to nearest with ties to even, and saturated. On exact integers the same
// values come from shifts, for every exponent.
#pragma once

#include "frame/vector.h"

#include <bit>
#include <cmath>

namespace tzm {

// log2(scale) truncated toward zero: 3.0 gives 1, 0.3 gives -1, everything between 0.5 and 2 gives 0.
inline int ScaleExponent(double scale) {
  int exponent;
  const double mantissa = frexp(scale, &exponent);  // in [0.5, 1)
  return exponent > 0 || mantissa == 0.5 ? exponent - 1 : exponent;
}

// 2^-exponent in Real, rounded: infinite for the least exponents, subnormal and in binary32 0 for the largest. Made of
// its bits: no rounding mode of the caller can touch it.
template <class Real>
Real ExponentFactor(int exponent) {
  using Bits = hwy::UnsignedFromSize<sizeof(Real)>;
  constexpr int kFraction = sizeof(Real) == 8 ? 52 : 23, kBias = sizeof(Real) == 8 ? 1023 : 127;
  const int field = std::min(kBias - exponent, 2 * kBias + 1);  // the largest one is infinity
  Bits bits = 0;
  if (field > 0) bits = static_cast<Bits>(field) << kFraction;
  else if (field > -kFraction) bits = Bits{1} << (kFraction - 1 + field);
  return std::bit_cast<Real>(bits);
}

// What the scale multiplies by, in binary64 and in binary32: above 1 it shrinks, below 1 it enlarges.
inline double ScaleFactor(double scale) { return ExponentFactor<double>(ScaleExponent(scale)); }
inline double ScaleFactor(int exponent) = delete;
inline float FloatFactor(double scale) { return ExponentFactor<float>(ScaleExponent(scale)); }

// The same for quotients of integers. They lie within 2^32 of 1, so that beyond 2^64 either way they are 0 or
// saturate; there the factor stays, and infinity times it is never a NaN.
inline float QuotientFactor(double scale) {
  return ExponentFactor<float>(std::clamp(ScaleExponent(scale), -64, 64));
}

// ---- The rule on exact integers ----

#if HWY_ARCH_ARM_A64
namespace neon {
// Shifts by counts below 0 go to the right and round ties up. LessOneIfZero takes 1 off, saturating,
// where `test` is 0.
#define TZM_SHIFTS(utype, stype, type, Lanes, add)                                                             \
  TZM_INLINE Lanes ShiftSaturating(Lanes v, int count) { return vqshlq_##type(v, vdupq_n_##stype(count)); }     \
  TZM_INLINE Lanes ShiftRounding(Lanes v, int count) { return vrshlq_##type(v, vdupq_n_##stype(count)); }       \
  TZM_INLINE Lanes LessOneIfZero(Lanes v, Lanes test) {                                                        \
    return add##_##type(v, vreinterpretq_##stype##_##utype(vceqzq_##type(test)));                               \
  }
TZM_SHIFTS(u16, s16, u16, uint16x8_t, vsqaddq)
TZM_SHIFTS(u32, s32, u32, uint32x4_t, vsqaddq)
TZM_SHIFTS(u32, s32, s32, int32x4_t, vqaddq)
TZM_SHIFTS(u64, s64, s64, int64x2_t, vqaddq)
#undef TZM_SHIFTS
}  // namespace neon
#endif

// Shifts of the integer lanes of D. Each is a function object on vectors, made once before the loop.

// Exponent 0: nothing to do, only the narrowing that follows.
struct KeepLanes {
  template <class V>
  TZM_INLINE V operator()(V v) const { return v; }
};

// Exponent below 0: shifts left by `count`, saturating.
template <class D>
class ShiftLeftSaturating {
 public:
  using T = hn::TFromD<D>;
  static constexpr int kBits = 8 * sizeof(T);

  // From kBits on every lane but 0 saturates. A signed lane does so from kBits - 1 on.
  explicit ShiftLeftSaturating(int count) : count_(std::min<int>(count, kBits - std::is_signed_v<T>)) {}

  TZM_INLINE Vec<D> operator()(Vec<D> v) const {
#if HWY_ARCH_ARM_A64
    return Vec<D>(neon::ShiftSaturating(v.raw, count_));
#else
    const D d;
    const auto shifted = hn::ShiftLeftSame(v, count_);
    const auto same = hn::Eq(hn::ShiftRightSame(shifted, count_), v);
    auto limit = hn::Set(d, std::numeric_limits<T>::max());
    if constexpr (std::is_signed_v<T>) limit = hn::Xor(limit, hn::BroadcastSignBit(v));
    return hn::IfThenElse(same, shifted, limit);
#endif
  }

 private:
  int count_;
};

// Exponent above 0: shifts right by `count`, 1 to the number of bits, and rounds to nearest, ties to even.
// No lane overflows on the way.
template <class D>
class ShiftRightRounding {
 public:
  using T = hn::TFromD<D>;
  static constexpr int kBits = 8 * sizeof(T);

#if HWY_ARCH_ARM_A64
  // The machine's shift rounds ties up. With 1 taken off where the quotient is even, ties go down there,
  // and nothing else changes.
  explicit ShiftRightRounding(int count)
      : count_(count), odd_(static_cast<T>(count < kBits ? uint64_t{1} << count : 0)) {}
  TZM_INLINE Vec<D> operator()(Vec<D> v) const {
    const auto odd = hn::And(v, hn::Set(D(), odd_));
    return Vec<D>(neon::ShiftRounding(neon::LessOneIfZero(v.raw, odd.raw), -count_));
  }

 private:
  int count_;
  T odd_;  // the lowest bit of the quotient, in its place
#else
  explicit ShiftRightRounding(int count)
      : count_(count),
        fraction_(static_cast<T>((uint64_t{2} << (count - 1)) - 1)),
        half_(static_cast<T>(uint64_t{1} << (count - 1))) {}
  TZM_INLINE Vec<D> operator()(Vec<D> v) const {
    const D d;
    const auto quotient = hn::ShiftRightSame(v, count_);
    if constexpr (std::is_same_v<T, uint16_t>) {
      // As on AArch64; the average with 0 is a shift by one that rounds ties up.
      const auto less = hn::SaturatedSub(v, hn::AndNot(quotient, hn::Set(d, T{1})));
      return hn::AverageRound(hn::ShiftRightSame(less, count_ - 1), hn::Zero(d));
    } else {
      // Half, less one where the quotient is odd; unsigned lanes are compared as signed ones, less 2^(bits-1).
      constexpr T kBias = std::is_signed_v<T> ? 0 : T{1} << (kBits - 1);
      const hn::RebindToSigned<D> ds;
      const auto fraction = hn::Xor(hn::And(v, hn::Set(d, fraction_)), hn::Set(d, kBias));
      const auto limit = hn::Sub(hn::Set(d, static_cast<T>(half_ ^ kBias)), hn::And(quotient, hn::Set(d, T{1})));
      const auto up = hn::Gt(hn::BitCast(ds, fraction), hn::BitCast(ds, limit));
      return hn::Sub(quotient, hn::VecFromMask(d, hn::RebindMask(d, up)));
    }
  }

 private:
  int count_;
  T fraction_, half_;
#endif
};

// Exponents so large that every lane becomes 0.
struct ShiftOut {
  template <class V>
  TZM_INLINE V operator()(V) const { return hn::Zero(hn::DFromV<V>()); }
};

// Calls use(shift) with the shift of lanes of D for the exponent.
template <class D, class Use>
TZM_INLINE void WithShift(D, int exponent, Use&& use) {
  // The largest unsigned lane is above half of 2^bits, the largest signed ones are not.
  constexpr int kLast = ShiftRightRounding<D>::kBits - std::is_signed_v<hn::TFromD<D>>;
  if (exponent == 0) use(KeepLanes());
  else if (exponent < 0) use(ShiftLeftSaturating<D>(-exponent));
  else if (exponent <= kLast) use(ShiftRightRounding<D>(exponent));
  else use(ShiftOut());
}

}  // namespace tzm
