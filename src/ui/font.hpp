#pragma once

#include <string_view>

namespace korvo::ui {

enum class FontWeight { ultraLight, thin, light, regular, medium, semibold, bold, heavy, black };

// `rounded` draws with the rounded family, everything else with the system family.
enum class FontDesign { standard, rounded, monospaced, serif };

struct Font {
  double size = 13;  // points
  FontWeight weight = FontWeight::regular;
  FontDesign design = FontDesign::standard;
  bool monospacedDigits = false;  // tabular figures (OpenType `tnum`)

  static constexpr Font system(double size, FontWeight weight = FontWeight::regular,
                               FontDesign design = FontDesign::standard) {
    return {size, weight, design, false};
  }
  // The text styles at their desktop sizes.
  static constexpr Font body() { return system(13); }
  static constexpr Font headline() { return system(13, FontWeight::bold); }
  static constexpr Font subheadline() { return system(11); }
  static constexpr Font caption() { return system(10); }
  static constexpr Font caption2() { return system(10, FontWeight::medium); }

  constexpr Font withWeight(FontWeight w) const { return {size, w, design, monospacedDigits}; }
  constexpr Font withMonospacedDigits(bool on = true) const { return {size, weight, design, on}; }

  friend bool operator==(const Font&, const Font&) = default;
};

// "regular", "semibold", … as the JSON tree writes them.
std::string_view weightName(FontWeight weight);
// "default", "rounded", "monospaced", "serif".
std::string_view designName(FontDesign design);
// CSS-style numeric weight (100…900) for the text backend.
int numericWeight(FontWeight weight);

}  // namespace korvo::ui
