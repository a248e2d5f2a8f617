// The system's scalar functions over arrays, for elementary.py to compare with.
#include <cmath>
#include <cstdint>

#define ONE_SOURCE(name, T, function)                                     \
  extern "C" void name(const T* a, T* r, int32_t n) {                     \
    for (int32_t i = 0; i < n; ++i) r[i] = function(a[i]);                \
  }
#define TWO_SOURCES(name, T, function)                                    \
  extern "C" void name(const T* a, const T* b, T* r, int32_t n) {         \
    for (int32_t i = 0; i < n; ++i) r[i] = function(a[i], b[i]);          \
  }
#define BOTH_TYPES(shape, Name, function) shape(Name##_32f, float, function) shape(Name##_64f, double, function)

BOTH_TYPES(ONE_SOURCE, Exp, std::exp)
BOTH_TYPES(ONE_SOURCE, Ln, std::log)
BOTH_TYPES(ONE_SOURCE, Log10, std::log10)
BOTH_TYPES(ONE_SOURCE, Sin, std::sin)
BOTH_TYPES(ONE_SOURCE, Cos, std::cos)
BOTH_TYPES(ONE_SOURCE, Tan, std::tan)
BOTH_TYPES(ONE_SOURCE, Arctan, std::atan)
BOTH_TYPES(TWO_SOURCES, Arctan2, std::atan2)
BOTH_TYPES(TWO_SOURCES, Pow, std::pow)
