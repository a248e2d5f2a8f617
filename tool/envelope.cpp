// tzm envelope: how loud a recording is over time, as the magnitude of its analytic signal.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <span>

#include "analytic.h"
#include "audio.h"
#include "command.h"
#include "options.h"
#include "output.h"
#include "plot.h"
#include "results.h"
#include "text.h"

namespace tzm {
namespace {

struct Settings {
  std::string file;
  int32_t channel = 1;
  double step = 5;
  SoundOptions sound;
  PlotOptions results;
};

struct Envelopes {
  int64_t samples = 0;
  std::vector<int32_t> channels;            // their numbers
  std::vector<std::vector<double>> values;  // of each, the largest magnitude in each step of time
};

Envelopes Measure(AudioReader& reader, const Settings& s) {
  const double step = std::max(1.0, s.step * 1e-3 * reader.Rate());
  Envelopes result;
  result.values.resize(reader.Channels());
  std::vector<int64_t> done(reader.Channels());
  result.samples = ForEachMagnitude(reader, [&](size_t c, std::span<const float> magnitudes) {
    std::vector<double>& envelope = result.values[c];
    for (const float magnitude : magnitudes) {
      if (size_t(double(done[c]++) / step) >= envelope.size()) envelope.push_back(0);
      envelope.back() = std::max(envelope.back(), double(magnitude));
    }
  });
  for (size_t c = 0; c < reader.Channels(); ++c) {
    result.channels.push_back(s.channel == 0 ? int32_t(c) + 1 : s.channel);
  }
  return result;
}

Table EnvelopeTable(const Envelopes& envelopes, double step) {
  Table table{{"time_s", "Time (s)", 3, {}}};
  for (size_t i = 0; i < envelopes.values[0].size(); ++i) table[0].values.push_back(double(i) * step);
  for (size_t c = 0; c < envelopes.values.size(); ++c) {
    table.push_back({ChannelColumn("envelope", envelopes.channels, c), "Envelope", 6, envelopes.values[c]});
  }
  return table;
}

void Run(int argc, char** argv) {
  Settings s;
  Options options("envelope", "FILE",
                  "Draws the envelope of a sound file: the magnitude of its analytic signal, which a Hilbert\n"
                  "transform makes, its largest value in every step of time. A sine of amplitude a has the\n"
                  "envelope a. The sound is taken as one period, as by scipy.signal.hilbert of all of it; the error\n"
                  "is below 2e-5 of the largest sample, at every frequency and for every length. The plot goes to\n"
                  "FILE's name with -envelope.png in the current folder.",
                  "tzm envelope --step 20 --csv /usr/share/sounds/alsa/Front_Center.wav");
  options.Number("step", 's', "step of time in ms, at least one sample", s.step, 1e-3, 60000);
  options.Channel(s.channel, true);
  s.results.Declare(options, "print the envelope as CSV; plot only with --output",
                    "print the envelope as JSON; plot only with --output");
  s.sound.Declare(options, SoundOptions::Use::kReads);
  const auto operands = options.Parse(argc, argv, 1);
  if (!operands) return;
  s.file = operands->front();
  s.results.Settle(s.file, "envelope");
  s.sound.Check();

  AudioReader reader(s.file, s.sound, ChannelList(s.channel), true);
  const Envelopes envelopes = Measure(reader, s);
  const double step = std::max(s.step * 1e-3, 1.0 / reader.Rate());
  const Table table = EnvelopeTable(envelopes, step);
  double highest = 0, peakTime = 0;
  for (const auto& values : envelopes.values) {
    const auto top = std::max_element(values.begin(), values.end());
    if (*top <= highest) continue;
    highest = *top;
    peakTime = double(top - values.begin()) * step;
  }
  const std::string about =
      Format("%d Hz, %.2f s, %s; steps of %.4g ms", reader.Rate(), double(envelopes.samples) / reader.Rate(),
             ChannelText(s.channel, reader.FileChannels()).c_str(), step * 1e3);
  if (s.results.csv) {
    PrintCsv(table);
  } else if (s.results.json) {
    JsonObject object;
    object.Add("file", s.file);
    object.Add("rate_hz", reader.Rate());
    if (s.channel > 0) object.Add("channel", s.channel);
    object.AddColumns("envelope", table);
    object.Print();
  } else if (s.results.Text()) {
    std::printf("%s: %s\n\n  highest: %.6f (%.2f dB) at %.3f s\n", CleanText(BaseName(s.file)).c_str(), about.c_str(),
                highest, 20 * std::log10(highest), peakTime);
  }
  if (s.results.WantsArray()) s.results.WriteArray(NpyTable(table));
  if (!s.results.Draws(highest == 0)) return;
  Plot plot;
  plot.title = CleanText(BaseName(s.file)) + ": envelope";
  plot.subtitle = about;
  plot.x = {"Time (s)", 0, std::max(double(table[0].values.size()) * step, 1e-6)};
  plot.y = {"Envelope (full scale is 1)", 0, 1.12 * highest};
  plot.xs = table[0].values;
  for (size_t c = 0; c < envelopes.values.size(); ++c) {
    plot.curves.push_back({envelopes.values[c], Format("channel %d", envelopes.channels[c])});
  }
  plot.markers.push_back({peakTime, highest, Format("%.3g", highest)});
  WritePlots({plot}, s.results.output);
  s.results.PrintPlotName();
}

const Registration registration({"envelope", "loudness over time from the analytic signal", Run});

}  // namespace
}  // namespace tzm
