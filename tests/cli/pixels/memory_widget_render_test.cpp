#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "render/pango_text_measurer.hpp"
#include "support/base/fixed_clock.hpp"
#include "support/render/png_image.hpp"
#include "support/ui/view_tree_query.hpp"
#include "ui/words.hpp"
#include "views/memory/memory_widget_view.hpp"

namespace korvo {
namespace {

using ui::WidgetFamily;

struct RenderCase {
  std::string name;
  std::optional<MemoryPressure> pressure;  // absent: no reading
};

MemorySnapshot reading(MemoryPressure pressure) {
  return MemorySnapshot::fromPageCounts(17'179'869'184, 4096, 1'500'000, 500'000, 250'000, 250'000,
                                        100'000, 200'000, std::nullopt, pressure);
}

ui::Color tintFor(MemoryPressure pressure, const ui::Palette& palette) {
  if (pressure == MemoryPressure::warning) return palette.orange;
  if (pressure == MemoryPressure::critical) return palette.red;
  return palette.teal;
}

class MemoryWidgetRenderTest : public testing::TestWithParam<RenderCase> {
 protected:
  const testing_support::FixedClock fixedClock_{viewtest::testNow};
};

TEST_P(MemoryWidgetRenderTest, RendersEveryFamilyAndSchemeWithTheMeterInItsTint) {
  const RenderCase& c = GetParam();
  const std::optional<MemorySnapshot> memory =
      c.pressure ? std::optional(reading(*c.pressure)) : std::nullopt;
  for (const WidgetFamily family : {WidgetFamily::systemSmall, WidgetFamily::systemMedium}) {
    for (const auto scheme : {ui::ColorScheme::light, ui::ColorScheme::dark}) {
      const ui::Environment env = viewtest::environment(family, {scheme});
      const ui::WidgetLayout widget =
          viewtest::layOut(MemoryWidgetView{MemoryEntry{viewtest::testNow, memory}}.body(env), env,
                           render::PangoTextMeasurer::shared());
      const std::string name = "memory-" + std::string(ui::familyName(family)) + "-" +
                               (scheme == ui::ColorScheme::light ? "light" : "dark") + "-" + c.name;
      SCOPED_TRACE(name);
      const auto image = viewtest::PngImage::decode(viewtest::renderAndKeep(widget, name));
      ASSERT_TRUE(image);
      EXPECT_EQ(image->width(), family == WidgetFamily::systemSmall ? 340 : 728);
      EXPECT_EQ(image->height(), 340);
      // Outside the rounded corner nothing is painted; near the bottom-trailing corner the
      // gradient has faded to the window background.
      EXPECT_EQ(image->pixel(0, 0).alpha, 0);
      const ui::Palette palette = env.palette();
      EXPECT_TRUE(
          viewtest::near(image->pixelAtPoint({widget.size.width - 8, widget.size.height - 12}, 2),
                         palette.windowBackground, 0.04));

      const ui::LayoutNode* meter = viewtest::firstOfKind(widget.root, ui::NodeKind::meter);
      if (!c.pressure) {
        EXPECT_EQ(meter, nullptr);
        continue;
      }
      ASSERT_NE(meter, nullptr);
      const ui::Rect fill = meter->children[1].frame;
      const ui::Color fillPixel = image->pixelAtPoint({fill.x + fill.width / 2, fill.y + 3}, 2);
      EXPECT_TRUE(viewtest::near(fillPixel, tintFor(*c.pressure, palette)))
          << fillPixel.hex() << " vs " << tintFor(*c.pressure, palette).hex();
      const ui::Rect track = meter->children[0].frame;
      const ui::Color trackPixel = image->pixelAtPoint({track.maxX() - 8, track.y + 3}, 2);
      EXPECT_FALSE(viewtest::near(trackPixel, tintFor(*c.pressure, palette), 0.1));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(States, MemoryWidgetRenderTest,
                         testing::Values(RenderCase{"unavailable", std::nullopt},
                                         RenderCase{"normal", MemoryPressure::normal},
                                         RenderCase{"warning", MemoryPressure::warning},
                                         RenderCase{"critical", MemoryPressure::critical},
                                         RenderCase{"unknown", MemoryPressure::unknown}),
                         [](const auto& info) { return info.param.name; });

TEST(MemoryWidgetRenderAccentedTest, MeterFillTakesTheAccentColour) {
  const testing_support::FixedClock fixedClock{viewtest::testNow};
  ui::Environment env =
      viewtest::environment(WidgetFamily::systemSmall, {.rendering = ui::RenderingMode::accented});
  env.accentColor = *ui::Color::fromHex("#FF00FF");
  const ui::WidgetLayout widget = viewtest::layOut(
      MemoryWidgetView{MemoryEntry{viewtest::testNow, reading(MemoryPressure::critical)}}.body(env),
      env, render::PangoTextMeasurer::shared());
  const auto image =
      viewtest::PngImage::decode(viewtest::renderAndKeep(widget, "memory-systemSmall-accented"));
  ASSERT_TRUE(image);
  const ui::LayoutNode* meter = viewtest::firstOfKind(widget.root, ui::NodeKind::meter);
  ASSERT_NE(meter, nullptr);
  const ui::Rect fill = meter->children[1].frame;
  const ui::Color fillPixel = image->pixelAtPoint({fill.x + fill.width / 2, fill.y + 3}, 2);
  EXPECT_TRUE(viewtest::near(ui::Color{fillPixel.red, fillPixel.green, fillPixel.blue, 1},
                             *ui::Color::fromHex("#FF00FF"), 0.05))
      << fillPixel.hex();
}

}  // namespace
}  // namespace korvo
