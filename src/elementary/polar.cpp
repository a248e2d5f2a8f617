// Phase, and conversion between Cartesian and polar form: the vector math companion over whole arrays, in
// the caller's arrays where they have room, else in scratch that is released before the call returns.
#include <signal_tzm/arith.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/float_lanes.h"
#include "frame/scale.h"
#include "frame/vector.h"

using namespace tzm;

namespace {

template <class T>
T* NewArray(int32_t len) {
  if constexpr (std::is_same_v<T, Orva16s>) return ORVAS_Malloc_16s(len);
  else if constexpr (std::is_same_v<T, Orva32f>) return ORVAS_Malloc_32f(len);
  else return ORVAS_Malloc_64f(len);
}

// use(first, second) with two scratch arrays.
template <class T, class Use>
OrvaStatus WithTwoArrays(int32_t len, Use use) {
  T* const first = NewArray<T>(len);
  T* const second = NewArray<T>(len);
  const bool both = first != nullptr && second != nullptr;
  const OrvaStatus status = both ? use(first, second) : ORVA_STS_MEM_ALLOC_ERR;
  ORVA_Free(first);
  ORVA_Free(second);
  return status;
}

// ---- Phase ----

void Split(const Orva16sc* src, Orva16s* re, Orva16s* im, int32_t len) { ORVAS_CplxToReal_16sc(src, re, im, len); }
void Split(const Orva32fc* src, Orva32f* re, Orva32f* im, int32_t len) { ORVAS_CplxToReal_32fc(src, re, im, len); }
void Split(const Orva64fc* src, Orva64f* re, Orva64f* im, int32_t len) { ORVAS_CplxToReal_64fc(src, re, im, len); }

void AddArctan(const Orva32f* correction, Orva32f* ratio, int32_t len) {
  ORVAS_Arctan_32f_I(ratio, len);
  ORVAS_Add_32f_I(correction, ratio, len);
}
void AddArctan(const Orva64f* correction, Orva64f* ratio, int32_t len) {
  ORVAS_Arctan_64f_I(ratio, len);
  ORVAS_Add_64f_I(correction, ratio, len);
}

// arctan(im/re), plus pi with the sign of im where re < 0, plus a zero with the sign of im elsewhere. A
// negative zero counts as not below 0.
template <class Part, class Angle>
OrvaStatus Phase(const Part* re, const Part* im, Angle* dst, int32_t len) {
  Angle* const correction = NewArray<Angle>(len);
  if (correction == nullptr) return ORVA_STS_MEM_ALLOC_ERR;
  const Full<Angle> d;
  const auto pi = hn::Set(d, Angle(kPi)), zero = hn::Zero(d), sign = hn::SignBit(d);
  const auto load = [&](const Part* from) TZM_LAMBDA {
    if constexpr (std::is_same_v<Part, Angle>) return hn::LoadU(d, from);
    else return LoadAsFloat(d, from);
  };
  ForEach<hn::MaxLanes(d)>(len, [&](const Part* fromRe, const Part* fromIm, Angle* ratio, Angle* add) TZM_LAMBDA {
    const auto r = load(fromRe), i = load(fromIm);
    hn::StoreU(hn::Div(i, r), d, ratio);
    hn::StoreU(hn::Or(hn::IfThenElseZero(hn::Lt(r, zero), pi), hn::IfThenElseZero(hn::Lt(i, zero), sign)), d, add);
  }, re, im, dst, correction);
  AddArctan(correction, dst, len);
  ORVA_Free(correction);
  return ORVA_STS_NO_ERR;
}

template <class Part>
OrvaStatus ScaledPhase(const Part* re, const Part* im, Orva16s* dst, int32_t len, double scale) {
  Orva32f* const angle = NewArray<Orva32f>(len);
  const OrvaStatus status = angle != nullptr ? Phase(re, im, angle, len) : ORVA_STS_MEM_ALLOC_ERR;
  if (status == ORVA_STS_NO_ERR) {
    const auto factor = hn::Set(Full<float>(), FloatFactor(scale));
    RoundEach(len, [=](auto x) TZM_LAMBDA { return hn::Mul(x, factor); }, dst, angle);
  }
  ORVA_Free(angle);
  return status;
}

// use(re, im) with the parts of a complex array.
template <class Part, class Complex, class Use>
OrvaStatus WithParts(const Complex* src, int32_t len, Use use) {
  return WithTwoArrays<Part>(len, [&](Part* re, Part* im) {
    Split(src, re, im, len);
    return use(re, im);
  });
}

// ---- Polar to Cartesian ----

// Up to kBlock 16-bit samples, on the stack. Each product of binary32 numbers is rounded; infinity times zero, of
// a huge factor, becomes 0 in the end.
template <int32_t kBlock>
TZM_INLINE void PolarBlock(const Orva16s* mag, const Orva16s* phase, Orva16sc* dst, int32_t count, float magFactor,
                           float phaseFactor) {
  const hn::CappedTag<float, kBlock> d;
  const hn::Rebind<int16_t, decltype(d)> d16;
  constexpr size_t kStep = hn::MaxLanes(d);
  alignas(64) Orva32f angle[kBlock], sine[kBlock], cosine[kBlock];
  ForEach<kStep, 1>(count, [&](const Orva16s* from, Orva32f* to) TZM_LAMBDA {
    hn::StoreU(hn::Mul(LoadAsFloat(d, from), hn::Set(d, phaseFactor)), d, to);
  }, phase, &angle[0]);
  vssincos(count, angle, sine, cosine);
  const auto turn = [&](const Orva16s* m, const Orva32f* s, const Orva32f* c, Orva16sc* to) TZM_LAMBDA {
    const auto magnitude = LoadAsFloat(d, m), factor = hn::Set(d, magFactor);
    const auto part = [&](const Orva32f* from) TZM_LAMBDA {
      return hn::DemoteTo(d16, RoundFor<Orva16s>(hn::Mul(hn::Mul(magnitude, hn::LoadU(d, from)), factor)));
    };
    hn::StoreInterleaved2(part(c), part(s), d16, Parts(to));
  };
  ForEach<kStep, 1>(count, turn, mag, static_cast<const Orva32f*>(sine), static_cast<const Orva32f*>(cosine), dst);
}

}  // namespace

