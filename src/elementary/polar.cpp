// Phase, and conversion between Cartesian and polar form: the vector math companion over one block after the other,
// in the caller's arrays where they have room, else in scratch that is released before the call returns.
#include <signal_tzm/arith.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>

#include "frame/call.h"
#include "frame/calls.h"
#include "frame/drive.h"
#include "frame/float_lanes.h"
#include "frame/scale.h"
#include "frame/vector.h"

using namespace tzm;

namespace {

// Every pass is over a block that stays in the cache.
constexpr int32_t kBlock = 1024;

// A scratch array for blocks of a call over `len` elements; none for 0.
template <class T>
class Scratch {
 public:
  explicit Scratch(int32_t len) : wanted_(len != 0) {
    const int32_t count = std::min(len, kBlock);
    if (!wanted_) return;
    if constexpr (std::is_same_v<T, Orva16s>) array_ = ORVAS_Malloc_16s(count);
    else if constexpr (std::is_same_v<T, Orva32f>) array_ = ORVAS_Malloc_32f(count);
    else array_ = ORVAS_Malloc_64f(count);
  }
  Scratch(const Scratch&) = delete;
  ~Scratch() { ORVA_Free(array_); }
  bool Ok() const { return array_ != nullptr || !wanted_; }
  operator T*() const { return array_; }

 private:
  bool wanted_;
  T* array_ = nullptr;
};

// ---- Phase ----

void AddArctan(const Orva32f* correction, Orva32f* ratio, int32_t len) {
  ORVAS_Arctan_32f_I(ratio, len);
  Add(correction, ratio, len);
}
void AddArctan(const Orva64f* correction, Orva64f* ratio, int32_t len) {
  ORVAS_Arctan_64f_I(ratio, len);
  Add(correction, ratio, len);
}

// arctan(im/re), plus pi with the sign of im where re < 0, plus a zero with the sign of im elsewhere. A
// negative zero counts as not below 0. Of one block.
template <class Part, class Angle>
void Angles(const Part* re, const Part* im, Angle* correction, Angle* angle, int32_t count) {
  const Full<Angle> d;
  const auto pi = hn::Set(d, Angle(kPi)), zero = hn::Zero(d), sign = hn::SignBit(d);
  ForEach<hn::MaxLanes(d)>(count, [=](const Part* fromRe, const Part* fromIm, Angle* ratio, Angle* add) TZM_LAMBDA {
    const auto r = LoadFloating(d, fromRe), i = LoadFloating(d, fromIm);
    hn::StoreU(hn::Div(i, r), d, ratio);
    hn::StoreU(hn::Or(hn::IfThenElseZero(hn::Lt(r, zero), pi), hn::IfThenElseZero(hn::Lt(i, zero), sign)), d, add);
  }, re, im, angle, correction);
  AddArctan(correction, angle, count);
}

// The angles of parts, given apart or as one array; where `dst` is of integers, times the factor and rounded.
template <class Part, class Angle, class Dst, class... Source>
OrvaStatus Phase(Dst* dst, int32_t len, [[maybe_unused]] float factor, const Source*... src) {
  constexpr bool kSplit = sizeof...(Source) == 1, kScaled = !std::is_same_v<Dst, Angle>;
  const Scratch<Part> re(kSplit ? len : 0), im(kSplit ? len : 0);
  const Scratch<Angle> correction(len), angles(kScaled ? len : 0);
  if (!re.Ok() || !im.Ok() || !correction.Ok() || !angles.Ok()) return ORVA_STS_MEM_ALLOC_ERR;
  ForBlocks<kBlock>(len, [&](int32_t count, const Source*... from, Dst* to) {
    Angle* angle = angles;
    if constexpr (!kScaled) angle = to;
    if constexpr (kSplit) {
      Split(from..., re, im, count);
      Angles<Part, Angle>(re, im, correction, angle, count);
    } else {
      Angles<Part, Angle>(from..., correction, angle, count);
    }
    if constexpr (kScaled) {
      const auto factors = hn::Set(Full<float>(), factor);
      RoundEach(count, [=](auto x) TZM_LAMBDA { return hn::Mul(x, factors); }, to, static_cast<const Angle*>(angle));
    }
  }, src..., dst);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_Phase_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, dst)) return status;
  return Phase<Orva32f, Orva32f>(dst, len, 1, srcRe, srcIm);
}

OrvaStatus ORVAS_Phase_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, dst)) return status;
  return Phase<Orva64f, Orva64f>(dst, len, 1, srcRe, srcIm);
}

