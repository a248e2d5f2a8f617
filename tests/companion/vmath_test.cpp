// The vector math companion: accuracy against the C library's long double functions, special values, and
// that a result depends on its arguments only.
#include <signal_tzm/companion.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

// A function of one or of two arguments, with the domain from which its accuracy is sampled.
template <class T>
struct Function {
  const char* name;
  void (*unary)(int32_t, const T*, T*);
  void (*binary)(int32_t, const T*, const T*, T*);
  long double (*exact)(long double, long double);
  double low, high;

  void operator()(const T* a, const T* b, T* r, int32_t n) const { unary ? unary(n, a, r) : binary(n, a, b, r); }
};

#define CALL(name) [](auto... a) { if constexpr (sizeof(T) == 4) vs##name(a...); else vd##name(a...); }
#define UNARY(name, exact, low, high) \
  {#name, CALL(name), nullptr, [](long double x, long double) { return exact; }, low, high}
#define BINARY(name, exact, low, high) \
  {#name, nullptr, CALL(name), [](long double x, long double y) { return exact; }, low, high}
template <class T>
std::vector<Function<T>> Functions() {
  return {BINARY(mul, x * y, -10, 10), UNARY(sqrt, std::sqrt(x), 0, 1e6), UNARY(sin, std::sin(x), -1e6, 1e6),
          UNARY(sin, std::sin(x), -4, 4), UNARY(cos, std::cos(x), -1e6, 1e6), UNARY(cos, std::cos(x), -4, 4),
          UNARY(tan, std::tan(x), -1e6, 1e6), UNARY(tan, std::tan(x), -4, 4), UNARY(atan, std::atan(x), -10, 10),
          UNARY(exp, std::exp(x), -80, 80), UNARY(ln, std::log(x), 0, 10), UNARY(log10, std::log10(x), 0, 1e9),
          BINARY(atan2, std::atan2(x, y), -10, 10), BINARY(pow, std::pow(x, y), 0, 20)};
}

template <class T>
class Vmath : public testing::Test {};
using Reals = testing::Types<Orva32f, Orva64f>;
TYPED_TEST_SUITE(Vmath, Reals);

// Within 1 ulp; where the result is infinite, zero or NaN, the same.
TYPED_TEST(Vmath, Accuracy) {
  using T = TypeParam;
  using Limits = std::numeric_limits<T>;
  const T special[] = {0, -T(0), Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), 1, -1, 2, -2, 3, -3,
                       T(0.5), 1000, -1000, Limits::denorm_min(), std::nextafter(T(1), T(0)), Limits::max(),
                       T(sizeof(T) == 4 ? 88.72f : 709.7827128)};  // the last one of which exp is finite
  Random random(1);
  for (const auto& f : Functions<T>()) {
    std::vector<T> a, b, r(3000);
    for (T x : special)
      for (T y : special) a.push_back(x), b.push_back(y);
    while (a.size() < r.size())
      for (auto* argument : {&a, &b}) argument->push_back(T(f.low + (f.high - f.low) * random.Unit()));
    f(a.data(), b.data(), r.data(), static_cast<int32_t>(r.size()));
    for (size_t i = 0; i < r.size(); ++i) {
      const long double exact = f.exact(a[i], b[i]);
      const T rounded = static_cast<T>(exact);
      const long double ulp = std::ldexp(1.0L, std::max(std::ilogb(exact) + 1, Limits::min_exponent) - Limits::digits);
      const bool number = exact != 0 && std::isfinite(rounded);
      ASSERT_TRUE(number ? std::abs(r[i] - exact) <= ulp : bool(SameBits(f.name, &rounded, &r[i], 1)))
          << f.name << "(" << a[i] << ", " << b[i] << ") = " << r[i];
    }
  }
}

// Neighbours of every kind, a huge one or a NaN too, must not change the path that an element takes.
TYPED_TEST(Vmath, DependsOnArgumentsOnly) {
  using T = TypeParam;
  constexpr size_t kMost = 40;
  const auto a = RandomArray<T>(kMost, 2, Variety::kSpecial);
  auto b = RandomArray<T>(kMost, 3, Variety::kWide);
  for (size_t i = 0; i < kMost; i += 2) b[i] = T(i) / 4 - 5;
  for (const auto& f : Functions<T>()) {
    T untouched = 7;
    for (int32_t n : {0, -1}) f(a.data(), b.data(), &untouched, n);
    EXPECT_EQ(untouched, 7);
    for (const auto& [x, y] : {std::pair(a, b), std::pair(b, a)}) {
      std::vector<T> alone(kMost);
      for (size_t i = 0; i < kMost; ++i) f(&x[i], &y[i], &alone[i], 1);
      for (size_t n = 1; n <= kMost; ++n) {
        GuardedArray<T> r({x.begin(), x.begin() + n}), other({y.begin(), y.begin() + n});
        f(r.data(), other.data(), r.data(), n);
        ASSERT_TRUE(SameBits(f.name, alone.data(), r.data(), n)) << "length " << n;
      }
    }
  }
}

TYPED_TEST(Vmath, SincosIsSinAndCos) {
  using T = TypeParam;
  const auto sincos = CALL(sincos);
  const auto sin = CALL(sin);
  const auto cos = CALL(cos);
  for (int32_t n : {1, 2, 5, 16, 31, 1000}) {
    const auto a = RandomArray<T>(n, n, Variety::kSpecial);
    std::vector<T> sine(n), cosine(n), s(a), c(n);
    sin(n, a.data(), sine.data());
    cos(n, a.data(), cosine.data());
    sincos(n, s.data(), s.data(), c.data());
    ASSERT_TRUE(SameBits("sine", sine.data(), s.data(), n));
    ASSERT_TRUE(SameBits("cosine", cosine.data(), c.data(), n));
  }
}

}  // namespace
}  // namespace tzm_test
