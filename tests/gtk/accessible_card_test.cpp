#include "gtk/accessible_card.hpp"

#include <gtest/gtest.h>
#include <gtk/gtk.h>
#include <stdlib.h>

#include <string>
#include <vector>

#include "support/desktop_harness.hpp"

namespace korvo::gtk {
namespace {

using ui::AccessibleElement;
using ui::AccessibleRole;

// One X server and GTK for the whole suite: the card window in a real toolkit, read through
// ATK as the accessibility bridge reads it.
class AccessibleCard : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new desktop_test::TemporaryDirectory;
    server_ = new desktop_test::XServer(800, 600, folder_->path());
    setenv("DISPLAY", server_->display().c_str(), 1);
    setenv("GDK_BACKEND", "x11", 1);
    setenv("NO_AT_BRIDGE", "1", 1);
    ASSERT_TRUE(gtk_init_check(nullptr, nullptr));
  }

  static void TearDownTestSuite() {
    delete server_;
    delete folder_;
  }

  void SetUp() override {
    window_ = newCardWindow();
    gtk_window_set_decorated(GTK_WINDOW(window_), FALSE);
    gtk_widget_set_size_request(window_, 170, 170);
    gtk_window_move(GTK_WINDOW(window_), 100, 200);
    gtk_widget_show(window_);
    card_ = gtk_widget_get_accessible(window_);
    g_signal_connect(card_, "children-changed", G_CALLBACK(onChildrenChanged), this);
    ASSERT_TRUE(desktop_test::waitFor([&] {
      pump();
      gint x = 0;
      gint y = 0;
      gdk_window_get_origin(gtk_widget_get_window(window_), &x, &y);
      return gtk_widget_get_mapped(window_) && x == 100 && y == 200;
    })) << "the window never showed at (100, 200)";
  }

  void TearDown() override { gtk_widget_destroy(window_); }

  static void pump() {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
  }

  static void onChildrenChanged(AtkObject*, guint index, gpointer, gpointer test) {
    static_cast<AccessibleCard*>(test)->childrenChanged_.push_back(index);
  }

  static void onNameChanged(GObject*, GParamSpec*, gpointer test) {
    ++static_cast<AccessibleCard*>(test)->namesChanged_;
  }

  std::vector<AtkObject*> children() const {
    std::vector<AtkObject*> out;
    for (gint i = 0; i < atk_object_get_n_accessible_children(card_); ++i) {
      AtkObject* child = atk_object_ref_accessible_child(card_, i);
      out.push_back(child);
      g_object_unref(child);  // the card keeps its own reference
    }
    return out;
  }

  void watchNames() {
    for (AtkObject* child : children()) {
      g_signal_connect(child, "notify::accessible-name", G_CALLBACK(onNameChanged), this);
    }
  }

  static desktop_test::TemporaryDirectory* folder_;
  static desktop_test::XServer* server_;
  GtkWidget* window_ = nullptr;
  AtkObject* card_ = nullptr;
  std::vector<guint> childrenChanged_;
  int namesChanged_ = 0;
};

desktop_test::TemporaryDirectory* AccessibleCard::folder_ = nullptr;
desktop_test::XServer* AccessibleCard::server_ = nullptr;

AccessibleElement text(std::string name, ui::Rect frame = {16, 16, 60, 12}) {
  return {.role = AccessibleRole::label, .name = std::move(name), .frame = frame};
}

const std::vector<AccessibleElement> reading{
    text("MEMORY"),
    text("42%", {16, 34, 70, 48}),
    {.role = AccessibleRole::meter,
     .name = "Memory used",
     .value = "42 percent",
     .level = 0.42,
     .frame = {16, 88, 138, 6}},
    {.role = AccessibleRole::link,
     .name = "Keep Awake",
     .frame = {200, 130, 70, 14},
     .url = "korvo://awake"},
};

