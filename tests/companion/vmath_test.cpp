// The vector math companion against the C library's long double functions: binary32 correctly rounded, binary64 within
// 0.6 ulp, at special values and at inputs that are hardest to get right too; and that a result depends on its
// arguments only. bench/accuracy/verify.cpp looks at every binary32 number.
#include <signal_tzm/companion.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
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

// A small angle is a little less than the ratio, which a long double does not tell but a tie in binary32 does.
long double Angle(long double y, long double x) {
  const long double angle = std::atan2(y, x);
  return std::abs(angle) < 0x1p-60 ? angle * (1 - 0x1p-60L) : angle;
}

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
          UNARY(exp, std::exp(x), -80, 80), UNARY(exp, std::exp(x), -745.2, -707), UNARY(exp, std::exp(x), 709, 709.8),
          UNARY(ln, std::log(x), 0, 10), UNARY(ln, std::log(x), 0.95, 1.05), UNARY(log10, std::log10(x), 0, 1e9),
          UNARY(log10, std::log10(x), 0.95, 1.05), BINARY(atan2, Angle(x, y), -10, 10),
          BINARY(pow, std::pow(x, y), 0, 20), BINARY(pow, std::pow(x, y), 26, 27.2),
          BINARY(pow, std::pow(x, y), 142, 144)};
}

template <class T>
class Vmath : public testing::Test {};
using Reals = testing::Types<Orva32f, Orva64f>;
TYPED_TEST_SUITE(Vmath, Reals);

template <class T>
void Check(const Function<T>& f, const std::vector<T>& a, const std::vector<T>& b) {
  using Limits = std::numeric_limits<T>;
  std::vector<T> r(a.size());
  f(a.data(), b.data(), r.data(), static_cast<int32_t>(r.size()));
  for (size_t i = 0; i < r.size(); ++i) {
    const long double exact = f.exact(a[i], b[i]);
    const T rounded = static_cast<T>(exact);
    const long double ulp = std::ldexp(1.0L, std::max(std::ilogb(exact) + 1, Limits::min_exponent) - Limits::digits);
    const bool number = sizeof(T) == 8 && exact != 0 && std::isfinite(rounded) && std::isfinite(r[i]);
    ASSERT_TRUE(number ? std::abs(r[i] - exact) <= 0.6L * ulp : bool(SameBits(f.name, &rounded, &r[i], 1)))
        << std::hexfloat << f.name << "(" << a[i] << ", " << b[i] << ") = " << r[i];
  }
}

TYPED_TEST(Vmath, Accuracy) {
  using T = TypeParam;
  using Limits = std::numeric_limits<T>;
  const T special[] = {0, -T(0), Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), 1, -1, 2, -2, 3, -3,
                       T(0.5), 1000, -1000, Limits::denorm_min(), std::nextafter(T(1), T(0)), Limits::max(), -T(150),
                       Limits::min(), std::nextafter(Limits::min(), T(0)), std::ldexp(T(1), Limits::digits), -T(2.5),
                       T(sizeof(T) == 4 ? 88.72283f : 709.782712893384), T(sizeof(T) == 4 ? -103.97f : -745.1332191)};
  Random random(1);
  for (const auto& f : Functions<T>()) {
    std::vector<T> a, b;
    for (T x : special)
      for (T y : special) a.push_back(x), b.push_back(y);
    while (a.size() < 3000)
      for (auto* argument : {&a, &b}) argument->push_back(T(f.low + (f.high - f.low) * random.Unit()));
    Check(f, a, b);
    for (T& x : a) x = 1 + T(random.Unit());  // powers down to below the least number above 0
    for (size_t i = 0; i < b.size(); ++i)
      b[i] = T(Limits::min_exponent - Limits::digits * random.Unit()) / std::log2(a[i]);
    if (f.name == std::string("pow")) Check(f, a, b);
  }
}

