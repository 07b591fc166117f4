#include "gtk/accessibility.hpp"

#include <gtk/gtk.h>

#include <cstdio>

#include "gtk/accessible_card.hpp"
#include "ui/accessible_tree.hpp"

namespace korvo::gtk {

void describeToAssistiveTechnologies(GtkWidget* card, const std::string& displayName,
                                     const ui::WidgetLayout& widget, CardPixels pixels,
                                     bool logTime) {
  const gint64 start = g_get_monotonic_time();
  AtkObject* accessible = gtk_widget_get_accessible(card);
  if (accessible == nullptr) return;
  // ATK announces every name it is given, also an unchanged one.
  if (g_strcmp0(atk_object_get_name(accessible), displayName.c_str()) != 0) {
    atk_object_set_name(accessible, displayName.c_str());
  }
  const std::size_t edits =
      showAccessibleElements(card, widget.url, ui::accessibleElements(widget), pixels);
  if (logTime) {
    std::fprintf(stderr, "korvo-widgets: accessible children of %s: %zu edits in %lld us\n",
                 displayName.c_str(), edits,
                 static_cast<long long>(g_get_monotonic_time() - start));
  }
}

}  // namespace korvo::gtk
