#pragma once

#include <string_view>

namespace korvo::ui {

// The icon font the symbols are drawn with; glyphs are selected by ligature name.
inline constexpr std::string_view symbolFontFamily = "Material Icons";

// The icon font's ligature for a platform symbol name ("memorychip" → "memory"); an unknown
// name is passed through, so an icon font ligature may be asked for directly.
std::string_view symbolLigature(std::string_view symbolName);

}  // namespace korvo::ui
