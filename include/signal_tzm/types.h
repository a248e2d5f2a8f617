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

typedef uint8_t Orva8u;
typedef uint16_t Orva16u;
typedef int16_t Orva16s;
typedef int32_t Orva32s;
typedef int64_t Orva64s;
typedef uint16_t Orva16f; /**< IEEE binary16, held as its 16 bits. */
typedef float Orva32f;
typedef double Orva64f;

typedef struct Orva16sc { Orva16s re, im; } Orva16sc;
typedef struct Orva32sc { Orva32s re, im; } Orva32sc;
typedef struct Orva64sc { Orva64s re, im; } Orva64sc;
typedef struct Orva32fc { Orva32f re, im; } Orva32fc;
typedef struct Orva64fc { Orva64f re, im; } Orva64fc;

#endif
