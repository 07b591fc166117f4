#include "base/c_format.hpp"

#include <gtest/gtest.h>

#include <clocale>

namespace korvo {
namespace {

TEST(CFormatTest, RoundsExactHalvesToEven) {
  EXPECT_EQ(cFormat("%.0f", 72.5), "72");
  EXPECT_EQ(cFormat("%.0f", 73.5), "74");
  EXPECT_EQ(cFormat("%.0f%%", 52.45), "52%");
}

TEST(CFormatTest, IgnoresTheProcessLocale) {
  // A German locale writes a decimal comma; the widgets always write a point.
  ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr) << "install-deps installs locales-all";
  ASSERT_EQ(std::string(localeconv()->decimal_point), ",");
  EXPECT_EQ(cFormat("%.1f GB", 7.25), "7.2 GB");
  EXPECT_EQ(cFormat("%.1f/%.0f GB", 9.0, 16.0), "9.0/16 GB");
  std::setlocale(LC_ALL, "C");
}

TEST(CFormatTest, WholeFiguresPastAMillionTakeThreeDigits) {
  EXPECT_EQ(wholeFigure(72.4), "72");
  EXPECT_EQ(wholeFigure(-3), "-3");
  EXPECT_EQ(wholeFigure(999999.4), "999999");
  EXPECT_EQ(wholeFigure(1e6), "1e+06");
  EXPECT_EQ(wholeFigure(-1234567), "-1.23e+06");
  EXPECT_EQ(wholeFigure(1e300), "1e+300");
  EXPECT_EQ(wholeFigure(-1e300), "-1e+300");
}

TEST(CFormatTest, LongTextIsNotCut) {
  const std::string title(500, 'x');
  EXPECT_EQ(cFormat("%s · %.0f%% left", title.c_str(), 72.0), title + " · 72% left");
}

}  // namespace
}  // namespace korvo
