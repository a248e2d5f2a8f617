// Multi-rate FIR filter: up by U, filter, down by D, in polyphase form without the upsampled sequence.
#include <signal_tzm/fir.h>

#include "fir/samples.h"
#include "frame/call.h"
#include "frame/drive.h"
#include "frame/scale.h"

#include <algorithm>
#include <cstring>

using namespace tzm;

// One block: the record, the taps, the rows' pointers, the rows. A second one: work, the line and behind it the area of
// a tile. Row r holds for each output of a period the tap that meets the r-th sample of its window, the period being
// repeated for 15 columns more, so that 16 outputs in a row find their taps side by side.
struct FIRMRState {
  int32_t up;
  int32_t upPhase;
  int32_t down;
  int32_t downPhase;
  int32_t tapsLen;
  void* taps;
  void** rows;
  Orva8u* work;
};

namespace {

constexpr int32_t kExtension = 15;
constexpr int64_t kMost = std::numeric_limits<int32_t>::max();

// What follows from the factors. Output n wants the samples [q, q + rows) of the line, and a phase of the
// taps, where offset + n*D = q*U + phase.
struct Shape {
  int64_t rows;    // samples a window, and of the delay line
  int64_t head;    // outputs that the line's share of the source is meant for
  int64_t offset;  // never below 1
  int64_t copied;  // samples of the source in the line

  Shape(int64_t tapsLen, int64_t up, int64_t upPhase, int64_t down, int64_t downPhase)
      : rows((tapsLen + up - 1) / up),
        head((tapsLen / down + 16) / 16 * 16),
        offset(downPhase - upPhase + up),
        copied((down * head + offset) / up) {}
};

// q and phase from output to output, by addition.
class Position {
 public:
  Position(int64_t offset, int64_t up, int64_t down)
      : q_(offset / up), phase_(offset % up), up_(up), stepQ_(down / up), stepPhase_(down % up) {}
  int64_t Q() const { return q_; }
  int64_t Phase() const { return phase_; }
  void Next() {
    q_ += stepQ_;
    phase_ += stepPhase_;
    if (phase_ >= up_) {
      phase_ -= up_;
      ++q_;
    }
  }

 private:
  int64_t q_, phase_;
  const int64_t up_, stepQ_, stepPhase_;
};

// Where windows are taken from: the line stands in for the source as long as they may reach back before it.
template <class Sample>
struct Signal {
  const Sample *line, *src;
  int64_t rows, copied;

  // `len` samples from an index of the line, the source being its continuation. Only up to `copied` + 1
  // samples that begin before the source are sure to lie in one array.
  const Sample* At(int64_t index, int64_t len) const {
    return index + len <= rows + copied ? line + index : src + (index - rows);
  }
};

// Samples laid side by side: too many for the stack of a small thread.
constexpr int64_t kTileBytes = 32768, kTileAlignment = 64;

// ---- Tiles: a few phases of many periods ----

// A period is a whole number of times U outputs; the outputs of one phase in successive periods have their
// taps in common, and their windows a fixed distance apart. So each lane is a period: the samples of as many
// windows are laid side by side, row by row, and serve all phases.
template <class Tap, class Sample>
struct Periods {
  int64_t rows, up, down, offset;  // of the filter; offset + n*down = q*up + phase
  const Tap* taps;                 // the matrix of the phases
  int64_t factor;                  // of a period: factor*up outputs from factor*down samples
  Signal<Sample> signal;
  PartOf<Tap>* area;               // kTileBytes

  int64_t Q(int64_t n) const { return (offset + n * down) / up; }
};

template <class Tap, class Sample, size_t kVectors>
struct Tile {
  using Real = PartOf<Tap>;
  using Narrow = PartOf<Sample>;
  using D = Full<Real>;
  using V = Vec<D>;
  static constexpr size_t kLanes = hn::MaxLanes(D());
  static constexpr int64_t kPeriods = kVectors * kLanes;
  static constexpr size_t kBlock = 16 / sizeof(Real);        // reals in 128 bits
  static constexpr size_t kReals = kVectors == 1 ? 8 : 4;    // in a row of each period, summed together
  static constexpr size_t kPhases = kReals / kParts<Sample>;
  static constexpr size_t kRow = kParts<Sample> * kPeriods;  // the parts of complex samples have rows of their own
  static constexpr int64_t kRows = kTileBytes / int64_t{kRow * sizeof(Real)};
  using Sums = V[kReals * kVectors];

