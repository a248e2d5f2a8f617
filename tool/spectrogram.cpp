// tzm spectrogram: power over time and frequency.
#include <signal_tzm/generate.h>
#include <signal_tzm/reduce.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "audio.h"
#include "command.h"
#include "options.h"
#include "output.h"
#include "plot.h"
#include "results.h"
#include "segments.h"
#include "text.h"

namespace tzm {
namespace {

constexpr int32_t kShortestSegment = 16, kUsualSegment = 1024, kLongestSegment = 1 << 16, kOverlaps = 4;
constexpr size_t kMostColumns = 1700;  // as many as the plot has pixels

struct Settings {
  std::string file;
  int32_t channel = 1, segment = 0;
  double range = 90;
  SoundOptions sound;
  PlotOptions results;
};

// Column by column, each from frequency 0 upwards.
struct Spectrogram {
  int32_t channel = 0;
  std::vector<double> seconds, hertz;  // where the columns' middles and the bins are
  double columnSeconds = 0;
  std::vector<float> level;            // dB

  size_t Highest() const { return size_t(std::max_element(level.begin(), level.end()) - level.begin()); }
  double HighestLevel() const { return double(level[Highest()]); }
};

// The powers of one channel. Where there are more segments than columns, a column is the mean of several: of twice as
// many each time the columns are full.
class Columns {
 public:
  explicit Columns(size_t bins) : bins_(bins) {}

  void Add(const std::vector<float>& power) {
    if (held_ == perColumn_ && power_.size() == kMostColumns * bins_) Halve();
    if (held_ == perColumn_ || power_.empty()) {
      power_.resize(power_.size() + bins_);
      held_ = 0;
    }
    float* const column = &power_[power_.size() - bins_];
    for (size_t i = 0; i < bins_; ++i) column[i] += power[i];
    ++held_;
  }

  size_t PerColumn() const { return perColumn_; }
  /** The mean powers, times the scale. */
  std::vector<float> Levels(double scale) const {
    std::vector<float> level;
    for (size_t i = 0; i < power_.size(); ++i) {
      const size_t count = i + bins_ < power_.size() ? perColumn_ : held_, bin = i % bins_;
      const bool single = bin == 0 || bin + 1 == bins_;  // the other bins stand for two frequencies
      level.push_back(float(10 * std::log10(scale / double(count) * double(power_[i]) * (single ? 1 : 2))));
    }
    return level;
  }

 private:
  void Halve() {
    for (size_t i = 0; i < power_.size() / 2; ++i) {
      const size_t from = 2 * (i - i % bins_) + i % bins_;
      power_[i] = power_[from] + power_[from + bins_];
    }
    power_.resize(power_.size() / 2);
    held_ = perColumn_ *= 2;
  }