OrvaStatus ORVAS_Phase_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, dst)) return status;
  return Phase(srcRe, srcIm, dst, len);
}

OrvaStatus ORVAS_Phase_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, dst)) return status;
  return Phase(srcRe, srcIm, dst, len);
}

OrvaStatus ORVAS_Phase_16s32f(const Orva16s* srcRe, const Orva16s* srcIm, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, dst)) return status;
  return Phase(srcRe, srcIm, dst, len);
}

OrvaStatus ORVAS_Phase_16s_S(const Orva16s* srcRe, const Orva16s* srcIm, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return ScaledPhase(srcRe, srcIm, dst, len, scale);
}

OrvaStatus ORVAS_Phase_32fc(const Orva32fc* src, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  return WithParts<Orva32f>(src, len, [&](Orva32f* re, Orva32f* im) { return Phase(re, im, dst, len); });
}

OrvaStatus ORVAS_Phase_64fc(const Orva64fc* src, Orva64f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  return WithParts<Orva64f>(src, len, [&](Orva64f* re, Orva64f* im) { return Phase(re, im, dst, len); });
}

OrvaStatus ORVAS_Phase_16sc32f(const Orva16sc* src, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  return WithParts<Orva16s>(src, len, [&](Orva16s* re, Orva16s* im) { return Phase(re, im, dst, len); });
}

OrvaStatus ORVAS_Phase_16sc_S(const Orva16sc* src, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return WithParts<Orva16s>(src, len, [&](Orva16s* re, Orva16s* im) { return ScaledPhase(re, im, dst, len, scale); });
}

