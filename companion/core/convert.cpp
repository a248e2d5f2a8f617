// Conversions between sample types, and between complex arrays and pairs of real ones.
#include <signal_tzm/companion.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/scale.h"

namespace {

using namespace tzm;

template <class C, class T>
OrvaStatus Split(const C* src, T* dstRe, T* dstIm, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dstRe, dstIm)) return status;
  const Full<T> d;
  ForEach<hn::MaxLanes(d)>(len, [=](const C* from, T* toRe, T* toIm) TZM_LAMBDA {
    Vec<Full<T>> re, im;
    LoadParts(d, Parts(from), re, im);
    hn::StoreU(PartsInOrder(re), d, toRe);
    hn::StoreU(PartsInOrder(im), d, toIm);
  }, src, dstRe, dstIm);
  return ORVA_STS_NO_ERR;
}

template <class T, class C>
OrvaStatus Join(const T* srcRe, const T* srcIm, C* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, srcRe, srcIm, dst)) return status;
  const Full<T> d;
  ForEach<hn::MaxLanes(d)>(len, [=](const T* fromRe, const T* fromIm, C* to) TZM_LAMBDA {
    StoreInterleaved(hn::LoadU(d, fromRe), hn::LoadU(d, fromIm), d, Parts(to));
  }, srcRe, srcIm, dst);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_Convert_16s32f(const Orva16s* src, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const Full<int32_t> d32;
  const Full<float> df;
  ForEach<hn::MaxLanes(Full<int16_t>())>(len, [=](const Orva16s* from, Orva32f* to) TZM_LAMBDA {
    const auto wide = LoadWidened(d32, from);
    hn::StoreU(hn::ConvertTo(df, wide.low), df, to);
    hn::StoreU(hn::ConvertTo(df, wide.high), df, to + hn::Lanes(df));
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Convert_32f64f(const Orva32f* src, Orva64f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const Full<double> d;
  ForEach<hn::MaxLanes(Full<float>())>(len, [=](const Orva32f* from, Orva64f* to) TZM_LAMBDA {
    const auto wide = LoadWidened(d, from);
    hn::StoreU(wide.low, d, to);
    hn::StoreU(wide.high, d, to + hn::Lanes(d));
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Convert_64f32f(const Orva64f* src, Orva32f* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const Full<double> dd;
  const hn::Half<Full<float>> d;
  ForEach<hn::MaxLanes(d)>(len, [=](const Orva64f* from, Orva32f* to) TZM_LAMBDA {
    hn::StoreU(hn::DemoteTo(d, hn::LoadU(dd, from)), d, to);
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_Convert_64f16s_S(const Orva64f* src, Orva16s* dst, int32_t len, uint32_t roundMode, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (roundMode > 1) return ORVA_STS_ROUND_MODE_ERR;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const Full<double> dd;
  const Full<int32_t> d32;
  const Full<int16_t> d16;
  const auto factor = hn::Set(dd, ScaleFactor(scale));
  const auto convert = [&](auto round) TZM_LAMBDA {
    ForEach<hn::MaxLanes(d16), 1>(len, [=](const Orva64f* from, Orva16s* to) TZM_LAMBDA {
      const auto scaled = [=](size_t part) TZM_LAMBDA {
        return RoundToInt32(round(hn::Mul(hn::LoadU(dd, from + part * hn::Lanes(dd)), factor)));
      };
      const auto low = hn::Combine(d32, scaled(1), scaled(0));
      const auto high = hn::Combine(d32, scaled(3), scaled(2));
      hn::StoreU(NarrowPair(d16, low, high), d16, to);
    }, src, dst);
  };
  if (roundMode == 1) {
    convert([](auto v) TZM_LAMBDA { return v; });
  } else {
    convert([](auto v) TZM_LAMBDA { return hn::Trunc(v); });
  }
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_CplxToReal_16sc(const Orva16sc* src, Orva16s* dstRe, Orva16s* dstIm, int32_t len) {
  return Split(src, dstRe, dstIm, len);
}
OrvaStatus ORVAS_CplxToReal_32fc(const Orva32fc* src, Orva32f* dstRe, Orva32f* dstIm, int32_t len) {
  return Split(src, dstRe, dstIm, len);
}
OrvaStatus ORVAS_CplxToReal_64fc(const Orva64fc* src, Orva64f* dstRe, Orva64f* dstIm, int32_t len) {
  return Split(src, dstRe, dstIm, len);
}

OrvaStatus ORVAS_RealToCplx_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32fc* dst, int32_t len) {
  return Join(srcRe, srcIm, dst, len);
}
OrvaStatus ORVAS_RealToCplx_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64fc* dst, int32_t len) {
  return Join(srcRe, srcIm, dst, len);
}
