#include "sources/codex_rollout_line.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/c_format.hpp"
#include "shared/json_reader.hpp"
#include "shared/moment_text.hpp"
#include "shared/usage_window.hpp"
#include "sources/codex_limit_fields.hpp"

namespace korvo::codex_rollout {
namespace {

using codex_fields::Json;
using codex_fields::member;

constexpr double fiveHourMinutes = 300;
constexpr double weekMinutes = 10080;
// Codex rounds a window's length to its label with this much slack either way.
constexpr double biasMinutes = 3;
constexpr double dayMinutes = 1440;
constexpr double monthMinutes = 43200;

bool contains(std::string_view text, std::string_view needle) {
  return text.find(needle) != std::string_view::npos;
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
  const std::string* type = codex_fields::string(member(*root, "type"));
  if (type == nullptr || *type != "event_msg") return std::nullopt;
  const Json* payload = member(*root, "payload");
  const std::string* payloadType =
      payload ? codex_fields::string(member(*payload, "type")) : nullptr;
  if (payloadType == nullptr || *payloadType != "token_count") return std::nullopt;
  const Json* limits = member(*payload, "rate_limits");
  if (limits == nullptr || !limits->is_object()) return std::nullopt;
  std::optional<std::string> limitId;
  if (const Json* id = member(*limits, "limit_id")) {
    limitId = codex_fields::machineWord(id);
    if (!limitId) return std::nullopt;
    if (*limitId == "codex") limitId.reset();
  }
  const std::string* timestamp = codex_fields::string(member(*root, "timestamp"));
  if (timestamp == nullptr) return std::nullopt;
  const auto lineTime = parseIsoMoment(*timestamp);
  if (!lineTime) return std::nullopt;

  auto windows = codex_fields::windows(*limits, codex_fields::rolloutNames, *lineTime);
  if (windows.empty()) return std::nullopt;
  LineLimits result{std::move(limitId),
                    std::nullopt,
                    {std::move(windows), *lineTime, std::string(sourceName)},
                    codex_fields::machineWord(member(*limits, "plan_type")),
                    codex_fields::credits(member(*limits, "credits"), codex_fields::rolloutNames)};
  if (result.limitId) result.limitName = codex_fields::label(member(*limits, "limit_name"));
  return result;
}

}  // namespace korvo::codex_rollout
