// Dot products: the sum of src1[i] * src2[i] in a fixed order.
#include <signal_tzm/reduce.h>

#include "frame/call.h"
#include "frame/scale.h"
#include "frame/sum.h"

using namespace tzm;

namespace {

// The order of a sum of dot products: kStep elements a step, kLanes lanes.
template <class Sum, size_t kLanes, size_t kStep = kLanes>
using InLanes = OrderedSum<LaneArray<Sum, kLanes>, kStep, HalvesFirst>;
template <class Sum, size_t kLanes, size_t kStep = kLanes>
using InComplexLanes = OrderedSum<ComplexLanes<LaneArray<Sum, kLanes>>, kStep, HalvesFirst>;

// ---- Real by real ----

// One fused step a product.
template <class Order, class T>
auto RealDot(const T* a, const T* b, size_t len) {
  using Lanes = typename Order::Lanes;
  using Sum = typename Order::Element;
  return Order::Of(
      len,
      [=](size_t i, Lanes& sum) TZM_LAMBDA { sum = MulAdd(LoadLanes<Lanes>(a + i), LoadLanes<Lanes>(b + i), sum); },
      [=](size_t i, Sum& sum) TZM_LAMBDA { sum = Fma(Sum(LoadElement(a + i)), Sum(LoadElement(b + i)), sum); });
}

// ---- Complex by complex ----

// A product in two roundings, added in a third: re fma(ar, br, -(ai*bi)), im fma(ar, bi, ai*br).
template <class Part, class Real>
TZM_INLINE void AddProduct(Part a, Part b, Complex<Real>& sum) {
  const Real ar = a.re, ai = a.im, br = b.re, bi = b.im;
  sum.re += Fma(ar, br, -(ai * bi));
  sum.im += Fma(ar, bi, ai * br);
}

template <class Order, class T>
auto ComplexDot(const T* a, const T* b, size_t len) {
  using Lanes = typename Order::Lanes;
  using Part = decltype(Lanes::re);
  return Order::Of(
      len,
      [=](size_t i, Lanes& sum) TZM_LAMBDA {
        Part ar, ai, br, bi;
        Part::LoadComplex(Parts(a + i), ar, ai);
        Part::LoadComplex(Parts(b + i), br, bi);
        sum.re = sum.re + MulSub(ar, br, ai * bi);
        sum.im = sum.im + MulAdd(ar, bi, ai * br);
      },
      [=](size_t i, auto& sum) TZM_LAMBDA { AddProduct(LoadElement(a + i), LoadElement(b + i), sum); });
}

// Widened to binary64: every product of parts is exact, and in the body goes straight into the accumulator.
template <class Order>
auto WideComplexDot(const Orva32fc* a, const Orva32fc* b, size_t len) {
  using Lanes = typename Order::Lanes;
  using Part = decltype(Lanes::re);
  const hn::FixedTag<float, 4> d4;
  const hn::FixedTag<float, 2> d2;
  return Order::template Of<4, 4>(  // a step a turn: the chains of the sums are the limit
      len,
      [=](size_t i, Lanes& sum) TZM_LAMBDA {
        Vec<decltype(d4)> part[4];
        hn::LoadInterleaved2(d4, Parts(a + i), part[0], part[1]);
        hn::LoadInterleaved2(d4, Parts(b + i), part[2], part[3]);
        const auto two = [&](auto half) TZM_LAMBDA {
          const Part ar = {half(part[0])}, ai = {half(part[1])}, br = {half(part[2])}, bi = {half(part[3])};
          sum.re = NegMulAdd(ai, bi, MulAdd(ar, br, sum.re));
          sum.im = MulAdd(ai, br, MulAdd(ar, bi, sum.im));
        };
        const typename Part::D wide;
        two([&](auto v) TZM_LAMBDA { return hn::PromoteTo(wide, hn::LowerHalf(d2, v)); });
        two([&](auto v) TZM_LAMBDA { return hn::PromoteTo(wide, hn::UpperHalf(d2, v)); });
      },
      [=](size_t i, Complex<double>& sum) TZM_LAMBDA { AddProduct(LoadElement(a + i), LoadElement(b + i), sum); });
}

// ---- Real by complex ----

// The parts of complex samples in lanes of their own type or of a wider one.
template <class Part, class T>
TZM_INLINE void LoadComplexLanes(const T* from, Part& re, Part& im) {
  using Narrow = LaneArray<T, Part::kRegisters * Part::kWidth>;
  if constexpr (std::is_same_v<Narrow, Part>) {
    Part::LoadComplex(from, re, im);
  } else {
    Narrow narrowRe, narrowIm;
    Narrow::LoadComplex(from, narrowRe, narrowIm);
    const typename Part::D wide;
    re.v[0] = hn::PromoteTo(wide, narrowRe.v[0]);
    im.v[0] = hn::PromoteTo(wide, narrowIm.v[0]);
  }
}

template <class Order, class Real, class T>
auto RealComplexDot(const Real* a, const T* b, size_t len) {
  using Lanes = typename Order::Lanes;
  using Part = decltype(Lanes::re);
  using Sum = typename Order::Element;
  return Order::Of(
      len,
      [=](size_t i, Lanes& sum) TZM_LAMBDA {
        const Part real = LoadLanes<Part>(a + i);
        Part br, bi;
        LoadComplexLanes(Parts(b + i), br, bi);
        sum.re = MulAdd(br, real, sum.re);
        sum.im = MulAdd(bi, real, sum.im);
      },
      [=](size_t i, Complex<Sum>& sum) TZM_LAMBDA {
        const Sum real = LoadElement(a + i);
        const T z = LoadElement(b + i);
        sum = {Fma(Sum(z.re), real, sum.re), Fma(Sum(z.im), real, sum.im)};
      });
}

// ---- Integers, summed in binary64 ----

constexpr size_t kStep16 = 8, kStep32 = 4;

// Sum of whole steps of 8 products of 16-bit integers: lane 0 takes (p0+p4)+(p1+p5) of each step, lane 1
// (p2+p6)+(p3+p7), each lane rounding after every step.
double Steps16(const Orva16s* a, const Orva16s* b, size_t body) {
  // A step adds at most 2^32 to a lane, so for 2^21 steps no lane can round: integers give the same sum.
  constexpr size_t kExact = kStep16 << 21;
  const size_t exact = std::min(body, kExact);
  ProductSums16 sums;
  ReduceRegisters(exact, [&](auto va, auto vb) TZM_LAMBDA { sums.Add(va, vb); }, [] {}, a, b);
  double lane[2] = {static_cast<double>(sums.Lane(0)), static_cast<double>(sums.Lane(1))};
  for (size_t i = exact; i < body; i += kStep16) {
    int64_t add[2] = {0, 0};
    for (size_t k = 0; k < kStep16; ++k) add[k / 2 % 2] += LoadElement(a + i + k) * LoadElement(b + i + k);
    lane[0] += static_cast<double>(add[0]);
    lane[1] += static_cast<double>(add[1]);
  }
  return (lane[0] + lane[1]) + 0.0;
}

// Sum of whole steps of 4 products with a 32-bit factor, each product rounded to binary64.
template <class A>
double Steps32(const A* a, const Orva32s* b, size_t body) {
  const FourInts d;
  using Lanes = LaneArray<double, 2>;
  const auto load = [&](const A* from) TZM_LAMBDA {
    if constexpr (std::is_same_v<A, Orva32s>) return hn::LoadU(d, from);
    else return hn::PromoteTo(d, hn::LoadU(hn::Rebind<A, FourInts>(), from));
  };
  return InLanes<double, 2, kStep32>::Of<kStep32>(
      body,
      [=](size_t i, Lanes& sum) TZM_LAMBDA {
        sum = sum + Lanes{{PairSumsOfProducts(load(a + i), hn::LoadU(d, b + i))}};
      },
      [](size_t, double&) {});
}

double Dot16(const Orva16s* a, const Orva16s* b, size_t len) {
  double sum = 0;
  BodyAndTail<kStep16>(
      len, [&](size_t body, const Orva16s* x, const Orva16s* y) { sum = Steps16(x, y, body); },
      [&](size_t count, const Orva16s* x, const Orva16s* y) {
        for (size_t i = 0; i < count; ++i) sum += static_cast<double>(LoadElement(x + i) * LoadElement(y + i));
      },
      a, b);
  return sum;
}

// The factor goes onto the folded body once and onto one operand of each product of the tail. A body
// that did not run counts as 0, so an infinite factor makes it NaN, which is stored as 0.
template <size_t kStep, class A, class B, class Steps>
Orva32s ScaledDot(const A* a, const B* b, size_t len, double scale, Steps steps) {
  const double factor = ScaleFactor(scale);
  double sum = factor * 0.0;
  BodyAndTail<kStep>(
      len, [&](size_t body, const A* x, const B* y) { sum = factor * steps(x, y, body); },
      [&](size_t count, const A* x, const B* y) {
        for (size_t i = 0; i < count; ++i)
          sum = Fma(LoadElement(x + i) * factor, static_cast<double>(LoadElement(y + i)), sum);
      },
      a, b);
  return RoundSaturate<Orva32s>(sum);
}

// ---- Integers, summed exactly modulo 2^64 ----

// Real and imaginary sum of complex `b` times `a`, which is complex or, duplicated, real; the parts of `b` are masked
// apart.
template <class A>
Complex<int64_t> IntegerComplexDot(const A* a, const Orva16sc* b, size_t len) {
  constexpr bool kComplex = std::is_same_v<A, Orva16sc>;
  const ProductSums16::D d;
  const hn::Repartition<uint32_t, decltype(d)> d32;
  const auto real = hn::BitCast(d, hn::Set(d32, 0x0000ffff));
  ProductSums16 reSum, imSum, crossed;  // of br, of bi, and of both with the parts of `a` exchanged
  ReduceSteps<hn::MaxLanes(d) / 2>(
      len,
      [&](const A* x, const Orva16sc* y) TZM_LAMBDA {
        const auto vb = hn::LoadU(d, Parts(y));
        Vec<decltype(d)> va;
        if constexpr (kComplex) {
          va = hn::LoadU(d, Parts(x));
          crossed.Add(hn::BitCast(d, hn::RotateRight<16>(hn::BitCast(d32, va))), vb);
        } else {
          const hn::Rebind<uint16_t, decltype(d32)> narrow;
          const auto wide = hn::PromoteTo(d32, hn::LoadU(narrow, reinterpret_cast<const uint16_t*>(x)));
          va = hn::BitCast(d, hn::Or(wide, hn::ShiftLeft<16>(wide)));
        }
        reSum.Add(va, hn::And(real, vb));
        imSum.Add(va, hn::AndNot(real, vb));
      },
      [] {}, a, b);
  const auto total = [](const ProductSums16& sums) TZM_LAMBDA {
    return static_cast<uint64_t>(sums.Lane(0)) + static_cast<uint64_t>(sums.Lane(1));
  };
  uint64_t re = total(reSum), im = total(imSum);
  if constexpr (kComplex) {
    re -= im;
    im = total(crossed);
  }
  return {static_cast<int64_t>(re), static_cast<int64_t>(im)};
}

}  // namespace

