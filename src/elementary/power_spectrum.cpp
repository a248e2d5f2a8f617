// Power spectrum: re^2 + im^2 of complex samples, given as two arrays of parts or as one interleaved array.
#include <signal_tzm/elementary.h>

#include "frame/call.h"
#include "frame/complex_source.h"
#include "frame/drive.h"
#include "frame/scale.h"
#include "frame/vector.h"

using namespace tzm;

namespace {

// Steps in a turn of the loop: taking parts asunder makes a kernel heavier.
template <class... Source>
constexpr size_t kTurn = sizeof...(Source) == 1 ? 2 : 4;

template <SquareSum kSum, class T, class... Source>
OrvaStatus PowerSpectrum(T* dst, int32_t len, const Source*... src) {
  if (OrvaStatus status = CheckArrays(len, dst, src...)) return status;
  const Full<T> d;
  ForEach<hn::MaxLanes(d), kTurn<Source...>>(len, [&](const Source*... from, T* to) TZM_LAMBDA {
    const auto sum = SumOfSquares<kSum>(LoadSplit(d, from...));
    hn::StoreU(InOrder<sizeof...(Source)>(sum), d, to);
  }, src..., dst);
  return ORVA_STS_NO_ERR;
}

// The exact sum, rounded once to binary32.
template <class... Source>
OrvaStatus IntegerPowerSpectrum(Orva32f* dst, int32_t len, const Source*... src) {
  if (OrvaStatus status = CheckArrays(len, dst, src...)) return status;
  const Full<float> d;
  ForEach<2 * hn::MaxLanes(d), kTurn<Source...>>(len, [&](const Source*... from, Orva32f* to) TZM_LAMBDA {
    const SquareSums sums = LoadSquareSums(from...);
    hn::StoreU(SquareSumToFloat(sums.low), d, to);
    hn::StoreU(SquareSumToFloat(sums.high), d, to + hn::Lanes(d));
  }, src..., dst);
  return ORVA_STS_NO_ERR;
}

// The exact sum put through the scale rule.
template <class... Source>
OrvaStatus ScaledPowerSpectrum(Orva16s* dst, int32_t len, double scale, const Source*... src) {
  if (OrvaStatus status = CheckArrays(len, dst, src...)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const Full<uint32_t> d32;
  const Full<int16_t> d16;
  const auto limit = hn::Set(d32, 32767);
  WithShift(d32, ScaleExponent(scale), [&](const auto& shift) TZM_LAMBDA {
    const auto narrow = [&](Vec<Full<uint32_t>> sum) TZM_LAMBDA {
      return hn::BitCast(Full<int32_t>(), hn::Min(shift(sum), limit));
    };
    ForEach<hn::MaxLanes(d16), kTurn<Source...>>(len, [&](const Source*... from, Orva16s* to) TZM_LAMBDA {
      const SquareSums sums = LoadSquareSums(from...);
      hn::StoreU(NarrowPair(d16, narrow(sums.low), narrow(sums.high)), d16, to);
    }, src..., dst);
  });
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_PowerSpectr_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32f* dst, int32_t len) {
  return PowerSpectrum<SquareSum::kFused>(dst, len, srcRe, srcIm);
}

OrvaStatus ORVAS_PowerSpectr_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64f* dst, int32_t len) {
  return PowerSpectrum<SquareSum::kRounded>(dst, len, srcRe, srcIm);
}

OrvaStatus ORVAS_PowerSpectr_32fc(const Orva32fc* src, Orva32f* dst, int32_t len) {
  return PowerSpectrum<SquareSum::kRounded>(dst, len, src);
}

OrvaStatus ORVAS_PowerSpectr_64fc(const Orva64fc* src, Orva64f* dst, int32_t len) {
  return PowerSpectrum<SquareSum::kRounded>(dst, len, src);
}

OrvaStatus ORVAS_PowerSpectr_16s32f(const Orva16s* srcRe, const Orva16s* srcIm, Orva32f* dst, int32_t len) {
  return IntegerPowerSpectrum(dst, len, srcRe, srcIm);
}

OrvaStatus ORVAS_PowerSpectr_16sc32f(const Orva16sc* src, Orva32f* dst, int32_t len) {
  return IntegerPowerSpectrum(dst, len, src);
}

OrvaStatus ORVAS_PowerSpectr_16s_S(const Orva16s* srcRe, const Orva16s* srcIm, Orva16s* dst, int32_t len,
                                   double scale) {
  return ScaledPowerSpectrum(dst, len, scale, srcRe, srcIm);
}

OrvaStatus ORVAS_PowerSpectr_16sc_S(const Orva16sc* src, Orva16s* dst, int32_t len, double scale) {
  return ScaledPowerSpectrum(dst, len, scale, src);
}
