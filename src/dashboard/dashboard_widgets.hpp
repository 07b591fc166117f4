#pragma once

#include <gtk/gtk.h>

#include <string>

// Small GTK helpers the dashboard's pages share.
namespace korvo::dashboard_widgets {

// A left-aligned, wrapping label; `style` is a CSS class ("title", "dim-label") or empty.
GtkWidget* label(const std::string& text, const char* style = "");
// A vertical box with the page margins, in a scrolled window.
GtkWidget* scrolledPage(GtkWidget** content);
// A section heading.
GtkWidget* heading(const std::string& text);
// Removes every child of `container`.
void clear(GtkWidget* container);

}  // namespace korvo::dashboard_widgets
