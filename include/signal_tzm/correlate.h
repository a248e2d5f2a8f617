/* Convolution, correlation, matrix product. */
#ifndef SIGNAL_TZM_CORRELATE_H
#define SIGNAL_TZM_CORRELATE_H

#include <signal_tzm/selectors.h>
#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Convolution ---- */

/** @name Convolution
 * Full linear convolution of two real sequences,
 *
 *     dst[k] = sum over i of src1[i] * src2[k-i],    k = 0 ... N-1,    N = src1Len + src2Len - 1
 *
 * with `N` samples in `dst`, which must not overlap the sources. Init chooses the route from the lengths
 * and `kind` (`ORVA_ROUTE_...`): 2 by FFT; 0 by FFT where both lengths exceed 16 and their sum exceeds 512,
 * else directly; any other kind directly. Release (null allowed) gives the state back. Working calls write to
 * the state: one call at a time on each.
 *
 * Directly, an output is one fused chain from 0 in ascending i, over exactly its own samples where `src2`
 * has at most 16, and in the last N mod B outputs (B is 16 in 32f, 8 in 64f). With a longer `src2` the other
 * outputs are made in blocks of B, each over all samples that a member of its block needs, with zeros for
 * what lies beyond the ends of `src2`: an infinity or NaN in `src1` deliberately reaches all outputs of a
 * block. The lengths need not be those of Init.
 *
 * By FFT, both sequences are transformed at length P, the smallest power of two not below N, multiplied, and
 * the inverse is divided by P (ORVAS_DivC). Any lengths with the same P may use the state.
 *
 * Status of Init: 1 null `state`; 2 a length below 1; 9 no memory or no plan; 202 FFT route with
 * src1Len + src2Len above 0x8000000 (64f: 0x4000000). `*state` is written on success only. Of the
 * convolution: 1 null pointer; 2 a length below 1; 204 lengths of another P. @{ */
typedef struct ConvState ConvState;

TZM_API OrvaStatus ORVAS_ConvInit_32f(int32_t src1Len, int32_t src2Len, int32_t kind, ConvState** state);
TZM_API OrvaStatus ORVAS_ConvInit_64f(int32_t src1Len, int32_t src2Len, int32_t kind, ConvState** state);
TZM_API OrvaStatus ORVAS_Convolve_32f(const Orva32f* src1, int32_t src1Len, const Orva32f* src2, int32_t src2Len,
                                      Orva32f* dst, ConvState* state);
TZM_API OrvaStatus ORVAS_Convolve_64f(const Orva64f* src1, int32_t src1Len, const Orva64f* src2, int32_t src2Len,
                                      Orva64f* dst, ConvState* state);
TZM_API OrvaStatus ORVAS_ConvRelease_32f(ConvState* state);
TZM_API OrvaStatus ORVAS_ConvRelease_64f(ConvState* state);
/** @} */

/** @name Convolution, partial
 * `dstLen` sums of src1[i] * src2[k-i], each a fused chain from 0 in ascending i over
 *
 *     max(bias+1+k - src2Len, 0) <= i < min(bias+1+k, src1Len),    k = 0 ... dstLen-1
 *
 * With `bias` 0 these are the first outputs of the full convolution. The bias deliberately moves the window
 * of i only, not the index into `src2`, which then runs from -bias to src2Len-1-bias: what lies there around
 * `src2` must be readable. No state, no allocation; `dst` must not overlap the sources.
 *
 * Status: 1 null pointer; 2 a length below 1. @{ */
TZM_API OrvaStatus ORVAS_ConvBiased_32f(const Orva32f* src1, int32_t src1Len, const Orva32f* src2, int32_t src2Len,
                                        Orva32f* dst, int32_t dstLen, int32_t bias);
/** @} */

/* ---- Autocorrelation ---- */

/** State of auto- and cross-correlation. Working calls on the FFT route write to it: one call at a time on
 * each state. On the direct route it is only read. */
typedef struct CorrState CorrState;

