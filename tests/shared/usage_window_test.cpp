#include "shared/usage_window.hpp"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

#include "support/english_in_utc.hpp"

namespace korvo {
namespace {

constexpr Date now{816399900};

UsageWindow fiveHour(double usedPercent) {
  return {"5-hour", usedPercent, std::nullopt};
}

UsageWindow resettingIn(double seconds) {
  return {"5-hour", 0, now.addingSeconds(seconds)};
}

TEST(UsageWindowTest, RemainingSummaryIsHundredMinusUsedClampedBelowAtZero) {
  const struct {
    double used;
    const char* text;
  } cases[] = {
      {28, "5-hour · 72% left"},   {120, "5-hour · 0% left"},   {-10, "5-hour · 110% left"},
      {100.4, "5-hour · 0% left"}, {27.5, "5-hour · 72% left"}, {26.5, "5-hour · 74% left"},
      {100, "5-hour · 0% left"},   {0, "5-hour · 100% left"},
  };
  for (const auto& c : cases) EXPECT_EQ(fiveHour(c.used).remainingSummary(), c.text) << c.used;
}

TEST(UsageWindowTest, RemainingSummaryPastAMillionIsShownInThreeDigits) {
  const struct {
    double used;
    const char* text;
  } cases[] = {
      {1e300, "5-hour · 0% left"},
      {-1e300, "5-hour · 1e+300% left"},
      {-999899.4, "5-hour · 999999% left"},
      {-999900, "5-hour · 1e+06% left"},
      {-123456789, "5-hour · 1.23e+08% left"},
  };
  for (const auto& c : cases) EXPECT_EQ(fiveHour(c.used).remainingSummary(), c.text) << c.used;
}

TEST(UsageWindowTest, RemainingSummaryOfANonNumberIsZero) {
  EXPECT_EQ(fiveHour(std::numeric_limits<double>::quiet_NaN()).remainingSummary(),
            "5-hour · 0% left");
}

TEST(UsageWindowTest, RemainingSummaryIgnoresTheProcessLocale) {
  ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr)
      << "no de_DE.UTF-8 locale (scripts/install-deps installs locales-all)";
  EXPECT_EQ(fiveHour(28).remainingSummary(), "5-hour · 72% left");
  std::setlocale(LC_ALL, "C");
}

TEST(UsageWindowTest, ResetTextWithoutAMomentIsUnavailable) {
  EXPECT_EQ(fiveHour(28).resetText(), "Reset time unavailable");
}

TEST(UsageWindowTest, ResetTextIsMediumDateAndShortTimeInTheUsersZone) {
  testing_support::useEnglishInUtc();
  EXPECT_EQ((UsageWindow{"5-hour", 28, Date{816407100}}).resetText(),
            "Resets Nov 15, 2026, 3:45 AM");
}

TEST(UsageWindowTest, ResetCountdownSteps) {
  const struct {
    double seconds;
    const char* text;
  } cases[] = {
      {30, "Resets in 1m"},
      {0.001, "Resets in 1m"},
      {60, "Resets in 1m"},
      {61, "Resets in 2m"},
      {420, "Resets in 7m"},
      {3540, "Resets in 59m"},
      {3600, "Resets in 1h 0m"},
      {3601, "Resets in 1h 1m"},
      {7500, "Resets in 2h 5m"},
      {86340, "Resets in 23h 59m"},
      {86400, "Resets in 1d 0h"},
      {90000, "Resets in 1d 1h"},
      {3 * 86400 + 4 * 3600 + 59 * 60, "Resets in 3d 4h"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(resettingIn(c.seconds).resetCountdown(now), c.text) << c.seconds;
  }
}

TEST(UsageWindowTest, ResetCountdownAtOrPastTheMomentIsDue) {
  EXPECT_EQ(resettingIn(0).resetCountdown(now), "Reset due · refresh");
  EXPECT_EQ(resettingIn(-3600).resetCountdown(now), "Reset due · refresh");
}

TEST(UsageWindowTest, ResetCountdownIsCappedAtAHundredYears) {
  const double tenThousandYears = 10000.0 * 365 * 86400;
  EXPECT_EQ(resettingIn(tenThousandYears).resetCountdown(now), "Resets in 36500d 0h");
}

TEST(UsageWindowTest, ResetCountdownWithoutAFiniteSpanIsUnavailable) {
  EXPECT_EQ(fiveHour(28).resetCountdown(now), "Reset time unavailable");
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ((UsageWindow{"5-hour", 28, Date{infinity}}).resetCountdown(now),
            "Reset time unavailable");
  EXPECT_EQ((UsageWindow{"5-hour", 28, Date{std::nan("")}}).resetCountdown(now),
            "Reset time unavailable");
  EXPECT_EQ(resettingIn(60).resetCountdown(Date{-infinity}), "Reset time unavailable");
}

}  // namespace
}  // namespace korvo
