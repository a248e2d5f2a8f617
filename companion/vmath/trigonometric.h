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

// Sine and cosine of a reduced argument, each a number and the rest of it: r - r^3/6 and 1 - r^2/2 with what their
// roundings lost, and all that follows in the rest.
struct SinCos {
  Sum sine, cosine;
};
TZM_INLINE SinCos SinCosParts(const Reduced& a) {
  const V r = a.r, r2 = hn::Mul(r, r), r2Rest = Fms(r, r, r2), half = hn::Mul(r2, C(0.5));
  const V cosine = hn::Sub(C(1), half), lost = hn::Sub(hn::Sub(C(1), cosine), half);
  const V even = Fma(hn::Mul(r2, r2), Polynomial(kCosPoly, r2), Fnma(r2Rest, C(0.5), Fnma(r, a.rest, lost)));
  const V r3 = hn::Mul(r2, r), r3Rest = Fma(r2Rest, r, Fms(r2, r, r3));
  const V sine = Fnma(r3, C(kSixth), r), odd = Fnma(r3, C(kSixth), hn::Sub(r, sine));
  const V more = Fma(r3, Polynomial(kSinPoly, r2), Fnma(r3Rest, C(kSixth), Fma(a.rest, cosine, odd)));
  return {{sine, more}, {cosine, even}};
}

TZM_INLINE V Either(M odd, V ifOdd, V ifEven) { return hn::IfThenElse(odd, ifOdd, ifEven); }
TZM_INLINE M IsOdd(I k) { return hn::MaskFromVec(OfBits(hn::Neg(hn::And(k, SetBits(1))))); }

// Within 0.54 ulp each.
using Quarter = Unit<1, false>;
struct SinCos64 {
  V sine, cosine;
  TZM_INLINE explicit SinCos64(V x) {
    const Reduced a = Quarter::Reduce<true>(x);
    const SinCos parts = SinCosParts(a);
    const M odd = IsOdd(a.k);
    const V s = hn::Add(parts.sine.sum, parts.sine.rest), c = hn::Add(parts.cosine.sum, parts.cosine.rest);
    const I half = ShiftRightLogical<1>(a.k);
    sine = hn::IfThenElse(hn::Eq(x, hn::Zero(D())), x, NegateIfOdd(Either(odd, c, s), half));
    cosine = NegateIfOdd(Either(odd, s, c), hn::Xor(half, a.k));
  }
};
struct Sin64 {
  TZM_INLINE V operator()(V x) const { return SinCos64(x).sine; }
};
struct Cos64 {
  TZM_INLINE V operator()(V x) const { return SinCos64(x).cosine; }
};

// Within 0.55 ulp: the quotient of both in two parts, refined once.
struct Tan64 {
  TZM_INLINE V operator()(V x) const {
    const Reduced a = Quarter::Reduce<true>(x);
    const SinCos parts = SinCosParts(a);
    const M odd = IsOdd(a.k);
    const Sum s = FastTwoSum(parts.sine.sum, parts.sine.rest), c = FastTwoSum(parts.cosine.sum, parts.cosine.rest);
    const Sum above = {Either(odd, c.sum, s.sum), Either(odd, c.rest, s.rest)};
    const Sum below = {Either(odd, s.sum, c.sum), Either(odd, s.rest, c.rest)};
    const V inverse = hn::Div(C(1), below.sum), quotient = hn::Mul(above.sum, inverse);
    const V rest = hn::Add(Fnma(quotient, below.sum, above.sum), Fnma(quotient, below.rest, above.rest));
    const V y = NegateIfOdd(Fma(rest, inverse, quotient), a.k);
    return hn::IfThenElse(hn::Eq(x, hn::Zero(D())), x, y);
  }
};

// ---- Correctly rounded to binary32, of numbers of that type ----

constexpr Middle kSinMiddles[] = {{0x1.63f4bbp-2, 0x1.63f4bap-2}, {-0x1.63f4bbp-2, -0x1.63f4bap-2}};
constexpr Middle kCosMiddles[] = {
    {0x1.fe2977p-1, 0x1.fe2976p-1}, {0x1.f0285dp-1, 0x1.f0285ep-1}, {0x1.f3176bp-1, 0x1.f3176ap-1}};

// The sine of r, |r| <= pi/2.
TZM_INLINE V SineOf(V r) {
  const V r2 = hn::Mul(r, r);
  return WithSignOf(Fma(hn::Mul(r, r2), Polynomial(kSinPoly32, r2), r), r);
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
    const V s = Fma(hn::Mul(r, r2), hn::Sub(Polynomial(kSinPoly, r2), C(kSixth)), r);
    const V c = Fma(hn::Mul(r2, r2), Polynomial(kCosPoly, r2), Fnma(r2, C(0.5), C(1)));
    const M odd = IsOdd(a.k);
    const V y = NegateIfOdd(hn::Div(Either(odd, c, s), Either(odd, s, c)), a.k);
    return hn::IfThenElse(hn::Eq(x, hn::Zero(D())), x, y);
  }
};

}  // namespace vmath
