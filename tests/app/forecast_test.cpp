#include "app/forecast.hpp"

#include <gtest/gtest.h>

#include "shared/moment_text.hpp"

namespace korvo::forecast {
namespace {

const Date start = *parseIsoMoment("2026-11-25T10:00:00Z");
const Date reset = *parseIsoMoment("2026-11-25T15:00:00Z");

// Readings every `stepMinutes` from `start`, of the used percentages given, naming `resetsAt`.
std::vector<HistoryRow> series(const std::vector<double>& used, double stepMinutes,
                               std::optional<Date> resetsAt = reset) {
  std::vector<HistoryRow> rows;
  for (std::size_t index = 0; index < used.size(); ++index) {
    rows.push_back({start.addingSeconds(static_cast<double>(index) * stepMinutes * 60),
                    "codex.5-hour", used[index], resetsAt});
  }
  return rows;
}

Date after(const std::vector<HistoryRow>& rows) {
  return rows.back().time;
}

TEST(ForecastTest, ASteadyPaceThatOutrunsTheResetSaysWhenItRunsOut) {
  // 20 points an hour, at 50 % by 11:00: the other 50 take two and a half hours, 13:30, before
  // the reset at 15:00.
  const auto rows = series({30, 35, 40, 45, 50}, 15);
  const UsageWindow window{"5-hour", 50, reset};
  const auto found = forecast(rows, window, after(rows));
  ASSERT_TRUE(found);
  EXPECT_EQ(found->exhaustsAt, *parseIsoMoment("2026-11-25T13:30:00Z"));
  EXPECT_FALSE(found->usedAtReset);
}

TEST(ForecastTest, ASlowPaceSaysWhatIsUsedAtTheReset) {
  const auto rows = series({40, 41, 42, 43, 44}, 15);  // 4 points an hour
  const UsageWindow window{"5-hour", 44, reset};
  const auto found = forecast(rows, window, after(rows));
  ASSERT_TRUE(found);
  EXPECT_FALSE(found->exhaustsAt);
  ASSERT_TRUE(found->usedAtReset);
  EXPECT_NEAR(*found->usedAtReset, 44 + 4 * 4, 1e-9);  // four hours to 15:00
}

TEST(ForecastTest, ABurstyHourIsTakenAsItsAveragePace) {
  // Nothing, a burst of 12 points, nothing: 12 points over the hour.
  const auto rows = series({30, 30, 30, 42, 42}, 15);
  const UsageWindow window{"5-hour", 42, reset};
  const auto found = forecast(rows, window, after(rows));
  ASSERT_TRUE(found);
  ASSERT_TRUE(found->usedAtReset);
  EXPECT_NEAR(*found->usedAtReset, 42 + 12 * 4, 1e-9);
}

TEST(ForecastTest, OnlyTheLastHourCounts) {
  // A fast first hour, then a slow one: the slow one is the pace.
  const auto rows = series({0, 20, 40, 42, 44}, 30);
  const UsageWindow window{"5-hour", 44, reset};
  const auto found = forecast(rows, window, after(rows));
  ASSERT_TRUE(found && found->usedAtReset);
  EXPECT_NEAR(*found->usedAtReset, 44 + 4 * 3, 1e-9);  // 4 an hour, three hours to 15:00
}

TEST(ForecastTest, AnIdleStretchASingleReadingAndACloseTwoGiveNone) {
  const auto idle = series({40, 40, 40, 40}, 15);
  EXPECT_FALSE(forecast(idle, {"5-hour", 40, reset}, after(idle)));
  const auto one = series({40}, 15);
  EXPECT_FALSE(forecast(one, {"5-hour", 40, reset}, after(one)));
  const auto close = series({40, 45}, 2);
  EXPECT_FALSE(forecast(close, {"5-hour", 45, reset}, after(close)));
  EXPECT_FALSE(forecast({}, {"5-hour", 45, reset}, start));
}

TEST(ForecastTest, AResetInTheMiddleStartsANewPeriod) {
  // 80 % before the reset, then the new period rises 2 points each quarter hour.
  auto rows = series({70, 80}, 15, start.addingSeconds(1800));
  const Date next = reset.addingSeconds(5 * 3600);
  auto after = series({0, 2, 4, 6}, 15, next);
  for (auto& row : after) row.time = row.time.addingSeconds(3600);
  rows.insert(rows.end(), after.begin(), after.end());
  const UsageWindow window{"5-hour", 6, next};
  const auto found = forecast(rows, window, rows.back().time);
  ASSERT_TRUE(found && found->usedAtReset);
  // 8 points an hour from 11:45 to the next reset at 20:00 (8.25 hours).
  EXPECT_NEAR(*found->usedAtReset, 6 + 8 * 8.25, 1e-9);

  // A fall of the figure starts a period too, when the reset is not given.
  const auto fallen = series({60, 70, 5, 10, 15}, 15, std::nullopt);
  const auto fromFall = forecast(fallen, {"5-hour", 15, std::nullopt}, fallen.back().time);
  ASSERT_TRUE(fromFall && fromFall->exhaustsAt);
  // 20 points an hour from 15 %: 85 points take 4.25 hours.
  EXPECT_EQ(*fromFall->exhaustsAt, fallen.back().time.addingSeconds(4.25 * 3600));
}

TEST(ForecastTest, AWindowAlreadySpentRunsOutNow) {
  const auto rows = series({90, 95, 100}, 15);
  const auto found = forecast(rows, {"5-hour", 100, reset}, after(rows));
  ASSERT_TRUE(found && found->exhaustsAt);
  EXPECT_EQ(*found->exhaustsAt, after(rows));
}

}  // namespace
}  // namespace korvo::forecast
