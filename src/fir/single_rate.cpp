// Single-rate FIR filter: y[n] = sum over i of h[i] * x[n-i], directly or by fast convolution.
#include <signal_tzm/fir.h>

#include "fir/samples.h"
#include "frame/call.h"
#include "frame/drive.h"
#include "frame/fft.h"
#include "frame/scale.h"

#include <algorithm>
#include <bit>
#include <numeric>

using namespace tzm;

// One block: the record, the taps in reversed order, on the FFT route the spectrum. A second one: work.
struct FIRSRState {
  int32_t tapsLen;
  int32_t fftLen;
  int32_t route;
  void* taps;
  void* spectrum;
  Orva8u* work;
  void* forwardPlan;
  void* inversePlan;
};

namespace {

constexpr int32_t kMostTaps = 0x1fffffff;
constexpr float kBeyond = 65536;  // rounds to a limit of the 16-bit results: what a NaN becomes where it is not 0

// Outputs of the direct route that are computed together; the rest of a call is its tail.
template <class Sample>
constexpr int32_t kBlock = sizeof(PartOf<Sample>) == 8 ? 8 : 16;

// ---- Direct route: blocks ----

// Calls run(at, integral_constant) for kVectors vectors at once, and for ever smaller powers of two of them, until
// `len` lanes are done; kVectors and `len` are multiples of kLeast vectors.
template <size_t kVectors, size_t kLeast, class Run>
TZM_INLINE void ForLanes(size_t at, size_t len, size_t lanes, Run&& run) {
  for (; len - at >= kVectors * lanes; at += kVectors * lanes) run(at, std::integral_constant<size_t, kVectors>());
  if constexpr (kVectors > kLeast) ForLanes<std::bit_floor(kVectors - 1), kLeast>(at, len, lanes, run);
}

// Chains that fill the pipelines of two fused units, and leave registers for what is loaded.
template <class T>
constexpr size_t kChains = std::max(size_t{8}, 256 / (hn::MaxLanes(Full<T>()) * sizeof(T)));

// sum over j of taps[j] * x[n + j*kStride], n = 0 to len-1, a chain a lane; store(d, n, sums). A stride of
// 2 filters both parts of complex samples by real taps.
template <size_t kStride, class T, class Store>
void RealBlocks(const T* taps, size_t tapsLen, const T* x, size_t len, Store store) {
  const Full<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d), kLag = kLanes / kStride;
  constexpr size_t kLeast = std::max(size_t{1}, kStride * kBlock<T> / kLanes);
  ForLanes<kChains<T>, kLeast>(0, len, kLanes, [&](size_t n, auto vectors) TZM_LAMBDA {
    constexpr size_t kVectors = vectors;
    const T* const from = x + n;
    Vec<decltype(d)> sum[kVectors];
    Unrolled<kVectors>([&](size_t v) TZM_LAMBDA { sum[v] = hn::Zero(d); });
    // Loads are the limit, and many cross a cache line. So vectors share them in groups of kDepth: each
    // lags as many taps behind its neighbour as make both want the same samples. From time t to `end`,
    // members kFirst to kLast - 1 of every group take their next tap.
    const auto advance = [&]<size_t kDepth, size_t kFirst, size_t kLast>(size_t t, size_t end) TZM_LAMBDA {
      for (; t < end; ++t) {
        Vec<decltype(d)> tap[kDepth];
        Unrolled<kLast - kFirst>([&](size_t i) TZM_LAMBDA {
          tap[kFirst + i] = hn::Set(d, taps[t - (kFirst + i) * kLag]);
        });
        Unrolled<kVectors / kDepth>([&](size_t group) TZM_LAMBDA {
          const auto samples = InRegister(hn::LoadU(d, from + group * kDepth * kLanes + t * kStride));
          Unrolled<kLast - kFirst>([&](size_t i) TZM_LAMBDA {
            auto& own = sum[group * kDepth + kFirst + i];
            own = hn::MulAdd(tap[kFirst + i], samples, own);
          });
        });
      }
    };
    constexpr size_t kDepth = std::min(kVectors, size_t{2});
    if (kDepth > 1 && tapsLen >= 2 * kDepth * kLag) {
      Unrolled<kDepth - 1>([&](auto s) TZM_LAMBDA {
        advance.template operator()<kDepth, 0, s + 1>(s * kLag, (s + 1) * kLag);
      });
      advance.template operator()<kDepth, 0, kDepth>((kDepth - 1) * kLag, tapsLen);
      Unrolled<kDepth - 1>([&](auto s) TZM_LAMBDA {
        advance.template operator()<kDepth, s + 1, kDepth>(tapsLen + s * kLag, tapsLen + (s + 1) * kLag);
      });
    } else {
      advance.template operator()<1, 0, 1>(0, tapsLen);
    }
    Unrolled<kVectors>([&](size_t v) TZM_LAMBDA { store(d, n + v * kLanes, sum[v]); });
  });
}

