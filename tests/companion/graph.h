// The transforms of docs/transforms.md said plainly, one number after the other: what every schedule has to give to the
// last bit.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

namespace tzm_test {

template <class T>
struct Number {
  T re, im;
};
template <class T>
using Numbers = std::vector<Number<T>>;

#if defined(__x86_64__)
__extension__ typedef __float128 Quad;
#else
using Quad = long double;
#endif

// exp(-2 pi i j / n), correctly rounded: an angle of at most an eighth of the circle, turned and reflected.
template <class T>
Number<T> Root(size_t n, size_t j) {
  const size_t scale = 8 / std::gcd(size_t{8}, n), eighth = n * scale / 8;
  const size_t units = j % n * scale, octant = units / eighth;
  const size_t rest = octant % 2 == 0 ? units - octant * eighth : (octant + 1) * eighth - units;
  const Quad pi = Quad(0x1.921fb54442d18p+1) + Quad(0x1.1a62633145c07p-53) + Quad(-0x1.f1976b7ed8fbcp-109);
  const Quad x = 2 * pi * static_cast<Quad>(rest) / static_cast<Quad>(n * scale);
  Quad cosine = 1, sine = 1;
  for (int k = 30; k >= 2; k -= 2) {
    cosine = 1 - x * x * cosine / (k * (k - 1));
    sine = 1 - x * x * sine / (k * (k + 1));
  }
  const T c = static_cast<T>(cosine), s = octant % 2 == 0 ? static_cast<T>(x * sine) : -static_cast<T>(x * sine);
  const Number<T> quarters[] = {{c, -s}, {-s, -c}, {-c, s}, {s, c}};
  return quarters[(octant + 1) / 2 % 4];
}

// Rounded once; beyond binary64, where nothing hangs on it, twice.
template <class T>
T Fma(T a, T b, T c) {
  if constexpr (sizeof(T) > sizeof(double)) return a * b + c;
  else return std::fma(a, b, c);
}

template <class T>
Number<T> Product(Number<T> w, Number<T> x) {
  return {Fma(-w.im, x.im, w.re * x.re), Fma(w.im, x.re, w.re * x.im)};
}

inline size_t LargestFactor(size_t n) {
  size_t largest = 1;
  for (size_t factor = 2; n > 1; ++factor)
    for (; n % factor == 0; n /= factor) largest = factor;
  return largest;
}

// The order of the pairs of a prime radix, and of its results.
inline std::vector<size_t> PairsOf(size_t radix) {
  std::vector<size_t> pairs(radix / 2);
  std::iota(pairs.begin(), pairs.end(), 1);
  for (size_t root = 2; radix > 13 && pairs.size() != radix - 1; ++root) {
    pairs = {1};
    while (pairs.back() * root % radix != 1) pairs.push_back(pairs.back() * root % radix);
  }
  pairs.resize(radix / 2);
  return pairs;
}

// Levels by the prime factors, the largest last; `all` is the length of the whole transform.
template <class T>
Numbers<T> Levels(const Numbers<T>& x, size_t all) {
  const size_t n = x.size(), radix = LargestFactor(n), s = n / radix;
  if (n == 1) return x;
  std::vector<Numbers<T>> part(radix, Numbers<T>(s));
  for (size_t i = 0; i < n; ++i) part[i % radix][i / radix] = x[i];
  for (auto& numbers : part) numbers = Levels(numbers, all);
  Numbers<T> y(n);
  for (size_t k = 0; k < s; ++k) {
    Numbers<T> b;
    for (size_t j = 0; j < radix; ++j) b.push_back(part[j][k]);
    if (radix == 2) {
      const bool untabled = n <= 4 || (n == 8 && all > 16);
      if (untabled && 4 * k == n) b[1] = {b[1].im, -b[1].re};
      else if (!untabled || k > 0) b[1] = Product(Root<T>(n, k), b[1]);
      y[k] = {b[0].re + b[1].re, b[0].im + b[1].im};
      y[k + s] = {b[0].re - b[1].re, b[0].im - b[1].im};
      continue;
    }
    for (size_t j = 1; j < radix && s > 1; ++j) b[j] = Product(Root<T>(n, j * k), b[j]);
    const auto pairs = PairsOf(radix);
    Numbers<T> sum, difference;
    y[k] = b[0];
    for (size_t i : pairs) {
      sum.push_back({b[i].re + b[radix - i].re, b[i].im + b[radix - i].im});
      difference.push_back({b[i].re - b[radix - i].re, b[i].im - b[radix - i].im});
      y[k] = {y[k].re + sum.back().re, y[k].im + sum.back().im};
    }
    for (size_t t : pairs) {
      Number<T> even = b[0], odd = {};
      for (size_t i = 0; i < pairs.size(); ++i) {
        const Number<T> w = Root<T>(radix, t * pairs[i]);
        even = {Fma(w.re, sum[i].re, even.re), Fma(w.re, sum[i].im, even.im)};
        if (i == 0) odd = {-w.im * difference[i].re, -w.im * difference[i].im};
        else odd = {Fma(-w.im, difference[i].re, odd.re), Fma(-w.im, difference[i].im, odd.im)};
      }
      if (radix == 3) {  // its only product is not rounded
        const T sine = -Root<T>(3, 1).im;
        y[k + s] = {Fma(sine, difference[0].im, even.re), Fma(-sine, difference[0].re, even.im)};
        y[k + 2 * s] = {Fma(-sine, difference[0].im, even.re), Fma(sine, difference[0].re, even.im)};
        continue;
      }
      y[k + s * t] = {even.re + odd.im, even.im - odd.re};
      y[k + s * (radix - t)] = {even.re - odd.im, even.im + odd.re};
    }
  }
  return y;
}

// Two factors without a common one, in short transforms: no twiddles.
template <class T>
Numbers<T> Coprime(const Numbers<T>& x, size_t a, size_t b) {
  const size_t n = a * b;
  std::vector<Numbers<T>> rows(a, Numbers<T>(b));
  for (size_t j = 0; j < b; ++j) {
    Numbers<T> column;
    for (size_t i = 0; i < a; ++i) column.push_back(x[(b * i + a * j) % n]);
    column = Levels(column, a);
    for (size_t i = 0; i < a; ++i) rows[i][j] = column[i];
  }
  for (auto& row : rows) row = Levels(row, b);
  Numbers<T> y;
  for (size_t k = 0; k < n; ++k) y.push_back(rows[k % a][k % b]);
  return y;
}

template <class T>
Numbers<T> Exchanged(Numbers<T> x) {
  for (auto& number : x) std::swap(number.re, number.im);
  return x;
}

template <class T>
Numbers<T> Forward(const Numbers<T>& x) {
  const size_t n = x.size();
  for (auto [a, b] : {std::pair<size_t, size_t>{2, 3}, {2, 5}, {4, 3}, {2, 7}, {3, 5}, {4, 5}})
    if (n == a * b) return Coprime(x, a, b);
  if (LargestFactor(n) <= 167) return Levels(x, n);
  size_t size = 0;
  for (size_t candidate : {8, 24, 40, 72, 120}) {
    while (candidate < 2 * n - 1) candidate *= 2;
    if (size == 0 || candidate < size) size = candidate;
  }
  Numbers<T> data(size), chirp;
  Numbers<Quad> kernel(size);
  for (size_t j = 0; j < n; ++j) {
    chirp.push_back(Root<T>(2 * n, j * j % (2 * n)));
    data[j] = Product(chirp[j], x[j]);
    const auto [re, im] = Root<Quad>(2 * n, j * j % (2 * n));
    kernel[j] = kernel[(size - j) % size] = {re / static_cast<Quad>(size), -im / static_cast<Quad>(size)};
  }
  data = Levels(data, size);
  kernel = Levels(kernel, size);
  for (size_t k = 0; k < size; ++k) {
    const auto [re, im] = kernel[std::min(k, size - k)];
    data[k] = Product({static_cast<T>(re), static_cast<T>(im)}, data[k]);
  }
  data = Exchanged(Levels(Exchanged(data), size));
  data.resize(n);
  for (size_t k = 0; k < n; ++k) data[k] = Product(chirp[k], data[k]);
  return data;
}
template <class T>
Numbers<T> Inverse(const Numbers<T>& x) {
  return Exchanged(Forward(Exchanged(x)));
}

// Real numbers to the first n/2 + 1 bins, and back.
template <class T>
Numbers<T> RealForward(const std::vector<T>& x) {
  const size_t n = x.size(), h = n / 2;
  Numbers<T> z;
  if (n % 2 == 1 || n <= 16) {
    for (T value : x) z.push_back({value, 0});
    z = Forward(z);
    z.resize(h + 1);
    z[0].im = 0;
    if (n % 2 == 0) z[h].im = 0;
    return z;
  }
  for (size_t k = 0; k < h; ++k) z.push_back({x[2 * k], x[2 * k + 1]});
  z = Forward(z);
  Numbers<T> y(h + 1);
  y[0] = {z[0].re + z[0].im, 0};
  y[h] = {z[0].re - z[0].im, 0};
  if (h % 2 == 0) y[h / 2] = {z[h / 2].re, -z[h / 2].im};
  for (size_t k = 1; 2 * k < h; ++k) {
    const Number<T> a = z[k], b = z[h - k];
    const T half = 0.5;
    const Number<T> even = {Fma(half, a.re, half * b.re), Fma(half, a.im, -(half * b.im))};
    const Number<T> odd = {Fma(half, a.im, half * b.im), Fma(-half, a.re, half * b.re)};
    const Number<T> turned = Product(Root<T>(n, k), odd);
    y[k] = {even.re + turned.re, even.im + turned.im};
    y[h - k] = {even.re - turned.re, -(even.im - turned.im)};
  }
  return y;
}
template <class T>
std::vector<T> RealInverse(const Numbers<T>& x, size_t n) {
  const size_t h = n / 2;
  std::vector<T> y;
  Numbers<T> z = x;
  if (n % 2 == 1 || n <= 16) {
    z[0].im = 0;
    if (n % 2 == 0) z[h].im = 0;
    for (size_t k = h + 1; k < n; ++k) z.push_back({x[n - k].re, -x[n - k].im});
    for (const auto& number : Inverse(z)) y.push_back(number.re);
    return y;
  }
  z.resize(h);
  z[0] = {x[0].re + x[h].re, x[0].re - x[h].re};
  if (h % 2 == 0) z[h / 2] = {2 * x[h / 2].re, -2 * x[h / 2].im};
  for (size_t k = 1; 2 * k < h; ++k) {
    const Number<T> a = x[k], b = x[h - k], w = Root<T>(n, k), even = {a.re + b.re, a.im - b.im};
    const Number<T> turned = Product(Number<T>{w.re, -w.im}, Number<T>{a.re - b.re, a.im + b.im});
    z[k] = {even.re - turned.im, even.im + turned.re};
    z[h - k] = {even.re + turned.im, turned.re - even.im};
  }
  for (const auto& number : Inverse(z)) y.push_back(number.re), y.push_back(number.im);
  return y;
}

}  // namespace tzm_test
