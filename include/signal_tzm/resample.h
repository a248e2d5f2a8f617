/* Resampling. */
#ifndef SIGNAL_TZM_RESAMPLE_H
#define SIGNAL_TZM_RESAMPLE_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Polyphase resampler ---- */

/** @name Polyphase resampler
 * Resamples by a real `factor`, the output rate over the input rate, given anew with every call:
 *
 *     dst[j] = g * sum over m of src[m] * h((t_j - m) * min(1, factor)),   t_j = *time + j / factor
 *
 * h is a sinc under a Kaiser window, held as a table of one half with `nStep` entries in a source sample's time, and
 * interpolated linearly between two entries; g = norm * min(1, factor).
 *
 * **Init.** `window` is the filter's full width in source samples (it grows by 1/factor below factor 1), `rollf` the
 * cut-off relative to the lower Nyquist frequency, above 0 and up to 1, `alpha` the Kaiser parameter, 1 or more (above
 * 713 I0 passes binary64, and the table holds NaN). Entry
 * i of the half filter, K = floor(window/2 * nStep), s = pi/nStep rounded to binary32 (deliberately) and x = i*s, is
 * rollf at 0 and else I0(alpha*sqrt(1-(i/K)^2)) / I0(alpha) * sin(x*rollf) / x, all scaled so that the sum at whole
 * samples on both sides is 1. The table is binary32, and with `_16s` 16-bit, its largest magnitude being 16383; `hint`
 * 2 makes `_16s` keep the table of `_32f`, whose Init stores the hint and does nothing else with it. Status, in this
 * order: 1 `stateOut` null; 2 `nStep` < 1; 7 `window` not above 2/nStep, then `rollf` or `alpha` out of range, then a
 * table beyond 2^31-1 bytes; 9 no memory. The last two leave null in `*stateOut`, the others leave it alone.
 *
 * **Run.** There is no history in the state: the caller keeps past samples in `src`. `*time` is a place in `src`, in
 * samples, and i = floor(*time); outputs are made from there up to i+len. With R = ceil((window/2 + 1/nStep) / min(1,
 * factor)), `src` holds R samples before i and R+1 from i+len on. `*outLen` receives the number of outputs, ceil((len +
 * i - *time) * factor), for which `dst` has room, and `*time` the time of the output to come; the caller subtracts the
 * samples that it drops from the front. Status, in this order: 1 a null pointer; 2 `len` < 1; 7 `factor` not above 0; 7
 * fewer samples before i than the filter reaches back; 7 more than 2^31-1 outputs. Then nothing is written. From a
 * `*time` beyond every source (2^31 or more) nothing is made, and `*outLen` is 0 or below.
 *
 * Sums are binary64 from +0, the samples up to t_j from the nearest to the farthest, then those beyond it. Two taps in
 * a row are a plain sum of two products that is added to the running one, the weight being fma(f, next, (1-f) * entry);
 * an odd last tap is fused, its weight fma(1-f, entry, f * next). `_16s` rounds to nearest, ties to even, and
 * saturates; a NaN gives 0. Deliberately `_32f` forms each t_j from the first one, fma(j, 1/factor, *time), and `_16s`
 * adds 1/factor again and again; and without any output `_32f` moves `*time` on by 1/factor where `_16s` leaves it.
 *
 * `src` and `dst` must not overlap. A run only reads the state: calls at once may share it. Release always succeeds and
 * takes null; the two are the same.
 * @{ */
typedef struct ResamplePolyphaseState ResamplePolyphaseState;

TZM_API OrvaStatus ORVAS_ResamplePolyphaseInit_16s(Orva32f window, int32_t nStep, Orva32f rollf, Orva32f alpha,
                                                   int32_t hint, ResamplePolyphaseState** stateOut);
TZM_API OrvaStatus ORVAS_ResamplePolyphaseInit_32f(Orva32f window, int32_t nStep, Orva32f rollf, Orva32f alpha,
                                                   int32_t hint, ResamplePolyphaseState** stateOut);
TZM_API OrvaStatus ORVAS_ResamplePolyphase_16s(const Orva16s* src, int32_t len, Orva16s* dst, Orva64f factor,
                                               Orva32f norm, Orva64f* time, int32_t* outLen,
                                               const ResamplePolyphaseState* state);
TZM_API OrvaStatus ORVAS_ResamplePolyphase_32f(const Orva32f* src, int32_t len, Orva32f* dst, Orva64f factor,
                                               Orva32f norm, Orva64f* time, int32_t* outLen,
                                               const ResamplePolyphaseState* state);
TZM_API OrvaStatus ORVAS_ResamplePolyphaseRelease_16s(ResamplePolyphaseState* state);
TZM_API OrvaStatus ORVAS_ResamplePolyphaseRelease_32f(ResamplePolyphaseState* state);
/** @} */

/* ---- Fixed-ratio polyphase resampler ---- */

