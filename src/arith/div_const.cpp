// Division of an array by a constant, and of a constant by an array.
#include <signal_tzm/arith.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/estimate.h"
#include "frame/float_lanes.h"
#include "frame/product.h"
#include "frame/reciprocal.h"
#include "frame/scale.h"

using namespace tzm;

namespace {

template <class T>
OrvaStatus DivideReals(const T* src, T value, T* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (value == 0) return ORVA_STS_DIV_BY_ZERO_ERR;
  MulReciprocal(src, value, dst, static_cast<size_t>(len));
  return ORVA_STS_NO_ERR;
}

// The squared modulus, as the complex members form it: the product written first in the fused step.
template <class T>
T SquaredModulus(T re, T im) {
  return Fma(re, re, im * im);
}

// 1 / value as a factor of complex products: the conjugate over the squared modulus, which is not zero.
template <class Complex>
Complex Reciprocal(Complex value) {
  const auto reciprocal = 1 / SquaredModulus(value.re, value.im);
  return {reciprocal * value.re, -(reciprocal * value.im)};
}

// round(src[i] / divisor), saturated, without dividing: the reciprocal has twice the precision, so that the
// product is exact where the quotient can be represented, and else one of its two neighbours.
template <bool kSafe, class T>
void Quotients(const T* src, float divisor, T* dst, size_t len) {
  const Full<float> d;
  const float reciprocal = 1 / divisor;
  const auto divisors = hn::Set(d, divisor), high = hn::Set(d, reciprocal);
  const auto low = hn::Set(d, Fma(-reciprocal, divisor, 1.0f) * reciprocal);
  RoundEach(len, [=](auto x) TZM_LAMBDA {
    const auto quotient = hn::MulAdd(x, high, hn::Mul(x, low));
    return kSafe ? quotient : RoundedToOdd(quotient, divisors, x);
  }, dst, src);
}

template <class T>
OrvaStatus DivideUnsigned(const T* src, T value, T* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  if (value == 0) return ORVA_STS_DIV_BY_ZERO_ERR;
  const float factor = QuotientFactor(scale);
  if (sizeof(T) == 1 || factor <= kSafeFactor) Quotients<true>(src, value / factor, dst, len);
  else Quotients<false>(src, value / factor, dst, len);
  return ORVA_STS_NO_ERR;
}

// round(value / src[i]), saturated, the quotient in binary32. In the tail a zero element gives the largest
// value even when `value` is zero. Gives whether a zero was met.
template <bool kTail>
bool DivideInto(size_t len, Orva16u value, const Orva16u* src, Orva16u* dst) {
  const Full<float> d;
  const auto dividend = hn::Set(d, value);
  AnyLane<Full<float>> zero;
  RoundEach(len, [&](auto x) TZM_LAMBDA {
    const auto isZero = hn::Eq(x, hn::Zero(d));
    zero.See(isZero);
    const auto quotient = IntegerQuotient(x, dividend);
    return kTail ? hn::IfThenElse(isZero, hn::Inf(d), quotient) : quotient;
  }, dst, src);
  return zero.Seen();
}

}  // namespace

OrvaStatus ORVAS_DivC_32f(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len) {
  return DivideReals(src, value, dst, len);
}

OrvaStatus ORVAS_DivC_64f(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len) {
  return DivideReals(src, value, dst, len);
}

OrvaStatus ORVAS_DivC_32f_I(Orva32f value, Orva32f* srcDst, int32_t len) {
  return ORVAS_DivC_32f(srcDst, value, srcDst, len);
}

OrvaStatus ORVAS_DivC_64f_I(Orva64f value, Orva64f* srcDst, int32_t len) {
  return ORVAS_DivC_64f(srcDst, value, srcDst, len);
}

OrvaStatus ORVAS_DivC_32fc(const Orva32fc* src, Orva32fc value, Orva32fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (SquaredModulus(value.re, value.im) == 0) return ORVA_STS_DIV_BY_ZERO_ERR;
  return ORVAS_MulC_32fc(src, Reciprocal(value), dst, len);
}

OrvaStatus ORVAS_DivC_64fc(const Orva64fc* src, Orva64fc value, Orva64fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (SquaredModulus(value.re, value.im) == 0) return ORVA_STS_DIV_BY_ZERO_ERR;
  return ORVAS_MulC_64fc(src, Reciprocal(value), dst, len);
}

OrvaStatus ORVAS_DivC_32fc_I(Orva32fc value, Orva32fc* srcDst, int32_t len) {
  return ORVAS_DivC_32fc(srcDst, value, srcDst, len);
}

OrvaStatus ORVAS_DivC_64fc_I(Orva64fc value, Orva64fc* srcDst, int32_t len) {
  return ORVAS_DivC_64fc(srcDst, value, srcDst, len);
}

OrvaStatus ORVAS_DivC_8u_S(const Orva8u* src, Orva8u value, Orva8u* dst, int32_t len, double scale) {
  return DivideUnsigned(src, value, dst, len, scale);
}

OrvaStatus ORVAS_DivC_16u_S(const Orva16u* src, Orva16u value, Orva16u* dst, int32_t len, double scale) {
  return DivideUnsigned(src, value, dst, len, scale);
}

