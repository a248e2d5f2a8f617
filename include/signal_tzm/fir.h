/* FIR filters and their design. */
#ifndef SIGNAL_TZM_FIR_H
#define SIGNAL_TZM_FIR_H

#include <signal_tzm/selectors.h>
#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Single-rate FIR filter ---- */

/** @name Single-rate FIR filter
 * A streaming filter: y[n] = sum over i of h[i] * x[n-i] with `tapsLen` = T taps, used as given (complex
 * ones are not conjugated). x before the first sample of a call comes from a delay line that the caller
 * owns, so one state serves several channels in turn. A state holds scratch: one call at a time.
 *
 * | Run | Init and Release | Block | Tail |
 * |---|---|---|---|
 * | `_32f` | `_32f` | 16 | `ORVAS_DotProd_32f` |
 * | `_16s` | `_32f` | 16 | scalar |
 * | `_64f` | `_64f` | 8 | `ORVAS_DotProd_64f` |
 * | `_32fc` | `_32fc` | 16 | `ORVAS_DotProd_32fc` |
 * | `_16sc` | `_32fc` | 16 | scalar |
 * | `_64fc` | `_64fc` | 8 | `ORVAS_DotProd_64fc` |
 * | `32f_32fc` | `32f_32fc` | 16 | `ORVAS_DotProd_32f32fc` |
 *
 * **Init.** `maxLen` is the largest length that a run will be given; `kind` (`ORVA_ROUTE_...`) 1 asks for the
 * direct sum, 2 for fast convolution by FFT, 0 for the choice: FFT when T exceeds 95 (real samples) or 31
 * (complex) and `maxLen` exceeds 5119, unless the transform would be too long. With P the smallest power of
 * two not below T, the transform has 2P points when maxLen-1 <= 2P-T, else 4P. Status, in this order: 1 `taps`
 * or `stateOut` null; 2 T < 1; 202 T > 536870911; 2 `maxLen` < 1; 406 another kind; 202 kind 2 and P >
 * 536870911 or a transform longer than 44739241 points (22369620 in binary64), `maxLen` >= 536870911 - T, or a
 * block beyond 2^31-1 bytes; 9 no memory or no plan. `*stateOut` is set on success only.
 *
 * **Run.** `len` samples from `src` to `dst`. `delaySrc` and `delayDst` hold T-1 samples, oldest first, and may
 * be null (zeros before the first sample; nothing kept) or the same array; with T = 1 they are not touched.
 * `delayDst` receives what the next call wants as its `delaySrc`. Status: 1 `src` or `dst` null; 2 `len` < 1;
 * 1 `state` null or damaged. `len` is not compared with `maxLen`: a longer direct run overruns the state.
 *
 * Direct: outputs in whole blocks are strict chains from +0, one fused step a tap from h[T-1] to h[0] (a
 * complex tap: re + tr*xr then - ti*xi, im + tr*xi then + ti*xr); the rest of a call is the tail, by the dot
 * product named above of the reversed taps with the line. The 16-bit members work in binary32 and round to
 * nearest, ties to even, with saturation. Deliberately, a NaN becomes 0 in a block, 32767 or -32768 by its sign
 * bit (that of AArch64 where an operation made it) in the tail, and 32767 on the FFT route. Their tail is a
 * fused chain; that of `_16sc` rounds fma(-ti, xi, tr*xr) and fma(ti, xr, tr*xi) before adding them.
 * FFT: overlap-save in steps of (points - T) outputs, as exact as the transforms.
 *
 * In place the floating members work on the direct route; the 16-bit members clear `dst` first, so they give
 * zeros. On the FFT route the arrays must not overlap.
 *
 * Release always succeeds and takes null. @{ */
typedef struct FIRSRState FIRSRState;

TZM_API OrvaStatus ORVAS_FIRSRInit_32f(const Orva32f* taps, int32_t tapsLen, int32_t maxLen, int32_t kind,
                                       FIRSRState** stateOut);
TZM_API OrvaStatus ORVAS_FIRSRInit_64f(const Orva64f* taps, int32_t tapsLen, int32_t maxLen, int32_t kind,
                                       FIRSRState** stateOut);
