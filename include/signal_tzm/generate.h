/* Windows and generators. */
#ifndef SIGNAL_TZM_GENERATE_H
#define SIGNAL_TZM_GENERATE_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Hann, Hamming, Blackman and Bartlett windows ---- */

/* ---- Kaiser window ---- */

/* ---- Tone generator ---- */

/* ---- Gaussian generator ---- */

/* ---- Jaehne test vectors ---- */

#endif
