// The FFT companion against the definition of the transform, summed in long double.
#include <signal_tzm/companion.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <limits>
#include <random>
#include <thread>
#include <vector>

namespace {

#define FFT_API(Name, Sample, ComplexSample, prefix)                            \
  struct Name {                                                                 \
    using Real = Sample;                                                        \
    using Complex = ComplexSample;                                              \
    using Plan = prefix##_plan;                                                 \
    static constexpr auto PlanComplex = prefix##_plan_dft_1d;                   \
    static constexpr auto PlanForward = prefix##_plan_dft_r2c_1d;               \
    static constexpr auto PlanInverse = prefix##_plan_dft_c2r_1d;               \
    static constexpr auto PlanSplit = prefix##_plan_guru_split_dft;             \
    static constexpr auto Run = prefix##_execute_dft;                           \
    static constexpr auto RunForward = prefix##_execute_dft_r2c;                \
    static constexpr auto RunInverse = prefix##_execute_dft_c2r;                \
    static constexpr auto RunSplit = prefix##_execute_split_dft;                \
    static constexpr auto Destroy = prefix##_destroy_plan;                      \
    static constexpr auto InitThreads = prefix##_init_threads;                  \
    static constexpr auto SetThreads = prefix##_plan_with_nthreads;             \
  };
FFT_API(Double, Orva64f, Orva64fc, tzm_fft)
FFT_API(Single, Orva32f, Orva32fc, tzm_fftf)
#undef FFT_API

using Wide = std::complex<long double>;

// Outputs 0, step, 2*step ... of the transform by definition.
std::vector<Wide> Definition(const std::vector<Wide>& in, int sign, size_t step = 1) {
  const size_t n = in.size();
  std::vector<Wide> turn(n), out;
  for (size_t k = 0; k < n; ++k) turn[k] = std::polar(1.0L, sign * 2 * 3.14159265358979323846264338327950288L * k / n);
  for (size_t k = 0; k < n; k += step) {
    long double re = 0, im = 0;
    for (size_t j = 0; j < n; ++j) {
      const Wide a = in[j], b = turn[j * k % n];
      re += a.real() * b.real() - a.imag() * b.imag();
      im += a.real() * b.imag() + a.imag() * b.real();
    }
    out.emplace_back(re, im);
  }
  return out;
}

enum class Kind { kComplex, kForward, kInverse, kSplit };
constexpr Kind kKinds[] = {Kind::kComplex, Kind::kForward, Kind::kInverse, Kind::kSplit};

template <class Api>
class Fft : public testing::Test {
 public:
  using Real = typename Api::Real;
  using Plan = typename Api::Plan;

  // Random samples as the kind takes them: real, Hermitian or any.
  static std::vector<Wide> Signal(Kind kind, size_t n) {
    std::mt19937 random(static_cast<unsigned>(n));
    std::uniform_real_distribution<Real> uniform(-1, 1);
    std::vector<Wide> signal(n);
    for (Wide& s : signal) s = {uniform(random), kind == Kind::kForward ? Real(0) : uniform(random)};
    if (kind == Kind::kInverse) {
      for (size_t k = 0; k <= n / 2; ++k) signal[(n - k) % n] = std::conj(signal[k]);
      signal[0].imag(0);
      if (n % 2 == 0) signal[n / 2].imag(0);
    }
    return signal;
  }

  static Plan MakePlan(Kind kind, int n, int sign) {
    const tzm_fft_iodim dim{n, 1, 1};
    Real placeholder;
    switch (kind) {
      case Kind::kComplex: return Api::PlanComplex(n, nullptr, nullptr, sign, 0);
      case Kind::kForward: return Api::PlanForward(n, nullptr, nullptr, 0);
      case Kind::kInverse: return Api::PlanInverse(n, nullptr, nullptr, 0);
      default: return Api::PlanSplit(1, &dim, 0, nullptr, &placeholder, &placeholder, nullptr, nullptr, 0);
    }
  }

