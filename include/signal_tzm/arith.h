/* Element-wise arithmetic: products, quotients, squares, roots, half-precision conversion, normalisation. */
#ifndef SIGNAL_TZM_ARITH_H
#define SIGNAL_TZM_ARITH_H

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
 * | 32sc_S | exact as Mul_32sc_S, but for s from 23 to 63 the last len % 8 elements deliberately round the exact sums to binary64 before the scale |
 * | 16s_S | deliberately binary32(exact product) * f in binary32: coarser than Mul_16s_S |
 * | 32s_S | deliberately binary64(exact product) * f, as Mul_32s_S |
 * | 32f16s_S | (value * src) * f in binary32 |
 * | Low_32f16s | value * src in binary32 |
 * | 64f64s_IS | (binary64(src) * value) * f in binary64 |
 * | 64s_IS | binary64(value * src modulo 2^64) * f; the wrap is deliberately not detected |
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

/* ---- Division by a constant ---- */

/* dst[i] = src[i] * (1 / value), the reciprocal rounded once in the type of the samples: the last bit can
 * differ from that of a quotient. Statuses: null pointer (1), len below 1 (2), value equal to 0.0 or
 * -0.0 (3). A source and the destination may be the same array. */
TZM_API OrvaStatus ORVAS_DivC_32f(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_DivC_64f(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_DivC_32f_I(Orva32f value, Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_DivC_64f_I(Orva64f value, Orva64f* srcDst, int32_t len);

/* ---- Squares ---- */

/* ---- Square and cube roots ---- */

/* ---- Half-precision conversion ---- */

/* ---- Normalisation ---- */

#endif
