// Norms of one array and of the difference of two: largest magnitude, sum of magnitudes, root of the sum
// of squares. One set of kernels serves both.
#include <signal_tzm/companion.h>
#include <signal_tzm/reduce.h>

#include "frame/call.h"
#include "frame/scale.h"
#include "frame/sum.h"

using namespace tzm;

namespace {

// ---- What a norm is taken of ----

// The elements of an array, by the real part type of a complex one.
template <class T>
struct Elements {
  const T* src;

  TZM_INLINE T At(size_t i) const { return LoadElement(src + i); }
  template <class D>
  TZM_INLINE Vec<D> Load(D d, size_t i) const { return hn::LoadU(d, src + i); }
  template <class L>
  TZM_INLINE L LoadLanes(size_t i) const { return L::Load(src + i); }
  template <class D>  // in any order
  TZM_INLINE void LoadParts(D d, size_t i, Vec<D>& re, Vec<D>& im) const { tzm::LoadParts(d, src + 2 * i, re, im); }
  template <class L>
  TZM_INLINE void LoadComplexLanes(size_t i, L& re, L& im) const { L::LoadComplex(src + 2 * i, re, im); }
};

// The differences of the elements of two arrays.
template <class X>
struct Differences {
  X a, b;

  TZM_INLINE auto At(size_t i) const { return a.At(i) - b.At(i); }
  template <class D>
  TZM_INLINE Vec<D> Load(D d, size_t i) const { return hn::Sub(a.Load(d, i), b.Load(d, i)); }
  template <class L>
  TZM_INLINE L LoadLanes(size_t i) const { return a.template LoadLanes<L>(i) - b.template LoadLanes<L>(i); }
  template <class D>
  TZM_INLINE void LoadParts(D d, size_t i, Vec<D>& re, Vec<D>& im) const {
    Vec<D> otherRe, otherIm;
    a.LoadParts(d, i, re, im);
    b.LoadParts(d, i, otherRe, otherIm);
    re = hn::Sub(re, otherRe);
    im = hn::Sub(im, otherIm);
  }
  template <class L>
  TZM_INLINE void LoadComplexLanes(size_t i, L& re, L& im) const {
    L otherRe, otherIm;
    a.LoadComplexLanes(i, re, im);
    b.LoadComplexLanes(i, otherRe, otherIm);
    re = re - otherRe;
    im = im - otherIm;
  }
};

Elements<Orva32f> Of(const Orva32f* src) { return {src}; }
Elements<Orva64f> Of(const Orva64f* src) { return {src}; }
Elements<Orva32f> Of(const Orva32fc* src) { return {Parts(src)}; }
Elements<Orva64f> Of(const Orva64fc* src) { return {Parts(src)}; }
template <class T>
auto Of(const T* src1, const T* src2) {
  return Differences<decltype(Of(src1))>{Of(src1), Of(src2)};
}

// The order of a sum of norms: kStep elements a step, kLanes lanes.
template <class Sum, size_t kLanes, size_t kStep = kLanes, class Fold = NeighboursFirst<>>
using InLanes = OrderedSum<LaneArray<Sum, kLanes>, kStep, Fold>;

// Real part squared onto the rounded square of the imaginary part.
template <class X>
TZM_INLINE auto SquaredMagnitude(const X& x, size_t i) {
  const auto re = x.At(2 * i), im = x.At(2 * i + 1);
  return Fma(re, re, im * im);
}

// ---- Greatest magnitudes ----

// The greatest of the magnitudes; NaN if any of them is. magnitudes(d, x, i) gives a register of them, of the elements
// of x from i on, in any order.
template <class T, class Magnitudes, class... Src>
T BodyMaximum(size_t len, Magnitudes magnitudes, const Src*... src) {
  const Full<T> d;
  constexpr size_t kLanes = hn::MaxLanes(d), kUnroll = 4;
  const auto zero = hn::Zero(d);
  Vec<decltype(d)> best[kUnroll] = {zero, zero, zero, zero};
  ForEach<kUnroll * kLanes, 1>(len, [&](const Src*... from) TZM_LAMBDA {
    const auto x = Of(from...);
    Unrolled<kUnroll>([&](auto k) TZM_LAMBDA { best[k] = MaxMagnitude(best[k], magnitudes(d, x, k * kLanes)); });
  }, src...);
  T lane[kLanes];
  hn::StoreU(MaxMagnitude(MaxMagnitude(best[0], best[1]), MaxMagnitude(best[2], best[3])), d, lane);
  T result = 0;
  for (const T each : lane) {
    if (each != each) return each;
    if (each > result) result = each;
  }
  return result;
}

// A NaN of the body of whole steps stays, one of the tail is passed over. element(x, i) gives one magnitude.
template <size_t kStep, class Magnitudes, class Element, class... Src>
auto Maximum(size_t len, Magnitudes magnitudes, Element element, const Src*... src) {
  using T = decltype(Of(src...).At(0));
  T result = 0;
  BodyAndTail<kStep>(
      len, [&](size_t count, const Src*... from) { result = BodyMaximum<T>(count, magnitudes, from...); },
      [&](size_t count, const Src*... from) {
        const auto x = Of(from...);
        for (size_t i = 0; i < count; ++i) {
          const T magnitude = element(x, i);
          if (magnitude > result) result = magnitude;
        }
      },
      src...);
  return result;
}

template <size_t kStep, class... Src>
auto RealMaximum(size_t len, const Src*... src) {
  return Maximum<kStep>(
      len, [](auto d, const auto& x, size_t i) TZM_LAMBDA { return hn::Abs(x.Load(d, i)); },
      [](const auto& x, size_t i) TZM_LAMBDA { return std::fabs(x.At(i)); }, src...);
}

// Root of the greatest squared magnitude.
template <size_t kStep, class... Src>
double ComplexMaximum(size_t len, const Src*... src) {
  const auto squared = Maximum<kStep>(
      len,
      [](auto d, const auto& x, size_t i) TZM_LAMBDA {
        Vec<decltype(d)> re, im;
        x.LoadParts(d, i, re, im);
        return hn::MulAdd(re, re, hn::Mul(im, im));
      },
      [](const auto& x, size_t i) TZM_LAMBDA { return SquaredMagnitude(x, i); }, src...);
  return sqrt(static_cast<double>(squared));
}

// ---- Sums of magnitudes and of squares ----

template <class Order, class X>
auto MagnitudeSum(const X& x, size_t len) {
  using Lanes = typename Order::Lanes;
  return Order::Of(
      len, [=](size_t i, Lanes& sum) TZM_LAMBDA { sum = sum + Abs(x.template LoadLanes<Lanes>(i)); },
      [=](size_t i, auto& sum) TZM_LAMBDA { sum += std::fabs(x.At(i)); });
}

// Each square is added in one fused step.
template <class Order, class X>
auto SquareSum(const X& x, size_t len) {
  using Lanes = typename Order::Lanes;
  return Order::Of(
      len,
      [=](size_t i, Lanes& sum) TZM_LAMBDA {
        const Lanes v = x.template LoadLanes<Lanes>(i);
        sum = MulAdd(v, v, sum);
      },
      [=](size_t i, auto& sum) TZM_LAMBDA {
        const auto v = x.At(i);
        sum = Fma(v, v, sum);
      });
}

// With binary32 parts the body takes binary32 roots and widens them; the tail widens the square and takes a binary64
// root.
template <class Order, class X>
double ComplexMagnitudeSum(const X& x, size_t len) {
  using T = decltype(x.At(0));
  using Wide = typename Order::Lanes;
  using Lanes = LaneArray<T, Order::kBlock>;
  return Order::template Of<Order::kBlock>(
      len,
      [=](size_t i, Wide& sum) TZM_LAMBDA {
        Lanes re, im;
        x.LoadComplexLanes(i, re, im);
        const Lanes root = Sqrt(MulAdd(re, re, im * im));
        if constexpr (std::is_same_v<T, double>) {
          sum = sum + root;
        } else {
          const typename Wide::D wide;
          const hn::Half<typename Lanes::D> half;
          sum = sum + Wide{{hn::PromoteTo(wide, hn::LowerHalf(half, root.v[0]))}};
          sum = sum + Wide{{hn::PromoteTo(wide, hn::UpperHalf(half, root.v[0]))}};
        }
      },
      [=](size_t i, double& sum) TZM_LAMBDA { sum += sqrt(static_cast<double>(SquaredMagnitude(x, i))); });
}

// Root of the sum of squares: the body in lanes of the source's precision, two fused steps each, the
// tail's squared magnitudes plainly added in binary64.
struct WidenedNeighboursFirst {
  template <class Lanes>
  TZM_INLINE double operator()(const Lanes& lanes) const { return lanes.FoldPairs(); }
};
template <class T, size_t kLanes>
using InSourceLanes = InLanes<T, kLanes, kLanes, WidenedNeighboursFirst>;

template <class Order, class X>
double ComplexLength(const X& x, size_t len) {
  using Lanes = typename Order::Lanes;
  return sqrt(Order::Of(
      len,
      [=](size_t i, Lanes& sum) TZM_LAMBDA {
        Lanes re, im;
        x.LoadComplexLanes(i, re, im);
        sum = MulAdd(im, im, MulAdd(re, re, sum));
      },
      [=](size_t i, double& sum) TZM_LAMBDA { sum += SquaredMagnitude(x, i); }));
}

// ---- 16-bit integers, exactly ----

// Magnitudes of one register of samples, or of the differences of two: 0 to 65535.
template <class V>
TZM_INLINE auto Magnitudes(V v) {
  return hn::BitCast(Full<uint16_t>(), hn::Abs(v));
}
template <class V>
TZM_INLINE auto Magnitudes(V a, V b) {
  return hn::BitCast(Full<uint16_t>(), hn::Sub(hn::Max(a, b), hn::Min(a, b)));
}

template <class... T>
int32_t IntegerMaximum(size_t len, const T*... src) {
  const Full<uint16_t> d;
  auto best = hn::Zero(d), other = best;
  ReduceRegisters(
      len,
      [&](auto... v) TZM_LAMBDA {
        const auto next = hn::Max(other, Magnitudes(v...));  // two maxima in turn: half the latency
        other = best;
        best = next;
      },
      [] {}, src...);
  return hn::GetLane(hn::MaxOfLanes(d, hn::Max(best, other)));
}

template <class... T>
int64_t IntegerMagnitudeSum(size_t len, const T*... src) {
  NarrowSum<uint32_t> pairs;
  ReduceRegisters<kPairSums>(
      len, [&](auto... v) TZM_LAMBDA { pairs.lanes = AddPairs(pairs.lanes, Magnitudes(v...)); },
      [&]() TZM_LAMBDA { pairs.Flush(); }, src...);
  return static_cast<int64_t>(pairs.total);
}

int64_t IntegerSquareSum(size_t len, const Orva16s* src) {
  ProductSums16 squares;
  ReduceRegisters(len, [&](auto v) TZM_LAMBDA { squares.Add(v, v); }, [] {}, src);
  return squares.Lane(0) + squares.Lane(1);
}

// A magnitude m has 16 bits without a sign, so s = m - 2^15 is squared: m^2 = s^2 + 2^16 s + 2^30. Where
// the last register is filled up with zeros, s^2 + 2^16 s is -2^30.
int64_t IntegerSquareSum(size_t len, const Orva16s* src1, const Orva16s* src2) {
  const Full<int16_t> d;
  ProductSums16 squares;
  NarrowSum<int32_t> shifted;
  ReduceRegisters<kPairSums>(
      len,
      [&](auto a, auto b) TZM_LAMBDA {
        const auto s = hn::Xor(hn::BitCast(d, Magnitudes(a, b)), hn::Set(d, std::numeric_limits<int16_t>::min()));
        squares.Add(s, s);
        shifted.lanes = AddPairs(shifted.lanes, s);
      },
      [&]() TZM_LAMBDA { shifted.Flush(); }, src1, src2);
  const size_t padded = (len + hn::Lanes(d) - 1) / hn::Lanes(d) * hn::Lanes(d);
  return squares.Lane(0) + squares.Lane(1) + shifted.total * 0x10000 + static_cast<int64_t>(padded) * 0x40000000;
}

// The sum in the 32 bits that its members have for it.
int32_t Wrapped(int64_t sum) { return static_cast<int32_t>(sum); }

// ---- Scaled results ----

// Deliberately truncated toward zero, unlike all other scaled results; saturated; NaN gives 0.
template <class T, class F>
T TruncateSaturate(F value) {
  using Limits = std::numeric_limits<T>;
  if (value >= static_cast<F>(Limits::max())) return Limits::max();
  if (value <= static_cast<F>(Limits::min())) return Limits::min();
  return value != value ? 0 : static_cast<T>(value);
}

template <class T>
OrvaStatus GiveScaled(double value, double factor, T* norm) {
  return Give(TruncateSaturate<T>(value * factor), norm);
}

}  // namespace

