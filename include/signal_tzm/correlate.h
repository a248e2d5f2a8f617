/* Convolution, correlation, matrix product. */
#ifndef SIGNAL_TZM_CORRELATE_H
#define SIGNAL_TZM_CORRELATE_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Convolution ---- */

/** @name Convolution
 * Full linear convolution of two real sequences,
 *
 *     dst[k] = sum over i of src1[i] * src2[k-i],    k = 0 ... N-1,    N = src1Len + src2Len - 1
 *
 * with `N` samples in `dst`, which must not overlap the sources. Init chooses the route from the lengths
 * and `kind`: 2 by FFT; 0 by FFT where both lengths exceed 16 and their sum exceeds 512, else directly; any
 * other kind directly. Release (null allowed) gives the state back. Working calls write to the state: one
 * call at a time on each.
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

/* ---- Cross-correlation ---- */

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
