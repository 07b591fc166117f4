#include "dashboard/start_at_login_row.hpp"

#include "app/claude_settings_file.hpp"
#include "app/start_at_login.hpp"
#include "base/text.hpp"
#include "dashboard/dashboard_widgets.hpp"
#include "gtk/glib_bool.hpp"

namespace korvo {
namespace {

start_at_login::Places places() {
  return start_at_login::placesFromEnvironment(claude_settings_file::korvoExecutable());
}

}  // namespace

StartAtLoginRow::StartAtLoginRow()
    : row_(gtk_box_new(GTK_ORIENTATION_VERTICAL, 4)),
      switch_(gtk_switch_new()),
      message_(dashboard_widgets::label("", "dim-label")) {
  GtkWidget* line = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
  GtkWidget* text = gtk_box_new(GTK_ORIENTATION_VERTICAL, 2);
  GtkWidget* title = dashboard_widgets::label(_("Start at login"));
  gtk_label_set_mnemonic_widget(GTK_LABEL(title), switch_);
  gtk_box_pack_start(GTK_BOX(text), title, FALSE, FALSE, 0);
  gtk_box_pack_start(
      GTK_BOX(text),
      dashboard_widgets::label(_("Korvo's service and the desktop widgets start when you log in."),
                               "dim-label"),
      FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(line), text, TRUE, TRUE, 0);
  gtk_widget_set_valign(switch_, GTK_ALIGN_CENTER);
  gtk_box_pack_end(GTK_BOX(line), switch_, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(row_), line, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(row_), message_, FALSE, FALSE, 0);
  gtk_widget_set_no_show_all(message_, TRUE);
  g_signal_connect(switch_, "notify::active",
                   G_CALLBACK(+[](GObject* control, GParamSpec*, gpointer self) {
                     static_cast<StartAtLoginRow*>(self)->switched(
                         gtk_switch_get_active(GTK_SWITCH(control)) != FALSE);
                   }),
                   this);
  show();
}

void StartAtLoginRow::show() {
  showing_ = true;
  try {
    gtk_switch_set_active(GTK_SWITCH(switch_), gtk::glibBool(start_at_login::enabled(places())));
  } catch (const std::exception& error) {
    gtk_widget_set_sensitive(switch_, FALSE);
    gtk_label_set_text(GTK_LABEL(message_), error.what());
    gtk_widget_show(message_);
  }
  showing_ = false;
}

void StartAtLoginRow::switched(bool on) {
  if (showing_) return;
  try {
    start_at_login::set(places(), on);
    gtk_widget_hide(message_);
  } catch (const std::exception& error) {
    gtk_label_set_text(GTK_LABEL(message_), error.what());
    gtk_widget_show(message_);
  }
}

}  // namespace korvo
