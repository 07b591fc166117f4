#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "shared/widget_snapshot_json.hpp"
#include "support/korvo_process.hpp"

namespace korvo {
namespace {

using testing::HasSubstr;
using testing_support::KorvoWorld;
using testing_support::readFile;

const std::string statusInput =
    R"({"hook_event_name":"Status","session_id":"s1","cwd":"/home/u/p","model":{"id":"claude-opus-4-1","display_name":"Opus"},)"
    R"("rate_limits":{"five_hour":{"used_percentage":28,"resets_at":1794707100},"seven_day":{"used_percentage":41.6,"resets_at":1795000000}}})";

std::optional<WidgetSnapshot> shared(const KorvoWorld& world) {
  auto result = decodeWidgetSnapshot(readFile(world.sharedFile()));
  if (auto* snapshot = std::get_if<WidgetSnapshot>(&result)) return *snapshot;
  return std::nullopt;
}

TEST(ClaudeStatusLineCliTest, FiguresGoIntoTheFileAndTheLineShowsWhatIsLeft) {
  KorvoWorld world;
  const auto result = world.korvo({"claude-statusline"}, statusInput);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "5-hour · 72% left | Weekly · 58% left\n");
  const auto snapshot = shared(world);
  ASSERT_TRUE(snapshot && snapshot->claude.snapshot);
  EXPECT_EQ(snapshot->claude.snapshot->windows,
            (std::vector<UsageWindow>{{"5-hour", 28, Date::fromUnixSeconds(1794707100)},
                                      {"Weekly", 41.6, Date::fromUnixSeconds(1795000000)}}));
  EXPECT_EQ(snapshot->claude.snapshot->source, "Claude Code");
  EXPECT_EQ(snapshot->claude.message, std::nullopt);
}

TEST(ClaudeStatusLineCliTest, InputWithoutLimitsChangesNothing) {
  KorvoWorld world;
  ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
  const std::string before = readFile(world.sharedFile());
  const auto result = world.korvo({"claude-statusline"}, R"({"session_id":"s1"})");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "Claude · no limits yet\n");
  EXPECT_EQ(readFile(world.sharedFile()), before);
}

TEST(ClaudeStatusLineCliTest, BrokenInputAndNoSharedFilePlaceStillPrintAndExitZero) {
  KorvoWorld world;
  auto environment = world.environment();
  environment.erase("HOME");
  environment.erase("XDG_DATA_HOME");
  for (const std::string& input :
       {std::string("{{{"), std::string(3 * 1024 * 1024, '['), statusInput}) {
    const auto result =
        testing_support::runProgram(KORVO_APP_BINARY, {"claude-statusline"}, environment, input);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1);
  }
}

TEST(ClaudeStatusLineCliTest, ChainRunsTheCommandWithTheSameInputAndPrintsItsOutput) {
  KorvoWorld world;
  const auto script = world.write("line.sh", "#!/bin/sh\nprintf 'chained: '\nwc -c\n");
  std::filesystem::permissions(script, std::filesystem::perms::owner_all);
  const auto result = world.korvo({"claude-statusline", "--chain", script.string()}, statusInput);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "chained: " + std::to_string(statusInput.size()) + "\n");
  EXPECT_TRUE(shared(world)->claude.snapshot);
}

TEST(ClaudeStatusLineCliTest, AFailingChainStillExitsZero) {
  KorvoWorld world;
  const auto result = world.korvo({"claude-statusline", "--chain", "echo partial; exit 3"}, "{}");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "partial\n");
}

class ClaudeInstallTest : public testing::Test {
 protected:
  nlohmann::json claudeSettings() const {
    return nlohmann::json::parse(readFile(world.claudeSettings()));
  }
  KorvoWorld world;
};

