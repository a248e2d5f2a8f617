// Sample-rate conversion between two integer rates: one bank of filter phases for their reduced ratio, a dot
// product for each output, and time counted in integers.
#include <signal_tzm/resample.h>

#include <signal_tzm/companion.h>

#include "frame/call.h"
#include "frame/scale.h"
#include "frame/sum.h"
#include "resample/kaiser_sinc.h"

#include <numeric>

using namespace tzm;

// One block with the bank: for each of `up` phases 2*reach taps in the order of the source. For 16-bit samples
// taps are 32-bit integers in two rows, the high halves and then the low ones, which are signed as well.
struct ResamplePolyphaseFixedState {
  int32_t up, down;  // the reduced ratio, output rate to input rate
  int32_t unit;      // by which the rates were reduced
  int32_t reach;     // source samples on either side of an output
  double tapScale;   // what undoes the scaling of integer taps
  void* bank;

  int32_t RowLen() const { return 2 * reach; }
  int32_t FilterLen() const { return up * RowLen(); }
};

namespace {

using State = ResamplePolyphaseFixedState;

constexpr int64_t kRecordBytes = 64;
static_assert(sizeof(State) <= kRecordBytes);
constexpr int64_t kTapBytes = 4;
constexpr int64_t kMostTaps = (std::numeric_limits<int32_t>::max() - kRecordBytes) / kTapBytes;

template <class Sample>
Sample* Row(const State& state, int64_t phase) {
  constexpr int64_t kRows = kTapBytes / sizeof(Sample);
  return static_cast<Sample*>(state.bank) + phase * kRows * state.RowLen();
}

// Calls take(row, tap, n): the tap of that phase is entry n of the filter.
template <class Sample, class Take>
void ForEachTap(const State& state, Take take) {
  for (int32_t phase = 0; phase < state.up; ++phase)
    for (int32_t tap = 0, n = state.FilterLen() - state.up + phase; tap < state.RowLen(); ++tap, n -= state.up)
      take(Row<Sample>(state, phase) + tap, n);
}

// The source samples on either side of an output that the filter may reach, in steps of 1/(2*up):
// window * max(up, down), a product of integers and 2^-22, exact in binary64 as long as the filter has a legal length.
double Width(double window, int32_t up, int32_t down) { return window * std::max(up, down); }

// A low-pass filter `width` wide, in steps of 1/up of a source sample; the taps on its edges belong to it. Every phase
// sums to 1.
void Design(const State& state, double width, Orva32f rollf, Orva32f alpha, Orva32f* filter) {
  const KaiserSinc sinc(rollf, alpha);
  const double lower = std::min(1.0, static_cast<double>(state.up) / state.down);  // of the two rates
  const int32_t centre = state.up * state.reach;
  const auto at = [&](int32_t n) {
    const int32_t steps = n < centre ? centre - n : n - centre;
    if (steps == 0) return sinc.Centre();
    if (2.0 * steps > width) return 0.0;
    return sinc.At(kPi * lower * (static_cast<double>(steps) / state.up), 2.0 * steps / width);
  };
  for (int32_t phase = 0; phase < state.up; ++phase) {
    // Between samples a narrow window of a large alpha leaves next to nothing of a small cut-off: in binary32 nothing,
    // if the phase's largest tap were not made about 1.
    const int32_t nearest = centre + (phase <= state.up / 2 ? phase : phase - state.up);
    const double unit = ScaleFactor(at(nearest));
    double sum = 0;
    for (int32_t n = phase; n < state.FilterLen(); n += state.up) {
      filter[n] = static_cast<Orva32f>(at(n) * unit);
      sum += filter[n];
    }
    for (int32_t n = phase; n < state.FilterLen(); n += state.up) filter[n] = static_cast<Orva32f>(filter[n] / sum);
  }
}

template <class Sample>
void FillBank(const Orva32f* filter, State& state) {
  if constexpr (std::is_same_v<Sample, Orva32f>) {
    ForEachTap<Orva32f>(state, [=](Orva32f* tap, int32_t n) { *tap = LoadElement(filter + n); });
  } else {
    constexpr double kLargest = 32767 * 65536.0;
    Orva32f peak;
    ORVAS_MaxAbs_32f(filter, state.FilterLen(), &peak);
    state.tapScale = peak / kLargest;
    const double factor = peak > 0 ? kLargest / peak : 0;
    ForEachTap<Orva16s>(state, [&](Orva16s* tap, int32_t n) {
      const int32_t value = RoundSaturate<int32_t>(LoadElement(filter + n) * factor);
      const Orva16s low = static_cast<Orva16s>(value);
      tap[0] = static_cast<Orva16s>((value - low) / 65536);
      tap[state.RowLen()] = low;
    });
  }
}

template <class Sample>
OrvaStatus Init(int32_t inRate, int32_t outRate, Orva32f window, Orva32f rollf, Orva32f alpha, State** stateOut) {
  if (OrvaStatus status = CheckPointers(stateOut)) return status;
  *stateOut = nullptr;
  if (inRate < 1 || outRate < 1) return ORVA_STS_SIZE_ERR;
  if (!(window >= 2) || !(rollf > 0) || rollf > 1) return ORVA_STS_BAD_ARG_ERR;
  if (!(alpha >= 1) || alpha > kBesselI0Limit) return ORVA_STS_BAD_ARG_ERR;
  const int32_t unit = std::gcd(inRate, outRate);
  const int32_t up = outRate / unit, down = inRate / unit;
  const double width = Width(window, up, down);
  const double reach = __builtin_ceil(width / (8.0 * up)) * 4;  // rows of whole steps of the dot products
  if (2 * reach * up > static_cast<double>(kMostTaps)) return ORVA_STS_OVERFLOW_ERR;

  State shape = {up, down, unit, static_cast<int32_t>(reach), 1, nullptr};
  Orva8u* const block =
      ORVAS_Malloc_8u(static_cast<int32_t>(kRecordBytes + shape.FilterLen() * kTapBytes));
  Orva32f* const filter = ORVAS_Malloc_32f(shape.FilterLen());
  if (CheckPointers(block, filter)) {
    ORVAS_Free(block);
    ORVAS_Free(filter);
    return ORVA_STS_MEM_ALLOC_ERR;
  }
  shape.bank = block + kRecordBytes;
  Design(shape, width, rollf, alpha, filter);
  FillBank<Sample>(filter, shape);
  ORVAS_Free(filter);
  *stateOut = reinterpret_cast<State*>(block);
  **stateOut = shape;
  return ORVA_STS_NO_ERR;
}

template <class Sample>
OrvaStatus SetFilter(State* state, const Orva32f* taps, int32_t tapsLen) {
  if (OrvaStatus status = CheckPointers(state, taps)) return status;
  if (tapsLen != state->FilterLen()) return ORVA_STS_SIZE_ERR;
  FillBank<Sample>(taps, *state);
  return ORVA_STS_NO_ERR;
}

template <class Sample>
OrvaStatus GetFilter(const State* state, Orva32f* taps, int32_t* tapsLen) {
  if (OrvaStatus status = CheckPointers(state, tapsLen)) return status;
  StoreElement(state->FilterLen(), tapsLen);
  if (taps == nullptr) return ORVA_STS_NO_ERR;
  ForEachTap<Sample>(*state, [=](const Sample* tap, int32_t n) {
    double value = tap[0];
    if constexpr (std::is_same_v<Sample, Orva16s>) value = (value * 65536 + tap[state->RowLen()]) * state->tapScale;
    StoreElement(static_cast<Orva32f>(value), taps + n);
  });
  return ORVA_STS_NO_ERR;
}

// ---- Run ----

// The next output's phase, and the first sample of its window.
struct Place {
  int64_t sample, phase;

