#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "support/dashboard_environment.hpp"
#include "support/private_buses.hpp"

// The status icon against a mock org.kde.StatusNotifierWatcher on a private session bus: the
// service registers its item, and the item's menu (exported over dbusmenu) opens the tabs.
namespace korvo {
namespace {

namespace fs = std::filesystem;
using namespace desktop_test;
using testing::HasSubstr;

constexpr const char* watcher = "org.kde.StatusNotifierWatcher";

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
  std::string page() const {
    const auto text = readFile(folder.path() / "dashboard.json");
    return text.empty() ? "" : nlohmann::json::parse(text).value("page", "");
  }

  TemporaryDirectory folder;
  std::unique_ptr<XServer> server;
  std::unique_ptr<bus_test::PrivateBus> bus;
  std::unique_ptr<bus_test::Mock> mock;
  Environment environment;
  std::unique_ptr<Process> service;
};

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

TEST_F(TrayIndicatorTest, TheServiceRegistersItsItemAndTheMenuOpensEachTab) {
  service =
      std::make_unique<Process>(std::vector<std::string>{KORVO_APP_BINARY, "service"}, environment,
                                folder.path() / "service.out", folder.path() / "service.err");
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
  const std::string name = quotedAfter(owner, "");
  ASSERT_FALSE(name.empty()) << owner;
  const std::string itemPath = path.front() == '/' ? path : "/StatusNotifierItem";
  const auto menuReply =
      bus_test::call(environment, false, name, itemPath, "org.freedesktop.DBus.Properties.Get",
                     {"org.kde.StatusNotifierItem", "Menu"});
  const std::string menu = quotedAfter(menuReply, "objectpath ");
  ASSERT_FALSE(menu.empty()) << menuReply;
  const auto label =
      bus_test::call(environment, false, name, itemPath, "org.freedesktop.DBus.Properties.Get",
                     {"org.kde.StatusNotifierItem", "XAyatanaLabel"});
  EXPECT_THAT(label, HasSubstr("%")) << "the memory figure in the default mode, usedPercent";

  // The menu is exported once the main loop has run after the registration.
  std::string layout;
  EXPECT_TRUE(waitFor([&] {
    layout = bus_test::call(environment, false, name, menu, "com.canonical.dbusmenu.GetLayout",
                            {"0", "-1", "@as []"});
    return layout.find("'label'") != std::string::npos;
  })) << "no menu at "
      << name << " " << menu;
  for (const auto& [title, expected] :
       {std::pair{"Awake", "awake"}, std::pair{"AI", "ai"}, std::pair{"Mem", "memory"},
        std::pair{"Settings", "settings"}}) {
    const std::string item = menuItemId(layout, title);
    ASSERT_FALSE(item.empty()) << title << " is not in the menu:\n" << layout;
    bus_test::call(environment, false, name, menu, "com.canonical.dbusmenu.Event",
                   {item, "clicked", "<0>", "0"});
    const std::string wanted = expected;  // clang before 16 cannot capture a binding
    EXPECT_TRUE(waitFor([&] { return page() == wanted; })) << title;
  }
  EXPECT_THAT(layout, HasSubstr("'label': <'Start Keep Awake'>"));
  EXPECT_THAT(layout, HasSubstr("'label': <'Quit'>"));
}

}  // namespace
}  // namespace korvo
