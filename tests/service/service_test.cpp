#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <functional>
#include <thread>

#include "shared/url.hpp"
#include "shared/widget_snapshot_store.hpp"
#include "support/files.hpp"
#include "support/korvo_process.hpp"
#include "support/lock_holder.hpp"

namespace korvo {
namespace {

using testing_support::KorvoWorld;

// Waits for `condition` to hold, giving up after a minute (a hang fails, nothing is timed).
bool eventually(const std::function<bool()>& condition) {
  const auto giveUp = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (std::chrono::steady_clock::now() < giveUp) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return false;
}

class ServiceTest : public testing::Test {
 protected:
  void start() {
    pid =
        testing_support::startProgram(KORVO_APP_BINARY, {"service"}, world.environment(), errorLog);
    ASSERT_GT(pid, 0);
  }
  void TearDown() override {
    if (pid <= 0) return;
    ::kill(pid, SIGTERM);
    int status = 0;
    ::waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the service ends cleanly";
  }
  std::optional<WidgetSnapshot> snapshot() const {
    return WidgetSnapshotStore::load(Url::file(world.sharedFile()));
  }

  KorvoWorld world;
  std::optional<std::filesystem::path> errorLog;  // where the service's log goes, else inherited
  pid_t pid = 0;
};

TEST_F(ServiceTest, ItPublishesAtStartAndAgainEveryPublishSeconds) {
  ASSERT_EQ(world.korvo({"settings", "publishSeconds", "5"}).exitCode, 0);
  start();
  ASSERT_TRUE(eventually([&] { return snapshot().has_value(); }));
  const Date first = snapshot()->date;
  EXPECT_TRUE(eventually([&] { return snapshot()->date > first; }));
  EXPECT_EQ(snapshot()->temperature, 62);
}

TEST_F(ServiceTest, ASettingsChangeRepublishesAtOnce) {
  ASSERT_EQ(world.korvo({"settings", "publishSeconds", "3600"}).exitCode, 0);
  start();
  ASSERT_TRUE(eventually([&] { return snapshot() && snapshot()->temperature; }));
  ASSERT_EQ(world.korvo({"settings", "temperature", "false"}).exitCode, 0);
  // Only the change can cause this: the next timed publication is an hour away.
  EXPECT_TRUE(eventually([&] { return !snapshot()->temperatureEnabled; }));
  EXPECT_EQ(snapshot()->temperature, std::nullopt);
  ASSERT_EQ(world.korvo({"settings", "codex", "false"}).exitCode, 0);
  EXPECT_TRUE(eventually([&] { return !snapshot()->codex.enabled; }));
}

TEST_F(ServiceTest, APublishGivesUpOnAHeldLockWithALogLineAndTheNextOneWrites) {
  ASSERT_EQ(world.korvo({"settings", "publishSeconds", "5"}).exitCode, 0);
  const auto lock = world.sharedFile().parent_path() / ".usage-snapshot.lock";
  std::filesystem::create_directories(lock.parent_path());
  testing_support::LockHolder holder(lock);
  errorLog = world.home() / "service.err";
  start();
  const std::string line =
      "korvo service: another process holds the lock " + lock.string() + "; gave up after 10 s\n";
  EXPECT_TRUE(eventually([&] { return testing_support::readFile(*errorLog) == line; }))
      << testing_support::readFile(*errorLog);
  EXPECT_FALSE(snapshot());
  EXPECT_TRUE(holder.holding());

  holder.release();
  EXPECT_TRUE(eventually([&] { return snapshot().has_value(); }));
  EXPECT_EQ(snapshot()->temperature, 62);
}

}  // namespace
}  // namespace korvo
