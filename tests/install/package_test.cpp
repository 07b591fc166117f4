#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "support/desktop_harness.hpp"

namespace korvo::desktop_test {
namespace {

namespace fs = std::filesystem;

constexpr const char* package = "korvo-widgets";
constexpr bool buildsKorvo = KORVO_BUILDS_KORVO;

const Environment aptEnvironment{{"PATH", "/usr/sbin:/usr/bin:/sbin:/bin"},
                                 {"DEBIAN_FRONTEND", "noninteractive"},
                                 {"LANG", "C.UTF-8"}};

bool installed() {
  return runCommand({"dpkg-query", "-W", "-f=${Status}", package}, aptEnvironment)
             .output.find("install ok installed") != std::string::npos;
}

// Standard error with standard output, and the exit status.
CommandResult shell(const std::string& commandLine, const Environment& environment) {
  return runCommand({"/bin/sh", "-c", commandLine + " 2>&1"}, environment);
}

// apt-get run in `folder`, waiting for the machine's dpkg lock as long as another install holds it.
CommandResult apt(const std::string& arguments, const fs::path& folder = "/") {
  return shell(
      "cd " + folder.string() + " && apt-get -y -q -o DPkg::Lock::Timeout=600 " + arguments,
      aptEnvironment);
}

// The package as CPack builds it from this build tree into `folder`; empty when it failed, with
// CPack's words in `log`.
fs::path buildPackage(const fs::path& folder, std::string& log) {
  const CommandResult built =
      shell(std::string(KORVO_CPACK) +
                " -G DEB --config " KORVO_BUILD_DIR "/CPackConfig.cmake -B " + folder.string(),
            aptEnvironment);
  log = built.output;
  if (built.exitStatus != 0) return {};
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().filename().string().starts_with("korvo-widgets_") &&
        entry.path().extension() == ".deb") {
      return entry.path();
    }
  }
  return {};
}

// What Debian's own checker says of the package: nothing at the error or warning level.
TEST(PackageCheck, LintianFindsNoErrorOrWarning) {
  ASSERT_TRUE(fs::exists("/usr/bin/lintian")) << "lintian is missing; scripts/install-deps has it";
  TemporaryDirectory folder;
  std::string log;
  const fs::path deb = buildPackage(folder.path(), log);
  ASSERT_FALSE(deb.empty()) << log;
  const CommandResult lintian = shell(
      "lintian --fail-on error,warning --tag-display-limit 0 " + deb.string(), aptEnvironment);
  std::vector<std::string> complaints;
  std::istringstream lines(lintian.output);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("E: ") || line.starts_with("W: ")) complaints.push_back(line);
  }
  EXPECT_EQ(complaints, std::vector<std::string>{}) << lintian.output;
  EXPECT_EQ(lintian.exitStatus, 0) << lintian.output;
}

// Whether every user's graphical session starts `unit`, as systemctl reads the configuration.
std::string globalState(const std::string& unit) {
  return shell("systemctl --global is-enabled " + unit, aptEnvironment).output;
}

// The package installed on this machine with apt, used from /usr, and purged. It changes the
// machine: it needs root and apt, and refuses to run over an installation of someone else's.
class Package : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(::geteuid(), 0U) << "installing a package needs root";
    ASSERT_TRUE(fs::exists("/usr/bin/apt-get")) << "no apt-get on this machine";
    // Someone's own installation is theirs to keep: the test would remove it.
    ASSERT_FALSE(installed() || fs::exists("/usr/bin/korvo-widgets"))
        << "korvo-widgets is already installed here; remove it to run this test";
  }
  void TearDown() override {
    if (installedHere_ && installed()) apt("purge korvo-widgets");
  }

  TemporaryDirectory folder_;
  bool installedHere_ = false;
};

