#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "shared/widget_snapshot_json.hpp"
#include "support/files.hpp"
#include "support/korvo_process.hpp"
#include "support/unprivileged.hpp"

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

TEST(ClaudeStatusLineCliTest, AnApiKeySessionWritesNothingAndShowsTheModelAndContext) {
  KorvoWorld world;
  ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
  const std::string before = readFile(world.sharedFile());
  // What Claude Code sends when it bills by API key: no rate_limits at all.
  const auto result = world.korvo(
      {"claude-statusline"},
      R"({"hook_event_name":"Status","session_id":"s1","cwd":"/home/u/p","model":{"id":"claude-sonnet-4-6","display_name":"Sonnet 4.6"},"context_window":{"context_window_size":200000,"used_percentage":12.4,"remaining_percentage":87.6},"cost":{"total_cost_usd":0.02}})");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "Sonnet 4.6 · context 12% used\n");
  EXPECT_EQ(readFile(world.sharedFile()), before);
}

TEST(ClaudeStatusLineCliTest, AResetTimeSentAsThePercentageKeepsTheStoredFigure) {
  KorvoWorld world;
  ASSERT_EQ(world.korvo({"claude-statusline"}, statusInput).exitCode, 0);
  const auto result = world.korvo(
      {"claude-statusline"},
      R"({"model":{"display_name":"Opus"},"rate_limits":{"five_hour":{"used_percentage":1776950400,"resets_at":1776950400},"seven_day":{"used_percentage":50,"resets_at":1795000000}}})");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "Weekly · 50% left\n");
  const auto snapshot = shared(world);
  ASSERT_TRUE(snapshot && snapshot->claude.snapshot);
  EXPECT_EQ(snapshot->claude.snapshot->windows,
            (std::vector<UsageWindow>{{"5-hour", 28, Date::fromUnixSeconds(1794707100)},
                                      {"Weekly", 50, Date::fromUnixSeconds(1795000000)}}));
  // Nothing plausible at all: the stored figures stay as they are.
  const std::string before = readFile(world.sharedFile());
  EXPECT_EQ(
      world
          .korvo(
              {"claude-statusline"},
              R"({"rate_limits":{"five_hour":{"used_percentage":-3},"seven_day":{"used_percentage":1e9}}})")
          .exitCode,
      0);
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

TEST_F(ClaudeInstallTest, TheUsersBytesSurviveInstallAndUninstallExactly) {
  const std::string original =
      "{\n    \"model\":\"opus\",  \"cleanupPeriodDays\": 123456789012345678901234567890,\n"
      "    \"offset\": -0, \"ratio\": 1.50,\n"
      "    \"statusLine\": { \"type\": \"command\", \"command\": \"~/.claude/line.sh\", "
      "\"padding\": 0 }\n}\n";
  world.write("claude/settings.json", original);
  ASSERT_EQ(world.korvo({"claude-statusline", "--install"}).exitCode, 0);
  const std::string command =
      std::string(KORVO_APP_BINARY) + " claude-statusline --chain '~/.claude/line.sh'";
  std::string expected = original;
  expected.replace(expected.find("\"~/.claude/line.sh\""), 19, nlohmann::json(command).dump());
  EXPECT_EQ(readFile(world.claudeSettings()), expected);
  EXPECT_EQ(readFile(world.claudeDir() / "settings.json.korvo-backup"), original);

  ASSERT_EQ(world.korvo({"claude-statusline", "--uninstall"}).exitCode, 0);
  EXPECT_EQ(readFile(world.claudeSettings()), original);
  EXPECT_FALSE(std::filesystem::exists(world.claudeDir() / "settings.json.korvo-backup"));
}

TEST_F(ClaudeInstallTest, ASymlinkedSettingsFileStaysALinkAndItsTargetIsChanged) {
  const std::string original = "{\"model\": \"opus\"}\n";
  const auto dotfile = world.write("dotfiles/claude-settings.json", original);
  std::filesystem::create_directories(world.claudeDir());
  std::filesystem::create_symlink("../dotfiles/claude-settings.json", world.claudeSettings());

  ASSERT_EQ(world.korvo({"claude-statusline", "--install"}).exitCode, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(world.claudeSettings()));
  EXPECT_EQ(std::filesystem::read_symlink(world.claudeSettings()),
            "../dotfiles/claude-settings.json");
  EXPECT_EQ(claudeSettings()["statusLine"]["command"],
            std::string(KORVO_APP_BINARY) + " claude-statusline");
  EXPECT_EQ(readFile(dotfile), readFile(world.claudeSettings()));

  ASSERT_EQ(world.korvo({"claude-statusline", "--uninstall"}).exitCode, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(world.claudeSettings()));
  EXPECT_EQ(readFile(dotfile), original);
}

