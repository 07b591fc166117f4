#include "dashboard/graph_painter.hpp"

#include <algorithm>
#include <cmath>

namespace korvo::graph_painter {
namespace {

constexpr double radius = 12;
constexpr double inset = 10;  // between the card's edge and the plot
constexpr double lineWidth = 2;

void setColor(cairo_t* cr, const ui::Color& color) {
  cairo_set_source_rgba(cr, color.red, color.green, color.blue, color.alpha);
}

ui::Color toneColor(graphs::Tone tone, const ui::Palette& palette) {
  switch (tone) {
    case graphs::Tone::accent:
      return palette.teal;
    case graphs::Tone::load:
      return palette.blue;
    case graphs::Tone::heat:
      return palette.orange;
    case graphs::Tone::limit:
      break;
  }
  return palette.red;
}

void roundedRectangle(cairo_t* cr, double width, double height) {
  cairo_new_sub_path(cr);
  cairo_arc(cr, width - radius, radius, radius, -M_PI / 2, 0);
  cairo_arc(cr, width - radius, height - radius, radius, 0, M_PI / 2);
  cairo_arc(cr, radius, height - radius, radius, M_PI / 2, M_PI);
  cairo_arc(cr, radius, radius, radius, M_PI, 3 * M_PI / 2);
  cairo_close_path(cr);
}

// A one-point line across the plot at `y`, on the pixel grid at 1× and 2× alike.
double snapped(double y) {
  return std::floor(y) + 0.5;
}

struct Plot {
  double left, top, width, height;
  double from, to, low, high;
  double x(double time) const {
    return left + (to > from ? (time - from) / (to - from) : 0) * width;
  }
  double y(double value) const {
    const double fraction = high > low ? (value - low) / (high - low) : 0;
    return top + height - std::clamp(fraction, 0.0, 1.0) * height;
  }
};

void traceLine(cairo_t* cr, const Plot& plot, const graphs::Line& line) {
  for (const graphs::Point& point : line.points) {
    cairo_line_to(cr, plot.x(point.time), plot.y(point.value));
  }
}

}  // namespace

void paint(cairo_t* cr, const graphs::Graph& graph, double width, double height,
           const ui::Palette& palette, double now) {
  cairo_save(cr);
  // The card's base, a shade off the window's so the graph reads as a card of its own.
  roundedRectangle(cr, width, height);
  setColor(cr, palette.windowBackground);
  cairo_fill_preserve(cr);
  setColor(cr, palette.primary.opacity(0.04));
  cairo_fill_preserve(cr);
  cairo_clip_preserve(cr);
  cairo_set_line_width(cr, 2);  // half of it inside the clip: one point
  setColor(cr, palette.separator);
  cairo_stroke(cr);

  const Plot plot{inset,      inset,    width - 2 * inset, height - 2 * inset,
                  graph.from, graph.to, graph.low,         graph.high};
  cairo_set_line_width(cr, 1);
  setColor(cr, palette.separator);
  for (int quarter = 0; quarter <= 4; ++quarter) {
    const double y = snapped(plot.y(graph.low + (graph.high - graph.low) * quarter / 4));
    cairo_move_to(cr, plot.left, y);
    cairo_line_to(cr, plot.left + plot.width, y);
  }
  cairo_stroke(cr);

  if (now > graph.from && now < graph.to) {
    const double x = snapped(plot.x(now));
    const double dash[] = {2, 3};
    cairo_set_dash(cr, dash, 2, 0);
    setColor(cr, palette.secondary);
    cairo_move_to(cr, x, plot.top);
    cairo_line_to(cr, x, plot.top + plot.height);
    cairo_stroke(cr);
    cairo_set_dash(cr, nullptr, 0, 0);
  }

  cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
  for (const graphs::Line& line : graph.lines) {
    if (line.points.empty()) continue;
    const ui::Color color = toneColor(line.tone, palette);
    if (line.filled && line.points.size() > 1) {
      cairo_move_to(cr, plot.x(line.points.front().time), plot.y(graph.low));
      traceLine(cr, plot, line);
      cairo_line_to(cr, plot.x(line.points.back().time), plot.y(graph.low));
      cairo_close_path(cr);
      setColor(cr, color.opacity(0.18));
      cairo_fill(cr);
    }
    cairo_new_path(cr);
    traceLine(cr, plot, line);
    if (line.points.size() == 1) {
      // A single reading is a dot.
      cairo_arc(cr, plot.x(line.points.front().time), plot.y(line.points.front().value), lineWidth,
                0, 2 * M_PI);
      setColor(cr, color);
      cairo_fill(cr);
      continue;
    }
    const double dash[] = {5, 4};
    cairo_set_dash(cr, dash, line.dashed ? 2 : 0, 0);
    cairo_set_line_width(cr, lineWidth);
    setColor(cr, color);
    cairo_stroke(cr);
    cairo_set_dash(cr, nullptr, 0, 0);
  }

  cairo_set_line_width(cr, 1);
  setColor(cr, palette.red);
  for (const double rule : graph.rules) {
    const double y = snapped(plot.y(rule));
    cairo_move_to(cr, plot.left, y);
    cairo_line_to(cr, plot.left + plot.width, y);
  }
  cairo_stroke(cr);
  cairo_restore(cr);
}

}  // namespace korvo::graph_painter