TZM_API OrvaStatus ORVAS_FIRSRInit_32fc(const Orva32fc* taps, int32_t tapsLen, int32_t maxLen, int32_t kind,
                                        FIRSRState** stateOut);
TZM_API OrvaStatus ORVAS_FIRSRInit_64fc(const Orva64fc* taps, int32_t tapsLen, int32_t maxLen, int32_t kind,
                                        FIRSRState** stateOut);
TZM_API OrvaStatus ORVAS_FIRSRInit32f_32fc(const Orva32f* taps, int32_t tapsLen, int32_t maxLen, int32_t kind,
                                           FIRSRState** stateOut);
TZM_API OrvaStatus ORVAS_FIRSR_32f(const Orva32f* src, Orva32f* dst, int32_t len, FIRSRState* state,
                                   const Orva32f* delaySrc, Orva32f* delayDst);
TZM_API OrvaStatus ORVAS_FIRSR_16s(const Orva16s* src, Orva16s* dst, int32_t len, FIRSRState* state,
                                   const Orva16s* delaySrc, Orva16s* delayDst);
TZM_API OrvaStatus ORVAS_FIRSR_64f(const Orva64f* src, Orva64f* dst, int32_t len, FIRSRState* state,
                                   const Orva64f* delaySrc, Orva64f* delayDst);
TZM_API OrvaStatus ORVAS_FIRSR_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, FIRSRState* state,
                                    const Orva32fc* delaySrc, Orva32fc* delayDst);
TZM_API OrvaStatus ORVAS_FIRSR_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len, FIRSRState* state,
                                    const Orva16sc* delaySrc, Orva16sc* delayDst);
TZM_API OrvaStatus ORVAS_FIRSR_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len, FIRSRState* state,
                                    const Orva64fc* delaySrc, Orva64fc* delayDst);
TZM_API OrvaStatus ORVAS_FIRSR32f_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, FIRSRState* state,
                                       const Orva32fc* delaySrc, Orva32fc* delayDst);
TZM_API OrvaStatus ORVAS_FIRSRRelease_32f(FIRSRState* state);
TZM_API OrvaStatus ORVAS_FIRSRRelease_64f(FIRSRState* state);
TZM_API OrvaStatus ORVAS_FIRSRRelease_32fc(FIRSRState* state);
TZM_API OrvaStatus ORVAS_FIRSRRelease_64fc(FIRSRState* state);
TZM_API OrvaStatus ORVAS_FIRSRRelease32f_32fc(FIRSRState* state);
/** @} */

/* ---- Multi-rate FIR filter ---- */

/** @name Multi-rate FIR filter
 * Up by U, filter, down by D, in polyphase form:
 *
 *     y[n] = sum over m of h[n*D + downPhase - U*m - upPhase] * x[m],   h outside its T taps being 0
 *
 * A run of `iterations` reads D*iterations samples and writes U*iterations. x before the first sample comes from
 * a delay line of R = ceil(T/U) samples that the caller owns. Complex taps are not conjugated. A state holds
 * scratch: one call at a time. `_16s` runs on a state of `_32f`, `_16sc` on one of `_32fc`.
 *
 * **Init.** Status, in this order: 1 `taps` or `stateOut` null; 2 T < 1; 407 U or D < 1; 408 a phase outside
 * 0 to its factor - 1; 202 sizes beyond 2^31-1 (the matrix of the phases has R rows of U+15 samples); 9 no
 * memory. `*stateOut` is set on success only.
 *
 * **Run.** Status: 1 `src` or `dst` null; 2 `iterations` < 1; 1 `state` null or damaged; 407 damaged factors; 202
 * unless `iterations` is below (2^31-1)/U and (2^31-1)/D, rounded down. `delaySrc` and `delayDst` may be null (zeros
 * before the first sample; nothing kept) or the same array; `delayDst` receives what the next call wants as its
 * `delaySrc`. `src` and `dst` must not overlap.
 *
 * Each output is a strict chain from +0, one fused step a row from the oldest sample to the newest, the zeros
 * that fill up a phase included (a complex tap: re + xr*hr then - xi*hi, im + xi*hr then + xr*hi). The 16-bit
 * members work in binary32 and round to nearest, ties to even, with saturation; a NaN becomes 0. Only in
 * `_16sc` the last outputs of a call, those after the last multiple of 16, differ: fma(-xi, hi, xr*hr) and
 * fma(xi, hr, xr*hi) are rounded and then added.
 *
 * Release always succeeds and takes null. @{ */
