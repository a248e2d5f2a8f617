// FFT shift: moves the zero-frequency bin of a spectrum to the middle by exchanging its halves.
#include <signal_tzm/transform.h>

#include "frame/call.h"
#include "frame/drive.h"

using namespace tzm;

namespace {

// Elements move as words, so that values are never interpreted.
template <class Word, size_t kWords, class T>
OrvaStatus Shift(const T* src, T* dst, int32_t len) {
  static_assert(sizeof(T) == kWords * sizeof(Word));
  if (OrvaStatus status = CheckArrays(len, src, dst)) return status;
  const size_t half = len / 2, upper = len - half;  // upper: the first half, rounded up
  // In place, an odd shift overwrites this element before its turn.
  const T middle = LoadElement(src + half);
  const Full<Word> d;
  const auto* low = reinterpret_cast<const Word*>(src);
  const auto* high = reinterpret_cast<const Word*>(src + upper);
  // Ascending, each step read before it is written: in place, the writes stay behind the reads.
  ForEach<hn::MaxLanes(d)>(half * kWords, [=](const Word* a, const Word* b, Word* first, Word* second) TZM_LAMBDA {
    const auto fromLow = hn::LoadU(d, a), fromHigh = hn::LoadU(d, b);
    hn::StoreU(fromHigh, d, first);
    hn::StoreU(fromLow, d, second);
  }, low, high, reinterpret_cast<Word*>(dst), reinterpret_cast<Word*>(dst + half));
  if (len % 2 != 0) StoreElement(middle, dst + len - 1);
  return ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_FFTShift_32f(const Orva32f* src, Orva32f* dst, int32_t len) {
  return Shift<uint32_t, 1>(src, dst, len);
}

OrvaStatus ORVAS_FFTShift_64f(const Orva64f* src, Orva64f* dst, int32_t len) {
  return Shift<uint64_t, 1>(src, dst, len);
}

OrvaStatus ORVAS_FFTShift_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len) {
  return Shift<uint64_t, 1>(src, dst, len);
}

OrvaStatus ORVAS_FFTShift_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len) {
  return Shift<uint64_t, 2>(src, dst, len);
}
