/* Element-wise arithmetic: products, quotients, squares, roots, half-precision conversion, normalisation. */
#ifndef SIGNAL_TZM_ARITH_H
#define SIGNAL_TZM_ARITH_H

#include <signal_tzm/selectors.h>
#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Multiplication ---- */

/** @name Multiplication
 * dst[i] = src1[i] * src2[i], `len` elements each; in place, srcDst[i] = src[i] * srcDst[i].
 *
 * - 32f, 64f: IEEE products, by the vector math companion.
 * - 32fc, 64fc: re = fma(ar, br, -(ai*bi)), im = fma(ai, br, ar*bi). 32f32fc: a*br, a*bi.
 * - 16s32f: the exact product, rounded once. 8u16u: the exact product. 16s: the exact product, saturated.
 * - Scaled: the exact product times 2^-s, where s is log2(scale) truncated toward zero, rounded to nearest with
 *   ties to even, saturated. Complex: exact sums of products, scaled the same way; `im` of four most negative
 *   parts counts as the largest value of 32 or 64 bits before the scale.
 * - 32s_S, deliberately: the product is rounded to binary64 before the scale, so that from s = 23 on the last
 *   bit can differ from the exact rule. 32sc_S is exact.
 *
 * Body and tail give the same values. `dst` may be a source array itself.
 * Status: 1 null pointer; 2 `len < 1`; 20 scale not positive and finite (scaled members). Saturation,
 * overflow and NaN are not reported. @{ */
