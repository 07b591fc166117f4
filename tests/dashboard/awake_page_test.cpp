#include "dashboard/awake_page.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "app/settings_file.hpp"
#include "base/text.hpp"
#include "support/desktop_harness.hpp"
#include "support/korvo_process.hpp"
#include "support/private_buses.hpp"
#include "support/scoped_environment.hpp"

// The Awake tab in a real X server over a real KeepAwake, against python3-dbusmock's logind on a
// private system bus and a mock session manager on a private session bus: what its lines say and
// which buttons it offers, whatever the inhibitors answer.
namespace korvo {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// The texts of the visible labels under `widget`, in the order the page shows them.
void collectLines(GtkWidget* widget, std::vector<std::string>& lines) {
  if (!gtk_widget_get_visible(widget)) return;
  if (GTK_IS_LABEL(widget) && !GTK_IS_ACCEL_LABEL(widget)) {
    const std::string text = gtk_label_get_text(GTK_LABEL(widget));
    if (!text.empty()) lines.push_back(text);
  }
  if (GTK_IS_CONTAINER(widget)) {
    GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
    for (GList* child = children; child != nullptr; child = child->next) {
      collectLines(GTK_WIDGET(child->data), lines);
    }
    g_list_free(children);
  }
}

GtkWidget* buttonLabelled(GtkWidget* widget, const std::string& title) {
  if (GTK_IS_BUTTON(widget)) {
    const char* label = gtk_button_get_label(GTK_BUTTON(widget));
    if (label != nullptr && label == title) return widget;
  }
  if (!GTK_IS_CONTAINER(widget)) return nullptr;
  GtkWidget* found = nullptr;
  GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
  for (GList* child = children; child != nullptr && found == nullptr; child = child->next) {
    found = buttonLabelled(GTK_WIDGET(child->data), title);
  }
  g_list_free(children);
  return found;
}

class AwakePageTest : public testing::Test {
 protected:
  void SetUp() override {
    server = std::make_unique<desktop_test::XServer>(640, 480, world.home());
    systemBus = std::make_unique<bus_test::PrivateBus>(world.home(), "system");
    sessionBus = std::make_unique<bus_test::PrivateBus>(world.home(), "session");
    buses = world.environment();
    buses["DBUS_SYSTEM_BUS_ADDRESS"] = systemBus->address();
    buses["DBUS_SESSION_BUS_ADDRESS"] = sessionBus->address();
    buses["XDG_STATE_HOME"] = (world.home() / "state").string();
    for (const auto& [name, value] : buses) environment.set(name, value);
    environment.set("DISPLAY", server->display());
    environment.set("GDK_BACKEND", "x11");
    environment.set("NO_AT_BRIDGE", "1");
    environment.set("GSETTINGS_BACKEND", "memory");
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
    connection = g_dbus_connection_new_for_address_sync(
        sessionBus->address().c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr);
    ASSERT_NE(connection, nullptr);
    keepAwake = std::make_unique<KeepAwake>(
        log, 1.0, connection,
        KeepAwake::Events{[this] {
                            if (page) page->refresh();
                          },
                          [] {}, [](bool, const std::vector<Agent>&) {}});
    page = std::make_unique<AwakePage>(*keepAwake, settings);
    g_object_ref_sink(page->widget());
    gtk_widget_show_all(page->widget());
    page->refresh();
  }
  void TearDown() override {
    if (page) {
      gtk_widget_destroy(page->widget());
      g_object_unref(page->widget());
    }
    page.reset();
    keepAwake.reset();
    if (connection != nullptr) g_object_unref(connection);
    mocks.clear();
  }

  void mockLogind() {
    mocks.push_back(std::make_unique<bus_test::Mock>(
        buses, world.home(), std::vector<std::string>{"--template", "logind"},
        "org.freedesktop.login1", true));
  }
  void mockSessionManager() {
    const std::string name = "org.gnome.SessionManager";
    mocks.push_back(std::make_unique<bus_test::Mock>(
        buses, world.home(), std::vector<std::string>{name, "/org/gnome/SessionManager", name},
        name, false));
    for (const auto& method : std::vector<std::vector<std::string>>{
             {"", "Inhibit", "susu", "u", "ret = 42"}, {"", "Uninhibit", "u", "", ""}}) {
      bus_test::call(buses, false, name, "/org/gnome/SessionManager",
                     "org.freedesktop.DBus.Mock.AddMethod", method);
    }
  }

