#pragma once

#include <gtk/gtk.h>

namespace korvo::window_keys {

// Escape and Ctrl+W close `window` (hide it, as its close button does), whatever has the focus.
void closeOnKeys(GtkWindow* window);

}  // namespace korvo::window_keys
