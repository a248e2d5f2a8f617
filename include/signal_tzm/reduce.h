/* Reductions: dot products, sums, means, deviations, norms, column aggregates. */
#ifndef SIGNAL_TZM_REDUCE_H
#define SIGNAL_TZM_REDUCE_H

#include <signal_tzm/selectors.h>
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

/** @name Sums
 * `*sum` = sum over i of src[i], `len` samples; of complex samples the real and the imaginary parts
 * apart.
 *
 * `hint` 1 (`ORVA_HINT_FAST`) asks for binary32 arithmetic. With any other hint, 0 too, samples are
 * widened and summed in binary64, and the sum is rounded to binary32 once.
 *
 * The order of a floating sum is fixed. The first samples, up to the last multiple of the step, go to
 * lanes (of each part), sample i to lane i modulo the number of lanes; neighbouring lanes are added, and
 * then the other samples one by one. The sum starts at +0, so it is never -0; only 64f gives -0 for two
 * or more samples that are all -0.
 *
 * | Member | Step | Lanes | Folded |
 * |---|---|---|---|
 * | 32f, 32fc, hint 1 | 4 | 4 of binary32 | (lane 0 + lane 1) + (lane 2 + lane 3) |
 * | 32f, 32fc, other hints | 4 | 2 of binary64 | lane 0 + lane 1 |
 * | 64f | 2 | 2 | lane 0 + lane 1 |
 * | 64fc | 8 | 2 | lane 0 + lane 1 |
 *
 * 64fc adds the samples a0 to a7 of a step as lane 0 = ((a0 + a1) + lane 0) + (a4 + a5) and
 * lane 1 = ((a2 + a3) + lane 1) + (a6 + a7).
 *
 * The scaled members sum exactly in 64-bit integers. The total, as binary64, is multiplied by the power
 * of two of `scale`, rounded to the nearest integer with ties to even, and saturated; each part of a
 * complex sum by itself.
 *
 * Status: 1 null pointer; 2 `len < 1`; 20 scale not positive and finite. NaN and infinity follow IEEE
 * arithmetic and are not reported. `*sum` is written at the end, on success only. @{ */
TZM_API OrvaStatus ORVAS_Sum_32f(const Orva32f* src, int32_t len, Orva32f* sum, int32_t hint);
TZM_API OrvaStatus ORVAS_Sum_32fc(const Orva32fc* src, int32_t len, Orva32fc* sum, int32_t hint);
TZM_API OrvaStatus ORVAS_Sum_64f(const Orva64f* src, int32_t len, Orva64f* sum);
TZM_API OrvaStatus ORVAS_Sum_64fc(const Orva64fc* src, int32_t len, Orva64fc* sum);
TZM_API OrvaStatus ORVAS_Sum_16s_S(const Orva16s* src, int32_t len, Orva16s* sum, double scale);
TZM_API OrvaStatus ORVAS_Sum_32s_S(const Orva32s* src, int32_t len, Orva32s* sum, double scale);
TZM_API OrvaStatus ORVAS_Sum_16s32s_S(const Orva16s* src, int32_t len, Orva32s* sum, double scale);
TZM_API OrvaStatus ORVAS_Sum_16sc_S(const Orva16sc* src, int32_t len, Orva16sc* sum, double scale);
TZM_API OrvaStatus ORVAS_Sum_16sc32sc_S(const Orva16sc* src, int32_t len, Orva32sc* sum, double scale);
/** @} */

/* ---- Means and deviations ---- */

/** @name Means
 * `*mean` = sum of src[i] / len.
 *
 * 64f and 64fc divide the result of ORVAS_Sum_64f and ORVAS_Sum_64fc. 32f and 32fc divide the binary64
 * sum (see Sums) in binary64 and round to binary32 once; but with `hint` 1 each sample is divided by
 * `len`, as binary32, and the quotients are summed as in ORVAS_Sum_32f. That is deliberately another
 * result, with more roundings and no overflow of the sum.
 *
 * The scaled members multiply the exact integer sum by the power of two of `scale` and then divide by
 * `len`, both in binary64, round to the nearest integer with ties to even, and saturate.
 *
 * Status: 1 null pointer; 2 `len < 1`; 20 scale not positive and finite. `*mean` is written at the end,
 * on success only. @{ */
