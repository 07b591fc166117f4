#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shared/usage_window.hpp"

// What Claude Code hands a status-line command on standard input, as far as the limits go.
namespace korvo::claude_status_line {

// Input beyond this is not read: Claude Code's status-line object is a few kilobytes.
inline constexpr std::size_t maxInputBytes = std::size_t{1024} * 1024;
// The text shown for the figures' origin.
inline constexpr std::string_view sourceName = "Claude Code";
// Above this a used percentage is no overrun but a wrong figure.
inline constexpr double maxUsedPercent = 1000;

struct Input {
  // "5-hour" from `rate_limits.five_hour` and "Weekly" from `seven_day`, each with its
  // `used_percentage` and, when there, `resets_at` (Unix seconds).
  std::vector<UsageWindow> windows;
  std::optional<std::string> model;          // `model.display_name`, when printable and short
  std::optional<double> contextUsedPercent;  // `context_window.used_percentage`, 0–100

  friend bool operator==(const Input&, const Input&) = default;
};

// What the input says. A window whose `used_percentage` is not a finite number from 0 to
// maxUsedPercent, or equals its own `resets_at` (Claude Code sometimes sends the reset time
// there), is left out; input that is not JSON or has no `rate_limits` gives no windows.
Input parseInput(std::string_view input);

}  // namespace korvo::claude_status_line
