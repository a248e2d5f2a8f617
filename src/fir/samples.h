// What the streaming filters share: copies by sample type, and the delay line that a run hands on.
#pragma once

#include <signal_tzm/companion.h>

#include "frame/vector.h"

namespace tzm {

// The type of a complex type's parts; a real type itself.
template <class T>
struct PartType { using Type = T; };
template <> struct PartType<Orva16sc> { using Type = Orva16s; };
template <> struct PartType<Orva32fc> { using Type = Orva32f; };
template <> struct PartType<Orva64fc> { using Type = Orva64f; };
template <class T>
using PartOf = typename PartType<std::remove_const_t<T>>::Type;
template <class T>
constexpr bool kIsComplex = !std::is_same_v<std::remove_const_t<T>, PartOf<T>>;

// An array of reals itself, or the parts of a complex one.
template <class T>
TZM_INLINE auto* Reals(T* array) {
  if constexpr (kIsComplex<T>) return Parts(array);
  else return array;
}

constexpr int64_t RoundUp16(int64_t bytes) { return (bytes + 15) / 16 * 16; }

// A count of 0 is refused by the companion and copies nothing.
inline void Copy(const Orva16s* src, Orva16s* dst, int32_t len) { ORVAS_Copy_16s(src, dst, len); }
inline void Copy(const Orva16sc* src, Orva16sc* dst, int32_t len) { ORVAS_Copy_16sc(src, dst, len); }
inline void Copy(const Orva32f* src, Orva32f* dst, int32_t len) { ORVAS_Copy_32f(src, dst, len); }
inline void Copy(const Orva32fc* src, Orva32fc* dst, int32_t len) { ORVAS_Copy_32fc(src, dst, len); }
inline void Copy(const Orva64f* src, Orva64f* dst, int32_t len) { ORVAS_Copy_64f(src, dst, len); }
inline void Copy(const Orva64fc* src, Orva64fc* dst, int32_t len) { ORVAS_Copy_64fc(src, dst, len); }
inline void Copy(const Orva16s* src, Orva32f* dst, int32_t len) { ORVAS_Convert_16s32f(src, dst, len); }
inline void Copy(const Orva16sc* src, Orva32fc* dst, int32_t len) {
  ORVAS_Convert_16s32f(Parts(src), Parts(dst), 2 * len);
}

inline void Zero(Orva16s* dst, int32_t len) { ORVAS_Zero_16s(dst, len); }
inline void Zero(Orva16sc* dst, int32_t len) { ORVAS_Zero_16sc(dst, len); }
inline void Zero(Orva32f* dst, int32_t len) { ORVAS_Zero_32f(dst, len); }
inline void Zero(Orva32fc* dst, int32_t len) { ORVAS_Zero_32fc(dst, len); }
inline void Zero(Orva64f* dst, int32_t len) { ORVAS_Zero_64f(dst, len); }
inline void Zero(Orva64fc* dst, int32_t len) { ORVAS_Zero_64fc(dst, len); }

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
    ORVAS_Move_16s(reinterpret_cast<const Orva16s*>(delaySrc + len), reinterpret_cast<Orva16s*>(delayDst),
                   old * static_cast<int32_t>(sizeof(Sample) / sizeof(Orva16s)));
  }
  Copy(src, delayDst + old, len);
}

}  // namespace tzm
