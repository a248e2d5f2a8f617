// The Hilbert transform of a sound of any length, taken as one period.
//
// A short sound is transformed as a whole. The kernel 1/(pi m) of a long one is cut to some thousand taps under a
// Kaiser window, which is exact but near frequency 0 and near half the rate. There the gain G of the cut kernel falls
// short of 1, so what it lacks, -i (1 - G), is added: at a 128th to a 256th of the rate, where the whole sound is one
// transform. Near half the rate the kernel, which is 0 at even m, does what it does near 0 with (-1)^m between the
// samples.
#include "analytic.h"

#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>
#include <signal_tzm/fir.h>
#include <signal_tzm/generate.h>
#include <signal_tzm/resample.h>
#include <signal_tzm/transform.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <functional>
#include <numbers>

#include "command.h"
#include "handle.h"
#include "progress.h"
#include "segments.h"
#include "stream.h"
#include "text.h"

namespace tzm {
namespace {

constexpr size_t kWhole = 1 << 20;        // samples that are transformed at once
constexpr int64_t kLongest = int64_t{1} << 34;
constexpr int64_t kDecimation = 256;      // at most
constexpr double kEdge = 1.0 / (4 * kDecimation);  // cycles a sample up to which the kernel lacks gain
constexpr int64_t kReach = 2048;          // of the kernel, to both sides
constexpr double kAttenuation = 120;      // dB, of the windows
constexpr double kAlpha = 0.11 * (kAttenuation - 8.7);
constexpr float kResamplerWidth = 16;     // low-rate samples: from kEdge to the first alias that reaches back below it
constexpr int32_t kResamplerSteps = 1024;
constexpr int64_t kMargin = (int64_t(kResamplerWidth) / 2 + 2) * kDecimation;  // samples that the resampler reaches

using Spec = Handle<OrvaHilbertSpec, ORVAS_HilbertRelease_32f32fc>;
using Filter = Handle<FIRSRState, ORVAS_FIRSRRelease_32f>;
using Resampler = Handle<ResamplePolyphaseState, ORVAS_ResamplePolyphaseRelease_32f>;
using InverseTransform = Handle<OrvaTransformSpec, ORVAS_DFTCToRRelease_32f>;
using Take = std::function<void(size_t, std::span<const float>)>;

// Entry kReach + m is that of m.
std::vector<double> MakeKernel() {
  std::vector<double> kernel(2 * kReach + 1, 1.0);
  Require(ORVAS_WinKaiser_64f_I(kernel.data(), int32_t(kernel.size()), kAlpha / kReach), "the window");
  for (int64_t m = -kReach; m <= kReach; ++m) {
    kernel[size_t(kReach + m)] *= m % 2 == 0 ? 0 : 2 / (std::numbers::pi * double(m));
  }
  return kernel;
}

// What the kernel's gain lacks of 1, at kGains equal steps from 0 to kEdge.
constexpr size_t kGains = 4096;
std::vector<double> MissingGain(const std::vector<double>& kernel) {
  std::vector<Orva64fc> response(kGains + 1);
  const double turn = 2 * std::numbers::pi * kEdge / kGains;
  Require(ORVAS_CZT_64f(kernel.data(), int32_t(kernel.size()), response.data(), int32_t(response.size()),
                        {std::cos(turn), -std::sin(turn)}, {1, 0}),
          "the kernel's response");
  std::vector<double> missing;
  for (size_t i = 0; i <= kGains; ++i) missing.push_back(1 - std::hypot(response[i].re, response[i].im));
  return missing;
}

void Whole(const Planes& sound, const Take& take) {
  const auto len = int32_t(sound[0].size());
  const auto spec =
      MakeHandle<Spec>("the Hilbert transform", [&](auto** made) { return ORVAS_HilbertInit_32f32fc(len, made); });
  std::vector<Orva32fc> analytic(sound[0].size());
  std::vector<float> magnitude(sound[0].size());
  for (size_t c = 0; c < sound.size(); ++c) {
    Require(ORVAS_Hilbert_32f32fc(sound[c].data(), analytic.data(), len, spec.get()), "the Hilbert transform");
    Require(ORVAS_Magnitude_32fc(analytic.data(), magnitude.data(), len), "the magnitude");
    take(c, magnitude);
  }
}

// One end of a channel's spectrum at the low rate: that near 0, or with signs in turn that near half the rate, which
// for an odd length changes its sign from period to period.
class Band {
 public:
  Band(bool high, int64_t len, const Resampler& resampler)
      : high_(high), wrap_(high && len % 2 ? -1.0f : 1.0f), len_(len), resampler_(&resampler),
        low_(std::bit_ceil(uint64_t((len + kDecimation - 1) / kDecimation))), first_(int64_t(kMargin / Step()) + 1),
        next_(first_) {}

