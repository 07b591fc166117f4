#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "support/dashboard_environment.hpp"
#include "support/private_buses.hpp"
#include "support/process_run.hpp"

// The status icon against a mock org.kde.StatusNotifierWatcher on a private session bus: the
// service registers its item, and the item's menu (exported over dbusmenu) opens the tabs,
// starts and stops Keep Awake and switches the agents' watch; the icon follows. With it, the
// notice of a session's end opening the Awake tab, through the notification mock's signal.
namespace korvo {
namespace {

namespace fs = std::filesystem;
using namespace desktop_test;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* watcher = "org.kde.StatusNotifierWatcher";

// The text between the single quotes that follow `marker` in a gdbus reply; empty when absent.
std::string quotedAfter(const std::string& reply, const std::string& marker) {
  const auto at = reply.find(marker);
  if (at == std::string::npos) return {};
  const auto open = reply.find('\'', at + marker.size());
  const auto close = open == std::string::npos ? open : reply.find('\'', open + 1);
  return close == std::string::npos ? std::string() : reply.substr(open + 1, close - open - 1);
}

// The id of the dbusmenu item labelled `title` in a GetLayout reply: "(ID, {… 'label': <'title'>".
std::string menuItemId(const std::string& layout, const std::string& title) {
  const auto label = layout.find("'label': <'" + title + "'>");
  if (label == std::string::npos) return {};
  const auto open = layout.rfind('(', label);
  if (open == std::string::npos) return {};
  const auto end = layout.find(',', open);
  return layout.substr(open + 1, end - open - 1);
}

class TrayIndicatorTest : public testing::Test {
 protected:
  void SetUp() override {
    server = std::make_unique<XServer>(1024, 768, folder.path());
    bus = std::make_unique<bus_test::PrivateBus>(folder.path(), "session");
    environment =
        dashboard_test::dashboardEnvironment(folder.path(), server->display(), bus->address());
    mock = std::make_unique<bus_test::Mock>(
        environment, folder.path(),
        std::vector<std::string>{watcher, "/StatusNotifierWatcher", watcher}, watcher, false);
    mockCall("AddMethod", {"", "RegisterStatusNotifierItem", "s", "", ""});
    mockCall("AddMethod", {"", "RegisterStatusNotifierHost", "s", "", ""});
    mockCall("AddProperty", {"", "IsStatusNotifierHostRegistered", "<true>"});
    mockCall("AddProperty", {"", "ProtocolVersion", "<0>"});
    mockCall("AddProperty", {"", "RegisteredStatusNotifierItems", "<@as []>"});
  }
  void TearDown() override {
    service.reset();
    mock.reset();
    bus.reset();
    server.reset();
  }
  std::string mockCall(const std::string& method, const std::vector<std::string>& arguments) {
    return bus_test::call(environment, false, watcher, "/StatusNotifierWatcher",
                          "org.freedesktop.DBus.Mock." + method, arguments);
  }
  // Starts the service and finds its item and menu on the bus.
  void startService() {
    service = std::make_unique<Process>(std::vector<std::string>{KORVO_APP_BINARY, "service"},
                                        environment, folder.path() / "service.out",
                                        folder.path() / "service.err");
    std::string calls;
    ASSERT_TRUE(waitFor([&] {
      calls = mockCall("GetCalls", {});
      return calls.find("RegisterStatusNotifierItem") != std::string::npos;
    })) << readFile(folder.path() / "service.err");
    const std::string path = quotedAfter(calls, "'RegisterStatusNotifierItem', [<");
    ASSERT_FALSE(path.empty()) << calls;
    const auto owner =
        bus_test::call(environment, false, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                       "org.freedesktop.DBus.GetNameOwner", {"com.tessmoor.Korvo"});
    name = quotedAfter(owner, "");
    ASSERT_FALSE(name.empty()) << owner;
    itemPath = path.front() == '/' ? path : "/StatusNotifierItem";
    const auto menuReply = property("Menu");
    menu = quotedAfter(menuReply, "objectpath ");
    ASSERT_FALSE(menu.empty()) << menuReply;
    // The menu is exported once the main loop has run after the registration.
    ASSERT_TRUE(waitFor([&] { return layout().find("'label'") != std::string::npos; }))
        << "no menu at " << name << " " << menu;
  }
  std::string property(const std::string& key) const {
    return bus_test::call(environment, false, name, itemPath, "org.freedesktop.DBus.Properties.Get",
                          {"org.kde.StatusNotifierItem", key});
  }
  std::string layout() const {
    return bus_test::call(environment, false, name, menu, "com.canonical.dbusmenu.GetLayout",
                          {"0", "-1", "@as []"});
  }
  void click(const std::string& title) const;
  nlohmann::json awakeStatus() const {
    const auto result =
        testing_support::runProgram(KORVO_APP_BINARY, {"awake", "status", "--json"}, environment);
    return nlohmann::json::parse(result.out.empty() ? "{}" : result.out);
  }
  std::string page() const {
    const auto text = readFile(folder.path() / "dashboard.json");
    return text.empty() ? "" : nlohmann::json::parse(text).value("page", "");
  }
  // The preferences' page in view; "" while their window is hidden.
  std::string preferences() const {
    const auto text = readFile(folder.path() / "dashboard.json");
    const auto shown = text.empty() ? nullptr : nlohmann::json::parse(text)["preferences"];
    return shown.is_string() ? shown.get<std::string>() : "";
  }

