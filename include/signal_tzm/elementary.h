/* Elementary functions: exponentials, logarithms, trigonometric functions, powers, magnitude, phase, polar forms.
 *
 * What comes from the vector math companion is, with the default one, correctly rounded in binary32, so its bits are
 * those of every correctly rounded library, and within 0.6 units in the last place in binary64, over the whole range
 * (docs/accuracy.md); the same bits on every machine. */
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

/** @name Magnitude
 * dst[i] = sqrt(re[i]^2 + im[i]^2) of `len` complex samples, given as two arrays of parts or as one complex
 * array. The members form the sum in different ways, deliberately, and some of them treat the elements past
 * the last whole block (the tail) in another way than the body:
 *
 * | Operation | body | tail |
 * |---|---|---|
 * | 32f, 64f | re^2 added with one rounding to the rounded im^2 | as the body |
 * | 32fc | two rounded squares, rounded sum | as the body |
 * | 64fc, blocks of 2 | scaled (below) | the system's cabs (below) |
 * | 16s32f, blocks of 4 | binary32 root of the exact sum rounded to binary32 | binary64 root of the sum, then rounded |
 * | 16sc32f, blocks of 4 | as 32f on converted parts | as 16s32f |
 * | 16s_S, blocks of 8 | as 16s32f, times the factor in binary32 | binary64 root of the exact sum times the factor |
 * | 16sc_S | binary64 root of the exact sum times the factor | as the body |
 * | 32sc_S, blocks of 4 | binary64 root of a binary64 sum (below) times the factor | the same of a 64-bit integer sum |
 *
 * 64fc: the body scales so that no square overflows or underflows, and infinity prevails over NaN; the tail takes
 * cabs of re + i im, formed with re + 0 im as its real part. 32sc_S: the body adds re^2 with one rounding to the
 * rounded im^2; the sum of the tail wraps (to a result of 0) for two parts of -2^31.
 *
 * _S: the factor is 2^-s, where s is log2(scale) truncated toward zero; the result is rounded to nearest, ties
 * to even, and saturated; saturation is not reported.
 * Status: 1 null pointer; 2 `len < 1`; _S: 20 `scale` not positive and finite. `dst` may be a source array of
 * its type. @{ */