  // Takes the samples of the period, and after its end its first 2 kMargin once more.
  void Add(std::span<const float> samples) {
    for (const float value : samples) held_.push_back(Sign(end_++) * value);
    const int64_t begin = end_ - int64_t(held_.size());
    double time = double(next_) * Step() - double(begin);
    const int64_t len = int64_t(held_.size()) - kMargin - int64_t(time);
    if (len < 1) return;
    std::vector<float> made(size_t(double(len) / Step()) + 2);
    int32_t count = 0;
    Require(ORVAS_ResamplePolyphase_32f(held_.data(), int32_t(len), made.data(), 1 / Step(), 1, &time, &count,
                                        resampler_->get()),
            "the resampler");
    const auto all = int64_t(low_.size());
    for (int32_t i = 0; i < count && next_ < first_ + all; ++i, ++next_) {
      low_[size_t(next_ % all)] = next_ < all ? made[size_t(i)] : wrap_ * made[size_t(i)];
    }
    const auto passed = std::clamp<int64_t>(int64_t(double(next_) * Step()) - kMargin - begin, 0, held_.size());
    held_.erase(held_.begin(), held_.begin() + passed);
  }

  // What the kernel lacks, of the whole period.
  void Correct(const std::vector<double>& missing) {
    const size_t all = low_.size();
    if (wrap_ < 0) {  // two periods make one
      low_.resize(2 * all);
      const auto second = low_.begin() + std::ptrdiff_t(all);
      std::transform(low_.begin(), second, second, std::negate());
    }
    const auto count = int32_t(low_.size());
    std::vector<Orva32fc> bin(low_.size() / 2 + 1);
    Require(ORVAS_DFTRToC_32f(low_.data(), &bin[0].re, MakeForwardTransform(count).get()), "the transform");
    for (size_t k = 0; k < bin.size(); ++k) {
      const double place = double(k * all) / (double(low_.size()) * double(len_)) / kEdge * kGains;
      const auto at = size_t(place);
      const double gain = at < kGains ? std::lerp(missing[at], missing[at + 1], place - double(at)) : 0;
      bin[k] = {float(gain * double(bin[k].im)), float(-gain * double(bin[k].re))};
    }
    const auto inverse = MakeHandle<InverseTransform>("the transform", [&](auto** made) {
      return ORVAS_DFTCToRInit_32f(count, ORVA_DIVIDE_INVERSE, made);
    });
    Require(ORVAS_DFTCToR_32f(&bin[0].re, low_.data(), inverse.get()), "the transform");
    // The period with as much of its neighbours as interpolation reaches.
    std::vector<float> extended;
    for (int64_t i = -kPad; i < int64_t(all) + kPad; ++i) {
      const bool inside = i >= 0 && i < int64_t(all);
      extended.push_back((inside ? 1.0f : wrap_) * low_[size_t(i + int64_t(all)) % all]);
    }
    low_ = std::move(extended);
  }

  // Adds what was lacking from sample `begin` on.
  void AddTo(std::span<float> dst, int64_t begin) const {
    const double step = double(len_) / double(low_.size() - 2 * kPad);
    double time = double(begin) / step + kPad;
    const auto len = int32_t(double(dst.size()) / step) + 2;
    std::vector<float> made(size_t((len + 1) * step) + 2);
    int32_t count = 0;
    Require(ORVAS_ResamplePolyphase_32f(low_.data(), len, made.data(), step, 1, &time, &count, resampler_->get()),
            "the resampler");
    for (size_t i = 0; i < dst.size(); ++i) dst[i] += (high_ ? -Sign(begin + int64_t(i)) : 1.0f) * made[i];
  }

 private:
  static constexpr int64_t kPad = 16;  // low-rate samples

  double Step() const { return double(len_) / double(low_.size()); }
  float Sign(int64_t at) const { return high_ && at % 2 ? -1.0f : 1.0f; }

