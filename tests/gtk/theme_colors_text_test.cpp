#include "gtk/theme_colors_text.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace korvo::gtk {
namespace {

using ui::Color;

TEST(ThemeColorsText, ColoursCrossTheHelpersOutputToTheSameDoubles) {
  // Colours a theme computes (mix, shade) are not whole steps of 1/255.
  const std::vector<ThemeColors> cases{
      {Color{246.0 / 255, 245.0 / 255, 244.0 / 255, 1}, Color{0.18, 0.2039, 0.2118, 0.85}},
      {Color{1.0 / 3, std::nextafter(0.5, 1.0), 1e-300, 0}, std::nullopt},
      {std::nullopt, Color::black()},
      {},
  };
  for (const ThemeColors& colors : cases) {
    const std::string output = formatThemeColors(colors);
    SCOPED_TRACE(output);
    EXPECT_EQ(parseThemeColors(output), colors);
  }
}

TEST(ThemeColorsText, TheHelpersOutputIsALineAColour) {
  EXPECT_EQ(formatThemeColors({Color{1, 0.5, 0, 1}, std::nullopt}),
            "background 1p+0 1p-1 0p+0 1p+0\n");
}

TEST(ThemeColorsText, LinesThatDoNotReadAsAColourAreLeftOut) {
  const ThemeColors read = parseThemeColors(
      "(korvo-widgets-desktop:12): Gtk-WARNING **: Theme parsing error\n"
      "background 1p+0 1p-1\n"
      "foreground 0p+0 0p+0 0p+0 1p+0 trailing\n"
      "background x 0 0 1\n");
  EXPECT_EQ(read, ThemeColors{});
  EXPECT_EQ(parseThemeColors("foreground 0p+0 1p+0 0p+0 1p+0"),
            (ThemeColors{std::nullopt, Color{0, 1, 0, 1}}));
  EXPECT_EQ(parseThemeColors(""), ThemeColors{});
}

}  // namespace
}  // namespace korvo::gtk