TEST_F(ClaudeInstallTest, AReadOnlySettingsFileIsRefusedInOneLineAndLeftAsItIs) {
  KORVO_AS_UNPRIVILEGED_USER(world.home());
  const std::string original = "{\"model\": \"opus\"}\n";
  world.write("claude/settings.json", original);
  std::filesystem::permissions(world.claudeSettings(), std::filesystem::perms::owner_read |
                                                           std::filesystem::perms::group_read |
                                                           std::filesystem::perms::others_read);
  const auto result = world.korvo({"claude-statusline", "--install"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err,
            "korvo: " + world.claudeSettings().string() + ": it is read-only; left untouched\n");
  EXPECT_EQ(readFile(world.claudeSettings()), original);
  EXPECT_FALSE(std::filesystem::exists(world.claudeDir() / "settings.json.korvo-backup"));
}

TEST_F(ClaudeInstallTest, AFailedUninstallKeepsTheBackup) {
  KORVO_AS_UNPRIVILEGED_USER(world.home());
  const std::string original = "{\"model\": \"opus\"}\n";
  world.write("claude/settings.json", original);
  ASSERT_EQ(world.korvo({"claude-statusline", "--install"}).exitCode, 0);
  const std::string installed = readFile(world.claudeSettings());
  std::filesystem::permissions(world.claudeSettings(), std::filesystem::perms::owner_read);

  const auto result = world.korvo({"claude-statusline", "--uninstall"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("it is read-only; left untouched"));
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
  EXPECT_EQ(readFile(world.claudeSettings()), installed);
  EXPECT_EQ(readFile(world.claudeDir() / "settings.json.korvo-backup"), original);
}

TEST_F(ClaudeInstallTest, KorvoKnowsItsStatusLineWhenRunThroughALinkToAVersionedName) {
  std::filesystem::create_directories(world.home() / "bin");
  const auto versioned = world.home() / "bin/korvo-1.0";
  std::filesystem::copy_file(KORVO_APP_BINARY, versioned);
  std::filesystem::create_symlink("korvo-1.0", world.home() / "bin/korvo");
  const auto korvo = [&](const std::vector<std::string>& args) {
    return testing_support::runProgram((world.home() / "bin/korvo").string(), args,
                                       world.environment());
  };
  const std::string original = R"({"statusLine":{"type":"command","command":"line.sh"}})";
  world.write("claude/settings.json", original);

  ASSERT_EQ(korvo({"claude-statusline", "--install"}).exitCode, 0);
  const std::string installed = readFile(world.claudeSettings());
  EXPECT_EQ(claudeSettings()["statusLine"]["command"],
            versioned.string() + " claude-statusline --chain line.sh");
  const auto again = korvo({"claude-statusline", "--install"});
  EXPECT_EQ(again.exitCode, 0);
  EXPECT_THAT(again.out, HasSubstr("already runs korvo"));
  EXPECT_EQ(readFile(world.claudeSettings()), installed);
  EXPECT_EQ(readFile(world.claudeDir() / "settings.json.korvo-backup"), original);

  ASSERT_EQ(korvo({"publish"}).exitCode, 0);
  EXPECT_EQ(shared(world)->claude.message, std::nullopt);

  const auto removed = korvo({"claude-statusline", "--uninstall"});
  EXPECT_EQ(removed.exitCode, 0) << removed.err;
  EXPECT_EQ(readFile(world.claudeSettings()), original);
}

// Makes this process adopt the orphans of the processes it starts, so a test can wait for one.
class AdoptedOrphans {
 public:
  AdoptedOrphans() { ::prctl(PR_SET_CHILD_SUBREAPER, 1); }
  ~AdoptedOrphans() { ::prctl(PR_SET_CHILD_SUBREAPER, 0); }
  AdoptedOrphans(const AdoptedOrphans&) = delete;
  AdoptedOrphans& operator=(const AdoptedOrphans&) = delete;

  // How the adopted process `pid` ended: its signal, or none when it exited.
  static std::optional<int> signalThatEnded(pid_t pid) {
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(status) ? std::optional(WTERMSIG(status)) : std::nullopt;
  }
};

pid_t pidIn(const std::filesystem::path& file) {
  return static_cast<pid_t>(std::stol(readFile(file)));
}

TEST(ClaudeStatusLineCliTest, AChainThatClosesItsOutputAndRunsOnIsEndedWithItsGroup) {
  KorvoWorld world;
  const AdoptedOrphans orphans;
  const std::string chain = "echo $$ > " + (world.home() / "shell.pid").string() +
                            "; sleep 600 & echo $! > " + (world.home() / "child.pid").string() +
                            "; echo partial; exec >&-; exec sleep 600";
  const auto result = world.korvo({"claude-statusline", "--chain", chain}, statusInput);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "partial\n");
  // The shell korvo started has been reaped; its background child was killed with it.
  EXPECT_FALSE(
      std::filesystem::exists("/proc/" + std::to_string(pidIn(world.home() / "shell.pid"))));
  EXPECT_EQ(AdoptedOrphans::signalThatEnded(pidIn(world.home() / "child.pid")), SIGKILL);
}

TEST(ClaudeStatusLineCliTest, WhatAChainLeavesRunningIsEndedWhenItFinishes) {
  KorvoWorld world;
  const AdoptedOrphans orphans;
  const std::string chain =
      "sleep 600 >/dev/null & echo $! > " + (world.home() / "child.pid").string() + "; echo done";
  const auto result = world.korvo({"claude-statusline", "--chain", chain}, statusInput);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "done\n");
  EXPECT_EQ(AdoptedOrphans::signalThatEnded(pidIn(world.home() / "child.pid")), SIGKILL);
}

