// Normalisation: subtracts a constant and divides by another.
#include <signal_tzm/arith.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/float_lanes.h"
#include "frame/scale.h"

using namespace tzm;

namespace {

// A constant for even lanes, which hold real parts, and one for odd lanes.
template <class T>
struct Pair {
  T even, odd;

  Vec<Full<T>> Lanes() const { return hn::OddEven(hn::Set(Full<T>(), odd), hn::Set(Full<T>(), even)); }
};

// -(vSub / vDiv), the addend of the fused form x * (1 / vDiv) - vSub / vDiv.
template <class T>
Pair<T> Addend(Pair<T> vSub, T vDiv) {
  return {-(vSub.even / vDiv), -(vSub.odd / vDiv)};
}

// `len` counts reals. The two forms round differently, and which one is taken is part of the result.
template <class T>
OrvaStatus Normalize(const T* src, T* dst, size_t len, Pair<T> vSub, T vDiv, bool fused) {
  if (vDiv == 0) return ORVA_STS_DIV_BY_ZERO_ERR;
  const Full<T> d;
  const auto reciprocal = hn::Set(d, 1 / vDiv);
  const auto each = [&](auto form) TZM_LAMBDA {
    ForEach<hn::MaxLanes(d)>(len, [&](const T* from, T* to) TZM_LAMBDA {
      hn::StoreU(form(hn::LoadU(d, from)), d, to);
    }, src, dst);
  };
  if (fused) {
    const auto addend = Addend(vSub, vDiv).Lanes();
    each([=](auto x) TZM_LAMBDA { return hn::MulAdd(x, reciprocal, addend); });
  } else {
    const auto subtrahend = vSub.Lanes();
    each([=](auto x) TZM_LAMBDA { return hn::Mul(hn::Sub(x, subtrahend), reciprocal); });
  }
  return ORVA_STS_NO_ERR;
}

// `len` counts parts.
OrvaStatus NormalizeScaled(const Orva16s* src, Orva16s* dst, size_t len, Pair<float> vSub, float vDiv, double scale) {
  if (vDiv == 0) return ORVA_STS_DIV_BY_ZERO_ERR;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const Full<float> d;
  const auto reciprocal = hn::Set(d, 1 / vDiv), addend = Addend(vSub, vDiv).Lanes();
  const auto factor = hn::Set(d, FloatFactor(scale));
  RoundEach(len, [=](auto x) TZM_LAMBDA { return hn::Mul(factor, hn::MulAdd(x, reciprocal, addend)); }, dst, src);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_Normalize_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f vSub, Orva32f vDiv) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  return Normalize<Orva32f>(src, dst, len, {vSub, vSub}, vDiv, len >= 64);
}

OrvaStatus ORVAS_Normalize_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f vSub, Orva64f vDiv) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  return Normalize<Orva64f>(src, dst, len, {vSub, vSub}, vDiv, true);
}

OrvaStatus ORVAS_Normalize_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32fc vSub, Orva32f vDiv) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  return Normalize<Orva32f>(Parts(src), Parts(dst), 2 * static_cast<size_t>(len), {vSub.re, vSub.im}, vDiv, len >= 128);
}

OrvaStatus ORVAS_Normalize_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len, Orva64fc vSub, Orva64f vDiv) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  return Normalize<Orva64f>(Parts(src), Parts(dst), 2 * static_cast<size_t>(len), {vSub.re, vSub.im}, vDiv, true);
}

OrvaStatus ORVAS_Normalize_16s_S(const Orva16s* src, Orva16s* dst, int32_t len, Orva16s vSub, Orva32f vDiv,
                                 double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const float subtrahend = vSub;
  return NormalizeScaled(src, dst, len, {subtrahend, subtrahend}, vDiv, scale);
}

OrvaStatus ORVAS_Normalize_16sc_S(const Orva16sc* src, Orva16sc* dst, int32_t len, Orva16sc vSub, Orva32f vDiv,
                                  double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const float re = vSub.re, im = vSub.im;
  return NormalizeScaled(Parts(src), Parts(dst), 2 * static_cast<size_t>(len), {re, im}, vDiv, scale);
}

OrvaStatus ORVAS_Normalize_32f_I(Orva32f* srcDst, int32_t len, Orva32f vSub, Orva32f vDiv) {
  return ORVAS_Normalize_32f(srcDst, srcDst, len, vSub, vDiv);
}

OrvaStatus ORVAS_Normalize_64f_I(Orva64f* srcDst, int32_t len, Orva64f vSub, Orva64f vDiv) {
  return ORVAS_Normalize_64f(srcDst, srcDst, len, vSub, vDiv);
}

OrvaStatus ORVAS_Normalize_32fc_I(Orva32fc* srcDst, int32_t len, Orva32fc vSub, Orva32f vDiv) {
  return ORVAS_Normalize_32fc(srcDst, srcDst, len, vSub, vDiv);
}

OrvaStatus ORVAS_Normalize_64fc_I(Orva64fc* srcDst, int32_t len, Orva64fc vSub, Orva64f vDiv) {
  return ORVAS_Normalize_64fc(srcDst, srcDst, len, vSub, vDiv);
}

OrvaStatus ORVAS_Normalize_16s_IS(Orva16s* srcDst, int32_t len, Orva16s vSub, Orva32f vDiv, double scale) {
  return ORVAS_Normalize_16s_S(srcDst, srcDst, len, vSub, vDiv, scale);
}

OrvaStatus ORVAS_Normalize_16sc_IS(Orva16sc* srcDst, int32_t len, Orva16sc vSub, Orva32f vDiv, double scale) {
  return ORVAS_Normalize_16sc_S(srcDst, srcDst, len, vSub, vDiv, scale);
}