// ---- Norms ----

OrvaStatus ORVAS_Norm_Inf_16s32f(const Orva16s* src, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(static_cast<Orva32f>(IntegerMaximum(len, src)), norm);
}

OrvaStatus ORVAS_Norm_Inf_32f(const Orva32f* src, int32_t len, Orva32f* norm) {
  return ORVAS_MaxAbs_32f(src, len, norm);
}

OrvaStatus ORVAS_Norm_Inf_64f(const Orva64f* src, int32_t len, Orva64f* norm) {
  return ORVAS_MaxAbs_64f(src, len, norm);
}

OrvaStatus ORVAS_Norm_Inf_32fc32f(const Orva32fc* src, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(static_cast<Orva32f>(ComplexMaximum<4>(len, src)), norm);
}

OrvaStatus ORVAS_Norm_Inf_64fc64f(const Orva64fc* src, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(ComplexMaximum<2>(len, src), norm);
}

OrvaStatus ORVAS_Norm_Inf_16s32s_S(const Orva16s* src, int32_t len, Orva32s* norm, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(IntegerMaximum(len, src), ScaleFactor(scale), norm);
}

OrvaStatus ORVAS_Norm_L1_16s32f(const Orva16s* src, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(static_cast<Orva32f>(Wrapped(IntegerMagnitudeSum(len, src))), norm);
}

