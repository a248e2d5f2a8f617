// Sine, cosine and tangent. In binary64 x = k pi/2 + r with |r| <= pi/4, r in two parts; in binary32 sine and
// cosine need x = k pi + r alone.
#pragma once

#include "constants.h"

namespace vmath {

// The argument less k units of pi/2 or pi, k in the low bits.
struct Reduced {
  V r, rest;
  I k;
};

// The unit as half-pis, and whether k counts the halves between the whole units: x = (k + 1/2) unit + r.
template <int kHalfPis, bool kBetween>
struct Unit {
  static constexpr const double (&kParts)[3] = kHalfPis == 1 ? kHalfPi : kPi;
  static constexpr double kInverse = kHalfPis == 1 ? kTwoByPi : kByPi;

  // While |x| < kSmall, k being below 2^27, x - k kParts[0] is exact, and with the rest r has 2^-136 of the unit, where
  // no number comes nearer to a multiple than 2^-62. Without, it is rounded once: enough for numbers of binary32.
  static constexpr double kSmall = 0x1p27;
  template <bool kRest>
  static TZM_INLINE Reduced Reduce(V x) {
    V shifted, k;
    if constexpr (kBetween) {
      shifted = hn::Add(Fms(x, C(kInverse), C(0.5)), C(kToInteger));
      k = hn::Add(hn::Sub(shifted, C(kToInteger)), C(0.5));
    } else {
      shifted = Fma(x, C(kInverse), C(kToInteger));
      k = hn::Sub(shifted, C(kToInteger));
    }
    const V most = Fnma(k, C(kParts[0]), x);
    V r, rest = hn::Zero(D());
    if constexpr (kRest) {
      const V product = hn::Mul(k, C(kParts[1])), productRest = Fma(k, C(kParts[2]), Fms(k, C(kParts[1]), product));
      r = hn::Sub(most, product);
      rest = hn::Sub(hn::Sub(hn::Sub(most, r), product), productRest);
    } else {
      r = Fnma(k, C(kParts[1]), most);
    }
    Reduced reduced = {r, rest, BitsOf(shifted)};
    const M huge = hn::Not(hn::Lt(hn::Abs(x), C(kSmall)));
    if (Any(huge)) {
      const Reduced other = ReduceHuge(x);
      reduced = {hn::IfThenElse(huge, other.r, r), hn::IfThenElse(huge, other.rest, rest),
                 BitsOf(hn::IfThenElse(huge, OfBits(other.k), shifted))};
    }
    return reduced;
  }

