// Plots, drawn with cairo in points; a PNG has two pixels a point.
#include "plot.h"

#include <cairo-svg.h>
#include <cairo.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "command.h"
#include "new_file.h"
#include "text.h"

namespace tzm {
namespace {

constexpr double kWidth = 960, kHeight = 540, kPixelsPerPoint = 2;
constexpr double kLeft = 78, kRight = 28, kTop = 66, kBottom = 58;  // margins around the axes
constexpr double kTickFont = 12, kLabelFont = 13, kTitleFont = 17;

struct Colour {
  double r, g, b, a = 1;
};
constexpr Colour kPaper{1, 1, 1}, kInk{0.13, 0.15, 0.18}, kQuiet{0.38, 0.41, 0.45};
constexpr Colour kGrid{0.86, 0.88, 0.90}, kFineGrid{0.94, 0.95, 0.96};
constexpr Colour kMark{0.80, 0.22, 0.12};
constexpr std::array<Colour, 6> kCurves{{{0.10, 0.36, 0.64},
                                         {0.90, 0.49, 0.08},
                                         {0.16, 0.55, 0.34},
                                         {0.52, 0.28, 0.62},
                                         {0.42, 0.30, 0.22},
                                         {0.85, 0.38, 0.62}}};

struct Box {
  double x, y, width, height;
  bool Overlaps(const Box& b) const {
    return x < b.x + b.width && b.x < x + width && y < b.y + b.height && b.y < y + height;
  }
};

// From night through violet and orange to light, rising in lightness.
constexpr std::array<Colour, 6> kShades{{{0.02, 0.02, 0.08},
                                         {0.20, 0.07, 0.38},
                                         {0.53, 0.13, 0.42},
                                         {0.85, 0.28, 0.26},
                                         {0.98, 0.60, 0.15},
                                         {0.99, 0.98, 0.72}}};

// The shade of a fraction, as a pixel.
uint32_t Shade(double fraction) {
  const double place = std::clamp(std::isnan(fraction) ? 0 : fraction, 0.0, 1.0) * (kShades.size() - 1);
  const auto at = std::min(size_t(place), kShades.size() - 2);
  const double part = place - double(at);
  const auto mixed = [&](double from, double to) { return uint32_t(std::lround(255 * (from + part * (to - from)))); };
  const Colour &a = kShades[at], &b = kShades[at + 1];
  return mixed(a.r, b.r) << 16 | mixed(a.g, b.g) << 8 | mixed(a.b, b.b);
}

struct Tick {
  double value;
  bool labelled;
};

// The 1, 2 or 5 times a power of ten at or above the value.
double RoundStep(double value) {
  const double power = std::pow(10, std::floor(std::log10(value)));
  for (const double digit : {1.0, 2.0, 5.0}) {
    if (digit * power >= value * (1 - 1e-9)) return digit * power;
  }
  return 10 * power;
}

std::vector<Tick> LinearTicks(const Axis& axis, double most) {
  const double step = RoundStep((axis.high - axis.low) / most);
  std::vector<Tick> ticks;
  for (double k = std::ceil(axis.low / step - 1e-9); k * step <= axis.high + 1e-9 * step; ++k) {
    ticks.push_back({k * step, true});
  }
  return ticks;
}

// Every digit of every decade; 1, 2 and 5 carry labels. Less than a decade and a half is ticked like a linear axis.
std::vector<Tick> LogarithmicTicks(const Axis& axis, double most) {
  if (axis.high < 30 * axis.low) return LinearTicks(axis, most);
  std::vector<Tick> ticks;
  for (double power = std::pow(10, std::floor(std::log10(axis.low))); power <= axis.high; power *= 10) {
    for (int digit = 1; digit < 10; ++digit) {
      const double value = digit * power;
      if (value >= axis.low && value <= axis.high) ticks.push_back({value, digit == 1 || digit == 2 || digit == 5});
    }
  }
  return ticks;
}

std::vector<Tick> Ticks(const Axis& axis, double most) {
  return axis.logarithmic ? LogarithmicTicks(axis, most) : LinearTicks(axis, most);
}

std::string TickText(double value) {
  if (std::abs(value) >= 1e6) return Format("%.6gM", value / 1e6);
  if (std::abs(value) >= 1e3) return Format("%.6gk", value / 1e3);
  return Format("%.6g", std::abs(value) < 1e-12 ? 0.0 : value);
}

class Drawing {
 public:
  Drawing(cairo_t* cairo, const Plot& plot) : cairo_(cairo), plot_(plot) {}

