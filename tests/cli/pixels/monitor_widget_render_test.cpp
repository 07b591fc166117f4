#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "render/pango_text_measurer.hpp"
#include "support/base/fixed_clock.hpp"
#include "support/render/png_image.hpp"
#include "support/views/monitor/monitor_test_data.hpp"
#include "ui/words.hpp"
#include "views/monitor/monitor_widget_view.hpp"

namespace korvo {
namespace {

using ui::WidgetFamily;
using viewtest::enabledWith;
using viewtest::snapshotWith;
using viewtest::window;

struct UsageRenderCase {
  std::string name;
  std::optional<WidgetSnapshot> snapshot;
  int tintedMetersSmall;   // weekly meters with a visible fill in the small layout
  int tintedMetersMedium;  // weekly and five-hour meters with a visible fill, medium layout
};

std::vector<UsageRenderCase> usageCases() {
  UsageState disabled = enabledWith({window("Weekly", 42)});
  disabled.enabled = false;
  UsageState waiting;
  waiting.enabled = true;
  return {
      {"none", std::nullopt, 0, 0},
      {"partial", snapshotWith(enabledWith({window("5-hour", 35)}), waiting), 0, 1},
      {"disabled", snapshotWith(enabledWith({window("Weekly", 12.4)}), disabled), 1, 1},
      {"full",
       snapshotWith(enabledWith({window("5-hour", 28), window("Weekly", 42)}),
                    enabledWith({window("Session", 61), window("Weekly", 83)})),
       2, 4},
      {"stale",
       snapshotWith(enabledWith({window("5-hour", 5), window("Weekly", 99.6)}, 5400),
                    enabledWith({window("Weekly", -20)}, 3 * 86400 + 7200)),
       1, 2},
  };
}

class UsageRenderTest : public testing::TestWithParam<UsageRenderCase> {
 protected:
  const testing_support::FixedClock fixedClock_{viewtest::testNow};
};

TEST_P(UsageRenderTest, RendersBothFamiliesWithMetersInTheProviderTints) {
  const UsageRenderCase& c = GetParam();
  for (const WidgetFamily family : {WidgetFamily::systemSmall, WidgetFamily::systemMedium}) {
    for (const auto scheme : {ui::ColorScheme::light, ui::ColorScheme::dark}) {
      const ui::Environment env = viewtest::environment(family, {scheme});
      const ui::WidgetLayout widget = viewtest::layOut(
          MonitorWidgetView{MonitorEntry{viewtest::testNow, c.snapshot}, false}.body(env), env,
          render::PangoTextMeasurer::shared());
      const std::string name = "usage-" + std::string(ui::familyName(family)) + "-" +
                               (scheme == ui::ColorScheme::light ? "light" : "dark") + "-" + c.name;
      SCOPED_TRACE(name);
      const auto image = viewtest::PngImage::decode(viewtest::renderAndKeep(widget, name));
      ASSERT_TRUE(image);
      EXPECT_EQ(image->width(), family == WidgetFamily::systemSmall ? 340 : 728);
      EXPECT_EQ(image->height(), 340);
      EXPECT_TRUE(viewtest::legibilityProblems(widget).empty());

      const ui::Palette palette = env.palette();
      const ui::Rect area = viewtest::contentArea(widget);
      int tinted = 0;
      for (const ui::LayoutNode* meter : viewtest::nodesOfKind(widget.root, ui::NodeKind::meter)) {
        const ui::Rect fill = meter->children[1].frame;
        if (fill.width < 2) continue;
        // Codex is the upper row (small) or the leading card (medium), Claude the other.
        const ui::LayoutNode* claudeName = viewtest::nodeWithText(widget.root, "Claude");
        ASSERT_NE(claudeName, nullptr);
        const bool isClaude = family == WidgetFamily::systemSmall
                                  ? fill.y > claudeName->frame.y
                                  : fill.x >= area.x + area.width / 2;
        const ui::Color expected = isClaude ? palette.orange : palette.teal;
        const ui::Color pixel =
            image->pixelAtPoint({fill.x + std::min(fill.width / 2, 20.0), fill.y + 3}, 2);
        EXPECT_TRUE(viewtest::near(pixel, expected)) << pixel.hex() << " vs " << expected.hex();
        ++tinted;
      }
      EXPECT_EQ(tinted,
                family == WidgetFamily::systemSmall ? c.tintedMetersSmall : c.tintedMetersMedium);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(States, UsageRenderTest, testing::ValuesIn(usageCases()),
                         [](const auto& info) { return info.param.name; });

TEST(UsageRenderTintTest, CodexIsTealAndClaudeOrangeOnScreen) {
  const testing_support::FixedClock fixedClock{viewtest::testNow};
  const WidgetSnapshot snapshot =
      snapshotWith(enabledWith({window("Weekly", 0)}), enabledWith({window("Weekly", 0)}));
  for (const WidgetFamily family : {WidgetFamily::systemSmall, WidgetFamily::systemMedium}) {
    const ui::Environment env = viewtest::environment(family);
    const ui::WidgetLayout widget = viewtest::layOut(
        MonitorWidgetView{MonitorEntry{viewtest::testNow, snapshot}, false}.body(env), env,
        render::PangoTextMeasurer::shared());
    const auto image = viewtest::PngImage::decode(viewtest::renderAndKeep(
        widget, "usage-" + std::string(ui::familyName(family)) + "-light-empty-quota"));
    ASSERT_TRUE(image);
    const auto meters = viewtest::nodesOfKind(widget.root, ui::NodeKind::meter);
    ASSERT_EQ(meters.size(), 2u);
    const ui::Rect codex = meters[0]->children[1].frame;
    const ui::Rect claude = meters[1]->children[1].frame;
    EXPECT_TRUE(viewtest::near(image->pixelAtPoint({codex.x + codex.width / 2, codex.y + 3}, 2),
                               env.palette().teal));
    EXPECT_TRUE(viewtest::near(image->pixelAtPoint({claude.x + claude.width / 2, claude.y + 3}, 2),
                               env.palette().orange));
    if (family == WidgetFamily::systemMedium) {
      std::vector<const ui::LayoutNode*> dots;
      for (const ui::LayoutNode* shape : viewtest::nodesOfKind(widget.root, ui::NodeKind::shape)) {
        if (shape->shape == ui::ShapeKind::circle) dots.push_back(shape);
      }
      ASSERT_EQ(dots.size(), 2u);
      const ui::Rect dot = dots[1]->frame;
      EXPECT_TRUE(
          viewtest::near(image->pixelAtPoint({dot.x + dot.width / 2, dot.y + dot.height / 2}, 2),
                         env.palette().orange, 0.06));
    }
  }
}

struct TemperatureRenderCase {
  std::string name;
  std::optional<double> celsius;
  bool enabled;
  std::optional<double> ageSeconds;
};

class TemperatureRenderTest : public testing::TestWithParam<TemperatureRenderCase> {};

TEST_P(TemperatureRenderTest, RendersTheSmallCardInBothSchemes) {
  const TemperatureRenderCase& c = GetParam();
  WidgetSnapshot snapshot;
  snapshot.date = viewtest::testNow;
  snapshot.temperature = c.celsius;
  snapshot.temperatureEnabled = c.enabled;
  if (c.ageSeconds) snapshot.temperatureDate = viewtest::testNow.addingSeconds(-*c.ageSeconds);
  const std::optional<WidgetSnapshot> stored =
      c.name == "none" ? std::nullopt : std::optional(snapshot);
  for (const auto scheme : {ui::ColorScheme::light, ui::ColorScheme::dark}) {
    const ui::Environment env = viewtest::environment(WidgetFamily::systemSmall, {scheme});
    const ui::WidgetLayout widget =
        viewtest::layOut(MonitorWidgetView{MonitorEntry{viewtest::testNow, stored}, true}.body(env),
                         env, render::PangoTextMeasurer::shared());
    const std::string name = "temperature-systemSmall-" +
                             std::string(scheme == ui::ColorScheme::light ? "light" : "dark") +
                             "-" + c.name;
    SCOPED_TRACE(name);
    const auto image = viewtest::PngImage::decode(viewtest::renderAndKeep(widget, name));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width(), 340);
    EXPECT_EQ(image->height(), 340);
    EXPECT_TRUE(viewtest::legibilityProblems(widget).empty());
  }
}

INSTANTIATE_TEST_SUITE_P(States, TemperatureRenderTest,
                         testing::Values(TemperatureRenderCase{"reading", 54.0, true, 120},
                                         TemperatureRenderCase{"stale", 105, true, 7200},
                                         TemperatureRenderCase{"undated", -3, true, std::nullopt},
                                         TemperatureRenderCase{"unavailable", std::nullopt, true,
                                                               0},
                                         TemperatureRenderCase{"disabled", 54, false, 0},
                                         TemperatureRenderCase{"none", std::nullopt, false, 0}),
                         [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace korvo
