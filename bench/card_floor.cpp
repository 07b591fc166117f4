// The one-shot floor of `korvo-widgets render usage --family medium --format png`: a process that
// draws the same card once at 2x with Cairo and Pango and writes the PNG.
//   card_floor OUT.png
#include <pango/pangocairo.h>

#include <cstdio>

#include "usage_card_by_hand.hpp"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: card_floor OUT.png\n");
    return 2;
  }
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 728, 340);
  cairo_t* cr = cairo_create(surface);
  cairo_scale(cr, 2, 2);
  PangoLayout* layout = pango_cairo_create_layout(cr);
  korvo::bench::useUnhintedText(layout);
  korvo::bench::drawUsageCardByHand(cr, layout);
  g_object_unref(layout);
  cairo_destroy(cr);
  const cairo_status_t status = cairo_surface_write_to_png(surface, argv[1]);
  cairo_surface_destroy(surface);
  if (status != CAIRO_STATUS_SUCCESS) {
    std::fprintf(stderr, "card_floor: %s: %s\n", argv[1], cairo_status_to_string(status));
    return 1;
  }
  return 0;
}
