// Convolution and correlation beside what they cannot do without: the FFT routes beside their bare transforms and
// beside overlap-add with FFTW's own measured plans, the direct routes by the products they form (a product of
// complex samples counts once), matrix products beside the bare CBLAS call.
#include <benchmark/benchmark.h>
#include <fftw3.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/correlate.h>

#include <algorithm>
#include <bit>
#include <functional>
#include <memory>
#include <string>

#include "states.h"

namespace {

using tzm_bench::Aligned;
using tzm_bench::SharedArray;

constexpr int32_t kDirect = ORVA_ROUTE_DIRECT, kFft = ORVA_ROUTE_FFT;

// `make` makes the call to time, when its turn comes.
template <class Make>
void Register(const std::string& name, int64_t products, Make make) {
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    const std::function<void()> call = make();
    for (auto _ : state) {
      call();
      benchmark::ClobberMemory();
    }
    if (products > 0) state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * products);
  })->Unit(benchmark::kMicrosecond);
}

// `forward` real transforms of `n` samples and `inverse` ones back, as the routes run them.
std::function<void()> Transforms(int32_t n, int forward, int inverse) {
  using Plan = std::shared_ptr<tzm_fftf_plan_record>;
  const Plan to(tzm_fftf_plan_dft_r2c_1d(n, nullptr, nullptr, 0), tzm_fftf_destroy_plan);
  const Plan back(tzm_fftf_plan_dft_c2r_1d(n, nullptr, nullptr, 0), tzm_fftf_destroy_plan);
  const auto time = Aligned<Orva32f>(n);
  const auto spectrum = Aligned<Orva32fc>(n / 2 + 1);
  return [=] {
    for (int k = 0; k < forward; ++k) tzm_fftf_execute_dft_r2c(to.get(), time.get(), spectrum.get());
    for (int k = 0; k < inverse; ++k) tzm_fftf_execute_dft_c2r(back.get(), spectrum.get(), time.get());
  };
}

// A kernel over a longer signal, in blocks of about eight kernels.
std::function<void()> OverlapAdd(int32_t len, int32_t kernelLen) {
  const auto n = static_cast<int32_t>(std::bit_ceil(8u * static_cast<uint32_t>(kernelLen))), step = n - kernelLen + 1;
  const auto time = Aligned<float>(n);
  const auto spectrum = Aligned<Orva32fc>(n / 2 + 1), kernel = Aligned<Orva32fc>(n / 2 + 1);
  const auto bins = [](auto& array) { return reinterpret_cast<fftwf_complex*>(array.get()); };
  const std::shared_ptr<fftwf_plan_s> to(fftwf_plan_dft_r2c_1d(n, time.get(), bins(spectrum), FFTW_MEASURE),
                                         fftwf_destroy_plan);
  const std::shared_ptr<fftwf_plan_s> back(fftwf_plan_dft_c2r_1d(n, bins(spectrum), time.get(), FFTW_MEASURE),
                                           fftwf_destroy_plan);
  const auto src = SharedArray<float>(len), taps = SharedArray<float>(kernelLen), dst = SharedArray<float>(len + n);
  return [=] {
    const auto load = [&](const float* from, int32_t count) {
      std::copy_n(from, count, time.get());
      std::fill(time.get() + count, time.get() + n, 0.0f);
    };
    load(taps->data(), kernelLen);
    fftwf_execute_dft_r2c(to.get(), time.get(), bins(kernel));
    std::fill_n(dst->data(), len + n, 0.0f);
    for (int32_t at = 0; at < len; at += step) {
      load(src->data() + at, std::min(step, len - at));
      fftwf_execute_dft_r2c(to.get(), time.get(), bins(spectrum));
      for (int32_t k = 0; k <= n / 2; ++k) {
        const Orva32fc a = spectrum.get()[k], b = kernel.get()[k];
        spectrum.get()[k] = {(a.re * b.re - a.im * b.im) / static_cast<float>(n),
                             (a.re * b.im + a.im * b.re) / static_cast<float>(n)};
      }
      fftwf_execute_dft_c2r(back.get(), bins(spectrum), time.get());
      for (int32_t k = 0; k < n; ++k) dst->data()[at + k] += time.get()[k];
    }
  };
}

