/* Reductions: dot products, sums, means, deviations, norms, column aggregates. */
#ifndef SIGNAL_TZM_REDUCE_H
#define SIGNAL_TZM_REDUCE_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Dot products ---- */

/** @name Dot products
 * `*result` = sum over i of src1[i] * src2[i], `len` elements each; no part is conjugated.
 *
 * The order of the sum is fixed. The first elements, up to the last multiple of the member's step, go
 * through lanes that start at +0 and are folded with 0.0 added; the rest is added one by one to the
 * folded sum. Shorter arrays than a step are summed one by one from +0.
 *
 * | Member | Step | Lanes | How a product is added |
 * |---|---|---|---|
 * | 32f | 8 | 8, folded lane k with k+4, k+2, k+1 | one fused step |
 * | 64f | 2 | 2 | one fused step |
 * | 32f64f | 2 | 2 | widened; one fused step, so only the sum rounds |
 * | 32fc | 8 | 8 a part | fma(ar,br,-(ai*bi)) and fma(ar,bi,ai*br), then added: three roundings |
 * | 64fc | 4 | 2 + 2 a part | the same |
 * | 32fc64fc | 4 | 2 a part | widened; two fused steps a part. The tail forms the pair as 64fc does |
 * | 32f32fc | 8 | 8 a part | one fused step a part |
 * | 32f32fc64fc, 64f64fc | 4 | 2 a part | one fused step a part, widened where the name says so |
 * | 16s32f, 16s64s, 16s32s_S | 8 | 2 | four exact products a lane; exact while the sums stay below 2^53 |
 * | 16s32s32s_S, 32s_S | 4 | 2 | exact products, each rounded to binary64 |
 * | 16sc64sc, 16s16sc64sc | - | - | exact, modulo 2^64 |
 *
 * The binary64 sum of an integer member is rounded once at the end: to binary32 (16s32f), or to the
 * nearest integer with ties to even, saturated (16s64s, and the scaled members). A scaled member
 * multiplies the folded body once by the power of two of `scale`, and one factor of every later product.
 *
 * Status: 1 null pointer; 2 `len < 1`; 20 scale not positive and finite. NaN and infinity follow IEEE
 * arithmetic and are not reported. `*result` is written at the end, on success only. @{ */
TZM_API OrvaStatus ORVAS_DotProd_32f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva32f* result);
TZM_API OrvaStatus ORVAS_DotProd_64f(const Orva64f* src1, const Orva64f* src2, int32_t len, Orva64f* result);
TZM_API OrvaStatus ORVAS_DotProd_32f64f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva64f* result);
TZM_API OrvaStatus ORVAS_DotProd_32fc(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva32fc* result);
TZM_API OrvaStatus ORVAS_DotProd_64fc(const Orva64fc* src1, const Orva64fc* src2, int32_t len, Orva64fc* result);
TZM_API OrvaStatus ORVAS_DotProd_32fc64fc(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva64fc* result);
TZM_API OrvaStatus ORVAS_DotProd_32f32fc(const Orva32f* src1, const Orva32fc* src2, int32_t len, Orva32fc* result);
TZM_API OrvaStatus ORVAS_DotProd_32f32fc64fc(const Orva32f* src1, const Orva32fc* src2, int32_t len,
                                             Orva64fc* result);
TZM_API OrvaStatus ORVAS_DotProd_64f64fc(const Orva64f* src1, const Orva64fc* src2, int32_t len, Orva64fc* result);
TZM_API OrvaStatus ORVAS_DotProd_16s32f(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32f* result);
TZM_API OrvaStatus ORVAS_DotProd_16s64s(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva64s* result);
TZM_API OrvaStatus ORVAS_DotProd_16sc64sc(const Orva16sc* src1, const Orva16sc* src2, int32_t len, Orva64sc* result);
TZM_API OrvaStatus ORVAS_DotProd_16s16sc64sc(const Orva16s* src1, const Orva16sc* src2, int32_t len,
                                             Orva64sc* result);
