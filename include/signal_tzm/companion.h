/* Companions: what the library expects of them, the names that must be in the process's global scope
 * when it loads. The default companions (tzm_core, tzm_vmath, tzm_fft, and any CBLAS) provide them;
 * another library with the same names may take the place of each. All must be callable from several
 * threads at once on separate data; the FFT companion serialises its planner itself. */
#ifndef SIGNAL_TZM_COMPANION_H
#define SIGNAL_TZM_COMPANION_H

#include <signal_tzm/status.h>
#include <signal_tzm/types.h>

/** @name Core: memory
 * A block of `bytes` bytes or `count` elements, its contents undefined; null when it cannot be had or the
 * count is below 1. No alignment beyond that of the element is asked for; tzm_core gives 64 bytes. Both
 * release functions take blocks of every allocator here, and null. @{ */
TZM_API void* ORVA_Malloc(int32_t bytes);
TZM_API Orva8u* ORVAS_Malloc_8u(int32_t count);
TZM_API Orva16s* ORVAS_Malloc_16s(int32_t count);
TZM_API Orva32f* ORVAS_Malloc_32f(int32_t count);
TZM_API Orva64f* ORVAS_Malloc_64f(int32_t count);
TZM_API void ORVA_Free(void* ptr);
TZM_API void ORVAS_Free(void* ptr);
/** @} */

/** @name Core: copies
 * `dst` becomes a copy of the `len` elements of `src`. Copy: the arrays do not overlap. Move: they may.
 * These and all core operations below work on `len` elements of each array and return status 1 for a null
 * pointer, then 2 for `len < 1`; nothing is written then. @{ */
