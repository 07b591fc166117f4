#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "ui/accessible_tree.hpp"

using GtkWidget = struct _GtkWidget;

namespace korvo::desktop {

// A new toplevel GtkWindow whose accessible object (a frame) has the card's elements as its
// children and, while the card has a widget URL, a "click" action opening it, as a tap does.
GtkWidget* newCardWindow();

// Makes the children of `cardWindow`'s accessible object show `elements`, drawn at `scale`
// logical pixels per point, and its action open `url`. Only what changed is touched and
// announced (children added or removed, names, values, bounds). Returns how many children were
// added, removed or updated.
std::size_t showAccessibleElements(GtkWidget* cardWindow, const std::string& url,
                                   const std::vector<ui::AccessibleElement>& elements,
                                   double scale);

}  // namespace korvo::desktop
