// Sums, means and sample standard deviations of whole arrays, in a fixed order.
#include <signal_tzm/reduce.h>

#include "frame/call.h"
#include "frame/calls.h"
#include "frame/scale.h"
#include "frame/sum.h"

using namespace tzm;

namespace {

// ---- Floating sums ----

// What is done to each sample before it is added: nothing, or a division.
struct Keep {
  template <class X>
  TZM_INLINE X operator()(X x) const { return x; }
};
struct DivideBy {
  Orva32f divisor;
  TZM_INLINE Orva32f operator()(Orva32f x) const { return x / divisor; }
  template <size_t kLanes>
  TZM_INLINE auto operator()(const LaneArray<Orva32f, kLanes>& x) const {
    return x / LaneArray<Orva32f, kLanes>::Set(divisor);
  }
};

// The order of a sum of samples: kStep of them a step, kLanes lanes for each of their parts.
template <class Sum, size_t kLanes, size_t kStep = kLanes, size_t kParts = 1>
using InLanes = OrderedSum<LaneArray<Sum, kLanes * kParts>, kStep, NeighboursFirst<kParts>>;

template <class Order, class T, class Map = Keep>
auto LaneSum(const T* src, size_t len, Map map = {}, typename Order::Element start = 0) {
  using Lanes = typename Order::Lanes;
  using Sum = typename Order::Element;
  return Order::template Of<Order::kLanes / kParts<T>>(
      len, [=](size_t i, Lanes& sum) TZM_LAMBDA { sum = sum + map(LoadLanes<Lanes>(Reals(src + i))); },
      [=](size_t i, auto& sum) TZM_LAMBDA {
        const T x = LoadElement(src + i);
        if constexpr (kIsComplex<T>) sum = {sum.re + map(Sum(x.re)), sum.im + map(Sum(x.im))};
        else sum += map(Sum(x));
      },
      start);
}

// Two lanes of complex numbers: of each 8 samples, lane 0 takes 0 and 1 before and 4 and 5 after its
// sum so far, lane 1 the others.
struct TwoNumbers {
  using Number = LaneArray<double, 2>;
  using D = Number::D;
  static constexpr size_t kWidth = 2, kRegisters = 1;
  Number lane[2];

