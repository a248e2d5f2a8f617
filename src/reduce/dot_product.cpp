// Dot products: the sum of src1[i] * src2[i] in a fixed order.
#include <signal_tzm/reduce.h>

#include "frame/call.h"
#include "frame/result.h"
#include "frame/scale.h"
#include "frame/vector.h"

using namespace tzm;

namespace {

// ---- One accumulator ----

// Sum held in lanes of the result's type, one fused step a product; tail fused onto the folded sum.
template <size_t kLanes, class Src, class Sum>
Sum RealDot(const Src* a, const Src* b, size_t len) {
  using Lanes = LaneArray<Sum, kLanes>;
  const auto load = [](const Src* from) TZM_LAMBDA {
    if constexpr (std::is_same_v<Src, Sum>) return Lanes::Load(from);
    else return Lanes::LoadWiden(from);
  };
  const size_t body = len - len % kLanes;
  Sum sum = 0;
  if (body != 0) {
    Lanes acc = Lanes::Set(0);
    for (size_t i = 0; i < body; i += kLanes) acc = MulAdd(load(a + i), load(b + i), acc);
    sum = acc.FoldHalves() + Sum(0);
  }
  for (size_t i = body; i < len; ++i)
    sum = Fma(Sum(LoadElement(a + i)), Sum(LoadElement(b + i)), sum);
  return sum;
}

// ---- Complex by complex ----

// A product in two roundings, added in a third: re fma(ar, br, -(ai*bi)), im fma(ar, bi, ai*br).
template <class Real>
void AddProduct(Real ar, Real ai, Real br, Real bi, Complex<Real>& sum) {
  sum.re += Fma(ar, br, -(ai * bi));
  sum.im += Fma(ar, bi, ai * br);
}

template <size_t kLanes, class Real>
Complex<Real> ComplexDot(const Real* a, const Real* b, size_t len) {
  using Lanes = LaneArray<Real, kLanes>;
  const size_t body = len - len % kLanes;
  Complex<Real> sum = {0, 0};
  if (body != 0) {
    Lanes re = Lanes::Set(0), im = Lanes::Set(0);
    for (size_t i = 0; i < body; i += kLanes) {
      Lanes ar, ai, br, bi;
      Lanes::LoadComplex(a + 2 * i, ar, ai);
      Lanes::LoadComplex(b + 2 * i, br, bi);
      re = re + MulSub(ar, br, ai * bi);
      im = im + MulAdd(ar, bi, ai * br);
    }
    sum = {re.FoldHalves() + Real(0), im.FoldHalves() + Real(0)};
  }
  for (size_t i = body; i < len; ++i)
    AddProduct(LoadElement(a + 2 * i), LoadElement(a + 2 * i + 1), LoadElement(b + 2 * i), LoadElement(b + 2 * i + 1),
               sum);
  return sum;
}

// Widened to binary64: every product of parts is exact and goes straight into the accumulator.
Complex<double> WideComplexDot(const float* a, const float* b, size_t len) {
  using Lanes = LaneArray<double, 2>;
  const hn::FixedTag<float, 4> d4;
  const hn::FixedTag<float, 2> d2;
  const size_t body = len - len % 4;
  Complex<double> sum = {0, 0};
  if (body != 0) {
    Lanes re = Lanes::Set(0), im = Lanes::Set(0);
    for (size_t i = 0; i < body; i += 4) {
      Vec<decltype(d4)> part[4];
      hn::LoadInterleaved2(d4, a + 2 * i, part[0], part[1]);
      hn::LoadInterleaved2(d4, b + 2 * i, part[2], part[3]);
      const auto step = [&](auto half) TZM_LAMBDA {
        const Lanes ar = {half(part[0])}, ai = {half(part[1])}, br = {half(part[2])}, bi = {half(part[3])};
        re = NegMulAdd(ai, bi, MulAdd(ar, br, re));
        im = MulAdd(ai, br, MulAdd(ar, bi, im));
      };
      const Lanes::D wide;
      step([&](auto v) TZM_LAMBDA { return hn::PromoteTo(wide, hn::LowerHalf(d2, v)); });
      step([&](auto v) TZM_LAMBDA { return hn::PromoteTo(wide, hn::UpperHalf(d2, v)); });
    }
    sum = {re.FoldHalves() + 0.0, im.FoldHalves() + 0.0};
  }
  for (size_t i = body; i < len; ++i)
    AddProduct<double>(LoadElement(a + 2 * i), LoadElement(a + 2 * i + 1), LoadElement(b + 2 * i),
                       LoadElement(b + 2 * i + 1), sum);
  return sum;
}

// ---- Real by complex ----

// kLanes lanes a part, kSteps fused steps a round.
template <size_t kLanes, size_t kSteps, class A, class B, class Sum>
Complex<Sum> RealComplexDot(const A* a, const B* b, size_t len) {
  using Lanes = LaneArray<Sum, kLanes>;
  const size_t body = len - len % (kLanes * kSteps);
  Complex<Sum> sum = {0, 0};
  if (body != 0) {
    Lanes re = Lanes::Set(0), im = Lanes::Set(0);
    for (size_t i = 0; i < body; i += kLanes) {
      Lanes real, br, bi;
      if constexpr (std::is_same_v<A, Sum>) real = Lanes::Load(a + i);
      else real = Lanes::LoadWiden(a + i);
      if constexpr (std::is_same_v<B, Sum>) {
        Lanes::LoadComplex(b + 2 * i, br, bi);
      } else {
        LaneArray<B, kLanes> narrowRe, narrowIm;
        LaneArray<B, kLanes>::LoadComplex(b + 2 * i, narrowRe, narrowIm);
        const typename Lanes::D wide;
        br.v[0] = hn::PromoteTo(wide, narrowRe.v[0]);
        bi.v[0] = hn::PromoteTo(wide, narrowIm.v[0]);
      }
      re = MulAdd(br, real, re);
      im = MulAdd(bi, real, im);
    }
    sum = {re.FoldHalves() + Sum(0), im.FoldHalves() + Sum(0)};
  }
  for (size_t i = body; i < len; ++i) {
    const Sum real = LoadElement(a + i);
    sum.re = Fma(Sum(LoadElement(b + 2 * i)), real, sum.re);
    sum.im = Fma(Sum(LoadElement(b + 2 * i + 1)), real, sum.im);
  }
  return sum;
}

// ---- Integers, summed in binary64 ----

// Sum of the whole steps of 8 products of 16-bit integers: lane 0 takes (p0+p4)+(p1+p5) of each step,
// lane 1 (p2+p6)+(p3+p7), each lane rounding after every step.
double Steps16(const Orva16s* a, const Orva16s* b, size_t body) {
  // A step adds at most 2^32 to a lane, so for 2^21 steps no lane can round: integers give the same sum.
  constexpr size_t kStep = 8, kExact = kStep << 21;
  const ProductSums16::D d;
  const size_t exact = HWY_MIN(body, kExact);
  ProductSums16 sums;
  size_t i = 0;
  for (; i + hn::Lanes(d) <= exact; i += hn::Lanes(d)) sums.Add(hn::LoadU(d, a + i), hn::LoadU(d, b + i));
  if (i < exact) {  // whole steps that do not fill a register
    int16_t rest[2][hn::MaxLanes(d)] = {};
    std::memcpy(rest[0], a + i, (exact - i) * sizeof(*a));
    std::memcpy(rest[1], b + i, (exact - i) * sizeof(*b));
    sums.Add(hn::LoadU(d, rest[0]), hn::LoadU(d, rest[1]));
    i = exact;
  }
  double lane[2] = {static_cast<double>(sums.Lane(0)), static_cast<double>(sums.Lane(1))};
  for (; i < body; i += kStep) {
    int64_t add[2] = {0, 0};
    for (size_t k = 0; k < kStep; ++k) add[k / 2 % 2] += LoadElement(a + i + k) * LoadElement(b + i + k);
    lane[0] += static_cast<double>(add[0]);
    lane[1] += static_cast<double>(add[1]);
  }
  return (lane[0] + lane[1]) + 0.0;
}

// Sum of the whole steps of 4 products with a 32-bit factor, each product rounded to binary64.
template <class A>
double Steps32(const A* a, const Orva32s* b, size_t body) {
  const FourInts d;
  const auto load = [&](const A* from) TZM_LAMBDA {
    if constexpr (std::is_same_v<A, Orva32s>) return hn::LoadU(d, from);
    else return hn::PromoteTo(d, hn::LoadU(hn::Rebind<A, FourInts>(), from));
  };
  LaneArray<double, 2> acc = LaneArray<double, 2>::Set(0);
  for (size_t i = 0; i < body; i += 4)
    acc = acc + LaneArray<double, 2>{{PairSumsOfProducts(load(a + i), hn::LoadU(d, b + i))}};
  return acc.FoldHalves() + 0.0;
}

double Dot16(const Orva16s* a, const Orva16s* b, size_t len) {
  const size_t body = len - len % 8;
  double sum = body != 0 ? Steps16(a, b, body) : 0.0;
  for (size_t i = body; i < len; ++i) sum += static_cast<double>(LoadElement(a + i) * LoadElement(b + i));
  return sum;
}

// The factor goes onto the folded body once and onto one operand of each product of the tail. A body
// that did not run counts as 0, so an infinite factor makes it NaN, which is stored as 0.
template <size_t kStep, class A, class B, class Steps>
Orva32s ScaledDot(const A* a, const B* b, size_t len, double scale, Steps steps) {
  const double factor = ScaleFactor(scale);
  const size_t body = len - len % kStep;
  double sum = factor * (body != 0 ? steps(a, b, body) : 0.0);
  for (size_t i = body; i < len; ++i)
    sum = Fma(LoadElement(a + i) * factor, static_cast<double>(LoadElement(b + i)), sum);
  return RoundSaturate<Orva32s>(sum);
}

// ---- Integers, summed exactly modulo 2^64 ----

// Real and imaginary sum of complex `b` times `a`, which is complex or, duplicated, real. The widest
// products are summed with the parts of `b` masked apart; the rest one by one.
template <class A>
Complex<int64_t> IntegerComplexDot(const A* a, const Orva16sc* b, size_t len) {
  constexpr bool kComplex = std::is_same_v<A, Orva16sc>;
  const ProductSums16::D d;
  const hn::Repartition<uint32_t, decltype(d)> d32;
  const auto real = hn::BitCast(d, hn::Set(d32, 0x0000ffff));
  ProductSums16 reSum, imSum, crossed;  // of br, of bi, and of both with the parts of `a` exchanged
  const size_t step = hn::Lanes(d) / 2;
  size_t i = 0;
  for (; i + step <= len; i += step) {
    const auto vb = hn::LoadU(d, Parts(b) + 2 * i);
    Vec<decltype(d)> va;
    if constexpr (kComplex) {
      va = hn::LoadU(d, Parts(a) + 2 * i);
      crossed.Add(hn::BitCast(d, hn::RotateRight<16>(hn::BitCast(d32, va))), vb);
    } else {
      const auto wide = hn::PromoteTo(d32, hn::LoadU(hn::Rebind<uint16_t, decltype(d32)>(),
                                                     reinterpret_cast<const uint16_t*>(a) + i));
      va = hn::BitCast(d, hn::Or(wide, hn::ShiftLeft<16>(wide)));
    }
    reSum.Add(va, hn::And(real, vb));
    imSum.Add(va, hn::AndNot(real, vb));
  }
  const auto total = [](const ProductSums16& sums) TZM_LAMBDA {
    return static_cast<uint64_t>(sums.Lane(0)) + static_cast<uint64_t>(sums.Lane(1));
  };
  uint64_t re = total(reSum), im = total(imSum);
  if constexpr (kComplex) {
    re -= im;
    im = total(crossed);
  }
  for (; i < len; ++i) {
    const Orva16sc vb = LoadElement(b + i);
    const A va = LoadElement(a + i);
    if constexpr (kComplex) {
      re += static_cast<int64_t>(va.re * vb.re) - static_cast<int64_t>(va.im * vb.im);
      im += static_cast<int64_t>(va.re * vb.im) + static_cast<int64_t>(va.im * vb.re);
    } else {
      re += static_cast<int64_t>(va * vb.re);
      im += static_cast<int64_t>(va * vb.im);
    }
  }
  return {static_cast<int64_t>(re), static_cast<int64_t>(im)};
}

}  // namespace

