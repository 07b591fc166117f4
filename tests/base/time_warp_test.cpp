#include <gtest/gtest.h>

#include <limits>

#include "base/wake_up.hpp"

namespace korvo {
namespace {

struct WarpCase {
  const char* name;
  const char* offset;
  const char* rate;
  TimeWarp warp;
  std::optional<std::string> error;
};

class TimeWarpEnvironment : public testing::TestWithParam<WarpCase> {};

TEST_P(TimeWarpEnvironment, ReadsOffsetAndRate) {
  const auto result = timeWarpFromEnvironment(GetParam().offset, GetParam().rate);
  EXPECT_EQ(result.error, GetParam().error);
  if (!GetParam().error) {
    EXPECT_EQ(result.warp, GetParam().warp);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, TimeWarpEnvironment,
    testing::Values(
        WarpCase{"Unset", nullptr, nullptr, {0, 1}, std::nullopt},
        WarpCase{"Empty", "", "", {0, 1}, std::nullopt},
        WarpCase{"Both", "-3600", "300", {-3600, 300}, std::nullopt},
        WarpCase{"Fraction", "0.5", "0.25", {0.5, 0.25}, std::nullopt},
        WarpCase{
            "ZeroRate", nullptr, "0", {}, "KORVO_TIME_RATE: expected a number above 0, got \"0\""},
        WarpCase{"NegativeRate",
                 nullptr,
                 "-2",
                 {},
                 "KORVO_TIME_RATE: expected a number above 0, got \"-2\""},
        WarpCase{"WordRate",
                 nullptr,
                 "fast",
                 {},
                 "KORVO_TIME_RATE: expected a number above 0, got \"fast\""},
        WarpCase{"TrailingJunk",
                 "10s",
                 nullptr,
                 {},
                 "KORVO_TIME_OFFSET: expected a number of seconds, got \"10s\""},
        WarpCase{"InfiniteOffset",
                 "inf",
                 nullptr,
                 {},
                 "KORVO_TIME_OFFSET: expected a number of seconds, got \"inf\""}),
    [](const auto& info) { return info.param.name; });

struct DelayCase {
  const char* name;
  double secondsAhead;
  double rate;
  std::uint32_t milliseconds;
};

class RealDelay : public testing::TestWithParam<DelayCase> {};

TEST_P(RealDelay, IsTheClockDistanceOverTheRateRoundedUp) {
  const Date now{816'400'000};
  EXPECT_EQ(realMillisecondsUntil(now.addingSeconds(GetParam().secondsAhead), now, GetParam().rate),
            GetParam().milliseconds);
}

INSTANTIATE_TEST_SUITE_P(Table, RealDelay,
                         testing::Values(DelayCase{"MonitorReload", 900, 1, 900'000},
                                         DelayCase{"MemoryReload", 1800, 1, 1'800'000},
                                         DelayCase{"MonitorReloadAtRate300", 900, 300, 3'000},
                                         DelayCase{"ShortWaitsLastTheMinimum", 0.0001, 1,
                                                   minimumWakeMilliseconds},
                                         DelayCase{"SlowClock", 60, 0.5, 120'000},
                                         DelayCase{"BeyondATimersReach", 1e10, 1,
                                                   std::numeric_limits<std::uint32_t>::max()}),
                         [](const auto& info) { return info.param.name; });

TEST(NextLiveTextWake, NothingWithoutLiveTexts) {
  EXPECT_EQ(nextLiveTextWake({}, Date{1000}), std::nullopt);
}

TEST(NextLiveTextWake, PastTheFirstMinuteOnTheBeatAfterTheChange) {
  const Date data{1000};
  const auto next = nextLiveTextWake({data}, data.addingSeconds(4 * 60 + 10));
  ASSERT_TRUE(next);
  // "4 min" turns "5 min" at 1300; the beat after it is at 1320.
  EXPECT_EQ(*next, Date{1320});
}

TEST(NextLiveTextWake, TheEarliestOfSeveralTexts) {
  const Date now{10'000};
  const auto next = nextLiveTextWake({now.addingSeconds(-600.5), now.addingSeconds(-45)}, now);
  ASSERT_TRUE(next);
  // "45 sec" turns "46 sec" a second from now, long before the other's beat.
  EXPECT_EQ(*next, now.addingSeconds(1));
}

TEST(NextLiveTextWake, ATextThatNeverChangesIsSkipped) {
  const Date now{10'000};
  const auto next = nextLiveTextWake(
      {Date{std::numeric_limits<double>::infinity()}, now.addingSeconds(-90)}, now);
  ASSERT_TRUE(next);
  EXPECT_EQ(*next, now.addingSeconds(50));
}

}  // namespace
}  // namespace korvo
