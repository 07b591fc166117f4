#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <chrono>
#include <ctime>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <thread>

#include "support/desktop_harness.hpp"
#include "support/host_dumps.hpp"
#include "support/host_environment.hpp"

namespace korvo::desktop_test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr int screenWidth = 1280;
constexpr int screenHeight = 1024;

class DesktopHost : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_STRNE(KORVO_BINARY, "") << "korvo-widgets was not built";
    server_ = std::make_unique<XServer>(screenWidth, screenHeight, folder_.path());
    environment_ = hostEnvironment(folder_.path(), {
                                                       {"DISPLAY", server_->display()},
                                                       {"GDK_BACKEND", "x11"},
                                                       {"NO_AT_BRIDGE", "1"},
                                                       {"KORVO_HOST_DEBUG", "1"},
                                                       {"KORVO_TEST_URL_LOG", urlLog().string()},
                                                   });
  }

  void TearDown() override {
    host_.reset();
    server_.reset();
  }

  void startHost(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {KORVO_BINARY, "run"});
    host_ =
        std::make_unique<Process>(arguments, environment_, folder_.path() / "host.out", hostLog());
  }

  // Makes the test theme `name` one the user could choose.
  void installTheme(const std::string& name) {
    fs::create_directories(folder_.path() / "data" / "themes");
    fs::create_directory_symlink(fs::path(KORVO_FIXTURES_DIR) / "themes" / name,
                                 folder_.path() / "data" / "themes" / name);
  }

  using CardColors = std::pair<std::string, std::string>;  // background, title

  // An XSETTINGS manager announcing `theme` as the desktop's GTK theme, once it owns the settings.
  std::unique_ptr<Process> startThemeManager(const std::string& theme) {
    writeThemeSettings(theme);
    auto manager = std::make_unique<Process>(
        std::vector<std::string>{"xsettingsd", "-c", themeSettings().string()}, environment_,
        folder_.path() / "xsettingsd.out", folder_.path() / "xsettingsd.err");
    const bool owning = waitFor([&] {
      return readFile(folder_.path() / "xsettingsd.err").find("Took ownership") !=
             std::string::npos;
    });
    EXPECT_TRUE(owning) << readFile(folder_.path() / "xsettingsd.err");
    return owning ? std::move(manager) : nullptr;
  }

  void switchTheme(const Process& manager, const std::string& theme) {
    writeThemeSettings(theme);
    manager.signal(SIGHUP);
  }

  // The Keep Awake card's colours in a dump the host writes now.
  CardColors freshCardColors() {
    fs::remove(dump("1-awake-small.json"));
    host_->signal(SIGUSR1);
    if (!waitFor([&] { return fs::exists(dump("1-awake-small.json")); })) return {};
    return cardColors();
  }

  // The colours of fresh dumps until they are `expected`, or the last ones when time runs out.
  CardColors cardColorsOnceThey(const CardColors& expected) {
    CardColors colors;
    waitFor([&] {
      colors = freshCardColors();
      return colors == expected;
    });
    return colors;
  }

  // The Keep Awake card's background and title colours in the host's last dump.
  CardColors cardColors() const {
    const auto card = Json::parse(readFile(dump("1-awake-small.json")));
    const auto* background = findNode(card["tree"], "shape");
    const auto* title = findNode(card["tree"], "text");
    if (background == nullptr || title == nullptr) return {};
    return {(*background)["color"], (*title)["color"]};
  }

  fs::path themeSettings() const { return folder_.path() / "xsettingsd.conf"; }
  void writeThemeSettings(const std::string& theme) const {
    writeFile(themeSettings(), "Net/ThemeName \"" + theme + "\"\n");
  }

  fs::path snapshotFile() const {
    return folder_.path() / "data" / "app-groups" / "group.com.tessmoor.Korvo" /
           "usage-snapshot.json";
  }
  fs::path hostLog() const { return folder_.path() / "host.err"; }
  fs::path urlLog() const { return folder_.path() / "urls.txt"; }
  fs::path dump(const std::string& name) const { return folder_.path() / "dump" / name; }

  // The one mapped window titled `title`, once it is there.
  std::optional<WindowGeometry> waitForWindow(const std::string& title) {
    std::vector<std::string> ids;
    waitFor([&] {
      ids = visibleWindows(server_->display(), "^" + title + "$");
      return ids.size() == 1;
    });
    if (ids.size() != 1) return std::nullopt;
    return windowGeometry(server_->display(), ids.front());
  }

  std::vector<std::string> recordedURLs() {
    std::vector<std::string> urls;
    std::istringstream lines(readFile(urlLog()));
    for (std::string line; std::getline(lines, line);) urls.push_back(line);
    return urls;
  }

  TemporaryDirectory folder_;
  std::unique_ptr<XServer> server_;
  Environment environment_;
  std::unique_ptr<Process> host_;
};

