// tzm filter: lowpass, highpass, bandpass and bandstop filters of linear phase.
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>
#include <signal_tzm/fir.h>
#include <signal_tzm/transform.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "audio.h"
#include "command.h"
#include "handle.h"
#include "options.h"
#include "plot.h"
#include "stream.h"
#include "text.h"

namespace tzm {
namespace {

constexpr std::array<std::string_view, 4> kKindNames{"lowpass", "highpass", "bandpass", "bandstop"};
enum Kind : size_t { kLowpass, kHighpass, kBandpass, kBandstop };
// In the order of the design's numbers.
constexpr std::array<std::string_view, 4> kWindowNames{"bartlett", "blackman", "hamming", "hann"};
constexpr int32_t kMostTaps = 1 << 20;

struct Settings {
  std::string file, output, response;
  size_t kind = kLowpass, window = ORVA_WINDOW_HAMMING;
  double cutoff = 0, upper = 0;
  int32_t taps = 255;
};

using Design = Handle<FIRGenState, ORVAS_FIRGenRelease>;
using Filter = Handle<FIRSRState, ORVAS_FIRSRRelease_32f>;
using Spec = Handle<OrvaTransformSpec, ORVAS_DFTRToCRelease_32f>;

std::vector<float> MakeTaps(const Settings& s, int32_t rate) {
  std::vector<double> taps(size_t(s.taps));
  const auto buffer =
      MakeHandle<Design>("the filter's design", [&](auto** state) { return ORVAS_FIRGenInit_64f(s.taps, state); });
  const double low = s.cutoff / rate, high = s.upper / rate;
  const auto window = int32_t(s.window);
  const auto design = [&] {
    switch (s.kind) {
      case kLowpass: return ORVAS_FIRGenLowpass_64f(low, taps.data(), s.taps, window, 1, buffer.get());
      case kHighpass: return ORVAS_FIRGenHighpass_64f(low, taps.data(), s.taps, window, 1, buffer.get());
      case kBandpass: return ORVAS_FIRGenBandpass_64f(low, high, taps.data(), s.taps, window, 1, buffer.get());
      default: return ORVAS_FIRGenBandstop_64f(low, high, taps.data(), s.taps, window, 1, buffer.get());
    }
  };
  Require(design(), "the filter's design");
  std::vector<float> rounded(taps.size());
  Require(ORVAS_Convert_64f32f(taps.data(), rounded.data(), s.taps), "the conversion");
  return rounded;
}

// The gain over frequency, in at least four points for each tap.
void DrawResponse(const Settings& s, const std::vector<float>& taps, int32_t rate) {
  const size_t len = std::bit_ceil(std::max<size_t>(4 * taps.size(), 1 << 13)), bins = len / 2 + 1;
  std::vector<float> padded(taps), magnitude(bins);
  padded.resize(len);
  std::vector<Orva32fc> bin(bins);
  const auto spec = MakeHandle<Spec>("the transform",
                                     [&](auto** made) {
                                       return ORVAS_DFTRToCInit_32f(int32_t(len), ORVA_DIVIDE_NONE, made);
                                     });
  Require(ORVAS_DFTRToC_32f(padded.data(), &bin[0].re, spec.get()), "the transform");
  Require(ORVAS_Magnitude_32fc(bin.data(), magnitude.data(), int32_t(bins)), "the magnitude");
  Plot plot;
  plot.title = std::string(kKindNames[s.kind]) + ": frequency response";
  plot.subtitle = Format("%d Hz, %d taps, %s window", rate, s.taps, std::string(kWindowNames[s.window]).c_str());
  plot.x = {"Frequency (Hz)", 0, rate / 2.0};
  plot.y = {"Gain (dB)", -120, 10};
  for (size_t i = 0; i < bins; ++i) {
    plot.xs.push_back(double(i) * rate / double(len));
    plot.ys.push_back(20 * std::log10(double(magnitude[i])));
  }
  for (const double edge : {s.cutoff, s.upper}) {
    if (edge > 0) plot.markers.push_back({edge, 20 * std::log10(0.5), Format("%.6g Hz", edge)});
  }
  WritePlot(plot, s.response);
}

// The filter delays by half its length, which is taken out.
void Apply(AudioReader& reader, const std::vector<float>& taps, AudioWriter& writer) {
  const auto filter = MakeHandle<Filter>("the filter", [&](auto** state) {
    return ORVAS_FIRSRInit_32f(taps.data(), int32_t(taps.size()), int32_t(kStreamBlock), ORVA_ROUTE_BY_LENGTH, state);
  });
  const auto channels = size_t(reader.Channels());
  const size_t delay = taps.size() / 2;
  Planes lines(channels, std::vector<float>(taps.size() - 1));
  Stream(channels, channels, reader.Length(), {delay, delay}, writer,
         [&](Planes& source) { return reader.Read(source); },
         [&](const Planes& source, Planes& result, int32_t len) {
           for (size_t c = 0; c < channels; ++c) {
             float* const line = lines[c].data();
             Require(ORVAS_FIRSR_32f(source[c].data(), result[c].data(), len, filter.get(), line, line), "the filter");
           }
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
                  "Filters all channels of a sound file into a WAV file of the same rate and sample format. The\n"
                  "filter is a window design of linear phase; its delay is taken out, so that the output lies in\n"
                  "time as the input. At a cut-off the gain is -6 dB; the transition around it is about 3.3 times\n"
                  "the rate over the taps wide (hamming). Samples beyond full scale saturate in integer formats.",
                  "tzm filter --kind bandpass --cutoff 300 --upper 3400 /usr/share/sounds/alsa/Front_Center.wav "
                  "telephone.wav");
  options.Choice("kind", 'k', kKindNames, "filter", settings.kind);
  options.Number("cutoff", 'f', "cut-off in Hz; for a band its lower edge", settings.cutoff, 1e-3, 1e9);
  options.Number("upper", 'u', "upper edge of a band in Hz", settings.upper, 1e-3, 1e9);
  options.Number("taps", 't', "length of the filter, odd", settings.taps, 5, kMostTaps);
  options.Choice("window", 'w', kWindowNames, "window of the design", settings.window);
  options.Text("response", 0, "PLOT", "draw the gain over frequency to this file, .png or .svg", settings.response);
  const auto operands = options.Parse(argc, argv, 2);
  if (!operands) return;
  settings.file = operands->at(0);
  settings.output = operands->at(1);
  if (!settings.response.empty()) CheckPlotName(settings.response);
  if (settings.taps % 2 == 0) throw UsageError(Format("--taps is odd, unlike %d", settings.taps));

  AudioReader reader(settings.file);
  CheckCutoffs(settings, reader.Rate());
  const std::vector<float> taps = MakeTaps(settings, reader.Rate());
  if (!settings.response.empty()) DrawResponse(settings, taps, reader.Rate());
  AudioWriter writer(settings.output, reader.Rate(), reader.Channels(), reader.SampleFormat());
  Apply(reader, taps, writer);
  writer.Finish();
}

const Registration registration({"filter", "lowpass, highpass, bandpass, bandstop", Run});

}  // namespace
}  // namespace tzm