TZM_API OrvaStatus ORVAS_Magnitude_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Magnitude_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Magnitude_32fc(const Orva32fc* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Magnitude_64fc(const Orva64fc* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Magnitude_16s32f(const Orva16s* srcRe, const Orva16s* srcIm, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Magnitude_16sc32f(const Orva16sc* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Magnitude_16s_S(const Orva16s* srcRe, const Orva16s* srcIm, Orva16s* dst, int32_t len,
                                         double scale);
TZM_API OrvaStatus ORVAS_Magnitude_16sc_S(const Orva16sc* src, Orva16s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Magnitude_32sc_S(const Orva32sc* src, Orva32s* dst, int32_t len, double scale);
/** @} */

/** @name Phase
 * dst[i] = the angle of re[i] + i im[i] in radians, -pi to pi: arctan(im/re), plus pi with the sign of `im`
 * where re < 0: the quotient, the arctangent (as ORVAS_Arctan has it) and the sum are rounded one after the
 * other. Deliberately not atan2: a negative zero counts as 0, so (-1, -0) gives pi, and (0, 0) gives NaN. Integer
 * samples are converted to binary32. _S: the angle times 2^-s in binary32, where s is log2(scale) truncated toward
 * zero, rounded to nearest, ties to even, and saturated; the NaN of (0, 0) gives 0.
 * Status: 1 null pointer; 2 `len < 1`; _S: 20 `scale` not positive and finite; 9 no memory for the scratch arrays,
 * with `dst` untouched. `dst` must not overlap the sources. @{ */
TZM_API OrvaStatus ORVAS_Phase_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Phase_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Phase_16s32f(const Orva16s* srcRe, const Orva16s* srcIm, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Phase_16s_S(const Orva16s* srcRe, const Orva16s* srcIm, Orva16s* dst, int32_t len,
                                     double scale);
TZM_API OrvaStatus ORVAS_Phase_32fc(const Orva32fc* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Phase_64fc(const Orva64fc* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Phase_16sc32f(const Orva16sc* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Phase_16sc_S(const Orva16sc* src, Orva16s* dst, int32_t len, double scale);
/** @} */

/** @name Power spectrum
 * dst[i] = re[i]^2 + im[i]^2 of `len` complex samples, given as two arrays of parts or as one complex array.
 * 32f: re^2 + im^2 with one rounding on top of the product im^2; 64f, 32fc and 64fc: two rounded products and
 * a rounded sum, deliberately, so 32f and 32fc may differ in the last bit. 16s32f, 16sc32f: the exact sum
 * rounded to binary32. _S: the exact sum times 2^-s, where s is log2(scale) truncated toward zero, rounded to
 * nearest, ties to even, and saturated; saturation is not reported.
 * Status: 1 null pointer; 2 `len < 1`; _S: 20 `scale` not positive and finite. `dst` may be a source array of
 * its type. @{ */
TZM_API OrvaStatus ORVAS_PowerSpectr_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_PowerSpectr_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_PowerSpectr_32fc(const Orva32fc* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_PowerSpectr_64fc(const Orva64fc* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_PowerSpectr_16s32f(const Orva16s* srcRe, const Orva16s* srcIm, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_PowerSpectr_16sc32f(const Orva16sc* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_PowerSpectr_16s_S(const Orva16s* srcRe, const Orva16s* srcIm, Orva16s* dst, int32_t len,
                                           double scale);
TZM_API OrvaStatus ORVAS_PowerSpectr_16sc_S(const Orva16sc* src, Orva16s* dst, int32_t len, double scale);
/** @} */

/* ---- Polar forms ---- */

/** @name Polar forms
 * CartToPolar: mag[i] = sqrt(re^2 + im^2), as ORVAS_Magnitude of the same types has it, and phase[i] =
 * atan2(im, re) in radians, as ORVAS_Arctan2 (not ORVAS_Phase) has it. PolarToCart: re = mag[i] cos phase[i],
 * im = mag[i] sin phase[i], each product rounded, of the values of ORVAS_Cos and ORVAS_Sin.
 *
 * _S: the factors are 2^-s for each scale, where s is its log2 truncated toward zero. CartToPolar multiplies
 * magnitude and angle by their factors; PolarToCart computes in binary32 with the angle phase[i] times
 * phaseFactor and the parts (mag[i] times the cosine or sine) times magFactor. Results are rounded to nearest,
 * ties to even, and saturated; NaN gives 0.
 *
 * Status: 1 null pointer; 2 `len < 1`; _S: 20 `magScale` or `phaseScale` not positive and finite; 9 no memory
 * for scratch arrays (CartToPolar_16sc_S, PolarToCart_32fc, PolarToCart_64fc), with nothing written. The
 * destinations must not overlap each other or the sources. @{ */
TZM_API OrvaStatus ORVAS_CartToPolar_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32f* mag, Orva32f* phase,
                                         int32_t len);
TZM_API OrvaStatus ORVAS_CartToPolar_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64f* mag, Orva64f* phase,
                                         int32_t len);
TZM_API OrvaStatus ORVAS_CartToPolar_32fc(const Orva32fc* src, Orva32f* mag, Orva32f* phase, int32_t len);
TZM_API OrvaStatus ORVAS_CartToPolar_64fc(const Orva64fc* src, Orva64f* mag, Orva64f* phase, int32_t len);
TZM_API OrvaStatus ORVAS_CartToPolar_16sc_S(const Orva16sc* src, Orva16s* mag, Orva16s* phase, int32_t len,
                                            double magScale, double phaseScale);
TZM_API OrvaStatus ORVAS_PolarToCart_32f(const Orva32f* mag, const Orva32f* phase, Orva32f* dstRe, Orva32f* dstIm,
                                         int32_t len);
TZM_API OrvaStatus ORVAS_PolarToCart_64f(const Orva64f* mag, const Orva64f* phase, Orva64f* dstRe, Orva64f* dstIm,
                                         int32_t len);
TZM_API OrvaStatus ORVAS_PolarToCart_32fc(const Orva32f* mag, const Orva32f* phase, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_PolarToCart_64fc(const Orva64f* mag, const Orva64f* phase, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_PolarToCart_16sc_S(const Orva16s* mag, const Orva16s* phase, Orva16sc* dst, int32_t len,
                                            double magScale, double phaseScale);
/** @} */

/* ---- Scaled integer exponentials and logarithms ---- */

/** @name Scaled exponentials and logarithms of integers
 * dst[i] = e^src[i] or ln src[i], as ORVAS_Exp_64f and ORVAS_Ln_64f have it, times 2^-s, where s is log2(scale)
 * truncated toward zero, rounded to nearest, ties to even, and saturated; saturation is not reported. A scale
 * below 1 keeps fraction bits of a logarithm: with scale 2^-10, ln 2 gives 710. Beyond the range of binary64 e^x is
 * infinite (x > 709), and so the largest value at every scale, or 0.
 *
 * Status: 1 null pointer; 2 `len < 1`; 20 `scale` not positive and finite; then, with `dst` written in full,
 * Ln: 301 a zero element, whose result is the least value of the type; 302 a negative element, whose result
 * is 0. Every element is looked at, and the last one of the two kinds decides. `dst` may be `src`. @{ */
TZM_API OrvaStatus ORVAS_Exp_16s_S(const Orva16s* src, Orva16s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Exp_32s_S(const Orva32s* src, Orva32s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Exp_16s_IS(Orva16s* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Exp_32s_IS(Orva32s* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Ln_16s_S(const Orva16s* src, Orva16s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Ln_32s_S(const Orva32s* src, Orva32s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Ln_16s_IS(Orva16s* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Ln_32s_IS(Orva32s* srcDst, int32_t len, double scale);
/** @} */

/* ---- Complex logarithm, sine and cosine ---- */

/** @name Complex logarithm, sine and cosine
 * With z = x + i y = src[i]:
 *   Log10: log10 |z| + i atan2(y, x) / ln 10, the principal branch, cut along the negative real axis, where the
 *     sign of a zero y tells the side;
 *   Sin: sin x cosh y + i cos x sinh y;
 *   Cos: cos x cosh y - i sin x sinh y.
 * Each part is accurate by itself over the whole plane (docs/accuracy.md): there is no overflow before the result
 * overflows, and no cancellation near |z| = 1. 32fc is computed in binary64 and rounded. Signed zeros,
 * infinities and NaN give what C's clog (divided by ln 10), csin and ccos give.
 *
 * Status: 1 null pointer; 2 `len < 1`; Log10: 303 with `dst` written in full, some element is zero, whose result
 * is -infinity + i atan2(y, x) / ln 10. Every element is looked at. `dst` may be `src`. @{ */
TZM_API OrvaStatus ORVAS_Log10_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Log10_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Sin_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Sin_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Cos_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Cos_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
/** @} */

/* ---- Powers by accuracy class ---- */

/** @name Powers by accuracy class
 * dst[i] = src[i] to the power `value`. The class names the least number of good bits; where more come at no
 * cost they are given. The binary32 classes A11, A21 and A24 are one computation, e^(value ln src[i]) by
 * ORVAS_Ln_64f and ORVAS_Exp_64f in binary64, rounded once (within 0.501 units in the last place). A26 is the
 * same in binary64, good to 42 bits. A50 and A53 are the companion's power, within 0.6 units in the last place.
 * Signed zeros, infinities and NaN give what C's pow gives: 1 for an exponent of 0 and a base of 1, signs for
 * odd integer exponents, NaN for a negative finite base with a finite exponent that is no integer.
 *
 * Status: 1 null pointer; 2 `len < 1`; then, with `dst` written in full: 303 a zero base with a negative
 * exponent (result infinite); 304 a negative finite base with a finite exponent that is no integer. Every
 * element is looked at, and the last one of the two kinds decides. `dst` may be `src`. @{ */
TZM_API OrvaStatus ORVAS_Powx_32f_A11(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Powx_32f_A21(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Powx_32f_A24(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Powx_64f_A26(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Powx_64f_A50(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Powx_64f_A53(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len);
/** @} */

#endif