  // kBlock reals each of the first of every kBlock windows, side by side.
  template <size_t kCount>
  static TZM_INLINE auto Read(const Narrow* const* window, size_t at) {
    const hn::FixedTag<Narrow, kCount> d;
    if constexpr (kCount == kBlock) {
      return hn::LoadU(d, *window + at);
    } else {
      const auto low = Read<kCount / 2>(window, at), high = Read<kCount / 2>(window + kCount / 2, at);
      return hn::Combine(d, high, low);
    }
  }

  // Within blocks of 128 bits rows become columns.
  template <class W>
  static TZM_INLINE void Transpose(W (&x)[kBlock]) {
    const hn::DFromV<W> d;
    if constexpr (kBlock == 4) {
      const W even[2] = {hn::InterleaveLower(d, x[0], x[2]), hn::InterleaveUpper(d, x[0], x[2])};
      const W odd[2] = {hn::InterleaveLower(d, x[1], x[3]), hn::InterleaveUpper(d, x[1], x[3])};
      Unrolled<2>([&](size_t k) TZM_LAMBDA {
        x[2 * k] = hn::InterleaveLower(d, even[k], odd[k]);
        x[2 * k + 1] = hn::InterleaveUpper(d, even[k], odd[k]);
      });
    } else {
      const W first = x[0];
      x[0] = hn::InterleaveLower(d, first, x[1]);
      x[1] = hn::InterleaveUpper(d, first, x[1]);
    }
  }

  // The samples [first, first + count) of `valid` windows that lie `step` apart, side by side at `to`. Lanes
  // beyond repeat the last one.
  static void Lay(const Signal<Sample>& signal, int64_t first, int64_t step, int64_t valid, int64_t count, Real* to) {
    const int64_t most = first >= signal.rows ? count : signal.copied + 1;
    for (int64_t done = 0; done < count; done += most) {
      const int64_t len = std::min(most, count - done);
      const Narrow* window[kPeriods];
      for (int64_t k = 0; k < kPeriods; ++k)
        window[k] = Reals(signal.At(first + done + std::min(k, valid - 1) * step, len));
      const size_t reals = static_cast<size_t>(len) * kParts<Sample>;
      size_t at = 0;
      for (; reals - at >= kBlock; at += kBlock, to += kBlock * kPeriods) {
        Unrolled<kVectors>([&](size_t v) TZM_LAMBDA {
          V x[kBlock];
          const auto row = [&](size_t k) TZM_LAMBDA { return Read<kLanes>(window + v * kLanes + k, at); };
          Unrolled<kBlock>([&](size_t k) TZM_LAMBDA { x[k] = ToFloating(D(), row(k)); });
          Transpose(x);
          Unrolled<kBlock>([&](size_t k) TZM_LAMBDA { hn::StoreU(x[k], D(), to + k * kPeriods + v * kLanes); });
        });
      }
      for (; at < reals; ++at, to += kPeriods)
        for (int64_t k = 0; k < kPeriods; ++k) to[k] = static_cast<Real>(LoadElement(window[k] + at));
    }
  }