std::function<void()> Convolution(int32_t len1, int32_t len2, int32_t kind) {
  ConvState* made = nullptr;
  ORVAS_ConvInit_32f(len1, len2, kind, &made);
  const std::shared_ptr<ConvState> state(made, ORVAS_ConvRelease_32f);
  const auto src1 = SharedArray<Orva32f>(len1), src2 = SharedArray<Orva32f>(len2);
  const auto dst = SharedArray<Orva32f>(len1 + len2);
  return [=] { ORVAS_Convolve_32f(src1->data(), len1, src2->data(), len2, dst->data(), state.get()); };
}

template <class T>
struct Correlations;
#define CORRELATIONS(type)                                        \
  template <>                                                     \
  struct Correlations<Orva##type> {                               \
    static constexpr char kName[] = #type;                        \
    static constexpr auto AutoInit = ORVAS_AutoCorrInit_##type;   \
    static constexpr auto Auto = ORVAS_AutoCorrNorm_##type;       \
    static constexpr auto CrossInit = ORVAS_CrossCorrInit_##type; \
    static constexpr auto Cross = ORVAS_CrossCorrNorm_##type;     \
    static constexpr auto Release = ORVAS_CorrRelease_##type;     \
  };
CORRELATIONS(32f)
CORRELATIONS(64f)
CORRELATIONS(32fc)
CORRELATIONS(64fc)
#undef CORRELATIONS

// All lags of a sequence.
template <class T>
std::function<void()> Autocorrelation(int32_t len, int32_t kind) {
  using C = Correlations<T>;
  CorrState* made = nullptr;
  C::AutoInit(len, len, kind, &made);
  const std::shared_ptr<CorrState> state(made, C::Release);
  const auto src = SharedArray<T>(len), dst = SharedArray<T>(len);
  return [=] { C::Auto(src->data(), len, dst->data(), len, 0, state.get()); };
}

// All lags of two sequences.
template <class T>
std::function<void()> CrossCorrelation(int32_t len1, int32_t len2, int32_t kind) {
  using C = Correlations<T>;
  const int32_t lags = len1 + len2 - 1, low = 1 - len1;
  CorrState* made = nullptr;
  C::CrossInit(len1, len2, lags, low, kind, &made);
  const std::shared_ptr<CorrState> state(made, C::Release);
  const auto src1 = SharedArray<T>(len1), src2 = SharedArray<T>(len2), dst = SharedArray<T>(lags);
  return [=] { C::Cross(src1->data(), len1, src2->data(), len2, dst->data(), lags, low, 0, state.get()); };
}

template <class T>
void RegisterDirect() {
  for (int32_t len : {16, 64, 256, 4096}) {
    const std::string size = std::string(Correlations<T>::kName) + "/" + std::to_string(len) + "/direct";
    Register("autocorrelation/" + size, int64_t{len} * (len + 1) / 2, [=] { return Autocorrelation<T>(len, kDirect); });
    Register("cross-correlation/" + size, int64_t{len} * len, [=] { return CrossCorrelation<T>(len, len, kDirect); });
  }
}

template <class T, class Multiply, class Bare>
void RegisterProducts(const char* type, Multiply multiply, Bare bare) {
  for (int32_t side : {4, 16, 64, 256, 512}) {
    const std::string name = "matrix product/" + std::string(type) + "/" + std::to_string(side);
    const auto with = [=](auto product) {
      return [=]() -> std::function<void()> {
        const auto a = SharedArray<T>(side * side), b = SharedArray<T>(side * side), c = SharedArray<T>(side * side);
        return [=] { product(a->data(), b->data(), c->data(), side); };
      };
    };
    const int64_t products = int64_t{side} * side * side;
    Register(name + "/tzm", products, with([=](auto a, auto b, auto c, int32_t n) { multiply(a, b, c, n, n, n); }));
    Register(name + "/cblas", products, with(bare));
  }
}

