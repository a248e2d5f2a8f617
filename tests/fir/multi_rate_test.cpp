// Multi-rate FIR filter against its defining sum, in the order of the contract.
#include <signal_tzm/fir.h>

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "filter_oracle.h"
#include "support/arguments.h"
#include "support/compare.h"
#include "support/faults.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

template <class TapType, class SampleType>
struct Kind {
  using Tap = TapType;
  using Sample = SampleType;
  const char* name;
  OrvaStatus (*init)(const Tap*, int32_t, int32_t, int32_t, int32_t, int32_t, FIRMRState**);
  OrvaStatus (*run)(const Sample*, Sample*, int32_t, FIRMRState*, const Sample*, Sample*);
  OrvaStatus (*release)(FIRMRState*);
};

template <class Test>
void ForEachKind(Test test) {
  test(Kind<Orva32f, Orva32f>{"FIRMR_32f", ORVAS_FIRMRInit_32f, ORVAS_FIRMR_32f, ORVAS_FIRMRRelease_32f});
  test(Kind<Orva32f, Orva16s>{"FIRMR_16s", ORVAS_FIRMRInit_32f, ORVAS_FIRMR_16s, ORVAS_FIRMRRelease_32f});
  test(Kind<Orva64f, Orva64f>{"FIRMR_64f", ORVAS_FIRMRInit_64f, ORVAS_FIRMR_64f, ORVAS_FIRMRRelease_64f});
  test(Kind<Orva32fc, Orva32fc>{"FIRMR_32fc", ORVAS_FIRMRInit_32fc, ORVAS_FIRMR_32fc, ORVAS_FIRMRRelease_32fc});
  test(Kind<Orva32fc, Orva16sc>{"FIRMR_16sc", ORVAS_FIRMRInit_32fc, ORVAS_FIRMR_16sc, ORVAS_FIRMRRelease_32fc});
  test(Kind<Orva64fc, Orva64fc>{"FIRMR_64fc", ORVAS_FIRMRInit_64fc, ORVAS_FIRMR_64fc, ORVAS_FIRMRRelease_64fc});
  test(Kind<Orva32f, Orva32fc>{"FIRMR32f_32fc", ORVAS_FIRMRInit32f_32fc, ORVAS_FIRMR32f_32fc,
                               ORVAS_FIRMRRelease32f_32fc});
}

struct Rates {
  int32_t taps, up, up_phase, down, down_phase;
  int32_t Rows() const { return (taps + up - 1) / up; }
};

// Outputs from `line`: Rows() samples from before the call, then those of the call.
template <class K>
std::vector<typename K::Sample> Polyphase(const std::vector<typename K::Tap>& taps, const Rates& rates,
                                          const std::vector<typename K::Sample>& line, int32_t iterations) {
  using Sample = typename K::Sample;
  const int64_t rows = rates.Rows(), len = int64_t{rates.up} * iterations;
  std::vector<Sample> dst(len);
  for (int64_t n = 0; n < len; ++n) {
    const int64_t shift = n * rates.down + rates.down_phase - rates.up_phase;
    const int64_t newest = (shift + rates.up) / rates.up - 1;  // of the samples of the call
    Wide<Sample> sum = {};
    for (int64_t m = newest - rows + 1; m <= newest; ++m) {
      const int64_t tap_index = shift - m * rates.up;
      const auto tap = tap_index < rates.taps ? taps[tap_index] : typename K::Tap{};
      const Sample x = line[rows + m];
      if constexpr (std::is_same_v<Sample, Orva16sc>) {
        if (n >= len / 16 * 16) {
          sum.re += std::fma(-static_cast<float>(x.im), tap.im, x.re * tap.re);
          sum.im += std::fma(static_cast<float>(x.im), tap.re, x.re * tap.im);
          continue;
        }
      }
      Fuse(tap, Widen(x), sum);
    }
    dst[n] = Narrow<Sample, NanToZero>(sum);
  }
  return dst;
}

TEST(FIRMR, IsTheDefiningSumInOrder) {
  constexpr Rates kRates[] = {{1, 1, 0, 1, 0},   {5, 1, 0, 1, 0},    {40, 1, 0, 1, 0},   {17, 1, 0, 3, 2},
                              {64, 1, 0, 4, 0},  {9, 3, 1, 1, 0},    {31, 2, 1, 3, 2},   {50, 3, 2, 2, 1},
                              {7, 40, 39, 3, 2}, {1, 100, 99, 1, 0}, {33, 7, 0, 5, 4},   {100, 5, 4, 16, 3},
                              {130, 16, 3, 1, 0}, {12, 17, 16, 40, 39}, {700, 1, 0, 1, 0}, {900, 2, 1, 3, 0}, {400, 1, 0, 130, 7},
                              {1500, 2, 0, 601, 600}, {200, 160, 5, 147, 3}};
  ForEachKind([&]<class K>(const K& kind) {
    using Sample = typename K::Sample;
    constexpr bool kFloat = std::is_same_v<Sample, Wide<Sample>>;
    for (const Rates& rates : kRates) {
      using enum Variety;
      for (Variety variety : kFloat ? std::vector{kModerate, kSpecial} : std::vector{kWide}) {
        const auto taps = RandomArray<typename K::Tap>(rates.taps, rates.taps, kFloat ? variety : Variety::kModerate);
        FIRMRState* state = nullptr;
        ASSERT_EQ(kind.init(taps.data(), rates.taps, rates.up, rates.up_phase, rates.down, rates.down_phase, &state),
                  0);
        const size_t rows = rates.Rows();
        std::vector<Sample> history(rows, Sample{});
        GuardedArray<Sample> delay(rows);
        uint64_t seed = 0;
        for (int32_t iterations : {1, 2, 5, 8, 16, 17, 40, 67}) {
          const auto samples = RandomArray<Sample>(rates.down * iterations, ++seed, variety);
          const auto line = Join(history, samples);
          const auto expected = Polyphase<K>(taps, rates, line, iterations);
          GuardedArray<Sample> src(samples, seed % 2 ? Place::kEnd : Place::kStart), dst(expected.size());
          const Sample* const before = seed == 1 ? nullptr : delay.data();
          ASSERT_EQ(kind.run(src.data(), dst.data(), iterations, state, before, delay.data()), 0);
          ASSERT_TRUE(SameBits(kind.name, expected.data(), dst.data(), expected.size(), seed))
              << rates.taps << " taps, up " << rates.up << ", down " << rates.down << ", iterations " << iterations;
          history.assign(line.end() - rows, line.end());
          ASSERT_TRUE(SameBits(kind.name, history.data(), delay.data(), rows, seed)) << "delay line";
        }
        EXPECT_EQ(kind.release(state), 0);
      }
    }
  });
}