OrvaStatus ORVAS_DotProd_32f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva32f* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(RealDot<8, Orva32f, Orva32f>(src1, src2, len), result);
}

OrvaStatus ORVAS_DotProd_64f(const Orva64f* src1, const Orva64f* src2, int32_t len, Orva64f* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(RealDot<2, Orva64f, Orva64f>(src1, src2, len), result);
}

OrvaStatus ORVAS_DotProd_32f64f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva64f* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(RealDot<2, Orva32f, Orva64f>(src1, src2, len), result);
}

OrvaStatus ORVAS_DotProd_32fc(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva32fc* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(ComplexDot<8>(Parts(src1), Parts(src2), len), result);
}

OrvaStatus ORVAS_DotProd_64fc(const Orva64fc* src1, const Orva64fc* src2, int32_t len, Orva64fc* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(ComplexDot<4>(Parts(src1), Parts(src2), len), result);
}

OrvaStatus ORVAS_DotProd_32fc64fc(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva64fc* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(WideComplexDot(Parts(src1), Parts(src2), len), result);
}

OrvaStatus ORVAS_DotProd_32f32fc(const Orva32f* src1, const Orva32fc* src2, int32_t len, Orva32fc* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(RealComplexDot<8, 1, Orva32f, Orva32f, Orva32f>(src1, Parts(src2), len), result);
}

