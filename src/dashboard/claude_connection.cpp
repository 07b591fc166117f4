#include "dashboard/claude_connection.hpp"

#include "app/claude_settings_file.hpp"
#include "base/text.hpp"
#include "dashboard/dashboard_widgets.hpp"
#include "gtk/glib_bool.hpp"

namespace korvo {

ClaudeConnection::ClaudeConnection(std::function<void()> changed)
    : box_(gtk_box_new(GTK_ORIENTATION_VERTICAL, 6)),
      line_(dashboard_widgets::label("", "dim-label")),
      button_(gtk_button_new_with_label("")),
      changed_(std::move(changed)) {
  gtk_widget_set_halign(button_, GTK_ALIGN_START);
  // Shown only while it has something to say, whatever shows the page around it.
  gtk_widget_set_no_show_all(line_, TRUE);
  g_signal_connect(button_, "clicked", G_CALLBACK(+[](GtkButton*, gpointer self) {
                     static_cast<ClaudeConnection*>(self)->pressed();
                   }),
                   this);
  gtk_box_pack_start(GTK_BOX(box_), line_, FALSE, FALSE, 0);
  gtk_box_pack_start(GTK_BOX(box_), button_, FALSE, FALSE, 0);
  show();
}

void ClaudeConnection::show() {
  connected_ = claude_settings_file::runsKorvo();
  gtk_label_set_text(
      GTK_LABEL(line_),
      connected_ ? _("Connected: figures arrive with Claude Code's next reply").c_str() : "");
  gtk_widget_set_visible(line_, gtk::glibBool(connected_));
  gtk_button_set_label(GTK_BUTTON(button_),
                       connected_ ? _("Disconnect").c_str() : _("Connect Claude Code").c_str());
}

void ClaudeConnection::pressed() {
  std::string failure;
  try {
    const auto korvo = claude_settings_file::korvoExecutable();
    if (connected_) {
      claude_settings_file::uninstall(korvo);
    } else {
      claude_settings_file::install(korvo);
    }
  } catch (const std::exception& error) {
    failure = error.what();
  }
  show();
  if (changed_) changed_();
  if (!failure.empty()) {
    gtk_label_set_text(GTK_LABEL(line_), failure.c_str());
    gtk_widget_set_visible(line_, TRUE);
  }
}

}  // namespace korvo
