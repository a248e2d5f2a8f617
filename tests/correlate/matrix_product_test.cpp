#include <gtest/gtest.h>
#include <signal_tzm/correlate.h>

#include <cstring>

#include "support/arguments.h"
#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {

namespace {

template <class T>
T AddProduct(T sum, T a, T b) {
  if constexpr (requires { a.re; })
    return {sum.re + (a.re * b.re - a.im * b.im), sum.im + (a.re * b.im + a.im * b.re)};
  else
    return sum + a * b;
}

// Small integers, so that every order of summation gives the same values.
template <class T>
std::vector<T> Integers(size_t n, uint64_t seed) {
  using Part = std::conditional_t<sizeof(T) == 4 || std::is_same_v<T, Orva32fc>, float, double>;
  std::vector<T> values(n);
  Random random(seed);
  for (T& value : values)
    for (size_t p = 0; p < sizeof(T) / sizeof(Part); ++p)
      reinterpret_cast<Part*>(&value)[p] = static_cast<Part>(random.Below(17)) - 8;
  return values;
}

template <class T>
void Check(OrvaStatus (*multiply)(const T*, const T*, T*, int32_t, int32_t, int32_t)) {
  const int32_t m = 3, n = 5, k = 7;
  const GuardedArray<T> a(Integers<T>(m * k, 1)), b(Integers<T>(k * n, 2));
  GuardedArray<T> c(m * n);
  std::vector<T> expected(m * n);
  for (int32_t i = 0; i < m; ++i)
    for (int32_t j = 0; j < n; ++j)
      for (int32_t l = 0; l < k; ++l)
        expected[i * n + j] = AddProduct(expected[i * n + j], a.data()[i * k + l], b.data()[l * n + j]);
  std::memset(c.data(), 0xff, sizeof(T) * m * n);  // NaN: what was there does not count
  EXPECT_EQ(multiply(a.data(), b.data(), c.data(), m, n, k), ORVA_STS_NO_ERR);
  EXPECT_TRUE(SameBits("ORVAS_MMul", expected.data(), c.data(), expected.size()));

  CheckNulls(multiply, a.data(), b.data(), c.data(), m, n, k);
  EXPECT_EQ(multiply(nullptr, b.data(), c.data(), 0, n, k), ORVA_STS_NULL_PTR_ERR);
  for (int32_t bad : {0, -1}) {
    EXPECT_EQ(multiply(a.data(), b.data(), c.data(), bad, n, k), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(multiply(a.data(), b.data(), c.data(), m, bad, k), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(multiply(a.data(), b.data(), c.data(), m, n, bad), ORVA_STS_SIZE_ERR);
  }
  EXPECT_TRUE(SameBits("ORVAS_MMul, refused", expected.data(), c.data(), expected.size()));
}

TEST(MatrixProduct, Members) {
  Check(ORVAS_MMul_32f);
  Check(ORVAS_MMul_64f);
  Check(ORVAS_MMul_32fc);
  Check(ORVAS_MMul_64fc);
}

}  // namespace

}  // namespace tzm_test
