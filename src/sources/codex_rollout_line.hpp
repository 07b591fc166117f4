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

// A window's title by Codex's own labels, which allow 3 minutes either way: 297–303 minutes
// "5-hour"; any other length up to 1,443 minutes "N-hour" (N the rounded hours, at least 1); up
// to 10,083 "Weekly"; up to 43,203 "Monthly"; longer "Annual". Without a length "5-hour" for the
// primary window and "Weekly" for the secondary one.
std::string windowTitle(std::optional<double> windowMinutes, Slot slot);

// Codex's credits as the line reports them.
struct Credits {
  bool hasCredits = false;
  bool unlimited = false;
  std::optional<std::string> balance;  // a decimal number's text, e.g. "5.39"

  friend bool operator==(const Credits&, const Credits&) = default;
};

// The rate limits of one rollout line.
struct LineLimits {
  // None for Codex's own limit (`limit_id` absent, null or "codex"); else that other limit's id.
  std::optional<std::string> limitId;
  std::optional<std::string> limitName;  // the other limit's label, when the line has one
  UsageSnapshot snapshot;                // windows shortest first, fetchedAt the line's time
  std::optional<std::string> planType;
  std::optional<Credits> credits;

  friend bool operator==(const LineLimits&, const LineLimits&) = default;
};

// The rate limits of an `event_msg` line whose payload is a `token_count` with non-null
// `rate_limits`, at least one window with a numeric `used_percent`, and a `timestamp`. Windows
// shortest first; `resetsAt` from `resets_at` (Unix seconds) or the line's time plus
// `resets_in_seconds`. Only figures are taken: ids, names and the plan are kept only when they
// are short labels, the credit balance only when it is a number. None for every other line,
// malformed ones and ones whose `limit_id` is not a label included.
std::optional<LineLimits> parseLine(std::string_view line);

}  // namespace korvo::codex_rollout
