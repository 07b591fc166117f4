#include "views/common/widget_backdrop.hpp"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace korvo