TEST_F(ClaudeInstallTest, InstallKeepsOtherKeysChainsTheOldLineAndUninstallPutsItBack) {
  const std::string original =
      R"({"model":"opus","env":{"DISABLE_TELEMETRY":"1"},"statusLine":{"type":"command","command":"~/.claude/line.sh","padding":0}})";
  world.write("claude/settings.json", original);
  const auto installed = world.korvo({"claude-statusline", "--install"});
  EXPECT_EQ(installed.exitCode, 0) << installed.err;
  const auto settings = claudeSettings();
  EXPECT_EQ(settings["model"], "opus");
  EXPECT_EQ(settings["env"]["DISABLE_TELEMETRY"], "1");
  EXPECT_EQ(settings["statusLine"]["padding"], 0);
  EXPECT_EQ(settings["statusLine"]["command"],
            std::string(KORVO_APP_BINARY) + " claude-statusline --chain '~/.claude/line.sh'");
  EXPECT_EQ(readFile(world.claudeDir() / "settings.json.korvo-backup"), original);

  // Publishing now knows the status line is set up.
  ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
  EXPECT_EQ(shared(world)->claude.message, std::nullopt);

  const auto again = world.korvo({"claude-statusline", "--install"});
  EXPECT_EQ(again.exitCode, 0);
  EXPECT_THAT(again.out, HasSubstr("already runs korvo"));

  const auto removed = world.korvo({"claude-statusline", "--uninstall"});
  EXPECT_EQ(removed.exitCode, 0) << removed.err;
  EXPECT_EQ(claudeSettings(), nlohmann::json::parse(original));
}

TEST_F(ClaudeInstallTest, InstallIntoNoFileCreatesOneAndUninstallRemovesTheStatusLine) {
  ASSERT_EQ(world.korvo({"claude-statusline", "--install"}).exitCode, 0);
  EXPECT_EQ(claudeSettings()["statusLine"],
            (nlohmann::json{{"type", "command"},
                            {"command", std::string(KORVO_APP_BINARY) + " claude-statusline"}}));
  ASSERT_EQ(world.korvo({"claude-statusline", "--uninstall"}).exitCode, 0);
  EXPECT_EQ(claudeSettings(), nlohmann::json::object());
}

TEST_F(ClaudeInstallTest, InvalidJsonIsRefusedAndLeftUntouched) {
  const std::string broken = "{\"model\": \"opus\",\n";
  world.write("claude/settings.json", broken);
  for (const char* option : {"--install", "--uninstall"}) {
    const auto result = world.korvo({"claude-statusline", option});
    EXPECT_EQ(result.exitCode, 1) << option;
    EXPECT_THAT(result.err, HasSubstr(world.claudeSettings().string())) << option;
    EXPECT_THAT(result.err, HasSubstr("left untouched")) << option;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << option;
    EXPECT_EQ(readFile(world.claudeSettings()), broken) << option;
  }
  EXPECT_FALSE(std::filesystem::exists(world.claudeDir() / "settings.json.korvo-backup"));
}

TEST_F(ClaudeInstallTest, TheRefusalDoesNotQuoteTheBrokenText) {
  world.write("claude/settings.json", R"({"env":{"KEY":sk-ant-secret123}})");
  const auto result = world.korvo({"claude-statusline", "--install"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("not JSON at byte 15"));
  EXPECT_EQ(result.err.find("sk-ant"), std::string::npos) << result.err;
}

TEST_F(ClaudeInstallTest, AStatusLineThatIsNotACommandIsRefused) {
  const std::string odd = R"({"statusLine":"~/.claude/line.sh"})";
  world.write("claude/settings.json", odd);
  const auto result = world.korvo({"claude-statusline", "--install"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(readFile(world.claudeSettings()), odd);
}

TEST_F(ClaudeInstallTest, ThePrivateModeOfClaudesSettingsIsKept) {
  world.write("claude/settings.json", R"({"env":{"ANTHROPIC_API_KEY":"k"}})");
  std::filesystem::permissions(world.claudeSettings(), std::filesystem::perms::owner_read |
                                                           std::filesystem::perms::owner_write);
  ASSERT_EQ(world.korvo({"claude-statusline", "--install"}).exitCode, 0);
  struct stat status {};
  ::stat(world.claudeSettings().c_str(), &status);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

}  // namespace
}  // namespace korvo
