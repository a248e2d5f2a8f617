// Single-rate FIR filter: the direct route to the bit, the FFT route against exact sums, delay lines,
// statuses, failures.
#include <signal_tzm/fir.h>

#include <gtest/gtest.h>
#include <signal_tzm/reduce.h>

#include <algorithm>
#include <complex>
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
  OrvaStatus (*init)(const Tap*, int32_t, int32_t, int32_t, FIRSRState**);
  OrvaStatus (*run)(const Sample*, Sample*, int32_t, FIRSRState*, const Sample*, Sample*);
  OrvaStatus (*release)(FIRSRState*);
  OrvaStatus (*dot)(const Tap*, const Sample*, int32_t, Sample*);
  int32_t block;
};

template <class Test>
void ForEachKind(Test test) {
  test(Kind<Orva32f, Orva32f>{"FIRSR_32f", ORVAS_FIRSRInit_32f, ORVAS_FIRSR_32f, ORVAS_FIRSRRelease_32f,
                              ORVAS_DotProd_32f, 16});
  test(Kind<Orva32f, Orva16s>{"FIRSR_16s", ORVAS_FIRSRInit_32f, ORVAS_FIRSR_16s, ORVAS_FIRSRRelease_32f, nullptr, 16});
  test(Kind<Orva64f, Orva64f>{"FIRSR_64f", ORVAS_FIRSRInit_64f, ORVAS_FIRSR_64f, ORVAS_FIRSRRelease_64f,
                              ORVAS_DotProd_64f, 8});
  test(Kind<Orva32fc, Orva32fc>{"FIRSR_32fc", ORVAS_FIRSRInit_32fc, ORVAS_FIRSR_32fc, ORVAS_FIRSRRelease_32fc,
                                ORVAS_DotProd_32fc, 16});
  test(Kind<Orva32fc, Orva16sc>{"FIRSR_16sc", ORVAS_FIRSRInit_32fc, ORVAS_FIRSR_16sc, ORVAS_FIRSRRelease_32fc,
                                nullptr, 16});
  test(Kind<Orva64fc, Orva64fc>{"FIRSR_64fc", ORVAS_FIRSRInit_64fc, ORVAS_FIRSR_64fc, ORVAS_FIRSRRelease_64fc,
                                ORVAS_DotProd_64fc, 8});
  test(Kind<Orva32f, Orva32fc>{"FIRSR32f_32fc", ORVAS_FIRSRInit32f_32fc, ORVAS_FIRSR32f_32fc,
                               ORVAS_FIRSRRelease32f_32fc, ORVAS_DotProd_32f32fc, 16});
}

// The tail of the 16-bit members.
Orva16s Tail(const std::vector<Orva32f>& reversed, const Orva16s* x) {
  float sum = 0;
  for (size_t j = 0; j < reversed.size(); ++j) sum = std::fma(reversed[j], static_cast<float>(x[j]), sum);
  return NanBySign(sum);
}
Orva16sc Tail(const std::vector<Orva32fc>& reversed, const Orva16sc* x) {
  Orva32fc sum = {0, 0};
  for (size_t j = 0; j < reversed.size(); ++j) {
    const auto [a, b] = reversed[j];
    const float re = x[j].re, im = x[j].im;
    sum.re += std::fma(-b, im, a * re);
    sum.im += std::fma(b, re, a * im);
  }
  return {NanBySign(sum.re), NanBySign(sum.im)};
}

// What a direct run gives; line[n] is T-1 samples older than output n.
template <class K>
std::vector<typename K::Sample> Direct(const K& kind, std::vector<typename K::Tap> reversed,
                                       const std::vector<typename K::Sample>& line) {
  using Sample = typename K::Sample;
  const size_t len = line.size() - reversed.size() + 1, body = len - len % kind.block;
  std::vector<Sample> dst(len);
  for (size_t n = 0; n < len; ++n) {
    if (n < body) {
      Wide<Sample> sum = {};
      for (size_t j = 0; j < reversed.size(); ++j) Fuse(reversed[j], Widen(line[n + j]), sum);
      dst[n] = Narrow<Sample, NanToZero>(sum);
    } else if constexpr (!std::is_same_v<Sample, Wide<Sample>>) {
      dst[n] = Tail(reversed, &line[n]);
    } else {
      EXPECT_EQ(kind.dot(reversed.data(), &line[n], static_cast<int32_t>(reversed.size()), &dst[n]), 0);
    }
  }
  return dst;
}

