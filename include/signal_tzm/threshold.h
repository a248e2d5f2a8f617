/* Thresholds: values below or above a level are replaced. */
#ifndef SIGNAL_TZM_THRESHOLD_H
#define SIGNAL_TZM_THRESHOLD_H

#include <signal_tzm/selectors.h>
#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Thresholds ---- */

/** @name Thresholds
 * Each element x is compared with a level, always strictly; one that is caught is replaced, every other is
 * copied bit for bit. `dst` may be `src`; the `_I` members are that call.
 *
 * | Operation | caught | becomes |
 * |---|---|---|
 * | LT | x < level | level |
 * | GT | x > level | level |
 * | (none) | as LT for `relOp` 0, as GT for `relOp` 4 (`ORVA_RELATION_...`) | level |
 * | LTVal, GTVal | x < level, x > level | value |
 * | LTValGTVal | x < levelLT; x > levelGT | valueLT; valueGT |
 * | LTAbs | abs(x) < level | level with the sign of x; either zero gives +level |
 * | GTAbs | abs(x) > level | level with the sign of x |
 * | LTAbsVal | abs(x) < level | value |
 *
 * NaN and zeros: LT and GT on 32f and 64f take the vector unit's maximum and minimum in whole blocks of 128
 * bits, where NaN from either side gives NaN and -0 lies below +0; in the tail past them they compare, so a
 * NaN level does nothing and a NaN sample stays. Elsewhere a NaN sample stays, save that LTAbs makes it
 * -level. The magnitude of the most negative integer counts as large.
 *
 * Complex samples (32fc) are compared by magnitude with a real level. LT and GT scale the element along its
 * direction to the magnitude `level`; the body (pairs of elements) does so with refined estimates of the
 * reciprocal root and the reciprocal, the same bits on every machine, the last element of an odd length
 * with divisions. A zero element, or one whose square overflows, is never scaled. LTVal and GTVal compare
 * re^2 + im^2 with level^2 in binary32.
 *
 * Status: 7 another `relOp`, before all else; 1 null pointer; 2 `len < 1`; 6 `level < 0` (LTAbs, GTAbs, and
 * all complex members; LTAbsVal deliberately takes any level); 5 `levelLT > levelGT`. A NaN level passes. @{ */
TZM_API OrvaStatus ORVAS_Threshold_16s(const Orva16s* src, Orva16s* dst, int32_t len, Orva16s level, int32_t relOp);
TZM_API OrvaStatus ORVAS_Threshold_16s_I(Orva16s* srcDst, int32_t len, Orva16s level, int32_t relOp);
TZM_API OrvaStatus ORVAS_Threshold_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f level, int32_t relOp);
TZM_API OrvaStatus ORVAS_Threshold_32f_I(Orva32f* srcDst, int32_t len, Orva32f level, int32_t relOp);
TZM_API OrvaStatus ORVAS_Threshold_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f level, int32_t relOp);
TZM_API OrvaStatus ORVAS_Threshold_64f_I(Orva64f* srcDst, int32_t len, Orva64f level, int32_t relOp);
TZM_API OrvaStatus ORVAS_Threshold_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level, int32_t relOp);
TZM_API OrvaStatus ORVAS_Threshold_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f level, int32_t relOp);
TZM_API OrvaStatus ORVAS_Threshold_LT_16s(const Orva16s* src, Orva16s* dst, int32_t len, Orva16s level);
TZM_API OrvaStatus ORVAS_Threshold_LT_16s_I(Orva16s* srcDst, int32_t len, Orva16s level);
TZM_API OrvaStatus ORVAS_Threshold_LT_32s(const Orva32s* src, Orva32s* dst, int32_t len, Orva32s level);
TZM_API OrvaStatus ORVAS_Threshold_LT_32s_I(Orva32s* srcDst, int32_t len, Orva32s level);
TZM_API OrvaStatus ORVAS_Threshold_LT_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_LT_32f_I(Orva32f* srcDst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_LT_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f level);
TZM_API OrvaStatus ORVAS_Threshold_LT_64f_I(Orva64f* srcDst, int32_t len, Orva64f level);
TZM_API OrvaStatus ORVAS_Threshold_LT_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_LT_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_GT_16s(const Orva16s* src, Orva16s* dst, int32_t len, Orva16s level);
TZM_API OrvaStatus ORVAS_Threshold_GT_16s_I(Orva16s* srcDst, int32_t len, Orva16s level);
TZM_API OrvaStatus ORVAS_Threshold_GT_32s(const Orva32s* src, Orva32s* dst, int32_t len, Orva32s level);
TZM_API OrvaStatus ORVAS_Threshold_GT_32s_I(Orva32s* srcDst, int32_t len, Orva32s level);
TZM_API OrvaStatus ORVAS_Threshold_GT_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_GT_32f_I(Orva32f* srcDst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_GT_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f level);
TZM_API OrvaStatus ORVAS_Threshold_GT_64f_I(Orva64f* srcDst, int32_t len, Orva64f level);
TZM_API OrvaStatus ORVAS_Threshold_GT_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_GT_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_LTVal_16s(const Orva16s* src, Orva16s* dst, int32_t len, Orva16s level,
                                             Orva16s value);
