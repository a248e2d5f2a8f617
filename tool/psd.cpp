// tzm psd: power spectral density of a recording by Welch's method.
#include <signal_tzm/generate.h>
#include <signal_tzm/transform.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numbers>

#include "audio.h"
#include "command.h"
#include "options.h"
#include "output.h"
#include "plot.h"
#include "progress.h"
#include "results.h"
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

constexpr int32_t kShortestSegment = 8, kLongestSegment = 0xfffffff, kUsualSegment = 4096;
constexpr double kLargestOverlap = 0.95;
constexpr int32_t kSamplesAtOnce = 1 << 20;
constexpr double kLeastProminence = 3;  // dB; lesser maxima are the estimate's own roughness

struct Settings {
  std::string file;
  size_t window = 0, scale = kLogarithmic;
  int32_t segment = 0, channel = 1, peaks = 8;
  double overlap = 0.5;
  PlotOptions results;
};

struct Spectrum {
  int64_t segments = 0, samples = 0;
  std::vector<double> frequency;  // Hz
  std::vector<double> density;    // dB: the power in one hertz against the square of full scale
};

struct Peak {
  double frequency, density, prominence;
};

std::vector<float> MakeWindow(const Settings& settings) {
  std::vector<float> window(size_t(settings.segment), 1.0f);
  const WindowOperation operation = kWindows[settings.window];
  if (operation) Require(operation(window.data(), window.data(), settings.segment), "the window");
  return window;
}