OrvaStatus ORVAS_DotProd_32f32fc64fc(const Orva32f* src1, const Orva32fc* src2, int32_t len, Orva64fc* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(RealComplexDot<2, 2, Orva32f, Orva32f, Orva64f>(src1, Parts(src2), len), result);
}

OrvaStatus ORVAS_DotProd_64f64fc(const Orva64f* src1, const Orva64fc* src2, int32_t len, Orva64fc* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(RealComplexDot<2, 2, Orva64f, Orva64f, Orva64f>(src1, Parts(src2), len), result);
}

OrvaStatus ORVAS_DotProd_16s32f(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32f* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(static_cast<Orva32f>(Dot16(src1, src2, len)), result);
}

OrvaStatus ORVAS_DotProd_16s64s(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva64s* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(RoundSaturate<Orva64s>(Dot16(src1, src2, len)), result);
}

OrvaStatus ORVAS_DotProd_16sc64sc(const Orva16sc* src1, const Orva16sc* src2, int32_t len, Orva64sc* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(IntegerComplexDot(src1, src2, len), result);
}

OrvaStatus ORVAS_DotProd_16s16sc64sc(const Orva16s* src1, const Orva16sc* src2, int32_t len, Orva64sc* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(IntegerComplexDot(src1, src2, len), result);
}

OrvaStatus ORVAS_DotProd_16s32s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32s* result,
                                  double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return Give(ScaledDot<8>(src1, src2, len, scale, Steps16), result);
}

OrvaStatus ORVAS_DotProd_16s32s32s_S(const Orva16s* src1, const Orva32s* src2, int32_t len, Orva32s* result,
                                     double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return Give(ScaledDot<4>(src1, src2, len, scale, Steps32<Orva16s>), result);
}

OrvaStatus ORVAS_DotProd_32s_S(const Orva32s* src1, const Orva32s* src2, int32_t len, Orva32s* result,
                               double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return Give(ScaledDot<4>(src1, src2, len, scale, Steps32<Orva32s>), result);
}
