#include "app/usage_alerts.hpp"

#include <algorithm>
#include <cmath>

#include "base/c_format.hpp"
#include "base/date_text.hpp"
#include "base/text.hpp"

namespace korvo::usage_alerts {
namespace {

// Codex's resets wander by seconds between readings of one period.
constexpr double resetSlackSeconds = 120;

bool samePeriod(const Given& given, const WindowReading& reading) {
  const auto& reset = reading.window.resetsAt;
  if (given.resetsAt && reset)
    return std::abs(reset->secondsSince(*given.resetsAt)) <= resetSlackSeconds;
  if (given.resetsAt || reset) return false;
  // Without a reset the period is over once the figure falls back below the threshold.
  return given.percent == 0 || reading.window.usedPercent >= given.percent;
}

// A notice from a period that has ended: its reset is past.
bool ended(const Given& given, Date now) {
  return given.resetsAt && now.secondsSince(*given.resetsAt) > resetSlackSeconds;
}

std::string percentText(double percent) {
  return cFormat("%.0f", percent) + " %";
}

std::string resetLine(const UsageWindow& window) {
  return window.resetsAt ? window.resetText() + "." : std::string();
}

void checkWindow(const WindowReading& reading, const Settings& settings, Memory& memory,
                 std::vector<Alert>& alerts, Date now) {
  const UsageWindow& window = reading.window;
  std::erase_if(memory.given, [&](const Given& given) {
    return given.metric == reading.metric && !samePeriod(given, reading);
  });
  const auto given = [&](int percent) {
    return std::any_of(memory.given.begin(), memory.given.end(), [&](const Given& entry) {
      return entry.metric == reading.metric && entry.percent == percent;
    });
  };
  const std::string name = windowName(reading.provider, window.title);
  std::optional<int> crossed;
  for (const int percent : settings.alertPercents) {
    if (window.usedPercent < percent || given(percent)) continue;
    memory.given.push_back({reading.metric, window.resetsAt, percent});
    crossed = percent;
  }
  if (crossed) {
    alerts.push_back({name + ": " + percentText(window.usedPercent) + _(" used"),
                      _("Past your ") + percentText(*crossed) + _(" alert. ") + resetLine(window),
                      DashboardTab::ai});
  }
  // No thresholds means the user wants no notices of their usage at all.
  if (settings.alertPercents.empty() || !reading.forecast || !reading.forecast->exhaustsAt ||
      !window.resetsAt || given(0)) {
    return;
  }
  const Date exhausts = *reading.forecast->exhaustsAt;
  const double early = window.resetsAt->secondsSince(exhausts);
  if (early <= runsOutMarginSeconds) return;
  memory.given.push_back({reading.metric, window.resetsAt, 0});
  alerts.push_back({name + _(" runs out before its reset"),
                    _("At this pace it reaches 100 % at ") + shortTimeOrDateTime(exhausts, now) +
                        ", " + relativeSpan(exhausts, *window.resetsAt) + _(" before the reset."),
                    DashboardTab::ai});
}

void checkTemperature(const Readings& readings, const Settings& settings, Memory& memory,
                      std::vector<Alert>& alerts) {
  if (settings.temperatureAlert == 0) {
    memory.hot = false;
    return;
  }
  if (!readings.celsius) return;
  const double line = settings.temperatureAlert;
  if (memory.hot) {
    memory.hot = *readings.celsius > line - coolingDegrees;
    return;
  }
  if (*readings.celsius <= line) return;
  memory.hot = true;
  const TemperatureUnit unit = settings.temperatureUnit;
  alerts.push_back({_("CPU at ") + degreesText(*readings.celsius, unit),
                    _("Above the ") + degreesText(line, unit) + _(" you set for an alert."),
                    DashboardTab::memory});
}

}  // namespace

std::string windowName(const std::string& provider, const std::string& title) {
  std::string lowered = title;
  // "Weekly" reads as "Codex weekly"; "5-hour" stays as it is.
  if (!lowered.empty() && lowered.front() >= 'A' && lowered.front() <= 'Z') {
    lowered.front() = static_cast<char>(lowered.front() - 'A' + 'a');
  }
  return provider + " " + lowered;
}

std::vector<Alert> check(const Readings& readings, const Settings& settings, Memory& memory) {
  std::erase_if(memory.given, [&](const Given& given) { return ended(given, readings.now); });
  std::vector<Alert> alerts;
  for (const WindowReading& reading : readings.windows) {
    checkWindow(reading, settings, memory, alerts, readings.now);
  }
  checkTemperature(readings, settings, memory, alerts);
  return alerts;
}

}  // namespace korvo::usage_alerts
