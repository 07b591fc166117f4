#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "gtk/card_pixels.hpp"
#include "ui/accessible_tree.hpp"

using GtkWidget = struct _GtkWidget;

namespace korvo::gtk {

// A new toplevel GtkWindow whose accessible object (a frame) has the card's elements as its
// children and, while the card has a widget URL, a "click" action opening it, as a tap does.
GtkWidget* newCardWindow();

// A new GtkDrawingArea for a card inside another window, whose accessible object (a panel) has
// the card's elements as children, as the window's has.
GtkWidget* newCardArea();

// Makes the children of the accessible object of `cardWidget` (made by newCardWindow or
// newCardArea) show `elements`, drawn where `pixels` puts the card in that widget, and
// its action open `url`. Only what changed is touched and
// announced (children added or removed, names, values, bounds). Returns how many children were
// added, removed or updated.
std::size_t showAccessibleElements(GtkWidget* cardWidget, const std::string& url,
                                   const std::vector<ui::AccessibleElement>& elements,
                                   CardPixels pixels);

}  // namespace korvo::gtk
