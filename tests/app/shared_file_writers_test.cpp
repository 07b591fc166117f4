#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <nlohmann/json.hpp>
#include <thread>

#include "shared/widget_snapshot_json.hpp"
#include "support/files.hpp"
#include "support/korvo_process.hpp"
#include "support/lock_holder.hpp"

// The writers of the shared file against other processes: one that holds the lock, a broken file,
// writers killed while they save.
namespace korvo {
namespace {

using testing_support::KorvoWorld;
using testing_support::LockHolder;
using testing_support::readFile;

const std::string statusInput =
    R"({"model":{"display_name":"Opus"},"rate_limits":{"five_hour":{"used_percentage":28,)"
    R"("resets_at":1794707100},"seven_day":{"used_percentage":42,"resets_at":1795000000}}})";

std::filesystem::path lockFile(const KorvoWorld& world) {
  return world.sharedFile().parent_path() / ".usage-snapshot.lock";
}

std::optional<WidgetSnapshot> shared(const KorvoWorld& world) {
  auto result = decodeWidgetSnapshot(readFile(world.sharedFile()));
  if (auto* snapshot = std::get_if<WidgetSnapshot>(&result)) return *snapshot;
  return std::nullopt;
}

// The hidden temporaries of unfinished saves beside the shared file.
std::vector<std::string> temporaries(const KorvoWorld& world) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(world.sharedFile().parent_path())) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with(".usage-snapshot.json.")) names.push_back(name);
  }
  return names;
}

// Rewrites the shared file's JSON with `change` applied.
void tamper(const KorvoWorld& world, const std::function<void(nlohmann::json&)>& change) {
  auto document = nlohmann::json::parse(readFile(world.sharedFile()));
  change(document);
  world.write("data/app-groups/group.com.tessmoor.Korvo/usage-snapshot.json", document.dump());
}

TEST(SharedFileWritersTest, TheStatusLineGivesUpOnAHeldLockPrintsItsLineAndWritesNothing) {
  KorvoWorld world;
  ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
  const std::string before = readFile(world.sharedFile());
  LockHolder holder(lockFile(world));

  const auto result = world.korvo({"claude-statusline"}, statusInput);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "5-hour · 72% left | Weekly · 58% left\n");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(readFile(world.sharedFile()), before);
  EXPECT_TRUE(holder.holding()) << "it returned while the lock was still held";
}

