#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "shared/usage_snapshot.hpp"

// The pure half of the Codex reader: what one rollout line says about the rate limits.
namespace korvo::codex_rollout {

// The text shown for the figures' origin.
inline constexpr std::string_view sourceName = "Codex CLI";

enum class Slot { primary, secondary };

// A window's title from its length: 300 "5-hour", 10080 "Weekly", other whole hours below a day
// "N-hour", anything else "N-day" (N rounded, at least 1); without a length "5-hour" for the
// primary window and "Weekly" for the secondary one.
std::string windowTitle(std::optional<double> windowMinutes, Slot slot);

// The rate limits of one rollout line: an `event_msg` whose payload is a `token_count` with
// non-null `rate_limits` of `limit_id` absent, null or "codex", at least one window with a
// numeric `used_percent`, and a `timestamp`. Windows shortest first; `resetsAt` from `resets_at`
// (Unix seconds) or the line's time plus `resets_in_seconds`; `fetchedAt` the line's time. None
// for every other line, malformed ones included.
std::optional<UsageSnapshot> parseLine(std::string_view line);

}  // namespace korvo::codex_rollout