// Vectors of complex outputs: twice as many chains, of two steps a tap each. More of them do not stay in 16
// registers, nor with all their samples in 32.
constexpr size_t kPairs = 6;

// The same with complex taps, the parts of the samples in arrays of their own; store(d, n, re, im).
template <class Complex, class T, class Store>
void ComplexBlocks(const Complex* taps, size_t tapsLen, const T* xr, const T* xi, size_t len, Store store) {
  const Full<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  constexpr size_t kLeast = std::gcd(kPairs, std::max(size_t{1}, kBlock<T> / kLanes));
  ForLanes<kPairs, kLeast>(0, len, kLanes, [&](size_t n, auto vectors) TZM_LAMBDA {
    constexpr size_t kVectors = vectors;
    Vec<decltype(d)> re[kVectors], im[kVectors];
    Unrolled<kVectors>([&](size_t v) TZM_LAMBDA { re[v] = im[v] = hn::Zero(d); });
    for (size_t j = 0; j < tapsLen; ++j) {
      const auto tr = hn::Set(d, taps[j].re), ti = hn::Set(d, taps[j].im);
      Unrolled<kVectors>([&](size_t v) TZM_LAMBDA {
        const auto r = InRegister(hn::LoadU(d, xr + n + v * kLanes + j));
        const auto i = InRegister(hn::LoadU(d, xi + n + v * kLanes + j));
        re[v] = hn::NegMulAdd(ti, i, hn::MulAdd(tr, r, re[v]));
        im[v] = hn::MulAdd(ti, r, hn::MulAdd(tr, i, im[v]));
      });
    }
    Unrolled<kVectors>([&](size_t v) TZM_LAMBDA { store(d, n + v * kLanes, re[v], im[v]); });
  });
}

// ---- Direct route: tail ----

// Which NaN AArch64 makes of a*b + c: the addend before the factors, and a positive one where the
// operation itself has no result. Signalling NaN go first.
float NanOfFma(float a, float b, float c) {
  const auto signalling = [](float v) { return v != v && !(std::bit_cast<uint32_t>(v) & 0x400000); };
  for (float v : {c, a, b})
    if (signalling(v)) return v;
  const float infinity = std::numeric_limits<float>::infinity(), positive = std::numeric_limits<float>::quiet_NaN();
  const auto infinite = [=](float v) { return v == infinity || v == -infinity; };
  if ((infinite(a) && b == 0) || (infinite(b) && a == 0)) return positive;
  for (float v : {c, a, b})
    if (v != v) return v;
  return positive;
}

// a*b + c where the sign of a NaN is part of the result.
TZM_INLINE float SignedFma(float a, float b, float c) {
  const float sum = Fma(a, b, c);
  return HWY_LIKELY(sum == sum) ? sum : NanOfFma(a, b, c);
}

// What the rounding of the tail makes of NaN: a value beyond the range, on the side of its sign bit.
TZM_INLINE Orva16s RoundBySign(float v) {
  return RoundSaturate<Orva16s>(v == v ? v : std::copysign(kBeyond, v));
}