template <class T>
std::vector<T> Reversed(std::vector<T> taps) {
  std::reverse(taps.begin(), taps.end());
  return taps;
}

// Pieces of all lengths, each with the delay line of the one before, in place where that works.
TEST(FIRSR, DirectRouteIsTheChainThenTheDotProduct) {
  ForEachKind([]<class K>(const K& kind) {
    using Sample = typename K::Sample;
    constexpr bool kFloat = std::is_same_v<Sample, Wide<Sample>>;
    constexpr int32_t kLengths[] = {1, 7, 8, 9, 15, 16, 17, 31, 33, 48, 64, 65, 100, 127, 128, 145, 200, 257, 300};
    for (int32_t taps_len : {1, 2, 3, 8, 15, 16, 32, 33, 40, 67, 130}) {
      using enum Variety;
      for (Variety variety : kFloat ? std::vector{kModerate, kSpecial} : std::vector{kWide}) {
        const auto taps = RandomArray<typename K::Tap>(taps_len, taps_len, kFloat ? variety : Variety::kModerate);
        FIRSRState* state = nullptr;
        ASSERT_EQ(kind.init(taps.data(), taps_len, 300, 1, &state), 0);
        std::vector<Sample> history(taps_len - 1, Sample{});
        GuardedArray<Sample> delay(taps_len - 1);
        uint64_t seed = 0;
        for (int32_t len : kLengths) {
          const auto samples = RandomArray<Sample>(len, ++seed, variety);
          const auto line = Join(history, samples);
          const auto expected = Direct(kind, Reversed(taps), line);
          GuardedArray<Sample> src(samples), dst(len);
          const bool in_place = kFloat && seed % 2 == 0;
          Sample* const out = in_place ? src.data() : dst.data();
          ASSERT_EQ(kind.run(src.data(), out, len, state, seed == 1 ? nullptr : delay.data(), delay.data()), 0);
          ASSERT_TRUE(SameBits(kind.name, expected.data(), out, len, seed)) << taps_len << " taps, length " << len;
          history.assign(line.end() - (taps_len - 1), line.end());
          ASSERT_TRUE(SameBits(kind.name, history.data(), delay.data(), history.size(), seed)) << "delay line";
        }
        EXPECT_EQ(kind.release(state), 0);
      }
    }
  });
}

// A NaN is 0 in a block and at the end of its sign in the tail, as AArch64 makes it.
TEST(FIRSR, NanOfTheIntegerMembersDependsOnItsPlace) {
  const float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
  struct { std::vector<float> taps; Orva16s tail; } cases[] = {
      {{1, nan}, 32767}, {{-nan, 1}, -32768}, {{inf, -inf}, 32767}, {{nan, 1, -nan}, -32768},
      {{-nan, inf, -inf}, 32767}};
  for (const auto& [taps, tail] : cases) {
    const int32_t taps_len = static_cast<int32_t>(taps.size());
    const std::vector<Orva16s> before(taps_len - 1, 1), src(17, 1);
    std::vector<Orva16s> expected(17, 0), dst(17);
    expected[16] = tail;
    FIRSRState* state = nullptr;
    ASSERT_EQ(ORVAS_FIRSRInit_32f(taps.data(), taps_len, 17, 1, &state), 0);
    ASSERT_EQ(ORVAS_FIRSR_16s(src.data(), dst.data(), 17, state, before.data(), nullptr), 0);
    EXPECT_EQ(dst, expected);
    ORVAS_FIRSRRelease_32f(state);

    std::vector<Orva32fc> complex_taps;
    for (float tap : taps) complex_taps.push_back({tap, 0});
    const std::vector<Orva16sc> complex_before(taps_len - 1, {1, 1}), complex_src(17, {1, 1});
    std::vector<Orva16sc> complex_dst(17);
    ASSERT_EQ(ORVAS_FIRSRInit_32fc(complex_taps.data(), taps_len, 17, 1, &state), 0);
    ASSERT_EQ(ORVAS_FIRSR_16sc(complex_src.data(), complex_dst.data(), 17, state, complex_before.data(), nullptr), 0);
    EXPECT_EQ(complex_dst[15].re, 0);
    EXPECT_EQ(complex_dst[16].re, tail);
    EXPECT_EQ(complex_dst[16].im, tail);
    ORVAS_FIRSRRelease_32fc(state);
  }
}

