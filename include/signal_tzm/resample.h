/* Resampling. */
#ifndef SIGNAL_TZM_RESAMPLE_H
#define SIGNAL_TZM_RESAMPLE_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Polyphase resampler ---- */

/* ---- Fixed-ratio polyphase resampler ---- */

#endif
