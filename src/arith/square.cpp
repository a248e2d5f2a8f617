// Element-wise squares.
#include <signal_tzm/arith.h>

#include "frame/call.h"
#include "frame/drive.h"

using namespace tzm;

namespace {

template <class T>
void Squares(const T* src, T* dst, int32_t len) {
  const Full<T> d;
  ForEach<hn::MaxLanes(d)>(len, [=](const T* a, T* to) TZM_LAMBDA {
    const auto v = hn::LoadU(d, a);
    hn::StoreU(hn::Mul(v, v), d, to);
  }, src, dst);
}

// Real part fma(a, a, -(b*b)); imaginary part b*a rounded, then doubled.
template <class Complex>
void ComplexSquares(const Complex* src, Complex* dst, int32_t len) {
  using D = Full<decltype(Complex::re)>;
  const D d;
  ForEach<hn::MaxLanes(d)>(len, [=](const Complex* from, Complex* to) TZM_LAMBDA {
    Vec<D> a, b;
    LoadParts(d, Parts(from), a, b);
    const auto crossed = hn::Mul(b, a);
    StoreParts(hn::MulSub(a, a, hn::Mul(b, b)), hn::Add(crossed, crossed), d, Parts(to));
  }, src, dst);
}

}  // namespace

OrvaStatus ORVAS_Sqr_32f(const Orva32f* src, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  Squares(src, dst, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Sqr_64f(const Orva64f* src, Orva64f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  Squares(src, dst, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Sqr_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  ComplexSquares(src, dst, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Sqr_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  ComplexSquares(src, dst, len);
  return ORVA_STS_NO_ERR;
}

#define TZM_IN_PLACE(in_place, member, T)        \
  OrvaStatus in_place(T* srcDst, int32_t len) {  \
    return member(srcDst, srcDst, len);          \
  }
TZM_IN_PLACE(ORVAS_Sqr_32f_I, ORVAS_Sqr_32f, Orva32f)
TZM_IN_PLACE(ORVAS_Sqr_64f_I, ORVAS_Sqr_64f, Orva64f)
TZM_IN_PLACE(ORVAS_Sqr_32fc_I, ORVAS_Sqr_32fc, Orva32fc)
TZM_IN_PLACE(ORVAS_Sqr_64fc_I, ORVAS_Sqr_64fc, Orva64fc)
#undef TZM_IN_PLACE

// A scaled square is the exact product of an array with itself, checks included.
#define TZM_SCALED(member, product, in_place, T)                        \
  OrvaStatus member(const T* src, T* dst, int32_t len, double scale) {  \
    return product(src, src, dst, len, scale);                          \
  }                                                                     \
  OrvaStatus in_place(T* srcDst, int32_t len, double scale) {           \
    return member(srcDst, srcDst, len, scale);                          \
  }
TZM_SCALED(ORVAS_Sqr_8u_S, ORVAS_Mul_8u_S, ORVAS_Sqr_8u_IS, Orva8u)
TZM_SCALED(ORVAS_Sqr_16u_S, ORVAS_Mul_16u_S, ORVAS_Sqr_16u_IS, Orva16u)
TZM_SCALED(ORVAS_Sqr_16s_S, ORVAS_Mul_16s_S, ORVAS_Sqr_16s_IS, Orva16s)
TZM_SCALED(ORVAS_Sqr_16sc_S, ORVAS_Mul_16sc_S, ORVAS_Sqr_16sc_IS, Orva16sc)
#undef TZM_SCALED