OrvaStatus ORVAS_Norm_L1_32f(const Orva32f* src, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(MagnitudeSum<InLanes<Orva32f, 4>>(Of(src), len), norm);
}

OrvaStatus ORVAS_Norm_L1_64f(const Orva64f* src, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(MagnitudeSum<InLanes<Orva64f, 2>>(Of(src), len), norm);
}

OrvaStatus ORVAS_Norm_L1_32fc64f(const Orva32fc* src, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(ComplexMagnitudeSum<InLanes<Orva64f, 2, 4>>(Of(src), len), norm);
}

OrvaStatus ORVAS_Norm_L1_64fc64f(const Orva64fc* src, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(ComplexMagnitudeSum<InLanes<Orva64f, 2>>(Of(src), len), norm);
}

OrvaStatus ORVAS_Norm_L1_16s32s_S(const Orva16s* src, int32_t len, Orva32s* norm, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(Wrapped(IntegerMagnitudeSum(len, src)), ScaleFactor(scale), norm);
}

OrvaStatus ORVAS_Norm_L1_16s64s_S(const Orva16s* src, int32_t len, Orva64s* norm, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(static_cast<double>(IntegerMagnitudeSum(len, src)), ScaleFactor(scale), norm);
}

OrvaStatus ORVAS_Norm_L2_16s32f(const Orva16s* src, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(static_cast<Orva32f>(sqrt(static_cast<double>(IntegerSquareSum(len, src)))), norm);
}

