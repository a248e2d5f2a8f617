// Complex samples as a source of real results: two arrays of parts, or one interleaved array.
#pragma once

#include "frame/vector.h"

namespace tzm {

// A register of real parts and one of imaginary parts. What is computed from them goes to memory by
// `Store`, since an interleaved source gives them in the machine's own order.
template <class D>
struct SplitComplex {
  Vec<D> re, im;
};
template <class D, class T>
TZM_INLINE SplitComplex<D> LoadSplit(D d, const T* re, const T* im) {
  return {hn::LoadU(d, re), hn::LoadU(d, im)};
}
template <class D, class Complex>
TZM_INLINE SplitComplex<D> LoadSplit(D d, const Complex* from) {
  SplitComplex<D> z;
  LoadParts(d, Parts(from), z.re, z.im);
  return z;
}
// In memory order, for results of as many source arrays.
template <size_t kArrays, class V>
TZM_INLINE V InOrder(V v) {
  if constexpr (kArrays == 1) return PartsInOrder(v);
  else return v;
}

// re^2 + im^2. kFused: one rounding for re*re and the sum. kRounded: each product and the sum rounded.
enum class SquareSum { kFused, kRounded };
template <SquareSum kSum, class D>
TZM_INLINE Vec<D> SumOfSquares(const SplitComplex<D>& z) {
  const auto im2 = hn::Mul(z.im, z.im);
  return kSum == SquareSum::kFused ? hn::MulAdd(z.re, z.re, im2) : hn::Add(hn::Mul(z.re, z.re), im2);
}

// ---- Exact sums of the squares of two 16-bit parts ----
// At most 2^31, in unsigned lanes, in memory order; `low` holds the first half.
using SquareSums = Widened<Full<uint32_t>>;

#if HWY_ARCH_ARM_A64
TZM_INLINE SquareSums SumSquares(Vec<Full<int16_t>> re, Vec<Full<int16_t>> im) {
  const auto lowRe = vget_low_s16(re.raw), lowIm = vget_low_s16(im.raw);
  const auto low = vmlal_s16(vmull_s16(lowRe, lowRe), lowIm, lowIm);
  const auto high = vmlal_high_s16(vmull_high_s16(re.raw, re.raw), im.raw, im.raw);
  return {Vec<Full<uint32_t>>(vreinterpretq_u32_s32(low)), Vec<Full<uint32_t>>(vreinterpretq_u32_s32(high))};
}
TZM_INLINE SquareSums LoadSquareSums(const Orva16s* re, const Orva16s* im) {
  const Full<int16_t> d;
  return SumSquares(hn::LoadU(d, re), hn::LoadU(d, im));
}
TZM_INLINE SquareSums LoadSquareSums(const Orva16sc* from) {
  const auto z = LoadSplit(Full<int16_t>(), from);
  return SumSquares(z.re, z.im);
}
#else
// The machine multiplies neighbours and adds the two products.
TZM_INLINE Vec<Full<uint32_t>> SumNeighbourSquares(Vec<Full<int16_t>> v) {
  return Vec<Full<uint32_t>>{TZM_X86(madd_epi16)(v.raw, v.raw)};
}
TZM_INLINE SquareSums LoadSquareSums(const Orva16s* re, const Orva16s* im) {
  const Full<uint32_t> d;
  const auto wideRe = LoadWidened(d, reinterpret_cast<const uint16_t*>(re));
  const auto wideIm = LoadWidened(d, reinterpret_cast<const uint16_t*>(im));
  const auto sum = [&](auto r, auto i) TZM_LAMBDA {
    return SumNeighbourSquares(hn::BitCast(Full<int16_t>(), hn::Or(r, hn::ShiftLeft<16>(i))));
  };
  return {sum(wideRe.low, wideIm.low), sum(wideRe.high, wideIm.high)};
}
TZM_INLINE SquareSums LoadSquareSums(const Orva16sc* from) {
  const Full<int16_t> d;
  const auto first = hn::LoadU(d, Parts(from)), second = hn::LoadU(d, Parts(from) + hn::Lanes(d));
  return {SumNeighbourSquares(first), SumNeighbourSquares(second)};
}
#endif

// The sums as binary32. 2^31 is the one that the conversion of signed lanes takes for a negative number.
TZM_INLINE Vec<Full<float>> SquareSumToFloat(Vec<Full<uint32_t>> sum) {
  return hn::Abs(hn::ConvertTo(Full<float>(), hn::BitCast(Full<int32_t>(), sum)));
}

}  // namespace tzm