// One output.
template <class Tap, class Sample>
TZM_INLINE void TailOutput(const Tap* taps, const Sample* line, int32_t len, Sample* dst) {
  DotProduct(taps, line, len, dst);
}
TZM_INLINE void TailOutput(const Orva32f* taps, const Orva16s* line, int32_t len, Orva16s* dst) {
  float sum = 0;
  for (int32_t j = 0; j < len; ++j) sum = SignedFma(taps[j], LoadElement(line + j), sum);
  StoreElement(RoundBySign(sum), dst);
}
TZM_INLINE void TailOutput(const Orva32fc* taps, const Orva16sc* line, int32_t len, Orva16sc* dst) {
  Orva32fc sum = {0, 0};
  for (int32_t j = 0; j < len; ++j) {
    const Orva16sc sample = LoadElement(line + j);
    const Orva32fc tap = taps[j];
    const float xr = sample.re, xi = sample.im;
    const float re = SignedFma(-tap.im, xi, SignedFma(tap.re, xr, -0.0f));  // adding -0 leaves the product
    const float im = SignedFma(tap.im, xr, SignedFma(tap.re, xi, -0.0f));
    sum = {SignedFma(re, 1, sum.re), SignedFma(im, 1, sum.im)};
  }
  StoreElement(Orva16sc{RoundBySign(sum.re), RoundBySign(sum.im)}, dst);
}

// ---- Direct route ----

// The work block: the line, T-1 samples from before the call and those of the call, and behind it, where the blocks of
// outputs read another form, its first samples again: in the taps' precision, the parts of complex ones apart.
template <class Tap, class Sample>
struct DirectArea {
  Sample* line;
  PartOf<Tap>*re, *im;           // of real samples re only
  Orva16s *narrowRe, *narrowIm;  // complex 16-bit samples on the way there

  DirectArea(Orva8u* work, int64_t lineLen, int64_t copied)
      : line(reinterpret_cast<Sample*>(work)),
        re(reinterpret_cast<PartOf<Tap>*>(work + RoundUp16(lineLen * int64_t{sizeof(Sample)}))),
        im(re + copied),
        narrowRe(reinterpret_cast<Orva16s*>(im + copied)),
        narrowIm(narrowRe + copied) {}
};

// Its bytes for T + (longest call) samples, of whatever type a call has: at most twice a tap's size a sample in line
// and copies together, and 15 taps for what is rounded up between them.
template <class Tap>
constexpr int64_t DirectBytes(int64_t samples) {
  return RoundUp16((2 * samples + 15) * int64_t{sizeof(Tap)});
}

// The outputs of whole blocks, `len` of them, from the line's first samples on.
template <class Tap, class Sample>
void FilterBlocks(const Tap* taps, int32_t tapsLen, const DirectArea<Tap, Sample>& area, int32_t len, Sample* dst) {
  const int32_t used = tapsLen - 1 + len;
  PartOf<Sample>* const out = Reals(dst);
  if constexpr (std::is_same_v<Sample, Orva16s>) {
    Copy(area.line, area.re, used);
    RealBlocks<1>(taps, tapsLen, area.re, len,
                  [=](auto, size_t n, auto sum) TZM_LAMBDA { StoreRounded(sum, out + n); });
  } else if constexpr (!kIsComplex<Tap>) {
    constexpr size_t kStride = kIsComplex<Sample> ? 2 : 1;
    RealBlocks<kStride>(taps, tapsLen, Reals(area.line), kStride * len,
                        [=](auto d, size_t n, auto sum) TZM_LAMBDA { hn::StoreU(sum, d, out + n); });
  } else if constexpr (std::is_same_v<Sample, Orva16sc>) {
    Split(area.line, area.narrowRe, area.narrowIm, used);
    Copy(area.narrowRe, area.re, used);
    Copy(area.narrowIm, area.im, used);
    const auto store = [=](auto d, size_t n, auto sumRe, auto sumIm) TZM_LAMBDA {
      const hn::Rebind<Orva16s, decltype(d)> narrow;
      StoreInterleaved(RoundTo<Orva16s>(sumRe), RoundTo<Orva16s>(sumIm), narrow, out + 2 * n);
    };
    ComplexBlocks(taps, tapsLen, area.re, area.im, len, store);
  } else {
    Split(area.line, area.re, area.im, used);
    const auto store = [=](auto d, size_t n, auto sumRe, auto sumIm) TZM_LAMBDA {
      StoreInterleaved(sumRe, sumIm, d, out + 2 * n);
    };
    ComplexBlocks(taps, tapsLen, area.re, area.im, len, store);
  }
}

