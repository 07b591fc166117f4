#pragma once

#include <cairo.h>

#include "ui/geometry.hpp"

namespace korvo::render {

// How far a card's shadow reaches past its edges, in the units the shadow is painted in. Less
// than half the gap between two cards, so no shadow falls on a neighbour.
inline constexpr double cardShadowExtent = 5;

// A soft shadow around `card` (corners of `radius`), painted outside the card's shape only, so
// the card drawn over it is unchanged: what gives a light card an edge on a light wallpaper.
void paintCardShadow(cairo_t* cr, const ui::Rect& card, double radius);

}  // namespace korvo::render
