#pragma once

namespace korvo::gtk {

// Where a card is drawn in the GTK widget that shows it.
struct CardPixels {
  double scale = 1;  // logical pixels per point
  double inset = 0;  // logical pixels from the widget's corner to the card's (room for a shadow)
  friend bool operator==(const CardPixels&, const CardPixels&) = default;
};

}  // namespace korvo::gtk
