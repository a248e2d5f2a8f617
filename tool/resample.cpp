// tzm resample: another sampling rate.
#include <signal_tzm/resample.h>

#include <algorithm>
#include <numeric>

#include "audio.h"
#include "command.h"
#include "handle.h"
#include "options.h"
#include "progress.h"
#include "stream.h"
#include "text.h"

namespace tzm {
namespace {

constexpr double kStopBand = 125;  // dB
constexpr double kMostTaps = 1 << 24;  // of the filter for a fixed ratio
constexpr int32_t kSteps = 2048;       // of the one for any ratio, in a sample's time: it interpolates at -140 dB

using FixedResampler = Handle<ResamplePolyphaseFixedState, ORVAS_ResamplePolyphaseFixedRelease_32f>;
using AnyResampler = Handle<ResamplePolyphaseState, ORVAS_ResamplePolyphaseRelease_32f>;

// From one rate to another with a filter whose stop band begins at the lower of the two Nyquist frequencies: with a
// filter for the ratio as long as that is of a reasonable size, else with one for any ratio. Time is counted in parts
// of 1/outRate of a sample, so that it is exact with both.
class Resampler {
 public:
  Resampler(int32_t inRate, int32_t outRate, int32_t width) : inRate_(inRate), outRate_(outRate) {
    const int64_t phases = outRate / std::gcd(inRate, outRate);
    const double samples = width * std::max(1.0, double(inRate) / outRate);  // that the filter reaches
    const float rolloff = float(1 - (kStopBand - 8) / (7.2 * width) / 2), alpha = float(0.11 * (kStopBand - 8.7));
    if (samples * double(phases) <= kMostTaps) {
      fixed_ = MakeHandle<FixedResampler>("the resampler", [&](auto** state) {
        return ORVAS_ResamplePolyphaseFixedInit_32f(inRate, outRate, float(width), rolloff, alpha, state);
      });
      int32_t taps;
      Require(ORVAS_ResamplePolyphaseFixedGetFilter_32f(fixed_.get(), nullptr, &taps), "the resampler's filter");
      reach_ = taps / 2 / phases;
    } else {
      any_ = MakeHandle<AnyResampler>("the resampler", [&](auto** state) {
        return ORVAS_ResamplePolyphaseInit_32f(float(width), kSteps, rolloff, alpha, 0, state);
      });
      reach_ = int64_t(samples / 2 + std::max(1.0, double(inRate) / outRate) / kSteps) + 4;
    }
  }

  /** How many samples the filter reaches to both sides. */
  int64_t Reach() const { return reach_; }

  /** How many outputs the next `len` samples from `time` on give: at least one. */
  int64_t Count(int64_t time, int64_t len) const {
    return (len * outRate_ - time % outRate_ + inRate_ - 1) / inRate_;
  }

  /** Makes them; a sample more than the filter reaches lies behind the last one. Calls at once are allowed. */
  void Run(const std::vector<float>& src, int64_t time, int64_t len, std::vector<float>& dst) const {
    const auto count = size_t(Count(time, len));
    int32_t made = 0;
    if (fixed_) {
      dst.resize(count);
      Require(ORVAS_ResamplePolyphaseFixed_32f(src.data(), int32_t(len), dst.data(), 1, &time, &made, fixed_.get()),
              "the resampler");
    } else {  // one sample more, as the time in binary64 may fall on either side of an output
      dst.resize(size_t(Count(time, len + 1)) + 1);
      double place = double(time) / outRate_;
      Require(ORVAS_ResamplePolyphase_32f(src.data(), int32_t(len + 1), dst.data(), double(outRate_) / inRate_, 1,
                                          &place, &made, any_.get()),
              "the resampler");
      dst.resize(count);
    }
  }

 private:
  int32_t inRate_, outRate_;
  int64_t reach_;
  FixedResampler fixed_;
  AnyResampler any_;
};

// The resampler keeps no samples: those that its filter reaches are held here, from the first one it still needs. What
// they give is made in pieces of a block of samples each, on all processors; the pieces are the same however many.
void Apply(AudioReader& reader, const Resampler& resampler, int32_t outRate, AudioWriter& writer) {
  const int32_t inRate = reader.Rate();
  const int64_t reach = resampler.Reach();
  const size_t channels = reader.Channels(), atOnce = BlocksAtOnce(channels);
  const int64_t most = kStreamBlock, block = std::clamp<int64_t>(16 * most * inRate / outRate, 1, most);
  Planes fresh(channels, std::vector<float>(atOnce * size_t(block)));
  Planes held(channels, std::vector<float>(size_t(reach - 1)));
  std::vector<Planes> result;
  Progress progress("resampling", reader.Length());
  int64_t time = (reach - 1) * outRate, read = 0;  // the next output's, in parts of 1/outRate of a held sample
  for (bool more = true; more;) {
    const size_t got = reader.Read(fresh);
    more = got == fresh[0].size();
    for (size_t c = 0; c < channels; ++c) {
      held[c].insert(held[c].end(), fresh[c].begin(), fresh[c].begin() + std::ptrdiff_t(got));
      if (!more) held[c].resize(held[c].size() + size_t(reach));
    }
    const int64_t end = int64_t(held[0].size()) - reach;
    struct Piece {
      int64_t time, len;
    };
    std::vector<Piece> pieces;
    while (time / outRate < end && (!more || end - time / outRate >= block)) {
      const int64_t len = std::min(block, end - time / outRate);
      pieces.push_back({time, len});
      time += resampler.Count(time, len) * inRate;
    }
    if (result.size() < pieces.size()) result.resize(pieces.size(), Planes(channels));
    InParallel(pieces.size() * channels, [&](size_t i) {
      const auto& [begin, len] = pieces[i / channels];
      resampler.Run(held[i % channels], begin, len, result[i / channels][i % channels]);
    });
    for (size_t i = 0; i < pieces.size(); ++i) writer.Write(result[i], 0, result[i][0].size());
    const int64_t passed = std::min(time / outRate - (reach - 1), int64_t(held[0].size()));
    for (auto& samples : held) samples.erase(samples.begin(), samples.begin() + passed);
    time -= passed * outRate;
    progress.Show(read += int64_t(got));
  }
}

void Run(int argc, char** argv) {
  int32_t rate = 0, width = 168;
  SoundOptions sound;
  Options options("resample", "FILE OUTPUT",
                  "Brings all channels of a sound file to another sampling rate, whatever the two are. What the\n"
                  "lower of them cannot hold is taken out, 125 dB down; the transition just below it takes up\n"
                  "16.3/WIDTH of the lower Nyquist frequency (a tenth by default). Start and length in time stay.",
                  "tzm resample --rate 16000 /usr/share/sounds/alsa/Front_Center.wav speech16.wav");
  options.Number("rate", 'r', "the new rate in Hz", rate, 1, kHighestRate);
  options.Number("width", 'w', "width of the filter in samples of the lower rate", width, 32, 4096);
  sound.Declare(options, SoundOptions::Use::kConverts, "raw-rate");
  const auto operands = options.Parse(argc, argv, 2);
  if (!operands) return;
  sound.Check();
  if (rate == 0) throw UsageError("which --rate?");

  AudioReader reader(operands->at(0), sound, {});
  const Resampler resampler(reader.Rate(), rate, width);
  AudioWriter writer(operands->at(1), rate, reader.FileChannels(), reader.SampleFormat(), sound);
  Apply(reader, resampler, rate, writer);
  writer.Finish();
}

const Registration registration({"resample", "another sampling rate", Run});

}  // namespace
}  // namespace tzm
