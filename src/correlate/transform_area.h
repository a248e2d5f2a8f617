// The FFT route of convolution and correlation: its transform length, its buffers and its two plans.
#pragma once

#include "frame/call.h"
#include "frame/calls.h"
#include "frame/fft.h"

#include <algorithm>
#include <bit>

namespace tzm {

// 1 for 1, otherwise the smallest power of two from 2 on that is not below `count`, which arguments without any lag
// can make negative.
inline int64_t TransformLength(int64_t count) {
  return count == 1 ? 1 : static_cast<int64_t>(std::bit_ceil(static_cast<uint64_t>(std::max<int64_t>(count, 2))));
}

// src[i] / value for both parts of `len` samples, which may be more reals than one call takes.
template <class Sample>
void DivideParts(const Sample* src, int32_t value, Sample* dst, int32_t len) {
  for (size_t at = 0, reals = kParts<Sample> * static_cast<size_t>(len); at < reals; at += static_cast<size_t>(len))
    Divide(Reals(src) + at, static_cast<PartOf<Sample>>(value), Reals(dst) + at, len);
}

// Up to kBuffers buffers and the plans of one length P. Of a real type, buffer 0 holds P samples in time
// and the others spectra of P/2 + 1 bins; of a complex type each holds P samples, transformed in place.
template <class Sample, int kBuffers>
struct TransformArea {
  using F = Fft<PartOf<Sample>>;
  using Complex = typename F::Complex;
  using Plan = typename F::Plan;

  void* buffers[kBuffers];
  Plan forwardPlan;
  Plan inversePlan;

  Sample* Time(int which) const { return static_cast<Sample*>(buffers[which]); }
  Complex* Spectrum(int which) const { return static_cast<Complex*>(buffers[which]); }
  static int32_t Bins(int32_t fftLen) { return kIsComplex<Sample> ? fftLen : fftLen / 2 + 1; }

  // Takes the first `count` buffers and the plans, all of them whatever the others gave. False when one is
  // missing: Release then gives back the rest.
  bool Make(int32_t fftLen, int count) {
    const int32_t time = fftLen * static_cast<int32_t>(sizeof(Sample));
    const int32_t spectrum = Bins(fftLen) * static_cast<int32_t>(sizeof(Complex));
    for (int b = 0; b < count; ++b) buffers[b] = ORVA_Malloc(b == 0 ? time : spectrum);
    if constexpr (kIsComplex<Sample>) {
      forwardPlan = F::PlanComplex(fftLen, kForward);
      inversePlan = F::PlanComplex(fftLen, kInverse);
    } else {
      forwardPlan = F::PlanRealToComplex(fftLen);
      inversePlan = F::PlanComplexToReal(fftLen);
    }
    return Has(count);
  }
  bool Has(int count) const {
    for (int b = 0; b < count; ++b)
      if (buffers[b] == nullptr) return false;
    return forwardPlan != nullptr && inversePlan != nullptr;
  }
  void Release() {
    for (void* buffer : buffers) ORVA_Free(buffer);
    F::Destroy(forwardPlan);
    F::Destroy(inversePlan);
  }

  // The spectrum, in buffer `to`, of `count` samples that start at `start` among zeros.
  void Forward(const Sample* src, int32_t start, int32_t count, int32_t fftLen, int to) const {
    Sample* const time = Time(kIsComplex<Sample> ? to : 0);
    Zero(time, start);
    Copy(src, time + start, count);
    Zero(time + start + count, fftLen - start - count);
    if constexpr (kIsComplex<Sample>) F::Execute(forwardPlan, time, time);
    else F::ExecuteRealToComplex(forwardPlan, time, Spectrum(to));
  }
  // The first `count` samples behind the spectrum in buffer `from`, which is lost.
  void Inverse(int from, int32_t fftLen, Sample* dst, int32_t count) const {
    Sample* const time = Time(kIsComplex<Sample> ? from : 0);
    if constexpr (kIsComplex<Sample>) F::Execute(inversePlan, time, time);
    else F::ExecuteComplexToReal(inversePlan, Spectrum(from), time);
    DivideParts(time, fftLen, dst, count);
  }
};

}  // namespace tzm
