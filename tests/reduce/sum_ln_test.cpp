// Sums of logarithms: the table derived anew with long double, values by arithmetic instead of bit
// fields, and the odd values that callers rely on.
#include <gtest/gtest.h>
#include <signal_tzm/reduce.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

constexpr double kLn2 = 0x1.62e42fefa39efp-1;
constexpr float kInfinity = std::numeric_limits<float>::infinity();

// ln(1 + i/256) rounded to binary64, proven: the long double is farther from a tie than its own error.
double DeriveLn(int i) {
  const long double exact = logl(1 + i / 256.0L);
  const double rounded = static_cast<double>(exact);
  const long double half = (std::nextafter(rounded, 1.0) - static_cast<long double>(rounded)) / 2;
  const long double error = exact * 4 * std::numeric_limits<long double>::epsilon();
  EXPECT_LT(error, half / 8);
  EXPECT_TRUE(i == 0 || half - std::fabs(exact - rounded) > error) << "row " << i << " cannot be decided";
  return rounded;
}

double TableLn(int i) {
  static const std::vector<double> table = [] {
    std::vector<double> rows;
    for (int row = 0; row < 256; ++row) rows.push_back(DeriveLn(row));
    return rows;
  }();
  return table[i];
}

struct Reduced {
  double head;      // with the exponent as 32 bits without a sign
  double recip;
  double remainder; // of the fraction, from 0 to 2^-8
  double offset;
};

Reduced Reduce(double x) {
  int exponent;
  const double fraction = 2 * std::frexp(x, &exponent) - 1;
  const int i = static_cast<int>(fraction * 256);
  const bool last = i == 255;
  const double wrapped = exponent - 1 < 0 ? exponent - 1 + 0x1p32 : exponent - 1;
  return {std::fma(wrapped, kLn2, last ? kLn2 : TableLn(i)), last ? 0.5 : 1 / (1 + i / 256.0), fraction - i / 256.0,
          last ? -0x1p-9 : 0};
}

float Series32(float t, double head) {
  const float inner = std::fma(t, std::fma(t, 0.33333334f, -0.5f), 1.0f);
  return static_cast<float>(head + t * inner);
}

float Ln32f(float x) {
  const Reduced part = Reduce(x);
  const float scaled = static_cast<float>(part.remainder * part.recip);
  return Series32(scaled + static_cast<float>(part.offset), part.head);
}

float Ln16s(float x) {
  const Reduced part = Reduce(x);
  return Series32(static_cast<float>(std::fma(part.remainder, part.recip, part.offset)), part.head);
}

double Ln64f(double x) {
  const Reduced part = Reduce(x);
  const double remainder = static_cast<float>(1 + part.remainder) - 1.0f;
  const double t = std::fma(remainder, part.recip, part.offset), u = t * t;
  const double p = std::fma(u, std::fma(u, std::fma(u, 0.14285714285714288, 0.2), 0.3333333333333333), 1.0);
  const double q = std::fma(u, std::fma(u, std::fma(u, -0.125, -0.16666666666666666), -0.25), -0.5);
  return part.head + std::fma(t, p, u * q);
}

template <class Src, class Sum>
Sum One(OrvaStatus (*operation)(const Src*, int32_t, Sum*), Src x, OrvaStatus expected = ORVA_STS_NO_ERR) {
  Sum sum = 7;
  EXPECT_EQ(operation(&x, 1, &sum), expected) << x;
  return sum;
}

TEST(SumLn, Table) {
  for (int i = 0; i < 255; ++i) EXPECT_EQ(One(ORVAS_SumLn_32f64f, 1 + i / 256.0f), TableLn(i)) << "row " << i;
  for (float x : {1 + 255 / 256.0f, std::nextafter(2.0f, 1.0f)}) EXPECT_EQ(One(ORVAS_SumLn_32f64f, x), kLn2);
}

// Positive normal samples: every exponent and row, above and below 1.
template <class Src, class Sum, class Oracle>
void CheckSums(OrvaStatus (*operation)(const Src*, int32_t, Sum*), Oracle oracle) {
  Random random(1);
  for (int32_t len = 1; len <= 40; ++len) {
    for (int round = 0; round < 20; ++round) {
      std::vector<Src> src(len);
      Sum expected = 0;
      for (Src& x : src) {
        if constexpr (std::is_integral_v<Src>) x = 1 + random.Below(32767);
        else x = std::ldexp(Src(1 + random.Unit()), round < 10 ? random.Below(4) : random.Below(250) - 125);
        expected += oracle(x);
      }
      const GuardedArray<Src> guarded(src);
      Sum sum;
      ASSERT_EQ(operation(guarded.data(), len, &sum), ORVA_STS_NO_ERR);
      ASSERT_TRUE(SameBits("SumLn", &expected, &sum, 1, len));
    }
  }
}