OrvaStatus ORVAS_Norm_L2_32f(const Orva32f* src, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(std::sqrt(SquareSum<InLanes<Orva32f, 4>>(Of(src), len)), norm);
}

OrvaStatus ORVAS_Norm_L2_64f(const Orva64f* src, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(std::sqrt(SquareSum<InLanes<Orva64f, 2>>(Of(src), len)), norm);
}

OrvaStatus ORVAS_Norm_L2_32fc64f(const Orva32fc* src, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(ComplexLength<InSourceLanes<Orva32f, 4>>(Of(src), len), norm);
}

OrvaStatus ORVAS_Norm_L2_64fc64f(const Orva64fc* src, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(ComplexLength<InSourceLanes<Orva64f, 2>>(Of(src), len), norm);
}

OrvaStatus ORVAS_Norm_L2_16s32s_S(const Orva16s* src, int32_t len, Orva32s* norm, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  // Deliberately a binary32 factor, which beyond that range is infinite or zero.
  return GiveScaled(sqrt(static_cast<double>(IntegerSquareSum(len, src))), FloatFactor(scale), norm);
}

OrvaStatus ORVAS_Norm_L2Sqr_16s64s_S(const Orva16s* src, int32_t len, Orva64s* norm, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(static_cast<double>(IntegerSquareSum(len, src)), ScaleFactor(scale), norm);
}

