// The second step of binary32 functions of two arguments: where the first one's result, taken to 2^-44 of it, leaves
// open on which side of the middle m between two binary32 numbers the truth lies, lane by lane in sums of two
// binary64 numbers: a power to 2^-93 of it, an angle to 2^-97 (make/second_step.py).
#pragma once

#include <algorithm>
#include <bit>

#include "constants.h"

namespace vmath {

// A number in two parts, of which the second is below half of the first one's last place.
struct Double {
  double high, low;
};
inline Double Normalised(double a, double b) {
  const double sum = a + b;
  return {sum, (a - sum) + b};
}
inline Double operator+(Double a, Double b) {
  const double sum = a.high + b.high, other = sum - a.high;
  const double rest = (a.high - (sum - other)) + (b.high - other);
  const Double first = Normalised(sum, rest + a.low);
  const Double all = Normalised(first.high, first.low + b.low);
  return all;
}
inline Double operator*(Double a, double b) {
  const double product = a.high * b;
  return Normalised(product, __builtin_fma(a.low, b, __builtin_fma(a.high, b, -product)));
}
inline Double operator*(Double a, Double b) {
  const double product = a.high * b.high;
  const double lost = __builtin_fma(a.high, b.high, -product);
  return Normalised(product, __builtin_fma(a.low, b.high, __builtin_fma(a.high, b.low, lost)));
}
inline Double operator/(Double a, double b) {
  const double quotient = a.high / b;
  return Normalised(quotient, (__builtin_fma(-quotient, b, a.high) + a.low) / b);
}
inline Double operator-(Double a) { return {-a.high, -a.low}; }

// The middle between two binary32 numbers that is nearest to y, positive and finite.
inline double NearestMiddle(double y) {
  const auto field = static_cast<int>(std::bit_cast<uint64_t>(y) >> 52);
  const int exponent = std::max(field, 1023 - 126) - 23;  // of the unit in the last place
  const auto power = [](int biased) { return std::bit_cast<double>(static_cast<uint64_t>(biased) << 52); };
  const double units = y * power(2 * 1023 - exponent);
  return (static_cast<double>(static_cast<int64_t>(units)) + 0.5) * power(exponent);
}
// What rounds to binary32 as the truth, which lies above m, below it or on it as `difference` has it.
inline double Beside(double m, double difference) {
  return difference > 0 ? m * (1 + 0x1p-40) : difference < 0 ? m * (1 - 0x1p-40) : m;
}

constexpr double kFirstStep = 0x1p-44;
// Whether the first step's result, positive and finite or anything else, leaves something open.
TZM_INLINE M IsOpen(V y) {
  const Full<float> d;
  const hn::Half<decltype(d)> half;
  const V error = hn::Mul(y, C(kFirstStep));
  return hn::Ne(hn::PromoteTo(D(), hn::DemoteTo(half, hn::Add(y, error))),
                hn::PromoteTo(D(), hn::DemoteTo(half, hn::Sub(y, error))));
}
// y, with decide(y, a, b) in the open lanes.
template <class Decide>
inline __attribute__((noinline)) V Decided(V y, V a, V b, M open, Decide decide) {
  alignas(64) double result[kLanes], first[kLanes], second[kLanes], which[kLanes];
  hn::Store(y, D(), result);
  hn::Store(a, D(), first);
  hn::Store(b, D(), second);
  hn::Store(hn::IfThenElseZero(open, C(1)), D(), which);
  for (size_t i = 0; i < kLanes; ++i)
    if (which[i] != 0) result[i] = decide(result[i], first[i], second[i]);
  return hn::Load(D(), result);
}

// ---- Power ----

// ln x, x positive: k ln 2 + 2 artanh((f - 1)/(f + 1)) with x = 2^k f, f between sqrt(1/2) and sqrt(2).
inline Double LogOf(double x) {
  const auto bits = std::bit_cast<uint64_t>(x);
  const auto k = static_cast<int64_t>(bits - 0x3fe6a09e667f3bcd) >> 52;
  const auto f = std::bit_cast<double>(bits - (static_cast<uint64_t>(k) << 52));
  const Double below = Normalised(f, 1);  // exact, as is the difference
  const double first = (f - 1) / below.high;
  const Double s = Normalised(first, (__builtin_fma(-first, below.high, f - 1) - first * below.low) / below.high);
  const Double s2 = s * s;
  Double sum = {0, 0};
  for (int i = 43; i >= 1; i -= 2) sum = sum * s2 + Double{1, 0} / i;
  return Double{kLn2InTwo[0], kLn2InTwo[1]} * static_cast<double>(k) + sum * s * 2;
}

// Whether x^y is m itself. With odd X, M, Y and x = X 2^e, m = M 2^f, y = Y/2^j: X = Z^(2^j) and M = Z^Y for an odd
// Z, so Y and 2^j are below 16; the powers of two must agree too.
inline bool IsPower(double x, double y, double m) {
  const auto odd = [](double v, int& exponent) {
    const auto bits = std::bit_cast<uint64_t>(v);
    uint64_t significand = (bits & ((uint64_t{1} << 52) - 1)) | uint64_t{1} << 52;
    const int zeros = __builtin_ctzll(significand);
    exponent = static_cast<int>(bits >> 52) - 1075 + zeros;
    return significand >> zeros;
  };
  int e, f;
  const uint64_t base = odd(x, e), middle = odd(m, f);
  if (e * y != f) return false;
  if (base == 1 || middle == 1) return base == middle;
  uint64_t root = base;
  for (; y < 16 && y != static_cast<int>(y); y *= 2) {
    uint64_t next = 1;
    while ((next + 1) * (next + 1) <= root) ++next;
    if (next * next != root) return false;
    root = next;
  }
  if (!(y > 0 && y < 16)) return false;
  uint64_t power = 1;
  for (int i = 0; i < y && power <= middle; ++i) power *= root;
  return power == middle;
}

// x^y, of which `power` is known to kFirstStep.
inline double DecidePower(double power, double x, double y) {
  const double m = NearestMiddle(power);
  if (IsPower(x, y, m)) return m;
  const Double difference = LogOf(x) * y + -LogOf(m);
  return Beside(m, difference.high);
}

// ---- Arctangent of a ratio ----

// The angle of (x, y), y positive, is above m where y cos m - x sin m is: m being no multiple of pi, the two never
// are the same. Zero is what is left of a difference far below both; there the angle is the ratio less its cube/3.
inline double DecideAngle(double angle, double y, double x) {
  const double m = NearestMiddle(angle);
  const Double square = -(Double{m, 0} * m);
  Double sine = {1, 0}, cosine = {1, 0};  // by their series, of which the next term is below 2^-115, m below pi
  for (int i = 44; i >= 2; i -= 2) {
    sine = Double{1, 0} + sine * square / (i * (i + 1));
    cosine = Double{1, 0} + cosine * square / (i * (i - 1));
  }
  const Double difference = cosine * y + -(sine * m * x);
  return Beside(m, difference.high != 0 ? difference.high : -1);
}

}  // namespace vmath
