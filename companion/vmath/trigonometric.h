// Sine, cosine and tangent. In binary64 x = k pi/16 + r with |r| < pi/32 in two parts, and a table has the sine and the
// cosine of k pi/16.
#pragma once

#include "constants.h"

namespace vmath {

// x = k pi/16 + most - less, k in the low bits, r the difference rounded.
struct Reduced {
  V r, most, less;
  I k;
  TZM_INLINE V Excess() const { return hn::Add(hn::Sub(r, most), less); }
};
// Lane by lane in integers: the 192 bits of 2/pi that matter, times the 53 of x, modulo 4. NaN for what is below 2^27,
// infinite or NaN.
inline __attribute__((noinline)) Reduced ReduceHuge(V x) {
  alignas(64) double lane[kLanes], high[kLanes], low[kLanes];
  alignas(64) int64_t k[kLanes];
  hn::Store(x, D(), lane);
  for (size_t i = 0; i < kLanes; ++i) {
    const auto bits = std::bit_cast<uint64_t>(lane[i]);
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
    const Wide turns = (Wide{significand * word(0)} << 64) + middle;  // x 2/pi modulo 4, its last 64 bits in `least`
    constexpr int kFraction = 123;                                    // bits behind the multiples of pi/16
    const auto count = static_cast<int64_t>((turns + (Wide{1} << (kFraction - 1))) >> kFraction);
    Wide fraction = turns - (static_cast<Wide>(count) << kFraction);
    const bool below = fraction >> 127 != 0, negative = bits >> 63 != 0;
    if (below) {
      least = -least;
      fraction = ~fraction + (least == 0);
    }
    fraction = fraction << 3 | least >> 61;
    least <<= 3;
    // No number comes nearer to a multiple of pi/2 than 2^-61, so the leading bit is in the first half.
    const int zeros = __builtin_clzll(static_cast<uint64_t>(fraction >> 64));
    fraction = fraction << zeros | least >> (64 - zeros);
    const uint64_t power = static_cast<uint64_t>(1023 + 75 - 3 - zeros - kFraction) << 52;  // of the 53rd bit
    auto scale = std::bit_cast<double>(power);
    if (below != negative) scale = -scale;
    high[i] = static_cast<double>(static_cast<int64_t>(fraction >> 75)) * scale;
    low[i] = static_cast<double>(static_cast<int64_t>(fraction >> 12) & INT64_MAX) * (scale * 0x1p-63);
    k[i] = negative ? -count : count;
  }
  const V h = hn::Load(D(), high), l = hn::Load(D(), low), r = hn::Mul(h, C(kPiBy16[0]));
  const V rest = Fma(l, C(kPiBy16[0]), Fma(h, C(kPiBy16[1]), Fms(h, C(kPiBy16[0]), r)));
  const V sum = hn::Add(r, rest);
  return {sum, sum, hn::Sub(hn::Sub(sum, r), rest), hn::Load(Bits(), k)};
}

// The same where |x| < 2^27, k being below 2^30: r has 2^-130, where no number comes nearer to a multiple of pi/2 than
// 2^-62.
inline __attribute__((noinline)) Reduced ReduceFar(V x) {
  const V shifted = Fma(x, C(16 * kByPi), C(kToInteger)), k = hn::Sub(shifted, C(kToInteger));
  const V most = Fnma(k, C(kPiBy16[0]), x);  // exact
  const V product = hn::Mul(k, C(kPiBy16[1])), r = hn::Sub(most, product);
  const V productRest = Fma(k, C(kPiBy16[2]), Fms(k, C(kPiBy16[1]), product));
  const V excess = hn::Add(hn::Sub(product, hn::Sub(most, r)), productRest);
  const M large = hn::Lt(hn::Abs(x), C(0x1p27));
  if (hn::AllTrue(D(), large)) return {r, r, excess, BitsOf(shifted)};
  const Reduced huge = ReduceHuge(x);
  const V either = hn::IfThenElse(large, r, huge.r);
  return {either, either, hn::IfThenElse(large, excess, huge.less),
          BitsOf(hn::IfThenElse(large, shifted, OfBits(huge.k)))};
}
// The same to 2^-107 of x.
template <int kTurn>
TZM_INLINE Reduced Reduce(V x) {
  constexpr double kBig = kToInteger + kTurn;
  const V shifted = Fma(x, C(16 * kByPi), C(kBig)), k = hn::Sub(shifted, C(kBig));
  const V most = Fnma(k, C(kPiBy16[0]), x), less = hn::Mul(k, C(kPiBy16[1]));
  return {hn::Sub(most, less), most, less, BitsOf(shifted)};
}
// Which is enough where x is below 2^32 r, and so below 2^29: then the bits differ by less than 2^57, signs apart.
// A NaN is far too (r becomes 1), for near it would go on with a payload and a sign that differ between machines.
constexpr uint64_t kFarBits = uint64_t{63} << 57;
TZM_INLINE I Distance(V x, const Reduced& a) { return hn::Sub(BitsOf(x), BitsOf(hn::Min(a.r, C(1)))); }
template <class Function>
struct OfAngle : InStages<OfAngle<Function>> {
  static TZM_INLINE Reduced Begin(V x) { return Reduce<Function::kTurn>(x); }
  static TZM_INLINE V End(V x, const Reduced& a) {
    const V y = Function()(a);
    const I distance = Distance(x, a);
    if (AnyOf<kFarBits>(distance)) return hn::IfThenElse(NoneOf<kFarBits>(distance), y, Far(x));
    return y;
  }

