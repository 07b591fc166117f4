#include "desktop/card_menu.hpp"

#include <array>
#include <memory>
#include <utility>

#include "base/text.hpp"
#include "gtk/glib_bool.hpp"

namespace korvo::desktop {
namespace {

using Action = std::function<void()>;

gboolean runAction(gpointer action) {
  (*static_cast<Action*>(action))();
  return G_SOURCE_REMOVE;
}

void deleteAction(gpointer action) {
  delete static_cast<Action*>(action);
}

// A menu item that runs `action` from the main loop once the menu has gone, so a choice that
// removes the card does so outside the menu's own signal handlers.
void onActivate(GtkMenuItem*, gpointer action) {
  g_idle_add_full(G_PRIORITY_DEFAULT_IDLE, runAction, new Action(*static_cast<Action*>(action)),
                  deleteAction);
}

void connect(GtkWidget* item, Action action) {
  auto* held = new Action(std::move(action));
  g_signal_connect_data(
      item, "activate", G_CALLBACK(onActivate), held,
      [](gpointer data, GClosure*) { deleteAction(data); }, GConnectFlags{});
}

GtkWidget* append(GtkWidget* menu, GtkWidget* item) {
  gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
  return item;
}

GtkWidget* appendItem(GtkWidget* menu, const std::string& label, Action action) {
  GtkWidget* item = append(menu, gtk_menu_item_new_with_mnemonic(label.c_str()));
  connect(item, std::move(action));
  return item;
}

// A choice among several, marked when it is the current one.
GtkWidget* appendChoice(GtkWidget* menu, const std::string& label, bool current, Action action) {
  GtkWidget* item = gtk_check_menu_item_new_with_mnemonic(label.c_str());
  gtk_check_menu_item_set_draw_as_radio(GTK_CHECK_MENU_ITEM(item), TRUE);
  gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(item), gtk::glibBool(current));
  append(menu, item);
  connect(item, std::move(action));
  return item;
}

GtkWidget* appendSubmenu(GtkWidget* menu, const std::string& label) {
  GtkWidget* item = append(menu, gtk_menu_item_new_with_mnemonic(label.c_str()));
  GtkWidget* submenu = gtk_menu_new();
  gtk_menu_item_set_submenu(GTK_MENU_ITEM(item), submenu);
  return submenu;
}

void appendSeparator(GtkWidget* menu) {
  append(menu, gtk_separator_menu_item_new());
}

}  // namespace

GtkWidget* newCardMenu(const CardMenuContent& content, CardMenuActions actions) {
  // Shared by the items' copies of their actions; lives as long as the last of them.
  const auto shared = std::make_shared<CardMenuActions>(std::move(actions));
  const auto edit = [shared](PlacementEdit change) {
    return [shared, change = std::move(change)] { shared->edit(change); };
  };
  GtkWidget* menu = gtk_menu_new();
  const std::array<std::pair<ui::WidgetFamily, const char*>, 2> families{{
      {ui::WidgetFamily::systemSmall, "_Small"},
      {ui::WidgetFamily::systemMedium, "_Medium"},
  }};
  for (const auto& [family, label] : families) {
    if (std::find(content.families.begin(), content.families.end(), family) ==
        content.families.end()) {
      continue;
    }
    appendChoice(menu, _(label), family == content.family, edit(SetFamily{family}));
  }
  appendSeparator(menu);
  GtkWidget* corners = appendSubmenu(menu, _("Move _to"));
  const std::array<std::pair<ScreenAnchor, const char*>, 4> anchors{{
      {ScreenAnchor::topLeft, "Top _left"},
      {ScreenAnchor::topRight, "Top _right"},
      {ScreenAnchor::bottomLeft, "_Bottom left"},
      {ScreenAnchor::bottomRight, "Bottom r_ight"},
  }};
  for (const auto& [anchor, label] : anchors) {
    appendChoice(corners, _(label), content.anchor == anchor, edit(MoveToCorner{anchor}));
  }
  GtkWidget* addable = appendSubmenu(menu, _("_Add widget"));
  for (const auto& widget : content.addable) {
    appendItem(addable, widget.name, edit(AddWidget{widget.kind}));
  }
  gtk_widget_set_sensitive(gtk_menu_get_attach_widget(GTK_MENU(addable)),
                           gtk::glibBool(!content.addable.empty()));
  appendSeparator(menu);
  appendItem(menu, _("_Remove"), edit(RemoveWidget{}));
  appendSeparator(menu);
  appendItem(menu, _("Open _dashboard"), [shared] { shared->openDashboard(); });
  appendItem(menu, _("Arrange _widgets…"), [shared] { shared->arrangeWidgets(); });
  gtk_widget_show_all(menu);
  return menu;
}

}  // namespace korvo::desktop