TZM_API OrvaStatus ORVAS_Copy_16s(const Orva16s* src, Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Copy_16sc(const Orva16sc* src, Orva16sc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Copy_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Copy_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Copy_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Copy_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Move_16s(const Orva16s* src, Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Move_32f(const Orva32f* src, Orva32f* dst, int32_t len);
/** @} */

/** @name Core: fills
 * Every element of `dst` becomes zero, or `value`. @{ */
TZM_API OrvaStatus ORVAS_Zero_8u(Orva8u* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Zero_16s(Orva16s* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Zero_16sc(Orva16sc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Zero_32f(Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Zero_32fc(Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Zero_64f(Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Zero_64fc(Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Set_32f(Orva32f value, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Set_32fc(Orva32fc value, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Set_64f(Orva64f value, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Set_64fc(Orva64fc value, Orva64fc* dst, int32_t len);
/** @} */

/** @name Core: sum, conjugate, reversal
 * Add: srcDst[i] += src[i]. Conj: dst[i] = conj(src[i]), the sign bit of the imaginary part inverted.
 * Flip: dst[i] = src[len-1-i]. `dst` may be `src` itself. @{ */
TZM_API OrvaStatus ORVAS_Add_32f_I(const Orva32f* src, Orva32f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Add_64f_I(const Orva64f* src, Orva64f* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Conj_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Conj_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Conj_32fc_I(Orva32fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Conj_64fc_I(Orva64fc* srcDst, int32_t len);
TZM_API OrvaStatus ORVAS_Flip_32f(const Orva32f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Flip_32fc(const Orva32fc* src, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Flip_64f(const Orva64f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Flip_64fc(const Orva64fc* src, Orva64fc* dst, int32_t len);
/** @} */

/** @name Core: conversions by value
 * A narrowing to binary32 rounds to nearest, ties to even. The scaled form divides by the power of two of
 * the scale rule, rounds by `roundMode` (`ORVA_ROUND_...`: 0 toward zero, 1 to nearest with ties to even)
 * and saturates; NaN gives 0. Its further statuses are 200 for another mode, then 20 for a scale that is
 * not positive and finite. CplxToReal: dstRe[i] = src[i].re and dstIm[i] = src[i].im; RealToCplx: the
 * reverse. @{ */
TZM_API OrvaStatus ORVAS_Convert_16s32f(const Orva16s* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Convert_32f64f(const Orva32f* src, Orva64f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Convert_64f32f(const Orva64f* src, Orva32f* dst, int32_t len);
TZM_API OrvaStatus ORVAS_Convert_64f16s_S(const Orva64f* src, Orva16s* dst, int32_t len, uint32_t roundMode,
                                          double scale);
TZM_API OrvaStatus ORVAS_CplxToReal_16sc(const Orva16sc* src, Orva16s* dstRe, Orva16s* dstIm, int32_t len);
TZM_API OrvaStatus ORVAS_CplxToReal_32fc(const Orva32fc* src, Orva32f* dstRe, Orva32f* dstIm, int32_t len);
TZM_API OrvaStatus ORVAS_CplxToReal_64fc(const Orva64fc* src, Orva64f* dstRe, Orva64f* dstIm, int32_t len);
TZM_API OrvaStatus ORVAS_RealToCplx_32f(const Orva32f* srcRe, const Orva32f* srcIm, Orva32fc* dst, int32_t len);
TZM_API OrvaStatus ORVAS_RealToCplx_64f(const Orva64f* srcRe, const Orva64f* srcIm, Orva64fc* dst, int32_t len);
/** @} */

/** @name Core: extrema
 * `*result` is the largest, smallest or largest absolute element. NaN elements are passed over; an array of nothing
 * else gives NaN. Among zeros of both signs the first one is the result of Max and Min; MaxAbs gives +0. @{ */
TZM_API OrvaStatus ORVAS_Max_64f(const Orva64f* src, int32_t len, Orva64f* result);
TZM_API OrvaStatus ORVAS_Min_64f(const Orva64f* src, int32_t len, Orva64f* result);
TZM_API OrvaStatus ORVAS_MaxAbs_32f(const Orva32f* src, int32_t len, Orva32f* result);
TZM_API OrvaStatus ORVAS_MaxAbs_64f(const Orva64f* src, int32_t len, Orva64f* result);
/** @} */

/** @name Vector mathematics
 * Element-wise over `n` elements, results last. A result array may be a source array. Nothing is reported: `n < 1` does
 * nothing, domain errors give NaN or infinity. Products and square roots are correctly rounded; so are all binary32
 * functions of tzm_vmath, the binary64 ones stay within 0.6 ulp. They give the same bits on every architecture, and
 * depend on no element but their own. `atan2` is that of a[i] over b[i], `pow` a[i] to the power b[i], `ln` the natural
 * logarithm; `sincos` gives the bits of `sin` and `cos`. @{ */
TZM_API void vsmul(int32_t n, const Orva32f* a, const Orva32f* b, Orva32f* r);
TZM_API void vdmul(int32_t n, const Orva64f* a, const Orva64f* b, Orva64f* r);
TZM_API void vssqrt(int32_t n, const Orva32f* a, Orva32f* r);
TZM_API void vdsqrt(int32_t n, const Orva64f* a, Orva64f* r);
TZM_API void vssin(int32_t n, const Orva32f* a, Orva32f* r);
TZM_API void vdsin(int32_t n, const Orva64f* a, Orva64f* r);
TZM_API void vscos(int32_t n, const Orva32f* a, Orva32f* r);
TZM_API void vdcos(int32_t n, const Orva64f* a, Orva64f* r);
TZM_API void vstan(int32_t n, const Orva32f* a, Orva32f* r);
TZM_API void vdtan(int32_t n, const Orva64f* a, Orva64f* r);
TZM_API void vsatan(int32_t n, const Orva32f* a, Orva32f* r);
TZM_API void vdatan(int32_t n, const Orva64f* a, Orva64f* r);
TZM_API void vsexp(int32_t n, const Orva32f* a, Orva32f* r);
TZM_API void vdexp(int32_t n, const Orva64f* a, Orva64f* r);
TZM_API void vsln(int32_t n, const Orva32f* a, Orva32f* r);
TZM_API void vdln(int32_t n, const Orva64f* a, Orva64f* r);
TZM_API void vslog10(int32_t n, const Orva32f* a, Orva32f* r);
TZM_API void vdlog10(int32_t n, const Orva64f* a, Orva64f* r);
TZM_API void vsatan2(int32_t n, const Orva32f* a, const Orva32f* b, Orva32f* r);
TZM_API void vdatan2(int32_t n, const Orva64f* a, const Orva64f* b, Orva64f* r);
TZM_API void vspow(int32_t n, const Orva32f* a, const Orva32f* b, Orva32f* r);
TZM_API void vdpow(int32_t n, const Orva64f* a, const Orva64f* b, Orva64f* r);
TZM_API void vssincos(int32_t n, const Orva32f* a, Orva32f* s, Orva32f* c);
TZM_API void vdsincos(int32_t n, const Orva64f* a, Orva64f* s, Orva64f* c);
/** @} */

/** @name FFT
 * Unnormalised transforms, tzm_fft for binary64 and tzm_fftf for binary32. A plan is made without arrays and runs on
 * any arrays of its shape, in place too, from any number of threads at once; null means failure. Sign -1 is forward, +1
 * inverse; flags are 0. The split planner makes the forward transform: exchanging the real and imaginary arrays on both
 * sides gives the inverse. The complex-to-real execution may destroy its input. @{ */
typedef struct tzm_fft_plan_record* tzm_fft_plan;
typedef struct tzm_fftf_plan_record* tzm_fftf_plan;
typedef struct tzm_fft_iodim { int32_t n, is, os; } tzm_fft_iodim; /**< Size, input and output stride. */

TZM_API tzm_fft_plan tzm_fft_plan_dft_1d(int32_t n, Orva64fc* in, Orva64fc* out, int32_t sign, uint32_t flags);
TZM_API tzm_fft_plan tzm_fft_plan_dft_r2c_1d(int32_t n, Orva64f* in, Orva64fc* out, uint32_t flags);
TZM_API tzm_fft_plan tzm_fft_plan_dft_c2r_1d(int32_t n, Orva64fc* in, Orva64f* out, uint32_t flags);
TZM_API tzm_fft_plan tzm_fft_plan_guru_split_dft(int32_t rank, const tzm_fft_iodim* dims, int32_t howmanyRank,
                                                 const tzm_fft_iodim* howmanyDims, Orva64f* ri, Orva64f* ii,
                                                 Orva64f* ro, Orva64f* io, uint32_t flags);
TZM_API void tzm_fft_execute_dft(const tzm_fft_plan plan, Orva64fc* in, Orva64fc* out);
TZM_API void tzm_fft_execute_dft_r2c(const tzm_fft_plan plan, Orva64f* in, Orva64fc* out);
TZM_API void tzm_fft_execute_dft_c2r(const tzm_fft_plan plan, Orva64fc* in, Orva64f* out);
TZM_API void tzm_fft_execute_split_dft(const tzm_fft_plan plan, Orva64f* ri, Orva64f* ii, Orva64f* ro, Orva64f* io);
TZM_API void tzm_fft_destroy_plan(tzm_fft_plan plan);
TZM_API int tzm_fft_init_threads(void);
TZM_API void tzm_fft_plan_with_nthreads(int32_t nthreads);

TZM_API tzm_fftf_plan tzm_fftf_plan_dft_1d(int32_t n, Orva32fc* in, Orva32fc* out, int32_t sign, uint32_t flags);
TZM_API tzm_fftf_plan tzm_fftf_plan_dft_r2c_1d(int32_t n, Orva32f* in, Orva32fc* out, uint32_t flags);
TZM_API tzm_fftf_plan tzm_fftf_plan_dft_c2r_1d(int32_t n, Orva32fc* in, Orva32f* out, uint32_t flags);
TZM_API tzm_fftf_plan tzm_fftf_plan_guru_split_dft(int32_t rank, const tzm_fft_iodim* dims, int32_t howmanyRank,
                                                   const tzm_fft_iodim* howmanyDims, Orva32f* ri, Orva32f* ii,
                                                   Orva32f* ro, Orva32f* io, uint32_t flags);
TZM_API void tzm_fftf_execute_dft(const tzm_fftf_plan plan, Orva32fc* in, Orva32fc* out);
TZM_API void tzm_fftf_execute_dft_r2c(const tzm_fftf_plan plan, Orva32f* in, Orva32fc* out);
TZM_API void tzm_fftf_execute_dft_c2r(const tzm_fftf_plan plan, Orva32fc* in, Orva32f* out);
TZM_API void tzm_fftf_execute_split_dft(const tzm_fftf_plan plan, Orva32f* ri, Orva32f* ii, Orva32f* ro, Orva32f* io);
TZM_API void tzm_fftf_destroy_plan(tzm_fftf_plan plan);
TZM_API int tzm_fftf_init_threads(void);
TZM_API void tzm_fftf_plan_with_nthreads(int32_t nthreads);
TZM_API void tzm_fftf_cleanup_threads(void);
/** @} */

/** @name CBLAS
 * The four general matrix products, in the standard signature. A CBLAS header included before this one
 * declares them itself. @{ */
#ifndef CBLAS_H
TZM_API void cblas_sgemm(int order, int transA, int transB, int m, int n, int k, float alpha, const float* a, int lda,
                         const float* b, int ldb, float beta, float* c, int ldc);
TZM_API void cblas_dgemm(int order, int transA, int transB, int m, int n, int k, double alpha, const double* a,
                         int lda, const double* b, int ldb, double beta, double* c, int ldc);
TZM_API void cblas_cgemm(int order, int transA, int transB, int m, int n, int k, const void* alpha, const void* a,
                         int lda, const void* b, int ldb, const void* beta, void* c, int ldc);
TZM_API void cblas_zgemm(int order, int transA, int transB, int m, int n, int k, const void* alpha, const void* a,
                         int lda, const void* b, int ldb, const void* beta, void* c, int ldc);
#endif
/** @} */

#endif