  void Draw() {
    Titles();
    Grid();
    Raster();
    Curves();
    Markers();
    Frame();
  }

 private:
  enum class Side { kLeft, kCentre, kRight };

  void Use(const Colour& c) { cairo_set_source_rgba(cairo_, c.r, c.g, c.b, c.a); }

  double Fraction(const Axis& axis, double value) const {
    if (!axis.logarithmic) return (value - axis.low) / (axis.high - axis.low);
    return std::log(value / axis.low) / std::log(axis.high / axis.low);
  }
  double X(double value) const { return kLeft + Fraction(plot_.x, value) * (kWidth - kLeft - kRight); }
  double Y(double value) const { return kHeight - kBottom - Fraction(plot_.y, value) * (kHeight - kTop - kBottom); }

  void Font(double size, bool bold = false) {
    cairo_select_font_face(cairo_, "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                           bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo_, size);
  }

  double TextWidth(const std::string& text) {
    cairo_text_extents_t extents;
    cairo_text_extents(cairo_, text.c_str(), &extents);
    return extents.x_advance;
  }

  void Text(const std::string& text, double x, double baseline, Side side) {
    const double back = side == Side::kLeft ? 0 : side == Side::kCentre ? 0.5 : 1;
    cairo_move_to(cairo_, x - back * TextWidth(text), baseline);
    cairo_show_text(cairo_, text.c_str());
  }

  // Text that is cut with an ellipsis where it would pass the right margin.
  void Heading(std::string text, double baseline) {
    while (TextWidth(text) > kWidth - kLeft - kRight && text.size() > 4) {
      text = CleanText(text.substr(0, text.size() - 5));
      while (!text.empty() && text.back() == '?') text.pop_back();
      text += "…";
    }
    Text(text, kLeft, baseline, Side::kLeft);
  }

  void Line(double x1, double y1, double x2, double y2) {
    cairo_move_to(cairo_, x1, y1);
    cairo_line_to(cairo_, x2, y2);
    cairo_stroke(cairo_);
  }

  void Titles() {
    Use(kInk);
    Font(kTitleFont, true);
    Heading(plot_.title, 30);
    Use(kQuiet);
    Font(kLabelFont);
    Heading(plot_.subtitle, 51);
    Use(kInk);
    Text(plot_.x.label, kLeft + (kWidth - kLeft - kRight) / 2, kHeight - 16, Side::kCentre);
    cairo_save(cairo_);
    cairo_translate(cairo_, 24, kTop + (kHeight - kTop - kBottom) / 2);
    cairo_rotate(cairo_, -M_PI / 2);
    Text(plot_.y.label, 0, 0, Side::kCentre);
    cairo_restore(cairo_);
  }

  void Grid() {
    Font(kTickFont);
    cairo_set_line_width(cairo_, 1);
    double used = 0;  // where the last label under the x axis ends
    for (const Tick& tick : Ticks(plot_.x, 12)) {
      const double x = X(tick.value), half = TextWidth(TickText(tick.value)) / 2;
      Use(tick.labelled ? kGrid : kFineGrid);
      Line(x, kTop, x, kHeight - kBottom);
      if (!tick.labelled || x - half < used) continue;
      Use(kInk);
      Text(TickText(tick.value), x, kHeight - kBottom + 19, Side::kCentre);
      used = x + half + 8;
    }
    for (const Tick& tick : Ticks(plot_.y, 9)) {
      Use(kGrid);
      Line(kLeft, Y(tick.value), kWidth - kRight, Y(tick.value));
      Use(kInk);
      Text(TickText(tick.value), kLeft - 9, Y(tick.value) + kTickFont * 0.36, Side::kRight);
    }
  }

  void AxesPath() { cairo_rectangle(cairo_, kLeft, kTop, kWidth - kLeft - kRight, kHeight - kTop - kBottom); }

  // The curve as points on paper: where many fall into one half point of width, the lowest and the highest.
  std::vector<std::pair<double, double>> Outline(const std::vector<double>& ys) const {
    std::vector<std::pair<double, double>> points;
    const double floor = Y(plot_.y.low) + 2;  // below the frame: silence has a level of minus infinity
    for (size_t i = 0; i < plot_.xs.size();) {
      if (plot_.x.logarithmic && plot_.xs[i] <= 0) {
        ++i;
        continue;
      }
      const double column = std::floor(2 * X(plot_.xs[i]));
      size_t low = i, high = i;
      for (; i < plot_.xs.size() && std::floor(2 * X(plot_.xs[i])) == column; ++i) {
        if (ys[i] < ys[low]) low = i;
        if (ys[i] > ys[high]) high = i;
      }
      const auto add = [&](size_t at) { points.emplace_back(X(plot_.xs[at]), std::min(floor, Y(ys[at]))); };
      add(std::min(low, high));
      if (low != high) add(std::max(low, high));
    }
    return points;
  }

  // Fills the box with the pixels, in rows from the top.
  void Pixels(std::vector<uint32_t>& pixels, int columns, int rows, const Box& box) {
    const std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface(
        cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(pixels.data()), CAIRO_FORMAT_RGB24,
                                            columns, rows, 4 * columns),
        cairo_surface_destroy);
    cairo_save(cairo_);
    cairo_translate(cairo_, box.x, box.y);
    cairo_scale(cairo_, box.width / columns, box.height / rows);
    cairo_set_source_surface(cairo_, surface.get(), 0, 0);
    cairo_pattern_set_extend(cairo_get_source(cairo_), CAIRO_EXTEND_PAD);
    cairo_rectangle(cairo_, 0, 0, columns, rows);
    cairo_fill(cairo_);
    cairo_restore(cairo_);
  }

