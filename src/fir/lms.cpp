// LMS adaptive FIR filter: every sample gives one output, then moves the taps along the error.
#include <signal_tzm/fir.h>

#include "frame/call.h"
#include "frame/calls.h"
#include "frame/scale.h"
#include "frame/sum.h"

#include <algorithm>

using namespace tzm;

// One block: the fields, T taps in reversed order, and a line of up to 3T - 1 samples.
struct FIRLMSState {
  uint32_t identity;
  Orva32f* taps;
  void* line;
  int32_t index;  // start of the current window of T samples in the line, 0 to T - 1
  int32_t tapsLen;
};

namespace {

constexpr int32_t kMostTaps = 0x4000000;

template <class Sample>
struct Kind;
template <>
struct Kind<Orva32f> {
  static constexpr uint32_t kIdentity = 0x14CD78FA;
  static constexpr int32_t kBytesPerTap = 16;
  static Orva32f Output(float y) { return y; }
};
template <>
struct Kind<Orva16s> {
  static constexpr uint32_t kIdentity = 0x14CD78FB;
  static constexpr int32_t kBytesPerTap = 10;
  // Rounded as a 32-bit integer and stored in 16 bits: beyond their range it deliberately wraps.
  static Orva16s Output(float y) { return static_cast<Orva16s>(RoundSaturate<int32_t>(y)); }
};

template <class Sample>
Sample* Line(const FIRLMSState* state) {
  return static_cast<Sample*>(state->line);
}

int32_t Reduce(int32_t index, int32_t len) { return (index % len + len) % len; }

template <class Sample>
OrvaStatus CheckState(const FIRLMSState* state) {
  return state->identity != Kind<Sample>::kIdentity ? ORVA_STS_CONTEXT_MATCH_ERR : ORVA_STS_NO_ERR;
}

// The line is doubled so that every window is contiguous.
template <class Sample>
void SetLine(FIRLMSState* state, const Sample* line, int32_t index) {
  state->index = Reduce(index, state->tapsLen);
  Copy(line, Line<Sample>(state), state->tapsLen);
  Copy(line, Line<Sample>(state) + state->tapsLen, state->tapsLen);
}

template <class Sample>
OrvaStatus Init(FIRLMSState** result, const Orva32f* taps, int32_t tapsLen, const Sample* line, int32_t index) {
  if (OrvaStatus status = CheckPointers(result)) return status;
  if (tapsLen < 1) return ORVA_STS_LMS_TAPS_ERR;
  if (tapsLen > kMostTaps) return ORVA_STS_MEM_ALLOC_ERR;
  const int32_t room = Kind<Sample>::kBytesPerTap * tapsLen;
  auto* const state = static_cast<FIRLMSState*>(ORVA_Malloc(static_cast<int32_t>(sizeof(FIRLMSState)) + room));
  if (state == nullptr) return ORVA_STS_MEM_ALLOC_ERR;
  auto* const area = reinterpret_cast<Orva8u*>(state + 1);
  ORVAS_Zero_8u(area, room);
  *state = {Kind<Sample>::kIdentity, reinterpret_cast<Orva32f*>(area), area + 4 * static_cast<size_t>(tapsLen),
            Reduce(index, tapsLen), tapsLen};
  if (taps != nullptr) Flip(taps, state->taps, tapsLen);
  if (line != nullptr) SetLine(state, line, index);
  *result = state;
  return ORVA_STS_NO_ERR;
}

// Eight lanes as two accumulators of four; these are added, then folded neighbours first.
using Order = OrderedSum<LaneArray<float, 8>, 8, HalvesThenNeighbours>;
using Lanes = Order::Lanes;

// Moves the taps by `error` along `window` and gives the output of the window one sample later, in one
// pass over the taps.
template <class Sample>
TZM_INLINE float MoveAndSum(Orva32f* taps, size_t tapsLen, const Sample* window, float error) {
  const Lanes by = Lanes::Set(error);
  return Order::Of(
      tapsLen,
      [=](size_t j, Lanes& sum) TZM_LAMBDA {
        const Lanes moved = MulAdd(by, LoadLanes<Lanes>(window + j), Lanes::Load(taps + j));
        moved.Store(taps + j);
        sum = MulAdd(moved, LoadLanes<Lanes>(window + j + 1), sum);
      },
      [=](size_t j, float& y) TZM_LAMBDA {
        taps[j] = Fma(error, float(LoadElement(window + j)), taps[j]);
        y = Fma(taps[j], float(LoadElement(window + j + 1)), y);
      });
}

// The same without a move first, and without an output after it.
template <class Sample>
float Sum(const Orva32f* taps, size_t tapsLen, const Sample* window) {
  return Order::Of(
      tapsLen,
      [=](size_t j, Lanes& sum) TZM_LAMBDA {
        sum = MulAdd(Lanes::Load(taps + j), LoadLanes<Lanes>(window + j), sum);
      },
      [=](size_t j, float& y) TZM_LAMBDA { y = Fma(taps[j], float(LoadElement(window + j)), y); });
}
template <class Sample>
void MoveTaps(Orva32f* taps, size_t tapsLen, const Sample* window, float error) {
  constexpr size_t kStep = hn::MaxLanes(Full<float>());  // GCC 12 for AArch64 breaks down over two registers a step
  using Register = LaneArray<float, kStep>;
  const Register by = Register::Set(error);
  const Orva32f* const before = taps;
  ForEach<kStep>(tapsLen, [=](const Orva32f* from, const Sample* sample, Orva32f* to) TZM_LAMBDA {
    MulAdd(by, LoadLanes<Register>(sample), Register::Load(from)).Store(to);
  }, before, window, taps);
}

template <class Sample>
void Adapt(Orva32f* taps, size_t tapsLen, const Sample* window, const Sample* ref, Sample* dst, int32_t len,
           float step) {
  float y = Sum(taps, tapsLen, window);
  for (int32_t n = 0; n < len; ++n, ++window) {
    const float error = (static_cast<float>(LoadElement(ref + n)) - y) * step;
    StoreElement(Kind<Sample>::Output(y), dst + n);
    if (n < len - 1) y = MoveAndSum(taps, tapsLen, window, error);
    else MoveTaps(taps, tapsLen, window, error);
  }
}

template <class Sample>
OrvaStatus Run(FIRLMSState* state, const Sample* src, const Sample* ref, Sample* dst, int32_t len, Orva32f mu) {
  if (OrvaStatus status = CheckArrays(len, state, src, ref, dst)) return status;
  if (OrvaStatus status = CheckState<Sample>(state)) return status;
  const int32_t tapsLen = state->tapsLen, first = std::min(len, tapsLen);
  Sample* const line = Line<Sample>(state);
  const float step = 2 * mu;
  // The first windows reach back into the line, the others lie in the source as they are.
  Copy(src, line + state->index + tapsLen, first);
  Adapt(state->taps, tapsLen, line + state->index + 1, ref, dst, first, step);
  if (len > tapsLen) Adapt(state->taps, tapsLen, src + 1, ref + tapsLen, dst + tapsLen, len - tapsLen, step);
  Move(len > tapsLen ? src + (len - tapsLen) : line + state->index + len, line, tapsLen);
  state->index = 0;
  return ORVA_STS_NO_ERR;
}

template <class Sample>
OrvaStatus GetTaps(const FIRLMSState* state, Orva32f* taps) {
  if (OrvaStatus status = CheckPointers(state, taps)) return status;
  if (OrvaStatus status = CheckState<Sample>(state)) return status;
  Flip(state->taps, taps, state->tapsLen);
  return ORVA_STS_NO_ERR;
}

template <class Sample>
OrvaStatus GetDlyLine(const FIRLMSState* state, Sample* line, int32_t* index) {
  if (OrvaStatus status = CheckPointers(state, line, index)) return status;
  if (OrvaStatus status = CheckState<Sample>(state)) return status;
  StoreElement(state->index, index);
  Copy(Line<Sample>(state), line, state->tapsLen);
  return ORVA_STS_NO_ERR;
}

template <class Sample>
OrvaStatus SetDlyLine(FIRLMSState* state, const Sample* line, int32_t index) {
  if (OrvaStatus status = CheckPointers(state, line)) return status;
  if (OrvaStatus status = CheckState<Sample>(state)) return status;
  SetLine(state, line, index);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_FIRLMSInit_32f(FIRLMSState** state, const Orva32f* taps, int32_t tapsLen, const Orva32f* dlyLine,
                                int32_t dlyIndex) {
  return Init(state, taps, tapsLen, dlyLine, dlyIndex);
}

OrvaStatus ORVAS_FIRLMSInit32f_16s(FIRLMSState** state, const Orva32f* taps, int32_t tapsLen, const Orva16s* dlyLine,
                                   int32_t dlyIndex) {
  return Init(state, taps, tapsLen, dlyLine, dlyIndex);
}

OrvaStatus ORVAS_FIRLMS_32f(FIRLMSState* state, const Orva32f* src, const Orva32f* ref, Orva32f* dst, int32_t len,
                            Orva32f mu) {
  return Run(state, src, ref, dst, len, mu);
}

OrvaStatus ORVAS_FIRLMS32f_16s(FIRLMSState* state, const Orva16s* src, const Orva16s* ref, Orva16s* dst, int32_t len,
                               Orva32f mu) {
  return Run(state, src, ref, dst, len, mu);
}

OrvaStatus ORVAS_FIRLMSGetTaps_32f(const FIRLMSState* state, Orva32f* taps) { return GetTaps<Orva32f>(state, taps); }

OrvaStatus ORVAS_FIRLMSGetTaps32f_16s(const FIRLMSState* state, Orva32f* taps) { return GetTaps<Orva16s>(state, taps); }

OrvaStatus ORVAS_FIRLMSGetDlyLine_32f(const FIRLMSState* state, Orva32f* dlyLine, int32_t* dlyIndex) {
  return GetDlyLine(state, dlyLine, dlyIndex);
}

OrvaStatus ORVAS_FIRLMSGetDlyLine32f_16s(const FIRLMSState* state, Orva16s* dlyLine, int32_t* dlyIndex) {
  return GetDlyLine(state, dlyLine, dlyIndex);
}

OrvaStatus ORVAS_FIRLMSSetDlyLine_32f(FIRLMSState* state, const Orva32f* dlyLine, int32_t dlyIndex) {
  return SetDlyLine(state, dlyLine, dlyIndex);
}

OrvaStatus ORVAS_FIRLMSSetDlyLine32f_16s(FIRLMSState* state, const Orva16s* dlyLine, int32_t dlyIndex) {
  return SetDlyLine(state, dlyLine, dlyIndex);
}

OrvaStatus ORVAS_FIRLMSRelease_32f(FIRLMSState* state) {
  ORVA_Free(state);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_FIRLMSRelease32f_16s(FIRLMSState* state) { return ORVAS_FIRLMSRelease_32f(state); }
