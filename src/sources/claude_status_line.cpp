#include "sources/claude_status_line.hpp"

#include <cmath>
#include <optional>

#include "shared/json_reader.hpp"

namespace korvo::claude_status_line {
namespace {

using Json = nlohmann::json;

const Json* member(const Json& object, std::string_view key) {
  if (!object.is_object()) return nullptr;
  const auto found = object.find(key);
  return found == object.end() || found->is_null() ? nullptr : &*found;
}

std::optional<double> finiteNumber(const Json* value) {
  if (value == nullptr || !value->is_number()) return std::nullopt;
  const double number = value->get<double>();
  if (!std::isfinite(number)) return std::nullopt;
  return number;
}

}  // namespace

std::vector<UsageWindow> parseWindows(std::string_view input) {
  std::vector<UsageWindow> windows;
  auto parsed = json_reader::parse(input);
  const Json* root = std::get_if<Json>(&parsed);
  const Json* limits = root != nullptr ? member(*root, "rate_limits") : nullptr;
  if (limits == nullptr) return windows;
  for (const auto& [key, title] : {std::pair{"five_hour", UsageWindowTitle::fiveHour},
                                   {"seven_day", UsageWindowTitle::weekly}}) {
    const Json* window = member(*limits, key);
    if (window == nullptr) continue;
    const auto used = finiteNumber(member(*window, "used_percentage"));
    if (!used) continue;
    std::optional<Date> resetsAt;
    if (const auto at = finiteNumber(member(*window, "resets_at"))) {
      resetsAt = Date::fromUnixSeconds(*at);
    }
    windows.push_back({std::string(title), *used, resetsAt});
  }
  return windows;
}

}  // namespace korvo::claude_status_line