// Multiples of pi/2 come nearest to numbers at the convergents of pi; of those and of lists of inputs that are hardest
// to round each is tried in every function, beside its neighbours and with both signs.
TYPED_TEST(Vmath, HardInputs) {
  using T = TypeParam;
  std::vector<double> hard = {
      0x1.065c829d6873p+41, 0x1.065c829d6873p+45, 0x1.46546a5bd73ccp+37, 0x1.5c9508c58aafap+33, 0x1.3013cbf223c9ep+35,
      0x1.6ac5b262ca1ffp+849, 0x1.6ac5b262ca1ffp+851, 3, 22, 333, 355, 103993, 104348, 208341, 312689, 833719, 1146408,
      4272943, 5419351, 80143857, 165707065, 245850922, 411557987, 1068966896, 2549491779, 6167950454, 14885392687,
      21053343141, 1783366216531, 3587785776203, 5371151992734, 8958937768937, 139755218526789, 428224593349304,
      0x1.d2259ap+3, 0x1.e1dbe2p-8, 0x1.fdff02p-17, 0x1.c1c4b8p-10, 0x1p-25, 0x1.8d7cb6p-12, 0x1.62b666p+1,
      0x1.b121a6p+76, 0x1.bacb4ap+25, 0x1.c09d7cp+27, 0x1.2f1fd6p+3, 0x1.22d57p-65, 0x1.827a74p-7, 0x1.6351d8p+95,
      0x1.4d83bap+70, 0x1.0acfc8p+67, 0x1.7bdb9p+12, 0x1.fddcf4p-98, 0x1.9be058p+65, 0x1.487e0cp+103, 0x1.33333p+13,
      0x1.95f654p+44, 0x1.524856p+80, 0x1.e35bc6p+7, 0x1.2b9622p+67, 0x1.887814p+51, 0x1.3170fp+63, 0x1.96344ep+117,
      0x1.119ae6p+115, 0x1.20ffccp-7, 0x1p-12, 0x1.fa6748p+64, 0x1.b0e75cp+59, 0x1.02e9bap+2, 0x1.5ce84cp+124,
      0x1.1ad646p-4, 0x1.ac6ff4p-10, 0x1.f83792p-9, 0x1.e00a3p+25, 0x1.6afe3ap+1, 0x1.05094ap-5, 0x1.67bf92p+3,
      0x1.54a192p-1, 0x1.569738p-1, 0x1.ae3a3cp-1, 0x1.e1af62p-1, 0x1.1c0a0ap+0, 0x1.1a6556p-1, 0x1.56c79ep-1,
      0x1.e2f8a2p-1, 0x1.1a9dfcp+0, 0x1.36bafdaa08a5p-7, 0x1.2d486ed68b4f2p-12, 0x1.c7dd621b550a6p-2,
      0x1.ffce8d1f7e073p-2, 0x1.ffff6834b2fbp-3, 0x1.520dcd29cacd8p+0, 0x1.a3bb264b76064p+0, 0x1.78769fc17f3acp+0};
  std::vector<T> a;
  for (double x : hard)
    for (double power : {1.0, 2.0, 4.0})  // doubled, a multiple of pi stays next to one
      for (T y : {T(x * power), std::nextafter(T(x * power), T(0))}) a.insert(a.end(), {y, -y});
  for (int k = 1; k < 1 << 21; k += 1 + k / 1000) a.push_back(T(k * 1.57079632679489661923132169163975144L));
  for (const auto& f : Functions<T>())
    if (f.unary != nullptr) Check(f, a, a);
}

// Powers and angles of binary32 that are the very middle between two numbers, or next to it: ties go to even.
TEST(Vmath32, Middles) {
  const auto even = [](uint64_t twice) { return static_cast<float>((twice + (twice >> 1 & 1)) >> 1); };  // twice/2
  const auto power = [](float x, float y) { return vspow(1, &x, &y, &x), x; };
  int middles = 0;
  for (int root = 3; root < 6000; root += 2) {
    uint64_t odd = uint64_t(root) * root;
    for (int n = 2; odd < 1 << 25; ++n, odd *= root) {
      if (odd > 1 << 24) {
        const float right = 2 * even(odd);
        for (int squared = 0; squared < 4; ++squared) {  // (root^(2^j))^(n/2^j)
          const auto x = static_cast<float>(std::pow(root, 1 << squared));
          if (std::pow(root, 1 << squared) > 1 << 24) break;
          ASSERT_EQ(power(x, std::ldexp(float(n), -squared)), right) << x << " to the power " << n << "/2^" << squared;
          ASSERT_EQ(power(-x, float(n)), std::pow(-1.0f, float(n)) * power(x, float(n)));
          ++middles;
        }
      }
      if (150 % n == 0 && odd < 1000) {  // below the least normal number
        ASSERT_EQ(power(std::ldexp(float(root), -150 / n), float(n)), std::ldexp(even(odd), -149)) << root << "^" << n;
      }
    }
  }
  EXPECT_GT(middles, 900);
  for (int odd = 1; odd < 1000; odd += 2) {  // the angle is less than the ratio, which is odd/2 units
    float y = std::ldexp(float(odd), -149), x = 2, angle;
    vsatan2(1, &y, &x, &angle);
    ASSERT_EQ(angle, std::ldexp(float(odd / 2), -149));
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

// Its sign and payload would differ between processors.
TYPED_TEST(Vmath, AnglesHaveOneNaN) {
  using T = TypeParam;
  const T nan = std::numeric_limits<T>::quiet_NaN(), other = static_cast<T>(std::nan("0x1234567800000")),
          infinity = std::numeric_limits<T>::infinity();
  const std::vector<T> x = {nan, -nan, other, -other, infinity, -infinity, nan, -other, -infinity};
  std::vector<T> r(x.size());
  for (const auto& f : Functions<T>()) {
    if (f.name != std::string("sin") && f.name != std::string("cos") && f.name != std::string("tan")) continue;
    f(x.data(), x.data(), r.data(), static_cast<int32_t>(r.size()));
    for (const T& y : r) EXPECT_EQ(0, std::memcmp(&y, &nan, sizeof nan)) << f.name << " " << &y - r.data();
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