  static TZM_INLINE TwoNumbers Set(double value) { return {{Number::Set(value), Number::Set(value)}}; }
};
struct AddNumbers {
  TZM_INLINE auto operator()(const TwoNumbers& numbers) const { return numbers.lane[0] + numbers.lane[1]; }
};
using InNumbers = OrderedSum<TwoNumbers, 8, AddNumbers>;

template <class Order>
Complex<double> NumberSum(const Orva64fc* src, size_t len) {
  using Number = TwoNumbers::Number;
  constexpr size_t kAhead = 4096, kLine = 64;
  const auto sum = Order::template Of<Order::kBlock>(
      len,
      [=](size_t i, TwoNumbers& numbers) TZM_LAMBDA {
        const double* const from = Parts(src + i);
        // Samples that are read once are asked for before their turn, and not kept.
        for (size_t line = 0; line < Order::kBlock * sizeof(Orva64fc); line += kLine)
          __builtin_prefetch(reinterpret_cast<const char*>(from) + kAhead + line, 0, 0);
        const auto pair = [&](size_t k) TZM_LAMBDA {
          return Number::Load(from + 2 * k) + Number::Load(from + 2 * k + 2);
        };
        numbers.lane[0] = (pair(0) + numbers.lane[0]) + pair(4);
        numbers.lane[1] = (pair(2) + numbers.lane[1]) + pair(6);
      },
      [=](size_t i, Number& number) TZM_LAMBDA { number = number + Number::Load(Parts(src + i)); });
  double part[2];
  sum.Store(part);
  return {part[0], part[1]};
}

// ---- Exact integer sums ----

int64_t IntegerSum(const Orva16s* src, size_t len) {
  NarrowSum<int32_t> pairs;
  ReduceRegisters<kPairSums>(
      len, [&](auto v) TZM_LAMBDA { pairs.lanes = AddPairs(pairs.lanes, v); },
      [&]() TZM_LAMBDA { pairs.Flush(); }, src);
  return pairs.total;
}

// The real sum is that of both parts less the imaginary one.
Complex<int64_t> IntegerSum(const Orva16sc* src, size_t len) {
  const Full<int32_t> d;
  NarrowSum<int32_t> both, im;
  ReduceRegisters<kPairSums>(
      2 * len,
      [&](auto v) TZM_LAMBDA {
        both.lanes = AddPairs(both.lanes, v);
        im.lanes = hn::Add(im.lanes, hn::ShiftRight<16>(hn::BitCast(d, v)));
      },
      [&]() TZM_LAMBDA {
        both.Flush();
        im.Flush();
      },
      Parts(src));
  return {both.total - im.total, im.total};
}

int64_t IntegerSum(const Orva32s* src, size_t len) {
  const Full<int64_t> d;
  auto low = hn::Zero(d), high = low;
  ReduceSteps<2 * hn::MaxLanes(d)>(
      len,
      [&](const Orva32s* from) TZM_LAMBDA {
        const auto v = LoadWidened(d, from);
        low = hn::Add(low, v.low);
        high = hn::Add(high, v.high);
      },
      [] {}, src);
  return hn::GetLane(hn::SumOfLanes(d, hn::Add(low, high)));
}

// The scaled sum, divided by `divisor` after the scaling, as an integer.
template <class Part>
Part Scaled(int64_t sum, double factor, double divisor) {
  return RoundSaturate<Part>(static_cast<double>(sum) * factor / divisor);
}
template <class Part>
Complex<Part> Scaled(Complex<int64_t> sum, double factor, double divisor) {
  return {Scaled<Part>(sum.re, factor, divisor), Scaled<Part>(sum.im, factor, divisor)};
}

// Sum over `divisor` of `len` integers, with the checks of a scaled member.
template <class Part, class Src, class Result>
OrvaStatus ScaledSum(const Src* src, int32_t len, int32_t divisor, Result* result, double scale) {
  if (OrvaStatus status = CheckArrays(len, src, result)) return status;
  if (OrvaStatus status = CheckScale(scale)) return status;
  return Give(Scaled<Part>(IntegerSum(src, len), ScaleFactor(scale), divisor), result);
}

// ---- Deviations ----

// Calls add(v) for each two neighbours of a step of samples, in order, widened to binary64.
template <size_t kStep, class Src, class Add>
TZM_INLINE void ForPairs(const Src* from, Add add) {
  if constexpr (std::is_same_v<Src, Orva16s>) {  // the whole step in one register
    const TwoDoubles d;
    const hn::FixedTag<int16_t, kStep> d16;
    const hn::Half<decltype(d16)> half16;
    const FourInts d32;
    const hn::Half<FourInts> half32;
    const auto four = [&](auto v) TZM_LAMBDA {
      const auto wide = hn::PromoteTo(d32, v);
      add(LaneArray<double, 2>{{hn::PromoteTo(d, hn::LowerHalf(half32, wide))}});
      add(LaneArray<double, 2>{{hn::PromoteTo(d, hn::UpperHalf(half32, wide))}});
    };
    const auto v = hn::LoadU(d16, from);
    four(hn::LowerHalf(half16, v));
    four(hn::UpperHalf(half16, v));
  } else {
    for (size_t k = 0; k < kStep; k += 2) add(LoadLanes<LaneArray<double, 2>>(from + k));
  }
}

// Sample standard deviation about `mean`.
template <class Order, class Src>
double Deviation(const Src* src, size_t len, double mean) {
  using Lanes = typename Order::Lanes;
  const Lanes means = Lanes::Set(mean);
  const double sum = Order::template Of<Order::kBlock>(
      len,
      [=](size_t i, Lanes& squares) TZM_LAMBDA {
        ForPairs<Order::kBlock>(src + i, [&](const Lanes& x) TZM_LAMBDA {
          const Lanes deviation = x - means;
          squares = MulAdd(deviation, deviation, squares);
        });
      },
      [=](size_t i, double& squares) TZM_LAMBDA {
        const double deviation = LoadElement(src + i) - mean;
        squares = Fma(deviation, deviation, squares);
      });
  return sqrt(sum / static_cast<double>(len - 1));
}

// The deviation about the mean that the caller was given; 0 if that is not finite.
template <class Real>
Real DeviationFromGiven(const Real* src, int32_t len, const Real* mean) {
  const double center = LoadElement(mean);
  if (!std::isfinite(center)) return 0;
  return static_cast<Real>(Deviation<InLanes<double, 2, 4>>(src, len, center));
}

// Unscaled throughout; mean and deviation are scaled and rounded at the end.
template <class Result>
OrvaStatus ScaledMeanStdDev(const Orva16s* src, int32_t len, Result* mean, Result* stdDev, double scale) {
  if (OrvaStatus status = CheckPointers(src, mean, stdDev)) return status;
  if (len < 2) return ORVA_STS_SIZE_ERR;
  if (OrvaStatus status = CheckScale(scale)) return status;
  const double factor = ScaleFactor(scale);
  const double center = static_cast<double>(IntegerSum(src, len)) / len;
  const double deviation = Deviation<InLanes<double, 2, 8>>(src, len, center);
  Give(RoundSaturate<Result>(center * factor), mean);
  return Give(RoundSaturate<Result>(deviation * factor), stdDev);
}

}  // namespace

