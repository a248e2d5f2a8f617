// Every binary32 number through every binary32 function of one argument, against correctly rounded values, and the
// multiples of pi/2 through binary64's sine, cosine and tangent: figures for docs/accuracy.md, and a failure for a
// single wrong result, or one that is not within 0.6 ulp. The judge is SLEEF's function in binary64 where
// that lies farther from a midpoint of two binary32 numbers than any error of it, MPFR where not.
#include <mpfr.h>
#include <signal_tzm/companion.h>
#include <sleef.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

#if defined(__aarch64__)
using Register = float64x2_t;
#define SLEEF(function) Sleef_finz_##function##d2_u10advsimd
Register Load(const double* from) { return vld1q_f64(from); }
void Store(double* to, Register v) { vst1q_f64(to, v); }
#else
using Register = __m256d;
#define SLEEF(function) Sleef_finz_##function##d4_u10avx2
Register Load(const double* from) { return _mm256_load_pd(from); }
void Store(double* to, Register v) { _mm256_store_pd(to, v); }
#endif

struct Function {
  const char* name;
  void (*ours)(int32_t, const Orva32f*, Orva32f*);
  Register (*near)(Register);
  int (*exact)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
};
#define FUNCTION(name, near, exact) {#name, vs##name, [](Register x) { return SLEEF(near)(x); }, mpfr_##exact}
const Function functions[] = {FUNCTION(exp, exp, exp), FUNCTION(ln, log, log),   FUNCTION(log10, log10, log10),
                              FUNCTION(sin, sin, sin), FUNCTION(cos, cos, cos),  FUNCTION(tan, tan, tan),
                              FUNCTION(atan, atan, atan)};

// MPFR with the precision and the range of binary32 rounds as binary32 does, subnormal numbers included.
class Exact {
 public:
  Exact() {
    mpfr_init2(value_, 24);
    mpfr_set_emin(-148);
    mpfr_set_emax(128);
  }
  ~Exact() { mpfr_clear(value_); }
  float operator()(const Function& f, float x) {
    mpfr_set_flt(value_, x, MPFR_RNDN);
    const int inexact = f.exact(value_, value_, MPFR_RNDN);
    mpfr_subnormalize(value_, inexact, MPFR_RNDN);
    return mpfr_get_flt(value_, MPFR_RNDN);
  }

 private:
  mpfr_t value_;
};

bool Same(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b)); }

bool Verify(const Function& f) {
  constexpr uint64_t kNumbers = uint64_t{1} << 32;
  constexpr size_t kBatch = 4096;
  std::atomic<uint64_t> next = 0, judged = 0, wrong = 0;
  std::mutex printing;
  const auto work = [&] {
    Exact exact;
    std::vector<float> x(kBatch), y(kBatch);
    alignas(64) double likely[kBatch];
    for (uint64_t first; (first = next.fetch_add(kBatch)) < kNumbers;) {
      for (size_t i = 0; i < kBatch; ++i) {
        const auto bits = static_cast<uint32_t>(first + i);
        std::memcpy(&x[i], &bits, sizeof bits);
        likely[i] = static_cast<double>(x[i]);
      }
      f.ours(kBatch, x.data(), y.data());
      for (size_t i = 0; i < kBatch; i += sizeof(Register) / sizeof(double))
        Store(&likely[i], f.near(Load(&likely[i])));
      for (size_t i = 0; i < kBatch; ++i) {
        const double error = std::fabs(likely[i]) * 0x1p-42;
        const auto low = static_cast<float>(likely[i] - error), high = static_cast<float>(likely[i] + error);
        float right = low;
        if (!Same(low, high) || x[i] == 0) {  // of zeros SLEEF gives results with other signs here and there
          right = exact(f, x[i]);
          ++judged;
        }
        if (Same(right, y[i])) continue;
        if (++wrong > 200) continue;
        const std::lock_guard lock(printing);
        std::printf("  %s(%a) = %a, not %a\n", f.name, static_cast<double>(x[i]), static_cast<double>(right),
                    static_cast<double>(y[i]));
      }
    }
  };
  std::vector<std::thread> threads;
  const unsigned count = std::max(1u, std::thread::hardware_concurrency());
  for (unsigned i = 0; i < count; ++i) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
  std::printf("%s: %llu numbers, %llu judged by MPFR, %llu wrong\n", f.name, static_cast<unsigned long long>(kNumbers),
              static_cast<unsigned long long>(judged), static_cast<unsigned long long>(wrong));
  std::fflush(stdout);
  return wrong == 0;
}

// The binary64 numbers next to k pi/2 for all k up to 2^19, and for as many larger ones, up to 2^60.
bool VerifyMultiples(const char* name, void (*ours)(int32_t, const Orva64f*, Orva64f*),
                     int (*exact)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t)) {
  constexpr uint64_t kAll = uint64_t{1} << 19;
  mpfr_t halfPi, value;
  mpfr_inits2(300, halfPi, value, static_cast<mpfr_ptr>(nullptr));
  mpfr_const_pi(halfPi, MPFR_RNDN);
  mpfr_div_2ui(halfPi, halfPi, 1, MPFR_RNDN);
  double worst = 0, at = 0;
  std::mt19937_64 random(1);
  for (uint64_t i = 1; i <= 2 * kAll; ++i) {
    mpfr_mul_ui(value, halfPi, i <= kAll ? i : random() >> (4 + i % 39), MPFR_RNDN);
    const double x = mpfr_get_d(value, MPFR_RNDN);
    double y;
    ours(1, &x, &y);
    mpfr_set_d(value, x, MPFR_RNDN);
    exact(value, value, MPFR_RNDN);
    const mpfr_exp_t exponent = mpfr_get_exp(value);
    mpfr_sub_d(value, value, y, MPFR_RNDN);
    mpfr_mul_2si(value, value, 53 - exponent, MPFR_RNDN);
    const double error = std::fabs(mpfr_get_d(value, MPFR_RNDN));
    if (!(error <= worst)) worst = error, at = x;  // NaN too
    if (std::isnan(error)) break;
  }
  std::printf("%s next to multiples of pi/2: %.4f ulp at %a\n", name, worst, at);
  std::fflush(stdout);
  mpfr_clears(halfPi, value, static_cast<mpfr_ptr>(nullptr));
  return worst <= 0.6;
}

}  // namespace

int main(int argc, char** argv) {
  const auto chosen = [&](const char* name) {
    return argc == 1 || std::find(argv + 1, argv + argc, std::string(name)) != argv + argc;
  };
  for (int i = 1; i < argc; ++i) {
    const auto named = [&](const Function& f) { return std::strcmp(f.name, argv[i]) == 0; };
    if (std::any_of(std::begin(functions), std::end(functions), named) || std::strcmp(argv[i], "multiples") == 0)
      continue;
    std::fprintf(stderr, "verify: nothing is called '%s': see ./run --help\n", argv[i]);
    return 2;
  }
  bool right = true;
  for (const Function& f : functions)
    if (chosen(f.name)) right &= Verify(f);
  if (chosen("multiples")) {
    right &= VerifyMultiples("sin", vdsin, mpfr_sin);
    right &= VerifyMultiples("cos", vdcos, mpfr_cos);
    right &= VerifyMultiples("tan", vdtan, mpfr_tan);
  }
  return right ? 0 : 1;
}
