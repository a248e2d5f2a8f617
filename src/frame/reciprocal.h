// The division of reals by a constant.
#pragma once

#include "frame/drive.h"

namespace tzm {

// Every element times the reciprocal of the constant, rounded once: not the quotient, by contract.
template <class T>
TZM_INLINE void MulReciprocal(const T* src, T value, T* dst, size_t len) {
  const Full<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d);
  const T reciprocal = 1 / value;
  const auto by = hn::Set(d, reciprocal);
  const size_t whole = len / kLanes * kLanes;
  ForEach<kLanes, 4>(whole, [&](const T* from, T* to) TZM_LAMBDA {
    hn::StoreU(hn::Mul(hn::LoadU(d, from), by), d, to);
  }, src, dst);
  // One by one: a spectrum ends with a bin or two, for which a padded copy would take longer.
  for (size_t i = whole; i < len; ++i) StoreElement(LoadElement(src + i) * reciprocal, dst + i);
}

}  // namespace tzm
