#include "dashboard/tray_indicator.hpp"

#include <libayatana-appindicator/app-indicator.h>

#include "base/text.hpp"
#include "gtk/glib_bool.hpp"

namespace korvo {
namespace {

constexpr const char* icon = "com.tessmoor.Korvo";
constexpr const char* awakeIcon = "com.tessmoor.Korvo-awake";

// The lengths the menu starts a session for; none is until stopped.
struct Length {
  const char* title;
  std::optional<std::int64_t> seconds;
};
const Length lengths[] = {{"15 min", 15 * 60},
                          {"1 h", 3600},
                          {"2 h", 2 * 3600},
                          {"4 h", 4 * 3600},
                          {"Until I stop it", std::nullopt}};

TrayIndicator& trayOf(gpointer tray) {
  return *static_cast<TrayIndicator*>(tray);
}

GtkWidget* item(GtkWidget* menu, GtkWidget* widget, GCallback activated, gpointer tray,
                gconstpointer data = nullptr) {
  g_object_set_data(G_OBJECT(widget), "data", const_cast<gpointer>(data));
  if (activated != nullptr) g_signal_connect(widget, "activate", activated, tray);
  gtk_menu_shell_append(GTK_MENU_SHELL(menu), widget);
  return widget;
}

GtkWidget* item(GtkWidget* menu, const std::string& title, GCallback activated, gpointer tray,
                gconstpointer data = nullptr) {
  return item(menu, gtk_menu_item_new_with_label(title.c_str()), activated, tray, data);
}

void tabActivated(GtkMenuItem* widget, gpointer tray) {
  const auto index = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(widget), "data"));
  trayOf(tray).actions().openTab(allCases<DashboardTab>()[static_cast<std::size_t>(index)]);
}

void lengthActivated(GtkMenuItem* widget, gpointer tray) {
  const auto* length = static_cast<const Length*>(g_object_get_data(G_OBJECT(widget), "data"));
  trayOf(tray).actions().startAwake(AwakeDuration{length->seconds});
}

}  // namespace

TrayIndicator::TrayIndicator(Actions actions) : actions_(std::move(actions)) {
  indicator_ =
      app_indicator_new("com.tessmoor.Korvo", icon, APP_INDICATOR_CATEGORY_SYSTEM_SERVICES);
  menu_ = gtk_menu_new();
  int index = 0;
  for (const DashboardTab tab : allCases<DashboardTab>()) {
    item(menu_, shortTitle(tab), G_CALLBACK(&tabActivated), this, GINT_TO_POINTER(index++));
  }
  gtk_menu_shell_append(GTK_MENU_SHELL(menu_), gtk_separator_menu_item_new());
  GtkWidget* heading = item(menu_, _("Keep Awake"), nullptr, this);
  gtk_widget_set_sensitive(heading, FALSE);
  for (const Length& length : lengths) {
    item(menu_, _(length.title), G_CALLBACK(&lengthActivated), this, &length);
  }
  stopItem_ = item(
      menu_, _("Stop"),
      G_CALLBACK(+[](GtkMenuItem*, gpointer tray) { trayOf(tray).actions().stopAwake(); }), this);
  agentsItem_ =
      item(menu_, gtk_check_menu_item_new_with_label(_("While Codex or Claude Code works").c_str()),
           nullptr, this);
  g_signal_connect(agentsItem_, "toggled", G_CALLBACK(+[](GtkCheckMenuItem* widget, gpointer tray) {
                     trayOf(tray).agentsToggled(gtk_check_menu_item_get_active(widget) != FALSE);
                   }),
                   this);
  gtk_menu_shell_append(GTK_MENU_SHELL(menu_), gtk_separator_menu_item_new());
  item(menu_, _("Preferences"),
       G_CALLBACK(+[](GtkMenuItem*, gpointer tray) { trayOf(tray).actions().openPreferences(); }),
       this);
  gtk_menu_shell_append(GTK_MENU_SHELL(menu_), gtk_separator_menu_item_new());
  // Quitting ends the publishing too, which a user expecting a mere window to close would miss.
  item(menu_, _("Quit (widgets stop updating)"),
       G_CALLBACK(+[](GtkMenuItem*, gpointer tray) { trayOf(tray).actions().quit(); }), this);
  gtk_widget_show_all(menu_);
  gtk_widget_hide(stopItem_);
  app_indicator_set_menu(indicator_, GTK_MENU(menu_));
  app_indicator_set_status(indicator_, APP_INDICATOR_STATUS_ACTIVE);
  showTitle();
}

TrayIndicator::~TrayIndicator() {
  g_object_unref(indicator_);
}

void TrayIndicator::setFigure(const std::string& figure) {
  figure_ = figure;
  app_indicator_set_label(indicator_, figure.c_str(), "100%");
  showTitle();
}

void TrayIndicator::setAwake(const TrayAwake& awake) {
  if (awake == awake_) return;
  awake_ = awake;
  app_indicator_set_icon_full(indicator_, awake.kept ? awakeIcon : icon, awake.state.c_str());
  const std::string stop = awake.minutesLeft
                               ? _("Stop (") + std::to_string(*awake.minutesLeft) + _(" min left)")
                               : _("Stop");
  gtk_menu_item_set_label(GTK_MENU_ITEM(stopItem_), stop.c_str());
  gtk_widget_set_visible(stopItem_, gtk::glibBool(awake.session));
  showing_ = true;
  gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(agentsItem_),
                                 gtk::glibBool(awake.watchAgents));
  showing_ = false;
  showTitle();
}

void TrayIndicator::agentsToggled(bool on) const {
  if (!showing_) actions_.watchAgents(on);
}

void TrayIndicator::showTitle() {
  // Where the tray shows a tooltip or a title, it says the figure and the state.
  std::string title = "Korvo";
  if (!figure_.empty()) title += " · " + figure_ + _(" memory");
  if (!awake_.state.empty()) title += " · " + awake_.state;
  app_indicator_set_title(indicator_, title.c_str());
}

}  // namespace korvo
