/* signal_tzm: signal-processing primitives with exact results. This header is all of them. */
#ifndef SIGNAL_TZM_H
#define SIGNAL_TZM_H

#include <signal_tzm/selectors.h>
#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

#include <signal_tzm/arith.h>
#include <signal_tzm/correlate.h>
#include <signal_tzm/elementary.h>
#include <signal_tzm/fir.h>
#include <signal_tzm/format.h>
#include <signal_tzm/generate.h>
#include <signal_tzm/reduce.h>
#include <signal_tzm/resample.h>
#include <signal_tzm/threshold.h>
#include <signal_tzm/transform.h>

#endif
