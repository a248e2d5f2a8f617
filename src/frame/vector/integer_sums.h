// Exact sums of integers and of their products.
#pragma once

#include "frame/vector/base.h"

namespace tzm {

// Exact sums of products of 16-bit integers in two 64-bit lanes: of each four products in a row the
// first two go to lane 0, the others to lane 1.
class ProductSums16 {
 public:
  using D = Full<int16_t>;

  TZM_INLINE void Add(Vec<D> a, Vec<D> b) {
#if HWY_ARCH_ARM_A64
    sums_ = vpadalq_s32(sums_, vmull_s16(vget_low_s16(a.raw), vget_low_s16(b.raw)));
    sums_ = vpadalq_s32(sums_, vmull_high_s16(a.raw, b.raw));
#else
    // A pair of products lies in [-2^31 + 2^16, 2^31]; with 2^31 - 1 added it is an unsigned number.
    const hn::Repartition<uint32_t, D> d32;
    const Vec<decltype(d32)> pairs{TZM_X86(madd_epi16)(a.raw, b.raw)};
    const auto biased = hn::BitCast(D64(), hn::Add(pairs, hn::Set(d32, kBias)));
    even_ = hn::Add(even_, hn::And(biased, hn::Set(D64(), 0xffffffff)));
    odd_ = hn::Add(odd_, hn::ShiftRight<32>(biased));
    pairs_ += hn::Lanes(D64());
#endif
  }
  TZM_INLINE int64_t Lane(int which) const {
#if HWY_ARCH_ARM_A64
    return which == 0 ? vgetq_lane_s64(sums_, 0) : vgetq_lane_s64(sums_, 1);
#else
    return static_cast<int64_t>(hn::GetLane(hn::SumOfLanes(D64(), which == 0 ? even_ : odd_)) - pairs_ * kBias);
#endif
  }

 private:
#if HWY_ARCH_ARM_A64
  int64x2_t sums_ = vdupq_n_s64(0);
#else
  using D64 = hn::Repartition<uint64_t, D>;
  static constexpr uint32_t kBias = 0x7fffffff;
  Vec<D64> even_ = hn::Zero(D64()), odd_ = hn::Zero(D64());
  uint64_t pairs_ = 0;
#endif
};

// Adds the sum of each two neighbours to a lane of twice their width. The lanes have room for
// kPairSums registers.
constexpr size_t kPairSums = size_t{1} << 15;
TZM_INLINE Vec<Full<int32_t>> AddPairs(Vec<Full<int32_t>> sums, Vec<Full<int16_t>> v) {
#if HWY_ARCH_ARM_A64
  return Vec<Full<int32_t>>(vpadalq_s16(sums.raw, v.raw));
#else
  return hn::Add(sums, Vec<Full<int32_t>>{TZM_X86(madd_epi16)(v.raw, TZM_X86(set1_epi16)(1))});
#endif
}
TZM_INLINE Vec<Full<uint32_t>> AddPairs(Vec<Full<uint32_t>> sums, Vec<Full<uint16_t>> v) {
#if HWY_ARCH_ARM_A64
  return Vec<Full<uint32_t>>(vpadalq_u16(sums.raw, v.raw));
#else
  const Full<uint32_t> d;
  const auto pairs = hn::BitCast(d, v);
  return hn::Add(hn::Add(sums, hn::And(pairs, hn::Set(d, 0xffff))), hn::ShiftRight<16>(pairs));
#endif
}

// The sum of 32-bit lanes as a 64-bit integer.
template <class V>
TZM_INLINE auto WideSum(V v) {
  const hn::Half<hn::DFromV<V>> half;
  const hn::RepartitionToWide<hn::DFromV<V>> wide;
  const auto low = hn::PromoteTo(wide, hn::LowerHalf(half, v)), high = hn::PromoteTo(wide, hn::UpperHalf(half, v));
  return hn::GetLane(hn::SumOfLanes(wide, hn::Add(low, high)));
}

// {a0*b0 + a1*b1, a2*b2 + a3*b3} in binary64, each product rounded and then each sum.
using FourInts = hn::FixedTag<int32_t, 4>;
using TwoDoubles = hn::FixedTag<double, 2>;
TZM_INLINE Vec<TwoDoubles> PairSumsOfProducts(Vec<FourInts> a, Vec<FourInts> b) {
#if HWY_ARCH_ARM_A64
  const auto low = vcvtq_f64_s64(vmull_s32(vget_low_s32(a.raw), vget_low_s32(b.raw)));
  const auto high = vcvtq_f64_s64(vmull_high_s32(a.raw, b.raw));
  return Vec<TwoDoubles>(vpaddq_f64(low, high));
#else  // the factors are exact in binary64, so their product rounds as the integer product would
  const hn::FixedTag<double, 4> d;
  const auto products = hn::Mul(hn::PromoteTo(d, a), hn::PromoteTo(d, b));
  const auto low = hn::LowerHalf(products), high = hn::UpperHalf(TwoDoubles(), products);
  return hn::Add(hn::ConcatEven(TwoDoubles(), high, low), hn::ConcatOdd(TwoDoubles(), high, low));
#endif
}

}  // namespace tzm
