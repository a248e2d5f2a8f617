/* Convolution, correlation, matrix product. */
#ifndef SIGNAL_TZM_CORRELATE_H
#define SIGNAL_TZM_CORRELATE_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Convolution ---- */

/* ---- Autocorrelation ---- */

/* ---- Cross-correlation ---- */

/* ---- Matrix product ---- */

/** @name Matrix product
 * c = a * b for dense row-major matrices: `a` is m by k, `b` k by n, `c` m by n, rows contiguous. `c` need
 * not be initialised and must not overlap `a` or `b`. The work is one general matrix product of the CBLAS
 * companion, whose order of summation and threads apply.
 *
 * Status: 1 null pointer; 2 `m`, `n` or `k` below 1. @{ */
TZM_API OrvaStatus ORVAS_MMul_32f(const Orva32f* a, const Orva32f* b, Orva32f* c, int32_t m, int32_t n, int32_t k);
TZM_API OrvaStatus ORVAS_MMul_64f(const Orva64f* a, const Orva64f* b, Orva64f* c, int32_t m, int32_t n, int32_t k);
TZM_API OrvaStatus ORVAS_MMul_32fc(const Orva32fc* a, const Orva32fc* b, Orva32fc* c, int32_t m, int32_t n, int32_t k);
TZM_API OrvaStatus ORVAS_MMul_64fc(const Orva64fc* a, const Orva64fc* b, Orva64fc* c, int32_t m, int32_t n, int32_t k);
/** @} */

#endif
