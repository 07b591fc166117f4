#include "dashboard/settings_page.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>

#include "app/settings_file.hpp"
#include "support/desktop_harness.hpp"
#include "support/korvo_process.hpp"
#include "support/scoped_environment.hpp"

// The dashboard's settings page in a real X server: a switch flipped there is in the settings
// file at once, written whole, and the widgets follow once korvo publishes.
namespace korvo {
namespace {

using ::testing::HasSubstr;

// A page's switches in the order it shows them.
std::vector<GtkSwitch*> switchesOf(GtkWidget* widget) {
  std::vector<GtkSwitch*> found;
  if (GTK_IS_SWITCH(widget)) found.push_back(GTK_SWITCH(widget));
  if (GTK_IS_CONTAINER(widget)) {
    GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
    for (GList* child = children; child != nullptr; child = child->next) {
      const auto inner = switchesOf(GTK_WIDGET(child->data));
      found.insert(found.end(), inner.begin(), inner.end());
    }
    g_list_free(children);
  }
  return found;
}

// The switches of the three pages: CPU temperature; Codex, its live reading, Claude; awake while
// agents work, the agents' notices.
std::vector<GtkSwitch*> switchesOf(const SettingsPage& page) {
  std::vector<GtkSwitch*> found;
  for (GtkWidget* each : {page.monitorsPage(), page.aiPage(), page.awakePage()}) {
    const auto inner = switchesOf(each);
    found.insert(found.end(), inner.begin(), inner.end());
  }
  return found;
}

// The first control of GTK type `type` under `widget`, depth first.
GtkWidget* firstOf(GtkWidget* widget, GType type) {
  if (G_TYPE_CHECK_INSTANCE_TYPE(widget, type)) return widget;
  GtkWidget* found = nullptr;
  if (GTK_IS_CONTAINER(widget)) {
    GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
    for (GList* child = children; child != nullptr && found == nullptr; child = child->next) {
      found = firstOf(GTK_WIDGET(child->data), type);
    }
    g_list_free(children);
  }
  return found;
}

// Destroys the pages no window took.
void destroyPages(const SettingsPage& page) {
  for (GtkWidget* each : {page.monitorsPage(), page.aiPage(), page.awakePage()}) {
    g_object_ref_sink(each);
    gtk_widget_destroy(each);
    g_object_unref(each);
  }
}

class SettingsPageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    server = std::make_unique<desktop_test::XServer>(640, 480, world.home());
    for (const auto& [name, value] : world.environment()) environment.set(name, value);
    environment.set("DISPLAY", server->display());
    environment.set("GDK_BACKEND", "x11");
    environment.set("NO_AT_BRIDGE", "1");
    // No session bus here: GTK's own settings stay in memory instead of reaching for dconf.
    environment.set("GSETTINGS_BACKEND", "memory");
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
  }

  testing_support::KorvoWorld world;
  std::unique_ptr<desktop_test::XServer> server;
  testing_support::ScopedEnvironment environment;
};

TEST_F(SettingsPageTest, TurningCpuTemperatureOffWritesTheFileAtOnceAndTheWidgetAsksToEnableIt) {
  ASSERT_EQ(world.korvo({"settings", "codex", "false"}).exitCode, 0);
  struct stat before {};
  ASSERT_EQ(::stat(world.settingsFile().c_str(), &before), 0);
  SettingsPage page;
  page.show(settings_file::load(std::cerr));
  const auto switches = switchesOf(page);
  ASSERT_EQ(switches.size(), 6U);
  EXPECT_TRUE(gtk_switch_get_active(switches[0]));
  EXPECT_FALSE(gtk_switch_get_active(switches[1]));
  EXPECT_TRUE(gtk_switch_get_active(switches[2])) << "Codex's live reading";

  gtk_switch_set_active(switches[0], FALSE);
  const Settings written = settings_file::load(std::cerr);
  EXPECT_FALSE(written.temperature);
  EXPECT_FALSE(written.codex) << "every other key is kept";
  struct stat after {};
  ASSERT_EQ(::stat(world.settingsFile().c_str(), &after), 0);
  EXPECT_NE(after.st_ino, before.st_ino) << "the file is replaced whole, never rewritten in place";
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(world.settingsFile().parent_path()),
                          std::filesystem::directory_iterator{}),
            1)
      << "no temporary file is left beside it";

  ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
  const auto render = testing_support::runProgram(
      KORVO_BINARY, {"render", "temperature", "--format", "json"}, world.environment());
  EXPECT_THAT(render.out, HasSubstr("Enable in Korvo"));
  destroyPages(page);
}

