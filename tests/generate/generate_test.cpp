// Gaussian noise: a restatement on a generator of its own, and the life of a state. The first checks of a tone.
#include <signal_tzm/elementary.h>
#include <signal_tzm/generate.h>

#include <cmath>

#include "support/testing.h"

namespace tzm_test::generate_test {

// The system's 48-bit linear congruential generator.
class Uniform {
 public:
  explicit Uniform(uint32_t seed) : x_(uint64_t{seed} << 16 | 0x330e) {}
  double Next() {
    x_ = (x_ * 0x5deece66d + 0xb) & 0xffffffffffff;
    return static_cast<double>(x_) * 0x1p-48;
  }

 private:
  uint64_t x_;
};

float Log10(float x) { float y; ORVAS_Log10_32f(&x, &y, 1); return y; }
double Log10(double x) { double y; ORVAS_Log10_64f(&x, &y, 1); return y; }

// Blocks, in the arithmetic Work, take both numbers of a point and the common logarithm; integers saturate. The tail,
// in binary64, takes the first number and the natural logarithm; integers wrap.
template <class T>
std::vector<T> Noise(size_t len, T mean, T deviation, uint32_t seed) {
  using Work = std::conditional_t<std::is_same_v<T, double>, double, float>;
  const size_t block = std::is_same_v<T, double> ? 4 : 8, body = len - len % block;
  Uniform uniform(seed);
  std::vector<T> noise;
  while (noise.size() < len) {
    const Work a = static_cast<Work>(uniform.Next()), b = static_cast<Work>(uniform.Next());
    const Work u = std::fma(a, Work(2), Work(-1)), v = std::fma(b, Work(2), Work(-1)), s = std::fma(u, u, v * v);
    if (s >= 1 || s == 0) continue;
    if (noise.size() < body) {
      for (Work x : {u, v}) {
        Work y = std::fma(x * std::sqrt(Log10(s) * Work(-2) / s), Work(deviation), Work(mean));
        using Limits = std::numeric_limits<T>;
        if (std::is_integral_v<T>) y = std::clamp<Work>(std::trunc(y), Limits::min(), Limits::max());
        noise.push_back(static_cast<T>(y));
      }
    } else {
      const double x = u * std::sqrt(std::log(static_cast<double>(s)) * -2.0 / s);
      const double y = std::fma(x, static_cast<double>(deviation), static_cast<double>(mean));
      if constexpr (std::is_integral_v<T>)
        noise.push_back(static_cast<T>(std::is_unsigned_v<T> && y < 0 ? 0 : static_cast<int64_t>(y)));
      else noise.push_back(static_cast<T>(y));
    }
  }
  return noise;
}

// Integers wide enough that blocks saturate and tails wrap.
template <class T>
void Check(OrvaStatus (*init)(OrvaRandGaussState**, T, T, uint32_t),
           OrvaStatus (*generate)(T*, int32_t, const OrvaRandGaussState*), OrvaStatus (*release)(OrvaRandGaussState*),
           std::initializer_list<std::pair<T, T>> parameters) {
  OrvaRandGaussState* state = nullptr;
  for (int len = 1; len < 60; ++len)
    for (auto [mean, deviation] : parameters)
      for (uint32_t seed : {1u, 77u, 0xffffff00u + static_cast<uint32_t>(len)}) {
        ASSERT_EQ(init(&state, mean, deviation, seed), ORVA_STS_NO_ERR);
        const auto expected = Noise(static_cast<size_t>(len), mean, deviation, seed);
        for (int call = 0; call < 2; ++call) {
          GuardedArray<T> dst(expected.size());
          EXPECT_EQ(generate(dst.data(), len, state), ORVA_STS_NO_ERR);
          ASSERT_TRUE(SameBits("noise", expected.data(), dst.data(), dst.size(), seed)) << "call " << call;
        }
        EXPECT_EQ(release(state), ORVA_STS_NO_ERR);
      }
  EXPECT_EQ(ForEachFaultOfInit([=](auto** made) { return init(made, 1, 1, 5); }, release), 1);
  ASSERT_EQ(init(&state, 1, 1, 5), ORVA_STS_NO_ERR);
  T x = 99;
  EXPECT_EQ(generate(&x, 0, state), ORVA_STS_SIZE_ERR);
  EXPECT_EQ(x, 99);
  EXPECT_EQ(release(state), ORVA_STS_NO_ERR);
}

#define GENERATOR(type) ORVAS_RandGaussInit_##type, ORVAS_RandGauss_##type, ORVAS_RandGaussRelease_##type
TEST(Gaussian, 8u) { Check<Orva8u>(GENERATOR(8u), {{100, 20}, {250, 100}, {3, 200}, {7, 0}}); }
TEST(Gaussian, 16s) { Check<Orva16s>(GENERATOR(16s), {{-5, 1000}, {32000, 20000}, {-32000, 32767}, {-9, 0}}); }
TEST(Gaussian, 32f) { Check<Orva32f>(GENERATOR(32f), {{0, 1}, {1e6f, -3}, {2.5f, 0}}); }
TEST(Gaussian, 64f) { Check<Orva64f>(GENERATOR(64f), {{0, 1}, {1e6, -3}, {2.5, 0}}); }

TEST(Tone, LooksAtItsPhaseBeforeItsLength) {
  Orva16s x[5] = {7};
  const Orva32f negative = -1e-9f;
  EXPECT_EQ(ORVAS_Tone_16s(nullptr, 0, 5, 0.1f, &negative), ORVA_STS_NULL_PTR_ERR);
  EXPECT_EQ(ORVAS_Tone_16s(x, 0, 5, 0.1f, &negative), ORVA_STS_RANGE_ERR);
  EXPECT_EQ(x[0], 7);
}

}  // namespace tzm_test::generate_test
