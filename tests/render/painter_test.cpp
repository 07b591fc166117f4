#include "render/painter.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "render/image_output.hpp"
#include "render/pango_text_measurer.hpp"
#include "support/render/png_image.hpp"
#include "support/temporary_directory.hpp"
#include "ui/widget_layout.hpp"

namespace korvo::ui {
namespace {

using viewtest::near;
using viewtest::PngImage;

WidgetLayout card(const View& view, Environment environment = {}, double scale = 2) {
  return layoutWidget("com.tessmoor.Korvo.test", view, environment,
                      render::PangoTextMeasurer::shared(), scale);
}

// A red bar across the whole card, 6 points high at the top, on a grey card.
const View bar = vstack(HorizontalAlignment::leading, 0,
                        {meter(0.5, Color::black(0.09), *Color::fromHex("#FF3B30")), spacer()})
                     .background(colorFill(*Color::fromHex("#ECECEC")));

TEST(Painter, PngHasTheCardSizeTimesTheScale) {
  struct Case {
    WidgetFamily family;
    double scale;
    int width, height;
  };
  for (const Case& c :
       {Case{WidgetFamily::systemSmall, 1, 170, 170}, Case{WidgetFamily::systemSmall, 2, 340, 340},
        Case{WidgetFamily::systemMedium, 1, 364, 170},
        Case{WidgetFamily::systemMedium, 2, 728, 340}}) {
    const Environment environment{.family = c.family};
    const auto png =
        PngImage::decode(render::renderPNG(card(bar, environment, c.scale), {.scale = c.scale}));
    ASSERT_TRUE(png);
    EXPECT_EQ(png->width(), c.width);
    EXPECT_EQ(png->height(), c.height);
  }
}

TEST(Painter, MeterFillAndTrackHaveTheirColours) {
  const WidgetLayout widget = card(bar, {.hostSuppliesContainerBackground = false}, 1);
  const auto png = PngImage::decode(render::renderPNG(widget, {.scale = 1}));
  ASSERT_TRUE(png);
  // Fill: the left half, 3 points down; track: the right half over the grey card.
  EXPECT_TRUE(near(png->pixel(40, 3), "#FF3B30FF"));
  const Color track = png->pixel(130, 3);
  EXPECT_TRUE(near(track, "#D7D7D7FF", 3.0 / 255)) << track.hex();
  EXPECT_TRUE(near(png->pixel(85, 100), "#ECECECFF"));
}

TEST(Painter, CornersOutsideTheRoundedCardStayTransparent) {
  const auto png = PngImage::decode(
      render::renderPNG(card(bar, {.hostSuppliesContainerBackground = false}, 1), {.scale = 1}));
  ASSERT_TRUE(png);
  EXPECT_EQ(png->pixel(0, 169).alpha, 0);
  EXPECT_EQ(png->pixel(2, 2).alpha, 0);
}

TEST(Painter, SvgIsWellFormedXml) {
  const View view =
      vstack({text("Memory <b>&amp;</b> & more"), label("MEMORY", "memorychip"), bar});
  const std::string svg = render::renderSVG(card(view), {.scale = 1});
  ASSERT_FALSE(svg.empty());
  const testing_support::TemporaryDirectory directory;
  const auto path = directory.write("card.svg", svg);
  EXPECT_EQ(std::system(("xmllint --noout " + path.string()).c_str()), 0);
}

TEST(Painter, MarkupCharactersAreDrawnAsTheyStand) {
  const WidgetLayout widget = card(text("<b>Hi</b> & co").lineLimit(1));
  const LayoutNode& node = widget.root.children[0];
  ASSERT_EQ(node.lines.size(), 1u);
  EXPECT_EQ(node.lines[0].content, "<b>Hi</b> & co");
  auto& measurer = render::PangoTextMeasurer::shared();
  EXPECT_GT(node.frame.width, measurer.measure("Hi & co", Font::body(), 0, infinity).width + 10);
  EXPECT_TRUE(PngImage::decode(render::renderPNG(widget, {})));
}

TEST(Painter, MonospacedDigitsGiveEveryDigitOneWidth) {
  auto& measurer = render::PangoTextMeasurer::shared();
  const Font tabular = Font::system(40, FontWeight::medium).withMonospacedDigits();
  EXPECT_DOUBLE_EQ(measurer.measure("111", tabular, 0, infinity).width,
                   measurer.measure("888", tabular, 0, infinity).width);
  const Font proportional = Font::system(40, FontWeight::medium);
  EXPECT_LT(measurer.measure("111", proportional, 0, infinity).width,
            measurer.measure("888", proportional, 0, infinity).width);
}

TEST(Painter, SymbolsDrawAnIconGlyphNotTheirName) {
  auto& measurer = render::PangoTextMeasurer::shared();
  const TextMetrics icon = measurer.measureSymbol("memorychip", Font::caption());
  EXPECT_EQ(icon.lines.size(), 1u);
  EXPECT_LT(icon.width, 20);
}

}  // namespace
}  // namespace korvo::ui