TZM_API OrvaStatus ORVAS_Threshold_LTVal_16s_I(Orva16s* srcDst, int32_t len, Orva16s level, Orva16s value);
TZM_API OrvaStatus ORVAS_Threshold_LTVal_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f level,
                                             Orva32f value);
TZM_API OrvaStatus ORVAS_Threshold_LTVal_32f_I(Orva32f* srcDst, int32_t len, Orva32f level, Orva32f value);
TZM_API OrvaStatus ORVAS_Threshold_LTVal_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f level,
                                             Orva64f value);
TZM_API OrvaStatus ORVAS_Threshold_LTVal_64f_I(Orva64f* srcDst, int32_t len, Orva64f level, Orva64f value);
TZM_API OrvaStatus ORVAS_Threshold_LTVal_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level,
                                              Orva32fc value);
TZM_API OrvaStatus ORVAS_Threshold_LTVal_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f level, Orva32fc value);
TZM_API OrvaStatus ORVAS_Threshold_GTVal_16s(const Orva16s* src, Orva16s* dst, int32_t len, Orva16s level,
                                             Orva16s value);
TZM_API OrvaStatus ORVAS_Threshold_GTVal_16s_I(Orva16s* srcDst, int32_t len, Orva16s level, Orva16s value);
TZM_API OrvaStatus ORVAS_Threshold_GTVal_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f level,
                                             Orva32f value);
TZM_API OrvaStatus ORVAS_Threshold_GTVal_32f_I(Orva32f* srcDst, int32_t len, Orva32f level, Orva32f value);
TZM_API OrvaStatus ORVAS_Threshold_GTVal_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f level,
                                             Orva64f value);
TZM_API OrvaStatus ORVAS_Threshold_GTVal_64f_I(Orva64f* srcDst, int32_t len, Orva64f level, Orva64f value);
TZM_API OrvaStatus ORVAS_Threshold_GTVal_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level,
                                              Orva32fc value);
TZM_API OrvaStatus ORVAS_Threshold_GTVal_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f level, Orva32fc value);
TZM_API OrvaStatus ORVAS_Threshold_LTValGTVal_16s(const Orva16s* src, Orva16s* dst, int32_t len, Orva16s levelLT,
                                                  Orva16s valueLT, Orva16s levelGT, Orva16s valueGT);
TZM_API OrvaStatus ORVAS_Threshold_LTValGTVal_16s_I(Orva16s* srcDst, int32_t len, Orva16s levelLT, Orva16s valueLT,
                                                    Orva16s levelGT, Orva16s valueGT);
TZM_API OrvaStatus ORVAS_Threshold_LTValGTVal_32s(const Orva32s* src, Orva32s* dst, int32_t len, Orva32s levelLT,
                                                  Orva32s valueLT, Orva32s levelGT, Orva32s valueGT);
TZM_API OrvaStatus ORVAS_Threshold_LTValGTVal_32s_I(Orva32s* srcDst, int32_t len, Orva32s levelLT, Orva32s valueLT,
                                                    Orva32s levelGT, Orva32s valueGT);
TZM_API OrvaStatus ORVAS_Threshold_LTValGTVal_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f levelLT,
                                                  Orva32f valueLT, Orva32f levelGT, Orva32f valueGT);
TZM_API OrvaStatus ORVAS_Threshold_LTValGTVal_32f_I(Orva32f* srcDst, int32_t len, Orva32f levelLT, Orva32f valueLT,
                                                    Orva32f levelGT, Orva32f valueGT);
TZM_API OrvaStatus ORVAS_Threshold_LTValGTVal_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f levelLT,
                                                  Orva64f valueLT, Orva64f levelGT, Orva64f valueGT);
TZM_API OrvaStatus ORVAS_Threshold_LTValGTVal_64f_I(Orva64f* srcDst, int32_t len, Orva64f levelLT, Orva64f valueLT,
                                                    Orva64f levelGT, Orva64f valueGT);
