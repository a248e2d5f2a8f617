// Sums, products, norms and column aggregates: loops that add one sample after the other where it belongs.
#include <signal_tzm/reduce.h>

#include <numeric>

#include "members.h"

namespace tzm_test::reduce_rows {

template <class T>
concept IsComplex = requires(T x) { x.re; };
template <class T>
struct RealPart { using Type = T; };
template <IsComplex T>
struct RealPart<T> { using Type = decltype(T::re); };
template <class T>
using Real = typename RealPart<T>::Type;

// One part of each sample, as numbers of type X.
template <class X, class T>
std::vector<X> PartOf(const std::vector<T>& src, int part) {
  std::vector<X> values;
  for (const T& sample : src) {
    if constexpr (IsComplex<T>) values.push_back(part == 0 ? sample.re : sample.im);
    else values.push_back(sample);
  }
  return values;
}

// A result of one part or two, from a function of the part.
template <class Result, class F>
Result EachPart(F f) {
  if constexpr (IsComplex<Result>) return {static_cast<Real<Result>>(f(0)), static_cast<Real<Result>>(f(1))};
  else return static_cast<Result>(f(0));
}

// Sample i of those up to the last multiple of `step` goes to lane i mod `lanes`, by add(lane, i). The lanes are
// folded in halves (k with k + lanes/2) or in adjacent pairs; the rest is added to the folded sum by tail(sum, i).
enum class Fold { kHalves, kPairs };
template <class Sum, class Add, class Tail>
Sum LaneSum(size_t len, size_t lanes, size_t step, Fold fold, Add add, Tail tail, Sum start = {}) {
  const size_t body = len / step * step;
  std::vector<Sum> lane(lanes, start);
  for (size_t i = 0; i < body; ++i) add(lane[i % lanes], i);
  for (; lanes > 1; lanes /= 2)
    for (size_t k = 0; k < lanes / 2; ++k)
      lane[k] = fold == Fold::kHalves ? lane[k] + lane[k + lanes / 2] : lane[2 * k] + lane[2 * k + 1];
  Sum sum = body == 0 ? Sum{} : lane[0];
  for (size_t i = body; i < len; ++i) tail(sum, i);
  return sum;
}

// ---- Dot products ----

// Real by real, or by each part of complex samples: one fused step a product.
template <class Sum, class Result, size_t kLanes, size_t kStep>
constexpr auto fused = [](const auto& a, const auto& b, At) {
  return EachPart<Result>([&](int part) {
    const auto x = PartOf<Sum>(a, 0), y = PartOf<Sum>(b, part);
    const auto add = [&](Sum& sum, size_t i) { sum = std::fma(x[i], y[i], sum); };
    return LaneSum<Sum>(x.size(), kLanes, kStep, Fold::kHalves, add, add);
  });
};

// Complex by complex: a product of two roundings, added in a third; or two fused steps in the body.
template <class Sum, class Result, size_t kLanes, size_t kStep, bool kChained>
constexpr auto complexFused = [](const auto& a, const auto& b, At) {
  const auto ar = PartOf<Sum>(a, 0), ai = PartOf<Sum>(a, 1), br = PartOf<Sum>(b, 0), bi = PartOf<Sum>(b, 1);
  return EachPart<Result>([&](int part) {
    const auto& second = part == 0 ? br : bi;  // beside ar
    const auto& third = part == 0 ? bi : br;   // beside ai
    const auto product = [&](size_t i) { return part == 0 ? -(ai[i] * third[i]) : ai[i] * third[i]; };
    const auto plain = [&](Sum& sum, size_t i) { sum += std::fma(ar[i], second[i], product(i)); };
    const auto chained = [&](Sum& sum, size_t i) {
      sum = std::fma(part == 0 ? -ai[i] : ai[i], third[i], std::fma(ar[i], second[i], sum));
    };
    if constexpr (kChained) return LaneSum<Sum>(a.size(), kLanes, kStep, Fold::kHalves, chained, plain);
    else return LaneSum<Sum>(a.size(), kLanes, kStep, Fold::kHalves, plain, plain);
  });
};

const auto modulo = [](const auto& a, const auto& b, At) {
  unsigned __int128 re = 0, im = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    Orva16sc x = {0, 0};
    if constexpr (requires { a[i].re; }) x = a[i];
    else x.re = a[i];
    const Exact product = Product(x, b[i]);
    re += product.re, im += product.im;
  }
  return Orva64sc{static_cast<int64_t>(re), static_cast<int64_t>(im)};
};

