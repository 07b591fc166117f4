#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "app/settings_file.hpp"
#include "dashboard/claude_connection.hpp"
#include "dashboard/preferences_window.hpp"
#include "dashboard/widgets_preferences.hpp"
#include "support/desktop_harness.hpp"
#include "support/korvo_process.hpp"
#include "support/scoped_environment.hpp"

// The preferences' Widgets page and Claude's connection in a real X server: each change read back
// from the files it writes, the desktop host's placements file and Claude Code's settings.
namespace korvo {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using Json = nlohmann::json;

void settle() {
  while (g_main_context_iteration(nullptr, FALSE)) {
  }
}

// The control under `widget` whose tooltip (and accessible name) is `name`.
GtkWidget* controlNamed(GtkWidget* widget, const std::string& name) {
  gchar* tooltip = gtk_widget_get_tooltip_text(widget);
  const bool found = tooltip != nullptr && name == tooltip;
  g_free(tooltip);
  if (found) return widget;
  if (!GTK_IS_CONTAINER(widget)) return nullptr;
  GtkWidget* inner = nullptr;
  GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
  for (GList* child = children; child != nullptr && inner == nullptr; child = child->next) {
    inner = controlNamed(GTK_WIDGET(child->data), name);
  }
  g_list_free(children);
  return inner;
}

template <typename Predicate>
GtkWidget* firstWidget(GtkWidget* widget, Predicate matches) {
  if (matches(widget)) return widget;
  if (!GTK_IS_CONTAINER(widget)) return nullptr;
  GtkWidget* inner = nullptr;
  GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
  for (GList* child = children; child != nullptr && inner == nullptr; child = child->next) {
    inner = firstWidget(GTK_WIDGET(child->data), matches);
  }
  g_list_free(children);
  return inner;
}

class PreferencesTest : public testing::Test {
 protected:
  void SetUp() override {
    server = std::make_unique<desktop_test::XServer>(800, 600, world.home());
    for (const auto& [name, value] : world.environment()) environment.set(name, value);
    environment.set("DISPLAY", server->display());
    environment.set("GDK_BACKEND", "x11");
    environment.set("NO_AT_BRIDGE", "1");
    environment.set("GSETTINGS_BACKEND", "memory");
    // No system-wide autostart entries but the test's own; the system's data for GTK's icons.
    environment.set("XDG_CONFIG_DIRS", (world.home() / "etc-xdg").string());
    environment.set("XDG_DATA_DIRS", "/usr/share");
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
  }

  fs::path placementsFile() const { return world.home() / "config/korvo-widgets/placements.json"; }
  Json placements() const {
    return Json::parse(testing_support::readFile(placementsFile()), nullptr, false);
  }
  std::vector<std::string> kinds() const {
    std::vector<std::string> found;
    for (const auto& placement : placements()) found.push_back(placement.value("kind", ""));
    return found;
  }