  TemporaryDirectory folder;
  std::unique_ptr<XServer> server;
  std::unique_ptr<bus_test::PrivateBus> bus;
  std::unique_ptr<bus_test::Mock> mock;
  Environment environment;
  std::unique_ptr<Process> service;
  std::string name;      // the service's unique bus name
  std::string itemPath;  // its StatusNotifierItem
  std::string menu;      // its dbusmenu
};

void TrayIndicatorTest::click(const std::string& title) const {
  const std::string item = menuItemId(layout(), title);
  ASSERT_FALSE(item.empty()) << title << " is not in the menu:\n" << layout();
  bus_test::call(environment, false, name, menu, "com.canonical.dbusmenu.Event",
                 {item, "clicked", "<0>", "0"});
}

// The properties of the menu item labelled `title` in a GetLayout reply, up to its children.
std::string itemProperties(const std::string& layout, const std::string& title) {
  const auto label = layout.find("'label': <'" + title + "'>");
  if (label == std::string::npos) return {};
  const auto open = layout.rfind('{', label);
  const auto close = layout.find('}', label);
  return layout.substr(open, close - open + 1);
}

TEST_F(TrayIndicatorTest, TheServiceRegistersItsItemAndTheMenuOpensEachTab) {
  startService();
  EXPECT_THAT(property("XAyatanaLabel"), HasSubstr("%"))
      << "the memory figure in the default mode, usedPercent";
  EXPECT_THAT(property("Title"), HasSubstr("% memory · Keep Awake is off"));
  const std::string items = layout();
  for (const auto& [title, expected] :
       {std::pair{"Awake", "awake"}, std::pair{"AI", "ai"}, std::pair{"Mem", "memory"}}) {
    click(title);
    const std::string wanted = expected;  // clang before 16 cannot capture a binding
    EXPECT_TRUE(waitFor([&] { return page() == wanted; })) << title;
  }
  click("Preferences");
  EXPECT_TRUE(waitFor([&] { return preferences() == "monitors"; }));
  for (const char* title :
       {"15 min", "1 h", "2 h", "4 h", "Until I stop it", "Quit (widgets stop updating)"}) {
    EXPECT_THAT(items, HasSubstr("'label': <'" + std::string(title) + "'>"));
  }
}

TEST_F(TrayIndicatorTest, TheMenuStartsAndStopsKeepAwakeAndTheIconShowsIt) {
  const std::string manager = "org.gnome.SessionManager";
  bus_test::Mock sessionManager(environment, folder.path(),
                                {manager, "/org/gnome/SessionManager", manager}, manager, false);
  for (const auto& method : std::vector<std::vector<std::string>>{
           {"", "Inhibit", "susu", "u", "ret = 42"}, {"", "Uninhibit", "u", "", ""}}) {
    bus_test::call(environment, false, manager, "/org/gnome/SessionManager",
                   "org.freedesktop.DBus.Mock.AddMethod", method);
  }
  startService();
  EXPECT_THAT(property("IconName"), HasSubstr("<'com.tessmoor.Korvo'>"));
  EXPECT_THAT(itemProperties(layout(), "Stop"), HasSubstr("'visible': <false>"));

  click("1 h");
  ASSERT_TRUE(waitFor([&] { return awakeStatus().value("active", false); }));
  EXPECT_TRUE(waitFor([&] {
    return property("IconName").find("<'com.tessmoor.Korvo-awake'>") != std::string::npos;
  }));
  EXPECT_THAT(property("Title"), HasSubstr("Keeping this machine awake until "));
  std::string items;
  EXPECT_TRUE(waitFor([&] {
    items = layout();
    return items.find("'label': <'Stop (60 min left)'>") != std::string::npos;
  })) << items;
  EXPECT_THAT(itemProperties(items, "Stop (60 min left)"), Not(HasSubstr("'visible': <false>")));

  click("Stop (60 min left)");
  EXPECT_TRUE(waitFor([&] { return !awakeStatus().value("active", true); }));
  EXPECT_TRUE(waitFor(
      [&] { return property("IconName").find("<'com.tessmoor.Korvo'>") != std::string::npos; }));

  click("Until I stop it");
  EXPECT_TRUE(waitFor([&] { return awakeStatus().value("indefinite", false); }));
  EXPECT_TRUE(waitFor([&] { return menuItemId(layout(), "Stop") != ""; }));
  click("Stop");
  EXPECT_TRUE(waitFor([&] { return !awakeStatus().value("active", true); }));
}

TEST_F(TrayIndicatorTest, TheAgentsSwitchTurnsTheWatchOffAndOn) {
  startService();
  const std::string title = "While Codex or Claude Code works";
  EXPECT_THAT(itemProperties(layout(), title),
              AllOf(HasSubstr("'toggle-type': <'checkmark'>"), HasSubstr("'toggle-state': <1>")));
  const auto watching = [&] {
    const auto text = readFile(folder.path() / "config/korvo/settings.json");
    return text.empty() ? true : nlohmann::json::parse(text).value("awakeWhileAgentsWork", true);
  };
  click(title);
  EXPECT_TRUE(waitFor([&] { return !watching(); }));
  EXPECT_TRUE(waitFor([&] {
    return itemProperties(layout(), title).find("'toggle-state': <0>") != std::string::npos;
  }));
  click(title);
  EXPECT_TRUE(waitFor([&] { return watching(); }));
}

TEST_F(TrayIndicatorTest, OpenKeepAwakeOnTheNoticeOfASessionsEndShowsTheAwakeTab) {
  const std::string manager = "org.gnome.SessionManager";
  bus_test::Mock sessionManager(environment, folder.path(),
                                {manager, "/org/gnome/SessionManager", manager}, manager, false);
  for (const auto& method : std::vector<std::vector<std::string>>{
           {"", "Inhibit", "susu", "u", "ret = 42"}, {"", "Uninhibit", "u", "", ""}}) {
    bus_test::call(environment, false, manager, "/org/gnome/SessionManager",
                   "org.freedesktop.DBus.Mock.AddMethod", method);
  }
  const std::string server = "org.freedesktop.Notifications";
  bus_test::Mock notifications(environment, folder.path(), {"--template", "notification_daemon"},
                               server, false);
  startService();
  ASSERT_EQ(
      testing_support::runProgram(KORVO_APP_BINARY, {"awake", "start", "1s"}, environment).exitCode,
      0);
  ASSERT_TRUE(waitFor([&] {
    return bus_test::call(environment, false, server, "/org/freedesktop/Notifications",
                          "org.freedesktop.DBus.Mock.GetCalls")
               .find("'Keep Awake ended'") != std::string::npos;
  }));
  EXPECT_NE(page(), "awake") << "no dashboard was shown before";
  bus_test::call(environment, false, server, "/org/freedesktop/Notifications",
                 "org.freedesktop.DBus.Mock.EmitSignal",
                 {server, "ActionInvoked", "us", "[<uint32 1>, <'open'>]"});
  EXPECT_TRUE(waitFor([&] { return page() == "awake"; }));
}

TEST_F(TrayIndicatorTest, QuitEndsTheServiceSaysSoAndTheMenuEntryStartsItAgain) {
  const std::string server = "org.freedesktop.Notifications";
  bus_test::Mock notifications(environment, folder.path(), {"--template", "notification_daemon"},
                               server, false);
  dashboard_test::registerKorvoAsHandler(folder.path());
  startService();
  click("Quit (widgets stop updating)");
  EXPECT_TRUE(waitFor([&] { return !service->running(); }));
  EXPECT_FALSE(bus_test::owned(environment, false, "com.tessmoor.Korvo"));
  const std::string calls =
      bus_test::call(environment, false, server, "/org/freedesktop/Notifications",
                     "org.freedesktop.DBus.Mock.GetCalls");
  EXPECT_THAT(calls, HasSubstr("'Korvo has quit'"));
  EXPECT_THAT(calls, HasSubstr("The AI Usage and CPU Temperature widgets will not update until "
                               "Korvo starts again."));

  // The applications menu starts the entry as GIO launches it.
  Process launch({"/usr/bin/gio", "launch",
                  (folder.path() / "data/applications/com.tessmoor.Korvo.desktop").string()},
                 environment, folder.path() / "launch.out", folder.path() / "launch.err");
  EXPECT_TRUE(waitFor([&] { return bus_test::owned(environment, false, "com.tessmoor.Korvo"); }))
      << readFile(folder.path() / "launch.err");
  EXPECT_TRUE(waitFor([&] {
    const auto text = readFile(folder.path() / "dashboard.json");
    return !text.empty() && nlohmann::json::parse(text).value("mapped", false);
  })) << "the dashboard shows";
}

}  // namespace
}  // namespace korvo
