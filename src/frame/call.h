// The call frame: the checks with which members begin, in the order null pointers, length, own values,
// scale. Each gives ORVA_STS_NO_ERR or the status to return.
#pragma once

#include <signal_tzm/status.h>

#include <cstdint>
#include <limits>

namespace tzm {

template <class... T>
constexpr OrvaStatus CheckPointers(const T*... pointers) {
  return ((pointers == nullptr) || ...) ? ORVA_STS_NULL_PTR_ERR : ORVA_STS_NO_ERR;
}

template <class... T>
constexpr OrvaStatus CheckArrays(int32_t len, const T*... arrays) {
  if (OrvaStatus status = CheckPointers(arrays...)) return status;
  return len < 1 ? ORVA_STS_SIZE_ERR : ORVA_STS_NO_ERR;
}

constexpr OrvaStatus CheckScale(double scale) {
  return scale > 0 && scale < std::numeric_limits<double>::infinity() ? ORVA_STS_NO_ERR : ORVA_STS_SCALE_ERR;
}

}  // namespace tzm
