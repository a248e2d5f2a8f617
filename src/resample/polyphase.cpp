// Sample-rate conversion by any factor: every output sums source samples under a finely sampled windowed
// sinc, with linear interpolation between its entries.
#include <signal_tzm/resample.h>

#include <signal_tzm/arith.h>
#include <signal_tzm/companion.h>

#include "frame/call.h"
#include "frame/scale.h"
#include "resample/kaiser_sinc.h"

using namespace tzm;

// One block: this record, the half filter, and room for a table in binary64 that only Init uses; afterwards it holds
// the entries by phases.
struct ResamplePolyphaseState {
  Orva32f stepAngle;  // angle from entry to entry, pi / nStep
  int32_t nStep;      // entries in a source sample's time
  int32_t tableLen;   // one more entry follows
  Orva32f outScale;   // what undoes the scaling of a 16-bit table
  int32_t hint;
  void* table;
  void* rows;  // null where there is no room for them
};

namespace {

constexpr int32_t kFloatTable = 2;  // the hint

// ---- The table ----

// The size of the block is fixed, and with it the limit of the window.
constexpr int64_t kRecordBytes = 64;
static_assert(sizeof(ResamplePolyphaseState) <= kRecordBytes);
constexpr int64_t WorkBytes(int64_t tableLen) { return (8 * tableLen + 79) / 64 * 64; }

// The half filter in binary64, with a gain of 1 at frequency 0.
void Design(const ResamplePolyphaseState& state, Orva32f rollf, Orva32f alpha, Orva64f* work) {
  const KaiserSinc filter(rollf, alpha);
  const int32_t last = state.tableLen - 1;
  const double step = state.stepAngle, share = 1.0 / last;
  work[0] = filter.Centre();
  for (int32_t i = 1; i <= last; ++i) work[i] = filter.At(i * step, i * share);
  double sum = 0;
  for (int64_t i = state.nStep; i <= last; i += state.nStep) sum += work[i];
  ORVAS_MulC_64f_I(1 / (2 * sum + work[0]), work, state.tableLen);
}

void FillTable(Orva64f* work, Orva32f* table, ResamplePolyphaseState& state) {
  ORVAS_Convert_64f32f(work, table, state.tableLen);
}
void FillTable(Orva64f* work, Orva16s* table, ResamplePolyphaseState& state) {
  constexpr double kLargest = 16383;
  double most, least;
  ORVAS_Max_64f(work, state.tableLen, &most);
  ORVAS_Min_64f(work, state.tableLen, &least);
  const double peak = std::max(__builtin_fabs(least), __builtin_fabs(most));
  state.outScale = static_cast<Orva32f>(peak / kLargest);
  ORVAS_MulC_64f_I(kLargest / peak, work, state.tableLen);
  ORVAS_Convert_64f16s_S(work, table, state.tableLen, 1, 1.0);
}

// Row p holds the entries p, p + nStep, ... for p = 0 to nStep + 1, zeros beyond the last: taps that are nStep apart
// lie side by side in two rows, and in the table in as many cache lines, often all of one set.
int64_t RowLen(const ResamplePolyphaseState& state) { return (state.tableLen - 1) / state.nStep + 1; }

template <class Entry>
void FillRows(const Entry* table, Orva64f* room, ResamplePolyphaseState& state) {
  constexpr int64_t kEntries = sizeof(Orva64f) / sizeof(Entry);
  const int64_t rowLen = RowLen(state), rows = int64_t{state.nStep} + 2;
  if (rows * rowLen > kEntries * state.tableLen) return;
  auto* row = reinterpret_cast<Entry*>(room);
  state.rows = row;
  for (int64_t p = 0; p < rows; ++p)
    for (int64_t m = 0, at = p; m < rowLen; ++m, at += state.nStep)
      *row++ = at <= state.tableLen ? table[at] : Entry(0);
}

template <class Entry>
OrvaStatus Init(Orva32f window, int32_t nStep, Orva32f rollf, Orva32f alpha, int32_t hint,
                ResamplePolyphaseState** stateOut) {
  if (OrvaStatus status = CheckArrays(nStep, stateOut)) return status;
  if (!(2 / static_cast<Orva32f>(nStep) < window)) return ORVA_STS_BAD_ARG_ERR;
  if (!(rollf > 0) || rollf > 1 || alpha < 1) return ORVA_STS_BAD_ARG_ERR;
  *stateOut = nullptr;
  constexpr double kWidest = 268435437.875;  // beyond it the work table passes 31 bits
  const double half = window * 0.5 * nStep;
  if (!(half < kWidest)) return ORVA_STS_BAD_ARG_ERR;
  const int32_t tableLen = static_cast<int32_t>(half) + 1;
  const int64_t tableBytes = (int64_t{sizeof(Entry)} * tableLen + 65) / 64 * 64;
  const int64_t bytes = kRecordBytes + tableBytes + WorkBytes(tableLen);
  if (bytes > std::numeric_limits<int32_t>::max()) return ORVA_STS_BAD_ARG_ERR;
  Orva8u* const block = ORVAS_Malloc_8u(static_cast<int32_t>(bytes));
  if (block == nullptr) return ORVA_STS_MEM_ALLOC_ERR;
  ORVAS_Zero_8u(block, static_cast<int32_t>(bytes));

  // The work table ends the block: between it and the half filter zeros are left, for an angle that rounds
  // up to the filter's end reads one entry more.
  auto* const state = reinterpret_cast<ResamplePolyphaseState*>(block);
  auto* const table = reinterpret_cast<Entry*>(block + kRecordBytes);
  auto* const work = reinterpret_cast<Orva64f*>(block + bytes - int64_t{sizeof(Orva64f)} * tableLen);
  *state = {static_cast<Orva32f>(kPi / nStep), nStep, tableLen, 1, hint, table, nullptr};
  Design(*state, rollf, alpha, work);
  FillTable(work, table, *state);
  table[tableLen] = table[tableLen - 1];
  FillRows(table, work, *state);
  *stateOut = state;
  return ORVA_STS_NO_ERR;
}

// ---- Sums ----

// The quotient's least integer not below it: truncated, and one more if the product falls short.
double CeilQuotient(double dividend, double divisor) {
  const double whole = __builtin_trunc(dividend / divisor);
  return whole * divisor < dividend ? whole + 1 : whole;
}

// Entries of the table at lanes of indices, and those after them. kLanes is at least 2.
template <size_t kLanes, class Entry>
struct Neighbours {
  Vec<hn::FixedTag<Entry, kLanes>> low, high;
};
template <size_t kLanes, class Entry>
TZM_INLINE auto LoadNeighbours(const Entry* table, const uint32_t* at) {
  const hn::FixedTag<Entry, kLanes> d;
  const auto pair = [=](size_t k) TZM_LAMBDA {
    using Both = std::conditional_t<sizeof(Entry) == 4, uint64_t, uint32_t>;
    return hn::LoadU(hn::FixedTag<Both, 1>(), reinterpret_cast<const Both*>(table + at[k]));
  };
  if constexpr (kLanes > 4) {
    const auto first = LoadNeighbours<kLanes / 2>(table, at);
    const auto second = LoadNeighbours<kLanes / 2>(table, at + kLanes / 2);
    return Neighbours<kLanes, Entry>{hn::Combine(d, second.low, first.low), hn::Combine(d, second.high, first.high)};
  } else {
    const auto two = [=](size_t k) TZM_LAMBDA {
      using V = decltype(pair(k));
      const hn::Twice<hn::DFromV<V>> d2;
      return hn::BitCast(hn::FixedTag<Entry, 4>(), hn::Combine(d2, pair(k + 1), pair(k)));
    };
    const hn::FixedTag<Entry, 4> d4;
    const auto first = two(0);
    if constexpr (kLanes == 4) {
      const auto second = two(2);
      return Neighbours<4, Entry>{hn::ConcatEven(d4, second, first), hn::ConcatOdd(d4, second, first)};
    } else {
      return Neighbours<2, Entry>{hn::LowerHalf(hn::ConcatEven(d4, first, first)),
                                  hn::LowerHalf(hn::ConcatOdd(d4, first, first))};
    }
  }
}

// One half of an output's taps, 0 to count-1: tap m takes the table at m*step + `at` and the sample `src[m]`, or
// `src[-m]` to the left.
template <class Entry, class Sample>
struct Half {
  const Entry* table;
  const Sample* src;
  double step, at;
  int64_t count;
  // Where the step is whole, `row` holds the table's entries at m*step + base, base being the whole part of `at`, and
  // the next row those after them; otherwise it is null. A place that rounds up to the entry after has the fraction 1
  // here and from the table, as a place of that entry, the fraction 0: the weight is the same.
  const Entry* row = nullptr;
  double base;
  int64_t rowLen;

