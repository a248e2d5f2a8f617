// tzm delay: how much later one recording has a sound than another.
#include <signal_tzm/companion.h>
#include <signal_tzm/correlate.h>
#include <signal_tzm/reduce.h>

#include <algorithm>
#include <array>
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

constexpr size_t kLeastBlock = 1 << 16, kMostLags = 1 << 24;

struct Settings {
  std::string file, reference;
  int32_t channel = 1, referenceChannel = 0;
  double range = 1000;
  SoundOptions sound;
  PlotOptions results;
};

using Correlation = Handle<CorrState, ORVAS_CorrRelease_64f>;

// The correlation coefficients of all lags from -lags to lags. A block of the reference, which is held back by the
// lags, is put against as much of the recording as they reach; the blocks' sums are added.
std::vector<double> Correlate(AudioPair& pair, size_t lags) {
  const size_t block = std::max(kLeastBlock, 2 * lags), window = block + 2 * lags, count = 2 * lags + 1;
  const auto correlation = MakeHandle<Correlation>("the correlation", [&](auto** state) {
    return ORVAS_CrossCorrInit_64f(int32_t(block), int32_t(window), int32_t(count), 0, ORVA_ROUTE_BY_LENGTH, state);
  });
  Planes fresh(2, std::vector<float>(block));
  std::vector<double> recording(window), reference(lags + block), piece(count), sum(count);
  std::array<double, 2> energy{};
  Progress progress("reading", pair.First().Length());
  int64_t done = 0;
  for (bool more = true; more;) {
    const auto counts = pair.Read(fresh);
    more = counts[0] + counts[1] > 0;  // the last time, for what was held back, there are zeros
    for (size_t c : {0, 1}) {
      std::vector<double>& held = c == 0 ? recording : reference;
      std::copy(held.begin() + std::ptrdiff_t(block), held.end(), held.begin());
      double* const added = &held[held.size() - block];
      Require(ORVAS_Convert_32f64f(fresh[c].data(), added, int32_t(block)), "the conversion");
      double norm;
      Require(ORVAS_Norm_L2_64f(added, int32_t(block), &norm), "the norm");
      energy[c] += norm * norm;
    }
    Require(ORVAS_CrossCorrNorm_64f(reference.data(), int32_t(block), recording.data(), int32_t(window), piece.data(),
                                    int32_t(count), 0, 0, correlation.get()),
            "the correlation");
    for (size_t i = 0; i < count; ++i) sum[i] += piece[i];
    progress.Show(done += int64_t(counts[1]));
  }
  const double scale = std::sqrt(energy[0]) * std::sqrt(energy[1]);
  if (scale == 0) throw Failure("a file is silent: there is nothing to compare");
  for (double& value : sum) value = std::clamp(value / scale, -1.0, 1.0);
  return sum;
}

// Where the parabola through a maximum and its neighbours is highest, relative to the maximum.
double Offset(const std::vector<double>& c, size_t top) {
  if (top == 0 || top + 1 == c.size()) return 0;
  const double left = std::abs(c[top]) - std::abs(c[top - 1]), right = std::abs(c[top]) - std::abs(c[top + 1]);
  return left + right > 0 ? 0.5 * (left - right) / (left + right) : 0;
}

void Run(int argc, char** argv) {
  Settings s;
  Options options("delay", "FILE",
                  "Tells how much later a channel of a sound file has a sound than a reference: another channel of\n"
                  "it (the second one unless told otherwise), or another file. It is the lag at which their\n"
                  "correlation is strongest, found between the samples by a parabola; the coefficient is 1 for\n"
                  "equal sounds, negative for an inverted one.",
                  "tzm delay --reference near.wav far.wav");
  options.Text("reference", 'r', "FILE", "file to compare with (default: FILE itself)", s.reference);
  options.Number("reference-channel", 0, "channel to compare with (default 2, of another file 1)", s.referenceChannel,
                 1, kMostChannels);
  options.Channel(s.channel);
  options.Number("range", 0, "largest delay looked for, to both sides, in ms", s.range, 1e-3, 1e6);
  s.results.byDefault = false;
  s.results.Declare(options, "print all lags and their coefficients as CSV", "print delay and coefficient as JSON");
  s.sound.Declare(options, SoundOptions::Use::kReads);
  const auto operands = options.Parse(argc, argv, 1);
  if (!operands) return;
  s.sound.Check();
  s.file = operands->front();
  s.results.Settle(s.file, "delay");
  if (!s.reference.empty() && !s.results.output.empty()) RefuseOverwriting(s.results.output, s.reference);
  if (s.referenceChannel == 0) s.referenceChannel = s.reference.empty() ? 2 : 1;
  if (s.reference.empty()) s.reference = s.file;

  AudioPair pair(s.file, s.channel, s.reference, s.referenceChannel, s.sound);
  const int32_t rate = pair.First().Rate();
  const auto lags = size_t(std::max(1.0, std::ceil(s.range * 1e-3 * rate)));
  if (lags > kMostLags) throw UsageError(Format("--range %g is more than %zu samples", s.range, kMostLags));
  const std::vector<double> c = Correlate(pair, lags);
  const auto top = size_t(std::max_element(c.begin(), c.end(), [](double a, double b) {
                            return std::abs(a) < std::abs(b);
                          }) - c.begin());
  const double between = double(top) - double(lags) + Offset(c, top);
  const double samples = std::round(between * 1e4) / 1e4 + 0.0;  // the parabola knows no more; and no zero below zero
  const std::string found = Format("%.6f s (%.2f samples), coefficient %.4f", samples / rate, samples, c[top]);
  Table table{{"lag_s", "Lag (s)", 6, {}}, {"coefficient", "Coefficient", 6, c}};
  for (size_t i = 0; i < c.size(); ++i) table[0].values.push_back((double(i) - double(lags)) / rate);
  if (s.results.csv) {
    PrintCsv(table);
  } else if (s.results.json) {
    JsonObject object;
    object.Add("file", s.file);
    object.Add("reference", s.reference);
    object.Add("rate_hz", rate);
    object.Add("delay_s", samples / rate);
    object.Add("delay_samples", samples);
    object.Add("coefficient", c[top]);
    object.Print();
  } else {
    std::printf("delay: %s\n", found.c_str());
  }
  if (!s.results.Draws(false)) return;
  Plot plot;
  plot.title = CleanText(BaseName(s.file) + " against " + BaseName(s.reference)) + ": correlation";
  plot.subtitle = "delay: " + found;
  plot.xs = table[0].values;
  plot.curves = {{c}};
  plot.x = {"Lag (s)", plot.xs.front(), plot.xs.back()};
  plot.y = {"Coefficient", -1, 1.2};
  plot.markers.push_back({samples / rate, c[top], Format("%.6g s", samples / rate)});
  WritePlots({plot}, s.results.output);
  s.results.PrintPlotName();
}

const Registration registration({"delay", "time difference of two recordings or channels", Run});

}  // namespace
}  // namespace tzm