TZM_API OrvaStatus ORVAS_Threshold_LTAbs_16s(const Orva16s* src, Orva16s* dst, int32_t len, Orva16s level);
TZM_API OrvaStatus ORVAS_Threshold_LTAbs_16s_I(Orva16s* srcDst, int32_t len, Orva16s level);
TZM_API OrvaStatus ORVAS_Threshold_LTAbs_32s(const Orva32s* src, Orva32s* dst, int32_t len, Orva32s level);
TZM_API OrvaStatus ORVAS_Threshold_LTAbs_32s_I(Orva32s* srcDst, int32_t len, Orva32s level);
TZM_API OrvaStatus ORVAS_Threshold_LTAbs_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_LTAbs_32f_I(Orva32f* srcDst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_LTAbs_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f level);
TZM_API OrvaStatus ORVAS_Threshold_LTAbs_64f_I(Orva64f* srcDst, int32_t len, Orva64f level);
TZM_API OrvaStatus ORVAS_Threshold_GTAbs_16s(const Orva16s* src, Orva16s* dst, int32_t len, Orva16s level);
TZM_API OrvaStatus ORVAS_Threshold_GTAbs_16s_I(Orva16s* srcDst, int32_t len, Orva16s level);
TZM_API OrvaStatus ORVAS_Threshold_GTAbs_32s(const Orva32s* src, Orva32s* dst, int32_t len, Orva32s level);
TZM_API OrvaStatus ORVAS_Threshold_GTAbs_32s_I(Orva32s* srcDst, int32_t len, Orva32s level);
TZM_API OrvaStatus ORVAS_Threshold_GTAbs_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_GTAbs_32f_I(Orva32f* srcDst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_GTAbs_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f level);
TZM_API OrvaStatus ORVAS_Threshold_GTAbs_64f_I(Orva64f* srcDst, int32_t len, Orva64f level);
TZM_API OrvaStatus ORVAS_Threshold_LTAbsVal_16s(const Orva16s* src, Orva16s* dst, int32_t len, Orva16s level,
                                                Orva16s value);
TZM_API OrvaStatus ORVAS_Threshold_LTAbsVal_16s_I(Orva16s* srcDst, int32_t len, Orva16s level, Orva16s value);
TZM_API OrvaStatus ORVAS_Threshold_LTAbsVal_32s(const Orva32s* src, Orva32s* dst, int32_t len, Orva32s level,
                                                Orva32s value);
TZM_API OrvaStatus ORVAS_Threshold_LTAbsVal_32s_I(Orva32s* srcDst, int32_t len, Orva32s level, Orva32s value);
TZM_API OrvaStatus ORVAS_Threshold_LTAbsVal_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f level,
                                                Orva32f value);
TZM_API OrvaStatus ORVAS_Threshold_LTAbsVal_32f_I(Orva32f* srcDst, int32_t len, Orva32f level, Orva32f value);
TZM_API OrvaStatus ORVAS_Threshold_LTAbsVal_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f level,
                                                Orva64f value);
TZM_API OrvaStatus ORVAS_Threshold_LTAbsVal_64f_I(Orva64f* srcDst, int32_t len, Orva64f level, Orva64f value);
/** @} */

/* ---- Reciprocal thresholds ---- */

/** @name Reciprocal thresholds
 * dst[i] = 1/src[i], limited to a magnitude of 1/level: a smaller element gives 1/level with its own sign
 * (complex: along the direction of its reciprocal), a zero of either sign +1/level. At `level` 0 (or NaN)
 * there is no limit and a zero gives +infinity. Complex zeros: (+-1/level, -im/level) with the sign of re,
 * or (+-infinity, -im/2). `dst` may be `src`; the `_I` members are that call.
 *
 * Body and tail: a NaN sample gives -1/level in the body of the real members (whole blocks of 128 bits) and
 * NaN in the tail. The complex body (steps of 4) multiplies by reciprocals, the tail divides.
 *
 * Status: 1 null pointer; 2 `len < 1`; 6 `level < 0`; 306, with every element written, at level 0 or NaN if
 * a zero was met. The complex body takes for that, deliberately, any zero real part and any zero imaginary
 * part within one step of 4, and nothing else. @{ */
TZM_API OrvaStatus ORVAS_Threshold_LTInv_32f(const Orva32f* src, Orva32f* dst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_LTInv_32f_I(Orva32f* srcDst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_LTInv_64f(const Orva64f* src, Orva64f* dst, int32_t len, Orva64f level);
TZM_API OrvaStatus ORVAS_Threshold_LTInv_64f_I(Orva64f* srcDst, int32_t len, Orva64f level);
TZM_API OrvaStatus ORVAS_Threshold_LTInv_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len, Orva32f level);
TZM_API OrvaStatus ORVAS_Threshold_LTInv_32fc_I(Orva32fc* srcDst, int32_t len, Orva32f level);
/** @} */

#endif
