// Init and run of transforms of all kinds, each in one form.
#pragma once

#include <signal_tzm/transform.h>

#include <cstddef>

namespace tzm_bench {

using Spec = OrvaTransformSpec;

// By an order or a length; real transforms have one direction.
inline OrvaStatus InitSpec(OrvaStatus (*init)(int32_t, int32_t, int32_t, Spec**), int32_t size, int32_t direction,
                           int32_t flag, Spec** spec) {
  return init(size, direction, flag, spec);
}
inline OrvaStatus InitSpec(OrvaStatus (*init)(int32_t, int32_t, Spec**), int32_t size, int32_t, int32_t flag,
                           Spec** spec) {
  return init(size, flag, spec);
}

template <class Src, class T>
OrvaStatus RunSpec(OrvaStatus (*run)(Src*, T*, const Spec*), T* src, T* dst, size_t, const Spec* spec) {
  return run(src, dst, spec);
}
// Split arrays: two halves of each.
template <class T>
OrvaStatus RunSpec(OrvaStatus (*run)(const T*, const T*, T*, T*, const Spec*), T* src, T* dst, size_t n,
                   const Spec* spec) {
  return run(src, src + n, dst, dst + n, spec);
}

}  // namespace tzm_bench
