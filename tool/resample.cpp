// tzm resample: another sampling rate.
#include <signal_tzm/resample.h>

#include <algorithm>
#include <numeric>

#include "audio.h"
#include "command.h"
#include "handle.h"
#include "options.h"
#include "progress.h"
#include "text.h"

namespace tzm {
namespace {

constexpr int64_t kBlock = 1 << 16;
constexpr double kStopBand = 100;  // dB

using Resampler = Handle<ResamplePolyphaseFixedState, ORVAS_ResamplePolyphaseFixedRelease_32f>;

// A filter whose stop band begins at the lower of the two Nyquist frequencies.
Resampler MakeResampler(int32_t inRate, int32_t outRate, int32_t width) {
  const double transition = (kStopBand - 8) / (7.2 * width), alpha = 0.11 * (kStopBand - 8.7);
  return MakeHandle<Resampler>("the resampler", [&](auto** state) {
    const OrvaStatus status = ORVAS_ResamplePolyphaseFixedInit_32f(
        inRate, outRate, float(width), float(1 - transition / 2), float(alpha), state);
    if (status == ORVA_STS_OVERFLOW_ERR) {
      throw Failure(Format("%d to %d Hz is a ratio of %d to %d, which takes too large a filter: choose a --rate that "
                           "shares a larger factor with %d, or a smaller --width",
                           inRate, outRate, inRate / std::gcd(inRate, outRate), outRate / std::gcd(inRate, outRate),
                           inRate));
    }
    return status;
  });
}

// The resampler keeps no samples: those that its filter reaches are held here, from the first one it still needs.
void Apply(AudioReader& reader, const Resampler& resampler, int32_t outRate, AudioWriter& writer) {
  int32_t taps;
  Require(ORVAS_ResamplePolyphaseFixedGetFilter_32f(resampler.get(), nullptr, &taps), "the resampler's filter");
  const int32_t inRate = reader.Rate();
  const int64_t reach = taps / 2 / (outRate / std::gcd(inRate, outRate));  // of the filter to both sides
  const auto channels = size_t(reader.Channels());
  const auto block = size_t(std::clamp<int64_t>(16 * kBlock * inRate / outRate, 1, kBlock));
  Planes fresh(channels, std::vector<float>(block)), result = fresh;
  Planes held(channels, std::vector<float>(size_t(reach - 1)));
  Progress progress("resampling", reader.Length());
  int64_t time = (reach - 1) * outRate, read = 0;  // the next output's, in parts of 1/outRate of a held sample
  for (bool more = true; more;) {
    const size_t got = reader.Read(fresh);
    more = got == block;
    for (size_t c = 0; c < channels; ++c) {
      held[c].insert(held[c].end(), fresh[c].begin(), fresh[c].begin() + std::ptrdiff_t(got));
      if (!more) held[c].resize(held[c].size() + size_t(reach));
    }
    const int64_t len = int64_t(held[0].size()) - reach - time / outRate;
    if (len < 1) continue;
    int64_t next = time;
    int32_t made = 0;
    for (size_t c = 0; c < channels; ++c) {
      next = time;
      result[c].resize(size_t(len * outRate / inRate + 1));
      Require(ORVAS_ResamplePolyphaseFixed_32f(held[c].data(), int32_t(len), result[c].data(), 1, &next, &made,
                                               resampler.get()),
              "the resampler");
    }
    writer.Write(result, 0, size_t(made));
    const int64_t passed = std::min(next / outRate - (reach - 1), int64_t(held[0].size()));
    for (auto& samples : held) samples.erase(samples.begin(), samples.begin() + passed);
    time = next - passed * outRate;
    progress.Show(read += int64_t(got));
  }
}

void Run(int argc, char** argv) {
  int32_t rate = 0, width = 128;
  Options options("resample", "FILE OUTPUT",
                  "Brings all channels of a sound file to another sampling rate, in a WAV file of the same\n"
                  "sample format. What the lower of the two rates cannot hold is taken out, 100 dB down; the\n"
                  "transition just below it takes up 12.8/WIDTH of the lower Nyquist frequency (a tenth by\n"
                  "default). Start and length in time stay.",
                  "tzm resample --rate 16000 /usr/share/sounds/alsa/Front_Center.wav speech16.wav");
  options.Number("rate", 'r', "the new rate in Hz", rate, 1, 10000000);
  options.Number("width", 'w', "width of the filter in samples of the lower rate", width, 32, 4096);
  const auto operands = options.Parse(argc, argv, 2);
  if (!operands) return;
  if (rate == 0) throw UsageError("which --rate?");

  AudioReader reader(operands->at(0));
  const Resampler resampler = MakeResampler(reader.Rate(), rate, width);
  AudioWriter writer(operands->at(1), rate, reader.Channels(), reader.SampleFormat());
  Apply(reader, resampler, rate, writer);
  writer.Finish();
}

const Registration registration({"resample", "another sampling rate", Run});

}  // namespace
}  // namespace tzm