/** @name Autocorrelation
 * The lags 0 to m-1, m = min(srcLen, dstLen), of a sequence of n = srcLen samples,
 *
 *     r[k] = sum over i from 0 to n-1-k of conj(src[i]) * src[i+k]
 *
 * `dstLen` elements in `dst`, which must not overlap `src`; those from m on become 0. Then, by
 * `normalisation` (`ORVA_NORMALISATION_...`): 1 biased, every lag divided by n (ORVAS_DivC); 2 unbiased, lag k
 * divided by n-k; anything else leaves the sums. Init chooses the route from the lengths and `kind`
 * (`ORVA_ROUTE_...`): 2 by FFT; 0 by FFT where m exceeds 32 or srcLen exceeds 2048/m (integer division), else
 * directly; any other kind directly. Release is ORVAS_CorrRelease of the same type.
 *
 * Directly, lags are summed in blocks of L, the last m % L of them one by one. G samples are a 128-bit
 * vector of real or of imaginary parts:
 *
 * |                                      | 32f    | 64f   | 32fc  | 64fc  |
 * |--------------------------------------|--------|-------|-------|-------|
 * | L, lags of a block                   | 16     | 4     | 8     | 4     |
 * | G, samples of a group                | 4      | 2     | 4     | 2     |
 * | A, groups at a time in a single lag  | 4      | 4     | 2     | 2     |
 *
 * A lag of a block is summed over the whole groups that all lags of its block have, in G fused lanes folded
 * as neighbours; the rest is summed from 0 one by one and then added. A single lag is summed in A
 * accumulators of G fused lanes over whole runs of A groups, then in the first one over whole groups; these
 * are added as (a1 + a0) + (a2 + a3) (complex: a1 + a0) and folded as neighbours; the rest follows one by one
 * on that sum. Lanes of complex members take conj(x)*y in two fused steps a part, x's real part first; one by
 * one, a complex product is formed as re = fma(xr, yr, xi*yi), im = fma(xr, yi, -(yr*xi)) and added plainly.
 *
 * By FFT, the spectrum at length P, the smallest power of two not below n + m - 1, is replaced by its squared
 * magnitudes and transformed back. Any lengths with the same P may use the state, but a call deliberately
 * writes as many lags as Init was asked for: `dst` must hold min(srcLen, dstLen) of Init too.
 *
 * Status of Init: 1 null `state`; 2 a length below 1; 9 no memory or no plan; 202 FFT route with n + m above
 * 0x10000001 (64f, 32fc: 0x8000001; 64fc: 0x4000001). `*state` is written on success only. Of the
 * correlation: 1 null pointer; 2 a length below 1; 204 lengths of another P on the FFT route (nothing is
 * written). @{ */
TZM_API OrvaStatus ORVAS_AutoCorrInit_32f(int32_t srcLen, int32_t dstLen, int32_t kind, CorrState** state);
TZM_API OrvaStatus ORVAS_AutoCorrInit_64f(int32_t srcLen, int32_t dstLen, int32_t kind, CorrState** state);
TZM_API OrvaStatus ORVAS_AutoCorrInit_32fc(int32_t srcLen, int32_t dstLen, int32_t kind, CorrState** state);
TZM_API OrvaStatus ORVAS_AutoCorrInit_64fc(int32_t srcLen, int32_t dstLen, int32_t kind, CorrState** state);
TZM_API OrvaStatus ORVAS_AutoCorrNorm_32f(const Orva32f* src, int32_t srcLen, Orva32f* dst, int32_t dstLen,
                                          int32_t normalisation, CorrState* state);
TZM_API OrvaStatus ORVAS_AutoCorrNorm_64f(const Orva64f* src, int32_t srcLen, Orva64f* dst, int32_t dstLen,
                                          int32_t normalisation, CorrState* state);
TZM_API OrvaStatus ORVAS_AutoCorrNorm_32fc(const Orva32fc* src, int32_t srcLen, Orva32fc* dst, int32_t dstLen,
                                           int32_t normalisation, CorrState* state);
TZM_API OrvaStatus ORVAS_AutoCorrNorm_64fc(const Orva64fc* src, int32_t srcLen, Orva64fc* dst, int32_t dstLen,
                                           int32_t normalisation, CorrState* state);
/** @} */

/** @name Correlation state, release
 * Gives back what ORVAS_AutoCorrInit or ORVAS_CrossCorrInit of the same type made; null is allowed. Status: 0
 * always. @{ */
TZM_API OrvaStatus ORVAS_CorrRelease_32f(CorrState* state);
TZM_API OrvaStatus ORVAS_CorrRelease_64f(CorrState* state);
TZM_API OrvaStatus ORVAS_CorrRelease_32fc(CorrState* state);
TZM_API OrvaStatus ORVAS_CorrRelease_64fc(CorrState* state);
/** @} */

/* ---- Cross-correlation ---- */

