#pragma once

#include <optional>

#include "gtk/appearance.hpp"

namespace korvo::gtk {

// The host runs GTK with the bare theme (bare_theme.hpp); the desktop theme's colours come from
// the host's own executable run as a helper, `korvo-widgets-desktop --theme-colors`, in the
// user's environment.

// The helper's side: opens the display with the user's theme and prints its colours
// (theme_colors_text.hpp). An exit code.
int printThemeColors();

// The host's side: runs the helper to its end and returns what it printed; nothing when it could
// not start, failed or overran its deadline (said on standard error). Runs its own main context,
// so nothing else of the host's runs meanwhile.
std::optional<ThemeColors> runThemeHelper();

}  // namespace korvo::gtk
