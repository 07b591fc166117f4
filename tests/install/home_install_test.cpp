#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <memory>
#include <nlohmann/json.hpp>

#include "support/desktop_harness.hpp"
#include "support/private_buses.hpp"

// `cmake --install --prefix ~/.local` into a temporary home, then used as that user's desktop
// uses it, with nothing done by hand in between: systemd's user manager, GIO and xdg-open.
namespace korvo {
namespace {

namespace fs = std::filesystem;
using namespace desktop_test;
using testing::HasSubstr;

constexpr const char* dashboardTitle = "^Korvo · Resources, AI usage & Keep Awake$";

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) result.push_back(line);
  return result;
}

class HomeInstall : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new TemporaryDirectory;
    ::chmod(folder_->path().c_str(), 0755);
    fs::create_directories(home());
    // As the user runs it: their HOME, a PATH that does not lead to ~/.local/bin.
    install_ = new CommandResult(
        runCommand({"/bin/sh", "-c",
                    std::string(KORVO_CMAKE) + " --install " KORVO_BUILD_DIR " --prefix " +
                        prefix().string() + " 2>&1"},
                   {{"PATH", "/usr/bin:/bin"}, {"HOME", home().string()}}));
  }
  static void TearDownTestSuite() {
    delete install_;
    delete folder_;
  }
  void SetUp() override { ASSERT_EQ(install_->exitStatus, 0) << install_->output; }

  static fs::path home() { return folder_->path() / "home"; }
  static fs::path prefix() { return home() / ".local"; }
  // The user's session: only HOME says where their files are.
  static Environment session() {
    return {{"PATH", "/usr/bin:/bin"},
            {"HOME", home().string()},
            {"XDG_DATA_DIRS", "/usr/local/share:/usr/share"},
            {"LANG", "C.UTF-8"},
            {"TZ", "UTC"}};
  }

  // The user's graphical session on `server` and `bus`, the dashboard's state kept in
  // work/dashboard.json.
  static Environment desktopSession(const fs::path& work, const XServer& server,
                                    const bus_test::PrivateBus& bus) {
    Environment environment = session();
    environment["DISPLAY"] = server.display();
    environment["GDK_BACKEND"] = "x11";
    environment["NO_AT_BRIDGE"] = "1";
    environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    environment["DBUS_SYSTEM_BUS_ADDRESS"] = "unix:path=" + (work / "no-bus").string();
    environment["KORVO_SYSROOT"] = KORVO_FIXTURES_DIR "/proc/desktop-zram";
    environment["KORVO_DASHBOARD_DUMP"] = (work / "dashboard.json").string();
    return environment;
  }

  static inline TemporaryDirectory* folder_ = nullptr;
  static inline CommandResult* install_ = nullptr;
};

TEST_F(HomeInstall, TheUserManagerSearchesTheFolderHoldingTheUnits) {
  const fs::path runtime = folder_->path() / "runtime";
  fs::create_directories(runtime);
  ::chmod(runtime.c_str(), 0700);
  Environment environment = session();
  environment["XDG_DATA_HOME"] = (prefix() / "share").string();
  environment["XDG_RUNTIME_DIR"] = runtime.string();
  const CommandResult paths =
      runCommand({"/usr/bin/systemd-analyze", "--user", "unit-paths"}, environment);
  ASSERT_EQ(paths.exitStatus, 0) << paths.output;
  const fs::path units = prefix() / "share/systemd/user";
  EXPECT_THAT(lines(paths.output), testing::Contains(units.string())) << paths.output;
  EXPECT_TRUE(fs::is_regular_file(units / "korvo-widgets.service"));
  EXPECT_TRUE(fs::is_regular_file(units / "korvo.service"));
  EXPECT_FALSE(fs::exists(prefix() / "lib/systemd")) << "a folder the user manager never reads";
}

TEST_F(HomeInstall, NoAutostartEntryIsInstalledForTheSessionsToFind) {
  // The user turns starting at login on in korvo's preferences; the install does not decide it.
  EXPECT_FALSE(fs::exists(prefix() / "etc"));
  EXPECT_FALSE(fs::exists(home() / ".config/autostart"));
}

TEST_F(HomeInstall, GioNamesKorvoAsTheLinkHandler) {
  const CommandResult mime =
      runCommand({"/usr/bin/gio", "mime", "x-scheme-handler/korvo"}, session());
  ASSERT_EQ(mime.exitStatus, 0) << mime.output;
  const auto answer = lines(mime.output);
  ASSERT_FALSE(answer.empty());
  EXPECT_THAT(answer.front(), HasSubstr("Default application for"));
  EXPECT_THAT(answer.front(), HasSubstr(": com.tessmoor.Korvo.desktop")) << mime.output;
}

