#include "ui/text_fit.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace korvo::ui {

namespace {

constexpr double tolerance = 1e-6;
constexpr const char* ellipsis = "\u2026";

Font scaled(Font font, double scale) {
  font.size *= scale;
  return font;
}

bool fits(const TextMetrics& metrics, std::size_t maxLines, double width) {
  return metrics.lines.size() <= maxLines && metrics.width <= width + tolerance;
}

TextFit fromMetrics(const TextMetrics& metrics, double scale, double width) {
  TextFit fit;
  fit.size = {std::min(metrics.width, width), metrics.height};
  fit.baseline = metrics.baseline;
  fit.scale = scale;
  for (std::size_t i = 0; i < metrics.lines.size(); ++i) {
    const double lineWidth = i < metrics.lineWidths.size() ? metrics.lineWidths[i] : 0;
    fit.lines.push_back({metrics.lines[i], metrics.lineHeight * static_cast<double>(i), lineWidth});
  }
  return fit;
}

// Byte offsets of the code point boundaries of `text`, 0 and size() included.
std::vector<std::size_t> codePointBoundaries(const std::string& text) {
  std::vector<std::size_t> boundaries;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) boundaries.push_back(i);
  }
  boundaries.push_back(text.size());
  return boundaries;
}

// The longest prefix of `line` that, followed by "…", fits `width` points.
std::string truncated(const std::string& line, const Font& font, double tracking, double width,
                      TextMeasurer& measurer) {
  const auto boundaries = codePointBoundaries(line);
  auto candidate = [&](std::size_t count) {
    std::string prefix = line.substr(0, boundaries[count]);
    while (!prefix.empty() && prefix.back() == ' ') prefix.pop_back();
    return prefix + ellipsis;
  };
  const double infinite = std::numeric_limits<double>::infinity();
  std::size_t low = 0;
  std::size_t high = boundaries.size() - 1;
  while (low < high) {
    const std::size_t middle = (low + high + 1) / 2;
    if (measurer.measure(candidate(middle), font, tracking, infinite).width <= width + tolerance) {
      low = middle;
    } else {
      high = middle - 1;
    }
  }
  return candidate(low);
}

}  // namespace

TextFit fitText(const std::string& content, const Font& font, double tracking,
                std::optional<int> lineLimit, double minimumScale, std::optional<double> width,
                std::optional<double> height, TextMeasurer& measurer) {
  const double infinite = std::numeric_limits<double>::infinity();
  const double maxWidth = std::max(0.0, width.value_or(infinite));
  const TextMetrics ideal = measurer.measure(content, font, tracking, infinite);

  std::size_t maxLines = lineLimit ? static_cast<std::size_t>(std::max(1, *lineLimit))
                                   : std::numeric_limits<std::size_t>::max();
  if (height && ideal.lineHeight > 0) {
    const double linesInHeight = std::floor(*height / ideal.lineHeight + tolerance);
    // Compared as doubles first: an unbounded height must not be converted to an integer.
    if (linesInHeight < static_cast<double>(maxLines)) {
      maxLines = static_cast<std::size_t>(std::max(1.0, linesInHeight));
    }
  }

  if (fits(ideal, maxLines, maxWidth)) return fromMetrics(ideal, 1, maxWidth);
  const TextMetrics wrapped = measurer.measure(content, font, tracking, maxWidth);
  if (fits(wrapped, maxLines, maxWidth)) return fromMetrics(wrapped, 1, maxWidth);

  const double minimum = std::clamp(minimumScale, 0.0, 1.0);
  auto attempt = [&](double scale) {
    return measurer.measure(content, scaled(font, scale), tracking * scale, maxWidth);
  };
  if (minimum < 1) {
    // Widths grow with the font size, so the first guess is the ratio of the widths; the
    // search below only corrects for hinting and line breaks.
    double low = minimum;
    double high = 1;
    const double guess = std::clamp(maxWidth / ideal.width, minimum, 1.0);
    if (const TextMetrics metrics = attempt(guess); fits(metrics, maxLines, maxWidth)) {
      return fromMetrics(metrics, guess, maxWidth);
    }
    high = guess;
    if (const TextMetrics metrics = attempt(low); fits(metrics, maxLines, maxWidth)) {
      for (int step = 0; step < 12; ++step) {
        const double middle = (low + high) / 2;
        if (fits(attempt(middle), maxLines, maxWidth)) {
          low = middle;
        } else {
          high = middle;
        }
      }
      return fromMetrics(attempt(low), low, maxWidth);
    }
  }

  const Font smallest = scaled(font, minimum < 1 ? minimum : 1);
  const double smallestTracking = tracking * (minimum < 1 ? minimum : 1);
  TextMetrics metrics = measurer.measure(content, smallest, smallestTracking, maxWidth);
  const bool cut = metrics.lines.size() > maxLines || metrics.width > maxWidth + tolerance;
  if (metrics.lines.size() > maxLines) {
    metrics.lines.resize(maxLines);
    metrics.lineWidths.resize(maxLines);
    metrics.height = metrics.lineHeight * static_cast<double>(maxLines);
  }
  if (cut && !metrics.lines.empty()) {
    std::string& last = metrics.lines.back();
    last = truncated(last, smallest, smallestTracking, maxWidth, measurer);
    metrics.lineWidths.back() = measurer.measure(last, smallest, smallestTracking, infinite).width;
  }
  metrics.width = 0;
  for (double lineWidth : metrics.lineWidths) metrics.width = std::max(metrics.width, lineWidth);
  return fromMetrics(metrics, minimum < 1 ? minimum : 1, maxWidth);
}

}  // namespace korvo::ui
