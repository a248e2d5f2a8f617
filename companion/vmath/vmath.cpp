// Vector math: the deterministic functions of SLEEF, which give the same bits on every vector unit, within
// 1 ulp, and the vector unit's own product and square root. What is exported runs on the widest vector unit
// that there is.
#define TZM_UNIT baseline
#include "kernels.h"

#if HWY_ARCH_X86
#define _Bool bool  // for C++ compilers that do not know the header's word
#include <sys/platform/x86.h>
#undef _Bool

// What the compiler may use in avx512.cpp (x86-64-v4), as the loader found it before any code ran:
// GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX512F takes it away.
static bool HasAvx512() {
  return CPU_FEATURE_ACTIVE(AVX512F) && CPU_FEATURE_ACTIVE(AVX512BW) && CPU_FEATURE_ACTIVE(AVX512CD) &&
         CPU_FEATURE_ACTIVE(AVX512DQ) && CPU_FEATURE_ACTIVE(AVX512VL);
}
#define DECLARE(name) namespace avx512 { decltype(::name) name; }
#define CHOSEN(name) (HasAvx512() ? avx512::name : baseline::name)
#else
#define DECLARE(name)
#define CHOSEN(name) baseline::name
#endif

#define ONE_SOURCE(name, T) \
  DECLARE(name)             \
  void name(int32_t n, const T* a, T* r) { CHOSEN(name)(n, a, r); }
#define TWO_SOURCES(name, T) \
  DECLARE(name)              \
  void name(int32_t n, const T* a, const T* b, T* r) { CHOSEN(name)(n, a, b, r); }
#define TWO_RESULTS(name, T) \
  DECLARE(name)              \
  void name(int32_t n, const T* a, T* s, T* c) { CHOSEN(name)(n, a, s, c); }
#define BOTH_TYPES(shape, name) shape(vs##name, Orva32f) shape(vd##name, Orva64f)

BOTH_TYPES(TWO_SOURCES, mul)
BOTH_TYPES(ONE_SOURCE, sqrt)
BOTH_TYPES(ONE_SOURCE, sin)
BOTH_TYPES(ONE_SOURCE, cos)
BOTH_TYPES(ONE_SOURCE, tan)
BOTH_TYPES(ONE_SOURCE, atan)
BOTH_TYPES(ONE_SOURCE, exp)
BOTH_TYPES(ONE_SOURCE, ln)
BOTH_TYPES(ONE_SOURCE, log10)
BOTH_TYPES(TWO_SOURCES, atan2)
BOTH_TYPES(TWO_SOURCES, pow)
BOTH_TYPES(TWO_RESULTS, sincos)