// ---- Norm differences ----

OrvaStatus ORVAS_NormDiff_Inf_16s32f(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(static_cast<Orva32f>(IntegerMaximum(len, src1, src2)), norm);
}

OrvaStatus ORVAS_NormDiff_Inf_32f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(RealMaximum<4>(len, src1, src2), norm);
}

OrvaStatus ORVAS_NormDiff_Inf_64f(const Orva64f* src1, const Orva64f* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(RealMaximum<2>(len, src1, src2), norm);
}

OrvaStatus ORVAS_NormDiff_Inf_32fc32f(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(static_cast<Orva32f>(ComplexMaximum<8>(len, src1, src2)), norm);
}

OrvaStatus ORVAS_NormDiff_Inf_64fc64f(const Orva64fc* src1, const Orva64fc* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(ComplexMaximum<2>(len, src1, src2), norm);
}

OrvaStatus ORVAS_NormDiff_Inf_16s32s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32s* norm,
                                       double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  // Deliberately all in binary32.
  const Orva32f maximum = static_cast<Orva32f>(IntegerMaximum(len, src1, src2));
  return Give(TruncateSaturate<Orva32s>(maximum * FloatFactor(scale)), norm);
}

OrvaStatus ORVAS_NormDiff_L1_16s32f(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(static_cast<Orva32f>(Wrapped(IntegerMagnitudeSum(len, src1, src2))), norm);
}

OrvaStatus ORVAS_NormDiff_L1_32f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(MagnitudeSum<InLanes<Orva32f, 4>>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_L1_64f(const Orva64f* src1, const Orva64f* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(MagnitudeSum<InLanes<Orva64f, 2>>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_L1_32fc64f(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(ComplexMagnitudeSum<InLanes<Orva64f, 2, 4>>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_L1_64fc64f(const Orva64fc* src1, const Orva64fc* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(ComplexMagnitudeSum<InLanes<Orva64f, 2>>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_L1_16s32s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32s* norm,
                                      double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(Wrapped(IntegerMagnitudeSum(len, src1, src2)), ScaleFactor(scale), norm);
}

OrvaStatus ORVAS_NormDiff_L1_16s64s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva64s* norm,
                                      double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(static_cast<double>(IntegerMagnitudeSum(len, src1, src2)), ScaleFactor(scale), norm);
}

OrvaStatus ORVAS_NormDiff_L2_16s32f(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(static_cast<Orva32f>(sqrt(static_cast<double>(IntegerSquareSum(len, src1, src2)))), norm);
}

OrvaStatus ORVAS_NormDiff_L2_32f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(std::sqrt(SquareSum<InLanes<Orva32f, 4>>(Of(src1, src2), len)), norm);
}

OrvaStatus ORVAS_NormDiff_L2_64f(const Orva64f* src1, const Orva64f* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(std::sqrt(SquareSum<InLanes<Orva64f, 2>>(Of(src1, src2), len)), norm);
}

OrvaStatus ORVAS_NormDiff_L2_32fc64f(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(ComplexLength<InSourceLanes<Orva32f, 4>>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_L2_64fc64f(const Orva64fc* src1, const Orva64fc* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(ComplexLength<InSourceLanes<Orva64f, 2>>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_L2_16s32s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32s* norm,
                                      double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(sqrt(static_cast<double>(IntegerSquareSum(len, src1, src2))), ScaleFactor(scale), norm);
}

OrvaStatus ORVAS_NormDiff_L2Sqr_16s64s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva64s* norm,
                                         double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(static_cast<double>(IntegerSquareSum(len, src1, src2)), ScaleFactor(scale), norm);
}