// Two lanes of the body take neighbouring pairs of products in turn; below 2^53 nothing but 32-bit products rounds.
template <size_t kStep, class Result>
constexpr auto inBinary64 = [](const auto& a, const auto& b, At at) {
  const double factor = at.Factor();
  const size_t body = a.size() / kStep * kStep;
  double lane[2] = {0, 0};
  for (size_t i = 0; i < body; i += kStep) {
    double add[2] = {0, 0};
    for (size_t k = 0; k < kStep; ++k) add[k / 2 % 2] += static_cast<double>(int64_t{a[i + k]} * b[i + k]);
    lane[0] += add[0], lane[1] += add[1];
  }
  double sum = factor * (lane[0] + lane[1]);
  for (size_t i = body; i < a.size(); ++i) sum = std::fma(a[i] * factor, double(b[i]), sum);
  if constexpr (std::is_integral_v<Result>) return RoundSaturate<Result>(sum);
  else return static_cast<Result>(sum);
};
// Over 2^21 steps of 8 products of 2^30 a lane passes 2^53, and the odd products that follow are lost in part.
const Cases kBeyondExactSums = [](auto run) {
  std::vector<Orva16s> a((8 << 21) + 8003, -32768), b = a;
  for (size_t i = 8 << 21; i < a.size(); ++i) a[i] = static_cast<Orva16s>(i * i % 251), b[i] = 32767;
  run(Case(a, b));
};

// ---- Sums and means ----

template <class X>
X Lanes(const std::vector<X>& x, size_t lanes, size_t step, X start = 0) {
  const auto add = [&](X& sum, size_t i) { sum += x[i]; };
  return LaneSum<X>(x.size(), lanes, step, Fold::kPairs, add, add, start);
}

// By the hint in binary32 or in binary64.
template <bool kMean>
constexpr auto byHint = []<class T>(const std::vector<T>& src, int32_t hint, At) {
  return EachPart<T>([&](int part) -> double {
    if (hint != 1) return Lanes(PartOf<double>(src, part), 2, 4) / (kMean ? double(src.size()) : 1);
    auto x = PartOf<float>(src, part);
    for (float& each : x) each /= kMean ? float(src.size()) : 1;
    return Lanes(x, 4, 4);
  });
};
double Sum64(const std::vector<double>& x) { return Lanes(x, 2, 2, -0.0); }

// The order of the complex binary64 sum.
double Blocks(const std::vector<double>& x) {
  const size_t body = x.size() / 8 * 8;
  double lane[2] = {0, 0};
  for (size_t i = 0; i < body; i += 8) {
    lane[0] = ((x[i] + x[i + 1]) + lane[0]) + (x[i + 4] + x[i + 5]);
    lane[1] = ((x[i + 2] + x[i + 3]) + lane[1]) + (x[i + 6] + x[i + 7]);
  }
  double sum = lane[0] + lane[1];
  for (size_t i = body; i < x.size(); ++i) sum += x[i];
  return sum;
}
template <bool kMean>
constexpr auto complexSum = [](const std::vector<Orva64fc>& src, At) {
  return EachPart<Orva64fc>([&](int part) {
    return Blocks(PartOf<double>(src, part)) / (kMean ? double(src.size()) : 1);
  });
};

double ExactSum(const auto& src, int part) {
  const auto x = PartOf<int64_t>(src, part);
  return static_cast<double>(std::accumulate(x.begin(), x.end(), Int128{0}));
}
template <class Result, bool kMean>
constexpr auto rounded = [](const auto& src, At at) {
  return EachPart<Result>([&](int part) {
    return RoundSaturate<Real<Result>>(ExactSum(src, part) * at.Factor() / (kMean ? double(src.size()) : 1));
  });
};
template <class T>
constexpr Cases kMinusZeros = [](auto run) {
  for (size_t len = 1; len <= 9; ++len)
    if constexpr (IsComplex<T>) run(Case(std::vector<T>(len, {-0.0, -0.0})));
    else run(Case(std::vector<T>(len, T(-0.0))));
};
// More than 32-bit lanes hold, by a million samples of the least value, and of the greatest beside it.
template <class T>
constexpr Cases kLong = [](auto run) {
  using Limits = std::numeric_limits<Real<T>>;
  if constexpr (IsComplex<T>) run(Case(std::vector<T>(1100001, {Limits::min(), Limits::max()})).Exponents({0, 16}));
  else run(Case(std::vector<T>(1100001, Limits::min())).Exponents({0, 16, 31}));
};
const Cases kHalves = [](auto run) {
  for (const std::vector<Orva16s>& src : std::vector<std::vector<Orva16s>>{{2, 3}, {4, 3}, {1, 2}, {32767, 32767}})
    run(Case(src));
};