TZM_API OrvaStatus ORVAS_Mul_32f(const Orva32f* src1, const Orva32f* src2, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Mul_64f(const Orva64f* src1, const Orva64f* src2, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Mul_32fc(const Orva32fc* src1, const Orva32fc* src2, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Mul_64fc(const Orva64fc* src1, const Orva64fc* src2, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Mul_32f32fc(const Orva32f* src1, const Orva32fc* src2, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Mul_16s32f(const Orva16s* src1, const Orva16s* src2, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Mul_8u16u(const Orva8u* src1, const Orva8u* src2, Orva16u* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Mul_16s(const Orva16s* src1, const Orva16s* src2, Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Mul_8u_S(const Orva8u* src1, const Orva8u* src2, Orva8u* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Mul_16u_S(const Orva16u* src1, const Orva16u* src2, Orva16u* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Mul_16s_S(const Orva16s* src1, const Orva16s* src2, Orva16s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Mul_32s_S(const Orva32s* src1, const Orva32s* src2, Orva32s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Mul_16s32s_S(const Orva16s* src1, const Orva16s* src2, Orva32s* dst, int32_t len,
                                      double scale);
TZM_API OrvaStatus ORVAS_Mul_16u16s_S(const Orva16u* src1, const Orva16s* src2, Orva16s* dst, int32_t len,
                                      double scale);
TZM_API OrvaStatus ORVAS_Mul_16sc_S(const Orva16sc* src1, const Orva16sc* src2, Orva16sc* dst, int32_t len,
                                    double scale);
TZM_API OrvaStatus ORVAS_Mul_32sc_S(const Orva32sc* src1, const Orva32sc* src2, Orva32sc* dst, int32_t len,
                                    double scale);
TZM_API OrvaStatus ORVAS_Mul_16s_I(const Orva16s* src, Orva16s* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Mul_32f_I(const Orva32f* src, Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Mul_64f_I(const Orva64f* src, Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Mul_32fc_I(const Orva32fc* src, Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Mul_64fc_I(const Orva64fc* src, Orva64fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Mul_32f32fc_I(const Orva32f* src, Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Mul_8u_IS(const Orva8u* src, Orva8u* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Mul_16u_IS(const Orva16u* src, Orva16u* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Mul_16s_IS(const Orva16s* src, Orva16s* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Mul_32s_IS(const Orva32s* src, Orva32s* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Mul_16sc_IS(const Orva16sc* src, Orva16sc* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Mul_32sc_IS(const Orva32sc* src, Orva32sc* srcDst, int32_t len, double scale);
/** @} */

/* ---- Multiplication by a constant ---- */

/** @name Multiplication by a constant
 * dst[i] = src[i] * value, `len` elements; f = 2^-s, where s is log2(scale) truncated toward zero. Integer
 * results are rounded to nearest with ties to even and saturated; NaN gives 0.
 *
 * | Member | Value |
 * |---|---|
 * | 32f, 64f | IEEE product |
 * | 32fc | re = fma(ar, br, -(ai*bi)), im = fma(ar, bi, ai*br): the other product is rounded than in Mul_32fc |
 * | 64fc | re = fma(ar, br, -(ai*bi)), im = fma(ai, br, ar*bi) |
 * | 16s_I | exact product, saturated |
 * | 8u_S, 16u_S, 16sc_S | exact, as the like member of Mul |
 * | 32sc_S | exact as Mul_32sc_S, save for the tail below |
 * | 16s_S | deliberately binary32(exact product) * f in binary32: coarser than Mul_16s_S |
 * | 32s_S | deliberately binary64(exact product) * f, as Mul_32s_S |
 * | 32f16s_S | (value * src) * f in binary32 |
 * | Low_32f16s | value * src in binary32 |
 * | 64f64s_IS | (binary64(src) * value) * f in binary64 |
 * | 64s_IS | binary64(value * src modulo 2^64) * f; the wrap is deliberately not detected |
 *
 * In MulC_32sc_S, for s from 23 to 63, the last len % 8 elements deliberately round the exact sums to binary64
 * before the scale.
 *
 * `dst` may be `src` itself. A value of zero is legal. Status: 1 null pointer; 2 `len < 1`; 20 scale not
 * positive and finite (scaled members). Saturation, overflow and NaN are not reported. @{ */
TZM_API OrvaStatus ORVAS_MulC_32f(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_MulC_64f(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_MulC_32fc(const Orva32fc* src, Orva32fc value, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_MulC_64fc(const Orva64fc* src, Orva64fc value, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_MulC_8u_S(const Orva8u* src, Orva8u value, Orva8u* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_MulC_16u_S(const Orva16u* src, Orva16u value, Orva16u* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_MulC_16sc_S(const Orva16sc* src, Orva16sc value, Orva16sc* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_MulC_32sc_S(const Orva32sc* src, Orva32sc value, Orva32sc* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_MulC_16s_S(const Orva16s* src, Orva16s value, Orva16s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_MulC_32s_S(const Orva32s* src, Orva32s value, Orva32s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_MulC_Low_32f16s(const Orva32f* src, Orva32f value, Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_MulC_32f16s_S(const Orva32f* src, Orva32f value, Orva16s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_MulC_32f_I(Orva32f value, Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_MulC_64f_I(Orva64f value, Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_MulC_32fc_I(Orva32fc value, Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_MulC_64fc_I(Orva64fc value, Orva64fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_MulC_16s_I(Orva16s value, Orva16s* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_MulC_8u_IS(Orva8u value, Orva8u* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_MulC_16u_IS(Orva16u value, Orva16u* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_MulC_16s_IS(Orva16s value, Orva16s* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_MulC_32s_IS(Orva32s value, Orva32s* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_MulC_16sc_IS(Orva16sc value, Orva16sc* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_MulC_32sc_IS(Orva32sc value, Orva32sc* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_MulC_64f64s_IS(Orva64f value, Orva64s* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_MulC_64s_IS(Orva64s value, Orva64s* srcDst, int32_t len, double scale);
/** @} */

/* ---- Division ---- */

/** @name Division
 * dst[i] = src2[i] / src1[i], `len` elements each: the first array holds the divisors. In place, srcDst[i] =
 * srcDst[i] / src[i]. The quotient is that of IEEE division; a zero divisor (0.0 or -0.0) gives its infinity or NaN.
 *
 * Body and tail give the same values. `dst` may be a source array itself.
 * Status: 1 null pointer; 2 `len < 1`; 300, with every element written, a divisor is zero. @{ */
TZM_API OrvaStatus ORVAS_Div_32f(const Orva32f* src1, const Orva32f* src2, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Div_64f(const Orva64f* src1, const Orva64f* src2, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Div_32f_I(const Orva32f* src, Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Div_64f_I(const Orva64f* src, Orva64f* srcDst, int32_t len);
/** @} */

/** @name Complex division
 * dst[i] = src2[i] / src1[i], or srcDst[i] / src[i] in place, with c + di the divisor and a + bi the dividend.
 *
 * - 64fc: t = 1 / (c*c + d*d), re = (c*a + d*b) * t, im = (c*b - d*a) * t, nothing fused.
 * - 32fc: den = c*c + d*d, nr = fma(c, a, d*b), ni = b*c - a*d, re = nr / den, im = ni / den. The tail, len % 16
 *   elements, deliberately differs: den = fma(c, c, d*d), ni = fma(c, b, -(d*a)).
 *
 * `dst` may be a source array itself. Status: 1 null pointer; 2 `len < 1`; 300, with every element written:
 * c*c + d*d equals zero in 64fc and in the body of 32fc. The tail of 32fc deliberately looks at nr: a zero there
 * warns, which a zero divisor gives, but also a zero dividend over any divisor. @{ */
TZM_API OrvaStatus ORVAS_Div_32fc(const Orva32fc* src1, const Orva32fc* src2, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Div_32fc_I(const Orva32fc* src, Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Div_64fc(const Orva64fc* src1, const Orva64fc* src2, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Div_64fc_I(const Orva64fc* src, Orva64fc* srcDst, int32_t len);
/** @} */

/** @name Scaled division
 * dst[i] = src2[i] / src1[i] / 2^s, or srcDst[i] / src[i] / 2^s in place, rounded to nearest with ties to even,
 * and saturated; s is log2(scale) truncated toward zero. A zero divisor gives, at any scale, the largest value for
 * a positive dividend, the smallest for a negative one, and 0 for 0 by 0.
 *
 * The result is that of the exact quotient, except where binary floating formats are named:
 * - 8u, 16u: in the tail, len % 48 and len % 24 elements, 0 by 0 deliberately gives the largest value.
 * - 32s: the quotient is rounded to binary64 first; in the tail, len % 4 elements, both operands and the
 *   quotient deliberately are rounded to binary32.
 * - 32s16s: operands and quotient are rounded to binary32.
 * - 16sc: a zero divisor has zero numerators, and so gives 0 in both parts. In the tail, len % 8 elements,
 *   c*c + d*d and the two numerators deliberately are 32-bit integers that wrap around: both parts of the
 *   divisor -32768 turn the sign of the result there.
 *
 * `dst` may be a source array of its type. Status: 1 null pointer; 2 `len < 1`; 20 scale not positive and finite;
 * 300, with every element written, a divisor is zero. Saturation is not reported. @{ */
TZM_API OrvaStatus ORVAS_Div_8u_S(const Orva8u* src1, const Orva8u* src2, Orva8u* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Div_16u_S(const Orva16u* src1, const Orva16u* src2, Orva16u* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Div_16s_S(const Orva16s* src1, const Orva16s* src2, Orva16s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Div_32s_S(const Orva32s* src1, const Orva32s* src2, Orva32s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Div_32s16s_S(const Orva16s* src1, const Orva32s* src2, Orva16s* dst, int32_t len,
                                      double scale);
TZM_API OrvaStatus ORVAS_Div_16sc_S(const Orva16sc* src1, const Orva16sc* src2, Orva16sc* dst, int32_t len,
                                    double scale);
TZM_API OrvaStatus ORVAS_Div_8u_IS(const Orva8u* src, Orva8u* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Div_16u_IS(const Orva16u* src, Orva16u* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Div_16s_IS(const Orva16s* src, Orva16s* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Div_32s_IS(const Orva32s* src, Orva32s* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Div_16sc_IS(const Orva16sc* src, Orva16sc* srcDst, int32_t len, double scale);
/** @} */

/** @name Scaled division with a chosen rounding
 * dst[i] = src2[i] / src1[i] / 2^s, or srcDst[i] / src[i] / 2^s in place, saturated; s is log2(scale) truncated
 * toward zero. The exact quotient is rounded by `roundMode` (`ORVA_ROUND_...`): 0 toward zero, 1 to nearest with ties
 * to even, 2 to nearest with ties away from zero. A zero divisor gives the largest value for a positive dividend, the
 * smallest for a negative one, and 0 for 0 by 0.
 *
 * Any other `roundMode` is no error: the elements of the body (len without len % 32 for 8u, len % 16 for 16u,
 * len % 8 for 16s) become 0, with the warning for their divisors, and those of the tail are left alone.
 *
 * `dst` may be a source array itself. Status: 1 null pointer; 2 `len < 1`; 20 scale not positive and finite; 300,
 * with every element written, a divisor is zero; a zero divisor in the tail of 8u deliberately does not warn. @{ */
TZM_API OrvaStatus ORVAS_Div_Round_8u_S(const Orva8u* src1, const Orva8u* src2, Orva8u* dst, int32_t len,
                                        int32_t roundMode, double scale);
TZM_API OrvaStatus ORVAS_Div_Round_16u_S(const Orva16u* src1, const Orva16u* src2, Orva16u* dst, int32_t len,
                                         int32_t roundMode, double scale);
TZM_API OrvaStatus ORVAS_Div_Round_16s_S(const Orva16s* src1, const Orva16s* src2, Orva16s* dst, int32_t len,
                                         int32_t roundMode, double scale);
TZM_API OrvaStatus ORVAS_Div_Round_8u_IS(const Orva8u* src, Orva8u* srcDst, int32_t len, int32_t roundMode,
                                         double scale);
TZM_API OrvaStatus ORVAS_Div_Round_16u_IS(const Orva16u* src, Orva16u* srcDst, int32_t len, int32_t roundMode,
                                          double scale);
TZM_API OrvaStatus ORVAS_Div_Round_16s_IS(const Orva16s* src, Orva16s* srcDst, int32_t len, int32_t roundMode,
                                          double scale);
/** @} */

/* ---- Division by a constant ---- */

/** @name Division by a constant
 * dst[i] = src[i] * (1 / value), `len` elements, the reciprocal rounded once in the type of the samples: the last
 * bit can differ from that of a quotient. In place, srcDst[i] the same.
 *
 * Body and tail give the same values. `dst` may be `src` itself.
 * Status: 1 null pointer; 2 `len < 1`; 3 `value` equal to 0.0 or -0.0. @{ */
TZM_API OrvaStatus ORVAS_DivC_32f(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_DivC_64f(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_DivC_32f_I(Orva32f value, Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_DivC_64f_I(Orva64f value, Orva64f* srcDst, int32_t len);
/** @} */

/** @name Complex division by a constant
 * dst[i] = src[i] / value, as the constant multiplication (MulC) of src by (r*re, -(r*im)), where re and im are the
 * parts of `value` and r = 1 / fma(re, re, im*im).
 *
 * Body and tail give the same values. `dst` may be `src` itself. Status: 1 null pointer; 2 `len < 1`; 3
 * fma(re, re, im*im) equal to zero, so also for a value whose square underflows. @{ */
TZM_API OrvaStatus ORVAS_DivC_32fc(const Orva32fc* src, Orva32fc value, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_DivC_64fc(const Orva64fc* src, Orva64fc value, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_DivC_32fc_I(Orva32fc value, Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_DivC_64fc_I(Orva64fc value, Orva64fc* srcDst, int32_t len);
/** @} */

/** @name Scaled division by a constant
 * dst[i] = src[i] / value / 2^s, rounded to nearest with ties to even, and saturated; s is log2(scale) truncated
 * toward zero. 8u and 16u are exact; the others deliberately multiply by a reciprocal, with f = 2^-s:
 *
 * - 16s: (src[i] * (1 / value)) * f in binary32. 64s: the same in binary64, the element rounded to it first.
 * - 16sc: fma(xr, re, xi*im) * t and fma(xi, re, -(xr*im)) * t in binary64, t = (1 / (re*re + im*im)) * f.
 *
 * Body and tail give the same values. `dst` may be `src` itself. Status: 1 null pointer; 2 `len < 1`; then 3
 * `value` equal to zero and 20 scale not positive and finite, in this order for 16s and 64s, and deliberately the
 * other way round for 8u, 16u and 16sc. @{ */
TZM_API OrvaStatus ORVAS_DivC_8u_S(const Orva8u* src, Orva8u value, Orva8u* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_DivC_16u_S(const Orva16u* src, Orva16u value, Orva16u* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_DivC_16s_S(const Orva16s* src, Orva16s value, Orva16s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_DivC_16sc_S(const Orva16sc* src, Orva16sc value, Orva16sc* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_DivC_8u_IS(Orva8u value, Orva8u* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_DivC_16u_IS(Orva16u value, Orva16u* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_DivC_16s_IS(Orva16s value, Orva16s* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_DivC_16sc_IS(Orva16sc value, Orva16sc* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_DivC_64s_IS(Orva64s value, Orva64s* srcDst, int32_t len, double scale);
/** @} */

/** @name Division of a constant
 * dst[i] = value / src[i], `len` elements. Body and tail deliberately differ.
 *
 * - 32f: the body multiplies value by an estimate of the reciprocal, to eight bits, refined by two Newton steps:
 *   AArch64's instructions for both, the same bits everywhere. It is not correctly rounded, and its infinities
 *   have the opposite sign: 1 over +0 is -infinity. The tail, len % 4 elements, divides.
 * - 16u: rounded to nearest with ties to even, from the quotient in binary32; a zero element gives 65535, but 0 by
 *   0 gives 0 in the body and 65535 in the tail, len % 48 elements.
 *
 * `dst` may be `src` itself. Status: 1 null pointer; 2 `len < 1`; 300, with every element written, an element is
 * zero. @{ */
TZM_API OrvaStatus ORVAS_DivCRev_32f(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_DivCRev_16u(const Orva16u* src, Orva16u value, Orva16u* dst, int32_t len);
TZM_API OrvaStatus ORVAS_DivCRev_32f_I(Orva32f value, Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_DivCRev_16u_I(Orva16u value, Orva16u* srcDst, int32_t len);
/** @} */

/* ---- Squares ---- */

/** @name Squares
 * dst[i] = src[i] * src[i], `len` elements each.
 *
 * - 32f, 64f: IEEE products. 32fc, 64fc: re = fma(a, a, -(b*b)), im = b*a + b*a, the product rounded once.
 * - Scaled: the exact square times 2^-s, where s is log2(scale) truncated toward zero, rounded to nearest
 *   with ties to even, saturated; 16sc_S as Mul_16sc_S of the array and itself.
 *
 * Body and tail give the same values. `dst` may be `src` itself. Status: 1 null pointer; 2 `len < 1`; 20
 * scale not positive and finite (scaled members). Saturation, overflow and NaN are not reported. @{ */
TZM_API OrvaStatus ORVAS_Sqr_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqr_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqr_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqr_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqr_8u_S(const Orva8u* src, Orva8u* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqr_16u_S(const Orva16u* src, Orva16u* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqr_16s_S(const Orva16s* src, Orva16s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqr_16sc_S(const Orva16sc* src, Orva16sc* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqr_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqr_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqr_32fc_I(Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqr_64fc_I(Orva64fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqr_8u_IS(Orva8u* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqr_16u_IS(Orva16u* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqr_16s_IS(Orva16s* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqr_16sc_IS(Orva16sc* srcDst, int32_t len, double scale);
/** @} */

/* ---- Square and cube roots ---- */

/** @name Square roots
 * The square root of each of `len` elements; f = 2^-s, where s is log2(scale) truncated toward zero. Integer
 * results are rounded to nearest with ties to even and saturated; NaN, and so the root of a negative
 * element, gives 0.
 *
 * | Member | Value | Status 305 |
 * |---|---|---|
 * | 32f | by the vector math companion | a negative element that is looked at, see below |
 * | 64f | the same | any negative element |
 * | 32fc | re = sqrt(abs((m + a) * 0.5)), im = sqrt(abs((m - a) * 0.5)) with the sign bit of b | never |
 * | 64fc | re = t if x >= 0, else abs(q); im = q if x > 0, else -t if y < 0, else t | never |
 * | 8u_S, 16u_S | sqrt(x) in binary32, times f in binary32 | never |
 * | 16s_S | sqrt(x) * f in binary64 | any negative element |
 * | 32s16s_S | sqrt(binary32(x)) * f in binary32; the tail is finer, see below | any negative element |
 * | 16sc_S | as 32fc, in binary64, times f; the sign of a zero b is + | never |
 *
 * An element of 32fc and 64fc is a + bi; m = sqrt(b*b + a*a); x = a/2, y = b/2, t = sqrt(abs(x) + sqrt(x*x + y*y)),
 * q = (1/t) * y; every operation is rounded. Sqrt_32f deliberately looks only at elements 4 to 7 of each whole block
 * of 8, and at those behind the whole blocks. Sqrt_32s16s_S deliberately takes the root in binary64, rounded to
 * binary32, behind the last multiple of 4 elements.
 *
 * `dst` may be `src` itself. Status: 1 null pointer; 2 `len < 1`; 20 scale not positive and finite (scaled
 * members); 305 is a warning: every element is written. @{ */
TZM_API OrvaStatus ORVAS_Sqrt_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqrt_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqrt_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqrt_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqrt_8u_S(const Orva8u* src, Orva8u* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqrt_16u_S(const Orva16u* src, Orva16u* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqrt_16s_S(const Orva16s* src, Orva16s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqrt_16sc_S(const Orva16sc* src, Orva16sc* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqrt_32s16s_S(const Orva32s* src, Orva16s* dst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqrt_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqrt_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqrt_32fc_I(Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqrt_64fc_I(Orva64fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Sqrt_8u_IS(Orva8u* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqrt_16u_IS(Orva16u* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqrt_16s_IS(Orva16s* srcDst, int32_t len, double scale);
TZM_API OrvaStatus ORVAS_Sqrt_16sc_IS(Orva16sc* srcDst, int32_t len, double scale);
/** @} */

/** @name Cube roots
 * The cube root of each of `len` elements, with the sign of the element.
 *
 * - 32f: within 1 ulp. Zeros, infinities and NaN pass through. The last len % 4 elements go through the
 *   system's cbrtf.
 * - 32s16s_S: the root in binary64 times 2^-s, where s is log2(scale) truncated toward zero, rounded to
 *   nearest with ties to even, saturated. The last len % 4 elements go through the system's cbrt.
 *
 * `dst` of 32f may be `src` itself. Status: 1 null pointer; 2 `len < 1`; 20 scale not positive and finite
 * (32s16s_S). @{ */
TZM_API OrvaStatus ORVAS_Cubrt_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Cubrt_32s16s_S(const Orva32s* src, Orva16s* dst, int32_t len, double scale);
/** @} */

/* ---- Half-precision conversion ---- */

/** @name Half-precision conversion
 * dst[i] = src[i] in another format, `len` elements. `roundMode` (`ORVA_ROUND_...`) 0 rounds toward zero, 1 to
 * nearest with ties to even, whatever the rounding mode of the caller, which is left as it is. A value beyond the
 * range of binary16 becomes the largest finite value in mode 0, infinity in mode 1. 16f32f is exact. 16f16s_S: f *
 * src[i] in binary32, rounded and saturated, NaN giving 0, with f = 2^-s, s being log2(scale) truncated toward zero.
 *
 * Body and tail give the same values. The arrays must not overlap. Status: 1 null pointer; 2 `len < 1`; 200
 * `roundMode` above 1; 20 scale not positive and finite (16f16s_S). @{ */
TZM_API OrvaStatus ORVAS_Convert_16s16f(const Orva16s* src, Orva16f* dst, int32_t len, uint32_t roundMode);
TZM_API OrvaStatus ORVAS_Convert_32f16f(const Orva32f* src, Orva16f* dst, int32_t len, uint32_t roundMode);
TZM_API OrvaStatus ORVAS_Convert_16f32f(const Orva16f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Convert_16f16s_S(const Orva16f* src, Orva16s* dst, int32_t len, uint32_t roundMode,
                                          double scale);
/** @} */

/* ---- Normalisation ---- */

/** @name Normalisation
 * dst[i] = (src[i] - vSub) / vDiv, `len` elements, each part of a complex one; computed with r = 1 / vDiv.
 *
 * - 64f, 64fc: fma(x, r, -(vSub / vDiv)). 32f, 32fc: the same from `len` 64 and 128 on; shorter arrays
 *   deliberately take (x - vSub) * r, which rounds differently.
 * - 16s, 16sc: f * fma(x, r, -(vSub / vDiv)) in binary32, rounded to nearest with ties to even, and saturated,
 *   with f = 2^-s, s being log2(scale) truncated toward zero.
 *
 * Body and tail give the same values. `dst` may be `src` itself. Status: 1 null pointer; 2 `len < 1`; 3 `vDiv` equal
 * to zero; 20 scale not positive and finite (16s, 16sc). @{ */
TZM_API OrvaStatus ORVAS_Normalize_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f vSub, Orva32f vDiv);
TZM_API OrvaStatus ORVAS_Normalize_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f vSub, Orva64f vDiv);
TZM_API OrvaStatus ORVAS_Normalize_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32fc vSub,
                                        Orva32f vDiv);
TZM_API OrvaStatus ORVAS_Normalize_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len, Orva64fc vSub,
                                        Orva64f vDiv);
TZM_API OrvaStatus ORVAS_Normalize_16s_S(const Orva16s* src, Orva16s* dst, int32_t len, Orva16s vSub, Orva32f vDiv,
                                         double scale);
TZM_API OrvaStatus ORVAS_Normalize_16sc_S(const Orva16sc* src, Orva16sc* dst, int32_t len, Orva16sc vSub,
                                          Orva32f vDiv, double scale);
TZM_API OrvaStatus ORVAS_Normalize_32f_I(Orva32f* srcDst, int32_t len, Orva32f vSub, Orva32f vDiv);
TZM_API OrvaStatus ORVAS_Normalize_64f_I(Orva64f* srcDst, int32_t len, Orva64f vSub, Orva64f vDiv);
TZM_API OrvaStatus ORVAS_Normalize_32fc_I(Orva32fc* srcDst, int32_t len, Orva32fc vSub, Orva32f vDiv);
TZM_API OrvaStatus ORVAS_Normalize_64fc_I(Orva64fc* srcDst, int32_t len, Orva64fc vSub, Orva64f vDiv);
TZM_API OrvaStatus ORVAS_Normalize_16s_IS(Orva16s* srcDst, int32_t len, Orva16s vSub, Orva32f vDiv, double scale);
TZM_API OrvaStatus ORVAS_Normalize_16sc_IS(Orva16sc* srcDst, int32_t len, Orva16sc vSub, Orva32f vDiv,
                                           double scale);
/** @} */

#endif
