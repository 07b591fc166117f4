#include <gtest/gtest.h>

#include <optional>

#include "render/image_output.hpp"
#include "render/pango_text_measurer.hpp"
#include "support/render/png_image.hpp"
#include "ui/widget_layout.hpp"
#include "views/common/widget_backdrop.hpp"

namespace korvo {
namespace {

using ui::Color;

std::optional<viewtest::PngImage> renderBackdrop(const ui::Environment& environment) {
  const ui::View view =
      ui::rectangle(Color::clear()).containerBackground(WidgetBackdrop{}.body(environment));
  const ui::WidgetLayout widget =
      ui::layoutWidget("test", view, environment, render::PangoTextMeasurer::shared(), 1);
  return viewtest::PngImage::decode(render::renderPNG(widget, {.scale = 1}));
}

TEST(WidgetBackdropPixels, FullColourPixelsAreTheWindowBackgroundTintedTowardsTealAtTheTopLeading) {
  const auto png = renderBackdrop({.colorScheme = ui::ColorScheme::light});
  ASSERT_TRUE(png);
  // Bottom-trailing: the gradient has faded to clear.
  EXPECT_TRUE(viewtest::near(png->pixel(160, 160), "#ECECECFF"));
  // Top-leading: teal at 0.18 over #ECECEC pulls red down and keeps blue up.
  const Color corner = png->pixel(20, 20);
  EXPECT_EQ(corner.alpha, 1);
  EXPECT_LT(corner.red, 230.0 / 255);
  EXPECT_GT(corner.blue, corner.red);
}

TEST(WidgetBackdropPixels, AccentedRenderingLeavesEveryPixelTransparent) {
  const auto png = renderBackdrop({.renderingMode = ui::RenderingMode::accented});
  ASSERT_TRUE(png);
  for (int y = 0; y < png->height(); y += 17) {
    for (int x = 0; x < png->width(); x += 17) {
      EXPECT_EQ(png->pixel(x, y).alpha, 0) << x << "," << y;
    }
  }
}

}  // namespace
}  // namespace korvo