  // Runs a plan with every array `offset` bytes past a multiple of 64 (and the second part of split
  // arrays elsewhere). Checks that nothing around the arrays is written, nor an input that must last.
  static std::vector<Real> Run(Plan plan, Kind kind, int sign, const std::vector<Wide>& signal, bool inPlace, size_t offset) {
    const size_t n = signal.size(), half = n / 2 + 1;
    const size_t parts = kind == Kind::kSplit ? 2 : 1;
    const size_t inReals = kind == Kind::kComplex ? 2 * n : kind == Kind::kInverse ? 2 * half : n;
    const size_t outReals = kind == Kind::kComplex ? 2 * n : kind == Kind::kForward ? 2 * half : n;
    const size_t used = (inPlace ? std::max(inReals, outReals) : 0) * sizeof(Real);
    const auto room = [&](size_t reals) { return offset + std::max(reals * sizeof(Real), used) + 64; };

    std::vector<std::vector<Real>> in(parts, std::vector<Real>(inReals)), out(parts, std::vector<Real>(outReals));
    for (size_t k = 0; k < n; ++k) {
      const Real re = signal[k].real(), im = signal[k].imag();
      if (kind == Kind::kForward) in[0][k] = re;
      if (kind == Kind::kSplit) in[0][k] = re, in[1][k] = im;
      if (kind == Kind::kComplex || (kind == Kind::kInverse && k < half)) in[0][2 * k] = re, in[0][2 * k + 1] = im;
    }
    struct Block { alignas(64) unsigned char bytes[64]; };
    std::vector<Block> blocks[4];  // inputs, then outputs
    unsigned char* at[4];
    for (size_t k = 0; k < 2 * parts; ++k) {
      blocks[k].resize(room(k < parts ? inReals : outReals) / 64 + 2 + 3 * k);
      memset(static_cast<void*>(blocks[k].data()), 0xA5, blocks[k].size() * 64);
      at[k] = k >= parts && inPlace ? at[k - parts] : blocks[k].data()->bytes + 64 * (k % 2) + offset;
      if (k < parts) memcpy(at[k], in[k].data(), inReals * sizeof(Real));
    }
    const auto real = [&](size_t k) { return reinterpret_cast<Real*>(at[k]); };
    const auto complex = [&](size_t k) { return reinterpret_cast<typename Api::Complex*>(at[k]); };
    switch (kind) {
      case Kind::kComplex: Api::Run(plan, complex(0), complex(1)); break;
      case Kind::kForward: Api::RunForward(plan, real(0), complex(1)); break;
      case Kind::kInverse: Api::RunInverse(plan, complex(0), real(1)); break;
      case Kind::kSplit:
        if (sign < 0) Api::RunSplit(plan, real(0), real(1), real(2), real(3));
        else Api::RunSplit(plan, real(1), real(0), real(3), real(2));
    }
    for (size_t k = 0; k < parts; ++k) {
      memcpy(out[k].data(), at[parts + k], outReals * sizeof(Real));
      if (!inPlace && kind != Kind::kInverse) {
        EXPECT_EQ(0, memcmp(in[k].data(), at[k], inReals * sizeof(Real))) << "input written, length " << n;
      }
    }
    for (size_t k = 0; k < (inPlace ? parts : 2 * parts); ++k) {
      const size_t length = std::max((k < parts ? inReals : outReals) * sizeof(Real), used);
      unsigned char* first = blocks[k].data()->bytes;
      unsigned char* last = first + blocks[k].size() * 64;
      const auto untouched = [](unsigned char byte) { return byte == 0xA5; };
      EXPECT_TRUE(std::all_of(first, at[k], untouched)) << "before array " << k << ", length " << n;
      EXPECT_TRUE(std::all_of(at[k] + length, last, untouched)) << "after array " << k << ", length " << n;
    }
    if (parts == 1) return out[0];
    std::vector<Real> joined(2 * n);
    for (size_t k = 0; k < n; ++k) joined[2 * k] = out[0][k], joined[2 * k + 1] = out[1][k];
    return joined;
  }

