// Norms of one array and of the difference of two: largest magnitude, sum of magnitudes, root of the sum
// of squares. One set of kernels serves both.
#include <signal_tzm/companion.h>
#include <signal_tzm/reduce.h>

#include "frame/call.h"
#include "frame/drive.h"
#include "frame/result.h"
#include "frame/scale.h"

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

// Real part squared onto the rounded square of the imaginary part.
template <class X>
TZM_INLINE auto SquaredMagnitude(const X& x, size_t i) {
  const auto re = x.At(2 * i), im = x.At(2 * i + 1);
  return Fma(re, re, im * im);
}

// ---- Real floats ----

// Largest of `body` magnitudes, a multiple of kStep; NaN if any is NaN. load(d, i) gives those from i on,
// in any order.
template <class T, size_t kStep, class Load>
T BodyMaximum(size_t body, Load load) {
  const Full<T> d;
  const hn::CappedTag<T, kStep> step;
  constexpr size_t kWide = hn::MaxLanes(d), kNarrow = hn::MaxLanes(step), kUnroll = 4;
  const auto zero = hn::Zero(d);
  Vec<decltype(d)> best[kUnroll] = {zero, zero, zero, zero};
  size_t i = 0;
  for (; body - i >= kUnroll * kWide; i += kUnroll * kWide) {
    [&]<size_t... k>(std::index_sequence<k...>) TZM_LAMBDA {
      ((best[k] = MaxMagnitude(best[k], load(d, i + k * kWide))), ...);
    }(std::make_index_sequence<kUnroll>());
  }
  for (; body - i >= kWide; i += kWide) best[0] = MaxMagnitude(best[0], load(d, i));
  T lane[kWide + kNarrow];
  hn::StoreU(MaxMagnitude(MaxMagnitude(best[0], best[1]), MaxMagnitude(best[2], best[3])), d, lane);
  auto rest = hn::Zero(step);
  for (; i < body; i += kNarrow) rest = MaxMagnitude(rest, load(step, i));
  hn::StoreU(rest, step, lane + kWide);
  T result = 0;
  for (const T each : lane) {
    if (each != each) return each;
    if (each > result) result = each;
  }
  return result;
}

// A NaN of the body stays, one of the tail is passed over.
template <size_t kStep, class X>
auto Maximum(const X& x, size_t len) {
  using T = decltype(x.At(0));
  const size_t body = len - len % kStep;
  T result = BodyMaximum<T, kStep>(body, [&](auto d, size_t i) TZM_LAMBDA { return hn::Abs(x.Load(d, i)); });
  for (size_t i = body; i < len; ++i) {
    const T magnitude = std::fabs(x.At(i));
    if (magnitude > result) result = magnitude;
  }
  return result;
}

// Sum of magnitudes, element i of the body in lane i mod kLanes.
template <size_t kLanes, class X>
auto MagnitudeSum(const X& x, size_t len) {
  using T = decltype(x.At(0));
  using Lanes = LaneArray<T, kLanes>;
  const size_t body = len - len % kLanes;
  Lanes acc = Lanes::Set(0);
  for (size_t i = 0; i < body; i += kLanes) acc = acc + Abs(x.template LoadLanes<Lanes>(i));
  T sum = acc.FoldPairs();
  for (size_t i = body; i < len; ++i) sum += std::fabs(x.At(i));
  return sum;
}

// Sum of squares in the same lanes, each added in one fused step.
template <size_t kLanes, class X>
auto SquareSum(const X& x, size_t len) {
  using T = decltype(x.At(0));
  using Lanes = LaneArray<T, kLanes>;
  const size_t body = len - len % kLanes;
  Lanes acc = Lanes::Set(0);
  for (size_t i = 0; i < body; i += kLanes) {
    const Lanes v = x.template LoadLanes<Lanes>(i);
    acc = MulAdd(v, v, acc);
  }
  T sum = acc.FoldPairs();
  for (size_t i = body; i < len; ++i) {
    const T v = x.At(i);
    sum = Fma(v, v, sum);
  }
  return sum;
}

