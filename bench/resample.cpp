// Resampling beside other libraries, one second of sound a call. Beside the time stand
//   SNR_dB    sine to everything else, the worse of two sines in the pass-band
//   at80_dB   gain at 0.8 of the lower Nyquist frequency, and at90_dB at 0.9
#include <signal_tzm/resample.h>

#include <benchmark/benchmark.h>
#include <samplerate.h>
#include <soxr.h>

#include <cmath>
#include <functional>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

namespace {

struct Rates {
  int32_t in, out;
};
constexpr Rates kRates[] = {{48000, 16000}, {44100, 48000}, {16000, 48000}};

// Resamples all of `src` between the rates into `dst`, and returns the number of outputs.
using Resample = std::function<size_t(const std::vector<float>& src, std::vector<float>& dst)>;

struct Quality {
  double gain, snr;  // in dB
};

// Fits a sine of the frequency to the middle of the output.
Quality Measure(const Resample& resample, Rates rates, double frequency) {
  std::vector<float> src(rates.in), dst(rates.out + 100);
  for (size_t i = 0; i < src.size(); ++i)
    src[i] = static_cast<float>(std::sin(2 * std::numbers::pi * frequency * static_cast<double>(i) / rates.in));
  const size_t count = resample(src, dst), begin = count / 4, end = count * 3 / 4;
  const auto angle = [&](size_t i) { return 2 * std::numbers::pi * frequency * static_cast<double>(i) / rates.out; };
  double ss = 0, sc = 0, cc = 0, ys = 0, yc = 0;
  for (size_t i = begin; i < end; ++i) {
    const double s = std::sin(angle(i)), c = std::cos(angle(i));
    ss += s * s, sc += s * c, cc += c * c, ys += dst[i] * s, yc += dst[i] * c;
  }
  const double determinant = ss * cc - sc * sc;
  const double a = (ys * cc - yc * sc) / determinant, b = (yc * ss - ys * sc) / determinant;
  double signal = 0, noise = 0;
  for (size_t i = begin; i < end; ++i) {
    const double fitted = a * std::sin(angle(i)) + b * std::cos(angle(i));
    signal += fitted * fitted;
    noise += (dst[i] - fitted) * (dst[i] - fitted);
  }
  return {20 * std::log10(std::hypot(a, b)), 10 * std::log10(signal / noise)};
}

void Register(const std::string& name, Rates rates, const Resample& resample) {
  const std::string full = "resample/" + std::to_string(rates.in) + "to" + std::to_string(rates.out) + "/" + name;
  benchmark::RegisterBenchmark(full.c_str(), [=](benchmark::State& state) {
    std::vector<float> src(rates.in), dst(rates.out + 100);
    for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<float>(i % 1000) * 1e-3f;
    for (auto _ : state) {
      benchmark::DoNotOptimize(resample(src, dst));
      benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * rates.out);
    const double nyquist = std::min(rates.in, rates.out) / 2.0;
    state.counters["SNR_dB"] =
        std::min(Measure(resample, rates, 0.1234 * nyquist).snr, Measure(resample, rates, 0.7891 * nyquist).snr);
    state.counters["at80_dB"] = Measure(resample, rates, 0.8 * nyquist).gain;
    state.counters["at90_dB"] = Measure(resample, rates, 0.9 * nyquist).gain;
  });
}

// The source between zeros, as many as the filter reaches.
std::vector<float> Padded(const std::vector<float>& src, size_t reach) {
  std::vector<float> padded(src.size() + 2 * reach + 2);
  std::copy(src.begin(), src.end(), padded.begin() + static_cast<ptrdiff_t>(reach));
  return padded;
}

Resample ByFactor(Rates rates, float window, float rollf) {
  ResamplePolyphaseState* made = nullptr;
  ORVAS_ResamplePolyphaseInit_32f(window, 1024, rollf, 10, 0, &made);
  const std::shared_ptr<ResamplePolyphaseState> state(made, ORVAS_ResamplePolyphaseRelease_32f);
  return [=](const std::vector<float>& src, std::vector<float>& dst) {
    const double factor = static_cast<double>(rates.out) / rates.in;
    const size_t reach = static_cast<size_t>(window / 2 / std::min(1.0, factor)) + 2;
    const auto padded = Padded(src, reach);
    double time = static_cast<double>(reach);
    int32_t count = 0;
    ORVAS_ResamplePolyphase_32f(padded.data(), rates.in, dst.data(), factor, 1, &time, &count, state.get());
    return static_cast<size_t>(count);
  };
}

Resample ByRates(Rates rates, float window, float rollf) {
  ResamplePolyphaseFixedState* made = nullptr;
  ORVAS_ResamplePolyphaseFixedInit_32f(rates.in, rates.out, window, rollf, 10, &made);
  const std::shared_ptr<ResamplePolyphaseFixedState> state(made, ORVAS_ResamplePolyphaseFixedRelease_32f);
  return [=](const std::vector<float>& src, std::vector<float>& dst) {
    const double factor = static_cast<double>(rates.out) / rates.in;
    const size_t reach = static_cast<size_t>(window / 2 / std::min(1.0, factor)) + 4;
    const auto padded = Padded(src, reach);
    int64_t time = static_cast<int64_t>(reach) * rates.out;
    int32_t count = 0;
    ORVAS_ResamplePolyphaseFixed_32f(padded.data(), rates.in, dst.data(), 1, &time, &count, state.get());
    return static_cast<size_t>(count);
  };
}

Resample BySamplerate(Rates rates, int converter) {
  return [=](const std::vector<float>& src, std::vector<float>& dst) {
    SRC_DATA data = {};
    data.data_in = src.data();
    data.input_frames = static_cast<long>(src.size());
    data.data_out = dst.data();
    data.output_frames = static_cast<long>(dst.size());
    data.src_ratio = static_cast<double>(rates.out) / rates.in;
    src_simple(&data, converter, 1);
    return static_cast<size_t>(data.output_frames_gen);
  };
}

Resample BySoxr(Rates rates, unsigned long recipe) {
  return [=](const std::vector<float>& src, std::vector<float>& dst) {
    const soxr_quality_spec_t quality = soxr_quality_spec(recipe, 0);
    size_t count = 0;
    soxr_oneshot(rates.in, rates.out, 1, src.data(), src.size(), nullptr, dst.data(), dst.size(), &count, nullptr,
                 &quality, nullptr);
    return count;
  };
}

const bool registered = [] {
  for (const Rates& rates : kRates) {
    Register("fixed_64", rates, ByRates(rates, 64, 0.9f));
    Register("fixed_128", rates, ByRates(rates, 128, 0.95f));
    Register("factor_64", rates, ByFactor(rates, 64, 0.9f));
    Register("samplerate_fastest", rates, BySamplerate(rates, SRC_SINC_FASTEST));
    Register("samplerate_medium", rates, BySamplerate(rates, SRC_SINC_MEDIUM_QUALITY));
    Register("soxr_MQ", rates, BySoxr(rates, SOXR_MQ));
    Register("soxr_HQ", rates, BySoxr(rates, SOXR_HQ));
  }
  return true;
}();

}  // namespace
