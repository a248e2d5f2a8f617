/* Thresholds: values below or above a level are replaced. */
#ifndef SIGNAL_TZM_THRESHOLD_H
#define SIGNAL_TZM_THRESHOLD_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Thresholds ---- */

/* ---- Reciprocal thresholds ---- */

#endif
