/* Elementary functions: exponentials, logarithms, trigonometric functions, powers, magnitude, phase, polar forms. */
#ifndef SIGNAL_TZM_ELEMENTARY_H
#define SIGNAL_TZM_ELEMENTARY_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Exponentials and logarithms ---- */

/* ---- Trigonometric functions ---- */

/* ---- Powers ---- */

/* ---- Magnitude, phase and power spectrum ---- */

/* ---- Polar forms ---- */

/* ---- Scaled integer exponentials and logarithms ---- */

/* ---- Complex logarithm, sine and cosine ---- */

/* ---- Powers by accuracy class ---- */

#endif