TEST_F(DesktopHost, DefaultPlacementsShowAllFourWidgetsInAColumnAtTheRightEdge) {
  startHost({});
  const std::vector<std::pair<std::string, WindowGeometry>> expected{
      {"Memory", {0, 0, 170, 170}},
      {"Keep Awake", {0, 0, 170, 170}},
      {"AI Usage", {0, 0, 364, 170}},
      {"CPU Temperature", {0, 0, 170, 170}},
  };
  std::vector<WindowGeometry> windows;
  for (const auto& [title, size] : expected) {
    const auto window = waitForWindow(title);
    ASSERT_TRUE(window) << title << " never appeared; host log:\n" << readFile(hostLog());
    EXPECT_EQ(window->width, size.width) << title;
    EXPECT_EQ(window->height, size.height) << title;
    EXPECT_EQ(window->x + window->width, screenWidth - 16) << title << " is not at the right edge";
    if (!windows.empty()) {
      EXPECT_GT(window->y, windows.back().y) << title << " is out of order";
    }
    windows.push_back(*window);
  }

  // Every card is painted: its middle is not the bare root window's colour.
  const auto picture = folder_.path() / "screen.png";
  const bool painted = waitFor([&] {
    screenshot(server_->display(), picture);
    const auto root = pixel(picture, 4, 4);
    for (const auto& window : windows) {
      const auto middle = pixel(picture, window.x + window.width / 2, window.y + window.height / 2);
      if (middle.size() != 6 || middle == root) return false;
    }
    return true;
  });
  EXPECT_TRUE(painted) << "a card shows the bare root colour " << pixel(picture, 4, 4);
  EXPECT_TRUE(host_->running());
}

TEST_F(DesktopHost, TheKeepAwakeLinkOpensAwakeAndTheRestOfTheMemoryCardOpensResources) {
  registerUrlRecorder(folder_.path());
  // Where the link sits, as the headless renderer lays the same card out.
  const auto rendered = runCommand(
      {KORVO_BINARY, "render", "memory", "--family", "medium", "--format", "json"}, environment_);
  ASSERT_EQ(rendered.exitStatus, 0);
  const auto document = Json::parse(rendered.output);
  const auto* link = findNode(document["tree"], "link");
  ASSERT_NE(link, nullptr) << "the medium memory card has no link";
  ASSERT_EQ((*link)["url"], "korvo://awake");
  const auto& frame = (*link)["frame"];
  const int linkX = static_cast<int>(frame["x"].get<double>() + frame["width"].get<double>() / 2);
  const int linkY = static_cast<int>(frame["y"].get<double>() + frame["height"].get<double>() / 2);
  // A point of the card well away from the link: the top-left of its content.
  const int otherX = 24;
  const int otherY = 24;
  ASSERT_FALSE(otherX >= frame["x"].get<double>() && otherY >= frame["y"].get<double>());

  startHost({"--widget", "memory:medium"});
  const auto window = waitForWindow("Memory");
  ASSERT_TRUE(window) << readFile(hostLog());
  ASSERT_EQ(window->width, 364);

  click(server_->display(), window->x + linkX, window->y + linkY);
  ASSERT_TRUE(waitFor([&] { return recordedURLs().size() == 1; }))
      << "the handler never ran; host log:\n"
      << readFile(hostLog());
  EXPECT_EQ(recordedURLs()[0], "korvo://awake");

  click(server_->display(), window->x + otherX, window->y + otherY);
  ASSERT_TRUE(waitFor([&] { return recordedURLs().size() == 2; })) << readFile(hostLog());
  EXPECT_EQ(recordedURLs()[1], "korvo://resources");
  EXPECT_TRUE(host_->running());
}

