#include "dashboard/window_keys.hpp"

namespace korvo::window_keys {

void closeOnKeys(GtkWindow* window) {
  g_signal_connect(window, "key-press-event",
                   G_CALLBACK(+[](GtkWidget* widget, GdkEventKey* event, gpointer) -> gboolean {
                     const auto modifiers = event->state & gtk_accelerator_get_default_mod_mask();
                     const bool close =
                         (event->keyval == GDK_KEY_Escape && modifiers == 0) ||
                         ((event->keyval == GDK_KEY_w || event->keyval == GDK_KEY_W) &&
                          modifiers == GDK_CONTROL_MASK);
                     if (!close) return FALSE;
                     gtk_window_close(GTK_WINDOW(widget));
                     return TRUE;
                   }),
                   nullptr);
}

}  // namespace korvo::window_keys
