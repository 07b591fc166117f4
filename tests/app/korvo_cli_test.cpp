#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "shared/widget_snapshot_json.hpp"
#include "support/files.hpp"
#include "support/korvo_process.hpp"
#include "support/unprivileged.hpp"

namespace korvo {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using testing_support::KorvoWorld;
using testing_support::readFile;

const std::string rolloutLine =
    R"({"timestamp":"2026-11-15T01:30:21.5Z","type":"event_msg","payload":{"type":"token_count","info":null,"rate_limits":{"limit_id":"codex","primary":{"used_percent":28.0,"window_minutes":300,"resets_at":1794721500},"secondary":{"used_percent":42.0,"window_minutes":10080,"resets_at":1795100000}}}})"
    "\n";

WidgetSnapshot decoded(const std::string& bytes) {
  auto result = decodeWidgetSnapshot(bytes);
  if (auto* failure = std::get_if<DecodeFailure>(&result)) ADD_FAILURE() << failure->reason;
  return std::get_if<WidgetSnapshot>(&result) ? std::get<WidgetSnapshot>(result) : WidgetSnapshot{};
}

TEST(KorvoPublishTest, PublishWritesTheTemperatureAndCodexsWindows) {
  KorvoWorld world;
  world.write("codex/sessions/2026/11/15/rollout-a.jsonl", rolloutLine);
  const auto result = world.korvo({"publish", "--now", "2026-11-15T01:45:00Z"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(
      readFile(world.sharedFile()),
      R"({"date":816399900,"temperature":62,"temperatureDate":816399900,"temperatureEnabled":true,)"
      R"("codex":{"enabled":true,"snapshot":{"windows":[{"title":"5-hour","usedPercent":28,"resetsAt":816414300},)"
      R"({"title":"Weekly","usedPercent":42,"resetsAt":816792800}],"fetchedAt":816399021.5,"source":"Codex CLI"},"isRefreshing":false},)"
      R"("claude":{"enabled":true,"message":"Claude status line not set up","isRefreshing":false}})");
}

TEST(KorvoPublishTest, PrintShowsTheBytesAndWritesNothing) {
  KorvoWorld world;
  const auto result = world.korvo({"publish", "--print", "--now", "816399900"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_FALSE(std::filesystem::exists(world.sharedFile()));
  EXPECT_THAT(result.out, StartsWith(R"({"date":-161907300,"temperature":62,)"));
  EXPECT_EQ(result.out.back(), '}');
}

TEST(KorvoPublishTest, PublishKeepsClaudesFiguresAndTheSettingsSwitchPartsOff) {
  KorvoWorld world;
  world.korvo(
      {"claude-statusline"},
      R"({"rate_limits":{"five_hour":{"used_percentage":30},"seven_day":{"used_percentage":60}}})");
  ASSERT_EQ(world.korvo({"settings", "temperature", "false"}).exitCode, 0);
  ASSERT_EQ(world.korvo({"settings", "codex", "false"}).exitCode, 0);
  ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
  const auto snapshot = decoded(readFile(world.sharedFile()));
  EXPECT_FALSE(snapshot.temperatureEnabled);
  EXPECT_EQ(snapshot.temperature, std::nullopt);
  EXPECT_EQ(snapshot.codex, UsageState{});
  ASSERT_TRUE(snapshot.claude.snapshot);
  EXPECT_EQ(snapshot.claude.snapshot->windows.at(1).usedPercent, 60);
}

TEST(KorvoPublishTest, ABadNowIsAUsageError) {
  KorvoWorld world;
  const auto result = world.korvo({"publish", "--now", "yesterday"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.err,
            "korvo: --now: not a moment: \"yesterday\"; valid: ISO 8601 with a zone or Unix "
            "seconds\n");
}

TEST(KorvoPublishTest, NoPlaceForTheSharedFileFailsInOneLine) {
  KorvoWorld world;
  auto environment = world.environment();
  environment.erase("HOME");
  environment.erase("XDG_DATA_HOME");
  const auto result = testing_support::runProgram(KORVO_APP_BINARY, {"publish"}, environment);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, StartsWith("korvo: no place for the shared file"));
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
}

TEST(KorvoTemperatureTest, TextAndJsonNameTheSensor) {
  KorvoWorld world;
  const auto text = world.korvo({"temperature"});
  EXPECT_EQ(text.exitCode, 0);
  EXPECT_EQ(text.out, "62.0°C · coretemp · Package id 1 · /sys/class/hwmon/hwmon1/temp1_input\n");
  const auto json = world.korvo({"temperature", "--json"});
  EXPECT_EQ(
      json.out,
      R"({"celsius":62.0,"chip":"coretemp","label":"Package id 1","file":"/sys/class/hwmon/hwmon1/temp1_input"})"
      "\n");
}

// A sensor's names come from the kernel as bytes: what is not UTF-8, and control characters, are
// shown escaped in both forms, never as a library's error.
TEST(KorvoTemperatureTest, NamesThatAreNotUtf8AreShownEscaped) {
  KorvoWorld world;
  world.write("sys/sys/class/hwmon/hwmon\xff/name", "coretemp\n");
  world.write("sys/sys/class/hwmon/hwmon\xff/temp1_label", "Package id \xe9\x1b\n");
  world.write("sys/sys/class/hwmon/hwmon\xff/temp1_input", "71000\n");
  world.setSysroot(world.home() / "sys");
  const auto text = world.korvo({"temperature"});
  EXPECT_EQ(text.exitCode, 0) << text.err;
  EXPECT_EQ(
      text.out,
      "71.0°C · coretemp · Package id \\xE9\\x1B · /sys/class/hwmon/hwmon\\xFF/temp1_input\n");
  const auto json = world.korvo({"temperature", "--json"});
  EXPECT_EQ(json.exitCode, 0) << json.err;
  const auto document = nlohmann::json::parse(json.out);
  EXPECT_EQ(document["label"], "Package id \\xE9\\x1B");
  EXPECT_EQ(document["file"], "/sys/class/hwmon/hwmon\\xFF/temp1_input");
}

TEST(KorvoTemperatureTest, NoSensorExitsOne) {
  KorvoWorld world(KORVO_FIXTURES_DIR "/hwmon/nvme_and_amdgpu_only");
  const auto result = world.korvo({"temperature"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, StartsWith("korvo: no CPU temperature sensor under "));
  EXPECT_EQ(result.out, "");
}

TEST(KorvoCodexTest, JsonShowsTheStateAndTheRollout) {
  KorvoWorld world;
  const auto rollout = world.write("codex/sessions/2026/11/15/rollout-a.jsonl", rolloutLine);
  const auto result = world.korvo({"codex", "--json"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  const auto document = nlohmann::json::parse(result.out);
  EXPECT_EQ(document["rollout"], rollout.string());
  EXPECT_EQ(document["state"]["snapshot"]["windows"][1]["title"], "Weekly");
  EXPECT_EQ(document["state"]["snapshot"]["source"], "Codex CLI");
}

TEST(KorvoCodexTest, TheCodexHomeSettingIsWhereRolloutsAreLooked) {
  KorvoWorld world;
  world.write("elsewhere/sessions/2026/11/15/rollout-a.jsonl", rolloutLine);
  ASSERT_EQ(world.korvo({"settings", "codexHome", (world.home() / "elsewhere").string()}).exitCode,
            0);
  const auto result = world.korvo({"codex"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_THAT(result.out, StartsWith("5-hour · 72% left · Resets "));
}

TEST(KorvoCodexTest, ARolloutNameThatIsNotUtf8IsShownEscaped) {
  KorvoWorld world;
  world.write("codex/sessions/2026/11/15/rollout-\xff.jsonl", rolloutLine);
  const auto json = world.korvo({"codex", "--json"});
  EXPECT_EQ(json.exitCode, 0) << json.err;
  EXPECT_EQ(nlohmann::json::parse(json.out)["rollout"],
            (world.codexHome() / "sessions/2026/11/15/rollout-\\xFF.jsonl").string());
  const auto text = world.korvo({"codex"});
  EXPECT_EQ(text.exitCode, 0) << text.err;
  EXPECT_THAT(text.out, HasSubstr("rollout-\\xFF.jsonl\n"));
}

TEST(KorvoCodexTest, WithoutSessionsTheMessageShowsAndItExitsOne) {
  KorvoWorld world;
  const auto result = world.korvo({"codex"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.out, "No Codex sessions found\n");
}

TEST(KorvoSettingsTest, ChangesKeepOtherKeysAndReadBack) {
  KorvoWorld world;
  world.write("config/korvo/settings.json", R"({"futureKey":[1,2],"claude":false})");
  EXPECT_EQ(world.korvo({"settings", "publishSeconds", "300"}).exitCode, 0);
  EXPECT_EQ(world.korvo({"settings", "publishSeconds"}).out, "300\n");
  EXPECT_EQ(world.korvo({"settings", "claude"}).out, "false\n");
  EXPECT_EQ(nlohmann::json::parse(readFile(world.settingsFile())),
            nlohmann::json::parse(R"({"futureKey":[1,2],"claude":false,"publishSeconds":300})"));
}

TEST(KorvoSettingsTest, ABadFileIsNamedOnceDefaultsAreUsedAndItIsLeftAsItIs) {
  KorvoWorld world;
  const std::string bad = R"({"publishSeconds":"soon"})";
  world.write("config/korvo/settings.json", bad);
  const auto shown = world.korvo({"settings"});
  EXPECT_EQ(shown.exitCode, 0);
  EXPECT_EQ(shown.err, "korvo: settings " + world.settingsFile().string() +
                           ": wrong type at publishSeconds: expected number, found string; using "
                           "the defaults\n");
  EXPECT_THAT(shown.out, HasSubstr("\"publishSeconds\": 60"));
  const auto set = world.korvo({"settings", "codex", "false"});
  EXPECT_EQ(set.exitCode, 1);
  EXPECT_THAT(set.err, HasSubstr("left as it is"));
  EXPECT_EQ(readFile(world.settingsFile()), bad);
}

TEST(KorvoSettingsTest, UnknownKeysAndBadValuesAreUsageErrors) {
  KorvoWorld world;
  const std::vector<std::vector<std::string>> cases{
      {"settings", "colour"},
      {"settings", "colour", "red"},
      {"settings", "publishSeconds", "2"},
      {"settings", "temperature", "on"},
  };
  for (const auto& args : cases) {
    const auto result = world.korvo(args);
    EXPECT_EQ(result.exitCode, 2) << args[1];
    EXPECT_THAT(result.err, StartsWith("korvo: ")) << args[1];
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << args[1];
  }
  EXPECT_FALSE(std::filesystem::exists(world.settingsFile()));
}

TEST(KorvoSettingsTest, ASymlinkedSettingsFileStaysALinkAndItsTargetIsChanged) {
  KorvoWorld world;
  const auto dotfile = world.write("dotfiles/korvo.json", R"({"claude":false})");
  std::filesystem::create_directories(world.settingsFile().parent_path());
  std::filesystem::create_symlink(dotfile, world.settingsFile());
  ASSERT_EQ(world.korvo({"settings", "publishSeconds", "300"}).exitCode, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(world.settingsFile()));
  EXPECT_EQ(nlohmann::json::parse(readFile(dotfile)),
            nlohmann::json::parse(R"({"claude":false,"publishSeconds":300})"));
  EXPECT_EQ(world.korvo({"settings", "publishSeconds"}).out, "300\n");
}

TEST(KorvoSettingsTest, AReadOnlySettingsFileIsRefusedInOneLineAndLeftAsItIs) {
  KorvoWorld world;
  KORVO_AS_UNPRIVILEGED_USER(world.home());
  const std::string original = R"({"claude":false})";
  world.write("config/korvo/settings.json", original);
  std::filesystem::permissions(world.settingsFile(), std::filesystem::perms::owner_read |
                                                         std::filesystem::perms::group_read |
                                                         std::filesystem::perms::others_read);
  const auto result = world.korvo({"settings", "codex", "false"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "korvo: settings " + world.settingsFile().string() +
                            ": it is read-only; left as it is\n");
  EXPECT_EQ(readFile(world.settingsFile()), original);
}

TEST(KorvoCommandLineTest, EveryCommandThatPrintsFailsInOneLineWhenItsOutputCannotBeWritten) {
  KorvoWorld world;
  world.write("codex/sessions/2026/11/15/rollout-a.jsonl", rolloutLine);
  const std::vector<std::vector<std::string>> cases{
      {"publish", "--print"},
      {"settings"},
      {"settings", "awakeMinutes"},
      {"temperature"},
      {"temperature", "--json"},
      {"codex"},
      {"codex", "--json"},
      {"claude-statusline", "--install"},
      {"claude-statusline", "--uninstall"},
      {"--help"},
      {"publish", "--help"},
  };
  for (const auto& args : cases) {
    const auto result =
        testing_support::runProgram(KORVO_APP_BINARY, args, world.environment(), "", "/dev/full");
    EXPECT_EQ(result.exitCode, 1) << args[0];
    EXPECT_EQ(result.err, "korvo: cannot write standard output: No space left on device\n")
        << args[0];
  }
  // The command did its work; only its report was lost.
  EXPECT_FALSE(std::filesystem::exists(world.sharedFile()));
  EXPECT_TRUE(std::filesystem::exists(world.claudeSettings()));
}

TEST(KorvoCommandLineTest, UnknownCommandsAndOptionsAreUsageErrors) {
  KorvoWorld world;
  EXPECT_EQ(world.korvo({"frobnicate"}).exitCode, 2);
  EXPECT_EQ(world.korvo({"publish", "--loud"}).exitCode, 2);
  EXPECT_EQ(world.korvo({"claude-statusline", "--install", "--uninstall"}).exitCode, 2);
}

TEST(KorvoCommandLineTest, WithoutADisplayTheDashboardSaysSoAndNothingStaysBehind) {
  KorvoWorld world;
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{}, std::vector<std::string>{"open", "korvo://awake"}}) {
    const auto result = world.korvo(args);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.err, StartsWith("korvo: no display to show the dashboard on"));
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
  }
}

}  // namespace
}  // namespace korvo