/** @name Cross-correlation
 * dst[j] is lag k = lowLag + j, `dstLen` lags from a lowest one that may be negative:
 *
 *     r[k] = sum over i from max(-k, 0) to min(src2Len-k, src1Len) - 1 of conj(src1[i]) * src2[i+k]
 *
 * A lag without overlap is 0. Computed are the lags from firstLag = max(1-src1Len, lowLag) on,
 * count = min(src2Len-lowLag, dstLen) - (firstLag-lowLag) of them. `dst` must not overlap the sources. Then,
 * by `normalisation` (`ORVA_NORMALISATION_...`): 1 biased, division by min(src1Len, src2Len) (ORVAS_DivC); 2
 * unbiased, each lag divided by its number of products; anything else leaves the sums. The division
 * deliberately covers the `count` of Init from firstLag on, also on the direct route, which otherwise goes by
 * the lengths of the call. A state whose `count` was not above 0 clears `dst`.
 *
 * Init chooses the route by chunk = min(max(src1Len, 128), count) and `kind` (`ORVA_ROUTE_...`): 2 by FFT; 0
 * by FFT where chunk exceeds 64 or src1Len exceeds 4096/chunk (integer division), else directly; any other
 * kind directly. Directly, all lags are summed as the single lags of autocorrelation, from the first product
 * on. By FFT, src1 and, for each block of P - src1Len + 1 lags, a piece of src2 are transformed at length P,
 * the smallest power of two not below src1Len + chunk - 1. Any arguments with the same P may use the state,
 * even such without a lag, unless src1Len is above P; a call deliberately writes the `count` of Init, for which
 * `dst` must have room from firstLag on.
 *
 * Status of Init: 1 null `state`; 2 a length below 1; 9 no memory or no plan; 202 FFT route with
 * src1Len + chunk above 0x8000001 (64f, 32fc: 0x4000001; 64fc: 0x2000001). `*state` is written on success
 * only. Of the correlation: 1 null pointer; 2 a length below 1; 204 on the FFT route, arguments of another P
 * or src1Len above it (nothing is written). Release is ORVAS_CorrRelease of the same type. @{ */
TZM_API OrvaStatus ORVAS_CrossCorrInit_32f(int32_t src1Len, int32_t src2Len, int32_t dstLen, int32_t lowLag,
                                           int32_t kind, CorrState** state);
TZM_API OrvaStatus ORVAS_CrossCorrInit_64f(int32_t src1Len, int32_t src2Len, int32_t dstLen, int32_t lowLag,
                                           int32_t kind, CorrState** state);
TZM_API OrvaStatus ORVAS_CrossCorrInit_32fc(int32_t src1Len, int32_t src2Len, int32_t dstLen, int32_t lowLag,
                                            int32_t kind, CorrState** state);
TZM_API OrvaStatus ORVAS_CrossCorrInit_64fc(int32_t src1Len, int32_t src2Len, int32_t dstLen, int32_t lowLag,
                                            int32_t kind, CorrState** state);
TZM_API OrvaStatus ORVAS_CrossCorrNorm_32f(const Orva32f* src1, int32_t src1Len, const Orva32f* src2, int32_t src2Len,
                                           Orva32f* dst, int32_t dstLen, int32_t lowLag, int32_t normalisation,
                                           CorrState* state);
TZM_API OrvaStatus ORVAS_CrossCorrNorm_64f(const Orva64f* src1, int32_t src1Len, const Orva64f* src2, int32_t src2Len,
                                           Orva64f* dst, int32_t dstLen, int32_t lowLag, int32_t normalisation,
                                           CorrState* state);
TZM_API OrvaStatus ORVAS_CrossCorrNorm_32fc(const Orva32fc* src1, int32_t src1Len, const Orva32fc* src2,
                                            int32_t src2Len, Orva32fc* dst, int32_t dstLen, int32_t lowLag,
                                            int32_t normalisation, CorrState* state);
TZM_API OrvaStatus ORVAS_CrossCorrNorm_64fc(const Orva64fc* src1, int32_t src1Len, const Orva64fc* src2,
                                            int32_t src2Len, Orva64fc* dst, int32_t dstLen, int32_t lowLag,
                                            int32_t normalisation, CorrState* state);
/** @} */

/* ---- Matrix product ---- */

/** @name Matrix product
 * c = a * b for dense row-major matrices: `a` is m by k, `b` k by n, `c` m by n, rows contiguous. `c` need
 * not be initialised and must not overlap `a` or `b`. The work is one general matrix product of the CBLAS
 * companion, whose order of summation and threads apply.
 *
 * Status: 1 null pointer; 2 `m`, `n` or `k` below 1. @{ */
TZM_API OrvaStatus ORVAS_MMul_32f(const Orva32f* a, const Orva32f* b, Orva32f* c, int32_t m, int32_t n, int32_t k);
TZM_API OrvaStatus ORVAS_MMul_64f(const Orva64f* a, const Orva64f* b, Orva64f* c, int32_t m, int32_t n, int32_t k);
TZM_API OrvaStatus ORVAS_MMul_32fc(const Orva32fc* a, const Orva32fc* b, Orva32fc* c, int32_t m, int32_t n, int32_t k);
TZM_API OrvaStatus ORVAS_MMul_64fc(const Orva64fc* a, const Orva64fc* b, Orva64fc* c, int32_t m, int32_t n, int32_t k);
/** @} */

#endif
