#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ui/font.hpp"

namespace korvo::ui {

// The measured shape of a text: lines broken to fit a width.
struct TextMetrics {
  std::vector<std::string> lines;  // the content of each line, without the breaking blanks
  std::vector<double> lineWidths;  // points, one per line
  double width = 0;                // points, the widest line
  double height = 0;               // points, all lines
  double lineHeight = 0;           // points, one line
  double baseline = 0;             // points from the top to the first line's baseline
};

// How the layout learns the size of a text. The painter supplies the Pango one; tests supply a
// fake with fixed advances so frames can be asserted exactly.
class TextMeasurer {
 public:
  virtual ~TextMeasurer() = default;

  // Lays `text` out in `font` with `tracking` extra points per character, breaking lines at
  // `maxWidth` points (no breaking when infinite); hard line breaks are honoured.
  virtual TextMetrics measure(std::string_view text, const Font& font, double tracking,
                              double maxWidth) = 0;

  // Width of the symbol `name` at `font`'s size, and its line metrics.
  virtual TextMetrics measureSymbol(std::string_view name, const Font& font) = 0;
};

}  // namespace korvo::ui
