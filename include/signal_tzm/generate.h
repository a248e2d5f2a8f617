/* Windows and generators. */
#ifndef SIGNAL_TZM_GENERATE_H
#define SIGNAL_TZM_GENERATE_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Hann, Hamming, Blackman and Bartlett windows ---- */

/** @name Hann, Hamming, Blackman and Bartlett windows
 * dst[i] = src[i] * w(i) for a symmetric window of `len` points; both parts of a complex sample take the
 * same value. (A periodic window of n points is the first n of a symmetric one of n + 1.) With x = 2 pi i / (len - 1):
 *
 * | Window | w(i) |
 * |---|---|
 * | Hann | 0.5 - 0.5 cos x |
 * | Hamming | 0.54 - 0.46 cos x; exactly 0.08 at both ends |
 * | Bartlett | i * (2 / (len - 1)) up to the middle |
 * | Blackman | (alpha + 1)/2 - 0.5 cos x - (alpha/2) cos 2x |
 * | BlackmanStd | the same with alpha = -0.16 |
 * | BlackmanOpt | the same with alpha = -0.5 / (1 + cos(2 pi / (len - 1))) |
 *
 * A value is made once, for i below the middle, and serves the mirror at len - 1 - i too, so the halves
 * are equal to the bit. The middle sample of an odd length is copied as it is.
 *
 * Precision is a matter of the sample type. 16s, 16sc: window, sample and product in binary32, rounded to
 * the nearest integer with ties to even, saturated; the two ends of Hamming alone are truncated,
 * deliberately. 32f, 32fc: the cosine windows in binary64, rounded to binary32 once; Hamming and Bartlett
 * in binary32. 64f, 64fc: binary64.
 *
 * Body and tail differ: the cosines come from a rotation in binary64, four indices at a time (two in 64f,
 * 64fc), and for the indices past the last whole block of the first half from `cos`. Its drift is below
 * 1e-15 at first and grows with `len`. Hamming takes them from a table of 64 sines with a polynomial:
 * in binary32 up to that last block (counted from index 1), in binary64 past it; 64f and 64fc from `cos`.
 *
 * `src` and `dst` may be the same array; the _I members are that call. `alpha` may be any value, NaN too.
 * Status: 1 null pointer; 2 `len < 3`, BlackmanOpt `len < 4`. @{ */