// The library's estimate is one call over an array; a file of any length is fed to it in pieces. A piece holds a
// whole number of steps beyond the overlap, and the next one starts with its last `overlapped` samples, so the
// segments lie exactly as in one call over the whole file. Each piece's estimate is the mean over its segments:
// weighted by their count, the mean of the pieces is that of the file.
Spectrum Estimate(AudioReader& reader, const Settings& settings) {
  const int32_t overlapped = int32_t(std::ceil(settings.segment * settings.overlap));
  const int32_t step = settings.segment - overlapped;
  std::vector<float> samples(size_t(overlapped) + size_t(step) * size_t(std::max(1, kSamplesAtOnce / step)));
  const std::vector<float> window = MakeWindow(settings);
  const size_t bins = size_t(settings.segment) / 2 + 1;
  std::vector<float> piece(bins);
  std::vector<double> sum(bins);

  Spectrum result;
  Progress progress("reading", reader.Length());
  for (size_t held = 0;;) {
    const size_t got = reader.Read(std::span(samples).subspan(held));
    result.samples += int64_t(got);
    held += got;
    if (held < size_t(settings.segment)) break;
    const auto segments = int64_t(held - size_t(overlapped)) / step;
    Require(ORVAS_Pwelch_32f(samples.data(), window.data(), piece.data(), int32_t(held), 0, settings.segment,
                             settings.overlap),
            "the spectral estimate");
    for (size_t i = 0; i < bins; ++i) sum[i] += double(piece[i]) * double(segments);
    result.segments += segments;
    if (held < samples.size()) break;
    std::copy(samples.end() - overlapped, samples.end(), samples.begin());
    held = size_t(overlapped);
    progress.Show(result.samples);
  }
  if (result.segments == 0) {
    throw Failure(Format("'%s' holds %lld samples, fewer than a segment of %d: give a shorter --segment",
                         settings.file.c_str(), static_cast<long long>(result.samples), settings.segment));
  }

  // The estimate is per radian a sample. A hertz is 2 pi / rate of those, so the density per hertz is that much
  // smaller; summed over the bins and times their width it is the mean square of the recording.
  const double perHertz = 2 * std::numbers::pi / reader.Rate();
  for (size_t i = 0; i < bins; ++i) {
    const double power = sum[i] / double(result.segments) * perHertz;
    result.frequency.push_back(double(i) * reader.Rate() / settings.segment);
    result.density.push_back(10 * std::log10(power));
  }
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
Peak Refine(const Spectrum& spectrum, size_t i) {
  const std::vector<double>& d = spectrum.density;
  const double left = d[i] - d[i - 1], right = d[i] - d[i + 1];
  if (!std::isfinite(left + right)) return {spectrum.frequency[i], d[i], 0};
  const double offset = 0.5 * (left - right) / (left + right);
  return {spectrum.frequency[i] + offset * spectrum.frequency[1], d[i] + 0.25 * offset * (left - right), 0};
}

// The strongest local maxima that stand out from their surroundings, strongest first.
std::vector<Peak> FindPeaks(const Spectrum& spectrum, size_t count) {
  const std::vector<double>& d = spectrum.density;
  std::vector<std::pair<Peak, size_t>> tops;
  for (size_t i = 1; i + 1 < d.size(); ++i) {
    if (d[i] > d[i - 1] && d[i] >= d[i + 1]) tops.emplace_back(Refine(spectrum, i), i);
  }
  std::stable_sort(tops.begin(), tops.end(),
                   [](const auto& a, const auto& b) { return a.first.density > b.first.density; });
  std::vector<Peak> peaks;
  for (auto& [peak, bin] : tops) {
    if (peaks.size() == count) break;
    peak.prominence = Prominence(d, bin);
    if (peak.prominence >= kLeastProminence) peaks.push_back(peak);
  }
  return peaks;
}

Table PeakTable(const std::vector<Peak>& peaks) {
  Table table{{"rank", "Peak", 0, {}},
              {"frequency_hz", "Frequency (Hz)", 1, {}},
              {"density_db", "Density (dB/Hz)", 1, {}},
              {"prominence_db", "Prominence (dB)", 1, {}}};
  for (const Peak& p : peaks) {
    table[0].values.push_back(double(table[0].values.size() + 1));
    table[1].values.push_back(p.frequency);
    table[2].values.push_back(p.density);
    table[3].values.push_back(p.prominence);
  }
  return table;
}

Table SpectrumTable(const Spectrum& spectrum) {
  return {{"frequency_hz", "Frequency (Hz)", 1, spectrum.frequency},
          {"density_db", "Density (dB/Hz)", 1, spectrum.density}};
}

std::string Describe(const Settings& settings, const AudioReader& reader, const Spectrum& spectrum) {
  const std::string sound = Format("%d Hz, %.2f s, channel %d of %d", reader.Rate(),
                                   double(spectrum.samples) / reader.Rate(), settings.channel, reader.Channels());
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
  for (const double d : spectrum.density) {
    if (!std::isfinite(d)) continue;
    top = std::max(top, d);
    bottom = std::min(bottom, d);
  }
  if (top < bottom) top = bottom = -150;  // silence
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
  plot.ys = spectrum.density;
  for (const Peak& p : peaks) plot.markers.push_back({p.frequency, p.density, FrequencyText(p.frequency)});
  return plot;
}

void Print(const Settings& settings, const AudioReader& reader, const Spectrum& spectrum,
           const std::vector<Peak>& peaks) {
  if (settings.results.csv) return PrintCsv(SpectrumTable(spectrum));
  if (!settings.results.json) {
    std::printf("%s: %s\n\n", CleanText(BaseName(settings.file)).c_str(), Describe(settings, reader, spectrum).c_str());
    if (peaks.empty()) return static_cast<void>(std::puts("  No peak stands out."));
    return PrintText(PeakTable(peaks));
  }
  JsonObject object;
  object.Add("file", settings.file);
  object.Add("rate_hz", reader.Rate());
  object.Add("channel", settings.channel);
  object.Add("channels", reader.Channels());
  object.Add("samples", double(spectrum.samples));
  object.Add("window", std::string(kWindowNames[settings.window]));
  object.Add("segment", settings.segment);
  object.Add("overlap", settings.overlap);
  object.Add("segments", double(spectrum.segments));
  object.AddRows("peaks", PeakTable(peaks));
  object.AddColumns("spectrum", SpectrumTable(spectrum));
  object.Print();
}

// Chooses what was left open, and refuses what the file or the estimate cannot give before any work is done.
void Settle(Settings& settings, const AudioReader& reader) {
  if (reader.Length() < kShortestSegment) {
    throw Failure(Format("'%s' holds %lld samples, and the shortest segment is %d", settings.file.c_str(),
                         static_cast<long long>(reader.Length()), kShortestSegment));
  }
  if (settings.segment == 0) {
    settings.segment = int32_t(std::min<uint64_t>(kUsualSegment, std::bit_floor(uint64_t(reader.Length()))));
  }
  if (settings.segment > reader.Length()) {
    throw UsageError(Format("--segment %d is longer than '%s' with its %lld samples", settings.segment,
                            settings.file.c_str(), static_cast<long long>(reader.Length())));
  }
  if (std::ceil(settings.segment * settings.overlap) >= settings.segment) {
    throw UsageError(
        Format("--overlap %g leaves no step between segments of %d samples", settings.overlap, settings.segment));
  }
}

void Run(int argc, char** argv) {
  Settings settings;
  Options options("psd", "FILE",
                  "Estimates the power spectral density of a sound file by Welch's method, prints its\n"
                  "strongest peaks and draws it, by default to FILE's name with -psd.png in the current\n"
                  "folder. Densities are in dB relative to the square of full scale, in a band of one hertz:\n"
                  "one-sided, so that their sum times the width of a bin is the mean square of the recording.",
                  "tzm psd --window blackman --segment 8192 /usr/share/sounds/alsa/Front_Center.wav");
  options.Choice("window", 'w', kWindowNames, "window", settings.window);
  options.Number("segment", 's', "samples in a segment (default 4096, less for a short file)", settings.segment,
                  kShortestSegment, kLongestSegment);
  options.Number("overlap", 'p', "overlap of the segments, as a fraction", settings.overlap, 1e-9, kLargestOverlap);
  options.Number("channel", 'c', "channel, counted from 1", settings.channel, 1, 1024);
  options.Number("peaks", 'n', "peaks in the table, at most", settings.peaks, 0, 1000);
  options.Choice("frequency", 'f', kScaleNames, "frequency axis", settings.scale);
  settings.results.Declare(options, "print the whole spectrum as CSV, not the peaks; plot only with --output",
                           "print settings, peaks and spectrum as JSON; plot only with --output");
  const auto operands = options.Parse(argc, argv, 1);
  if (!operands) return;
  settings.file = operands->front();
  settings.results.Settle(settings.file, "psd");

  AudioReader reader(settings.file, settings.channel);
  Settle(settings, reader);
  const Spectrum spectrum = Estimate(reader, settings);
  const std::vector<Peak> peaks = FindPeaks(spectrum, size_t(settings.peaks));
  Print(settings, reader, spectrum, peaks);
  if (settings.results.output.empty()) return;
  WritePlot(MakePlot(settings, reader, spectrum, peaks), settings.results.output);
  settings.results.PrintPlotName();
}

const Registration registration({"psd", "power spectral density by Welch's method", Run});

}  // namespace
}  // namespace tzm