OrvaStatus ORVAS_CartToPolar_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32f* mag, Orva32f* phase,
                                 int32_t len) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, mag, phase)) return status;
  ORVAS_Arctan2_32f(srcIm, srcRe, phase, len);
  ORVAS_Magnitude_32f(srcRe, srcIm, mag, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_CartToPolar_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64f* mag, Orva64f* phase,
                                 int32_t len) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, mag, phase)) return status;
  ORVAS_Arctan2_64f(srcIm, srcRe, phase, len);
  ORVAS_Magnitude_64f(srcRe, srcIm, mag, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_CartToPolar_32fc(const Orva32fc* src, Orva32f* mag, Orva32f* phase, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, mag, phase)) return status;
  ORVAS_CplxToReal_32fc(src, mag, phase, len);
  ORVAS_Arctan2_32f(phase, mag, phase, len);
  ORVAS_Magnitude_32fc(src, mag, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_CartToPolar_64fc(const Orva64fc* src, Orva64f* mag, Orva64f* phase, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, mag, phase)) return status;
  ORVAS_CplxToReal_64fc(src, mag, phase, len);
  ORVAS_Arctan2_64f(phase, mag, phase, len);
  ORVAS_Magnitude_64fc(src, mag, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_CartToPolar_16sc_S(const Orva16sc* src, Orva16s* mag, Orva16s* phase, int32_t len, double magScale,
                                    double phaseScale) {
  if (OrvaStatus status = CheckArrays(len, src, mag, phase)) return status;
  if (OrvaStatus status = CheckScale(magScale)) return status;
  if (OrvaStatus status = CheckScale(phaseScale)) return status;
  return WithTwoArrays<Orva32f>(len, [&](Orva32f* re, Orva32f* im) {
    ORVAS_CplxToReal_16sc(src, mag, phase, len);
    ORVAS_Convert_16s32f(mag, re, len);
    ORVAS_Convert_16s32f(phase, im, len);
    ORVAS_Arctan2_32f(im, re, im, len);
    ORVAS_MulC_Low_32f16s(im, FloatFactor(phaseScale), phase, len);
    ORVAS_Magnitude_16sc_S(src, mag, len, magScale);
    return ORVA_STS_NO_ERR;
  });
}

OrvaStatus ORVAS_PolarToCart_32f(const Orva32f* mag, const Orva32f* phase, Orva32f* dstRe, Orva32f* dstIm,
                                 int32_t len) {
  if (OrvaStatus status = CheckArrays(len, mag, phase, dstRe, dstIm)) return status;
  vssincos(len, phase, dstIm, dstRe);
  ORVAS_Mul_32f_I(mag, dstRe, len);
  ORVAS_Mul_32f_I(mag, dstIm, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_PolarToCart_64f(const Orva64f* mag, const Orva64f* phase, Orva64f* dstRe, Orva64f* dstIm,
                                 int32_t len) {
  if (OrvaStatus status = CheckArrays(len, mag, phase, dstRe, dstIm)) return status;
  vdsincos(len, phase, dstIm, dstRe);
  ORVAS_Mul_64f_I(mag, dstRe, len);
  ORVAS_Mul_64f_I(mag, dstIm, len);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_PolarToCart_32fc(const Orva32f* mag, const Orva32f* phase, Orva32fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, mag, phase, dst)) return status;
  return WithTwoArrays<Orva32f>(len, [&](Orva32f* re, Orva32f* im) {
    ORVAS_PolarToCart_32f(mag, phase, re, im, len);
    ORVAS_RealToCplx_32f(re, im, dst, len);
    return ORVA_STS_NO_ERR;
  });
}

OrvaStatus ORVAS_PolarToCart_64fc(const Orva64f* mag, const Orva64f* phase, Orva64fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, mag, phase, dst)) return status;
  return WithTwoArrays<Orva64f>(len, [&](Orva64f* re, Orva64f* im) {
    ORVAS_PolarToCart_64f(mag, phase, re, im, len);
    ORVAS_RealToCplx_64f(re, im, dst, len);
    return ORVA_STS_NO_ERR;
  });
}

OrvaStatus ORVAS_PolarToCart_16sc_S(const Orva16s* mag, const Orva16s* phase, Orva16sc* dst, int32_t len,
                                    double magScale, double phaseScale) {
  if (OrvaStatus status = CheckArrays(len, mag, phase, dst)) return status;
  if (OrvaStatus status = CheckScale(magScale)) return status;
  if (OrvaStatus status = CheckScale(phaseScale)) return status;
  const float magFactor = FloatFactor(magScale), phaseFactor = FloatFactor(phaseScale);
  int32_t i = 0;
  for (; len - i >= 16; i += 16) PolarBlock<16>(mag + i, phase + i, dst + i, 16, magFactor, phaseFactor);
  for (; len - i >= 4; i += 4) PolarBlock<4>(mag + i, phase + i, dst + i, 4, magFactor, phaseFactor);
  if (i < len) PolarBlock<4>(mag + i, phase + i, dst + i, len - i, magFactor, phaseFactor);
  return ORVA_STS_NO_ERR;
}
