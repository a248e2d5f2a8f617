// tzm envelope: how loud a recording is over time, as the magnitude of its analytic signal.
#include <signal_tzm/elementary.h>
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

// The Hilbert transform reaches to all sides, ever weaker. The recording goes through it in blocks, of which only
// the middle is used.
constexpr size_t kBlock = 1 << 16, kMargin = 1 << 13, kUsed = kBlock - 2 * kMargin;

struct Settings {
  std::string file;
  int32_t channel = 1;
  double step = 5;
  PlotOptions results;
};

using Spec = Handle<OrvaHilbertSpec, ORVAS_HilbertRelease_32f32fc>;

// The largest magnitude in each step of time.
std::vector<double> Measure(AudioReader& reader, const Settings& s) {
  const auto spec =
      MakeHandle<Spec>("the Hilbert transform", [](auto** made) { return ORVAS_HilbertInit_32f32fc(kBlock, made); });
  std::vector<float> samples(kBlock), magnitude(kBlock);
  std::vector<Orva32fc> analytic(kBlock);
  std::vector<double> envelope;
  Progress progress("reading", reader.Length());
  const double step = std::max(1.0, s.step * 1e-3 * reader.Rate());
  int64_t read = 0, done = 0;
  for (std::span<float> tail = std::span(samples).subspan(kMargin);;) {
    const size_t got = reader.Read(tail);
    std::fill(tail.begin() + std::ptrdiff_t(got), tail.end(), 0.0f);
    read += int64_t(got);
    const auto used = size_t(std::min(int64_t(kUsed), read - done));
    if (used == 0) break;
    Require(ORVAS_Hilbert_32f32fc(samples.data(), analytic.data(), kBlock, spec.get()), "the Hilbert transform");
    Require(ORVAS_Magnitude_32fc(analytic.data(), magnitude.data(), kBlock), "the magnitude");
    for (size_t i = 0; i < used; ++i, ++done) {
      const double value = magnitude[kMargin + i];
      if (size_t(double(done) / step) >= envelope.size()) envelope.push_back(0);
      envelope.back() = std::max(envelope.back(), value);
    }
    progress.Show(done);
    std::copy(samples.begin() + kUsed, samples.end(), samples.begin());
    tail = std::span(samples).last(kUsed);
  }
  return envelope;
}

Table EnvelopeTable(const std::vector<double>& envelope, double step) {
  Table table{{"time_s", "Time (s)", 3, {}}, {"envelope", "Envelope", 6, envelope}};
  for (size_t i = 0; i < envelope.size(); ++i) table[0].values.push_back(double(i) * step);
  return table;
}

void Run(int argc, char** argv) {
  Settings s;
  Options options("envelope", "FILE",
                  "Draws the envelope of a sound file: the magnitude of its analytic signal, which a Hilbert\n"
                  "transform makes, its largest value in every step of time. A sine of amplitude a has the\n"
                  "envelope a. The plot goes to FILE's name with -envelope.png in the current folder.",
                  "tzm envelope --step 20 --csv /usr/share/sounds/alsa/Front_Center.wav");
  options.Number("step", 's', "step of time in ms, at least one sample", s.step, 1e-3, 60000);
  options.Number("channel", 'c', "channel, counted from 1", s.channel, 1, 1024);
  s.results.Declare(options, "print the envelope as CSV; plot only with --output",
                    "print the envelope as JSON; plot only with --output");
  const auto operands = options.Parse(argc, argv, 1);
  if (!operands) return;
  s.file = operands->front();
  s.results.Settle(s.file, "envelope");

  AudioReader reader(s.file, s.channel);
  reader.RequireSamples();
  const std::vector<double> envelope = Measure(reader, s);
  const double step = std::max(s.step * 1e-3, 1.0 / reader.Rate());
  const Table table = EnvelopeTable(envelope, step);
  const auto highest = std::max_element(envelope.begin(), envelope.end());
  const double peakTime = double(highest - envelope.begin()) * step;
  const std::string about = Format("%d Hz, %.2f s, channel %d of %d; steps of %.4g ms", reader.Rate(),
                                   double(reader.Length()) / reader.Rate(), s.channel, reader.Channels(), step * 1e3);
  if (s.results.csv) {
    PrintCsv(table);
  } else if (s.results.json) {
    JsonObject object;
    object.Add("file", s.file);
    object.Add("rate_hz", reader.Rate());
    object.Add("channel", s.channel);
    object.AddColumns("envelope", table);
    object.Print();
  } else {
    std::printf("%s: %s\n\n  highest: %.6f (%.2f dB) at %.3f s\n", CleanText(BaseName(s.file)).c_str(), about.c_str(),
                *highest, 20 * std::log10(*highest), peakTime);
  }
  if (s.results.output.empty()) return;
  Plot plot;
  plot.title = CleanText(BaseName(s.file)) + ": envelope";
  plot.subtitle = about;
  plot.x = {"Time (s)", 0, std::max(double(envelope.size()) * step, 1e-6)};
  plot.y = {"Envelope (full scale is 1)", 0, *highest > 0 ? 1.12 * *highest : 1};
  plot.xs = table[0].values;
  plot.ys = envelope;
  if (*highest > 0) plot.markers.push_back({peakTime, *highest, Format("%.3g", *highest)});
  WritePlot(plot, s.results.output);
  s.results.PrintPlotName();
}

const Registration registration({"envelope", "loudness over time from the analytic signal", Run});

}  // namespace
}  // namespace tzm
