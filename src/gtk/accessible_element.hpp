#pragma once

#include <atk/atk.h>

#include <string>

#include "gtk/card_pixels.hpp"
#include "ui/accessible_tree.hpp"

namespace korvo::gtk {

// The accessible object of one element of a card: a label, a level bar (with its value) or a
// link (with a "click" action opening it), child of `card`, the accessible object of the GTK
// window or drawing area that shows the card. Its bounds are the element's frame where `pixels`
// puts the card in that widget. The card holds the one reference returned; the element does not
// hold the card.
AtkObject* newAccessibleElement(AtkObject* card, const ui::AccessibleElement& element,
                                CardPixels pixels);

// The card is drawn elsewhere in its widget (its scale or inset changed).
void placeAccessibleElement(AtkObject* object, CardPixels pixels);

// Shows `element` (of the same role) in place of what `object` showed, announcing a changed
// name, value or bounds and nothing else.
void updateAccessibleElement(AtkObject* object, const ui::AccessibleElement& element);

// The card let go of `object`: it reports itself defunct to whoever still holds it.
void retireAccessibleElement(AtkObject* object);

// Opens `url` from the main loop once the current event is handled, so an assistive
// technology's action request returns at once.
void openURLWhenIdle(const std::string& url);

}  // namespace korvo::gtk
