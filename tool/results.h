// The options by which subcommands give their results: CSV, JSON, arrays, plots.
#ifndef TZM_TOOL_RESULTS_H
#define TZM_TOOL_RESULTS_H

#include <string>
#include <vector>

#include "options.h"

namespace tzm {

struct DataOptions {
  bool csv = false, json = false, npy = false;

  /** Adds --csv and --json, with their help. */
  void Declare(Options& options, const char* csvHelp, const char* jsonHelp);
  /** Throws UsageError for options that exclude each other. */
  void Check() const;
  /** Whether text for people is printed. */
  bool Text() const { return !csv && !json && !npy; }
};

struct PlotOptions : DataOptions {
  std::string output;  // empty: neither plot nor array
  bool noPlot = false, byDefault = true;

  /** Adds --output too; where a plot is drawn by default, so that there is much data, also --no-plot and --npy. */
  void Declare(Options& options, const char* csvHelp, const char* jsonHelp);
  /** Checks, and where a plot is drawn by default chooses its name: the file's, with "-suffix.png", in the current
   * folder. Data asked for is printed without a plot, unless that has a name. */
  void Settle(const std::string& file, const char* suffix);
  bool WantsArray() const { return npy || output.ends_with(".npy"); }
  /** Prints the NPY bytes or writes them to the output, as asked for. */
  void WriteArray(const std::string& bytes) const;
  /** Whether a plot is to be drawn. Of a silent sound there is none, which is told. */
  bool Draws(bool silent) const;
  /** Tells where the plot is, where text is printed. */
  void PrintPlotName() const;

 private:
  bool chosen_ = false;  // the name of the plot is ours
};

/** What --channel says, 0 being all: for a reader; for people, of so many. */
std::vector<int32_t> ChannelList(int32_t channel);
std::string ChannelText(int32_t channel, int32_t channels);
/** The name of a column of channel channels[i]: with its number where there are several. */
std::string ChannelColumn(const char* name, const std::vector<int32_t>& channels, size_t i);

/** Throws UsageError if a file to be written is one that is read. */
void RefuseOverwriting(const std::string& output, const std::string& input);

}  // namespace tzm

#endif
