#include "app/usage_origin.hpp"

#include <gtest/gtest.h>

#include "shared/moment_text.hpp"

namespace korvo::usage_origin {
namespace {

const Date now = *parseIsoMoment("2026-11-25T12:00:00Z");

UsageSnapshot snapshot(const char* source, double minutesOld) {
  return {{{"5-hour", 25, std::nullopt}}, now.addingSeconds(-minutesOld * 60), source};
}

TEST(UsageOriginTest, TheSourceIsNamedAsAUserKnowsItWithTheFiguresAge) {
  EXPECT_EQ(originText(snapshot("Codex app-server", 2), now), "Codex app-server · 2 min ago");
  EXPECT_EQ(originText(snapshot("Codex CLI", 180), now), "Codex CLI session · 3 hr ago");
  EXPECT_EQ(originText(snapshot("Claude Code", 12), now), "Claude Code status line · 12 min ago");
}

TEST(UsageOriginTest, CodexDetailsComeFromTheReadingThatWasPublished) {
  CodexLimits live{snapshot("Codex app-server", 1),
                   {},
                   "plus",
                   codex_rollout::Credits{true, false, "12.50"},
                   {}};
  live.otherLimits.push_back({"codex_bengalfox",
                              "GPT-5.1-Codex-Max",
                              {{{"5-hour", 7, std::nullopt}}, now, "Codex app-server"},
                              std::nullopt,
                              std::nullopt});
  CodexLimits rollouts{snapshot("Codex CLI", 60),
                       "/r.jsonl",
                       "pro",
                       codex_rollout::Credits{false, true, std::nullopt},
                       {}};
  const codex_state_file::Record record{rollouts,
                                        codex_state_file::LiveRecord{now, std::nullopt, live}};
  EXPECT_EQ(codexDetails(record, live.snapshot),
            (std::vector<std::string>{"Plan plus · Credits 12.50",
                                      "GPT-5.1-Codex-Max · 5-hour · 93% left"}));
  EXPECT_EQ(codexDetails(record, rollouts.snapshot),
            (std::vector<std::string>{"Plan pro · Credits unlimited"}));
}

TEST(UsageOriginTest, AFailedAskSaysWhyAndAnEmptyRecordAddsNothing) {
  const codex_state_file::Record failed{
      std::nullopt,
      codex_state_file::LiveRecord{
          now, "Codex app-server: codex account authentication required to read rate limits",
          std::nullopt}};
  EXPECT_EQ(codexDetails(failed, snapshot("Codex CLI", 5)),
            (std::vector<std::string>{
                "Codex app-server: codex account authentication required to read rate limits"}));
  EXPECT_TRUE(codexDetails({}, snapshot("Codex CLI", 5)).empty());
  EXPECT_EQ(creditsText({false, false, std::nullopt}), "none");
}

}  // namespace
}  // namespace korvo::usage_origin
