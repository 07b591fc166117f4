#pragma once

#include <optional>
#include <string>

using GAppLaunchContext = struct _GAppLaunchContext;

namespace korvo::gtk {

// The host runs GTK with an empty theme of its own (see bare_theme/gtk.css) and gives what it
// starts the user's GTK_THEME back.

// Before gtk_init: registers the empty theme and names it in GTK_THEME, keeping the user's value.
void adoptBareTheme();

// GTK_THEME as the user set it, or none; the same as the environment's before adoptBareTheme.
std::optional<std::string> usersGtkTheme();

// The process environment as the user had it (GTK_THEME restored), for g_strfreev.
char** usersEnvironment();

// Makes what `launch` starts see the user's GTK_THEME.
void restoreUsersTheme(GAppLaunchContext* launch);

}  // namespace korvo::gtk
