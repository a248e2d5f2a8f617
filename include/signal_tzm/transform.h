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

#endif