 private:
  static __attribute__((noinline)) V Far(V x) {
    Reduced a = ReduceFar(x);
    a.k = hn::Add(a.k, SetBits(Function::kTurn));
    const V y = Function()(a);
    return hn::IfThenElse(hn::IsNaN(y), C(kNaN), y);  // one everywhere
  }
};

// The sine of the angle whose sine and cosine these are and r: the sum's first two terms come with what their rounding
// lost. Zeros are subtracted, so that -0 stays -0.
TZM_INLINE V Turned(V sine, V cosine, V sineRest, const Reduced& a) {
  const V r2 = hn::Mul(a.r, a.r), sum = Fma(cosine, a.r, sine), first = hn::Sub(sum, sine);  // cosine r, rounded
  const V lost = Fma(cosine, a.less, hn::Sub(Fnma(cosine, a.most, first), sineRest));
  const V series = Fnma(first, Polynomial<kSinPoly>(r2), hn::Mul(sine, Polynomial<kMinusCosPoly>(r2)));
  return WithSignOf(a.k, hn::Sub(sum, Fma(r2, series, lost)));
}
template <int kTurns>
struct Sine {
  static constexpr int kTurn = kTurns;
  TZM_INLINE V operator()(const Reduced& a) const {
    const auto [sine, cosine, sineRest, cosineRest] = Lookup<kTurnTable>(a.k).number;
    return Turned(sine, cosine, sineRest, a);
  }
};
// Within 0.58 ulp each: half for the last rounding, 0.07 for what the table leaves out.
using Sin64 = OfAngle<Sine<0>>;
using Cos64 = OfAngle<Sine<8>>;
template <class Vector>
struct SineCosine {
  Vector sine, cosine;
};
// The same bits, of one reduction.
struct SinCos64 : InStages<SinCos64> {
  static TZM_INLINE Reduced Begin(V x) { return Reduce<0>(x); }
  static TZM_INLINE SineCosine<V> End(V x, const Reduced& a) {
    if (AnyOf<kFarBits>(Distance(x, a))) return {Sin64()(x), Cos64()(x)};
    const auto [sine, cosine, sineRest, cosineRest] = Lookup<kTurnTable>(a.k).number;
    return {Turned(sine, cosine, sineRest, a), Turned(cosine, hn::Neg(sine), cosineRest, a)};
  }
};

// tan(c + t) = (sin c + t cos c)/(cos c - t sin c), t the tangent of r: the quotient of two sums of two, refined.
struct Tangent {
  static constexpr int kTurn = 0;
  TZM_INLINE V operator()(const Reduced& a) const {
    const auto [sine, cosine] = Lookup<kTanTable>(a.k).number;
    const V r2 = hn::Mul(a.r, a.r);
    const V bend = Fnma(hn::Mul(r2, a.r), Polynomial<kTanPoly>(r2), a.Excess()), tangent = hn::Sub(a.r, bend);
    const Sum t = {tangent, hn::Sub(hn::Sub(a.r, tangent), bend)};
    const V n = Fma(cosine, t.sum, sine), d = Fnma(sine, t.sum, cosine);
    const V nExcess = Fnma(cosine, t.rest, Fnma(cosine, t.sum, hn::Sub(n, sine)));
    const V dRest = Fnma(sine, t.rest, Fnma(sine, t.sum, hn::Sub(cosine, d)));
    const V inverse = hn::Div(C(1), d), quotient = hn::Mul(n, inverse);
    const V excess = hn::Sub(nExcess, Fnma(quotient, dRest, Fnma(quotient, d, n)));
    return Fnma(excess, inverse, quotient);
  }
};
// Within 0.52 ulp.
using Tan64 = OfAngle<Tangent>;

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
  const F shifted = kBetween ? hn::Add(Fma(x, inverse, C32(-0.5f)), big) : Fma(x, inverse, big);
  const F whole = hn::Sub(shifted, big);
  const Halves k = Widen(kBetween ? hn::Add(whole, C32(0.5f)) : whole), wide = Widen(x);
  const auto rest = [&](V half, V count) TZM_LAMBDA {
    return Fnma(count, C(kUnit[1]), Fnma(count, C(kUnit[0]), half));
  };
  return {{rest(wide.low, k.low), rest(wide.high, k.high)}, BitsOf(shifted)};
}
// The results of both halves, negative where k is odd; the second step where a lane is far or open.
template <uint32_t kUnits, class Function, const auto&... kMiddles>
TZM_INLINE F RoundedOrSecond(F x, Halves y, I32 k) {
  if (AnyOpen<kUnits>(y, AbsLess(x, C32(kNear)))) return SecondStep<Function, kMiddles...>(x);
  return NegateIfOdd(NarrowPair(S(), y.low, y.high), k);
}

