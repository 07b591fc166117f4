#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "ui/color.hpp"
#include "ui/geometry.hpp"
#include "ui/widget_layout.hpp"

// Rendering widgets to PNG for the pixel tests and reading pixels back.
namespace korvo::viewtest {

// A decoded PNG: its size in pixels and straight (not premultiplied) RGBA pixels.
class PngImage {
 public:
  // Nothing when `bytes` is not a PNG.
  static std::optional<PngImage> decode(const std::string& bytes);

  int width() const { return width_; }
  int height() const { return height_; }
  // The pixel at (x, y) in pixels from the top-leading corner.
  ui::Color pixel(int x, int y) const;
  // The pixel under the point `at` (points) of an image drawn at `scale`.
  ui::Color pixelAtPoint(ui::Point at, double scale) const;

 private:
  int width_ = 0;
  int height_ = 0;
  std::string rgba_;
};

// The widget at 2×, written to `<build>/view-renders/<name>.png` for looking at; the PNG bytes.
std::string renderAndKeep(const ui::WidgetLayout& widget, const std::string& name);

// True when the two colours differ by at most `tolerance` (0…1) in every channel.
bool near(const ui::Color& a, const ui::Color& b, double tolerance = 0.03);
// True when `pixel` is the colour written `hex` (#RRGGBBAA), by default within the two steps of 255
// a PNG's premultiplied round trip may cost.
bool near(const ui::Color& pixel, std::string_view hex, double tolerance = 2.0 / 255);

// `color` painted over `under` (straight alpha).
ui::Color over(const ui::Color& color, const ui::Color& under);

}  // namespace korvo::viewtest
