// Squares and roots: plain scalar oracles, and exact integers where results are integers.
#include <gtest/gtest.h>
#include <signal_tzm/arith.h>

#include <cmath>

#include "support/exact.h"
#include "support/guarded.h"

namespace tzm_test {
namespace {

const int kLengths[] = {1, 2, 3, 4, 5, 7, 8, 9, 12, 15, 16, 17, 31, 33, 64, 67};

// Compares an unscaled member with oracle(element, index, len) over all kinds of elements.
template <class T, class Oracle>
void Compare(const char* name, OrvaStatus (*member)(const T*, T*, int32_t), Oracle oracle) {
  for (Variety variety : kVarieties) {
    for (int len : kLengths) {
      const GuardedArray<T> src(RandomArray<T>(len, len, variety));
      GuardedArray<T> dst(len);
      std::vector<T> expected(len);
      for (int i = 0; i < len; ++i) expected[i] = oracle(src.data()[i]);
      member(src.data(), dst.data(), len);
      ASSERT_TRUE(SameBits(name, expected.data(), dst.data(), len, len));
    }
  }
}

// Compares a scaled member with oracle(element, exponent, index, len): runs of `count` elements, then short ones.
template <class T, class Dst, class Oracle>
void CompareScaled(const char* name, OrvaStatus (*member)(const T*, Dst*, int32_t, double), const std::vector<T>& src,
                   std::initializer_list<int> exponents, Oracle oracle) {
  const int all = static_cast<int>(src.size());
  for (int exponent : exponents) {
    for (int len : {1, 2, 3, 5, 8, 17, 35, all}) {
      std::vector<Dst> dst(len), expected(len);
      const T* from = src.data() + (all - len) / 2;
      bool negative = false;
      for (int i = 0; i < len; ++i) {
        expected[i] = oracle(from[i], exponent, i, len);
        if constexpr (std::is_signed_v<T>) negative |= from[i] < 0;
      }
      const OrvaStatus status = member(from, dst.data(), len, std::ldexp(1.0, exponent));
      ASSERT_TRUE(SameBits(name, expected.data(), dst.data(), len)) << "exponent " << exponent << ", length " << len;
      const bool warns = negative && std::string(name).find("Sqrt") != std::string::npos;
      ASSERT_EQ(status, warns ? ORVA_STS_SQRT_NEG_ERR : ORVA_STS_NO_ERR) << name;
    }
  }
}
#define EXPONENTS {0, 1, 2, 3, 5, 9, 15, 16, 17, 31, 32, 33, 200, 1023, -1, -2, -3, -4, -5, -7, -8, -9, -15, -16, -31, -64, -200, -1073}

template <class T>
std::vector<T> AllValues() {
  std::vector<T> values(size_t{1} << (8 * sizeof(T)));
  for (size_t i = 0; i < values.size(); ++i) values[i] = static_cast<T>(i);
  return values;
}

TEST(Sqr, Floating) {
  Compare("ORVAS_Sqr_32f", ORVAS_Sqr_32f, [](float x) { return x * x; });
  Compare("ORVAS_Sqr_64f", ORVAS_Sqr_64f, [](double x) { return x * x; });
  const auto complex = [](auto x) {
    const auto crossed = x.im * x.re;
    return decltype(x){std::fma(x.re, x.re, -(x.im * x.im)), crossed + crossed};
  };
  Compare("ORVAS_Sqr_32fc", ORVAS_Sqr_32fc, complex);
  Compare("ORVAS_Sqr_64fc", ORVAS_Sqr_64fc, complex);
}

TEST(Sqr, ScaledIsExact) {
  const auto exact = [](auto x, int exponent, int, int) {
    if constexpr (std::is_class_v<decltype(x)>) return Scaled<decltype(x)>(Product(x, x), exponent);
    else return Scaled<decltype(x)>(Int128{x} * x, exponent);
  };
  CompareScaled("ORVAS_Sqr_8u_S", ORVAS_Sqr_8u_S, AllValues<Orva8u>(), EXPONENTS, exact);
  CompareScaled("ORVAS_Sqr_16u_S", ORVAS_Sqr_16u_S, AllValues<Orva16u>(), EXPONENTS, exact);
  CompareScaled("ORVAS_Sqr_16s_S", ORVAS_Sqr_16s_S, AllValues<Orva16s>(), EXPONENTS, exact);
  CompareScaled("ORVAS_Sqr_16sc_S", ORVAS_Sqr_16sc_S, RandomArray<Orva16sc>(2000, 1, Variety::kSpecial), EXPONENTS, exact);
}

// The status of an array of ones with one other element.
template <class T>
OrvaStatus StatusWith(OrvaStatus (*member)(const T*, T*, int32_t), T value, int at, int len) {
  GuardedArray<T> src(std::vector<T>(len, 1)), dst(len);
  src[at] = value;
  const OrvaStatus status = member(src.data(), dst.data(), len);
  for (int i = 0; i < len; ++i) EXPECT_TRUE(i == at ? value < 0 ? std::isnan(dst[i]) : true : dst[i] == 1);
  return status;
}

TEST(Sqrt, Scan) {
  for (int len = 1; len <= 26; ++len) {
    for (int at = 0; at < len; ++at) {
      const bool seen = at >= len - len % 8 || at % 8 >= 4;
      EXPECT_EQ(StatusWith(ORVAS_Sqrt_32f, -2.0f, at, len), seen ? ORVA_STS_SQRT_NEG_ERR : ORVA_STS_NO_ERR) << at << " " << len;
      EXPECT_EQ(StatusWith(ORVAS_Sqrt_64f, -2.0, at, len), ORVA_STS_SQRT_NEG_ERR) << at << " " << len;
      for (float harmless : {-0.0f, -std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_EQ(StatusWith(ORVAS_Sqrt_32f, harmless, at, len), ORVA_STS_NO_ERR);
        EXPECT_EQ(StatusWith<double>(ORVAS_Sqrt_64f, harmless, at, len), ORVA_STS_NO_ERR);
      }
    }
  }
}

TEST(Sqrt, Complex) {
  Compare("ORVAS_Sqrt_32fc", ORVAS_Sqrt_32fc, [](Orva32fc v) {
    const float m = std::sqrt(v.im * v.im + v.re * v.re);
    return Orva32fc{std::sqrt(std::fabs((m + v.re) * 0.5f)),
                    std::sqrt(std::fabs((m - v.re) * 0.5f)) * (std::signbit(v.im) ? -1.0f : 1.0f)};
  });
  Compare("ORVAS_Sqrt_64fc", ORVAS_Sqrt_64fc, [](Orva64fc v) {
    const double x = 0.5 * v.re, y = 0.5 * v.im;
    const double t = std::sqrt(std::fabs(x) + std::sqrt(x * x + y * y)), q = (1.0 / t) * y;
    return Orva64fc{x >= 0 ? t : std::fabs(q), x > 0 ? q : y < 0 ? -t : t};
  });
  const GuardedArray<Orva64fc> wide{{0, 0}, {-4, 0}, {-4, -0.0}}, wideExpected{{0, 0}, {0, 2}, {0, 2}};
  GuardedArray<Orva64fc> wideDst(3);
  ORVAS_Sqrt_64fc(wide.data(), wideDst.data(), 3);
  EXPECT_TRUE(SameBits("ORVAS_Sqrt_64fc", wideExpected.data(), wideDst.data(), 3));
  const GuardedArray<Orva32fc> narrow{{-4, 0}, {-4, -0.0f}}, narrowExpected{{0, 2}, {0, -2}};
  GuardedArray<Orva32fc> narrowDst(2);
  ORVAS_Sqrt_32fc(narrow.data(), narrowDst.data(), 2);
  EXPECT_TRUE(SameBits("ORVAS_Sqrt_32fc", narrowExpected.data(), narrowDst.data(), 2));
}

TEST(Sqrt, Scaled) {
  const auto narrow = [](auto x, int exponent, int, int) {
    return RoundSaturate<decltype(x)>(static_cast<float>(std::sqrt(double(x))) * static_cast<float>(std::ldexp(1.0, -exponent)));
  };
  CompareScaled("ORVAS_Sqrt_8u_S", ORVAS_Sqrt_8u_S, AllValues<Orva8u>(), EXPONENTS, narrow);
  CompareScaled("ORVAS_Sqrt_16u_S", ORVAS_Sqrt_16u_S, AllValues<Orva16u>(), EXPONENTS, narrow);
  CompareScaled("ORVAS_Sqrt_16s_S", ORVAS_Sqrt_16s_S, AllValues<Orva16s>(), EXPONENTS, [](Orva16s x, int exponent, int, int) {
    return RoundSaturate<Orva16s>(std::sqrt(double(x)) * std::ldexp(1.0, -exponent));
  });
  auto integers = RandomArray<Orva32s>(3001, 7, Variety::kWide);
  for (int i = 0; i < 1500; ++i) integers[2 * i] = i * i + i;  // next to ties at exponent 0
  CompareScaled("ORVAS_Sqrt_32s16s_S", ORVAS_Sqrt_32s16s_S, integers, EXPONENTS, [](Orva32s x, int exponent, int i, int len) {
    const float root = i < len - len % 4 ? std::sqrt(static_cast<float>(x)) : static_cast<float>(std::sqrt(double(x)));
    return RoundSaturate<Orva16s>(root * static_cast<float>(std::ldexp(1.0, -exponent)));
  });
  CompareScaled("ORVAS_Sqrt_16sc_S", ORVAS_Sqrt_16sc_S, RandomArray<Orva16sc>(2000, 1, Variety::kSpecial), EXPONENTS,
                [](Orva16sc v, int exponent, int, int) {
    const double a = v.re, b = v.im, m = std::sqrt(b * b + a * a), factor = std::ldexp(1.0, -exponent);
    return Orva16sc{RoundSaturate<Orva16s>(std::sqrt(std::fabs((m + a) * 0.5)) * factor),
                    RoundSaturate<Orva16s>(std::sqrt(std::fabs((m - a) * 0.5)) * (b < 0 ? -1.0 : 1.0) * factor)};
  });
}

// A root r is right within 1 ulp when x lies between the cubes of its neighbours.
TEST(Cubrt, WithinOneUlp) {
  for (Variety variety : kVarieties) {
    for (int len : kLengths) {
      const GuardedArray<float> src(RandomArray<float>(len, len, variety));
      GuardedArray<float> dst(len);
      ASSERT_EQ(ORVAS_Cubrt_32f(src.data(), dst.data(), len), ORVA_STS_NO_ERR);
      for (int i = 0; i < len; ++i) {
        const float x = src.data()[i], r = dst[i];
        if (x == 0 || !std::isfinite(x)) {
          EXPECT_TRUE(SameBits("ORVAS_Cubrt_32f", &x, &r, 1));
          continue;
        }
        const auto cube = [](long double v) { return v * v * v; };
        const long double low = std::nextafter(std::fabs(r), 0.0f), high = std::nextafter(std::fabs(r), INFINITY);
        EXPECT_EQ(std::signbit(x), std::signbit(r));
        EXPECT_TRUE(cube(low) < std::fabs(x) && std::fabs(x) < cube(high)) << x << " " << r;
      }
    }
  }
}

// 2*root*2^-exponent against odd integers, in exact integers: the two sources on either side of every tie.
TEST(Cubrt, ScaledIsExactAroundEveryTie) {
  for (int exponent = -15; exponent <= 11; ++exponent) {
    std::vector<Orva32s> src;
    std::vector<Orva16s> expected;
    for (int n = 0; n < 32767; ++n) {
      // The tie n + 1/2 is the root of ((2n+1) * 2^(exponent-1))^3.
      const Int128 odd = 2 * n + 1, cube = odd * odd * odd;
      const int shift = 3 * (exponent - 1);
      const Int128 at = shift >= 0 ? cube << shift : cube >> -shift;  // rounded down
      const bool tie = shift >= 0 || at << -shift == cube;
      if (at + 1 > std::numeric_limits<Orva32s>::max()) break;
      if (!src.empty() && src[src.size() - 4] == at) continue;  // several ties between two integers
      src.insert(src.end(), {Orva32s(at), Orva32s(at + 1), Orva32s(-at), Orva32s(-at - 1)});
      int above = n + 1;  // the result of at + 1: past all ties below it
      for (; above < 32768; ++above) {
        const Int128 next = 2 * above + 1, nextCube = next * next * next;
        if (shift >= 0 ? at + 1 < nextCube << shift : (at + 1) << -shift < nextCube) break;
      }
      const int below = tie && n % 2 != 0 ? n + 1 : n;
      for (int value : {below, above, -below, -above}) expected.push_back(Saturated<Orva16s>(value));
    }
    std::vector<Orva16s> dst(src.size());
    ORVAS_Cubrt_32s16s_S(src.data(), dst.data(), static_cast<int32_t>(src.size()), std::ldexp(1.0, exponent));
    ASSERT_TRUE(SameBits("ORVAS_Cubrt_32s16s_S", expected.data(), dst.data(), dst.size())) << "exponent " << exponent;
  }
}

}  // namespace
}  // namespace tzm_test
