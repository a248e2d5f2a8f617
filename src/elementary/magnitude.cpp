// Magnitude: sqrt(re^2 + im^2) of complex samples, given as two arrays of parts or as one interleaved array.
// How the sum is formed, and whether the elements past the last whole block of the body are computed like
// those before it, differs from member to member by contract.
#include <signal_tzm/elementary.h>

#include "frame/call.h"
#include "frame/complex_source.h"
#include "frame/drive.h"
#include "frame/scale.h"
#include "frame/vector.h"

// The system's cabs, by its name without a version like all that the process brings. C's complex argument
// has the registers of the compiler's own complex type.
extern "C" double cabs(__complex__ double z);

using namespace tzm;

namespace {

// ---- Floating samples ----

template <SquareSum kSum, class T, class... Source>
OrvaStatus Magnitude(T* dst, int32_t len, const Source*... src) {
  if (OrvaStatus status = CheckArrays(len, dst, src...)) return status;
  const Full<T> d;
  ForEach<hn::MaxLanes(d)>(len, [=](const Source*... from, T* to) TZM_LAMBDA {
    const auto sum = SumOfSquares<kSum>(LoadSplit(d, from...));
    hn::StoreU(InOrder<sizeof...(Source)>(hn::Sqrt(sum)), d, to);
  }, src..., dst);
  return ORVA_STS_NO_ERR;
}

// sqrt(re^2 + im^2) without overflow or underflow on the way, every operation rounded by itself. Written on
// the bit patterns, in which a power of two is an addition to the exponent and the high half of a number
// has exact products.
using Doubles = Vec<Full<double>>;
TZM_INLINE Vec<Full<int64_t>> HighWord(uint32_t word) {
  return hn::Set(Full<int64_t>(), static_cast<int64_t>(uint64_t{word} << 32));
}

// Of a >= b > 0 whose squares neither overflow nor lose bits.
TZM_INLINE Doubles RootOfSquares(Doubles a, Doubles b) {
  const Full<double> d;
  const auto headOf = [&](Doubles v) TZM_LAMBDA {
    return hn::And(hn::BitCast(Full<int64_t>(), v), HighWord(0xffffffff));
  };
  const auto w = hn::Sub(a, b);
  // a^2 + b^2 where a > 2b
  const auto t1 = hn::BitCast(d, headOf(a)), t2 = hn::Sub(a, t1);
  const auto apart = hn::Add(hn::Mul(t1, t1), hn::Add(hn::Mul(b, b), hn::Mul(t2, hn::Add(a, t1))));
  // (a-b)^2 + 2ab elsewhere
  const auto a2 = hn::Add(a, a);
  const auto y1 = hn::BitCast(d, headOf(b)), y2 = hn::Sub(b, y1);
  const auto u1 = hn::BitCast(d, hn::Add(headOf(a2), HighWord(0x00100000))), u2 = hn::Sub(a2, u1);
  const auto cross = hn::Add(hn::Mul(u1, y2), hn::Mul(u2, b));
  const auto close = hn::Add(hn::Mul(u1, y1), hn::Add(hn::Mul(w, w), cross));
  return hn::Sqrt(hn::IfThenElse(hn::Gt(w, b), apart, close));
}

// For all parts: zeros, infinities, NaN and those that have to be scaled.
TZM_INLINE Doubles HypotOfAny(Doubles re, Doubles im) {
  const Full<double> d;
  const Full<int64_t> bits;
  // As integers, magnitudes keep their order, with NaN above infinity.
  const auto reBits = hn::BitCast(bits, hn::Abs(re)), imBits = hn::BitCast(bits, hn::Abs(im));
  const auto aBits = hn::Max(reBits, imBits), bBits = hn::Min(reBits, imBits);
  const auto ha = hn::And(aBits, HighWord(0xffffffff)), hb = hn::And(bBits, HighWord(0xffffffff));
  const auto a0 = hn::BitCast(d, aBits), b0 = hn::BitCast(d, bBits);

  // By 2^-600, by 2^600, or, from a subnormal, by 2^1022.
  const auto tiny = hn::Lt(hb, HighWord(0x00100000));
  const auto small = hn::Lt(hb, HighWord(0x23d00000)), large = hn::Gt(ha, HighWord(0x5f300000));
  auto adjust = hn::IfThenElseZero(small, HighWord(0x25800000));
  adjust = hn::IfThenElse(large, hn::Neg(HighWord(0x25800000)), adjust);
  const auto fromTiny = hn::Set(d, 0x1p1022);
  const auto a = hn::IfThenElse(hn::RebindMask(d, tiny), hn::Mul(a0, fromTiny), hn::BitCast(d, hn::Add(aBits, adjust)));
  const auto b = hn::IfThenElse(hn::RebindMask(d, tiny), hn::Mul(b0, fromTiny), hn::BitCast(d, hn::Add(bBits, adjust)));
  adjust = hn::IfThenElse(tiny, HighWord(0x3fe00000), adjust);
  const auto back = hn::BitCast(d, hn::Sub(HighWord(0x3ff00000), adjust));
  auto result = hn::Mul(RootOfSquares(a, b), back);

  result = hn::IfThenElse(hn::RebindMask(d, hn::Eq(bBits, hn::Zero(bits))), a0, result);
  // A ratio above 2^60, infinity or NaN; infinity prevails over NaN.
  const auto sum = hn::Or(hn::Gt(hn::Sub(ha, hb), HighWord(0x03c00000)), hn::Gt(ha, HighWord(0x7fefffff)));
  result = hn::IfThenElse(hn::RebindMask(d, sum), hn::Add(a0, b0), result);
  const auto infinity = HighWord(0x7ff00000);
  const auto infinite = hn::Or(hn::Eq(aBits, infinity), hn::Eq(bBits, infinity));
  return hn::IfThenElse(hn::RebindMask(d, infinite), hn::BitCast(d, infinity), result);
}

TZM_INLINE Doubles Hypot(Doubles re, Doubles im) {
  const Full<double> d;
  // Of a NaN one of the two is a NaN, for which no comparison holds.
  const auto a = MaxOrSecond(hn::Abs(re), hn::Abs(im)), b = MinOrSecond(hn::Abs(im), hn::Abs(re));
  const auto near = hn::Le(a, hn::Mul(b, hn::Set(d, 0x1p59)));
  const auto noScaling = hn::And(hn::Ge(b, hn::Set(d, 0x1p-450)), hn::Le(a, hn::Set(d, 0x1p500)));
  return hn::AllTrue(d, hn::And(near, noScaling)) ? RootOfSquares(a, b) : HypotOfAny(re, im);
}

// ---- Integer samples ----

template <class T>
int64_t ExactSquareSum(T re, T im) {  // wraps for two parts of -2^31
  const int64_t r = re, i = im;
  return static_cast<int64_t>(static_cast<uint64_t>(r * r) + static_cast<uint64_t>(i * i));
}
int64_t SquareSumOf(const Orva16s* re, const Orva16s* im) { return ExactSquareSum(LoadElement(re), LoadElement(im)); }
template <class Complex>
int64_t SquareSumOf(const Complex* from) {
  const Complex z = LoadElement(from);
  return ExactSquareSum(z.re, z.im);
}
TZM_INLINE double Root(int64_t sum) { return __builtin_sqrt(static_cast<double>(sum)); }

// A tail: one rounding to binary32 of the binary64 root of the exact sum.
template <class... Source>
TZM_INLINE void StoreFloatRoot(const Source*... from, Orva32f* to) {
  StoreElement(static_cast<Orva32f>(Root(SquareSumOf(from...))), to);
}

}  // namespace

