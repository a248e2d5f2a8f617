// Plots: curves or one image over two axes, with marked points, written as PNG or SVG.
#ifndef TZM_TOOL_PLOT_H
#define TZM_TOOL_PLOT_H

#include <string>
#include <vector>

namespace tzm {

struct Axis {
  std::string label;  // with the unit
  double low, high;
  bool logarithmic = false;
};

struct Marker {
  double x, y;
  std::string text;
};

/** Values in colours, over the whole of both linear axes. */
struct Image {
  size_t columns = 0, rows = 0;
  std::vector<float> values;  // column by column, each upwards
  double low = 0, high = 1;   // the values of the darkest and the brightest colour
  std::string unit;
};

struct Curve {
  std::vector<double> ys;  // what lies outside the axes is cut off
  std::string name = {};   // where there are several
};

struct Plot {
  std::string title, subtitle;
  Axis x, y;
  std::vector<double> xs;  // ascending, of all curves
  std::vector<Curve> curves;
  Image image;
  std::vector<Marker> markers;  // the most important first: its text gets the best place
};

/** Throws UsageError unless the name ends in .png or .svg. */
void CheckPlotName(const std::string& path);

/** Writes the plots, one below the other, in the format of the name's ending. */
void WritePlots(const std::vector<Plot>& plots, const std::string& path);

}  // namespace tzm

#endif
