/* FIR filters and their design. */
#ifndef SIGNAL_TZM_FIR_H
#define SIGNAL_TZM_FIR_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Single-rate FIR filter ---- */

/* ---- Multi-rate FIR filter ---- */

/* ---- LMS adaptive FIR filter ---- */

/* ---- Sparse FIR filter ---- */

/* ---- FIR design ---- */

#endif
