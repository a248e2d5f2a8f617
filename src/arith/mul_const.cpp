// Element-wise products of an array and one constant.
#include <signal_tzm/arith.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/float_lanes.h"
#include "frame/product.h"
#include "frame/scale.h"

using namespace tzm;

namespace {

template <class T>
void Products(const T* src, T value, T* dst, int32_t len) {
  const Full<T> d;
  const auto factor = hn::Set(d, value);
  ForEach<hn::MaxLanes(d)>(len, [=](const T* a, T* to) TZM_LAMBDA {
    hn::StoreU(hn::Mul(hn::LoadU(d, a), factor), d, to);
  }, src, dst);
}

// Real part fma(ar, br, -(ai*bi)) in both; the imaginary part deliberately rounds the other product in
// binary32, fma(ar, bi, ai*br), than in binary64, fma(ai, br, ar*bi).
template <class Complex>
void ComplexProducts(const Complex* src, Complex value, Complex* dst, int32_t len) {
  using D = Full<decltype(Complex::re)>;
  const D d;
  const auto br = hn::Set(d, value.re), bi = hn::Set(d, value.im);
  ForEach<hn::MaxLanes(d)>(len, [=](const Complex* a, Complex* to) TZM_LAMBDA {
    Vec<D> ar, ai, im;
    LoadParts(d, Parts(a), ar, ai);
    if constexpr (sizeof(value.re) == 4) im = hn::MulAdd(ar, bi, hn::Mul(ai, br));
    else im = hn::MulAdd(ai, br, hn::Mul(ar, bi));
    StoreParts(hn::MulSub(ar, br, hn::Mul(ai, bi)), im, d, Parts(to));
  }, src, dst);
}

// 8- and 16-bit integers: exact products in lanes of twice the width, scaled exactly.
template <class T>
void ScaledProducts(const T* src, T value, T* dst, int32_t len, int exponent) {
  const Full<T> d;
  const auto factor = hn::Set(d, value);
  using Wide = typename decltype(WideProducts(factor, factor))::D;
  WithShift(Wide(), exponent, [=](auto shift) TZM_LAMBDA {
    ForEach<hn::MaxLanes(d)>(len, [=](const T* a, T* to) TZM_LAMBDA {
      hn::StoreU(WideProducts(hn::LoadU(d, a), factor).Each(shift).Narrow(d), d, to);
    }, src, dst);
  });
}

template <class Complex>
void ScaledComplexProducts(size_t len, Complex value, int exponent, const Complex* src, Complex* dst) {
  using Product = ComplexProduct<decltype(Complex::re)>;
  WithShift(typename Product::Wide(), exponent, [=](auto shift) TZM_LAMBDA {
    const auto factor = Product::Set(value.re, value.im);
    ForEach<Product::kStep, 2>(len, [=](const Complex* a, Complex* to) TZM_LAMBDA {
      Product::Store(Product::Load(Parts(a)), factor, shift, Parts(to));
    }, src, dst);
  });
}

// One product of 32-bit parts through binary64: the exact sums round before the scale.
Orva32sc RoundedComplexProduct(Orva32sc a, Orva32sc b, double factor) {
  const auto wide = [](int32_t x, int32_t y) { return static_cast<uint64_t>(int64_t{x} * y); };
  const auto re = static_cast<int64_t>(wide(a.re, b.re) - wide(a.im, b.im));
  auto im = static_cast<int64_t>(wide(a.im, b.re) + wide(a.re, b.im));
  if (im == std::numeric_limits<int64_t>::min()) im = std::numeric_limits<int64_t>::max();  // wrapped
  return {RoundSaturate<int32_t>(static_cast<double>(re) * factor),
          RoundSaturate<int32_t>(static_cast<double>(im) * factor)};
}

// (src * value) * factor in binary32, each product rounded, then rounded to integers and saturated.
template <class T>
void ScaledFloats(const T* src, T value, float factor, Orva16s* dst, int32_t len) {
  const Full<float> d;
  const auto vv = hn::Set(d, value), vf = hn::Set(d, factor);
  RoundEach(len, [=](auto x) TZM_LAMBDA { return hn::Mul(hn::Mul(x, vv), vf); }, dst, src);
}

// 64-bit integers, scaled in binary64 and rounded back.
template <class ToDouble>
TZM_INLINE void ScaleInBinary64(Orva64s* srcDst, int32_t len, double scale, ToDouble toDouble) {
  const Full<int64_t> d;
  const auto factor = hn::Set(Full<double>(), ScaleFactor(scale));
  ForEach<hn::MaxLanes(d)>(len, [=](const Orva64s* a, Orva64s* to) TZM_LAMBDA {
    hn::StoreU(RoundToInt64(hn::Mul(toDouble(hn::LoadU(d, a)), factor)), d, to);
  }, static_cast<const Orva64s*>(srcDst), srcDst);
}

// Products of 64-bit lanes modulo 2^64.
TZM_INLINE Vec<Full<int64_t>> MulWrapping(Vec<Full<int64_t>> a, Vec<Full<int64_t>> b) {
  const Full<uint64_t> d;
  const Full<uint32_t> d32;
  const auto ua = hn::BitCast(d, a), ub = hn::BitCast(d, b);
  const auto even = [&](auto x, auto y) TZM_LAMBDA { return hn::MulEven(hn::BitCast(d32, x), hn::BitCast(d32, y)); };
  const auto crossed = hn::Add(even(hn::ShiftRight<32>(ua), ub), even(ua, hn::ShiftRight<32>(ub)));
  return hn::BitCast(Full<int64_t>(), hn::Add(even(ua, ub), hn::ShiftLeft<32>(crossed)));
}

}  // namespace