double Deviation(const std::vector<double>& x, double mean, size_t step) {
  const auto add = [&](double& sum, size_t i) { sum = std::fma(x[i] - mean, x[i] - mean, sum); };
  return std::sqrt(LaneSum<double>(x.size(), 2, step, Fold::kPairs, add, add) / (double(x.size()) - 1));
}
const auto meanDeviation = []<class T>(const std::vector<T>& src, auto... rest) {
  T mean;
  if constexpr (sizeof(T) == 4) mean = byHint<true>(src, rest...);
  else mean = Sum64(src) / double(src.size());
  return std::pair(mean, std::isfinite(mean) ? T(Deviation(PartOf<double>(src, 0), mean, 4)) : 0);
};
template <class Result>
constexpr auto roundedDeviation = [](const auto& src, At at) {
  const double mean = ExactSum(src, 0) / double(src.size());
  return std::pair(RoundSaturate<Result>(mean * at.Factor()),
                   RoundSaturate<Result>(Deviation(PartOf<double>(src, 0), mean, 8) * at.Factor()));
};
constexpr auto second = [](auto oracle) {
  return [=](const auto&... arguments) { return oracle(arguments...).second; };
};

// ---- Sums of logarithms ----

constexpr double kLn2 = 0x1.62e42fefa39efp-1;

// ln(1 + i/256) rounded to binary64; NaN if the long double is not farther from a tie than its own error.
double TableLn(int i) {
  const long double exact = std::log(1 + i / 256.0L);
  const double rounded = static_cast<double>(exact);
  const long double half = (std::nextafter(rounded, 1.0) - static_cast<long double>(rounded)) / 2;
  const long double error = exact * 4 * std::numeric_limits<long double>::epsilon();
  return i == 0 || (error < half / 8 && half - std::fabs(exact - rounded) > error) ? rounded : NAN;
}

// The fields of a positive sample: a subnormal is read as if it had a leading one, a NaN as 1.5 beyond the largest.
struct Reduced {
  double head;      // with the exponent as 32 bits without a sign
  double recip;
  double remainder; // of the fraction, from 0 to 2^-8
  double offset;
  template <class T>
  explicit Reduced(T x) {
    static const auto table = [] {
      std::array<double, 255> rows;
      for (int row = 0; row < 255; ++row) rows[row] = TableLn(row);
      return rows;
    }();
    using Limits = std::numeric_limits<T>;
    int exponent = Limits::max_exponent + 1;
    double fraction = std::isnan(x) ? 0.5 : 0;
    if (std::isnormal(x)) fraction = 2 * std::frexp(x, &exponent) - 1;
    else if (std::isfinite(x)) exponent = Limits::min_exponent - 1, fraction = std::ldexp(x, 1 - Limits::min_exponent);
    const int i = static_cast<int>(fraction * 256);
    const double wrapped = exponent - 1 < 0 ? exponent - 1 + 0x1p32 : exponent - 1;
    head = std::fma(wrapped, kLn2, i == 255 ? kLn2 : table[i]);
    recip = i == 255 ? 0.5 : 1 / (1 + i / 256.0);
    remainder = fraction - i / 256.0;
    offset = i == 255 ? -0x1p-9 : 0;
  }
};

// The remainder is rounded after the product and after the offset, or once after both.
template <bool kOnce>
constexpr auto ln32 = [](float x) {
  const Reduced part(x);
  const float scaled = static_cast<float>(part.remainder * part.recip);
  const float t = kOnce ? static_cast<float>(std::fma(part.remainder, part.recip, part.offset))
                        : scaled + static_cast<float>(part.offset);
  return static_cast<float>(part.head + t * std::fma(t, std::fma(t, 0.33333334f, -0.5f), 1.0f));
};
const auto ln64 = [](double x) {
  const Reduced part(x);
  const double remainder = static_cast<float>(1 + part.remainder) - 1.0f;
  const double t = std::fma(remainder, part.recip, part.offset), u = t * t;
  const double p = std::fma(u, std::fma(u, std::fma(u, 0.14285714285714288, 0.2), 0.3333333333333333), 1.0);
  const double q = std::fma(u, std::fma(u, std::fma(u, -0.125, -0.16666666666666666), -0.25), -0.5);
  return part.head + std::fma(t, p, u * q);
};
const auto lnHead = [](float x) { return Reduced(double{x}).head; };

