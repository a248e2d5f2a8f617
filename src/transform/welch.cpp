// Welch's estimate of a power spectral density: overlapped windowed segments, their power spectra averaged.
#include <signal_tzm/transform.h>

#include "frame/by_real.h"
#include "frame/call.h"
#include "frame/calls.h"
#include "frame/drive.h"
#include "frame/fft.h"

using namespace tzm;

namespace {

// The longest window: longer ones, folded, would need buffers beyond 2^31 - 1 bytes.
template <class Real>
constexpr int32_t kLongestWindow = 0x40000000 / sizeof(Real) - 1;

// segment[k] = src[k] * window[k].
template <class Real>
void Window(const Real* src, const Real* window, Real* segment, int32_t len) {
  Multiply(src, window, segment, len);
}
// There is no exported product of this shape in binary64.
template <class Complex, class Real>
void Window(const Complex* src, const Real* window, Complex* segment, int32_t len) {
  ForEachByReal(len, [](auto w, auto x) TZM_LAMBDA { return hn::Mul(x, w); }, window, segment, src);
}

// segment[k] += src[k] * window[k], fused.
template <class Real>
void Fold(const Real* src, const Real* window, Real* segment, int32_t len) {
  const Full<Real> d;
  ForEach<hn::MaxLanes(d)>(len, [=](const Real* x, const Real* w, const Real* sum, Real* out) TZM_LAMBDA {
    hn::StoreU(hn::MulAdd(hn::LoadU(d, x), hn::LoadU(d, w), hn::LoadU(d, sum)), d, out);
  }, src, window, static_cast<const Real*>(segment), segment);
}
template <class Complex, class Real>
void Fold(const Complex* src, const Real* window, Complex* segment, int32_t len) {
  ForEachByReal(len, [](auto w, auto x, auto sum) TZM_LAMBDA { return hn::MulAdd(x, w, sum); }, window, segment, src,
                static_cast<const Complex*>(segment));
}

// Sum of squares: blocks of lanes folded pairwise onto a running total, the rest fused one by one.
template <class Real>
Real Energy(const Real* window, int32_t len) {
  constexpr size_t kLanes = 16 / sizeof(Real);
  using Lanes = LaneArray<Real, kLanes>;
  Real total = 0;
  BodyAndTail<kLanes>(
      len,
      [&](size_t count, const Real* w) {
        for (size_t i = 0; i < count; i += kLanes) {
          const Lanes block = Lanes::Load(w + i);
          total += (block * block).FoldPairs();
        }
      },
      [&](size_t count, const Real* w) {
        for (size_t i = 0; i < count; ++i) total = Fma(w[i], w[i], total);
      },
      window);
  return total;
}

// What is divided out: segments, window energy, and the density's two pi.
Orva32f Scale(int32_t segments, Orva32f mean, int32_t winLen) {
  const Orva32f product = static_cast<Orva32f>(segments) * mean * static_cast<Orva32f>(winLen);
  return static_cast<Orva32f>(static_cast<double>(product) * kTwoPi);
}
Orva64f Scale(int32_t segments, Orva64f mean, int32_t winLen) { return segments * mean * winLen * kTwoPi; }

template <class Sample, class Real>
OrvaStatus Pwelch(const Sample* src, const Real* window, Real* dst, int32_t srcLen, int32_t nfft, int32_t winLen,
                  Orva64f overlap) {
  using F = Fft<Real>;
  using Complex = typename F::Complex;
  constexpr bool kReal = !kIsComplex<Sample>;
  if (OrvaStatus status = CheckPointers(src, dst)) return status;
  if (srcLen < 1 || srcLen > 0x3fffffff || winLen < 1 || winLen > srcLen || winLen > kLongestWindow<Real> ||
      nfft > winLen || !(overlap > 0 && overlap <= 0.95))
    return ORVA_STS_SIZE_ERR;
  const int32_t noverlap = static_cast<int32_t>(__builtin_ceil(winLen * overlap));
  if (noverlap < 1 || noverlap == winLen) return ORVA_STS_SIZE_ERR;

  // A segment longer than the transform is folded onto it: `folds` whole blocks and `rest` samples.
  const int32_t step = winLen - noverlap, segments = (srcLen - noverlap) / step;
  const bool folded = nfft > 0 && nfft < winLen;
  const int32_t n = folded ? nfft : winLen;
  const int32_t folds = folded ? (winLen - 1) / n : 0, rest = winLen - folds * n;
  const int32_t windowLen = (folds + 1) * n, bins = kReal ? n / 2 + 1 : n;

  const auto make = [](int32_t count, size_t size) { return ORVAS_Malloc_8u(count * static_cast<int32_t>(size)); };
  Real* const weights = reinterpret_cast<Real*>(make(windowLen, sizeof(Real)));
  Real* const power = reinterpret_cast<Real*>(make(bins, sizeof(Real)));
  Real* const sum = reinterpret_cast<Real*>(make(bins, sizeof(Real)));
  Sample* const segment = reinterpret_cast<Sample*>(make(n, sizeof(Sample)));
  Complex* const spectrum = reinterpret_cast<Complex*>(make(bins, sizeof(Complex)));
  typename F::Plan plan;
  if constexpr (kReal) plan = F::PlanRealToComplex(n);
  else plan = F::PlanComplex(n, kForward);
  const auto release = [&](OrvaStatus status) {
    F::Destroy(plan);
    ORVA_Free(weights);
    ORVA_Free(power);
    ORVA_Free(sum);
    ORVA_Free(segment);
    ORVA_Free(spectrum);
    return status;
  };
  if (CheckPointers(weights, power, sum, segment, spectrum, plan)) return release(ORVA_STS_MEM_ALLOC_ERR);

  if (window != nullptr) Copy(window, weights, winLen);
  else Set(Real(1), weights, winLen);
  Zero(weights + winLen, windowLen - winLen);  // refused where nothing is left
  const Real mean = Energy(weights, winLen) / static_cast<Real>(winLen);

  Zero(sum, bins);
  for (int32_t s = 0; s < segments; ++s) {
    const Sample* const from = src + static_cast<size_t>(s) * step;
    if (folded) {
      Zero(segment, n);
      for (int32_t f = 0; f < folds; ++f) Fold(from + f * n, weights + f * n, segment, n);
      Fold(from + folds * n, weights + folds * n, segment, rest);
    } else {
      Window(from, weights, segment, n);
    }
    if constexpr (kReal) F::ExecuteRealToComplex(plan, segment, spectrum);
    else F::Execute(plan, segment, spectrum);
    PowerSpectrum(spectrum, power, bins);
    Add(power, sum, bins);
  }

  // A window of zeros gives scale 0, which the division refuses: the sum stays as it is.
  Divide(sum, Scale(segments, mean, winLen), sum, bins);
  if constexpr (kReal) Multiply(sum + 1, Real(2), sum + 1, (n - 1) / 2);  // one-sided; refused for n below 3
  Copy(sum, dst, bins);
  return release(ORVA_STS_NO_ERR);
}

}  // namespace

OrvaStatus ORVAS_Pwelch_32f(const Orva32f* src, const Orva32f* window, Orva32f* dst, int32_t srcLen, int32_t nfft,
                            int32_t winLen, Orva64f overlap) {
  return Pwelch(src, window, dst, srcLen, nfft, winLen, overlap);
}

OrvaStatus ORVAS_Pwelch_64f(const Orva64f* src, const Orva64f* window, Orva64f* dst, int32_t srcLen, int32_t nfft,
                            int32_t winLen, Orva64f overlap) {
  return Pwelch(src, window, dst, srcLen, nfft, winLen, overlap);
}

OrvaStatus ORVAS_Pwelch_32fc(const Orva32fc* src, const Orva32f* window, Orva32f* dst, int32_t srcLen, int32_t nfft,
                             int32_t winLen, Orva64f overlap) {
  return Pwelch(src, window, dst, srcLen, nfft, winLen, overlap);
}

OrvaStatus ORVAS_Pwelch_64fc(const Orva64fc* src, const Orva64f* window, Orva64f* dst, int32_t srcLen, int32_t nfft,
                             int32_t winLen, Orva64f overlap) {
  return Pwelch(src, window, dst, srcLen, nfft, winLen, overlap);
}