OrvaStatus ORVAS_MulC_32f(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  Products(src, value, dst, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MulC_64f(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  Products(src, value, dst, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MulC_32fc(const Orva32fc* src, Orva32fc value, Orva32fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  ComplexProducts(src, value, dst, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MulC_64fc(const Orva64fc* src, Orva64fc value, Orva64fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  ComplexProducts(src, value, dst, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MulC_16s_I(Orva16s value, Orva16s* srcDst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, srcDst)) return status;
  ScaledProducts(srcDst, value, srcDst, len, 0);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MulC_8u_S(const Orva8u* src, Orva8u value, Orva8u* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  ScaledProducts(src, value, dst, len, ScaleExponent(scale));
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MulC_16u_S(const Orva16u* src, Orva16u value, Orva16u* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  ScaledProducts(src, value, dst, len, ScaleExponent(scale));
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MulC_16sc_S(const Orva16sc* src, Orva16sc value, Orva16sc* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  ScaledComplexProducts(len, value, ScaleExponent(scale), src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MulC_32sc_S(const Orva32sc* src, Orva32sc value, Orva32sc* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const int exponent = ScaleExponent(scale);
  // Deliberately inexact: for exponents 23 to 63 the tail goes through binary64. Below, binary64 is exact for
  // every result that does not saturate; above, all are 0.
  const double factor = ExponentFactor<double>(exponent);
  BodyAndTail<8>(
      len, [&](size_t count, auto... at) { ScaledComplexProducts(count, value, exponent, at...); },
      [&](size_t count, const Orva32sc* from, Orva32sc* to) {
        if (exponent < 23 || exponent > 63) return ScaledComplexProducts(count, value, exponent, from, to);
        for (size_t i = 0; i < count; ++i)
          StoreElement(RoundedComplexProduct(LoadElement(from + i), value, factor), to + i);
      },
      src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MulC_16s_S(const Orva16s* src, Orva16s value, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  // Deliberately in binary32: a product above 2^24 rounds before the scale.
  ScaledFloats(src, value, FloatFactor(scale), dst, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MulC_32s_S(const Orva32s* src, Orva32s value, Orva32s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  // Deliberately through binary64: a product above 2^53 rounds before the scale.
  const Full<int32_t> d;
  const auto constant = hn::Set(d, value);
  const auto factor = hn::Set(Full<double>(), ScaleFactor(scale));
  ForEach<hn::MaxLanes(d), 2>(len, [=](const Orva32s* a, Orva32s* to) TZM_LAMBDA {
    StoreScaledProducts(RoundedProducts(hn::LoadU(d, a), constant), factor, to);
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MulC_Low_32f16s(const Orva32f* src, Orva32f value, Orva16s* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const auto factor = hn::Set(Full<float>(), value);
  RoundEach(len, [=](auto x) TZM_LAMBDA { return hn::Mul(x, factor); }, dst, src);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MulC_32f16s_S(const Orva32f* src, Orva32f value, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  ScaledFloats(src, value, FloatFactor(scale), dst, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MulC_64f64s_IS(Orva64f value, Orva64s* srcDst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, srcDst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const Full<double> d;
  const auto constant = hn::Set(d, value);
  ScaleInBinary64(srcDst, len, scale,
                  [=](auto a) TZM_LAMBDA { return hn::Mul(hn::ConvertTo(d, a), constant); });
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MulC_64s_IS(Orva64s value, Orva64s* srcDst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, srcDst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  // Deliberately wraps: a product beyond 64 bits keeps its low 64.
  const auto constant = hn::Set(Full<int64_t>(), value);
  ScaleInBinary64(srcDst, len, scale,
                  [=](auto a) TZM_LAMBDA { return hn::ConvertTo(Full<double>(), MulWrapping(a, constant)); });
  return ORVA_STS_NO_ERR;
}

#define TZM_IN_PLACE(in_place, member, T)                 \
  OrvaStatus in_place(T value, T* srcDst, int32_t len) {  \
    return member(srcDst, value, srcDst, len);            \
  }
TZM_IN_PLACE(ORVAS_MulC_32f_I, ORVAS_MulC_32f, Orva32f)
TZM_IN_PLACE(ORVAS_MulC_64f_I, ORVAS_MulC_64f, Orva64f)
TZM_IN_PLACE(ORVAS_MulC_32fc_I, ORVAS_MulC_32fc, Orva32fc)
TZM_IN_PLACE(ORVAS_MulC_64fc_I, ORVAS_MulC_64fc, Orva64fc)
#undef TZM_IN_PLACE

#define TZM_IN_PLACE_SCALED(in_place, member, T)                        \
  OrvaStatus in_place(T value, T* srcDst, int32_t len, double scale) {  \
    return member(srcDst, value, srcDst, len, scale);                   \
  }
TZM_IN_PLACE_SCALED(ORVAS_MulC_8u_IS, ORVAS_MulC_8u_S, Orva8u)
TZM_IN_PLACE_SCALED(ORVAS_MulC_16u_IS, ORVAS_MulC_16u_S, Orva16u)
TZM_IN_PLACE_SCALED(ORVAS_MulC_16s_IS, ORVAS_MulC_16s_S, Orva16s)
TZM_IN_PLACE_SCALED(ORVAS_MulC_32s_IS, ORVAS_MulC_32s_S, Orva32s)
TZM_IN_PLACE_SCALED(ORVAS_MulC_16sc_IS, ORVAS_MulC_16sc_S, Orva16sc)
TZM_IN_PLACE_SCALED(ORVAS_MulC_32sc_IS, ORVAS_MulC_32sc_S, Orva32sc)
#undef TZM_IN_PLACE_SCALED