// The host runs without glibc's per-thread caches unless the user set tunables of their own;
// what a click opens runs with the user's tunables, or none.
TEST_F(DesktopHost, TheHostAloneRunsWithLeanAllocatorTunablesAndTheUsersOwnWin) {
  struct Case {
    std::optional<std::string> user;  // GLIBC_TUNABLES as the user set it
    std::string host;                 // as the host was started with it
    std::string opened;               // as the application a click opened sees it
  };
  const std::vector<Case> cases{
      {std::nullopt, "glibc.malloc.tcache_count=0", "none"},
      {"glibc.malloc.mxfast=0", "glibc.malloc.mxfast=0", "glibc.malloc.mxfast=0"},
  };
  registerUrlRecorder(folder_.path());
  const auto tunablesLog = folder_.path() / "tunables.txt";
  environment_["KORVO_TEST_TUNABLES_LOG"] = tunablesLog.string();
  for (const auto& [user, host, opened] : cases) {
    SCOPED_TRACE(user.value_or("unset"));
    if (user) environment_["GLIBC_TUNABLES"] = *user;
    fs::remove(tunablesLog);
    startHost({"--widget", "awake"});
    const auto window = waitForWindow("Keep Awake");
    ASSERT_TRUE(window) << readFile(hostLog());
    // The environment the host was started with, as the kernel keeps it.
    std::vector<std::string> tunables;
    std::istringstream started(readFile("/proc/" + std::to_string(host_->pid()) + "/environ"));
    for (std::string entry; std::getline(started, entry, '\0');) {
      if (entry.starts_with("GLIBC_TUNABLES=")) tunables.push_back(entry);
    }
    EXPECT_EQ(tunables, std::vector<std::string>{"GLIBC_TUNABLES=" + host});

    click(server_->display(), window->x + window->width / 2, window->y + window->height / 2);
    // The handler creates the file before it writes its line: wait for the whole line.
    ASSERT_TRUE(waitFor([&] { return readFile(tunablesLog).ends_with('\n'); }))
        << readFile(hostLog());
    EXPECT_EQ(readFile(tunablesLog), opened + "\n");
    host_.reset();
  }
}