  // Lane by lane in integers: the 192 bits of 2/pi that matter, times the 53 of x, modulo 4. NaN for the rest.
  static __attribute__((noinline)) Reduced ReduceHuge(V x) {
    alignas(64) double lane[kLanes], high[kLanes], low[kLanes];
    alignas(64) int64_t k[kLanes];
    hn::Store(x, D(), lane);
    for (size_t i = 0; i < kLanes; ++i) {
      uint64_t bits;
      std::memcpy(&bits, &lane[i], sizeof bits);
      const unsigned exponent = bits >> 52 & 0x7ff;
      k[i] = 0;
      high[i] = low[i] = kNaN;
      if (exponent < 1023 + 27 || exponent == 0x7ff) continue;
      const uint64_t significand = (bits & ((uint64_t{1} << 52) - 1)) | uint64_t{1} << 52;
      const unsigned from = exponent - 1023 + 10;  // the bit whose weight in the product's last place is 2
      const auto word = [&](unsigned n) TZM_LAMBDA {
        const uint64_t* w = kTwoByPiBits + from / 64 + n;
        return from % 64 == 0 ? w[0] : (w[0] << from % 64) | (w[1] >> (64 - from % 64));
      };
      using Wide = unsigned __int128;
      const Wide last = Wide{significand} * word(2), middle = Wide{significand} * word(1) + (last >> 64);
      uint64_t least = static_cast<uint64_t>(last);
      Wide turns = (Wide{significand * word(0)} << 64) + middle;  // x 2/pi modulo 4, its last 64 bits in `least`
      constexpr int kFraction = 126 + (kHalfPis == 2);
      constexpr Wide kHalf = Wide{1} << (kFraction - 1);
      if constexpr (kBetween) turns -= kHalf;
      const auto count = static_cast<int64_t>((turns + kHalf) >> kFraction);
      Wide fraction = turns - (static_cast<Wide>(count) << kFraction);
      const bool below = fraction >> 127 != 0, negative = bits >> 63 != 0;
      if (below) {
        least = -least;
        fraction = ~fraction + (least == 0);
      }
      // No number comes nearer to a multiple than 2^-62, so the leading bit is in the first half.
      const int zeros = __builtin_clzll(static_cast<uint64_t>(fraction >> 64));
      fraction = fraction << zeros | least >> (64 - zeros);
      const uint64_t power = static_cast<uint64_t>(1023 + 75 - zeros - kFraction) << 52;  // of the 53rd bit
      double scale;
      std::memcpy(&scale, &power, sizeof scale);
      if (below != negative) scale = -scale;
      high[i] = static_cast<double>(static_cast<int64_t>(fraction >> 75)) * scale;
      low[i] = static_cast<double>(static_cast<int64_t>(fraction >> 12) & INT64_MAX) * (scale * 0x1p-63);
      k[i] = !negative ? count : kBetween ? ~count : -count;
    }
    const V h = hn::Load(D(), high), l = hn::Load(D(), low), r = hn::Mul(h, C(kParts[0]));
    const V rest = Fma(l, C(kParts[0]), Fma(h, C(kParts[1]), Fms(h, C(kParts[0]), r)));
    const V sum = hn::Add(r, rest);
    return {sum, hn::Add(hn::Sub(r, sum), rest), hn::Load(Bits(), k)};
  }
};

TZM_INLINE M IsOdd(I k) { return hn::MaskFromVec(OfBits(hn::Neg(hn::And(k, SetBits(1))))); }

// The sine or the cosine of a reduced argument as a number and the rest of it: r - r^3/6 or 1 - r^2/2, and what their
// roundings lost with all that follows. either(a, b) is a for the cosine and b for the sine: in all lanes, so that the
// compiler sees constants, or lane by lane.
template <class Either>
TZM_INLINE Sum SinOrCos(const Reduced& a, Either either) {
  const V r = a.r, r2 = hn::Mul(r, r), r2Rest = Fms(r, r, r2);
  const V first = either(C(1), r), second = hn::Mul(r2, first);
  const V secondRest = Fma(r2Rest, first, Fms(r2, first, second));
  const V divisor = either(C(0.5), C(kSixth)), slope = either(hn::Neg(r), Fnma(r2, C(0.5), C(1)));
  const V sum = Fnma(second, divisor, first), lost = Fnma(second, divisor, hn::Sub(first, sum));
  V series = either(C(kCosPoly[6]), C(kSinPoly[6]));
  Unrolled<6>([&](auto i) TZM_LAMBDA { series = Fma(series, r2, either(C(kCosPoly[5 - i]), C(kSinPoly[5 - i]))); });
  return {sum, Fma(second, series, Fnma(secondRest, divisor, Fma(a.rest, slope, lost)))};
}
struct CosineOnly {
  TZM_INLINE V operator()(V cosine, V) const { return cosine; }
};
struct SineOnly {
  TZM_INLINE V operator()(V, V sine) const { return sine; }
};

// Within 0.57 ulp each.
using Quarter = Unit<1, false>;
TZM_INLINE V Zeroed(V y, V x) { return hn::IfThenElse(hn::Eq(x, hn::Zero(D())), x, y); }  // the sign of a zero
struct Sin64 {
  TZM_INLINE V operator()(V x) const {
    const Reduced a = Quarter::Reduce<true>(x);
    const M odd = IsOdd(a.k);
    const Sum y = SinOrCos(a, [&](V c, V s) TZM_LAMBDA { return hn::IfThenElse(odd, c, s); });
    return Zeroed(NegateIfOdd(hn::Add(y.sum, y.rest), ShiftRightLogical<1>(a.k)), x);
  }
};
struct Cos64 {
  TZM_INLINE V operator()(V x) const {
    const Reduced a = Quarter::Reduce<true>(x);
    const M odd = IsOdd(a.k);
    const Sum y = SinOrCos(a, [&](V c, V s) TZM_LAMBDA { return hn::IfThenElse(odd, s, c); });
    return NegateIfOdd(hn::Add(y.sum, y.rest), hn::Xor(ShiftRightLogical<1>(a.k), a.k));
  }
};
struct SinCos64 {
  V sine, cosine;
  TZM_INLINE explicit SinCos64(V x) {
    const Reduced a = Quarter::Reduce<true>(x);
    const Sum s = SinOrCos(a, SineOnly()), c = SinOrCos(a, CosineOnly());
    const M odd = IsOdd(a.k);
    const V small = hn::Add(s.sum, s.rest), large = hn::Add(c.sum, c.rest);
    const I half = ShiftRightLogical<1>(a.k);
    sine = Zeroed(NegateIfOdd(hn::IfThenElse(odd, large, small), half), x);
    cosine = NegateIfOdd(hn::IfThenElse(odd, small, large), hn::Xor(half, a.k));
  }
};

// Within 0.55 ulp: the quotient of both in two parts, refined once.
struct Tan64 {
  TZM_INLINE V operator()(V x) const {
    const Reduced a = Quarter::Reduce<true>(x);
    const Sum sine = SinOrCos(a, SineOnly()), cosine = SinOrCos(a, CosineOnly());
    const Sum s = FastTwoSum(sine.sum, sine.rest), c = FastTwoSum(cosine.sum, cosine.rest);
    const M odd = IsOdd(a.k);
    const Sum above = {hn::IfThenElse(odd, c.sum, s.sum), hn::IfThenElse(odd, c.rest, s.rest)};
    const Sum below = {hn::IfThenElse(odd, s.sum, c.sum), hn::IfThenElse(odd, s.rest, c.rest)};
    const V inverse = hn::Div(C(1), below.sum), quotient = hn::Mul(above.sum, inverse);
    const V rest = hn::Add(Fnma(quotient, below.sum, above.sum), Fnma(quotient, below.rest, above.rest));
    return Zeroed(NegateIfOdd(Fma(rest, inverse, quotient), a.k), x);
  }
};

// ---- Correctly rounded to binary32, of numbers of that type ----

constexpr Middle kSinMiddles[] = {{0x1.63f4bbp-2, 0x1.63f4bap-2}, {-0x1.63f4bbp-2, -0x1.63f4bap-2}};
constexpr Middle kCosMiddles[] = {
    {0x1.fe2977p-1, 0x1.fe2976p-1}, {0x1.f0285dp-1, 0x1.f0285ep-1}, {0x1.f3176bp-1, 0x1.f3176ap-1}};

// The sine of r, |r| <= pi/2.
TZM_INLINE V SineOf(V r) {
  const V r2 = hn::Mul(r, r);
  return WithSignOf(Fma(hn::Mul(r, r2), PolynomialInTwo(kSinPoly32, r2, hn::Mul(r2, r2)), r), r);
}
struct Sin32 {
  TZM_INLINE V operator()(V x) const {
    const Reduced a = Unit<2, false>::Reduce<false>(x);
    return NegateIfOdd(Settled(kSinMiddles, SineOf(a.r)), a.k);
  }
};
// cos(r + (k + 1/2) pi) is the sine of r, negative where k is even.
struct Cos32 {
  TZM_INLINE V operator()(V x) const {
    const Reduced a = Unit<2, true>::Reduce<false>(x);
    const V y = NegateIfOdd(SineOf(a.r), hn::Not(a.k));
    const M middle = IsMiddle(y);
    if (Any(middle)) return Settled(kCosMiddles, y);
    return y;
  }
};
struct Tan32 {
  TZM_INLINE V operator()(V x) const {
    const Reduced a = Quarter::Reduce<false>(x);
    const V r = a.r, r2 = hn::Mul(r, r);
    const V s = Fma(hn::Mul(r, r2), hn::Sub(PolynomialInTwo(kSinPoly, r2, hn::Mul(r2, r2)), C(kSixth)), r);
    const V c = Fma(r2, PolynomialInTwo(kCosPoly, r2, hn::Mul(r2, r2)), Fnma(r2, C(0.5), C(1)));
    const M odd = IsOdd(a.k);
    return Zeroed(NegateIfOdd(hn::Div(hn::IfThenElse(odd, c, s), hn::IfThenElse(odd, s, c)), a.k), x);
  }
};

}  // namespace vmath
