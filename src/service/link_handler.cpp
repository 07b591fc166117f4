#include "service/link_handler.hpp"

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

#include <ostream>
#include <string>

#include "shared/app_identity.hpp"

namespace korvo {

void claimLinkHandler(std::ostream& log) {
  const std::string type = "x-scheme-handler/" + std::string(AppIdentity::urlScheme);
  if (GAppInfo* current = g_app_info_get_default_for_type(type.c_str(), FALSE)) {
    g_object_unref(current);
    return;
  }
  const std::string entry = std::string(AppIdentity::applicationIdentifier) + ".desktop";
  GDesktopAppInfo* korvo = g_desktop_app_info_new(entry.c_str());
  if (korvo == nullptr) return;
  GError* error = nullptr;
  if (g_app_info_set_as_default_for_type(G_APP_INFO(korvo), type.c_str(), &error) == FALSE) {
    log << "korvo service: cannot make " << entry << " the handler of " << type << ": "
        << error->message << std::endl;
    g_clear_error(&error);
  }
  g_object_unref(korvo);
}

}  // namespace korvo