OrvaStatus ORVAS_Phase_16s32f(const Orva16s* srcRe, const Orva16s* srcIm, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, dst)) return status;
  return Phase<Orva16s, Orva32f>(dst, len, 1, srcRe, srcIm);
}

OrvaStatus ORVAS_Phase_16s_S(const Orva16s* srcRe, const Orva16s* srcIm, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return Phase<Orva16s, Orva32f>(dst, len, FloatFactor(scale), srcRe, srcIm);
}

OrvaStatus ORVAS_Phase_32fc(const Orva32fc* src, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  return Phase<Orva32f, Orva32f>(dst, len, 1, src);
}

OrvaStatus ORVAS_Phase_64fc(const Orva64fc* src, Orva64f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  return Phase<Orva64f, Orva64f>(dst, len, 1, src);
}

OrvaStatus ORVAS_Phase_16sc32f(const Orva16sc* src, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  return Phase<Orva16s, Orva32f>(dst, len, 1, src);
}

OrvaStatus ORVAS_Phase_16sc_S(const Orva16sc* src, Orva16s* dst, int32_t len, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return Phase<Orva16s, Orva32f>(dst, len, FloatFactor(scale), src);
}

OrvaStatus ORVAS_CartToPolar_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32f* mag, Orva32f* phase,
                                 int32_t len) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, mag, phase)) return status;
  ForBlocks<kBlock>(len, [](int32_t count, const Orva32f* re, const Orva32f* im, Orva32f* magnitude, Orva32f* angle) {
    ORVAS_Arctan2_32f(im, re, angle, count);
    ORVAS_Magnitude_32f(re, im, magnitude, count);
  }, srcRe, srcIm, mag, phase);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_CartToPolar_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64f* mag, Orva64f* phase,
                                 int32_t len) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, mag, phase)) return status;
  ForBlocks<kBlock>(len, [](int32_t count, const Orva64f* re, const Orva64f* im, Orva64f* magnitude, Orva64f* angle) {
    ORVAS_Arctan2_64f(im, re, angle, count);
    ORVAS_Magnitude_64f(re, im, magnitude, count);
  }, srcRe, srcIm, mag, phase);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_CartToPolar_32fc(const Orva32fc* src, Orva32f* mag, Orva32f* phase, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, mag, phase)) return status;
  ForBlocks<kBlock>(len, [](int32_t count, const Orva32fc* from, Orva32f* magnitude, Orva32f* angle) {
    ORVAS_CplxToReal_32fc(from, magnitude, angle, count);
    ORVAS_Arctan2_32f(angle, magnitude, angle, count);
    ORVAS_Magnitude_32fc(from, magnitude, count);
  }, src, mag, phase);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_CartToPolar_64fc(const Orva64fc* src, Orva64f* mag, Orva64f* phase, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, mag, phase)) return status;
  ForBlocks<kBlock>(len, [](int32_t count, const Orva64fc* from, Orva64f* magnitude, Orva64f* angle) {
    ORVAS_CplxToReal_64fc(from, magnitude, angle, count);
    ORVAS_Arctan2_64f(angle, magnitude, angle, count);
    ORVAS_Magnitude_64fc(from, magnitude, count);
  }, src, mag, phase);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_CartToPolar_16sc_S(const Orva16sc* src, Orva16s* mag, Orva16s* phase, int32_t len, double magScale,
                                    double phaseScale) {
  if (OrvaStatus status = CheckArrays(len, src, mag, phase)) return status;
  if (OrvaStatus status = CheckScale(magScale)) return status;
  if (OrvaStatus status = CheckScale(phaseScale)) return status;
  const Scratch<Orva32f> re(len), im(len);
  if (!re.Ok() || !im.Ok()) return ORVA_STS_MEM_ALLOC_ERR;
  ForBlocks<kBlock>(len, [&](int32_t count, const Orva16sc* from, Orva16s* magnitude, Orva16s* angle) {
    ORVAS_CplxToReal_16sc(from, magnitude, angle, count);
    ORVAS_Convert_16s32f(magnitude, re, count);
    ORVAS_Convert_16s32f(angle, im, count);
    ORVAS_Arctan2_32f(im, re, im, count);
    ORVAS_MulC_Low_32f16s(im, FloatFactor(phaseScale), angle, count);
    ORVAS_Magnitude_16sc_S(from, magnitude, count, magScale);
  }, src, mag, phase);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_PolarToCart_32f(const Orva32f* mag, const Orva32f* phase, Orva32f* dstRe, Orva32f* dstIm,
                                 int32_t len) {
  if (OrvaStatus status = CheckArrays(len, mag, phase, dstRe, dstIm)) return status;
  ForBlocks<kBlock>(len, [](int32_t count, const Orva32f* magnitude, const Orva32f* angle, Orva32f* re, Orva32f* im) {
    vssincos(count, angle, im, re);
    ORVAS_Mul_32f_I(magnitude, re, count);
    ORVAS_Mul_32f_I(magnitude, im, count);
  }, mag, phase, dstRe, dstIm);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_PolarToCart_64f(const Orva64f* mag, const Orva64f* phase, Orva64f* dstRe, Orva64f* dstIm,
                                 int32_t len) {
  if (OrvaStatus status = CheckArrays(len, mag, phase, dstRe, dstIm)) return status;
  ForBlocks<kBlock>(len, [](int32_t count, const Orva64f* magnitude, const Orva64f* angle, Orva64f* re, Orva64f* im) {
    vdsincos(count, angle, im, re);
    ORVAS_Mul_64f_I(magnitude, re, count);
    ORVAS_Mul_64f_I(magnitude, im, count);
  }, mag, phase, dstRe, dstIm);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_PolarToCart_32fc(const Orva32f* mag, const Orva32f* phase, Orva32fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, mag, phase, dst)) return status;
  const Scratch<Orva32f> re(len), im(len);
  if (!re.Ok() || !im.Ok()) return ORVA_STS_MEM_ALLOC_ERR;
  ForBlocks<kBlock>(len, [&](int32_t count, const Orva32f* magnitude, const Orva32f* angle, Orva32fc* to) {
    ORVAS_PolarToCart_32f(magnitude, angle, re, im, count);
    ORVAS_RealToCplx_32f(re, im, to, count);
  }, mag, phase, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_PolarToCart_64fc(const Orva64f* mag, const Orva64f* phase, Orva64fc* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, mag, phase, dst)) return status;
  const Scratch<Orva64f> re(len), im(len);
  if (!re.Ok() || !im.Ok()) return ORVA_STS_MEM_ALLOC_ERR;
  ForBlocks<kBlock>(len, [&](int32_t count, const Orva64f* magnitude, const Orva64f* angle, Orva64fc* to) {
    ORVAS_PolarToCart_64f(magnitude, angle, re, im, count);
    ORVAS_RealToCplx_64f(re, im, to, count);
  }, mag, phase, dst);
  return ORVA_STS_NO_ERR;
}

// In binary32, every product rounded; infinity times zero, of a huge factor, becomes 0 in the end.
OrvaStatus ORVAS_PolarToCart_16sc_S(const Orva16s* mag, const Orva16s* phase, Orva16sc* dst, int32_t len,
                                    double magScale, double phaseScale) {
  if (OrvaStatus status = CheckArrays(len, mag, phase, dst)) return status;
  if (OrvaStatus status = CheckScale(magScale)) return status;
  if (OrvaStatus status = CheckScale(phaseScale)) return status;
  constexpr int32_t kOnStack = 256;
  const Full<float> d;
  const hn::Rebind<int16_t, decltype(d)> d16;
  const auto magFactor = hn::Set(d, FloatFactor(magScale)), phaseFactor = hn::Set(d, FloatFactor(phaseScale));
  alignas(64) Orva32f angles[kOnStack], sines[kOnStack], cosines[kOnStack];
  ForBlocks<kOnStack>(len, [&](int32_t count, const Orva16s* magnitude, const Orva16s* angle, Orva16sc* cartesian) {
    ForEach<hn::MaxLanes(d)>(count, [=](const Orva16s* from, Orva32f* to) TZM_LAMBDA {
      hn::StoreU(hn::Mul(LoadFloating(d, from), phaseFactor), d, to);
    }, angle, angles);
    vssincos(count, angles, sines, cosines);
    const auto turn = [=](const Orva16s* m, const Orva32f* c, const Orva32f* s, Orva16sc* to) TZM_LAMBDA {
      const auto radius = LoadFloating(d, m);
      const auto part = [&](const Orva32f* from) TZM_LAMBDA {
        return RoundTo<Orva16s>(hn::Mul(hn::Mul(radius, hn::LoadU(d, from)), magFactor));
      };
      StoreInterleaved(part(c), part(s), d16, Parts(to));
    };
    ForEach<hn::MaxLanes(d), 2>(count, turn, magnitude, std::as_const(cosines), std::as_const(sines), cartesian);
  }, mag, phase, dst);
  return ORVA_STS_NO_ERR;
}
