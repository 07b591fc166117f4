#include "app/awake_duration.hpp"

#include <charconv>
#include <string>
#include <vector>

#include "base/text.hpp"

namespace korvo {
namespace {

struct Unit {
  char letter;
  std::int64_t seconds;
  const char* word;
};
constexpr Unit units[] = {{'h', 3600, "h"}, {'m', 60, "min"}, {'s', 1, "s"}};

}  // namespace

std::optional<AwakeDuration> parseAwakeDuration(std::string_view text) {
  if (text == "indefinitely") return AwakeDuration{};
  if (text.empty()) return std::nullopt;
  std::int64_t total = 0;
  std::size_t nextUnit = 0;  // units must come in order, each once
  while (!text.empty()) {
    std::int64_t count = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (error != std::errc() || end == text.data() + text.size() || count < 0) {
      return std::nullopt;
    }
    const char letter = *end;
    std::size_t unit = nextUnit;
    while (unit < std::size(units) && units[unit].letter != letter) ++unit;
    if (unit == std::size(units) || count > maxAwakeSeconds / units[unit].seconds) {
      return std::nullopt;
    }
    total += count * units[unit].seconds;
    if (total > maxAwakeSeconds) return std::nullopt;
    nextUnit = unit + 1;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()) + 1);
  }
  if (total == 0) return std::nullopt;
  return AwakeDuration{total};
}

std::string awakeDurationText(AwakeDuration duration) {
  if (!duration.seconds) return "indefinitely";
  std::int64_t left = *duration.seconds;
  std::vector<std::string> parts;
  for (const Unit& unit : units) {
    if (left < unit.seconds) continue;
    parts.push_back(std::to_string(left / unit.seconds) + " " + unit.word);
    left %= unit.seconds;
  }
  return joined(parts, " ");
}

}  // namespace korvo
