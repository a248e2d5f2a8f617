// tzm spectrogram: power over time and frequency.
#include <signal_tzm/arith.h>
#include <signal_tzm/elementary.h>
#include <signal_tzm/generate.h>
#include <signal_tzm/reduce.h>
#include <signal_tzm/transform.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "audio.h"
#include "command.h"
#include "handle.h"
#include "options.h"
#include "output.h"
#include "plot.h"
#include "progress.h"
#include "results.h"
#include "text.h"

namespace tzm {
namespace {

constexpr int32_t kShortestSegment = 16, kLongestSegment = 1 << 16, kOverlaps = 4;
constexpr int64_t kMostColumns = 1700;  // as many as the plot has pixels

struct Settings {
  std::string file;
  int32_t channel = 1, segment = 1024;
  double range = 90;
  PlotOptions results;
};

using Spec = Handle<OrvaTransformSpec, ORVAS_DFTRToCRelease_32f>;

// Powers in dB: column by column, each from frequency 0 upwards.
struct Spectrogram {
  size_t columns = 0, bins = 0;
  double startSeconds = 0, columnSeconds = 0, binHertz = 0;
  std::vector<float> level;

  double Seconds(size_t column) const { return startSeconds + (double(column) + 0.5) * columnSeconds; }
};

// Segments under a Hann window, three quarters of each shared with the next. Where there are more of them than
// columns, a column is the mean of its segments' powers.
Spectrogram Analyse(AudioReader& reader, const Settings& s) {
  const auto len = size_t(s.segment), hop = len / kOverlaps, bins = len / 2 + 1;
  const int64_t frames = 1 + (reader.Length() - s.segment) / int64_t(hop);
  const int64_t perColumn = (frames + kMostColumns - 1) / kMostColumns;
  const auto spec = MakeHandle<Spec>("the transform",
                                     [&](auto** made) {
                                       return ORVAS_DFTRToCInit_32f(s.segment, ORVA_DIVIDE_NONE, made);
                                     });
  std::vector<float> window(len, 1.0f), samples(len), windowed(len), power(bins);
  std::vector<Orva32fc> bin(bins);
  std::vector<double> sum(bins);
  float gain;
  Require(ORVAS_WinHann_32f_I(window.data(), s.segment), "the window");
  Require(ORVAS_Sum_32f(window.data(), s.segment, &gain, 0), "the window's sum");

  Spectrogram result;
  result.bins = bins;
  result.startSeconds = double(len - hop) / 2 / reader.Rate();  // segments stand for a hop around their middle
  result.columnSeconds = double(perColumn) * double(hop) / reader.Rate();
  result.binHertz = double(reader.Rate()) / s.segment;
  Progress progress("reading", frames);
  std::span<float> tail(samples);
  int64_t held = 0;  // segments in the sum
  const auto finishColumn = [&] {
    // A sine of amplitude a has the power a^2/2, half of it at the negative frequency that is not in the bins.
    const double scale = 2 / (double(gain) * gain * double(held));
    for (size_t i = 0; i < bins; ++i) {
      result.level.push_back(float(10 * std::log10(scale * (i == 0 || 2 * i == len ? sum[i] / 2 : sum[i]))));
    }
    std::fill(sum.begin(), sum.end(), 0);
    held = 0;
    ++result.columns;
  };
  for (int64_t frame = 0; reader.Read(tail) == tail.size(); ++frame) {
    Require(ORVAS_Mul_32f(samples.data(), window.data(), windowed.data(), s.segment), "the product");
    Require(ORVAS_DFTRToC_32f(windowed.data(), &bin[0].re, spec.get()), "the transform");
    Require(ORVAS_PowerSpectr_32fc(bin.data(), power.data(), int32_t(bins)), "the power");
    for (size_t i = 0; i < bins; ++i) sum[i] += double(power[i]);
    if (++held == perColumn) finishColumn();
    std::copy(samples.begin() + std::ptrdiff_t(hop), samples.end(), samples.begin());
    tail = std::span(samples).last(hop);
    progress.Show(frame);
  }
  if (held > 0) finishColumn();
  if (result.columns == 0) throw Failure(Format("'%s' ends before a segment is full", s.file.c_str()));
  return result;
}

Table LevelTable(const Spectrogram& g) {
  Table table{{"time_s", "Time (s)", 3, {}}, {"frequency_hz", "Frequency (Hz)", 1, {}}, {"level_db", "Level", 1, {}}};
  for (size_t i = 0; i < g.level.size(); ++i) {
    table[0].values.push_back(g.Seconds(i / g.bins));
    table[1].values.push_back(double(i % g.bins) * g.binHertz);
    table[2].values.push_back(double(g.level[i]));
  }
  return table;
}

void Run(int argc, char** argv) {
  Settings s;
  Options options("spectrogram", "FILE",
                  "Draws the power of a sound file over time and frequency, by default to FILE's name with\n"
                  "-spectrogram.png in the current folder. Levels are in dB relative to full scale: a sine at\n"
                  "full scale has -3 dB. Segments overlap by three quarters, under a Hann window.",
                  "tzm spectrogram --segment 512 /usr/share/sounds/alsa/Front_Center.wav");
  options.Number("segment", 's', "samples in a segment, a multiple of 4", s.segment, kShortestSegment, kLongestSegment);
  options.Number("range", 'r', "dB from the darkest to the brightest colour", s.range, 1, 300);
  options.Number("channel", 'c', "channel, counted from 1", s.channel, 1, 1024);
  s.results.Declare(options, "print times, frequencies and levels as CSV; plot only with --output",
                    "print them as JSON; plot only with --output");
  const auto operands = options.Parse(argc, argv, 1);
  if (!operands) return;
  s.file = operands->front();
  s.results.Settle(s.file, "spectrogram");
  if (s.segment % kOverlaps != 0) throw UsageError(Format("--segment is a multiple of 4, unlike %d", s.segment));

  AudioReader reader(s.file, s.channel);
  if (reader.Length() < s.segment) {
    throw Failure(Format("'%s' holds %lld samples, fewer than a segment of %d: give a shorter --segment",
                         s.file.c_str(), static_cast<long long>(reader.Length()), s.segment));
  }
  const Spectrogram g = Analyse(reader, s);
  const auto highest = size_t(std::max_element(g.level.begin(), g.level.end()) - g.level.begin());
  const std::string about = Format("%d Hz, %.2f s, channel %d of %d; segments of %d samples, %.3g Hz per bin",
                                   reader.Rate(), double(reader.Length()) / reader.Rate(), s.channel,
                                   reader.Channels(), s.segment, g.binHertz);
  if (s.results.csv) {
    PrintCsv(LevelTable(g));
  } else if (s.results.json) {
    JsonObject object;
    object.Add("file", s.file);
    object.Add("rate_hz", reader.Rate());
    object.Add("channel", s.channel);
    object.Add("segment", s.segment);
    object.AddColumns("levels", LevelTable(g));
    object.Print();
  } else {
    std::printf("%s: %s\n\n  highest: %.1f dB at %.2f s, %.0f Hz\n", CleanText(BaseName(s.file)).c_str(), about.c_str(),
                double(g.level[highest]), g.Seconds(highest / g.bins),
                double(highest % g.bins) * g.binHertz);
  }
  if (s.results.output.empty()) return;
  Plot plot;
  plot.title = CleanText(BaseName(s.file)) + ": spectrogram";
  plot.subtitle = about;
  plot.x = {"Time (s)", g.startSeconds, g.startSeconds + double(g.columns) * g.columnSeconds};
  plot.y = {"Frequency (Hz)", 0, reader.Rate() / 2.0};
  const double top = std::isfinite(g.level[highest]) ? std::ceil(double(g.level[highest])) : 0;
  plot.image = {g.columns, g.bins, g.level, top - s.range, top, "dB"};
  WritePlot(plot, s.results.output);
  s.results.PrintPlotName();
}

const Registration registration({"spectrogram", "power over time and frequency", Run});

}  // namespace
}  // namespace tzm