TZM_API OrvaStatus ORVAS_Mean_32f(const Orva32f* src, int32_t len, Orva32f* mean, int32_t hint);
TZM_API OrvaStatus ORVAS_Mean_32fc(const Orva32fc* src, int32_t len, Orva32fc* mean, int32_t hint);
TZM_API OrvaStatus ORVAS_Mean_64f(const Orva64f* src, int32_t len, Orva64f* mean);
TZM_API OrvaStatus ORVAS_Mean_64fc(const Orva64fc* src, int32_t len, Orva64fc* mean);
TZM_API OrvaStatus ORVAS_Mean_16s_S(const Orva16s* src, int32_t len, Orva16s* mean, double scale);
TZM_API OrvaStatus ORVAS_Mean_32s_S(const Orva32s* src, int32_t len, Orva32s* mean, double scale);
TZM_API OrvaStatus ORVAS_Mean_16sc_S(const Orva16sc* src, int32_t len, Orva16sc* mean, double scale);
/** @} */

/** @name Standard deviations
 * `*stdDev` = sqrt(sum over i of (src[i] - mean)^2 / (len - 1)), by two passes over `src`; StdDev is
 * MeanStdDev without the mean.
 *
 * Squares are added in binary64, one fused step each: those of the first samples, up to the last multiple
 * of 4 (8 in the scaled members), in two lanes by even and odd i, the others one by one to the sum of
 * the lanes.
 *
 * The floating members take `*mean` from ORVAS_Mean_32f (with `hint`) or ORVAS_Mean_64f and deviations
 * from the value stored there: 32f deliberately from the mean as rounded to binary32. `hint` does not
 * touch the second pass. If the mean is not finite, `*stdDev` is +0, and no status tells.
 *
 * The scaled members take the unscaled, unrounded mean; mean and deviation are multiplied by the power
 * of two of `scale` at the end, rounded to the nearest integer with ties to even, and saturated.
 *
 * Status of the floating members: 1 `stdDev` null; 2 `len < 2`; 1 another pointer null. Of the scaled
 * members: 1 null pointer; 2 `len < 2`; 20 scale not positive and finite. Results are written on success
 * only. @{ */
TZM_API OrvaStatus ORVAS_StdDev_32f(const Orva32f* src, int32_t len, Orva32f* stdDev, int32_t hint);
TZM_API OrvaStatus ORVAS_StdDev_64f(const Orva64f* src, int32_t len, Orva64f* stdDev);
TZM_API OrvaStatus ORVAS_StdDev_16s_S(const Orva16s* src, int32_t len, Orva16s* stdDev, double scale);
TZM_API OrvaStatus ORVAS_StdDev_16s32s_S(const Orva16s* src, int32_t len, Orva32s* stdDev, double scale);
TZM_API OrvaStatus ORVAS_MeanStdDev_32f(const Orva32f* src, int32_t len, Orva32f* mean, Orva32f* stdDev,
                                        int32_t hint);
TZM_API OrvaStatus ORVAS_MeanStdDev_64f(const Orva64f* src, int32_t len, Orva64f* mean, Orva64f* stdDev);
TZM_API OrvaStatus ORVAS_MeanStdDev_16s_S(const Orva16s* src, int32_t len, Orva16s* mean, Orva16s* stdDev,
                                          double scale);
TZM_API OrvaStatus ORVAS_MeanStdDev_16s32s_S(const Orva16s* src, int32_t len, Orva32s* mean, Orva32s* stdDev,
                                             double scale);
/** @} */

/* ---- Sums of logarithms ---- */

/** @name Sums of natural logarithms
 * `*sum` = sum over i of ln(src[i]), `len` samples, added in order in the precision of the result.
 *
 * These members are deliberately not a logarithm for every sample:
 * - Below 1 the binary exponent of a sample wraps as an unsigned 32-bit number: the value is
 *   2^32 * ln 2, about 2.977e9, too large (0.5 gives 2977044471.1 instead of -0.69). Samples at or above
 *   1 get the true logarithm.
 * - A subnormal sample is taken for a number with an implicit leading one, and its exponent wraps too.
 * - Infinity and NaN are not looked for: +infinity gives 128 ln 2 (1024 ln 2 in 64f and 32f64f), a NaN
 *   128 ln 2 (1024 ln 2) and what its fraction bits say.
 * - 32f64f is coarse: it adds the table value of exponent and first 8 fraction bits and leaves out the
 *   remainder, up to about 2^-8 a sample.
 * - 64f reduces a sample by a remainder of binary32 precision.
 * 32f and 16s32f form each logarithm in binary64 and round it to binary32 before it is added; they round
 * the remainder differently.
 *
 * A zero (of either sign) adds -infinity, a negative sample NaN, and the pass goes on. 32f64f takes a
 * work array of `len` binary64 values.
 *
 * Status: 1 null pointer, and deliberately also when 32f64f gets no memory; 2 `len < 1`; else, with
 * `*sum` written, what the last zero or negative sample says: 301 zero, 302 negative, 0 if there is none.
 * 32f64f returns a failure of ORVAS_Convert_32f64f at once, without result and without releasing its work
 * array. @{ */
