// tzm denoise: takes noise out of a recording that a second microphone has heard alone.
#include <signal_tzm/fir.h>
#include <signal_tzm/reduce.h>

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

constexpr int32_t kMostTaps = 1 << 16;
constexpr int32_t kPiece = 1 << 12;  // samples that share a step size

struct Settings {
  std::string file, output, reference;
  int32_t channel = 1, referenceChannel = 0, taps = 128;
  double rate = 0.005;
  SoundOptions sound;
};

using Filter = Handle<FIRLMSState, ORVAS_FIRLMSRelease_32f>;

// Least mean squares: the filter makes of the reference what comes nearest to the recording, and what it cannot make
// is the output. The recording is delayed by half the filter, so that the noise may have come to either microphone
// first.
class Canceller {
 public:
  explicit Canceller(const Settings& s) : settings_(s), delayed_(size_t(s.taps / 2)), estimate_(kPiece) {
    filter_ = MakeHandle<Filter>("the adaptive filter", [&](auto** state) {
      return ORVAS_FIRLMSInit_32f(state, nullptr, s.taps, nullptr, 0);
    });
  }

  void Run(const std::vector<float>& recording, const std::vector<float>& reference, float* dst, int32_t len) {
    delayed_.insert(delayed_.end(), recording.begin(), recording.begin() + len);
    for (int32_t at = 0; at < len; at += kPiece) {
      const int32_t count = std::min(kPiece, len - at);
      const float* const wanted = delayed_.data() + at;
      Require(ORVAS_FIRLMS_32f(filter_.get(), reference.data() + at, wanted, estimate_.data(), count,
                               StepSize(reference.data() + at, count)),
              "the adaptive filter");
      for (int32_t i = 0; i < count; ++i) {
        dst[at + i] = wanted[i] - estimate_[size_t(i)];
        if (!std::isfinite(dst[at + i])) throw Failure("the filter lost its hold: give a lower --rate");
      }
    }
    delayed_.erase(delayed_.begin(), delayed_.begin() + len);
  }

 private:
  // Relative to the power in the filter, of this piece or on the average, whichever is larger: the filter stays
  // stable where the noise grows and does not run wild where it pauses.
  float StepSize(const float* reference, int32_t len) {
    float norm;
    Require(ORVAS_Norm_L2_32f(reference, len, &norm), "the norm");
    const double power = double(norm) * norm / len;
    energy_ += power * len;
    samples_ += len;
    const double strongest = std::max(power, energy_ / samples_);
    return strongest > 0 ? float(settings_.rate / (settings_.taps * strongest)) : 0.0f;
  }

  const Settings& settings_;
  Filter filter_;
  std::vector<float> delayed_, estimate_;
  double energy_ = 0, samples_ = 0;
};

void Run(int argc, char** argv) {
  Settings s;
  Options options("denoise", "FILE OUTPUT",
                  "Takes noise out of a channel of a sound file with a reference: another channel of it (the\n"
                  "second one unless told otherwise), or another file, that holds the noise alone, as a second\n"
                  "microphone heard it. An adaptive filter (LMS) learns how the noise comes into the recording,\n"
                  "from up to half its length before the reference to as much after it. A higher rate learns\n"
                  "faster and takes more of the wanted sound for noise. OUTPUT has one channel.",
                  "tzm denoise --taps 512 --reference fan.wav speech.wav clean.wav");
  options.Text("reference", 'r', "FILE", "file that holds the noise (default: FILE itself)", s.reference);
  options.Number("reference-channel", 0, "channel of the noise (default 2, of another file 1)", s.referenceChannel, 1,
                 kMostChannels);
  options.Channel(s.channel);
  options.Number("taps", 't', "length of the adaptive filter", s.taps, 2, kMostTaps);
  options.Number("rate", 0, "rate of learning, as a part of the power in the filter", s.rate, 1e-9, 0.3);
  s.sound.Declare(options, SoundOptions::Use::kConverts, "raw-rate");
  const auto operands = options.Parse(argc, argv, 2);
  if (!operands) return;
  s.sound.Check();
  s.file = operands->at(0);
  s.output = operands->at(1);
  if (s.referenceChannel == 0) s.referenceChannel = s.reference.empty() ? 2 : 1;
  if (s.reference.empty()) s.reference = s.file;
  if (s.reference == s.file && s.referenceChannel == s.channel) {
    throw UsageError(Format("channel %d cannot be its own reference", s.channel));
  }

  AudioPair pair(s.file, s.channel, s.reference, s.referenceChannel, s.sound);
  const AudioReader& recording = pair.First();
  Canceller canceller(s);
  const auto delay = size_t(s.taps / 2);
  AudioWriter writer(s.output, recording.Rate(), 1, recording.SampleFormat(), s.sound);
  Stream({2, 1}, recording.Length(), {delay, delay}, writer,
         [&](Planes& source, size_t at) { return pair.Read(source, at)[0]; },
         [&](size_t, const Planes& source, size_t, float* dst, int32_t len) {
           canceller.Run(source[0], source[1], dst, len);
         });
  writer.Finish();
}

const Registration registration({"denoise", "noise taken out with a reference channel or file", Run});

}  // namespace
}  // namespace tzm