  testing_support::KorvoWorld world;
  std::unique_ptr<desktop_test::XServer> server;
  testing_support::ScopedEnvironment environment;
};

// The page, kept alive by the test and destroyed before the object that drives it.
struct ShownPage {
  ShownPage() {
    g_object_ref_sink(page.widget());
    gtk_widget_show_all(page.widget());
  }
  ~ShownPage() {
    gtk_widget_destroy(page.widget());
    g_object_unref(page.widget());
  }
  WidgetsPreferences page;
};

TEST_F(PreferencesTest, EachChangeOnTheWidgetsPageIsSavedToThePlacementsFile) {
  ShownPage shown;
  GtkWidget* page = shown.page.widget();
  EXPECT_FALSE(fs::exists(placementsFile())) << "showing the page writes nothing";

  // Without a file the page shows the host's defaults: a change saves them all with it.
  GtkWidget* size = controlNamed(page, "Memory: size");
  ASSERT_NE(size, nullptr);
  gtk_combo_box_set_active_id(GTK_COMBO_BOX(size), "medium");
  settle();
  ASSERT_TRUE(placements().is_array()) << testing_support::readFile(placementsFile());
  EXPECT_EQ(kinds(), (std::vector<std::string>{
                         "com.tessmoor.Korvo.memory", "com.tessmoor.Korvo.awake",
                         "com.tessmoor.Korvo.usage", "com.tessmoor.Korvo.temperature"}));
  EXPECT_EQ(placements()[0]["family"], "medium");

  gtk_combo_box_set_active_id(GTK_COMBO_BOX(controlNamed(page, "Keep Awake: place")),
                              "bottom-left");
  settle();
  EXPECT_EQ(placements()[1]["anchor"], "bottom-left");

  gtk_button_clicked(GTK_BUTTON(controlNamed(page, "Move CPU Temperature up")));
  settle();
  EXPECT_EQ(kinds()[2], "com.tessmoor.Korvo.temperature");
  EXPECT_EQ(kinds()[3], "com.tessmoor.Korvo.usage");

  gtk_button_clicked(GTK_BUTTON(controlNamed(page, "Remove AI Usage")));
  settle();
  EXPECT_EQ(kinds().size(), 3U);
  EXPECT_EQ(controlNamed(page, "AI Usage: size"), nullptr) << "its row is gone";

  GtkWidget* add = firstWidget(page, [](GtkWidget* widget) {
    return GTK_IS_BUTTON(widget) &&
           g_strcmp0(gtk_button_get_label(GTK_BUTTON(widget)), "_Add widget") == 0;
  });
  ASSERT_NE(add, nullptr);
  EXPECT_EQ(gtk_combo_box_get_active_id(GTK_COMBO_BOX(controlNamed(page, "Widget to add"))),
            std::string("com.tessmoor.Korvo.usage"));
  gtk_button_clicked(GTK_BUTTON(add));
  settle();
  EXPECT_EQ(kinds().back(), "com.tessmoor.Korvo.usage");
  EXPECT_EQ(std::distance(fs::directory_iterator(placementsFile().parent_path()),
                          fs::directory_iterator{}),
            1)
      << "written in one step: no temporary file is left beside it";
}

TEST_F(PreferencesTest, AFileTheHostChangedShowsOnThePageAndABadOneIsNeverOverwritten) {
  ShownPage shown;
  GtkWidget* page = shown.page.widget();
  testing_support::writeFile(placementsFile(),
                             R"([{"kind": "temperature", "position": {"x": 40, "y": 400}}])");
  ASSERT_TRUE(desktop_test::waitFor([&] {
    settle();
    return controlNamed(page, "Memory: size") == nullptr &&
           controlNamed(page, "CPU Temperature: place") != nullptr;
  }));
  GtkWidget* place = controlNamed(page, "CPU Temperature: place");
  gchar* shownPlace = gtk_combo_box_text_get_active_text(GTK_COMBO_BOX_TEXT(place));
  EXPECT_STREQ(shownPlace, "At 40, 400");
  g_free(shownPlace);

  const std::string bad = R"([{"kind": "weather"}])";
  testing_support::writeFile(placementsFile(), bad);
  ASSERT_TRUE(desktop_test::waitFor([&] {
    settle();
    return controlNamed(page, "CPU Temperature: place") == nullptr;
  }));
  GtkWidget* message = firstWidget(page, [](GtkWidget* widget) {
    return GTK_IS_LABEL(widget) && gtk_widget_get_visible(widget) &&
           std::string(gtk_label_get_text(GTK_LABEL(widget))).find("weather") != std::string::npos;
  });
  ASSERT_NE(message, nullptr) << "the fault is said on the page";
  EXPECT_THAT(gtk_label_get_text(GTK_LABEL(message)), HasSubstr("placements.json"));
  EXPECT_EQ(testing_support::readFile(placementsFile()), bad);
}

TEST_F(PreferencesTest, StartAtLoginWritesTheUsersAutostartEntriesAndTakesThemAway) {
  ShownPage shown;
  GtkWidget* login =
      firstWidget(shown.page.widget(), [](GtkWidget* widget) { return GTK_IS_SWITCH(widget); });
  ASSERT_NE(login, nullptr);
  EXPECT_FALSE(gtk_switch_get_active(GTK_SWITCH(login)));
  const fs::path autostart = world.home() / "config/autostart";
  gtk_switch_set_active(GTK_SWITCH(login), TRUE);
  EXPECT_THAT(testing_support::readFile(autostart / "com.tessmoor.Korvo.Service.desktop"),
              HasSubstr(" service\n"));
  EXPECT_THAT(testing_support::readFile(autostart / "com.tessmoor.Korvo.Widgets.desktop"),
              HasSubstr("korvo-widgets run\n"));
  gtk_switch_set_active(GTK_SWITCH(login), FALSE);
  EXPECT_FALSE(fs::exists(autostart / "com.tessmoor.Korvo.Service.desktop"));
  EXPECT_FALSE(fs::exists(autostart / "com.tessmoor.Korvo.Widgets.desktop"));
}

TEST_F(PreferencesTest, ConnectingClaudeChainsItsStatusLineAndDisconnectingPutsTheBytesBack) {
  const std::string original =
      "{\n  \"theme\": \"dark\",\n  \"statusLine\": {\"type\": \"command\", \"command\": "
      "\"ccline\"}\n}\n";
  testing_support::writeFile(world.claudeSettings(), original);
  ClaudeConnection connection;
  g_object_ref_sink(connection.widget());
  gtk_widget_show_all(connection.widget());
  GtkWidget* button =
      firstWidget(connection.widget(), [](GtkWidget* widget) { return GTK_IS_BUTTON(widget); });
  ASSERT_NE(button, nullptr);
  EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(button)), "Connect Claude Code");

  gtk_button_clicked(GTK_BUTTON(button));
  const auto connected = Json::parse(testing_support::readFile(world.claudeSettings()));
  const std::string command = connected["statusLine"]["command"];
  EXPECT_THAT(command, HasSubstr("claude-statusline"));
  EXPECT_THAT(command, HasSubstr("--chain"));
  EXPECT_THAT(command, HasSubstr("ccline"));
  EXPECT_EQ(connected["theme"], "dark") << "every other key is kept";
  EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(button)), "Disconnect");
  GtkWidget* line = firstWidget(connection.widget(), [](GtkWidget* widget) {
    return GTK_IS_LABEL(widget) && gtk_widget_get_visible(widget) &&
           *gtk_label_get_text(GTK_LABEL(widget)) != '\0';
  });
  ASSERT_NE(line, nullptr);
  EXPECT_STREQ(gtk_label_get_text(GTK_LABEL(line)),
               "Connected: figures arrive with Claude Code's next reply");

  gtk_button_clicked(GTK_BUTTON(button));
  EXPECT_EQ(testing_support::readFile(world.claudeSettings()), original);
  EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(button)), "Connect Claude Code");
  gtk_widget_destroy(connection.widget());
  g_object_unref(connection.widget());
}