// The host runs GTK with an empty theme of its own, yet its cards take the colours of the theme
// the user chose, in GTK's settings or in GTK_THEME over them; what a click opens gets that
// GTK_THEME back.
TEST_F(DesktopHost, CardsTakeTheDesktopThemesColoursAndWhatAClickOpensKeepsTheUsersTheme) {
  struct Case {
    std::string settings;             // gtk-theme-name in GTK's settings.ini
    std::optional<std::string> user;  // GTK_THEME as the user set it
    std::string opened;               // as the application a click opened sees it
  };
  const std::vector<Case> cases{{"KorvoTinted", std::nullopt, "none"},
                                {"KorvoPlain", "KorvoTinted", "KorvoTinted"}};
  installTheme("KorvoPlain");
  installTheme("KorvoTinted");
  registerUrlRecorder(folder_.path());
  const auto themeLog = folder_.path() / "theme.txt";
  environment_["KORVO_TEST_THEME_LOG"] = themeLog.string();
  for (const auto& [settings, user, opened] : cases) {
    SCOPED_TRACE(user.value_or("unset"));
    writeFile(folder_.path() / "config" / "gtk-3.0" / "settings.ini",
              "[Settings]\ngtk-theme-name=" + settings + "\n");
    if (user) environment_["GTK_THEME"] = *user;
    fs::remove(themeLog);
    fs::remove(dump("1-awake-small.json"));
    startHost({"--widget", "awake", "--dump-dir", (folder_.path() / "dump").string()});
    const auto window = waitForWindow("Keep Awake");
    ASSERT_TRUE(window) << readFile(hostLog());
    ASSERT_TRUE(waitFor([&] { return fs::exists(dump("1-awake-small.json")); }));
    EXPECT_EQ(cardColors(), (CardColors{"#E4ECF7FF", "#14233AFF"}));

    click(server_->display(), window->x + window->width / 2, window->y + window->height / 2);
    ASSERT_TRUE(waitFor([&] { return readFile(themeLog).ends_with('\n'); })) << readFile(hostLog());
    EXPECT_EQ(readFile(themeLog), opened + "\n");
    host_.reset();
  }
}

// The desktop switching its GTK theme (an XSETTINGS manager announcing another) repaints the
// running host's cards in the new theme's colours.
TEST_F(DesktopHost, CardsFollowTheDesktopsThemeWhenItChanges) {
  installTheme("KorvoPlain");
  installTheme("KorvoTinted");
  const auto manager = startThemeManager("KorvoPlain");
  ASSERT_TRUE(manager);
  startHost({"--widget", "awake", "--dump-dir", (folder_.path() / "dump").string()});
  ASSERT_TRUE(waitForWindow("Keep Awake")) << readFile(hostLog());
  ASSERT_TRUE(waitFor([&] { return fs::exists(dump("1-awake-small.json")); }));
  EXPECT_EQ(cardColors(), (CardColors{"#ECECECFF", "#000000D9"}));

  // There and back: each switch is read anew.
  const std::vector<std::pair<std::string, CardColors>> switches{
      {"KorvoTinted", {"#E4ECF7FF", "#14233AFF"}},
      {"KorvoPlain", {"#ECECECFF", "#000000D9"}},
  };
  for (const auto& [theme, expected] : switches) {
    SCOPED_TRACE(theme);
    switchTheme(*manager, theme);
    EXPECT_EQ(cardColorsOnceThey(expected), expected);
  }
  EXPECT_TRUE(host_->running());
}

// A theme the host cannot read (here the X server refuses the reader, as it refuses a client
// without the session's cookie) leaves the cards in their colours and says so in the log; the
// next switch, readable again, is followed.
TEST_F(DesktopHost, CardsKeepTheirColoursWhenTheThemeCannotBeReadAndFollowTheNextSwitch) {
  const std::string cookie = "6b6f72766f2d7769646765747321a7f0";
  server_ = std::make_unique<XServer>(screenWidth, screenHeight, folder_.path(), cookie);
  environment_["DISPLAY"] = server_->display();
  environment_["XAUTHORITY"] = server_->authority().string();
  installTheme("KorvoPlain");
  installTheme("KorvoTinted");
  installTheme("KorvoDusk");
  const auto manager = startThemeManager("KorvoTinted");
  ASSERT_TRUE(manager);
  startHost({"--widget", "awake", "--dump-dir", (folder_.path() / "dump").string()});
  ASSERT_TRUE(waitFor([&] { return fs::exists(dump("1-awake-small.json")); }))
      << readFile(hostLog());
  // Colours of the theme's own, so that keeping them cannot be mistaken for falling back to the
  // cards' defaults (KorvoPlain's).
  const CardColors tinted{"#E4ECF7FF", "#14233AFF"};
  ASSERT_EQ(cardColors(), tinted);

  // The session's cookie changes under the host: the host keeps its connection, a new one fails.
  setXCookie(server_->authority(), server_->display(), "00000000000000000000000000000000");
  switchTheme(*manager, "KorvoPlain");
  const std::string failure = "the theme helper failed; the cards keep their colours";
  EXPECT_TRUE(waitFor([&] { return readFile(hostLog()).find(failure) != std::string::npos; }))
      << readFile(hostLog());
  EXPECT_EQ(freshCardColors(), tinted);
  EXPECT_TRUE(host_->running());

  setXCookie(server_->authority(), server_->display(), cookie);
  switchTheme(*manager, "KorvoDusk");
  const CardColors dusk{"#F4EDE2FF", "#3A2A14FF"};
  EXPECT_EQ(cardColorsOnceThey(dusk), dusk);
  // One failure, said once.
  const std::string log = readFile(hostLog());
  EXPECT_EQ(log.find(failure), log.rfind(failure)) << log;
}

