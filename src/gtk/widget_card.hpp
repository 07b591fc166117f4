#pragma once

#include <gtk/gtk.h>

#include "extension/widget_configuration.hpp"
#include "gtk/appearance.hpp"

namespace korvo {

// A widget's card inside the dashboard, drawn as the desktop draws it (same view tree, layout and
// painter) into a drawing area that asks the provider again on refresh(). Screen readers read its
// texts, meters and links as they read the desktop's.
class WidgetCard {
 public:
  WidgetCard(const WidgetConfiguration& widget, ui::WidgetFamily family,
             const gtk::AppearanceWatch& appearance);
  WidgetCard(const WidgetCard&) = delete;
  WidgetCard& operator=(const WidgetCard&) = delete;

  GtkWidget* widget() const { return area_; }
  // Asks the provider for its current entry and paints it.
  void refresh();

  gboolean draw(cairo_t* cr);
  // Light or dark as the card draws itself: as the window around it looks.
  ui::ColorScheme scheme() const;

 private:
  const WidgetConfiguration& widget_;
  ui::WidgetFamily family_;
  const gtk::AppearanceWatch& appearance_;
  GtkWidget* area_ = nullptr;
  std::optional<AnyEntry> entry_;
};

}  // namespace korvo