TEST_F(AccessibleCard, ElementsAreChildrenWithTheirRolesNamesAndValues) {
  showAccessibleElements(window_, "korvo://resources", reading, {});
  const auto shown = children();
  ASSERT_EQ(shown.size(), 4u);
  EXPECT_EQ(atk_object_get_role(shown[0]), ATK_ROLE_LABEL);
  EXPECT_STREQ(atk_object_get_name(shown[0]), "MEMORY");
  EXPECT_EQ(atk_object_get_role(shown[2]), ATK_ROLE_LEVEL_BAR);
  EXPECT_STREQ(atk_object_get_name(shown[2]), "Memory used");
  ASSERT_TRUE(ATK_IS_VALUE(shown[2]));
  gdouble value = 0;
  gchar* said = nullptr;
  atk_value_get_value_and_text(ATK_VALUE(shown[2]), &value, &said);
  EXPECT_DOUBLE_EQ(value, 42);
  EXPECT_STREQ(said, "42 percent");
  g_free(said);
  EXPECT_FALSE(ATK_IS_VALUE(shown[0])) << "a label has no value";
  EXPECT_EQ(atk_object_get_role(shown[3]), ATK_ROLE_LINK);
  ASSERT_TRUE(ATK_IS_ACTION(shown[3]));
  EXPECT_STREQ(atk_action_get_name(ATK_ACTION(shown[3]), 0), "click");
  for (gint i = 0; i < 4; ++i) {
    EXPECT_EQ(atk_object_get_parent(shown[static_cast<std::size_t>(i)]), card_);
    EXPECT_EQ(atk_object_get_index_in_parent(shown[static_cast<std::size_t>(i)]), i);
  }
}

TEST_F(AccessibleCard, BoundsAreTheFramesScaledFromTheWindowsCorner) {
  showAccessibleElements(window_, "korvo://resources", reading, {1.5});
  const auto shown = children();
  ASSERT_EQ(shown.size(), 4u);
  gint x = 0, y = 0, width = 0, height = 0;
  atk_component_get_extents(ATK_COMPONENT(shown[2]), &x, &y, &width, &height, ATK_XY_SCREEN);
  EXPECT_EQ(x, 100 + 24);
  EXPECT_EQ(y, 200 + 132);
  EXPECT_EQ(width, 207);
  EXPECT_EQ(height, 9);
  atk_component_get_extents(ATK_COMPONENT(shown[2]), &x, &y, &width, &height, ATK_XY_WINDOW);
  EXPECT_EQ(x, 24);
  EXPECT_EQ(y, 132);
}

// The desktop host leaves room for a shadow around the card and may draw it smaller on a small
// monitor: the bounds follow, also of elements that did not change.
TEST_F(AccessibleCard, BoundsFollowTheCardsInsetAndANewScale) {
  showAccessibleElements(window_, "korvo://resources", reading, {1, 5});
  const auto shown = children();
  ASSERT_EQ(shown.size(), 4u);
  gint x = 0, y = 0, width = 0, height = 0;
  atk_component_get_extents(ATK_COMPONENT(shown[2]), &x, &y, &width, &height, ATK_XY_WINDOW);
  EXPECT_EQ(x, 16 + 5);
  EXPECT_EQ(y, 88 + 5);

  showAccessibleElements(window_, "korvo://resources", reading, {1.5, 5});
  EXPECT_EQ(children(), shown);
  atk_component_get_extents(ATK_COMPONENT(shown[2]), &x, &y, &width, &height, ATK_XY_WINDOW);
  EXPECT_EQ(x, 24 + 5);
  EXPECT_EQ(y, 132 + 5);
  EXPECT_EQ(width, 207);
}

// A card drawn inside another window (the dashboard's): a panel whose children's bounds start at
// the card's corner, wherever the card sits in its window.
TEST_F(AccessibleCard, ACardAreaInsideAWindowCountsFromItsOwnCorner) {
  GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_decorated(GTK_WINDOW(window), FALSE);
  GtkWidget* area = newCardArea();
  gtk_widget_set_size_request(area, 364, 170);
  g_object_set(area, "margin-start", 30, "margin-top", 50, nullptr);
  gtk_container_add(GTK_CONTAINER(window), area);
  gtk_window_move(GTK_WINDOW(window), 300, 100);
  gtk_widget_show_all(window);
  ASSERT_TRUE(desktop_test::waitFor([&] {
    pump();
    gint x = 0;
    gint y = 0;
    if (!gtk_widget_get_mapped(area)) return false;
    gdk_window_get_origin(gtk_widget_get_window(window), &x, &y);
    return x == 300 && y == 100;
  })) << "the window never showed at (300, 100)";
  AtkObject* card = gtk_widget_get_accessible(area);
  EXPECT_EQ(atk_object_get_role(card), ATK_ROLE_PANEL);

  showAccessibleElements(area, "korvo://resources", reading, {});
  ASSERT_EQ(atk_object_get_n_accessible_children(card), 4);
  AtkObject* meter = atk_object_ref_accessible_child(card, 2);
  EXPECT_STREQ(atk_object_get_name(meter), "Memory used");
  EXPECT_EQ(atk_object_get_parent(meter), card);
  gint x = 0, y = 0, width = 0, height = 0;
  atk_component_get_extents(ATK_COMPONENT(meter), &x, &y, &width, &height, ATK_XY_SCREEN);
  EXPECT_EQ(x, 300 + 30 + 16);
  EXPECT_EQ(y, 100 + 50 + 88);
  EXPECT_EQ(width, 138);
  EXPECT_EQ(height, 6);
  atk_component_get_extents(ATK_COMPONENT(meter), &x, &y, &width, &height, ATK_XY_WINDOW);
  EXPECT_EQ(x, 30 + 16);
  EXPECT_EQ(y, 50 + 88);
  g_object_unref(meter);
  gtk_widget_destroy(window);
}

