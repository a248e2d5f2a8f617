// Polyphase resampler by any factor against its defining sums, in the order of the contract.
#include <signal_tzm/resample.h>

#include <cmath>
#include <numbers>

#include "support/exact.h"
#include "support/testing.h"

namespace tzm_test::polyphase_test {

struct Filter {
  float window;
  int32_t step;
  float rollf, alpha;
  OrvaStatus Init(auto init, int32_t hint, ResamplePolyphaseState** state) const {
    return init(window, step, rollf, alpha, hint, state);
  }
};

double I0(double x) {
  double sum = 1, term = 1, before = 0;
  for (double k = 1; sum != before; ++k) {
    before = sum;
    sum += term *= (x / 2) * (x / 2) / (k * k);
  }
  return sum;
}

// The half filter as its table holds it, in binary64, with the guard entry and a zero behind it.
std::vector<double> MakeTable(const Filter& f, bool shorts, double& scale) {
  const int64_t last = static_cast<int64_t>(f.window * 0.5 * f.step);
  const double s = static_cast<float>(std::numbers::pi / f.step), inverse = 1.0 / I0(f.alpha);
  std::vector<double> w(last + 1, f.rollf), table;
  double sum = 0, largest = 0;
  for (int64_t i = 1; i <= last; ++i) {
    const double x = static_cast<double>(i) * s, q = static_cast<double>(i) * (1.0 / static_cast<double>(last));
    w[i] = (I0(f.alpha * std::sqrt(std::fma(-q, q, 1.0))) * inverse) * (std::sin(x * f.rollf) / x);
    if (i % f.step == 0) sum += w[i];
  }
  const double unit = 1 / (2 * sum + w[0]);
  for (double& each : w) largest = std::fmax(largest, std::fabs(each *= unit));
  scale = shorts ? static_cast<float>(largest / 16383.0) : 1;
  for (double each : w)
    table.push_back(shorts ? RoundSaturate<Orva16s>(each * (16383.0 / largest)) : static_cast<float>(each));
  table.insert(table.end(), {table.back(), 0.0});
  return table;
}

// Adds one half of an output to `acc`; the index of the last sample that it reads.
template <class Sample>
int64_t AddHalf(const std::vector<double>& table, const Sample* src, int64_t first, int64_t direction, double step,
                double at, double& acc) {
  const double length = static_cast<double>(table.size()) - 2 - at, whole = std::trunc(length / step);
  const int64_t n = static_cast<int64_t>(whole * step < length ? whole + 1 : whole);
  double product = 0;
  for (int64_t m = 0; m < n; ++m) {
    const double u = std::fma(static_cast<double>(m), step, at), f = u - std::trunc(u), x = src[first + direction * m];
    const double low = table[static_cast<size_t>(u)], high = table[static_cast<size_t>(u) + 1];
    if (m == n - 1 && n % 2 != 0) acc = std::fma(x, std::fma(1 - f, low, f * high), acc);
    else if (m % 2 == 0) product = x * std::fma(f, high, (1 - f) * low);
    else acc += product + x * std::fma(f, high, (1 - f) * low);
  }
  return n > 0 ? first + direction * (n - 1) : 0;
}

template <class Sample>
void CompareWithDefinition(auto init, auto run, int32_t hint, Variety variety) {
  constexpr bool kFloat = std::is_same_v<Sample, Orva32f>;
  uint64_t seed = 0;
  for (const Filter& f : {Filter{16, 32, 0.9f, 5}, {64, 512, 0.95f, 9}, {0.5f, 100, 1, 1}, {3.3f, 7, 0.5f, 1},
                          {2.01f, 1, 1, 30}, {9, 10, 0.8f, 700}, {7.7f, 64, 1e-3f, 2}, {200, 7, 0.9f, 5}}) {
    ResamplePolyphaseState* state = nullptr;
    ASSERT_EQ(f.Init(init, hint, &state), 0);
    double scale;
    const auto table = MakeTable(f, !kFloat && hint != 2, scale);
    // From the last of the starts, in 7 steps, entries are 2^-46 further on, and distant taps round up to them.
    for (double part : {0.0, 0.5, 0.1, 0.999999, 0x249249249249p-46}) for (int32_t len : {1, 2, 13, 40})
      for (double factor : {1.0, 3.0, 160 / 147., 1 / 3., 0.917, 8.0, 10.0, 0.1, 1.0000001}) {
        const double lower = std::min(1.0, factor), step = f.step * lower, interval = 1 / factor;
        const double reach = std::ceil((f.window / 2 + 1.0 / f.step) / lower), start = reach + part;
        const float norm = std::array{1.0f, 1.37f, -90.0f, NAN}[++seed % (kFloat ? 2 : 4)];
        const auto samples = RandomArray<Sample>(static_cast<size_t>(2 * reach) + len + 3, seed, variety);
        std::vector<Sample> expected(static_cast<size_t>(std::ceil((len + reach - start) * factor)));
        double running = start, end = 0;
        int64_t last = 0;
        for (size_t j = 0; j < expected.size(); ++j, running += interval) {
          const double t = kFloat ? std::fma(static_cast<double>(j), interval, start) : running, p = std::floor(t);
          const int64_t here = static_cast<int64_t>(p);
          double acc = 0;
          AddHalf(table, samples.data(), here, -1, step, (t - p) * step, acc);
          last = std::max({last, here, AddHalf(table, samples.data(), here + 1, 1, step, step - (t - p) * step, acc)});
          acc *= scale * norm * lower;
          if constexpr (kFloat) expected[j] = static_cast<float>(acc);
          else expected[j] = RoundSaturate<Orva16s>(acc);
          end = t + interval;
        }
        const Place place = seed % 8 < 4 ? Place::kEnd : Place::kStart;
        const GuardedArray<Sample> src(std::vector<Sample>(samples.begin(), samples.begin() + last + 1), place);
        GuardedArray<Sample> dst(expected.size(), place);
        double time = start;
        int32_t count = -1;
        ASSERT_EQ(run(src.data(), len, dst.data(), factor, norm, &time, &count, state), 0);
        ASSERT_EQ(static_cast<size_t>(count), expected.size());
        ASSERT_EQ(time, end);
        ASSERT_TRUE(SameBits("ResamplePolyphase", expected.data(), dst.data(), dst.size(), seed))
            << "window " << f.window << ", step " << f.step << ", factor " << factor << ", time " << start;
      }
    ORVAS_ResamplePolyphaseRelease_32f(state);
  }
}

constexpr auto kInit32f = ORVAS_ResamplePolyphaseInit_32f;
constexpr auto kInit16s = ORVAS_ResamplePolyphaseInit_16s;

TEST(ResamplePolyphase, IsTheDefiningSumInOrder) {
  CompareWithDefinition<Orva32f>(kInit32f, ORVAS_ResamplePolyphase_32f, 7, Variety::kModerate);
  CompareWithDefinition<Orva32f>(kInit32f, ORVAS_ResamplePolyphase_32f, 0, Variety::kSpecial);
  CompareWithDefinition<Orva16s>(kInit16s, ORVAS_ResamplePolyphase_16s, 0, Variety::kWide);
  CompareWithDefinition<Orva16s>(kInit16s, ORVAS_ResamplePolyphase_16s, 2, Variety::kWide);
}

template <class Sample>
void CheckStatuses(auto init, auto member) {
  auto* const kept = reinterpret_cast<ResamplePolyphaseState*>(8);
  ResamplePolyphaseState* state = kept;
  EXPECT_EQ(init(0, 0, 0, 0, 0, &state), ORVA_STS_SIZE_ERR);
  for (const Filter& f : {Filter{0.25f, 8, 0.9f, 5}, {NAN, 8, 0.9f, 5}, {8, 8, 0, 5}, {8, 8, -1, 5}, {8, 8, 1.0001f, 5},
                          {8, 8, NAN, 5}, {8, 8, 0.9f, 0.999f}})
    EXPECT_TRUE(f.Init(init, 0, &state) == ORVA_STS_BAD_ARG_ERR && state == kept) << f.window << " " << f.rollf;
  for (float window : {INFINITY, 3e38f, 2 * 268435456.0f, 450e6f})  // tables beyond 31 bits
    EXPECT_TRUE(init(window, 1, 0.9f, 5, 0, &(state = kept)) == ORVA_STS_BAD_ARG_ERR && state == nullptr) << window;
  const auto least = [=](auto** made) { return init(std::nextafterf(0.25f, 1), 8, 1, 1, 0, made); };
  EXPECT_EQ(ForEachFaultOfInit(least, ORVAS_ResamplePolyphaseRelease_16s, true), 1);

  // The half filter of 65 entries reaches back 9 samples from a whole time, 8 from later ones; at half rate twice that.
  ASSERT_EQ(init(16, 8, 0.9f, 5, 0, &state), 0);
  const std::vector<Sample> src(200, 1);
  std::vector<Sample> dst(100, 77);
  double time = 9;
  int32_t count = -5;
  const auto run = [&](int32_t len, double factor, double at) {
    const OrvaStatus status = member(src.data(), len, dst.data(), factor, 1, &(time = at), &count, state);
    EXPECT_TRUE(status == 0 || (time == at && count == -5));
    return status;
  };
  EXPECT_EQ(run(0, -1, 9), ORVA_STS_SIZE_ERR);
  for (double factor : {0.0, -1.0, -0.0, double{NAN}, 0.5, 5e-324, 214748364.71, double{INFINITY}})
    EXPECT_EQ(run(10, factor, 9), ORVA_STS_BAD_ARG_ERR) << factor;
  for (double early : {8.0, 0.0, -3.5, -double{INFINITY}}) EXPECT_EQ(run(10, 1, early), ORVA_STS_BAD_ARG_ERR) << early;
  EXPECT_EQ(run(10, 0.25, 3e9), 0);  // beyond every source: no output, and one member moves on
  EXPECT_LT(count, 1);
  EXPECT_EQ(time, std::is_integral_v<Sample> ? 3e9 : 3e9 + 4);
  EXPECT_EQ(dst, std::vector<Sample>(100, 77));
  EXPECT_EQ(run(10, 1, 8.125), 0);
  EXPECT_EQ(count, 10);
  ORVAS_ResamplePolyphaseRelease_32f(state);
}

TEST(ResamplePolyphase, StatusesInTheirOrderAndFaults) {
  CheckStatuses<Orva32f>(kInit32f, ORVAS_ResamplePolyphase_32f);
  CheckStatuses<Orva16s>(kInit16s, ORVAS_ResamplePolyphase_16s);
}

}  // namespace tzm_test::polyphase_test
