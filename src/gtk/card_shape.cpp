#include "gtk/card_shape.hpp"

#include <algorithm>
#include <cmath>

namespace korvo::gtk {

cairo_region_t* cardRegion(ui::Size size, double radius) {
  const int width = static_cast<int>(std::ceil(size.width));
  const int height = static_cast<int>(std::ceil(size.height));
  const double r = std::clamp(radius, 0.0, std::min(size.width, size.height) / 2);
  cairo_region_t* region = cairo_region_create();
  for (int row = 0; row < height; ++row) {
    // Distance of the row's centre into the corner arc, from the top or the bottom edge.
    const double fromEdge = std::min(row + 0.5, height - row - 0.5);
    double inset = 0;
    if (fromEdge < r) {
      const double dy = r - fromEdge;
      inset = std::round(r - std::sqrt(r * r - dy * dy));
    }
    const int left = static_cast<int>(inset);
    const cairo_rectangle_int_t span{left, row, width - 2 * left, 1};
    if (span.width > 0) cairo_region_union_rectangle(region, &span);
  }
  return region;
}

}  // namespace korvo::gtk
