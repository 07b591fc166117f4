#include "cli/status_line.hpp"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "base/date_text.hpp"
#include "base/text.hpp"
#include "model/entry_json.hpp"
#include "sampling/memory_format.hpp"
#include "shared/usage_provider.hpp"
#include "views/memory/memory_widget_content.hpp"
#include "views/monitor/last_updated_footer.hpp"
#include "views/monitor/temperature_content.hpp"
#include "views/monitor/usage_content.hpp"
#include "views/monitor/usage_windows.hpp"

namespace korvo::StatusLine {
namespace {

// Waybar draws this when there is nothing to show.
std::string noFigure() {
  return _("—");
}

int wholePercent(double percent) {
  if (!std::isfinite(percent)) return 0;
  // Rounded as the texts are (printf: halves to even), so "52°C" comes with 52.
  return static_cast<int>(std::nearbyint(std::clamp(percent, 0.0, 100.0)));
}

std::string windowLine(const UsageWindow& window, Date now, const UsageOutlook& outlook,
                       UsageProvider provider) {
  std::string line = window.remainingSummary() + " · " + window.resetCountdown(now);
  const auto found = outlook.forecasts.find(std::string(rawValue(provider)) + "." + window.title);
  if (found != outlook.forecasts.end()) line += " · " + found->second;
  return line;
}

// "critical" at or past the last threshold, "warning" at or past the first.
std::string alertClass(double used, const std::vector<int>& percents) {
  if (percents.empty()) return {};
  if (used >= percents.back()) return "critical";
  if (used >= percents.front()) return "warning";
  return {};
}

std::string worseAlert(const std::string& one, const std::string& other) {
  if (one == "critical" || other == "critical") return "critical";
  return one.empty() ? other : one;
}

}  // namespace

Line memory(const MemoryEntry& entry, DisplayMode mode, Tooltip tooltip) {
  if (!entry.memory) {
    return {noFigure(), _("Memory") + std::string(": ") + _("Unavailable"), "unavailable", 0, {}};
  }
  const MemorySnapshot& reading = *entry.memory;
  Line line{MemoryFormat::modeText(reading, mode),
            "",
            std::string(rawValue(reading.pressure)),
            wholePercent(reading.usedFraction() * 100),
            {}};
  if (tooltip == Tooltip::leftOut) return line;
  const auto figure = [](const std::string& title, std::uint64_t bytes) {
    return title + " " + MemoryFormat::compactSize(bytes);
  };
  const std::vector<std::string> details{
      MemoryFormat::gigabytes(reading.used()) + _(" of ") + MemoryFormat::gigabytes(reading.total),
      figure(_("Apps"), reading.app),
      figure(_("Wired"), reading.wired),
      figure(_("Compressed"), reading.compressed),
      figure(_("Cached"), reading.cached),
      reading.swap ? figure(_("Swap"), *reading.swap) : _("Swap") + std::string(" ") + _("—"),
      MemoryFormat::gigabytes(reading.available()) + _(" available"),
      pressureLine(reading.pressure),
  };
  line.tooltip = joined(details, "\n");
  return line;
}

// The worse class of a provider's windows.
std::string providerAlert(const UsageState& state, const std::vector<int>& percents) {
  std::string alert;
  if (!state.snapshot) return alert;
  for (const UsageWindow& window : state.snapshot->windows) {
    alert = worseAlert(alert, alertClass(window.usedPercent, percents));
  }
  return alert;
}

Line usage(const MonitorEntry& entry, Tooltip tooltip, const UsageOutlook& outlook) {
  if (!entry.snapshot) return {noFigure(), _("Usage unavailable"), "unavailable", 0, {}};
  std::vector<std::string> figures;
  std::vector<std::string> details;
  std::optional<double> lowest;
  bool anyEnabled = false;
  bool stale = false;
  std::string alert;
  const bool withDetails = tooltip == Tooltip::included;
  for (const UsageProvider provider : allCases<UsageProvider>()) {
    const UsageState state = UsageContent::state(entry, provider);
    if (withDetails) details.push_back(shortName(provider) + " · " + state.statusText());
    if (!state.enabled) continue;
    anyEnabled = true;
    stale = stale || state.isStale();
    alert = worseAlert(alert, providerAlert(state, outlook.alertPercents));
    const std::optional<UsageWindow> weekly = UsageWindows::weekly(state);
    figures.push_back(shortName(provider) + " " +
                      (weekly ? UsageWindows::remainingText(*weekly) : noFigure()));
    if (weekly) {
      const double remaining = UsageWindows::remainingPercent(*weekly);
      lowest = lowest ? std::min(*lowest, remaining) : remaining;
      if (withDetails) details.push_back(windowLine(*weekly, entry.date, outlook, provider));
    }
    if (withDetails && state.snapshot) {
      if (const auto fiveHour = UsageWindows::fiveHour(*state.snapshot)) {
        details.push_back(windowLine(*fiveHour, entry.date, outlook, provider));
      }
    }
  }
  if (!anyEnabled) return {noFigure(), joined(details, "\n"), "disabled", 0, {}};
  const std::string cssClass = !lowest ? "unavailable" : stale ? "stale" : "";
  return {joined(figures, " · "), joined(details, "\n"), cssClass,
          lowest ? wholePercent(*lowest) : 0, alert};
}

Line temperature(const MonitorEntry& entry, Tooltip tooltip, TemperatureUnit unit) {
  switch (TemperatureContent::state(entry.snapshot)) {
    case TemperatureContent::State::disabled:
      return {noFigure(),
              _("Enable in Korvo") + std::string(": ") + _("Settings → Monitors → CPU temperature"),
              "disabled",
              0,
              {}};
    case TemperatureContent::State::unavailable:
      return {noFigure(),
              _("CPU temperature") + std::string(": ") + _("Unavailable"),
              "unavailable",
              0,
              {}};
    case TemperatureContent::State::reading:
      break;
  }
  const WidgetSnapshot& snapshot = *entry.snapshot;
  const double celsius = *snapshot.temperature;
  std::string details = _("Hottest CPU sensor");
  bool stale = false;
  if (snapshot.temperatureDate) {
    const LastUpdatedFooter footer{entry.date, *snapshot.temperatureDate};
    stale = footer.isStale();
    if (tooltip == Tooltip::included) {
      details +=
          "\n" + (stale ? _("Stale ·") : _("Updated")) + " " + shortTime(*snapshot.temperatureDate);
    }
  }
  return {degreesText(celsius, unit),
          tooltip == Tooltip::included ? details : std::string(),
          stale ? "stale" : "",
          wholePercent(celsius),
          {}};
}

std::string waybarJson(const Line& line) {
  nlohmann::ordered_json classes = line.cssClass;
  if (!line.alertClass.empty()) {
    classes = line.cssClass.empty()
                  ? nlohmann::ordered_json(line.alertClass)
                  : nlohmann::ordered_json::array({line.cssClass, line.alertClass});
  }
  nlohmann::ordered_json document{{"text", line.text},
                                  {"tooltip", line.tooltip},
                                  {"class", classes},
                                  {"percentage", line.percentage}};
  return documentText(document);
}

}  // namespace korvo::StatusLine
