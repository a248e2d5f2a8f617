// Element-wise products of two arrays.
#include <signal_tzm/arith.h>
#include <signal_tzm/companion.h>

#include "frame/by_real.h"
#include "frame/call.h"
#include "frame/drive.h"
#include "frame/product.h"
#include "frame/scale.h"

using namespace tzm;

namespace {

// 8- and 16-bit integers: exact products in lanes of twice the width, scaled exactly.
template <class A, class B, class Dst>
void ScaledProducts(const A* src1, const B* src2, Dst* dst, int32_t len, int exponent) {
  using Wide = typename decltype(WideProducts(Vec<Full<A>>(), Vec<Full<B>>()))::D;
  WithShift(Wide(), exponent, [=](auto shift) TZM_LAMBDA {
    const Full<Dst> d;
    ForEach<hn::MaxLanes(d)>(len, [=](const A* a, const B* b, Dst* to) TZM_LAMBDA {
      hn::StoreU(WideProducts(hn::LoadU(Full<A>(), a), hn::LoadU(Full<B>(), b)).Each(shift).Narrow(d), d, to);
    }, src1, src2, dst);
  });
}

// The same where the result keeps the width of the lanes of D; `finish` makes the vector that is stored.
template <class D, class T, class Dst, class Finish>
TZM_INLINE void WidenedProducts(D d, const T* src1, const T* src2, Dst* dst, int32_t len, Finish finish) {
  ForEach<2 * hn::MaxLanes(d)>(len, [=](const T* a, const T* b, Dst* to) TZM_LAMBDA {
    const auto va = LoadWidened(d, a), vb = LoadWidened(d, b);
    const hn::Rebind<Dst, D> dto;
    hn::StoreU(finish(hn::Mul(va.low, vb.low)), dto, to);
    hn::StoreU(finish(hn::Mul(va.high, vb.high)), dto, to + hn::Lanes(dto));
  }, src1, src2, dst);
}

// Real part fma(ar, br, -(ai*bi)), imaginary part fma(ai, br, ar*bi).
template <class Complex>
TZM_INLINE void ComplexProducts(const Complex* src1, const Complex* src2, Complex* dst, int32_t len) {
  using D = Full<decltype(Complex::re)>;
  const D d;
  ForEach<hn::MaxLanes(d)>(len, [=](const Complex* a, const Complex* b, Complex* to) TZM_LAMBDA {
    Vec<D> ar, ai, br, bi;
    LoadParts(d, Parts(a), ar, ai);
    LoadParts(d, Parts(b), br, bi);
    StoreParts(hn::MulSub(ar, br, hn::Mul(ai, bi)), hn::MulAdd(ai, br, hn::Mul(ar, bi)), d, Parts(to));
  }, src1, src2, dst);
}

template <class Complex>
void ScaledComplexProducts(const Complex* src1, const Complex* src2, Complex* dst, int32_t len, double scale) {
  using Product = ComplexProduct<decltype(Complex::re)>;
  WithShift(typename Product::Wide(), ScaleExponent(scale), [=](auto shift) TZM_LAMBDA {
    ForEach<Product::kStep, 2>(len, [=](const Complex* a, const Complex* b, Complex* to) TZM_LAMBDA {
      Product::Store(Product::Load(Parts(a)), Product::Load(Parts(b)), shift, Parts(to));
    }, src1, src2, dst);
  });
}

}  // namespace