  void Next(const State& state) {
    sample += state.down / state.up;
    phase += state.down % state.up;
    if (phase < state.up) return;
    phase -= state.up;
    ++sample;
  }
};

// kCount outputs at once, each in the order of ORVAS_DotProd_32f, whose chain is the limit of one alone: the sums of
// products of rows and windows of whole steps. rowOf(k) and windowOf(k) are those of output k, store(k, sum) takes it.
template <size_t kCount, class RowOf, class WindowOf, class Store>
TZM_INLINE void DotProducts(int32_t len, RowOf rowOf, WindowOf windowOf, Store store) {
  using Lanes = LaneArray<Orva32f, 8>;
  Lanes sum[kCount];
  Unrolled<kCount>([&](size_t k) TZM_LAMBDA { sum[k] = Lanes::Set(0); });
  for (int32_t i = 0; i < len; i += 8)
    Unrolled<kCount>([&](auto k) TZM_LAMBDA {
      sum[k] = MulAdd(Lanes::Load(rowOf(k) + i), Lanes::Load(windowOf(k) + i), sum[k]);
    });
  Unrolled<kCount>([&](size_t k) TZM_LAMBDA { store(k, HalvesFirst()(sum[k])); });
}

// Outputs `up` apart have one row in common; the last ones, and few of them, go side by side with a row each.
void Outputs(const State& state, const Orva32f* src, Place place, int64_t count, Orva32f norm, Orva32f* dst) {
  constexpr int64_t kShared = 8, kApart = 4;
  const int32_t len = state.RowLen();
  const int64_t up = state.up, down = state.down, group = kShared * up;
  for (; count >= group; count -= group, dst += group, place.sample += (kShared - 1) * down) {
    for (int64_t j = 0; j < up; ++j, place.Next(state)) {
      const Orva32f *const row = Row<Orva32f>(state, place.phase), *const window = src + place.sample;
      DotProducts<kShared>(
          len, [=](size_t) TZM_LAMBDA { return row; },
          [=](size_t k) TZM_LAMBDA { return window + static_cast<int64_t>(k) * down; },
          [=](int64_t k, Orva32f sum) TZM_LAMBDA { StoreElement(sum * norm, dst + j + k * up); });
    }
  }
  while (count > 0) {
    const int64_t made = std::min(count, kApart);
    const Orva32f *row[kApart], *window[kApart];
    for (int64_t k = 0; k < kApart; ++k) {
      row[k] = Row<Orva32f>(state, place.phase);
      window[k] = src + place.sample;
      if (k < made - 1) place.Next(state);  // beyond the last one, that again
    }
    place.Next(state);
    Orva32f out[kApart];
    DotProducts<kApart>(
        len, [&](size_t k) TZM_LAMBDA { return row[k]; }, [&](size_t k) TZM_LAMBDA { return window[k]; },
        [&](size_t k, Orva32f sum) TZM_LAMBDA { out[k] = sum * norm; });
    for (int64_t k = 0; k < made; ++k) StoreElement(out[k], dst++);
    count -= made;
  }
}

// The sums of the two halves of the taps are exact.
void Outputs(const State& state, const Orva16s* src, Place place, int64_t count, Orva32f norm, Orva16s* dst) {
  const int32_t len = state.RowLen();
  const double gain = norm * state.tapScale;
  const auto total = [](const ProductSums16& sums) TZM_LAMBDA {
    return static_cast<double>(sums.Lane(0) + sums.Lane(1));
  };
  for (; count > 0; --count, ++dst, place.Next(state)) {
    const Orva16s* const row = Row<Orva16s>(state, place.phase);
    ProductSums16 high, low;
    const auto add = [&](auto highs, auto lows, auto samples) TZM_LAMBDA {
      high.Add(highs, samples);
      low.Add(lows, samples);
    };
    ReduceRegisters(len, add, [] {}, row, row + len, src + place.sample);
    const double sum = total(high) * 65536 + total(low);
    StoreElement(RoundSaturate<Orva16s>(sum * gain), dst);
  }
}

template <class Sample>
OrvaStatus Run(const Sample* src, int32_t len, Sample* dst, Orva32f norm, Orva64s* time, int32_t* outLen,
               const State* state) {
  if (OrvaStatus status = CheckArrays(len, src, dst, time, outLen, state)) return status;
  constexpr int64_t kMost = std::numeric_limits<int32_t>::max();
  const int64_t start = LoadElement(time);
  const int64_t inRate = int64_t{state->down} * state->unit, outRate = int64_t{state->up} * state->unit;
  const int64_t sample = start / outRate, part = start % outRate;
  if (start % state->unit != 0 || sample < state->reach - 1 || sample > kMost) return ORVA_STS_BAD_ARG_ERR;
  const int64_t count = (len * outRate - part + inRate - 1) / inRate;
  if (count > kMost) return ORVA_STS_OVERFLOW_ERR;

  Outputs(*state, src, {sample - (state->reach - 1), part / state->unit}, count, norm, dst);
  StoreElement(static_cast<int32_t>(count), outLen);
  StoreElement(start + count * inRate, time);
  return ORVA_STS_NO_ERR;
}

OrvaStatus Release(State* state) {
  ORVAS_Free(state);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_ResamplePolyphaseFixedInit_16s(int32_t inRate, int32_t outRate, Orva32f window, Orva32f rollf,
                                                Orva32f alpha, ResamplePolyphaseFixedState** stateOut) {
  return Init<Orva16s>(inRate, outRate, window, rollf, alpha, stateOut);
}
OrvaStatus ORVAS_ResamplePolyphaseFixedInit_32f(int32_t inRate, int32_t outRate, Orva32f window, Orva32f rollf,
                                                Orva32f alpha, ResamplePolyphaseFixedState** stateOut) {
  return Init<Orva32f>(inRate, outRate, window, rollf, alpha, stateOut);
}

OrvaStatus ORVAS_ResamplePolyphaseFixedSetFilter_16s(ResamplePolyphaseFixedState* state, const Orva32f* taps,
                                                     int32_t tapsLen) {
  return SetFilter<Orva16s>(state, taps, tapsLen);
}
OrvaStatus ORVAS_ResamplePolyphaseFixedSetFilter_32f(ResamplePolyphaseFixedState* state, const Orva32f* taps,
                                                     int32_t tapsLen) {
  return SetFilter<Orva32f>(state, taps, tapsLen);
}
OrvaStatus ORVAS_ResamplePolyphaseFixedGetFilter_16s(const ResamplePolyphaseFixedState* state, Orva32f* taps,
                                                     int32_t* tapsLen) {
  return GetFilter<Orva16s>(state, taps, tapsLen);
}
OrvaStatus ORVAS_ResamplePolyphaseFixedGetFilter_32f(const ResamplePolyphaseFixedState* state, Orva32f* taps,
                                                     int32_t* tapsLen) {
  return GetFilter<Orva32f>(state, taps, tapsLen);
}

OrvaStatus ORVAS_ResamplePolyphaseFixed_16s(const Orva16s* src, int32_t len, Orva16s* dst, Orva32f norm, Orva64s* time,
                                            int32_t* outLen, const ResamplePolyphaseFixedState* state) {
  return Run(src, len, dst, norm, time, outLen, state);
}
OrvaStatus ORVAS_ResamplePolyphaseFixed_32f(const Orva32f* src, int32_t len, Orva32f* dst, Orva32f norm, Orva64s* time,
                                            int32_t* outLen, const ResamplePolyphaseFixedState* state) {
  return Run(src, len, dst, norm, time, outLen, state);
}

OrvaStatus ORVAS_ResamplePolyphaseFixedRelease_16s(ResamplePolyphaseFixedState* state) { return Release(state); }
OrvaStatus ORVAS_ResamplePolyphaseFixedRelease_32f(ResamplePolyphaseFixedState* state) { return Release(state); }
