// tzm psd: power spectral density of a recording by Welch's method.
#include <signal_tzm/generate.h>

#include <algorithm>
#include <array>
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

// A window multiplies an array; null is the rectangular one.
using WindowOperation = OrvaStatus (*)(const Orva32f*, Orva32f*, int32_t);
constexpr std::array<std::string_view, 5> kWindowNames{"hann", "hamming", "blackman", "bartlett", "rectangular"};
constexpr std::array<WindowOperation, 5> kWindows{ORVAS_WinHann_32f, ORVAS_WinHamming_32f, ORVAS_WinBlackmanStd_32f,
                                                  ORVAS_WinBartlett_32f, nullptr};

constexpr std::array<std::string_view, 2> kScaleNames{"log", "linear"};
enum { kLogarithmic, kLinear };

constexpr int32_t kShortestSegment = 8, kLongestSegment = 0x7ffffff;
constexpr int32_t kUsualSegment = AudioReader::kAhead;
constexpr double kLargestOverlap = 0.95;
constexpr double kLeastProminence = 3;  // dB; lesser maxima are the estimate's own roughness

struct Settings {
  std::string file;
  size_t window = 0, scale = kLogarithmic;
  int32_t segment = 0, channel = 1, peaks = 8;
  double overlap = 0.5;
  SoundOptions sound;
  PlotOptions results;
};

struct Spectrum {
  int64_t segments = 0, samples = 0;
  std::vector<double> frequency;               // Hz
  std::vector<int32_t> channels;               // their numbers
  std::vector<std::vector<double>> densities;  // of each, in dB: power in one hertz against the square of full scale

  bool Silent() const {
    return std::all_of(densities.begin(), densities.end(), [](const auto& density) {
      return std::none_of(density.begin(), density.end(), [](double d) { return std::isfinite(d); });
    });
  }
};

struct Peak {
  int32_t channel;
  double frequency, density, prominence;
};

std::vector<float> MakeWindow(const Settings& settings) {
  std::vector<float> window(size_t(settings.segment), 1.0f);
  const WindowOperation operation = kWindows[settings.window];
  if (operation) Require(operation(window.data(), window.data(), settings.segment), "the window");
  return window;
}

// The mean over the segments of |X|^2 / (rate * sum of the window's squares): power in one hertz, both signs of a
// frequency in one bin. ORVAS_Pwelch is that for a sound in memory whose segments overlap; here files are of any
// length, and no overlap is Bartlett's estimate.
Spectrum Estimate(AudioReader& reader, const Settings& settings) {
  const auto len = size_t(settings.segment);
  const size_t step = len - size_t(std::ceil(settings.segment * settings.overlap));
  const std::vector<float> window = MakeWindow(settings);
  const size_t bins = len / 2 + 1, channels = reader.Channels();
  std::vector<std::vector<double>> sums(channels, std::vector<double>(bins));
  std::vector<int64_t> counts(channels);
  Spectrum result;
  result.samples = ForEachSegment(reader, window, step, [&](size_t c, const std::vector<float>& power) {
    for (size_t i = 0; i < bins; ++i) sums[c][i] += double(power[i]);
    ++counts[c];
  });
  result.segments = counts[0];
  double squares = 0;
  for (const float value : window) squares += double(value) * double(value);
  const double scale = 1 / (squares * reader.Rate() * double(result.segments));
  for (size_t i = 0; i < bins; ++i) result.frequency.push_back(double(i) * reader.Rate() / settings.segment);
  for (size_t c = 0; c < channels; ++c) {
    result.channels.push_back(settings.channel == 0 ? int32_t(c) + 1 : settings.channel);
    for (size_t i = 0; i < bins; ++i) {
      const bool single = i == 0 || 2 * i == len;  // the other bins stand for two frequencies
      sums[c][i] = 10 * std::log10(sums[c][i] * scale * (single ? 1 : 2));
    }
  }
  result.densities = std::move(sums);
  return result;
}

// How far the curve must fall from a maximum before it rises above it, on the side where it falls less.
double Prominence(const std::vector<double>& curve, size_t top) {
  const auto fall = [&](auto first, auto last) {
    const auto higher = std::find_if(first, last, [&](double v) { return v > curve[top]; });
    return first == higher ? 0.0 : curve[top] - *std::min_element(first, higher);
  };
  const auto at = curve.begin() + std::ptrdiff_t(top);
  return std::min(fall(at + 1, curve.end()), fall(std::make_reverse_iterator(at), curve.rend()));
}

