// Sine, cosine and tangent. x = k unit + r, the unit being pi for sine and cosine and pi/16 for the tangent, r in two
// parts.
#pragma once

#include "constants.h"

namespace vmath {

// The argument less k units, k in the low bits.
struct Reduced {
  V r, rest;
  I k;
};

// The unit 2^kPower pi, and whether k counts the halves between the whole units: x = (k + 1/2) unit + r.
template <int kPower, bool kBetween>
struct Unit {
  static constexpr double kScale = kPower == 0 ? 1 : 0x1p-4;
  static constexpr double kParts[] = {kPi[0] * kScale, kPi[1] * kScale, kPi[2] * kScale};
  static constexpr double kInverse = kByPi / kScale;

  // While |x| < kSmall, k being below 2^30, r has 2^-130 of the unit, where no number comes nearer to a multiple of
  // pi/2 than 2^-62.
  static constexpr double kSmall = 0x1p27;
  static TZM_INLINE Reduced Reduce(V x) {
    V shifted, k;
    if constexpr (kBetween) {
      shifted = hn::Add(Fms(x, C(kInverse), C(0.5)), C(kToInteger));
      k = hn::Add(hn::Sub(shifted, C(kToInteger)), C(0.5));
    } else {
      shifted = Fma(x, C(kInverse), C(kToInteger));
      k = hn::Sub(shifted, C(kToInteger));
    }
    const V most = Fnma(k, C(kParts[0]), x);  // exact but next to half a unit, where x is small
    V product = hn::Mul(k, C(kParts[1]));
    const V productRest = Fma(k, C(kParts[2]), Fms(k, C(kParts[1]), product));
    if constexpr (kBetween) product = hn::Sub(product, hn::Sub(x, Fma(k, C(kParts[0]), most)));
    const V r = hn::Sub(most, product), rest = hn::Sub(hn::Sub(hn::Sub(most, r), product), productRest);
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
      constexpr int kFraction = 127 + kPower, kMore = kPower == 0 ? 0 : 3;
      constexpr Wide kHalf = Wide{1} << (kFraction - 1);
      if constexpr (kBetween) turns -= kHalf;
      const auto count = static_cast<int64_t>((turns + kHalf) >> kFraction);
      Wide fraction = turns - (static_cast<Wide>(count) << kFraction);
      const bool below = fraction >> 127 != 0, negative = bits >> 63 != 0;
      if (below) {
        least = -least;
        fraction = ~fraction + (least == 0);
      }
      if constexpr (kMore != 0) {
        fraction = fraction << kMore | least >> (64 - kMore);
        least <<= kMore;
      }
      // No number comes nearer to a multiple than 2^-61, so the leading bit is in the first half.
      const int zeros = __builtin_clzll(static_cast<uint64_t>(fraction >> 64));
      fraction = fraction << zeros | least >> (64 - zeros);
      const uint64_t power = static_cast<uint64_t>(1023 + 75 - zeros - kFraction - kMore) << 52;  // of the 53rd bit
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

// The sine of r + rest, |r| <= pi/2: r - kCubic r^3 comes so near that the roundings of what is added hardly count. Of
// the derivatives by the rest and by what r^2 and r^3 lost two digits are enough.
TZM_INLINE V Sine(const Reduced& a) {
  const V r = a.r, r2 = hn::Mul(r, r), r2Rest = Fms(r, r, r2);
  const V cube = hn::Mul(r2, r), cubeRest = Fma(r2Rest, r, Fms(r2, r, cube));
  const V sum = Fnma(cube, C(kCubic), r), lost = Fnma(cube, C(kCubic), hn::Sub(r, sum));
  const V rest = Fnma(cubeRest, C(0.135), Fma(a.rest, Fnma(r2, C(0.416), C(1)), lost));
  const V series = Fma(hn::Mul(r2, r2), Polynomial(kSinPoly, r2), Fma(r2, C(kSinFirst[1]), C(kSinFirst[0])));
  return WithSignOf(hn::Add(sum, Fma(cube, series, rest)), r);
}

// Within 0.595 ulp each, which is the cosine's near 0.5.
struct Sin64 {
  TZM_INLINE V operator()(V x) const {
    const Reduced a = Unit<0, false>::Reduce(x);
    return NegateIfOdd(Sine(a), a.k);
  }
};
// cos(r + (k + 1/2) pi) is the sine of r, negative where k is even.
struct Cos64 {
  TZM_INLINE V operator()(V x) const {
    const Reduced a = Unit<0, true>::Reduce(x);
    return NegateIfOdd(Sine(a), hn::Not(a.k));
  }
};

// tan(c + r) = (T + t)/(1 - T t), c the nearest multiple of pi/16, T its tangent and t that of r; beyond pi/4 the
// reciprocal's negative, and T is the tangent of c - pi/2. Within 0.51 ulp: the quotient of two sums of two, refined.
struct Tan64 {
  TZM_INLINE V operator()(V x) const {
    const Reduced a = Unit<-4, false>::Reduce(x);
    const auto [tangent, tangentRest] = Lookup<kTanTable>(a.k).number;
    const V r2 = hn::Mul(a.r, a.r);
    const Sum t = FastTwoSum(a.r, Fma(hn::Mul(r2, a.r), Polynomial(kTanPoly, r2), a.rest));
    const Sum above = FastTwoSum(tangent, t.sum);
    const V aboveRest = hn::Add(hn::Add(above.rest, tangentRest), t.rest);
    const V below = Fnma(tangent, t.sum, C(1)), belowLost = Fnma(tangent, t.sum, hn::Sub(C(1), below));
    const V belowRest = Fnma(tangentRest, t.sum, Fnma(tangent, t.rest, belowLost));
    const I quarter = ShiftRightLogical<3>(hn::Add(a.k, SetBits(4)));
    const M odd = hn::RebindMask(D(), hn::TestBit(quarter, SetBits(1)));
    const V n = hn::IfThenElse(odd, below, above.sum), nRest = hn::IfThenElse(odd, belowRest, aboveRest);
    const V d = hn::IfThenElse(odd, above.sum, below), dRest = hn::IfThenElse(odd, aboveRest, belowRest);
    const V inverse = hn::Div(C(1), d), quotient = hn::Mul(n, inverse);
    const V rest = hn::Add(Fnma(quotient, d, n), Fnma(quotient, dRest, nRest));
    const V y = NegateIfOdd(Fma(rest, inverse, quotient), quarter);
    return hn::IfThenElse(hn::Eq(x, hn::Zero(D())), x, y);
  }
};

// ---- Correctly rounded to binary32 ----

constexpr Middle kSinMiddles[] = {{0x1.63f4bbp-2, 0x1.63f4bap-2}, {-0x1.63f4bbp-2, -0x1.63f4bap-2}};
constexpr Middle kCosMiddles[] = {
    {0x1.fe2977p-1, 0x1.fe2976p-1}, {0x1.f0285dp-1, 0x1.f0285ep-1}, {0x1.f3176bp-1, 0x1.f3176ap-1}};

// x = k unit + r, or (k + 1/2) unit + r, the unit being kHalfPis pi/2, for |x| < kNear: to 2^-50 of r. Binary32 tells
// k, so that r may pass half a unit by a thousandth.
constexpr float kNear = 0x1p12f;
struct Reduced32 {
  Halves r;
  I32 k;
};
template <int kHalfPis, bool kBetween>
TZM_INLINE Reduced32 Reduce32(F x) {
  constexpr double kUnit[] = {kHalfPi[0] * kHalfPis, kHalfPi[1] * kHalfPis};
  const F inverse = C32(static_cast<float>(2 * kByPi / kHalfPis)), big = C32(kToInteger32);
  const F shifted = kBetween ? hn::Add(Fms(x, inverse, C32(0.5f)), big) : Fma(x, inverse, big);
  const F whole = hn::Sub(shifted, big);
  const Halves k = Widen(kBetween ? hn::Add(whole, C32(0.5f)) : whole), wide = Widen(x);
  const auto rest = [&](V half, V count) TZM_LAMBDA {
    return Fnma(count, C(kUnit[1]), Fnma(count, C(kUnit[0]), half));
  };
  return {{rest(wide.low, k.low), rest(wide.high, k.high)}, BitsOf(shifted)};
}
// The results of both halves, negative where k is odd; the second step where a lane is far or open.
template <uint64_t kUnits, class Function, const auto&... kMiddles>
TZM_INLINE F RoundedOrSecond(F x, Halves y, I32 k) {
  const M open = hn::Or(IsOpenWithin<kUnits>(y.low), IsOpenWithin<kUnits>(y.high));
  if (Any(open) || Any(hn::Not(hn::Lt(hn::Abs(x), C32(kNear))))) return SecondStep<Function, kMiddles...>(x);
  return NegateIfOdd(NarrowPair(S(), y.low, y.high), k);
}

// The sine of r, |r| <= pi/2, to 2^-43 of it.
TZM_INLINE V SineOf(V r) { return hn::Mul(r, Polynomial(kSinPoly32, hn::Mul(r, r))); }
struct Sin32 {
  TZM_INLINE F operator()(F x) const {
    const Reduced32 a = Reduce32<2, false>(x);
    return RoundedOrSecond<0x800, Sin64, kSinMiddles>(x, {SineOf(a.r.low), SineOf(a.r.high)}, a.k);
  }
};
// cos(r + (k + 1/2) pi) is the sine of r, negative where k is even.
struct Cos32 {
  TZM_INLINE F operator()(F x) const {
    const Reduced32 a = Reduce32<2, true>(x);
    return RoundedOrSecond<0x800, Cos64, kCosMiddles>(x, {SineOf(a.r.low), SineOf(a.r.high)}, hn::Not(a.k));
  }
};
// The quotient of the sine and the cosine of r, |r| <= pi/4: to 2^-36 of it.
struct Tan32 {
  TZM_INLINE F operator()(F x) const {
    const Reduced32 a = Reduce32<1, false>(x);
    const Halves odd = Widen(OfBits(hn::ShiftLeft<31>(a.k)));
    const auto tangent = [](V r, V odd) TZM_LAMBDA {
      const V r2 = hn::Mul(r, r), s = hn::Mul(r, Polynomial(kTanSinPoly32, r2)), c = Polynomial(kTanCosPoly32, r2);
      const M swap = hn::RebindMask(D(), hn::TestBit(BitsOf(odd), SetBits(uint64_t{1} << 63)));
      return hn::Div(hn::IfThenElse(swap, c, s), hn::IfThenElse(swap, s, c));
    };
    const Halves y = {tangent(a.r.low, odd.low), tangent(a.r.high, odd.high)};
    return RoundedOrSecond<0x20000, Tan64>(x, y, a.k);
  }
};

}  // namespace vmath