OrvaStatus ORVAS_DotProd_32f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva32f* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(RealDot<InLanes<Orva32f, 8>>(src1, src2, len), result);
}

OrvaStatus ORVAS_DotProd_64f(const Orva64f* src1, const Orva64f* src2, int32_t len, Orva64f* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(RealDot<InLanes<Orva64f, 2>>(src1, src2, len), result);
}

OrvaStatus ORVAS_DotProd_32f64f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva64f* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(RealDot<InLanes<Orva64f, 2>>(src1, src2, len), result);
}

OrvaStatus ORVAS_DotProd_32fc(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva32fc* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(ComplexDot<InComplexLanes<Orva32f, 8>>(src1, src2, len), result);
}

OrvaStatus ORVAS_DotProd_64fc(const Orva64fc* src1, const Orva64fc* src2, int32_t len, Orva64fc* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(ComplexDot<InComplexLanes<Orva64f, 4>>(src1, src2, len), result);
}

OrvaStatus ORVAS_DotProd_32fc64fc(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva64fc* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(WideComplexDot<InComplexLanes<Orva64f, 2, 4>>(src1, src2, len), result);
}

OrvaStatus ORVAS_DotProd_32f32fc(const Orva32f* src1, const Orva32fc* src2, int32_t len, Orva32fc* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(RealComplexDot<InComplexLanes<Orva32f, 8>>(src1, src2, len), result);
}

OrvaStatus ORVAS_DotProd_32f32fc64fc(const Orva32f* src1, const Orva32fc* src2, int32_t len, Orva64fc* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(RealComplexDot<InComplexLanes<Orva64f, 2, 4>>(src1, src2, len), result);
}

OrvaStatus ORVAS_DotProd_64f64fc(const Orva64f* src1, const Orva64fc* src2, int32_t len, Orva64fc* result) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  return Give(RealComplexDot<InComplexLanes<Orva64f, 2, 4>>(src1, src2, len), result);
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
  return Give(ScaledDot<kStep16>(src1, src2, len, scale, Steps16), result);
}

OrvaStatus ORVAS_DotProd_16s32s32s_S(const Orva16s* src1, const Orva32s* src2, int32_t len, Orva32s* result,
                                     double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return Give(ScaledDot<kStep32>(src1, src2, len, scale, Steps32<Orva16s>), result);
}

OrvaStatus ORVAS_DotProd_32s_S(const Orva32s* src1, const Orva32s* src2, int32_t len, Orva32s* result,
                               double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, result)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return Give(ScaledDot<kStep32>(src1, src2, len, scale, Steps32<Orva32s>), result);
}
