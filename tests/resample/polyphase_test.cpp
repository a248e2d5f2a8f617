// Polyphase resampler by any factor against its defining sums, in the order of the contract.
#include <signal_tzm/resample.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "support/arguments.h"
#include "support/compare.h"
#include "support/exact.h"
#include "support/faults.h"
#include "support/guarded.h"
#include "support/random.h"

namespace tzm_test {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInfinity = std::numeric_limits<float>::infinity();

struct Filter {
  float window;
  int32_t step;
  float rollf, alpha;
};
enum class Kind { kFloat, kShort, kShortOverFloat };  // the hint 2 makes the last one

// The half filter as its table holds it, in binary64, with the guard entry.
struct Table {
  std::vector<double> entries;
  double scale = 1;
};

double I0(double x) {
  double sum = 1, term = 1;
  for (int64_t k = 1;; ++k) {
    const double before = sum;
    term *= (x / 2) * (x / 2) / (static_cast<double>(k) * static_cast<double>(k));
    sum += term;
    if (sum == before || std::isnan(sum)) return sum;
  }
}

Table MakeTable(const Filter& f, Kind kind) {
  const int64_t last = static_cast<int64_t>(std::floor(f.window * 0.5 * f.step));
  const double s = static_cast<float>(std::numbers::pi / f.step), inverse = 1.0 / I0(f.alpha);
  std::vector<double> w(last + 1);
  w[0] = f.rollf;
  for (int64_t i = 1; i <= last; ++i) {
    const double x = static_cast<double>(i) * s, sinc = std::sin(x * f.rollf) / x;
    const double q = static_cast<double>(i) * (1.0 / static_cast<double>(last));
    w[i] = (I0(f.alpha * std::sqrt(std::fma(-q, q, 1.0))) * inverse) * sinc;
  }
  double sum = 0;
  for (int64_t i = 1; i <= last; ++i)
    if (i % f.step == 0) sum += w[i];
  const double unit = 1 / (2 * sum + w[0]);
  double largest = -kInfinity, least = kInfinity;
  for (double& each : w) {
    each *= unit;
    largest = std::fmax(largest, each);
    least = std::fmin(least, each);
  }
  Table table;
  const double m = std::fmax(std::fabs(largest), std::fabs(least));
  if (kind == Kind::kShort) table.scale = static_cast<float>(m / 16383.0);
  for (double each : w) {
    if (kind == Kind::kShort) table.entries.push_back(RoundSaturate<Orva16s>(each * (16383.0 / m)));
    else table.entries.push_back(static_cast<float>(each));
  }
  table.entries.push_back(table.entries.back());
  return table;
}

double Ceil(double dividend, double divisor) {
  const double n = std::trunc(dividend / divisor);
  return n * divisor < dividend ? n + 1 : n;
}

// One half of an output; `reads` becomes the farthest sample that is read.
template <class Sample>
double Half(const Table& table, const Sample* src, int64_t first, int direction, double step, double at, double acc,
            int64_t& reads) {
  const double len = static_cast<double>(table.entries.size()) - 1;
  const int64_t n = static_cast<int64_t>(Ceil(len - at, step));
  double product = 0;
  for (int64_t m = 0; m < n; ++m) {
    const double u = std::fma(static_cast<double>(m), step, at);
    const size_t iu = static_cast<size_t>(u);
    const double f = u - static_cast<double>(iu), low = table.entries[iu];
    const double high = iu + 1 < table.entries.size() ? table.entries[iu + 1] : 0;
    const double x = src[first + direction * m];
    reads = std::max(reads, first + direction * m);
    if (m == n - 1 && n % 2 != 0) {
      acc = std::fma(x, std::fma(1 - f, low, f * high), acc);
    } else if (m % 2 == 0) {
      product = x * std::fma(f, high, (1 - f) * low);
    } else {
      acc += product + x * std::fma(f, high, (1 - f) * low);
    }
  }
  return acc;
}

template <class Sample>
struct Result {
  std::vector<Sample> dst;
  double time;
  int64_t reads = 0;
};

template <class Sample>
Result<Sample> Resample(const Filter& f, const Table& table, const Sample* src, int32_t len, double factor, float norm,
                        double time) {
  Result<Sample> result;
  const double r = 1 / factor, idx = std::floor(time), step = factor < 1 ? f.step * factor : f.step;
  const double gain = table.scale * norm * (factor < 1 ? factor : 1.0);
  const int64_t count = static_cast<int64_t>(std::ceil((len + idx - time) * factor));
  double running = time;
  for (int64_t j = 0; j < count; ++j) {
    const double tj = std::is_same_v<Sample, float> ? std::fma(static_cast<double>(j), r, time) : running;
    const int64_t p = static_cast<int64_t>(std::floor(tj));
    const double a = (tj - static_cast<double>(p)) * step;
    double acc = Half(table, src, p, -1, step, a, 0, result.reads);
    acc = gain * Half(table, src, p + 1, 1, step, step - a, acc, result.reads);
    if constexpr (std::is_same_v<Sample, float>) result.dst.push_back(static_cast<float>(acc));
    else result.dst.push_back(RoundSaturate<Orva16s>(acc));
    running += r;
    result.time = std::is_same_v<Sample, float> ? tj + r : running;
  }
  return result;
}

OrvaStatus Init(const Filter& f, Kind kind, ResamplePolyphaseState** state) {
  if (kind == Kind::kFloat) return ORVAS_ResamplePolyphaseInit_32f(f.window, f.step, f.rollf, f.alpha, 7, state);
  const int32_t hint = kind == Kind::kShortOverFloat ? 2 : 0;
  return ORVAS_ResamplePolyphaseInit_16s(f.window, f.step, f.rollf, f.alpha, hint, state);
}
template <class Sample>
using Member = OrvaStatus(const Sample*, int32_t, Sample*, double, float, double*, int32_t*, const ResamplePolyphaseState*);

OrvaStatus Run(const Orva32f* src, int32_t len, Orva32f* dst, double factor, float norm, double* time, int32_t* outLen,
               const ResamplePolyphaseState* state) {
  return ORVAS_ResamplePolyphase_32f(src, len, dst, factor, norm, time, outLen, state);
}
OrvaStatus Run(const Orva16s* src, int32_t len, Orva16s* dst, double factor, float norm, double* time, int32_t* outLen,
               const ResamplePolyphaseState* state) {
  return ORVAS_ResamplePolyphase_16s(src, len, dst, factor, norm, time, outLen, state);
}

template <class Sample>
void CompareWithDefinition(Kind kind, Variety variety) {
  constexpr Filter kFilters[] = {{16, 32, 0.9f, 5},   {64, 512, 0.95f, 9}, {0.5f, 100, 1, 1}, {3.3f, 7, 0.5f, 1},
                                 {2.01f, 1, 1, 30},   {9, 10, 0.8f, 700},  {7.7f, 64, 1e-3f, 2}};
  constexpr double kFactors[] = {1, 3, 160 / 147., 1 / 3., 0.917, 8, 10, 0.1, 1.0000001};
  uint64_t seed = 0;
  for (const Filter& f : kFilters) {
    ResamplePolyphaseState* state = nullptr;
    ASSERT_EQ(Init(f, kind, &state), 0);
    const Table table = MakeTable(f, kind);
    for (double factor : kFactors) {
      const double reach = std::ceil((f.window / 2 + 1.0 / f.step) / std::min(1.0, factor));
      for (int32_t len : {1, 2, 13, 40}) {
        for (double part : {0.0, 0.5, 0.1, 0.999999}) {
          const float norm = seed % 3 == 0 ? 1.0f : 1.37f;
          const auto samples = RandomArray<Sample>(static_cast<size_t>(2 * reach) + len + 3, ++seed, variety);
          const double time = reach + part;
          const auto expected = Resample(f, table, samples.data(), len, factor, norm, time);
          GuardedArray<Sample> src(std::vector<Sample>(samples.begin(), samples.begin() + expected.reads + 1));
          GuardedArray<Sample> dst(expected.dst.size());
          double actual_time = time;
          int32_t count = -1;
          ASSERT_EQ(Run(src.data(), len, dst.data(), factor, norm, &actual_time, &count, state), 0);
          ASSERT_EQ(static_cast<size_t>(count), expected.dst.size());
          ASSERT_EQ(actual_time, expected.time);
          ASSERT_TRUE(SameBits("ResamplePolyphase", expected.dst.data(), dst.data(), dst.size(), seed))
              << "window " << f.window << ", step " << f.step << ", factor " << factor << ", time " << time;
        }
      }
    }
    ORVAS_ResamplePolyphaseRelease_32f(state);
  }
}

TEST(ResamplePolyphase, IsTheDefiningSumInOrder) {
  CompareWithDefinition<Orva32f>(Kind::kFloat, Variety::kModerate);
  CompareWithDefinition<Orva32f>(Kind::kFloat, Variety::kSpecial);
  CompareWithDefinition<Orva16s>(Kind::kShort, Variety::kWide);
  CompareWithDefinition<Orva16s>(Kind::kShortOverFloat, Variety::kWide);
}

TEST(ResamplePolyphase, InitStatusesInTheirOrderAndFaults) {
  int dummy;
  auto* const kept = reinterpret_cast<ResamplePolyphaseState*>(&dummy);
  for (auto init : {ORVAS_ResamplePolyphaseInit_32f, ORVAS_ResamplePolyphaseInit_16s}) {
    ResamplePolyphaseState* state = kept;
    EXPECT_EQ(init(0, 0, 0, 0, 0, nullptr), ORVA_STS_NULL_PTR_ERR);
    EXPECT_EQ(init(0, 0, 0, 0, 0, &state), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(init(0.25f, 8, 0.9f, 5, 0, &state), ORVA_STS_BAD_ARG_ERR);
    EXPECT_EQ(init(kNan, 8, 0.9f, 5, 0, &state), ORVA_STS_BAD_ARG_ERR);
    for (float rollf : {0.0f, -1.0f, 1.0001f, kNan}) EXPECT_EQ(init(8, 8, rollf, 5, 0, &state), ORVA_STS_BAD_ARG_ERR);
    EXPECT_EQ(init(8, 8, 0.9f, 0.999f, 0, &state), ORVA_STS_BAD_ARG_ERR);
    EXPECT_EQ(state, kept);
    for (float window : {kInfinity, 3e38f, 2 * 268435456.0f, 450e6f}) {
      state = kept;
      EXPECT_EQ(init(window, 1, 0.9f, 5, 0, &state), ORVA_STS_BAD_ARG_ERR) << window;
      EXPECT_EQ(state, nullptr);
    }
    for (int32_t hint : {0, 2}) {
      const auto call = [&] {
        state = kept;
        const OrvaStatus status = init(std::nextafterf(0.25f, 1), 8, 1, 1, hint, &state);
        EXPECT_EQ(state == nullptr, status != 0);
        ORVAS_ResamplePolyphaseRelease_16s(state);
        return status;
      };
      EXPECT_EQ(ForEachFault(call), 1);
    }
  }
  EXPECT_EQ(ORVAS_ResamplePolyphaseRelease_32f(nullptr), 0);
  EXPECT_EQ(ORVAS_ResamplePolyphaseRelease_16s(nullptr), 0);
}

template <class Sample>
void CheckRunStatuses(Kind kind) {
  ResamplePolyphaseState* state = nullptr;
  ASSERT_EQ(Init({16, 8, 0.9f, 5}, kind, &state), 0);
  const std::vector<Sample> src(200, 1);
  std::vector<Sample> dst(100, 77);
  double time = 9;
  int32_t count = -5;
  const auto run = [&](int32_t len, double factor) {
    return Run(src.data(), len, dst.data(), factor, 1, &time, &count, state);
  };
  CheckNulls(static_cast<Member<Sample>*>(Run), src.data(), 0, dst.data(), -1.0, 1.0f, &time, &count, state);
  EXPECT_EQ(run(0, -1), ORVA_STS_SIZE_ERR);
  for (double factor : {0.0, -1.0, -0.0, double{kNan}}) EXPECT_EQ(run(10, factor), ORVA_STS_BAD_ARG_ERR);
  // The half filter of 65 entries reaches back 9 samples from a whole time, 8 from later ones; twice as far
  // at half the rate, and without end at the least.
  EXPECT_EQ(run(10, 0.5), ORVA_STS_BAD_ARG_ERR);
  EXPECT_EQ(run(10, 5e-324), ORVA_STS_BAD_ARG_ERR);
  for (double early : {8.0, 0.0, -3.5, -double{kInfinity}}) {
    time = early;
    EXPECT_EQ(run(10, 1), ORVA_STS_BAD_ARG_ERR) << early;
  }
  time = 9;
  EXPECT_EQ(run(10, 214748364.71), ORVA_STS_BAD_ARG_ERR);
  EXPECT_EQ(run(10, double{kInfinity}), ORVA_STS_BAD_ARG_ERR);
  EXPECT_EQ(count, -5);
  EXPECT_EQ(time, 9);
  // Beyond every source: no output, and one member moves on.
  time = 3e9;
  EXPECT_EQ(run(10, 0.25), 0);
  EXPECT_LT(count, 1);
  EXPECT_EQ(time, kind == Kind::kFloat ? 3e9 + 4 : 3e9);
  EXPECT_EQ(dst, std::vector<Sample>(100, 77));
  time = 8.125;
  EXPECT_EQ(run(10, 1), 0);
  EXPECT_EQ(count, 10);
  ORVAS_ResamplePolyphaseRelease_32f(state);
}

TEST(ResamplePolyphase, RunStatusesInTheirOrder) {
  CheckRunStatuses<Orva32f>(Kind::kFloat);
  CheckRunStatuses<Orva16s>(Kind::kShort);
}

TEST(ResamplePolyphase, NanIsZeroAndOverflowSaturatesInIntegers) {
  ResamplePolyphaseState* state = nullptr;
  ASSERT_EQ(Init({16, 8, 0.9f, 5}, Kind::kShort, &state), 0);
  const std::vector<Orva16s> src(40, 30000);
  for (auto [norm, expected] : {std::pair{kNan, 0}, {2.0f, 32767}, {-2.0f, -32768}}) {
    Orva16s dst[10];
    double time = 10;
    int32_t count = 0;
    ASSERT_EQ(ORVAS_ResamplePolyphase_16s(src.data(), 10, dst, 1, norm, &time, &count, state), 0);
    for (Orva16s each : dst) EXPECT_EQ(each, expected);
  }
  ORVAS_ResamplePolyphaseRelease_16s(state);
}

}  // namespace
}  // namespace tzm_test