  size_t bins_, perColumn_ = 1, held_ = 0;  // segments in the last column
  std::vector<float> power_;
};

// Segments under a Hann window, three quarters of each shared with the next.
std::vector<Spectrogram> Analyse(AudioReader& reader, const Settings& s, double* soundSeconds) {
  const auto len = size_t(s.segment), step = len / kOverlaps, bins = len / 2 + 1;
  std::vector<float> window(len, 1.0f);
  float gain;
  Require(ORVAS_WinHann_32f_I(window.data(), s.segment), "the window");
  Require(ORVAS_Sum_32f(window.data(), s.segment, &gain, 0), "the window's sum");
  std::vector<Columns> columns(reader.Channels(), Columns(bins));
  const int64_t samples = ForEachSegment(
      reader, window, step, [&](size_t c, const std::vector<float>& power) { columns[c].Add(power); });
  *soundSeconds = double(samples) / reader.Rate();
  std::vector<Spectrogram> results;
  for (size_t c = 0; c < columns.size(); ++c) {
    Spectrogram g;
    g.channel = s.channel == 0 ? int32_t(c) + 1 : s.channel;
    // A sine of amplitude a has the power a^2/2. Segments stand for a step around their middle.
    g.level = columns[c].Levels(1 / (double(gain) * gain));
    g.columnSeconds = double(columns[c].PerColumn() * step) / reader.Rate();
    for (size_t i = 0; i < g.level.size() / bins; ++i) {
      g.seconds.push_back(double(len - step) / 2 / reader.Rate() + (double(i) + 0.5) * g.columnSeconds);
    }
    for (size_t i = 0; i < bins; ++i) g.hertz.push_back(double(i) * reader.Rate() / s.segment);
    results.push_back(std::move(g));
  }
  return results;
}

// A table with the frequencies in its first row and the times in its first column.
std::vector<double> Framed(const Spectrogram& g) {
  std::vector<double> cells{std::numeric_limits<double>::quiet_NaN()};
  cells.insert(cells.end(), g.hertz.begin(), g.hertz.end());
  for (size_t column = 0; column < g.seconds.size(); ++column) {
    cells.push_back(g.seconds[column]);
    const auto first = g.level.begin() + std::ptrdiff_t(column * g.hertz.size());
    cells.insert(cells.end(), first, first + std::ptrdiff_t(g.hertz.size()));
  }
  return cells;
}

std::string Npy(const std::vector<Spectrogram>& spectrograms) {
  std::vector<size_t> shape{1 + spectrograms[0].seconds.size(), 1 + spectrograms[0].hertz.size()};
  if (spectrograms.size() > 1) shape.insert(shape.begin(), spectrograms.size());
  std::vector<double> cells;
  for (const Spectrogram& g : spectrograms) {
    const std::vector<double> more = Framed(g);
    cells.insert(cells.end(), more.begin(), more.end());
  }
  return NpyArray(shape, cells);
}

JsonObject Json(const Spectrogram& g) {
  JsonObject object;
  object.Add("channel", g.channel);
  object.AddArray("frequency_hz", g.hertz);
  object.AddArray("time_s", g.seconds);
  object.AddMatrix("level_db", {g.level.begin(), g.level.end()}, g.hertz.size());
  return object;
}

// A column for each frequency, a row for each time; the channels one after the other.
Table LevelTable(const std::vector<Spectrogram>& spectrograms) {
  Table table{{"channel", "", 0, {}}, {"time_s", "", 0, {}}};
  for (const double hertz : spectrograms[0].hertz) table.push_back({Format("%.9g", hertz), "", 0, {}});
  for (const Spectrogram& g : spectrograms) {
    table[0].values.insert(table[0].values.end(), g.seconds.size(), g.channel);
    table[1].values.insert(table[1].values.end(), g.seconds.begin(), g.seconds.end());
    for (size_t i = 0; i < g.level.size(); ++i) table[2 + i % g.hertz.size()].values.push_back(double(g.level[i]));
  }
  if (spectrograms.size() == 1) table.erase(table.begin());
  return table;
}

Plot MakePlot(const Settings& s, const Spectrogram& g, const std::string& about, double top) {
  Plot plot;
  plot.title = CleanText(BaseName(s.file)) + ": spectrogram";
  if (s.channel == 0) plot.title += Format(", channel %d", g.channel);
  plot.subtitle = about;
  const double start = g.seconds.front() - g.columnSeconds / 2;
  plot.x = {"Time (s)", start, start + double(g.seconds.size()) * g.columnSeconds};
  plot.y = {"Frequency (Hz)", 0, g.hertz.back()};
  plot.image = {g.seconds.size(), g.hertz.size(), g.level, top - s.range, top, "dB"};
  return plot;
}

void Run(int argc, char** argv) {
  Settings s;
  Options options("spectrogram", "FILE",
                  "Draws the power of a sound file over time and frequency, by default to FILE's name with\n"
                  "-spectrogram.png in the current folder. Levels are in dB relative to full scale: a sine at\n"
                  "full scale has -3 dB. Segments overlap by three quarters, under a Hann window.",
                  "tzm spectrogram --segment 512 /usr/share/sounds/alsa/Front_Center.wav");
  options.Number("segment", 's', "samples in a segment, a multiple of 4 (default 1024, less for a short file)",
                 s.segment, kShortestSegment, kLongestSegment);
  options.Number("range", 'r', "dB from the darkest to the brightest colour", s.range, 1, 300);
  options.Channel(s.channel, true);
  s.results.Declare(options, "print a line for each time, a level for each frequency, as CSV; plot only with --output",
                    "print frequencies, times and a row of levels for each as JSON; plot only with --output");
  s.sound.Declare(options, SoundOptions::Use::kReads);
  const auto operands = options.Parse(argc, argv, 1);
  if (!operands) return;
  s.file = operands->front();
  s.results.Settle(s.file, "spectrogram");
  s.sound.Check();
  if (s.segment % kOverlaps != 0) throw UsageError(Format("--segment is a multiple of 4, unlike %d", s.segment));

  AudioReader reader(s.file, s.sound, ChannelList(s.channel));
  s.segment = ChooseSegment(reader, s.segment, kShortestSegment, kUsualSegment);
  double seconds = 0;
  const std::vector<Spectrogram> spectrograms = Analyse(reader, s, &seconds);
  const auto& loudest = *std::max_element(spectrograms.begin(), spectrograms.end(), [](const auto& a, const auto& b) {
    return a.HighestLevel() < b.HighestLevel();
  });
  const size_t bins = loudest.hertz.size(), highest = loudest.Highest();
  const std::string about =
      Format("%d Hz, %.2f s, %s; segments of %d samples, %.3g Hz per bin", reader.Rate(), seconds,
             ChannelText(s.channel, reader.FileChannels()).c_str(), s.segment, loudest.hertz[1]);
  if (s.results.csv) {
    PrintCsv(LevelTable(spectrograms));
  } else if (s.results.json) {
    JsonObject object;
    object.Add("file", s.file);
    object.Add("rate_hz", reader.Rate());
    object.Add("segment", s.segment);
    std::vector<JsonObject> objects;
    for (const Spectrogram& g : spectrograms) objects.push_back(Json(g));
    object.AddObjects("spectrograms", objects);
    object.Print();
  } else if (s.results.Text()) {
    std::printf("%s: %s\n\n  highest: %.1f dB at %.2f s, %.0f Hz\n", CleanText(BaseName(s.file)).c_str(), about.c_str(),
                loudest.HighestLevel(), loudest.seconds[highest / bins], loudest.hertz[highest % bins]);
  }
  if (s.results.WantsArray()) s.results.WriteArray(Npy(spectrograms));
  if (!s.results.Draws(!std::isfinite(loudest.HighestLevel()))) return;
  std::vector<Plot> plots;
  for (const Spectrogram& g : spectrograms) plots.push_back(MakePlot(s, g, about, std::ceil(loudest.HighestLevel())));
  WritePlots(plots, s.results.output);
  s.results.PrintPlotName();
}

const Registration registration({"spectrogram", "power over time and frequency", Run});

}  // namespace
}  // namespace tzm
