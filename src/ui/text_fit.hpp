#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ui/font.hpp"
#include "ui/geometry.hpp"
#include "ui/layout_node.hpp"
#include "ui/text_measurer.hpp"

namespace korvo::ui {

// How a text is drawn in the room it is given.
struct TextFit {
  Size size{};                    // points
  double baseline = 0;            // points from the top to the first baseline
  double scale = 1;               // shrink factor applied to the font and tracking
  std::vector<TextLine> lines{};  // what is drawn
  // The whole text on its own lines, unshrunk: any room at least `size` fits it the same.
  bool fitsAnyLargerRoom = false;
};

// Fits `content` into `width` × `height` points (absent = unlimited): on its own lines when they
// fit; else wrapped within the line limit; else shrunk as little as needed but not below
// `minimumScale`; else at the minimum scale with the last kept line cut and ended by "…".
TextFit fitText(const std::string& content, const Font& font, double tracking,
                std::optional<int> lineLimit, double minimumScale, std::optional<double> width,
                std::optional<double> height, TextMeasurer& measurer);

}  // namespace korvo::ui