// Deliberately the product with the reciprocal in binary32, not the quotient. The factor, a power of two,
// commutes with the rounding.
OrvaStatus ORVAS_DivC_16s_S(const Orva16s* src, Orva16s value, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (value == 0) return ORVA_STS_DIV_BY_ZERO_ERR;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const auto factor = hn::Set(Full<float>(), 1.0f / value * QuotientFactor(scale));
  RoundEach(len, [=](auto x) TZM_LAMBDA { return hn::Mul(x, factor); }, dst, src);
  return ORVA_STS_NO_ERR;
}

// Deliberately the product with the reciprocal of the squared modulus, not the quotient.
OrvaStatus ORVAS_DivC_16sc_S(const Orva16sc* src, Orva16sc value, Orva16sc* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const double re = value.re, im = value.im, modulus = SquaredModulus(re, im);
  if (modulus == 0) return ORVA_STS_DIV_BY_ZERO_ERR;
  const auto divisor = ComplexProduct<int16_t>::Set(value.re, value.im);
  const auto factor = ConjugateProduct::Lanes::Set(1.0 / modulus * ScaleFactor(scale));
  ForEach<ConjugateProduct::kStep, 2>(len, [=](const Orva16sc* from, Orva16sc* to) TZM_LAMBDA {
    const ConjugateProduct product(ComplexProduct<int16_t>::Load(Parts(from)), divisor);
    StoreRoundedParts(product.re * factor, product.im * factor, Parts(to));
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_DivC_8u_IS(Orva8u value, Orva8u* srcDst, int32_t len, double scale) {
  return ORVAS_DivC_8u_S(srcDst, value, srcDst, len, scale);
}

OrvaStatus ORVAS_DivC_16u_IS(Orva16u value, Orva16u* srcDst, int32_t len, double scale) {
  return ORVAS_DivC_16u_S(srcDst, value, srcDst, len, scale);
}

OrvaStatus ORVAS_DivC_16s_IS(Orva16s value, Orva16s* srcDst, int32_t len, double scale) {
  return ORVAS_DivC_16s_S(srcDst, value, srcDst, len, scale);
}

OrvaStatus ORVAS_DivC_16sc_IS(Orva16sc value, Orva16sc* srcDst, int32_t len, double scale) {
  return ORVAS_DivC_16sc_S(srcDst, value, srcDst, len, scale);
}

// Deliberately in binary64, into which the element is rounded first, and by the reciprocal.
OrvaStatus ORVAS_DivC_64s_IS(Orva64s value, Orva64s* srcDst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, srcDst)) return status;
  if (value == 0) return ORVA_STS_DIV_BY_ZERO_ERR;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const Full<double> d;
  const Full<int64_t> d64;
  const auto reciprocal = hn::Set(d, 1.0 / static_cast<double>(value));
  const auto factor = hn::Set(d, ScaleFactor(scale));
  const Orva64s* src = srcDst;
  ForEach<hn::MaxLanes(d)>(len, [=](const Orva64s* from, Orva64s* to) TZM_LAMBDA {
    const auto x = hn::ConvertTo(d, hn::LoadU(d64, from));
    hn::StoreU(RoundToInt64(hn::Mul(hn::Mul(x, reciprocal), factor)), d64, to);
  }, src, srcDst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_DivCRev_32f(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const Full<float> d;
  const auto dividend = hn::Set(d, value);
  AnyLane<Full<float>> zero;
  bool zeroInTail = false;
  BodyAndTail<4, hn::MaxLanes(d), 2>(
      len,
      [&](const Orva32f* from, Orva32f* to) TZM_LAMBDA {
        const auto x = hn::LoadU(d, from);
        zero.See(hn::Eq(x, hn::Zero(d)));
        auto reciprocal = RefinedReciprocal(x);
        // Deliberate: the two infinities are exchanged, so that 1 over +0 is negative here.
        reciprocal = hn::IfThenElse(hn::IsInf(reciprocal), hn::Neg(reciprocal), reciprocal);
        hn::StoreU(hn::Mul(dividend, reciprocal), d, to);
      },
      [&](const Orva32f* from, Orva32f* to) TZM_LAMBDA {
        const Orva32f x = LoadElement(from);
        zeroInTail |= x == 0;
        StoreElement(value / x, to);
      },
      src, dst);
  return zero.Seen() || zeroInTail ? ORVA_STS_DIV_ZERO_WARN : ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_DivCRev_16u(const Orva16u* src, Orva16u value, Orva16u* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  bool zero = false;
  BodyAndTail<48>(
      len, [&](size_t count, auto... at) TZM_LAMBDA { zero |= DivideInto<false>(count, value, at...); },
      [&](size_t count, auto... at) TZM_LAMBDA { zero |= DivideInto<true>(count, value, at...); }, src, dst);
  return zero ? ORVA_STS_DIV_ZERO_WARN : ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_DivCRev_32f_I(Orva32f value, Orva32f* srcDst, int32_t len) {
  return ORVAS_DivCRev_32f(srcDst, value, srcDst, len);
}

OrvaStatus ORVAS_DivCRev_16u_I(Orva16u value, Orva16u* srcDst, int32_t len) {
  return ORVAS_DivCRev_16u(srcDst, value, srcDst, len);
}