// NaN where a logarithm above 1 errs by more than `error`.
template <class Ln>
auto Logarithms(Ln ln, double error) {
  return [=]<class T>(const std::vector<T>& src, At at) {
    decltype(ln(T())) sum = 0;
    for (T x : src) {
      at.Note(ORVA_STS_LN_ZERO_WARN, x == 0), at.Note(ORVA_STS_LN_NEG_WARN, x < 0);
      sum += x == 0 ? -INFINITY : x < 0 ? NAN : ln(x);
      if (x >= 1 && x < 256 && !(std::fabs(ln(x) - std::log(static_cast<long double>(x))) <= error)) sum = NAN;
    }
    return sum;
  };
}
// Positive samples of every size, singly each row of the table and what is read in an odd way.
const auto kLogarithms = []<class T>(T, auto run) {
  using Limits = std::numeric_limits<T>;
  Random random(1);
  std::vector<T> src;
  for (int round = 0; round < 800; ++round) {
    src.resize(1 + round / 20);
    for (T& x : src) {
      const int exponent = static_cast<int>(round % 2 == 0 ? random.Below(4) : random.Below(250) - 125);
      if constexpr (std::is_integral_v<T>) x = static_cast<T>(1 + random.Below(32767));
      else x = static_cast<T>(std::ldexp(1 + random.Unit(), exponent));
    }
    run(Case(src));
  }
  src = {Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), -Limits::quiet_NaN(), Limits::min() / 2, T(0.5)};
  for (int row = 0; row < 256; ++row) src.push_back(static_cast<T>(1 + row / 256.0));
  for (T x : src) run(Case(std::vector{x}));
  for (const auto& last : std::vector<std::vector<T>>{{0, 1, -1}, {-1, 0, 3}, {2, T(-0.0), 0}}) run(Case(last));
};

// ---- Norms ----

// A norm of one array, or of the differences of two; integers are widened.
auto Of(auto norm) {
  return [=]<class T>(const std::vector<T>& a, const auto&... rest) {  // another array or none, and At
    using Wide = std::conditional_t<std::is_integral_v<T>, int32_t, T>;
    const auto given = std::tie(rest...);
    std::vector<Wide> x(a.begin(), a.end());
    if constexpr (sizeof...(rest) == 2)
      for (size_t i = 0; i < a.size(); ++i) {
        const T y = std::get<0>(given)[i];
        if constexpr (IsComplex<T>) x[i] = {x[i].re - y.re, x[i].im - y.im};
        else x[i] -= y;
      }
    return norm(x, std::get<sizeof...(rest) - 1>(given));
  };
}

template <class T>
Real<T> Size(T x) {  // magnitude of a real sample, squared magnitude of a complex one
  if constexpr (IsComplex<T>) return std::fma(x.re, x.re, x.im * x.im);
  else return std::fabs(x);
}

// A NaN in the body stays, one in the tail is passed over.
template <size_t kStep>
constexpr auto largest = []<class T>(const std::vector<T>& x, At) {
  const auto body = [&](Real<T>& result, size_t i) {
    result = std::isnan(Size(x[i])) || std::isnan(result) ? NAN : std::fmax(result, Size(x[i]));
  };
  const auto tail = [&](Real<T>& result, size_t i) { result = Size(x[i]) > result ? Size(x[i]) : result; };
  const Real<T> result = LaneSum<Real<T>>(x.size(), 1, kStep, Fold::kPairs, body, tail);
  return IsComplex<T> ? std::sqrt(double(result)) : double(result);
};
// Of one real array the companion's: NaN is passed over, and the result of NaN alone.
const auto largestOfAll = []<class T>(const std::vector<T>& x, At) {
  T most = NAN;
  for (T each : x)
    if (!std::isnan(each) && !(std::fabs(each) <= most)) most = std::fabs(each);
  return most;
};
template <class T>
constexpr size_t kLanes = 16 / sizeof(Real<T>);
const auto magnitudes = []<class T>(const std::vector<T>& x, At) {
  const auto add = [&](T& sum, size_t i) { sum += std::fabs(x[i]); };
  return LaneSum<T>(x.size(), kLanes<T>, kLanes<T>, Fold::kPairs, add, add);
};
const auto length = []<class T>(const std::vector<T>& x, At) {
  const auto add = [&](T& sum, size_t i) { sum = std::fma(x[i], x[i], sum); };
  return std::sqrt(LaneSum<T>(x.size(), kLanes<T>, kLanes<T>, Fold::kPairs, add, add));
};
// The body's root is taken in the precision of the source, the tail's in binary64.
const auto complexMagnitudes = []<class T>(const std::vector<T>& x, At) {
  const auto body = [&](double& sum, size_t i) { sum += std::sqrt(Size(x[i])); };
  const auto tail = [&](double& sum, size_t i) { sum += std::sqrt(double(Size(x[i]))); };
  return LaneSum<double>(x.size(), 2, kLanes<T>, Fold::kPairs, body, tail);
};
// The body's sum has the precision of the source, the tail's binary64.
const auto complexLength = []<class T>(const std::vector<T>& x, At) {
  const auto add = [&](Real<T>& sum, size_t i) { sum = std::fma(x[i].im, x[i].im, std::fma(x[i].re, x[i].re, sum)); };
  const size_t body = x.size() / kLanes<T> * kLanes<T>;
  double sum = LaneSum<Real<T>>(body, kLanes<T>, kLanes<T>, Fold::kPairs, add, add);
  for (size_t i = body; i < x.size(); ++i) sum += Size(x[i]);
  return std::sqrt(sum);
};
// A single NaN, anywhere.
const auto kOneNan = []<class T>(T, auto run) {
  for (size_t len = 1; len < 40; ++len)
    for (size_t at = 0; at < len; ++at) {
      auto a = RandomArray<T>(len, len);
      reinterpret_cast<Real<T>*>(&a[at])[0] = NAN;
      run(Case(a, RandomArray<T>(len, at)));
    }
};