  // The image, and below the right end of the x axis what its shades mean.
  void Raster() {
    const Image& image = plot_.image;
    if (image.values.empty()) return;
    std::vector<uint32_t> pixels(image.values.size());
    for (size_t i = 0; i < pixels.size(); ++i) {
      const size_t column = i / image.rows, row = image.rows - 1 - i % image.rows;
      pixels[row * image.columns + column] = Shade((image.values[i] - image.low) / (image.high - image.low));
    }
    Pixels(pixels, int(image.columns), int(image.rows),
           {kLeft, kTop, kWidth - kLeft - kRight, kHeight - kTop - kBottom});
    constexpr int kSteps = 128;
    std::vector<uint32_t> key(kSteps);
    for (int i = 0; i < kSteps; ++i) key[size_t(i)] = Shade(double(i) / (kSteps - 1));
    const std::string high = TickText(image.high) + " " + image.unit;
    Font(kTickFont);
    const double end = kWidth - kRight - TextWidth(high) - 6;
    Use(kInk);
    Text(high, kWidth - kRight, kHeight - 16, Side::kRight);
    Text(TickText(image.low), end - kSteps - 6, kHeight - 16, Side::kRight);
    Pixels(key, kSteps, 1, {end - kSteps, kHeight - 26, kSteps, 11});
  }

  void Curves() {
    cairo_save(cairo_);
    AxesPath();
    cairo_clip(cairo_);
    for (size_t i = 0; i < plot_.curves.size(); ++i) Trace(plot_.curves[i].ys, kCurves[i % kCurves.size()]);
    cairo_restore(cairo_);
    if (plot_.curves.size() < 2) return;
    Font(kTickFont);
    double end = kWidth - kRight;  // the names stand above the axes, from the right
    for (size_t i = plot_.curves.size(); i-- > 0 && end > kWidth / 2; end -= TextWidth(plot_.curves[i].name) + 14) {
      Use(kCurves[i % kCurves.size()]);
      Text(plot_.curves[i].name, end, kTop - 36, Side::kRight);
    }
  }

  // A line; where it is the only one, over an area.
  void Trace(const std::vector<double>& ys, const Colour& colour) {
    const auto points = Outline(ys);
    if (points.empty()) return;
    const auto trace = [&] {
      for (const auto& [x, y] : points) cairo_line_to(cairo_, x, y);
    };
    if (plot_.curves.size() == 1) {
      cairo_move_to(cairo_, points.front().first, kHeight);
      trace();
      cairo_line_to(cairo_, points.back().first, kHeight);
      Use({colour.r, colour.g, colour.b, 0.10});
      cairo_fill(cairo_);
    }
    trace();
    Use(colour);
    cairo_set_line_width(cairo_, 1.3);
    cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(cairo_);
  }