OrvaStatus ORVAS_Sum_32f(const Orva32f* src, int32_t len, Orva32f* sum, int32_t hint) {
  if (OrvaStatus status = CheckArrays(len, src, sum)) return status;
  if (hint == ORVA_HINT_FAST) return Give(LaneSum<InLanes<Orva32f, 4>>(src, len), sum);
  return Give(static_cast<Orva32f>(LaneSum<InLanes<Orva64f, 2, 4>>(src, len)), sum);
}

OrvaStatus ORVAS_Sum_32fc(const Orva32fc* src, int32_t len, Orva32fc* sum, int32_t hint) {
  if (OrvaStatus status = CheckArrays(len, src, sum)) return status;
  if (hint == ORVA_HINT_FAST) return Give(LaneSum<InLanes<Orva32f, 4, 4, 2>>(src, len), sum);
  return Give(LaneSum<InLanes<Orva64f, 2, 4, 2>>(src, len), sum);
}

OrvaStatus ORVAS_Sum_64f(const Orva64f* src, int32_t len, Orva64f* sum) {
  if (OrvaStatus status = CheckArrays(len, src, sum)) return status;
  // Lanes that start at -0 are those that start with the first samples: -0 throughout stays -0.
  return Give(LaneSum<InLanes<Orva64f, 2>>(src, len, Keep(), len < 2 ? 0.0 : -0.0), sum);
}

OrvaStatus ORVAS_Sum_64fc(const Orva64fc* src, int32_t len, Orva64fc* sum) {
  if (OrvaStatus status = CheckArrays(len, src, sum)) return status;
  return Give(NumberSum<InNumbers>(src, len), sum);
}

OrvaStatus ORVAS_Sum_16s_S(const Orva16s* src, int32_t len, Orva16s* sum, double scale) {
  return ScaledSum<Orva16s>(src, len, 1, sum, scale);
}

OrvaStatus ORVAS_Sum_32s_S(const Orva32s* src, int32_t len, Orva32s* sum, double scale) {
  return ScaledSum<Orva32s>(src, len, 1, sum, scale);
}

OrvaStatus ORVAS_Sum_16s32s_S(const Orva16s* src, int32_t len, Orva32s* sum, double scale) {
  return ScaledSum<Orva32s>(src, len, 1, sum, scale);
}

OrvaStatus ORVAS_Sum_16sc_S(const Orva16sc* src, int32_t len, Orva16sc* sum, double scale) {
  return ScaledSum<Orva16s>(src, len, 1, sum, scale);
}

OrvaStatus ORVAS_Sum_16sc32sc_S(const Orva16sc* src, int32_t len, Orva32sc* sum, double scale) {
  return ScaledSum<Orva32s>(src, len, 1, sum, scale);
}

OrvaStatus ORVAS_Mean_32f(const Orva32f* src, int32_t len, Orva32f* mean, int32_t hint) {
  if (OrvaStatus status = CheckArrays(len, src, mean)) return status;
  const DivideBy divide = {static_cast<Orva32f>(len)};
  if (hint == ORVA_HINT_FAST) return Give(LaneSum<InLanes<Orva32f, 4>>(src, len, divide), mean);
  return Give(static_cast<Orva32f>(LaneSum<InLanes<Orva64f, 2, 4>>(src, len) / len), mean);
}

