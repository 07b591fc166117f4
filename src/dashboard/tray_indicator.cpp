#include "dashboard/tray_indicator.hpp"

#include <libayatana-appindicator/app-indicator.h>

#include "base/text.hpp"

namespace korvo {
namespace {

const TrayIndicator::Actions& actionsOf(gpointer tray) {
  return static_cast<TrayIndicator*>(tray)->actions();
}

GtkWidget* item(GtkWidget* menu, const std::string& title, GCallback activated, gpointer tray,
                gpointer data = nullptr) {
  GtkWidget* widget = gtk_menu_item_new_with_label(title.c_str());
  g_object_set_data(G_OBJECT(widget), "data", data);
  g_signal_connect(widget, "activate", activated, tray);
  gtk_menu_shell_append(GTK_MENU_SHELL(menu), widget);
  return widget;
}

void tabActivated(GtkMenuItem* widget, gpointer tray) {
  const auto index = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(widget), "data"));
  actionsOf(tray).openTab(allCases<DashboardTab>()[static_cast<std::size_t>(index)]);
}

}  // namespace

TrayIndicator::TrayIndicator(Actions actions) : actions_(std::move(actions)) {
  indicator_ = app_indicator_new("com.tessmoor.Korvo", "com.tessmoor.Korvo",
                                 APP_INDICATOR_CATEGORY_SYSTEM_SERVICES);
  app_indicator_set_title(indicator_, "Korvo");
  menu_ = gtk_menu_new();
  int index = 0;
  for (const DashboardTab tab : allCases<DashboardTab>()) {
    item(menu_, shortTitle(tab), G_CALLBACK(&tabActivated), this, GINT_TO_POINTER(index++));
  }
  gtk_menu_shell_append(GTK_MENU_SHELL(menu_), gtk_separator_menu_item_new());
  awakeItem_ =
      item(menu_, _("Start Keep Awake"),
           G_CALLBACK(+[](GtkMenuItem*, gpointer tray) { actionsOf(tray).toggleAwake(); }), this);
  item(menu_, _("Settings"),
       G_CALLBACK(+[](GtkMenuItem*, gpointer tray) { actionsOf(tray).openSettings(); }), this);
  gtk_menu_shell_append(GTK_MENU_SHELL(menu_), gtk_separator_menu_item_new());
  item(menu_, _("Quit"), G_CALLBACK(+[](GtkMenuItem*, gpointer tray) { actionsOf(tray).quit(); }),
       this);
  gtk_widget_show_all(menu_);
  app_indicator_set_menu(indicator_, GTK_MENU(menu_));
  app_indicator_set_status(indicator_, APP_INDICATOR_STATUS_ACTIVE);
}

TrayIndicator::~TrayIndicator() {
  g_object_unref(indicator_);
}

void TrayIndicator::setFigure(const std::string& figure) {
  app_indicator_set_label(indicator_, figure.c_str(), "100%");
}

void TrayIndicator::setAwake(bool running) {
  gtk_menu_item_set_label(GTK_MENU_ITEM(awakeItem_),
                          running ? _("Stop Keep Awake").c_str() : _("Start Keep Awake").c_str());
}

}  // namespace korvo
