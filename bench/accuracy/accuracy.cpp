// The worst error found of each elementary function, in units of the last place, against libquadmath's
// 113 bits, and the input that shows it: the rows of docs/accuracy.md.
#include <quadmath.h>
#include <signal_tzm/elementary.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

namespace {

using Quad = __float128;
constexpr int32_t kBatch = 4096;
int batches = 100;

uint64_t state = 1;
uint64_t Next() {  // splitmix64
  uint64_t z = state += 0x9e3779b97f4a7c15;
  z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
  z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
  return z ^ (z >> 31);
}
double Unit() { return static_cast<double>(Next() >> 11) * 0x1p-53; }

// Ranges of arguments: evenly between two numbers, or evenly in the exponent of two and both signs.
struct Range {
  enum { kEven, kPositive, kSigned } kind;
  double from, to;
  template <class T>
  T Pick() const {
    if (kind == kEven) return static_cast<T>(from + (to - from) * Unit());
    const double exponent = std::log2(from) + (std::log2(to) - std::log2(from)) * Unit();
    const double x = std::ldexp(1 + Unit(), static_cast<int>(std::floor(exponent)));
    return static_cast<T>(kind == kSigned && Next() % 2 ? -x : x);
  }
};

struct Worst {
  double error = 0;
  std::string input;
  template <class T>
  void See(T actual, Quad exact, const char* format, double a, double b) {
    if (fabsq(exact) > std::numeric_limits<T>::max() || fabsq(exact) < std::numeric_limits<T>::min()) return;
    int exponent;
    frexpq(exact, &exponent);
    const double ulps =
        static_cast<double>(fabsq(actual - exact) * ldexpq(1, std::numeric_limits<T>::digits - exponent));
    if (!(ulps <= error)) {
      char text[100];
      std::snprintf(text, sizeof text, format, a, b);
      error = ulps;
      input = text;
    }
  }
  void Print(const char* name, const char* range) const {
    std::printf("| %s | %s | %.4f | %s |\n", name, range, error, input.c_str());
    std::fflush(stdout);
  }
};

template <class T>
void Real(const char* name, OrvaStatus (*member)(const T*, T*, int32_t), Quad (*exact)(Quad), Range range,
          const char* text) {
  Worst worst;
  std::vector<T> x(kBatch), y(kBatch);
  for (int k = 0; k < batches; ++k) {
    for (T& v : x) v = range.Pick<T>();
    member(x.data(), y.data(), kBatch);
    for (int32_t i = 0; i < kBatch; ++i) worst.See(y[i], exact(x[i]), "%a", x[i], 0);
  }
  worst.Print(name, text);
}

template <class T, class Call>
void Two(const char* name, Call call, Quad (*exact)(Quad, Quad), Range first, Range second, const char* text) {
  Worst worst;
  std::vector<T> a(kBatch), b(kBatch), y(kBatch);
  for (int k = 0; k < batches; ++k) {
    const T same = second.Pick<T>();  // for members with one constant exponent
    for (T& v : a) v = first.Pick<T>();
    for (T& v : b) v = second.Pick<T>();
    const bool constant = call(a.data(), b.data(), same, y.data());
    for (int32_t i = 0; i < kBatch; ++i) {
      const T other = constant ? same : b[i];
      worst.See(y[i], exact(a[i], other), "%a, %a", a[i], other);
    }
  }
  worst.Print(name, text);
}

template <class Complex>
void Plane(const char* name, OrvaStatus (*member)(const Complex*, Complex*, int32_t),
           __complex128 (*exact)(__complex128), Range re, Range im, const char* text) {
  using T = decltype(Complex::re);
  Worst worst;
  std::vector<Complex> z(kBatch), w(kBatch);
  for (int k = 0; k < batches; ++k) {
    for (Complex& v : z) v = {re.Pick<T>(), im.Pick<T>()};
    member(z.data(), w.data(), kBatch);
    for (int32_t i = 0; i < kBatch; ++i) {
      __complex128 argument;
      __real__ argument = z[i].re;
      __imag__ argument = z[i].im;
      const __complex128 value = exact(argument);
      worst.See(w[i].re, crealq(value), "(%a, %a), re", z[i].re, z[i].im);
      worst.See(w[i].im, cimagq(value), "(%a, %a), im", z[i].re, z[i].im);
    }
  }
  worst.Print(name, text);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) batches = std::atoi(argv[1]);
  std::printf("| Operation | Range | Worst error, ulp | Input |\n|---|---|---|---|\n");
#define REAL(name, q, range, text) Real(#name, ORVAS_##name, q, Range range, text)
  REAL(Exp_32f, expq, ({Range::kEven, -87.3, 88.7}), "-87.3 to 88.7");
  REAL(Exp_64f, expq, ({Range::kEven, -708, 709}), "-708 to 709");
  REAL(Ln_32f, logq, ({Range::kPositive, 0x1p-126, 0x1p127}), "normal numbers");
  REAL(Ln_64f, logq, ({Range::kPositive, 0x1p-1022, 0x1p1023}), "normal numbers");
  REAL(Ln_64f, logq, ({Range::kEven, 0.9, 1.1}), "0.9 to 1.1");
  REAL(Log10_32f, log10q, ({Range::kPositive, 0x1p-126, 0x1p127}), "normal numbers");
  REAL(Log10_64f, log10q, ({Range::kPositive, 0x1p-1022, 0x1p1023}), "normal numbers");
  REAL(Log10_64f, log10q, ({Range::kEven, 0.9, 1.1}), "0.9 to 1.1");
  REAL(Sin_32f, sinq, ({Range::kSigned, 0x1p-126, 0x1p127}), "normal numbers");
  REAL(Sin_64f, sinq, ({Range::kSigned, 0x1p-1022, 0x1p1023}), "normal numbers");
  REAL(Sin_64f, sinq, ({Range::kEven, -100, 100}), "-100 to 100");
  REAL(Cos_32f, cosq, ({Range::kSigned, 0x1p-126, 0x1p127}), "normal numbers");
  REAL(Cos_64f, cosq, ({Range::kSigned, 0x1p-1022, 0x1p1023}), "normal numbers");
  REAL(Cos_64f, cosq, ({Range::kEven, -100, 100}), "-100 to 100");
  REAL(Tan_32f, tanq, ({Range::kSigned, 0x1p-126, 0x1p127}), "normal numbers");
  REAL(Tan_64f, tanq, ({Range::kSigned, 0x1p-1022, 0x1p1023}), "normal numbers");
  REAL(Tan_64f, tanq, ({Range::kEven, -100, 100}), "-100 to 100");
  REAL(Arctan_32f, atanq, ({Range::kSigned, 0x1p-126, 0x1p127}), "normal numbers");
  REAL(Arctan_64f, atanq, ({Range::kSigned, 0x1p-60, 0x1p60}), "2^-60 to 2^60");
#undef REAL
#define TWO(T, name, q, first, second, text)                                                        \
  Two<T>(#name, [](const T* a, const T* b, T, T* y) { ORVAS_##name(a, b, y, kBatch); return false; }, q, \
         Range first, Range second, text)
  TWO(float, Arctan2_32f, atan2q, ({Range::kSigned, 0x1p-20, 0x1p20}), ({Range::kSigned, 0x1p-20, 0x1p20}),
      "2^-20 to 2^20, all quadrants");
  TWO(double, Arctan2_64f, atan2q, ({Range::kSigned, 0x1p-60, 0x1p60}), ({Range::kSigned, 0x1p-60, 0x1p60}),
      "2^-60 to 2^60, all quadrants");
  TWO(float, Pow_32f, powq, ({Range::kPositive, 0x1p-20, 0x1p20}), ({Range::kEven, -8, 8}),
      "2^-20 to 2^20, to -8 to 8");
  TWO(double, Pow_64f, powq, ({Range::kPositive, 0x1p-20, 0x1p20}), ({Range::kEven, -60, 60}),
      "2^-20 to 2^20, to -60 to 60");
#undef TWO
#define POWX(T, name, most, text)                                                                            \
  Two<T>(#name, [](const T* a, const T*, T y, T* r) { ORVAS_##name(a, y, r, kBatch); return true; }, powq,   \
         Range({Range::kPositive, 0x1p-20, 0x1p20}), Range({Range::kEven, -most, most}), text)
  POWX(float, Powx_32f_A24, 8, "2^-20 to 2^20, to -8 to 8");
  POWX(double, Powx_64f_A26, 60, "2^-20 to 2^20, to -60 to 60");
  POWX(double, Powx_64f_A53, 60, "2^-20 to 2^20, to -60 to 60");
#undef POWX
#define PLANE(name, q, re, im, text) Plane(#name, ORVAS_##name, q, Range re, Range im, text)
  PLANE(Log10_32fc, clog10q, ({Range::kSigned, 0x1p-30, 0x1p30}), ({Range::kSigned, 0x1p-30, 0x1p30}), "2^-30 to 2^30");
  PLANE(Log10_64fc, clog10q, ({Range::kSigned, 0x1p-1000, 0x1p1000}), ({Range::kSigned, 0x1p-1000, 0x1p1000}),
        "2^-1000 to 2^1000");
  PLANE(Log10_64fc, clog10q, ({Range::kEven, 0.5, 0.9}), ({Range::kEven, 0.5, 0.8}), "near the unit circle");
  PLANE(Sin_32fc, csinq, ({Range::kSigned, 0x1p-60, 0x1p20}), ({Range::kEven, -100, 100}),
        "2^-60 to 2^20, -100 to 100");
  PLANE(Sin_64fc, csinq, ({Range::kSigned, 0x1p-60, 0x1p20}), ({Range::kEven, -2, 2}), "2^-60 to 2^20, -2 to 2");
  PLANE(Sin_64fc, csinq, ({Range::kSigned, 0x1p-1000, 0x1p20}), ({Range::kEven, -1400, 1400}),
        "2^-1000 to 2^20, -1400 to 1400");
  PLANE(Cos_32fc, ccosq, ({Range::kSigned, 0x1p-60, 0x1p20}), ({Range::kEven, -100, 100}),
        "2^-60 to 2^20, -100 to 100");
  PLANE(Cos_64fc, ccosq, ({Range::kSigned, 0x1p-60, 0x1p20}), ({Range::kEven, -2, 2}), "2^-60 to 2^20, -2 to 2");
  PLANE(Cos_64fc, ccosq, ({Range::kSigned, 0x1p-1000, 0x1p20}), ({Range::kEven, -1400, 1400}),
        "2^-1000 to 2^20, -1400 to 1400");
#undef PLANE
}
