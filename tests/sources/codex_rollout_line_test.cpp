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

TEST(CodexRolloutLineTest, TitlesFollowCodexsLabelsWithTheirThreeMinuteBias) {
  const std::tuple<std::optional<double>, Slot, const char*> cases[] = {
      {300, Slot::primary, "5-hour"},
      {297, Slot::primary, "5-hour"},
      {303, Slot::primary, "5-hour"},
      {296, Slot::primary, "5-hour"},
      {304, Slot::primary, "5-hour"},
      {300, Slot::secondary, "5-hour"},
      {10, Slot::primary, "1-hour"},
      {15, Slot::primary, "1-hour"},
      {1, Slot::primary, "1-hour"},
      {60, Slot::primary, "1-hour"},
      {89, Slot::primary, "1-hour"},
      {90, Slot::primary, "2-hour"},
      {120, Slot::primary, "2-hour"},
      {1380, Slot::primary, "23-hour"},
      {1440, Slot::primary, "24-hour"},
      {1443, Slot::primary, "24-hour"},
      {1444, Slot::primary, "Weekly"},
      {2880, Slot::secondary, "Weekly"},
      {10077, Slot::secondary, "Weekly"},
      {10079, Slot::secondary, "Weekly"},
      {10080, Slot::secondary, "Weekly"},
      {10083, Slot::primary, "Weekly"},
      {10084, Slot::secondary, "Monthly"},
      {43200, Slot::secondary, "Monthly"},
      {43203, Slot::secondary, "Monthly"},
      {43204, Slot::secondary, "Annual"},
      {525600, Slot::secondary, "Annual"},
      {std::nullopt, Slot::primary, "5-hour"},
      {std::nullopt, Slot::secondary, "Weekly"},
      {1e300, Slot::secondary, "Annual"},
  };
  for (const auto& [minutes, slot, title] : cases) {
    EXPECT_EQ(windowTitle(minutes, slot), title) << minutes.value_or(-1);
  }
}

TEST(CodexRolloutLineTest, ZeroOrNegativeLengthsCountAsMissing) {
  const auto limits = parseLine(line(
      R"({"primary":{"used_percent":1,"window_minutes":0},"secondary":{"used_percent":2,"window_minutes":-5}})"));
  ASSERT_TRUE(limits);
  EXPECT_EQ(limits->snapshot.windows,
            (std::vector<UsageWindow>{{"5-hour", 1, std::nullopt}, {"Weekly", 2, std::nullopt}}));
}

TEST(CodexRolloutLineTest, ResetsAtInUnixSecondsBecomesTheSystemsDate) {
  const auto limits = parseLine(line(
      R"({"limit_id":"codex","limit_name":null,"primary":{"used_percent":96.0,"window_minutes":300,"resets_at":1779511102},"secondary":{"used_percent":54.5,"window_minutes":10080,"resets_at":1779820784},"credits":null,"plan_type":"plus"})"));
  ASSERT_TRUE(limits);
  const auto* snapshot = &limits->snapshot;
  const UsageSnapshot expected{{{"5-hour", 96, Date::fromUnixSeconds(1779511102)},
                                {"Weekly", 54.5, Date::fromUnixSeconds(1779820784)}},
                               at(lineTime),
                               "Codex CLI"};
  EXPECT_EQ(*snapshot, expected);
}

TEST(CodexRolloutLineTest, OlderResetsInSecondsCountFromTheLinesTime) {
  const auto limits = parseLine(line(
      R"({"primary":{"used_percent":12.5,"window_minutes":300,"resets_in_seconds":3600},"secondary":{"used_percent":40,"window_minutes":10080,"resets_in_seconds":86400}})"));
  ASSERT_TRUE(limits);
  const auto* snapshot = &limits->snapshot;
  EXPECT_EQ(snapshot->windows.at(0).resetsAt, at(lineTime).addingSeconds(3600));
  EXPECT_EQ(snapshot->windows.at(1).resetsAt, at(lineTime).addingSeconds(86400));
  EXPECT_EQ(snapshot->fetchedAt, at(lineTime));
}

TEST(CodexRolloutLineTest, WithoutAResetMomentTheWindowHasNone) {
  const auto limits = parseLine(line(R"({"primary":{"used_percent":3}})"));
  ASSERT_TRUE(limits);
  const auto* snapshot = &limits->snapshot;
  EXPECT_EQ(snapshot->windows, (std::vector<UsageWindow>{{"5-hour", 3, std::nullopt}}));
}