// The local maximum at bin `i`, placed between the bins by the parabola through the three around it.
Peak Refine(const Spectrum& spectrum, size_t c, size_t i) {
  const std::vector<double>& d = spectrum.densities[c];
  const double left = d[i] - d[i - 1], right = d[i] - d[i + 1];
  if (!std::isfinite(left + right)) return {spectrum.channels[c], spectrum.frequency[i], d[i], 0};
  const double offset = 0.5 * (left - right) / (left + right);
  return {spectrum.channels[c], spectrum.frequency[i] + offset * spectrum.frequency[1],
          d[i] + 0.25 * offset * (left - right), 0};
}

// The strongest local maxima of each channel that stand out from their surroundings, strongest first.
std::vector<Peak> FindPeaks(const Spectrum& spectrum, size_t count) {
  std::vector<Peak> peaks;
  for (size_t c = 0; c < spectrum.channels.size(); ++c) {
    const std::vector<double>& d = spectrum.densities[c];
    std::vector<std::pair<Peak, size_t>> tops;
    for (size_t i = 1; i + 1 < d.size(); ++i) {
      if (d[i] > d[i - 1] && d[i] >= d[i + 1]) tops.emplace_back(Refine(spectrum, c, i), i);
    }
    std::stable_sort(tops.begin(), tops.end(),
                     [](const auto& a, const auto& b) { return a.first.density > b.first.density; });
    for (size_t found = 0; auto& [peak, bin] : tops) {
      if (found == count) break;
      peak.prominence = Prominence(d, bin);
      if (peak.prominence < kLeastProminence) continue;
      peaks.push_back(peak);
      ++found;
    }
  }
  return peaks;
}

Table PeakTable(const Spectrum& spectrum, const std::vector<Peak>& peaks) {
  Table table{{"rank", "Peak", 0, {}},
              {"frequency_hz", "Frequency (Hz)", 1, {}},
              {"density_db", "Density (dB/Hz)", 1, {}},
              {"prominence_db", "Prominence (dB)", 1, {}}};
  Column channels{"channel", "Channel", 0, {}};
  for (const Peak& p : peaks) {
    const bool next = !channels.values.empty() && channels.values.back() == p.channel;
    table[0].values.push_back(next ? table[0].values.back() + 1 : 1);
    table[1].values.push_back(p.frequency);
    table[2].values.push_back(p.density);
    table[3].values.push_back(p.prominence);
    channels.values.push_back(p.channel);
  }
  if (spectrum.channels.size() > 1) table.insert(table.begin(), channels);
  return table;
}

Table SpectrumTable(const Spectrum& spectrum) {
  Table table{{"frequency_hz", "Frequency (Hz)", 1, spectrum.frequency}};
  for (size_t c = 0; c < spectrum.channels.size(); ++c) {
    table.push_back({ChannelColumn("density_db", spectrum.channels, c), "Density (dB/Hz)", 1, spectrum.densities[c]});
  }
  return table;
}

std::string Describe(const Settings& settings, const AudioReader& reader, const Spectrum& spectrum) {
  const std::string sound = Format("%d Hz, %.2f s, %s", reader.Rate(), double(spectrum.samples) / reader.Rate(),
                                   ChannelText(settings.channel, reader.FileChannels()).c_str());
  const std::string estimate =
      Format("%s window, %lld segment%s of %d samples, overlap %.3g %%, %.3g Hz per bin",
             std::string(kWindowNames[settings.window]).c_str(), static_cast<long long>(spectrum.segments),
             spectrum.segments == 1 ? "" : "s", settings.segment, 100 * settings.overlap, spectrum.frequency[1]);
  return sound + "; " + estimate;
}

std::string FrequencyText(double hertz) {
  return hertz < 9999.5 ? Format("%.0f Hz", hertz) : Format("%.1f kHz", hertz / 1000);
}

Plot MakePlot(const Settings& settings, const AudioReader& reader, const Spectrum& spectrum,
              const std::vector<Peak>& peaks) {
  double top = -std::numeric_limits<double>::infinity(), bottom = -top;
  for (const auto& density : spectrum.densities) {
    for (const double d : density) {
      if (!std::isfinite(d)) continue;
      top = std::max(top, d);
      bottom = std::min(bottom, d);
    }
  }
  constexpr double kDecibelsShown = 150, kTickDistance = 10;
  bottom = std::floor(std::max(bottom, top - kDecibelsShown) / kTickDistance) * kTickDistance;
  top = std::ceil((top + 0.12 * (top - bottom) + 1) / kTickDistance) * kTickDistance;  // room for the peaks' texts

  const bool logarithmic = settings.scale == kLogarithmic;
  Plot plot;
  plot.title = CleanText(BaseName(settings.file)) + ": power spectral density";
  plot.subtitle = Describe(settings, reader, spectrum);
  plot.x = {"Frequency (Hz)", logarithmic ? spectrum.frequency[1] : 0, reader.Rate() / 2.0, logarithmic};
  plot.y = {"Power density (dB re full scale²/Hz)", bottom, top};
  plot.xs = spectrum.frequency;
  for (size_t c = 0; c < spectrum.channels.size(); ++c) {
    plot.curves.push_back({spectrum.densities[c], Format("channel %d", spectrum.channels[c])});
  }
  for (const Peak& p : peaks) plot.markers.push_back({p.frequency, p.density, FrequencyText(p.frequency)});
  return plot;
}

