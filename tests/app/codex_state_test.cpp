#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "app/codex_state_file.hpp"
#include "support/files.hpp"
#include "support/korvo_process.hpp"

namespace korvo {
namespace {

using testing_support::KorvoWorld;
using testing_support::readFile;

// A rollout as Codex writes it for a Pro user with a second, model-specific limit.
const std::string rollout =
    R"({"timestamp":"2026-11-15T01:30:00.120Z","type":"session_meta","payload":{"id":"0199a0b1-0000-7000-8000-000000000009","cwd":"/home/user/project","originator":"codex_cli_rs","cli_version":"0.58.0"}})"
    "\n"
    R"({"timestamp":"2026-11-15T01:30:05.000Z","type":"event_msg","payload":{"type":"token_count","info":null,"rate_limits":{"limit_id":"codex","limit_name":null,"primary":{"used_percent":20.0,"window_minutes":300,"resets_at":1794720000},"secondary":{"used_percent":40.0,"window_minutes":10080,"resets_at":1795100000},"credits":{"has_credits":true,"unlimited":false,"balance":"5.39"},"plan_type":"pro"}}})"
    "\n"
    R"({"timestamp":"2026-11-15T01:30:06.000Z","type":"event_msg","payload":{"type":"token_count","info":null,"rate_limits":{"limit_id":"codex_bengalfox","limit_name":"GPT-5.1-Codex-Max","primary":{"used_percent":3.0,"window_minutes":300,"resets_at":1794720000},"secondary":null,"credits":null,"plan_type":"pro"}}})"
    "\n";

const std::string expectedState =
    R"({"rollouts":{"source":"Codex CLI","fetchedAt":"2026-11-15T01:30:05Z","windows":[{"title":"5-hour","usedPercent":20.0,"resetsAt":"2026-11-15T05:20:00Z"},{"title":"Weekly","usedPercent":40.0,"resetsAt":"2026-11-19T14:53:20Z"}],"planType":"pro","credits":{"hasCredits":true,"unlimited":false,"balance":"5.39"},"otherLimits":[{"limitId":"codex_bengalfox","limitName":"GPT-5.1-Codex-Max","fetchedAt":"2026-11-15T01:30:06Z","windows":[{"title":"5-hour","usedPercent":3.0,"resetsAt":"2026-11-15T05:20:00Z"}]}]}})"
    "\n";

// A world whose Codex is read from its rollouts alone.
class RolloutWorld : public KorvoWorld {
 public:
  RolloutWorld() { write("config/korvo/settings.json", R"({"codexLive": false})"); }
};

std::filesystem::path stateFile(const KorvoWorld& world) {
  return world.home() / ".local/state/korvo/codex.json";
}

mode_t permissions(const std::filesystem::path& path) {
  struct stat status {};
  ::stat(path.c_str(), &status);
  return status.st_mode & 07777;
}

TEST(CodexStateTest, PublishKeepsPlanCreditsAndOtherLimitsInKorvosOwnPrivateState) {
  RolloutWorld world;
  world.write("codex/sessions/2026/11/15/rollout-a.jsonl", rollout);
  const mode_t previous = ::umask(0);
  const auto result = world.korvo({"publish"});
  ::umask(previous);
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(readFile(stateFile(world)), expectedState);
  EXPECT_EQ(permissions(stateFile(world)), 0600u);
  EXPECT_EQ(permissions(stateFile(world).parent_path()), 0700u);
  // The shared file keeps the format the widgets read: none of these go there.
  const std::string shared = readFile(world.sharedFile());
  for (const char* kept : {"pro", "5.39", "bengalfox", "Codex-Max", "credits", "plan"}) {
    EXPECT_EQ(shared.find(kept), std::string::npos) << kept;
  }
}

TEST(CodexStateTest, PrintWritesNoState) {
  RolloutWorld world;
  world.write("codex/sessions/2026/11/15/rollout-a.jsonl", rollout);
  world.write("codex/sessions/2026/11/14/rollout-team.jsonl", "{}\n");
  ASSERT_EQ(world.korvo({"publish", "--print"}).exitCode, 0);
  EXPECT_FALSE(std::filesystem::exists(stateFile(world)));
  EXPECT_FALSE(std::filesystem::exists(world.home() / ".cache"));
}

TEST(CodexStateTest, PublishRemembersRolloutsWithoutLimitsPrivatelyByNameSizeAndTime) {
  RolloutWorld world;
  const auto team =
      world.write("codex/sessions/2026/11/14/rollout-team.jsonl",
                  R"({"type":"event_msg","payload":{"type":"token_count","rate_limits":null}})"
                  "\n");
  world.write("codex/sessions/2026/11/15/rollout-a.jsonl", rollout);
  const mode_t previous = ::umask(0);
  const auto result = world.korvo({"publish"});
  ::umask(previous);
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const auto memo = world.home() / ".cache/korvo/codex-rollouts.memo";
  const std::string text = readFile(memo);
  EXPECT_NE(text.find(" " + team.string() + "\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("rollout-a"), std::string::npos) << "a rollout with limits was remembered";
  EXPECT_EQ(text.find("token_count"), std::string::npos);
  EXPECT_EQ(permissions(memo), 0600u);
  EXPECT_EQ(permissions(memo.parent_path()), 0700u);
}

TEST(CodexStateTest, APublishWithoutAReadingKeepsTheLastState) {
  RolloutWorld world;
  world.write("codex/sessions/2026/11/15/rollout-a.jsonl", rollout);
  ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
  world.write(
      "codex/sessions/2026/11/15/rollout-a.jsonl",
      R"({"timestamp":"2026-11-15T02:00:00Z","type":"event_msg","payload":{"type":"token_count","info":null,"rate_limits":null}})"
      "\n");
  ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
  EXPECT_EQ(readFile(stateFile(world)), expectedState);
}

TEST(CodexStateTest, ANewerZipBombOrCorruptRolloutLeavesThePublishedFiguresAsTheyWere) {
  RolloutWorld world;
  world.write("codex/sessions/2026/11/15/rollout-a.jsonl", rollout);
  ASSERT_EQ(world.korvo({"publish", "--now", "2026-11-15T02:00:00Z"}).exitCode, 0);
  const auto figures = [&] {
    const std::string shared = readFile(world.sharedFile());
    return shared.substr(shared.find(R"("codex")"));
  };
  const std::string before = figures();
  ASSERT_NE(before.find(R"("usedPercent":20)"), std::string::npos) << before;
  // 3 GiB of zeros in 48 frames of a few kilobytes, and a rollout cut short, both newer.
  const auto day = world.codexHome() / "sessions/2026/11/16";
  std::filesystem::create_directories(day);
  ASSERT_EQ(
      std::system(("head -c 64M /dev/zero | zstd -3 -q -c > '" + (day / "frame").string() +
                   "' && for i in $(seq 48); do cat '" + (day / "frame").string() + "'; done > '" +
                   (day / "rollout-bomb.jsonl.zst").string() + "' && printf '" +
                   rollout.substr(0, 300) + "' | zstd -3 -q -c | head -c 100 > '" +
                   (day / "rollout-cut.jsonl.zst").string() + "'")
                      .c_str()),
      0);
  const auto result = world.korvo({"publish", "--now", "2026-11-16T02:00:00Z"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(figures(), before);
  EXPECT_EQ(readFile(stateFile(world)), expectedState);
}

TEST(CodexStateTest, OtherKeysOfTheFileAreKeptAndABrokenFileIsStartedAnew) {
  const CodexLimits limits{
      UsageSnapshot{{{"5-hour", 1, std::nullopt}}, Date::fromUnixSeconds(0), "Codex CLI"},
      "/home/u/.codex/sessions/2026/11/15/rollout-a.jsonl",
      "plus",
      std::nullopt,
      {}};
  const std::string reading =
      R"({"source":"Codex CLI","fetchedAt":"1970-01-01T00:00:00Z","windows":[{"title":"5-hour","usedPercent":1.0,"resetsAt":null}],"planType":"plus","credits":null,"otherLimits":[]})";
  EXPECT_EQ(codex_state_file::document(R"({"live":{"x":1},"rollouts":{"old":true}})", {limits, {}}),
            R"({"live":{"x":1},"rollouts":)" + reading + "}\n");
  for (const std::string& broken :
       std::vector<std::string>{"", "[1]", "{\"a\":", std::string(5000, '[')}) {
    EXPECT_EQ(codex_state_file::document(broken, {limits, {}}),
              R"({"rollouts":)" + reading + "}\n");
  }
}

}  // namespace
}  // namespace korvo
