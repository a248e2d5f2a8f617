// Complex logarithm, sine and cosine: the real functions of the vector math companion over blocks on the
// stack, in binary64 for both types, put together so that nothing overflows or cancels on the way. Signed
// zeros, infinities, NaN and branch cuts are those of C's complex functions.
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/vector.h"

using namespace tzm;

namespace {

using D = Full<double>;
using V = Vec<D>;
constexpr size_t kStep = hn::MaxLanes(D());
constexpr int32_t kBlock = 128;

TZM_INLINE V Constant(double value) { return hn::Set(D(), value); }

struct Parts64 {
  V re, im;
};
TZM_INLINE Parts64 Load(const Orva64fc* from) {
  Parts64 z;
  hn::LoadInterleaved2(D(), Parts(from), z.re, z.im);
  return z;
}
TZM_INLINE Parts64 Load(const Orva32fc* from) {
  const hn::Rebind<float, D> narrow;
  Vec<decltype(narrow)> re, im;
  hn::LoadInterleaved2(narrow, Parts(from), re, im);
  return {hn::PromoteTo(D(), re), hn::PromoteTo(D(), im)};
}
TZM_INLINE void Store(V re, V im, Orva64fc* to) { StoreInterleaved(re, im, D(), Parts(to)); }
TZM_INLINE void Store(V re, V im, Orva32fc* to) {
  const hn::Rebind<float, D> narrow;
  StoreInterleaved(RoundTo<float>(re), RoundTo<float>(im), narrow, Parts(to));
}

// ---- Sine and cosine ----
// sin z = sin x cosh y + i cos x sinh y, cos z = cos x cosh y - i sin x sinh y: single products, so both
// parts keep their relative accuracy everywhere.

// Where e^|y| might overflow it is taken as 2^1536 e^(|y| - kShift) (1 + kShiftError), and the products
// take in the power of two piece by piece. |y| - kShift is exact: kShift is 1536 ln 2 on 42 fraction bits.
// Still larger, even the least sine overflows.
constexpr double kShift = 0x1.0a2b23f3bab73p+10;
constexpr double kShiftError = -0x1.a06bb56358ec5p-44;  // e^(kShift - 1536 ln 2) - 1
TZM_INLINE Mask<D> IsLarge(V magnitude) {
  return hn::And(hn::Gt(magnitude, Constant(700)), hn::Lt(magnitude, Constant(1700)));
}

// sinh y = y + y^3 (1/3! + y^2/5! + ...), to binary64's accuracy for |y| < 1.
TZM_INLINE V SmallSinh(V y) {
  constexpr double kReciprocalFactorials[] = {1 / 121645100408832000.0, 1 / 355687428096000.0, 1 / 1307674368000.0,
                                              1 / 6227020800.0, 1 / 39916800.0, 1 / 362880.0, 1 / 5040.0,
                                              1 / 120.0, 1 / 6.0};
  const V y2 = hn::Mul(y, y);
  V sum = hn::Zero(D());
  for (double coefficient : kReciprocalFactorials) sum = hn::MulAdd(sum, y2, Constant(coefficient));
  return hn::MulAdd(hn::Mul(y, y2), sum, y);
}

// A trigonometric by a hyperbolic factor, in units of 2^1535 where `large`. Zero times anything is a zero
// with the sign of the product; the sign of a NaN, which differs between machines, does not count.
TZM_INLINE V Product(V trigonometric, V hyperbolic, Mask<D> large) {
  const V one = Constant(1), first = hn::IfThenElse(large, Constant(0x1p1023), one);
  const V second = hn::IfThenElse(large, Constant(0x1p512), one);
  const V product = hn::Mul(hn::Mul(hn::Mul(trigonometric, first), hyperbolic), second);
  const auto zero = hn::Or(hn::Eq(trigonometric, hn::Zero(D())), hn::Eq(hyperbolic, hn::Zero(D())));
  const V signs = hn::Xor(hn::IfThenZeroElse(hn::IsNaN(trigonometric), trigonometric), hyperbolic);
  return hn::IfThenElse(zero, hn::And(signs, hn::SignBit(D())), product);
}

enum class Function { kSin, kCos };

template <Function kFunction, class Complex>
OrvaStatus SinCos(const Complex* src, Complex* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  alignas(64) double angle[kBlock], sine[kBlock], cosine[kBlock], power[kBlock];
  ForBlocks<kBlock>(len, [&](int32_t count, const Complex* source, Complex* result) {
    ForEach<kStep, 2>(count, [&](const Complex* from, double* x, double* e) TZM_LAMBDA {
      const auto z = Load(from);
      const V magnitude = hn::Abs(z.im);
      const V shift = hn::IfThenElseZero(IsLarge(magnitude), Constant(kShift));
      hn::StoreU(z.re, D(), x);
      hn::StoreU(hn::Sub(magnitude, shift), D(), e);
    }, source, angle, power);
    vdsincos(count, angle, sine, cosine);
    vdexp(count, power, power);
    const auto combine = [&](const Complex* from, const double* s, const double* c, const double* e,
                             Complex* to) TZM_LAMBDA {
      const auto z = Load(from);
      const V magnitude = hn::Abs(z.im), raw = hn::LoadU(D(), e);
      const auto large = IsLarge(magnitude);
      const V shifted = hn::MulAdd(raw, Constant(kShiftError), raw);
      const V half = hn::Mul(raw, Constant(0.5)), reciprocal = hn::Div(Constant(0.5), raw);
      const V cosh = hn::IfThenElse(large, shifted, hn::Add(half, reciprocal));
      const V sinhLarge = hn::IfThenElse(large, shifted, hn::Sub(half, reciprocal));
      const V sinhMagnitude = hn::IfThenElse(hn::Lt(magnitude, Constant(1)), SmallSinh(magnitude), sinhLarge);
      const V sinh = hn::CopySign(sinhMagnitude, z.im);
      const V sin = hn::LoadU(D(), s);
      // Infinite in y, the result is infinite even where the angle has no direction.
      const auto nowhere = hn::And(hn::IsInf(z.im), hn::Not(hn::IsFinite(z.re)));
      const V cos = hn::IfThenElse(nowhere, Constant(1), hn::LoadU(D(), c));
      if constexpr (kFunction == Function::kSin) Store(Product(sin, cosh, large), Product(cos, sinh, large), to);
      else Store(Product(cos, cosh, large), hn::Neg(Product(sin, sinh, large)), to);
    };
    ForEach<kStep, 2>(count, combine, source, std::as_const(sine), std::as_const(cosine), std::as_const(power), result);
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

// ---- Logarithm ----

// a + b and what its rounding lost.
struct Sum {
  V sum, error;
};
TZM_INLINE Sum TwoSum(V a, V b) {
  const V sum = hn::Add(a, b), other = hn::Sub(sum, a);
  return {sum, hn::Add(hn::Sub(a, hn::Sub(sum, other)), hn::Sub(b, other))};
}

// |z|^2 2^(-2 exponent) as a sum of two numbers, to twice binary64's accuracy; near 1, so is its distance
// from 1. log10 |z| = log10(high)/2 + log10(e)/2 low/high + exponent log10(2).
struct SquaredMagnitude {
  V high, ratio, logOfScale;  // ratio: low/high
  Mask<D> zero;
};
TZM_INLINE SquaredMagnitude SquareMagnitude(Parts64 z) {
  constexpr double kLog10Of2To600 = 0x1.693c6a27ae2f7p+7;
  const V absRe = hn::Abs(z.re), absIm = hn::Abs(z.im), most = hn::Max(absRe, absIm), one = Constant(1);
  const auto small = hn::Lt(most, Constant(0x1p-450)), large = hn::Gt(most, Constant(0x1p500));
  const V factor = hn::IfThenElse(small, Constant(0x1p600), hn::IfThenElse(large, Constant(0x1p-600), one));
  const V logOfLarge = hn::IfThenElseZero(large, Constant(kLog10Of2To600));
  const V logOfScale = hn::IfThenElse(small, Constant(-kLog10Of2To600), logOfLarge);
  const V re = hn::Mul(absRe, factor), im = hn::Mul(absIm, factor);
  const V a = hn::Max(re, im), b = hn::Min(re, im);
  const V a2 = hn::Mul(a, a), b2 = hn::Mul(b, b), a2Error = hn::MulSub(a, a, a2), b2Error = hn::MulSub(b, b, b2);

  const V sum = hn::Add(a2, b2), error = hn::Sub(b2, hn::Sub(sum, a2));
  // Near 1 what is left beside 1 may be no more than the errors: every sum with its own error.
  const V less = hn::Sub(a2, one);
  const V lessError = hn::Sub(a2, hn::Add(less, one));
  const Sum distance = TwoSum(less, b2), errors = TwoSum(a2Error, b2Error), moreErrors = TwoSum(errors.sum, lessError);
  const Sum exact = TwoSum(distance.sum, moreErrors.sum);
  const V lost = hn::Add(hn::Add(exact.error, distance.error), hn::Add(errors.error, moreErrors.error));
  const V beside = hn::Add(exact.sum, lost);
  const auto near = hn::And(hn::Gt(sum, Constant(0.9)), hn::Lt(sum, Constant(1.1)));
  const V nearHigh = hn::Add(one, beside);
  const V parts = hn::Add(re, im);  // NaN where one is, which the larger and the smaller need not be
  const V high = hn::IfThenElse(hn::IsNaN(parts), parts, hn::IfThenElse(near, nearHigh, sum));
  const V nearLow = hn::Sub(beside, hn::Sub(nearHigh, one));
  const V low = hn::IfThenElse(near, nearLow, hn::Add(error, hn::Add(a2Error, b2Error)));

  const auto zero = hn::And(hn::Eq(absRe, hn::Zero(D())), hn::Eq(absIm, hn::Zero(D())));
  const auto infinite = hn::Or(hn::IsInf(absRe), hn::IsInf(absIm));  // also beside a NaN
  const V ratio = hn::IfThenZeroElse(hn::Or(zero, infinite), hn::Div(low, high));
  return {hn::IfThenElse(infinite, Constant(std::numeric_limits<double>::infinity()), high), ratio, logOfScale, zero};
}

template <class Complex>
OrvaStatus Log10(const Complex* src, Complex* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  constexpr double kLog10OfE = 0x1.bcb7b1526e50ep-2, kLog10OfELow = 0x1.95355baaafad3p-57;
  alignas(64) double re[kBlock], angle[kBlock], magnitude[kBlock], rest[kBlock];
  AnyLane<D> zero;
  ForBlocks<kBlock>(len, [&](int32_t count, const Complex* source, Complex* result) {
    ForEach<kStep, 2>(count, [&](const Complex* from, double* x, double* y, double* high, double* low) TZM_LAMBDA {
      const auto z = Load(from);
      const auto square = SquareMagnitude(z);
      zero.See(square.zero);
      hn::StoreU(z.re, D(), x);
      hn::StoreU(z.im, D(), y);
      hn::StoreU(square.high, D(), high);
      hn::StoreU(hn::MulAdd(square.ratio, Constant(kLog10OfE / 2), square.logOfScale), D(), low);
    }, source, re, angle, magnitude, rest);
    vdatan2(count, angle, re, angle);
    vdlog10(count, magnitude, magnitude);
    ForEach<kStep, 2>(count, [&](const double* high, const double* low, const double* phi, Complex* to) TZM_LAMBDA {
      const V y = hn::LoadU(D(), phi);
      const V logarithm = hn::MulAdd(hn::LoadU(D(), high), Constant(0.5), hn::LoadU(D(), low));
      Store(logarithm, hn::MulAdd(y, Constant(kLog10OfE), hn::Mul(y, Constant(kLog10OfELow))), to);
    }, std::as_const(magnitude), std::as_const(rest), std::as_const(angle), result);
  }, src, dst);
  return zero.Seen() ? ORVA_STS_SINGULARITY_ERR : ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_Log10_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len) { return Log10(src, dst, len); }

OrvaStatus ORVAS_Log10_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len) { return Log10(src, dst, len); }

OrvaStatus ORVAS_Sin_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len) {
  return SinCos<Function::kSin>(src, dst, len);
}

OrvaStatus ORVAS_Sin_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len) {
  return SinCos<Function::kSin>(src, dst, len);
}

OrvaStatus ORVAS_Cos_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len) {
  return SinCos<Function::kCos>(src, dst, len);
}

OrvaStatus ORVAS_Cos_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len) {
  return SinCos<Function::kCos>(src, dst, len);
}
