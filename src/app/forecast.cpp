#include "app/forecast.hpp"

#include <cmath>

namespace korvo::forecast {
namespace {

// A reset that moves by more than this starts a new period (Codex's resets wander by seconds).
constexpr double resetSlackSeconds = 120;

bool newPeriod(const HistoryRow& before, const HistoryRow& after) {
  if (after.value < before.value) return true;
  if (before.resetsAt && after.resetsAt) {
    return after.resetsAt->secondsSince(*before.resetsAt) > resetSlackSeconds;
  }
  return false;
}

}  // namespace

std::optional<Forecast> forecast(const std::vector<HistoryRow>& readings, const UsageWindow& window,
                                 Date now) {
  if (readings.empty()) return std::nullopt;
  // The current period: back from the newest reading to the first that starts one.
  std::size_t first = readings.size() - 1;
  while (first > 0 && !newPeriod(readings[first - 1], readings[first])) --first;
  const HistoryRow& last = readings.back();
  while (first < readings.size() - 1 &&
         last.time.secondsSince(readings[first].time) > paceSeconds) {
    ++first;
  }
  const HistoryRow& start = readings[first];
  const double span = last.time.secondsSince(start.time);
  if (span < minimumSpanSeconds) return std::nullopt;
  const double perSecond = (last.value - start.value) / span;
  if (!std::isfinite(perSecond) || perSecond * 3600 < idlePointsPerHour) return std::nullopt;

  const double used = window.usedPercent;
  const Date exhausts = now.addingSeconds(std::max(0.0, 100 - used) / perSecond);
  if (!window.resetsAt || exhausts.secondsSince(*window.resetsAt) < 0) {
    return Forecast{exhausts, std::nullopt};
  }
  const double untilReset = std::max(0.0, window.resetsAt->secondsSince(now));
  return Forecast{std::nullopt, used + perSecond * untilReset};
}

}  // namespace korvo::forecast
