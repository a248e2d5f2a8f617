// Exact products of narrow integers, real and complex, in lanes of twice the width.
#pragma once

#include "frame/vector.h"

namespace tzm {

// ---- Real ----

// Lanes of D, twice as wide as those that they come from, in two registers and in the machine's own order: on x86 they
// stay within their 128-bit blocks. Narrowing puts them back, with saturation.
template <class Wide>
class IntegerProducts {
 public:
  using D = Wide;

  TZM_INLINE IntegerProducts(Vec<D> low, Vec<D> high) : low_(low), high_(high) {}
  template <class F>
  TZM_INLINE IntegerProducts Each(const F& f) const { return {f(low_), f(high_)}; }

  TZM_INLINE Vec<Full<int16_t>> Narrow([[maybe_unused]] Full<int16_t> d) const {
#if HWY_ARCH_ARM_A64
    return NarrowPair(d, low_, high_);
#else
    return {TZM_X86(packs_epi32)(low_.raw, high_.raw)};
#endif
  }
  TZM_INLINE Vec<Full<uint16_t>> Narrow([[maybe_unused]] Full<uint16_t> d) const {
#if HWY_ARCH_ARM_A64
    return Vec<decltype(d)>(vqmovn_high_u32(vqmovn_u32(low_.raw), high_.raw));
#else  // the pack takes signed lanes
    const auto limit = hn::Set(D(), 0xffff);
    return {TZM_X86(packus_epi32)(hn::Min(low_, limit).raw, hn::Min(high_, limit).raw)};
#endif
  }
  TZM_INLINE Vec<Full<uint8_t>> Narrow([[maybe_unused]] Full<uint8_t> d) const {
#if HWY_ARCH_ARM_A64
    return Vec<decltype(d)>(vqmovn_high_u16(vqmovn_u16(low_.raw), high_.raw));
#else
    const auto limit = hn::Set(D(), 0xff);
    return {TZM_X86(packus_epi16)(hn::Min(low_, limit).raw, hn::Min(high_, limit).raw)};
#endif
  }