TEST(CodexRolloutLineTest, AWeeklyWindowAloneInPrimaryIsTitledWeekly) {
  const auto limits = parseLine(line(
      R"({"primary":{"used_percent":22,"window_minutes":10080,"resets_at":1779820784},"secondary":null})"));
  ASSERT_TRUE(limits);
  const auto* snapshot = &limits->snapshot;
  ASSERT_EQ(snapshot->windows.size(), 1u);
  EXPECT_EQ(snapshot->windows[0].title, "Weekly");
  EXPECT_EQ(snapshot->windows[0].usedPercent, 22);
}

TEST(CodexRolloutLineTest, WindowsAreWrittenShortestFirst) {
  const auto limits = parseLine(line(
      R"({"primary":{"used_percent":70,"window_minutes":10080},"secondary":{"used_percent":10,"window_minutes":300}})"));
  ASSERT_TRUE(limits);
  const auto* snapshot = &limits->snapshot;
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
    const auto parsed = parseLine(line(limits));
    EXPECT_EQ(parsed && !parsed->limitId, usable) << limits;
  }
}

TEST(CodexRolloutLineTest, OtherLimitIdsAreReadWithTheirNames) {
  const auto limits = parseLine(line(
      R"({"limit_id":"codex_other","limit_name":"GPT-5.1-Codex-Mini","primary":{"used_percent":12,"window_minutes":300,"resets_at":1779511102},"secondary":null,"credits":null,"plan_type":"pro"})"));
  ASSERT_TRUE(limits);
  EXPECT_EQ(limits->limitId, "codex_other");
  EXPECT_EQ(limits->limitName, "GPT-5.1-Codex-Mini");
  EXPECT_EQ(limits->planType, "pro");
  EXPECT_EQ(limits->snapshot.windows,
            (std::vector<UsageWindow>{{"5-hour", 12, Date::fromUnixSeconds(1779511102)}}));
}

TEST(CodexRolloutLineTest, PlanAndCreditsAreKeptOnlyAsFigures) {
  const auto limits = parseLine(line(
      R"({"limit_id":"codex","limit_name":"ignored for codex","primary":{"used_percent":5},"credits":{"has_credits":true,"unlimited":false,"balance":"5.39"},"plan_type":"team"})"));
  ASSERT_TRUE(limits);
  EXPECT_EQ(limits->limitId, std::nullopt);
  EXPECT_EQ(limits->limitName, std::nullopt);
  EXPECT_EQ(limits->planType, "team");
  EXPECT_EQ(limits->credits, (Credits{true, false, "5.39"}));
  const std::pair<const char*, std::optional<Credits>> credits[] = {
      {R"({"has_credits":false,"unlimited":true,"balance":null})", Credits{false, true, {}}},
      {R"({"has_credits":true,"unlimited":false,"balance":12.5})", Credits{true, false, "12.50"}},
      {R"({"has_credits":true,"unlimited":false,"balance":"see /home/u/notes"})",
       Credits{true, false, {}}},
      {R"({"has_credits":true,"unlimited":false,"balance":"1.2.3"})", Credits{true, false, {}}},
      {R"({"unlimited":true})", std::nullopt},
      {R"("lots")", std::nullopt},
  };
  for (const auto& [text, expected] : credits) {
    const auto parsed =
        parseLine(line(std::string(R"({"primary":{"used_percent":5},"credits":)") + text + "}"));
    ASSERT_TRUE(parsed) << text;
    EXPECT_EQ(parsed->credits, expected) << text;
  }
  for (const char* plan : {R"("Plus")", R"("sk-SECRET")", R"("a b")", "7", R"("")"}) {
    const auto parsed =
        parseLine(line(std::string(R"({"primary":{"used_percent":5},"plan_type":)") + plan + "}"));
    ASSERT_TRUE(parsed) << plan;
    EXPECT_EQ(parsed->planType, std::nullopt) << plan;
  }
}

TEST(CodexRolloutLineTest, LinesWithoutUsableLimitsGiveNothing) {
  const std::string cases[] = {
      line("null"),
      line(" null"),
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
