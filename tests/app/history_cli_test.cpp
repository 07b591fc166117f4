#include <gtest/gtest.h>

#include <cstdio>
#include <nlohmann/json.hpp>

#include "support/files.hpp"
#include "support/korvo_process.hpp"

namespace korvo {
namespace {

using testing_support::KorvoWorld;
using testing_support::readFile;

// A world whose Codex writes a turn every ten minutes, each 5 points more of the 5-hour window.
class HistoryWorld : public KorvoWorld {
 public:
  HistoryWorld() { write("config/korvo/settings.json", R"({"codexLive": false})"); }
  void turn(int minute, int used) const {
    char timestamp[32];
    std::snprintf(timestamp, sizeof timestamp, "2026-11-25T10:%02d:00Z", minute);
    write(
        "codex/sessions/2026/11/25/rollout-a.jsonl",
        std::string(R"({"timestamp":")") + timestamp +
            R"(","type":"event_msg","payload":{"type":"token_count","info":null,"rate_limits":{"primary":{"used_percent":)" +
            std::to_string(used) +
            R"(,"window_minutes":300,"resets_at":1795626000},"secondary":null}}})"
            "\n");
    const auto result = korvo({"publish", "--now", std::string(timestamp).replace(17, 2, "30")});
    ASSERT_EQ(result.exitCode, 0) << result.err;
  }
  std::filesystem::path history() const { return home() / ".local/state/korvo/history.sqlite3"; }
};

TEST(HistoryCliTest, EveryPublicationIsRecordedAndExportedAsCsvAndJson) {
  const HistoryWorld world;
  for (int step = 0; step < 3; ++step) world.turn(step * 10, 20 + step * 5);
  auto result = world.korvo({"history", "--csv"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_TRUE(result.out.starts_with("time,metric,value\n2026-11-25T10:00:30Z,codex.5-hour,20\n"))
      << result.out;
  EXPECT_NE(result.out.find("2026-11-25T10:20:30Z,codex.5-hour,30\n"), std::string::npos);
  EXPECT_NE(result.out.find(",temperature,"), std::string::npos);

  result = world.korvo(
      {"history", "--json", "--since", "2026-11-25T10:10:00Z", "--until", "2026-11-25T10:15:00Z"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const auto rows = nlohmann::json::parse(result.out);
  ASSERT_FALSE(rows.empty());
  for (const auto& row : rows) EXPECT_EQ(row["time"], "2026-11-25T10:10:30Z");
  EXPECT_EQ(rows[0],
            (nlohmann::json{
                {"time", "2026-11-25T10:10:30Z"}, {"metric", "codex.5-hour"}, {"value", 25.0}}));
  // Only figures: nothing of the rollout's text or path.
  const std::string bytes = readFile(world.history());
  EXPECT_EQ(bytes.find("rollout"), std::string::npos);
  EXPECT_EQ(bytes.find("token_count"), std::string::npos);
}

TEST(HistoryCliTest, UsageForecastsFromTheRecordedPace) {
  const HistoryWorld world;
  for (int step = 0; step < 4; ++step) world.turn(step * 10, 20 + step * 5);
  auto result = world.korvo({"usage", "--json", "--now", "2026-11-25T10:30:30Z"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const auto usage = nlohmann::json::parse(result.out);
  ASSERT_EQ(usage["providers"].size(), 1u);
  const auto& codex = usage["providers"][0];
  EXPECT_EQ(codex["name"], "Codex");
  EXPECT_EQ(codex["source"], "Codex CLI");
  EXPECT_EQ(codex["fetchedAt"], "2026-11-25T10:30:00Z");
  const auto& window = codex["windows"][0];
  EXPECT_EQ(window["title"], "5-hour");
  EXPECT_EQ(window["usedPercent"], 35.0);
  EXPECT_EQ(window["resetsAt"], "2026-11-25T17:00:00Z");
  // 30 points an hour: the other 65 take 2 h 10 min, before the reset at 17:00.
  EXPECT_EQ(window["forecast"], (nlohmann::json{{"exhaustsAt", "2026-11-25T12:40:30Z"}}));

  result = world.korvo({"usage", "--now", "2026-11-25T10:30:30Z"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_NE(result.out.find("Codex · 5-hour · 65% left"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("at this pace runs out"), std::string::npos) << result.out;
}

TEST(HistoryCliTest, AFullDiskSkipsTheHistoryNeverThePublication) {
  const HistoryWorld world;
  world.turn(0, 20);
  world.turn(10, 25);
  const std::string before = readFile(world.history());
  // 8 blocks of 512 bytes: the shared file fits, a growing history does not.
  world.write("codex/sessions/2026/11/25/rollout-a.jsonl", "");
  std::string korvo = KORVO_APP_BINARY;
  std::string command = "ulimit -f 8 && exec env";
  for (const auto& [name, value] : world.environment()) command += " '" + name + "=" + value + "'";
  command += " '" + korvo + "' publish --now 2026-11-25T10:20:30Z";
  const auto result = testing_support::runProgram("/bin/sh", {"-c", command}, world.environment());
  EXPECT_EQ(result.exitCode, 0) << result.err;
  // Published at 10:20:30 (seconds from 2001), and not recorded.
  EXPECT_NE(readFile(world.sharedFile()).find(R"("date":817294830)"), std::string::npos)
      << readFile(world.sharedFile());
  const auto history = world.korvo({"history", "--csv"});
  EXPECT_NE(history.out.find("10:10:30Z"), std::string::npos);
  EXPECT_EQ(history.out.find("10:20:30Z"), std::string::npos);
}

TEST(HistoryCliTest, TheStatusLineRecordsClaudesFiguresWhenItSavesThem) {
  const HistoryWorld world;
  const std::string input =
      R"({"rate_limits":{"five_hour":{"used_percentage":12,"resets_at":1795626000},)"
      R"("seven_day":{"used_percentage":34,"resets_at":1796000000}}})";
  ASSERT_EQ(world.korvo({"claude-statusline"}, input).exitCode, 0);
  ASSERT_EQ(world.korvo({"claude-statusline"}, input).exitCode, 0);  // unchanged: not saved again
  const auto result = world.korvo({"history", "--json"});
  const auto rows = nlohmann::json::parse(result.out);
  ASSERT_EQ(rows.size(), 2u) << result.out;
  EXPECT_EQ(rows[0]["metric"], "claude.5-hour");
  EXPECT_EQ(rows[0]["value"], 12.0);
  EXPECT_EQ(rows[1]["metric"], "claude.Weekly");
  EXPECT_EQ(rows[1]["value"], 34.0);
}

TEST(HistoryCliTest, WithoutAHistoryNothingIsCreatedAndBadMomentsAreNamed) {
  const KorvoWorld world;
  auto result = world.korvo({"history", "--json"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "[]\n");
  EXPECT_FALSE(std::filesystem::exists(world.home() / ".local/state/korvo/history.sqlite3"));
  result = world.korvo({"history", "--since", "yesterday"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.err,
            "korvo: --since: not a moment: \"yesterday\"; valid: ISO 8601 with a zone or Unix "
            "seconds\n");
  result = world.korvo({"history", "--csv", "--json"});
  EXPECT_EQ(result.exitCode, 2);
  result = world.korvo({"usage"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("no figures yet"), std::string::npos) << result.err;
}

}  // namespace
}  // namespace korvo
