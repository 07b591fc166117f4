#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.hpp"
#include "shared/usage_window.hpp"
#include "sources/codex_rollout_line.hpp"

// Reading Codex's rate-limit objects, which its rollouts write in snake_case and its app-server
// answers in camelCase: one reader, two sets of names.
namespace korvo::codex_fields {

using Json = nlohmann::json;

// The names one of Codex's two outputs gives a limit's fields.
struct FieldNames {
  std::string_view usedPercent;
  std::string_view windowMinutes;
  std::string_view resetsAt;
  std::string_view resetsInSeconds;  // empty where that output has no such field
  std::string_view hasCredits;
};

inline constexpr FieldNames rolloutNames{"used_percent", "window_minutes", "resets_at",
                                         "resets_in_seconds", "has_credits"};
inline constexpr FieldNames appServerNames{"usedPercent", "windowDurationMins", "resetsAt", "",
                                           "hasCredits"};

// The member `key` of `object`; null when `object` is no object, or the member is absent or null.
const Json* member(const Json& object, std::string_view key);

const std::string* string(const Json* value);

// Ids and plans are lower-case machine words; anything else is not a figure and is not kept.
std::optional<std::string> machineWord(const Json* value);

// A limit's label as the server names it ("GPT-5-Codex-Mini"): printable ASCII only.
std::optional<std::string> label(const Json* value);

std::optional<codex_rollout::Credits> credits(const Json* value, const FieldNames& names);

// The `primary` and `secondary` windows of `limits` with a numeric used percentage, shortest
// first; a reset in seconds counts from `at`.
std::vector<UsageWindow> windows(const Json& limits, const FieldNames& names, Date at);

}  // namespace korvo::codex_fields