TEST(SharedFileWritersTest, PublishGivesUpOnAHeldLockWithOneLineNamingIt) {
  KorvoWorld world;
  std::filesystem::create_directories(world.sharedFile().parent_path());
  LockHolder holder(lockFile(world));

  const auto result = world.korvo({"publish"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "korvo: another process holds the lock " + lockFile(world).string() +
                            "; gave up after 10 s\n");
  EXPECT_FALSE(std::filesystem::exists(world.sharedFile()));
  EXPECT_TRUE(holder.holding()) << "it returned while the lock was still held";

  holder.release();
  EXPECT_EQ(world.korvo({"publish"}).exitCode, 0);
  EXPECT_TRUE(shared(world));
}

struct Malformation {
  const char* name;
  std::function<void(nlohmann::json&)> change;
};

const Malformation otherParts[] = {
    {"codex malformed",
     [](nlohmann::json& j) {
       j["codex"] = {{"enabled", "yes"}};
     }},
    {"codex missing", [](nlohmann::json& j) { j.erase("codex"); }},
    {"date missing", [](nlohmann::json& j) { j.erase("date"); }},
    {"temperature a string", [](nlohmann::json& j) { j["temperature"] = "hot"; }},
    {"temperatureEnabled missing", [](nlohmann::json& j) { j.erase("temperatureEnabled"); }},
};

TEST(SharedFileWritersTest, PublishKeepsClaudesFiguresWhenAnotherPartIsMalformed) {
  for (const auto& [name, change] : otherParts) {
    SCOPED_TRACE(name);
    KorvoWorld world;
    ASSERT_EQ(world.korvo({"claude-statusline"}, statusInput).exitCode, 0);
    const UsageState claude = shared(world)->claude;
    ASSERT_TRUE(claude.snapshot);
    tamper(world, change);
    ASSERT_FALSE(shared(world)) << "the file no longer decodes as a whole";

    ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
    const auto published = shared(world);
    ASSERT_TRUE(published);
    EXPECT_EQ(published->claude, claude);
    EXPECT_EQ(published->temperature, 62);
    EXPECT_EQ(published->codex.message, "No Codex sessions found");
  }
}

TEST(SharedFileWritersTest, TheStatusLineKeepsTheParts) {
  KorvoWorld world;
  ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
  const auto before = shared(world);
  ASSERT_TRUE(before && before->temperature);
  // Its own part malformed and the date gone: the file is unreadable as a whole.
  tamper(world, [](nlohmann::json& j) {
    j["claude"] = {{"enabled", 1}};
    j.erase("date");
  });

  ASSERT_EQ(world.korvo({"claude-statusline"}, statusInput).exitCode, 0);
  const auto written = shared(world);
  ASSERT_TRUE(written);
  EXPECT_EQ(written->temperature, before->temperature);
  EXPECT_EQ(written->temperatureDate, before->temperatureDate);
  EXPECT_EQ(written->temperatureEnabled, true);
  EXPECT_EQ(written->codex, before->codex);
  ASSERT_TRUE(written->claude.snapshot);
  EXPECT_EQ(written->claude.snapshot->windows.size(), 2u);
}

TEST(SharedFileWritersTest, TheStatusLineKeepsWhatAMalformedCodexPartDoesNotSpoil) {
  KorvoWorld world;
  ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
  const auto before = shared(world);
  tamper(world, [](nlohmann::json& j) { j["codex"]["isRefreshing"] = "no"; });

  ASSERT_EQ(world.korvo({"claude-statusline"}, statusInput).exitCode, 0);
  const auto written = shared(world);
  ASSERT_TRUE(written);
  EXPECT_EQ(written->temperature, before->temperature);
  // The malformed part starts afresh, as the settings say.
  EXPECT_EQ(written->codex, (UsageState{true, std::nullopt, std::nullopt, false}));
  EXPECT_TRUE(written->claude.snapshot);
}

// Starts `korvo publish` and kills it with SIGKILL after `delay`.
void killPublishAfter(const KorvoWorld& world, std::chrono::microseconds delay) {
  const pid_t pid =
      testing_support::startProgram(KORVO_APP_BINARY, {"publish"}, world.environment());
  ASSERT_GT(pid, 0);
  std::this_thread::sleep_for(delay);
  ::kill(pid, SIGKILL);
  ::waitpid(pid, nullptr, 0);
}

TEST(SharedFileWritersTest, KilledWritersTemporariesAreRemovedByTheNextWriter) {
  KorvoWorld world;
  ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
  // Each publish is killed the moment its temporary is written, as it goes to rename it.
  const auto killedMidWrite = [&] {
    const auto killed =
        testing_support::runProgram("/usr/bin/strace",
                                    {"-qq", "-o", "/dev/null", "-e", "trace=rename", "-e",
                                     "inject=rename:signal=KILL", KORVO_APP_BINARY, "publish"},
                                    world.environment());
    EXPECT_EQ(killed.exitCode, 128 + SIGKILL);
  };
  for (int round = 0; round < 3; ++round) killedMidWrite();
  // Each killed writer swept its predecessors' leftovers before leaving its own.
  ASSERT_EQ(temporaries(world).size(), 1u);
  ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
  EXPECT_THAT(temporaries(world), testing::IsEmpty());

  killedMidWrite();
  ASSERT_EQ(temporaries(world).size(), 1u);
  ASSERT_EQ(world.korvo({"claude-statusline"}, statusInput).exitCode, 0);
  EXPECT_THAT(temporaries(world), testing::IsEmpty());

  // Killed at every moment of their run.
  for (int step = 0; step < 50; ++step)
    killPublishAfter(world, std::chrono::microseconds(step * 200));
  ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
  EXPECT_THAT(temporaries(world), testing::IsEmpty());
  const auto published = shared(world);
  ASSERT_TRUE(published);
  EXPECT_EQ(published->temperature, 62);
  ASSERT_TRUE(published->claude.snapshot);
}

}  // namespace
}  // namespace korvo
