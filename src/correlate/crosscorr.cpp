// Cross-correlation: the sum over i of conj(src1[i]) * src2[i+k] at consecutive lags k, directly or by
// transforms in blocks of lags.
#include "correlate/correlation.h"

using namespace tzm;

namespace {

// The lags of a call that have any overlap.
struct LagRange {
  int64_t first;  // the lowest
  int64_t skip;   // places of dst before it
  int64_t count;  // not above zero: none
  int64_t chunk;  // lags of a block; with src1Len it sets the transform length

  LagRange(int32_t src1Len, int32_t src2Len, int32_t dstLen, int32_t lowLag)
      : first(std::max<int64_t>(1 - int64_t{src1Len}, lowLag)),
        skip(first - lowLag),
        count(std::min<int64_t>(int64_t{src2Len} - lowLag, dstLen) - skip),
        chunk(std::min<int64_t>(std::max(src1Len, 128), count)) {}
};

// ---- Direct route ----

template <class Sample>
void Direct(const Sample* src1, int64_t len1, const Sample* src2, int64_t len2, const LagRange& lags, Sample* dst) {
  const auto end = [=](int64_t lag) { return std::min(len2 - lag, len1); };  // of i
  const int64_t last = lags.first + lags.count, middle = std::clamp<int64_t>(0, lags.first, last);
  if (lags.first < middle)
    SingleLags<-1, 0>(src1 - lags.first, src2, middle - lags.first, dst,
                      [=](int64_t l) { return end(lags.first + l) + lags.first + l; });
  if (middle < last)
    SingleLags<0, 1>(src1, src2 + middle, last - middle, dst + (middle - lags.first),
                     [=](int64_t l) { return end(middle + l); });
}

// ---- FFT route ----

// bins = conj(a) * bins: re fma(ar, br, ai*bi), im fma(bi, ar, -(ai*br)).
template <class Complex>
void MultiplyConjugate(const Complex* a, Complex* bins, int32_t count) {
  const Full<decltype(bins->re)> d;
  ForEach<hn::MaxLanes(d)>(count, [=](const Complex* x, const Complex* y, Complex* to) TZM_LAMBDA {
    Vec<decltype(d)> ar, ai, br, bi;
    LoadParts(d, Parts(x), ar, ai);
    LoadParts(d, Parts(y), br, bi);
    StoreParts(hn::MulAdd(ar, br, hn::Mul(ai, bi)), hn::MulSub(bi, ar, hn::Mul(ai, br)), d, Parts(to));
  }, a, static_cast<const Complex*>(bins), bins);
}

// Buffers that hold the spectrum of src1 and that of a piece of src2.
template <class Sample>
constexpr int kSpectrum1 = kIsComplex<Sample> ? 0 : 1;
template <class Sample>
constexpr int kSpectrum2 = kSpectrum1<Sample> + 1;

// The state's number of lags from lags.first on, in blocks of the lags that a transform gives.
template <class Sample>
void ByTransforms(const Correlation<Sample>& state, const Sample* src1, int32_t len1, const Sample* src2, int32_t len2,
                  const LagRange& lags, Sample* dst) {
  constexpr int k1 = kSpectrum1<Sample>, k2 = kSpectrum2<Sample>;
  const int32_t fftLen = state.fftLen;
  const int64_t step = fftLen - len1 + 1;
  const auto& area = state.area;
  area.Forward(src1, 0, len1, fftLen, k1);
  for (int64_t done = 0; done < state.outCount; done += step) {
    const int64_t lag = lags.first + done;
    const int64_t from = std::clamp<int64_t>(-lag, 0, fftLen), end = std::clamp<int64_t>(len2 - lag, from, fftLen);
    area.Forward(src2 + (lag + from), static_cast<int32_t>(from), static_cast<int32_t>(end - from), fftLen, k2);
    MultiplyConjugate(area.Spectrum(k1), area.Spectrum(k2), area.Bins(fftLen));
    area.Inverse(k2, fftLen, dst + done, static_cast<int32_t>(std::min(step, state.outCount - done)));
  }
}

// ---- State ----

// The most that src1Len and chunk may be together.
template <class Sample>
constexpr int32_t kLimit = 0x20000000 / sizeof(Sample) + 1;

template <class Sample>
OrvaStatus Init(int32_t src1Len, int32_t src2Len, int32_t dstLen, int32_t lowLag, int32_t kind,
                CorrState** stateOut) {
  using State = Correlation<Sample>;
  if (OrvaStatus status = CheckPointers(stateOut)) return status;
  if (src2Len < 1 || dstLen < 1 || src1Len < 1) return ORVA_STS_SIZE_ERR;
  auto* const state = static_cast<State*>(ORVA_Malloc(sizeof(State)));
  if (state == nullptr) return ORVA_STS_MEM_ALLOC_ERR;
  *state = {};
  const LagRange lags(src1Len, src2Len, dstLen, lowLag);
  state->outCount = static_cast<int32_t>(lags.count);
  if (lags.count > 0) {
    const int32_t chunk = static_cast<int32_t>(lags.chunk);
    if (kind == ORVA_ROUTE_FFT || (kind == ORVA_ROUTE_BY_LENGTH && (chunk > 64 || 4096 / chunk < src1Len)))
      if (OrvaStatus status = MakeTransforms(state, src1Len, chunk, kLimit<Sample>, State::kBuffers)) return status;
  }
  *stateOut = reinterpret_cast<CorrState*>(state);
  return ORVA_STS_NO_ERR;
}

template <class Sample>
OrvaStatus Run(const Sample* src1, int32_t src1Len, const Sample* src2, int32_t src2Len, Sample* dst, int32_t dstLen,
               int32_t lowLag, int32_t normalisation, CorrState* opaque) {
  if (OrvaStatus status = CheckPointers(src1, src2, dst, opaque)) return status;
  if (src2Len < 1 || dstLen < 1 || src1Len < 1) return ORVA_STS_SIZE_ERR;
  const Correlation<Sample>& state = *StateOf<Sample>(opaque);
  if (state.outCount < 1) {
    Zero(dst, dstLen);
    return ORVA_STS_NO_ERR;
  }
  const LagRange lags(src1Len, src2Len, dstLen, lowLag);
  Sample* const computed = dst + lags.skip;
  if (state.transforms) {
    // Without a lag the length says nothing of src1, which has to fit all the same.
    if (src1Len > state.fftLen || TransformLength(src1Len + lags.chunk - 1) != state.fftLen)
      return ORVA_STS_LEN_MISMATCH_ERR;
    if (!state.area.Has(Correlation<Sample>::kBuffers)) return ORVA_STS_NULL_PTR_ERR;
    Zero(dst, dstLen);
    ByTransforms(state, src1, src1Len, src2, src2Len, lags, computed);
  } else {
    Zero(dst, dstLen);
    if (lags.count > 0) Direct<Sample>(src1, src1Len, src2, src2Len, lags, computed);
  }
  // Deliberately over the state's number of lags on both routes.
  if (normalisation == ORVA_NORMALISATION_BIASED)
    DivideParts(computed, std::min(src1Len, src2Len), computed, state.outCount);
  else if (normalisation == ORVA_NORMALISATION_UNBIASED)
    DivideByOverlap(computed, state.outCount, lags.first, src1Len, src2Len);
  return ORVA_STS_NO_ERR;
}

}  // namespace

