// The parts of a sample type, and exported operations by sample type.
#pragma once

#include <signal_tzm/arith.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>
#include <signal_tzm/reduce.h>

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

// Exported operations and those of the core companion, by sample type. What they return is not looked at: a count of 0
// is refused and does nothing.

inline void Copy(const Orva16s* src, Orva16s* dst, int32_t len) { ORVAS_Copy_16s(src, dst, len); }
inline void Copy(const Orva16sc* src, Orva16sc* dst, int32_t len) { ORVAS_Copy_16sc(src, dst, len); }
inline void Copy(const Orva32f* src, Orva32f* dst, int32_t len) { ORVAS_Copy_32f(src, dst, len); }
inline void Copy(const Orva64f* src, Orva64f* dst, int32_t len) { ORVAS_Copy_64f(src, dst, len); }
inline void Copy(const Orva32fc* src, Orva32fc* dst, int32_t len) { ORVAS_Copy_32fc(src, dst, len); }
inline void Copy(const Orva64fc* src, Orva64fc* dst, int32_t len) { ORVAS_Copy_64fc(src, dst, len); }
inline void Copy(const Orva16s* src, Orva32f* dst, int32_t len) { ORVAS_Convert_16s32f(src, dst, len); }
inline void Copy(const Orva16sc* src, Orva32fc* dst, int32_t len) {
  ORVAS_Convert_16s32f(Parts(src), Parts(dst), 2 * len);
}

// Source and destination may overlap.
inline void Move(const Orva16s* src, Orva16s* dst, int32_t len) { ORVAS_Move_16s(src, dst, len); }
inline void Move(const Orva32f* src, Orva32f* dst, int32_t len) { ORVAS_Move_32f(src, dst, len); }

inline void Zero(Orva16s* dst, int32_t len) { ORVAS_Zero_16s(dst, len); }
inline void Zero(Orva16sc* dst, int32_t len) { ORVAS_Zero_16sc(dst, len); }
inline void Zero(Orva32f* dst, int32_t len) { ORVAS_Zero_32f(dst, len); }
inline void Zero(Orva64f* dst, int32_t len) { ORVAS_Zero_64f(dst, len); }
inline void Zero(Orva32fc* dst, int32_t len) { ORVAS_Zero_32fc(dst, len); }
inline void Zero(Orva64fc* dst, int32_t len) { ORVAS_Zero_64fc(dst, len); }

inline void Set(Orva32f value, Orva32f* dst, int32_t len) { ORVAS_Set_32f(value, dst, len); }
inline void Set(Orva64f value, Orva64f* dst, int32_t len) { ORVAS_Set_64f(value, dst, len); }
inline void Set(Orva32fc value, Orva32fc* dst, int32_t len) { ORVAS_Set_32fc(value, dst, len); }
inline void Set(Orva64fc value, Orva64fc* dst, int32_t len) { ORVAS_Set_64fc(value, dst, len); }

inline void Flip(const Orva32f* src, Orva32f* dst, int32_t len) { ORVAS_Flip_32f(src, dst, len); }
inline void Flip(const Orva64f* src, Orva64f* dst, int32_t len) { ORVAS_Flip_64f(src, dst, len); }
inline void Flip(const Orva32fc* src, Orva32fc* dst, int32_t len) { ORVAS_Flip_32fc(src, dst, len); }
inline void Flip(const Orva64fc* src, Orva64fc* dst, int32_t len) { ORVAS_Flip_64fc(src, dst, len); }

inline void Conjugate(const Orva32fc* src, Orva32fc* dst, int32_t len) { ORVAS_Conj_32fc(src, dst, len); }
inline void Conjugate(const Orva64fc* src, Orva64fc* dst, int32_t len) { ORVAS_Conj_64fc(src, dst, len); }

