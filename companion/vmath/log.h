// log x = k log 2 + log c + log(1 + r) with x = 2^k c (1 + r), c one of 16, |r| < 1/32.2.
#pragma once

#include "constants.h"

namespace vmath {

// x = 2^k fraction, kLogIndex the first of the bits of `index` that number c; for x from kLeastForLog on.
constexpr int kLogIndex = 48;
constexpr double kLeastForLog = 0x1p-1000;
struct LogArgument {
  V k, fraction;
  I index;
};
TZM_INLINE LogArgument SplitForLog(V x) {
  const I one = SetBits(uint64_t{1023} << 52), toOne = hn::Sub(one, SetBits(kLogStart));
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
  const I shifted = hn::Add(BitsOf(x), hn::Sub(toOne, SetBits(uint64_t{1} << 52)));  // 2^(k - 1), a fraction from 1 on
  const __m512d number = OfBits(shifted).raw;
  const V k{_mm512_getexp_pd(number)}, fraction{_mm512_getmant_pd(number, _MM_MANT_NORM_1_2, _MM_MANT_SIGN_zero)};
  return {hn::Add(k, C(1)), OfBits(hn::Sub(BitsOf(fraction), toOne)), shifted};
#else
  const I shifted = hn::Add(BitsOf(x), toOne);
  const V biased = OfBits(hn::Or(ShiftRightLogical<52>(shifted), SetBits(uint64_t{0x433} << 52)));  // 2^52 + 1023 + k
  const I exponent = hn::And(hn::Sub(shifted, one), SetBits(0xfff0000000000000));
  return {hn::Sub(biased, C(0x1p52 + 1023)), OfBits(hn::Sub(BitsOf(x), exponent)), shifted};
#endif
}

struct Natural {
  static constexpr Middle kMiddles[] = {{-0x1.1c2b1fp+2, -0x1.1c2b1ep+2}, {0x1.1fcbcfp+1, 0x1.1fcbcep+1},
                                        {0x1.1e0695p+4, 0x1.1e0696p+4}, {0x1.a9a3f1p+5, 0x1.a9a3f2p+5},
                                        {0x1.08b511p+6, 0x1.08b512p+6}};
  static constexpr auto& kTable = kLogTable;
  static constexpr auto& kOf2 = kLn2;
};
struct Decimal {
  static constexpr Middle kMiddles[] = {{-0x1.d33a45p+4, -0x1.d33a46p+4}};
  static constexpr auto& kTable = kLog10Table;
  static constexpr auto& kOf2 = kLog10Of2;
};

// Positive and finite, but neither subnormal nor little above. By the bits as integers: with one added to the exponent,
// what is no such number is less than the least, or negative.
TZM_INLINE M IsForLog(V x) {
  const I one = SetBits(uint64_t{1} << 52), least = hn::Add(BitsOf(C(kLeastForLog)), one);
  return hn::RebindMask(D(), hn::Gt(hn::Add(BitsOf(x), one), hn::Sub(least, SetBits(1))));
}
// Whether any lane is none of those of `usual`. AArch64 looks at the upper halves of both numbers, which it takes out
// for the table anyway, at once: less the least one's, a half that is too small, or with so much more too large, has
// the highest bit. Of halves next to the limits it takes a usual one for another.
TZM_INLINE bool AnyNotForLog(const LogArgument& a, M usual) {
#if HWY_ARCH_ARM_A64
  (void)usual;
  constexpr uint64_t kBoth = 0x100000001, kToIndex = (uint64_t{1023} << 52) - kLogStart;
  constexpr uint64_t kLeast = ((std::bit_cast<uint64_t>(kLeastForLog) + kToIndex) >> 32) + 1;
  constexpr uint64_t kEnd = ((uint64_t{0x7ff} << 52) + kToIndex) >> 32;
  const uint64_t halves = UpperHalves(a.index) - kLeast * kBoth;
  return HWY_UNLIKELY(((halves | (halves + (0x80000000 - (kEnd - kLeast)) * kBoth)) & 0x80000000 * kBoth) != 0);
#else
  (void)a;
  return NotAll(usual);
#endif
}
TZM_INLINE M32 IsPositiveNormal(F x) {
  const int32_t one = 1 << 23;
  return hn::RebindMask(S(), hn::Gt(hn::Add(BitsOf(x), hn::Set(Bits32(), one)), hn::Set(Bits32(), 2 * one - 1)));
}
// The logarithm of what is no positive number, x itself for the rest.
TZM_INLINE V LogOfOther(V x) {
  const V negative = hn::IfThenElse(hn::Lt(x, hn::Zero(D())), C(kNaN), x);
  return hn::IfThenElse(hn::Eq(x, hn::Zero(D())), C(-kInfinity), negative);
}

// Within 0.54 ulp. k log 2 + log c is exact; r comes with the excess of its rounding, the sum of the two with the rest.
template <class Base>
struct Log64 {
  TZM_INLINE V operator()(V x) const {
    const LogArgument a = SplitForLog(x);
    const V y = Of(a, a.k);
    const M usual = IsForLog(x);
    if (AnyNotForLog(a, usual)) return hn::IfThenElse(usual, y, OfOther(x));
    return y;
  }

