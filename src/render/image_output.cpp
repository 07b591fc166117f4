#include "render/image_output.hpp"

#include <cairo-svg.h>
#include <cairo.h>

#include <cmath>

#include "render/painter.hpp"

namespace korvo::render {

namespace {

cairo_status_t appendBytes(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

}  // namespace

std::string renderPNG(const ui::WidgetLayout& widget, const PaintOptions& options) {
  const int width = static_cast<int>(std::ceil(widget.size.width * options.scale));
  const int height = static_cast<int>(std::ceil(widget.size.height * options.scale));
  if (width <= 0 || height <= 0) return {};
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
  cairo_t* cr = cairo_create(surface);
  cairo_scale(cr, options.scale, options.scale);
  paintWidget(cr, widget);
  cairo_destroy(cr);
  std::string bytes;
  if (cairo_surface_write_to_png_stream(surface, appendBytes, &bytes) != CAIRO_STATUS_SUCCESS) {
    bytes.clear();
  }
  cairo_surface_destroy(surface);
  return bytes;
}

std::string renderSVG(const ui::WidgetLayout& widget, const PaintOptions& options) {
  std::string bytes;
  cairo_surface_t* surface = cairo_svg_surface_create_for_stream(
      appendBytes, &bytes, widget.size.width * options.scale, widget.size.height * options.scale);
  cairo_t* cr = cairo_create(surface);
  cairo_scale(cr, options.scale, options.scale);
  paintWidget(cr, widget);
  cairo_destroy(cr);
  cairo_surface_finish(surface);
  if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) bytes.clear();
  cairo_surface_destroy(surface);
  return bytes;
}

}  // namespace korvo::render
