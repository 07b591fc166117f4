#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/files.hpp"
#include "support/korvo_process.hpp"

// korvo's refusals as the user reads them: one line, naming what is valid and why it failed.
namespace korvo {
namespace {

using testing::HasSubstr;
using testing_support::KorvoWorld;

struct Refusal {
  std::vector<std::string> args;
  std::string err;
};

void expectRefusals(const KorvoWorld& world, const std::vector<Refusal>& refusals) {
  for (const Refusal& refusal : refusals) {
    const auto result = world.korvo(refusal.args);
    EXPECT_EQ(result.exitCode, 2) << refusal.err;
    EXPECT_EQ(result.err, refusal.err);
    EXPECT_EQ(result.out, "") << refusal.err;
  }
}

TEST(KorvoMessagesTest, UnknownCommandsAndOptionsNameTheValidOnes) {
  KorvoWorld world;
  expectRefusals(
      world,
      {
          {{"bogus"},
           "korvo: unknown command \"bogus\"; valid: open, service, publish, temperature, codex, "
           "usage, history, claude-statusline, awake, settings\n"},
          {{"awake", "bogus"},
           "korvo: unknown subcommand \"bogus\"; valid: --help, start, extend, stop, status\n"},
          {{"publish", "--loud"},
           "korvo: The following argument was not expected: --loud; valid: --help, --print, "
           "--now\n"},
          {{"awake"},
           "korvo: A subcommand is required; valid: --help, start, extend, stop, status\n"},
      });
}

TEST(KorvoMessagesTest, AnEmptyValueIsRefusedNotTakenForNone) {
  KorvoWorld world;
  expectRefusals(
      world,
      {
          {{"publish", "--now", ""},
           "korvo: --now: not a moment: \"\"; valid: ISO 8601 with a zone or Unix seconds\n"},
          {{"awake", "start", ""},
           "korvo: not a duration: \"\"; valid: 90s, 15m, 2h, 1h30m (up to a year) or "
           "indefinitely\n"},
          {{"awake", "extend", ""},
           "korvo: not a duration: \"\"; valid: 90s, 15m, 2h, 1h30m (up to a year) or "
           "indefinitely\n"},
          {{"claude-statusline", "--chain", ""},
           "korvo: --chain: empty; valid: the command to run with the same input\n"},
          {{"settings", "temperature", ""},
           "korvo: temperature: not a boolean: \"\"; valid: true, false\n"},
          {{"settings", "publishSeconds", ""},
           "korvo: publishSeconds: not a whole number in 5–3600: \"\"\n"},
          {{"settings", "memoryDisplayMode", ""},
           "korvo: memoryDisplayMode: unknown mode \"\"; valid: usedPercent, usedGB, "
           "availablePercent, availableGB, usedOfTotal\n"},
          {{"settings", ""},
           "korvo: unknown setting \"\"; valid: temperature, codex, claude, codexHome, "
           "publishSeconds, awakeMinutes, memoryDisplayMode, waybarSignal, codexLive, "
           "codexLiveMinutes, codexCommand, "
           "awakeWhileAgentsWork, agentIdleMinutes, agentNotices, alertPercents, "
           "temperatureAlert, temperatureUnit\n"},
          {{"open", ""},
           "korvo: not a korvo:// link: \"\"; valid: korvo://usage, korvo://ai, "
           "korvo://resources, korvo://memory, korvo://awake\n"},
      });
  EXPECT_FALSE(std::filesystem::exists(world.settingsFile()));
}

TEST(KorvoMessagesTest, AnEmptyCodexHomeStillRemovesIt) {
  KorvoWorld world;
  ASSERT_EQ(world.korvo({"settings", "codexHome", "/srv/codex"}).exitCode, 0);
  const auto removed = world.korvo({"settings", "codexHome", ""});
  EXPECT_EQ(removed.exitCode, 0) << removed.err;
  EXPECT_EQ(world.korvo({"settings", "codexHome"}).out, "\n");
}

TEST(KorvoMessagesTest, ValuesEchoedAreEscapedOntoOneLine) {
  KorvoWorld world;
  expectRefusals(
      world,
      {
          {{"settings", "temperature", "on\nyes"},
           "korvo: temperature: not a boolean: \"on\\nyes\"; valid: true, false\n"},
          {{"settings", "col\x1bour", "red"},
           "korvo: unknown setting \"col\\x1Bour\"; valid: temperature, codex, claude, "
           "codexHome, publishSeconds, awakeMinutes, memoryDisplayMode, waybarSignal, codexLive, "
           "codexLiveMinutes, codexCommand, "
           "awakeWhileAgentsWork, agentIdleMinutes, agentNotices, alertPercents, "
           "temperatureAlert, temperatureUnit\n"},
          {{"settings", "codexHome", "relative\r"},
           "korvo: codexHome: not an absolute path: \"relative\\r\"\n"},
          {{"publish", "--now", "noon\n"},
           "korvo: --now: not a moment: \"noon\\n\"; valid: ISO 8601 with a zone or Unix "
           "seconds\n"},
          {{"awake", "start", "5m\t"},
           "korvo: not a duration: \"5m\\t\"; valid: 90s, 15m, 2h, 1h30m (up to a year) or "
           "indefinitely\n"},
          {{"bo\ngus"},
           "korvo: unknown command \"bo\\ngus\"; valid: open, service, publish, temperature, "
           "codex, usage, history, claude-statusline, awake, settings\n"},
      });
}

TEST(KorvoMessagesTest, ACodexHomeThatIsNotUtf8IsRefusedWithTheReason) {
  KorvoWorld world;
  expectRefusals(world, {{{"settings", "codexHome", "/tmp/\xff"},
                          "korvo: codexHome: not UTF-8, which the settings file cannot hold: "
                          "\"/tmp/\\xFF\"\n"}});
  EXPECT_FALSE(std::filesystem::exists(world.settingsFile()));
}

TEST(KorvoMessagesTest, InstallingFromAPathThatIsNotUtf8IsRefusedWithTheReason) {
  KorvoWorld world;
  const auto folder = world.home() / "bin\xff";
  std::filesystem::create_directories(folder);
  std::filesystem::copy_file(KORVO_APP_BINARY, folder / "korvo");
  const auto result = testing_support::runProgram(
      (folder / "korvo").string(), {"claude-statusline", "--install"}, world.environment());
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err,
            "korvo: korvo's own path is not UTF-8, which " + world.claudeSettings().string() +
                " cannot hold: " + world.home().string() + "/bin\\xFF/korvo; left untouched\n");
  EXPECT_FALSE(std::filesystem::exists(world.claudeSettings()));
}

TEST(KorvoMessagesTest, FilesThatCannotBeWrittenSayWhy) {
  KorvoWorld world;
  world.write("config/korvo", "a file where the folder goes");
  const auto settings = world.korvo({"settings", "codex", "false"});
  EXPECT_EQ(settings.exitCode, 1);
  EXPECT_EQ(settings.err, "korvo: cannot write settings " + world.settingsFile().string() +
                              ": cannot create its folder: Not a directory\n");

  world.write("data/app-groups", "a file where the folder goes");
  const auto publish = world.korvo({"publish"});
  EXPECT_EQ(publish.exitCode, 1);
  EXPECT_EQ(publish.err, "korvo: cannot create the folder of the shared file " +
                             world.sharedFile().parent_path().string() + ": Not a directory\n");
}

TEST(KorvoMessagesTest, AFolderNamedOutsideIsShownEscaped) {
  KorvoWorld world;
  world.write("data\n\xff/app-groups", "a file where the folder goes");
  auto environment = world.environment();
  environment["XDG_DATA_HOME"] = (world.home() / "data\n\xff").string();
  const auto result = testing_support::runProgram(KORVO_APP_BINARY, {"publish"}, environment);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "korvo: cannot create the folder of the shared file " +
                            world.home().string() +
                            "/data\\n\\xFF/app-groups/group.com.tessmoor.Korvo: Not a directory\n");
}