 private:
  static TZM_INLINE V Of(const LogArgument& a, V k) {
    const auto [inverse, log] = Lookup<Base::kTable, kLogIndex>(a.index).number;
    const V product = hn::Mul(a.fraction, inverse), r = hn::Sub(product, C(1));
    const V excess = Fnma(a.fraction, inverse, product);
    const V exact = Fma(k, C(Base::kOf2[0]), log), r2 = hn::Mul(r, r);
    if constexpr (std::is_same_v<Base, Natural>) {
      const Sum sum = FastTwoSum(exact, r);
      const V low = Fma(k, C(Base::kOf2[1]), hn::Sub(sum.rest, Fnma(excess, r, excess)));
      return hn::Add(sum.sum, Fma(r2, PolynomialInTwo<kLogPoly>(r, r2), low));
    } else {
      const V sum = Fma(r, C(kLog10E), exact), sumRest = Fma(r, C(kLog10E), hn::Sub(exact, sum));
      const V low = Fma(k, C(Base::kOf2[1]), Fnma(Fnma(excess, r, excess), C(kLog10E), sumRest));
      return hn::Add(sum, Fma(r, PolynomialInTwo<kLog10Poly>(r, r2), low));
    }
  }
  static __attribute__((noinline)) V OfOther(V x) {
    const M small = hn::And(hn::Gt(x, hn::Zero(D())), hn::Lt(x, C(kLeastForLog)));
    const LogArgument a = SplitForLog(hn::Mul(x, C(0x1p54)));
    const V y = Of(a, hn::Sub(a.k, C(54)));
    return hn::IfThenElse(small, y, LogOfOther(x));
  }
};

// Correctly rounded: k ln 2 + ln c + r - r^2/2 + r^3 p(r), |r| < 1/16, 1/c of so few bits that r is exact. The first
// step is good to 2^-27 of r^2 and 2^-36 of the result.
template <class Base>
struct Log32 : InStages<Log32<Base>> {
  struct Stage {
    F r, k, log, logRest;
  };
  static TZM_INLINE Stage Begin(F x) {
    const I32 one = BitsOf(C32(1)), shifted = hn::Add(BitsOf(x), hn::Sub(one, hn::Set(Bits32(), kLogStart32)));
    const I32 exponent = hn::Sub(hn::And(shifted, hn::Set(Bits32(), 0x7f800000)), one);
    const F k = hn::ConvertTo(S(), hn::ShiftRight<23>(exponent)), fraction = OfBits(hn::Sub(BitsOf(x), exponent));
    const I32 index = hn::ShiftRight<20>(shifted);
    const F log = Lookup32<kLogTable32, 1>(index), logRest = Lookup32<kLogTable32, 2>(index);
    return {Fms(fraction, Lookup32<kLogTable32, 0>(index), C32(1)), k, log, logRest};
  }
  static TZM_INLINE F End(F x, const Stage& stage) {
    const auto [r, k, log, logRest] = stage;
    const F r2 = hn::Mul(r, r), r2Excess = Fnma(r, r, r2);
    const F exact = Fma(k, C32(kLn2Of32Short[0]), log), first = hn::Add(exact, r);
    const F firstRest = hn::Add(hn::Sub(exact, first), r);
    F sum = Fnma(r2, C32(0.5f), first), rest = Fnma(r2, C32(0.5f), hn::Sub(first, sum));
    const F low = Fma(k, C32(kLn2Of32Short[1]), logRest), series = Fma(r2Excess, C32(0.5f), low);
    rest = hn::Add(hn::Add(rest, firstRest), Fma(hn::Mul(r2, r), Polynomial<kLogPoly32>(r), series));
    if constexpr (std::is_same_v<Base, Decimal>) {
      const F product = hn::Mul(sum, C32(kLog10E32[0]));
      const F productRest = Fma(sum, C32(kLog10E32[1]), Fms(sum, C32(kLog10E32[0]), product));
      rest = Fma(rest, C32(kLog10E32[0]), productRest);
      sum = product;
    }
    const F error = Fma(r2, C32(0x1p-27f), hn::Mul(hn::Abs(sum), C32(0x1p-36f)));
    const F y = hn::Add(sum, hn::Add(rest, error));
    const M32 sure = EqualWhere(IsPositiveNormal(x), y, hn::Add(sum, hn::Sub(rest, error)));
    if (NotAll(sure)) return SecondStep<Log64<Base>, Base::kMiddles>(x);
    return y;
  }
};

}  // namespace vmath