  std::vector<std::string> lines() const {
    std::vector<std::string> found;
    collectLines(page->widget(), found);
    return found;
  }
  std::string text() const { return joined(lines(), "\n"); }
  GtkWidget* button(const std::string& title) const {
    GtkWidget* found = buttonLabelled(page->widget(), title);
    EXPECT_NE(found, nullptr) << title;
    return found;
  }
  bool sensitive(const std::string& title) const {
    return gtk_widget_get_sensitive(button(title)) != FALSE;
  }
  void press(const std::string& title) const { gtk_button_clicked(GTK_BUTTON(button(title))); }

  testing_support::KorvoWorld world;
  std::unique_ptr<desktop_test::XServer> server;
  std::unique_ptr<bus_test::PrivateBus> systemBus;
  std::unique_ptr<bus_test::PrivateBus> sessionBus;
  desktop_test::Environment buses;
  testing_support::ScopedEnvironment environment;
  std::vector<std::unique_ptr<bus_test::Mock>> mocks;
  GDBusConnection* connection = nullptr;
  std::ostringstream log;
  Settings settings;
  std::unique_ptr<KeepAwake> keepAwake;
  std::unique_ptr<AwakePage> page;
};

TEST_F(AwakePageTest, OffItSaysSoAndOffersNeitherExtendNorStop) {
  EXPECT_EQ(lines().front(), "Keep Awake is off: this machine sleeps as usual.");
  EXPECT_FALSE(sensitive("Extend by 60 min"));
  EXPECT_FALSE(sensitive("Stop"));
  EXPECT_THAT(text(), Not(HasSubstr("Inhibitors held")));
}

TEST_F(AwakePageTest, WithTheSessionsInhibitorAloneAWarningSaysTheMachineMayStillSuspend) {
  mockSessionManager();
  press("1 hr");
  EXPECT_THAT(lines().front(), HasSubstr("Keeping this machine awake until "));
  EXPECT_THAT(text(), HasSubstr("the screen stays on, but the system may still suspend"));
  EXPECT_TRUE(sensitive("Extend by 60 min"));
  EXPECT_TRUE(sensitive("Stop"));
  press("Stop");
  EXPECT_EQ(lines().front(), "Keep Awake is off: this machine sleeps as usual.");
  EXPECT_THAT(text(), Not(HasSubstr("may still suspend")));
}

TEST_F(AwakePageTest, WithLogindAloneAWarningSaysTheScreenMayStillLock) {
  mockLogind();
  press("15 min");
  EXPECT_THAT(text(), HasSubstr("this machine will not suspend, but the screen may still dim"));
}

TEST_F(AwakePageTest, ARefusalIsSaidInPlainWordsAndGoesOnceTheInhibitorsAreHeld) {
  press("15 min");
  const auto refused = text();
  EXPECT_EQ(lines().front(), "Keep Awake is off: this machine sleeps as usual.");
  EXPECT_THAT(refused, HasSubstr("Cannot keep this machine awake: neither the system nor the "
                                 "desktop session accepted the request."));
  EXPECT_THAT(refused, AllOf(Not(HasSubstr("org.")), Not(HasSubstr("DBus")),
                             Not(HasSubstr("logind:")), Not(HasSubstr("GDBus"))));

  mockLogind();
  mockSessionManager();
  press("15 min");
  EXPECT_THAT(lines().front(), HasSubstr("Keeping this machine awake until "));
  EXPECT_THAT(text(), AllOf(Not(HasSubstr("Cannot")), Not(HasSubstr("Only the"))));
}

TEST_F(AwakePageTest, AnIndefiniteSessionOffersStopButNoExtend) {
  mockLogind();
  mockSessionManager();
  press("Indefinitely");
  EXPECT_EQ(lines().front(), "Keeping this machine awake until you stop it.");
  EXPECT_FALSE(sensitive("Extend by 60 min"));
  EXPECT_TRUE(sensitive("Stop"));
}

TEST_F(AwakePageTest, CodexAtWorkIsTheStateAndTheSwitchTurnsTheWatchOff) {
  mockLogind();
  mockSessionManager();
  keepAwake->watchAgents(settings);
  const auto rollout = world.codexHome() / "sessions/2026/11/25/rollout-a.jsonl";
  std::filesystem::create_directories(rollout.parent_path());
  std::ofstream(rollout) << "{}\n";
  ASSERT_TRUE(desktop_test::waitFor([&] {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    return keepAwake->agents().has_value();
  }));
  EXPECT_EQ(lines().front(), "Keeping this machine awake while Codex is working.");
  EXPECT_FALSE(sensitive("Stop")) << "no session runs to stop";

  GtkWidget* watch = button("While Codex or Claude Code works");
  EXPECT_TRUE(gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(watch)));
  gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(watch), FALSE);
  EXPECT_FALSE(settings_file::load(log).awakeWhileAgentsWork);
}

}  // namespace
}  // namespace korvo
