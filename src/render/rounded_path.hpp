#pragma once

#include <cairo.h>

#include "ui/geometry.hpp"

namespace korvo::render {

// Adds a rectangle with corners of `radius` (at most half its shorter side) to the path.
void roundedRectPath(cairo_t* cr, const ui::Rect& rect, double radius);

}  // namespace korvo::render
