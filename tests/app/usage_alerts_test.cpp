#include "app/usage_alerts.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/alert_state_file.hpp"
#include "support/english_in_utc.hpp"

namespace korvo {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using usage_alerts::Alert;
using usage_alerts::Memory;
using usage_alerts::Readings;

const Date now = Date::fromUnixSeconds(1'800'000'000);
const Date reset = now.addingSeconds(3 * 24 * 3600.0);

Readings weekly(double used, std::optional<Date> resetsAt = reset,
                std::optional<forecast::Forecast> found = std::nullopt) {
  return {
      {{"Codex", "codex.Weekly", UsageWindow{"Weekly", used, resetsAt}, found}}, std::nullopt, now};
}

std::vector<std::string> summaries(const std::vector<Alert>& alerts) {
  std::vector<std::string> texts;
  for (const Alert& alert : alerts) texts.push_back(alert.summary);
  return texts;
}

class UsageAlertsTest : public testing::Test {
 protected:
  void SetUp() override { testing_support::useEnglishInUtc(); }
  Settings settings;
  Memory memory;
};

TEST_F(UsageAlertsTest, EachThresholdSpeaksOnceAsTheWindowRises) {
  EXPECT_TRUE(usage_alerts::check(weekly(79), settings, memory).empty());
  const auto first = usage_alerts::check(weekly(80), settings, memory);
  EXPECT_THAT(summaries(first), ElementsAre("Codex weekly: 80 % used"));
  EXPECT_THAT(first.front().body, HasSubstr("Past your 80 % alert."));
  EXPECT_EQ(first.front().tab, DashboardTab::ai);
  EXPECT_TRUE(usage_alerts::check(weekly(90), settings, memory).empty());
  EXPECT_THAT(summaries(usage_alerts::check(weekly(95.4), settings, memory)),
              ElementsAre("Codex weekly: 95 % used"));
  EXPECT_TRUE(usage_alerts::check(weekly(99), settings, memory).empty());
}

TEST_F(UsageAlertsTest, ThresholdsCrossedTogetherGiveOneNoticeForTheHighest) {
  const auto alerts = usage_alerts::check(weekly(97), settings, memory);
  ASSERT_EQ(alerts.size(), 1U);
  EXPECT_THAT(alerts.front().body, HasSubstr("Past your 95 % alert."));
  EXPECT_TRUE(usage_alerts::check(weekly(97), settings, memory).empty());
}

TEST_F(UsageAlertsTest, ANewPeriodSpeaksAgainButAWanderingResetDoesNot) {
  ASSERT_EQ(usage_alerts::check(weekly(85), settings, memory).size(), 1U);
  EXPECT_TRUE(usage_alerts::check(weekly(86, reset.addingSeconds(30)), settings, memory).empty());
  const Date next = reset.addingSeconds(7 * 24 * 3600.0);
  EXPECT_THAT(summaries(usage_alerts::check(weekly(81, next), settings, memory)),
              ElementsAre("Codex weekly: 81 % used"));
}

TEST_F(UsageAlertsTest, WithoutAResetAFallBelowTheThresholdStartsANewPeriod) {
  ASSERT_EQ(usage_alerts::check(weekly(85, std::nullopt), settings, memory).size(), 1U);
  EXPECT_TRUE(usage_alerts::check(weekly(88, std::nullopt), settings, memory).empty());
  EXPECT_TRUE(usage_alerts::check(weekly(10, std::nullopt), settings, memory).empty());
  EXPECT_EQ(usage_alerts::check(weekly(82, std::nullopt), settings, memory).size(), 1U);
}

TEST_F(UsageAlertsTest, NoThresholdsNoUsageNotices) {
  settings.alertPercents.clear();
  const forecast::Forecast soon{now.addingSeconds(3600), std::nullopt};
  EXPECT_TRUE(usage_alerts::check(weekly(99, reset, soon), settings, memory).empty());
}

TEST_F(UsageAlertsTest, RunningOutMoreThanAnHourBeforeTheResetSpeaksOncePerPeriod) {
  const forecast::Forecast early{reset.addingSeconds(-2 * 3600.0), std::nullopt};
  const auto alerts = usage_alerts::check(weekly(50, reset, early), settings, memory);
  ASSERT_THAT(summaries(alerts), ElementsAre("Codex weekly runs out before its reset"));
  EXPECT_THAT(alerts.front().body, HasSubstr("2 hr before the reset."));
  EXPECT_TRUE(usage_alerts::check(weekly(51, reset, early), settings, memory).empty());

  Memory fresh;
  const forecast::Forecast close{reset.addingSeconds(-3000), std::nullopt};
  EXPECT_TRUE(usage_alerts::check(weekly(50, reset, close), settings, fresh).empty());
  const forecast::Forecast atReset{std::nullopt, 90.0};
  EXPECT_TRUE(usage_alerts::check(weekly(50, reset, atReset), settings, fresh).empty());
}

TEST_F(UsageAlertsTest, TheTemperatureSpeaksWhenItHeatsPastTheLineAndAgainOnlyAfterCooling) {
  Readings readings{{}, 96.0, now};
  const auto alerts = usage_alerts::check(readings, settings, memory);
  ASSERT_THAT(summaries(alerts), ElementsAre("CPU at 96°C"));
  EXPECT_EQ(alerts.front().body, "Above the 95°C you set for an alert.");
  EXPECT_EQ(alerts.front().tab, DashboardTab::memory);
  EXPECT_TRUE(usage_alerts::check(readings, settings, memory).empty());
  readings.celsius = 93;
  EXPECT_TRUE(usage_alerts::check(readings, settings, memory).empty());
  readings.celsius = 97;
  EXPECT_TRUE(usage_alerts::check(readings, settings, memory).empty()) << "never cooled";
  readings.celsius = 89;
  EXPECT_TRUE(usage_alerts::check(readings, settings, memory).empty());
  readings.celsius = 96;
  EXPECT_EQ(usage_alerts::check(readings, settings, memory).size(), 1U);
}

TEST_F(UsageAlertsTest, TheTemperatureNoticeWritesTheUsersUnitAndZeroTurnsItOff) {
  settings.temperatureUnit = TemperatureUnit::fahrenheit;
  EXPECT_THAT(summaries(usage_alerts::check({{}, 100.0, now}, settings, memory)),
              ElementsAre("CPU at 212°F"));
  settings.temperatureAlert = 0;
  Memory fresh;
  EXPECT_TRUE(usage_alerts::check({{}, 140.0, now}, settings, fresh).empty());
}

TEST_F(UsageAlertsTest, EndedPeriodsAreForgotten) {
  ASSERT_EQ(usage_alerts::check(weekly(85), settings, memory).size(), 1U);
  ASSERT_EQ(memory.given.size(), 1U);
  usage_alerts::check({{}, std::nullopt, reset.addingSeconds(3600)}, settings, memory);
  EXPECT_TRUE(memory.given.empty());
}

TEST(AlertStateFileTest, TheDocumentReadsBackAndABadOneNamesItsFault) {
  const Memory memory{{{"codex.Weekly", reset, 80}, {"claude.5-hour", std::nullopt, 0}}, true};
  const auto read = alert_state_file::parse(alert_state_file::document(memory));
  ASSERT_TRUE(std::holds_alternative<Memory>(read));
  EXPECT_EQ(std::get<Memory>(read), memory);
  const auto bad =
      alert_state_file::parse(R"({"given":[{"metric":"codex.Weekly","percent":"x"}]})");
  ASSERT_TRUE(std::holds_alternative<DecodeFailure>(bad));
  EXPECT_THAT(std::get<DecodeFailure>(bad).reason, HasSubstr("percent"));
}

}  // namespace
}  // namespace korvo
