// Gaussian noise: a restatement on a generator of its own, the moments, and the life of a state.
#include <gtest/gtest.h>
#include <signal_tzm/arith.h>
#include <signal_tzm/elementary.h>
#include <signal_tzm/generate.h>

#include <cmath>

#include "support/arguments.h"
#include "support/compare.h"
#include "support/faults.h"
#include "support/guarded.h"

namespace tzm_test {
namespace {

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

template <class T>
std::vector<T> Noise(int len, T mean, T deviation, uint32_t seed) {
  using Work = std::conditional_t<std::is_same_v<T, double>, double, float>;
  const int block = std::is_same_v<T, double> ? 4 : 8, body = len - len % block;
  Uniform uniform(seed);
  std::vector<T> noise;
  while (static_cast<int>(noise.size()) < len) {
    const Work a = static_cast<Work>(uniform.Next()), b = static_cast<Work>(uniform.Next());
    const Work u = std::fma(a, Work(2), Work(-1)), v = std::fma(b, Work(2), Work(-1)), s = std::fma(u, u, v * v);
    if (s >= 1 || s == 0) continue;
    if (static_cast<int>(noise.size()) < body) {
      for (Work x : {u, v}) {
        const Work y = std::fma(x * std::sqrt(Log10(s) * Work(-2) / s), Work(deviation), Work(mean));
        if constexpr (std::is_integral_v<T>)
          noise.push_back(static_cast<T>(std::clamp<Work>(std::trunc(y), std::numeric_limits<T>::min(),
                                                          std::numeric_limits<T>::max())));
        else noise.push_back(y);
      }
    } else {
      const double x = u * std::sqrt(std::log(static_cast<double>(s)) * -2.0 / s);
      const double y = std::fma(x, static_cast<double>(deviation), static_cast<double>(mean));
      if constexpr (std::is_same_v<T, Orva8u>) noise.push_back(static_cast<T>(y < 0 ? 0 : int64_t(y) & 255));
      else if constexpr (std::is_integral_v<T>) noise.push_back(static_cast<T>(static_cast<int64_t>(y) & 65535));
      else noise.push_back(static_cast<T>(y));
    }
  }
  return noise;
}

template <class T>
struct Generator {
  OrvaStatus (*init)(OrvaRandGaussState**, T, T, uint32_t);
  OrvaStatus (*generate)(T*, int32_t, const OrvaRandGaussState*);
  OrvaStatus (*release)(OrvaRandGaussState*);

  std::vector<T> Run(int len, T mean, T deviation, uint32_t seed) const {
    OrvaRandGaussState* state = nullptr;
    EXPECT_EQ(init(&state, mean, deviation, seed), ORVA_STS_NO_ERR);
    GuardedArray<T> dst(static_cast<size_t>(len)), again(dst.size());
    EXPECT_EQ(generate(dst.data(), len, state), ORVA_STS_NO_ERR);
    EXPECT_EQ(generate(again.data(), len, state), ORVA_STS_NO_ERR);
    EXPECT_TRUE(SameBits("repeated", dst.data(), again.data(), dst.size(), seed));
    EXPECT_EQ(release(state), ORVA_STS_NO_ERR);
    return std::vector<T>(dst.begin(), dst.end());
  }
  void CheckBits(std::initializer_list<std::pair<T, T>> parameters) const {
    for (int len = 1; len < 60; ++len) {
      for (auto [mean, deviation] : parameters) {
        for (uint32_t seed : {1u, 77u, 0xffffff00u + static_cast<uint32_t>(len)}) {
          const auto expected = Noise(len, mean, deviation, seed), actual = Run(len, mean, deviation, seed);
          ASSERT_TRUE(SameBits("noise", expected.data(), actual.data(), expected.size(), seed)) << "length " << len;
        }
      }
    }
  }
  void CheckLife() const {
    OrvaRandGaussState* state = nullptr;
    CheckNulls(init, &state, T(1), T(1), 5u);
    EXPECT_EQ(ForEachFault([&] {
      OrvaRandGaussState* made = nullptr;
      const OrvaStatus status = init(&made, 1, 1, 5);
      EXPECT_EQ(made == nullptr, status != ORVA_STS_NO_ERR);
      if (made != nullptr) release(made);
      return status;
    }), 1);
    ASSERT_EQ(init(&state, 1, 1, 5), ORVA_STS_NO_ERR);
    T x = 99;
    CheckNulls(generate, &x, 0, state);
    EXPECT_EQ(generate(&x, 0, state), ORVA_STS_SIZE_ERR);
    EXPECT_EQ(x, 99);
    EXPECT_EQ(release(state), ORVA_STS_NO_ERR);
    EXPECT_EQ(release(nullptr), ORVA_STS_NO_ERR);
  }
};

#define GENERATOR(type) \
  const Generator<Orva##type> k##type{ORVAS_RandGaussInit_##type, ORVAS_RandGauss_##type, ORVAS_RandGaussRelease_##type}
GENERATOR(8u);
GENERATOR(16s);
GENERATOR(32f);
GENERATOR(64f);

// Integers wide enough that blocks saturate and tails wrap.
TEST(Gaussian, Bits) {
  k8u.CheckBits({{100, 20}, {250, 100}, {3, 200}, {7, 0}});
  k16s.CheckBits({{-5, 1000}, {32000, 20000}, {-32000, 32767}, {-9, 0}});
  k32f.CheckBits({{0, 1}, {1e6f, -3}, {2.5f, 0}});
  k64f.CheckBits({{0, 1}, {1e6, -3}, {2.5, 0}});
}

// Blocks have sqrt(log10(e)) of the deviation, the tail all of it.
TEST(Gaussian, Moments) {
  for (int len : {8, 7}) {
    const int seeds = 4000;
    double count = 0, first = 0, second = 0, fourth = 0;
    for (uint32_t seed = 0; seed < seeds; ++seed) {
      for (Orva32f x : k32f.Run(len, 10, 2, seed)) {
        const double z = (x - 10.0) / 2;
        ++count;
        first += z;
        second += z * z;
        fourth += z * z * z * z;
      }
    }
    const double variance = len == 8 ? std::log10(std::exp(1.0)) : 1;
    EXPECT_NEAR(first / count, 0, 0.03);
    EXPECT_NEAR(second / count, variance, 0.03 * variance);
    EXPECT_NEAR(fourth / count, 3 * variance * variance, 0.2 * variance * variance);
  }
}

TEST(Gaussian, Life) {
  k8u.CheckLife();
  k16s.CheckLife();
  k32f.CheckLife();
  k64f.CheckLife();
}

}  // namespace
}  // namespace tzm_test
