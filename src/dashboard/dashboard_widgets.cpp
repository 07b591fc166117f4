#include "dashboard/dashboard_widgets.hpp"

namespace korvo::dashboard_widgets {

// Points of space around a page's content and between its sections.
constexpr int pageMargin = 18;
constexpr int sectionSpacing = 10;

GtkWidget* label(const std::string& text, const char* style) {
  GtkWidget* widget = gtk_label_new(text.c_str());
  gtk_label_set_xalign(GTK_LABEL(widget), 0);
  gtk_label_set_line_wrap(GTK_LABEL(widget), TRUE);
  gtk_label_set_selectable(GTK_LABEL(widget), FALSE);
  if (*style != '\0') gtk_style_context_add_class(gtk_widget_get_style_context(widget), style);
  return widget;
}

GtkWidget* scrolledPage(GtkWidget** content) {
  GtkWidget* scrolled = gtk_scrolled_window_new(nullptr, nullptr);
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER,
                                 GTK_POLICY_AUTOMATIC);
  *content = gtk_box_new(GTK_ORIENTATION_VERTICAL, sectionSpacing);
  g_object_set(*content, "margin", pageMargin, nullptr);
  gtk_container_add(GTK_CONTAINER(scrolled), *content);
  return scrolled;
}

GtkWidget* heading(const std::string& text) {
  GtkWidget* widget = label("", "");
  gchar* markup = g_markup_printf_escaped("<b>%s</b>", text.c_str());
  gtk_label_set_markup(GTK_LABEL(widget), markup);
  g_free(markup);
  gtk_widget_set_margin_top(widget, sectionSpacing);
  return widget;
}

void clear(GtkWidget* container) {
  GList* children = gtk_container_get_children(GTK_CONTAINER(container));
  for (GList* child = children; child != nullptr; child = child->next) {
    gtk_widget_destroy(GTK_WIDGET(child->data));
  }
  g_list_free(children);
}

}  // namespace korvo::dashboard_widgets