typedef struct FIRMRState FIRMRState;

TZM_API OrvaStatus ORVAS_FIRMRInit_32f(const Orva32f* taps, int32_t tapsLen, int32_t up, int32_t upPhase,
                                       int32_t down, int32_t downPhase, FIRMRState** stateOut);
TZM_API OrvaStatus ORVAS_FIRMRInit_64f(const Orva64f* taps, int32_t tapsLen, int32_t up, int32_t upPhase,
                                       int32_t down, int32_t downPhase, FIRMRState** stateOut);
TZM_API OrvaStatus ORVAS_FIRMRInit_32fc(const Orva32fc* taps, int32_t tapsLen, int32_t up, int32_t upPhase,
                                        int32_t down, int32_t downPhase, FIRMRState** stateOut);
TZM_API OrvaStatus ORVAS_FIRMRInit_64fc(const Orva64fc* taps, int32_t tapsLen, int32_t up, int32_t upPhase,
                                        int32_t down, int32_t downPhase, FIRMRState** stateOut);
TZM_API OrvaStatus ORVAS_FIRMRInit32f_32fc(const Orva32f* taps, int32_t tapsLen, int32_t up, int32_t upPhase,
                                           int32_t down, int32_t downPhase, FIRMRState** stateOut);
TZM_API OrvaStatus ORVAS_FIRMR_32f(const Orva32f* src, Orva32f* dst, int32_t iterations, FIRMRState* state,
                                   const Orva32f* delaySrc, Orva32f* delayDst);
TZM_API OrvaStatus ORVAS_FIRMR_16s(const Orva16s* src, Orva16s* dst, int32_t iterations, FIRMRState* state,
                                   const Orva16s* delaySrc, Orva16s* delayDst);
TZM_API OrvaStatus ORVAS_FIRMR_64f(const Orva64f* src, Orva64f* dst, int32_t iterations, FIRMRState* state,
                                   const Orva64f* delaySrc, Orva64f* delayDst);
TZM_API OrvaStatus ORVAS_FIRMR_32fc(const Orva32fc* src, Orva32fc* dst, int32_t iterations, FIRMRState* state,
                                    const Orva32fc* delaySrc, Orva32fc* delayDst);
TZM_API OrvaStatus ORVAS_FIRMR_16sc(const Orva16sc* src, Orva16sc* dst, int32_t iterations, FIRMRState* state,
                                    const Orva16sc* delaySrc, Orva16sc* delayDst);
TZM_API OrvaStatus ORVAS_FIRMR_64fc(const Orva64fc* src, Orva64fc* dst, int32_t iterations, FIRMRState* state,
                                    const Orva64fc* delaySrc, Orva64fc* delayDst);
TZM_API OrvaStatus ORVAS_FIRMR32f_32fc(const Orva32fc* src, Orva32fc* dst, int32_t iterations, FIRMRState* state,
                                       const Orva32fc* delaySrc, Orva32fc* delayDst);
TZM_API OrvaStatus ORVAS_FIRMRRelease_32f(FIRMRState* state);
TZM_API OrvaStatus ORVAS_FIRMRRelease_64f(FIRMRState* state);
TZM_API OrvaStatus ORVAS_FIRMRRelease_32fc(FIRMRState* state);
TZM_API OrvaStatus ORVAS_FIRMRRelease_64fc(FIRMRState* state);
TZM_API OrvaStatus ORVAS_FIRMRRelease32f_32fc(FIRMRState* state);
/** @} */

/* ---- LMS adaptive FIR filter ---- */

