#include "sources/codex_rollout_line.hpp"

#include <gtest/gtest.h>

#include "shared/moment_text.hpp"

namespace korvo::codex_rollout {
namespace {

constexpr const char* lineTime = "2026-11-15T01:45:00.500Z";

Date at(const char* iso) {
  return *parseIsoMoment(iso);
}

std::string line(const std::string& rateLimits, const std::string& timestamp = lineTime) {
  return R"({"timestamp":")" + timestamp +
         R"(","type":"event_msg","payload":{"type":"token_count","info":{"total_token_usage":)"
         R"({"input_tokens":1200,"output_tokens":80}},"rate_limits":)" +
         rateLimits + "}}";
}

TEST(CodexRolloutLineTest, TitlesComeFromTheWindowLength) {
  const std::tuple<std::optional<double>, Slot, const char*> cases[] = {
      {300, Slot::primary, "5-hour"},
      {10080, Slot::secondary, "Weekly"},
      {10080, Slot::primary, "Weekly"},
      {300, Slot::secondary, "5-hour"},
      {std::nullopt, Slot::primary, "5-hour"},
      {std::nullopt, Slot::secondary, "Weekly"},
      {60, Slot::primary, "1-hour"},
      {120, Slot::primary, "2-hour"},
      {1380, Slot::primary, "23-hour"},
      {1440, Slot::primary, "1-day"},
      {43200, Slot::secondary, "30-day"},
      {90, Slot::primary, "1-day"},
      {1e300, Slot::secondary, "6.94e+296-day"},
  };
  for (const auto& [minutes, slot, title] : cases) {
    EXPECT_EQ(windowTitle(minutes, slot), title) << minutes.value_or(-1);
  }
}

TEST(CodexRolloutLineTest, ResetsAtInUnixSecondsBecomesTheSystemsDate) {
  const auto snapshot = parseLine(line(
      R"({"limit_id":"codex","limit_name":null,"primary":{"used_percent":96.0,"window_minutes":300,"resets_at":1779511102},"secondary":{"used_percent":54.5,"window_minutes":10080,"resets_at":1779820784},"credits":null,"plan_type":"plus"})"));
  ASSERT_TRUE(snapshot);
  const UsageSnapshot expected{{{"5-hour", 96, Date::fromUnixSeconds(1779511102)},
                                {"Weekly", 54.5, Date::fromUnixSeconds(1779820784)}},
                               at(lineTime),
                               "Codex CLI"};
  EXPECT_EQ(*snapshot, expected);
}

TEST(CodexRolloutLineTest, OlderResetsInSecondsCountFromTheLinesTime) {
  const auto snapshot = parseLine(line(
      R"({"primary":{"used_percent":12.5,"window_minutes":300,"resets_in_seconds":3600},"secondary":{"used_percent":40,"window_minutes":10080,"resets_in_seconds":86400}})"));
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->windows.at(0).resetsAt, at(lineTime).addingSeconds(3600));
  EXPECT_EQ(snapshot->windows.at(1).resetsAt, at(lineTime).addingSeconds(86400));
  EXPECT_EQ(snapshot->fetchedAt, at(lineTime));
}

TEST(CodexRolloutLineTest, WithoutAResetMomentTheWindowHasNone) {
  const auto snapshot = parseLine(line(R"({"primary":{"used_percent":3}})"));
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->windows, (std::vector<UsageWindow>{{"5-hour", 3, std::nullopt}}));
}

TEST(CodexRolloutLineTest, AWeeklyWindowAloneInPrimaryIsTitledWeekly) {
  const auto snapshot = parseLine(line(
      R"({"primary":{"used_percent":22,"window_minutes":10080,"resets_at":1779820784},"secondary":null})"));
  ASSERT_TRUE(snapshot);
  ASSERT_EQ(snapshot->windows.size(), 1u);
  EXPECT_EQ(snapshot->windows[0].title, "Weekly");
  EXPECT_EQ(snapshot->windows[0].usedPercent, 22);
}

TEST(CodexRolloutLineTest, WindowsAreWrittenShortestFirst) {
  const auto snapshot = parseLine(line(
      R"({"primary":{"used_percent":70,"window_minutes":10080},"secondary":{"used_percent":10,"window_minutes":300}})"));
  ASSERT_TRUE(snapshot);
  ASSERT_EQ(snapshot->windows.size(), 2u);
  EXPECT_EQ(snapshot->windows[0].title, "5-hour");
  EXPECT_EQ(snapshot->windows[0].usedPercent, 10);
  EXPECT_EQ(snapshot->windows[1].title, "Weekly");
}

TEST(CodexRolloutLineTest, LimitIdCodexOrNullOrAbsentCountsAndAnyOtherIsIgnored) {
  const std::pair<const char*, bool> cases[] = {
      {R"({"limit_id":"codex","primary":{"used_percent":5}})", true},
      {R"({"limit_id":null,"primary":{"used_percent":5}})", true},
      {R"({"primary":{"used_percent":5}})", true},
      {R"({"limit_id":"premium","primary":{"used_percent":5}})", false},
      {R"({"limit_id":"Codex","primary":{"used_percent":5}})", false},
      {R"({"limit_id":7,"primary":{"used_percent":5}})", false},
  };
  for (const auto& [limits, usable] : cases) {
    EXPECT_EQ(parseLine(line(limits)).has_value(), usable) << limits;
  }
}

TEST(CodexRolloutLineTest, LinesWithoutUsableLimitsGiveNothing) {
  const std::string cases[] = {
      line("null"),
      line(R"({"primary":null,"secondary":null})"),
      line(R"({"primary":{"used_percent":"5"}})"),
      line(R"({"primary":{"window_minutes":300}})"),
      line(R"({"primary":{"used_percent":5}})", "yesterday"),
      line(R"({"primary":{"used_percent":5}})", "2026-11-15T01:45:00"),
      R"({"timestamp":"2026-11-15T01:45:00Z","type":"event_msg","payload":{"type":"token_count","info":null}})",
      R"({"timestamp":"2026-11-15T01:45:00Z","type":"response_item","payload":{"type":"token_count","rate_limits":{"primary":{"used_percent":5}}}})",
      R"({"timestamp":"2026-11-15T01:45:00Z","type":"event_msg","payload":{"type":"agent_message","message":"token_count"}})",
      R"({"timestamp":"2026-11-15T01:45:00Z","type":"event_msg","payload":{"type":"token_count","rate_limits":{"primary":{"used_percent":5}})",
      R"(not json but mentions token_count)",
      R"(["token_count"])",
      "",
  };
  for (const auto& text : cases) EXPECT_FALSE(parseLine(text)) << text;
}

}  // namespace
}  // namespace korvo::codex_rollout