// The parts of complex samples in arrays of their own.
inline void Split(const Orva16sc* src, Orva16s* re, Orva16s* im, int32_t len) {
  ORVAS_CplxToReal_16sc(src, re, im, len);
}
inline void Split(const Orva32fc* src, Orva32f* re, Orva32f* im, int32_t len) {
  ORVAS_CplxToReal_32fc(src, re, im, len);
}
inline void Split(const Orva64fc* src, Orva64f* re, Orva64f* im, int32_t len) {
  ORVAS_CplxToReal_64fc(src, re, im, len);
}

// srcDst[i] += src[i].
inline void Add(const Orva32f* src, Orva32f* srcDst, int32_t len) { ORVAS_Add_32f_I(src, srcDst, len); }
inline void Add(const Orva64f* src, Orva64f* srcDst, int32_t len) { ORVAS_Add_64f_I(src, srcDst, len); }

// Products and quotients: of two arrays, and of an array and a constant. Divide gives src2[i] / src1[i].
inline void Multiply(const Orva32f* src1, const Orva32f* src2, Orva32f* dst, int32_t len) {
  ORVAS_Mul_32f(src1, src2, dst, len);
}
inline void Multiply(const Orva64f* src1, const Orva64f* src2, Orva64f* dst, int32_t len) {
  ORVAS_Mul_64f(src1, src2, dst, len);
}
inline void Multiply(const Orva32fc* src1, const Orva32fc* src2, Orva32fc* dst, int32_t len) {
  ORVAS_Mul_32fc(src1, src2, dst, len);
}
inline void Multiply(const Orva64fc* src1, const Orva64fc* src2, Orva64fc* dst, int32_t len) {
  ORVAS_Mul_64fc(src1, src2, dst, len);
}
inline void Multiply(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len) {
  ORVAS_MulC_32f(src, value, dst, len);
}
inline void Multiply(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len) {
  ORVAS_MulC_64f(src, value, dst, len);
}
inline void Divide(const Orva32fc* src1, const Orva32fc* src2, Orva32fc* dst, int32_t len) {
  ORVAS_Div_32fc(src1, src2, dst, len);
}
inline void Divide(const Orva64fc* src1, const Orva64fc* src2, Orva64fc* dst, int32_t len) {
  ORVAS_Div_64fc(src1, src2, dst, len);
}
inline void Divide(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len) {
  ORVAS_DivC_32f(src, value, dst, len);
}
inline void Divide(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len) {
  ORVAS_DivC_64f(src, value, dst, len);
}

inline void Sqrt(const Orva32fc* src, Orva32fc* dst, int32_t len) { ORVAS_Sqrt_32fc(src, dst, len); }
inline void Sqrt(const Orva64fc* src, Orva64fc* dst, int32_t len) { ORVAS_Sqrt_64fc(src, dst, len); }

// re^2 + im^2.
inline void PowerSpectrum(const Orva32fc* src, Orva32f* dst, int32_t len) { ORVAS_PowerSpectr_32fc(src, dst, len); }
inline void PowerSpectrum(const Orva64fc* src, Orva64f* dst, int32_t len) { ORVAS_PowerSpectr_64fc(src, dst, len); }

inline void DotProduct(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva32f* result) {
  ORVAS_DotProd_32f(src1, src2, len, result);
}
inline void DotProduct(const Orva64f* src1, const Orva64f* src2, int32_t len, Orva64f* result) {
  ORVAS_DotProd_64f(src1, src2, len, result);
}
inline void DotProduct(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva32fc* result) {
  ORVAS_DotProd_32fc(src1, src2, len, result);
}
inline void DotProduct(const Orva64fc* src1, const Orva64fc* src2, int32_t len, Orva64fc* result) {
  ORVAS_DotProd_64fc(src1, src2, len, result);
}
inline void DotProduct(const Orva32f* src1, const Orva32fc* src2, int32_t len, Orva32fc* result) {
  ORVAS_DotProd_32f32fc(src1, src2, len, result);
}

}  // namespace tzm
