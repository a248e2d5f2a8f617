/* Convolution, correlation, matrix product. */
#ifndef SIGNAL_TZM_CORRELATE_H
#define SIGNAL_TZM_CORRELATE_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Convolution ---- */

/* ---- Autocorrelation ---- */

/* ---- Cross-correlation ---- */

/* ---- Matrix product ---- */

#endif
