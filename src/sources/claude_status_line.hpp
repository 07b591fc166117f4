#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "shared/usage_window.hpp"

// What Claude Code hands a status-line command on standard input, as far as the limits go.
namespace korvo::claude_status_line {

// Input beyond this is not read: Claude Code's status-line object is a few kilobytes.
inline constexpr std::size_t maxInputBytes = 1024 * 1024;
// The text shown for the figures' origin.
inline constexpr std::string_view sourceName = "Claude Code";

// The windows of `rate_limits`: "5-hour" from `five_hour` and "Weekly" from `seven_day`, each
// with its `used_percentage` and, when there, `resets_at` (Unix seconds). A window without a
// numeric `used_percentage` is left out; input that is not JSON or has no `rate_limits` gives
// none.
std::vector<UsageWindow> parseWindows(std::string_view input);

}  // namespace korvo::claude_status_line
