/* Status codes: the value of every operation. Below 300 nothing was computed and nothing written
 * (save where an operation's comment says otherwise); 300 to 306 are warnings, the work is done and
 * every element is written; from 403 on they are errors of the filter and window families. */
#ifndef SIGNAL_TZM_STATUS_H
#define SIGNAL_TZM_STATUS_H

#include <stdint.h>

typedef int32_t OrvaStatus; /**< One of the values below. */

enum {
  ORVA_STS_NO_ERR = 0,            /**< Success. */
  ORVA_STS_NULL_PTR_ERR = 1,      /**< A required pointer is null. */
  ORVA_STS_SIZE_ERR = 2,          /**< A length, count, overlap or frequency is out of its range; lengths begin at 1. */
  ORVA_STS_DIV_BY_ZERO_ERR = 3,   /**< A divisor given as a parameter is zero. */
  ORVA_STS_THRESH_ORDER_ERR = 5,  /**< The low level lies above the high level. */
  ORVA_STS_THRESH_NEG_ERR = 6,    /**< A negative level where a magnitude is compared. */
  ORVA_STS_BAD_ARG_ERR = 7,       /**< A selector or a count is not one of the accepted values. */
  ORVA_STS_MEM_ALLOC_ERR = 9,     /**< An allocation failed; what the call had taken is released. */
  ORVA_STS_RANGE_ERR = 10,        /**< A phase, frequency or magnitude is outside its range. */
  ORVA_STS_FFT_FLAG_ERR = 14,     /**< The normalisation flag of a transform is not accepted. */
  ORVA_STS_FFT_ORDER_ERR = 15,    /**< The order of a transform is out of range. */
  ORVA_STS_SCALE_ERR = 20,        /**< The scale is not positive and finite. */
  ORVA_STS_CONTEXT_MATCH_ERR = 21, /**< The identity word of a state object is wrong. */
  ORVA_STS_ROUND_MODE_ERR = 200,  /**< The rounding mode is not accepted. */
  ORVA_STS_OVERFLOW_ERR = 202,    /**< A result, or the computation of a size, overflowed. */
  ORVA_STS_UNDERFLOW_ERR = 203,   /**< A result underflowed. */
  ORVA_STS_LEN_MISMATCH_ERR = 204, /**< The lengths of the arguments do not fit each other. */
  ORVA_STS_DIV_ZERO_WARN = 300,   /**< A zero divisor element was met. */
  ORVA_STS_LN_ZERO_WARN = 301,    /**< A zero argument of a scaled or summed logarithm. */
  ORVA_STS_LN_NEG_WARN = 302,     /**< A negative argument of the same. */
  ORVA_STS_SINGULARITY_ERR = 303, /**< A pole was met. */
  ORVA_STS_DOMAIN_ERR = 304,      /**< An argument outside the function's domain. */
  ORVA_STS_SQRT_NEG_ERR = 305,    /**< A negative element under a square root. */
  ORVA_STS_INV_ZERO_ERR = 306,    /**< A zero element where a reciprocal is formed. */
  ORVA_STS_LMS_TAPS_ERR = 403,    /**< Tap count of an adaptive filter out of range. */
  ORVA_STS_SPARSE_DELAY_ERR = 404, /**< A delay of a sparse filter is invalid. */
  ORVA_STS_FIR_ALG_ERR = 406,     /**< Filter algorithm selector not accepted. */
  ORVA_STS_FIRMR_FACTOR_ERR = 407, /**< Up or down factor below 1. */
  ORVA_STS_FIRMR_PHASE_ERR = 408, /**< Up or down phase outside its factor. */
  ORVA_STS_FIRGEN_WINDOW_ERR = 409, /**< Window selector not accepted. */
  ORVA_STS_KAISER_ALPHA_ERR = 410, /**< The Kaiser parameter is too large. */
  ORVA_STS_REL_FREQ_ERR = 411     /**< A relative frequency is out of range. */
};

#endif