template <class Tap, class Sample>
void RunDirect(const Sample* src, Sample* dst, int32_t len, const FIRSRState& state, const Sample* delaySrc,
               Sample* delayDst) {
  const auto* const taps = static_cast<const Tap*>(state.taps);
  const int32_t tapsLen = state.tapsLen, kept = tapsLen - 1;
  auto* const line = reinterpret_cast<Sample*>(state.work);
  BeginLine(delaySrc, line, kept);
  Copy(src, line + kept, len);
  BodyAndTail<kBlock<Sample>>(
      len,
      [&](size_t count, Sample* to) {
        const auto body = static_cast<int32_t>(count);
        FilterBlocks(taps, tapsLen, DirectArea<Tap, Sample>(state.work, int64_t{kept} + len, kept + body), body, to);
      },
      [&](size_t count, Sample* to) {
        const Sample* const window = line + (to - dst);
        for (size_t i = 0; i < count; ++i) TailOutput(taps, window + i, tapsLen, to + i);
      },
      dst);
  if (delayDst != nullptr) Copy(line + len, delayDst, kept);
}

// ---- FFT route ----

// What the inverse transform gave, divided by its points, to the outputs.
template <class Real, class Result>
TZM_INLINE void DivideTo(Real* line, Real points, Result* dst, int32_t len) {
  if constexpr (std::is_same_v<Real, Result>) {
    Divide(line, points, dst, len);
  } else {
    Divide(line, points, line, len);
    const Full<Real> d;
    // A NaN here is a positive one, as AArch64 makes them: which sign comes out of transforms depends on the width of
    // their registers and on the machine.
    ForEach<hn::MaxLanes(d)>(len, [=](const Real* from, Result* to) TZM_LAMBDA {
      const auto v = hn::LoadU(d, from);
      StoreRounded(hn::IfThenElse(hn::IsNaN(v), hn::Set(d, kBeyond), v), to);
    }, static_cast<const Real*>(line), dst);
  }
}

// Overlap-save with the spectrum of the reversed taps, so prepared that multiplying another spectrum by it
// correlates with them. Of real signals only the half that transforms give and take is used.
template <class Tap, class Wide>
struct Overlap {
  using Real = PartOf<Wide>;
  static constexpr bool kComplex = kIsComplex<Wide>;
  using F = Fft<Real>;
  using Complex = typename F::Complex;
  using Plan = typename F::Plan;

  const int32_t points, bins;
  Plan forward, inverse;
  Complex *spectrum, *block;
  Wide* line;

  explicit Overlap(const FIRSRState& state)
      : points(state.fftLen),
        bins(kComplex ? points : points / 2 + 1),
        forward(static_cast<Plan>(state.forwardPlan)),
        inverse(static_cast<Plan>(state.inversePlan)),
        spectrum(static_cast<Complex*>(state.spectrum)),
        block(reinterpret_cast<Complex*>((reinterpret_cast<uintptr_t>(state.work) + 15) / 16 * 16)),
        line(reinterpret_cast<Wide*>(block + points)) {}

