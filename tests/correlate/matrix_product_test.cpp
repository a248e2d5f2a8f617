// Matrix products on small integers, and their statuses.
#include <signal_tzm/correlate.h>

#include <complex>
#include <cstring>

#include "support/testing.h"

namespace tzm_test::matrix_product_test {

// On small integers, so that every order of summation gives the same values.
template <class Part, class T>
void Check(OrvaStatus (*multiply)(const T*, const T*, T*, int32_t, int32_t, int32_t)) {
  constexpr int32_t m = 3, n = 5, k = 7, kParts = sizeof(T) / sizeof(Part);
  const auto integers = [=](int32_t count, uint64_t seed) {
    const auto values = RandomArray<Orva16s>(count * kParts, seed);
    std::vector<T> array(count);
    for (int32_t i = 0; i < count * kParts; ++i) reinterpret_cast<Part*>(array.data())[i] = values[i];
    return array;
  };
  const auto at = [](const GuardedArray<T>& array, int32_t i) {
    const Part* const parts = reinterpret_cast<const Part*>(array.data()) + i * kParts;
    return std::complex<double>(parts[0], kParts > 1 ? parts[1] : 0);
  };
  const GuardedArray<T> a(integers(m * k, 1)), b(integers(k * n, 2));
  GuardedArray<T> c(m * n);
  std::memset(c.data(), 0xff, sizeof(T) * m * n);  // NaN: what was there does not count
  EXPECT_EQ(multiply(a.data(), b.data(), c.data(), m, n, k), ORVA_STS_NO_ERR);
  for (int32_t bad : {0, -1})
    for (auto [rows, columns, inner] : {std::array{bad, n, k}, {m, bad, k}, {m, n, bad}})
      EXPECT_EQ(multiply(a.data(), b.data(), c.data(), rows, columns, inner), ORVA_STS_SIZE_ERR);
  for (int32_t i = 0; i < m; ++i)
    for (int32_t j = 0; j < n; ++j) {
      std::complex<double> sum;
      for (int32_t l = 0; l < k; ++l) sum += at(a, i * k + l) * at(b, l * n + j);
      EXPECT_EQ(at(c, i * n + j), sum);
    }
}

TEST(MatrixProduct, Members) {
  Check<Orva32f>(ORVAS_MMul_32f);
  Check<Orva64f>(ORVAS_MMul_64f);
  Check<Orva32f>(ORVAS_MMul_32fc);
  Check<Orva64f>(ORVAS_MMul_64fc);
}

}  // namespace tzm_test::matrix_product_test