/** @name LMS adaptive FIR filter
 * For each sample n: dst[n] = sum of taps[j] * src[n-j], then taps[j] += 2 mu (ref[n] - y) src[n-j], where
 * y is the unrounded output and earlier samples come from the delay line. So each output uses the taps
 * that all samples before it have moved. The state owns `tapsLen` taps and the delay line and changes with
 * every run: one call at a time. With `mu` 0 it is a plain FIR filter.
 *
 * Arithmetic is binary32. The output adds the oldest tap first: the taps up to the last multiple of 8 in
 * eight fused lanes, folded as k with k+4, then neighbours; the rest fused one by one onto that. The 16s
 * output is rounded to nearest, ties to even, and deliberately wraps beyond 16 bits.
 *
 * Init takes null `taps` (all zero) and a null delay line (zeros); `dlyIndex` is reduced modulo `tapsLen`
 * and says where in the given line, of `tapsLen` samples, the oldest stands. A run leaves the last
 * `tapsLen` inputs at the line's start and index 0. GetDlyLine gives the line as it lies and its index,
 * SetDlyLine replaces both, GetTaps gives the taps. `dst` may be `ref`, but not `src`.
 *
 * Status of Init: 1 null `state`; 403 `tapsLen < 1`; 9 `tapsLen` above 67108864, or no memory. Of the
 * others: 1 null pointer; 2 `len < 1`; 21 the state is not of this member. Release takes null and always
 * succeeds. @{ */
typedef struct FIRLMSState FIRLMSState;

TZM_API OrvaStatus ORVAS_FIRLMSInit_32f(FIRLMSState** state, const Orva32f* taps, int32_t tapsLen,
                                        const Orva32f* dlyLine, int32_t dlyIndex);
TZM_API OrvaStatus ORVAS_FIRLMSInit32f_16s(FIRLMSState** state, const Orva32f* taps, int32_t tapsLen,
                                           const Orva16s* dlyLine, int32_t dlyIndex);
TZM_API OrvaStatus ORVAS_FIRLMS_32f(FIRLMSState* state, const Orva32f* src, const Orva32f* ref, Orva32f* dst,
                                    int32_t len, Orva32f mu);
TZM_API OrvaStatus ORVAS_FIRLMS32f_16s(FIRLMSState* state, const Orva16s* src, const Orva16s* ref, Orva16s* dst,
                                       int32_t len, Orva32f mu);
TZM_API OrvaStatus ORVAS_FIRLMSGetTaps_32f(const FIRLMSState* state, Orva32f* taps);
TZM_API OrvaStatus ORVAS_FIRLMSGetTaps32f_16s(const FIRLMSState* state, Orva32f* taps);
TZM_API OrvaStatus ORVAS_FIRLMSGetDlyLine_32f(const FIRLMSState* state, Orva32f* dlyLine, int32_t* dlyIndex);
TZM_API OrvaStatus ORVAS_FIRLMSGetDlyLine32f_16s(const FIRLMSState* state, Orva16s* dlyLine, int32_t* dlyIndex);
TZM_API OrvaStatus ORVAS_FIRLMSSetDlyLine_32f(FIRLMSState* state, const Orva32f* dlyLine, int32_t dlyIndex);
TZM_API OrvaStatus ORVAS_FIRLMSSetDlyLine32f_16s(FIRLMSState* state, const Orva16s* dlyLine, int32_t dlyIndex);
TZM_API OrvaStatus ORVAS_FIRLMSRelease_32f(FIRLMSState* state);
TZM_API OrvaStatus ORVAS_FIRLMSRelease32f_16s(FIRLMSState* state);
/** @} */

/* ---- Sparse FIR filter ---- */