// Every control a page shows, the way a keyboard user reaches it: buttons, switches, choices and
// spin buttons.
void collectControls(GtkWidget* widget, std::vector<GtkWidget*>& found) {
  if (!gtk_widget_get_visible(widget) || !gtk_widget_get_sensitive(widget)) return;
  if (GTK_IS_BUTTON(widget) || GTK_IS_SWITCH(widget) || GTK_IS_COMBO_BOX(widget) ||
      GTK_IS_SPIN_BUTTON(widget)) {
    found.push_back(widget);
    return;
  }
  if (!GTK_IS_CONTAINER(widget)) return;
  GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
  for (GList* child = children; child != nullptr; child = child->next) {
    collectControls(GTK_WIDGET(child->data), found);
  }
  g_list_free(children);
}

TEST_F(PreferencesTest, TabReachesEveryControlOfEveryPage) {
  PreferencesWindow preferences(nullptr, nullptr);
  for (const char* name : PreferencesWindow::pages) {
    preferences.present(name);
    settle();
    GtkWindow* window = GTK_WINDOW(preferences.window());
    GtkWidget* stack = gtk_bin_get_child(GTK_BIN(window));
    std::vector<GtkWidget*> controls;
    collectControls(gtk_stack_get_visible_child(GTK_STACK(stack)), controls);
    ASSERT_FALSE(controls.empty()) << name;
    std::vector<GtkWidget*> reached;
    for (int press = 0; press < 200; ++press) {
      g_signal_emit_by_name(window, "move-focus", GTK_DIR_TAB_FORWARD);
      if (GtkWidget* focus = gtk_window_get_focus(window)) reached.push_back(focus);
    }
    for (GtkWidget* control : controls) {
      const bool found = std::any_of(reached.begin(), reached.end(), [&](GtkWidget* focus) {
        return focus == control || gtk_widget_is_ancestor(focus, control);
      });
      gchar* tooltip = gtk_widget_get_tooltip_text(control);
      EXPECT_TRUE(found) << name << ": " << G_OBJECT_TYPE_NAME(control) << " "
                         << (tooltip != nullptr ? tooltip : "");
      g_free(tooltip);
    }
  }
}

}  // namespace
}  // namespace korvo
