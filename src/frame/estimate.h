// The reciprocal and reciprocal square root estimates of AArch64's vector unit and the steps that refine
// them, with the same bits on every machine: some results are defined by these instructions.
#pragma once

#include "frame/vector.h"

#include <array>

namespace tzm {

#if HWY_ARCH_ARM_A64
namespace neon {
TZM_INLINE float32x4_t Recpe(float32x4_t x) { return vrecpeq_f32(x); }
TZM_INLINE float64x2_t Recpe(float64x2_t x) { return vrecpeq_f64(x); }
TZM_INLINE float32x4_t Recps(float32x4_t a, float32x4_t b) { return vrecpsq_f32(a, b); }
TZM_INLINE float64x2_t Recps(float64x2_t a, float64x2_t b) { return vrecpsq_f64(a, b); }
}  // namespace neon
#endif

#if HWY_ARCH_X86
// The estimate below where neither x nor its reciprocal is infinite, NaN or subnormal.
template <class V>
TZM_INLINE V NormalReciprocalEstimate(V x) {
  using T = hn::TFromV<V>;
  const hn::DFromV<V> d;
  const hn::RebindToUnsigned<decltype(d)> bits;
  using Bits = hn::TFromD<decltype(bits)>;
  constexpr int kDropped = (sizeof(T) == 4 ? 23 : 52) - 8;
  const auto kept = hn::Set(bits, static_cast<Bits>(~Bits{0} << kDropped));
  const auto half = hn::Set(bits, static_cast<Bits>(Bits{1} << (kDropped - 1)));
  const auto middle = hn::BitCast(d, hn::Or(hn::And(hn::BitCast(bits, x), kept), half));
  // To nearest; a tie cannot be, since the odd denominator does not divide a power of two.
  const auto quotient = hn::BitCast(bits, hn::Div(hn::Set(d, T{1}), middle));
  return hn::BitCast(d, hn::And(hn::Add(quotient, half), kept));
}
#endif

// 1/x to eight bits of fraction: the reciprocal of the middle of the interval of x that share their eight
// leading bits of fraction. Infinite for zero and below the reciprocal of the largest power of two.
template <class V>
TZM_INLINE V ReciprocalEstimate(V x) {
#if HWY_ARCH_ARM_A64
  return V(neon::Recpe(x.raw));
#else
  using T = hn::TFromV<V>;
  const hn::DFromV<V> d;
  // An exact factor to both x and the result keeps what is between away from subnormal numbers.
  const auto factor = hn::IfThenElse(hn::Lt(hn::Abs(x), hn::Set(d, T{1})), hn::Set(d, T{4}), hn::Set(d, T{0.25}));
  const V estimate = hn::Mul(NormalReciprocalEstimate(hn::Mul(x, factor)), factor);
  return hn::IfThenElse(hn::IsFinite(x), estimate, hn::Div(hn::Set(d, T{1}), x));
#endif
}

// 2 - a*b with one rounding, the factor of a Newton step towards 1/a; 2 where zero meets infinity.
template <class V>
TZM_INLINE V ReciprocalStep(V a, V b) {
#if HWY_ARCH_ARM_A64
  return V(neon::Recps(a.raw, b.raw));
#else
  const hn::DFromV<V> d;
  const auto two = hn::Set(d, hn::TFromV<V>{2});
  const auto step = hn::NegMulAdd(a, b, two);
  const auto zeroByInfinity = hn::AndNot(hn::Or(hn::IsNaN(a), hn::IsNaN(b)), hn::IsNaN(step));
  return hn::IfThenElse(zeroByInfinity, two, step);
#endif
}

// 1/x from the estimate by two such steps, each a product of its own rounding.
template <class V>
TZM_INLINE V RefinedReciprocal(V x) {
#if HWY_ARCH_X86  // where no lane is subnormal, infinite or NaN, nor is its reciprocal, nothing needs repair
  static_assert(sizeof(hn::TFromV<V>) == 4);
  const hn::DFromV<V> d;
  const V magnitude = hn::Abs(x);
  if (hn::AllTrue(d, hn::And(hn::Ge(magnitude, hn::Set(d, 0x1p-126f)), hn::Lt(magnitude, hn::Set(d, 0x1p126f))))) {
    const V estimate = NormalReciprocalEstimate(x), two = hn::Set(d, 2.0f);
    const V refined = hn::Mul(hn::NegMulAdd(x, estimate, two), estimate);
    return hn::Mul(hn::NegMulAdd(x, refined, two), refined);
  }
#endif
  const V estimate = ReciprocalEstimate(x);
  const V refined = hn::Mul(ReciprocalStep(x, estimate), estimate);
  return hn::Mul(ReciprocalStep(x, refined), refined);
}

// ---- Quotients of integers ----

// 1/x to more than half of the bits of its type, for a correction to complete; infinite for zero.
template <class V>
TZM_INLINE V RoughReciprocal(V x) {
#if HWY_ARCH_ARM_A64  // the machine divides slowly; each step doubles the right bits
  V reciprocal = ReciprocalEstimate(x);
  for (size_t bits = 8; bits < sizeof(hn::TFromV<V>) * 4; bits *= 2)
    reciprocal = hn::Mul(reciprocal, ReciprocalStep(x, reciprocal));
  return reciprocal;
#else
  return hn::Div(hn::Set(hn::DFromV<V>(), 1), x);
#endif
}

// b/a from the reciprocal of a: exact where it can be represented, else one of its two neighbours. The
// remainder of the first product corrects it. NaN for an infinite reciprocal.
template <class V>
TZM_INLINE V CorrectedQuotient(V a, V b, V reciprocal) {
  const V quotient = hn::Mul(b, reciprocal);
  return hn::MulAdd(hn::NegMulAdd(quotient, a, b), reciprocal, quotient);
}

// The same of integers of up to 16 bits in binary32 lanes; an infinity or NaN where a is zero.
template <class V>
TZM_INLINE V IntegerQuotient(V a, V b) {
#if HWY_ARCH_ARM_A64
  const hn::DFromV<V> d;
  const V reciprocal = RoughReciprocal(a);
  return hn::IfThenElse(hn::Eq(a, hn::Zero(d)), hn::Mul(b, reciprocal), CorrectedQuotient(a, b, reciprocal));
#else
  return hn::Div(b, a);
#endif
}

// Such a quotient rounded to odd: where it is inexact, the odd one of the two neighbours of the true one,
// and so neither an integer nor a tie, at any scale. Rounding it again is rounding the true one.
template <class V>
TZM_INLINE V RoundedToOdd(V quotient, V a, V b) {
  const hn::DFromV<V> d;
  const hn::RebindToSigned<decltype(d)> bits;
  const V remainder = hn::NegMulAdd(quotient, a, b);  // exact; NaN for an infinite quotient, which stays
  const auto away = hn::ShiftRight<31>(hn::BitCast(bits, hn::Xor(remainder, b)));  // -1: too large
  const auto odd = hn::Or(hn::Add(hn::BitCast(bits, quotient), away), hn::Set(bits, 1));
  return hn::IfThenElse(hn::Gt(hn::Abs(remainder), hn::Zero(d)), hn::BitCast(d, odd), quotient);
}

// A scale below which quotients of 16-bit integers need that. Above it a quotient that is not a tie (or an
// integer) is 1/(2^7 * 2^16) of it or more away from one, and so an ulp of binary32: rounded to a
// neighbour it still stands on its side, and rounding it again is right.
constexpr float kSafeFactor = 0x1p6f;

// The eight bits of fraction of the reciprocal square root of a number in [1, 4), by the lowest bit of its
// biased exponent (1 below 2) and its leading fraction bits: eight from 2 on, seven below. It is the
// rounded root of the middle of the interval that shares them.
inline constexpr auto kRootFractions = [] {
  std::array<int32_t, 512> table{};
  for (int index = 0; index < 512; ++index) {
    const bool odd = index >= 256;
    // In units of 1/512 of [1/4, 1), the middle of the interval.
    const int64_t a = odd ? 2 * (128 + (index - 256) / 2) + 1 : 2 * (256 + index / 2 * 2 + 1);
    int64_t b = 512;
    while (a * (b + 1) * (b + 1) < int64_t{1} << 28) ++b;
    table[static_cast<size_t>(index)] = static_cast<int32_t>((b + 1) / 2 & 0xff);
  }
  return table;
}();

// 1/sqrt(x) of binary32 lanes to eight bits of fraction, for normal positive x.
template <class V>
TZM_INLINE V ReciprocalRootEstimate(V x) {
#if HWY_ARCH_ARM_A64
  return V(vrsqrteq_f32(x.raw));
#else
  const hn::DFromV<V> d;
  const hn::RebindToSigned<decltype(d)> bits;
  const auto index = hn::And(hn::ShiftRight<15>(hn::BitCast(bits, x)), hn::Set(bits, 0x1ff));
  const auto fraction = hn::GatherIndex(bits, kRootFractions.data(), index);
  const auto exponent = hn::ShiftRight<1>(hn::Sub(hn::Set(bits, 380), hn::ShiftRight<23>(hn::BitCast(bits, x))));
  return hn::BitCast(d, hn::Or(hn::ShiftLeft<23>(exponent), hn::ShiftLeft<15>(fraction)));
#endif
}

// (3 - a*b) / 2 with one rounding, the factor of a Newton step towards 1/sqrt(x) for a = x*e and b = e.
template <class V>
TZM_INLINE V ReciprocalRootStep(V a, V b) {
#if HWY_ARCH_ARM_A64
  return V(vrsqrtsq_f32(a.raw, b.raw));
#else
  const hn::DFromV<V> d;
  return hn::Mul(hn::NegMulAdd(a, b, hn::Set(d, 3.0f)), hn::Set(d, 0.5f));
#endif
}

}  // namespace tzm