#define TZM_CROSS_CORRELATION(Init_, Norm, Sample)                                                                     \
  OrvaStatus Init_(int32_t src1Len, int32_t src2Len, int32_t dstLen, int32_t lowLag, int32_t kind,                     \
                   CorrState** state) {                                                                                \
    return Init<Sample>(src1Len, src2Len, dstLen, lowLag, kind, state);                                                \
  }                                                                                                                    \
  OrvaStatus Norm(const Sample* src1, int32_t src1Len, const Sample* src2, int32_t src2Len, Sample* dst,               \
                  int32_t dstLen, int32_t lowLag, int32_t normalisation, CorrState* state) {                           \
    return Run(src1, src1Len, src2, src2Len, dst, dstLen, lowLag, normalisation, state);                               \
  }

TZM_CROSS_CORRELATION(ORVAS_CrossCorrInit_32f, ORVAS_CrossCorrNorm_32f, Orva32f)
TZM_CROSS_CORRELATION(ORVAS_CrossCorrInit_64f, ORVAS_CrossCorrNorm_64f, Orva64f)
TZM_CROSS_CORRELATION(ORVAS_CrossCorrInit_32fc, ORVAS_CrossCorrNorm_32fc, Orva32fc)
TZM_CROSS_CORRELATION(ORVAS_CrossCorrInit_64fc, ORVAS_CrossCorrNorm_64fc, Orva64fc)
#undef TZM_CROSS_CORRELATION
