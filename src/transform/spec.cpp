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

// The members of each kind of transform: their names, the family, the name of its length and the sample type.
#define TZM_COMPLEX(Init, Run, Release_, Family, length, Real, Complex)                                                \
  OrvaStatus Init(int32_t length, int32_t direction, int32_t flag, OrvaTransformSpec** specOut) {                      \
    return InitComplex<Family, Real>(length, direction, flag, specOut);                                                \
  }                                                                                                                    \
  OrvaStatus Run(const Complex* src, Complex* dst, const OrvaTransformSpec* spec) {                                    \
    return RunComplex<Family, Real>(src, dst, spec);                                                                   \
  }                                                                                                                    \
  OrvaStatus Release_(OrvaTransformSpec* spec) { return Release<Real>(spec); }

TZM_COMPLEX(ORVAS_FFTCToCInit_32fc, ORVAS_FFTCToC_32fc, ORVAS_FFTCToCRelease_32fc, PowerOfTwo, order, Orva32f, Orva32fc)
TZM_COMPLEX(ORVAS_FFTCToCInit_64fc, ORVAS_FFTCToC_64fc, ORVAS_FFTCToCRelease_64fc, PowerOfTwo, order, Orva64f, Orva64fc)
TZM_COMPLEX(ORVAS_DFTCToCInit_32fc, ORVAS_DFTCToC_32fc, ORVAS_DFTCToCRelease_32fc, AnyLength, len, Orva32f, Orva32fc)
TZM_COMPLEX(ORVAS_DFTCToCInit_64fc, ORVAS_DFTCToC_64fc, ORVAS_DFTCToCRelease_64fc, AnyLength, len, Orva64f, Orva64fc)
#undef TZM_COMPLEX

#define TZM_SPLIT(Init, Run, Release_, Family, length, Real)                                                           \
  OrvaStatus Init(int32_t length, int32_t direction, int32_t flag, OrvaTransformSpec** specOut) {                      \
    return InitSplit<Family, Real>(length, direction, flag, specOut);                                                  \
  }                                                                                                                    \
  OrvaStatus Run(const Real* srcRe, const Real* srcIm, Real* dstRe, Real* dstIm, const OrvaTransformSpec* spec) {      \
    return RunSplit<Family>(srcRe, srcIm, dstRe, dstIm, spec);                                                         \
  }                                                                                                                    \
  OrvaStatus Release_(OrvaTransformSpec* spec) { return Release<Real>(spec); }

TZM_SPLIT(ORVAS_FFTCToCInit_32f, ORVAS_FFTCToC_32f, ORVAS_FFTCToCRelease_32f, PowerOfTwo, order, Orva32f)
TZM_SPLIT(ORVAS_FFTCToCInit_64f, ORVAS_FFTCToC_64f, ORVAS_FFTCToCRelease_64f, PowerOfTwo, order, Orva64f)
TZM_SPLIT(ORVAS_DFTCToCInit_32f, ORVAS_DFTCToC_32f, ORVAS_DFTCToCRelease_32f, AnyLength, len, Orva32f)
TZM_SPLIT(ORVAS_DFTCToCInit_64f, ORVAS_DFTCToC_64f, ORVAS_DFTCToCRelease_64f, AnyLength, len, Orva64f)
#undef TZM_SPLIT

#define TZM_REAL_TO_COMPLEX(Init, Run, Release_, Family, length, Real)                                                 \
  OrvaStatus Init(int32_t length, int32_t flag, OrvaTransformSpec** specOut) {                                         \
    return InitRealToComplex<Family, Real>(length, flag, specOut);                                                     \
  }                                                                                                                    \
  OrvaStatus Run(const Real* src, Real* dst, const OrvaTransformSpec* spec) {                                          \
    return RunRealToComplex<Family>(src, dst, spec);                                                                   \
  }                                                                                                                    \
  OrvaStatus Release_(OrvaTransformSpec* spec) { return Release<Real>(spec); }

TZM_REAL_TO_COMPLEX(ORVAS_FFTRToCInit_32f, ORVAS_FFTRToC_32f, ORVAS_FFTRToCRelease_32f, PowerOfTwo, order, Orva32f)
TZM_REAL_TO_COMPLEX(ORVAS_FFTRToCInit_64f, ORVAS_FFTRToC_64f, ORVAS_FFTRToCRelease_64f, PowerOfTwo, order, Orva64f)
TZM_REAL_TO_COMPLEX(ORVAS_DFTRToCInit_32f, ORVAS_DFTRToC_32f, ORVAS_DFTRToCRelease_32f, AnyLength, len, Orva32f)
TZM_REAL_TO_COMPLEX(ORVAS_DFTRToCInit_64f, ORVAS_DFTRToC_64f, ORVAS_DFTRToCRelease_64f, AnyLength, len, Orva64f)
#undef TZM_REAL_TO_COMPLEX

#define TZM_COMPLEX_TO_REAL(Init, Run, Release_, Family, length, Real)                                                 \
  OrvaStatus Init(int32_t length, int32_t flag, OrvaTransformSpec** specOut) {                                         \
    return InitComplexToReal<Family, Real>(length, flag, specOut);                                                     \
  }                                                                                                                    \
  OrvaStatus Run(Real* src, Real* dst, const OrvaTransformSpec* spec) {                                                \
    return RunComplexToReal<Family>(src, dst, spec);                                                                   \
  }                                                                                                                    \
  OrvaStatus Release_(OrvaTransformSpec* spec) { return Release<Real>(spec); }

TZM_COMPLEX_TO_REAL(ORVAS_FFTCToRInit_32f, ORVAS_FFTCToR_32f, ORVAS_FFTCToRRelease_32f, PowerOfTwo, order, Orva32f)
TZM_COMPLEX_TO_REAL(ORVAS_FFTCToRInit_64f, ORVAS_FFTCToR_64f, ORVAS_FFTCToRRelease_64f, PowerOfTwo, order, Orva64f)
TZM_COMPLEX_TO_REAL(ORVAS_DFTCToRInit_32f, ORVAS_DFTCToR_32f, ORVAS_DFTCToRRelease_32f, AnyLength, len, Orva32f)
TZM_COMPLEX_TO_REAL(ORVAS_DFTCToRInit_64f, ORVAS_DFTCToR_64f, ORVAS_DFTCToRRelease_64f, AnyLength, len, Orva64f)
#undef TZM_COMPLEX_TO_REAL

OrvaStatus ORVAS_FFTCToC_32fc_I(Orva32fc* srcDst, const OrvaTransformSpec* spec) {
  return ORVAS_FFTCToC_32fc(srcDst, srcDst, spec);
}
OrvaStatus ORVAS_FFTCToC_64fc_I(Orva64fc* srcDst, const OrvaTransformSpec* spec) {
  return ORVAS_FFTCToC_64fc(srcDst, srcDst, spec);
}