TEST_F(DesktopHost, WithoutAKorvoHandlerAClickSaysSoOnOneLineAndTheHostKeepsRunning) {
  startHost({"--widget", "awake", "--dump-dir", (folder_.path() / "dump").string()});
  const auto window = waitForWindow("Keep Awake");
  ASSERT_TRUE(window) << readFile(hostLog());

  click(server_->display(), window->x + window->width / 2, window->y + window->height / 2);
  ASSERT_TRUE(waitFor([&] {
    return readFile(hostLog()).find("no application opened korvo://awake") != std::string::npos;
  })) << readFile(hostLog());
  EXPECT_TRUE(recordedURLs().empty());

  // The main loop still answers: a dump request writes the tree again.
  fs::remove(dump("1-awake-small.json"));
  host_->signal(SIGUSR1);
  EXPECT_TRUE(waitFor([&] { return fs::exists(dump("1-awake-small.json")); }));
  EXPECT_TRUE(host_->running());
}

TEST_F(DesktopHost, AMonitorWidgetReloadsAfterNineHundredSecondsAndKeepAwakeNever) {
  expectMonitorReloadsEveryNineHundredSeconds(
      snapshotFile(), hostLog(), folder_.path() / "dump",
      [&](std::vector<std::string> arguments) { startHost(std::move(arguments)); });
  EXPECT_TRUE(host_->running());
}

TEST_F(DesktopHost, TheSnapshotFileComingGoingAndBreakingOnlyChangesTheNextEntry) {
  startHost({"--widget", "temperature", "--time-rate", "900", "--dump-dir",
             (folder_.path() / "dump").string()});
  const auto temperatureDump = dump("1-temperature-small.json");
  const auto log = hostLog();
  // Waits until two more requests have been answered, so the latest entry saw the change.
  const auto nextEntries = [&] {
    const auto seen = requestMoments(readFile(log), "com.tessmoor.Korvo.temperature").size();
    return waitFor([&] {
      return requestMoments(readFile(log), "com.tessmoor.Korvo.temperature").size() >= seen + 2;
    });
  };
  const auto shows = [&](const std::string& text) {
    return waitFor([&] { return contains(dumpedTexts(temperatureDump), text); });
  };
  const double now = static_cast<double>(std::time(nullptr));

  ASSERT_TRUE(waitFor([&] { return fs::exists(temperatureDump); })) << readFile(log);
  writeFile(snapshotFile(), usageSnapshot(10, 41, now));
  ASSERT_TRUE(nextEntries());
  EXPECT_TRUE(shows("41°C"));

  writeFile(snapshotFile(), "{\"date\": 12, \"codex\": [broken");
  ASSERT_TRUE(nextEntries());
  EXPECT_FALSE(contains(dumpedTexts(temperatureDump), "41°C"));

  writeFile(snapshotFile(), usageSnapshot(10, 77, now));
  ASSERT_TRUE(nextEntries());
  EXPECT_TRUE(shows("77°C"));

  fs::remove(snapshotFile());
  ASSERT_TRUE(nextEntries());
  EXPECT_FALSE(contains(dumpedTexts(temperatureDump), "77°C"));

  // A FIFO in the file's place must not stall the host.
  ASSERT_EQ(mkfifo(snapshotFile().c_str(), 0600), 0);
  ASSERT_TRUE(nextEntries());
  EXPECT_TRUE(host_->running());
}

