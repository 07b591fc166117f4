#include "gtk/theme_colors_text.hpp"

#include <algorithm>
#include <array>
#include <charconv>

namespace korvo::gtk {
namespace {

constexpr std::string_view backgroundLine = "background";
constexpr std::string_view foregroundLine = "foreground";

void appendColor(std::string& text, std::string_view name, const std::optional<ui::Color>& color) {
  if (!color) return;
  text += name;
  for (const double channel : {color->red, color->green, color->blue, color->alpha}) {
    std::array<char, 32> buffer{};
    // Hexadecimal floats read back to the same double.
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), channel,
                                       std::chars_format::hex);
    text += ' ';
    text.append(buffer.data(), written.ptr);
  }
  text += '\n';
}

std::optional<ui::Color> colorFrom(std::string_view fields) {
  std::array<double, 4> channels{};
  const char* at = fields.data();
  const char* end = fields.data() + fields.size();
  for (double& channel : channels) {
    if (at == end || *at != ' ') return std::nullopt;
    const auto read = std::from_chars(at + 1, end, channel, std::chars_format::hex);
    if (read.ec != std::errc{}) return std::nullopt;
    at = read.ptr;
  }
  if (at != end) return std::nullopt;
  return ui::Color{channels[0], channels[1], channels[2], channels[3]};
}

}  // namespace

std::string formatThemeColors(const ThemeColors& colors) {
  std::string text;
  appendColor(text, backgroundLine, colors.background);
  appendColor(text, foregroundLine, colors.foreground);
  return text;
}

ThemeColors parseThemeColors(std::string_view text) {
  ThemeColors colors;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.starts_with(backgroundLine)) {
      colors.background = colorFrom(line.substr(backgroundLine.size()));
    } else if (line.starts_with(foregroundLine)) {
      colors.foreground = colorFrom(line.substr(foregroundLine.size()));
    }
  }
  return colors;
}

}  // namespace korvo::gtk
