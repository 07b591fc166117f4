#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvo {

// How long a Keep Awake session runs, or is extended by: some seconds, or indefinitely.
struct AwakeDuration {
  std::optional<std::int64_t> seconds;  // seconds, > 0; none means indefinitely

  friend bool operator==(const AwakeDuration&, const AwakeDuration&) = default;
};

// The longest finite duration korvo accepts: a year, far beyond any session and far inside what
// a date holds exactly.
inline constexpr std::int64_t maxAwakeSeconds = 366LL * 24 * 3600;

// "90s", "15m", "2h", "1h30m", "1h30m15s" (hours, minutes, seconds in that order, each at most
// once) or "indefinitely"; none for anything else, for zero and for more than maxAwakeSeconds.
std::optional<AwakeDuration> parseAwakeDuration(std::string_view text);

// "indefinitely", "2 h", "1 h 30 min", "90 s": the duration for a message.
std::string awakeDurationText(AwakeDuration duration);

}  // namespace korvo
