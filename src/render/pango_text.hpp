#pragma once

#include <pango/pango.h>

#include <string_view>

#include "ui/font.hpp"

// Shared by the measurer and the painter so both lay text out identically.
namespace korvo::render::pango_text {

// The family drawing `design`: Inter, or the rounded family (falling back to Inter).
const char* family(ui::FontDesign design);

// Scale applied to a symbol's font size so icons sit like the platform's symbols beside text.
inline constexpr double symbolScale = 1.2;

// Sets `layout` to draw `text` as plain text in `font`, with `tracking` points between
// characters, wrapping at `maxWidth` points (infinite: no wrapping).
void configure(PangoLayout* layout, std::string_view text, const ui::Font& font, double tracking,
               double maxWidth);

// Sets `layout` to draw the icon glyph for `symbolName` at `font`'s size.
void configureSymbol(PangoLayout* layout, std::string_view symbolName, const ui::Font& font);

// The process-wide context on the default Cairo font map, with unhinted metrics and glyph
// positions in user space. The measurer lays text out in it and the painter draws those same
// layouts at the device scale, so each text is matched to its fonts and shaped in one way only.
PangoContext* sharedContext();

}  // namespace korvo::render::pango_text
