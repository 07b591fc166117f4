#include "sources/claude_status_line.hpp"

#include <gtest/gtest.h>

namespace korvo::claude_status_line {
namespace {

// The shape Claude Code sends, trimmed to a few of its keys.
std::string input(const std::string& rateLimits) {
  return R"({"hook_event_name":"Status","session_id":"abc123","transcript_path":"/home/u/.claude/projects/p/abc123.jsonl","cwd":"/home/u/p","model":{"id":"claude-opus-4-1","display_name":"Opus"},"workspace":{"current_dir":"/home/u/p","project_dir":"/home/u/p"},"version":"2.1.80","cost":{"total_cost_usd":0.01})" +
         (rateLimits.empty() ? "" : R"(,"rate_limits":)" + rateLimits) + "}";
}

TEST(ClaudeStatusLineTest, BothWindowsBecomeFiveHourAndWeekly) {
  const auto windows =
      parseInput(
          input(
              R"({"five_hour":{"used_percentage":28,"resets_at":1794707100},"seven_day":{"used_percentage":42.5,"resets_at":1795000000}})"))
          .windows;
  EXPECT_EQ(windows, (std::vector<UsageWindow>{
                         {"5-hour", 28, Date::fromUnixSeconds(1794707100)},
                         {"Weekly", 42.5, Date::fromUnixSeconds(1795000000)},
                     }));
}

TEST(ClaudeStatusLineTest, PartialAndBrokenWindowsAreLeftOut) {
  const std::pair<std::string, std::vector<UsageWindow>> cases[] = {
      {R"({"five_hour":{"used_percentage":5}})", {{"5-hour", 5, std::nullopt}}},
      {R"({"seven_day":{"used_percentage":9,"resets_at":null}})", {{"Weekly", 9, std::nullopt}}},
      {R"({"five_hour":{"used_percentage":"5"},"seven_day":{"used_percentage":9}})",
       {{"Weekly", 9, std::nullopt}}},
      {R"({"five_hour":null,"seven_day":{"resets_at":1}})", {}},
      {R"({})", {}},
      {R"(null)", {}},
      {R"("soon")", {}},
  };
  for (const auto& [limits, expected] : cases) {
    EXPECT_EQ(parseInput(input(limits)).windows, expected) << limits;
  }
}

TEST(ClaudeStatusLineTest, InputWithoutLimitsOrNotJsonGivesNone) {
  EXPECT_TRUE(parseInput(input("")).windows.empty());
  EXPECT_TRUE(parseInput("").windows.empty());
  EXPECT_TRUE(parseInput("{\"rate_limits\":").windows.empty());
  EXPECT_TRUE(parseInput(std::string(2000, '[')).windows.empty());
}

TEST(ClaudeStatusLineTest, ImplausiblePercentagesAreLeftOutAndOverrunsKept) {
  const std::pair<std::string, std::vector<UsageWindow>> cases[] = {
      // Claude Code sometimes sends the reset moment as the percentage.
      {R"({"five_hour":{"used_percentage":1776950400,"resets_at":1776950400},"seven_day":{"used_percentage":40,"resets_at":1777000000}})",
       {{"Weekly", 40, Date::fromUnixSeconds(1777000000)}}},
      {R"({"five_hour":{"used_percentage":7,"resets_at":7}})", {}},
      {R"({"five_hour":{"used_percentage":-1}})", {}},
      {R"({"five_hour":{"used_percentage":1000.5}})", {}},
      {R"({"five_hour":{"used_percentage":1e400}})", {}},
      {R"({"five_hour":{"used_percentage":1000}})", {{"5-hour", 1000, std::nullopt}}},
      {R"({"five_hour":{"used_percentage":130}})", {{"5-hour", 130, std::nullopt}}},
      {R"({"five_hour":{"used_percentage":0,"resets_at":1777000000}})",
       {{"5-hour", 0, Date::fromUnixSeconds(1777000000)}}},
  };
  for (const auto& [limits, expected] : cases) {
    EXPECT_EQ(parseInput(input(limits)).windows, expected) << limits;
  }
}

TEST(ClaudeStatusLineTest, TheModelAndContextAreReadForTheLineWithoutFigures) {
  const auto parsed = parseInput(
      R"({"model":{"id":"claude-sonnet-4-6","display_name":"Sonnet 4.6"},"context_window":{"context_window_size":200000,"used_percentage":41.6,"remaining_percentage":58.4}})");
  EXPECT_EQ(parsed, (Input{{}, "Sonnet 4.6", 41.6}));
  EXPECT_EQ(parseInput(input("")).model, "Opus");
  EXPECT_EQ(parseInput(input("")).contextUsedPercent, std::nullopt);
  EXPECT_EQ(parseInput(R"({"model":{"display_name":"Bad\u001b[2Jname"}})").model, std::nullopt);
  EXPECT_EQ(parseInput(R"({"model":{"display_name":")" + std::string(65, 'x') + "\"}}").model,
            std::nullopt);
  EXPECT_EQ(parseInput(R"({"context_window":{"used_percentage":140}})").contextUsedPercent,
            std::nullopt);
}

}  // namespace
}  // namespace korvo::claude_status_line
