#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/forecast.hpp"
#include "app/settings.hpp"
#include "base/date.hpp"
#include "shared/dashboard_tab.hpp"
#include "shared/usage_window.hpp"

// Which desktop notifications a publication's figures call for: a window past one of the user's
// thresholds, a window that runs out well before its reset, a CPU hotter than the user allows.
namespace korvo::usage_alerts {

// A runs-out notice needs at least this much time between running out and the reset.
inline constexpr double runsOutMarginSeconds = 3600;
// A CPU that set off the alert must cool this far below the line before it can again, so a
// reading that wavers around the line does not notify every minute.
inline constexpr double coolingDegrees = 5;

struct Alert {
  std::string summary;  // "Codex weekly: 82 % used"
  std::string body;     // what it means and when the window resets
  DashboardTab tab;     // the tab its action opens

  friend bool operator==(const Alert&, const Alert&) = default;
};

// A notice already given for one window period.
struct Given {
  std::string metric;            // "codex.Weekly"
  std::optional<Date> resetsAt;  // the reset the window named then: its period
  int percent = 0;               // the threshold; 0 for the runs-out notice

  friend bool operator==(const Given&, const Given&) = default;
};

// What was notified already, kept across restarts so none repeats.
struct Memory {
  std::vector<Given> given;
  bool hot = false;  // the CPU is above the alert's line, and was said to be

  friend bool operator==(const Memory&, const Memory&) = default;
};

// One provider window as a publication read it.
struct WindowReading {
  std::string provider;  // "Codex", "Claude"
  std::string metric;    // "codex.Weekly", the history's name for it
  UsageWindow window;
  std::optional<forecast::Forecast> forecast;
};

struct Readings {
  std::vector<WindowReading> windows;
  std::optional<double> celsius;  // the hottest CPU sensor
  Date now;
};

// The notices `readings` call for under `settings`, each threshold once per window period (the
// highest newly crossed speaks for the lower ones crossed with it), the runs-out notice once per
// period, the temperature once each time the CPU heats past the line. `memory` is brought up to
// date; periods that have ended are forgotten.
std::vector<Alert> check(const Readings& readings, const Settings& settings, Memory& memory);

// "Codex weekly": how a notice or a graph names a window.
std::string windowName(const std::string& provider, const std::string& title);

}  // namespace korvo::usage_alerts
