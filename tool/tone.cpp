// tzm tone: a sine, or the keypad tones of a number.
#include <signal_tzm/companion.h>
#include <signal_tzm/generate.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "audio.h"
#include "command.h"
#include "keypad.h"
#include "options.h"
#include "progress.h"
#include "text.h"

namespace tzm {
namespace {

constexpr int64_t kBlock = 1 << 16;
constexpr double kToneSeconds = 1, kKeySeconds = 0.1;
constexpr double kOpen = std::numeric_limits<double>::quiet_NaN();  // an option that was not given

struct Settings {
  double frequency = kOpen, amplitude = 0.5, phase = kOpen, seconds = 0;
  int32_t rate = 48000;
  SoundOptions sound;
  std::string keys;
};

// Samples [at, at + len) of a cosine that has the phase (in periods) at sample 0, added to dst.
void AddTone(double amplitude, double frequency, double phase, int64_t at, int32_t len, double* dst) {
  std::vector<double> tone(static_cast<size_t>(len));
  const double periods = std::fmod(frequency * double(at), 1.0) + phase;
  const double radians = 2 * std::numbers::pi * (periods - std::floor(periods));
  Require(ORVAS_Tone_64f(tone.data(), len, amplitude, frequency, &radians), "the tone");
  Require(ORVAS_Add_64f_I(tone.data(), dst, len), "the sum");
}

// `count` samples in blocks; fill(at, len, dst) adds those of a block to zeros.
template <class Fill>
void WriteBlocks(AudioWriter& writer, int64_t count, const Fill& fill) {
  WidePlanes samples(1);
  Progress progress("writing", count);
  for (int64_t at = 0; at < count; at += kBlock) {
    const auto len = size_t(std::min(kBlock, count - at));
    samples[0].assign(len, 0.0);
    fill(at, int32_t(len), samples[0].data());
    writer.Write(samples, 0, len);
    progress.Show(at);
  }
}

void WriteKeys(const Settings& s, int64_t samples, AudioWriter& writer) {
  const auto silence = [](int64_t, int32_t, double*) {};
  for (const char key : s.keys) {
    const size_t place = kKeys.find(key);
    WriteBlocks(writer, samples, [&](int64_t at, int32_t len, double* dst) {
      for (const double hertz : {kKeypadRows[place / 4], kKeypadColumns[place % 4]}) {
        AddTone(s.amplitude / 2, hertz / s.rate, 0.75, at, len, dst);  // from zero upwards
      }
    });
    WriteBlocks(writer, samples, silence);
  }
}

void Run(int argc, char** argv) {
  Settings s;
  Options options("tone", "OUTPUT",
                  "Writes a sine to a sound file of one channel, or with --keys the keypad tones of a telephone\n"
                  "number: for each key two tones of half the amplitude, and as long a pause.",
                  "tzm tone --frequency 440 --seconds 2 a.wav\n  tzm tone --keys 0123 number.wav");
  options.Number("frequency", 'f', "frequency in Hz (default 1000)", s.frequency, 1e-6, 1e9);
  options.Number("amplitude", 'a', "peak value, full scale being 1", s.amplitude, 1e-9, 1);
  options.Number("phase", 'p', "phase in degrees of the sine at the first sample (default 0)", s.phase, -360, 360);
  options.Number("seconds", 's', "length (default 1), of each key (default 0.1)", s.seconds, 1e-6, 1e6);
  options.Number("rate", 'r', "sampling rate in Hz", s.rate, 1, kHighestRate);
  s.sound.Declare(options, SoundOptions::Use::kWrites);
  options.Text("keys", 'k', "KEYS", "keypad tones: 0 to 9, *, #, A to D", s.keys);
  const auto operands = options.Parse(argc, argv, 1);
  if (!operands) return;

  const bool keypad = !s.keys.empty();
  if (keypad && !(std::isnan(s.frequency) && std::isnan(s.phase))) {
    throw UsageError("--keys takes no --frequency and no --phase");
  }
  if (std::isnan(s.frequency)) s.frequency = 1000;
  if (std::isnan(s.phase)) s.phase = 0;
  const double highest = keypad ? kKeypadColumns.back() : s.frequency;
  if (s.keys.find_first_not_of(kKeys) != std::string::npos) {
    throw UsageError(Format("--keys takes 0 to 9, *, #, A to D, not '%s'", s.keys.c_str()));
  }
  if (!(highest < s.rate / 2.0)) {
    throw UsageError(Format("%g Hz is not below half of the rate of %d Hz", highest, s.rate));
  }
  const double seconds = s.seconds > 0 ? s.seconds : keypad ? kKeySeconds : kToneSeconds;
  const auto samples = int64_t(std::llround(seconds * s.rate));
  if (samples < 1) throw UsageError(Format("--seconds %g is less than a sample at %d Hz", seconds, s.rate));

  AudioWriter writer(operands->front(), s.rate, 1, SF_FORMAT_PCM_16, s.sound);
  if (keypad) {
    WriteKeys(s, samples, writer);
  } else {
    WriteBlocks(writer, samples, [&](int64_t at, int32_t len, double* dst) {
      AddTone(s.amplitude, s.frequency / s.rate, s.phase / 360 - 0.25, at, len, dst);  // a sine from a cosine
    });
  }
  writer.Finish();
}

const Registration registration({"tone", "a sine, or keypad tones, to a file", Run});

}  // namespace
}  // namespace tzm
