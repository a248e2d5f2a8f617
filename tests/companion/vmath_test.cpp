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

template <class T>
using Call1 = void (*)(int32_t, const T*, T*);
template <class T>
using Call2 = void (*)(int32_t, const T*, const T*, T*);

// A function of one or of two arguments, with the domain from which its accuracy is sampled.
template <class T>
struct Function {
  const char* name;
  Call1<T> unary;
  Call2<T> binary;
  long double (*exact)(long double, long double);
  double low, high;
  double ulp;

  void operator()(const T* a, const T* b, T* r, int32_t n) const { unary ? unary(n, a, r) : binary(n, a, b, r); }
};

#define EXACT(expression) [](long double x, [[maybe_unused]] long double y) -> long double { return expression; }
#define FUNCTIONS(v)                                                     \
  {#v "mul", nullptr, v##mul, EXACT(x * y), -10, 10, 0.5},               \
  {#v "sqrt", v##sqrt, nullptr, EXACT(std::sqrt(x)), 0, 1e6, 0.5},       \
  {#v "sin", v##sin, nullptr, EXACT(std::sin(x)), -1e6, 1e6, 1},         \
  {#v "sin", v##sin, nullptr, EXACT(std::sin(x)), -4, 4, 1},             \
  {#v "cos", v##cos, nullptr, EXACT(std::cos(x)), -1e6, 1e6, 1},         \
  {#v "cos", v##cos, nullptr, EXACT(std::cos(x)), -4, 4, 1},             \
  {#v "tan", v##tan, nullptr, EXACT(std::tan(x)), -1e6, 1e6, 1},         \
  {#v "tan", v##tan, nullptr, EXACT(std::tan(x)), -4, 4, 1},             \
  {#v "atan", v##atan, nullptr, EXACT(std::atan(x)), -10, 10, 1},        \
  {#v "exp", v##exp, nullptr, EXACT(std::exp(x)), -80, 80, 1},           \
  {#v "ln", v##ln, nullptr, EXACT(std::log(x)), 0, 10, 1},               \
  {#v "log10", v##log10, nullptr, EXACT(std::log10(x)), 0, 1e9, 1},      \
  {#v "atan2", nullptr, v##atan2, EXACT(std::atan2(x, y)), -10, 10, 1},  \
  {#v "pow", nullptr, v##pow, EXACT(std::pow(x, y)), 0, 20, 1}

template <class T>
std::vector<Function<T>> Functions() {
  if constexpr (sizeof(T) == 4) return {FUNCTIONS(vs)};
  else return {FUNCTIONS(vd)};
}
#undef FUNCTIONS
#undef EXACT

template <class T>
class Vmath : public testing::Test {};
using Reals = testing::Types<Orva32f, Orva64f>;
TYPED_TEST_SUITE(Vmath, Reals);

TYPED_TEST(Vmath, IsWithinOneUlp) {
  using T = TypeParam;
  constexpr int32_t kCount = 3000;
  Random random(1);
  for (const auto& f : Functions<T>()) {
    std::vector<T> a(kCount), b(kCount), r(kCount);
    for (T& x : a) x = T(f.low + (f.high - f.low) * random.Unit());
    for (T& x : b) x = T(f.low + (f.high - f.low) * random.Unit());
    f(a.data(), b.data(), r.data(), kCount);
    for (int32_t i = 0; i < kCount; ++i) {
      const long double exact = f.exact(a[i], b[i]);
      const long double ulp = std::ldexp(1.0L, std::ilogb(exact) + 1 - std::numeric_limits<T>::digits);
      ASSERT_LE(std::abs(r[i] - exact), f.ulp * ulp) << f.name << "(" << a[i] << ", " << b[i] << ") = " << r[i];
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
        for (Place place : {Place::kEnd, Place::kStart, Place::kUnaligned}) {
          GuardedArray<T> from(std::vector<T>(x.begin(), x.begin() + n), place);
          GuardedArray<T> other(std::vector<T>(y.begin(), y.begin() + n), place);
          GuardedArray<T> to(n, place);
          f(from.data(), other.data(), to.data(), n);
          ASSERT_TRUE(SameBits(f.name, alone.data(), to.data(), n)) << "length " << n;
          f(from.data(), other.data(), from.data(), n);
          ASSERT_TRUE(SameBits(f.name, alone.data(), from.data(), n)) << "in place, length " << n;
        }
      }
    }
  }
}

TYPED_TEST(Vmath, SincosIsSinAndCos) {
  using T = TypeParam;
  const auto sincos = [] { if constexpr (sizeof(T) == 4) return vssincos; else return vdsincos; }();
  const auto sin = [] { if constexpr (sizeof(T) == 4) return vssin; else return vdsin; }();
  const auto cos = [] { if constexpr (sizeof(T) == 4) return vscos; else return vdcos; }();
  for (size_t n : {1, 2, 5, 16, 31, 1000}) {
    for (Variety variety : kVarieties) {
      const GuardedArray<T> a(RandomArray<T>(n, n, variety));
      GuardedArray<T> s(n), c(n);
      std::vector<T> sine(n), cosine(n);
      sin(n, a.data(), sine.data());
      cos(n, a.data(), cosine.data());
      sincos(n, a.data(), s.data(), c.data());
      ASSERT_TRUE(SameBits("sincos, sine", sine.data(), s.data(), n));
      ASSERT_TRUE(SameBits("sincos, cosine", cosine.data(), c.data(), n));
      for (T* same : {s.data(), c.data()}) {
        std::copy_n(a.data(), n, same);
        sincos(n, same, s.data(), c.data());
        ASSERT_TRUE(SameBits("sincos in place, sine", sine.data(), s.data(), n));
        ASSERT_TRUE(SameBits("sincos in place, cosine", cosine.data(), c.data(), n));
      }
    }
  }
}

TYPED_TEST(Vmath, SpecialValues) {
  using T = TypeParam;
  constexpr T kInf = std::numeric_limits<T>::infinity(), kNan = std::numeric_limits<T>::quiet_NaN();
  const T kPi = T(std::acos(-1.0L));
  const struct { const char* name; T a, b, result; } kTable[] = {
      {"sqrt", -1, 0, kNan}, {"sqrt", -T(0), 0, -T(0)}, {"sqrt", kInf, 0, kInf},
      {"sin", -T(0), 0, -T(0)}, {"sin", kInf, 0, kNan}, {"cos", T(0), 0, 1}, {"cos", -kInf, 0, kNan},
      {"tan", -T(0), 0, -T(0)}, {"tan", kInf, 0, kNan}, {"atan", kInf, 0, kPi / 2}, {"atan", -T(0), 0, -T(0)},
      {"exp", -kInf, 0, 0}, {"exp", kInf, 0, kInf}, {"exp", 1000, 0, kInf}, {"exp", -1000, 0, 0}, {"exp", 0, 0, 1},
      {"ln", 0, 0, -kInf}, {"ln", -T(0), 0, -kInf}, {"ln", -1, 0, kNan}, {"ln", kInf, 0, kInf}, {"ln", 1, 0, 0},
      {"log10", 0, 0, -kInf}, {"log10", -1, 0, kNan}, {"log10", 1000, 0, 3}, {"log10", kNan, 0, kNan},
      {"atan2", 0, -1, kPi}, {"atan2", -T(0), -1, -kPi}, {"atan2", -T(0), 1, -T(0)}, {"atan2", 1, 0, kPi / 2},
      {"pow", -2, 3, -8}, {"pow", -2, T(0.5), kNan}, {"pow", 0, -1, kInf}, {"pow", kNan, 0, 1}, {"pow", -1, kInf, 1}};
  for (const auto& row : kTable) {
    for (const auto& f : Functions<T>()) {
      if (std::string(f.name).substr(2) != row.name) continue;
      T result;
      f(&row.a, &row.b, &result, 1);
      EXPECT_TRUE(SameBits(f.name, &row.result, &result, 1)) << row.a << ", " << row.b;
    }
  }
}

}  // namespace
}  // namespace tzm_test