 private:
  Vec<D> low_, high_;
};

TZM_INLINE auto WideProducts(Vec<Full<uint8_t>> a, Vec<Full<uint8_t>> b) {
  using D = Full<uint16_t>;
#if HWY_ARCH_ARM_A64
  return IntegerProducts<D>{Vec<D>(vmull_u8(vget_low_u8(a.raw), vget_low_u8(b.raw))),
                            Vec<D>(vmull_high_u8(a.raw, b.raw))};
#else
  const D d;
  const Full<uint8_t> dn;
  const auto zero = hn::Zero(dn);
  const auto low = [&](auto v) TZM_LAMBDA { return hn::BitCast(d, hn::InterleaveLower(dn, v, zero)); };
  const auto high = [&](auto v) TZM_LAMBDA { return hn::BitCast(d, hn::InterleaveUpper(dn, v, zero)); };
  return IntegerProducts<D>{hn::Mul(low(a), low(b)), hn::Mul(high(a), high(b))};
#endif
}

#if HWY_ARCH_X86
// Wide lanes of the two halves, as the machine multiplies 16-bit lanes.
template <class D, class V>
TZM_INLINE IntegerProducts<D> JoinHalves(D d, V low, V high) {
  const hn::DFromV<V> dn;
  return {hn::BitCast(d, hn::InterleaveLower(dn, low, high)), hn::BitCast(d, hn::InterleaveUpper(dn, low, high))};
}
#endif

TZM_INLINE auto WideProducts(Vec<Full<uint16_t>> a, Vec<Full<uint16_t>> b) {
  using D = Full<uint32_t>;
#if HWY_ARCH_ARM_A64
  return IntegerProducts<D>{Vec<D>(vmull_u16(vget_low_u16(a.raw), vget_low_u16(b.raw))),
                            Vec<D>(vmull_high_u16(a.raw, b.raw))};
#else
  return JoinHalves(D(), hn::Mul(a, b), hn::MulHigh(a, b));
#endif
}

TZM_INLINE auto WideProducts(Vec<Full<int16_t>> a, Vec<Full<int16_t>> b) {
  using D = Full<int32_t>;
#if HWY_ARCH_ARM_A64
  return IntegerProducts<D>{Vec<D>(vmull_s16(vget_low_s16(a.raw), vget_low_s16(b.raw))),
                            Vec<D>(vmull_high_s16(a.raw, b.raw))};
#else
  return JoinHalves(D(), hn::Mul(a, b), hn::MulHigh(a, b));
#endif
}

TZM_INLINE auto WideProducts(Vec<Full<uint16_t>> a, Vec<Full<int16_t>> b) {
  using D = Full<int32_t>;
#if HWY_ARCH_ARM_A64
  const D d;
  const hn::Half<Full<int16_t>> half;
  const hn::Half<Full<uint16_t>> uhalf;
  const auto low = hn::Mul(hn::PromoteTo(d, hn::LowerHalf(uhalf, a)), hn::PromoteTo(d, hn::LowerHalf(half, b)));
  const auto high = hn::Mul(hn::PromoteTo(d, hn::UpperHalf(uhalf, a)), hn::PromoteTo(d, hn::UpperHalf(half, b)));
  return IntegerProducts<D>{low, high};
#else  // `a` taken as signed is short of 2^16 where its highest bit is set
  const auto as = hn::BitCast(Full<int16_t>(), a);
  return JoinHalves(D(), hn::Mul(as, b), hn::Add(hn::MulHigh(as, b), hn::And(hn::BroadcastSignBit(as), b)));
#endif
}

// The products of 32-bit lanes, each rounded once to binary64, in order.
TZM_INLINE Widened<Full<double>> RoundedProducts(Vec<Full<int32_t>> a, Vec<Full<int32_t>> b) {
  using D = Full<double>;
#if HWY_ARCH_ARM_A64
  return {Vec<D>(vcvtq_f64_s64(vmull_s32(vget_low_s32(a.raw), vget_low_s32(b.raw)))),
          Vec<D>(vcvtq_f64_s64(vmull_high_s32(a.raw, b.raw)))};
#else  // the factors are exact in binary64, so their product rounds as the integer product would
  const D d;
  const hn::Half<Full<int32_t>> half;
  return {hn::Mul(hn::PromoteTo(d, hn::LowerHalf(a)), hn::PromoteTo(d, hn::LowerHalf(b))),
          hn::Mul(hn::PromoteTo(d, hn::UpperHalf(half, a)), hn::PromoteTo(d, hn::UpperHalf(half, b)))};
#endif
}

// Scales them in binary64, rounds, saturates and stores.
TZM_INLINE void StoreScaledProducts(Widened<Full<double>> product, Vec<Full<double>> factor, int32_t* to) {
  const hn::Half<Full<int32_t>> half;
  hn::StoreU(RoundToInt32(hn::Mul(product.low, factor)), half, to);
  hn::StoreU(RoundToInt32(hn::Mul(product.high, factor)), half, to + hn::Lanes(half));
}

// ---- Complex ----
// a*b of kStep complex elements of 16- or 32-bit integers, scaled by `shift` and narrowed with saturation:
// re = ar*br - ai*bi, im = ai*br + ar*bi, in lanes of twice the width. The one sum that they cannot hold,
// `im` of four most negative parts, takes the largest value of the lane, which gives the same result
// after every shift.
template <class T>
class ComplexProduct {
  static constexpr bool kIs16 = sizeof(T) == 2;
  using D = Full<T>;

 public:
  using Wide = Full<std::conditional_t<kIs16, int32_t, int64_t>>;
#if HWY_ARCH_ARM_A64
  static constexpr size_t kStep = hn::MaxLanes(D());
  struct Operand {
    Vec<D> re, im;
  };
  static TZM_INLINE Operand Load(const T* from) {
    Operand v;
    LoadParts(D(), from, v.re, v.im);
    return v;
  }
  static TZM_INLINE Operand Set(T re, T im) { return {hn::Set(D(), re), hn::Set(D(), im)}; }

