#pragma once

#include <string>

#include "ui/color.hpp"
#include "ui/widget_layout.hpp"

// Cairo's context type, declared here so that users of the painter need not include Cairo.
using cairo_t = struct _cairo;

namespace korvo::ui {

struct PaintOptions {
  double scale = 2;  // device pixels per point
};

// Paints the card (clipped to its rounded rectangle) onto `cr` at the context's current origin.
// The context's transformation must already map points to device pixels; text is drawn unhinted,
// so it is sharp at whatever scale that transformation sets.
void paintWidget(cairo_t* cr, const WidgetLayout& widget);

// The card as PNG bytes, width × scale by height × scale pixels (rounded up); nothing on failure.
std::string renderPNG(const WidgetLayout& widget, const PaintOptions& options);

// The card as an SVG document at `options.scale` (1 = points as SVG user units).
std::string renderSVG(const WidgetLayout& widget, const PaintOptions& options);

}  // namespace korvo::ui