TEST_F(AccessibleCard, TheCardsActionIsTheTapOnlyWhileThereIsAWidgetURL) {
  showAccessibleElements(window_, "korvo://resources", reading, {});
  ASSERT_TRUE(ATK_IS_ACTION(card_));
  EXPECT_EQ(atk_action_get_n_actions(ATK_ACTION(card_)), 1);
  EXPECT_STREQ(atk_action_get_name(ATK_ACTION(card_), 0), "click");
  showAccessibleElements(window_, "", reading, {});
  EXPECT_EQ(atk_action_get_n_actions(ATK_ACTION(card_)), 0);
}

TEST_F(AccessibleCard, AnAdvancingLiveTextRenamesOneChildAndKeepsTheOthers) {
  const std::vector<AccessibleElement> before{text("Updated"), text("4 min"), text("ago")};
  showAccessibleElements(window_, "korvo://usage", before, {});
  const auto kept = children();
  childrenChanged_.clear();
  watchNames();

  showAccessibleElements(window_, "korvo://usage", {text("Updated"), text("5 min"), text("ago")},
                         {});
  EXPECT_EQ(children(), kept) << "unchanged elements were rebuilt";
  EXPECT_TRUE(childrenChanged_.empty());
  EXPECT_EQ(namesChanged_, 1);
  EXPECT_STREQ(atk_object_get_name(kept[1]), "5 min");

  showAccessibleElements(window_, "korvo://usage", {text("Updated"), text("5 min"), text("ago")},
                         {});
  EXPECT_EQ(namesChanged_, 1) << "the same texts were announced again";
}

TEST_F(AccessibleCard, AReadingThatArrivesAddsItsMeterAndRenamesTheTexts) {
  const std::vector<AccessibleElement> unavailable{text("MEMORY"), text("Unavailable"),
                                                   text("Open Korvo to retry")};
  showAccessibleElements(window_, "korvo://resources", unavailable, {});
  const auto before = children();
  childrenChanged_.clear();

  const std::vector<AccessibleElement> arrived{text("MEMORY"), text("42%"), reading[2],
                                               text("9.0 GB of 16.0 GB")};
  showAccessibleElements(window_, "korvo://resources", arrived, {});
  const auto after = children();
  ASSERT_EQ(after.size(), 4u);
  EXPECT_EQ(childrenChanged_, std::vector<guint>{2}) << "one child added, at the meter's place";
  EXPECT_EQ(after[0], before[0]);
  EXPECT_EQ(after[1], before[1]);
  EXPECT_EQ(after[3], before[2]);
  EXPECT_STREQ(atk_object_get_name(after[1]), "42%");
  EXPECT_STREQ(atk_object_get_name(after[3]), "9.0 GB of 16.0 GB");
  EXPECT_EQ(atk_object_get_role(after[2]), ATK_ROLE_LEVEL_BAR);
}

TEST_F(AccessibleCard, ARemovedChildIsDefunct) {
  showAccessibleElements(window_, "korvo://resources", reading, {});
  AtkObject* meter = children()[2];
  g_object_ref(meter);
  showAccessibleElements(window_, "korvo://resources", {reading[0], reading[1], reading[3]}, {});
  EXPECT_EQ(children().size(), 3u);
  AtkStateSet* states = atk_object_ref_state_set(meter);
  EXPECT_TRUE(atk_state_set_contains_state(states, ATK_STATE_DEFUNCT));
  g_object_unref(states);
  EXPECT_EQ(atk_object_get_parent(meter), nullptr);
  g_object_unref(meter);
}

}  // namespace
}  // namespace korvo::gtk
