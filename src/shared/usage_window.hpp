#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/date.hpp"

namespace korvo {

// The titles hosts give the windows the widgets pick out, as the shared file carries them.
namespace UsageWindowTitle {
inline constexpr std::string_view fiveHour = "5-hour";
inline constexpr std::string_view weekly = "Weekly";
// Codex's labels for its longer windows.
inline constexpr std::string_view monthly = "Monthly";
inline constexpr std::string_view annual = "Annual";
// An earlier name of the five-hour window.
inline constexpr std::string_view session = "Session";
}  // namespace UsageWindowTitle

// One usage-limit window of a provider, as the host application wrote it.
struct UsageWindow {
  std::string title;             // the host's label, e.g. "5-hour" or "Weekly"
  double usedPercent = 0;        // percent of the quota used, as received (never clamped)
  std::optional<Date> resetsAt;  // when the quota resets; absent when the host does not know

  // "5-hour · 72% left": 100 − usedPercent, at least 0 (no upper clamp), printf-rounded.
  std::string remainingSummary() const;
  // "Resets " + medium date and short time of resetsAt, or "Reset time unavailable".
  std::string resetText() const;
  // "Resets in 7m" / "Resets in 2h 5m" / "Resets in 3d 4h" / "Reset due · refresh" relative to now.
  std::string resetCountdown(Date now) const;

  friend bool operator==(const UsageWindow&, const UsageWindow&) = default;
};

}  // namespace korvo