TEST(FIRMR, NanIsZeroInTheIntegerMembers) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  FIRMRState* state = nullptr;
  ASSERT_EQ(ORVAS_FIRMRInit_32f(&nan, 1, 1, 0, 1, 0, &state), 0);
  const std::vector<Orva16s> src(17, 1);
  std::vector<Orva16s> dst(17, 7);
  ASSERT_EQ(ORVAS_FIRMR_16s(src.data(), dst.data(), 17, state, nullptr, nullptr), 0);
  EXPECT_EQ(dst, std::vector<Orva16s>(17, 0));
  ORVAS_FIRMRRelease_32f(state);
}

TEST(FIRMR, InitStatusesInTheirOrderAndFaults) {
  ForEachKind([]<class K>(const K& kind) {
    const std::vector<typename K::Tap> taps(5);
    FIRMRState* state = nullptr;
    const auto status = [&](int32_t taps_len, int32_t up, int32_t up_phase, int32_t down, int32_t down_phase) {
      FailRequest(1);  // 9 says that the sizes were accepted
      const OrvaStatus result = kind.init(taps.data(), taps_len, up, up_phase, down, down_phase, &state);
      FailRequest(0);
      return result;
    };
    CheckNulls(kind.init, taps.data(), 0, 0, 9, 0, 9, &state);
    EXPECT_EQ(status(0, 0, 9, 0, 9), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(status(5, 0, 9, 1, 9), ORVA_STS_FIRMR_FACTOR_ERR);
    EXPECT_EQ(status(5, 1, 9, 0, 9), ORVA_STS_FIRMR_FACTOR_ERR);
    EXPECT_EQ(status(5, 3, 3, 2, 0), ORVA_STS_FIRMR_PHASE_ERR);
    EXPECT_EQ(status(5, 3, 0, 2, 2), ORVA_STS_FIRMR_PHASE_ERR);
    EXPECT_EQ(status(INT32_MAX, 3, -1, 2, 0), ORVA_STS_FIRMR_PHASE_ERR);
    EXPECT_EQ(status(5, 3, 0, 2, -1), ORVA_STS_FIRMR_PHASE_ERR);

    constexpr int32_t kMost = INT32_MAX;
    for (auto [taps_len, up, down] : {std::array{1, kMost, kMost}, {1, 1, kMost}, {1, kMost, 1}, {kMost, 1, 1},
                                      {kMost, kMost, kMost}, {1, 65536, 65536}})
      EXPECT_EQ(status(taps_len, up, 0, down, 0), ORVA_STS_OVERFLOW_ERR) << taps_len << " " << up << " " << down;
    // One row must be shorter than the quotient of MAX by U+15, truncated, by the size of a sample.
    constexpr int32_t kWidest = kMost / static_cast<int32_t>(2 * sizeof(Wide<typename K::Sample>)) - 15;
    EXPECT_EQ(status(1, kWidest, 0, 1, 0), ORVA_STS_MEM_ALLOC_ERR) << kind.name;
    EXPECT_EQ(status(1, kWidest + 1, 0, 1, 0), ORVA_STS_OVERFLOW_ERR) << kind.name;
    EXPECT_EQ(state, nullptr);

    EXPECT_EQ(ForEachFault([&] {
                FIRMRState* made = nullptr;
                const OrvaStatus result = kind.init(taps.data(), 5, 3, 2, 2, 1, &made);
                EXPECT_EQ(made == nullptr, result != 0);
                kind.release(made);
                return result;
              }), 2);
  });
}

TEST(FIRMR, RunStatusesInTheirOrder) {
  ForEachKind([]<class K>(const K& kind) {
    const std::vector<typename K::Tap> taps(5);
    FIRMRState* state = nullptr;
    ASSERT_EQ(kind.init(taps.data(), 5, 3, 0, 2, 0, &state), 0);
    std::vector<typename K::Sample> src(20), dst(30);
    CheckNulls(kind.run, src.data(), dst.data(), INT32_MAX, state, nullptr, nullptr);
    EXPECT_EQ(kind.run(nullptr, dst.data(), 0, nullptr, nullptr, nullptr), ORVA_STS_NULL_PTR_ERR);
    EXPECT_EQ(kind.run(src.data(), dst.data(), 0, nullptr, nullptr, nullptr), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(kind.run(src.data(), dst.data(), INT32_MAX / 3, state, nullptr, nullptr), ORVA_STS_OVERFLOW_ERR);
    EXPECT_EQ(kind.run(src.data(), dst.data(), 10, state, nullptr, nullptr), 0);
    EXPECT_EQ(kind.release(state), 0);
    EXPECT_EQ(kind.release(nullptr), 0);
  });
}

}  // namespace
}  // namespace tzm_test