  // One step of every chain for each of `count` rows: x[i] are the samples of phase i, and its taps stand i
  // columns further in the matrix.
  static TZM_INLINE void Accumulate(const Real* const (&x)[kPhases], const Tap* taps, int64_t width, int64_t count,
                                    Sums& sums) {
    const D d;
    Sums sum;  // GCC keeps what is not its own in memory
    Unrolled<std::size(sum)>([&](size_t k) TZM_LAMBDA { sum[k] = sums[k]; });
    for (size_t at = 0; at < static_cast<size_t>(count) * kRow; at += kRow, taps += width) {
      Unrolled<kPhases>([&](auto phase) TZM_LAMBDA {
        constexpr size_t kTap = phase * kParts<Tap>, kSum = phase * kParts<Sample> * kVectors;
        const auto block = hn::LoadDup128(d, Reals(taps) + kTap / kBlock * kBlock);
        const V re = hn::Broadcast<kTap % kBlock>(block);
        const Real* const row = x[phase] + at;
        if constexpr (kIsComplex<Tap>) {
          const V im = hn::Broadcast<kTap % kBlock + 1>(block);
          Unrolled<kVectors>([&](auto v) TZM_LAMBDA {
            const V xr = InRegister(hn::LoadU(d, row + v * kLanes));
            const V xi = InRegister(hn::LoadU(d, row + kPeriods + v * kLanes));
            sum[kSum + v] = hn::NegMulAdd(xi, im, hn::MulAdd(xr, re, sum[kSum + v]));
            sum[kSum + kVectors + v] = hn::MulAdd(xr, im, hn::MulAdd(xi, re, sum[kSum + kVectors + v]));
          });
        } else {
          Unrolled<kParts<Sample> * kVectors>([&](auto v) TZM_LAMBDA {
            sum[kSum + v] = hn::MulAdd(hn::LoadU(d, row + v * kLanes), re, sum[kSum + v]);
          });
        }
      });
    }
    Unrolled<std::size(sum)>([&](size_t k) TZM_LAMBDA { sums[k] = sum[k]; });
  }

  // `phases` outputs of `valid` periods, which lie `stride` apart.
  static TZM_INLINE void Store(const Sums& sum, Sample* dst, int64_t phases, int64_t valid, int64_t stride) {
    if (phases == kPhases && valid == kPeriods) return StoreAll(sum, Reals(dst), stride * kParts<Sample>);
    Narrow all[kReals * kPeriods];
    StoreAll(sum, all, kReals);
    for (int64_t k = 0; k < valid; ++k)
      std::memcpy(dst + k * stride, all + kReals * k, static_cast<size_t>(phases) * sizeof(Sample));
  }

  // Blocks of 128 bits to places `stride` apart.
  template <class W>
  static TZM_INLINE void StoreBlocks(W v, Narrow* dst, int64_t stride) {
    const hn::DFromV<W> d;
    if constexpr (hn::MaxLanes(hn::DFromV<W>()) > kBlock) {
      const hn::Half<hn::DFromV<W>> half;
      StoreBlocks(hn::LowerHalf(half, v), dst, stride);
      StoreBlocks(hn::UpperHalf(half, v), dst + static_cast<int64_t>(hn::MaxLanes(d) / 2) * stride, stride);
    } else if constexpr (std::is_same_v<Narrow, Real>) {
      hn::StoreU(v, d, dst);
    } else {
      const hn::Rebind<Narrow, decltype(d)> narrow;
      hn::StoreU(hn::DemoteTo(narrow, v), narrow, dst);
    }
  }

