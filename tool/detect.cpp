// tzm detect: when the tones of a keypad, or one frequency, sound in a recording.
#include <signal_tzm/reduce.h>
#include <signal_tzm/transform.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "audio.h"
#include "command.h"
#include "keypad.h"
#include "options.h"
#include "output.h"
#include "plot.h"
#include "progress.h"
#include "results.h"
#include "text.h"

namespace tzm {
namespace {

constexpr double kMostTwist = 8;       // dB between the two tones of a key
constexpr double kLeastDistinction = 6;  // dB between a key's tones and the other ones
constexpr double kShortestKey = 0.03;  // seconds
// A frame that a tone fills by half has about half the tone's share of the power in it, and the next one, a step
// farther, much less. What is between belongs to a tone that its other frames make sure.
constexpr double kEdgeShare = 0.8;

struct Settings {
  std::string file;
  int32_t channel = 1;
  double frequency = 0, frame = 25, step = 5, share = 0.5, threshold = -45;
  SoundOptions sound;
  PlotOptions results;
};

// What was found about one place in time.
struct Finding {
  std::string name;  // empty: nothing
  double level;      // dB
  bool sure;         // with the whole of the share that was asked for
};

struct Event {
  std::string name;
  double begin, end, level;
  bool sure;
};

double Decibels(double power) { return 10 * std::log10(power); }

// The mean square that a sine of the frequency adds to the samples.
double TonePower(const std::vector<float>& samples, double relativeFrequency) {
  Orva32fc bin;
  const auto len = int32_t(samples.size());
  Require(ORVAS_Goertz_32f(samples.data(), len, &bin, float(relativeFrequency)), "Goertzel's sum");
  const double re = bin.re, im = bin.im;
  return 2 * (re * re + im * im) / (double(len) * len);
}

struct Strongest {
  size_t at;
  double power, next;  // of the strongest tone, and of the one after it
};

Strongest FindStrongest(const std::vector<float>& samples, const std::array<double, 4>& hertz, int32_t rate) {
  std::array<double, 4> power;
  for (size_t i = 0; i < hertz.size(); ++i) power[i] = TonePower(samples, hertz[i] / rate);
  const auto at = size_t(std::max_element(power.begin(), power.end()) - power.begin());
  const double strongest = power[at];
  power[at] = 0;
  return {at, strongest, *std::max_element(power.begin(), power.end())};
}

// Whether a tone, or the two of a key, stand for enough of a frame.
Finding Judge(const std::vector<float>& frame, int32_t rate, const Settings& s) {
  float norm;
  Require(ORVAS_Norm_L2_32f(frame.data(), int32_t(frame.size()), &norm), "the norm");
  const double all = double(norm) * norm / double(frame.size());
  const auto stands = [&](double power, double share) {
    return power >= share * s.share * all && Decibels(power) >= s.threshold;
  };
  if (s.frequency > 0) {
    const double power = TonePower(frame, s.frequency / rate);
    return {stands(power, kEdgeShare) ? Format("%.6g Hz", s.frequency) : "", Decibels(power), stands(power, 1)};
  }
  const Strongest row = FindStrongest(frame, kKeypadRows, rate), column = FindStrongest(frame, kKeypadColumns, rate);
  const double power = row.power + column.power;
  const bool balanced = std::abs(Decibels(row.power / column.power)) <= kMostTwist;
  const bool distinct = Decibels(row.power / row.next) >= kLeastDistinction &&
                        Decibels(column.power / column.next) >= kLeastDistinction;
  const bool key = stands(power, kEdgeShare) && balanced && distinct;
  return {key ? std::string(1, kKeys[row.at * 4 + column.at]) : "", Decibels(power), stands(power, 1)};
}

// Frames lie around times that a step apart go from the start of the recording to its end, with silence before and
// after it. A frame half filled by a tone has half its power in it, so a tone begins and ends at such times.
template <class Take>
void ForEachFrame(AudioReader& reader, const Settings& s, const Take& take) {
  const int32_t rate = reader.Rate();
  const auto step = size_t(std::max(1.0, std::round(s.step * 1e-3 * rate)));
  const size_t half = std::max<size_t>(4, size_t(s.frame * 1e-3 * rate / 2));
  Planes frame(1, std::vector<float>(2 * half)), fresh(1, std::vector<float>(step));
  auto length = int64_t(reader.Read(frame, half));
  Progress progress("reading", reader.Length());
  for (int64_t at = 0; at <= length; at += int64_t(step)) {
    take(double(at) / rate, frame[0]);
    progress.Show(at);
    const size_t got = reader.Read(fresh);
    length += int64_t(got);
    std::fill(fresh[0].begin() + std::ptrdiff_t(got), fresh[0].end(), 0.0f);
    std::vector<float>& f = frame[0];
    const size_t kept = f.size() - std::min(step, f.size());
    std::copy(f.end() - std::ptrdiff_t(kept), f.end(), f.begin());
    std::copy(fresh[0].end() - std::ptrdiff_t(f.size() - kept), fresh[0].end(), f.begin() + std::ptrdiff_t(kept));
  }
}

Table EventTable(const std::vector<Event>& events) {
  Table table{{"tone", "Tone", 0, {}},
              {"start_s", "Start (s)", 3, {}},
              {"duration_s", "Duration (s)", 3, {}},
              {"level_db", "Level (dB)", 1, {}}};
  for (const Event& e : events) {
    table[0].words.push_back(e.name);
    table[1].values.push_back(e.begin);
    table[2].values.push_back(e.end - e.begin);
    table[3].values.push_back(e.level);
  }
  return table;
}

void Run(int argc, char** argv) {
  Settings s;
  Options options("detect", "FILE",
                  "Finds the keypad tones of a telephone (DTMF) in a sound file, or one frequency with\n"
                  "--frequency, and prints when they sound and how strong: the level is the mean square of the\n"
                  "tone in dB relative to full scale (a sine at full scale has -3 dB).",
                  "tzm tone --keys 0123 number.wav && tzm detect number.wav");
  options.Number("frequency", 'f', "look for this frequency in Hz, not for keys", s.frequency, 1e-3, 1e9);
  options.Number("frame", 0, "length of the frames looked at, in ms", s.frame, 1, 10000);
  options.Number("step", 0, "distance between frames in ms", s.step, 0.1, 10000);
  options.Number("share", 0, "least part of a frame's power in a tone", s.share, 0, 1);
  options.Number("threshold", 0, "least level of a tone in dB", s.threshold, -200, 100);
  options.Channel(s.channel);
  s.results.byDefault = false;
  s.results.Declare(options, "print as CSV: the tones; with --frequency its level over time",
                    "print as JSON: the tones; with --frequency its level over time too");
  s.sound.Declare(options, SoundOptions::Use::kReads);
  const auto operands = options.Parse(argc, argv, 1);
  if (!operands) return;
  s.sound.Check();
  s.file = operands->front();
  s.results.Settle(s.file, "detect");

  AudioReader reader(s.file, s.sound, {s.channel});
  const double highest = s.frequency > 0 ? s.frequency : kKeypadColumns.back();
  if (!(highest < reader.Rate() / 2.0)) {
    throw UsageError(Format("%g Hz is not below half of the rate of %d Hz", highest, reader.Rate()));
  }
  Table levels{{"time_s", "Time (s)", 3, {}}, {"level_db", "Level (dB)", 1, {}}};
  std::vector<Event> events;
  std::string sounding;
  ForEachFrame(reader, s, [&](double time, const std::vector<float>& frame) {
    const Finding found = Judge(frame, reader.Rate(), s);
    if (s.frequency > 0 || !s.results.output.empty()) {
      levels[0].values.push_back(time);
      levels[1].values.push_back(found.level);
    }
    if (!found.name.empty() && found.name != sounding) events.push_back({found.name, time, time, found.level, false});
    if (!found.name.empty()) {
      events.back().end = time;
      events.back().level = std::max(events.back().level, found.level);
      events.back().sure |= found.sure;
    }
    sounding = found.name;
  });
  std::erase_if(events, [&](const Event& e) {
    return !e.sure || (s.frequency == 0 && e.end - e.begin < kShortestKey);
  });

  if (s.results.csv) {
    PrintCsv(s.frequency > 0 ? levels : EventTable(events));
  } else if (s.results.json) {
    JsonObject object;
    object.Add("file", s.file);
    object.AddRows("tones", EventTable(events));
    if (s.frequency > 0) object.AddColumns("levels", levels);
    object.Print();
  } else if (events.empty()) {
    std::puts("No tone found.");
  } else {
    PrintText(EventTable(events));
  }
  const auto finite = [](double level) { return std::isfinite(level); };
  if (!s.results.Draws(std::none_of(levels[1].values.begin(), levels[1].values.end(), finite))) return;
  Plot plot;
  plot.title = CleanText(BaseName(s.file)) + ": " +
               (s.frequency > 0 ? Format("level of %.6g Hz", s.frequency) : "level of the strongest keypad tones");
  plot.subtitle = Format("%d Hz, channel %d of %d; frames of %g ms, least level %g dB", reader.Rate(), s.channel,
                         reader.FileChannels(), s.frame, s.threshold);
  plot.xs = levels[0].values;
  plot.curves = {{levels[1].values}};
  plot.x = {"Time (s)", 0, std::max(plot.xs.back(), s.step * 1e-3)};
  plot.y = {"Level (dB re full scale)", std::min(-100.0, s.threshold - 20), 10};
  for (const Event& e : events) {
    if (s.frequency > 0) {
      plot.markers.push_back({e.begin, e.level, Format("%.3f s", e.begin)});
    } else {
      plot.markers.push_back({(e.begin + e.end) / 2, e.level, e.name});
    }
  }
  WritePlots({plot}, s.results.output);
  s.results.PrintPlotName();
}

const Registration registration({"detect", "keypad tones or one frequency over time", Run});

}  // namespace
}  // namespace tzm
