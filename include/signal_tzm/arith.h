/* Element-wise arithmetic: products, quotients, squares, roots, half-precision conversion, normalisation. */
#ifndef SIGNAL_TZM_ARITH_H
#define SIGNAL_TZM_ARITH_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/* ---- Multiplication ---- */

/* ---- Multiplication by a constant ---- */

/* ---- Division ---- */

/* ---- Division by a constant ---- */

/* ---- Squares ---- */

/* ---- Square and cube roots ---- */

/* ---- Half-precision conversion ---- */

/* ---- Normalisation ---- */

#endif