OrvaStatus ORVAS_Mean_32fc(const Orva32fc* src, int32_t len, Orva32fc* mean, int32_t hint) {
  if (OrvaStatus status = CheckArrays(len, src, mean)) return status;
  const DivideBy divide = {static_cast<Orva32f>(len)};
  if (hint == ORVA_HINT_FAST) return Give(LaneSum<InLanes<Orva32f, 4, 4, 2>>(src, len, divide), mean);
  const Complex<double> sum = LaneSum<InLanes<Orva64f, 2, 4, 2>>(src, len);
  return Give(Complex<double>{sum.re / len, sum.im / len}, mean);
}

OrvaStatus ORVAS_Mean_64f(const Orva64f* src, int32_t len, Orva64f* mean) {
  if (OrvaStatus status = CheckPointers(mean)) return status;
  Orva64f sum;
  if (OrvaStatus status = ORVAS_Sum_64f(src, len, &sum)) return status;
  return Give(sum / len, mean);
}

OrvaStatus ORVAS_Mean_64fc(const Orva64fc* src, int32_t len, Orva64fc* mean) {
  if (OrvaStatus status = CheckPointers(mean)) return status;
  Orva64fc sum;
  if (OrvaStatus status = ORVAS_Sum_64fc(src, len, &sum)) return status;
  return Give(Orva64fc{sum.re / len, sum.im / len}, mean);
}

OrvaStatus ORVAS_Mean_16s_S(const Orva16s* src, int32_t len, Orva16s* mean, double scale) {
  return ScaledSum<Orva16s>(src, len, len, mean, scale);
}

OrvaStatus ORVAS_Mean_32s_S(const Orva32s* src, int32_t len, Orva32s* mean, double scale) {
  return ScaledSum<Orva32s>(src, len, len, mean, scale);
}

OrvaStatus ORVAS_Mean_16sc_S(const Orva16sc* src, int32_t len, Orva16sc* mean, double scale) {
  return ScaledSum<Orva16s>(src, len, len, mean, scale);
}

OrvaStatus ORVAS_StdDev_32f(const Orva32f* src, int32_t len, Orva32f* stdDev, int32_t hint) {
  Orva32f mean;
  return ORVAS_MeanStdDev_32f(src, len, &mean, stdDev, hint);
}

OrvaStatus ORVAS_StdDev_64f(const Orva64f* src, int32_t len, Orva64f* stdDev) {
  Orva64f mean;
  return ORVAS_MeanStdDev_64f(src, len, &mean, stdDev);
}

OrvaStatus ORVAS_StdDev_16s_S(const Orva16s* src, int32_t len, Orva16s* stdDev, double scale) {
  Orva16s mean;
  return ORVAS_MeanStdDev_16s_S(src, len, &mean, stdDev, scale);
}

OrvaStatus ORVAS_StdDev_16s32s_S(const Orva16s* src, int32_t len, Orva32s* stdDev, double scale) {
  Orva32s mean;
  return ORVAS_MeanStdDev_16s32s_S(src, len, &mean, stdDev, scale);
}

OrvaStatus ORVAS_MeanStdDev_32f(const Orva32f* src, int32_t len, Orva32f* mean, Orva32f* stdDev, int32_t hint) {
  if (OrvaStatus status = CheckPointers(stdDev)) return status;
  if (len < 2) return ORVA_STS_SIZE_ERR;
  if (OrvaStatus status = ORVAS_Mean_32f(src, len, mean, hint)) return status;
  return Give(DeviationFromGiven(src, len, mean), stdDev);
}

OrvaStatus ORVAS_MeanStdDev_64f(const Orva64f* src, int32_t len, Orva64f* mean, Orva64f* stdDev) {
  if (OrvaStatus status = CheckPointers(stdDev)) return status;
  if (len < 2) return ORVA_STS_SIZE_ERR;
  if (OrvaStatus status = ORVAS_Mean_64f(src, len, mean)) return status;
  return Give(DeviationFromGiven(src, len, mean), stdDev);
}

OrvaStatus ORVAS_MeanStdDev_16s_S(const Orva16s* src, int32_t len, Orva16s* mean, Orva16s* stdDev, double scale) {
  return ScaledMeanStdDev(src, len, mean, stdDev, scale);
}

OrvaStatus ORVAS_MeanStdDev_16s32s_S(const Orva16s* src, int32_t len, Orva32s* mean, Orva32s* stdDev, double scale) {
  return ScaledMeanStdDev(src, len, mean, stdDev, scale);
}