OrvaStatus ORVAS_Magnitude_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32f* dst, int32_t len) {
  return Magnitude<SquareSum::kFused>(dst, len, srcRe, srcIm);
}

OrvaStatus ORVAS_Magnitude_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64f* dst, int32_t len) {
  return Magnitude<SquareSum::kFused>(dst, len, srcRe, srcIm);
}

OrvaStatus ORVAS_Magnitude_32fc(const Orva32fc* src, Orva32f* dst, int32_t len) {
  return Magnitude<SquareSum::kRounded>(dst, len, src);
}

OrvaStatus ORVAS_Magnitude_64fc(const Orva64fc* src, Orva64f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const Full<double> d;
  const auto body = [=](const Orva64fc* from, Orva64f* to) TZM_LAMBDA {
    const auto z = LoadSplit(d, from);
    hn::StoreU(PartsInOrder(Hypot(z.re, z.im)), d, to);
  };
  // The complex argument is formed as re + i*im, whose real part takes in 0*im: an infinite re beside a
  // NaN gives NaN here, unlike in the body.
  const auto tail = [](const Orva64fc* from, Orva64f* to) TZM_LAMBDA {
    const Orva64fc z = LoadElement(from);
    __complex__ double argument;
    __real__ argument = z.re + 0.0 * z.im;
    __imag__ argument = z.im;
    StoreElement(cabs(argument), to);
  };
  BodyAndTail<2, hn::MaxLanes(d), 2>(len, body, tail, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Magnitude_16s32f(const Orva16s* srcRe, const Orva16s* srcIm, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, dst)) return status;
  const Full<float> d;
  const auto body = [=](const Orva16s* re, const Orva16s* im, Orva32f* to) TZM_LAMBDA {
    const SquareSums sums = LoadSquareSums(re, im);
    hn::StoreU(hn::Sqrt(SquareSumToFloat(sums.low)), d, to);
    hn::StoreU(hn::Sqrt(SquareSumToFloat(sums.high)), d, to + hn::Lanes(d));
  };
  BodyAndTail<4, 2 * hn::MaxLanes(d)>(len, body, StoreFloatRoot<Orva16s, Orva16s>, srcRe, srcIm, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Magnitude_16sc32f(const Orva16sc* src, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const Full<float> d;
  const Full<int32_t> d32;
  const auto body = [=](const Orva16sc* from, Orva32f* to) TZM_LAMBDA {
    // A complex element is one 32-bit lane, its imaginary part above.
    const auto both = hn::LoadU(d32, reinterpret_cast<const int32_t*>(from));
    const auto re = hn::ConvertTo(d, hn::ShiftRight<16>(hn::ShiftLeft<16>(both)));
    const auto im = hn::ConvertTo(d, hn::ShiftRight<16>(both));
    hn::StoreU(hn::Sqrt(hn::MulAdd(re, re, hn::Mul(im, im))), d, to);
  };
  BodyAndTail<4, hn::MaxLanes(d)>(len, body, StoreFloatRoot<Orva16sc>, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Magnitude_16s_S(const Orva16s* srcRe, const Orva16s* srcIm, Orva16s* dst, int32_t len,
                                 double scale) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const float factor = FloatFactor(scale);
  const Full<int16_t> d16;
  const auto factors = hn::Set(Full<float>(), factor);
  const auto body = [=](const Orva16s* re, const Orva16s* im, Orva16s* to) TZM_LAMBDA {
    const SquareSums sums = LoadSquareSums(re, im);
    const auto scaled = [&](auto sum) TZM_LAMBDA {
      return RoundFor<Orva16s>(hn::Mul(hn::Sqrt(SquareSumToFloat(sum)), factors));
    };
    hn::StoreU(NarrowPair(d16, scaled(sums.low), scaled(sums.high)), d16, to);
  };
  const auto tail = [=](const Orva16s* re, const Orva16s* im, Orva16s* to) TZM_LAMBDA {
    StoreElement(RoundSaturate<Orva16s>(Root(SquareSumOf(re, im)) * factor), to);
  };
  BodyAndTail<8, hn::MaxLanes(d16), 2>(len, body, tail, srcRe, srcIm, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Magnitude_16sc_S(const Orva16sc* src, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const Full<int16_t> d16;
  const Full<int32_t> d32;
  const Full<double> d;
  const auto factors = hn::Set(d, FloatFactor(scale));
  ForEach<hn::MaxLanes(d16), 2>(len, [=](const Orva16sc* from, Orva16s* to) TZM_LAMBDA {
    const SquareSums sums = LoadSquareSums(from);
    const auto scaled = [&](auto sum) TZM_LAMBDA {
      // 2^31 would be negative as a signed lane.
      const auto value = hn::Abs(hn::PromoteTo(d, hn::BitCast(hn::Half<Full<int32_t>>(), sum)));
      return RoundToInt32(hn::Mul(hn::Sqrt(value), factors));
    };
    const auto both = [&](auto sum) TZM_LAMBDA {
      const hn::Half<Full<uint32_t>> halfSums;
      return hn::Combine(d32, scaled(hn::UpperHalf(halfSums, sum)), scaled(hn::LowerHalf(halfSums, sum)));
    };
    hn::StoreU(NarrowPair(d16, both(sums.low), both(sums.high)), d16, to);
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Magnitude_32sc_S(const Orva32sc* src, Orva32s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const double factor = ScaleFactor(scale);
  const Full<double> d;
  const hn::Rebind<int32_t, Full<double>> d32;
  const auto factors = hn::Set(d, factor);
  const auto body = [=](const Orva32sc* from, Orva32s* to) TZM_LAMBDA {
    // A complex element is one 64-bit lane of two parts.
    const Full<int32_t> parts;
    const auto pair = hn::LoadU(parts, Parts(from));
    const auto re = hn::PromoteTo(d, hn::LowerHalf(d32, hn::ConcatEven(parts, pair, pair)));
    const auto im = hn::PromoteTo(d, hn::LowerHalf(d32, hn::ConcatOdd(parts, pair, pair)));
    const auto root = hn::Sqrt(hn::MulAdd(re, re, hn::Mul(im, im)));
    hn::StoreU(RoundToInt32(hn::Mul(root, factors)), d32, to);
  };
  const auto tail = [=](const Orva32sc* from, Orva32s* to) TZM_LAMBDA {
    StoreElement(RoundSaturate<Orva32s>(Root(SquareSumOf(from)) * factor), to);
  };
  BodyAndTail<4, hn::MaxLanes(d), 2>(len, body, tail, src, dst);
  return ORVA_STS_NO_ERR;
}