TZM_API OrvaStatus ORVAS_WinHann_16s(const Orva16s* src, Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_16s_I(Orva16s* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_16sc_I(Orva16sc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_32fc_I(Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_64fc_I(Orva64fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_16s(const Orva16s* src, Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_16s_I(Orva16s* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_16sc_I(Orva16sc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_32fc_I(Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_64fc_I(Orva64fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_16s(const Orva16s* src, Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_16s_I(Orva16s* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_16sc_I(Orva16sc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_32fc_I(Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_64fc_I(Orva64fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackman_16s(const Orva16s* src, Orva16s* dst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_16s_I(Orva16s* srcDst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_16sc_I(Orva16sc* srcDst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_32f_I(Orva32f* srcDst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_64f_I(Orva64f* srcDst, int32_t len, Orva64f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len, Orva64f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_64fc_I(Orva64fc* srcDst, int32_t len, Orva64f alpha);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_16s(const Orva16s* src, Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_16s_I(Orva16s* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_16sc_I(Orva16sc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_32fc_I(Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_64fc_I(Orva64fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_16s(const Orva16s* src, Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_16s_I(Orva16s* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_16sc_I(Orva16sc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_32fc_I(Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_64fc_I(Orva64fc* srcDst, int32_t len);
/** @} */

/* ---- Kaiser window ---- */

/** @name Kaiser window
 * dst[i] = src[i] * w(i), w(i) = I0(alpha sqrt((N - i) i)) / I0(alpha N / 2) with N = len - 1 and I0 the
 * modified Bessel function of order 0; the usual parameter beta is alpha N / 2. Symmetric to the bit, the
 * middle sample of an odd length copied, both parts of a complex sample by the same value, integers rounded
 * and saturated, as in the windows above; in place too.
 *
 * I0 is its power series, in binary64 (64f, 64fc) summed until nothing changes, in binary32 (all others) of 32
 * terms. Body and tail have the same values. `alpha` may be negative: only its square counts.
 *
 * Status: 1 null pointer; 2 `len < 1`; 410 |alpha| * N / 2 above 38 (64f, 64fc: above 308). @{ */
TZM_API OrvaStatus ORVAS_WinKaiser_16s(const Orva16s* src, Orva16s* dst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinKaiser_16s_I(Orva16s* srcDst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinKaiser_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinKaiser_16sc_I(Orva16sc* srcDst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinKaiser_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinKaiser_32f_I(Orva32f* srcDst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinKaiser_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinKaiser_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinKaiser_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f alpha);
TZM_API OrvaStatus ORVAS_WinKaiser_64f_I(Orva64f* srcDst, int32_t len, Orva64f alpha);
TZM_API OrvaStatus ORVAS_WinKaiser_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len, Orva64f alpha);
TZM_API OrvaStatus ORVAS_WinKaiser_64fc_I(Orva64fc* srcDst, int32_t len, Orva64f alpha);
/** @} */

/* ---- Tone generator ---- */

/** @name Tone generator
 * dst[n] = magn * cos(2 pi rFreq n + phase), in complex members + i magn * sin(2 pi rFreq n + phase); `rFreq`
 * in cycles per sample, `*phase` in radians. The phase is only read: the caller advances it between calls.
 *
 * Values come from a recurrence in binary64 over the even number of samples at the front (16s and 16sc: a multiple of
 * 4; always the first four) and from `cos` and `sin` for the rest. Its drift grows with `len`, most where `rFreq` is
 * near a multiple of 1/2; there is no seeding anew. The product with `magn` is rounded to the sample type; 16s and 16sc
 * deliberately truncate toward zero (and saturate, but for the first four samples and the rest).
 *
 * Status, in this order: 1 null pointer; 10 phase below 0 or, in binary64, not below 6.283185307179586; 2 `len < 1`;
 * 10 `magn` not above 0; 10 `rFreq` below 0 or not below 0.5 (complex members: 1). A NaN passes. @{ */
TZM_API OrvaStatus ORVAS_Tone_16s(Orva16s* dst, int32_t len, Orva16s magn, Orva32f rFreq, const Orva32f* phase);
TZM_API OrvaStatus ORVAS_Tone_32f(Orva32f* dst, int32_t len, Orva32f magn, Orva32f rFreq, const Orva32f* phase);
TZM_API OrvaStatus ORVAS_Tone_64f(Orva64f* dst, int32_t len, Orva64f magn, Orva64f rFreq, const Orva64f* phase);
TZM_API OrvaStatus ORVAS_Tone_16sc(Orva16sc* dst, int32_t len, Orva16s magn, Orva32f rFreq, const Orva32f* phase);
TZM_API OrvaStatus ORVAS_Tone_32fc(Orva32fc* dst, int32_t len, Orva32f magn, Orva32f rFreq, const Orva32f* phase);
TZM_API OrvaStatus ORVAS_Tone_64fc(Orva64fc* dst, int32_t len, Orva64f magn, Orva64f rFreq, const Orva64f* phase);
/** @} */

/* ---- Gaussian generator ---- */

/** @name Gaussian generator
 * `len` samples of a normal distribution by the polar method on the system's `drand48`. Init makes a state of
 * mean, standard deviation and seed; the generator only reads it and calls `srand48` with the seed every
 * time, so the same state gives the same numbers: deliberately, a fresh stream is a state with another seed.
 * State and samples must be of the same type. `drand48` has one state in the process: calls at the same time
 * disturb each other's streams.
 *
 * Body and tail differ, deliberately. Whole blocks of 8 samples (64f: 4) take the common logarithm in place
 * of the natural one, which leaves them 0.659 of `stdDev`; integers are truncated and saturated. The rest has
 * the full `stdDev`; integers are truncated and wrap, negative values of 8u becoming 0. 8u, 16s and 32f work
 * in binary32, in the tail in binary64 from binary32 draws; 64f in binary64.
 *
 * Status of Init: 1 null `stateOut`; 9 no memory (`*stateOut` unchanged). Of the generator: 1 null pointer;
 * 2 `len < 1`. Release of null succeeds. @{ */
typedef struct OrvaRandGaussState OrvaRandGaussState;

TZM_API OrvaStatus ORVAS_RandGaussInit_8u(OrvaRandGaussState** stateOut, Orva8u mean, Orva8u stdDev, uint32_t seed);
TZM_API OrvaStatus ORVAS_RandGaussInit_16s(OrvaRandGaussState** stateOut, Orva16s mean, Orva16s stdDev, uint32_t seed);
TZM_API OrvaStatus ORVAS_RandGaussInit_32f(OrvaRandGaussState** stateOut, Orva32f mean, Orva32f stdDev, uint32_t seed);
TZM_API OrvaStatus ORVAS_RandGaussInit_64f(OrvaRandGaussState** stateOut, Orva64f mean, Orva64f stdDev, uint32_t seed);
TZM_API OrvaStatus ORVAS_RandGauss_8u(Orva8u* dst, int32_t len, const OrvaRandGaussState* state);
TZM_API OrvaStatus ORVAS_RandGauss_16s(Orva16s* dst, int32_t len, const OrvaRandGaussState* state);
TZM_API OrvaStatus ORVAS_RandGauss_32f(Orva32f* dst, int32_t len, const OrvaRandGaussState* state);
TZM_API OrvaStatus ORVAS_RandGauss_64f(Orva64f* dst, int32_t len, const OrvaRandGaussState* state);
TZM_API OrvaStatus ORVAS_RandGaussRelease_8u(OrvaRandGaussState* state);
TZM_API OrvaStatus ORVAS_RandGaussRelease_16s(OrvaRandGaussState* state);
TZM_API OrvaStatus ORVAS_RandGaussRelease_32f(OrvaRandGaussState* state);
TZM_API OrvaStatus ORVAS_RandGaussRelease_64f(OrvaRandGaussState* state);
/** @} */

/* ---- Jaehne test vectors ---- */

/** @name Jaehne test vectors
 * dst[i] = magn * sin(i^2 (pi/2) / len): a chirp from frequency 0 to half the sampling rate. A length of 1
 * gives 0. Computed in binary64 in 32s and 64f, in binary32 in the others; integers are rounded to nearest
 * with ties to even and saturated, so that the negative half is 0 in unsigned samples.
 *
 * Body and tail differ: the last `len` mod 4 samples (32s, 64f: mod 2) take the sine and the product in
 * binary64 from the system's library, the others from the vector sine in the type of the computation.
 *
 * Status: 1 null pointer; 2 `len < 1`; 10 `magn` below 0. A NaN passes. @{ */
TZM_API OrvaStatus ORVAS_VectorJaehne_8u(Orva8u* dst, int32_t len, Orva8u magn);
TZM_API OrvaStatus ORVAS_VectorJaehne_16u(Orva16u* dst, int32_t len, Orva16u magn);
TZM_API OrvaStatus ORVAS_VectorJaehne_16s(Orva16s* dst, int32_t len, Orva16s magn);
TZM_API OrvaStatus ORVAS_VectorJaehne_32s(Orva32s* dst, int32_t len, Orva32s magn);
TZM_API OrvaStatus ORVAS_VectorJaehne_32f(Orva32f* dst, int32_t len, Orva32f magn);
TZM_API OrvaStatus ORVAS_VectorJaehne_64f(Orva64f* dst, int32_t len, Orva64f magn);
/** @} */

#endif