TEST_F(Package, InstallsRunsFromUsrAndLeavesNothingBehindOnPurge) {
  std::string log;
  const fs::path deb = buildPackage(folder_.path(), log);
  ASSERT_FALSE(deb.empty()) << log;
  const CommandResult depends = shell("dpkg-deb -f " + deb.string() + " Depends", aptEnvironment);
  for (const char* dependency : {"libgtk-3-0", "libpango-1.0-0", "libcairo2", "libicu72",
                                 "fonts-inter", "fonts-material-design-icons-iconfont"}) {
    EXPECT_NE(depends.output.find(dependency), std::string::npos) << depends.output;
  }

  installedHere_ = true;
  const CommandResult install =
      apt("install --no-install-recommends ./" + deb.filename().string(), folder_.path());
  ASSERT_EQ(install.exitStatus, 0) << install.output;
  ASSERT_TRUE(installed());
  // Every user's graphical session starts the programs once they are installed.
  std::vector<std::string> units{"korvo-widgets.service"};
  if (buildsKorvo) units.emplace_back("korvo.service");
  for (const auto& unit : units) EXPECT_EQ(globalState(unit), "enabled\n") << unit;
  // Only what the package owns: files, and folders no other package shares.
  std::vector<fs::path> owned;
  std::istringstream listed(runCommand({"dpkg", "-L", package}, aptEnvironment).output);
  for (std::string line; std::getline(listed, line);) {
    if (fs::is_regular_file(line) || line.find("korvo") != std::string::npos) owned.push_back(line);
  }
  ASSERT_FALSE(owned.empty());

  const Environment user{{"PATH", "/usr/bin:/bin"},
                         {"HOME", folder_.path().string()},
                         {"LANG", "C.UTF-8"},
                         {"TZ", "UTC"}};
  const CommandResult list = shell("/usr/bin/korvo-widgets list", user);
  EXPECT_EQ(list.exitStatus, 0) << list.output;
  for (const char* name : {"Memory", "Keep Awake", "AI Usage", "CPU Temperature"}) {
    EXPECT_NE(list.output.find(name), std::string::npos) << list.output;
  }
  EXPECT_EQ(shell("/usr/bin/korvo-widgets snapshot path", user).output,
            folder_.path().string() +
                "/.local/share/app-groups/group.com.tessmoor.Korvo/usage-snapshot.json\n")
      << "the installed Info.json names the group";
  if (buildsKorvo) {
    const CommandResult publish = shell("/usr/bin/korvo publish --print", user);
    EXPECT_EQ(publish.exitStatus, 0) << publish.output;
    // dpkg's trigger registered the korvo:// handler for every user.
    const CommandResult handler = shell("gio mime x-scheme-handler/korvo", user);
    EXPECT_EQ(handler.output.substr(0, handler.output.find('\n')),
              "Default application for “x-scheme-handler/korvo”: com.tessmoor.Korvo.desktop")
        << handler.output;
  }

  // The desktop host from /usr, under Xvfb, showing the memory widget.
  XServer server(1280, 1024, folder_.path());
  Environment desktop = user;
  desktop["DISPLAY"] = server.display();
  desktop["GDK_BACKEND"] = "x11";
  desktop["NO_AT_BRIDGE"] = "1";
  const fs::path dumps = folder_.path() / "dump";
  fs::create_directories(dumps);
  {
    Process host(
        {"/usr/bin/korvo-widgets", "run", "--widget", "memory", "--dump-dir", dumps.string()},
        desktop, folder_.path() / "host.out", folder_.path() / "host.err");
    EXPECT_TRUE(waitFor([&] {
      return readFile(dumps / "1-memory-small.json").find("\"MEMORY\"") != std::string::npos;
    })) << readFile(folder_.path() / "host.err");
    EXPECT_TRUE(host.running()) << readFile(folder_.path() / "host.err");
  }

  const CommandResult purge = apt("purge korvo-widgets");
  ASSERT_EQ(purge.exitStatus, 0) << purge.output;
  EXPECT_FALSE(installed());
  for (const auto& path : owned) EXPECT_FALSE(fs::exists(path)) << path << " was left behind";
  for (const auto& unit : units) {
    EXPECT_FALSE(
        fs::exists(fs::symlink_status("/etc/systemd/user/graphical-session.target.wants/" + unit)))
        << unit << " is still enabled";
    EXPECT_FALSE(
        fs::exists("/var/lib/systemd/deb-systemd-user-helper-enabled/" + unit + ".dsh-also"))
        << unit << " is still remembered";
  }
}

}  // namespace
}  // namespace korvo::desktop_test