OrvaStatus ORVAS_Mul_32f(const Orva32f* src1, const Orva32f* src2, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  vsmul(len, src1, src2, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_64f(const Orva64f* src1, const Orva64f* src2, Orva64f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  vdmul(len, src1, src2, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_32fc(const Orva32fc* src1, const Orva32fc* src2, Orva32fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  ComplexProducts(src1, src2, dst, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_64fc(const Orva64fc* src1, const Orva64fc* src2, Orva64fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  ComplexProducts(src1, src2, dst, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_32f32fc(const Orva32f* src1, const Orva32fc* src2, Orva32fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  ForEachByReal(len, [](auto real, auto part) TZM_LAMBDA { return hn::Mul(real, part); }, src1, dst, src2);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_16s32f(const Orva16s* src1, const Orva16s* src2, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  WidenedProducts(Full<int32_t>(), src1, src2, dst, len,
                  [](auto product) TZM_LAMBDA { return hn::ConvertTo(Full<float>(), product); });
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_8u16u(const Orva8u* src1, const Orva8u* src2, Orva16u* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  WidenedProducts(Full<uint16_t>(), src1, src2, dst, len, KeepLanes());
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_16s(const Orva16s* src1, const Orva16s* src2, Orva16s* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  ScaledProducts(src1, src2, dst, len, 0);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_8u_S(const Orva8u* src1, const Orva8u* src2, Orva8u* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  ScaledProducts(src1, src2, dst, len, ScaleExponent(scale));
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_16u_S(const Orva16u* src1, const Orva16u* src2, Orva16u* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  ScaledProducts(src1, src2, dst, len, ScaleExponent(scale));
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_16s_S(const Orva16s* src1, const Orva16s* src2, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  ScaledProducts(src1, src2, dst, len, ScaleExponent(scale));
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_32s_S(const Orva32s* src1, const Orva32s* src2, Orva32s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  // Deliberately through binary64: a product above 2^53 rounds before the scale.
  const auto factor = hn::Set(Full<double>(), ScaleFactor(scale));
  const Full<int32_t> d;
  ForEach<hn::MaxLanes(d), 2>(len, [=](const Orva32s* a, const Orva32s* b, Orva32s* to) TZM_LAMBDA {
    StoreScaledProducts(RoundedProducts(hn::LoadU(d, a), hn::LoadU(d, b)), factor, to);
  }, src1, src2, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_16s32s_S(const Orva16s* src1, const Orva16s* src2, Orva32s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const Full<int32_t> d;
  WithShift(d, ScaleExponent(scale),
            [=](auto shift) TZM_LAMBDA { WidenedProducts(d, src1, src2, dst, len, shift); });
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_16u16s_S(const Orva16u* src1, const Orva16s* src2, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  ScaledProducts(src1, src2, dst, len, ScaleExponent(scale));
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_16sc_S(const Orva16sc* src1, const Orva16sc* src2, Orva16sc* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  ScaledComplexProducts(src1, src2, dst, len, scale);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Mul_32sc_S(const Orva32sc* src1, const Orva32sc* src2, Orva32sc* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  ScaledComplexProducts(src1, src2, dst, len, scale);
  return ORVA_STS_NO_ERR;
}

#define TZM_IN_PLACE(in_place, member, T1, T2)                   \
  OrvaStatus in_place(const T1* src, T2* srcDst, int32_t len) {  \
    return member(src, srcDst, srcDst, len);                     \
  }
TZM_IN_PLACE(ORVAS_Mul_16s_I, ORVAS_Mul_16s, Orva16s, Orva16s)
TZM_IN_PLACE(ORVAS_Mul_32f_I, ORVAS_Mul_32f, Orva32f, Orva32f)
TZM_IN_PLACE(ORVAS_Mul_64f_I, ORVAS_Mul_64f, Orva64f, Orva64f)
TZM_IN_PLACE(ORVAS_Mul_32fc_I, ORVAS_Mul_32fc, Orva32fc, Orva32fc)
TZM_IN_PLACE(ORVAS_Mul_64fc_I, ORVAS_Mul_64fc, Orva64fc, Orva64fc)
TZM_IN_PLACE(ORVAS_Mul_32f32fc_I, ORVAS_Mul_32f32fc, Orva32f, Orva32fc)
#undef TZM_IN_PLACE

#define TZM_IN_PLACE_SCALED(in_place, member, T)                             \
  OrvaStatus in_place(const T* src, T* srcDst, int32_t len, double scale) {  \
    return member(src, srcDst, srcDst, len, scale);                          \
  }
TZM_IN_PLACE_SCALED(ORVAS_Mul_8u_IS, ORVAS_Mul_8u_S, Orva8u)
TZM_IN_PLACE_SCALED(ORVAS_Mul_16u_IS, ORVAS_Mul_16u_S, Orva16u)
TZM_IN_PLACE_SCALED(ORVAS_Mul_16s_IS, ORVAS_Mul_16s_S, Orva16s)
TZM_IN_PLACE_SCALED(ORVAS_Mul_32s_IS, ORVAS_Mul_32s_S, Orva32s)
TZM_IN_PLACE_SCALED(ORVAS_Mul_16sc_IS, ORVAS_Mul_16sc_S, Orva16sc)
TZM_IN_PLACE_SCALED(ORVAS_Mul_32sc_IS, ORVAS_Mul_32sc_S, Orva32sc)
#undef TZM_IN_PLACE_SCALED
