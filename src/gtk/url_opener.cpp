#include "gtk/url_opener.hpp"

#include <gio/gio.h>

#include <cstdio>

#include "base/text.hpp"
#include "gtk/bare_theme.hpp"
#include "gtk/notification.hpp"

namespace korvo::gtk {

bool openURL(const std::string& url) {
  GAppLaunchContext* launch = g_app_launch_context_new();
  restoreUsersTheme(launch);
  GError* error = nullptr;
  const bool opened = g_app_info_launch_default_for_uri(url.c_str(), launch, &error) != FALSE;
  g_object_unref(launch);
  if (opened) return true;
  std::fprintf(stderr, "korvo-widgets: no application opened %s (%s); is Korvo installed?\n",
               url.c_str(), error != nullptr ? error->message : "unknown error");
  g_clear_error(&error);
  sendNotification(_("Korvo is not installed"),
                   _("No application opens Korvo links, so this widget cannot open it."));
  return false;
}

}  // namespace korvo::gtk