using Integers = std::vector<int32_t>;
int64_t Folded(const Integers& x, auto step) { return std::accumulate(x.begin(), x.end(), int64_t{0}, step); }
int64_t Largest(const Integers& x) {
  return Folded(x, [](int64_t most, int64_t each) { return std::max(most, std::abs(each)); });
}
int64_t Sum(const Integers& x) { return Folded(x, [](int64_t sum, int64_t each) { return sum + std::abs(each); }); }
int64_t Squares(const Integers& x) { return Folded(x, [](int64_t sum, int64_t each) { return sum + each * each; }); }
int32_t Wrapped(const Integers& x) { return static_cast<int32_t>(static_cast<uint32_t>(Sum(x))); }
double Root(const Integers& x) { return std::sqrt(static_cast<double>(Squares(x))); }

// Extremes whose sums pass 32 bits.
const Cases kExtremes = [](auto run) {
  for (size_t len : {1, 33, 65537}) run(Case(std::vector<Orva16s>(len, -32768), std::vector<Orva16s>(len, 32767)));
};
const Cases kMoreThanLanesHold = [](auto run) {
  run(Case(std::vector<Orva16s>(1100001, -32768), std::vector<Orva16s>(1100001, 32767)));
};
auto Narrowed(auto value) {
  return Of([=](const Integers& x, At) { return static_cast<float>(value(x)); });
}
// Scaled results are truncated toward zero. Some hold the factor as a binary32 number.
template <class Result>
auto Truncated(auto value, bool narrow = false) {
  return Of([=](const Integers& x, At at) {
    const double factor = narrow ? double(at.FloatFactor()) : at.Factor();
    return RoundSaturate<Result>(std::trunc(static_cast<double>(value(x)) * factor));
  });
}

// ---- Columns ----

constexpr int64_t kMost = std::numeric_limits<int64_t>::max(), kLeastSum = std::numeric_limits<int64_t>::min();
constexpr uint64_t kSign = uint64_t{1} << 63;

Int128 ValueOf(OrvaDecimal128 row) {
  const Int128 magnitude = static_cast<Int128>(row.hi & ~kSign) << 64 | row.lo;
  return row.hi & kSign ? -magnitude : magnitude;
}
Int128 ValueOf(Orva64s row) { return row; }

// Of decimals the flag also tells of sums beyond 38 digits.
std::pair<OrvaDecimal128, bool> Decimal(Int128 total, bool overflow) {
  using Unsigned = unsigned __int128;
  const Unsigned magnitude = total < 0 ? -static_cast<Unsigned>(total) : static_cast<Unsigned>(total);
  constexpr Unsigned limit = Unsigned{10'000'000'000'000'000'000u} * 10'000'000'000'000'000'000u;  // 10^38
  const uint64_t high = static_cast<uint64_t>(magnitude >> 64) ^ (total < 0 ? kSign : 0);
  return {{static_cast<uint64_t>(magnitude), high}, overflow || (magnitude & ~(Unsigned{kSign} << 64)) >= limit};
}

// The ordered loop: at the first overflow the wrapped sum stays, and the count goes on.
template <class Accumulator, bool kMean>
constexpr auto column = []<class Row>(const std::vector<Row>& rows, const Orva8u* nulls, At) {
  Accumulator sum = 0;
  bool overflow = false;
  uint64_t count = 0;
  for (size_t i = 0; i < rows.size(); ++i) {
    if (nulls != nullptr && nulls[i] != 0) continue;
    ++count;
    if (overflow) continue;
    if constexpr (std::is_same_v<Accumulator, double>) sum += rows[i];
    else overflow = __builtin_add_overflow(sum, static_cast<Accumulator>(ValueOf(rows[i])), &sum);
  }
  if constexpr (std::is_same_v<Accumulator, Int128>) {
    const auto [total, flag] = Decimal(sum, overflow);
    if constexpr (kMean) return std::tuple(flag, total, count);
    else return std::tuple(flag, total);
  } else if constexpr (kMean) {
    return std::tuple(overflow, static_cast<double>(sum), count);
  } else {
    return std::tuple(overflow, sum);
  }
};

