// Hilbert transform: the analytic signal of a real one, by its one-sided spectrum.
#include <signal_tzm/arith.h>
#include <signal_tzm/transform.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/fft.h"

using namespace tzm;

constexpr int32_t kLongest = 0x8000000;  // as for the DFT: a longer one has no plan

struct OrvaHilbertSpec {
  int32_t len;
  tzm_fftf_plan forward;
  tzm_fftf_plan inverse;
};

using F = Fft<Orva32f>;

OrvaStatus ORVAS_HilbertInit_32f32fc(int32_t len, OrvaHilbertSpec** specOut) {
  if (OrvaStatus status = CheckArrays(len, specOut)) return status;
  if (len > kLongest) return ORVA_STS_MEM_ALLOC_ERR;
  auto* const spec = static_cast<OrvaHilbertSpec*>(ORVA_Malloc(sizeof(OrvaHilbertSpec)));
  if (spec == nullptr) return ORVA_STS_MEM_ALLOC_ERR;
  spec->forward = F::PlanComplex(len, kForward);
  spec->inverse = F::PlanComplex(len, kInverse);
  if (CheckPointers(spec->forward, spec->inverse)) {
    ORVAS_HilbertRelease_32f32fc(spec);
    return ORVA_STS_MEM_ALLOC_ERR;
  }
  spec->len = len;
  *specOut = spec;
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Hilbert_32f32fc(const Orva32f* src, Orva32fc* dst, int32_t len, const OrvaHilbertSpec* spec) {
  if (OrvaStatus status = CheckPointers(src, dst, spec)) return status;
  if (OrvaStatus status = CheckPointers(spec->forward, spec->inverse)) return status;
  if (len < 1) return ORVA_STS_SIZE_ERR;
  if (len != spec->len) return ORVA_STS_LEN_MISMATCH_ERR;

  const Full<Orva32f> d;
  ForEach<hn::MaxLanes(d)>(len, [=](const Orva32f* x, Orva32fc* out) TZM_LAMBDA {
    StoreInterleaved(hn::LoadU(d, x), hn::Zero(d), d, Parts(out));
  }, src, dst);
  F::Execute(spec->forward, dst, dst);
  // Positive frequencies double, negative ones vanish; bin 0 and the middle of an even length stay. Where
  // there are no others, both calls refuse their count.
  const int32_t half = len / 2, positive = len % 2 + half - 1;
  ORVAS_MulC_32f(Parts(dst + 1), 2.0f, Parts(dst + 1), 2 * positive);
  ORVAS_Zero_32f(Parts(dst + half + 1), 2 * positive);
  F::Execute(spec->inverse, dst, dst);
  return ORVAS_DivC_32f(Parts(dst), static_cast<Orva32f>(len), Parts(dst), 2 * len);
}

OrvaStatus ORVAS_HilbertRelease_32f32fc(OrvaHilbertSpec* spec) {
  if (spec == nullptr) return ORVA_STS_NO_ERR;
  F::Destroy(spec->forward);
  F::Destroy(spec->inverse);
  ORVA_Free(spec);
  return ORVA_STS_NO_ERR;
}
