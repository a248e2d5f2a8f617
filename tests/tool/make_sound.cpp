// make_sound FILE CHANNELS SAMPLES FREQUENCY AMPLITUDE NOISE: a WAV file of binary32 samples at 48 kHz. The last
// channel holds the sine with uniform noise of the given amplitude added, the others are silent. FREQUENCY "nan"
// makes samples that are not numbers.
#include <sndfile.h>

#include <cmath>
#include <cstdlib>
#include <numbers>
#include <random>
#include <vector>

int main(int argc, char** argv) {
  if (argc != 7) return 2;
  SF_INFO info{};
  info.samplerate = 48000;
  info.channels = std::atoi(argv[2]);
  info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
  const long samples = std::atol(argv[3]);
  const double frequency = std::atof(argv[4]), amplitude = std::atof(argv[5]), noise = std::atof(argv[6]);
  SNDFILE* file = sf_open(argv[1], SFM_WRITE, &info);
  if (!file) return 1;
  std::mt19937 random(1);
  std::uniform_real_distribution<double> uniform(-noise, noise);
  std::vector<float> frame(size_t(info.channels));
  for (long i = 0; i < samples; ++i) {
    const double phase = 2 * std::numbers::pi * std::fmod(frequency * double(i) / info.samplerate, 1.0);
    frame.back() = float(amplitude * std::sin(phase) + uniform(random));
    if (sf_writef_float(file, frame.data(), 1) != 1) return 1;
  }
  return sf_close(file);
}
