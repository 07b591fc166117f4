#pragma once

#include <string>

#include "ui/widget_layout.hpp"

namespace korvo::render {

struct PaintOptions {
  double scale = 2;  // device pixels per point
};

// The card as PNG bytes, width × scale by height × scale pixels (rounded up); nothing on failure.
std::string renderPNG(const ui::WidgetLayout& widget, const PaintOptions& options);

// The card as an SVG document at `options.scale` (1 = points as SVG user units).
std::string renderSVG(const ui::WidgetLayout& widget, const PaintOptions& options);

}  // namespace korvo::render