  template <class Shift>
  static TZM_INLINE void Store(Operand a, Operand b, const Shift& shift, T* to) {
    const D d;
    const auto ar = a.re.raw, ai = a.im.raw, br = b.re.raw, bi = b.im.raw;
    Vec<Wide> re[2], im[2];
    if constexpr (kIs16) {
      re[0].raw = vmlsl_s16(vmull_s16(vget_low_s16(ar), vget_low_s16(br)), vget_low_s16(ai), vget_low_s16(bi));
      re[1].raw = vmlsl_high_s16(vmull_high_s16(ar, br), ai, bi);
      im[0].raw = vqaddq_s32(vmull_s16(vget_low_s16(ai), vget_low_s16(br)),
                             vmull_s16(vget_low_s16(ar), vget_low_s16(bi)));
      im[1].raw = vqaddq_s32(vmull_high_s16(ai, br), vmull_high_s16(ar, bi));
    } else {
      re[0].raw = vmlsl_s32(vmull_s32(vget_low_s32(ar), vget_low_s32(br)), vget_low_s32(ai), vget_low_s32(bi));
      re[1].raw = vmlsl_high_s32(vmull_high_s32(ar, br), ai, bi);
      im[0].raw = vqaddq_s64(vmull_s32(vget_low_s32(ai), vget_low_s32(br)),
                             vmull_s32(vget_low_s32(ar), vget_low_s32(bi)));
      im[1].raw = vqaddq_s64(vmull_high_s32(ai, br), vmull_high_s32(ar, bi));
    }
    StoreParts(NarrowPair(d, shift(re[0]), shift(re[1])), NarrowPair(d, shift(im[0]), shift(im[1])), d, to);
  }
#else
  // One register of interleaved parts, its wide lanes one complex element each.
  static constexpr size_t kStep = hn::MaxLanes(D()) / 2;
  using Operand = Vec<D>;
  static TZM_INLINE Operand Load(const T* from) { return hn::LoadU(D(), from); }
  static TZM_INLINE Operand Set(T re, T im) { return hn::OddEven(hn::Set(D(), im), hn::Set(D(), re)); }

  template <class Shift>
  static TZM_INLINE void Store(Operand a, Operand b, const Shift& shift, T* to) {
    const D d;
    const Wide wide;
    Vec<Wide> re, im;
    if constexpr (kIs16) {
      // Pairs of products are summed at once; ar*br + ai*(-1-bi) is short of `re` by ai.
      const auto flipped = hn::Xor(b, hn::BitCast(d, hn::Set(wide, -65536)));
      const auto swapped = hn::BitCast(d, hn::RotateRight<16>(hn::BitCast(hn::Repartition<uint32_t, D>(), a)));
      re = hn::Add(Vec<Wide>{TZM_X86(madd_epi16)(a.raw, flipped.raw)}, hn::ShiftRight<16>(hn::BitCast(wide, a)));
      im.raw = TZM_X86(madd_epi16)(swapped.raw, b.raw);
    } else {
      const auto odd = [&](auto v) TZM_LAMBDA {
        return hn::BitCast(d, hn::ShiftRight<32>(hn::BitCast(hn::RebindToUnsigned<Wide>(), v)));
      };
      const auto ai = odd(a), bi = odd(b);
      re = hn::Sub(hn::MulEven(a, b), hn::MulEven(ai, bi));
      im = hn::Add(hn::MulEven(ai, b), hn::MulEven(a, bi));
    }
    // Only the sum that wrapped is the least value.
    const auto wrapped = hn::Eq(im, hn::Set(wide, std::numeric_limits<hn::TFromD<Wide>>::min()));
    im = hn::Xor(im, hn::VecFromMask(wide, wrapped));
    hn::StoreU(Interleave(shift(re), shift(im)), d, to);
  }

 private:
  static TZM_INLINE Vec<D> Interleave(Vec<Wide> re, Vec<Wide> im) {
    const D d;
    const Wide wide;
    if constexpr (kIs16) {
      return IntegerProducts<Wide>(hn::InterleaveLower(wide, re, im), hn::InterleaveUpper(wide, re, im)).Narrow(d);
    } else {
      const auto least = hn::Set(wide, std::numeric_limits<T>::min());
      const auto most = hn::Set(wide, std::numeric_limits<T>::max());
      const auto saturated = [&](auto v) TZM_LAMBDA { return hn::Min(hn::Max(v, least), most); };
      return hn::OddEven(hn::BitCast(d, hn::ShiftLeft<32>(saturated(im))), hn::BitCast(d, saturated(re)));
    }
  }
#endif
};

// a * conj(b) of kStep complex elements of 16-bit integers, exact, in lanes of binary64.
class ConjugateProduct {
  using D = Full<int16_t>;
  using Sums = Vec<Full<int32_t>>;