TEST(SumLn, Values) {
  CheckSums(ORVAS_SumLn_32f, Ln32f);
  CheckSums(ORVAS_SumLn_64f, Ln64f);
  CheckSums(ORVAS_SumLn_16s32f, Ln16s);
  CheckSums(ORVAS_SumLn_32f64f, [](float x) { return Reduce(x).head; });
}

TEST(SumLn, LogarithmsAboveOne) {
  Random random(2);
  for (int round = 0; round < 600; ++round) {
    const float x = std::ldexp(static_cast<float>(1 + random.Unit()), random.Below(8));
    const long double exact = logl(x);
    EXPECT_NEAR(One(ORVAS_SumLn_32f, x), exact, 0x1p-22) << x;
    EXPECT_NEAR(One(ORVAS_SumLn_64f, double(x)), exact, 0x1p-24) << x;
    EXPECT_NEAR(One(ORVAS_SumLn_32f64f, x), exact, 0x1p-8) << x;
  }
  EXPECT_EQ(One(ORVAS_SumLn_32f, 1.0f), 0);
}

TEST(SumLn, OddValues) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(One(ORVAS_SumLn_32f, kInfinity), static_cast<float>(128 * kLn2));
  EXPECT_EQ(One(ORVAS_SumLn_64f, double(kInfinity)), 1024 * kLn2);
  EXPECT_EQ(One(ORVAS_SumLn_32f64f, kInfinity), 1024 * kLn2);
  // A quiet NaN is read as 1.5 * 2^128, with either sign.
  const double ln_nan = std::fma(1024, kLn2, TableLn(128));
  for (float x : {nan, -nan}) {
    EXPECT_EQ(One(ORVAS_SumLn_32f, x), static_cast<float>(std::fma(128, kLn2, TableLn(128))));
    EXPECT_EQ(One(ORVAS_SumLn_64f, double(x)), ln_nan);
    EXPECT_EQ(One(ORVAS_SumLn_32f64f, x), ln_nan);
  }
  // Below 1 the exponent wraps.
  EXPECT_NEAR(One(ORVAS_SumLn_64f, 0.5), 0x1p32 * kLn2 - kLn2, 1e-5);
  EXPECT_EQ(One(ORVAS_SumLn_16s32f, Orva16s{1}), 0);
  // A subnormal is read as 1.5 * 2^-127 or 2^-1023; widened to binary64 it is what it is.
  EXPECT_EQ(One(ORVAS_SumLn_32f, 0x1p-127f), static_cast<float>((0x1p32 - 127) * kLn2 + TableLn(128)));
  EXPECT_EQ(One(ORVAS_SumLn_64f, 0x1p-1023), std::fma(0x1p32 - 1023, kLn2, TableLn(128)));
  EXPECT_EQ(One(ORVAS_SumLn_32f64f, 0x1p-127f), std::fma(0x1p32 - 127, kLn2, 0.0));
}

template <class Src, class Sum>
void CheckStatuses(OrvaStatus (*operation)(const Src*, int32_t, Sum*)) {
  Sum sum;
  const Src ends_negative[] = {0, 1, -1}, ends_zero[] = {-1, 0, 3}, zeros[] = {2, 0, 0};
  EXPECT_EQ(operation(ends_negative, 3, &sum), ORVA_STS_LN_NEG_WARN);
  EXPECT_TRUE(std::isnan(sum));
  EXPECT_EQ(operation(ends_zero, 3, &sum), ORVA_STS_LN_ZERO_WARN);
  EXPECT_TRUE(std::isnan(sum));
  EXPECT_EQ(operation(zeros, 3, &sum), ORVA_STS_LN_ZERO_WARN);
  EXPECT_EQ(sum, -kInfinity);
}

TEST(SumLn, Statuses) {
  CheckStatuses(ORVAS_SumLn_32f);
  CheckStatuses(ORVAS_SumLn_64f);
  CheckStatuses(ORVAS_SumLn_32f64f);
  CheckStatuses(ORVAS_SumLn_16s32f);
  EXPECT_EQ(One(ORVAS_SumLn_32f, -0.0f, ORVA_STS_LN_ZERO_WARN), -kInfinity);
  EXPECT_TRUE(std::isnan(One(ORVAS_SumLn_32f64f, -kInfinity, ORVA_STS_LN_NEG_WARN)));
}

}  // namespace
}  // namespace tzm_test
