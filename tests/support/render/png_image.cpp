#include "support/render/png_image.hpp"

#include <cairo.h>

#include <cmath>
#include <cstring>
#include <fstream>

#include "render/image_output.hpp"
#include "render/painter.hpp"

namespace korvo::viewtest {
namespace {

struct Reader {
  const std::string* bytes;
  std::size_t offset = 0;
};

cairo_status_t readBytes(void* closure, unsigned char* data, unsigned int length) {
  auto* reader = static_cast<Reader*>(closure);
  if (reader->offset + length > reader->bytes->size()) return CAIRO_STATUS_READ_ERROR;
  std::memcpy(data, reader->bytes->data() + reader->offset, length);
  reader->offset += length;
  return CAIRO_STATUS_SUCCESS;
}

}  // namespace

std::optional<PngImage> PngImage::decode(const std::string& bytes) {
  Reader reader{&bytes};
  cairo_surface_t* surface = cairo_image_surface_create_from_png_stream(readBytes, &reader);
  if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(surface);
    return std::nullopt;
  }
  cairo_surface_flush(surface);
  PngImage image;
  image.width_ = cairo_image_surface_get_width(surface);
  image.height_ = cairo_image_surface_get_height(surface);
  const int stride = cairo_image_surface_get_stride(surface);
  const unsigned char* data = cairo_image_surface_get_data(surface);
  image.rgba_.resize(static_cast<std::size_t>(image.width_ * image.height_) * 4);
  for (int y = 0; y < image.height_; ++y) {
    for (int x = 0; x < image.width_; ++x) {
      std::uint32_t argb;
      std::memcpy(&argb, data + y * stride + x * 4, 4);
      const double alpha = ((argb >> 24) & 0xFF) / 255.0;
      auto channel = [&](int shift) {
        const double premultiplied = ((argb >> shift) & 0xFF) / 255.0;
        return alpha > 0 ? std::min(1.0, premultiplied / alpha) : 0.0;
      };
      const std::size_t at = static_cast<std::size_t>(y * image.width_ + x) * 4;
      image.rgba_[at] = static_cast<char>(std::lround(channel(16) * 255));
      image.rgba_[at + 1] = static_cast<char>(std::lround(channel(8) * 255));
      image.rgba_[at + 2] = static_cast<char>(std::lround(channel(0) * 255));
      image.rgba_[at + 3] = static_cast<char>((argb >> 24) & 0xFF);
    }
  }
  cairo_surface_destroy(surface);
  return image;
}

ui::Color PngImage::pixel(int x, int y) const {
  const std::size_t at = static_cast<std::size_t>(y * width_ + x) * 4;
  auto byte = [&](std::size_t i) { return static_cast<unsigned char>(rgba_[at + i]) / 255.0; };
  return {byte(0), byte(1), byte(2), byte(3)};
}

ui::Color PngImage::pixelAtPoint(ui::Point at, double scale) const {
  return pixel(static_cast<int>(std::floor(at.x * scale)),
               static_cast<int>(std::floor(at.y * scale)));
}

std::string renderAndKeep(const ui::WidgetLayout& widget, const std::string& name) {
  const std::string bytes = render::renderPNG(widget, {.scale = 2});
  const std::filesystem::path folder = KORVO_VIEW_RENDER_DIR;
  std::filesystem::create_directories(folder);
  std::ofstream(folder / (name + ".png"), std::ios::binary) << bytes;
  return bytes;
}

bool near(const ui::Color& a, const ui::Color& b, double tolerance) {
  return std::abs(a.red - b.red) <= tolerance && std::abs(a.green - b.green) <= tolerance &&
         std::abs(a.blue - b.blue) <= tolerance && std::abs(a.alpha - b.alpha) <= tolerance;
}

bool near(const ui::Color& pixel, std::string_view hex, double tolerance) {
  const std::optional<ui::Color> color = ui::Color::fromHex(hex);
  return color && near(pixel, *color, tolerance);
}

ui::Color over(const ui::Color& color, const ui::Color& under) {
  const double alpha = color.alpha + under.alpha * (1 - color.alpha);
  if (alpha <= 0) return ui::Color::clear();
  auto mix = [&](double top, double bottom) {
    return (top * color.alpha + bottom * under.alpha * (1 - color.alpha)) / alpha;
  };
  return {mix(color.red, under.red), mix(color.green, under.green), mix(color.blue, under.blue),
          alpha};
}

}  // namespace korvo::viewtest
