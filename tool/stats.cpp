// tzm stats: levels of every channel of a recording.
#include <signal_tzm/companion.h>
#include <signal_tzm/reduce.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "audio.h"
#include "command.h"
#include "options.h"
#include "output.h"
#include "results.h"
#include "stream.h"
#include "text.h"

namespace tzm {
namespace {

// What is known of one channel's samples so far.
struct Levels {
  double count = 0, mean = 0;
  double squares = 0;     // of the deviations from the mean, added up
  double power = 0;       // of the samples, added up
  double peak = 0;
  double lowest = std::numeric_limits<double>::infinity(), highest = -lowest;

  void Add(const std::vector<double>& samples, int32_t len) {
    double blockMean, deviation = 0, norm, largest, low, high;
    Require(ORVAS_Mean_64f(samples.data(), len, &blockMean), "the mean");
    if (len > 1) Require(ORVAS_StdDev_64f(samples.data(), len, &deviation), "the deviation");
    Require(ORVAS_Norm_L2_64f(samples.data(), len, &norm), "the norm");
    Require(ORVAS_Norm_Inf_64f(samples.data(), len, &largest), "the peak");
    Require(ORVAS_Min_64f(samples.data(), len, &low), "the minimum");
    Require(ORVAS_Max_64f(samples.data(), len, &high), "the maximum");
    // Two sets of samples joined: their squares about the common mean are those about their own means and those
    // of the distance between the means.
    const double distance = blockMean - mean, joined = count + len;
    squares += deviation * deviation * (len - 1) + distance * distance * count * len / joined;
    mean += distance * len / joined;
    count = joined;
    power += norm * norm;
    peak = std::max(peak, largest);
    lowest = std::min(lowest, low);
    highest = std::max(highest, high);
  }

  double Deviation() const { return count > 1 ? std::sqrt(squares / (count - 1)) : 0; }
  double Rms() const { return std::sqrt(power / count); }
};

double Decibels(double amplitude) { return 20 * std::log10(amplitude); }

std::vector<Levels> Measure(AudioReader& reader) {
  std::vector<Levels> levels(reader.Channels());
  Planes samples = StreamBlocks(levels.size());
  Progress progress("reading", reader.Length());
  int64_t done = 0;
  while (const size_t got = reader.Read(samples)) {
    InParallel(levels.size(), [&](size_t c) {
      std::vector<double> wide(got);
      Require(ORVAS_Convert_32f64f(samples[c].data(), wide.data(), int32_t(got)), "the conversion");
      levels[c].Add(wide, int32_t(got));
    });
    progress.Show(done += int64_t(got));
  }
  return levels;
}

Table LevelTable(const std::vector<Levels>& levels) {
  Table table{{"channel", "Channel", 0, {}},           {"rms_db", "RMS (dB)", 2, {}},
              {"peak_db", "Peak (dB)", 2, {}},         {"crest_db", "Crest (dB)", 2, {}},
              {"mean", "Mean", 6, {}},                 {"deviation", "Deviation", 6, {}},
              {"minimum", "Minimum", 6, {}},           {"maximum", "Maximum", 6, {}}};
  for (size_t c = 0; c < levels.size(); ++c) {
    const Levels& l = levels[c];
    // Silence has no crest, and this NaN one sign on every machine.
    const double crest = l.peak > 0 ? Decibels(l.peak / l.Rms()) : std::numeric_limits<double>::quiet_NaN();
    const double cells[] = {double(c + 1), Decibels(l.Rms()), Decibels(l.peak), crest,
                            l.mean,        l.Deviation(),     l.lowest,         l.highest};
    for (size_t i = 0; i < table.size(); ++i) table[i].values.push_back(cells[i]);
  }
  return table;
}

void Run(int argc, char** argv) {
  DataOptions results;
  SoundOptions sound;
  Options options("stats", "FILE",
                  "Measures every channel of a sound file: root mean square and peak in dB relative to full scale\n"
                  "(a sine at full scale has an RMS of -3.01 dB), the crest factor between them, mean, standard\n"
                  "deviation, lowest and highest sample, full scale being 1.",
                  "tzm stats /usr/share/sounds/alsa/Front_Center.wav");
  results.Declare(options, "print as CSV", "print as JSON");
  sound.Declare(options, SoundOptions::Use::kReads);
  const auto operands = options.Parse(argc, argv, 1);
  if (!operands) return;
  results.Check();
  sound.Check();

  const std::string& file = operands->front();
  AudioReader reader(file, sound, {});
  const std::vector<Levels> levels = Measure(reader);
  if (results.csv) return PrintCsv(LevelTable(levels));
  if (!results.json) {
    std::printf("%s: %d Hz, %.2f s\n\n", CleanText(BaseName(file)).c_str(), reader.Rate(),
                levels[0].count / reader.Rate());
    return PrintText(LevelTable(levels));
  }
  JsonObject object;
  object.Add("file", file);
  object.Add("rate_hz", reader.Rate());
  object.Add("samples", levels[0].count);
  object.AddRows("channels", LevelTable(levels));
  object.Print();
}

const Registration registration({"stats", "levels, mean, deviation and peaks of every channel", Run});

}  // namespace
}  // namespace tzm
