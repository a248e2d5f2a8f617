/* Transforms and spectra. */
#ifndef SIGNAL_TZM_TRANSFORM_H
#define SIGNAL_TZM_TRANSFORM_H

#include <signal_tzm/selectors.h>
#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- FFT thread count ---- */

/** @name FFT thread count
 * The count is a ceiling for plans made from now on; existing specs keep theirs. With the default FFT
 * companion, complex transforms below 32768 points and real ones below 65536 run on the calling thread alone;
 * longer ones are shared with as many threads as there are processors, if the count allows. A thread that
 * gets no processor takes no part, and is not waited for. The count's only store is the environment variable
 * ORVA_FFT_THREAD_NUM, which is also read when the library loads; absent, not a number or below 1 it means
 * 8. Set returns 7 for a count below 1, and must not race with Get, with
 * planning or with any other use of the environment. Get returns 1 for a null pointer and reports the
 * variable, not what the FFT companion was told. @{ */
TZM_API OrvaStatus ORVAS_SetFFTNumberThreads(int32_t numThreads);
TZM_API OrvaStatus ORVAS_GetFFTNumberThreads(int32_t* numThreads);
/** @} */

/* ---- FFT and DFT specs ---- */

/** @name FFT and DFT specs
 * One-dimensional discrete Fourier transforms of length n = 2^order (FFT) or n = len (DFT):
 *
 *     X[k] = sum over i of x[i] * exp(-+ 2 pi j i k / n), - forward, + inverse, then normalised
 *
 * Init makes a spec, which any number of calls, from any number of threads at once, may run until
 * Release gives it back. `direction` (`ORVA_DIRECTION_...`) above 0 is forward, all else inverse. Kinds:
 *
 * - `32fc`, `64fc`: interleaved complex, n elements in and out; `_I` in place.
 * - CToC `32f`, `64f`: split complex, n reals in each of the four arrays.
 * - RToC: n reals to the half spectrum, n/2 + 1 interleaved complex values in an array of reals, which
 *   may be the parts of an array of complex samples (`&spectrum[0].re`).
 * - CToR: the half spectrum to n reals; the contents of `src` are lost.
 *
 * Source and destination may be the same array where their shapes allow it. `flag` (`ORVA_DIVIDE_...`) divides:
 *
 * | flag | forward, RToC | inverse, CToR |
 * |---|---|---|
 * | 1 | n | - |
 * | 2 | - | n |
 * | 3 | sqrt(n) | sqrt(n) |
 * | 4 | - | - |
 *
 * The RToC members of the FFT family divide n + 2 reals, those of the DFT family 2*(n/2) + 2: an RToC FFT
 * of order 0 with flag 1 or 3 touches one real more than its spectrum has.
 *
 * Status of Init: 1 null `specOut`; 15 `order` outside 0 to 27, or 2 `len` below 1 and 9 `len` above
 * 134217728 (deliberately an allocation failure); 14 `flag` outside 1 to 4; 9 no memory or no plan.
 * `*specOut` is set on success only. Status of a run: 1 null array, spec or plan in it; 15 (FFT), 2 or 9
 * (DFT) for a length no Init makes. A spec of another kind is not told: its plan runs as what it was made
 * for, on arrays of that kind's sizes. Release always succeeds and takes null. @{ */
typedef struct OrvaTransformSpec OrvaTransformSpec;

