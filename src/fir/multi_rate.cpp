// Multi-rate FIR filter: up by U, filter, down by D, in polyphase form without the upsampled sequence.
#include <signal_tzm/fir.h>

#include "fir/samples.h"
#include "frame/call.h"
#include "frame/scale.h"

#include <algorithm>

using namespace tzm;

// One block: the record, the taps, the rows' pointers, the rows. A second one: work. Row r holds for each
// output of a period the tap that meets the r-th sample of its window, the period being repeated for 15
// columns more, so that 16 outputs in a row find their taps side by side.
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

// ---- Blocks: windows of as many outputs as a register holds ----

template <class Tap, class Sample>
struct Windows {
  using Real = PartOf<Tap>;
  using Narrow = PartOf<Sample>;
  using D = Full<Real>;
  using V = Vec<D>;
  static constexpr size_t kParts = kIsComplex<Sample> ? 2 : 1;
  static constexpr size_t kOutputs = hn::MaxLanes(D()) / kParts;     // windows in a register
  static constexpr size_t kRows = 16 / (sizeof(Real) * kParts);      // rows read at a time
  static constexpr size_t kBlock = sizeof(Real) == 8 ? 8 : 16;       // outputs of a block
  static constexpr size_t kVectors = kBlock / kOutputs;

  static TZM_INLINE V Widen(Vec<hn::Rebind<Narrow, D>> v) {
    if constexpr (std::is_same_v<Narrow, Real>) return v;
    else return hn::ConvertTo(D(), hn::PromoteTo(hn::RebindToSigned<D>(), v));
  }

  // kRows samples each of the first of every kRows windows, side by side.
  template <size_t kWindows>
  static TZM_INLINE auto Read(const Sample* const* window, size_t row) {
    const hn::FixedTag<Narrow, kWindows * kParts> d;
    if constexpr (kWindows == kRows) {
      return hn::LoadU(d, Reals(*window + row));
    } else {
      const auto low = Read<kWindows / 2>(window, row), high = Read<kWindows / 2>(window + kWindows / 2, row);
      return hn::Combine(d, high, low);
    }
  }

  // x[i] = sample `row + i` of each window.
  static TZM_INLINE void ReadRows(const Sample* const* window, size_t row, V (&x)[kRows]) {
    const D d;
    Unrolled<kRows>([&](size_t k) TZM_LAMBDA { x[k] = Widen(Read<kOutputs>(window + k, row)); });
    if constexpr (kRows == 4) {  // 4 by 4 within blocks
      const V even[2] = {hn::InterleaveLower(d, x[0], x[2]), hn::InterleaveUpper(d, x[0], x[2])};
      const V odd[2] = {hn::InterleaveLower(d, x[1], x[3]), hn::InterleaveUpper(d, x[1], x[3])};
      Unrolled<2>([&](size_t k) TZM_LAMBDA {
        x[2 * k] = hn::InterleaveLower(d, even[k], odd[k]);
        x[2 * k + 1] = hn::InterleaveUpper(d, even[k], odd[k]);
      });
    } else if constexpr (kRows == 2) {
      const hn::Repartition<double, D> d64;
      const auto first = hn::BitCast(d64, x[0]), second = hn::BitCast(d64, x[1]);
      x[0] = hn::BitCast(d, hn::InterleaveLower(d64, first, second));
      x[1] = hn::BitCast(d, hn::InterleaveUpper(d64, first, second));
    }
  }
  static TZM_INLINE V ReadRow(const Sample* const* window, size_t row) {
    Sample side[kOutputs];
    for (size_t o = 0; o < kOutputs; ++o) side[o] = LoadElement(window[o] + row);
    return Widen(hn::LoadU(hn::Rebind<Narrow, D>(), Reals(side)));
  }

  static TZM_INLINE V Step(V x, const Tap* taps, V sum) {
    const D d;
    if constexpr (kIsComplex<Tap>) {
      const V tap = hn::LoadU(d, Reals(taps));
      const V re = hn::DupEven(tap), im = hn::DupOdd(tap);
      const V turned = hn::OddEven(im, hn::Neg(im));  // -im for the real part
      return hn::MulAdd(hn::Reverse2(d, x), turned, hn::MulAdd(x, re, sum));
    } else if constexpr (kParts == 2) {
      const hn::Repartition<uint64_t, D> d64;
      const auto wide = hn::PromoteTo(d64, hn::LoadU(hn::Rebind<uint32_t, decltype(d64)>(),
                                                     reinterpret_cast<const uint32_t*>(taps)));
      return hn::MulAdd(x, hn::BitCast(d, hn::Or(wide, hn::ShiftLeft<32>(wide))), sum);
    } else {
      return hn::MulAdd(x, hn::LoadU(d, taps), sum);
    }
  }

