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
// Codex rounds a window's length to its label with this much slack either way.
constexpr double biasMinutes = 3;
constexpr double dayMinutes = 1440;
constexpr double monthMinutes = 43200;
constexpr std::size_t maxLabelBytes = 64;

bool contains(std::string_view text, std::string_view needle) {
  return text.find(needle) != std::string_view::npos;
}

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

const std::string* string(const Json* value) {
  return value != nullptr && value->is_string() ? &value->get_ref<const std::string&>() : nullptr;
}

// Ids and plans are lower-case machine words; anything else is not a figure and is not kept.
std::optional<std::string> machineWord(const Json* value) {
  const std::string* text = string(value);
  if (text == nullptr || text->empty() || text->size() > maxLabelBytes) return std::nullopt;
  const bool word = std::all_of(text->begin(), text->end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.';
  });
  return word ? std::optional(*text) : std::nullopt;
}

// A limit's label as the server names it ("GPT-5-Codex-Mini"): printable ASCII only.
std::optional<std::string> label(const Json* value) {
  const std::string* text = string(value);
  if (text == nullptr || text->empty() || text->size() > maxLabelBytes) return std::nullopt;
  const bool printable =
      std::all_of(text->begin(), text->end(), [](char c) { return c >= ' ' && c <= '~'; });
  return printable ? std::optional(*text) : std::nullopt;
}

std::optional<std::string> balance(const Json* value) {
  if (const auto number = finiteNumber(value)) return cFormat("%.2f", *number);
  const std::string* text = string(value);
  if (text == nullptr || text->empty() || text->size() > 24) return std::nullopt;
  std::size_t digits = 0;
  std::size_t points = 0;
  for (std::size_t i = 0; i < text->size(); ++i) {
    const char c = (*text)[i];
    if (c >= '0' && c <= '9') {
      ++digits;
    } else if (c == '.') {
      ++points;
    } else if (c != '-' || i != 0) {
      return std::nullopt;
    }
  }
  return digits > 0 && points <= 1 ? std::optional(*text) : std::nullopt;
}

std::optional<Credits> credits(const Json* value) {
  if (value == nullptr || !value->is_object()) return std::nullopt;
  const Json* has = member(*value, "has_credits");
  const Json* unlimited = member(*value, "unlimited");
  if (has == nullptr || !has->is_boolean()) return std::nullopt;
  return Credits{has->get<bool>(),
                 unlimited != nullptr && unlimited->is_boolean() && unlimited->get<bool>(),
                 balance(member(*value, "balance"))};
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
  if (std::abs(minutes - fiveHourMinutes) <= biasMinutes) return title(UsageWindowTitle::fiveHour);
  if (minutes <= dayMinutes + biasMinutes) {
    return cFormat("%.0f-hour", std::max(1.0, std::round(minutes / 60)));
  }
  if (minutes <= weekMinutes + biasMinutes) return title(UsageWindowTitle::weekly);
  if (minutes <= monthMinutes + biasMinutes) return title(UsageWindowTitle::monthly);
  return title(UsageWindowTitle::annual);
}

std::optional<LineLimits> parseLine(std::string_view line) {
  // Most lines are conversation; only token counts are worth a parse. Codex writes compact JSON,
  // and inside conversation text these quotes would be escaped, so only the event itself matches.
  if (!contains(line, R"("type":"token_count")")) return std::nullopt;
  // Accounts without limits write them null on every turn: nothing to parse there.
  if (contains(line, R"("rate_limits":null)") && !contains(line, R"("rate_limits":{)")) {
    return std::nullopt;
  }
  auto parsed = json_reader::parse(line);
  const Json* root = std::get_if<Json>(&parsed);
  if (root == nullptr) return std::nullopt;
  const std::string* type = string(member(*root, "type"));
  if (type == nullptr || *type != "event_msg") return std::nullopt;
  const Json* payload = member(*root, "payload");
  const std::string* payloadType = payload ? string(member(*payload, "type")) : nullptr;
  if (payloadType == nullptr || *payloadType != "token_count") return std::nullopt;
  const Json* limits = member(*payload, "rate_limits");
  if (limits == nullptr || !limits->is_object()) return std::nullopt;
  std::optional<std::string> limitId;
  if (const Json* id = member(*limits, "limit_id")) {
    limitId = machineWord(id);
    if (!limitId) return std::nullopt;
    if (*limitId == "codex") limitId.reset();
  }
  const std::string* timestamp = string(member(*root, "timestamp"));
  if (timestamp == nullptr) return std::nullopt;
  const auto lineTime = parseIsoMoment(*timestamp);
  if (!lineTime) return std::nullopt;

  std::vector<SlotWindow> found;
  for (const Slot slot : {Slot::primary, Slot::secondary}) {
    if (auto window = readWindow(*limits, slot, *lineTime)) found.push_back(std::move(*window));
  }
  if (found.empty()) return std::nullopt;
  std::stable_sort(found.begin(), found.end(), [](const SlotWindow& a, const SlotWindow& b) {
    return a.lengthMinutes < b.lengthMinutes;
  });
  LineLimits result{std::move(limitId),
                    std::nullopt,
                    {{}, *lineTime, std::string(sourceName)},
                    machineWord(member(*limits, "plan_type")),
                    credits(member(*limits, "credits"))};
  if (result.limitId) result.limitName = label(member(*limits, "limit_name"));
  for (auto& slotWindow : found) result.snapshot.windows.push_back(std::move(slotWindow.window));
  return result;
}

}  // namespace korvo::codex_rollout
