// The magnitude of a sound's analytic signal.
#ifndef TZM_TOOL_ANALYTIC_H
#define TZM_TOOL_ANALYTIC_H

#include <functional>
#include <span>

#include "audio.h"

namespace tzm {

/** Gives take(c, magnitudes) those of each channel in order, block by block: what a Hilbert transform of the whole
 * sound makes, in memory for a 128th of it beyond 2^20 samples. The error is below 2e-5 of the largest sample at every
 * frequency. `reader` can be read again. Gives the count of samples; throws Failure above 2^34 of them. */
int64_t ForEachMagnitude(AudioReader& reader, const std::function<void(size_t, std::span<const float>)>& take);

}  // namespace tzm

#endif
