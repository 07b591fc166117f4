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
  const auto windows = parseWindows(input(
      R"({"five_hour":{"used_percentage":28,"resets_at":1794707100},"seven_day":{"used_percentage":42.5,"resets_at":1795000000}})"));
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
    EXPECT_EQ(parseWindows(input(limits)), expected) << limits;
  }
}

TEST(ClaudeStatusLineTest, InputWithoutLimitsOrNotJsonGivesNone) {
  EXPECT_TRUE(parseWindows(input("")).empty());
  EXPECT_TRUE(parseWindows("").empty());
  EXPECT_TRUE(parseWindows("{\"rate_limits\":").empty());
  EXPECT_TRUE(parseWindows(std::string(2000, '[')).empty());
}

}  // namespace
}  // namespace korvo::claude_status_line