  void Forward(Complex* to) const {
    if constexpr (kComplex) F::Execute(forward, line, to);
    else F::ExecuteRealToComplex(forward, line, to);
  }
  void Inverse() const {
    if constexpr (kComplex) F::Execute(inverse, block, line);
    else F::ExecuteComplexToReal(inverse, block, line);
  }

  void Prepare(const Tap* taps, int32_t tapsLen) const {
    Zero(line, points);
    if constexpr (std::is_same_v<Tap, Wide>) {
      Copy(taps, line, tapsLen);
      if constexpr (kComplex) Conjugate(line, line, tapsLen);
    } else {
      for (int32_t j = 0; j < tapsLen; ++j) line[j].re = taps[j];
    }
    Forward(spectrum);
    Conjugate(spectrum, spectrum, bins);
  }

  // Outputs from the line's `points` samples, which begin T-1 before the first of them.
  template <class Sample>
  void Filter(Sample* dst, int32_t count) const {
    Forward(block);
    Multiply(spectrum, block, block, bins);
    Inverse();
    DivideTo(Reals(line), static_cast<Real>(points), Reals(dst), kParts<Sample> * count);
  }
};

// `Sample` is what the caller holds, `Wide` what the state was made for.
template <class Tap, class Wide, class Sample>
void RunFft(const Sample* src, Sample* dst, int32_t len, const FIRSRState& state, const Sample* delaySrc,
            Sample* delayDst) {
  const Overlap<Tap, Wide> overlap(state);
  const int32_t kept = state.tapsLen - 1;
  const int64_t step = overlap.points - state.tapsLen;
  for (int64_t at = 0; at < len; at += step) {
    const int32_t filled = static_cast<int32_t>(std::min<int64_t>(kept + (len - at), overlap.points));
    if (at == 0) {
      BeginLine(delaySrc, overlap.line, kept);
      Copy(src, overlap.line + kept, filled - kept);
    } else {
      Copy(src + (at - kept), overlap.line, filled);
    }
    Zero(overlap.line + filled, overlap.points - filled);
    overlap.Filter(dst + at, static_cast<int32_t>(std::min<int64_t>(step, len - at)));
  }
  HandOn(delaySrc, src, len, delayDst, kept);
}

// ---- Init, run, release ----

template <class Real>
OrvaStatus Release(FIRSRState* state) {
  if (state == nullptr) return ORVA_STS_NO_ERR;
  if (state->route == ORVA_ROUTE_FFT) {
    using Plan = typename Fft<Real>::Plan;
    Fft<Real>::Destroy(static_cast<Plan>(state->forwardPlan));
    Fft<Real>::Destroy(static_cast<Plan>(state->inversePlan));
  }
  ORVAS_Free(state->work);
  state->work = nullptr;
  ORVAS_Free(state);
  return ORVA_STS_NO_ERR;
}

