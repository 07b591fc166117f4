#include "views/common/widget_backdrop.hpp"

#include <gtest/gtest.h>

#include "render/image_output.hpp"
#include "render/painter.hpp"
#include "render/pango_text_measurer.hpp"
#include "support/png_pixels.hpp"
#include "ui/widget_layout.hpp"

namespace korvo {
namespace {

using ui::Color;

TEST(WidgetBackdrop, FullColourIsWindowBackgroundUnderATealBlueClearGradient) {
  const ui::Environment environment{.colorScheme = ui::ColorScheme::light};
  const ui::View expected = ui::zstack(
      {ui::colorFill(*Color::fromHex("#ECECEC")),
       ui::linearGradient({{Color::fromHex("#59ADC4")->opacity(0.18), 0},
                           {Color::fromHex("#007AFF")->opacity(0.04), 0.5},
                           {Color::clear(), 1}},
                          ui::UnitPoint::topLeading(), ui::UnitPoint::bottomTrailing())});
  EXPECT_EQ(WidgetBackdrop{}.body(environment), expected);
}

TEST(WidgetBackdrop, FollowsTheDesktopThemeWindowBackground) {
  const ui::Environment environment{.colorScheme = ui::ColorScheme::dark,
                                    .theme = {.windowBackground = Color{0.1, 0.2, 0.3, 1}}};
  const ui::View backdrop = WidgetBackdrop{}.body(environment);
  const auto& stack = std::get<ui::Stack>(backdrop.node().value);
  EXPECT_EQ(std::get<ui::Shape>(stack.children[0].node().value).fill, (Color{0.1, 0.2, 0.3, 1}));
}

TEST(WidgetBackdrop, AccentedRenderingPaintsNothingInTheTree) {
  const ui::Environment environment{.renderingMode = ui::RenderingMode::accented};
  EXPECT_EQ(WidgetBackdrop{}.body(environment), ui::View());
}

ui::testing::PngPixels renderBackdrop(const ui::Environment& environment) {
  const ui::View view =
      ui::rectangle(Color::clear()).containerBackground(WidgetBackdrop{}.body(environment));
  const ui::WidgetLayout widget =
      ui::layoutWidget("test", view, environment, render::PangoTextMeasurer::shared(), 1);
  return ui::testing::PngPixels(render::renderPNG(widget, {.scale = 1}));
}

TEST(WidgetBackdrop, FullColourPixelsAreTheWindowBackgroundTintedTowardsTealAtTheTopLeading) {
  const auto png = renderBackdrop({.colorScheme = ui::ColorScheme::light});
  // Bottom-trailing: the gradient has faded to clear.
  EXPECT_TRUE(ui::testing::near(png.at(160, 160), "#ECECECFF"));
  // Top-leading: teal at 0.18 over #ECECEC pulls red down and keeps blue up.
  const auto corner = png.at(20, 20);
  EXPECT_EQ(corner.alpha, 255);
  EXPECT_LT(corner.red, 230);
  EXPECT_GT(corner.blue, corner.red);
}

TEST(WidgetBackdrop, AccentedRenderingLeavesEveryPixelTransparent) {
  const auto png = renderBackdrop({.renderingMode = ui::RenderingMode::accented});
  for (int y = 0; y < png.height(); y += 17) {
    for (int x = 0; x < png.width(); x += 17) EXPECT_EQ(png.at(x, y).alpha, 0) << x << "," << y;
  }
}

}  // namespace
}  // namespace korvo
