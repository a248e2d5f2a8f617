// one_call CSV FILE SEGMENT OVERLAP: holds tzm's CSV of a one-channel file against a single call of the library
// over the whole file (rectangular window), and prints the largest difference in dB.
#include <signal_tzm.h>
#include <sndfile.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <vector>

int main(int argc, char** argv) {
  if (argc != 5) return 2;
  SF_INFO info{};
  SNDFILE* file = sf_open(argv[2], SFM_READ, &info);
  std::FILE* csv = std::fopen(argv[1], "r");
  if (!file || !csv || info.channels != 1) return 1;
  std::vector<float> samples(static_cast<size_t>(info.frames));
  if (sf_readf_float(file, samples.data(), info.frames) != info.frames) return 1;
  sf_close(file);

  const int segment = std::atoi(argv[3]);
  std::vector<float> density(size_t(segment) / 2 + 1);
  const OrvaStatus status = ORVAS_Pwelch_32f(samples.data(), nullptr, density.data(), int32_t(samples.size()), 0,
                                             segment, std::atof(argv[4]));
  if (status != ORVA_STS_NO_ERR) return std::printf("status %d\n", status), 1;

  double worst = 0, frequency, level;
  size_t bins = 0;
  if (std::fscanf(csv, "frequency_hz,density_db\n") != 0) return 1;
  for (; std::fscanf(csv, "%lf,%lf\n", &frequency, &level) == 2 && bins < density.size(); ++bins) {
    if (std::abs(frequency - double(bins) * info.samplerate / segment) > 1e-4) return std::printf("frequency\n"), 1;
    const double expected = 10 * std::log10(double(density[bins]) * 2 * std::numbers::pi / info.samplerate);
    worst = std::fmax(worst, std::abs(level - expected));
  }
  std::fclose(csv);
  if (bins != density.size()) return std::printf("%zu bins\n", bins), 1;
  std::printf("%.2e\n", worst);
}
