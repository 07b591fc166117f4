#include "app/claude_update.hpp"

#include <gtest/gtest.h>

namespace korvo::claude_update {
namespace {

const Date now{816399900};

WidgetSnapshot stored(std::vector<UsageWindow> windows, Date fetchedAt) {
  WidgetSnapshot snapshot{
      Date{816390000},
      52.5,
      Date{816390000},
      true,
      UsageState{true, std::nullopt, "No Codex sessions found", false},
      UsageState{true, UsageSnapshot{std::move(windows), fetchedAt, "Claude Code"}, std::nullopt,
                 false}};
  return snapshot;
}

const std::vector<UsageWindow> fresh{{"5-hour", 28, Date{816407100}},
                                     {"Weekly", 42, Date{816572700}}};

TEST(ClaudeUpdateTest, NewFiguresReplaceTheirWindowsAndKeepTheRestOfTheFile) {
  const auto current =
      stored({{"Weekly", 40, Date{816572700}}, {"Opus", 3, std::nullopt}}, now.addingSeconds(-5));
  const auto merged = merge(current, fresh, Settings{}, now);
  ASSERT_TRUE(merged);
  EXPECT_EQ(merged->date, now);
  EXPECT_EQ(merged->temperature, 52.5);
  EXPECT_EQ(merged->temperatureDate, current.temperatureDate);
  EXPECT_EQ(merged->codex, current.codex);
  const UsageState expected{
      true, UsageSnapshot{{fresh[0], fresh[1], {"Opus", 3, std::nullopt}}, now, "Claude Code"},
      std::nullopt, false};
  EXPECT_EQ(merged->claude, expected);
}

TEST(ClaudeUpdateTest, TheSameFiguresAreWrittenOnlyOnceAMinute) {
  EXPECT_FALSE(merge(stored(fresh, now.addingSeconds(-60)), fresh, Settings{}, now));
  EXPECT_TRUE(merge(stored(fresh, now.addingSeconds(-61)), fresh, Settings{}, now));
}

TEST(ClaudeUpdateTest, AnyChangedFigureIsWrittenAtOnce) {
  auto resetMoved = fresh;
  resetMoved[1].resetsAt = Date{816572701};
  auto usedMoved = fresh;
  usedMoved[0].usedPercent = 29;
  EXPECT_TRUE(merge(stored(resetMoved, now), fresh, Settings{}, now));
  EXPECT_TRUE(merge(stored(usedMoved, now), fresh, Settings{}, now));
  EXPECT_TRUE(merge(stored({fresh[0]}, now), fresh, Settings{}, now));
}

TEST(ClaudeUpdateTest, AMessageOrADisabledStateIsReplacedAtOnce) {
  auto withMessage = stored(fresh, now);
  withMessage.claude.message = "Claude status line not set up";
  EXPECT_TRUE(merge(withMessage, fresh, Settings{}, now));
  auto disabled = stored(fresh, now);
  disabled.claude.enabled = false;
  EXPECT_TRUE(merge(disabled, fresh, Settings{}, now));
}

TEST(ClaudeUpdateTest, NoWindowsOrClaudeSwitchedOffWritesNothing) {
  EXPECT_FALSE(merge({}, {}, Settings{}, now));
  Settings off;
  off.claude = false;
  EXPECT_FALSE(merge({}, fresh, off, now));
}

TEST(ClaudeUpdateTest, WithoutAFileTheSnapshotStartsFromTheSettings) {
  Settings settings;
  settings.temperature = false;
  const auto merged = merge({}, {fresh[1], fresh[0]}, settings, now);
  ASSERT_TRUE(merged);
  EXPECT_FALSE(merged->temperatureEnabled);
  EXPECT_TRUE(merged->codex.enabled);
  EXPECT_EQ(merged->claude.snapshot->windows, fresh);
}

TEST(ClaudeUpdateTest, TheStatusLineShowsWhatIsLeft) {
  EXPECT_EQ(statusText({fresh, "Opus", 12}), "5-hour · 72% left | Weekly · 58% left");
  EXPECT_EQ(statusText({}), "Claude · no limits yet");
}

TEST(ClaudeUpdateTest, WithoutFiguresTheLineSaysWhatTheInputKnows) {
  EXPECT_EQ(statusText({{}, "Sonnet 4.6", 41.6}), "Sonnet 4.6 · context 42% used");
  EXPECT_EQ(statusText({{}, "Sonnet 4.6", std::nullopt}), "Sonnet 4.6");
  EXPECT_EQ(statusText({{}, std::nullopt, 3}), "Claude · context 3% used");
}

}  // namespace
}  // namespace korvo::claude_update