  // A ring on each point, its text above; a text that would cover another climbs, and goes when it finds no place.
  void Markers() {
    Font(kTickFont);
    constexpr double kRing = 3.5, kTextHeight = 14, kGap = 2, kClimb = 4;
    std::vector<Box> taken;
    for (const Marker& m : plot_.markers) taken.push_back({X(m.x) - kRing, Y(m.y) - kRing, 2 * kRing, 2 * kRing});
    for (const Marker& m : plot_.markers) {
      const double x = X(m.x), y = Y(m.y), width = TextWidth(m.text);
      const double left = std::clamp(x - width / 2, kLeft + 4, kWidth - kRight - width - 4);
      const double nearest = y - kRing - kGap - kTextHeight;
      for (double top = nearest; top > kTop; top -= kClimb) {
        const Box box{left - 3, top, width + 6, kTextHeight};
        if (std::any_of(taken.begin(), taken.end(), [&](const Box& b) { return b.Overlaps(box); })) continue;
        taken.push_back(box);
        if (top < nearest) {
          Use({kMark.r, kMark.g, kMark.b, 0.45});
          cairo_set_line_width(cairo_, 1);
          Line(x, top + kTextHeight, x, y - kRing);
        }
        Halo(m.text, left, top + kTickFont - 1);
        break;
      }
      cairo_new_sub_path(cairo_);
      cairo_arc(cairo_, x, y, kRing, 0, 2 * M_PI);
      Use(kPaper);
      cairo_fill_preserve(cairo_);
      Use(kMark);
      cairo_set_line_width(cairo_, 1.6);
      cairo_stroke(cairo_);
    }
  }

  void Halo(const std::string& text, double x, double baseline) {
    cairo_move_to(cairo_, x, baseline);
    cairo_text_path(cairo_, text.c_str());
    Use({1, 1, 1, 0.85});
    cairo_set_line_width(cairo_, 4);
    cairo_stroke(cairo_);
    Use(kMark);
    Text(text, x, baseline, Side::kLeft);
  }

  void Frame() {
    AxesPath();
    Use(kQuiet);
    cairo_set_line_width(cairo_, 1);
    cairo_stroke(cairo_);
  }

  cairo_t* cairo_;
  const Plot& plot_;
};

bool EndsIn(const std::string& path, const char* ending) { return path.ends_with(ending); }

cairo_status_t Append(void* bytes, const unsigned char* data, unsigned length) {
  static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

}  // namespace

void CheckPlotName(const std::string& path) {
  if (!EndsIn(path, ".png") && !EndsIn(path, ".svg")) {
    throw UsageError(Format("a plot's name ends in .png or .svg, unlike '%s'", path.c_str()));
  }
}

void WritePlots(const std::vector<Plot>& plots, const std::string& path) {
  std::string bytes;
  const bool svg = EndsIn(path, ".svg");
  const double height = kHeight * double(plots.size());
  const std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface(
      svg ? cairo_svg_surface_create_for_stream(Append, &bytes, kWidth, height)
          : cairo_image_surface_create(CAIRO_FORMAT_RGB24, int(kWidth * kPixelsPerPoint),
                                       int(height * kPixelsPerPoint)),
      cairo_surface_destroy);
  const std::unique_ptr<cairo_t, decltype(&cairo_destroy)> cairo(cairo_create(surface.get()), cairo_destroy);
  if (!svg) cairo_scale(cairo.get(), kPixelsPerPoint, kPixelsPerPoint);
  cairo_set_source_rgb(cairo.get(), kPaper.r, kPaper.g, kPaper.b);
  cairo_paint(cairo.get());
  for (const Plot& plot : plots) {
    Drawing(cairo.get(), plot).Draw();
    cairo_translate(cairo.get(), 0, kHeight);
  }
  cairo_status_t status = cairo_status(cairo.get());
  if (status == CAIRO_STATUS_SUCCESS && !svg) status = cairo_surface_write_to_png_stream(surface.get(), Append, &bytes);
  cairo_surface_finish(surface.get());
  if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(surface.get());
  if (status != CAIRO_STATUS_SUCCESS) throw Failure(Format("drawing the plot: %s", cairo_status_to_string(status)));
  WriteFile(path, bytes);
}

}  // namespace tzm
