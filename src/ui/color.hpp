#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvo::ui {

// A concrete colour in sRGB, not premultiplied. Views resolve named colours through the
// environment's palette, so a tree only ever holds concrete values.
struct Color {
  double red = 0;    // 0…1
  double green = 0;  // 0…1
  double blue = 0;   // 0…1
  double alpha = 1;  // 0…1

  // `#RRGGBB` or `#RRGGBBAA` (the `#` optional); nothing for anything else.
  static std::optional<Color> fromHex(std::string_view hex);
  static constexpr Color white(double alpha = 1) { return {1, 1, 1, alpha}; }
  static constexpr Color black(double alpha = 1) { return {0, 0, 0, alpha}; }
  static constexpr Color clear() { return {0, 0, 0, 0}; }

  // The same colour with its alpha multiplied by `opacity` (0…1).
  constexpr Color opacity(double opacity) const { return {red, green, blue, alpha * opacity}; }

  // `#RRGGBBAA`, upper-case hex, each channel rounded to the nearest of 0…255.
  std::string hex() const;

  friend bool operator==(const Color&, const Color&) = default;
};

}  // namespace korvo::ui
