#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <thread>

#include "support/dashboard_environment.hpp"
#include "support/korvo_process.hpp"
#include "support/private_buses.hpp"

// The dashboard as the desktop opens it: korvo's desktop entry installed into a temporary
// XDG_DATA_HOME as the default korvo:// handler, the desktop host's widgets clicked in Xvfb, the
// service and the links meeting on a private session bus.
namespace korvo {
namespace {

namespace fs = std::filesystem;
using namespace desktop_test;
using testing::HasSubstr;

constexpr int screenWidth = 1600;
constexpr int screenHeight = 1000;
constexpr const char* dashboardTitle = "^Korvo · Resources, AI usage & Keep Awake$";

class DashboardLinks : public testing::Test {
 protected:
  void SetUp() override {
    server = std::make_unique<XServer>(screenWidth, screenHeight, folder.path());
    bus = std::make_unique<bus_test::PrivateBus>(folder.path(), "session");
    environment =
        dashboard_test::dashboardEnvironment(folder.path(), server->display(), bus->address(),
                                             KORVO_FIXTURES_DIR "/hwmon/coretemp_two_packages");
    dashboard_test::registerKorvoAsHandler(folder.path());
  }

  void TearDown() override {
    host.reset();
    service.reset();
    bus.reset();
    server.reset();
  }

  void startService() {
    service = std::make_unique<Process>(std::vector<std::string>{KORVO_APP_BINARY, "service"},
                                        environment, folder.path() / "service.out",
                                        folder.path() / "service.err");
    ASSERT_TRUE(waitFor([&] { return bus_test::owned(environment, false, "com.tessmoor.Korvo"); }))
        << readFile(folder.path() / "service.err");
  }
  void startWidgets() {
    host = std::make_unique<Process>(std::vector<std::string>{KORVO_BINARY, "run"}, environment,
                                     folder.path() / "host.out", folder.path() / "host.err");
  }

  fs::path dumpFile() const { return folder.path() / "dashboard.json"; }
  nlohmann::json dashboard() const {
    const auto text = readFile(dumpFile());
    return text.empty() ? nlohmann::json::object() : nlohmann::json::parse(text);
  }
  // The page the dashboard shows, once it is mapped and shows `page`.
  bool showing(const std::string& page) {
    return waitFor([&] {
      const auto state = dashboard();
      return state.value("page", "") == page && state.value("mapped", false) &&
             visibleWindows(server->display(), dashboardTitle).size() == 1;
    });
  }
  std::optional<WindowGeometry> widgetWindow(const std::string& title) {
    std::vector<std::string> ids;
    waitFor([&] {
      ids = visibleWindows(server->display(), "^" + title + "$");
      return ids.size() == 1;
    });
    if (ids.size() != 1) return std::nullopt;
    return windowGeometry(server->display(), ids.front());
  }
  testing_support::ProcessResult korvo(const std::vector<std::string>& args) {
    return testing_support::runProgram(KORVO_APP_BINARY, args, environment);
  }