TZM_API OrvaStatus ORVAS_SumLn_32f(const Orva32f* src, int32_t len, Orva32f* sum);
TZM_API OrvaStatus ORVAS_SumLn_64f(const Orva64f* src, int32_t len, Orva64f* sum);
TZM_API OrvaStatus ORVAS_SumLn_32f64f(const Orva32f* src, int32_t len, Orva64f* sum);
TZM_API OrvaStatus ORVAS_SumLn_16s32f(const Orva16s* src, int32_t len, Orva32f* sum);
/** @} */

/* ---- Norms ---- */

/** @name Norms
 * `*norm` of the `len` samples x = src[i], complex ones with their magnitude |x| = sqrt(re^2 + im^2):
 *
 * | Kind | Result |
 * |---|---|
 * | Inf | largest magnitude |
 * | L1 | sum of magnitudes |
 * | L2 | square root of the sum of squared magnitudes |
 * | L2Sqr | sum of squared magnitudes |
 *
 * Integer samples: exact up to the result, the magnitude of -32768 being 32768; only the sum of L1 16s32f
 * and 16s32s_S deliberately has 32 bits and wraps (more than 65535 samples of -32768: take 16s64s_S).
 * Unscaled results are rounded to binary32 once, the square root being binary64.
 *
 * Scaled members multiply by the power of two of `scale` in binary64, after the square root, and
 * deliberately truncate toward zero, unlike all other scaled operations; then they saturate.
 * L2 16s32s_S holds the power in binary32: beyond 2^127 it is infinite, below 2^-149 zero. An infinite
 * power times 0 gives 0.
 *
 * Real floats: the first samples, up to the last multiple of the lanes (4 of binary32, 2 of binary64),
 * sample i in lane i modulo their number, neighbouring lanes added, then the other samples one by one.
 * L2 adds squares in one fused step. All is done in the precision of the samples.
 * Inf 32f and 64f are ORVAS_MaxAbs_32f and ORVAS_MaxAbs_64f of the core companion, statuses too.
 *
 * Complex floats: the squared magnitude is fma(re, re, im*im) in the precision of the samples.
 *
 * | Member | Body, up to the last multiple of | Tail |
 * |---|---|---|
 * | Inf 32fc32f, 64fc64f | 4, 2: a NaN anywhere makes the result NaN | NaN is passed over |
 * | L1 32fc64f | 4: binary32 roots, widened into 2 lanes by even and odd i | binary64 roots of the widened squares |
 * | L1 64fc64f | 2: 2 lanes | the same |
 * | L2 32fc64f | 4: binary32 lanes, re and then im fused; folded in binary32 | squares widened and added in binary64 |
 * | L2 64fc64f | 2: binary64 lanes, re and then im fused | squares plainly added |
 *
 * Square roots are binary64 where not told otherwise; that of Inf is taken once.
 *
 * Status: 1 null pointer; 2 `len < 1`; 20 scale not positive and finite. Overflow and NaN are not
 * reported. `*norm` is written at the end, on success only. @{ */
