// Autocorrelation: dst[k] = sum over i of conj(src[i]) * src[i+k], directly or by transforms.
#include "correlate/correlation.h"

using namespace tzm;

namespace {

// ---- Direct route ----

// Lags that are summed together; what is left of the lags is summed one by one.
template <class Sample> constexpr size_t kLags = 4;
template <> constexpr size_t kLags<Orva32f> = 16;
template <> constexpr size_t kLags<Orva32fc> = 8;

// sum + conj(x)*y of one sample x and the samples in lanes, as AddProduct forms it.
template <class Sample, class Lanes>
TZM_INLINE Lanes AddedProduct(const Sample* x, const Lanes& y, const Lanes& sum) {
  const Sample factor = LoadElement(x);
  if constexpr (kIsComplex<Sample>)
    return sum + MulAdd(Lanes::Set(factor.re), y, OddNegated(Lanes::Set(factor.im)) * Exchanged(y));
  else return MulAdd(Lanes::Set(factor), y, sum);
}

// Sums of kBlocks blocks of lags from `lag` on. Lanes hold lags: accumulator g takes the samples i with
// i % kGroup == g, so that adding the accumulators pairwise is the fold of each lag's own lanes. A block
// takes the whole groups that all of its lags have; what is left of each lag is summed apart from zero.
template <size_t kBlocks, class Sample>
void SumBlocks(const Sample* src, size_t len, size_t lag, Sample* dst) {
  using Real = PartOf<Sample>;
  constexpr size_t kG = kGroup<Sample>, kReals = kLags<Sample> * kParts<Sample>;
  const auto body = [=](size_t block) {
    const size_t beyond = lag + (block + 1) * kLags<Sample> - 1;
    return len > beyond ? (len - beyond) / kG * kG : 0;
  };
  const auto accumulate = [=]<size_t kLanes>(LaneArray<Real, kLanes>* sums, size_t from, size_t end,
                                             size_t at) TZM_LAMBDA {
    using Lanes = LaneArray<Real, kLanes>;
    Lanes sum[kG];
    Unrolled<kG>([&](auto g) TZM_LAMBDA { sum[g] = sums[g]; });
    for (size_t i = from; i < end; i += kG) {
      Unrolled<kG>([&](auto g) TZM_LAMBDA {
        const Lanes later = Lanes::Load(Reals(src + (i + g + at)));
        if constexpr (kIsComplex<Sample>) {
          const Sample x = LoadElement(src + i + g);
          sum[g] = MulAdd(Lanes::Set(x.re), later, sum[g]);
          sum[g] = MulAdd(OddNegated(Lanes::Set(x.im)), Exchanged(later), sum[g]);
        } else {
          sum[g] = MulAdd(Lanes::Set(LoadElement(src + i + g)), later, sum[g]);
        }
      });
    }
    Unrolled<kG>([&](auto g) TZM_LAMBDA { sums[g] = sum[g]; });
  };

  using Wide = LaneArray<Real, kBlocks * kReals>;
  using Block = LaneArray<Real, kReals>;
  Wide wide[kG];
  Unrolled<kG>([&](auto g) TZM_LAMBDA { wide[g] = Wide::Set(0); });
  const size_t common = body(kBlocks - 1);
  accumulate(wide, 0, common, lag);
  Real held[kG][kBlocks * kReals];
  if constexpr (kBlocks > 1) Unrolled<kG>([&](auto g) TZM_LAMBDA { wide[g].Store(held[g]); });
  for (size_t b = 0; b < kBlocks; ++b) {
    const size_t first = lag + b * kLags<Sample>, end = body(b);
    Block sum[kG];
    Unrolled<kG>([&](auto g) TZM_LAMBDA {
      if constexpr (kBlocks > 1) sum[g] = Block::Load(held[g] + b * kReals);
      else sum[g] = wide[g];
    });
    if constexpr (kBlocks > 1) accumulate(sum, common, end, first);
    // What is left of each lag: one sample less than of the lag before.
    Sample ending[2 * kLags<Sample> + kG] = {};
    const size_t left = len - first - end;
    std::memcpy(ending, src + first + end, left * sizeof(Sample));
    Block rest = Block::Set(0);
    for (size_t i = 0; i < left; ++i) {
      const Block with = AddedProduct<Sample>(src + end + i, Block::Load(Reals(ending + i)), rest);
      const int64_t lanes = static_cast<int64_t>(left - i) * kParts<Sample>;
      Unrolled<Block::kRegisters>([&](auto r) TZM_LAMBDA {
        const int64_t taken = std::max<int64_t>(lanes - static_cast<int64_t>(r * Block::kWidth), 0);
        const auto more = hn::FirstN(typename Block::D(), static_cast<size_t>(taken));
        rest.v[r] = hn::IfThenElse(more, with.v[r], rest.v[r]);
      });
    }
    Block total = sum[0] + sum[1];
    if constexpr (kG == 4) total = total + (sum[2] + sum[3]);
    (total + rest).Store(Reals(dst + first));
  }
}

template <class Sample>
void Direct(const Sample* src, size_t len, size_t lags, Sample* dst) {
  // As many accumulators as leave registers for what is loaded: 256 bytes.
  constexpr size_t kBlocks = 256 / (kGroup<Sample> * kLags<Sample> * sizeof(Sample));
  size_t k = 0;
  for (; lags - k >= kBlocks * kLags<Sample>; k += kBlocks * kLags<Sample>) SumBlocks<kBlocks>(src, len, k, dst);
  for (; lags - k >= kLags<Sample>; k += kLags<Sample>) SumBlocks<1>(src, len, k, dst);
  SingleLags<0, 1>(src, src + k, static_cast<int64_t>(lags - k), dst + k, [=](int64_t l) { return len - k - l; });
}

// ---- State ----

// Real members keep their spectrum apart; complex ones transform in place.
template <class Sample>
constexpr int kNeeded = kIsComplex<Sample> ? 1 : 2;
// The most that srcLen and lags may be together.
template <class Sample>
constexpr int32_t kLimit = 0x40000000 / sizeof(Sample) + 1;

template <class Sample>
OrvaStatus Init(int32_t srcLen, int32_t dstLen, int32_t kind, CorrState** stateOut) {
  if (OrvaStatus status = CheckPointers(stateOut)) return status;
  if (dstLen < 1 || srcLen < 1) return ORVA_STS_SIZE_ERR;
  auto* const state = static_cast<Correlation<Sample>*>(ORVA_Malloc(sizeof(Correlation<Sample>)));
  if (state == nullptr) return ORVA_STS_MEM_ALLOC_ERR;
  *state = {};
  const int32_t lags = std::min(srcLen, dstLen);
  state->outCount = lags;
  if (kind == ORVA_ROUTE_FFT || (kind == ORVA_ROUTE_BY_LENGTH && (lags > 32 || 2048 / lags < srcLen)))
    if (OrvaStatus status = MakeTransforms(state, srcLen, lags, kLimit<Sample>, kNeeded<Sample>)) return status;
  *stateOut = reinterpret_cast<CorrState*>(state);
  return ORVA_STS_NO_ERR;
}

// Every bin becomes its squared magnitude, a real number: fma(re, re, im*im).
template <class Complex>
void SquareMagnitudes(Complex* bins, int32_t count) {
  const Full<decltype(bins->re)> d;
  ForEach<hn::MaxLanes(d)>(count, [=](const Complex* from, Complex* to) TZM_LAMBDA {
    Vec<decltype(d)> re, im;
    LoadParts(d, Parts(from), re, im);
    StoreParts(hn::MulAdd(re, re, hn::Mul(im, im)), hn::Zero(d), d, Parts(to));
  }, static_cast<const Complex*>(bins), bins);
}

template <class Sample>
OrvaStatus Run(const Sample* src, int32_t srcLen, Sample* dst, int32_t dstLen, int32_t normalisation,
               CorrState* opaque) {
  if (OrvaStatus status = CheckPointers(src, dst, opaque)) return status;
  if (dstLen < 1 || srcLen < 1) return ORVA_STS_SIZE_ERR;
  const Correlation<Sample>& state = *StateOf<Sample>(opaque);
  const int32_t lags = std::min(srcLen, dstLen);
  if (state.transforms) {
    const int32_t fftLen = state.fftLen;
    if (TransformLength(int64_t{srcLen} + lags - 1) != fftLen) return ORVA_STS_LEN_MISMATCH_ERR;
    if (!state.area.Has(kNeeded<Sample>)) return ORVA_STS_NULL_PTR_ERR;
    constexpr int kSpectrum = kNeeded<Sample> - 1;
    Zero(dst, dstLen);
    state.area.Forward(src, 0, srcLen, fftLen, kSpectrum);
    SquareMagnitudes(state.area.Spectrum(kSpectrum), state.area.Bins(fftLen));
    state.area.Inverse(kSpectrum, fftLen, dst, state.outCount);  // deliberately not this call's lags
  } else {
    Zero(dst, dstLen);
    Direct(src, srcLen, lags, dst);
  }
  if (normalisation == ORVA_NORMALISATION_BIASED) DivideParts(dst, srcLen, dst, lags);
  else if (normalisation == ORVA_NORMALISATION_UNBIASED) DivideByOverlap(dst, lags, 0, srcLen, srcLen);
  return ORVA_STS_NO_ERR;
}

}  // namespace

