#include "base/wake_up.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

// Every wake-up the host asks for lies in the future and within a timer's reach; a moment that no
// clock can reach asks for none, so absurd dates and clocks never make the host spin.
namespace korvo {
namespace {

constexpr double huge = std::numeric_limits<double>::max();
constexpr double infinite = std::numeric_limits<double>::infinity();

class FarLiveTextDate : public testing::TestWithParam<double> {};

TEST_P(FarLiveTextDate, ChangesAfterNowOrNever) {
  const Date now{816'400'000};
  const auto next = nextLiveTextChange({Date{GetParam()}}, now);
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
  EXPECT_EQ(nextLiveTextChange({now.addingSeconds(-300)}, now), std::nullopt);
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