TEST_F(HomeInstall, XdgOpenOfAnAwakeLinkShowsTheInstalledDashboardAtTheAwakeTab) {
  const fs::path work = folder_->path() / "xdg-open";
  fs::create_directories(work);
  XServer server(1600, 1000, work);
  bus_test::PrivateBus bus(work, "session");
  const Environment environment = desktopSession(work, server, bus);
  Process opener({"/usr/bin/xdg-open", "korvo://awake"}, environment, work / "open.out",
                 work / "open.err");
  const auto page = [&] {
    const std::string text = readFile(work / "dashboard.json");
    return text.empty() ? nlohmann::json::object() : nlohmann::json::parse(text);
  };
  EXPECT_TRUE(waitFor([&] {
    const auto state = page();
    return state.value("page", "") == "awake" && state.value("mapped", false) &&
           visibleWindows(server.display(), dashboardTitle).size() == 1;
  })) << readFile(work / "open.err");
  EXPECT_EQ(page()["notice"], nullptr);
}

// Nothing starts a home install at login until the user says so: its first dashboard asks, once,
// and the answer sets both ways a session starts programs.
TEST_F(HomeInstall, TheFirstDashboardOffersStartAtLoginAndTheAnswerTurnsItOn) {
  const fs::path work = folder_->path() / "offer";
  fs::create_directories(work);
  XServer server(1600, 1000, work);
  bus_test::PrivateBus bus(work, "session");
  const Environment environment = desktopSession(work, server, bus);
  const auto state = [&] {
    const std::string text = readFile(work / "dashboard.json");
    return text.empty() ? nlohmann::json::object() : nlohmann::json::parse(text);
  };
  auto korvo = std::make_unique<Process>(
      std::vector<std::string>{(prefix() / "bin/korvo").string(), "open", "korvo://ai"},
      environment, work / "korvo.out", work / "korvo.err");
  ASSERT_TRUE(waitFor([&] {
    const auto shown = state();
    return shown.value("mapped", false) && shown.value("loginOffer", false);
  })) << readFile(work / "korvo.err");

  // The bar's "Start at login", by its mnemonic, in the window under the pointer.
  const auto ids = visibleWindows(server.display(), dashboardTitle);
  ASSERT_EQ(ids.size(), 1U);
  const auto geometry = windowGeometry(server.display(), ids.front());
  ASSERT_TRUE(geometry);
  runCommand({"xdotool", "mousemove", std::to_string(geometry->x + geometry->width / 2),
              std::to_string(geometry->y + geometry->height / 2)},
             {{"PATH", "/usr/bin:/bin"}, {"DISPLAY", server.display()}});
  pressKey(server.display(), "alt+s");
  EXPECT_TRUE(waitFor([&] { return !state().value("loginOffer", true); }))
      << readFile(work / "korvo.err");

  const fs::path wants = home() / ".config/systemd/user/graphical-session.target.wants";
  for (const char* unit : {"korvo.service", "korvo-widgets.service"}) {
    ASSERT_TRUE(fs::is_symlink(wants / unit)) << unit;
    EXPECT_EQ(fs::read_symlink(wants / unit), prefix() / "share/systemd/user" / unit);
  }
  for (const char* entry :
       {"com.tessmoor.Korvo.Service.desktop", "com.tessmoor.Korvo.Widgets.desktop"}) {
    EXPECT_TRUE(fs::is_regular_file(home() / ".config/autostart" / entry)) << entry;
  }
  EXPECT_TRUE(fs::exists(home() / ".local/state/korvo/login-offered"));

  // Asked once: the next start shows no bar.
  korvo.reset();
  ASSERT_TRUE(waitFor([&] { return !bus_test::owned(environment, false, "com.tessmoor.Korvo"); }));
  fs::remove(work / "dashboard.json");
  korvo = std::make_unique<Process>(
      std::vector<std::string>{(prefix() / "bin/korvo").string(), "open", "korvo://ai"},
      environment, work / "korvo.out", work / "korvo.err");
  ASSERT_TRUE(waitFor([&] { return state().value("mapped", false); }))
      << readFile(work / "korvo.err");
  EXPECT_FALSE(state().value("loginOffer", true));
}

}  // namespace
}  // namespace korvo
