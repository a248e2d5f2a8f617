/* Windows and generators. */
#ifndef SIGNAL_TZM_GENERATE_H
#define SIGNAL_TZM_GENERATE_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Hann, Hamming, Blackman and Bartlett windows ---- */

/** @name Hann, Hamming, Blackman and Bartlett windows
 * dst[i] = src[i] * w(i) for a symmetric window of `len` points; both parts of a complex sample take the
 * same value. With x = 2 pi i / (len - 1):
 *
 * | Window | w(i) |
 * |---|---|
 * | Hann | 0.5 - 0.5 cos x |
 * | Hamming | 0.54 - 0.46 cos x; exactly 0.08 at both ends |
 * | Bartlett | i * (2 / (len - 1)) up to the middle |
 * | Blackman | (alpha + 1)/2 - 0.5 cos x - (alpha/2) cos 2x |
 * | BlackmanStd | the same with alpha = -0.16 |
 * | BlackmanOpt | the same with alpha = -0.5 / (1 + cos(2 pi / (len - 1))) |
 *
 * A value is made once, for i below the middle, and serves the mirror at len - 1 - i too, so the halves
 * are equal to the bit. The middle sample of an odd length is copied as it is.
 *
 * Precision is a matter of the sample type. 16s, 16sc: window, sample and product in binary32, rounded to
 * the nearest integer with ties to even, saturated; the two ends of Hamming alone are truncated,
 * deliberately. 32f, 32fc: the cosine windows in binary64, rounded to binary32 once; Hamming and Bartlett
 * in binary32. 64f, 64fc: binary64.
 *
 * Body and tail differ: the cosines come from a rotation in binary64, four indices at a time (two in 64f,
 * 64fc), and for the indices past the last whole block of the first half from `cos`. Its drift is below
 * 1e-15 at first and grows with `len`. Hamming takes them from a table of 64 sines with a polynomial:
 * in binary32 up to that last block (counted from index 1), in binary64 past it; 64f and 64fc from `cos`.
 *
 * `src` and `dst` may be the same array; the _I members are that call. `alpha` may be any value, NaN too.
 * Status: 1 null pointer; 2 `len < 3`, BlackmanOpt `len < 4`. @{ */
TZM_API OrvaStatus ORVAS_WinHann_16s(const Orva16s* src, Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_16s_I(Orva16s* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_16sc_I(Orva16sc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_32fc_I(Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHann_64fc_I(Orva64fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_16s(const Orva16s* src, Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_16s_I(Orva16s* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_16sc_I(Orva16sc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_32fc_I(Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinHamming_64fc_I(Orva64fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_16s(const Orva16s* src, Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_16s_I(Orva16s* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_16sc_I(Orva16sc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_32fc_I(Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBartlett_64fc_I(Orva64fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackman_16s(const Orva16s* src, Orva16s* dst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_16s_I(Orva16s* srcDst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_16sc_I(Orva16sc* srcDst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_32f_I(Orva32f* srcDst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_64f_I(Orva64f* srcDst, int32_t len, Orva64f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len, Orva64f alpha);
TZM_API OrvaStatus ORVAS_WinBlackman_64fc_I(Orva64fc* srcDst, int32_t len, Orva64f alpha);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_16s(const Orva16s* src, Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_16s_I(Orva16s* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_16sc_I(Orva16sc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_32fc_I(Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanStd_64fc_I(Orva64fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_16s(const Orva16s* src, Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_16s_I(Orva16s* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_16sc_I(Orva16sc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_32f_I(Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_32fc_I(Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_64f_I(Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_WinBlackmanOpt_64fc_I(Orva64fc* srcDst, int32_t len);
/** @} */

/* ---- Kaiser window ---- */

/* ---- Tone generator ---- */

/* ---- Gaussian generator ---- */

/* ---- Jaehne test vectors ---- */

#endif