TZM_API OrvaStatus ORVAS_DotProd_16s32s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32s* result,
                                          double scale);
TZM_API OrvaStatus ORVAS_DotProd_16s32s32s_S(const Orva16s* src1, const Orva32s* src2, int32_t len, Orva32s* result,
                                             double scale);
TZM_API OrvaStatus ORVAS_DotProd_32s_S(const Orva32s* src1, const Orva32s* src2, int32_t len, Orva32s* result,
                                       double scale);
/** @} */

/* ---- Sums ---- */

/* ---- Means and deviations ---- */

/* ---- Sums of logarithms ---- */

/* ---- Norms ---- */

/* ---- Norm differences ---- */

/* ---- Column aggregates ---- */

/** A 128-bit decimal in sign and magnitude: bit 63 of `hi` is the sign, the other 127 bits the magnitude,
 * legal below 10^38. The decimal point is the caller's. */
typedef struct OrvaDecimal128 { uint64_t lo, hi; } OrvaDecimal128;

/** @name Column aggregates
 * `*sum` of the rows of a database column, and for AggMean also `*count` of the rows present (the
 * division, with its rounding and decimal point, is the caller's). `nulls` is null (no row is null) or
 * `len` bytes: 0 means the row is present, anything else that it is null and not read into the result.
 *
 * - 16s, 32s, 64s: added in ascending order in 64 bits. The first add that overflows sets the flag and
 *   ends the sum with its wrapped value; 16s and 32s cannot get there. AggMean delivers the sum rounded to
 *   binary64 at the end.
 * - 64f: added strictly left to right from +0; the flag is always 0. NaN in a null row has no effect.
 * - decimal64 (two's complement) and decimal128: added in 128 bits, overflow as above; then a total whose
 *   magnitude is 10^38 or more sets the flag too, its value stored all the same. Running sums and elements
 *   are not held to that limit.
 *
 * `*overflow` is 0 for a usable sum and 1 for an overflow, which is never a status; the count goes on
 * after it. Status: 1 null pointer (`nulls` apart); 2 `len < 1`; then nothing is written. @{ */
TZM_API OrvaStatus ORVAS_AggSum_16s(const Orva16s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                    Orva64s* sum);
TZM_API OrvaStatus ORVAS_AggSum_32s(const Orva32s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                    Orva64s* sum);
TZM_API OrvaStatus ORVAS_AggSum_64s(const Orva64s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                    Orva64s* sum);
TZM_API OrvaStatus ORVAS_AggSum_64f(const Orva64f* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                    Orva64f* sum);
TZM_API OrvaStatus ORVAS_AggSum_decimal64(const Orva64s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                          OrvaDecimal128* sum);
TZM_API OrvaStatus ORVAS_AggSum_decimal128(const OrvaDecimal128* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                           OrvaDecimal128* sum);
TZM_API OrvaStatus ORVAS_AggMean_16s(const Orva16s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                     Orva64f* sum, uint64_t* count);
TZM_API OrvaStatus ORVAS_AggMean_32s(const Orva32s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                     Orva64f* sum, uint64_t* count);
TZM_API OrvaStatus ORVAS_AggMean_64s(const Orva64s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                     Orva64f* sum, uint64_t* count);
TZM_API OrvaStatus ORVAS_AggMean_64f(const Orva64f* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                     Orva64f* sum, uint64_t* count);
TZM_API OrvaStatus ORVAS_AggMean_decimal64(const Orva64s* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                           OrvaDecimal128* sum, uint64_t* count);
TZM_API OrvaStatus ORVAS_AggMean_decimal128(const OrvaDecimal128* src, int32_t len, const Orva8u* nulls, Orva8u* overflow,
                                            OrvaDecimal128* sum, uint64_t* count);
/** @} */

#endif
