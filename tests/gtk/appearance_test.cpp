#include "gtk/appearance.hpp"

#include <gtest/gtest.h>

namespace korvo::gtk {
namespace {

using ui::Color;
using ui::ColorScheme;

TEST(PortalColorScheme, OnePrefersDarkTwoPrefersLightOthersSayNothing) {
  EXPECT_EQ(schemeFromPortal(1), ColorScheme::dark);
  EXPECT_EQ(schemeFromPortal(2), ColorScheme::light);
  EXPECT_EQ(schemeFromPortal(0), std::nullopt);
  EXPECT_EQ(schemeFromPortal(3), std::nullopt);
}

struct SchemeCase {
  const char* name;
  std::optional<ColorScheme> fixed;
  std::optional<ColorScheme> portal;
  bool gtkPrefersDark;
  ColorScheme expected;
};

class ResolveScheme : public testing::TestWithParam<SchemeCase> {};

TEST_P(ResolveScheme, FixedThenPortalThenGtk) {
  EXPECT_EQ(resolveScheme(GetParam().fixed, GetParam().portal, GetParam().gtkPrefersDark),
            GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ResolveScheme,
    testing::Values(
        SchemeCase{"NothingSaidIsLight", std::nullopt, std::nullopt, false, ColorScheme::light},
        SchemeCase{"GtkPrefersDark", std::nullopt, std::nullopt, true, ColorScheme::dark},
        SchemeCase{"PortalLightBeatsGtkDark", std::nullopt, ColorScheme::light, true,
                   ColorScheme::light},
        SchemeCase{"PortalDark", std::nullopt, ColorScheme::dark, false, ColorScheme::dark},
        SchemeCase{"FixedLightBeatsAll", ColorScheme::light, ColorScheme::dark, true,
                   ColorScheme::light},
        SchemeCase{"FixedDark", ColorScheme::dark, std::nullopt, false, ColorScheme::dark}),
    [](const auto& info) { return info.param.name; });

TEST(AgreeingTheme, ALightThemeFeedsALightCard) {
  const Color background{0.96, 0.96, 0.96, 1};
  const Color foreground{0.18, 0.2, 0.21, 1};
  EXPECT_EQ(agreeingTheme(background, foreground, ColorScheme::light),
            (ui::Theme{foreground, background}));
}

TEST(AgreeingTheme, ADarkThemeFeedsADarkCard) {
  const Color background{0.21, 0.21, 0.21, 1};
  const Color foreground{0.93, 0.93, 0.93, 1};
  EXPECT_EQ(agreeingTheme(background, foreground, ColorScheme::dark),
            (ui::Theme{foreground, background}));
}

TEST(AgreeingTheme, AThemeOfTheOtherLightnessIsDropped) {
  EXPECT_EQ(agreeingTheme(Color{0.96, 0.96, 0.96, 1}, Color::black(), ColorScheme::dark),
            ui::Theme{});
  EXPECT_EQ(agreeingTheme(Color{0.1, 0.1, 0.1, 1}, Color::white(), ColorScheme::light),
            ui::Theme{});
}

TEST(AgreeingTheme, NoOrTranslucentBackgroundMeansNoTheme) {
  EXPECT_EQ(agreeingTheme(std::nullopt, Color::black(), ColorScheme::light), ui::Theme{});
  EXPECT_EQ(agreeingTheme(Color{1, 1, 1, 0.5}, Color::black(), ColorScheme::light), ui::Theme{});
}

}  // namespace
}  // namespace korvo::gtk
