// Single- and multi-rate FIR filters: chains to the bit, the FFT route against exact sums, streams, routes, statuses.
#include <signal_tzm/fir.h>
#include <signal_tzm/reduce.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>

#include "support/testing.h"

namespace tzm_test::streaming_test {

// Init, run and release of one pairing of samples and taps.
template <class TapType, class SampleType, class StateType, class... P>
struct Filter {
  using Tap = TapType;
  using Sample = SampleType;
  using State = StateType;
  const char* name;
  OrvaStatus (*init)(const Tap*, P...);
  OrvaStatus (*run)(const Sample*, Sample*, int32_t, State*, const Sample*, Sample*);
  OrvaStatus (*release)(State*);
};
template <class Tap, class Sample, class State, class... P>
Filter(const char*, OrvaStatus (*)(const Tap*, P...),
       OrvaStatus (*)(const Sample*, Sample*, int32_t, State*, const Sample*, Sample*), OrvaStatus (*)(State*))
    -> Filter<Tap, Sample, State, P...>;
#define FILTER(family, run, made) \
  Filter{#family #run, ORVAS_##family##Init##made, ORVAS_##family##run, ORVAS_##family##Release##made}
#define FOR_EACH_FILTER(family, ...)                                                                       \
  [](auto each) {                                                                                          \
    each(FILTER(family, _32f, _32f)), each(FILTER(family, _16s, _32f)), each(FILTER(family, _64f, _64f));   \
    each(FILTER(family, _32fc, _32fc)), each(FILTER(family, _16sc, _32fc));                                 \
    each(FILTER(family, _64fc, _64fc)), each(FILTER(family, 32f_32fc, 32f_32fc));                           \
  }(__VA_ARGS__)

// ---- The sums said plainly ----

// What samples are summed in.
template <class T>
T Widen(T x) { return x; }
Orva32f Widen(Orva16s x) { return x; }
Orva32fc Widen(Orva16sc x) { return {static_cast<float>(x.re), static_cast<float>(x.im)}; }
template <class Sample>
using Wide = decltype(Widen(Sample()));
template <class Sample>
constexpr bool kFloat = SampleOf<Sample>().kind >= Kind::k16f;
template <class Sample>
constexpr bool kBinary64 = SampleOf<Sample>().kind == Kind::k64f;

// One tap of a strict chain of fused steps.
template <class Tap, class Sum>
void Fuse(Tap tap, Sum x, Sum& sum) {
  if constexpr (std::is_floating_point_v<Sum>) {
    sum = std::fma(tap, x, sum);
  } else if constexpr (std::is_floating_point_v<Tap>) {
    sum = {std::fma(tap, x.re, sum.re), std::fma(tap, x.im, sum.im)};
  } else {
    sum.re = std::fma(-tap.im, x.im, std::fma(tap.re, x.re, sum.re));
    sum.im = std::fma(tap.im, x.re, std::fma(tap.re, x.im, sum.im));
  }
}

// To nearest, ties to even, saturated; NaN to 0, or in the single-rate tail to the end of its sign.
Orva16s Round(float y, bool by_sign) {
  if (std::isnan(y)) return !by_sign ? 0 : std::signbit(y) ? -32768 : 32767;
  return static_cast<Orva16s>(std::nearbyint(std::clamp(y, -32768.0f, 32767.0f)));
}

void Dot(const Orva32f* t, const Orva32f* x, int32_t len, Orva32f* sum) { ORVAS_DotProd_32f(t, x, len, sum); }
void Dot(const Orva64f* t, const Orva64f* x, int32_t len, Orva64f* sum) { ORVAS_DotProd_64f(t, x, len, sum); }
void Dot(const Orva32fc* t, const Orva32fc* x, int32_t len, Orva32fc* sum) { ORVAS_DotProd_32fc(t, x, len, sum); }
void Dot(const Orva64fc* t, const Orva64fc* x, int32_t len, Orva64fc* sum) { ORVAS_DotProd_64fc(t, x, len, sum); }
void Dot(const Orva32f* t, const Orva32fc* x, int32_t len, Orva32fc* sum) { ORVAS_DotProd_32f32fc(t, x, len, sum); }

// One output, of taps and samples oldest first: in a block the strict chain, in a call's tail what takes its place.
template <bool kSingleRate, class Tap, class Sample>
Sample Output(const std::vector<Tap>& taps, const Sample* x, bool tail) {
  constexpr bool kPairs = std::is_same_v<Sample, Orva16sc>;
  const bool own = tail && kSingleRate;
  Wide<Sample> sum = {};
  for (size_t j = 0; j < taps.size(); ++j) {
    const Tap tap = taps[j];
    const Wide<Sample> w = Widen(x[j]);
    if (!kPairs || !tail) {
      Fuse(tap, w, sum);
    } else if constexpr (kPairs) {
      sum.re += std::fma(-tap.im, w.im, tap.re * w.re);
      sum.im += kSingleRate ? std::fma(tap.im, w.re, tap.re * w.im) : std::fma(tap.re, w.im, tap.im * w.re);
    }
  }
  if constexpr (kFloat<Sample>) {
    if (own) Dot(taps.data(), x, static_cast<int32_t>(taps.size()), &sum);
    return sum;
  } else if constexpr (kPairs) {
    return {Round(sum.re, own), Round(sum.im, own)};
  } else {
    return Round(sum, own);
  }
}

template <class T>
std::complex<long double> Exact(T x) {
  if constexpr (std::is_arithmetic_v<T>) return static_cast<long double>(x);
  else return {static_cast<long double>(x.re), static_cast<long double>(x.im)};
}

// The exact sums, to a few units in the last place of the largest that there may be.
template <class Tap, class Sample>
void ExpectConvolution(const std::vector<Tap>& taps, const std::vector<Sample>& line, const Sample* dst) {
  long double taps_sum = 0, most = 0;
  for (const Tap& tap : taps) taps_sum += std::abs(Exact(tap));
  for (const Sample& x : line) most = std::max(most, std::abs(Exact(x)));
  const long double epsilon = kBinary64<Tap> ? 0x1p-52L : 0x1p-23L;
  const long double bound = 4 * epsilon * taps_sum * most + (kFloat<Sample> ? 0 : 0.5L);
  for (size_t n = 0; n + taps.size() <= line.size(); ++n) {
    std::complex<long double> sum = 0;
    for (size_t i = 0; i < taps.size(); ++i) sum += Exact(taps[i]) * Exact(line[n + taps.size() - 1 - i]);
    const auto limit = [](long double v) { return kFloat<Sample> ? v : std::clamp(v, -32768.0L, 32767.0L); };
    const auto error = Exact(dst[n]) - std::complex{limit(sum.real()), limit(sum.imag())};
    ASSERT_LE(std::max(std::abs(error.real()), std::abs(error.imag())), bound) << "output " << n;
  }
}

// ---- Streams ----

// Runs of several lengths on one state, made with `parameters`, each with the delay line of the one before: check(line,
// dst, length) sees the samples of the line and the call, and the outputs. Every second run is in place where it works.
template <class F>
void Stream(const F& filter, const std::vector<typename F::Tap>& taps, size_t kept, int32_t up, int32_t down,
            bool in_place, Variety variety, std::vector<int32_t> lengths, auto check, auto... parameters) {
  using Sample = typename F::Sample;
  typename F::State* state = nullptr;
  ASSERT_EQ(filter.init(taps.data(), static_cast<int32_t>(taps.size()), parameters..., &state), 0);
  std::vector<Sample> line(kept);
  GuardedArray<Sample> delay(kept);
  uint64_t seed = 0;
  for (int32_t len : lengths) {
    SCOPED_TRACE(testing::Message() << filter.name << ", length " << len);
    const auto samples = RandomArray<Sample>(down * len, ++seed, variety);
    line.insert(line.end(), samples.begin(), samples.end());
    GuardedArray<Sample> src(samples, seed % 3 ? Place::kEnd : Place::kStart), dst(up * len);
    Sample* const out = in_place && seed % 2 == 0 ? src.data() : dst.data();
    ASSERT_EQ(filter.run(src.data(), out, len, state, seed == 1 ? nullptr : delay.data(), delay.data()), 0);
    check(line, out, len);
    line.erase(line.begin(), line.end() - kept);
    ASSERT_TRUE(SameBits("delay line", line.data(), delay.data(), kept, seed));
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_EQ(filter.release(state), 0);
}

template <class Sample>
std::vector<Variety> Varieties() {
  return kFloat<Sample> ? std::vector{Variety::kModerate, Variety::kSpecial} : std::vector{Variety::kWide};
}
template <class F>
std::vector<typename F::Tap> Taps(const F&, int32_t len, Variety variety) {
  return RandomArray<typename F::Tap>(len, len, kFloat<typename F::Sample> ? variety : Variety::kModerate);
}

TEST(FIRSR, DirectRouteIsTheChainThenTheDotProduct) {
  FOR_EACH_FILTER(FIRSR, []<class F>(const F& filter) {
    using Sample = typename F::Sample;
    for (int32_t taps_len : {1, 2, 3, 8, 15, 16, 32, 33, 40, 67, 130})
      for (Variety variety : Varieties<Sample>()) {
        const auto taps = Taps(filter, taps_len, variety), reversed = std::vector(taps.rbegin(), taps.rend());
        const auto check = [&](const std::vector<Sample>& line, const Sample* dst, int32_t len) {
          std::vector<Sample> expected;
          for (int32_t n = 0; n < len; ++n)
            expected.push_back(Output<true>(reversed, &line[n], n >= len - len % (kBinary64<Sample> ? 8 : 16)));
          EXPECT_TRUE(SameBits(filter.name, expected.data(), dst, len)) << taps_len << " taps";
        };
        Stream(filter, taps, taps_len - 1, 1, 1, kFloat<Sample>, variety,
               {1, 7, 8, 9, 15, 16, 17, 31, 33, 48, 64, 65, 96, 100, 127, 128, 145, 200, 257, 300}, check, 300, 1);
      }
  });
}

// The largest length decides between two lengths of transforms.
TEST(FIRSR, FftRouteConvolves) {
  FOR_EACH_FILTER(FIRSR, []<class F>(const F& filter) {
    for (int32_t taps_len : {1, 2, 5, 16, 33, 100})
      for (int32_t max_len : {1, 1000}) {
        const auto taps = Taps(filter, taps_len, Variety::kModerate);
        const auto check = [&](const auto& line, const auto* dst, int32_t) { ExpectConvolution(taps, line, dst); };
        Stream(filter, taps, taps_len - 1, 1, 1, false, Variety::kModerate, {1, 3, 16, 50, 257, 1000}, check, max_len,
               2);
      }
  });
}

// The last rates want windows that are long, or far apart, for what is laid side by side at a time.
struct Rates { int32_t taps, up, up_phase, down, down_phase; };
constexpr Rates kRates[] = {{1, 1, 0, 1, 0},    {5, 1, 0, 1, 0},      {40, 1, 0, 1, 0},      {17, 1, 0, 3, 2},
                            {64, 1, 0, 4, 0},   {9, 3, 1, 1, 0},      {31, 2, 1, 3, 2},      {50, 3, 2, 2, 1},
                            {7, 40, 39, 3, 2},  {1, 100, 99, 1, 0},   {33, 7, 0, 5, 4},      {100, 5, 4, 16, 3},
                            {130, 16, 3, 1, 0}, {12, 17, 16, 40, 39}, {200, 160, 5, 147, 3}, {700, 1, 0, 1, 0},
                            {900, 2, 1, 3, 0},  {400, 1, 0, 130, 7},  {1500, 2, 0, 601, 600}};

TEST(FIRMR, IsTheDefiningSumInOrder) {
  FOR_EACH_FILTER(FIRMR, []<class F>(const F& filter) {
    using Sample = typename F::Sample;
    for (const Rates& rates : kRates)
      for (Variety variety : Varieties<Sample>()) {
        const int32_t up = rates.up, down = rates.down, rows = (rates.taps + up - 1) / up;
        const auto taps = Taps(filter, rates.taps, variety);
        const auto check = [&](const std::vector<Sample>& line, const Sample* dst, int32_t iterations) {
          std::vector<Sample> expected;
          for (int32_t n = 0, len = up * iterations; n < len; ++n) {
            const int32_t shift = n * down + rates.down_phase - rates.up_phase + up;
            std::vector<typename F::Tap> own;
            for (int32_t r = rows; r-- > 0;)
              own.push_back(shift % up + r * up < rates.taps ? taps[shift % up + r * up] : typename F::Tap{});
            expected.push_back(Output<false>(own, &line[shift / up], n >= len - len % 16));
          }
          EXPECT_TRUE(SameBits(filter.name, expected.data(), dst, expected.size()))
              << rates.taps << " taps, up " << up << ", down " << down;
        };
        Stream(filter, taps, rows, up, down, false, variety, {1, 2, 5, 8, 16, 17, 40, 67}, check, up, rates.up_phase,
               down, rates.down_phase);
      }
  });
}

// A NaN of 16 bits is 0, but in the single-rate tail it saturates by its sign, that of AArch64; by FFT it is 32767.
TEST(StreamingFilters, NanInIntegers) {
  const float inf = INFINITY, nan = NAN;
  struct { std::vector<float> taps; Orva16s tail; } const cases[] = {
      {{1, nan}, 32767}, {{-nan, 1}, -32768}, {{inf, -inf}, 32767}, {{nan, 1, -nan}, -32768},
      {{-nan, inf, -inf}, 32767}};
  // All parts of 17 outputs for samples of ones.
  const auto outputs = []<class F>(const F& filter, const std::vector<float>& real_taps, auto... rest) {
    using Sample = typename F::Sample;
    std::vector<Orva16s> ones(17 * sizeof(Sample) / sizeof(Orva16s), 1), dst(ones);
    std::vector<typename F::Tap> taps(real_taps.size());
    for (size_t i = 0; i < taps.size(); ++i) std::memcpy(&taps[i], &real_taps[i], sizeof(float));
    const auto* const src = reinterpret_cast<const Sample*>(ones.data());
    typename F::State* state = nullptr;
    EXPECT_EQ(filter.init(taps.data(), static_cast<int32_t>(taps.size()), rest..., &state), 0);
    EXPECT_EQ(filter.run(src, reinterpret_cast<Sample*>(dst.data()), 17, state, src, nullptr), 0);
    filter.release(state);
    return dst;
  };
  for (const auto& [taps, tail] : cases) {
    std::vector<Orva16s> real(17), complex(34);
    EXPECT_EQ(outputs(FILTER(FIRMR, _16s, _32f), taps, 1, 0, 1, 0), real);
    EXPECT_EQ(outputs(FILTER(FIRMR, _16sc, _32fc), taps, 1, 0, 1, 0), complex);
    real[16] = complex[32] = complex[33] = tail;
    EXPECT_EQ(outputs(FILTER(FIRSR, _16s, _32f), taps, 17, 1), real);
    EXPECT_EQ(outputs(FILTER(FIRSR, _16sc, _32fc), taps, 17, 1), complex);
    EXPECT_EQ(outputs(FILTER(FIRSR, _16s, _32f), taps, 17, 2), std::vector<Orva16s>(17, 32767));
    EXPECT_EQ(outputs(FILTER(FIRSR, _16sc, _32fc), taps, 17, 2), std::vector<Orva16s>(34, 32767));
  }
}

// ---- Statuses ----

// With every request refused; 9 says that the sizes were accepted.
template <class F, class... P>
OrvaStatus Refused(const F& filter, P... parameters) {
  const typename F::Tap taps[1] = {};
  typename F::State* state = nullptr;
  const OrvaStatus status = WithoutMemory([&] { return filter.init(taps, parameters..., &state); });
  EXPECT_EQ(state, nullptr);
  return status;
}

// Init takes so many requests.
template <class F>
void ExpectRequests(const F& filter, int requests, int32_t taps_len, auto... parameters) {
  const std::vector<typename F::Tap> taps(taps_len);
  const auto init = [&](auto** state) { return filter.init(taps.data(), taps_len, parameters..., state); };
  EXPECT_EQ(ForEachFaultOfInit(init, filter.release), requests) << filter.name << " " << taps_len;
}

TEST(FIRSR, StatusesInTheirOrderAndTheRoute) {
  FOR_EACH_FILTER(FIRSR, []<class F>(const F& filter) {
    using Tap = typename F::Tap;
    constexpr int32_t kMostTaps = 536870911, kHalf = kBinary64<Tap> ? 1 << 23 : 1 << 24;  // of the most points
    constexpr int32_t kMostDirect = sizeof(Tap) == 4 ? 268435446 : sizeof(Tap) == 8 ? 134217719 : 67108856;
    struct { int32_t taps_len, max_len, algorithm; OrvaStatus status; } const cases[] = {
        {0, 0, 7, ORVA_STS_SIZE_ERR},                        {INT32_MAX, 0, 7, ORVA_STS_OVERFLOW_ERR},
        {5, 0, 7, ORVA_STS_SIZE_ERR},                        {5, INT32_MAX, -1, ORVA_STS_FIR_ALG_ERR},
        {5, INT32_MAX, 3, ORVA_STS_FIR_ALG_ERR},             {kMostTaps, 1, 0, ORVA_STS_OVERFLOW_ERR},
        {1, kMostTaps - 2, 2, ORVA_STS_MEM_ALLOC_ERR},       {1, kMostTaps - 1, 2, ORVA_STS_OVERFLOW_ERR},
        {1, INT32_MAX, 2, ORVA_STS_OVERFLOW_ERR},            {kHalf, 1, 2, ORVA_STS_MEM_ALLOC_ERR},
        {kHalf + 1, 1, 2, ORVA_STS_OVERFLOW_ERR},            {kHalf, kHalf + 2, 2, ORVA_STS_OVERFLOW_ERR},
        {kHalf + 1, 6000, 0, ORVA_STS_MEM_ALLOC_ERR},  // direct after all
        {10, kMostDirect - 10, 1, ORVA_STS_MEM_ALLOC_ERR},   {10, kMostDirect - 9, 1, ORVA_STS_OVERFLOW_ERR}};
    for (const auto& [taps_len, max_len, algorithm, status] : cases)
      EXPECT_EQ(Refused(filter, taps_len, max_len, algorithm), status)
          << filter.name << " " << taps_len << " " << max_len << " " << algorithm;
    // Two blocks, and two plans for transforms.
    const int32_t limit = std::is_floating_point_v<Wide<typename F::Sample>> ? 95 : 31;
    ExpectRequests(filter, 2, limit, 5120, 0);
    ExpectRequests(filter, 2, limit + 1, 5119, 0);
    ExpectRequests(filter, 4, limit + 1, 5120, 0);
    ExpectRequests(filter, 2, limit + 1, 5120, 1);
    ExpectRequests(filter, 4, 1, 10, 2);
  });
}

TEST(FIRMR, StatusesInTheirOrder) {
  FOR_EACH_FILTER(FIRMR, []<class F>(const F& filter) {
    // One row must be shorter than the quotient of the largest size by U+15, truncated, by the size of a sample.
    constexpr int32_t kMost = INT32_MAX, kWidest = kMost / int32_t(2 * sizeof(Wide<typename F::Sample>)) - 15;
    struct { Rates rates; OrvaStatus status; } const cases[] = {
        {{0, 0, 9, 0, 9}, ORVA_STS_SIZE_ERR},                 {{5, 0, 9, 1, 9}, ORVA_STS_FIRMR_FACTOR_ERR},
        {{5, 1, 9, 0, 9}, ORVA_STS_FIRMR_FACTOR_ERR},         {{5, 3, 3, 2, 0}, ORVA_STS_FIRMR_PHASE_ERR},
        {{5, 3, 0, 2, 2}, ORVA_STS_FIRMR_PHASE_ERR},          {{kMost, 3, -1, 2, 0}, ORVA_STS_FIRMR_PHASE_ERR},
        {{5, 3, 0, 2, -1}, ORVA_STS_FIRMR_PHASE_ERR},         {{1, kMost, 0, kMost, 0}, ORVA_STS_OVERFLOW_ERR},
        {{1, 1, 0, kMost, 0}, ORVA_STS_OVERFLOW_ERR},         {{1, kMost, 0, 1, 0}, ORVA_STS_OVERFLOW_ERR},
        {{kMost, 1, 0, 1, 0}, ORVA_STS_OVERFLOW_ERR},         {{kMost, kMost, 0, kMost, 0}, ORVA_STS_OVERFLOW_ERR},
        {{1, 65536, 0, 65536, 0}, ORVA_STS_OVERFLOW_ERR},     {{1, kWidest, 0, 1, 0}, ORVA_STS_MEM_ALLOC_ERR},
        {{1, kWidest + 1, 0, 1, 0}, ORVA_STS_OVERFLOW_ERR}};
    for (const auto& [r, status] : cases)
      EXPECT_EQ(Refused(filter, r.taps, r.up, r.up_phase, r.down, r.down_phase), status)
          << filter.name << " " << r.taps << " " << r.up << " " << r.down;
    ExpectRequests(filter, 2, 5, 3, 2, 2, 1);
    const typename F::Tap tap = {};
    typename F::Sample sample = {};
    FIRMRState* state = nullptr;
    ASSERT_EQ(filter.init(&tap, 1, 3, 0, 2, 0, &state), 0);
    EXPECT_EQ(filter.run(&sample, &sample, kMost / 3, state, nullptr, nullptr), ORVA_STS_OVERFLOW_ERR);
    filter.release(state);
  });
}

}  // namespace tzm_test::streaming_test