  // The outputs of each period, `stride` apart.
  static TZM_INLINE void StoreAll(const Sums& sum, Narrow* dst, int64_t stride) {
    const auto ready = [&](V v) TZM_LAMBDA {
      if constexpr (std::is_same_v<Narrow, Real>) return v;
      else return RoundFor<Narrow>(v);
    };
    Unrolled<kVectors>([&](size_t v) TZM_LAMBDA {
      for (size_t first = 0; first < kReals; first += kBlock) {
        decltype(ready(sum[0])) x[kBlock];
        Unrolled<kBlock>([&](size_t k) TZM_LAMBDA { x[k] = ready(sum[(first + k) * kVectors + v]); });
        Transpose(x);
        Unrolled<kBlock>([&](size_t k) TZM_LAMBDA {
          StoreBlocks(x[k], dst + first + static_cast<int64_t>(v * kLanes + k) * stride, stride);
        });
      }
    });
  }
};

// ---- Schedules: which windows share the area ----

// The area holds one row of samples below the other, in each a column for every period of the tile:
//
//            period 0      period 1      ...   the last
//   row 0    x[q0]         x[q0 + s]     ...               q0: where the window of the first output begins, s: the
//   row 1    x[q0 + 1]     x[q0 + s + 1] ...               source samples of a period
//   ...
//
// Output n of every period sums the rows from q(n) - q0 on, as many as the filter has.
enum class Schedule {
  kTogether,  // some outputs in a row share the rows of all their windows, which are laid once
  kInTurns,   // the windows are too long for that: so many of their rows at a time, and the sums wait in between
  kApart      // the outputs are too far apart to share: in turns, and each of a group has rows of its own
};

struct Turns {
  Schedule schedule;
  int64_t rows;     // of each window at a time
  int64_t outputs;  // of a period, a whole number of groups, unless they end before
};

// For an area of kRows, groups of kGroup outputs, and sums of kKept groups that can wait.
template <int64_t kRows, int64_t kGroup, int64_t kKept>
Turns PlanTurns(int64_t rows, int64_t up, int64_t down) {
  const int64_t atOnce = std::min(rows, kRows / 2), outputs = (kRows - atOnce) * up / down / kGroup * kGroup;
  if (outputs == 0) return {Schedule::kApart, kRows / kGroup, kGroup};
  if (atOnce == rows) return {Schedule::kTogether, rows, outputs};
  return {Schedule::kInTurns, atOnce, std::min(outputs, kGroup * kKept)};
}

// `valid` periods, their windows beginning `from` samples later than those of the first one.
template <class Tap, class Sample, size_t kVectors>
void RunTile(const Periods<Tap, Sample>& p, int64_t from, int64_t valid, Sample* dst) {
  using T = Tile<Tap, Sample, kVectors>;
  using Sums = typename T::Sums;
  constexpr int64_t kGroup = T::kPhases, kKept = 16;
  const int64_t outputs = p.factor * p.up, step = p.factor * p.down, width = p.up + kExtension;
  const Turns turns = PlanTurns<T::kRows, kGroup, kKept>(p.rows, p.up, p.down);
  const bool apart = turns.schedule == Schedule::kApart;
  Sums kept[kKept];
  for (int64_t begin = 0; begin < outputs; begin += turns.outputs) {
    const int64_t end = std::min(begin + turns.outputs, outputs);
    const int64_t first = p.Q(begin), span = p.Q(end - 1) - first;
    for (int64_t r = 0; r < p.rows; r += turns.rows) {
      const int64_t count = std::min(turns.rows, p.rows - r);
      if (!apart) T::Lay(p.signal, from + first + r, step, valid, span + count, p.area);
      Position position(p.offset + begin * p.down, p.up, p.down);
      int64_t column = begin % p.up;
      for (int64_t n = begin; n < end; n += kGroup) {
        const PartOf<Tap>* x[kGroup];
        for (int64_t i = 0; i < kGroup; ++i) {
          const int64_t q = position.Q();
          PartOf<Tap>* const own = p.area + static_cast<size_t>(apart ? i * turns.rows : q - first) * T::kRow;
          if (apart) T::Lay(p.signal, from + q + r, step, valid, count, own);
          x[i] = own;
          if (n + i < outputs - 1) position.Next();  // phases beyond the period repeat the last one
        }
        Sums sum, &before = kept[(n - begin) / kGroup % kKept];
        Unrolled<std::size(sum)>([&](size_t k) TZM_LAMBDA { sum[k] = r == 0 ? hn::Zero(typename T::D()) : before[k]; });
        T::Accumulate(x, p.taps + column + r * width, width, count, sum);
        if (r + count == p.rows) T::Store(sum, dst + n, std::min(kGroup, outputs - n), valid, outputs);
        else Unrolled<std::size(sum)>([&](size_t k) TZM_LAMBDA { before[k] = sum[k]; });
        column = (column + kGroup) % p.up;
      }
    }
  }
}

// `count` periods.
template <class Tap, class Sample>
void RunPeriods(const Periods<Tap, Sample>& p, int64_t from, int64_t count, Sample* dst) {
  constexpr size_t kVectors = hn::MaxLanes(Full<uint8_t>()) == 16 ? 4 : 2;  // chains that fill the pipelines
  constexpr int64_t kNarrow = Tile<Tap, Sample, 1>::kPeriods, kWide = Tile<Tap, Sample, kVectors>::kPeriods;
  for (int64_t k = 0; k < count; k += kWide) {
    const int64_t valid = std::min(kWide, count - k);
    const auto run = valid > kNarrow ? RunTile<Tap, Sample, kVectors> : RunTile<Tap, Sample, 1>;
    run(p, from + k * p.factor * p.down, valid, dst + k * p.factor * p.up);
  }
}

// ---- The last outputs of complex 16-bit samples ----

void RunOne(const Orva16sc* window, const Orva32fc* taps, int64_t width, int64_t rows, Orva16sc* dst) {
  Orva32f re = 0, im = 0;
  for (int64_t r = 0; r < rows; ++r, taps += width) {
    const Orva16sc x = LoadElement(window + r);
    const Orva32f xr = x.re, xi = x.im;
    re += Fma(-xi, taps->im, xr * taps->re);
    im += Fma(xi, taps->re, xr * taps->im);
  }
  StoreElement(Orva16sc{RoundSaturate<Orva16s>(re), RoundSaturate<Orva16s>(im)}, dst);
}

// ---- Init, run, release ----

template <class Tap, class Sample>
OrvaStatus Init(const Tap* taps, int32_t tapsLen, int32_t up, int32_t upPhase, int32_t down, int32_t downPhase,
                FIRMRState** stateOut) {
  if (OrvaStatus status = CheckPointers(taps, stateOut)) return status;
  if (tapsLen < 1) return ORVA_STS_SIZE_ERR;
  if (down < 1 || up < 1) return ORVA_STS_FIRMR_FACTOR_ERR;
  if (upPhase < 0 || downPhase < 0 || up <= upPhase || down <= downPhase) return ORVA_STS_FIRMR_PHASE_ERR;

  // Rows hold taps, but the limits count samples: with real taps on complex samples half is not used.
  constexpr int64_t kMostSamples = (kMost >> (sizeof(Sample) == 4 ? 2 : sizeof(Sample) == 8 ? 3 : 4)) - 1;
  const Shape shape(tapsLen, up, upPhase, down, downPhase);
  const int64_t width = int64_t{up} + kExtension;
  const int64_t lineLen = (down * (shape.head + 1) + up + 15) / 16 * 16 / up;
  if (down >= (kMost - down - up) / up || tapsLen >= kMost - up || tapsLen > kMostSamples ||
      shape.rows >= kMost / width / int64_t{sizeof(Sample)} || shape.head + 1 >= kMost / down - up - down ||
      shape.rows >= kMost - lineLen || shape.rows + lineLen > kMostSamples)
    return ORVA_STS_OVERFLOW_ERR;
  const int64_t tapsAt = RoundUp16(sizeof(FIRMRState));
  const int64_t rowsAt = tapsAt + RoundUp16(int64_t{tapsLen} * sizeof(Tap));
  const int64_t matrixAt = rowsAt + shape.rows * static_cast<int64_t>(sizeof(void*));
  const int64_t stateBytes = matrixAt + shape.rows * width * static_cast<int64_t>(sizeof(Sample));
  const int64_t workBytes = (shape.rows + lineLen) * int64_t{sizeof(Sample)} + kTileAlignment + kTileBytes;

  Orva8u *block, *work;
  if (OrvaStatus status = MakeBlocks(stateBytes, workBytes, block, work)) return status;
  auto* const state = reinterpret_cast<FIRMRState*>(block);
  *state = {up, upPhase, down, downPhase, tapsLen, block + tapsAt, reinterpret_cast<void**>(block + rowsAt), work};
  auto* const kept = static_cast<Tap*>(state->taps);
  Copy(taps, kept, tapsLen);
  auto* const matrix = reinterpret_cast<Tap*>(block + matrixAt);
  for (int64_t r = 0; r < shape.rows; ++r) {
    Tap* const row = matrix + r * width;
    state->rows[r] = row;
    Zero(row, static_cast<int32_t>(width));
    const int64_t first = up * (shape.rows - 1 - r);
    Position position(shape.offset, up, down);
    for (int32_t c = 0; c < up; ++c, position.Next()) {
      const int64_t tap = position.Phase() + first;
      if (tap < tapsLen) row[c] = kept[tap];
    }
    for (int32_t c = up; c < width; ++c) row[c] = row[c - up];
  }
  *stateOut = state;
  return ORVA_STS_NO_ERR;
}

template <class Tap, class Sample>
OrvaStatus Run(const Sample* src, Sample* dst, int32_t iterations, const FIRMRState* state, const Sample* delaySrc,
               Sample* delayDst) {
  if (OrvaStatus status = CheckArrays(iterations, src, dst)) return status;
  if (OrvaStatus status = CheckPointers(state)) return status;
  if (OrvaStatus status = CheckPointers(state->rows, state->taps, state->work)) return status;
  const int32_t up = state->up, down = state->down;
  if (up < 1 || down < 1) return ORVA_STS_FIRMR_FACTOR_ERR;
  if (kMost / up <= iterations || kMost / down <= iterations) return ORVA_STS_OVERFLOW_ERR;
  const Shape shape(state->tapsLen, up, state->upPhase, down, state->downPhase);
  const auto* const rows = reinterpret_cast<const Tap* const*>(state->rows);
  for (int64_t r = 0; r < shape.rows; ++r)
    if (OrvaStatus status = CheckPointers(rows[r])) return status;

  // The line stands in for the source as long as a window may reach back before it.
  auto* const line = reinterpret_cast<Sample*>(state->work);
  const int32_t rowCount = static_cast<int32_t>(shape.rows), copied = static_cast<int32_t>(shape.copied);
  const int32_t srcLen = down * iterations, here = std::min(srcLen, copied);
  BeginLine(delaySrc, line, rowCount);
  Copy(src, line + rowCount, here);
  Zero(line + rowCount + here, copied - here);

  // Periods of so many outputs that these share what is laid side by side, as long as there is a period for each
  // lane; of fewer than four a part of every step would be lost.
  const auto lineEnd = reinterpret_cast<uintptr_t>(line + rowCount + copied);
  auto* const area = reinterpret_cast<PartOf<Tap>*>((lineEnd + kTileAlignment - 1) / kTileAlignment * kTileAlignment);
  const Signal<Sample> signal = {line, src, shape.rows, shape.copied};
  Periods<Tap, Sample> p = {shape.rows, up, down, shape.offset, rows[0], 1, signal, area};
  constexpr int64_t kFewest = 4, kEnough = 16, kLanes = 64 / sizeof(PartOf<Tap>);
  while (2 * p.factor <= iterations &&
         (p.factor * up < kFewest || (p.factor * up < kEnough && iterations / (2 * p.factor) >= kLanes)))
    p.factor *= 2;
  const int64_t periods = iterations / p.factor, done = periods * p.factor;
  RunPeriods(p, 0, periods, dst);
  p.factor = 1;
  RunPeriods(p, done * down, iterations - done, dst + done * up);
  if constexpr (std::is_same_v<Sample, Orva16sc>) {
    // The last outputs once more, as the tail has them.
    const auto tail = [&](size_t count, Orva16sc* to) {
      for (int64_t n = to - dst, end = n + static_cast<int64_t>(count); n < end; ++n) {
        const int64_t q = (shape.offset + n * down) / up;
        RunOne(p.signal.At(q, shape.rows), rows[0] + n % up, up + kExtension, shape.rows, dst + n);
      }
    };
    BodyAndTail<16>(static_cast<size_t>(up) * iterations, [](size_t, Orva16sc*) {}, tail, dst);
  }
  HandOn(delaySrc, src, srcLen, delayDst, rowCount);
  return ORVA_STS_NO_ERR;
}

OrvaStatus Release(FIRMRState* state) {
  if (state == nullptr) return ORVA_STS_NO_ERR;
  ORVAS_Free(state->work);
  state->work = nullptr;
  ORVAS_Free(state);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_FIRMRInit_32f(const Orva32f* taps, int32_t tapsLen, int32_t up, int32_t upPhase, int32_t down,
                               int32_t downPhase, FIRMRState** stateOut) {
  return Init<Orva32f, Orva32f>(taps, tapsLen, up, upPhase, down, downPhase, stateOut);
}
OrvaStatus ORVAS_FIRMRInit_64f(const Orva64f* taps, int32_t tapsLen, int32_t up, int32_t upPhase, int32_t down,
                               int32_t downPhase, FIRMRState** stateOut) {
  return Init<Orva64f, Orva64f>(taps, tapsLen, up, upPhase, down, downPhase, stateOut);
}
OrvaStatus ORVAS_FIRMRInit_32fc(const Orva32fc* taps, int32_t tapsLen, int32_t up, int32_t upPhase, int32_t down,
                                int32_t downPhase, FIRMRState** stateOut) {
  return Init<Orva32fc, Orva32fc>(taps, tapsLen, up, upPhase, down, downPhase, stateOut);
}
OrvaStatus ORVAS_FIRMRInit_64fc(const Orva64fc* taps, int32_t tapsLen, int32_t up, int32_t upPhase, int32_t down,
                                int32_t downPhase, FIRMRState** stateOut) {
  return Init<Orva64fc, Orva64fc>(taps, tapsLen, up, upPhase, down, downPhase, stateOut);
}
OrvaStatus ORVAS_FIRMRInit32f_32fc(const Orva32f* taps, int32_t tapsLen, int32_t up, int32_t upPhase, int32_t down,
                                   int32_t downPhase, FIRMRState** stateOut) {
  return Init<Orva32f, Orva32fc>(taps, tapsLen, up, upPhase, down, downPhase, stateOut);
}

OrvaStatus ORVAS_FIRMR_32f(const Orva32f* src, Orva32f* dst, int32_t iterations, FIRMRState* state,
                           const Orva32f* delaySrc, Orva32f* delayDst) {
  return Run<Orva32f>(src, dst, iterations, state, delaySrc, delayDst);
}
OrvaStatus ORVAS_FIRMR_16s(const Orva16s* src, Orva16s* dst, int32_t iterations, FIRMRState* state,
                           const Orva16s* delaySrc, Orva16s* delayDst) {
  return Run<Orva32f>(src, dst, iterations, state, delaySrc, delayDst);
}
OrvaStatus ORVAS_FIRMR_64f(const Orva64f* src, Orva64f* dst, int32_t iterations, FIRMRState* state,
                           const Orva64f* delaySrc, Orva64f* delayDst) {
  return Run<Orva64f>(src, dst, iterations, state, delaySrc, delayDst);
}
OrvaStatus ORVAS_FIRMR_32fc(const Orva32fc* src, Orva32fc* dst, int32_t iterations, FIRMRState* state,
                            const Orva32fc* delaySrc, Orva32fc* delayDst) {
  return Run<Orva32fc>(src, dst, iterations, state, delaySrc, delayDst);
}
OrvaStatus ORVAS_FIRMR_16sc(const Orva16sc* src, Orva16sc* dst, int32_t iterations, FIRMRState* state,
                            const Orva16sc* delaySrc, Orva16sc* delayDst) {
  return Run<Orva32fc>(src, dst, iterations, state, delaySrc, delayDst);
}
OrvaStatus ORVAS_FIRMR_64fc(const Orva64fc* src, Orva64fc* dst, int32_t iterations, FIRMRState* state,
                            const Orva64fc* delaySrc, Orva64fc* delayDst) {
  return Run<Orva64fc>(src, dst, iterations, state, delaySrc, delayDst);
}
OrvaStatus ORVAS_FIRMR32f_32fc(const Orva32fc* src, Orva32fc* dst, int32_t iterations, FIRMRState* state,
                               const Orva32fc* delaySrc, Orva32fc* delayDst) {
  return Run<Orva32f>(src, dst, iterations, state, delaySrc, delayDst);
}

OrvaStatus ORVAS_FIRMRRelease_32f(FIRMRState* state) { return Release(state); }
OrvaStatus ORVAS_FIRMRRelease_64f(FIRMRState* state) { return Release(state); }
OrvaStatus ORVAS_FIRMRRelease_32fc(FIRMRState* state) { return Release(state); }
OrvaStatus ORVAS_FIRMRRelease_64fc(FIRMRState* state) { return Release(state); }
OrvaStatus ORVAS_FIRMRRelease32f_32fc(FIRMRState* state) { return ORVAS_FIRMRRelease_32f(state); }