// korvo's exit status with its standard output a pipe nobody reads any more.
int statusWritingToAClosedPipe(const KorvoWorld& world, const std::vector<std::string>& args,
                               const std::string& input) {
  int ends[2];
  if (::pipe(ends) != 0) return -1;
  ::close(ends[0]);
  const int in = ::memfd_create("input", 0);
  if (::write(in, input.data(), input.size()) != static_cast<ssize_t>(input.size())) return -1;
  ::lseek(in, 0, SEEK_SET);
  std::vector<std::string> words{KORVO_APP_BINARY};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<std::string> settings;
  for (const auto& [name, value] : world.environment()) settings.push_back(name + "=" + value);
  std::vector<char*> argv;
  for (auto& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  std::vector<char*> envp;
  for (auto& setting : settings) envp.push_back(setting.data());
  envp.push_back(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    ::signal(SIGPIPE, SIG_DFL);
    ::dup2(in, 0);
    ::dup2(ends[1], 1);
    ::execve(KORVO_APP_BINARY, argv.data(), envp.data());
    ::_exit(127);
  }
  ::close(ends[1]);
  ::close(in);
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

TEST(ClaudeStatusLineCliTest, AReaderGoneAwayDoesNotKillTheStatusLine) {
  KorvoWorld world;
  EXPECT_EQ(statusWritingToAClosedPipe(world, {"claude-statusline"}, statusInput), 0);
  EXPECT_EQ(
      statusWritingToAClosedPipe(world, {"claude-statusline", "--chain", "echo chained"}, "{}"), 0);
  // The figures still reached the shared file.
  EXPECT_TRUE(shared(world)->claude.snapshot);
}

TEST(ClaudeStatusLineCliTest, AFileSizeLimitOfNothingDoesNotKillTheStatusLine) {
  KorvoWorld world;
  for (const std::string& chain : {std::string(), std::string(" --chain 'echo chained'")}) {
    const auto result = testing_support::runProgram(
        "/bin/sh", {"-c", "ulimit -f 0; exec \"$0\" claude-statusline" + chain, KORVO_APP_BINARY},
        world.environment(), statusInput);
    EXPECT_EQ(result.exitCode, 0) << chain;
  }
  // Nothing could be written, the shared file included.
  EXPECT_FALSE(std::filesystem::exists(world.sharedFile()));
}

TEST(ClaudeStatusLineCliTest, AFullStandardOutputStillExitsZero) {
  KorvoWorld world;
  const auto result = testing_support::runProgram(KORVO_APP_BINARY, {"claude-statusline"},
                                                  world.environment(), statusInput, "/dev/full");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err, "");
}

}  // namespace
}  // namespace korvo
