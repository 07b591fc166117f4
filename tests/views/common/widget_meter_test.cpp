#include "views/common/widget_meter.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/ui/fake_text_measurer.hpp"
#include "ui/widget_layout.hpp"

namespace korvo {
namespace {

using ui::Color;

const Color red = *Color::fromHex("#FF3B30");

// The meter alone across a 170-point card with no margins, on black (accented: on nothing, since
// accented rendering would whiten the card too).
ui::WidgetLayout meterCard(const WidgetMeter& meter, ui::Environment environment,
                           double scale = 1) {
  ui::testing::FakeTextMeasurer measurer;
  environment.hostSuppliesContainerBackground = false;
  const ui::View view =
      ui::vstack(ui::HorizontalAlignment::leading, 0, {meter.body(environment), ui::spacer()})
          .background(environment.renderingMode == ui::RenderingMode::accented
                          ? ui::View()
                          : ui::colorFill(Color::black()));
  return ui::layoutWidget("test", view, environment, measurer, scale);
}

const ui::LayoutNode& meterNode(const ui::WidgetLayout& widget) {
  return widget.root.children[0].children[1].children[0];
}

struct FillCase {
  double fraction;
  double fillWidth;
};

TEST(WidgetMeter, FillWidthIsTheClampedFractionOfTheFullWidth) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  for (const FillCase& c :
       {FillCase{0.25, 42.5}, FillCase{1.7, 170}, FillCase{-0.2, 0}, FillCase{nan, 0},
        FillCase{inf, 0}, FillCase{-inf, 0}, FillCase{1, 170}, FillCase{0, 0}}) {
    const ui::WidgetLayout widget = meterCard({.fraction = c.fraction}, {}, 2);
    const ui::LayoutNode& meter = meterNode(widget);
    ASSERT_EQ(meter.kind, ui::NodeKind::meter);
    EXPECT_EQ(meter.frame, (ui::Rect{0, 0, 170, 6}));
    ASSERT_EQ(meter.children.size(), 2u) << c.fraction;
    EXPECT_EQ(meter.children[0].frame, (ui::Rect{0, 0, 170, 6}));
    EXPECT_EQ(meter.children[1].frame, (ui::Rect{0, 0, c.fillWidth, 6})) << c.fraction;
  }
}

TEST(WidgetMeter, FractionIsKeptAsGiven) {
  EXPECT_EQ(meterNode(meterCard({.fraction = 1.7}, {})).fraction, 1.7);
  EXPECT_TRUE(std::isnan(*meterNode(meterCard({.fraction = std::nan("")}, {})).fraction));
}

TEST(WidgetMeter, FullColourTrackIsPrimaryAtNinePercentAndFillTheTint) {
  const ui::LayoutNode meter = meterNode(meterCard({.fraction = 0.5, .tint = red}, {}));
  EXPECT_EQ(meter.children[0].shape, ui::ShapeKind::capsule);
  EXPECT_EQ(meter.children[0].color, Color::black(0.85).opacity(0.09));
  EXPECT_EQ(meter.children[1].shape, ui::ShapeKind::capsule);
  EXPECT_EQ(meter.children[1].color, red);
  EXPECT_TRUE(meter.children[1].accentable);
  EXPECT_FALSE(meter.children[0].accentable);
}

TEST(WidgetMeter, DefaultTintIsTealOfTheScheme) {
  EXPECT_EQ(meterNode(meterCard({.fraction = 0.5}, {})).children[1].color,
            Color::fromHex("#59ADC4"));
  EXPECT_EQ(meterNode(meterCard({.fraction = 0.5}, {.colorScheme = ui::ColorScheme::dark}))
                .children[1]
                .color,
            Color::fromHex("#6AC4DC"));
}

TEST(WidgetMeter, AccentedTrackIsWhiteAtTwentyTwoPercentAndFillWhiteWhateverTheTint) {
  const ui::WidgetLayout widget =
      meterCard({.fraction = 0.5, .tint = red}, {.renderingMode = ui::RenderingMode::accented});
  const ui::LayoutNode& meter = meterNode(widget);
  EXPECT_EQ(meter.children[0].color, Color::white(0.22));
  EXPECT_EQ(meter.children[1].color, Color::white());
  EXPECT_TRUE(meter.children[1].accentable);
}

}  // namespace
}  // namespace korvo
