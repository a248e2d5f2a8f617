// Scaled exponential and logarithm of integers, computed in binary64 in blocks on the stack.
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/scale.h"
#include "frame/vector.h"

using namespace tzm;

namespace {

using F64 = Full<double>;
constexpr int32_t kBlock = 256;

// The status of a block that holds elements not above 0 is see(block, count, status so far).
template <class T, class See>
OrvaStatus Scaled(const T* src, T* dst, int32_t len, double scale, void (*function)(int32_t, const double*, double*),
                  See see) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const auto factor = hn::Set(F64(), ScaleFactor(scale));
  OrvaStatus status = ORVA_STS_NO_ERR;
  alignas(64) double value[kBlock];
  ForBlocks<kBlock>(len, [&](int32_t count, const T* source, T* result) {
    AnyLane<F64> notPositive;
    ForEach<hn::MaxLanes(F64())>(count, [&](const T* from, double* to) TZM_LAMBDA {
      const auto x = LoadFloating(F64(), from);
      notPositive.See(hn::Le(x, hn::Zero(F64())));
      hn::StoreU(x, F64(), to);
    }, source, value);
    if (notPositive.Seen()) status = see(source, count, status);
    function(count, value, value);
    ForEach<hn::MaxLanes(F64())>(count, [&](const double* from, T* to) TZM_LAMBDA {
      StoreRounded(hn::Mul(hn::LoadU(F64(), from), factor), to);
    }, std::as_const(value), result);
  }, src, dst);
  return status;
}

template <class T>
OrvaStatus ScaledExp(const T* src, T* dst, int32_t len, double scale) {
  return Scaled(src, dst, len, scale, vdexp, [](const T*, int32_t, OrvaStatus status) { return status; });
}

// The last element without a logarithm decides the status.
template <class T>
OrvaStatus ScaledLn(const T* src, T* dst, int32_t len, double scale) {
  return Scaled(src, dst, len, scale, vdln, [](const T* block, int32_t count, OrvaStatus) {
    int32_t last = count - 1;
    while (LoadElement(block + last) > 0) --last;
    return LoadElement(block + last) == 0 ? ORVA_STS_LN_ZERO_WARN : ORVA_STS_LN_NEG_WARN;
  });
}

}  // namespace

OrvaStatus ORVAS_Exp_16s_S(const Orva16s* src, Orva16s* dst, int32_t len, double scale) {
  return ScaledExp(src, dst, len, scale);
}

OrvaStatus ORVAS_Exp_32s_S(const Orva32s* src, Orva32s* dst, int32_t len, double scale) {
  return ScaledExp(src, dst, len, scale);
}

OrvaStatus ORVAS_Exp_16s_IS(Orva16s* srcDst, int32_t len, double scale) {
  return ORVAS_Exp_16s_S(srcDst, srcDst, len, scale);
}

OrvaStatus ORVAS_Exp_32s_IS(Orva32s* srcDst, int32_t len, double scale) {
  return ORVAS_Exp_32s_S(srcDst, srcDst, len, scale);
}

OrvaStatus ORVAS_Ln_16s_S(const Orva16s* src, Orva16s* dst, int32_t len, double scale) {
  return ScaledLn(src, dst, len, scale);
}

OrvaStatus ORVAS_Ln_32s_S(const Orva32s* src, Orva32s* dst, int32_t len, double scale) {
  return ScaledLn(src, dst, len, scale);
}

OrvaStatus ORVAS_Ln_16s_IS(Orva16s* srcDst, int32_t len, double scale) {
  return ORVAS_Ln_16s_S(srcDst, srcDst, len, scale);
}

OrvaStatus ORVAS_Ln_32s_IS(Orva32s* srcDst, int32_t len, double scale) {
  return ORVAS_Ln_32s_S(srcDst, srcDst, len, scale);
}