  static TZM_INLINE void Store(V sum, Narrow* dst) {
    const hn::Rebind<Narrow, D> narrow;
    if constexpr (std::is_same_v<Narrow, Real>) hn::StoreU(sum, narrow, dst);
    else hn::StoreU(hn::DemoteTo(narrow, RoundToInt(sum)), narrow, dst);
  }

  // kBlock outputs; their taps begin at column `column` of the rows.
  static void Run(const Sample* const* window, const Tap* const* rows, size_t rowCount, size_t column, Sample* dst) {
    V sum[kVectors];
    Unrolled<kVectors>([&](size_t v) TZM_LAMBDA { sum[v] = hn::Zero(D()); });
    size_t r = 0;
    for (; rowCount - r >= kRows; r += kRows) {
      Unrolled<kVectors>([&](size_t v) TZM_LAMBDA {
        V x[kRows];
        ReadRows(window + v * kOutputs, r, x);
        Unrolled<kRows>([&](size_t k) TZM_LAMBDA {
          sum[v] = Step(x[k], rows[r + k] + column + v * kOutputs, sum[v]);
        });
      });
    }
    for (; r < rowCount; ++r) {
      Unrolled<kVectors>([&](size_t v) TZM_LAMBDA {
        sum[v] = Step(ReadRow(window + v * kOutputs, r), rows[r] + column + v * kOutputs, sum[v]);
      });
    }
    Unrolled<kVectors>([&](size_t v) TZM_LAMBDA { Store(sum[v], Reals(dst + v * kOutputs)); });
  }
};

// ---- Tail: one output ----

template <class Tap, class Sample>
void RunOne(const Sample* window, const Tap* const* rows, size_t rowCount, size_t column, Sample* dst) {
  using Real = PartOf<Tap>;
  Real re = 0, im = 0;
  for (size_t r = 0; r < rowCount; ++r) {
    const Sample x = LoadElement(window + r);
    const Tap h = rows[r][column];
    if constexpr (std::is_same_v<Sample, Orva16sc>) {
      const Real xr = x.re, xi = x.im;
      re += Fma(-xi, h.im, xr * h.re);
      im += Fma(xi, h.re, xr * h.im);
    } else if constexpr (kIsComplex<Tap>) {
      re = Fma(-x.im, h.im, Fma(x.re, h.re, re));
      im = Fma(x.re, h.im, Fma(x.im, h.re, im));
    } else if constexpr (kIsComplex<Sample>) {
      re = Fma(x.re, h, re);
      im = Fma(x.im, h, im);
    } else {
      re = Fma(x, h, re);
    }
  }
  if constexpr (std::is_same_v<Sample, Orva16s>) StoreElement(RoundSaturate<Orva16s>(re), dst);
  else if constexpr (std::is_same_v<Sample, Orva16sc>)
    StoreElement(Orva16sc{RoundSaturate<Orva16s>(re), RoundSaturate<Orva16s>(im)}, dst);
  else if constexpr (kIsComplex<Sample>) StoreElement(Sample{re, im}, dst);
  else StoreElement(re, dst);
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
  if (stateBytes > kMost) return ORVA_STS_OVERFLOW_ERR;

  Orva8u* const block = ORVAS_Malloc_8u(static_cast<int32_t>(stateBytes));
  Orva8u* const work = ORVAS_Malloc_8u(static_cast<int32_t>((shape.rows + lineLen) * sizeof(Sample)));
  if (CheckPointers(block, work)) {
    ORVAS_Free(block);
    ORVAS_Free(work);
    return ORVA_STS_MEM_ALLOC_ERR;
  }
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

  Position position(shape.offset, up, down);
  const auto window = [&]() TZM_LAMBDA {
    const int64_t q = position.Q();
    position.Next();
    return q <= copied ? line + q : src + (q - rowCount);
  };
  using Block = Windows<Tap, Sample>;
  const int32_t dstLen = up * iterations;
  int64_t column = 0;
  int32_t n = 0;
  const auto advance = [&](int32_t outputs) TZM_LAMBDA {
    n += outputs;
    column += outputs;
    while (column >= up) column -= up;
  };
  while (dstLen - n >= static_cast<int32_t>(Block::kBlock)) {
    const Sample* windows[Block::kBlock];
    for (const Sample*& each : windows) each = window();
    Block::Run(windows, rows, rowCount, column, dst + n);
    advance(Block::kBlock);
  }
  while (n < dstLen) {
    RunOne(window(), rows, rowCount, column, dst + n);
    advance(1);
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
