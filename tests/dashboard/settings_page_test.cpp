#include "dashboard/settings_page.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

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

}  // namespace
}  // namespace korvo
