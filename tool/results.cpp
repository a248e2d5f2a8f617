// The options by which subcommands give their results: CSV, JSON, arrays, plots.
#include "results.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "command.h"
#include "new_file.h"
#include "plot.h"
#include "text.h"

namespace tzm {

void DataOptions::Declare(Options& options, const char* csvHelp, const char* jsonHelp) {
  options.Flag("csv", 0, csvHelp, csv);
  options.Flag("json", 0, jsonHelp, json);
}

void DataOptions::Check() const {
  if (csv + json + npy > 1) throw UsageError(Format("--csv%s and --json exclude each other", npy ? ", --npy" : ""));
}

void PlotOptions::Declare(Options& options, const char* csvHelp, const char* jsonHelp) {
  options.Text("output", 'o', "FILE",
               byDefault ? "where the plot goes: a name ending in .png or .svg; in .npy: the data as an array"
                         : "draw it to this file, whose name ends in .png or .svg",
               output);
  if (byDefault) options.Flag("no-plot", 0, "print only", noPlot);
  DataOptions::Declare(options, csvHelp, jsonHelp);
  if (byDefault) options.Flag("npy", 0, "print the data as an array for numpy.load; plot only with --output", npy);
}

void PlotOptions::Settle(const std::string& file, const char* suffix) {
  Check();
  if (noPlot && !output.empty()) throw UsageError("--no-plot and --output exclude each other");
  if (output.empty() && byDefault && !noPlot && Text()) {
    const std::string stem = IsStandard(file) ? "stdin" : std::filesystem::path(file).stem().string();
    output = stem + "-" + suffix + ".png";
    chosen_ = true;
  }
  if (output.empty()) return;
  if (!byDefault || !WantsArray()) CheckPlotName(output);
  RefuseOverwriting(output, file);
}

void PlotOptions::WriteArray(const std::string& bytes) const {
  if (npy && std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) {
    throw Failure(Format("cannot write to standard output: %s", std::strerror(errno)));
  }
  if (!output.ends_with(".npy")) return;
  WriteFile(output, bytes);
  if (Text()) std::printf("\nArray: %s\n", CleanText(output).c_str());
}

bool PlotOptions::Draws(bool silent) const {
  if (output.empty() || output.ends_with(".npy")) return false;
  if (silent && chosen_) std::puts("\nSilence: there is nothing to draw.");
  if (silent && !chosen_) Warn(Format("silence: there is nothing to draw to '%s'", output.c_str()));
  return !silent;
}

void PlotOptions::PrintPlotName() const {
  if (Text()) std::printf("\nPlot: %s\n", CleanText(output).c_str());
}

std::vector<int32_t> ChannelList(int32_t channel) {
  return channel == 0 ? std::vector<int32_t>{} : std::vector<int32_t>{channel};
}

std::string ChannelText(int32_t channel, int32_t channels) {
  return channel == 0 ? Format("%d channel%s", channels, channels == 1 ? "" : "s")
                      : Format("channel %d of %d", channel, channels);
}

std::string ChannelColumn(const char* name, const std::vector<int32_t>& channels, size_t i) {
  return channels.size() == 1 ? name : Format("%s_%d", name, channels[i]);
}

void RefuseOverwriting(const std::string& output, const std::string& input) {
  std::error_code ignored;  // one of them is not there
  if (std::filesystem::equivalent(output, input, ignored)) {
    throw UsageError(Format("'%s' is the sound itself: give another name", output.c_str()));
  }
}

}  // namespace tzm
