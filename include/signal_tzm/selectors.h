/* Names for the values of selector arguments, which are plain integers: programs may write either. What a value asks
 * for stands with the operations that take it. */
#ifndef SIGNAL_TZM_SELECTORS_H
#define SIGNAL_TZM_SELECTORS_H

/** `hint` of sums, means and deviations. */
enum {
  ORVA_HINT_ACCURATE = 0, /**< In binary64. */
  ORVA_HINT_FAST = 1      /**< In binary32. */
};

/** `relOp` of thresholds. */
enum {
  ORVA_RELATION_LESS = 0,   /**< Elements below the level. */
  ORVA_RELATION_GREATER = 4 /**< Elements above the level. */
};

/** `roundMode` of divisions and conversions. */
enum {
  ORVA_ROUND_ZERO = 0,     /**< Toward zero. */
  ORVA_ROUND_NEAREST = 1,  /**< To nearest, ties to even. */
  ORVA_ROUND_TIES_AWAY = 2 /**< To nearest, ties away from zero; divisions only. */
};

/** `direction` of transforms. */
enum {
  ORVA_DIRECTION_FORWARD = 1,
  ORVA_DIRECTION_INVERSE = -1
};

/** `flag` of transforms: which of them divide by the length. */
enum {
  ORVA_DIVIDE_FORWARD = 1,
  ORVA_DIVIDE_INVERSE = 2,
  ORVA_DIVIDE_BY_ROOT = 3, /**< Both, by the square root of the length. */
  ORVA_DIVIDE_NONE = 4
};

/** `kind` of filters, convolution and correlation: the route. */
enum {
  ORVA_ROUTE_BY_LENGTH = 0, /**< By the lengths alone, as each operation tells. */
  ORVA_ROUTE_DIRECT = 1,    /**< Sums of products. */
  ORVA_ROUTE_FFT = 2        /**< By Fourier transforms. */
};

/** `winType` of filter designs. */
enum {
  ORVA_WINDOW_BARTLETT = 0,
  ORVA_WINDOW_BLACKMAN = 1, /**< The optimal one. */
  ORVA_WINDOW_HAMMING = 2,
  ORVA_WINDOW_HANN = 3
};

/** `normalisation` of correlations. */
enum {
  ORVA_NORMALISATION_NONE = 0,
  ORVA_NORMALISATION_BIASED = 1,  /**< Every lag divided by the length. */
  ORVA_NORMALISATION_UNBIASED = 2 /**< Every lag divided by the number of its products. */
};

#endif