// ---- Complex floats ----

// Root of the largest squared magnitude: NaN in the body stays, in the tail is passed over.
template <size_t kStep, class X>
double ComplexMaximum(const X& x, size_t len) {
  using T = decltype(x.At(0));
  const size_t body = len - len % kStep;
  T result = BodyMaximum<T, kStep>(body, [&](auto d, size_t i) TZM_LAMBDA {
    Vec<decltype(d)> re, im;
    x.LoadParts(d, i, re, im);
    return hn::MulAdd(re, re, hn::Mul(im, im));
  });
  for (size_t i = body; i < len; ++i) {
    const T squared = SquaredMagnitude(x, i);
    if (squared > result) result = squared;
  }
  return sqrt(static_cast<double>(result));
}

// Sum of magnitudes in two binary64 lanes. With binary32 parts the body takes binary32 roots and widens
// them; the tail widens the square and takes a binary64 root.
template <size_t kStep, class X>
double ComplexMagnitudeSum(const X& x, size_t len) {
  using T = decltype(x.At(0));
  using Lanes = LaneArray<T, kStep>;
  using Wide = LaneArray<double, 2>;
  const size_t body = len - len % kStep;
  Wide acc = Wide::Set(0);
  for (size_t i = 0; i < body; i += kStep) {
    Lanes re, im;
    x.LoadComplexLanes(i, re, im);
    const Lanes root = Sqrt(MulAdd(re, re, im * im));
    if constexpr (std::is_same_v<T, double>) {
      acc = acc + root;
    } else {
      const Wide::D wide;
      const hn::Half<typename Lanes::D> half;
      acc = acc + Wide{{hn::PromoteTo(wide, hn::LowerHalf(half, root.v[0]))}};
      acc = acc + Wide{{hn::PromoteTo(wide, hn::UpperHalf(half, root.v[0]))}};
    }
  }
  double sum = acc.FoldPairs();
  for (size_t i = body; i < len; ++i) sum += sqrt(static_cast<double>(SquaredMagnitude(x, i)));
  return sum;
}