TZM_API OrvaStatus ORVAS_FFTCToCInit_32fc(int32_t order, int32_t direction, int32_t flag,
                                           OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_FFTCToCInit_32f(int32_t order, int32_t direction, int32_t flag,
                                          OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_FFTRToCInit_32f(int32_t order, int32_t flag, OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_FFTCToRInit_32f(int32_t order, int32_t flag, OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_FFTCToC_32fc(const Orva32fc* src, Orva32fc* dst, const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTCToC_32fc_I(Orva32fc* srcDst, const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTCToC_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32f* dstRe, Orva32f* dstIm,
                                      const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTRToC_32f(const Orva32f* src, Orva32f* dst, const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTCToR_32f(Orva32f* src, Orva32f* dst, const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTCToCRelease_32fc(OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTCToCRelease_32f(OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTRToCRelease_32f(OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTCToRRelease_32f(OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTCToCInit_64fc(int32_t order, int32_t direction, int32_t flag,
                                           OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_FFTCToCInit_64f(int32_t order, int32_t direction, int32_t flag,
                                          OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_FFTRToCInit_64f(int32_t order, int32_t flag, OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_FFTCToRInit_64f(int32_t order, int32_t flag, OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_FFTCToC_64fc(const Orva64fc* src, Orva64fc* dst, const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTCToC_64fc_I(Orva64fc* srcDst, const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTCToC_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64f* dstRe, Orva64f* dstIm,
                                      const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTRToC_64f(const Orva64f* src, Orva64f* dst, const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTCToR_64f(Orva64f* src, Orva64f* dst, const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTCToCRelease_64fc(OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTCToCRelease_64f(OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTRToCRelease_64f(OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_FFTCToRRelease_64f(OrvaTransformSpec* spec);

TZM_API OrvaStatus ORVAS_DFTCToCInit_32fc(int32_t len, int32_t direction, int32_t flag,
                                           OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_DFTCToCInit_32f(int32_t len, int32_t direction, int32_t flag,
                                          OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_DFTRToCInit_32f(int32_t len, int32_t flag, OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_DFTCToRInit_32f(int32_t len, int32_t flag, OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_DFTCToC_32fc(const Orva32fc* src, Orva32fc* dst, const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTCToC_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32f* dstRe, Orva32f* dstIm,
                                      const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTRToC_32f(const Orva32f* src, Orva32f* dst, const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTCToR_32f(Orva32f* src, Orva32f* dst, const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTCToCRelease_32fc(OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTCToCRelease_32f(OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTRToCRelease_32f(OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTCToRRelease_32f(OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTCToCInit_64fc(int32_t len, int32_t direction, int32_t flag,
                                           OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_DFTCToCInit_64f(int32_t len, int32_t direction, int32_t flag,
                                          OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_DFTRToCInit_64f(int32_t len, int32_t flag, OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_DFTCToRInit_64f(int32_t len, int32_t flag, OrvaTransformSpec** specOut);
TZM_API OrvaStatus ORVAS_DFTCToC_64fc(const Orva64fc* src, Orva64fc* dst, const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTCToC_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64f* dstRe, Orva64f* dstIm,
                                      const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTRToC_64f(const Orva64f* src, Orva64f* dst, const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTCToR_64f(Orva64f* src, Orva64f* dst, const OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTCToCRelease_64fc(OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTCToCRelease_64f(OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTRToCRelease_64f(OrvaTransformSpec* spec);
TZM_API OrvaStatus ORVAS_DFTCToRRelease_64f(OrvaTransformSpec* spec);
/** @} */

/* ---- FFT shift ---- */

/** @name FFT shift
 * Exchanges the halves of a spectrum so that bin 0 comes to the middle: with c = (len + 1) / 2,
 * `dst` = src[c .. len-1] followed by src[0 .. c-1]. An even shift is its own inverse, an odd one is not.
 * `dst` may be `src`. Values are moved, not interpreted. Status: 1 null pointer; 2 `len < 1`. @{ */
TZM_API OrvaStatus ORVAS_FFTShift_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_FFTShift_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_FFTShift_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_FFTShift_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
/** @} */

/* ---- Chirp-Z transform ---- */

/** @name Chirp-Z transform
 * The z-transform of `src` on a spiral: dst[k] = sum over n of src[n] * a^-n * w^(n k), for k below
 * `dstLen`. With a = 1 and w = exp(-2 pi i / srcLen) it is the discrete Fourier transform; with
 * a = exp(2 pi i low/rate) and w = exp(-2 pi i step/rate) it looks at the frequencies low + k*step of a
 * signal at `rate`, as close as you like. The powers are recurrences in the sample's type: their error grows
 * with the lengths. `src` and `dst` must not overlap.
 * The call plans and allocates, and frees all of it before it returns. A `w` or `a` of 0, or values that
 * overflow, give NaN or infinities without a status.
 *
 * Status: 1 null pointer; 2 a length below 1; 202 srcLen + dstLen at or above 0x40000000, or the
 * transform length (the power of two not below srcLen + dstLen - 1) above 0x8000000 (64-bit members
 * 0x4000000); 9 an allocation or a plan failed. `dst` is written at the end, on success only. @{ */
TZM_API OrvaStatus ORVAS_CZT_32f(const Orva32f* src, int32_t srcLen, Orva32fc* dst, int32_t dstLen, Orva32fc w,
                                 Orva32fc a);
TZM_API OrvaStatus ORVAS_CZT_64f(const Orva64f* src, int32_t srcLen, Orva64fc* dst, int32_t dstLen, Orva64fc w,
                                 Orva64fc a);
TZM_API OrvaStatus ORVAS_CZT_32fc(const Orva32fc* src, int32_t srcLen, Orva32fc* dst, int32_t dstLen, Orva32fc w,
                                  Orva32fc a);
TZM_API OrvaStatus ORVAS_CZT_64fc(const Orva64fc* src, int32_t srcLen, Orva64fc* dst, int32_t dstLen, Orva64fc w,
                                  Orva64fc a);
/** @} */

/* ---- Goertzel ---- */

/** @name Goertzel
 * One bin at the relative frequency `rFreq` (cycles per sample): *dst = sum over n of
 * src[n] * exp(-2 pi i rFreq n), unscaled. Four interleaved sums (two in the 64-bit members) run from the
 * end of the signal to its start, are turned into phase and added as (0+1) + (2+3).
 *
 * Status: 1 null pointer; 2 `len < 1`; 411 `rFreq` below 0 or at or above 1, save that 32fc takes
 * exactly 1 (a deliberate exception). A NaN frequency gives a NaN bin. @{ */
TZM_API OrvaStatus ORVAS_Goertz_32f(const Orva32f* src, int32_t len, Orva32fc* dst, Orva32f rFreq);
TZM_API OrvaStatus ORVAS_Goertz_64f(const Orva64f* src, int32_t len, Orva64fc* dst, Orva64f rFreq);
TZM_API OrvaStatus ORVAS_Goertz_32fc(const Orva32fc* src, int32_t len, Orva32fc* dst, Orva32f rFreq);
TZM_API OrvaStatus ORVAS_Goertz_64fc(const Orva64fc* src, int32_t len, Orva64fc* dst, Orva64f rFreq);
/** @} */

/* ---- Hilbert transform ---- */

/** @name Hilbert transform
 * The analytic signal of `src`: real part the input (up to rounding), imaginary part its Hilbert
 * transform, `len` complex elements in `dst`, which must not overlap `src`. Init makes a spec for one length,
 * which any number of threads may use at once, on separate arrays, until Release (null allowed) gives it back.
 *
 * Status of Init: 1 null `specOut`; 2 `len < 1`; 9 no memory, or no plan: none beyond 2^27 samples
 * (`*specOut` unchanged). Of the transform: 1 null array or spec; 2 `len < 1`; 204 `len` is not what it
 * was made for. @{ */
typedef struct OrvaHilbertSpec OrvaHilbertSpec;

TZM_API OrvaStatus ORVAS_HilbertInit_32f32fc(int32_t len, OrvaHilbertSpec** specOut);
TZM_API OrvaStatus ORVAS_Hilbert_32f32fc(const Orva32f* src, Orva32fc* dst, int32_t len,
                                         const OrvaHilbertSpec* spec);
TZM_API OrvaStatus ORVAS_HilbertRelease_32f32fc(OrvaHilbertSpec* spec);
/** @} */

/* ---- Welch spectral estimate ---- */

/** @name Welch spectral estimate
 * Power spectral density of `src` (`srcLen` samples) by Welch's method: segments of `winLen` samples,
 * `ceil(winLen * overlap)` of them shared with the next, each multiplied by `window` (`winLen` real
 * values; null means all ones), transformed, and their power spectra averaged:
 *
 *     dst[k] = c[k] / (nseg * winLen * 2 pi * mean(window^2)) * sum over segments of |X[k]|^2
 *
 * in power per radian per sample: times 2 pi / rate it is power per Hz. The transform length n is
 * `winLen` where `nfft` is 0, negative or equal to it, else `nfft`, which must be smaller: a longer
 * segment is folded onto the transform (added modulo n), not cut. `dst` receives n/2 + 1 values for real
 * samples, one-sided (c is 2 for bins 1 to (n-1)/2 and 1 for bin 0 and the middle of an even n), and n
 * values for complex ones, two-sided (c = 1). The remainder of the signal that fills no segment is not
 * used, and nothing is detrended. A window of zeros leaves the sum undivided. `dst` must not
 * overlap the sources.
 *
 * The call plans and allocates, and frees all of it before it returns.
 *
 * Status: 1 null `src` or `dst`; 2 `srcLen` or `winLen` below 1, `srcLen` below `winLen` or above
 * 0x3fffffff, `winLen` above 0xfffffff (64-bit members 0x7ffffff), `nfft` above `winLen`, `overlap` not
 * above 0 (at least one sample must overlap), above 0.95, or so near 1 that no sample is new; 9 an
 * allocation or a plan failed. `dst` is written at the end, on success only. @{ */
TZM_API OrvaStatus ORVAS_Pwelch_32f(const Orva32f* src, const Orva32f* window, Orva32f* dst, int32_t srcLen,
                                    int32_t nfft, int32_t winLen, Orva64f overlap);
TZM_API OrvaStatus ORVAS_Pwelch_64f(const Orva64f* src, const Orva64f* window, Orva64f* dst, int32_t srcLen,
                                    int32_t nfft, int32_t winLen, Orva64f overlap);
TZM_API OrvaStatus ORVAS_Pwelch_32fc(const Orva32fc* src, const Orva32f* window, Orva32f* dst, int32_t srcLen,
                                     int32_t nfft, int32_t winLen, Orva64f overlap);
TZM_API OrvaStatus ORVAS_Pwelch_64fc(const Orva64fc* src, const Orva64f* window, Orva64f* dst, int32_t srcLen,
                                     int32_t nfft, int32_t winLen, Orva64f overlap);
/** @} */

#endif
