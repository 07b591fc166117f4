#include "base/wake_up.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

// Every wake-up the host asks for lies in the future and within a timer's reach; a moment that no
// clock can reach asks for none, so absurd dates and clocks never make the host spin.
namespace korvo {
namespace {

constexpr double huge = std::numeric_limits<double>::max();
constexpr double infinite = std::numeric_limits<double>::infinity();

class FarLiveTextDate : public testing::TestWithParam<double> {};

TEST_P(FarLiveTextDate, ChangesAfterNowOrNever) {
  const Date now{816'400'000};
  const auto next = nextLiveTextWake({Date{GetParam()}}, now);
  if (next) {
    EXPECT_GT(*next, now) << "a wake-up at or before now fires at once, again and again";
    EXPECT_TRUE(realMillisecondsUntil(*next, now, 1)) << "the change can never be waited for";
  }
}

INSTANTIATE_TEST_SUITE_P(Dates, FarLiveTextDate,
                         testing::Values(1e22, -1e22, 1e25, -1e25, 3.3e25, -7.7e27, 1e30, -1e30,
                                         1e300, -1e300, huge, -huge));

TEST(LiveTextChange, AtAClockShiftedBeyondResolutionIsNever) {
  const Date now{1e300};
  EXPECT_EQ(nextLiveTextWake({now.addingSeconds(-300)}, now), std::nullopt);
}

// Three cards counting minutes from moments spread over a minute, followed for an hour: the host
// wakes at most twice a minute, and every text advances at most one beat after its change.
TEST(LiveTextWake, CardsCountingMinutesShareAtMostTwoWakeUpsAMinute) {
  const Date start{816'400'017.25};
  const std::vector<Date> dates{start.addingSeconds(-200.5), start.addingSeconds(-131),
                                start.addingSeconds(-95.75)};
  int wakes = 0;
  Date now = start;
  while (now.secondsSince(start) < 3600) {
    const auto wake = nextLiveTextWake(dates, now);
    ASSERT_TRUE(wake);
    // The earliest change after `now` among the texts: shown at this wake, at most a beat late.
    double change = 1e300;
    for (const auto date : dates) {
      const double age = now.secondsSince(date);
      change = std::min(change, date.secondsSinceReferenceDate + (std::floor(age / 60) + 1) * 60);
    }
    EXPECT_GE(wake->secondsSinceReferenceDate, change);
    EXPECT_LT(wake->secondsSinceReferenceDate, change + liveTextBeatSeconds);
    now = *wake;
    ++wakes;
  }
  EXPECT_LE(wakes, 120);
  // Changes at three phases a minute, gathered into the beats on the half minute.
  EXPECT_GE(wakes, 110);
}

TEST(LiveTextWake, ATextCountingSecondsAdvancesEverySecond) {
  const Date now{816'400'000.5};
  const auto wake = nextLiveTextWake({now.addingSeconds(-12.25), now.addingSeconds(-200)}, now);
  ASSERT_TRUE(wake);
  EXPECT_DOUBLE_EQ(wake->secondsSinceReferenceDate, 816'400'001.25);
}

TEST(LiveTextWake, ACountdownInMinutesWaitsForTheBeatAfterItsChange) {
  const Date now{816'400'010};
  // "in 4 min" turns "in 3 min" just after 240 s remain, at 816'400'060.001; the next beat
  // is on the half minute after it.
  const auto wake = nextLiveTextWake({now.addingSeconds(290)}, now);
  ASSERT_TRUE(wake);
  EXPECT_DOUBLE_EQ(wake->secondsSinceReferenceDate, 816'400'080);
}

struct UnreachableCase {
  const char* name;
  Date due;
  Date now;
  double rate;
};

class UnreachableWakeUp : public testing::TestWithParam<UnreachableCase> {};

TEST_P(UnreachableWakeUp, IsNotScheduled) {
  EXPECT_EQ(realMillisecondsUntil(GetParam().due, GetParam().now, GetParam().rate), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Table, UnreachableWakeUp,
    testing::Values(
        UnreachableCase{"AlreadyDue", Date{1000}, Date{1000}, 1},
        UnreachableCase{"Overdue", Date{995}, Date{1000}, 1},
        // A reload 900 s after a clock shifted by 1e300 s is the same double as the clock.
        UnreachableCase{"ReloadLostInTheOffset", Date{1e300}.addingSeconds(900), Date{1e300}, 1},
        UnreachableCase{"InfiniteDue", Date{infinite}, Date{1000}, 1},
        UnreachableCase{"NaNDue", Date{std::nan("")}, Date{1000}, 1},
        UnreachableCase{"ClockRanToInfinity", Date{infinite}, Date{infinite}, 1e308},
        UnreachableCase{"ClockBeyondInfinity", Date{1000}, Date{infinite}, 1}),
    [](const auto& info) { return info.param.name; });

TEST(WakeUp, AtAnAbsurdRateWaitsAtLeastTheMinimum) {
  const Date now{816'400'000};
  const auto wait = realMillisecondsUntil(now.addingSeconds(900), now, 1e308);
  ASSERT_TRUE(wait);
  EXPECT_GE(*wait, minimumWakeMilliseconds);
}

TEST(WakeUp, AFarDueWaitsAtMostWhatATimerHolds) {
  const Date now{816'400'000};
  EXPECT_EQ(realMillisecondsUntil(Date{huge}, now, 1e-300),
            std::numeric_limits<std::uint32_t>::max());
}

}  // namespace
}  // namespace korvo
