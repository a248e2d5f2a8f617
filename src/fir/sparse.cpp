// Sparse FIR filter: taps given with their delays, so that work is proportional to their number.
#include <signal_tzm/companion.h>
#include <signal_tzm/fir.h>

#include "frame/call.h"
#include "frame/vector.h"

#include <algorithm>
#include <limits>

using namespace tzm;

// One block. Taps and delays are held largest delay first; the line holds the delay line, oldest sample
// first, and behind it the first new samples of a run.
struct FIRSparseState {
  int32_t nzCount;
  int32_t order;  // the largest delay, and the length of the delay line
  Orva32f* taps;
  int32_t* positions;
  Orva32f* line;      // 2*order + 15 samples
  Orva32f* quadTaps;  // each tap four times in a row
};

namespace {

constexpr int64_t kMostTaps = 0x7FFFFFE, kLongestDelay = 0xFFFFFFE;

constexpr int64_t RoundDown(int64_t value, int64_t step) { return value / step * step; }

// kOutputs outputs side by side, each a fused chain from the largest delay to the smallest; from[0] is the
// sample of the first output.
template <size_t kOutputs>
TZM_INLINE void Block(const FIRSparseState* state, const Orva32f* from, Orva32f* dst) {
  using Lanes = LaneArray<float, kOutputs>;
  Lanes sum = Lanes::Set(0);
  for (int32_t k = 0; k < state->nzCount; ++k) {
    const Lanes samples = Lanes::Load(from - state->positions[k]);
    const auto tap = hn::LoadDup128(typename Lanes::D(), state->quadTaps + 4 * static_cast<size_t>(k));
    sum = MulAdd(samples, Lanes::Each([&](size_t) TZM_LAMBDA { return tap; }), sum);
  }
  sum.Store(dst);
}

// Outputs `first` to `end` of the samples at `from`. Blocks start where the one before ended; what fills none goes one
// by one, with the same chain.
void Outputs(const FIRSparseState* state, const Orva32f* from, Orva32f* dst, int32_t first, int32_t end) {
  constexpr int32_t kWide = 64, kBlock = 16, kLeast = 4;
  int32_t n = first;
  for (; end - n >= kWide; n += kWide) Block<kWide>(state, from + n, dst + n);
  for (; end - n >= kBlock; n += kBlock) Block<kBlock>(state, from + n, dst + n);
  for (; end - n >= kLeast; n += kLeast) Block<kLeast>(state, from + n, dst + n);
  for (; n < end; ++n) {
    float sum = 0;
    for (int32_t k = 0; k < state->nzCount; ++k)
      sum = Fma(state->taps[k], LoadElement(from + n - state->positions[k]), sum);
    StoreElement(sum, dst + n);
  }
}

}  // namespace

OrvaStatus ORVAS_FIRSparseInit_32f(const Orva32f* taps, const int32_t* positions, int32_t nzCount,
                                   const Orva32f* dlyLine, FIRSparseState** state) {
  if (OrvaStatus status = CheckArrays(nzCount, taps, positions)) return status;
  if (OrvaStatus status = CheckPointers(state)) return status;
  for (int32_t k = 0, last = -1; k < nzCount; ++k) {
    const int32_t position = LoadElement(positions + k);
    if (position <= last) return ORVA_STS_SPARSE_DELAY_ERR;
    last = position;
  }
  // The size of the block is fixed, and with it the limits of count and order.
  const int64_t count = nzCount, order = LoadElement(positions + nzCount - 1);
  const int64_t tapBytes = RoundDown(8 * count + 30, 32), lineBytes = RoundDown(8 * order + 75, 16);
  const int64_t bytes = static_cast<int64_t>(sizeof(FIRSparseState)) + tapBytes + lineBytes + 16 * count;
  if (count > kMostTaps || order > kLongestDelay || bytes > std::numeric_limits<int32_t>::max())
    return ORVA_STS_OVERFLOW_ERR;
  Orva8u* const block = ORVAS_Malloc_8u(static_cast<int32_t>(bytes));
  if (block == nullptr) return ORVA_STS_MEM_ALLOC_ERR;

  auto* const made = reinterpret_cast<FIRSparseState*>(block);
  Orva8u* const area = block + sizeof(FIRSparseState);
  made->nzCount = nzCount;
  made->order = static_cast<int32_t>(order);
  made->taps = reinterpret_cast<Orva32f*>(area);
  made->positions = reinterpret_cast<int32_t*>(area + 4 * count);
  made->line = reinterpret_cast<Orva32f*>(area + tapBytes);
  made->quadTaps = reinterpret_cast<Orva32f*>(area + tapBytes + lineBytes);
  for (int64_t k = 0; k < count; ++k) {
    const Orva32f tap = LoadElement(taps + (count - 1 - k));
    made->taps[k] = tap;
    made->positions[k] = LoadElement(positions + (count - 1 - k));
    for (int copy = 0; copy < 4; ++copy) made->quadTaps[4 * k + copy] = tap;
  }
  ORVAS_Zero_32f(made->line, static_cast<int32_t>(2 * order + 15));
  if (dlyLine != nullptr) {
    // Order 0 has no delay line: a given one is refused with the status of the copy.
    if (OrvaStatus status = ORVAS_Flip_32f(dlyLine, made->line, made->order)) {
      ORVAS_FIRSparseRelease_32f(made);
      return status;
    }
  }
  *state = made;
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_FIRSparse_32f(const Orva32f* src, Orva32f* dst, int32_t len, FIRSparseState* state) {
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  if (OrvaStatus status = CheckPointers(state)) return status;
  if (OrvaStatus status = CheckPointers(state->taps, state->positions, state->line, state->quadTaps)) return status;
  // The first outputs reach back into the line, the others find all their samples in the source.
  const int32_t order = state->order, reach = (order + 15) / 16 * 16, first = std::min(len, reach);
  Orva32f* const line = state->line;
  if (first > 0) {
    ORVAS_Copy_32f(src, line + order, first);
    Outputs(state, line + order, dst, 0, first);
  }
  Outputs(state, src, dst, first, len);

  if (order > len) {
    ORVAS_Move_32f(line + len, line, order - len);
    ORVAS_Copy_32f(src, line + (order - len), len);
  } else if (order > 0) {
    ORVAS_Copy_32f(src + (len - order), line, order);
  }
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_FIRSparseGetDlyLine_32f(const FIRSparseState* state, Orva32f* dlyLine) {
  if (OrvaStatus status = CheckPointers(state, dlyLine)) return status;
  if (OrvaStatus status = CheckPointers(state->line)) return status;
  return ORVAS_Flip_32f(state->line, dlyLine, state->order);
}

OrvaStatus ORVAS_FIRSparseSetDlyLine_32f(FIRSparseState* state, const Orva32f* dlyLine) {
  if (OrvaStatus status = CheckPointers(state)) return status;
  if (OrvaStatus status = CheckPointers(state->line)) return status;
  if (dlyLine == nullptr) return ORVAS_Zero_32f(state->line, state->order);
  return ORVAS_Flip_32f(dlyLine, state->line, state->order);
}

OrvaStatus ORVAS_FIRSparseRelease_32f(FIRSparseState* state) {
  ORVAS_Free(state);
  return ORVA_STS_NO_ERR;
}
