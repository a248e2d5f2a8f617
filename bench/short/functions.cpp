// The vector mathematics companion's functions beside SLEEF's that give the same bits on every machine, of the widest
// registers of this build: nanoseconds a call, in turns.   tzm_functions [PART-OF-A-NAME]
#include <signal_tzm/companion.h>
#include <sleef.h>

#include <cstring>
#include <type_traits>

#include "../turns.h"

namespace {

#if defined(__aarch64__)
#define SINGLE(function) Sleef_finz_##function##f4_u10advsimd
#define DOUBLE(function) Sleef_finz_##function##d2_u10advsimd
#elif defined(__AVX512F__)
#define SINGLE(function) Sleef_finz_##function##f16_u10avx512f
#define DOUBLE(function) Sleef_finz_##function##d8_u10avx512f
#else
#define SINGLE(function) Sleef_finz_##function##f8_u10avx2
#define DOUBLE(function) Sleef_finz_##function##d4_u10avx2
#endif

constexpr int kLengths[] = {96, 1024, 4096};  // whole registers: SLEEF knows nothing else

// function(a...) of every register of the arrays.
template <class T, class Result, class... Arguments>
auto ByRegisters(Result (*function)(Arguments...), T* to, const T* a, const T* b) {
  return [=](int n) {
    using Register = std::remove_cv_t<Result>;
    constexpr int kLanes = sizeof(Register) / sizeof(T);
    for (int i = 0; i < n; i += kLanes) {
      Register x, y, result;
      std::memcpy(&x, a + i, sizeof x);
      std::memcpy(&y, b + i, sizeof y);
      if constexpr (sizeof...(Arguments) == 1) result = function(x);
      else result = function(x, y);
      std::memcpy(to + i, &result, sizeof result);
    }
  };
}

template <class T>
struct Arrays {
  alignas(64) T a[4096], b[4096], to[4096];
  Arrays() {
    for (int i = 0; i < 4096; ++i) {  // between 0.1 and 10
      a[i] = static_cast<T>(0.1 + 9.9 * (i * 7 % 4093) / 4093);
      b[i] = static_cast<T>(0.1 + 9.9 * (i * 11 % 4093) / 4093);
    }
  }
};
Arrays<float> f;
Arrays<double> d;

}  // namespace

int main(int argc, char** argv) {
  const char* const wanted = argc > 1 ? argv[1] : "";
  tzm_bench::Head("SLEEF's", kLengths);
  const auto row = [=](const char* name, auto ours, auto peer, auto& arrays) {
    auto* const to = arrays.to;
    const auto *const a = arrays.a, *const b = arrays.b;
    tzm_bench::Row(name, wanted, kLengths, [=](int n) {
      if constexpr (std::is_invocable_v<decltype(ours), int, decltype(a), decltype(to)>) ours(n, a, to);
      else ours(n, a, b, to);
    }, ByRegisters(peer, to, a, b));
  };
#define ROW(function, sleef)                           \
  row("vs" #function, vs##function, SINGLE(sleef), f); \
  row("vd" #function, vd##function, DOUBLE(sleef), d);
  ROW(exp, exp) ROW(ln, log) ROW(log10, log10) ROW(sin, sin) ROW(cos, cos) ROW(tan, tan) ROW(atan, atan)
  ROW(atan2, atan2) ROW(pow, pow)
#undef ROW
}
