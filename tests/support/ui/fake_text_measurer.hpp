#pragma once

#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "ui/text_measurer.hpp"

namespace korvo::ui::testing {

// Every character advances half the font size (plus tracking); a line is 1.2 × the size high
// with its baseline at 0.9 × the size. Lines break at blanks, words longer than a line at
// characters. Frames in tests are then exact numbers.
class FakeTextMeasurer final : public TextMeasurer {
 public:
  static double advance(const Font& font, double tracking) { return font.size * 0.5 + tracking; }

  TextMetrics measure(std::string_view text, const Font& font, double tracking,
                      double maxWidth) override {
    widthsOffered.push_back(maxWidth);
    const double step = advance(font, tracking);
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (true) {
      const std::size_t end = text.find('\n', start);
      wrap(std::string(text.substr(start, end == std::string_view::npos ? text.npos : end - start)),
           step, maxWidth, lines);
      if (end == std::string_view::npos) break;
      start = end + 1;
    }
    TextMetrics metrics;
    metrics.lines = lines;
    for (const std::string& line : lines) {
      const double width = static_cast<double>(codePoints(line)) * step;
      metrics.lineWidths.push_back(width);
      metrics.width = std::max(metrics.width, width);
    }
    metrics.lineHeight = font.size * 1.2;
    metrics.height = metrics.lineHeight * static_cast<double>(lines.size());
    metrics.baseline = font.size * 0.9;
    return metrics;
  }

  TextMetrics measureSymbol(std::string_view, const Font& font) override {
    TextMetrics metrics;
    metrics.lines = {"#"};
    metrics.lineWidths = {font.size};
    metrics.width = font.size;
    metrics.height = metrics.lineHeight = font.size;
    metrics.baseline = font.size * 0.8;
    return metrics;
  }

  std::vector<double> widthsOffered;  // the line width of every measurement, in order

 private:
  static std::size_t codePoints(const std::string& text) {
    std::size_t count = 0;
    for (unsigned char c : text) count += (c & 0xC0) != 0x80;
    return count;
  }

  static void wrap(const std::string& paragraph, double step, double maxWidth,
                   std::vector<std::string>& lines) {
    const std::size_t perLine =
        std::isfinite(maxWidth)
            ? std::max<std::size_t>(1, static_cast<std::size_t>(maxWidth / step + 1e-9))
            : paragraph.size() + 1;
    std::string line;
    std::size_t i = 0;
    while (i <= paragraph.size()) {
      const std::size_t blank = std::min(paragraph.find(' ', i), paragraph.size());
      std::string word = paragraph.substr(i, blank - i);
      const std::string joined = line.empty() ? word : line + " " + word;
      if (codePoints(joined) <= perLine) {
        line = joined;
      } else {
        if (!line.empty()) lines.push_back(line);
        while (codePoints(word) > perLine) {
          lines.push_back(word.substr(0, perLine));
          word = word.substr(perLine);
        }
        line = word;
      }
      i = blank + 1;
    }
    lines.push_back(line);
  }
};

}  // namespace korvo::ui::testing
