#include "app/publisher.hpp"

#include <gtest/gtest.h>

namespace korvo::publisher {
namespace {

const Date now{816399900};

const CpuTemperature hot{61.5, "coretemp", "Package id 0", "/sys/class/hwmon/hwmon1/temp1_input"};

const CodexLimits codexLimits{
    UsageSnapshot{{{"5-hour", 28, Date{816407100}}, {"Weekly", 42, Date{816572700}}},
                  Date{816399850},
                  "Codex CLI"},
    "/home/u/.codex/sessions/2026/11/15/rollout-a.jsonl",
    std::nullopt,
    std::nullopt,
    {}};

const CodexFound codexFound{codexLimits, codexLimits, std::nullopt, {}};

const UsageState claudeFigures{
    true,
    UsageSnapshot{{{"5-hour", 10, std::nullopt}, {"Weekly", 20, std::nullopt}},
                  Date{816399800},
                  "Claude Code"},
    std::nullopt, false};

WidgetSnapshot fileWithClaude() {
  return WidgetSnapshot{Date{816390000}, 40.0, Date{816390000}, true, UsageState{}, claudeFigures};
}

TEST(PublisherTest, AllOnWritesTheReadingCodexsWindowsAndKeepsClaudesFigures) {
  const auto snapshot =
      compose(fileWithClaude(), Settings{}, Collected{hot, codexFound, true}, now);
  const WidgetSnapshot expected{
      now,          61.5, now, true, UsageState{true, codexLimits.snapshot, std::nullopt, false},
      claudeFigures};
  EXPECT_EQ(snapshot, expected);
}

TEST(PublisherTest, TemperatureOffLeavesOutTheReading) {
  Settings settings;
  settings.temperature = false;
  const auto snapshot = compose(fileWithClaude(), settings, Collected{hot, codexFound, true}, now);
  EXPECT_FALSE(snapshot.temperatureEnabled);
  EXPECT_EQ(snapshot.temperature, std::nullopt);
  EXPECT_EQ(snapshot.temperatureDate, std::nullopt);
}

TEST(PublisherTest, NoSensorLeavesOutTheReadingButKeepsItEnabled) {
  const auto snapshot = compose({}, Settings{}, Collected{std::nullopt, codexFound, true}, now);
  EXPECT_TRUE(snapshot.temperatureEnabled);
  EXPECT_EQ(snapshot.temperature, std::nullopt);
}

TEST(PublisherTest, DisabledProvidersAreTheBareDisabledState) {
  Settings settings;
  settings.codex = false;
  settings.claude = false;
  const auto snapshot =
      compose(fileWithClaude(), settings, Collected{hot, std::nullopt, true}, now);
  EXPECT_EQ(snapshot.codex, UsageState{});
  EXPECT_EQ(snapshot.claude, UsageState{});
}

TEST(PublisherTest, CodexShortfallsBecomeItsMessage) {
  EXPECT_EQ(
      codexState(true, CodexFound{CodexShortfall::noSessions, std::nullopt, std::nullopt, {}}),
      (UsageState{true, std::nullopt, "No Codex sessions found", false}));
  EXPECT_EQ(codexState(true, CodexFound{CodexShortfall::noLimits, std::nullopt, std::nullopt, {}}),
            (UsageState{true, std::nullopt, "No limits in Codex logs yet", false}));
}

TEST(PublisherTest, ClaudeWithoutFiguresSaysTheStatusLineIsNotSetUpUnlessItIs) {
  const auto notSetUp = compose({}, Settings{}, Collected{hot, codexFound, false}, now);
  EXPECT_EQ(notSetUp.claude,
            (UsageState{true, std::nullopt, "Claude status line not set up", false}));
  const auto setUp = compose({}, Settings{}, Collected{hot, codexFound, true}, now);
  EXPECT_EQ(setUp.claude, (UsageState{true, std::nullopt, std::nullopt, false}));
}

TEST(PublisherTest, IsRefreshingIsNeverWrittenTrue) {
  auto file = fileWithClaude();
  file.claude.isRefreshing = true;
  file.codex.isRefreshing = true;
  const auto snapshot = compose(file, Settings{}, Collected{hot, codexFound, true}, now);
  EXPECT_FALSE(snapshot.codex.isRefreshing);
  EXPECT_FALSE(snapshot.claude.isRefreshing);
}

}  // namespace
}  // namespace korvo::publisher
