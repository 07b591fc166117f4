#include "dashboard/login_offer_bar.hpp"

#include <stdexcept>

#include "app/claude_settings_file.hpp"
#include "app/login_offer.hpp"
#include "base/text.hpp"
#include "gtk/glib_bool.hpp"
#include "sources/user_paths.hpp"

namespace korvo {
namespace {

enum Response { startAtLogin = 1, notNow = 2 };

start_at_login::Places places() {
  return start_at_login::placesFromEnvironment(claude_settings_file::korvoExecutable());
}

}  // namespace

LoginOfferBar::LoginOfferBar(std::function<void(bool)> answered)
    : bar_(gtk_info_bar_new()),
      text_(gtk_label_new(_("Start Korvo and the desktop widgets when you log in?").c_str())),
      answered_(std::move(answered)) {
  gtk_info_bar_set_message_type(GTK_INFO_BAR(bar_), GTK_MESSAGE_QUESTION);
  gtk_label_set_line_wrap(GTK_LABEL(text_), TRUE);
  gtk_label_set_xalign(GTK_LABEL(text_), 0);
  gtk_container_add(GTK_CONTAINER(gtk_info_bar_get_content_area(GTK_INFO_BAR(bar_))), text_);
  gtk_info_bar_add_button(GTK_INFO_BAR(bar_), _("_Start at login").c_str(), startAtLogin);
  gtk_info_bar_add_button(GTK_INFO_BAR(bar_), _("_Not now").c_str(), notNow);
  g_signal_connect(bar_, "response", G_CALLBACK(+[](GtkInfoBar*, gint response, gpointer self) {
                     static_cast<LoginOfferBar*>(self)->respond(response);
                   }),
                   this);
  gtk_widget_show_all(bar_);
  gtk_widget_set_no_show_all(bar_, TRUE);
  gtk_widget_hide(bar_);
}

void LoginOfferBar::offerIfDue() {
  if (checked_) return;
  checked_ = true;
  const auto mark = login_offer::markLocation();
  const auto home = homeDirectory();
  if (!mark || !home) return;
  try {
    if (login_offer::due(places(), *home, *mark)) gtk_widget_show(bar_);
  } catch (const std::runtime_error&) {
    // No configuration folder: nowhere to start at login from.
  }
}

bool LoginOfferBar::shown() const {
  return gtk_widget_get_visible(bar_) != FALSE;
}

void LoginOfferBar::respond(int response) {
  const bool start = response == startAtLogin;
  try {
    if (start) start_at_login::set(places(), true);
    if (const auto mark = login_offer::markLocation()) login_offer::markAnswered(*mark);
  } catch (const std::runtime_error& error) {
    // The bar stays, saying what failed, so the user can try again or turn it away.
    gtk_label_set_text(GTK_LABEL(text_), error.what());
    return;
  }
  gtk_widget_hide(bar_);
  answered_(start);
}

}  // namespace korvo