  bool high_;
  float wrap_;
  int64_t len_;
  const Resampler* resampler_;
  std::vector<float> low_, held_;  // held_: the samples before end_ that are still needed
  int64_t first_, next_, end_ = 0;
};

// A channel of a long sound. Add() takes it from its first sample to its last, and Feed() once more from its sample
// kReach on, then its first kReach.
class Channel {
 public:
  Channel(int64_t len, const std::vector<float>& kernel, const Resampler& resampler)
      : bands_{Band(false, len, resampler), Band(true, len, resampler)},
        filter_(MakeHandle<Filter>("the filter", [&](auto** state) {
          return ORVAS_FIRSRInit_32f(kernel.data(), int32_t(kernel.size()), int32_t(kStreamBlock), ORVA_ROUTE_BY_LENGTH,
                                     state);
        })) {}

  void Add(std::span<const float> samples) {
    for (size_t i = 0; i < samples.size() && head_.size() < 2 * kMargin; ++i) head_.push_back(samples[i]);
    tail_.insert(tail_.end(), samples.begin(), samples.end());
    if (tail_.size() > kReach) tail_.erase(tail_.begin(), tail_.end() - kReach);
    for (Band& band : bands_) band.Add(samples);
  }

  void Correct(const std::vector<double>& missing) {
    for (Band& band : bands_) {
      band.Add(head_);
      band.Correct(missing);
    }
    line_ = tail_;
    line_.insert(line_.end(), head_.begin(), head_.begin() + kReach);
    past_.assign(head_.begin(), head_.begin() + kReach);
  }

  const std::vector<float>& Head() const { return head_; }

  // The magnitudes of as many samples, kReach before these.
  std::vector<float> Feed(std::span<const float> samples) {
    const auto len = int32_t(samples.size());
    std::vector<float> turned(samples.size()), magnitude(samples.size());
    if (len == 0) return magnitude;
    Require(ORVAS_FIRSR_32f(samples.data(), turned.data(), len, filter_.get(), line_.data(), line_.data()),
            "the filter");
    for (const Band& band : bands_) band.AddTo(turned, done_);
    past_.insert(past_.end(), samples.begin(), samples.end());
    Require(ORVAS_Magnitude_32f(past_.data(), turned.data(), magnitude.data(), len), "the magnitude");
    past_.erase(past_.begin(), past_.begin() + len);
    done_ += len;
    return magnitude;
  }

 private:
  std::array<Band, 2> bands_;
  Filter filter_;
  std::vector<float> head_, tail_, line_, past_;
  int64_t done_ = 0;
};

void Long(AudioReader& reader, int64_t len, const Take& take) {
  const std::vector<double> kernel = MakeKernel();
  const std::vector<double> missing = MissingGain(kernel);
  const auto resampler = MakeHandle<Resampler>("the resampler", [&](auto** state) {
    return ORVAS_ResamplePolyphaseInit_32f(kResamplerWidth, kResamplerSteps, 1, float(kAlpha), 0, state);
  });
  std::vector<Channel> channels;
  const std::vector<float> taps(kernel.begin(), kernel.end());
  for (size_t c = 0; c < reader.Channels(); ++c) channels.emplace_back(len, taps, resampler);
  Progress progress("transforming", 2 * len);
  int64_t done = 0;
  Planes samples = StreamBlocks(channels.size());
  const auto forEachBlock = [&](const auto& work) {
    for (size_t got = kStreamBlock; got == kStreamBlock;) {
      got = reader.Read(samples);
      InParallel(channels.size(), [&](size_t c) { work(c, std::span(samples[c]).first(got), got < kStreamBlock); });
      progress.Show(done += int64_t(got));
    }
  };
  reader.Rewind();
  forEachBlock([&](size_t c, std::span<const float> block, bool last) {
    channels[c].Add(block);
    if (last) channels[c].Correct(missing);
  });
  reader.Rewind();
  Planes skipped(channels.size(), std::vector<float>(kReach));
  reader.Read(skipped);
  forEachBlock([&](size_t c, std::span<const float> block, bool last) {
    take(c, channels[c].Feed(block));
    if (last) take(c, channels[c].Feed(std::span(channels[c].Head()).first(kReach)));
  });
}

}  // namespace

int64_t ForEachMagnitude(AudioReader& reader, const Take& take) {
  Planes sound(reader.Channels(), std::vector<float>(kWhole + 1));
  auto len = int64_t(reader.Read(sound));
  if (len <= int64_t(kWhole)) {
    for (auto& channel : sound) channel.resize(size_t(len));
    Whole(sound, take);
    return len;
  }
  while (const size_t got = reader.Read(sound)) len += int64_t(got);
  if (len > kLongest) throw Failure(Format("the sound is longer than %lld samples", static_cast<long long>(kLongest)));
  sound.clear();
  Long(reader, len, take);
  return len;
}

}  // namespace tzm
