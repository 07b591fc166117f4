#pragma once

#include <gtk/gtk.h>

namespace korvo::window_keys {

// Escape and Ctrl+W close `window` (hide it, as its close button does), whatever has the focus.
void closeOnKeys(GtkWindow* window);

// Alt+1, Alt+2… show the stack's pages in order; Ctrl+Page Down and Ctrl+Page Up the next and
// the previous one, as in the desktop's other tabbed windows.
void switchPagesOnKeys(GtkWindow* window, GtkStack* stack);

}  // namespace korvo::window_keys
