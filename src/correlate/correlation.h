// What auto- and cross-correlation share: the state, sums of single lags, normalisation by overlap.
#pragma once

#include <signal_tzm/correlate.h>

#include "correlate/transform_area.h"
#include "frame/drive.h"

#include <algorithm>

namespace tzm {

// Autocorrelation uses one buffer less than there are.
template <class Sample>
struct Correlation {
  static constexpr int kBuffers = kIsComplex<Sample> ? 2 : 3;

  int32_t transforms;  // 1 on the FFT route, 0 on the direct one
  int32_t outCount;
  int32_t fftLen;
  TransformArea<Sample, kBuffers> area;
};

template <class Sample>
auto* StateOf(CorrState* opaque) {
  return reinterpret_cast<Correlation<Sample>*>(opaque);
}

template <class Sample>
OrvaStatus Release(Correlation<Sample>* state) {
  if (state == nullptr) return ORVA_STS_NO_ERR;
  state->area.Release();
  ORVA_Free(state);
  return ORVA_STS_NO_ERR;
}

// The transforms of a new state on the FFT route; the state is given back where that fails. `len` and
// `lags` may together be at most `limit`.
template <class Sample>
OrvaStatus MakeTransforms(Correlation<Sample>* state, int32_t len, int32_t lags, int32_t limit, int buffers) {
  OrvaStatus status = ORVA_STS_NO_ERR;
  if (len > limit - lags) {
    status = ORVA_STS_OVERFLOW_ERR;
  } else {
    state->transforms = 1;
    state->fftLen = static_cast<int32_t>(TransformLength(int64_t{len} + lags - 1));
    if (!state->area.Make(state->fftLen, buffers)) status = ORVA_STS_MEM_ALLOC_ERR;
  }
  if (status) Release(state);
  return status;
}

// ---- Sums ----

// Samples of a 128-bit vector, counting a complex one as one vector of each part.
template <class Sample>
constexpr size_t kGroup = 16 / sizeof(PartOf<Sample>);

// sum + conj(x)*y: fused onto the sum for reals; for complex samples the product in two roundings, then a
// plain addition.
template <class Sample>
TZM_INLINE void AddProduct(const Sample* x, const Sample* y, Sample& sum) {
  const Sample a = LoadElement(x), b = LoadElement(y);
  if constexpr (kIsComplex<Sample>) {
    sum.re += Fma(a.re, b.re, a.im * b.im);
    sum.im += Fma(a.re, b.im, -(b.re * a.im));
  } else {
    sum = Fma(a, b, sum);
  }
}

// For conj(x)*y in lanes of interleaved complex samples, {xr, xr} * {yr, yi} + {xi, -xi} * {yi, yr}: x's
// imaginary parts with that sign, and y's parts exchanged.
template <size_t kLanes, class Real>
TZM_INLINE LaneArray<Real, kLanes> OddNegated(LaneArray<Real, kLanes> x) {
  using Lanes = LaneArray<Real, kLanes>;
  Unrolled<Lanes::kRegisters>([&](auto r) TZM_LAMBDA { x.v[r] = hn::OddEven(hn::Neg(x.v[r]), x.v[r]); });
  return x;
}
template <size_t kLanes, class Real>
TZM_INLINE LaneArray<Real, kLanes> Exchanged(LaneArray<Real, kLanes> y) {
  using Lanes = LaneArray<Real, kLanes>;
  Unrolled<Lanes::kRegisters>([&](auto r) TZM_LAMBDA { y.v[r] = hn::Reverse2(typename Lanes::D(), y.v[r]); });
  return y;
}

// sum += conj(x)*y in the lanes of samples, straight into the sum: fused steps with x's real parts, then
// with its imaginary ones.
template <class Sample, size_t kLanes, class Real>
TZM_INLINE void AddProducts(const LaneArray<Real, kLanes>& x, const LaneArray<Real, kLanes>& y,
                            LaneArray<Real, kLanes>& sum) {
  if constexpr (kIsComplex<Sample>) {
    LaneArray<Real, kLanes> re, im;
    Unrolled<LaneArray<Real, kLanes>::kRegisters>([&](auto r) TZM_LAMBDA {
      re.v[r] = hn::DupEven(x.v[r]);
      im.v[r] = hn::DupOdd(x.v[r]);
    });
    sum = MulAdd(OddNegated(im), Exchanged(y), MulAdd(re, y, sum));
  } else {
    sum = MulAdd(x, y, sum);
  }
}

// The lanes of a single lag: 128-bit accumulators one after the other, four for reals (16 samples in
// binary32), two for each part of complex samples (8 samples).
template <class Sample>
constexpr size_t kAccumulators = kIsComplex<Sample> ? 2 : 4;
template <class Sample>
using LagLanes = LaneArray<PartOf<Sample>, kAccumulators<Sample> * kGroup<Sample> * kParts<Sample>>;

// The lower or the upper half of an array of lanes.
template <size_t kHalf, class Real, size_t kLanes>
TZM_INLINE LaneArray<Real, kLanes / 2> HalfOf(const LaneArray<Real, kLanes>& lanes) {
  using Half = LaneArray<Real, kLanes / 2>;
  if constexpr (LaneArray<Real, kLanes>::kRegisters > 1) {
    return Half::Each([&](size_t r) TZM_LAMBDA { return lanes.v[kHalf * Half::kRegisters + r]; });
  } else {
    const hn::Half<typename LaneArray<Real, kLanes>::D> half;
    if constexpr (kHalf == 0) return {{hn::LowerHalf(half, lanes.v[0])}};
    else return {{hn::UpperHalf(half, lanes.v[0])}};
  }
}

// The sum of a group's samples, neighbours first.
template <class Sample, class Group>
TZM_INLINE Sample FoldGroup(const Group& group) {
  Sample total;
  if constexpr (kGroup<Sample> == 2) {
    group.Halved().Store(Reals(&total));
  } else if constexpr (kIsComplex<Sample>) {
    const typename LaneArray<float, 4>::D d;
    const hn::RepartitionToWide<decltype(d)> samples;
    const auto first = hn::BitCast(samples, HalfOf<0>(group).v[0]), last = hn::BitCast(samples, HalfOf<1>(group).v[0]);
    const auto even = hn::InterleaveLower(samples, first, last), odd = hn::InterleaveUpper(samples, first, last);
    LaneArray<float, 4>{{hn::Add(hn::BitCast(d, even), hn::BitCast(d, odd))}}.Halved().Store(Reals(&total));
  } else {
    const auto pairs = hn::Add(group.v[0], hn::Shuffle2301(group.v[0]));
    total = hn::GetLane(hn::Add(pairs, hn::Shuffle1032(pairs)));
  }
  return total;
}

// One lag's sum of `count` products, of which the lanes hold the first `done`: whole steps of all
// accumulators, whole steps of the first one, (acc1 + acc0) + (acc2 + acc3), neighbouring samples added
// pairwise, and the rest one by one.
template <class Sample>
TZM_INLINE Sample FinishLag(const Sample* x, const Sample* y, size_t done, size_t count, LagLanes<Sample> lanes) {
  constexpr size_t kG = kGroup<Sample>, kStep = kAccumulators<Sample> * kG;
  using Lanes = LagLanes<Sample>;
  using Group = LaneArray<PartOf<Sample>, kG * kParts<Sample>>;
  size_t i = done;
  for (; count - i >= kStep; i += kStep)
    AddProducts<Sample>(Lanes::Load(Reals(x + i)), Lanes::Load(Reals(y + i)), lanes);
  const auto low = HalfOf<0>(lanes), high = HalfOf<1>(lanes);
  Group sum;
  if constexpr (kAccumulators<Sample> == 4) sum = HalfOf<0>(low);
  else sum = low;
  for (; count - i >= kG; i += kG)
    AddProducts<Sample>(Group::Load(Reals(x + i)), Group::Load(Reals(y + i)), sum);
  if constexpr (kAccumulators<Sample> == 4) sum = (HalfOf<1>(low) + sum) + high.Halved();
  else sum = high + sum;
  Sample total = FoldGroup<Sample>(sum);
  for (; i < count; ++i) AddProduct(x + i, y + i, total);
  return total;
}

// dst[l] = the sum over count(l) products of lag l, for l = 0 to lags-1; the samples of lag l start at
// x + kStepX*l and y + kStepY*l. Some lags side by side share the loads of the sequence that stands still.
template <int kStepX, int kStepY, class Sample, class Count>
void SingleLags(const Sample* x, const Sample* y, int64_t lags, Sample* dst, Count count) {
  using Lanes = LagLanes<Sample>;
  constexpr int64_t kTile = 4;
  constexpr size_t kStep = kAccumulators<Sample> * kGroup<Sample>;
  const auto tile = [&](int64_t l, auto width) TZM_LAMBDA {
    constexpr int64_t kWidth = width;
    const Sample* const from = x + kStepX * l;
    const Sample* const to = y + kStepY * l;
    const size_t common = std::min<size_t>(count(l), count(l + kWidth - 1)) / kStep * kStep;
    Lanes lanes[kWidth];
    for (Lanes& lane : lanes) lane = Lanes::Set(0);
    for (size_t i = 0; i < common; i += kStep)
      Unrolled<kWidth>([&](auto w) TZM_LAMBDA {
        constexpr int64_t kX = kStepX * static_cast<int64_t>(w), kY = kStepY * static_cast<int64_t>(w);
        AddProducts<Sample>(Lanes::Load(Reals(from + kX + i)), Lanes::Load(Reals(to + kY + i)), lanes[w]);
      });
    for (int64_t w = 0; w < kWidth; ++w)
      StoreElement(FinishLag(from + kStepX * w, to + kStepY * w, common, count(l + w), lanes[w]), dst + l + w);
  };
  int64_t l = 0;  // tiles are a work plan, which changes no bit, and must know which lags they hold
  for (; lags - l >= kTile; l += kTile) tile(l, std::integral_constant<int64_t, kTile>());
  for (; l < lags; ++l) tile(l, std::integral_constant<int64_t, 1>());
}

// ---- Normalisation ----

// dst[j] divided by the number of products of lag firstLag + j, between sequences of len1 and len2. Numbers are counted
// in binary64, which holds them all, lags beyond the sequences included.
template <class Sample>
void DivideByOverlap(Sample* dst, int64_t count, int64_t firstLag, int64_t len1, int64_t len2) {
  using Real = PartOf<Sample>;
  const Full<Real> d;
  const Full<double> wide;
  constexpr int32_t kBlock = kInCache<Sample>;
  alignas(64) Real overlaps[kBlock * kParts<Sample>];
  const auto set = [=](int64_t value) TZM_LAMBDA { return hn::Set(wide, static_cast<double>(value)); };
  const auto zero = hn::Zero(wide), all1 = set(len1), all2 = set(len2), step = set(hn::MaxLanes(wide) / kParts<Sample>);
  const auto sample = hn::Floor(hn::Mul(hn::Iota(wide, 0), hn::Set(wide, 1.0 / kParts<Sample>)));  // of a lane
  ForBlocks<kBlock>(static_cast<size_t>(count), [&](int32_t samples, Sample* block) {
    const size_t reals = kParts<Sample> * static_cast<size_t>(samples);
    auto lag = hn::Add(set(firstLag + (block - dst)), sample);
    for (size_t i = 0; i < reals; i += hn::MaxLanes(wide), lag = hn::Add(lag, step)) {
      const auto left1 = hn::Add(all1, hn::Min(lag, zero)), left2 = hn::Sub(all2, hn::Max(lag, zero));
      StoreRounded(hn::Min(left1, left2), overlaps + i);
    }
    const Real* const sums = Reals(block);
    ForEach<hn::MaxLanes(d)>(reals, [=](const Real* sum, const Real* by, Real* to) TZM_LAMBDA {
      hn::StoreU(hn::Div(hn::LoadU(d, sum), hn::LoadU(d, by)), d, to);
    }, sums, std::as_const(overlaps), Reals(block));
  }, dst);
}

}  // namespace tzm