 public:
#if HWY_ARCH_ARM_A64
  static constexpr size_t kStep = hn::MaxLanes(D());
#else
  static constexpr size_t kStep = hn::MaxLanes(D()) / 2;
#endif
  using Operand = ComplexProduct<int16_t>::Operand;
  using Lanes = LaneArray<double, kStep>;

  Lanes re, im;  // ar*br + ai*bi, ai*br - ar*bi

  TZM_INLINE ConjugateProduct(Operand a, Operand b) {
#if HWY_ARCH_ARM_A64
    const auto ar = a.re.raw, ai = a.im.raw, br = b.re.raw, bi = b.im.raw;
    const auto low = [](int16x8_t x, int16x8_t y) TZM_LAMBDA { return vmull_s16(vget_low_s16(x), vget_low_s16(y)); };
    const auto sum = [](int32x4_t x, int32x4_t y, Vec<Lanes::D>* to) TZM_LAMBDA {
      to[0].raw = vcvtq_f64_s64(vaddl_s32(vget_low_s32(x), vget_low_s32(y)));
      to[1].raw = vcvtq_f64_s64(vaddl_high_s32(x, y));
    };
    const auto difference = [](int32x4_t x, int32x4_t y, Vec<Lanes::D>* to) TZM_LAMBDA {
      to[0].raw = vcvtq_f64_s64(vsubl_s32(vget_low_s32(x), vget_low_s32(y)));
      to[1].raw = vcvtq_f64_s64(vsubl_high_s32(x, y));
    };
    sum(low(ar, br), low(ai, bi), re.v);
    sum(vmull_high_s16(ar, br), vmull_high_s16(ai, bi), re.v + 2);
    difference(low(ai, br), low(ar, bi), im.v);
    difference(vmull_high_s16(ai, br), vmull_high_s16(ar, bi), im.v + 2);
#else
    // Only `re` can be 2^31, and never -2^31: less one it is a 32-bit integer. ai*br + ar*(-1-bi) is short of
    // `im` by ar.
    const D d;
    const Full<int32_t> wide;
    const auto flipped = hn::Xor(b, hn::BitCast(d, hn::Set(wide, -65536)));
    const auto swapped = hn::BitCast(d, hn::RotateRight<16>(hn::BitCast(hn::Repartition<uint32_t, D>(), a)));
    const auto ar = hn::ShiftRight<16>(hn::ShiftLeft<16>(hn::BitCast(wide, a)));
    const Sums lessOne = hn::Sub(Sums{TZM_X86(madd_epi16)(a.raw, b.raw)}, hn::Set(wide, 1));
    re = Widened(lessOne) + Lanes::Set(1.0);
    im = Widened(hn::Add(Sums{TZM_X86(madd_epi16)(swapped.raw, flipped.raw)}, ar));
#endif
  }

 private:
#if HWY_ARCH_X86
  static TZM_INLINE Lanes Widened(Sums v) {
    const hn::Half<Full<int32_t>> half;
    return {{hn::PromoteTo(Lanes::D(), hn::LowerHalf(half, v)), hn::PromoteTo(Lanes::D(), hn::UpperHalf(half, v))}};
  }
#endif
};

// Complex elements from parts in binary64, rounded to nearest, ties to even, and saturated; NaN gives 0.
TZM_INLINE void StoreRoundedParts(const ConjugateProduct::Lanes& re, const ConjugateProduct::Lanes& im, int16_t* to) {
  const Full<int16_t> d;
#if HWY_ARCH_ARM_A64
  const Full<int32_t> d32;
  const auto narrow = [=](const auto& part) TZM_LAMBDA {
    const auto pair = [&](size_t r) TZM_LAMBDA {
      return NarrowPair(d32, RoundToInt64(part.v[r]), RoundToInt64(part.v[r + 1]));
    };
    return NarrowPair(d, pair(0), pair(2));
  };
  StoreInterleaved(narrow(re), narrow(im), d, to);
#else
  const Full<int32_t> d32;
  const auto rounded = [=](const auto& part) TZM_LAMBDA {
    return hn::Combine(d32, RoundToInt32(part.v[1]), RoundToInt32(part.v[0]));
  };
  const auto even = rounded(re), odd = rounded(im);
  const IntegerProducts<Full<int32_t>> pairs(hn::InterleaveLower(d32, even, odd), hn::InterleaveUpper(d32, even, odd));
  hn::StoreU(pairs.Narrow(d), d, to);
#endif
}

}  // namespace tzm
