#include "gtk/bare_theme.hpp"

#include <gio/gio.h>

#include "gtk/bare_theme_resource.h"

namespace korvo::gtk {
namespace {

constexpr const char* themeVariable = "GTK_THEME";
constexpr const char* bareTheme = "KorvoBare";

bool adopted = false;
std::optional<std::string> users;

}  // namespace

void adoptBareTheme() {
  if (adopted) return;
  adopted = true;
  if (const char* value = g_getenv(themeVariable)) users = value;
  korvo_bare_theme_register_resource();
  g_setenv(themeVariable, bareTheme, TRUE);
}

std::optional<std::string> usersGtkTheme() {
  if (adopted) return users;
  if (const char* value = g_getenv(themeVariable)) return value;
  return std::nullopt;
}

char** usersEnvironment() {
  char** environment = g_get_environ();
  const auto theme = usersGtkTheme();
  return theme ? g_environ_setenv(environment, themeVariable, theme->c_str(), TRUE)
               : g_environ_unsetenv(environment, themeVariable);
}

void restoreUsersTheme(GAppLaunchContext* launch) {
  if (const auto theme = usersGtkTheme()) {
    g_app_launch_context_setenv(launch, themeVariable, theme->c_str());
  } else {
    g_app_launch_context_unsetenv(launch, themeVariable);
  }
}

}  // namespace korvo::gtk
