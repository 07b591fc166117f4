#include "base/date_text.hpp"

#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <cmath>
#include <ctime>

#include "support/english_in_utc.hpp"
#include "support/scoped_environment.hpp"

namespace korvo {
namespace {

// 2026-11-15T01:45:00Z.
constexpr Date lateNight{816399900};

class DateTextTest : public testing::Test {
 protected:
  void SetUp() override { testing_support::useEnglishInUtc(); }
};

TEST_F(DateTextTest, ShortTimeIsHourMinuteAndDayPeriodWithAPlainSpace) {
  EXPECT_EQ(shortTime(Date{816399840}), "1:44 AM");
  EXPECT_EQ(shortTime(Date{816399840 + 12 * 3600}), "1:44 PM");
}

TEST_F(DateTextTest, ShortTimeFollowsTheDefaultTimeZone) {
  icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("America/New_York"));
  EXPECT_EQ(shortTime(lateNight), "8:45 PM");
}

TEST_F(DateTextTest, ShortTimeFollowsTheDefaultLocale) {
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale::setDefault(icu::Locale("de_DE"), status);
  EXPECT_EQ(shortTime(lateNight), "01:45");
}

TEST_F(DateTextTest, AMomentOnAnotherDayShowsItsDateAsWell) {
  // The calendar day comes from the C library's zone, which TZ sets as it sets ICU's.
  testing_support::ScopedEnvironment zone("TZ", "UTC");
  ::tzset();
  const Date sameDayLater = lateNight.addingSeconds(20 * 3600);
  EXPECT_EQ(shortTimeOrDateTime(sameDayLater, lateNight), "9:45 PM");
  EXPECT_EQ(shortTimeOrDateTime(lateNight, lateNight), "1:45 AM");
  EXPECT_EQ(shortTimeOrDateTime(lateNight.addingSeconds(23 * 3600), lateNight),
            "Nov 16, 2026, 12:45 AM");
  EXPECT_EQ(shortTimeOrDateTime(lateNight.addingSeconds(-2 * 3600), lateNight),
            "Nov 14, 2026, 11:45 PM");
  EXPECT_EQ(shortTimeOrDateTime(lateNight.addingSeconds(10 * 365.0 * 86400), lateNight),
            "Nov 12, 2036, 1:45 AM");
  EXPECT_EQ(shortTimeOrDateTime(Date{816399900 - 365 * 86400}, lateNight), "Nov 15, 2025, 1:45 AM");
}

TEST_F(DateTextTest, AMomentWithinTheYearLeavesTheYearOut) {
  testing_support::ScopedEnvironment zone("TZ", "UTC");
  ::tzset();
  EXPECT_EQ(dateTimeWithinYear(lateNight.addingSeconds(3 * 86400), lateNight), "Nov 18, 1:45 AM");
  EXPECT_EQ(dateTimeWithinYear(lateNight, lateNight), "Nov 15, 1:45 AM");
  EXPECT_EQ(dateTimeWithinYear(lateNight.addingSeconds(60 * 86400), lateNight),
            "Jan 14, 2027, 1:45 AM");
}

TEST_F(DateTextTest, AbbreviatedDateShortTimeIsMediumDateAndShortTime) {
  EXPECT_EQ(abbreviatedDateShortTime(Date{816407100}), "Nov 15, 2026, 3:45 AM");
}

TEST_F(DateTextTest, NonFiniteMomentsHaveNoText) {
  EXPECT_EQ(shortTime(Date{NAN}), "");
  EXPECT_EQ(abbreviatedDateShortTime(Date{INFINITY}), "");
}

struct SpanCase {
  double ageSeconds;
  const char* text;
};

TEST_F(DateTextTest, RelativeSpanUsesTheLargestTwoUnitsInShortWords) {
  const SpanCase cases[] = {
      {0, "0 sec"},
      {0.9, "0 sec"},
      {12.7, "12 sec"},
      {59.99, "59 sec"},
      {60, "1 min"},
      {299, "4 min"},
      {3599, "59 min"},
      {3600, "1 hr"},
      {7200, "2 hr"},
      {7500, "2 hr, 5 min"},
      {86399, "23 hr, 59 min"},
      {86400, "1 day"},
      {2 * 86400 + 3600 * 4 + 59, "2 days, 4 hr"},
      {3 * 86400 + 1799, "3 days"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(relativeSpan(lateNight, lateNight.addingSeconds(c.ageSeconds)), c.text)
        << c.ageSeconds;
  }
}

TEST_F(DateTextTest, RelativeSpanFollowsTheDefaultLocaleWhenItChanges) {
  EXPECT_EQ(relativeSpan(lateNight, lateNight.addingSeconds(50)), "50 sec");
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale::setDefault(icu::Locale("de_DE"), status);
  EXPECT_EQ(relativeSpan(lateNight, lateNight.addingSeconds(50)), "50 Sek.");
  EXPECT_EQ(relativeSpan(lateNight, lateNight.addingSeconds(7500)), "2 Std., 5 Min.");
}

TEST_F(DateTextTest, RelativeSpanOfAFutureMomentShowsTheMagnitude) {
  EXPECT_EQ(relativeSpan(lateNight.addingSeconds(300), lateNight), "5 min");
  EXPECT_EQ(relativeSpan(lateNight.addingSeconds(7500), lateNight), "2 hr, 5 min");
}

TEST_F(DateTextTest, RelativeSpanOfANonFiniteAgeIsEmpty) {
  EXPECT_EQ(relativeSpan(Date{NAN}, lateNight), "");
  EXPECT_EQ(relativeSpan(Date{-INFINITY}, lateNight), "");
}

struct ChangeCase {
  double ageSeconds;
  double nextAgeSeconds;
};

TEST_F(DateTextTest, NextChangeIsTheNextBoundaryOfTheShownUnit) {
  const ChangeCase cases[] = {
      {0, 1},       {12.3, 13},   {59.5, 60},     {60, 120},      {61, 120},        {3599, 3600},
      {3600, 3660}, {7530, 7560}, {86399, 86400}, {86400, 90000}, {90000.5, 93600},
  };
  for (const auto& c : cases) {
    const Date next = nextRelativeSpanChange(lateNight, lateNight.addingSeconds(c.ageSeconds));
    EXPECT_DOUBLE_EQ(next.secondsSince(lateNight), c.nextAgeSeconds) << c.ageSeconds;
  }
}

TEST_F(DateTextTest, TextIsUnchangedBeforeTheNextChangeAndDiffersAtIt) {
  for (double age : {0.0, 5.5, 59.0, 61.0, 3599.5, 3600.0, 7500.0, 86399.0, 200000.0}) {
    const Date now = lateNight.addingSeconds(age);
    const Date next = nextRelativeSpanChange(lateNight, now);
    ASSERT_GT(next, now);
    EXPECT_EQ(relativeSpan(lateNight, next.addingSeconds(-0.0001)), relativeSpan(lateNight, now));
    EXPECT_NE(relativeSpan(lateNight, next), relativeSpan(lateNight, now)) << age;
  }
}

TEST_F(DateTextTest, NextChangeOfAFutureMomentIsWhenTheMagnitudeDropsBelowItsStep) {
  for (double ahead : {30.0, 30.5, 60.0, 61.0, 3600.0, 90000.0}) {
    const Date now = lateNight.addingSeconds(-ahead);
    const Date next = nextRelativeSpanChange(lateNight, now);
    ASSERT_GT(next, now);
    EXPECT_NE(relativeSpan(lateNight, next), relativeSpan(lateNight, now)) << ahead;
    EXPECT_LE(next.secondsSince(now), 3600.001);
  }
}

TEST_F(DateTextTest, ANonFiniteAgeNeverChanges) {
  EXPECT_TRUE(std::isinf(nextRelativeSpanChange(Date{NAN}, lateNight).secondsSinceReferenceDate));
}

}  // namespace
}  // namespace korvo
