#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "support/dashboard_environment.hpp"
#include "support/korvo_process.hpp"
#include "support/private_buses.hpp"

// The dashboard driven from the keyboard with xdotool, as a user drives it: the view switcher's
// keys, the preferences' Ctrl+comma, and Escape, Ctrl+W and Ctrl+Q closing windows while the
// service goes on.
namespace korvo {
namespace {

using namespace desktop_test;
using Json = nlohmann::json;

constexpr const char* dashboardTitle = "^Korvo · Resources, AI usage & Keep Awake$";

class DashboardKeys : public testing::Test {
 protected:
  void SetUp() override {
    server = std::make_unique<XServer>(1280, 1024, folder.path());
    bus = std::make_unique<bus_test::PrivateBus>(folder.path(), "session");
    environment =
        dashboard_test::dashboardEnvironment(folder.path(), server->display(), bus->address());
  }
  void TearDown() override {
    service.reset();
    bus.reset();
    server.reset();
  }

  Json dashboard() const {
    return Json::parse(readFile(folder.path() / "dashboard.json"), nullptr, false);
  }
  // The state the dashboard reached: its page while mapped, "" while hidden.
  bool reaches(const std::string& page, const Json& preferences = nullptr) {
    return waitFor([&] {
      const auto state = dashboard();
      if (!state.is_object()) return false;
      const std::string shown = state.value("mapped", false) ? state.value("page", "") : "";
      return shown == page && state["preferences"] == preferences;
    });
  }
  // Keys go to the window under the pointer (no window manager gives the focus here).
  void pointAt(const std::string& title) {
    const auto ids = visibleWindows(server->display(), title);
    ASSERT_EQ(ids.size(), 1U) << title;
    const auto geometry = windowGeometry(server->display(), ids.front());
    ASSERT_TRUE(geometry);
    runCommand({"xdotool", "mousemove", std::to_string(geometry->x + geometry->width / 2),
                std::to_string(geometry->y + geometry->height - 20)},
               {{"PATH", "/usr/bin:/bin"}, {"DISPLAY", server->display()}});
  }
  std::string errors() const { return readFile(folder.path() / "service.err"); }

  TemporaryDirectory folder;
  std::unique_ptr<XServer> server;
  std::unique_ptr<bus_test::PrivateBus> bus;
  Environment environment;
  std::unique_ptr<Process> service;
};

TEST_F(DashboardKeys, TheKeysSwitchPagesOpenThePreferencesAndCloseTheWindowsButNotTheService) {
  service = std::make_unique<Process>(
      std::vector<std::string>{KORVO_APP_BINARY, "open", "korvo://ai"}, environment,
      folder.path() / "service.out", folder.path() / "service.err");
  ASSERT_TRUE(reaches("ai")) << errors();
  ASSERT_TRUE(
      waitFor([&] { return visibleWindows(server->display(), dashboardTitle).size() == 1; }));
  pointAt(dashboardTitle);

  pressKey(server->display(), "alt+2");
  EXPECT_TRUE(reaches("memory")) << errors();
  pressKey(server->display(), "alt+3");
  EXPECT_TRUE(reaches("awake"));
  pressKey(server->display(), "ctrl+Page_Up");
  EXPECT_TRUE(reaches("memory"));
  pressKey(server->display(), "ctrl+Page_Down");
  EXPECT_TRUE(reaches("awake"));

  pressKey(server->display(), "ctrl+comma");
  ASSERT_TRUE(reaches("awake", "monitors")) << dashboard().dump();
  ASSERT_TRUE(waitFor(
      [&] { return visibleWindows(server->display(), "^Korvo Preferences$").size() == 1; }));
  pointAt("^Korvo Preferences$");
  pressKey(server->display(), "Escape");
  EXPECT_TRUE(reaches("awake")) << "Escape closes the preferences alone: " << dashboard().dump();

  pointAt(dashboardTitle);
  pressKey(server->display(), "ctrl+w");
  EXPECT_TRUE(reaches("")) << dashboard().dump();
  EXPECT_TRUE(waitFor([&] { return visibleWindows(server->display(), dashboardTitle).empty(); }));

  ASSERT_EQ(testing_support::runProgram(KORVO_APP_BINARY, {"open", "korvo://usage"}, environment)
                .exitCode,
            0);
  ASSERT_TRUE(reaches("ai"));
  pointAt(dashboardTitle);
  pressKey(server->display(), "Escape");
  EXPECT_TRUE(reaches(""));

  ASSERT_EQ(testing_support::runProgram(KORVO_APP_BINARY, {"open", "korvo://awake"}, environment)
                .exitCode,
            0);
  ASSERT_TRUE(reaches("awake"));
  pointAt(dashboardTitle);
  pressKey(server->display(), "ctrl+q");
  EXPECT_TRUE(reaches(""));
  // Quit closed the window only: the service still answers and still publishes.
  EXPECT_TRUE(bus_test::owned(environment, false, "com.tessmoor.Korvo"));
  const auto status =
      testing_support::runProgram(KORVO_APP_BINARY, {"awake", "status"}, environment);
  EXPECT_EQ(status.exitCode, 0) << status.err;
  EXPECT_EQ(status.out, "Keep Awake is off.\n");
}

}  // namespace
}  // namespace korvo
