/* FIR filters and their design. */
#ifndef SIGNAL_TZM_FIR_H
#define SIGNAL_TZM_FIR_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Single-rate FIR filter ---- */

/* ---- Multi-rate FIR filter ---- */

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
 * SetDlyLine replaces both, GetTaps gives the taps.
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
 * sampling rate, above 0 and below 0.5; the band members take low below high. `winType` is 0 Bartlett,
 * 1 optimal Blackman, 2 Hamming or 3 Hann. The taps are symmetric to the bit, save that a highpass of even
 * length is antisymmetric. The centre tap has no window factor. `doNormal` 1 (and nothing else) makes the
 * gain 1 at frequency 0 (lowpass, bandstop), half the rate (highpass) or the band's centre (bandpass).
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
