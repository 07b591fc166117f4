#pragma once

#include <optional>
#include <vector>

#include "app/history_store.hpp"
#include "base/date.hpp"
#include "shared/usage_window.hpp"

// Where a limit window is heading at its recent pace.
namespace korvo::forecast {

// The readings the pace is taken over: the last hour of the window's current period.
inline constexpr double paceSeconds = 3600;
// Readings closer together than this say nothing of a pace.
inline constexpr double minimumSpanSeconds = 300;
// A rise slower than this (percentage points an hour) is an idle stretch.
inline constexpr double idlePointsPerHour = 0.1;

struct Forecast {
  std::optional<Date> exhaustsAt;     // when it reaches 100 % at this pace, before its reset
  std::optional<double> usedAtReset;  // else the used percentage expected at the reset

  friend bool operator==(const Forecast&, const Forecast&) = default;
};

// The forecast for `window` at `now` from its recorded `readings` (oldest first, value the used
// percentage, resetsAt the reset each reading named). The burn rate is the rise of the used
// percentage over the last paceSeconds of the current period, a period ending where the reset
// moves on or the percentage falls. None from a single reading, readings less than
// minimumSpanSeconds apart, or an idle stretch.
std::optional<Forecast> forecast(const std::vector<HistoryRow>& readings, const UsageWindow& window,
                                 Date now);

}  // namespace korvo::forecast
