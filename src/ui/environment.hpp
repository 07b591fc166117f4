#pragma once

#include <optional>
#include <string_view>

#include "base/date.hpp"
#include "ui/color.hpp"
#include "ui/geometry.hpp"

namespace korvo::ui {

enum class WidgetFamily { systemSmall, systemMedium };

// Full colour, or accented: the desktop tints the accent group and draws the rest in white.
enum class RenderingMode { fullColor, accented };

enum class ColorScheme { light, dark };

// The widget's size in points: small 170×170, medium 364×170.
Size familySize(WidgetFamily family);

// Colours the desktop theme supplies; absent ones fall back to the built-in light/dark values.
struct Theme {
  std::optional<Color> primary = std::nullopt;           // foreground text colour
  std::optional<Color> windowBackground = std::nullopt;  // window background colour
  friend bool operator==(const Theme&, const Theme&) = default;
};

// The named colours of one scheme, already resolved to concrete values.
struct Palette {
  Color teal{};
  Color orange;
  Color blue;
  Color red;
  Color primary;           // foreground text
  Color secondary;         // dimmed foreground: primary at 50 % (light) / 55 % (dark) of its alpha
  Color windowBackground;  // the card's base colour
  Color separator;         // divider lines
  friend bool operator==(const Palette&, const Palette&) = default;
};

// What a view reads from its surroundings.
struct Environment {
  WidgetFamily family = WidgetFamily::systemSmall;
  RenderingMode renderingMode = RenderingMode::fullColor;
  ColorScheme colorScheme = ColorScheme::light;
  // True when the host paints the view's container background and applies content margins;
  // false for the legacy path, where the view pads itself and lays its backdrop behind.
  bool hostSuppliesContainerBackground = true;
  Date now{};     // the moment live relative texts count from
  Theme theme{};  // desktop theme colours, when known
  // Accented rendering: the colour of the accent group (`--accent`); everything else is white.
  Color accentColor = Color::white();

  Palette palette() const;
  friend bool operator==(const Environment&, const Environment&) = default;
};

}  // namespace korvo::ui