// The sine of r, |r| <= pi/2, to 2^-35 of it.
TZM_INLINE Halves SineOf(Halves r) { return Mul(r, Polynomial<kSinPoly32>(Mul(r, r))); }
struct Sin32 : InStages<Sin32> {
  static TZM_INLINE Reduced32 Begin(F x) { return Reduce32<2, false>(x); }
  static TZM_INLINE F End(F x, const Reduced32& a) {
    return RoundedOrSecond<0x40000, Sin64, kSinMiddles>(x, SineOf(a.r), a.k);
  }
};
// cos(r + (k + 1/2) pi) is the sine of r, negative where k is even.
struct Cos32 : InStages<Cos32> {
  static TZM_INLINE Reduced32 Begin(F x) { return Reduce32<2, true>(x); }
  static TZM_INLINE F End(F x, const Reduced32& a) {
    return RoundedOrSecond<0x40000, Cos64, kCosMiddles>(x, SineOf(a.r), hn::Not(a.k));
  }
};
// The sine and the cosine of r, |r| <= pi/4: to 2^-37 of them.
TZM_INLINE SineCosine<Halves> SineCosineOf(Halves r) {
  const Halves r2 = Mul(r, r);
  return {Mul(r, Polynomial<kTanSinPoly32>(r2)), Polynomial<kTanCosPoly32>(r2)};
}
// Their quotient: to 2^-36 of it.
struct Tan32 : InStages<Tan32> {
  static TZM_INLINE Reduced32 Begin(F x) { return Reduce32<1, false>(x); }
  static TZM_INLINE F End(F x, const Reduced32& a) {
    const Halves odd = Widen(OfBits(hn::ShiftLeft<31>(a.k)));
    const auto [sine, cosine] = SineCosineOf(a.r);
    const auto tangent = [](V s, V c, V odd) TZM_LAMBDA {
      const M swap = hn::RebindMask(D(), hn::TestBit(BitsOf(odd), SetBits(uint64_t{1} << 63)));
      return hn::Div(hn::IfThenElse(swap, c, s), hn::IfThenElse(swap, s, c));
    };
    const Halves y = {tangent(sine.low, cosine.low, odd.low), tangent(sine.high, cosine.high, odd.high)};
    return RoundedOrSecond<0x20000, Tan64>(x, y, a.k);
  }
};
struct SinCos32 : InStages<SinCos32> {
  static TZM_INLINE Reduced32 Begin(F x) { return Reduce32<1, false>(x); }
  static TZM_INLINE SineCosine<F> End(F x, const Reduced32& a) {
    const auto [sines, cosines] = SineCosineOf(a.r);
    if (AnyOpen<0x20000>(cosines, IsSureWithin<0x20000>(sines, AbsLess(x, C32(kNear)))))
      return {SecondStep<Sin64, kSinMiddles>(x), SecondStep<Cos64, kCosMiddles>(x)};
    const F sine = NarrowPair(S(), sines.low, sines.high), cosine = NarrowPair(S(), cosines.low, cosines.high);
    const M32 swap = hn::RebindMask(S(), hn::TestBit(a.k, hn::Set(Bits32(), 1)));
    return {NegateIfOdd(hn::IfThenElse(swap, cosine, sine), hn::ShiftRight<1>(a.k)),
            NegateIfOdd(hn::IfThenElse(swap, sine, cosine), hn::ShiftRight<1>(hn::Add(a.k, hn::Set(Bits32(), 1))))};
  }
};

}  // namespace vmath