/** @name Fixed-ratio polyphase resampler
 * Resamples from one integer rate to another, with U/D their ratio outRate/inRate in lowest terms:
 *
 *     dst[j] = norm * sum over m of src[m] * h[U*R + U*(t_j - m)],   t_j = (*time + j*inRate) / outRate
 *
 * The filter h has 2*U*R entries in steps of 1/U of a source sample, entry U*R being its centre; it is kept as U phases
 * of 2*R taps, and every output is one dot product, over the samples from floor(t_j)-R+1 to floor(t_j)+R.
 *
 * **Time** is an integer, in units of 1/outRate of a source sample: sample m of `src` is at m*outRate, and an output
 * moves time on by inRate. So it is exact: it does not drift however long the stream, and blocks of any sizes give what
 * one call gives, to the bit.
 *
 * **Init** designs h: a sinc under a Kaiser window of the parameter `alpha`, 1 to 713, with its cut-off at `rollf`,
 * above 0 and up to 1, of the lower Nyquist frequency; every phase sums to 1. `window`, 2 or more, is the filter's full
 * width in source samples (when the rate falls: in samples of the output), its two ends included, and R is half of it
 * in source samples, rounded up to a multiple of 4. A stop-band A dB down wants alpha = 0.11*(A - 8.7); the transition,
 * centred at the cut-off, is then (A - 8) / (7.2*window) of the lower Nyquist frequency wide. Status, in this order: 1
 * `stateOut` null; 2 a rate below 1; 7 another argument out of its range; 202 a filter beyond 2^31-1 bytes; 9 no
 * memory. `*stateOut` is null after a failure.
 *
 * **Set and get a filter.** `taps` is h, of `tapsLen` = 2*U*R entries; its sum is U where the gain is to be 1. Get
 * gives the filter as the state holds it; with `taps` null, its length only. Status: 1 a null pointer; 2 (set) another
 * length. The state of `_16s` holds taps as 32-bit integers, scaled to the largest one, and gives them back in
 * binary32.
 *
 * **Run.** There is no history in the state: the caller keeps past samples in `src`. With i = floor(*time / outRate)
 * outputs are made from *time up to i+len; `src` holds R-1 samples before i and R from i+len on. `*outLen` receives the
 * number of outputs, ceil((len - (*time/outRate - i)) * outRate/inRate), for which `dst` has room; `*time` receives the
 * time of the output to come. All at once: put R zeros or more on both sides of the samples, and time at the first
 * sample. To stream: begin with R-1 zeros and time (R-1)*outRate; call with `len` = samples at hand
 * - R - i whenever that is positive; then drop up to floor(*time / outRate) - (R-1) samples from the front and take
 * outRate for each off the time; at the end append R zeros. Status, in this order: 1 a null pointer; 2 `len` < 1; 7
 * `*time` with fewer than R-1 samples before it, with 2^31 or more, or not a multiple of the rates' greatest common
 * divisor; 202 more than 2^31-1 outputs. Then nothing is written. `src` and `dst` must not overlap.
 *
 * `_32f` multiplies the result of `ORVAS_DotProd_32f` by `norm`; `_16s` joins the exact sums of the taps' high and low
 * halves in binary64, multiplies that by norm times the scale of the taps, and rounds to nearest, ties to even, with
 * saturation.
 *
 * A run only reads the state: calls at once may share it, one state serving all channels. Release always succeeds and
 * takes null. @{ */
typedef struct ResamplePolyphaseFixedState ResamplePolyphaseFixedState;

TZM_API OrvaStatus ORVAS_ResamplePolyphaseFixedInit_16s(int32_t inRate, int32_t outRate, Orva32f window, Orva32f rollf,
                                                        Orva32f alpha, ResamplePolyphaseFixedState** stateOut);
TZM_API OrvaStatus ORVAS_ResamplePolyphaseFixedInit_32f(int32_t inRate, int32_t outRate, Orva32f window, Orva32f rollf,
                                                        Orva32f alpha, ResamplePolyphaseFixedState** stateOut);
TZM_API OrvaStatus ORVAS_ResamplePolyphaseFixedSetFilter_16s(ResamplePolyphaseFixedState* state, const Orva32f* taps,
                                                             int32_t tapsLen);
TZM_API OrvaStatus ORVAS_ResamplePolyphaseFixedSetFilter_32f(ResamplePolyphaseFixedState* state, const Orva32f* taps,
                                                             int32_t tapsLen);
TZM_API OrvaStatus ORVAS_ResamplePolyphaseFixedGetFilter_16s(const ResamplePolyphaseFixedState* state, Orva32f* taps,
                                                             int32_t* tapsLen);
TZM_API OrvaStatus ORVAS_ResamplePolyphaseFixedGetFilter_32f(const ResamplePolyphaseFixedState* state, Orva32f* taps,
                                                             int32_t* tapsLen);
TZM_API OrvaStatus ORVAS_ResamplePolyphaseFixed_16s(const Orva16s* src, int32_t len, Orva16s* dst, Orva32f norm,
                                                    Orva64s* time, int32_t* outLen,
                                                    const ResamplePolyphaseFixedState* state);
TZM_API OrvaStatus ORVAS_ResamplePolyphaseFixed_32f(const Orva32f* src, int32_t len, Orva32f* dst, Orva32f norm,
                                                    Orva64s* time, int32_t* outLen,
                                                    const ResamplePolyphaseFixedState* state);
TZM_API OrvaStatus ORVAS_ResamplePolyphaseFixedRelease_16s(ResamplePolyphaseFixedState* state);
TZM_API OrvaStatus ORVAS_ResamplePolyphaseFixedRelease_32f(ResamplePolyphaseFixedState* state);
/** @} */

#endif