template <class Tap, class Sample>
OrvaStatus Init(const Tap* taps, int32_t tapsLen, int32_t maxLen, int32_t kind, FIRSRState** stateOut) {
  using F = Fft<PartOf<Sample>>;
  using Complex = typename F::Complex;
  constexpr bool kComplex = kIsComplex<Sample>;
  // By length, the direct route serves so many taps, however long the calls, and calls so long, whatever the taps.
  constexpr int32_t kMostDirectTaps = kComplex ? 31 : 95, kMostDirectLen = 5119;
  constexpr int64_t kMostBytes = std::numeric_limits<int32_t>::max();
  // Six complex values a point beside a record of 64 bytes.
  constexpr int64_t kMostPoints = (kMostBytes - 64) / int64_t{6 * sizeof(Complex)};
  static_assert(kMostPoints == (sizeof(Complex) == 8 ? 44739241 : 22369620));

  if (OrvaStatus status = CheckPointers(taps, stateOut)) return status;
  if (tapsLen < 1) return ORVA_STS_SIZE_ERR;
  if (tapsLen > kMostTaps) return ORVA_STS_OVERFLOW_ERR;
  if (maxLen < 1) return ORVA_STS_SIZE_ERR;
  if (kind < ORVA_ROUTE_BY_LENGTH || kind > ORVA_ROUTE_FFT) return ORVA_STS_FIR_ALG_ERR;

  int64_t power = 1;
  while (power < tapsLen) power *= 2;
  const int64_t points = maxLen - 1 <= 2 * power - tapsLen ? 2 * power : 4 * power;
  const int64_t spectrumAt = RoundUp16(sizeof(FIRSRState)) + RoundUp16(int64_t{tapsLen} * sizeof(Tap));
  const int64_t spectrumEnd = spectrumAt + 2 * points * sizeof(Complex);
  const bool possible = power <= kMostTaps && points <= kMostPoints && spectrumEnd <= kMostBytes;
  if (kind == ORVA_ROUTE_FFT && !possible) return ORVA_STS_OVERFLOW_ERR;
  if (kind == ORVA_ROUTE_BY_LENGTH)
    kind = possible && tapsLen > kMostDirectTaps && maxLen > kMostDirectLen ? ORVA_ROUTE_FFT : ORVA_ROUTE_DIRECT;

  if (maxLen >= kMostTaps - tapsLen) return ORVA_STS_OVERFLOW_ERR;
  const int64_t stateBytes = kind == ORVA_ROUTE_FFT ? spectrumEnd : spectrumAt;
  const int64_t workBytes =
      kind == ORVA_ROUTE_FFT ? 3 * points * sizeof(Complex) + 15 : DirectBytes<Tap>(int64_t{tapsLen} + maxLen);

  Orva8u *block, *work;
  if (OrvaStatus status = MakeBlocks(stateBytes, workBytes, block, work)) return status;
  auto* const state = reinterpret_cast<FIRSRState*>(block);
  *state = {};
  state->tapsLen = tapsLen;
  state->route = kind;
  state->taps = block + RoundUp16(sizeof(FIRSRState));
  state->work = work;
  Flip(taps, static_cast<Tap*>(state->taps), tapsLen);
  if (kind == ORVA_ROUTE_FFT) {
    state->fftLen = static_cast<int32_t>(points);
    state->spectrum = block + spectrumAt;
    if constexpr (kComplex) {
      state->forwardPlan = F::PlanComplex(state->fftLen, kForward);
      state->inversePlan = F::PlanComplex(state->fftLen, kInverse);
    } else {
      state->forwardPlan = F::PlanRealToComplex(state->fftLen);
      state->inversePlan = F::PlanComplexToReal(state->fftLen);
    }
    if (CheckPointers(state->forwardPlan, state->inversePlan)) {
      Release<PartOf<Sample>>(state);
      return ORVA_STS_MEM_ALLOC_ERR;
    }
    Overlap<Tap, Sample>(*state).Prepare(static_cast<const Tap*>(state->taps), tapsLen);
  }
  *stateOut = state;
  return ORVA_STS_NO_ERR;
}