template <class T>
std::complex<long double> Exact(T x) {
  if constexpr (std::is_arithmetic_v<T>) return static_cast<long double>(x);
  else return {static_cast<long double>(x.re), static_cast<long double>(x.im)};
}

// The FFT route gives the exact sums within the error of its transforms, for pieces shorter and longer
// than a step; the largest length decides between the two transform lengths.
TEST(FIRSR, FftRouteConvolves) {
  ForEachKind([]<class K>(const K& kind) {
    using Sample = typename K::Sample;
    constexpr bool kFloat = std::is_same_v<Sample, Wide<Sample>>;
    constexpr bool kBinary64 = std::is_same_v<Sample, Orva64f> || std::is_same_v<Sample, Orva64fc>;
    const long double epsilon = kBinary64 ? 0x1p-52L : 0x1p-23L;
    for (int32_t taps_len : {1, 2, 5, 16, 33, 100}) {
      for (int32_t max_len : {1, 1000}) {
        auto taps = RandomArray<typename K::Tap>(taps_len, taps_len);
        FIRSRState* state = nullptr;
        ASSERT_EQ(kind.init(taps.data(), taps_len, max_len, 2, &state), 0);
        long double tap_sum = 0;
        for (const auto& tap : taps) tap_sum += std::abs(Exact(tap));
        std::vector<Sample> history(taps_len - 1, Sample{});
        GuardedArray<Sample> delay(taps_len - 1);
        uint64_t seed = 0;
        for (int32_t len : {1, 3, 16, 50, 257, 1000}) {
          const auto samples = RandomArray<Sample>(len, ++seed);
          const auto line = Join(history, samples);
          GuardedArray<Sample> src(samples), dst(len);
          ASSERT_EQ(kind.run(src.data(), dst.data(), len, state, seed == 1 ? nullptr : delay.data(), delay.data()), 0);
          long double most = 0;
          for (const Sample& x : line) most = std::max(most, std::abs(Exact(x)));
          const long double bound = 100 * epsilon * tap_sum * most + (kFloat ? 0 : 0.5L);
          for (int32_t n = 0; n < len; ++n) {
            std::complex<long double> sum = 0;
            for (int32_t i = 0; i < taps_len; ++i) sum += Exact(taps[i]) * Exact(line[n + taps_len - 1 - i]);
            if (!kFloat) {
              sum = {std::clamp(sum.real(), -32768.0L, 32767.0L), std::clamp(sum.imag(), -32768.0L, 32767.0L)};
            }
            const auto error = Exact(dst[n]) - sum;
            ASSERT_LE(std::max(std::abs(error.real()), std::abs(error.imag())), bound)
                << kind.name << ", " << taps_len << " taps, output " << n << " of " << len;
          }
          history.assign(line.end() - (taps_len - 1), line.end());
          ASSERT_TRUE(SameBits(kind.name, history.data(), delay.data(), history.size(), seed)) << "delay line";
        }
        EXPECT_EQ(kind.release(state), 0);
      }
    }
  });
}

// On the FFT route every output of a 16-bit member rounds like the tail.
TEST(FIRSR, FftRouteRoundsNanBySign) {
  const std::vector<float> taps = {std::numeric_limits<float>::quiet_NaN(), 1};
  FIRSRState* state = nullptr;
  ASSERT_EQ(ORVAS_FIRSRInit_32f(taps.data(), 2, 40, 2, &state), 0);
  const std::vector<Orva16s> src(40, 1);
  std::vector<Orva16s> dst(40);
  ASSERT_EQ(ORVAS_FIRSR_16s(src.data(), dst.data(), 40, state, nullptr, nullptr), 0);
  for (Orva16s y : dst) EXPECT_TRUE(y == 32767 || y == -32768) << y;
  ORVAS_FIRSRRelease_32f(state);
}

// The kind a request gets shows in its number: two blocks, and two plans on the FFT route.
TEST(FIRSR, InitChoosesTheRouteAndGivesBackWhatItTook) {
  ForEachKind([]<class K>(const K& kind) {
    const auto requests = [&](int32_t taps_len, int32_t max_len, int32_t algorithm) {
      const auto taps = RandomArray<typename K::Tap>(taps_len, 1);
      return ForEachFault([&] {
        FIRSRState* state = nullptr;
        const OrvaStatus status = kind.init(taps.data(), taps_len, max_len, algorithm, &state);
        EXPECT_EQ(state == nullptr, status != 0);
        kind.release(state);
        return status;
      });
    };
    const int32_t limit = sizeof(typename K::Tap) == sizeof(Wide<typename K::Sample>) &&
                                  std::is_floating_point_v<typename K::Tap> ? 95 : 31;
    EXPECT_EQ(requests(limit, 5120, 0), 2) << kind.name;
    EXPECT_EQ(requests(limit + 1, 5119, 0), 2) << kind.name;
    EXPECT_EQ(requests(limit + 1, 5120, 0), 4) << kind.name;
    EXPECT_EQ(requests(limit + 1, 5120, 1), 2) << kind.name;
    EXPECT_EQ(requests(1, 1, 2), 4) << kind.name;
  });
}

