#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "support/keep_awake_fixture.hpp"

// Keep Awake while Codex or Claude Code works: rollouts and transcripts written in the test's
// folders while the service runs, against logind's and the session manager's mocks.
namespace korvo {
namespace {

using namespace keep_awake_test;
using testing::HasSubstr;
using testing::Not;

std::string heldFor(const std::string& reason) {
  return "('idle:sleep', 'Korvo', '" + reason + "', 'block'";
}

// Appends one line to `file`, making its folders, as an agent appends to its log.
void appendLine(const std::filesystem::path& file) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::app)
      << R"({"type":"event_msg","payload":{"type":"agent"}})" << '\n';
}

// An agent at work: a line appended to `file` every 200 ms until the object goes away.
class Writer {
 public:
  explicit Writer(std::filesystem::path file)
      : thread_([file = std::move(file)](const std::stop_token& stop) {
          while (!stop.stop_requested()) {
            appendLine(file);
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
          }
        }) {}

 private:
  std::jthread thread_;
};

class AgentsAwakeTest : public KeepAwakeTest {
 protected:
  void SetUp() override {
    mockLogind();
    mockSessionManager();
  }
  void settings(const std::string& json) { world.write("config/korvo/settings.json", json); }
  std::filesystem::path rollout() const {
    return world.codexHome() / "sessions/2026/11/25/rollout-2026-11-25T10-00-00-a.jsonl";
  }
  std::filesystem::path transcript() const {
    return world.claudeDir() / "projects/-home-me-work/5f0c.jsonl";
  }
  bool held(const std::string& reason) {
    return logindInhibitors().find(heldFor(reason)) != std::string::npos;
  }
  bool nothingHeld() { return logindInhibitors().find("'Korvo'") == std::string::npos; }
};

TEST_F(AgentsAwakeTest, ARolloutWrittenInANewDayFolderHoldsBothInhibitorsUntilCodexIsQuiet) {
  // Ten clock minutes of quiet pass in twenty seconds: long enough to see the hold, short enough
  // to wait for its end. Codex's folder does not exist yet, as on a fresh machine.
  settings(R"({"agentIdleMinutes":10})");
  startService({{"KORVO_TIME_RATE", "30"}});
  EXPECT_EQ(status()["reason"], nullptr);
  appendLine(rollout());
  EXPECT_TRUE(waitFor([&] { return held("Codex is working"); })) << logindInhibitors();
  EXPECT_THAT(callsTo(sessionManager, "/org/gnome/SessionManager"),
              HasSubstr("'Inhibit', [<'Korvo'>, <uint32 0>, <'Codex is working'>, <uint32 12>]"));
  const auto holding = status();
  EXPECT_EQ(holding["active"], true);
  EXPECT_EQ(holding["reason"], "agents");
  EXPECT_EQ(holding["agents"], nlohmann::json::array({"Codex"}));
  EXPECT_EQ(holding["inhibitors"], nlohmann::json::array({"logind", "session"}));
  EXPECT_EQ(korvo({"awake", "status"}).out,
            "Keep Awake is on while Codex is working (logind, session).\n");

  EXPECT_TRUE(waitFor([&] { return nothingHeld(); }, std::chrono::seconds(60)));
  EXPECT_THAT(callsTo(sessionManager, "/org/gnome/SessionManager"),
              HasSubstr("'Uninhibit', [<uint32 42>]"));
  const auto quiet = status();
  EXPECT_EQ(quiet["active"], false);
  EXPECT_EQ(quiet["reason"], nullptr);
  EXPECT_EQ(quiet["agents"], nlohmann::json::array());
}

TEST_F(AgentsAwakeTest, AClaudeTranscriptHoldsWithItsOwnReason) {
  startService();
  appendLine(transcript().parent_path() / "notes.md");
  appendLine(transcript());
  EXPECT_TRUE(waitFor([&] { return held("Claude Code is working"); })) << logindInhibitors();
  EXPECT_EQ(status()["agents"], nlohmann::json::array({"Claude Code"}));
  // Codex at work, writing on: a new day folder's first line is the previous test's case.
  const Writer codex(rollout());
  EXPECT_TRUE(waitFor([&] { return held("Codex and Claude Code are working"); }))
      << logindInhibitors();
  EXPECT_FALSE(held("Claude Code is working")) << "the old inhibitor is given back";
  EXPECT_EQ(status()["agents"], nlohmann::json::array({"Codex", "Claude Code"}));
}

