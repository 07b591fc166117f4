#pragma once

#include <cairo.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace korvo::ui::testing {

// A decoded PNG, read pixel by pixel as straight (not premultiplied) RGBA bytes.
class PngPixels {
 public:
  explicit PngPixels(const std::string& png) : bytes_(png) {
    surface_ = cairo_image_surface_create_from_png_stream(&PngPixels::read, this);
  }
  ~PngPixels() { cairo_surface_destroy(surface_); }
  PngPixels(const PngPixels&) = delete;
  PngPixels& operator=(const PngPixels&) = delete;

  bool valid() const { return cairo_surface_status(surface_) == CAIRO_STATUS_SUCCESS; }
  int width() const { return cairo_image_surface_get_width(surface_); }
  int height() const { return cairo_image_surface_get_height(surface_); }

  struct Rgba {
    int red, green, blue, alpha;
  };
  // The pixel at (x, y) in device pixels.
  Rgba at(int x, int y) const {
    cairo_surface_flush(surface_);
    const unsigned char* row =
        cairo_image_surface_get_data(surface_) + y * cairo_image_surface_get_stride(surface_);
    std::uint32_t pixel;
    std::memcpy(&pixel, row + 4 * x, 4);
    const int a = static_cast<int>(pixel >> 24);
    auto straight = [a](std::uint32_t channel) {
      return a == 0 ? 0
                    : static_cast<int>((channel * 255 + static_cast<std::uint32_t>(a) / 2) /
                                       static_cast<std::uint32_t>(a));
    };
    return {straight((pixel >> 16) & 0xFF), straight((pixel >> 8) & 0xFF), straight(pixel & 0xFF),
            a};
  }

 private:
  static cairo_status_t read(void* closure, unsigned char* data, unsigned int length) {
    auto* self = static_cast<PngPixels*>(closure);
    if (self->offset_ + length > self->bytes_.size()) return CAIRO_STATUS_READ_ERROR;
    std::memcpy(data, self->bytes_.data() + self->offset_, length);
    self->offset_ += length;
    return CAIRO_STATUS_SUCCESS;
  }

  std::string bytes_;
  std::size_t offset_ = 0;
  cairo_surface_t* surface_ = nullptr;
};

// True when every channel of `pixel` is within `tolerance` of `hex` (#RRGGBBAA).
inline bool near(PngPixels::Rgba pixel, const char* hex, int tolerance = 2) {
  unsigned r, g, b, a;
  if (std::sscanf(hex, "#%2x%2x%2x%2x", &r, &g, &b, &a) != 4) return false;
  auto close = [tolerance](int x, unsigned y) {
    return std::abs(x - static_cast<int>(y)) <= tolerance;
  };
  return close(pixel.red, r) && close(pixel.green, g) && close(pixel.blue, b) &&
         close(pixel.alpha, a);
}

}  // namespace korvo::ui::testing
