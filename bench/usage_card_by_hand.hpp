#pragma once

#include <cairo.h>
#include <pango/pango.h>

namespace korvo::bench {

// The medium AI Usage card of the sample shared file (Codex 58 % weekly and 72 % of five hours
// left, Claude not enabled, updated 50 seconds ago, light), drawn the way one would by hand: the
// frames and texts written in, one Pango layout reused for every text. This is the floor the
// widget's own build, layout and paint are measured against.
void drawUsageCardByHand(cairo_t* cr, PangoLayout* layout);

// Sets the context of `layout` to draw unhinted, as the widgets do, so the floor does the same
// glyph work.
void useUnhintedText(PangoLayout* layout);

}  // namespace korvo::bench