TEST_F(SettingsPageTest, TheKeepAwakeSwitchesWriteTheAgentsWatchAndItsNotices) {
  SettingsPage page;
  page.show(Settings{});
  const auto switches = switchesOf(page);
  ASSERT_EQ(switches.size(), 6U);
  EXPECT_TRUE(gtk_switch_get_active(switches[4]));
  EXPECT_TRUE(gtk_switch_get_active(switches[5]));
  gtk_switch_set_active(switches[5], FALSE);
  EXPECT_FALSE(settings_file::load(std::cerr).agentNotices);
  EXPECT_TRUE(settings_file::load(std::cerr).awakeWhileAgentsWork);
  gtk_switch_set_active(switches[4], FALSE);
  EXPECT_FALSE(settings_file::load(std::cerr).awakeWhileAgentsWork);
  destroyPages(page);
}

TEST_F(SettingsPageTest, ShowingTheSettingsWritesNothing) {
  SettingsPage page;
  page.show(Settings{});
  EXPECT_FALSE(std::filesystem::exists(world.settingsFile()));
  destroyPages(page);
}

TEST_F(SettingsPageTest, TheTemperatureUnitAndTheAlertsAreWrittenAndABadListIsSaidNotWritten) {
  SettingsPage page;
  page.show(Settings{});
  GtkWidget* unit = firstOf(page.monitorsPage(), GTK_TYPE_COMBO_BOX);
  GtkWidget* alert = firstOf(page.monitorsPage(), GTK_TYPE_SPIN_BUTTON);
  GtkWidget* percents = firstOf(page.aiPage(), GTK_TYPE_ENTRY);
  ASSERT_NE(unit, nullptr);
  ASSERT_NE(alert, nullptr);
  ASSERT_NE(percents, nullptr);
  EXPECT_STREQ(gtk_combo_box_get_active_id(GTK_COMBO_BOX(unit)), "C");
  EXPECT_EQ(gtk_spin_button_get_value_as_int(GTK_SPIN_BUTTON(alert)), 95);
  EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(percents)), "80, 95");

  gtk_combo_box_set_active_id(GTK_COMBO_BOX(unit), "F");
  EXPECT_EQ(settings_file::load(std::cerr).temperatureUnit, TemperatureUnit::fahrenheit);
  gtk_spin_button_set_value(GTK_SPIN_BUTTON(alert), 0);
  EXPECT_EQ(settings_file::load(std::cerr).temperatureAlert, 0);
  gtk_entry_set_text(GTK_ENTRY(percents), "50, 90");
  g_signal_emit_by_name(percents, "activate");
  EXPECT_EQ(settings_file::load(std::cerr).alertPercents, (std::vector<int>{50, 90}));

  // A list the setting cannot take is said on the page; the file keeps the last good one.
  gtk_entry_set_text(GTK_ENTRY(percents), "50, lots");
  g_signal_emit_by_name(percents, "activate");
  EXPECT_EQ(settings_file::load(std::cerr).alertPercents, (std::vector<int>{50, 90}));
  GtkWidget* said = nullptr;
  std::vector<GtkWidget*> labels;
  std::function<void(GtkWidget*)> collect = [&](GtkWidget* widget) {
    if (GTK_IS_LABEL(widget)) labels.push_back(widget);
    if (GTK_IS_CONTAINER(widget)) {
      GList* children = gtk_container_get_children(GTK_CONTAINER(widget));
      for (GList* child = children; child != nullptr; child = child->next) {
        collect(GTK_WIDGET(child->data));
      }
      g_list_free(children);
    }
  };
  collect(page.aiPage());
  for (GtkWidget* each : labels) {
    if (std::string(gtk_label_get_text(GTK_LABEL(each))).find("alertPercents") !=
        std::string::npos) {
      said = each;
    }
  }
  EXPECT_NE(said, nullptr) << "no line on the page names the setting";
  destroyPages(page);
}

}  // namespace
}  // namespace korvo
