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

// Unhinted metrics, identical at every output scale.
void setUnhinted(PangoContext* context);

}  // namespace korvo::render::pango_text
