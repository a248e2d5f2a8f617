// tzm filter: lowpass, highpass, bandpass and bandstop filters of linear phase.
#include <signal_tzm/fir.h>
#include <signal_tzm/generate.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <numbers>

#include "audio.h"
#include "command.h"
#include "handle.h"
#include "options.h"
#include "plot.h"
#include "results.h"
#include "segments.h"
#include "stream.h"
#include "text.h"

namespace tzm {
namespace {

constexpr std::array<std::string_view, 4> kKindNames{"lowpass", "highpass", "bandpass", "bandstop"};
enum Kind : size_t { kLowpass, kHighpass, kBandpass, kBandstop };
// A window multiplies an array; null is one that is none, or that takes a parameter.
using WindowOperation = OrvaStatus (*)(Orva64f*, int32_t);
constexpr std::array<std::string_view, 7> kWindowNames{"hamming",  "hann",        "blackman", "blackman-opt",
                                                       "bartlett", "rectangular", "kaiser"};
constexpr std::array<WindowOperation, 7> kWindows{ORVAS_WinHamming_64f_I,
                                                  ORVAS_WinHann_64f_I,
                                                  ORVAS_WinBlackmanStd_64f_I,
                                                  ORVAS_WinBlackmanOpt_64f_I,
                                                  ORVAS_WinBartlett_64f_I,
                                                  nullptr,
                                                  nullptr};
constexpr size_t kHamming = 0, kKaiser = 6;
constexpr double kUsualAttenuation = 80;  // dB
constexpr int32_t kMostTaps = 1 << 20;

struct Settings {
  std::string file, output, response;
  size_t kind = kLowpass, window = kHamming;
  double cutoff = 0, upper = 0, attenuation = 0;
  int32_t taps = 255;
  SoundOptions sound;
};

using Filter = Handle<FIRSRState, ORVAS_FIRSRRelease_32f>;

// The parameter of a Kaiser window whose design has the attenuation, by Kaiser's formula.
double KaiserBeta(double attenuation) {
  if (attenuation > 50) return 0.1102 * (attenuation - 8.7);
  return attenuation > 21 ? 0.5842 * std::pow(attenuation - 21, 0.4) + 0.07886 * (attenuation - 21) : 0;
}

// The ideal response in the window, scaled to a gain of 1 in the middle of its pass band (of the lower one). The
// library's own designs (ORVAS_FIRGen...) have four of these windows; so that all are designed in one way, it gives the
// windows here.
std::vector<float> MakeTaps(const Settings& s, int32_t rate) {
  const double low = s.cutoff / rate, high = s.upper / rate, half = s.taps / 2;
  const bool band = s.kind == kBandpass || s.kind == kBandstop, inverted = s.kind == kHighpass || s.kind == kBandstop;
  const auto lowpass = [](double edge, double at) {
    return at == 0 ? 2 * edge : std::sin(2 * std::numbers::pi * edge * at) / (std::numbers::pi * at);
  };
  std::vector<double> taps;
  for (double at = -half; at <= half; ++at) {
    const double pass = band ? lowpass(high, at) - lowpass(low, at) : lowpass(low, at);
    taps.push_back(inverted ? (at == 0) - pass : pass);
  }
  if (kWindows[s.window]) Require(kWindows[s.window](taps.data(), s.taps), "the window");
  if (s.window == kKaiser) {
    Require(ORVAS_WinKaiser_64f_I(taps.data(), s.taps, KaiserBeta(s.attenuation) / half), "the window");
  }
  const double middle = s.kind == kHighpass ? 0.5 : s.kind == kBandpass ? (low + high) / 2 : 0;
  double gain = 0;
  for (size_t i = 0; i < taps.size(); ++i) {
    gain += taps[i] * std::cos(2 * std::numbers::pi * middle * (double(i) - half));
  }
  std::vector<float> rounded;
  for (const double tap : taps) rounded.push_back(float(tap / gain));
  return rounded;
}

// The gain over frequency, in at least four points for each tap.
void DrawResponse(const Settings& s, const std::vector<float>& taps, int32_t rate) {
  const size_t len = std::bit_ceil(std::max<size_t>(4 * taps.size(), 1 << 13)), bins = len / 2 + 1;
  std::vector<float> padded(taps), magnitude(bins);
  padded.resize(len);
  std::vector<Orva32fc> bin(bins);
  Require(ORVAS_DFTRToC_32f(padded.data(), &bin[0].re, MakeForwardTransform(int32_t(len)).get()), "the transform");
  Require(ORVAS_Magnitude_32fc(bin.data(), magnitude.data(), int32_t(bins)), "the magnitude");
  Plot plot;
  plot.title = std::string(kKindNames[s.kind]) + ": frequency response";
  plot.subtitle = Format("%d Hz, %d taps, %s window", rate, s.taps, std::string(kWindowNames[s.window]).c_str());
  if (s.window == kKaiser) plot.subtitle += Format(" for %g dB", s.attenuation);
  plot.x = {"Frequency (Hz)", 0, rate / 2.0};
  plot.y = {"Gain (dB)", std::min(-120.0, -s.attenuation - 30), 10};
  plot.curves.emplace_back();
  for (size_t i = 0; i < bins; ++i) {
    plot.xs.push_back(double(i) * rate / double(len));
    plot.curves[0].ys.push_back(20 * std::log10(double(magnitude[i])));
  }
  for (const double edge : {s.cutoff, s.upper}) {
    if (edge > 0) plot.markers.push_back({edge, 20 * std::log10(0.5), Format("%.6g Hz", edge)});
  }
  WritePlots({plot}, s.response);
}

// The filter delays by half its length, which is taken out. A block's delay line is what lies before it.
void Apply(AudioReader& reader, const std::vector<float>& taps, AudioWriter& writer) {
  const size_t channels = reader.Channels(), delay = taps.size() / 2, atOnce = BlocksAtOnce(channels);
  std::vector<Filter> filters;  // each works for one block at a time
  for (size_t i = 0; i < channels * atOnce; ++i) {
    filters.push_back(MakeHandle<Filter>("the filter", [&](auto** state) {
      return ORVAS_FIRSRInit_32f(taps.data(), int32_t(taps.size()), int32_t(kStreamBlock), ORVA_ROUTE_BY_LENGTH, state);
    }));
  }
  const size_t past = taps.size() - 1;
  Stream({channels, channels, past, atOnce}, reader.Length(), {delay, delay}, writer,
         [&](Planes& source, size_t at) { return reader.Read(source, at); },
         [&](size_t c, const Planes& source, size_t at, float* dst, int32_t len) {
           const float* const line = source[c].data() + at;
           FIRSRState* const state = filters[c * atOnce + at / kStreamBlock].get();
           Require(ORVAS_FIRSR_32f(line + past, dst, len, state, line, nullptr), "the filter");
         });
}

void CheckCutoffs(const Settings& s, int32_t rate) {
  const bool band = s.kind == kBandpass || s.kind == kBandstop;
  const std::string name(kKindNames[s.kind]);
  if (s.cutoff == 0) throw UsageError(Format("a %s needs --cutoff", name.c_str()));
  if (band && s.upper == 0) throw UsageError(Format("a %s needs --upper", name.c_str()));
  if (!band && s.upper != 0) throw UsageError(Format("a %s takes no --upper", name.c_str()));
  const double highest = band ? s.upper : s.cutoff;
  if (!(highest < rate / 2.0)) {
    throw UsageError(Format("%g Hz is not below half of the rate of %d Hz", highest, rate));
  }
  if (band && !(s.cutoff < s.upper)) throw UsageError("--cutoff must lie below --upper");
}

void Run(int argc, char** argv) {
  Settings settings;
  Options options("filter", "FILE OUTPUT",
                  "Filters all channels of a sound file. The filter is a window design of linear phase, as by\n"
                  "scipy.signal.firwin; its delay is taken out, so that the output lies in time as the input. At\n"
                  "a cut-off the gain is -6 dB. The transition around it, in parts of the rate over the taps, and\n"
                  "about what is left beyond it: hamming 3.4 (-54 dB), hann 3.1 (-42), blackman 5.6 (-75),\n"
                  "blackman-opt 5.2 (-60), bartlett 7.5 (-32), rectangular 0.9 (-20), kaiser for A dB (A-8)/14.4\n"
                  "(-A). Samples beyond full scale saturate in integer formats.",
                  "tzm filter --kind bandpass --cutoff 300 --upper 3400 /usr/share/sounds/alsa/Front_Center.wav "
                  "telephone.wav");
  options.Choice("kind", 'k', kKindNames, "filter", settings.kind);
  options.Number("cutoff", 'f', "cut-off in Hz; for a band its lower edge", settings.cutoff, 1e-3, 1e9);
  options.Number("upper", 'u', "upper edge of a band in Hz", settings.upper, 1e-3, 1e9);
  options.Number("taps", 't', "length of the filter, odd", settings.taps, 5, kMostTaps);
  options.Choice("window", 'w', kWindowNames, "window of the design", settings.window);
  options.Number("attenuation", 'a', "dB by which a kaiser window stops (default 80)", settings.attenuation, 10, 300);
  options.Text("response", 0, "PLOT", "draw the gain over frequency to this file, .png or .svg", settings.response);
  settings.sound.Declare(options, SoundOptions::Use::kConverts);
  const auto operands = options.Parse(argc, argv, 2);
  if (!operands) return;
  settings.sound.Check();
  settings.file = operands->at(0);
  settings.output = operands->at(1);
  if (!settings.response.empty()) {
    CheckPlotName(settings.response);
    for (const std::string& sound : *operands) RefuseOverwriting(settings.response, sound);
  }
  if (settings.attenuation > 0 && settings.window != kKaiser) throw UsageError("--attenuation is for --window kaiser");
  if (settings.attenuation == 0 && settings.window == kKaiser) settings.attenuation = kUsualAttenuation;
  if (settings.taps % 2 == 0) throw UsageError(Format("--taps is odd, unlike %d", settings.taps));

  AudioReader reader(settings.file, settings.sound, {});
  CheckCutoffs(settings, reader.Rate());
  const std::vector<float> taps = MakeTaps(settings, reader.Rate());
  if (!settings.response.empty()) DrawResponse(settings, taps, reader.Rate());
  AudioWriter writer(settings.output, reader.Rate(), reader.FileChannels(), reader.SampleFormat(), settings.sound);
  Apply(reader, taps, writer);
  writer.Finish();
}

const Registration registration({"filter", "lowpass, highpass, bandpass, bandstop", Run});

}  // namespace
}  // namespace tzm
