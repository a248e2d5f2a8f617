// The core companion's copies and fills by sample type, and the parts of a sample type.
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
template <class T>
constexpr int32_t kParts = kIsComplex<T> ? 2 : 1;

// An array of reals itself, or the parts of a complex one.
template <class T>
TZM_INLINE auto* Reals(T* array) {
  if constexpr (kIsComplex<T>) return Parts(array);
  else return array;
}

// A count of 0 is refused by the companion and does nothing.
inline void Copy(const Orva16s* src, Orva16s* dst, int32_t len) { ORVAS_Copy_16s(src, dst, len); }
inline void Copy(const Orva16sc* src, Orva16sc* dst, int32_t len) { ORVAS_Copy_16sc(src, dst, len); }
inline void Copy(const Orva32f* src, Orva32f* dst, int32_t len) { ORVAS_Copy_32f(src, dst, len); }
inline void Copy(const Orva64f* src, Orva64f* dst, int32_t len) { ORVAS_Copy_64f(src, dst, len); }
inline void Copy(const Orva32fc* src, Orva32fc* dst, int32_t len) { ORVAS_Copy_32fc(src, dst, len); }
inline void Copy(const Orva64fc* src, Orva64fc* dst, int32_t len) { ORVAS_Copy_64fc(src, dst, len); }

inline void Zero(Orva16s* dst, int32_t len) { ORVAS_Zero_16s(dst, len); }
inline void Zero(Orva16sc* dst, int32_t len) { ORVAS_Zero_16sc(dst, len); }
inline void Zero(Orva32f* dst, int32_t len) { ORVAS_Zero_32f(dst, len); }
inline void Zero(Orva64f* dst, int32_t len) { ORVAS_Zero_64f(dst, len); }
inline void Zero(Orva32fc* dst, int32_t len) { ORVAS_Zero_32fc(dst, len); }
inline void Zero(Orva64fc* dst, int32_t len) { ORVAS_Zero_64fc(dst, len); }

}  // namespace tzm