#define TZM_AUTOCORRELATION(Init_, Norm, Release_, Sample)                                                             \
  OrvaStatus Init_(int32_t srcLen, int32_t dstLen, int32_t kind, CorrState** state) {                                  \
    return Init<Sample>(srcLen, dstLen, kind, state);                                                                  \
  }                                                                                                                    \
  OrvaStatus Norm(const Sample* src, int32_t srcLen, Sample* dst, int32_t dstLen, int32_t normalisation,               \
                  CorrState* state) {                                                                                  \
    return Run(src, srcLen, dst, dstLen, normalisation, state);                                                        \
  }                                                                                                                    \
  OrvaStatus Release_(CorrState* state) { return Release(StateOf<Sample>(state)); }

TZM_AUTOCORRELATION(ORVAS_AutoCorrInit_32f, ORVAS_AutoCorrNorm_32f, ORVAS_CorrRelease_32f, Orva32f)
TZM_AUTOCORRELATION(ORVAS_AutoCorrInit_64f, ORVAS_AutoCorrNorm_64f, ORVAS_CorrRelease_64f, Orva64f)
TZM_AUTOCORRELATION(ORVAS_AutoCorrInit_32fc, ORVAS_AutoCorrNorm_32fc, ORVAS_CorrRelease_32fc, Orva32fc)
TZM_AUTOCORRELATION(ORVAS_AutoCorrInit_64fc, ORVAS_AutoCorrNorm_64fc, ORVAS_CorrRelease_64fc, Orva64fc)
#undef TZM_AUTOCORRELATION
