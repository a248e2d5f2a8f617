/* Element-wise arithmetic: products, quotients, squares, roots, half-precision conversion, normalisation. */
#ifndef SIGNAL_TZM_ARITH_H
#define SIGNAL_TZM_ARITH_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Multiplication ---- */

/* ---- Multiplication by a constant ---- */

/* ---- Division ---- */

/* ---- Division by a constant ---- */

/* dst[i] = src[i] * (1 / value), the reciprocal rounded once in the type of the samples: the last bit can
 * differ from that of a quotient. Statuses: null pointer (1), len below 1 (2), value equal to 0.0 or
 * -0.0 (3). A source and the destination may be the same array. */
TZM_API OrvaStatus ORVAS_DivC_32f(const Orva32f* src, Orva32f value, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_DivC_64f(const Orva64f* src, Orva64f value, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_DivC_32f_I(Orva32f value, Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_DivC_64f_I(Orva64f value, Orva64f* srcDst, int32_t len);

/* ---- Squares ---- */

/* ---- Square and cube roots ---- */

/* ---- Half-precision conversion ---- */

/* ---- Normalisation ---- */

#endif
