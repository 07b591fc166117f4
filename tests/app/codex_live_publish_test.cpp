#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "support/files.hpp"
#include "support/korvo_process.hpp"

namespace korvo {
namespace {

using testing_support::KorvoWorld;
using testing_support::readFile;

const std::string standIn = KORVO_FIXTURES_DIR "/codex/app_server_stand_in.py";

// A world whose codexCommand is the app-server stand-in, counting its starts.
class LiveWorld : public KorvoWorld {
 public:
  explicit LiveWorld(const std::string& mode = "answer",
                     const std::string& settings = R"({"codexCommand": ")" + standIn + R"("})") {
    write("config/korvo/settings.json", settings);
    setMode(mode);
    setEnvironment("KORVO_STAND_IN_LOG", (home() / "starts").string());
  }
  void setMode(const std::string& mode) { setEnvironment("KORVO_STAND_IN_MODE", mode); }
  std::size_t starts() const {
    const std::string log = readFile(home() / "starts");
    return static_cast<std::size_t>(std::count(log.begin(), log.end(), '\n'));
  }
  nlohmann::json publishedCodex() const {
    return nlohmann::json::parse(readFile(sharedFile()))["codex"];
  }
  void publishAt(const std::string& moment) const {
    const auto result = korvo({"publish", "--now", moment});
    ASSERT_EQ(result.exitCode, 0) << result.err;
  }
  // A rollout whose newest line says `usedPercent` at `timestamp`.
  void writeRollout(const std::string& timestamp, int usedPercent) const {
    write(
        "codex/sessions/2026/11/25/rollout-a.jsonl",
        R"({"timestamp":")" + timestamp +
            R"(","type":"event_msg","payload":{"type":"token_count","info":null,"rate_limits":{"primary":{"used_percent":)" +
            std::to_string(usedPercent) +
            R"(,"window_minutes":300,"resets_at":1795650000},"secondary":null}}})"
            "\n");
  }
};

TEST(CodexLivePublishTest, APublishAsksTheAppServerAndPublishesItsFiguresWithItsSource) {
  const LiveWorld world;
  world.publishAt("2026-11-25T10:00:00Z");
  const auto codex = world.publishedCodex();
  EXPECT_EQ(codex["snapshot"]["source"], "Codex app-server");
  ASSERT_EQ(codex["snapshot"]["windows"].size(), 2u);
  EXPECT_EQ(codex["snapshot"]["windows"][0]["usedPercent"], 25);
  EXPECT_EQ(codex["snapshot"]["windows"][1]["title"], "Weekly");
  EXPECT_EQ(codex["snapshot"]["windows"][1]["usedPercent"], 61);
  EXPECT_FALSE(codex.contains("message"));
  EXPECT_EQ(world.starts(), 1u);
  // The plan, credits and the other limit stay in korvo's own state.
  const std::string shared = readFile(world.sharedFile());
  EXPECT_EQ(shared.find("12.50"), std::string::npos);
  EXPECT_EQ(shared.find("Codex-Max"), std::string::npos);
  const auto state =
      nlohmann::json::parse(readFile(world.home() / ".local/state/korvo/codex.json"));
  EXPECT_EQ(state["live"]["askedAt"], "2026-11-25T10:00:00Z");
  EXPECT_EQ(state["live"]["reading"]["planType"], "plus");
  EXPECT_EQ(state["live"]["reading"]["credits"]["balance"], "12.50");
  EXPECT_EQ(state["live"]["reading"]["otherLimits"][0]["limitName"], "GPT-5.1-Codex-Max");
}

TEST(CodexLivePublishTest, TheAppServerIsAskedAtMostEveryCodexLiveMinutesAndTheNewerReadingWins) {
  const LiveWorld world;
  world.publishAt("2026-11-25T10:00:00Z");
  // A turn after the ask: the rollout is newer and wins until the next ask.
  world.writeRollout("2026-11-25T10:02:00Z", 80);
  world.publishAt("2026-11-25T10:04:59Z");
  EXPECT_EQ(world.starts(), 1u);
  auto codex = world.publishedCodex();
  EXPECT_EQ(codex["snapshot"]["source"], "Codex CLI");
  EXPECT_EQ(codex["snapshot"]["windows"][0]["usedPercent"], 80);
  world.publishAt("2026-11-25T10:05:00Z");
  EXPECT_EQ(world.starts(), 2u);
  codex = world.publishedCodex();
  EXPECT_EQ(codex["snapshot"]["source"], "Codex app-server");
  // The shared file counts seconds from 2001: 10:05 that day.
  EXPECT_EQ(codex["snapshot"]["fetchedAt"], 817293900);
}

TEST(CodexLivePublishTest, AFailedAskKeepsTheLastGoodFiguresAndIsRecorded) {
  LiveWorld world;
  world.publishAt("2026-11-25T10:00:00Z");
  for (const char* mode : {"error", "crash", "garbage", "none"}) {
    world.setMode(mode);
    world.publishAt("2026-11-25T11:00:00Z");
    const auto codex = world.publishedCodex();
    EXPECT_EQ(codex["snapshot"]["source"], "Codex app-server") << mode;
    EXPECT_EQ(codex["snapshot"]["fetchedAt"], 817293600) << mode;  // 10:00 that day
    EXPECT_EQ(codex["snapshot"]["windows"][0]["usedPercent"], 25) << mode;
    const auto state =
        nlohmann::json::parse(readFile(world.home() / ".local/state/korvo/codex.json"));
    EXPECT_TRUE(state["live"]["failure"].is_string()) << mode;
    EXPECT_EQ(state["live"]["reading"]["fetchedAt"], "2026-11-25T10:00:00Z") << mode;
  }
}

TEST(CodexLivePublishTest, WithCodexLiveOffTheAppServerIsNeverStarted) {
  const LiveWorld world("answer", R"({"codexLive": false, "codexCommand": ")" + standIn + R"("})");
  world.writeRollout("2026-11-25T09:00:00Z", 30);
  world.publishAt("2026-11-25T10:00:00Z");
  EXPECT_EQ(world.starts(), 0u);
  EXPECT_EQ(world.publishedCodex()["snapshot"]["source"], "Codex CLI");
}

TEST(CodexLivePublishTest, KorvoCodexLiveAsksNowAndTellsPlanCreditsAndTheOtherLimits) {
  LiveWorld world;
  world.publishAt("2026-11-25T10:00:00Z");
  auto result = world.korvo({"codex", "--live"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(world.starts(), 2u);
  EXPECT_NE(result.out.find("5-hour · 75% left"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("Weekly · 39% left"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("from Codex app-server"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("Plan plus"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("Credits 12.50"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("GPT-5.1-Codex-Max 5-hour · 93% left"), std::string::npos)
      << result.out;

  world.setMode("error");
  result = world.korvo({"codex", "--live", "--json"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err,
            "korvo: Codex app-server: codex account authentication required to read rate "
            "limits\n");
  const auto document = nlohmann::json::parse(result.out);
  EXPECT_EQ(document["source"], "Codex app-server");
  EXPECT_EQ(document["liveFailure"],
            "Codex app-server: codex account authentication required to read rate limits");
}

TEST(CodexLivePublishTest, PrintAsksWhenDueButWritesNothing) {
  const LiveWorld world;
  const auto result = world.korvo({"publish", "--print", "--now", "2026-11-25T10:00:00Z"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_NE(result.out.find("Codex app-server"), std::string::npos) << result.out;
  EXPECT_EQ(world.starts(), 1u);
  EXPECT_FALSE(std::filesystem::exists(world.sharedFile()));
  EXPECT_FALSE(std::filesystem::exists(world.home() / ".local/state/korvo/codex.json"));
}

}  // namespace
}  // namespace korvo
