// Results of one value, real or complex, as a member hands them over.
#pragma once

#include "frame/vector.h"

#include <signal_tzm/status.h>

namespace tzm {

template <class Real>
struct Complex {
  Real re, im;
};

// Stores one value through a pointer that need not be aligned.
template <class Result>
OrvaStatus Give(Result value, Result* result) {
  StoreElement(value, result);
  return ORVA_STS_NO_ERR;
}
// The same for a complex value, whose parts are Part or convert to it.
template <class Result, class Real>
OrvaStatus Give(Complex<Real> value, Result* result) {
  using Part = decltype(result->re);
  return Give(Result{static_cast<Part>(value.re), static_cast<Part>(value.im)}, result);
}

}  // namespace tzm
