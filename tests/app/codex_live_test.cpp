#include "app/codex_live.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <thread>

#include "support/files.hpp"
#include "support/scoped_environment.hpp"
#include "support/temporary_directory.hpp"

namespace korvo::codex_live {
namespace {

using namespace std::chrono_literals;
using testing_support::readFile;
using testing_support::ScopedEnvironment;
using testing_support::TemporaryDirectory;

const std::string standIn = KORVO_FIXTURES_DIR "/codex/app_server_stand_in.py";

// The stand-in in one of its modes, with the pid of the child it leaves running recorded.
class StandIn {
 public:
  explicit StandIn(const std::string& mode) {
    environment_.set("KORVO_STAND_IN_MODE", mode);
    environment_.set("KORVO_STAND_IN_CHILD_PID", (folder_.path() / "child").string());
    environment_.set("KORVO_STAND_IN_LOG", (folder_.path() / "log").string());
  }

  // Whether the child the stand-in started still runs a few seconds on (a SIGKILL takes a moment
  // to land in another process).
  bool childRuns() const {
    const auto file = folder_.path() / "child";
    if (!std::filesystem::exists(file)) return false;
    const std::string stat = "/proc/" + readFile(file) + "/stat";
    for (int tries = 0; tries < 100; ++tries) {
      // A killed child whose parent went first waits as a zombie for init: that is not running.
      const std::string status = readFile(stat);
      const auto state = status.rfind(") ");
      if (state == std::string::npos || status.compare(state + 2, 1, "Z") == 0) return false;
      std::this_thread::sleep_for(50ms);
    }
    return true;
  }
  std::string log() const {
    const auto file = folder_.path() / "log";
    return std::filesystem::exists(file) ? readFile(file) : std::string();
  }
  std::filesystem::path lockFile() const { return folder_.path() / "state/.codex-live.lock"; }

 private:
  TemporaryDirectory folder_;
  ScopedEnvironment environment_;
};

// How many processes run with `variable` (NAME=value) in their environment.
int processesWith(const std::string& variable) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::string name = entry.path().filename();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    std::error_code error;
    if (!std::filesystem::exists(entry.path() / "environ", error)) continue;
    std::string environment;
    try {
      environment = readFile(entry.path() / "environ");
    } catch (const std::exception&) {
      continue;  // it ended meanwhile
    }
    const std::string needle = variable + '\0';
    if (environment.starts_with(needle) || environment.find('\0' + needle) != std::string::npos) {
      ++count;
    }
  }
  return count;
}

TEST(CodexLiveTest, TheSignedInAnswerGivesCodexsLimitsPlanCreditsAndOthers) {
  const StandIn server("answer");
  const Outcome outcome = ask(standIn, 10s, std::nullopt);
  ASSERT_TRUE(outcome.limits) << outcome.failure.value_or("");
  EXPECT_FALSE(outcome.failure);
  const auto& windows = outcome.limits->snapshot.windows;
  ASSERT_EQ(windows.size(), 2u);
  EXPECT_EQ(windows[0].title, "5-hour");
  EXPECT_EQ(windows[0].usedPercent, 25);
  EXPECT_EQ(windows[1].title, "Weekly");
  EXPECT_EQ(windows[1].usedPercent, 61);
  EXPECT_EQ(windows[1].resetsAt, Date::fromUnixSeconds(1796000000));
  EXPECT_EQ(outcome.limits->snapshot.source, "Codex app-server");
  EXPECT_EQ(outcome.limits->planType, "plus");
  ASSERT_TRUE(outcome.limits->credits);
  EXPECT_EQ(outcome.limits->credits->balance, "12.50");
  ASSERT_EQ(outcome.limits->otherLimits.size(), 1u);
  EXPECT_EQ(outcome.limits->otherLimits[0].limitName, "GPT-5.1-Codex-Max");
  EXPECT_EQ(server.log(), "app-server\n");
  EXPECT_FALSE(server.childRuns()) << "the process group outlived the answer";
}

