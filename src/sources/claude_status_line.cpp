#include "sources/claude_status_line.hpp"

#include <algorithm>
#include <cmath>
#include <optional>

#include "shared/json_reader.hpp"

namespace korvo::claude_status_line {
namespace {

using Json = nlohmann::json;

constexpr std::size_t maxModelBytes = 64;

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

// The name goes onto a terminal: no control characters, nothing long.
std::optional<std::string> modelName(const Json* model) {
  const Json* name = model ? member(*model, "display_name") : nullptr;
  if (name == nullptr || !name->is_string()) return std::nullopt;
  const auto& text = name->get_ref<const std::string&>();
  const bool printable = std::none_of(text.begin(), text.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7f;
  });
  if (text.empty() || text.size() > maxModelBytes || !printable) return std::nullopt;
  return text;
}

std::vector<UsageWindow> windows(const Json* limits) {
  std::vector<UsageWindow> found;
  if (limits == nullptr) return found;
  for (const auto& [key, title] : {std::pair{"five_hour", UsageWindowTitle::fiveHour},
                                   {"seven_day", UsageWindowTitle::weekly}}) {
    const Json* window = member(*limits, key);
    if (window == nullptr) continue;
    const auto used = finiteNumber(member(*window, "used_percentage"));
    if (!used || *used < 0 || *used > maxUsedPercent) continue;
    const auto at = finiteNumber(member(*window, "resets_at"));
    if (at && *at == *used) continue;
    std::optional<Date> resetsAt;
    if (at) resetsAt = Date::fromUnixSeconds(*at);
    found.push_back({std::string(title), *used, resetsAt});
  }
  return found;
}

}  // namespace

Input parseInput(std::string_view input) {
  Input result;
  auto parsed = json_reader::parse(input);
  const Json* root = std::get_if<Json>(&parsed);
  if (root == nullptr) return result;
  result.windows = windows(member(*root, "rate_limits"));
  result.model = modelName(member(*root, "model"));
  if (const Json* context = member(*root, "context_window")) {
    const auto used = finiteNumber(member(*context, "used_percentage"));
    if (used && *used >= 0 && *used <= 100) result.contextUsedPercent = used;
  }
  return result;
}

}  // namespace korvo::claude_status_line
