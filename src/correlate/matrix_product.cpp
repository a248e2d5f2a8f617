// Matrix product: dense row-major matrices, handed to the CBLAS companion after the checks.
#include <signal_tzm/companion.h>
#include <signal_tzm/correlate.h>

#include "frame/call.h"

using namespace tzm;

namespace {

constexpr int kRowMajor = 101, kNoTranspose = 111;

template <class T>
OrvaStatus Check(const T* a, const T* b, const T* c, int32_t m, int32_t n, int32_t k) {
  if (OrvaStatus status = CheckPointers(a, b, c)) return status;
  return m < 1 || n < 1 || k < 1 ? ORVA_STS_SIZE_ERR : ORVA_STS_NO_ERR;
}

}  // namespace

OrvaStatus ORVAS_MMul_32f(const Orva32f* a, const Orva32f* b, Orva32f* c, int32_t m, int32_t n, int32_t k) {
  if (OrvaStatus status = Check(a, b, c, m, n, k)) return status;
  cblas_sgemm(kRowMajor, kNoTranspose, kNoTranspose, m, n, k, 1, a, k, b, n, 0, c, n);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MMul_64f(const Orva64f* a, const Orva64f* b, Orva64f* c, int32_t m, int32_t n, int32_t k) {
  if (OrvaStatus status = Check(a, b, c, m, n, k)) return status;
  cblas_dgemm(kRowMajor, kNoTranspose, kNoTranspose, m, n, k, 1, a, k, b, n, 0, c, n);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MMul_32fc(const Orva32fc* a, const Orva32fc* b, Orva32fc* c, int32_t m, int32_t n, int32_t k) {
  if (OrvaStatus status = Check(a, b, c, m, n, k)) return status;
  const Orva32fc alpha = {1, 0}, beta = {0, 0};
  cblas_cgemm(kRowMajor, kNoTranspose, kNoTranspose, m, n, k, &alpha, a, k, b, n, &beta, c, n);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_MMul_64fc(const Orva64fc* a, const Orva64fc* b, Orva64fc* c, int32_t m, int32_t n, int32_t k) {
  if (OrvaStatus status = Check(a, b, c, m, n, k)) return status;
  const Orva64fc alpha = {1, 0}, beta = {0, 0};
  cblas_zgemm(kRowMajor, kNoTranspose, kNoTranspose, m, n, k, &alpha, a, k, b, n, &beta, c, n);
  return ORVA_STS_NO_ERR;
}
