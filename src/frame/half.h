// Conversion to binary16 under a rounding of its own, whatever the caller's rounding mode.
#pragma once

#include "frame/vector.h"

namespace tzm {

// Narrows binary32 lanes toward zero or to nearest, ties to even. On AArch64 the rounding comes from the
// control register, which this object sets for its lifetime; the conversions are volatile so that none
// leaves it.
template <bool kTowardZero>
class HalfNarrowing {
 public:
  HalfNarrowing(const HalfNarrowing&) = delete;

#if HWY_ARCH_ARM_A64
  HalfNarrowing() {
    asm volatile("mrs %0, fpcr" : "=r"(kept_));
    constexpr uint64_t kRounding = 0xc00000;
    asm volatile("msr fpcr, %0" : : "r"(kTowardZero ? kept_ | kRounding : kept_ & ~kRounding));
  }
  ~HalfNarrowing() { asm volatile("msr fpcr, %0" : : "r"(kept_)); }
#else
  HalfNarrowing() = default;
#endif

  // A register of binary32 stored as binary16.
  TZM_INLINE void Store(Vec<Full<float>> v, uint16_t* to) const {
#if HWY_ARCH_ARM_A64
    uint16x4_t half;
    asm volatile("fcvtn %0.4h, %1.4s" : "=w"(half) : "w"(v.raw));
    const hn::Rebind<uint16_t, Full<float>> d;
    hn::StoreU(Vec<decltype(d)>(half), d, to);
#else
    constexpr int kRounding = kTowardZero ? _MM_FROUND_TO_ZERO : _MM_FROUND_TO_NEAREST_INT;
#if HWY_TARGET <= HWY_AVX3
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm512_cvtps_ph(v.raw, kRounding));
#else
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_cvtps_ph(v.raw, kRounding));
#endif
#endif
  }

 private:
#if HWY_ARCH_ARM_A64
  uint64_t kept_;
#endif
};

}  // namespace tzm
