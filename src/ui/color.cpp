#include "ui/color.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace korvo::ui {

namespace {

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

int channelByte(double channel) {
  if (!std::isfinite(channel)) return 0;
  return static_cast<int>(std::lround(std::clamp(channel, 0.0, 1.0) * 255.0));
}

}  // namespace

std::optional<Color> Color::fromHex(std::string_view hex) {
  if (!hex.empty() && hex.front() == '#') hex.remove_prefix(1);
  if (hex.size() != 6 && hex.size() != 8) return std::nullopt;
  double channels[4] = {0, 0, 0, 1};
  for (std::size_t i = 0; i < hex.size() / 2; ++i) {
    const int high = hexDigit(hex[2 * i]);
    const int low = hexDigit(hex[2 * i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    channels[i] = (high * 16 + low) / 255.0;
  }
  return Color{channels[0], channels[1], channels[2], channels[3]};
}

std::string Color::hex() const {
  char buffer[10];
  std::snprintf(buffer, sizeof buffer, "#%02X%02X%02X%02X", channelByte(red), channelByte(green),
                channelByte(blue), channelByte(alpha));
  return buffer;
}

}  // namespace korvo::ui