// The clock runs at its real rate, so the next reload is 15 minutes away: only the watch on the
// shared file can bring the published figures in while the test waits.
TEST_F(DesktopHost, APublishedFileReachesTheMonitorWidgetsAtOnce) {
  startHost({"--widget", "usage:medium", "--widget", "temperature", "--widget", "memory",
             "--dump-dir", (folder_.path() / "dump").string()});
  const auto usageDump = dump("1-usage-medium.json");
  const auto temperatureDump = dump("2-temperature-small.json");
  ASSERT_TRUE(waitFor([&] { return contains(dumpedTexts(usageDump), "Enable in Korvo"); }))
      << readFile(hostLog());
  ASSERT_TRUE(waitFor([&] { return contains(dumpedTexts(temperatureDump), "Enable in Korvo"); }));
  const auto requestsBefore = [&](const std::string& kind) {
    return requestMoments(readFile(hostLog()), kind).size();
  };
  const auto memoryRequests = requestsBefore("com.tessmoor.Korvo.memory");

  // Published the way korvo publishes: a temporary file renamed over the shared one.
  const auto staging = snapshotFile().parent_path() / ".usage-snapshot.json.tmp";
  writeFile(staging, usageSnapshot(42, 63, static_cast<double>(std::time(nullptr))));
  fs::rename(staging, snapshotFile());

  EXPECT_TRUE(
      waitFor([&] { return contains(dumpedTexts(usageDump), "58"); }, std::chrono::seconds(10)))
      << readFile(hostLog());
  EXPECT_TRUE(waitFor([&] { return contains(dumpedTexts(temperatureDump), "63°C"); },
                      std::chrono::seconds(10)));
  EXPECT_FALSE(contains(dumpedTexts(temperatureDump), "Enable in Korvo"));
  // The memory widget does not read the file and is not asked again.
  EXPECT_EQ(requestsBefore("com.tessmoor.Korvo.memory"), memoryRequests);
}

// korvo rewrites the shared file every minute, mostly with the figures it had: the cards read it
// again, but lay out and repaint only what shows something new.
TEST_F(DesktopHost, AFileRewrittenWithTheSameFiguresIsReadAgainButNotRepainted) {
  const double now = static_cast<double>(std::time(nullptr));
  // Figures five minutes old: their texts count minutes, not seconds.
  writeFile(snapshotFile(), usageSnapshot(42, 63, now - 300, 0));
  startHost({"--widget", "usage:medium"});
  const auto log = [&] { return readFile(hostLog()); };
  const auto relayouts = [&] {
    const auto text = log();
    std::size_t count = 0;
    for (auto at = text.find("accessible children of AI Usage"); at != std::string::npos;
         at = text.find("accessible children of AI Usage", at + 1)) {
      ++count;
    }
    return count;
  };
  const auto requests = [&] { return requestMoments(log(), "com.tessmoor.Korvo.usage").size(); };
  ASSERT_TRUE(waitFor([&] { return relayouts() >= 1; })) << log();
  const auto shown = relayouts();
  const auto asked = requests();

  const auto staging = snapshotFile().parent_path() / ".usage-snapshot.json.tmp";
  writeFile(staging, usageSnapshot(42, 63, now - 300, 0));
  fs::rename(staging, snapshotFile());
  ASSERT_TRUE(waitFor([&] { return requests() > asked; })) << log();
  // Time for a repaint that should not come.
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  EXPECT_EQ(relayouts(), shown) << log();

  writeFile(staging, usageSnapshot(58, 63, now - 300, 0));
  fs::rename(staging, snapshotFile());
  EXPECT_TRUE(waitFor([&] { return relayouts() > shown; })) << log();
}

