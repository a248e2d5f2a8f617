// The largest, smallest and largest absolute element, the same bits in any order of evaluation: NaN elements
// are passed over, and of zeros of both signs the first one counts.
#include <signal_tzm/companion.h>

#include "frame/call.h"
#include "frame/drive.h"

#include <limits>

namespace {

using namespace tzm;

// The largest key(element), or NaN if all keys are NaN.
template <class T, class Key>
TZM_INLINE T Largest(const T* src, int32_t len, Key key) {
  constexpr T kNone = -std::numeric_limits<T>::infinity();
  const Full<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  // Four chains hide the latency of the maximum.
  auto v0 = hn::Set(d, kNone), v1 = v0, v2 = v0, v3 = v0;
  ForEach<4 * kLanes, 1>(len, [&](const T* from) TZM_LAMBDA {
    v0 = MaxOrSecond(key(hn::LoadU(d, from)), v0);
    v1 = MaxOrSecond(key(hn::LoadU(d, from + kLanes)), v1);
    v2 = MaxOrSecond(key(hn::LoadU(d, from + 2 * kLanes)), v2);
    v3 = MaxOrSecond(key(hn::LoadU(d, from + 3 * kLanes)), v3);
  }, src);
  const T largest = hn::GetLane(hn::MaxOfLanes(d, MaxOrSecond(MaxOrSecond(v0, v1), MaxOrSecond(v2, v3))));
  if (largest != 0 && largest != kNone) return largest;

  // A zero may have either sign, and the least value may stand for no value at all: find its element.
  const hn::CappedTag<T, 1> one;
  for (int32_t i = 0; i < len; ++i) {
    const T value = hn::GetLane(key(hn::Set(one, LoadElement(src + i))));
    if (value == largest) return value;
  }
  return std::numeric_limits<T>::quiet_NaN();
}

template <class T>
OrvaStatus MaxAbs(const T* src, int32_t len, T* result) {
  if (OrvaStatus status = CheckArrays(len, src, result)) return status;
  StoreElement(Largest(src, len, [](auto v) TZM_LAMBDA { return hn::Abs(v); }), result);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_Max_64f(const Orva64f* src, int32_t len, Orva64f* result) {
  if (OrvaStatus status = CheckArrays(len, src, result)) return status;
  StoreElement(Largest(src, len, [](auto v) TZM_LAMBDA { return v; }), result);
  return ORVA_STS_NO_ERR;
}
OrvaStatus ORVAS_Min_64f(const Orva64f* src, int32_t len, Orva64f* result) {
  if (OrvaStatus status = CheckArrays(len, src, result)) return status;
  StoreElement(-Largest(src, len, [](auto v) TZM_LAMBDA { return hn::Neg(v); }), result);
  return ORVA_STS_NO_ERR;
}
OrvaStatus ORVAS_MaxAbs_32f(const Orva32f* src, int32_t len, Orva32f* result) { return MaxAbs(src, len, result); }
OrvaStatus ORVAS_MaxAbs_64f(const Orva64f* src, int32_t len, Orva64f* result) { return MaxAbs(src, len, result); }
