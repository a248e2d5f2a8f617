// The division of reals by a constant.
#pragma once

#include "frame/drive.h"

namespace tzm {

// Every element times the reciprocal of the constant, rounded once: not the quotient, by contract.
template <class T>
TZM_INLINE void MulReciprocal(const T* src, T value, T* dst, size_t len) {
  const Full<T> d;
  const auto by = hn::Set(d, 1 / value);
  ForEach<hn::MaxLanes(d)>(len, [=](const T* from, T* to) TZM_LAMBDA {
    hn::StoreU(hn::Mul(hn::LoadU(d, from), by), d, to);
  }, src, dst);
}

}  // namespace tzm