// Masks of no, all, few and many nulls, of any byte but 0, in runs and singly.
std::vector<Orva8u> RandomMask(Random& random, size_t n) {
  const uint64_t of_100[] = {0, 1, 10, 50, 99, 100};
  const uint64_t nulls = of_100[random.Below(6)], run = 1 + random.Below(20);
  std::vector<Orva8u> mask(n);
  for (size_t i = 0; i < n; ++i) {
    if (i % run != 0) mask[i] = mask[i - 1];
    else if (random.Below(100) < nulls) mask[i] = static_cast<Orva8u>(1 + random.Below(255));
  }
  return mask;
}
// Rows small enough never to overflow, of which a few are moved next to the edge of the accumulator.
template <class Row>
std::vector<Row> RandomRows(Random& random, size_t n) {
  const Variety variety = kVarieties[random.Below(3)];
  auto rows = RandomArray<Row>(n, random.Next(), variety);
  if constexpr (sizeof(Row) == 8 && std::is_integral_v<Row>) {
    if (random.Below(2) != 0)
      for (Row& row : rows) row >>= 12 + random.Below(40);
    for (uint64_t extremes = random.Below(4); extremes != 0; --extremes)
      rows[random.Below(n)] = random.Below(2) != 0 ? kMost - static_cast<int64_t>(random.Below(3)) : kLeastSum;
  } else if constexpr (std::is_same_v<Row, OrvaDecimal128>) {
    const int shift = static_cast<int>(random.Below(62));
    for (Row& row : rows) row.hi = (row.hi & kSign) | (row.hi & ~kSign) >> shift;
  }
  return rows;
}
template <class Row>
constexpr Cases kColumns = [](auto run) {
  for (uint64_t seed = 1; seed <= 1500; ++seed) {
    Random random(seed);
    const size_t len = seed <= 160 ? seed : 1 + random.Below(2500);
    const auto rows = RandomRows<Row>(random, len);
    if (seed % 4 == 0) run(Case(rows).NoMask());
    else run(Case(rows, RandomMask(random, len)));
  }
};
// One row of the edge and one that steps over it, anywhere; of 128 bits by elements far beyond a legal decimal.
const Cases kOverflow = [](auto run) {
  constexpr size_t kLen = 1100;
  for (size_t at : {size_t{0}, size_t{1}, size_t{7}, size_t{8}, size_t{511}, size_t{512}, size_t{600}, kLen - 2}) {
    std::vector<Orva64s> rows(kLen, 5);
    std::fill(rows.begin(), rows.begin() + static_cast<ptrdiff_t>(at), 0);
    rows[at] = kMost;
    std::vector<Orva8u> mask(kLen);
    for (size_t i = 0; i < kLen; ++i) mask[i] = i % 3 == 2 || i == at + 1 ? 0x80 : 0;
    mask[at] = mask.back() = 0;
    for (int sign : {0, -1}) {
      run(Case(rows).NoMask());
      auto masked = rows;
      masked[at + 1] = sign == 0 ? kLeastSum : kMost;
      run(Case(masked, mask));
      for (Orva64s& row : rows) row = -row - 1;
    }
  }
};
const Cases kWideOverflow = [](auto run) {
  for (size_t at : {0, 5, 511, 700}) {
    std::vector<OrvaDecimal128> rows(900, OrvaDecimal128{3, 0});
    rows[at] = {~uint64_t{0}, ~kSign};
    run(Case(rows).NoMask());
  }
  run(Case(std::vector<OrvaDecimal128>(900, OrvaDecimal128{1, kSign})).NoMask());
};
const Cases kLimitOfDecimals = [](auto run) {
  const OrvaDecimal128 limit = {0x098A224000000000, 0x4B3B4CA85A86C47A}, below = {limit.lo - 1, limit.hi};
  const OrvaDecimal128 one = {1, 0}, minus_one = {1, kSign}, minus_zero = {0, kSign};
  const OrvaDecimal128 under = {below.lo, below.hi | kSign};
  const OrvaDecimal128 half = {0, uint64_t{1} << 62}, minus_half = {0, kSign | uint64_t{1} << 62};
  for (const std::vector<OrvaDecimal128>& rows : std::vector<std::vector<OrvaDecimal128>>{
           {below}, {below, one}, {limit, minus_one},  // a running sum at the limit comes back
           {under}, {under, minus_one}, {minus_zero}, {one, minus_one},
           {minus_half, minus_half},  // -2^127 has no sign and magnitude
           {half, half}})             // wrapped to the same, but by overflow
    run(Case(rows).NoMask());
};

