// Chirp-Z transform: the z-transform of a signal on a spiral of points, by a convolution through three
// transforms.
#include <signal_tzm/transform.h>

#include "frame/call.h"
#include "frame/calls.h"
#include "frame/fft.h"

#include <algorithm>

using namespace tzm;

namespace {

template <class Real>
constexpr int32_t kLongestTransform = 0x40000000 / (2 * sizeof(Real));  // so that a buffer has 2^30 bytes at most

// Complex product in the roundings of ORVAS_Mul.
template <class Complex>
Complex Product(Complex a, Complex b) {
  return {Fma(a.re, b.re, -(a.im * b.im)), Fma(a.im, b.re, a.re * b.im)};
}
template <class Complex, class Real>
Complex Scaled(Real x, Complex by) {
  return {x * by.re, x * by.im};
}

template <class Sample, class Complex>
OrvaStatus Czt(const Sample* src, int32_t srcLen, Complex* dst, int32_t dstLen, Complex w, Complex a) {
  using Real = decltype(w.re);
  using F = Fft<Real>;
  if (OrvaStatus status = CheckPointers(src, dst)) return status;
  if (srcLen < 1 || dstLen < 1) return ORVA_STS_SIZE_ERR;
  if (static_cast<int64_t>(srcLen) + dstLen >= 0x40000000) return ORVA_STS_OVERFLOW_ERR;
  const int32_t convolved = srcLen + dstLen - 1, longer = std::max(srcLen, dstLen);
  int32_t n = 1;
  while (n < convolved) n *= 2;
  if (n > kLongestTransform<Real>) return ORVA_STS_OVERFLOW_ERR;

  const auto make = [](int32_t count) {
    return static_cast<Complex*>(ORVA_Malloc(count * static_cast<int32_t>(sizeof(Complex))));
  };
  Complex* const data = make(n);
  Complex* const kernel = make(n);
  Complex* const chirp = make(longer);
  const typename F::Plan forward = F::PlanComplex(n, kForward), inverse = F::PlanComplex(n, kInverse);
  const auto release = [&](OrvaStatus status) {
    ORVA_Free(data);
    ORVA_Free(kernel);
    ORVA_Free(chirp);
    F::Destroy(forward);
    F::Destroy(inverse);
    return status;
  };
  if (CheckPointers(data, kernel, chirp, forward, inverse)) return release(ORVA_STS_MEM_ALLOC_ERR);

  // chirp[k] = w^(k^2/2), by recurrence: its error grows with k.
  const Complex one = {1, 0};
  Complex q;
  Sqrt(&w, &q, 1);
  chirp[0] = one;
  for (int32_t k = 0; k < longer - 1; ++k) {
    chirp[k + 1] = Product(chirp[k], q);
    q = Product(q, w);
  }

  // The kernel: the chirp's reciprocal at the circular indices -(srcLen - 1) to dstLen - 1. Here and below,
  // a call refuses a count of 0 and does nothing.
  Set(one, kernel, longer);
  Divide(chirp, kernel, data, longer);
  Copy(data, kernel, dstLen);
  Flip(data + 1, kernel + (n - srcLen + 1), srcLen - 1);
  Zero(kernel + dstLen, n - convolved);

  // The data: src[n] * a^-n * chirp[n], the powers of 1/a a running product.
  Copy(chirp, data, srcLen);
  Zero(data + srcLen, n - srcLen);
  const Real norm = Fma(a.re, a.re, a.im * a.im);
  const Complex reciprocal = {a.re / norm, -a.im / norm};
  Complex power = one;
  for (int32_t i = 0; i < srcLen; ++i) {
    const Sample x = LoadElement(src + i);
    if constexpr (std::is_same_v<Sample, Real>) data[i] = Product(Scaled(x, power), data[i]);
    else data[i] = Product(Product(x, power), data[i]);
    power = Product(power, reciprocal);
  }

  F::Execute(forward, data, data);
  F::Execute(forward, kernel, kernel);
  Multiply(data, kernel, data, n);
  F::Execute(inverse, data, data);
  Multiply(chirp, data, data, dstLen);
  // The only scaling: the inverse plan has none.
  Divide(Parts(data), static_cast<Real>(n), Parts(dst), 2 * dstLen);
  return release(ORVA_STS_NO_ERR);
}

}  // namespace

OrvaStatus ORVAS_CZT_32f(const Orva32f* src, int32_t srcLen, Orva32fc* dst, int32_t dstLen, Orva32fc w, Orva32fc a) {
  return Czt(src, srcLen, dst, dstLen, w, a);
}

OrvaStatus ORVAS_CZT_64f(const Orva64f* src, int32_t srcLen, Orva64fc* dst, int32_t dstLen, Orva64fc w, Orva64fc a) {
  return Czt(src, srcLen, dst, dstLen, w, a);
}

OrvaStatus ORVAS_CZT_32fc(const Orva32fc* src, int32_t srcLen, Orva32fc* dst, int32_t dstLen, Orva32fc w,
                          Orva32fc a) {
  return Czt(src, srcLen, dst, dstLen, w, a);
}

OrvaStatus ORVAS_CZT_64fc(const Orva64fc* src, int32_t srcLen, Orva64fc* dst, int32_t dstLen, Orva64fc w,
                          Orva64fc a) {
  return Czt(src, srcLen, dst, dstLen, w, a);
}
