// FFT and DFT specs: a plan made once by Init, run by the working calls, given back by Release.
#include <signal_tzm/transform.h>

#include "frame/call.h"
#include "frame/fft.h"
#include "frame/reciprocal.h"

#include <cmath>
#include <type_traits>

using namespace tzm;

// A spec is read-only after Init, so any number of threads may run it at once.
struct OrvaTransformSpec {
  void* plan;
  int32_t len;
  int32_t direction;  // kForward or kInverse; set for complex-to-complex transforms only
  int32_t flag;       // normalisation, 1 to 4
};

namespace {

// The split planner wants an address for its inputs; nothing is read or written there.
template <class Real>
struct SpecWithPlaceholder : OrvaTransformSpec {
  Real placeholder;
};

// The two families differ in how a length is given and refused.
struct PowerOfTwo {  // FFT
  static constexpr int32_t kMaxOrder = 27;
  static OrvaStatus CheckArgument(int32_t order) {
    return static_cast<uint32_t>(order) > kMaxOrder ? ORVA_STS_FFT_ORDER_ERR : ORVA_STS_NO_ERR;
  }
  static int32_t Length(int32_t order) { return 1 << order; }
  static OrvaStatus CheckLength(int32_t len) {
    return static_cast<uint32_t>(len) - 1 > 0x7ffffff ? ORVA_STS_FFT_ORDER_ERR : ORVA_STS_NO_ERR;
  }
  // Reals divided after a real-to-complex transform: n even is taken for granted, so a transform of
  // length 1 divides three values although its plan writes two.
  static int32_t HalfSpectrumReals(int32_t len) { return len + 2; }
};
struct AnyLength {  // DFT
  static OrvaStatus CheckArgument(int32_t len) { return CheckLength(len); }
  static int32_t Length(int32_t len) { return len; }
  static OrvaStatus CheckLength(int32_t len) {
    if (len < 1) return ORVA_STS_SIZE_ERR;
    return len > 0x8000000 ? ORVA_STS_MEM_ALLOC_ERR : ORVA_STS_NO_ERR;  // deliberately not a size error
  }
  static int32_t HalfSpectrumReals(int32_t len) { return (len & ~1) + 2; }
};

// `makePlan(spec)` gives the plan for its length and direction.
template <class Family, class Record, class MakePlan>
OrvaStatus Init(int32_t length, int32_t direction, int32_t flag, OrvaTransformSpec** specOut, MakePlan makePlan) {
  if (OrvaStatus status = CheckPointers(specOut)) return status;
  if (OrvaStatus status = Family::CheckArgument(length)) return status;
  if (flag < ORVA_DIVIDE_FORWARD || flag > ORVA_DIVIDE_NONE) return ORVA_STS_FFT_FLAG_ERR;
  auto* const spec = static_cast<Record*>(ORVA_Malloc(sizeof(Record)));
  if (spec == nullptr) return ORVA_STS_MEM_ALLOC_ERR;
  spec->flag = flag;
  spec->len = Family::Length(length);
  spec->direction = direction;
  spec->plan = makePlan(spec);
  if (spec->plan == nullptr) {
    ORVA_Free(spec);
    return ORVA_STS_MEM_ALLOC_ERR;
  }
  *specOut = spec;
  return ORVA_STS_NO_ERR;
}

template <class Family, class Real>
OrvaStatus InitComplex(int32_t length, int32_t direction, int32_t flag, OrvaTransformSpec** specOut) {
  using Record = std::conditional_t<std::is_same_v<Real, Orva32f>, SpecWithPlaceholder<Real>, OrvaTransformSpec>;
  return Init<Family, Record>(length, direction > 0 ? kForward : kInverse, flag, specOut,
                              [](auto* spec) { return Fft<Real>::PlanComplex(spec->len, spec->direction); });
}

// One plan serves both directions: an inverse transform exchanges real and imaginary arrays.
template <class Family, class Real>
OrvaStatus InitSplit(int32_t length, int32_t direction, int32_t flag, OrvaTransformSpec** specOut) {
  return Init<Family, SpecWithPlaceholder<Real>>(
      length, direction > 0 ? kForward : kInverse, flag, specOut, [](auto* spec) {
        const tzm_fft_iodim dim = {spec->len, 1, 1};
        return Fft<Real>::PlanSplit(1, &dim, 0, nullptr, &spec->placeholder, &spec->placeholder, nullptr, nullptr, 0);
      });
}

template <class Family, class Real>
OrvaStatus InitRealToComplex(int32_t length, int32_t flag, OrvaTransformSpec** specOut) {
  return Init<Family, SpecWithPlaceholder<Real>>(
      length, 0, flag, specOut, [](auto* spec) { return Fft<Real>::PlanRealToComplex(spec->len); });
}

template <class Family, class Real>
OrvaStatus InitComplexToReal(int32_t length, int32_t flag, OrvaTransformSpec** specOut) {
  return Init<Family, SpecWithPlaceholder<Real>>(
      length, 0, flag, specOut, [](auto* spec) { return Fft<Real>::PlanComplexToReal(spec->len); });
}

template <class Family, class... T>
OrvaStatus CheckRun(const OrvaTransformSpec* spec, const T*... arrays) {
  if (OrvaStatus status = CheckPointers(arrays..., spec)) return status;
  if (OrvaStatus status = CheckPointers(spec->plan)) return status;
  return Family::CheckLength(spec->len);
}

// A transform is divided by its length, by its root, or not at all: ORVAS_DivC without its call, which short
// transforms would notice.
template <class Real>
void Normalise(const OrvaTransformSpec* spec, int32_t direction, Real* data, int32_t count) {
  const int32_t own = direction == kForward ? ORVA_DIVIDE_FORWARD : ORVA_DIVIDE_INVERSE;
  if (spec->flag != own && spec->flag != ORVA_DIVIDE_BY_ROOT) return;
  const double len = spec->len;
  const Real by = static_cast<Real>(spec->flag == ORVA_DIVIDE_BY_ROOT ? sqrt(len) : len);
  MulReciprocal(data, by, data, static_cast<size_t>(count));
}

template <class Real>
typename Fft<Real>::Plan Plan(const OrvaTransformSpec* spec) {
  return static_cast<typename Fft<Real>::Plan>(spec->plan);
}

template <class Family, class Real, class Complex>
OrvaStatus RunComplex(const Complex* src, Complex* dst, const OrvaTransformSpec* spec) {
  if (OrvaStatus status = CheckRun<Family>(spec, src, dst)) return status;
  Fft<Real>::Execute(Plan<Real>(spec), const_cast<Complex*>(src), dst);
  Normalise(spec, spec->direction, reinterpret_cast<Real*>(dst), 2 * spec->len);
  return ORVA_STS_NO_ERR;
}

template <class Family, class Real>
OrvaStatus RunSplit(const Real* srcRe, const Real* srcIm, Real* dstRe, Real* dstIm, const OrvaTransformSpec* spec) {
  if (OrvaStatus status = CheckRun<Family>(spec, srcRe, srcIm, dstRe, dstIm)) return status;
  Real *re = const_cast<Real*>(srcRe), *im = const_cast<Real*>(srcIm);
  if (spec->direction == kForward) Fft<Real>::ExecuteSplit(Plan<Real>(spec), re, im, dstRe, dstIm);
  else Fft<Real>::ExecuteSplit(Plan<Real>(spec), im, re, dstIm, dstRe);
  Normalise(spec, spec->direction, dstRe, spec->len);
  Normalise(spec, spec->direction, dstIm, spec->len);
  return ORVA_STS_NO_ERR;
}

template <class Family, class Real>
OrvaStatus RunRealToComplex(const Real* src, Real* dst, const OrvaTransformSpec* spec) {
  if (OrvaStatus status = CheckRun<Family>(spec, src, dst)) return status;
  Fft<Real>::ExecuteRealToComplex(Plan<Real>(spec), const_cast<Real*>(src),
                                  reinterpret_cast<typename Fft<Real>::Complex*>(dst));
  Normalise(spec, kForward, dst, Family::HalfSpectrumReals(spec->len));
  return ORVA_STS_NO_ERR;
}

template <class Family, class Real>
OrvaStatus RunComplexToReal(Real* src, Real* dst, const OrvaTransformSpec* spec) {
  if (OrvaStatus status = CheckRun<Family>(spec, src, dst)) return status;
  Fft<Real>::ExecuteComplexToReal(
      Plan<Real>(spec), reinterpret_cast<typename Fft<Real>::Complex*>(src), dst);
  Normalise(spec, kInverse, dst, spec->len);
  return ORVA_STS_NO_ERR;
}

template <class Real>
OrvaStatus Release(OrvaTransformSpec* spec) {
  if (spec == nullptr) return ORVA_STS_NO_ERR;
  Fft<Real>::Destroy(Plan<Real>(spec));
  ORVA_Free(spec);
  return ORVA_STS_NO_ERR;
}

}  // namespace