TEST_F(DesktopHost, KorvoPublishTurnsEnableInKorvoIntoFiguresOnScreen) {
  ASSERT_STRNE(KORVO_APP_BINARY, "") << "korvo was not built";
  startHost({"--widget", "usage:medium", "--widget", "temperature", "--dump-dir",
             (folder_.path() / "dump").string()});
  const auto usageDump = dump("1-usage-medium.json");
  const auto temperatureDump = dump("2-temperature-small.json");
  ASSERT_TRUE(waitFor([&] { return contains(dumpedTexts(usageDump), "Enable in Korvo"); }))
      << readFile(hostLog());

  // korvo itself, reading a two-package coretemp machine and Codex's fixture rollout.
  auto environment = environment_;
  environment["KORVO_SYSROOT"] = KORVO_FIXTURES_DIR "/hwmon/coretemp_two_packages";
  environment["CODEX_HOME"] = KORVO_FIXTURES_DIR "/codex";
  const CommandResult publish = runCommand({KORVO_APP_BINARY, "publish"}, environment);
  ASSERT_EQ(publish.exitStatus, 0) << publish.output;

  EXPECT_TRUE(waitFor([&] { return contains(dumpedTexts(temperatureDump), "62°C"); },
                      std::chrono::seconds(10)))
      << readFile(hostLog());
  // Codex's weekly window has 58 % left in the fixture rollout.
  EXPECT_TRUE(
      waitFor([&] { return contains(dumpedTexts(usageDump), "58"); }, std::chrono::seconds(10)))
      << readFile(hostLog());
  EXPECT_FALSE(contains(dumpedTexts(usageDump), "Enable in Korvo"));
}

TEST_F(DesktopHost, ThePlacementsFileIsFollowedAsItChangesAndABadOneKeepsTheWidgetsShown) {
  const auto placements = folder_.path() / "config" / "korvo-widgets" / "placements.json";
  writeFile(placements, R"([{"kind": "awake", "anchor": "top-left"}])");
  startHost({});
  const auto awake = waitForWindow("Keep Awake");
  ASSERT_TRUE(awake) << readFile(hostLog());
  EXPECT_EQ(awake->x, 16);
  EXPECT_EQ(awake->y, 16);

  writeFile(placements,
            R"([{"kind": "memory", "family": "medium", "position": {"x": 100, "y": 200}}])");
  const auto memory = waitForWindow("Memory");
  ASSERT_TRUE(memory) << readFile(hostLog());
  EXPECT_EQ(memory->x, 100);
  EXPECT_EQ(memory->y, 200);
  EXPECT_EQ(memory->width, 364);
  EXPECT_TRUE(waitFor([&] { return visibleWindows(server_->display(), "^Keep Awake$").empty(); }));

  writeFile(placements, R"([{"kind": "memory", "family": "large"}])");
  ASSERT_TRUE(waitFor([&] {
    return readFile(hostLog()).find(placements.string() +
                                    ": [0].family: \"large\" is not offered by memory (small, "
                                    "medium); keeping the widgets shown") != std::string::npos;
  })) << readFile(hostLog());
  EXPECT_EQ(visibleWindows(server_->display(), "^Memory$").size(), 1U);

  // SIGHUP reads the file again: still bad, so the same line once more and nothing changes.
  const auto complaints = [&] {
    const auto text = readFile(hostLog());
    std::size_t count = 0;
    for (auto at = text.find("keeping the widgets shown"); at != std::string::npos;
         at = text.find("keeping the widgets shown", at + 1)) {
      ++count;
    }
    return count;
  };
  const auto before = complaints();
  host_->signal(SIGHUP);
  ASSERT_TRUE(waitFor([&] { return complaints() > before; }));
  EXPECT_EQ(visibleWindows(server_->display(), "^Memory$").size(), 1U);
  EXPECT_TRUE(host_->running());
}

}  // namespace
}  // namespace korvo::desktop_test