const bool registered = [] {
  const auto pair = [](const char* what, int32_t len1, int32_t len2) {
    return std::string(what) + "/32f/" + std::to_string(len1) + "x" + std::to_string(len2);
  };
  const auto length = [](int32_t count) { return static_cast<int32_t>(std::bit_ceil(static_cast<uint32_t>(count))); };
  for (auto [len1, len2] : {std::pair{256, 256}, {257, 256}, {1000, 20}, {4096, 128}, {4096, 4096}, {65536, 1024},
                            {65536, 65536}, {1000000, 1000}}) {
    const std::string name = pair("convolution", len1, len2);
    const int64_t products = int64_t{len1} * len2;
    if (products < 100000000) Register(name + "/direct", products, [=] { return Convolution(len1, len2, kDirect); });
    Register(name + "/fft", 0, [=] { return Convolution(len1, len2, kFft); });
    Register(name + "/bare transforms", 0, [=] { return Transforms(length(len1 + len2 - 1), 2, 1); });
    if (len1 >= 8 * len2) Register(name + "/FFTW overlap-add", 0, [=] { return OverlapAdd(len1, len2); });
  }
  RegisterDirect<Orva32f>();
  RegisterDirect<Orva64f>();
  RegisterDirect<Orva32fc>();
  RegisterDirect<Orva64fc>();
  for (int32_t len : {256, 4096, 65536}) {
    const std::string name = "autocorrelation/32f/" + std::to_string(len);
    Register(name + "/fft", 0, [=] { return Autocorrelation<Orva32f>(len, kFft); });
    Register(name + "/bare transforms", 0, [=] { return Transforms(length(2 * len - 1), 1, 1); });
  }
  for (auto [len1, len2] : {std::pair{256, 4096}, {4096, 4096}, {1000, 1000000}}) {  // in one block of lags or many
    const int32_t n = length(2 * len1 - 1), blocks = (len1 + len2 - 2) / (n - len1 + 1) + 1;
    const std::string name = pair("cross-correlation", len1, len2);
    Register(name + "/fft", 0, [=] { return CrossCorrelation<Orva32f>(len1, len2, kFft); });
    Register(name + "/bare transforms", 0, [=] { return Transforms(n, 1 + blocks, blocks); });
  }

  constexpr int kRows = 101, kPlain = 111;  // row-major, not transposed
  RegisterProducts<Orva32f>("32f", ORVAS_MMul_32f, [](const Orva32f* a, const Orva32f* b, Orva32f* c, int32_t n) {
    cblas_sgemm(kRows, kPlain, kPlain, n, n, n, 1, a, n, b, n, 0, c, n);
  });
  RegisterProducts<Orva64f>("64f", ORVAS_MMul_64f, [](const Orva64f* a, const Orva64f* b, Orva64f* c, int32_t n) {
    cblas_dgemm(kRows, kPlain, kPlain, n, n, n, 1, a, n, b, n, 0, c, n);
  });
  RegisterProducts<Orva32fc>("32fc", ORVAS_MMul_32fc, [](const Orva32fc* a, const Orva32fc* b, Orva32fc* c, int32_t n) {
    const Orva32fc one = {1, 0}, zero = {0, 0};
    cblas_cgemm(kRows, kPlain, kPlain, n, n, n, &one, a, n, b, n, &zero, c, n);
  });
  RegisterProducts<Orva64fc>("64fc", ORVAS_MMul_64fc, [](const Orva64fc* a, const Orva64fc* b, Orva64fc* c, int32_t n) {
    const Orva64fc one = {1, 0}, zero = {0, 0};
    cblas_zgemm(kRows, kPlain, kPlain, n, n, n, &one, a, n, b, n, &zero, c, n);
  });
  return true;
}();

}  // namespace
