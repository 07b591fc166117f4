#pragma once

#include <vector>

#include "ui/geometry.hpp"

namespace korvo::desktop {

// The grid a dropped card snaps to, logical pixels from the work area's top-left.
inline constexpr double dropGrid = 8;
// How near an edge of another card or of the work area pulls a dropped card onto it, logical
// pixels.
inline constexpr double dropPull = 12;

// Where a card of `size` dropped with its top-left at `origin` settles, as a position from the
// work area's top-left: on each axis lined up with a nearby edge of another card (`others`,
// screen coordinates) or beside it at the cards' usual gap, or at the default margin from the work
// area's edge, when one lies within dropPull; else on the 8-pixel grid. Always inside the area.
ui::Point snapDrop(ui::Point origin, ui::Size size, const std::vector<ui::Rect>& others,
                   ui::Rect workArea);

}  // namespace korvo::desktop
