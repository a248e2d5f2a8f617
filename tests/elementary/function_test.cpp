// Real elementary functions: the scans that decide the status, place by place, and that every element is
// computed whatever they say.
#include <gtest/gtest.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>

#include <bit>
#include <cmath>
#include <tuple>
#include <vector>

#include "support/compare.h"

namespace tzm_test {
namespace {

constexpr OrvaStatus kNone = ORVA_STS_NO_ERR, kOver = ORVA_STS_OVERFLOW_ERR, kUnder = ORVA_STS_UNDERFLOW_ERR;
constexpr OrvaStatus kPole = ORVA_STS_SINGULARITY_ERR, kDomain = ORVA_STS_DOMAIN_ERR;

// The status, once the results are seen to be the companion's for every element.
template <class T, class... More>
OrvaStatus Status(auto member, auto companion, const std::vector<T>& values, const More&... more) {
  const auto len = static_cast<int32_t>(values.size());
  std::vector<T> dst(values.size()), expected(values.size());
  companion(len, values.data(), more.data()..., expected.data());
  const OrvaStatus status = member(values.data(), more.data()..., dst.data(), len);
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

// Two conditions, looked for in the first block and the tail only: `first` gives one, `second` the other.
template <class T>
void CheckEnds(auto member, auto companion, T first, OrvaStatus firstStatus, T second, OrvaStatus secondStatus) {
  const size_t block = 16 / sizeof(T), tail = 3 * block, len = tail + 1;
  const auto status = [&](const std::vector<T>& x) { return Status(member, companion, x); };
  for (size_t at = 0; at < len; ++at) {
    const bool seen = at < block || at == tail;
    EXPECT_EQ(status(At(len, at, first)), seen ? firstStatus : kNone) << at;
    EXPECT_EQ(status(At(len, at, second)), seen ? secondStatus : kNone) << at;
    EXPECT_EQ(status(At(len, at, T(NAN))), kNone) << at;
  }
  std::vector<T> both = At(block + 1, 0, second);
  both[block] = first;
  EXPECT_EQ(status(both), secondStatus);  // the block before the tail
  both[1] = first;
  EXPECT_EQ(status(both), firstStatus);  // in the block the first condition before the second
  if constexpr (sizeof(T) == 4) {
    EXPECT_EQ(status({first, second, 1}), secondStatus);  // in the tail the last element
    EXPECT_EQ(status({second, first, 1}), firstStatus);
  }
}

TEST(ExpAndLogarithms, FirstBlockAndTailOnly) {
  CheckEnds<float>(ORVAS_Exp_32f, vsexp, 89, kOver, -90, kUnder);
  CheckEnds<double>(ORVAS_Exp_64f, vdexp, 710, kOver, -709, kUnder);
  CheckEnds<float>(ORVAS_Ln_32f, vsln, -0.0f, kPole, -1, kDomain);
  CheckEnds<double>(ORVAS_Ln_64f, vdln, -0.0, kPole, -1, kDomain);
  CheckEnds<float>(ORVAS_Log10_32f, vslog10, -0.0f, kPole, -1, kDomain);
  CheckEnds<double>(ORVAS_Log10_64f, vdlog10, -0.0, kPole, -1, kDomain);
}

// The last numbers without a status; in binary32 they differ between block, of 4 elements, and tail.
TEST(Exp, Limits) {
  for (auto [len, last, status] : {std::tuple(4, 0x42b17217u, kOver), {4, 0xc2aeac4fu, kUnder},
                                   {1, 0x42b17216u, kOver}, {1, 0xc2aeac4eu, kUnder}}) {
    for (uint32_t beyond : {0, 1}) {
      const auto x = At(len, 0, std::bit_cast<float>(last + beyond));
      EXPECT_EQ(Status(ORVAS_Exp_32f, vsexp, x), beyond ? status : kNone) << x[0];
    }
  }
  for (auto [last, status] : {std::pair(0x40862e42fd75e204, kOver), {0xc086232bd9018e75, kUnder}}) {
    for (uint64_t beyond : {0, 1}) {
      for (size_t len : {1, 2}) {
        const auto x = At(len, 0, std::bit_cast<double>(last + beyond));
        EXPECT_EQ(Status(ORVAS_Exp_64f, vdexp, x), beyond ? status : kNone) << x[0];
      }
    }
  }
}

// The body looks for two finite numbers, of which `firstPart` counts in the first part of a step only.
template <class T>
void CheckTan(auto member, auto companion, size_t step, size_t part, T firstPart, T everywhere) {
  for (size_t at = 0; at < 2 * step + 3; ++at) {
    const bool body = at < 2 * step;
    const auto tan = [&](T x) { return Status(member, companion, At(2 * step + 3, at, x)); };
    for (T infinite : {T(HUGE_VAL), T(-HUGE_VAL)}) EXPECT_EQ(tan(infinite), body ? kNone : kDomain) << at;
    EXPECT_EQ(tan(everywhere), body ? kDomain : kNone) << at;
    EXPECT_EQ(tan(firstPart), body && at % step < part ? kDomain : kNone) << at;
    EXPECT_EQ(tan(T(NAN)), kNone) << at;
  }
}
TEST(Tan, InfinityCountsInTheTailAndTwoFiniteNumbersInTheBody) {
  CheckTan<float>(ORVAS_Tan_32f, vstan, 16, 8, 2139095040.0f, 4286578688.0f);
  CheckTan<double>(ORVAS_Tan_64f, vdtan, 4, 4, 0x1.ffcp+62, 0x1.ffep+63);
}

template <class T>
void CheckPow(auto member, auto companion) {
  const size_t block = 16 / sizeof(T), body = 3 * block, len = body + 1;
  const auto pow = [&](size_t n, size_t at, T x, T y) {
    return Status(member, companion, At(n, at, x), At(n, at, y));
  };
  for (size_t at = 0; at < len; ++at) {
    const bool tail = at == body, last = !tail && at >= body - block;  // of the whole blocks
    for (T y : {T(2), T(-3), T(0), T(-0.0), T(1e30)}) EXPECT_EQ(pow(len, at, -2, y), last ? kDomain : kNone) << at;
    for (T y : {T(0.5), T(-2.5), T(HUGE_VAL), T(-HUGE_VAL), T(NAN)})
      EXPECT_EQ(pow(len, at, -2, y), tail ? kDomain : kNone) << at << " " << y;
    for (T zero : {T(0), T(-0.0)}) {
      EXPECT_EQ(pow(len, at, zero, -1), tail || last ? kDomain : kNone) << at;
      EXPECT_EQ(pow(len, at, zero, T(0.5)), kNone) << at;
    }
    EXPECT_EQ(pow(len, at, T(NAN), 2), kNone) << at;
  }
  EXPECT_EQ(pow(1, 0, -2, 2), kNone);  // no block to look at
  EXPECT_EQ(pow(block, 0, -2, 2), kDomain);
}
TEST(Pow, LastBlockAndTailInOppositeSenses) {
  CheckPow<float>(ORVAS_Pow_32f, vspow);
  CheckPow<double>(ORVAS_Pow_64f, vdpow);
}

TEST(Functions, NoScanElsewhere) {
  const std::vector<float> x = {HUGE_VALF, -HUGE_VALF, NAN, 0, -1}, y = {0, 1, -1, -0.0f, 1};
  const std::vector<double> x64(x.begin(), x.end()), y64(y.begin(), y.end());
  EXPECT_EQ(Status(ORVAS_Sin_32f, vssin, x), kNone);
  EXPECT_EQ(Status(ORVAS_Cos_32f, vscos, x), kNone);
  EXPECT_EQ(Status(ORVAS_Arctan_32f, vsatan, x), kNone);
  EXPECT_EQ(Status(ORVAS_Arctan2_32f, vsatan2, x, y), kNone);
  EXPECT_EQ(Status(ORVAS_Sin_64f, vdsin, x64), kNone);
  EXPECT_EQ(Status(ORVAS_Cos_64f, vdcos, x64), kNone);
  EXPECT_EQ(Status(ORVAS_Arctan_64f, vdatan, x64), kNone);
  EXPECT_EQ(Status(ORVAS_Arctan2_64f, vdatan2, x64, y64), kNone);
}

}  // namespace
}  // namespace tzm_test
