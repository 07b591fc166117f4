#pragma once

#include <map>
#include <string>
#include <vector>

#include "base/temperature_text.hpp"
#include "model/memory_entry.hpp"
#include "model/monitor_entry.hpp"
#include "sampling/display_mode.hpp"

// The one-line form of a widget for status bars: what `korvo-widgets status` prints.
namespace korvo::StatusLine {

// One widget's line and the details behind it.
struct Line {
  std::string text;  // the figure alone ("47%", "Codex 58% · Claude 71%", "54°C"), "—" without data
  std::string tooltip;   // the details, one per line, "\n"-separated; may be empty when left out
  std::string cssClass;  // the pressure level's raw value, "stale", "disabled", "unavailable" or ""
  int percentage = 0;    // the figure as a whole percentage 0–100 for a bar's own gauge
  std::string alertClass;  // "warning" or "critical" when a window is past the user's thresholds

  friend bool operator==(const Line&, const Line&) = default;
};

// Whether a line carries its tooltip. The plain figure needs no date texts, whose locale data a
// status bar polling the figure every few seconds would otherwise load each time.
enum class Tooltip { leftOut, included };

// The reading in `mode`; the breakdown, swap, available memory and pressure as the tooltip.
Line memory(const MemoryEntry& entry, DisplayMode mode, Tooltip tooltip);

// What korvo's settings and history add to the usage line.
struct UsageOutlook {
  std::vector<int>
      alertPercents;  // rising: a window at the first is "warning", at the last "critical"
  std::map<std::string, std::string> forecasts;  // by "codex.Weekly": "at this pace …"
};

// Each enabled provider's weekly remaining percentage; the tooltip holds per provider its status
// text and its weekly and 5-hour windows with their reset countdowns against the entry's date and
// their forecasts. Any window of an enabled provider at or past a threshold classes the line.
Line usage(const MonitorEntry& entry, Tooltip tooltip, const UsageOutlook& outlook = {});

// The hottest CPU sensor in whole degrees of `unit`, "stale" when the reading is older than the
// widget's footer allows.
Line temperature(const MonitorEntry& entry, Tooltip tooltip,
                 TemperatureUnit unit = TemperatureUnit::celsius);

// {"text", "tooltip", "class", "percentage"} on one line, as Waybar's custom modules read it;
// "class" is an array when the line has both a state and an alert class.
std::string waybarJson(const Line& line);

}  // namespace korvo::StatusLine
