#include "render/rounded_path.hpp"

#include <algorithm>
#include <cmath>

namespace korvo::render {

void roundedRectPath(cairo_t* cr, const ui::Rect& rect, double radius) {
  radius = std::clamp(radius, 0.0, std::min(rect.width, rect.height) / 2);
  const double degrees = M_PI / 180.0;
  cairo_new_sub_path(cr);
  cairo_arc(cr, rect.maxX() - radius, rect.y + radius, radius, -90 * degrees, 0);
  cairo_arc(cr, rect.maxX() - radius, rect.maxY() - radius, radius, 0, 90 * degrees);
  cairo_arc(cr, rect.x + radius, rect.maxY() - radius, radius, 90 * degrees, 180 * degrees);
  cairo_arc(cr, rect.x + radius, rect.y + radius, radius, 180 * degrees, 270 * degrees);
  cairo_close_path(cr);
}

}  // namespace korvo::render
