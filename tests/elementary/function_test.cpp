// Real elementary functions: the scans that decide the status, place by place, and that every element is
// computed whatever they say.
#include <gtest/gtest.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>

#include <bit>
#include <cmath>
#include <vector>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

template <class T>
using Unary = OrvaStatus (*)(const T*, T*, int32_t);
template <class T>
using Companion = void (*)(int32_t, const T*, T*);

// The status, once the results are seen to be the companion's for every element.
template <class T>
OrvaStatus Status(Unary<T> member, Companion<T> companion, const std::vector<T>& values) {
  const auto len = static_cast<int32_t>(values.size());
  const GuardedArray<T> src(values);
  GuardedArray<T> dst(values.size());
  std::vector<T> expected(values.size());
  companion(len, values.data(), expected.data());
  const OrvaStatus status = member(src.data(), dst.data(), len);
  EXPECT_TRUE(SameBits("member", expected.data(), dst.data(), values.size()));
  return status;
}
// `len` ones, and `x` at index `at`.
template <class T>
std::vector<T> At(size_t len, size_t at, T x) {
  std::vector<T> values(len, T(1));
  values[at] = x;
  return values;
}

constexpr OrvaStatus kNone = ORVA_STS_NO_ERR, kOver = ORVA_STS_OVERFLOW_ERR, kUnder = ORVA_STS_UNDERFLOW_ERR;
constexpr OrvaStatus kPole = ORVA_STS_SINGULARITY_ERR, kDomain = ORVA_STS_DOMAIN_ERR;

TEST(Exp, FirstBlockAndTailOnly) {
  const auto exp = [](std::vector<float> values) { return Status<float>(ORVAS_Exp_32f, vsexp, values); };
  for (size_t at = 0; at < 14; ++at) EXPECT_EQ(exp(At(14, at, 89.0f)), at < 4 || at >= 12 ? kOver : kNone) << at;
  EXPECT_EQ(exp(At(8, 4, 89.0f)), kNone);
  EXPECT_EQ(exp(At(5, 4, 89.0f)), kOver);
  EXPECT_EQ(exp({1, -90, 89, 1}), kOver);  // overflow is looked for first in the block
  EXPECT_EQ(exp({-90, 1, 1, 1, 89}), kUnder);  // and the block before the tail
  EXPECT_EQ(exp({-90, 89, 1}), kOver);     // the last one of a tail
  EXPECT_EQ(exp({89, -90, 1}), kUnder);
  EXPECT_EQ(exp({NAN, 1, 1, 1, NAN}), kNone);

  const auto exp64 = [](std::vector<double> values) { return Status<double>(ORVAS_Exp_64f, vdexp, values); };
  for (size_t at = 0; at < 9; ++at) EXPECT_EQ(exp64(At(9, at, -709.0)), at < 2 || at >= 8 ? kUnder : kNone) << at;
  EXPECT_EQ(exp64({-709, 710}), kOver);
}

// The limits lie between neighbouring numbers, which differ between block and tail in binary32.
TEST(Exp, Limits) {
  const auto exp = [](size_t len, float x) { return Status<float>(ORVAS_Exp_32f, vsexp, At(len, len - 1, x)); };
  const auto bits32 = [](uint32_t bits) { return std::bit_cast<float>(bits); };
  const auto tail = [&](double limit, bool above) {  // status on both sides of a binary64 limit in the tail
    const float near = static_cast<float>(limit);
    for (float x : {std::nextafter(near, 0.0f), near, std::nextafter(near, above ? HUGE_VALF : -HUGE_VALF)})
      EXPECT_EQ(exp(1, x) != kNone, above ? double{x} > limit : double{x} < limit) << x;
  };
  tail(std::bit_cast<double>(0x40562e42d8c2a455), true);
  tail(std::bit_cast<double>(0xc055d589df1172ef), false);
  EXPECT_EQ(exp(4, bits32(0x42b17217)), kNone);
  EXPECT_EQ(exp(4, bits32(0x42b17218)), kOver);
  EXPECT_EQ(exp(4, bits32(0xc2aeac4f)), kNone);
  EXPECT_EQ(exp(4, bits32(0xc2aeac50)), kUnder);
  for (size_t len : {1, 2}) {
    const auto exp64 = [&](uint64_t bits) {
      return Status<double>(ORVAS_Exp_64f, vdexp, At(len, len - 1, std::bit_cast<double>(bits)));
    };
    EXPECT_EQ(exp64(0x40862e42fd75e204), kNone);
    EXPECT_EQ(exp64(0x40862e42fd75e205), kOver);
    EXPECT_EQ(exp64(0xc086232bd9018e75), kNone);
    EXPECT_EQ(exp64(0xc086232bd9018e76), kUnder);
  }
}