#define COLUMN(tag, Accumulator, Row, ...)                                                      \
  MEMBERS(ORVAS_AggSum_##tag).Gives(column<Accumulator, false>).On(kColumns<Row>)__VA_ARGS__,  \
      MEMBERS(ORVAS_AggMean_##tag).Gives(column<Accumulator, true>).On(kColumns<Row>)__VA_ARGS__
#define BOTH(kind, tag) ORVAS_Norm_##kind##_##tag, ORVAS_NormDiff_##kind##_##tag
#define NORMS(kind, tag) MEMBERS(BOTH(kind, tag))

const Rows rows("reduce", {
    MEMBERS(ORVAS_DotProd_32f).Gives(fused<float, Orva32f, 8, 8>).On([](auto run) {  // a body gives no -0
      for (size_t len : {1, 8}) run(Case(std::vector<Orva32f>(len, -1.0f), std::vector<Orva32f>(len, 0.0f)));
    }),
    MEMBERS(ORVAS_DotProd_64f, ORVAS_DotProd_32f64f).Gives(fused<double, Orva64f, 2, 2>),
    MEMBERS(ORVAS_DotProd_32f32fc).Gives(fused<float, Orva32fc, 8, 8>),
    MEMBERS(ORVAS_DotProd_32f32fc64fc, ORVAS_DotProd_64f64fc).Gives(fused<double, Orva64fc, 2, 4>),
    MEMBERS(ORVAS_DotProd_32fc).Gives(complexFused<float, Orva32fc, 8, 8, false>),
    MEMBERS(ORVAS_DotProd_64fc).Gives(complexFused<double, Orva64fc, 4, 4, false>),
    MEMBERS(ORVAS_DotProd_32fc64fc).Gives(complexFused<double, Orva64fc, 2, 4, true>),
    MEMBERS(ORVAS_DotProd_16sc64sc, ORVAS_DotProd_16s16sc64sc).Gives(modulo),
    MEMBERS(ORVAS_DotProd_16s32f).Gives(inBinary64<8, Orva32f>).On(kBeyondExactSums),
    MEMBERS(ORVAS_DotProd_16s64s).Gives(inBinary64<8, Orva64s>).On(kBeyondExactSums),
    MEMBERS(ORVAS_DotProd_16s32s_S).Gives(inBinary64<8, Orva32s>),
    MEMBERS(ORVAS_DotProd_16s32s32s_S, ORVAS_DotProd_32s_S).Gives(inBinary64<4, Orva32s>),

    MEMBERS(ORVAS_Sum_32f).Gives(byHint<false>).Constants({{0}, {1}, {-1}}).On(kMinusZeros<Orva32f>).On([](auto run) {
      run(Case(RandomArray<Orva32f>(99, 1)).With({2}));
    }),
    MEMBERS(ORVAS_Sum_32fc).Gives(byHint<false>).Constants({{0}, {1}, {-1}}),
    MEMBERS(ORVAS_Mean_32f, ORVAS_Mean_32fc).Gives(byHint<true>).Constants({{0}, {1}, {-1}}),
    MEMBERS(ORVAS_Sum_64f).Gives([](const auto& src, At) { return Sum64(src); }).On(kMinusZeros<Orva64f>),
    MEMBERS(ORVAS_Mean_64f).Gives([](const auto& src, At) { return Sum64(src) / double(src.size()); }),
    MEMBERS(ORVAS_Sum_64fc).Gives(complexSum<false>).On(kMinusZeros<Orva64fc>),
    MEMBERS(ORVAS_Mean_64fc).Gives(complexSum<true>),
    MEMBERS(ORVAS_Sum_16s_S).Gives(rounded<Orva16s, false>).On(kHalves),
    MEMBERS(ORVAS_Sum_32s_S).Gives(rounded<Orva32s, false>).On(kLong<Orva32s>),
    MEMBERS(ORVAS_Sum_16s32s_S).Gives(rounded<Orva32s, false>).On(kLong<Orva16s>),
    MEMBERS(ORVAS_Sum_16sc_S).Gives(rounded<Orva16sc, false>),
    MEMBERS(ORVAS_Sum_16sc32sc_S).Gives(rounded<Orva32sc, false>).On(kLong<Orva16sc>),
    MEMBERS(ORVAS_Mean_16s_S).Gives(rounded<Orva16s, true>).On(kLong<Orva16s>).On(kHalves),
    MEMBERS(ORVAS_Mean_32s_S).Gives(rounded<Orva32s, true>),
    MEMBERS(ORVAS_Mean_16sc_S).Gives(rounded<Orva16sc, true>),
    MEMBERS(ORVAS_StdDev_16s_S).Gives(second(roundedDeviation<Orva16s>)).MinLength(2),
    MEMBERS(ORVAS_StdDev_16s32s_S).Gives(second(roundedDeviation<Orva32s>)).MinLength(2),
    MEMBERS(ORVAS_MeanStdDev_16s_S).Gives(roundedDeviation<Orva16s>).MinLength(2),
    MEMBERS(ORVAS_MeanStdDev_16s32s_S).Gives(roundedDeviation<Orva32s>).MinLength(2),
    MEMBERS(ORVAS_StdDev_32f).Gives(second(meanDeviation)).Constants({{0}, {1}, {-1}}).MinLength(2).LengthFirst(2),
    MEMBERS(ORVAS_StdDev_64f).Gives(second(meanDeviation)).MinLength(2).LengthFirst(2),
    MEMBERS(ORVAS_MeanStdDev_32f).Gives(meanDeviation).Constants({{0}, {1}, {-1}}).MinLength(2).LengthFirst(3),
    MEMBERS(ORVAS_MeanStdDev_64f).Gives(meanDeviation).MinLength(2).LengthFirst(3),
    MEMBERS(ORVAS_SumLn_32f).Gives(Logarithms(ln32<false>, 0x1p-22)).On(kLogarithms),
    MEMBERS(ORVAS_SumLn_64f).Gives(Logarithms(ln64, 0x1p-24)).On(kLogarithms),
    MEMBERS(ORVAS_SumLn_16s32f).Gives(Logarithms(ln32<true>, 0x1p-22)).On(kLogarithms),
    MEMBERS(ORVAS_SumLn_32f64f).Gives(Logarithms(lnHead, 0x1p-8)).On(kLogarithms).Allocates(ORVA_STS_NULL_PTR_ERR),

    MEMBERS(ORVAS_Norm_Inf_32f, ORVAS_Norm_Inf_64f).Gives(largestOfAll),
    MEMBERS(ORVAS_NormDiff_Inf_32f).Gives(Of(largest<4>)).On(kOneNan),
    MEMBERS(ORVAS_NormDiff_Inf_64f).Gives(Of(largest<2>)).On(kOneNan),
    MEMBERS(BOTH(L1, 32f), BOTH(L1, 64f)).Gives(Of(magnitudes)).On(kOneNan),
    MEMBERS(BOTH(L2, 32f), BOTH(L2, 64f)).Gives(Of(length)).On(kOneNan),
    MEMBERS(ORVAS_Norm_Inf_32fc32f).Gives(largest<4>).On(kOneNan),
    MEMBERS(ORVAS_NormDiff_Inf_32fc32f).Gives(Of(largest<8>)).On(kOneNan),
    NORMS(Inf, 64fc64f).Gives(Of(largest<2>)).On(kOneNan),
    MEMBERS(BOTH(L1, 32fc64f), BOTH(L1, 64fc64f)).Gives(Of(complexMagnitudes)).On(kOneNan),
    MEMBERS(BOTH(L2, 32fc64f), BOTH(L2, 64fc64f)).Gives(Of(complexLength)).On(kOneNan),
    NORMS(Inf, 16s32f).Gives(Narrowed(Largest)).On(kExtremes).On(kMoreThanLanesHold),
    NORMS(L1, 16s32f).Gives(Narrowed(Wrapped)).On(kExtremes).On(kMoreThanLanesHold),
    NORMS(L2, 16s32f).Gives(Narrowed(Root)).On(kExtremes).On(kMoreThanLanesHold),
    MEMBERS(ORVAS_Norm_Inf_16s32s_S).Gives(Truncated<Orva32s>(Largest)).On(kExtremes),
    MEMBERS(ORVAS_NormDiff_Inf_16s32s_S).Gives(Truncated<Orva32s>(Largest, true)).On(kExtremes),
    NORMS(L1, 16s32s_S).Gives(Truncated<Orva32s>(Wrapped)).On(kExtremes),
    NORMS(L1, 16s64s_S).Gives(Truncated<Orva64s>(Sum)).On(kExtremes),
    MEMBERS(ORVAS_Norm_L2_16s32s_S).Gives(Truncated<Orva32s>(Root, true)).On(kExtremes),
    MEMBERS(ORVAS_NormDiff_L2_16s32s_S).Gives(Truncated<Orva32s>(Root)).On(kExtremes),
    NORMS(L2Sqr, 16s64s_S).Gives(Truncated<Orva64s>(Squares)).On(kExtremes),

    COLUMN(16s, int64_t, Orva16s), COLUMN(32s, int64_t, Orva32s), COLUMN(64s, int64_t, Orva64s, .On(kOverflow)),
    COLUMN(64f, double, Orva64f), COLUMN(decimal64, Int128, Orva64s),
    COLUMN(decimal128, Int128, OrvaDecimal128, .On(kWideOverflow).On(kLimitOfDecimals)),
});

}  // namespace tzm_test::reduce_rows
