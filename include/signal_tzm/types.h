/* Sample types. Arrays are contiguous and need no alignment; a complex array is interleaved,
 * real part first. Lengths are signed 32-bit counts of elements, a complex element counting as one. */
#ifndef SIGNAL_TZM_TYPES_H
#define SIGNAL_TZM_TYPES_H

#include <stdint.h>

#ifdef __cplusplus
#define TZM_API extern "C" __attribute__((visibility("default")))
#else
#define TZM_API extern __attribute__((visibility("default")))
#endif

/** @name Real samples
 * The number is that of the bits; `u` is unsigned, `s` signed (two's complement), `f` an IEEE binary format.
 * Orva16f holds the 16 bits of a binary16. @{ */
typedef uint8_t Orva8u;
typedef uint16_t Orva16u;
typedef int16_t Orva16s;
typedef int32_t Orva32s;
typedef int64_t Orva64s;
typedef uint16_t Orva16f;
typedef float Orva32f;
typedef double Orva64f;
/** @} */

/** @name Complex samples
 * A real part and an imaginary part of the type that the name tells. @{ */
typedef struct Orva16sc { Orva16s re, im; } Orva16sc;
typedef struct Orva32sc { Orva32s re, im; } Orva32sc;
typedef struct Orva64sc { Orva64s re, im; } Orva64sc;
typedef struct Orva32fc { Orva32f re, im; } Orva32fc;
typedef struct Orva64fc { Orva64f re, im; } Orva64fc;
/** @} */

#endif