TEST(Exp, InPlaceLooksAtTheLengthFirst) {
  EXPECT_EQ(ORVAS_Exp_32f_I(nullptr, 0), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(ORVAS_Exp_64f_I(nullptr, 1), ORVA_STS_NULL_PTR_ERR);
  float x[] = {89, 0, 0};
  EXPECT_EQ(ORVAS_Exp_32f_I(x, 3), kOver);
  EXPECT_EQ(x[0], HUGE_VALF);
  EXPECT_EQ(x[1], 1);
}

template <class T>
void CheckLogarithm(Unary<T> member, Companion<T> companion) {
  const size_t block = 16 / sizeof(T);
  const auto log = [&](std::vector<T> values) { return Status<T>(member, companion, values); };
  for (size_t at = 0; at < 3 * block + 1; ++at) {
    const bool seen = at < block || at == 3 * block;
    EXPECT_EQ(log(At<T>(3 * block + 1, at, T(-0.0))), seen ? kPole : kNone) << at;
    EXPECT_EQ(log(At<T>(3 * block + 1, at, T(-1))), seen ? kDomain : kNone) << at;
    EXPECT_EQ(log(At<T>(3 * block + 1, at, T(NAN))), kNone) << at;
  }
  std::vector<T> both(block, T(1));
  both[0] = -1, both[1] = 0;
  EXPECT_EQ(log(both), kPole);  // zero is looked for first in the block
  both.push_back(T(-1));
  EXPECT_EQ(log(both), kPole);
  both[0] = both[1] = 1;
  EXPECT_EQ(log(both), kDomain);
}

TEST(Ln, FirstBlockAndTailOnly) {
  CheckLogarithm<float>(ORVAS_Ln_32f, vsln);
  CheckLogarithm<double>(ORVAS_Ln_64f, vdln);
  CheckLogarithm<float>(ORVAS_Log10_32f, vslog10);
  CheckLogarithm<double>(ORVAS_Log10_64f, vdlog10);
  EXPECT_EQ(Status<float>(ORVAS_Ln_32f, vsln, {0, -1, 1}), kDomain);  // the last one of a tail
  EXPECT_EQ(Status<float>(ORVAS_Ln_32f, vsln, {-1, 0, 1}), kPole);
}

TEST(Tan, InfinityCountsInTheTailAndTwoFiniteNumbersInTheBody) {
  const auto tan = [](size_t len, size_t at, float x) { return Status<float>(ORVAS_Tan_32f, vstan, At(len, at, x)); };
  for (size_t at = 0; at < 35; ++at) {
    const bool body = at < 32;
    EXPECT_EQ(tan(35, at, HUGE_VALF), body ? kNone : kDomain) << at;
    EXPECT_EQ(tan(35, at, -HUGE_VALF), body ? kNone : kDomain) << at;
    EXPECT_EQ(tan(35, at, 4286578688.0f), body ? kDomain : kNone) << at;
    EXPECT_EQ(tan(35, at, 2139095040.0f), body && at % 16 < 8 ? kDomain : kNone) << at;
    EXPECT_EQ(tan(35, at, NAN), kNone) << at;
  }
  const auto tan64 = [](size_t len, size_t at, double x) {
    return Status<double>(ORVAS_Tan_64f, vdtan, At(len, at, x));
  };
  for (size_t at = 0; at < 11; ++at) {
    const bool body = at < 8;
    EXPECT_EQ(tan64(11, at, HUGE_VAL), body ? kNone : kDomain) << at;
    EXPECT_EQ(tan64(11, at, -HUGE_VAL), body ? kNone : kDomain) << at;
    EXPECT_EQ(tan64(11, at, std::bit_cast<double>(0x43dffc0000000000)), body ? kDomain : kNone) << at;
    EXPECT_EQ(tan64(11, at, std::bit_cast<double>(0x43effe0000000000)), body ? kDomain : kNone) << at;
    EXPECT_EQ(tan64(11, at, NAN), kNone) << at;
  }
}

// x^y at index `at` of `len` ones to the power 1.
template <class T>
OrvaStatus PowStatus(OrvaStatus (*member)(const T*, const T*, T*, int32_t),
                     void (*companion)(int32_t, const T*, const T*, T*), size_t len, size_t at, T x, T y) {
  const GuardedArray<T> base(At(len, at, x)), exponent(At(len, at, y));
  GuardedArray<T> dst(len);
  std::vector<T> expected(len);
  companion(static_cast<int32_t>(len), base.data(), exponent.data(), expected.data());
  const OrvaStatus status = member(base.data(), exponent.data(), dst.data(), static_cast<int32_t>(len));
  EXPECT_TRUE(SameBits("pow", expected.data(), dst.data(), len));
  return status;
}
template <class T>
void CheckPow(OrvaStatus (*member)(const T*, const T*, T*, int32_t),
              void (*companion)(int32_t, const T*, const T*, T*)) {
  const size_t block = 16 / sizeof(T), body = 3 * block, len = body + 1;
  const auto pow = [&](size_t at, T x, T y) { return PowStatus<T>(member, companion, len, at, x, y); };
  const T huge = T(1e30), infinite = T(HUGE_VAL);
  for (size_t at = 0; at < len; ++at) {
    const bool tail = at == body, last = !tail && at >= body - block;  // of the whole blocks
    for (T integer : {T(2), T(-3), T(0), T(-0.0), huge}) EXPECT_EQ(pow(at, -2, integer), last ? kDomain : kNone) << at;
    for (T other : {T(0.5), T(-2.5), infinite, -infinite, T(NAN)})
      EXPECT_EQ(pow(at, -2, other), tail ? kDomain : kNone) << at << " " << other;
    for (T zero : {T(0), T(-0.0)}) {
      EXPECT_EQ(pow(at, zero, -1), tail || last ? kDomain : kNone) << at;
      EXPECT_EQ(pow(at, zero, T(0.5)), kNone) << at;
    }
    EXPECT_EQ(pow(at, T(NAN), 2), kNone) << at;
  }
  EXPECT_EQ(PowStatus<T>(member, companion, 1, 0, -2, 2), kNone);  // no block to look at
  EXPECT_EQ(PowStatus<T>(member, companion, block, 0, -2, 2), kDomain);
}

TEST(Pow, LastBlockAndTailInOppositeSenses) {
  CheckPow<float>(ORVAS_Pow_32f, vspow);
  CheckPow<double>(ORVAS_Pow_64f, vdpow);
}

TEST(Functions, NoScanElsewhere) {
  for (float x : {HUGE_VALF, -HUGE_VALF, NAN, 0.0f}) {
    EXPECT_EQ(Status<float>(ORVAS_Sin_32f, vssin, {x}), kNone);
    EXPECT_EQ(Status<float>(ORVAS_Cos_32f, vscos, {x}), kNone);
    EXPECT_EQ(Status<float>(ORVAS_Arctan_32f, vsatan, {x}), kNone);
    EXPECT_EQ(Status<double>(ORVAS_Sin_64f, vdsin, {x}), kNone);
    EXPECT_EQ(Status<double>(ORVAS_Cos_64f, vdcos, {x}), kNone);
    EXPECT_EQ(Status<double>(ORVAS_Arctan_64f, vdatan, {x}), kNone);
  }
  // The first array is the ordinate.
  const float y = 1, x = -1;
  float angle;
  EXPECT_EQ(ORVAS_Arctan2_32f(&y, &x, &angle, 1), kNone);
  EXPECT_FLOAT_EQ(angle, 2.3561945f);
}

}  // namespace
}  // namespace tzm_test
