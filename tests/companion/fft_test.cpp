// The FFT companion where the library does not lead: split plans of any shape, and what planners refuse. Both
// precisions are one template.
#include <gtest/gtest.h>
#include <signal_tzm/companion.h>

#include <complex>
#include <limits>
#include <vector>

namespace {

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
