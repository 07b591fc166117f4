#include "dashboard/window_keys.hpp"

#include <algorithm>

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
                     // An open popover (the header bar's menu) takes its Escape first.
                     if (gtk_window_propagate_key_event(GTK_WINDOW(widget), event)) return TRUE;
                     gtk_window_close(GTK_WINDOW(widget));
                     return TRUE;
                   }),
                   nullptr);
}

void switchPagesOnKeys(GtkWindow* window, GtkStack* stack) {
  g_signal_connect(
      window, "key-press-event",
      G_CALLBACK(+[](GtkWidget*, GdkEventKey* event, gpointer data) -> gboolean {
        auto* stack = GTK_STACK(data);
        const auto modifiers = event->state & gtk_accelerator_get_default_mod_mask();
        GList* pages = gtk_container_get_children(GTK_CONTAINER(stack));
        const int count = static_cast<int>(g_list_length(pages));
        const int current = g_list_index(pages, gtk_stack_get_visible_child(stack));
        int wanted = -1;
        if (modifiers == GDK_MOD1_MASK && event->keyval >= GDK_KEY_1 &&
            event->keyval <= GDK_KEY_9) {
          wanted = static_cast<int>(event->keyval - GDK_KEY_1);
        } else if (modifiers == GDK_CONTROL_MASK && event->keyval == GDK_KEY_Page_Down) {
          wanted = std::min(current + 1, count - 1);
        } else if (modifiers == GDK_CONTROL_MASK && event->keyval == GDK_KEY_Page_Up) {
          wanted = std::max(current - 1, 0);
        }
        const bool switching = wanted >= 0 && wanted < count;
        if (switching) {
          gtk_stack_set_visible_child(
              stack, GTK_WIDGET(g_list_nth_data(pages, static_cast<guint>(wanted))));
        }
        g_list_free(pages);
        return switching ? TRUE : FALSE;
      }),
      stack);
}

}  // namespace korvo::window_keys