TEST(FIRSR, SizesAtTheLimit) {
  ForEachKind([]<class K>(const K& kind) {
    const typename K::Tap tap = {};
    // With every request refused, 9 says that the sizes were accepted.
    const auto status = [&](int32_t taps_len, int32_t max_len, int32_t algorithm) {
      FIRSRState* state = nullptr;
      FailRequest(1);
      const OrvaStatus result = kind.init(&tap, taps_len, max_len, algorithm, &state);
      FailRequest(0);
      return result;
    };
    constexpr int32_t kMostTaps = 536870911;
    EXPECT_EQ(status(kMostTaps, 1, 0), ORVA_STS_OVERFLOW_ERR);
    EXPECT_EQ(status(INT32_MAX, 0, 7), ORVA_STS_OVERFLOW_ERR);
    EXPECT_EQ(status(1, kMostTaps - 1, 2), ORVA_STS_OVERFLOW_ERR);
    EXPECT_EQ(status(1, INT32_MAX, 2), ORVA_STS_OVERFLOW_ERR);
    EXPECT_EQ(status(1, kMostTaps - 2, 2), ORVA_STS_MEM_ALLOC_ERR);
    const bool wide = std::is_same_v<typename K::Tap, Orva64f> || std::is_same_v<typename K::Tap, Orva64fc>;
    const int32_t most_points = wide ? 1 << 24 : 1 << 25;  // the largest powers of two within the limit
    EXPECT_EQ(status(most_points / 2, 1, 2), ORVA_STS_MEM_ALLOC_ERR);
    EXPECT_EQ(status(most_points / 2 + 1, 1, 2), ORVA_STS_OVERFLOW_ERR);
    EXPECT_EQ(status(most_points / 2, most_points / 2 + 2, 2), ORVA_STS_OVERFLOW_ERR);  // now four times
    EXPECT_EQ(status(most_points / 2 + 1, 6000, 0), ORVA_STS_MEM_ALLOC_ERR);  // falls back
    const int32_t most = sizeof(tap) == 4 ? 268435446 : sizeof(tap) == 8 ? 134217719 : 67108856;
    EXPECT_EQ(status(10, most - 10, 1), ORVA_STS_MEM_ALLOC_ERR) << kind.name;
    EXPECT_EQ(status(10, most - 9, 1), ORVA_STS_OVERFLOW_ERR) << kind.name;
  });
}

TEST(FIRSR, StatusesInTheirOrder) {
  ForEachKind([]<class K>(const K& kind) {
    const auto taps = RandomArray<typename K::Tap>(5, 1);
    FIRSRState* state = nullptr;
    CheckNulls(kind.init, taps.data(), 0, 0, 7, &state);
    EXPECT_EQ(kind.init(taps.data(), 0, 0, 7, &state), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(kind.init(taps.data(), 5, 0, 7, &state), ORVA_STS_SIZE_ERR);
    for (int32_t algorithm : {-1, 3})
      EXPECT_EQ(kind.init(taps.data(), 5, INT32_MAX, algorithm, &state), ORVA_STS_FIR_ALG_ERR);
    EXPECT_EQ(state, nullptr);
    ASSERT_EQ(kind.init(taps.data(), 5, 10, 0, &state), 0);
    std::vector<typename K::Sample> src(10), dst(10);
    CheckNulls(kind.run, src.data(), dst.data(), 10, state, nullptr, nullptr);
    EXPECT_EQ(kind.run(src.data(), nullptr, 0, nullptr, nullptr, nullptr), ORVA_STS_NULL_PTR_ERR);
    EXPECT_EQ(kind.run(src.data(), dst.data(), 0, nullptr, nullptr, nullptr), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(kind.release(state), 0);
    EXPECT_EQ(kind.release(nullptr), 0);
  });
}

}  // namespace
}  // namespace tzm_test
