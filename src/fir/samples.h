// What the streaming filters share: their blocks, and the delay line that a run begins with and hands on.
#pragma once

#include "frame/calls.h"

#include <limits>

namespace tzm {

constexpr int64_t RoundUp16(int64_t bytes) { return (bytes + 15) / 16 * 16; }

// The block of a state and that of its work; neither where the status is not 0.
inline OrvaStatus MakeBlocks(int64_t stateBytes, int64_t workBytes, Orva8u*& state, Orva8u*& work) {
  constexpr int64_t kMost = std::numeric_limits<int32_t>::max();
  if (stateBytes > kMost || workBytes > kMost) return ORVA_STS_OVERFLOW_ERR;
  state = ORVAS_Malloc_8u(static_cast<int32_t>(stateBytes));
  work = ORVAS_Malloc_8u(static_cast<int32_t>(workBytes));
  if (state != nullptr && work != nullptr) return ORVA_STS_NO_ERR;
  ORVAS_Free(state);
  ORVAS_Free(work);
  return ORVA_STS_MEM_ALLOC_ERR;
}

// The first `len` samples of a line: those of the caller's delay line, or zeros. May convert.
template <class Sample, class Element>
void BeginLine(const Sample* delaySrc, Element* line, int32_t len) {
  if (delaySrc != nullptr) Copy(delaySrc, line, len);
  else Zero(line, len);
}

// The last `kept` samples of the delay line followed by `len` samples of `src`. The delay lines may be
// one array.
template <class Sample>
void HandOn(const Sample* delaySrc, const Sample* src, int32_t len, Sample* delayDst, int32_t kept) {
  if (delayDst == nullptr) return;
  if (len >= kept) {
    Copy(src + (len - kept), delayDst, kept);
    return;
  }
  const int32_t old = kept - len;
  if (delaySrc == nullptr) {
    Zero(delayDst, old);
  } else {
    static_assert(sizeof(Sample) % sizeof(Orva16s) == 0);
    Move(reinterpret_cast<const Orva16s*>(delaySrc + len), reinterpret_cast<Orva16s*>(delayDst),
         old * static_cast<int32_t>(sizeof(Sample) / sizeof(Orva16s)));
  }
  Copy(src, delayDst + old, len);
}

}  // namespace tzm
