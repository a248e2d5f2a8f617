// tzm convolve: a recording through an impulse response.
#include <signal_tzm/correlate.h>

#include <algorithm>
#include <cmath>

#include "audio.h"
#include "command.h"
#include "handle.h"
#include "options.h"
#include "stream.h"
#include "text.h"

namespace tzm {
namespace {

constexpr size_t kLongestResponse = 1 << 24;

using Convolution = Handle<ConvState, ORVAS_ConvRelease_32f>;

Planes ReadResponse(const std::string& path, int32_t rate, size_t channels, double gain) {
  AudioReader reader(path, {}, {});
  if (reader.Rate() != rate) {
    throw Failure(Format("'%s' has %d Hz, the recording %d: make them equal with tzm resample", path.c_str(),
                         reader.Rate(), rate));
  }
  if (reader.Channels() != 1 && reader.Channels() != channels) {
    throw Failure(Format("'%s' has %zu channels, the recording %zu", path.c_str(), reader.Channels(), channels));
  }
  Planes response(reader.Channels());
  for (size_t len = 0, got = kStreamBlock; got == kStreamBlock; len += got) {
    if (len > kLongestResponse) {
      throw Failure(Format("'%s' is longer than the %zu samples that an impulse response may have", path.c_str(),
                           kLongestResponse));
    }
    for (auto& channel : response) channel.resize(len + kStreamBlock);
    got = reader.Read(response, len);
    for (auto& channel : response) channel.resize(len + got);
  }
  for (auto& channel : response) {
    for (float& value : channel) value = float(value * gain);
  }
  return response;
}

void Run(int argc, char** argv) {
  double gain = 0;
  SoundOptions sound;
  Options options("convolve", "FILE RESPONSE OUTPUT",
                  "Convolves all channels of a sound file with an impulse response (the echo of a room, a\n"
                  "loudspeaker): a sound file of the same rate with one channel, which serves all, or as many as\n"
                  "FILE. OUTPUT is longer than FILE by the response.",
                  "tzm convolve --gain -12 speech.wav church.wav sermon.wav");
  options.Number("gain", 'g', "dB that the output is raised by", gain, -200, 200);
  sound.Declare(options, SoundOptions::Use::kConverts);
  const auto operands = options.Parse(argc, argv, 3);
  if (!operands) return;
  sound.Check();

  AudioReader reader(operands->at(0), sound, {});
  const size_t channels = reader.Channels();
  const Planes response = ReadResponse(operands->at(1), reader.Rate(), channels, std::pow(10, gain / 20));
  const size_t taps = response[0].size(), full = kStreamBlock + taps - 1;
  std::vector<Convolution> convolutions;  // each works for one channel at a time
  for (size_t c = 0; c < channels; ++c) {
    convolutions.push_back(MakeHandle<Convolution>("the convolution", [&](auto** state) {
      return ORVAS_ConvInit_32f(int32_t(kStreamBlock), int32_t(taps), ORVA_ROUTE_BY_LENGTH, state);
    }));
  }
  AudioWriter writer(operands->at(2), reader.Rate(), reader.FileChannels(), reader.SampleFormat(), sound);
  // Each block's response is longer than the block: what lies beyond is added to the blocks that follow.
  Planes sums(channels, std::vector<float>(full)), made = sums;
  Stream({channels, channels}, reader.Length(), {0, taps - 1}, writer,
         [&](Planes& source, size_t at) { return reader.Read(source, at); },
         [&](size_t c, Planes& source, size_t, float* dst, int32_t len) {
           std::fill(source[c].begin() + len, source[c].end(), 0.0f);
           const std::vector<float>& taken = response[response.size() == 1 ? 0 : c];
           Require(ORVAS_Convolve_32f(source[c].data(), int32_t(kStreamBlock), taken.data(), int32_t(taps),
                                      made[c].data(), convolutions[c].get()),
                   "the convolution");
           std::vector<float>& sum = sums[c];
           for (size_t i = 0; i < full; ++i) sum[i] += made[c][i];
           std::copy_n(sum.begin(), len, dst);
           std::copy(sum.begin() + len, sum.end(), sum.begin());
           std::fill(sum.end() - len, sum.end(), 0.0f);
         });
  writer.Finish();
}

const Registration registration({"convolve", "a recording through an impulse response", Run});

}  // namespace
}  // namespace tzm
