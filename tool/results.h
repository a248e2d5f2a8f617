// The options by which subcommands give their results: CSV, JSON, a plot.
#ifndef TZM_TOOL_RESULTS_H
#define TZM_TOOL_RESULTS_H

#include <string>

#include "options.h"

namespace tzm {

struct DataOptions {
  bool csv = false, json = false;

  /** Adds --csv and --json, with their help. */
  void Declare(Options& options, const char* csvHelp, const char* jsonHelp);
  /** Throws UsageError for options that exclude each other. */
  void Check() const;
};

struct PlotOptions : DataOptions {
  std::string output;  // empty: no plot
  bool noPlot = false, byDefault = true;

  /** Adds --output too, and --no-plot where a plot is drawn by default. */
  void Declare(Options& options, const char* csvHelp, const char* jsonHelp);
  /** Checks, and where a plot is drawn by default chooses its name: the file's, with "-suffix.png", in the current
   * folder. Data asked for is printed without a plot, unless that has a name. */
  void Settle(const std::string& file, const char* suffix);
  /** Tells where the plot is, where text is printed. */
  void PrintPlotName() const;
};

}  // namespace tzm

#endif