TEST_F(AgentsAwakeTest, ARolloutMovedInWithAnOldTimeIsNoWork) {
  std::filesystem::create_directories(rollout().parent_path());
  startService();
  const auto old = world.home() / "old-rollout.jsonl";
  appendLine(old);
  std::filesystem::last_write_time(
      old, std::filesystem::file_time_type::clock::now() - std::chrono::hours(48));
  std::filesystem::rename(old, rollout());
  // Told after the move, so the service has seen the move when it sees this.
  appendLine(transcript());
  EXPECT_TRUE(waitFor([&] { return held("Claude Code is working"); })) << logindInhibitors();
  EXPECT_EQ(status()["agents"], nlohmann::json::array({"Claude Code"}));
}

TEST_F(AgentsAwakeTest, AnAgentThatWroteBeforeTheServiceStartedIsStillWorking) {
  appendLine(rollout());
  startService();
  EXPECT_TRUE(waitFor([&] { return held("Codex is working"); })) << logindInhibitors();
  EXPECT_EQ(status()["agents"], nlohmann::json::array({"Codex"}));
}

TEST_F(AgentsAwakeTest, TurnedOffNothingIsHeldAndTurnedOnTheWorkingAgentIsFound) {
  settings(R"({"awakeWhileAgentsWork":false})");
  appendLine(transcript());
  startService();
  EXPECT_EQ(status()["active"], false);
  EXPECT_TRUE(nothingHeld());
  ASSERT_EQ(korvo({"settings", "awakeWhileAgentsWork", "true"}).exitCode, 0);
  EXPECT_TRUE(waitFor([&] { return held("Claude Code is working"); })) << logindInhibitors();
  ASSERT_EQ(korvo({"settings", "awakeWhileAgentsWork", "false"}).exitCode, 0);
  EXPECT_TRUE(waitFor([&] { return nothingHeld(); }));
  EXPECT_EQ(status()["agents"], nlohmann::json::array());
}

TEST_F(AgentsAwakeTest, ASessionThatRunsOutWhileCodexWorksHandsOverToTheAgentsHold) {
  mockNotifications();
  settings(R"({"agentIdleMinutes":1})");
  startService({{"KORVO_TIME_RATE", "60"}});  // the session's minute passes in a second
  {
    const Writer codex(rollout());
    ASSERT_TRUE(waitFor([&] { return held("Codex is working"); }));
    ASSERT_EQ(korvo({"awake", "start", "1m"}).exitCode, 0);
    EXPECT_TRUE(held("Keep Awake session")) << logindInhibitors();
    EXPECT_FALSE(held("Codex is working")) << logindInhibitors();
    EXPECT_EQ(status()["reason"], "session");
    EXPECT_TRUE(waitFor([&] { return status()["reason"] == "agents"; }));
    EXPECT_TRUE(held("Codex is working")) << logindInhibitors();
    EXPECT_THAT(callsTo("org.freedesktop.Notifications", "/org/freedesktop/Notifications"),
                HasSubstr("<'Keep Awake ended'>, <'This machine stays awake until Codex has "
                          "been quiet for 1 min.'>"));
  }
  EXPECT_TRUE(waitFor([&] { return nothingHeld(); }));
  EXPECT_EQ(status()["active"], false);
}

TEST_F(AgentsAwakeTest, TheAgentsHoldSaysWhenItStartsAndEndsUnlessNoticesAreOff) {
  mockNotifications();
  const auto notices = [&] {
    return callsTo("org.freedesktop.Notifications", "/org/freedesktop/Notifications");
  };
  settings(R"({"agentIdleMinutes":1})");
  startService({{"KORVO_TIME_RATE", "20"}});
  {
    // Codex keeps writing until the notice is out: a service slow to start (under the sanitizers,
    // with the clock twenty times faster) may take a single line for an old one.
    const Writer codex(rollout());
    EXPECT_TRUE(waitFor([&] { return notices().find("'Codex is working'") != std::string::npos; }));
  }
  EXPECT_TRUE(waitFor([&] { return notices().find("'Codex is quiet'") != std::string::npos; }));

  service->stop();
  settings(R"({"agentIdleMinutes":1,"agentNotices":false})");
  startService({{"KORVO_TIME_RATE", "20"}});
  const auto before = notices();
  {
    const Writer claude(transcript());
    ASSERT_TRUE(waitFor([&] { return held("Claude Code is working"); }));
  }
  ASSERT_TRUE(waitFor([&] { return nothingHeld(); }));
  EXPECT_EQ(notices(), before);
}

}  // namespace
}  // namespace korvo
