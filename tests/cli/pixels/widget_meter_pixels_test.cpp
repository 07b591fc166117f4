#include <gtest/gtest.h>

#include <limits>

#include "render/image_output.hpp"
#include "render/pango_text_measurer.hpp"
#include "support/render/png_image.hpp"
#include "ui/widget_layout.hpp"
#include "views/common/widget_meter.hpp"

namespace korvo {
namespace {

using ui::Color;

const Color red = *Color::fromHex("#FF3B30");

// The meter alone across a 170-point card with no margins, on black (accented: on nothing, since
// accented rendering would whiten the card too).
ui::WidgetLayout meterCard(const WidgetMeter& meter, ui::Environment environment) {
  environment.hostSuppliesContainerBackground = false;
  const ui::View view =
      ui::vstack(ui::HorizontalAlignment::leading, 0, {meter.body(environment), ui::spacer()})
          .background(environment.renderingMode == ui::RenderingMode::accented
                          ? ui::View()
                          : ui::colorFill(Color::black()));
  return ui::layoutWidget("test", view, environment, render::PangoTextMeasurer::shared());
}

// Pixels: the fill is sampled 3 points down at x = 10 (inside any fill) and x = 160 (inside a
// full fill only); the card behind is black.
TEST(WidgetMeterPixels, PixelsShowTheFillOnlyWhereTheClampedFractionReaches) {
  struct Case {
    double fraction;
    bool leftFilled;
    bool rightFilled;
  };
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  for (const Case& c : {Case{1.7, true, true}, Case{-0.2, false, false}, Case{nan, false, false},
                        Case{inf, false, false}, Case{0.5, true, false}}) {
    const auto png = viewtest::PngImage::decode(
        render::renderPNG(meterCard({.fraction = c.fraction, .tint = red}, {}), {.scale = 1}));
    ASSERT_TRUE(png);
    const char* trackOnBlack = "#000000FF";
    EXPECT_TRUE(viewtest::near(png->pixel(30, 3), c.leftFilled ? "#FF3B30FF" : trackOnBlack))
        << c.fraction;
    EXPECT_TRUE(viewtest::near(png->pixel(140, 3), c.rightFilled ? "#FF3B30FF" : trackOnBlack))
        << c.fraction;
  }
}

TEST(WidgetMeterPixels, AccentedPixelsAreWhiteFillOverAFaintWhiteTrack) {
  const auto png = viewtest::PngImage::decode(render::renderPNG(
      meterCard({.fraction = 0.5, .tint = red}, {.renderingMode = ui::RenderingMode::accented}),
      {.scale = 2}));
  ASSERT_TRUE(png);
  EXPECT_TRUE(viewtest::near(png->pixel(60, 6), "#FFFFFFFF"));
  EXPECT_TRUE(viewtest::near(png->pixel(280, 6), "#FFFFFF38"));
}

}  // namespace
}  // namespace korvo
