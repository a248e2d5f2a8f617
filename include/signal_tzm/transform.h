/* Transforms and spectra. */
#ifndef SIGNAL_TZM_TRANSFORM_H
#define SIGNAL_TZM_TRANSFORM_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- FFT thread count ---- */

/** @name FFT thread count
 * The count is a ceiling for plans made from now on; existing specs keep theirs. Its only store is the
 * environment variable ORVA_FFT_THREAD_NUM, which is also read when the library loads; absent, not a
 * number or below 1 it means 8. Set returns 7 for a count below 1, and must not race with Get, with
 * planning or with any other use of the environment. Get returns 1 for a null pointer and reports the
 * variable, not what the FFT companion was told. @{ */
TZM_API OrvaStatus ORVAS_SetFFTNumberThreads(int32_t numThreads);
TZM_API OrvaStatus ORVAS_GetFFTNumberThreads(int32_t* numThreads);
/** @} */

/* ---- FFT and DFT specs ---- */

/* ---- FFT shift ---- */

/* ---- Chirp-Z transform ---- */

/* ---- Goertzel ---- */

/* ---- Hilbert transform ---- */

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
 * used, and nothing is detrended. A window of zeros leaves the sum undivided.
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
