// The options by which subcommands give their results: CSV, JSON, a plot.
#include "results.h"

#include <cstdio>
#include <filesystem>

#include "command.h"
#include "plot.h"
#include "text.h"

namespace tzm {

void DataOptions::Declare(Options& options, const char* csvHelp, const char* jsonHelp) {
  options.Flag("csv", 0, csvHelp, csv);
  options.Flag("json", 0, jsonHelp, json);
}

void DataOptions::Check() const {
  if (csv && json) throw UsageError("--csv and --json exclude each other");
}

void PlotOptions::Declare(Options& options, const char* csvHelp, const char* jsonHelp) {
  options.Text("output", 'o', "PLOT",
               byDefault ? "where the plot goes: a name ending in .png or .svg"
                         : "draw it to this file, whose name ends in .png or .svg",
               output);
  if (byDefault) options.Flag("no-plot", 0, "print only", noPlot);
  DataOptions::Declare(options, csvHelp, jsonHelp);
}

void PlotOptions::Settle(const std::string& file, const char* suffix) {
  Check();
  if (noPlot && !output.empty()) throw UsageError("--no-plot and --output exclude each other");
  if (!output.empty()) return CheckPlotName(output);
  if (byDefault && !noPlot && !csv && !json)
    output = std::filesystem::path(file).stem().string() + "-" + suffix + ".png";
}

void PlotOptions::PrintPlotName() const {
  if (!csv && !json) std::printf("\nPlot: %s\n", CleanText(output).c_str());
}

}  // namespace tzm
