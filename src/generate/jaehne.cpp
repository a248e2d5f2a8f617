// Jaehne's test vector, a quadratic chirp.
#include <signal_tzm/companion.h>
#include <signal_tzm/generate.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/scale.h"
#include "frame/vector.h"

#include <cmath>

using namespace tzm;

namespace {

void Sine(int32_t n, const float* angles, float* sines) { vssin(n, angles, sines); }
void Sine(int32_t n, const double* angles, double* sines) { vdsin(n, angles, sines); }

template <class T>
OrvaStatus Jaehne(T* dst, int32_t len, T magn) {
  if (OrvaStatus status = CheckArrays(len, dst)) return status;
  if (magn < 0) return ORVA_STS_RANGE_ERR;
  if (len == 1) return StoreElement(T(0), dst), ORVA_STS_NO_ERR;

  // Wide samples are made in binary64. The vector sine runs over blocks of a whole number of 128-bit vectors,
  // the system's sine over what is left.
  using F = std::conditional_t<std::is_same_v<T, Orva32s> || std::is_same_v<T, double>, double, float>;
  constexpr size_t kChunk = 256, kBlock = 16 / sizeof(F);
  const Full<F> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  const F s = static_cast<F>(kPi / 2 / len);
  const auto magnitude = hn::Set(d, static_cast<F>(magn));
  alignas(64) F angles[kChunk];
  const auto chunk = [&](int32_t count, T* to) {
    const size_t first = static_cast<size_t>(to - dst), end = static_cast<size_t>(count);
    for (size_t k = 0; k < end; k += kLanes) {
      const auto index = Indices(d, first + k);
      hn::StoreU(hn::Mul(hn::Mul(hn::Set(d, s), index), index), d, angles + k);
    }
    Sine(count, angles, angles);
    ForEach<kLanes>(end, [=](const F* sine, T* sample) TZM_LAMBDA {
      StoreRounded(hn::Mul(hn::LoadU(d, sine), magnitude), sample);
    }, std::as_const(angles), to);
  };
  BodyAndTail<kBlock>(
      len, [&](size_t count, T* body) { ForBlocks<kChunk>(count, chunk, body); },
      [&](size_t count, T* tail) {
        for (size_t i = 0; i < count; ++i) {
          const F index = static_cast<F>(tail + i - dst);
          const double value = sin(static_cast<double>(s * index * index)) * magn;
          if constexpr (std::is_integral_v<T>) StoreElement(RoundSaturate<T>(value), tail + i);
          else StoreElement(static_cast<T>(value), tail + i);
        }
      },
      dst);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_VectorJaehne_8u(Orva8u* dst, int32_t len, Orva8u magn) { return Jaehne(dst, len, magn); }

OrvaStatus ORVAS_VectorJaehne_16u(Orva16u* dst, int32_t len, Orva16u magn) { return Jaehne(dst, len, magn); }

OrvaStatus ORVAS_VectorJaehne_16s(Orva16s* dst, int32_t len, Orva16s magn) { return Jaehne(dst, len, magn); }

OrvaStatus ORVAS_VectorJaehne_32s(Orva32s* dst, int32_t len, Orva32s magn) { return Jaehne(dst, len, magn); }

OrvaStatus ORVAS_VectorJaehne_32f(Orva32f* dst, int32_t len, Orva32f magn) { return Jaehne(dst, len, magn); }

OrvaStatus ORVAS_VectorJaehne_64f(Orva64f* dst, int32_t len, Orva64f magn) { return Jaehne(dst, len, magn); }
