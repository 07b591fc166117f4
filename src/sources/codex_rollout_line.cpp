#include "sources/codex_rollout_line.hpp"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "base/c_format.hpp"
#include "shared/json_reader.hpp"
#include "shared/moment_text.hpp"
#include "shared/usage_window.hpp"

namespace korvo::codex_rollout {
namespace {

using Json = nlohmann::json;

constexpr double fiveHourMinutes = 300;
constexpr double weekMinutes = 10080;
constexpr double dayMinutes = 1440;

const Json* member(const Json& object, std::string_view key) {
  if (!object.is_object()) return nullptr;
  const auto found = object.find(key);
  return found == object.end() || found->is_null() ? nullptr : &*found;
}

bool memberIs(const Json& object, std::string_view key, std::string_view text) {
  const Json* value = member(object, key);
  return value != nullptr && value->is_string() && value->get_ref<const std::string&>() == text;
}

std::optional<double> finiteNumber(const Json* value) {
  if (value == nullptr || !value->is_number()) return std::nullopt;
  const double number = value->get<double>();
  if (!std::isfinite(number)) return std::nullopt;
  return number;
}

struct SlotWindow {
  double lengthMinutes;  // for ordering; the slot's usual length when the line has none
  UsageWindow window;
};

std::optional<SlotWindow> readWindow(const Json& limits, Slot slot, Date lineTime) {
  const Json* value = member(limits, slot == Slot::primary ? "primary" : "secondary");
  if (value == nullptr || !value->is_object()) return std::nullopt;
  const auto used = finiteNumber(member(*value, "used_percent"));
  if (!used) return std::nullopt;
  auto minutes = finiteNumber(member(*value, "window_minutes"));
  if (minutes && *minutes <= 0) minutes.reset();
  std::optional<Date> resetsAt;
  if (const auto at = finiteNumber(member(*value, "resets_at"))) {
    resetsAt = Date::fromUnixSeconds(*at);
  } else if (const auto in = finiteNumber(member(*value, "resets_in_seconds"))) {
    resetsAt = lineTime.addingSeconds(*in);
  }
  const double usual = slot == Slot::primary ? fiveHourMinutes : weekMinutes;
  return SlotWindow{minutes.value_or(usual), {windowTitle(minutes, slot), *used, resetsAt}};
}

}  // namespace

std::string windowTitle(std::optional<double> windowMinutes, Slot slot) {
  const auto title = [](std::string_view known) { return std::string(known); };
  if (!windowMinutes) {
    return title(slot == Slot::primary ? UsageWindowTitle::fiveHour : UsageWindowTitle::weekly);
  }
  const double minutes = *windowMinutes;
  if (minutes == fiveHourMinutes) return title(UsageWindowTitle::fiveHour);
  if (minutes == weekMinutes) return title(UsageWindowTitle::weekly);
  if (minutes < dayMinutes && std::fmod(minutes, 60) == 0) {
    return cFormat("%.0f-hour", minutes / 60);
  }
  return wholeFigure(std::max(1.0, std::round(minutes / dayMinutes))) + "-day";
}

std::optional<UsageSnapshot> parseLine(std::string_view line) {
  // Most lines are conversation; only token counts are worth a parse.
  if (line.find("token_count") == std::string_view::npos) return std::nullopt;
  auto parsed = json_reader::parse(line);
  const Json* root = std::get_if<Json>(&parsed);
  if (root == nullptr || !memberIs(*root, "type", "event_msg")) return std::nullopt;
  const Json* payload = member(*root, "payload");
  if (payload == nullptr || !memberIs(*payload, "type", "token_count")) return std::nullopt;
  const Json* limits = member(*payload, "rate_limits");
  if (limits == nullptr || !limits->is_object()) return std::nullopt;
  if (member(*limits, "limit_id") != nullptr && !memberIs(*limits, "limit_id", "codex")) {
    return std::nullopt;
  }
  const Json* timestamp = member(*root, "timestamp");
  if (timestamp == nullptr || !timestamp->is_string()) return std::nullopt;
  const auto lineTime = parseIsoMoment(timestamp->get_ref<const std::string&>());
  if (!lineTime) return std::nullopt;

  std::vector<SlotWindow> found;
  for (const Slot slot : {Slot::primary, Slot::secondary}) {
    if (auto window = readWindow(*limits, slot, *lineTime)) found.push_back(std::move(*window));
  }
  if (found.empty()) return std::nullopt;
  std::stable_sort(found.begin(), found.end(), [](const SlotWindow& a, const SlotWindow& b) {
    return a.lengthMinutes < b.lengthMinutes;
  });
  UsageSnapshot snapshot{{}, *lineTime, std::string(sourceName)};
  for (auto& slotWindow : found) snapshot.windows.push_back(std::move(slotWindow.window));
  return snapshot;
}

}  // namespace korvo::codex_rollout