void Print(const Settings& settings, const AudioReader& reader, const Spectrum& spectrum,
           const std::vector<Peak>& peaks) {
  if (settings.results.csv) return PrintCsv(SpectrumTable(spectrum));
  if (settings.results.npy) return;
  if (!settings.results.json) {
    std::printf("%s: %s\n\n", CleanText(BaseName(settings.file)).c_str(), Describe(settings, reader, spectrum).c_str());
    if (peaks.empty()) return static_cast<void>(std::puts("  No peak stands out."));
    return PrintText(PeakTable(spectrum, peaks));
  }
  JsonObject object;
  object.Add("file", settings.file);
  object.Add("rate_hz", reader.Rate());
  if (settings.channel > 0) object.Add("channel", settings.channel);
  object.Add("channels", reader.FileChannels());
  object.Add("samples", double(spectrum.samples));
  object.Add("window", std::string(kWindowNames[settings.window]));
  object.Add("segment", settings.segment);
  object.Add("overlap", settings.overlap);
  object.Add("segments", double(spectrum.segments));
  object.AddRows("peaks", PeakTable(spectrum, peaks));
  object.AddColumns("spectrum", SpectrumTable(spectrum));
  object.Print();
}

void Run(int argc, char** argv) {
  Settings settings;
  Options options("psd", "FILE",
                  "Estimates the power spectral density of a sound file by Welch's method, prints its\n"
                  "strongest peaks and draws it, by default to FILE's name with -psd.png in the current\n"
                  "folder. Densities are one-sided, in dB relative to the square of full scale in a band of one\n"
                  "hertz. Their sum times the width of a bin is the mean square of the windowed segments: of a\n"
                  "steady sound, its mean square. Without overlap it is Bartlett's estimate.",
                  "tzm psd --window blackman --segment 8192 /usr/share/sounds/alsa/Front_Center.wav");
  options.Choice("window", 'w', kWindowNames, "window", settings.window);
  options.Number("segment", 's', "samples in a segment (default 4096, less for a short file)", settings.segment,
                  kShortestSegment, kLongestSegment);
  options.Number("overlap", 'p', "overlap of the segments, as a fraction", settings.overlap, 0, kLargestOverlap);
  options.Channel(settings.channel, true);
  options.Number("peaks", 'n', "peaks in the table, at most", settings.peaks, 0, 1000);
  options.Choice("frequency", 'f', kScaleNames, "frequency axis", settings.scale);
  settings.results.Declare(options, "print the whole spectrum as CSV, not the peaks; plot only with --output",
                           "print settings, peaks and spectrum as JSON; plot only with --output");
  settings.sound.Declare(options, SoundOptions::Use::kReads);
  const auto operands = options.Parse(argc, argv, 1);
  if (!operands) return;
  settings.sound.Check();
  settings.file = operands->front();
  settings.results.Settle(settings.file, "psd");

  AudioReader reader(settings.file, settings.sound, ChannelList(settings.channel));
  settings.segment = ChooseSegment(reader, settings.segment, kShortestSegment, kUsualSegment);
  if (std::ceil(settings.segment * settings.overlap) >= settings.segment) {
    throw UsageError(
        Format("--overlap %g leaves no step between segments of %d samples", settings.overlap, settings.segment));
  }
  const Spectrum spectrum = Estimate(reader, settings);
  const std::vector<Peak> peaks = FindPeaks(spectrum, size_t(settings.peaks));
  Print(settings, reader, spectrum, peaks);
  if (settings.results.WantsArray()) settings.results.WriteArray(NpyTable(SpectrumTable(spectrum)));
  if (!settings.results.Draws(spectrum.Silent())) return;
  WritePlots({MakePlot(settings, reader, spectrum, peaks)}, settings.results.output);
  settings.results.PrintPlotName();
}

const Registration registration({"psd", "power spectral density by Welch's method", Run});

}  // namespace
}  // namespace tzm
