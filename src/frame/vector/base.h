// Words that every kernel uses: tags and registers, elements that need not be aligned, and the attributes of
// function objects on the road of a vector.
#pragma once

#include <hwy/highway.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

// For function objects and lambdas on the road of a vector: GCC will not inline a kernel with several
// call sites by itself.
#define TZM_INLINE inline __attribute__((always_inline))
#define TZM_LAMBDA __attribute__((always_inline))

// An intrinsic of the whole register, by its name behind the prefix of the width.
#if HWY_ARCH_X86
#if HWY_TARGET <= HWY_AVX3
#define TZM_X86(operation) _mm512_##operation
#else
#define TZM_X86(operation) _mm256_##operation
#endif
#endif

#if HWY_ARCH_X86 && !(defined(__AVX2__) && defined(__FMA__) && defined(__F16C__))
#error "-march (TZM_MARCH) has to be x86-64-v3 or wider"
#endif

namespace tzm {

namespace hn = hwy::HWY_NAMESPACE;

template <class T>
using Full = hn::ScalableTag<T>;  // a whole register of T
template <class D>
using Vec = hn::Vec<D>;
template <class D>
using Mask = hn::Mask<D>;

// The parts of a complex array as one array of reals.
template <class Complex>
TZM_INLINE auto* Parts(Complex* array) {
  using Part = std::remove_reference_t<decltype((array->re))>;
  return reinterpret_cast<Part*>(array);
}

// Element of an array that need not be aligned.
template <class T>
TZM_INLINE T LoadElement(const T* from) {
  T value;
  std::memcpy(&value, from, sizeof(T));
  return value;
}
template <class T>
TZM_INLINE void StoreElement(T value, T* to) {
  std::memcpy(to, &value, sizeof(T));
}

constexpr double kPi = 3.141592653589793, kTwoPi = 2 * kPi;

// a*b + c of one value with one rounding.
TZM_INLINE float Fma(float a, float b, float c) { return __builtin_fmaf(a, b, c); }
TZM_INLINE double Fma(double a, double b, double c) { return __builtin_fma(a, b, c); }

// Whether a condition has held in any lane so far: what a warning is made of.
template <class D>
class AnyLane {
 public:
  TZM_INLINE void See(Mask<D> condition) { seen_ = hn::Or(seen_, condition); }
  TZM_INLINE bool Seen() const { return !hn::AllFalse(D(), seen_); }

 private:
  Mask<D> seen_ = hn::MaskFromVec(hn::Zero(D()));
};

// f(0), f(1), ... f(N-1), written out, the number being a constant expression: GCC leaves loops over arrays
// of registers rolled, and the arrays in memory.
template <size_t N, class F>
TZM_INLINE void Unrolled(F&& f) {
  [&]<size_t... i>(std::index_sequence<i...>) TZM_LAMBDA {
    (f(std::integral_constant<size_t, i>()), ...);
  }(std::make_index_sequence<N>());
}

// Keeps a value that was loaded once in its register: GCC on x86 rather loads it again in each operation.
template <class V>
TZM_INLINE V InRegister(V v) {
#if HWY_ARCH_X86
  asm("" : "+x"(v.raw));
#endif
  return v;
}

}  // namespace tzm
