// The functions for AVX-512, which vmath.cpp takes where processor and system have it.
#define TZM_UNIT avx512
#include "kernels.h"