/** @name Sparse FIR filter
 * dst[n] = sum over k of taps[k] * src[n - positions[k]], `nzCount` taps with strictly ascending delays,
 * samples before the first from the delay line. Every output is one fused chain from +0, the largest
 * delay first, so blocks of any sizes give what one call gives. `dst` may not be `src`. The state owns the
 * delay line, of as many samples as the largest delay, and changes with every run: one call at a time.
 * Delay lines given and got hold the most recent sample first; a null one means zeros.
 *
 * Status of Init: 1 null `taps` or `positions`; 2 `nzCount < 1`; 1 null `state`; 404 a negative delay, or
 * one not above its predecessor; 202 `nzCount` above 0x7FFFFFE, a delay above 0xFFFFFFE, or a block beyond
 * 31 bits; 9 no memory; and the status of copying no samples (2) for a delay line given where the largest
 * delay is 0. Of a run: 1 null array; 2 `len < 1`; 1 null state. Get and Set: 1 null pointer (a null line
 * to set apart); 2 where the largest delay is 0. Release takes null and always succeeds. @{ */
typedef struct FIRSparseState FIRSparseState;

TZM_API OrvaStatus ORVAS_FIRSparseInit_32f(const Orva32f* taps, const int32_t* positions, int32_t nzCount,
                                           const Orva32f* dlyLine, FIRSparseState** state);
TZM_API OrvaStatus ORVAS_FIRSparse_32f(const Orva32f* src, Orva32f* dst, int32_t len, FIRSparseState* state);
TZM_API OrvaStatus ORVAS_FIRSparseGetDlyLine_32f(const FIRSparseState* state, Orva32f* dlyLine);
TZM_API OrvaStatus ORVAS_FIRSparseSetDlyLine_32f(FIRSparseState* state, const Orva32f* dlyLine);
TZM_API OrvaStatus ORVAS_FIRSparseRelease_32f(FIRSparseState* state);
/** @} */

/* ---- FIR design ---- */

/** @name FIR design
 * `tapsLen` taps of linear phase by the window method, in binary64. Frequencies are fractions of the
 * sampling rate, above 0 and below 0.5; the band members take low below high. `winType` (`ORVA_WINDOW_...`) is
 * 0 Bartlett, 1 optimal Blackman, 2 Hamming or 3 Hann. The taps are symmetric to the bit, save that a highpass
 * of even length is antisymmetric. The centre tap has no window factor. `doNormal` 1 (and nothing else) makes
 * the gain 1 at frequency 0 (lowpass, bandstop), half the rate (highpass) or the band's centre (bandpass).
 *
 * Init makes a work buffer for up to `tapsLen` taps, which the designs do not check; it holds nothing from
 * call to call and serves one design at a time. Release takes null and always succeeds.
 *
 * Status of Init: 1 null `buffer`; 2 `tapsLen < 5`; 202 `tapsLen` too large for a block of 31 bits; 9 no
 * memory. Of a design: 1 null `taps` or `buffer`; 2 `tapsLen < 5`; 2 a bad frequency (deliberately the
 * same); 409 another window; then a status of the window operation. @{ */
typedef struct FIRGenState FIRGenState;

TZM_API OrvaStatus ORVAS_FIRGenInit_64f(int32_t tapsLen, FIRGenState** buffer);
TZM_API OrvaStatus ORVAS_FIRGenLowpass_64f(Orva64f relFreq, Orva64f* taps, int32_t tapsLen, int32_t winType,
                                           int32_t doNormal, FIRGenState* buffer);
TZM_API OrvaStatus ORVAS_FIRGenHighpass_64f(Orva64f relFreq, Orva64f* taps, int32_t tapsLen, int32_t winType,
                                            int32_t doNormal, FIRGenState* buffer);
TZM_API OrvaStatus ORVAS_FIRGenBandpass_64f(Orva64f relFreqLow, Orva64f relFreqHigh, Orva64f* taps, int32_t tapsLen,
                                            int32_t winType, int32_t doNormal, FIRGenState* buffer);
TZM_API OrvaStatus ORVAS_FIRGenBandstop_64f(Orva64f relFreqLow, Orva64f relFreqHigh, Orva64f* taps, int32_t tapsLen,
                                            int32_t winType, int32_t doNormal, FIRGenState* buffer);
TZM_API OrvaStatus ORVAS_FIRGenRelease(FIRGenState* buffer);
/** @} */

#endif