  Half(const ResamplePolyphaseState& state, const Sample* from, double tapStep, double first)
      : table(static_cast<const Entry*>(state.table)), src(from), step(tapStep), at(first),
        count(static_cast<int64_t>(CeilQuotient(state.tableLen - at, step))), base(__builtin_trunc(at)),
        rowLen(RowLen(state)) {
    if (state.rows != nullptr && step == state.nStep)
      row = static_cast<const Entry*>(state.rows) + static_cast<int64_t>(base) * rowLen;
  }
};

template <class D>
TZM_INLINE Vec<D> Interpolate(D d, Vec<D> low, Vec<D> high, Vec<D> fraction) {
  return hn::MulAdd(fraction, high, hn::Mul(hn::Sub(hn::Set(d, 1.0), fraction), low));
}

// The weights of the taps at lanes of indices from m on, from the table and from the rows.
template <class D, class H>
TZM_INLINE Vec<D> WeightsByTable(D d, const H& half, Vec<D> index, int64_t) {
  const hn::Rebind<int32_t, D> di;
  const hn::RebindToUnsigned<decltype(di)> du;
  const auto u = hn::MulAdd(index, hn::Set(d, half.step), hn::Set(d, half.at)), whole = hn::Trunc(u);
  uint32_t entry[hn::MaxLanes(d)];
  hn::StoreU(hn::BitCast(du, hn::DemoteTo(di, whole)), du, entry);
  const auto neighbours = LoadNeighbours<hn::MaxLanes(d)>(half.table, entry);
  return Interpolate(d, ToFloating(d, neighbours.low), ToFloating(d, neighbours.high), hn::Sub(u, whole));
}
template <class D, class H>
TZM_INLINE Vec<D> WeightsByRows(D d, const H& half, Vec<D> index, int64_t m) {
  const auto step = hn::Set(d, half.step);
  const auto u = hn::MulAdd(index, step, hn::Set(d, half.at)), whole = hn::MulAdd(index, step, hn::Set(d, half.base));
  const auto low = LoadFloating(d, half.row + m), high = LoadFloating(d, half.row + half.rowLen + m);
  return Interpolate(d, low, high, hn::Sub(u, whole));
}

// Samples times weights.
template <int kDirection, bool kRows, class D, class Entry, class Sample>
TZM_INLINE Vec<D> Products(D d, const Half<Entry, Sample>& half, Vec<D> index, int64_t m) {
  constexpr int64_t kLanes = hn::MaxLanes(d);
  auto samples = LoadFloating(d, kDirection > 0 ? half.src + m : half.src - m - (kLanes - 1));
  if constexpr (kDirection < 0) samples = hn::Reverse(d, samples);
  if constexpr (kRows) return hn::Mul(samples, WeightsByRows(d, half, index, m));
  else return hn::Mul(samples, WeightsByTable(d, half, index, m));
}

// The lanes two by two, one pair after the other onto `sums`.
template <class D>
TZM_INLINE Vec<hn::FixedTag<double, 2>> AddInTurn(D d, Vec<D> v, Vec<hn::FixedTag<double, 2>> sums) {
  if constexpr (hn::MaxLanes(d) == 2) {
    return hn::Add(sums, v);
  } else {
    const hn::Half<D> half;
    return AddInTurn(half, hn::UpperHalf(half, v), AddInTurn(half, hn::LowerHalf(half, v), sums));
  }
}

// Adds to `acc` the products of two outputs: those of two taps in a row to each other first, an odd last one fused.
template <int kDirection, bool kRows, class Entry, class Sample>
HWY_NOINLINE void AddProducts(const Half<Entry, Sample> (&half)[2], double (&acc)[2]) {
  const Full<double> d;
  const hn::FixedTag<double, 2> two;
  constexpr int64_t kLanes = hn::MaxLanes(d);
  const int64_t common = std::min(half[0].count, half[1].count);
  auto index = hn::Iota(d, 0);
  auto sums = hn::LoadU(two, acc);
  int64_t m = 0;
  for (; common - m >= kLanes; m += kLanes) {
    const auto first = Products<kDirection, kRows>(d, half[0], index, m);
    const auto second = Products<kDirection, kRows>(d, half[1], index, m);
    sums = AddInTurn(d, hn::Add(hn::InterleaveLower(d, first, second), hn::InterleaveUpper(d, first, second)), sums);
    index = hn::Add(index, hn::Set(d, static_cast<double>(kLanes)));
  }
  hn::StoreU(sums, two, acc);
  for (size_t k = 0; k < 2; ++k) {
    const auto& [table, src, step, at, count, row, base, rowLen] = half[k];
    int64_t tap = m;
    for (; count - tap >= 2; tap += 2) {
      const auto from = hn::Add(hn::Iota(two, 0), hn::Set(two, static_cast<double>(tap)));
      const auto products = Products<kDirection, kRows>(two, half[k], from, tap);
      acc[k] += hn::GetLane(hn::Add(products, hn::Reverse2(two, products)));
    }
    if (tap < count) {
      const double u = Fma(static_cast<double>(tap), step, at);
      const int32_t entry = static_cast<int32_t>(u);
      const double fraction = u - entry, low = table[entry], high = table[entry + 1];
      const double sample = LoadElement(src + kDirection * tap);
      acc[k] = Fma(sample, Fma(1 - fraction, low, fraction * high), acc[k]);
    }
  }
}
template <int kDirection, class Entry, class Sample>
void AddHalves(const Half<Entry, Sample> (&half)[2], double (&acc)[2]) {
  if (half[0].row != nullptr && half[1].row != nullptr) AddProducts<kDirection, true>(half, acc);
  else AddProducts<kDirection, false>(half, acc);
}

// ---- Run ----

struct Plan {
  double step;      // entries of the table from sample to sample
  double gain;
  double start;     // time of the first output
  double interval;  // from output to output
  int32_t count;    // below 1 for a start beyond the source
};

OrvaStatus MakePlan(int32_t len, double factor, Orva32f norm, const double* time, int32_t* outLen,
                    const ResamplePolyphaseState& state, Plan& plan) {
  if (!(factor > 0)) return ORVA_STS_BAD_ARG_ERR;
  const double gain = static_cast<double>(state.outScale) * norm;
  plan = {static_cast<double>(state.nStep), gain, LoadElement(time), 1 / factor, 0};
  if (factor < 1) {
    plan.step *= factor;
    plan.gain *= factor;
  }
  // The sample at the start is counted in 32 bits; times beyond them, and a NaN, are beyond every source.
  constexpr double kMost = std::numeric_limits<int32_t>::max(), kLeast = std::numeric_limits<int32_t>::min();
  const double sample = std::max(kLeast, std::min(kMost, __builtin_floor(plan.start)));
  if (CeilQuotient(state.tableLen - plan.step * (plan.start - sample), plan.step) > sample) return ORVA_STS_BAD_ARG_ERR;
  const double count = __builtin_ceil((len + sample - plan.start) * factor);
  if (count > kMost) return ORVA_STS_BAD_ARG_ERR;
  plan.count = count != count ? 0 : static_cast<int32_t>(std::max(count, kLeast));
  StoreElement(plan.count, outLen);
  return ORVA_STS_NO_ERR;
}

// Calls store(j, sum) for each output at timeOf(j); the times are asked for in order, once each. Two outputs go side
// by side; an odd last one is its own neighbour.
template <class Entry, class Sample, class TimeOf, class Store>
void Run(const ResamplePolyphaseState& state, const Plan& plan, const Sample* src, TimeOf timeOf, Store store) {
  using H = Half<Entry, Sample>;
  for (int64_t j = 0; j < plan.count; j += 2) {
    const int64_t outputs = std::min<int64_t>(2, plan.count - j);
    double at[2], acc[2] = {};
    const Sample* here[2];
    for (int64_t k = 0; k < 2; ++k) {
      if (k == outputs) {
        at[1] = at[0];
        here[1] = here[0];
        break;
      }
      const double time = timeOf(j + k), sample = __builtin_floor(time);
      at[k] = (time - sample) * plan.step;
      here[k] = src + static_cast<int64_t>(sample);
    }
    const double step = plan.step;
    AddHalves<-1>({H(state, here[0], step, at[0]), H(state, here[1], step, at[1])}, acc);
    AddHalves<1>({H(state, here[0] + 1, step, step - at[0]), H(state, here[1] + 1, step, step - at[1])}, acc);
    for (int64_t k = 0; k < outputs; ++k) store(j + k, plan.gain * acc[k]);
  }
}

OrvaStatus Release(ResamplePolyphaseState* state) {
  ORVA_Free(state);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_ResamplePolyphaseInit_16s(Orva32f window, int32_t nStep, Orva32f rollf, Orva32f alpha, int32_t hint,
                                           ResamplePolyphaseState** stateOut) {
  if (hint == kFloatTable) return ORVAS_ResamplePolyphaseInit_32f(window, nStep, rollf, alpha, hint, stateOut);
  return Init<Orva16s>(window, nStep, rollf, alpha, hint, stateOut);
}
OrvaStatus ORVAS_ResamplePolyphaseInit_32f(Orva32f window, int32_t nStep, Orva32f rollf, Orva32f alpha, int32_t hint,
                                           ResamplePolyphaseState** stateOut) {
  return Init<Orva32f>(window, nStep, rollf, alpha, hint, stateOut);
}

// Deliberately the two members go on in time differently: here by addition, and a call without outputs
// leaves the time alone.
OrvaStatus ORVAS_ResamplePolyphase_16s(const Orva16s* src, int32_t len, Orva16s* dst, Orva64f factor, Orva32f norm,
                                       Orva64f* time, int32_t* outLen, const ResamplePolyphaseState* state) {
  if (OrvaStatus status = CheckArrays(len, state, outLen, dst, time, src)) return status;
  Plan plan;
  if (OrvaStatus status = MakePlan(len, factor, norm, time, outLen, *state, plan)) return status;
  double next = plan.start;
  const auto timeOf = [&](int64_t) TZM_LAMBDA {
    const double now = next;
    next += plan.interval;
    return now;
  };
  const auto store = [=](int64_t j, double value) TZM_LAMBDA { StoreElement(RoundSaturate<Orva16s>(value), dst + j); };
  if (state->hint == kFloatTable) Run<Orva32f>(*state, plan, src, timeOf, store);
  else Run<Orva16s>(*state, plan, src, timeOf, store);
  StoreElement(next, time);
  return ORVA_STS_NO_ERR;
}

// Here every time is a multiple of the interval from the first.
OrvaStatus ORVAS_ResamplePolyphase_32f(const Orva32f* src, int32_t len, Orva32f* dst, Orva64f factor, Orva32f norm,
                                       Orva64f* time, int32_t* outLen, const ResamplePolyphaseState* state) {
  if (OrvaStatus status = CheckArrays(len, state, outLen, dst, time, src)) return status;
  Plan plan;
  if (OrvaStatus status = MakePlan(len, factor, norm, time, outLen, *state, plan)) return status;
  const auto timeOf = [=](int64_t j) TZM_LAMBDA { return Fma(static_cast<double>(j), plan.interval, plan.start); };
  Run<Orva32f>(*state, plan, src, timeOf,
               [=](int64_t j, double value) TZM_LAMBDA { StoreElement(static_cast<Orva32f>(value), dst + j); });
  StoreElement((plan.count < 1 ? plan.start : timeOf(plan.count - 1)) + plan.interval, time);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_ResamplePolyphaseRelease_16s(ResamplePolyphaseState* state) { return Release(state); }
OrvaStatus ORVAS_ResamplePolyphaseRelease_32f(ResamplePolyphaseState* state) { return Release(state); }
