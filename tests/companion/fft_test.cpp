// The FFT companion: the bits of every kind of plan, split plans of any shape, and what planners refuse.
#include <gtest/gtest.h>
#include <signal_tzm/companion.h>

#include <complex>
#include <limits>
#include <string>
#include <vector>

#include "graph.h"
#include "support/compare.h"
#include "support/random.h"

namespace tzm_test {
namespace {

#define PRECISION(Name, Sample, prefix)                                 \
  struct Name {                                                        \
    using Real = Sample;                                               \
    using Complex = Sample##c;                                         \
    static constexpr auto kPlan = prefix##_plan_dft_1d;                \
    static constexpr auto kPlanForward = prefix##_plan_dft_r2c_1d;     \
    static constexpr auto kPlanInverse = prefix##_plan_dft_c2r_1d;     \
    static constexpr auto kRun = prefix##_execute_dft;                 \
    static constexpr auto kRunForward = prefix##_execute_dft_r2c;      \
    static constexpr auto kRunInverse = prefix##_execute_dft_c2r;      \
    static constexpr auto kDestroy = prefix##_destroy_plan;            \
  };
PRECISION(Single, Orva32f, tzm_fftf)
PRECISION(Double, Orva64f, tzm_fft)
#undef PRECISION

template <class P>
class Graph : public testing::Test {};
using Precisions = testing::Types<Single, Double>;
TYPED_TEST_SUITE(Graph, Precisions);

// Lengths of all kinds and of every schedule; the same graph with few lanes and with many, in one pass and in several.
// An infinity tells a product with 1 or -i from none.
TYPED_TEST(Graph, IsTheBits) {
  using P = TypeParam;
  using Real = typename P::Real;
  using Complex = typename P::Complex;
  std::vector<int32_t> lengths = {120, 127, 128, 136, 140, 152, 160, 167, 175, 179, 193, 225, 240, 243, 256, 257, 289,
                                  315, 334, 360, 480, 512, 600, 625, 729, 1000, 1009, 1024, 1155, 2048, 2197};
  for (int32_t n = 1; n <= 110; ++n) lengths.push_back(n);
  for (int32_t n : lengths) for (int infinities = 0; infinities <= (n < 170 ? 1 : 0); ++infinities) {
    const auto size = static_cast<size_t>(n), half = size / 2 + 1;
    auto numbers = RandomArray<Real>(2 * size, size), reals = RandomArray<Real>(size, size);
    auto spectrum = RandomArray<Real>(2 * half, size);
    if (infinities > 0)
      numbers[size / 4 * 2] = reals[size / 4] = spectrum[size / 8 * 2] = std::numeric_limits<Real>::infinity();
    Numbers<Real> x;
    for (size_t k = 0; k < size; ++k) x.push_back({numbers[2 * k], numbers[2 * k + 1]});
    const std::string what = std::to_string(n) + " points";
    std::vector<Real> result(2 * size + 2);
    const auto expect = [&](const auto& expected) {
      EXPECT_TRUE(SameBits(what, reinterpret_cast<const Real*>(expected.data()), result.data(),
                           expected.size() * sizeof expected[0] / sizeof(Real)));
    };
    const auto bins = [](const auto& array) {
      return reinterpret_cast<Complex*>(const_cast<Real*>(array.data()));
    };
    for (int32_t sign : {-1, 1}) {
      const auto plan = P::kPlan(n, nullptr, nullptr, sign, 0);
      P::kRun(plan, bins(numbers), bins(result));
      P::kDestroy(plan);
      expect(sign < 0 ? Forward(x) : Inverse(x));
    }
    const auto forward = P::kPlanForward(n, nullptr, nullptr, 0), inverse = P::kPlanInverse(n, nullptr, nullptr, 0);
    P::kRunForward(forward, reals.data(), bins(result));
    expect(RealForward(reals));
    x.resize(half);
    for (size_t k = 0; k < half; ++k) x[k] = {spectrum[2 * k], spectrum[2 * k + 1]};
    P::kRunInverse(inverse, bins(spectrum), result.data());
    expect(RealInverse(x, size));
    P::kDestroy(forward);
    P::kDestroy(inverse);
  }
}

// Two howmany dimensions around a two-dimensional transform, every stride different, so that gaps
// between the outputs would show a stray write.
TEST(Fft, SplitPlansOfAnyShape) {
  using Wide = std::complex<long double>;
  const tzm_fft_iodim dims[] = {{3, 10, 2}, {5, 2, 6}}, howmany[] = {{2, 30, 70}, {2, 1, 1}};
  const auto plan = tzm_fftf_plan_guru_split_dft(2, dims, 2, howmany, nullptr, nullptr, nullptr, nullptr, 0);
  ASSERT_NE(plan, nullptr);
  std::vector<Orva32f> re(60), im(60), outRe(150, 9), outIm(150, 9);
  for (int k = 0; k < 60; ++k) re[k] = std::sin(k * k + 1.0), im[k] = std::cos(3.0 * k);
  tzm_fftf_execute_split_dft(plan, re.data(), im.data(), outRe.data(), outIm.data());
  tzm_fftf_destroy_plan(plan);
  std::vector<Wide> expected(150, {9, 9});
  const auto turn = [](int k, int n) { return std::polar(1.0L, -2 * 3.14159265358979323846264338327950288L * k / n); };
  for (int a : {0, 1}) for (int b : {0, 1}) for (int u : {0, 1, 2}) for (int v : {0, 1, 2, 3, 4}) {
    Wide& sum = expected[70 * a + b + 2 * u + 6 * v] = 0;
    for (int j : {0, 1, 2}) for (int k : {0, 1, 2, 3, 4}) {
      const int from = 30 * a + b + 10 * j + 2 * k;
      sum += Wide(re[from], im[from]) * turn(j * u, 3) * turn(k * v, 5);
    }
  }
  for (int k = 0; k < 150; ++k)
    EXPECT_LE(std::abs(Wide(outRe[k], outIm[k]) - expected[k]), 16 * std::numeric_limits<Orva32f>::epsilon()) << k;
}

TEST(Fft, RefusesBadArguments) {
  const tzm_fft_iodim good{8, 1, 1}, none{0, 1, 1}, negative{-1, 1, 1}, huge[] = {{1 << 30, 1, 1}, {1 << 30, 1, 1}};
  for (int n : {0, -1}) {
    EXPECT_EQ(tzm_fft_plan_dft_1d(n, nullptr, nullptr, -1, 0), nullptr);
    EXPECT_EQ(tzm_fft_plan_dft_r2c_1d(n, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(tzm_fft_plan_dft_c2r_1d(n, nullptr, nullptr, 0), nullptr);
  }
  EXPECT_EQ(tzm_fft_plan_dft_1d(8, nullptr, nullptr, 0, 0), nullptr);
  struct { int rank; const tzm_fft_iodim* dims; int howmanyRank; const tzm_fft_iodim* howmany; } shapes[] = {
      {-1, &good, 0, nullptr}, {1, nullptr, 0, nullptr}, {1, &none, 0, nullptr}, {1, &negative, 0, nullptr},
      {1, &good, -1, nullptr}, {1, &good, 1, nullptr}, {1, &good, 1, &none}, {2, huge, 0, nullptr}};
  for (const auto& [rank, dims, howmanyRank, howmany] : shapes)
    EXPECT_EQ(nullptr, tzm_fft_plan_guru_split_dft(rank, dims, howmanyRank, howmany, nullptr, nullptr, nullptr, nullptr,
                                                   0));
  tzm_fft_destroy_plan(nullptr);
}

}  // namespace
}  // namespace tzm_test
