#pragma once

#include <string>
#include <string_view>

#include "gtk/appearance.hpp"

namespace korvo::gtk {

// How the theme helper hands the colours over (theme_helper.hpp): "background R G B A" and
// "foreground R G B A" lines, each channel an exact hexadecimal float.
std::string formatThemeColors(const ThemeColors& colors);

// The colours of the lines that read as such; anything else is left out.
ThemeColors parseThemeColors(std::string_view text);

}  // namespace korvo::gtk