// Root of the sum of squares: the body in lanes of the source's precision, two fused steps each, the
// tail's squared magnitudes plainly added in binary64.
template <size_t kLanes, class X>
double ComplexLength(const X& x, size_t len) {
  using Lanes = LaneArray<decltype(x.At(0)), kLanes>;
  const size_t body = len - len % kLanes;
  Lanes acc = Lanes::Set(0);
  for (size_t i = 0; i < body; i += kLanes) {
    Lanes re, im;
    x.LoadComplexLanes(i, re, im);
    acc = MulAdd(im, im, MulAdd(re, re, acc));
  }
  double sum = acc.FoldPairs();
  for (size_t i = body; i < len; ++i) sum += SquaredMagnitude(x, i);
  return sqrt(sum);
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
  ForRegisters(
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
  const auto zero = hn::Zero(Full<uint32_t>());
  auto pairs = zero;
  uint64_t sum = 0;
  ForRegisters<kPairSums>(
      len, [&](auto... v) TZM_LAMBDA { pairs = AddPairs(pairs, Magnitudes(v...)); },
      [&]() TZM_LAMBDA {
        sum += WideSum(pairs);
        pairs = zero;
      },
      src...);
  return static_cast<int64_t>(sum);
}

int64_t IntegerSquareSum(size_t len, const Orva16s* src) {
  ProductSums16 squares;
  ForRegisters(len, [&](auto v) TZM_LAMBDA { squares.Add(v, v); }, [] {}, src);
  return squares.Lane(0) + squares.Lane(1);
}

// A magnitude m has 16 bits without a sign, so s = m - 2^15 is squared: m^2 = s^2 + 2^16 s + 2^30. Where
// the last register is filled up with zeros, s^2 + 2^16 s is -2^30.
int64_t IntegerSquareSum(size_t len, const Orva16s* src1, const Orva16s* src2) {
  const Full<int16_t> d;
  const auto zero = hn::Zero(Full<int32_t>());
  ProductSums16 squares;
  auto pairs = zero;
  int64_t shifted = 0;
  ForRegisters<kPairSums>(
      len,
      [&](auto a, auto b) TZM_LAMBDA {
        const auto s = hn::Xor(hn::BitCast(d, Magnitudes(a, b)), hn::Set(d, std::numeric_limits<int16_t>::min()));
        squares.Add(s, s);
        pairs = AddPairs(pairs, s);
      },
      [&]() TZM_LAMBDA {
        shifted += WideSum(pairs);
        pairs = zero;
      },
      src1, src2);
  const size_t padded = (len + hn::Lanes(d) - 1) / hn::Lanes(d) * hn::Lanes(d);
  return squares.Lane(0) + squares.Lane(1) + shifted * 0x10000 + static_cast<int64_t>(padded) * 0x40000000;
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

double Factor(double scale) { return ScaleFactor(scale); }

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
  return Give(static_cast<Orva32f>(ComplexMaximum<4>(Of(src), len)), norm);
}

OrvaStatus ORVAS_Norm_Inf_64fc64f(const Orva64fc* src, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(ComplexMaximum<2>(Of(src), len), norm);
}

OrvaStatus ORVAS_Norm_Inf_16s32s_S(const Orva16s* src, int32_t len, Orva32s* norm, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(IntegerMaximum(len, src), Factor(scale), norm);
}

OrvaStatus ORVAS_Norm_L1_16s32f(const Orva16s* src, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(static_cast<Orva32f>(Wrapped(IntegerMagnitudeSum(len, src))), norm);
}

OrvaStatus ORVAS_Norm_L1_32f(const Orva32f* src, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(MagnitudeSum<4>(Of(src), len), norm);
}

OrvaStatus ORVAS_Norm_L1_64f(const Orva64f* src, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(MagnitudeSum<2>(Of(src), len), norm);
}

OrvaStatus ORVAS_Norm_L1_32fc64f(const Orva32fc* src, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(ComplexMagnitudeSum<4>(Of(src), len), norm);
}

OrvaStatus ORVAS_Norm_L1_64fc64f(const Orva64fc* src, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(ComplexMagnitudeSum<2>(Of(src), len), norm);
}

OrvaStatus ORVAS_Norm_L1_16s32s_S(const Orva16s* src, int32_t len, Orva32s* norm, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(Wrapped(IntegerMagnitudeSum(len, src)), Factor(scale), norm);
}

OrvaStatus ORVAS_Norm_L1_16s64s_S(const Orva16s* src, int32_t len, Orva64s* norm, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(static_cast<double>(IntegerMagnitudeSum(len, src)), Factor(scale), norm);
}

OrvaStatus ORVAS_Norm_L2_16s32f(const Orva16s* src, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(static_cast<Orva32f>(sqrt(static_cast<double>(IntegerSquareSum(len, src)))), norm);
}

OrvaStatus ORVAS_Norm_L2_32f(const Orva32f* src, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(std::sqrt(SquareSum<4>(Of(src), len)), norm);
}

OrvaStatus ORVAS_Norm_L2_64f(const Orva64f* src, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(std::sqrt(SquareSum<2>(Of(src), len)), norm);
}

OrvaStatus ORVAS_Norm_L2_32fc64f(const Orva32fc* src, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(ComplexLength<4>(Of(src), len), norm);
}

OrvaStatus ORVAS_Norm_L2_64fc64f(const Orva64fc* src, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  return Give(ComplexLength<2>(Of(src), len), norm);
}

OrvaStatus ORVAS_Norm_L2_16s32s_S(const Orva16s* src, int32_t len, Orva32s* norm, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  // Deliberately a binary32 factor, which beyond that range is infinite or zero.
  const Orva32f factor = static_cast<Orva32f>(Factor(scale));
  return GiveScaled(sqrt(static_cast<double>(IntegerSquareSum(len, src))), factor, norm);
}

OrvaStatus ORVAS_Norm_L2Sqr_16s64s_S(const Orva16s* src, int32_t len, Orva64s* norm, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(static_cast<double>(IntegerSquareSum(len, src)), Factor(scale), norm);
}

// ---- Norm differences ----

OrvaStatus ORVAS_NormDiff_Inf_16s32f(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(static_cast<Orva32f>(IntegerMaximum(len, src1, src2)), norm);
}

OrvaStatus ORVAS_NormDiff_Inf_32f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(Maximum<4>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_Inf_64f(const Orva64f* src1, const Orva64f* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(Maximum<2>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_Inf_32fc32f(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(static_cast<Orva32f>(ComplexMaximum<8>(Of(src1, src2), len)), norm);
}

OrvaStatus ORVAS_NormDiff_Inf_64fc64f(const Orva64fc* src1, const Orva64fc* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(ComplexMaximum<2>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_Inf_16s32s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32s* norm,
                                       double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  // Deliberately all in binary32.
  const Orva32f maximum = static_cast<Orva32f>(IntegerMaximum(len, src1, src2));
  return Give(TruncateSaturate<Orva32s>(maximum * static_cast<Orva32f>(Factor(scale))), norm);
}

OrvaStatus ORVAS_NormDiff_L1_16s32f(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(static_cast<Orva32f>(Wrapped(IntegerMagnitudeSum(len, src1, src2))), norm);
}

OrvaStatus ORVAS_NormDiff_L1_32f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(MagnitudeSum<4>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_L1_64f(const Orva64f* src1, const Orva64f* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(MagnitudeSum<2>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_L1_32fc64f(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(ComplexMagnitudeSum<4>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_L1_64fc64f(const Orva64fc* src1, const Orva64fc* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(ComplexMagnitudeSum<2>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_L1_16s32s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32s* norm,
                                      double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(Wrapped(IntegerMagnitudeSum(len, src1, src2)), Factor(scale), norm);
}

OrvaStatus ORVAS_NormDiff_L1_16s64s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva64s* norm,
                                      double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(static_cast<double>(IntegerMagnitudeSum(len, src1, src2)), Factor(scale), norm);
}

OrvaStatus ORVAS_NormDiff_L2_16s32f(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(static_cast<Orva32f>(sqrt(static_cast<double>(IntegerSquareSum(len, src1, src2)))), norm);
}

OrvaStatus ORVAS_NormDiff_L2_32f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva32f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(std::sqrt(SquareSum<4>(Of(src1, src2), len)), norm);
}

OrvaStatus ORVAS_NormDiff_L2_64f(const Orva64f* src1, const Orva64f* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(std::sqrt(SquareSum<2>(Of(src1, src2), len)), norm);
}

OrvaStatus ORVAS_NormDiff_L2_32fc64f(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(ComplexLength<4>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_L2_64fc64f(const Orva64fc* src1, const Orva64fc* src2, int32_t len, Orva64f* norm) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  return Give(ComplexLength<2>(Of(src1, src2), len), norm);
}

OrvaStatus ORVAS_NormDiff_L2_16s32s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32s* norm,
                                      double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(sqrt(static_cast<double>(IntegerSquareSum(len, src1, src2))), Factor(scale), norm);
}

OrvaStatus ORVAS_NormDiff_L2Sqr_16s64s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva64s* norm,
                                         double scale) {
  if (OrvaStatus status = CheckArrays(len, src1, src2, norm)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return GiveScaled(static_cast<double>(IntegerSquareSum(len, src1, src2)), Factor(scale), norm);
}