std::string rollout(const std::string& primaryUsed, const std::string& primaryMinutes,
                    const std::string& secondaryUsed) {
  return R"({"timestamp":"2026-11-15T01:30:21.5Z","type":"event_msg","payload":{"type":"token_count","rate_limits":{"limit_id":"codex","primary":{"used_percent":)" +
         primaryUsed + R"(,"window_minutes":)" + primaryMinutes +
         R"(,"resets_at":1794721500},"secondary":{"used_percent":)" + secondaryUsed +
         R"(,"window_minutes":10080,"resets_at":1795100000}}}})"
         "\n";
}

TEST(KorvoMessagesTest, ExtremeCodexFiguresPrintInAFewDigits) {
  KorvoWorld world;
  world.write("codex/sessions/2026/11/15/rollout-a.jsonl", rollout("-1e300", "1e300", "1e300"));
  const auto result = world.korvo({"codex"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out,
            "Weekly · 0% left · Resets Nov 19, 2026, 2:53 PM\n"
            "Annual · 1e+300% left · Resets Nov 15, 2026, 5:45 AM\n"
            "Fetched 2026-11-15T01:30:21.500Z from " +
                (world.codexHome() / "sessions/2026/11/15/rollout-a.jsonl").string() + "\n");
}

TEST(KorvoMessagesTest, ExtremeSettingsNumbersAreNotEchoedInFull) {
  KorvoWorld world;
  expectRefusals(world, {{{"settings", "publishSeconds", "1e300"},
                          "korvo: publishSeconds: not a whole number in 5–3600: \"1e300\"\n"}});
  world.write("config/korvo/settings.json", R"({"publishSeconds":-1e300})");
  const auto result = world.korvo({"settings", "publishSeconds"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "60\n");
  EXPECT_EQ(result.err, "korvo: settings " + world.settingsFile().string() +
                            ": publishSeconds must be a whole number in 5–3600; using the "
                            "defaults\n");
}

}  // namespace
}  // namespace korvo