  // Root-mean-square error of every `step`-th output, in units of the type's epsilon.
  static double Error(const std::vector<Real>& got, const std::vector<Wide>& want, Kind kind, size_t step = 1) {
    long double difference = 0, size = 0;
    for (size_t k = 0; k < want.size() && k * step < (kind == Kind::kInverse ? got.size() : got.size() / 2); ++k) {
      const Wide value = kind == Kind::kInverse ? Wide(got[k * step]) : Wide(got[2 * k * step], got[2 * k * step + 1]);
      difference += std::norm(value - want[k]);
      size += std::norm(want[k]);
    }
    return static_cast<double>(std::sqrt(difference / size)) / std::numeric_limits<Real>::epsilon();
  }
};

using Precisions = testing::Types<Double, Single>;
TYPED_TEST_SUITE(Fft, Precisions);

TYPED_TEST(Fft, AgreesWithTheDefinition) {
  std::vector<int> lengths = {97, 100, 127, 256, 360, 1000, 1009, 1023, 2048};
  for (int n = 1; n <= 64; ++n) lengths.push_back(n);
  for (int n : lengths) {
    for (Kind kind : kKinds) {
      for (int sign : {-1, 1}) {
        if ((kind == Kind::kForward && sign > 0) || (kind == Kind::kInverse && sign < 0)) continue;
        const auto signal = this->Signal(kind, n);
        const size_t step = n <= 64 ? 1 : n / 16 + 1;
        const auto want = Definition(signal, sign, step);
        const auto plan = this->MakePlan(kind, n, sign);
        ASSERT_NE(plan, nullptr);
        for (bool inPlace : {false, true}) {
          const auto got = this->Run(plan, kind, sign, signal, inPlace, 0);
          // Primes need most of this, other lengths a third.
          EXPECT_LT(this->Error(got, want, kind, step), 3) << "length " << n << " kind " << int(kind) << " sign " << sign << " in place " << inPlace;
        }
        TypeParam::Destroy(plan);
      }
    }
  }
}

TYPED_TEST(Fft, BitsDoNotDependOnTheAddress) {
  for (int n : {1, 2, 3, 7, 16, 22, 64, 100, 127, 1000, 1024, 4096, 5000, 8192, 40000}) {
    for (Kind kind : kKinds) {
      const auto signal = this->Signal(kind, n);
      const int sign = kind == Kind::kInverse ? 1 : -1;
      for (bool inPlace : {false, true}) {
        const auto plan = this->MakePlan(kind, n, sign);
        const auto aligned = this->Run(plan, kind, sign, signal, inPlace, 0);
        for (size_t offset : {1, 4, 8, 12, 16, 24, 32, 48}) {
          const auto got = this->Run(plan, kind, sign, signal, inPlace, offset);
          EXPECT_EQ(0, memcmp(got.data(), aligned.data(), got.size() * sizeof got[0]))
              << "length " << n << " kind " << int(kind) << " in place " << inPlace << " offset " << offset;
        }
        TypeParam::Destroy(plan);
      }
    }
  }
}

// Two howmany dimensions around a two-dimensional transform, every stride different, so that gaps
// between the outputs would show a stray write.
TYPED_TEST(Fft, SplitPlansOfAnyShape) {
  using Real = typename TypeParam::Real;
  const tzm_fft_iodim dims[] = {{3, 10, 2}, {5, 2, 6}}, howmany[] = {{2, 30, 70}, {2, 1, 1}};
  const auto plan = TypeParam::PlanSplit(2, dims, 2, howmany, nullptr, nullptr, nullptr, nullptr, 0);
  ASSERT_NE(plan, nullptr);
  std::vector<Real> re(60), im(60), outRe(150, 9), outIm(150, 9);
  for (int k = 0; k < 60; ++k) re[k] = std::sin(k * k + 1.0), im[k] = std::cos(3.0 * k);
  TypeParam::RunSplit(plan, re.data(), im.data(), outRe.data(), outIm.data());
  TypeParam::Destroy(plan);
  std::vector<bool> written(150);
  const auto turn = [](int k, int n) { return std::polar(1.0L, -2 * 3.14159265358979323846264338327950288L * k / n); };
  for (int a = 0; a < 2; ++a) for (int b = 0; b < 2; ++b) for (int u = 0; u < 3; ++u) for (int v = 0; v < 5; ++v) {
    Wide sum = 0;
    for (int j = 0; j < 3; ++j) for (int k = 0; k < 5; ++k) {
      const int from = 30 * a + b + 10 * j + 2 * k;
      sum += Wide(re[from], im[from]) * turn(j * u, 3) * turn(k * v, 5);
    }
    const int to = 70 * a + b + 2 * u + 6 * v;
    written[to] = true;
    EXPECT_NEAR(std::abs(Wide(outRe[to], outIm[to]) - sum), 0, 16 * std::numeric_limits<Real>::epsilon());
  }
  for (int k = 0; k < 150; ++k) {
    EXPECT_TRUE(written[k] || (outRe[k] == 9 && outIm[k] == 9)) << "gap " << k;
  }
}

TYPED_TEST(Fft, LongTransformsOnSeveralThreads) {
  ASSERT_NE(TypeParam::InitThreads(), 0);
  for (int n : {32768, 40009}) {
    for (Kind kind : {Kind::kForward, Kind::kSplit}) {
      const auto signal = this->Signal(kind, n);
      const size_t step = n / 8 + 1;
      const auto want = Definition(signal, -1, step);
      for (int threads : {8, 1, 0}) {
        TypeParam::SetThreads(threads);
        const auto plan = this->MakePlan(kind, n, -1);
        tzm_fftf_cleanup_threads();  // a plan made before outlives it
        for (bool inPlace : {false, true}) {
          EXPECT_LT(this->Error(this->Run(plan, kind, -1, signal, inPlace, 0), want, kind, step), 3)
              << "length " << n << " kind " << int(kind) << " threads " << threads;
        }
        TypeParam::Destroy(plan);
      }
    }
  }
}

TYPED_TEST(Fft, PlansAndRunsFromManyThreadsAtOnce) {
  constexpr int kThreads = 16;
  const int lengths[] = {8, 30, 64, 127, 256, 360, 1000, 1024};
  std::vector<std::vector<typename TypeParam::Real>> want;
  for (int n : lengths) {
    for (Kind kind : kKinds) {
      const auto plan = this->MakePlan(kind, n, -1);
      want.push_back(this->Run(plan, kind, -1, this->Signal(kind, n), false, 0));
      TypeParam::Destroy(plan);
    }
  }
  const auto common = this->MakePlan(Kind::kComplex, 1024, -1);
  const auto work = [&](int thread) {
    for (int round = 0; round < 64; ++round) {
      const size_t which = (round * 7 + thread * 5) % want.size();
      const Kind kind = kKinds[which % 4];
      const int n = lengths[which / 4];
      const auto plan = this->MakePlan(kind, n, -1);
      EXPECT_EQ(want[which], this->Run(plan, kind, -1, this->Signal(kind, n), false, round % 3 * 4));
      TypeParam::Destroy(plan);
      EXPECT_EQ(want[want.size() - 4], this->Run(common, Kind::kComplex, -1, this->Signal(Kind::kComplex, 1024), false, 0));
    }
  };
  std::vector<std::thread> threads;
  for (int k = 0; k < kThreads; ++k) threads.emplace_back(work, k);
  for (std::thread& thread : threads) thread.join();
  TypeParam::Destroy(common);
}

TYPED_TEST(Fft, RefusesBadArguments) {
  for (int n : {0, -1}) {
    for (Kind kind : kKinds) EXPECT_EQ(this->MakePlan(kind, n, -1), nullptr);
  }
  const tzm_fft_iodim good{8, 1, 1}, bad{0, 1, 1}, huge[] = {{1 << 30, 1, 1}, {1 << 30, 1, 1}};
  const auto split = [](int rank, const tzm_fft_iodim* dims, int howmany, const tzm_fft_iodim* howmanyDims) {
    return TypeParam::PlanSplit(rank, dims, howmany, howmanyDims, nullptr, nullptr, nullptr, nullptr, 0);
  };
  EXPECT_EQ(TypeParam::PlanComplex(8, nullptr, nullptr, 0, 0), nullptr);
  EXPECT_EQ(split(-1, &good, 0, nullptr), nullptr);
  EXPECT_EQ(split(1, nullptr, 0, nullptr), nullptr);
  EXPECT_EQ(split(1, &good, -1, nullptr), nullptr);
  EXPECT_EQ(split(1, &good, 1, nullptr), nullptr);
  EXPECT_EQ(split(1, &good, 1, &bad), nullptr);
  EXPECT_EQ(split(2, huge, 0, nullptr), nullptr);
  TypeParam::Destroy(nullptr);
}

}  // namespace
