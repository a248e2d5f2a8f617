// Division of an array by a constant, and of a constant by an array.
#include <signal_tzm/arith.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/scale.h"
#include "frame/vector.h"

using namespace tzm;

namespace {

// Every element times the reciprocal of the constant, rounded once: not the quotient, by contract.
template <class T>
OrvaStatus MulReciprocal(const T* src, T value, T* dst, int32_t len) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (value == 0) return ORVA_STS_DIV_BY_ZERO_ERR;
  const Full<T> d;
  const auto reciprocal = hn::Set(d, 1 / value);
  ForEach<hn::MaxLanes(d), 4>(len, [&](const T* from, T* to) TZM_LAMBDA {
    hn::StoreU(hn::Mul(hn::LoadU(d, from), reciprocal), d, to);
  }, src, dst);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_DivC_32f(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len) {
  return MulReciprocal(src, value, dst, len);
}

OrvaStatus ORVAS_DivC_64f(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len) {
  return MulReciprocal(src, value, dst, len);
}

OrvaStatus ORVAS_DivC_32f_I(Orva32f value, Orva32f* srcDst, int32_t len) {
  return ORVAS_DivC_32f(srcDst, value, srcDst, len);
}

OrvaStatus ORVAS_DivC_64f_I(Orva64f value, Orva64f* srcDst, int32_t len) {
  return ORVAS_DivC_64f(srcDst, value, srcDst, len);
}
