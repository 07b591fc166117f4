#pragma once

#include <cairo.h>

#include "ui/geometry.hpp"

namespace korvo::gtk {

// The pixels of a card of `size` with corners of `radius`, all in window pixels, as a region:
// the window's input shape (clicks on the transparent corners reach what lies behind) and, on a
// screen without a compositor, its bounding shape (no black corners). The caller owns the region.
cairo_region_t* cardRegion(ui::Size size, double radius);

}  // namespace korvo::gtk