TZM_API OrvaStatus ORVAS_Norm_Inf_16s32f(const Orva16s* src, int32_t len, Orva32f* norm);
TZM_API OrvaStatus ORVAS_Norm_Inf_32f(const Orva32f* src, int32_t len, Orva32f* norm);
TZM_API OrvaStatus ORVAS_Norm_Inf_64f(const Orva64f* src, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_Norm_Inf_32fc32f(const Orva32fc* src, int32_t len, Orva32f* norm);
TZM_API OrvaStatus ORVAS_Norm_Inf_64fc64f(const Orva64fc* src, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_Norm_Inf_16s32s_S(const Orva16s* src, int32_t len, Orva32s* norm, double scale);
TZM_API OrvaStatus ORVAS_Norm_L1_16s32f(const Orva16s* src, int32_t len, Orva32f* norm);
TZM_API OrvaStatus ORVAS_Norm_L1_32f(const Orva32f* src, int32_t len, Orva32f* norm);
TZM_API OrvaStatus ORVAS_Norm_L1_64f(const Orva64f* src, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_Norm_L1_32fc64f(const Orva32fc* src, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_Norm_L1_64fc64f(const Orva64fc* src, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_Norm_L1_16s32s_S(const Orva16s* src, int32_t len, Orva32s* norm, double scale);
TZM_API OrvaStatus ORVAS_Norm_L1_16s64s_S(const Orva16s* src, int32_t len, Orva64s* norm, double scale);
TZM_API OrvaStatus ORVAS_Norm_L2_16s32f(const Orva16s* src, int32_t len, Orva32f* norm);
TZM_API OrvaStatus ORVAS_Norm_L2_32f(const Orva32f* src, int32_t len, Orva32f* norm);
TZM_API OrvaStatus ORVAS_Norm_L2_64f(const Orva64f* src, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_Norm_L2_32fc64f(const Orva32fc* src, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_Norm_L2_64fc64f(const Orva64fc* src, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_Norm_L2_16s32s_S(const Orva16s* src, int32_t len, Orva32s* norm, double scale);
TZM_API OrvaStatus ORVAS_Norm_L2Sqr_16s64s_S(const Orva16s* src, int32_t len, Orva64s* norm, double scale);
/** @} */

/* ---- Norm differences ---- */

/** @name Norm differences
 * The norms above of src1[i] - src2[i], `len` elements each. Differences of integers are exact; those of
 * floats, of each part of complex ones, are rounded to the precision of the samples.
 *
 * Other than the norms above:
 * - Inf 32f and 64f have a body, up to the last multiple of 4 and 2, in which a NaN makes the result NaN,
 *   and a tail, in which it is passed over. The body of Inf 32fc32f goes to the last multiple of 8.
 * - Inf 16s32s_S deliberately scales and saturates in binary32; L2 16s32s_S holds the power of two in
 *   binary64.
 *
 * Status: 1 null pointer; 2 `len < 1`; 20 scale not positive and finite. Overflow and NaN are not
 * reported. `*norm` is written at the end, on success only. @{ */
TZM_API OrvaStatus ORVAS_NormDiff_Inf_16s32f(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_Inf_32f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva32f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_Inf_64f(const Orva64f* src1, const Orva64f* src2, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_Inf_32fc32f(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva32f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_Inf_64fc64f(const Orva64fc* src1, const Orva64fc* src2, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_Inf_16s32s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32s* norm,
                                               double scale);
TZM_API OrvaStatus ORVAS_NormDiff_L1_16s32f(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_L1_32f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva32f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_L1_64f(const Orva64f* src1, const Orva64f* src2, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_L1_32fc64f(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_L1_64fc64f(const Orva64fc* src1, const Orva64fc* src2, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_L1_16s32s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32s* norm,
                                              double scale);
TZM_API OrvaStatus ORVAS_NormDiff_L1_16s64s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva64s* norm,
                                              double scale);
TZM_API OrvaStatus ORVAS_NormDiff_L2_16s32f(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_L2_32f(const Orva32f* src1, const Orva32f* src2, int32_t len, Orva32f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_L2_64f(const Orva64f* src1, const Orva64f* src2, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_L2_32fc64f(const Orva32fc* src1, const Orva32fc* src2, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_L2_64fc64f(const Orva64fc* src1, const Orva64fc* src2, int32_t len, Orva64f* norm);
TZM_API OrvaStatus ORVAS_NormDiff_L2_16s32s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva32s* norm,
                                              double scale);
TZM_API OrvaStatus ORVAS_NormDiff_L2Sqr_16s64s_S(const Orva16s* src1, const Orva16s* src2, int32_t len, Orva64s* norm,
                                                 double scale);
/** @} */

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
TZM_API OrvaStatus ORVAS_AggSum_decimal128(const OrvaDecimal128* src, int32_t len, const Orva8u* nulls,
                                           Orva8u* overflow,
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
TZM_API OrvaStatus ORVAS_AggMean_decimal128(const OrvaDecimal128* src, int32_t len, const Orva8u* nulls,
                                            Orva8u* overflow,
                                            OrvaDecimal128* sum, uint64_t* count);
/** @} */

#endif