TEST(CodexLiveTest, AnErrorAnswerIsTheFailure) {
  const StandIn server("error");
  const Outcome outcome = ask(standIn, 10s, std::nullopt);
  EXPECT_FALSE(outcome.limits);
  EXPECT_EQ(outcome.failure,
            "Codex app-server: codex account authentication required to read rate limits");
  EXPECT_FALSE(server.childRuns());
}

TEST(CodexLiveTest, AHangingServerIsEndedWithItsWholeGroupAtTheDeadline) {
  const StandIn server("hang");
  const auto started = std::chrono::steady_clock::now();
  const Outcome outcome = ask(standIn, 1500ms, std::nullopt);
  EXPECT_GE(std::chrono::steady_clock::now() - started, 1500ms);
  EXPECT_FALSE(outcome.limits);
  EXPECT_EQ(outcome.failure, "Codex app-server: no answer within 1 s");
  EXPECT_FALSE(server.childRuns()) << "the launcher's child outlived the deadline";
}

TEST(CodexLiveTest, CrashGarbageFloodAndEmptyAnswersAreFailuresWithoutLimits) {
  const std::pair<const char*, const char*> cases[] = {
      {"crash", "Codex app-server: it ended without answering"},
      {"garbage", "Codex app-server: it ended without answering"},
      {"flood", "Codex app-server: it printed too much without answering"},
      {"none", "Codex app-server: the answer holds no limits"},
  };
  for (const auto& [mode, failure] : cases) {
    const StandIn server(mode);
    const Outcome outcome = ask(standIn, 10s, std::nullopt);
    EXPECT_FALSE(outcome.limits) << mode;
    EXPECT_EQ(outcome.failure, failure) << mode;
    EXPECT_FALSE(server.childRuns()) << mode;
  }
}

TEST(CodexLiveTest, AMissingProgramIsAFailureNamingIt) {
  const Outcome outcome = ask("/nonexistent/codex", 10s, std::nullopt);
  EXPECT_EQ(outcome.failure, "Codex app-server: cannot start /nonexistent/codex");
  EXPECT_EQ(ask("codex-not-on-path-\n", 10s, std::nullopt).failure,
            "Codex app-server: cannot start codex-not-on-path-\\n");
}

TEST(CodexLiveTest, AnAskAlreadyRunningIsNotDoubled) {
  const StandIn server("answer");
  std::filesystem::create_directories(server.lockFile().parent_path());
  const int held = ::open(server.lockFile().c_str(), O_RDWR | O_CREAT, 0600);
  ASSERT_GE(held, 0);
  ASSERT_EQ(::flock(held, LOCK_EX), 0);
  EXPECT_EQ(ask(standIn, 10s, server.lockFile()), Outcome{});
  EXPECT_EQ(server.log(), "") << "a second app-server was started";
  ::close(held);
  EXPECT_TRUE(ask(standIn, 10s, server.lockFile()).limits);
}

// The real Codex CLI, not signed in: it answers initialize, refuses the rate limits, and its
// npm launcher's native child goes with the group.
TEST(CodexLiveTest, TheRealCodexAppServerAnswersTheHandshakeAndRefusesWithoutSignIn) {
  ASSERT_TRUE(std::filesystem::exists(KORVO_CODEX_CLI))
      << KORVO_CODEX_CLI << " is missing: run scripts/install-deps";
  const TemporaryDirectory home;
  ScopedEnvironment environment;
  environment.set("CODEX_HOME", (home.path() / "codex").string());
  environment.set("HOME", home.path().string());
  std::filesystem::create_directories(home.path() / "codex");
  const Outcome outcome = ask(KORVO_CODEX_CLI, 10s, std::nullopt);
  EXPECT_FALSE(outcome.limits);
  EXPECT_EQ(outcome.failure,
            "Codex app-server: codex account authentication required to read rate limits");
  EXPECT_EQ(processesWith("CODEX_HOME=" + (home.path() / "codex").string()), 0)
      << "a process of the app-server outlived the ask";
}

}  // namespace
}  // namespace korvo::codex_live