  TemporaryDirectory folder;
  std::unique_ptr<XServer> server;
  std::unique_ptr<bus_test::PrivateBus> bus;
  Environment environment;
  std::unique_ptr<Process> service;
  std::unique_ptr<Process> host;
};

TEST_F(DashboardLinks, AClickOnEachWidgetShowsTheDashboardAtItsTabInOneWindow) {
  startService();
  startWidgets();
  const std::pair<const char*, const char*> cases[] = {
      {"Keep Awake", "awake"},
      {"AI Usage", "ai"},
      {"Memory", "memory"},
      {"CPU Temperature", "memory"},
  };
  std::optional<std::string> dashboardId;
  for (const auto& [title, page] : cases) {
    const auto window = widgetWindow(title);
    ASSERT_TRUE(window) << title << " never showed; host:\n"
                        << readFile(folder.path() / "host.err");
    click(server->display(), window->x + window->width / 2, window->y + window->height / 2);
    EXPECT_TRUE(showing(page)) << title << " did not open " << page << "; service:\n"
                               << readFile(folder.path() / "service.err") << "host:\n"
                               << readFile(folder.path() / "host.err");
    const auto ids = visibleWindows(server->display(), dashboardTitle);
    ASSERT_EQ(ids.size(), 1U);
    if (!dashboardId) dashboardId = ids.front();
    EXPECT_EQ(ids.front(), *dashboardId) << "each link reuses the one window";
    EXPECT_EQ(dashboard()["notice"], nullptr);
  }
}

TEST_F(DashboardLinks, ArrangeWidgetsInACardsMenuOpensTheWidgetsPreferences) {
  startService();
  startWidgets();
  const auto card = widgetWindow("Keep Awake");
  ASSERT_TRUE(card) << readFile(folder.path() / "host.err");
  rightClick(server->display(), card->x + card->width / 2, card->y + card->height / 2);
  // The menu is the host's one window bigger than a card, named after the program.
  ASSERT_TRUE(waitFor([&] {
    for (const auto& id : visibleWindows(server->display(), "^korvo-widgets$")) {
      const auto geometry = windowGeometry(server->display(), id);
      if (geometry && geometry->x >= 0 && geometry->y >= 0 && geometry->height > 60) return true;
    }
    return false;
  })) << readFile(folder.path() / "host.err");
  pressKey(server->display(), "w");
  EXPECT_TRUE(waitFor([&] { return dashboard()["preferences"] == "widgets"; }))
      << dashboard().dump() << readFile(folder.path() / "host.err")
      << readFile(folder.path() / "service.err");
  EXPECT_EQ(visibleWindows(server->display(), "^Korvo Preferences$").size(), 1U);
  EXPECT_TRUE(fs::exists(folder.path() / "config/korvo-widgets/placements.json"))
      << "the widgets shown are saved first, so the page shows them";
}

TEST_F(DashboardLinks, ASecondOpenReusesTheWindowAndAnUnknownRouteSaysSo) {
  startService();
  ASSERT_EQ(korvo({"open", "korvo://awake"}).exitCode, 0);
  ASSERT_TRUE(showing("awake"));
  const auto first = visibleWindows(server->display(), dashboardTitle);
  const auto unknown = korvo({"open", "korvo://weather"});
  EXPECT_EQ(unknown.exitCode, 0) << unknown.err;
  EXPECT_TRUE(waitFor([&] { return dashboard()["notice"] == "Unknown link: korvo://weather"; }));
  EXPECT_TRUE(showing("ai"));
  EXPECT_EQ(visibleWindows(server->display(), dashboardTitle), first);
  ASSERT_EQ(korvo({"open", "korvo://resources"}).exitCode, 0);
  EXPECT_TRUE(showing("memory"));
  EXPECT_EQ(dashboard()["notice"], nullptr);
  EXPECT_EQ(visibleWindows(server->display(), dashboardTitle), first);
}

// Any web page can send a link: however long, it does not widen the window.
TEST_F(DashboardLinks, ALongUnknownLinkDoesNotWidenTheWindow) {
  startService();
  ASSERT_EQ(korvo({"open", "korvo://weather"}).exitCode, 0);
  ASSERT_TRUE(waitFor([&] { return dashboard()["notice"] == "Unknown link: korvo://weather"; }));
  const auto ids = visibleWindows(server->display(), dashboardTitle);
  ASSERT_EQ(ids.size(), 1U);
  const auto before = windowGeometry(server->display(), ids.front());
  ASSERT_TRUE(before);
  const std::string link = "korvo://" + std::string(20'000, 'w');
  ASSERT_EQ(korvo({"open", link}).exitCode, 0);
  ASSERT_TRUE(waitFor([&] { return dashboard()["notice"] == "Unknown link: " + link; }));
  // Let a resize, if any were coming, reach the window manager.
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  const auto after = windowGeometry(server->display(), ids.front());
  ASSERT_TRUE(after);
  EXPECT_EQ(after->width, before->width);
  EXPECT_EQ(after->height, before->height);
}

TEST_F(DashboardLinks, TheFirstOpenBecomesTheServiceAndASecondServiceIsRefused) {
  auto first = std::make_unique<Process>(
      std::vector<std::string>{KORVO_APP_BINARY, "open", "korvo://usage"}, environment,
      folder.path() / "first.out", folder.path() / "first.err");
  ASSERT_TRUE(showing("ai")) << readFile(folder.path() / "first.err");
  const auto second = korvo({"service"});
  EXPECT_EQ(second.exitCode, 1);
  EXPECT_THAT(second.err, HasSubstr("the service is already running in this session"));
  EXPECT_EQ(std::count(second.err.begin(), second.err.end(), '\n'), 1);
}

TEST_F(DashboardLinks, OnlyKorvoLinksAreOpened) {
  for (const char* url : {"https://example.com/usage", "korvo:awake", "korvo://a b"}) {
    const auto result = korvo({"open", url});
    EXPECT_EQ(result.exitCode, 2) << url;
    EXPECT_THAT(result.err, HasSubstr("not a korvo:// link")) << url;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << url;
  }
  EXPECT_FALSE(bus_test::owned(environment, false, "com.tessmoor.Korvo"));
}

}  // namespace
}  // namespace korvo