// The members of one family and one sample type.
#define TZM_SPEC_MEMBERS(FAMILY, Family, length, bits, Real, Complex)                                               \
  OrvaStatus ORVAS_##FAMILY##CToCInit_##bits##fc(int32_t length, int32_t direction, int32_t flag,                   \
                                                 OrvaTransformSpec** specOut) {                                     \
    return InitComplex<Family, Real>(length, direction, flag, specOut);                                             \
  }                                                                                                                 \
  OrvaStatus ORVAS_##FAMILY##CToCInit_##bits##f(int32_t length, int32_t direction, int32_t flag,                    \
                                                OrvaTransformSpec** specOut) {                                      \
    return InitSplit<Family, Real>(length, direction, flag, specOut);                                               \
  }                                                                                                                 \
  OrvaStatus ORVAS_##FAMILY##RToCInit_##bits##f(int32_t length, int32_t flag, OrvaTransformSpec** specOut) {        \
    return InitRealToComplex<Family, Real>(length, flag, specOut);                                                  \
  }                                                                                                                 \
  OrvaStatus ORVAS_##FAMILY##CToRInit_##bits##f(int32_t length, int32_t flag, OrvaTransformSpec** specOut) {        \
    return InitComplexToReal<Family, Real>(length, flag, specOut);                                                  \
  }                                                                                                                 \
  OrvaStatus ORVAS_##FAMILY##CToC_##bits##fc(const Complex* src, Complex* dst, const OrvaTransformSpec* spec) {     \
    return RunComplex<Family, Real>(src, dst, spec);                                                                \
  }                                                                                                                 \
  OrvaStatus ORVAS_##FAMILY##CToC_##bits##f(const Real* srcRe, const Real* srcIm, Real* dstRe, Real* dstIm,         \
                                            const OrvaTransformSpec* spec) {                                        \
    return RunSplit<Family>(srcRe, srcIm, dstRe, dstIm, spec);                                                      \
  }                                                                                                                 \
  OrvaStatus ORVAS_##FAMILY##RToC_##bits##f(const Real* src, Real* dst, const OrvaTransformSpec* spec) {            \
    return RunRealToComplex<Family>(src, dst, spec);                                                                \
  }                                                                                                                 \
  OrvaStatus ORVAS_##FAMILY##CToR_##bits##f(Real* src, Real* dst, const OrvaTransformSpec* spec) {                  \
    return RunComplexToReal<Family>(src, dst, spec);                                                                \
  }                                                                                                                 \
  OrvaStatus ORVAS_##FAMILY##CToCRelease_##bits##fc(OrvaTransformSpec* spec) { return Release<Real>(spec); }        \
  OrvaStatus ORVAS_##FAMILY##CToCRelease_##bits##f(OrvaTransformSpec* spec) { return Release<Real>(spec); }         \
  OrvaStatus ORVAS_##FAMILY##RToCRelease_##bits##f(OrvaTransformSpec* spec) { return Release<Real>(spec); }         \
  OrvaStatus ORVAS_##FAMILY##CToRRelease_##bits##f(OrvaTransformSpec* spec) { return Release<Real>(spec); }

TZM_SPEC_MEMBERS(FFT, PowerOfTwo, order, 32, Orva32f, Orva32fc)
TZM_SPEC_MEMBERS(FFT, PowerOfTwo, order, 64, Orva64f, Orva64fc)
TZM_SPEC_MEMBERS(DFT, AnyLength, len, 32, Orva32f, Orva32fc)
TZM_SPEC_MEMBERS(DFT, AnyLength, len, 64, Orva64f, Orva64fc)
#undef TZM_SPEC_MEMBERS

OrvaStatus ORVAS_FFTCToC_32fc_I(Orva32fc* srcDst, const OrvaTransformSpec* spec) {
  return ORVAS_FFTCToC_32fc(srcDst, srcDst, spec);
}
OrvaStatus ORVAS_FFTCToC_64fc_I(Orva64fc* srcDst, const OrvaTransformSpec* spec) {
  return ORVAS_FFTCToC_64fc(srcDst, srcDst, spec);
}
