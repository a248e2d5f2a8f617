/* Elementary functions: exponentials, logarithms, trigonometric functions, powers, magnitude, phase, polar forms. */
#ifndef SIGNAL_TZM_ELEMENTARY_H
#define SIGNAL_TZM_ELEMENTARY_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Exponentials and logarithms ---- */

/** @name Exponentials and logarithms
 * dst[i] = e^src[i], ln src[i] or log10 src[i], by the vector math companion over the whole array; `dst`
 * is always written in full, with what the function gives (infinity, zero, NaN) beyond its domain.
 *
 * The status comes from a scan that deliberately looks at two places only: the first block (4 values in
 * binary32, 2 in binary64; if `len` fills it) and the tail past the last whole block. In the first block
 * the first condition of the table is looked for in every lane, then the second; if neither is met, the
 * last offending element of the tail decides. NaN meets no condition.
 *
 * | Operation | first condition | second condition |
 * |---|---|---|
 * | Exp_32f | 202: x > 88.72283 | 203: x < -87.33654 |
 * | Exp_64f | 202: x > 709.78271 | 203: x < -708.39641 |
 * | Ln, Log10 | 303: x = 0 | 304: x < 0 |
 *
 * (In the first block Exp_32f compares with the neighbouring binary32 numbers of bits 0x42B17217 and
 * 0xC2AEAC4F.) Earlier statuses: 1 null pointer; 2 `len < 1`. `dst` may be `src`. Exp in place works on a
 * copy: it tests the length first, and answers a null pointer or a failed allocation with the status that
 * ORVAS_Copy gives for a null pointer. @{ */
TZM_API OrvaStatus ORVAS_Exp_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Exp_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Exp_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Exp_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Ln_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Ln_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Ln_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Ln_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Log10_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Log10_64f(const Orva64f* src, Orva64f* dst, int32_t len);
/** @} */

/* ---- Trigonometric functions ---- */

/** @name Trigonometric functions
 * dst[i] = sin, cos, tan or arctan of src[i], in radians; Arctan2: the angle of the point (src2[i],
 * src1[i]), that is atan2(src1[i], src2[i]). By the vector math companion; `dst` may be a source array.
 *
 * Status: 1 null pointer; 2 `len < 1`; Tan also 304, with `dst` written in full, from a scan that is not a
 * check of the input: past the last multiple of 16 elements (4 in binary64) it looks for infinities, and
 * before it, deliberately, for 4286578688.0 anywhere and 2139095040.0 in the first 8 of each 16 (binary64:
 * for 9218868437227405312.0 and 18442240474082181120.0). @{ */
TZM_API OrvaStatus ORVAS_Sin_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Sin_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Cos_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Cos_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Tan_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Tan_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Arctan_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Arctan_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Arctan_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Arctan_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Arctan2_32f(const Orva32f* src1, const Orva32f* src2, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Arctan2_64f(const Orva64f* src1, const Orva64f* src2, Orva64f* dst, int32_t len);
/** @} */

/* ---- Powers ---- */

/** @name Powers
 * dst[i] = src1[i] to the power src2[i], by the vector math companion; `dst` may be a source array and is
 * always written in full.
 *
 * Status: 1 null pointer; 2 `len < 1`; 304 from a scan of the last whole block (4 elements in binary32, 2
 * in binary64) and of the tail past it: a zero base with a negative exponent in either, a negative base
 * with an integer exponent in the block (deliberately the harmless case), a negative base with any other
 * exponent in the tail. Earlier blocks are not looked at. @{ */
TZM_API OrvaStatus ORVAS_Pow_32f(const Orva32f* src1, const Orva32f* src2, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Pow_64f(const Orva64f* src1, const Orva64f* src2, Orva64f* dst, int32_t len);
/** @} */

/* ---- Magnitude, phase and power spectrum ---- */

/** @name Power spectrum
 * dst[i] = re[i]^2 + im[i]^2 of `len` complex samples, given as two arrays of parts or as one complex array.
 * 32f: re^2 + im^2 with one rounding on top of the product im^2; 64f, 32fc and 64fc: two rounded products and
 * a rounded sum, deliberately, so 32f and 32fc may differ in the last bit. 16s32f, 16sc32f: the exact sum
 * rounded to binary32.
 * Status: 1 null pointer; 2 `len < 1`. `dst` may be a source array. @{ */
TZM_API OrvaStatus ORVAS_PowerSpectr_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_PowerSpectr_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_PowerSpectr_32fc(const Orva32fc* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_PowerSpectr_64fc(const Orva64fc* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_PowerSpectr_16s32f(const Orva16s* srcRe, const Orva16s* srcIm, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_PowerSpectr_16sc32f(const Orva16sc* src, Orva32f* dst, int32_t len);
/** @} */

/* ---- Polar forms ---- */

/* ---- Scaled integer exponentials and logarithms ---- */

/* ---- Complex logarithm, sine and cosine ---- */

/* ---- Powers by accuracy class ---- */

#endif
