#pragma once

#include <string>

#include "gtk/card_pixels.hpp"
#include "ui/widget_layout.hpp"

using GtkWidget = struct _GtkWidget;

namespace korvo::gtk {

// Tells screen readers what the card in `card` (made by newCardWindow or newCardArea) shows: it
// is named after the widget, its children are the texts, meters and links of `widget` drawn where
// `pixels` puts the card in `card`, and its action opens the widget URL. Called after every
// layout; only what changed since the last call is announced. With `logTime`, says on standard
// error how long that took.
void describeToAssistiveTechnologies(GtkWidget* card, const std::string& displayName,
                                     const ui::WidgetLayout& widget, CardPixels pixels,
                                     bool logTime);

}  // namespace korvo::gtk
