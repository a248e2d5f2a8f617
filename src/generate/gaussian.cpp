// Gaussian noise by the polar method on the system's drand48, seeded afresh on every call.
#include <signal_tzm/arith.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>
#include <signal_tzm/generate.h>

#include "frame/call.h"
#include "frame/drive.h"

#include <cmath>
#include <cstdlib>

using namespace tzm;

namespace {

// What an OrvaRandGaussState of samples T holds.
template <class T>
struct Parameters {
  T mean, stdDev;
  uint32_t seed;
};

template <class T>
OrvaStatus Init(OrvaRandGaussState** stateOut, T mean, T stdDev, uint32_t seed) {
  if (OrvaStatus status = CheckPointers(stateOut)) return status;
  auto* const parameters = static_cast<Parameters<T>*>(ORVA_Malloc(sizeof(Parameters<T>)));
  if (parameters == nullptr) return ORVA_STS_MEM_ALLOC_ERR;
  StoreElement(Parameters<T>{mean, stdDev, seed}, parameters);
  *stateOut = reinterpret_cast<OrvaRandGaussState*>(parameters);
  return ORVA_STS_NO_ERR;
}

OrvaStatus Release(OrvaRandGaussState* state) {
  ORVAS_Free(state);
  return ORVA_STS_NO_ERR;
}

// A point of the unit disc, uniform but for the origin, and the square of its radius.
template <class Work>
struct Point {
  Work u, v, s;
};
template <class Work>
Point<Work> DrawPoint() {
  for (;;) {
    const Work a = static_cast<Work>(drand48());
    const Work b = static_cast<Work>(drand48());
    const Work u = Fma(a, Work(2), Work(-1)), v = Fma(b, Work(2), Work(-1));
    const Work s = Fma(u, u, v * v);
    if (s < 1 && s != 0) return {u, v, s};
  }
}

OrvaStatus Log10(const float* src, float* dst, int32_t len) { return ORVAS_Log10_32f(src, dst, len); }
OrvaStatus Log10(const double* src, double* dst, int32_t len) { return ORVAS_Log10_64f(src, dst, len); }
OrvaStatus Sqrt(float* srcDst, int32_t len) { return ORVAS_Sqrt_32f_I(srcDst, len); }
OrvaStatus Sqrt(double* srcDst, int32_t len) { return ORVAS_Sqrt_64f_I(srcDst, len); }

// A sample of a block: integers are truncated and saturated.
template <class T, class Work>
T BlockSample(Work value) {
  if constexpr (std::is_integral_v<T>) {
    using Limits = std::numeric_limits<T>;
    const int32_t whole = static_cast<int32_t>(value);  // of a few standard deviations: far within the range
    return static_cast<T>(std::clamp<int32_t>(whole, Limits::min(), Limits::max()));
  } else {
    return value;
  }
}

// A sample of the tail: integers are truncated and wrap, save that no negative value wraps to unsigned.
template <class T>
T TailSample(double value) {
  if constexpr (std::is_same_v<T, Orva8u>) return static_cast<T>(value < 0 ? 0 : static_cast<uint32_t>(value));
  else if constexpr (std::is_integral_v<T>) return static_cast<T>(static_cast<int32_t>(value));
  else return static_cast<T>(value);
}

template <class T>
OrvaStatus Generate(T* dst, int32_t len, const OrvaRandGaussState* state) {
  if (OrvaStatus status = CheckArrays(len, dst, state)) return status;
  using Work = std::conditional_t<std::is_same_v<T, double>, double, float>;
  constexpr size_t kBlock = std::is_same_v<T, double> ? 4 : 8;
  const Parameters<T> parameters = LoadElement(reinterpret_cast<const Parameters<T>*>(state));
  srand48(parameters.seed);

  const Work mean = parameters.mean, stdDev = parameters.stdDev;
  const auto block = [=](int32_t, T* to) {
    Work variates[kBlock], radii[kBlock], factors[kBlock];
    for (size_t k = 0; k < kBlock; k += 2) {
      const Point<Work> point = DrawPoint<Work>();
      variates[k] = point.u;
      variates[k + 1] = point.v;
      radii[k] = radii[k + 1] = point.s;
    }
    // The method has the natural logarithm. The common one is deliberate: streams stay as they always were,
    // with sqrt(log10(e)) of the deviation.
    Log10(radii, factors, kBlock);
    for (size_t k = 0; k < kBlock; ++k) factors[k] = factors[k] * Work(-2) / radii[k];
    Sqrt(factors, kBlock);
    for (size_t k = 0; k < kBlock; ++k)
      StoreElement(BlockSample<T>(Fma(variates[k] * factors[k], stdDev, mean)), to + k);
  };
  BodyAndTail<kBlock>(
      len, [&](size_t count, T* body) { ForBlocks<kBlock>(count, block, body); },
      [&](size_t count, T* tail) {
        for (size_t i = 0; i < count; ++i) {
          const Point<Work> point = DrawPoint<Work>();
          const double u = point.u, s = point.s;
          const double x = u * sqrt(log(s) * -2.0 / s);
          StoreElement(TailSample<T>(Fma(x, static_cast<double>(stdDev), static_cast<double>(mean))), tail + i);
        }
      },
      dst);
  return ORVA_STS_NO_ERR;
}

}  // namespace

#define TZM_GAUSSIAN(init, run, release, T)                                          \
  OrvaStatus init(OrvaRandGaussState** stateOut, T mean, T stdDev, uint32_t seed) {  \
    return Init(stateOut, mean, stdDev, seed);                                       \
  }                                                                                  \
  OrvaStatus run(T* dst, int32_t len, const OrvaRandGaussState* state) {             \
    return Generate(dst, len, state);                                                \
  }                                                                                  \
  OrvaStatus release(OrvaRandGaussState* state) { return Release(state); }

TZM_GAUSSIAN(ORVAS_RandGaussInit_8u, ORVAS_RandGauss_8u, ORVAS_RandGaussRelease_8u, Orva8u)
TZM_GAUSSIAN(ORVAS_RandGaussInit_16s, ORVAS_RandGauss_16s, ORVAS_RandGaussRelease_16s, Orva16s)
TZM_GAUSSIAN(ORVAS_RandGaussInit_32f, ORVAS_RandGauss_32f, ORVAS_RandGaussRelease_32f, Orva32f)
TZM_GAUSSIAN(ORVAS_RandGaussInit_64f, ORVAS_RandGauss_64f, ORVAS_RandGaussRelease_64f, Orva64f)
#undef TZM_GAUSSIAN
