#include "ui/text_fit.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>

#include "ui/environment.hpp"

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
  // Never below 0 whatever a measurer says: a stack counts on a text offered no width being 0 wide.
  fit.size = {std::max(0.0, std::min(metrics.width, width)), metrics.height};
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

// Texts up to this many bytes are measured whole; every text a view writes itself is shorter.
constexpr std::size_t measuredWhole = 256;
// However the room is offered, no more than this many bytes of a text are measured.
constexpr std::size_t longestMeasured = std::size_t{1} << 16;

// No text is drawn outside its card, and no card is larger than the medium family.
const Size& largestCard() {
  static const Size size = familySize(WidgetFamily::systemMedium);
  return size;
}

// The part of `content` that is measured. A long text is cut after a prefix that, unwrapped in
// the smallest font it may take, holds more hard lines than the room shows, or is longer than
// all the lines the room shows twice over: broken into lines, the prefix then yields more than
// fit, so the lines drawn and where "…" goes are the whole text's, while the cost of measuring
// follows what a card can show rather than the length of the text (a line breaker is quadratic in
// a long word). The prefix grows by doubling, so the measuring done on the way adds up to less
// than twice the last prefix.
std::string_view measuredPart(std::string_view content, const Font& smallest, double tracking,
                              std::size_t maxLines, double maxWidth, TextMeasurer& measurer) {
  if (content.size() <= measuredWhole) return content;
  const double infinite = std::numeric_limits<double>::infinity();
  const double roomWidth = std::min(maxWidth, largestCard().width);
  for (std::size_t length = measuredWhole;; length *= 2) {
    std::size_t end = std::min({length, content.size(), longestMeasured});
    while (end < content.size() && (static_cast<unsigned char>(content[end]) & 0xC0) == 0x80) {
      --end;
    }
    const std::string_view prefix = content.substr(0, end);
    if (end == content.size() || end >= longestMeasured) return prefix;
    const TextMetrics metrics = measurer.measure(prefix, smallest, tracking, infinite);
    auto roomLines = static_cast<double>(maxLines);
    if (metrics.lineHeight > 0) {
      roomLines = std::min(roomLines, std::floor(largestCard().height / metrics.lineHeight) + 1);
    }
    double unwrapped = 0;
    for (const double lineWidth : metrics.lineWidths) unwrapped += lineWidth;
    if (static_cast<double>(metrics.lines.size()) > roomLines + 1 ||
        unwrapped > 2 * (roomLines + 1) * roomWidth) {
      return prefix;
    }
  }
}

// The largest scale from `minimum` to 1 at which `shown` fits `maxLines` lines of `maxWidth`,
// found by bisection; none when it does not fit even at `minimum`.
std::optional<TextFit> shrunkToFit(const std::string& shown, const Font& font, double tracking,
                                   double minimum, double idealWidth, std::size_t maxLines,
                                   double maxWidth, TextMeasurer& measurer) {
  auto attempt = [&](double scale) {
    return measurer.measure(shown, scaled(font, scale), tracking * scale, maxWidth);
  };
  // Widths grow with the font size, so the first guess is the ratio of the widths; the search
  // below only corrects for hinting and line breaks.
  double low = minimum;
  double high = 1;
  const double guess = std::clamp(maxWidth / idealWidth, minimum, 1.0);
  if (const TextMetrics metrics = attempt(guess); fits(metrics, maxLines, maxWidth)) {
    return fromMetrics(metrics, guess, maxWidth);
  }
  high = guess;
  const TextMetrics smallest = attempt(low);
  if (!fits(smallest, maxLines, maxWidth)) return std::nullopt;
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

}  // namespace

TextFit fitText(const std::string& content, const Font& font, double tracking,
                std::optional<int> lineLimit, double minimumScale, std::optional<double> width,
                std::optional<double> height, TextMeasurer& measurer) {
  const double infinite = std::numeric_limits<double>::infinity();
  const double maxWidth = std::max(0.0, width.value_or(infinite));
  const double minimum = std::clamp(minimumScale, 0.0, 1.0);
  const Font smallest = scaled(font, minimum < 1 ? minimum : 1);
  const double smallestTracking = tracking * (minimum < 1 ? minimum : 1);

  std::size_t maxLines = lineLimit ? static_cast<std::size_t>(std::max(1, *lineLimit))
                                   : std::numeric_limits<std::size_t>::max();
  const std::string shown(
      measuredPart(content, smallest, smallestTracking, maxLines, maxWidth, measurer));
  const TextMetrics ideal = measurer.measure(shown, font, tracking, infinite);
  if (height && ideal.lineHeight > 0) {
    const double linesInHeight = std::floor(*height / ideal.lineHeight + tolerance);
    // Compared as doubles first: an unbounded height must not be converted to an integer.
    if (linesInHeight < static_cast<double>(maxLines)) {
      maxLines = static_cast<std::size_t>(std::max(1.0, linesInHeight));
    }
  }

  if (fits(ideal, maxLines, maxWidth)) {
    TextFit fit = fromMetrics(ideal, 1, maxWidth);
    // A longer text's measured part depends on the room offered, so only a short one is known
    // to come out the same in more room; nor does one narrowed to its room within the tolerance.
    fit.fitsAnyLargerRoom = content.size() <= measuredWhole && ideal.width <= maxWidth;
    return fit;
  }
  const TextMetrics wrapped = measurer.measure(shown, font, tracking, maxWidth);
  if (fits(wrapped, maxLines, maxWidth)) return fromMetrics(wrapped, 1, maxWidth);

  if (minimum < 1) {
    if (auto fit = shrunkToFit(shown, font, tracking, minimum, ideal.width, maxLines, maxWidth,
                               measurer)) {
      return *fit;
    }
  }

  TextMetrics metrics = measurer.measure(shown, smallest, smallestTracking, maxWidth);
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
