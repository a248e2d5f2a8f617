// Conversion to and from binary16.
#include <signal_tzm/arith.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/float_lanes.h"
#include "frame/half.h"
#include "frame/scale.h"

using namespace tzm;

namespace {

OrvaStatus CheckRoundMode(uint32_t roundMode) {
  return roundMode > ORVA_ROUND_NEAREST ? ORVA_STS_ROUND_MODE_ERR : ORVA_STS_NO_ERR;
}

constexpr Full<float> kReal;

TZM_INLINE Vec<Full<float>> WidenHalf(const Orva16f* from) {
  const hn::Rebind<hwy::float16_t, Full<float>> half;
  const hn::RebindToUnsigned<decltype(half)> bits;
  return hn::PromoteTo(kReal, hn::BitCast(half, hn::LoadU(bits, from)));
}

// Every source value is exact in binary32, so that the narrowing is the only rounding.
template <bool kTowardZero, class T>
void Narrow(const T* src, Orva16f* dst, size_t len) {
  const HalfNarrowing<kTowardZero> narrowing;
  ForEach<hn::MaxLanes(kReal)>(len, [&](const T* from, Orva16f* to) TZM_LAMBDA {
    narrowing.Store(LoadFloating(kReal, from), to);
  }, src, dst);
}

template <class T>
OrvaStatus ConvertToHalf(const T* src, Orva16f* dst, int32_t len, uint32_t roundMode) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckRoundMode(roundMode)) return status;
  if (roundMode == ORVA_ROUND_NEAREST) Narrow<false>(src, dst, len);
  else Narrow<true>(src, dst, len);
  return ORVA_STS_NO_ERR;
}

template <bool kTowardZero>
void RoundHalf(const Orva16f* src, Orva16s* dst, size_t len, float factor) {
  using Lanes = FloatLanes<Orva16s>;
  ForEach<hn::MaxLanes(Full<Orva16s>())>(len, [&](const Orva16f* from, Orva16s* to) TZM_LAMBDA {
    // Integers go into the conversion, so that the caller's rounding mode does not matter there.
    StoreRoundedLanes<Orva16s>(Lanes::Each([&](size_t r) TZM_LAMBDA {
      const auto y = hn::Mul(hn::Set(kReal, factor), WidenHalf(from + r * Lanes::kWidth));
      return kTowardZero ? hn::Trunc(y) : hn::Round(y);
    }), to);
  }, src, dst);
}

}  // namespace

OrvaStatus ORVAS_Convert_16s16f(const Orva16s* src, Orva16f* dst, int32_t len, uint32_t roundMode) {
  return ConvertToHalf(src, dst, len, roundMode);
}

OrvaStatus ORVAS_Convert_32f16f(const Orva32f* src, Orva16f* dst, int32_t len, uint32_t roundMode) {
  return ConvertToHalf(src, dst, len, roundMode);
}

OrvaStatus ORVAS_Convert_16f32f(const Orva16f* src, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  ForEach<hn::MaxLanes(kReal)>(len, [](const Orva16f* from, Orva32f* to) TZM_LAMBDA {
    hn::StoreU(WidenHalf(from), kReal, to);
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Convert_16f16s_S(const Orva16f* src, Orva16s* dst, int32_t len, uint32_t roundMode, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckRoundMode(roundMode)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const float factor = FloatFactor(scale);
  if (roundMode == ORVA_ROUND_NEAREST) RoundHalf<false>(src, dst, len, factor);
  else RoundHalf<true>(src, dst, len, factor);
  return ORVA_STS_NO_ERR;
}