template <class Tap, class Wide, class Sample>
OrvaStatus Run(const Sample* src, Sample* dst, int32_t len, const FIRSRState* state, const Sample* delaySrc,
               Sample* delayDst) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckPointers(state)) return status;
  if (state->route == ORVA_ROUTE_FFT) {
    if (OrvaStatus status = CheckPointers(state->forwardPlan, state->inversePlan, state->spectrum)) return status;
  }
  if (OrvaStatus status = CheckPointers(state->taps, state->work)) return status;
  if constexpr (!std::is_same_v<Sample, Wide>) Zero(dst, len);
  if (state->route == ORVA_ROUTE_FFT) RunFft<Tap, Wide>(src, dst, len, *state, delaySrc, delayDst);
  else RunDirect<Tap>(src, dst, len, *state, delaySrc, delayDst);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_FIRSRInit_32f(const Orva32f* taps, int32_t tapsLen, int32_t maxLen, int32_t kind,
                               FIRSRState** stateOut) {
  return Init<Orva32f, Orva32f>(taps, tapsLen, maxLen, kind, stateOut);
}
OrvaStatus ORVAS_FIRSRInit_64f(const Orva64f* taps, int32_t tapsLen, int32_t maxLen, int32_t kind,
                               FIRSRState** stateOut) {
  return Init<Orva64f, Orva64f>(taps, tapsLen, maxLen, kind, stateOut);
}
OrvaStatus ORVAS_FIRSRInit_32fc(const Orva32fc* taps, int32_t tapsLen, int32_t maxLen, int32_t kind,
                                FIRSRState** stateOut) {
  return Init<Orva32fc, Orva32fc>(taps, tapsLen, maxLen, kind, stateOut);
}
OrvaStatus ORVAS_FIRSRInit_64fc(const Orva64fc* taps, int32_t tapsLen, int32_t maxLen, int32_t kind,
                                FIRSRState** stateOut) {
  return Init<Orva64fc, Orva64fc>(taps, tapsLen, maxLen, kind, stateOut);
}
OrvaStatus ORVAS_FIRSRInit32f_32fc(const Orva32f* taps, int32_t tapsLen, int32_t maxLen, int32_t kind,
                                   FIRSRState** stateOut) {
  return Init<Orva32f, Orva32fc>(taps, tapsLen, maxLen, kind, stateOut);
}

OrvaStatus ORVAS_FIRSR_32f(const Orva32f* src, Orva32f* dst, int32_t len, FIRSRState* state, const Orva32f* delaySrc,
                           Orva32f* delayDst) {
  return Run<Orva32f, Orva32f>(src, dst, len, state, delaySrc, delayDst);
}
OrvaStatus ORVAS_FIRSR_16s(const Orva16s* src, Orva16s* dst, int32_t len, FIRSRState* state, const Orva16s* delaySrc,
                           Orva16s* delayDst) {
  return Run<Orva32f, Orva32f>(src, dst, len, state, delaySrc, delayDst);
}
OrvaStatus ORVAS_FIRSR_64f(const Orva64f* src, Orva64f* dst, int32_t len, FIRSRState* state, const Orva64f* delaySrc,
                           Orva64f* delayDst) {
  return Run<Orva64f, Orva64f>(src, dst, len, state, delaySrc, delayDst);
}
OrvaStatus ORVAS_FIRSR_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, FIRSRState* state,
                            const Orva32fc* delaySrc, Orva32fc* delayDst) {
  return Run<Orva32fc, Orva32fc>(src, dst, len, state, delaySrc, delayDst);
}
OrvaStatus ORVAS_FIRSR_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len, FIRSRState* state,
                            const Orva16sc* delaySrc, Orva16sc* delayDst) {
  return Run<Orva32fc, Orva32fc>(src, dst, len, state, delaySrc, delayDst);
}
OrvaStatus ORVAS_FIRSR_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len, FIRSRState* state,
                            const Orva64fc* delaySrc, Orva64fc* delayDst) {
  return Run<Orva64fc, Orva64fc>(src, dst, len, state, delaySrc, delayDst);
}
OrvaStatus ORVAS_FIRSR32f_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, FIRSRState* state,
                               const Orva32fc* delaySrc, Orva32fc* delayDst) {
  return Run<Orva32f, Orva32fc>(src, dst, len, state, delaySrc, delayDst);
}

OrvaStatus ORVAS_FIRSRRelease_32f(FIRSRState* state) { return Release<Orva32f>(state); }
OrvaStatus ORVAS_FIRSRRelease_64f(FIRSRState* state) { return Release<Orva64f>(state); }
OrvaStatus ORVAS_FIRSRRelease_32fc(FIRSRState* state) { return Release<Orva32f>(state); }
OrvaStatus ORVAS_FIRSRRelease_64fc(FIRSRState* state) { return Release<Orva64f>(state); }
OrvaStatus ORVAS_FIRSRRelease32f_32fc(FIRSRState* state) { return ORVAS_FIRSRRelease_32f(state); }
