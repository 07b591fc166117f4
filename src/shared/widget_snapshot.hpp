#pragma once

#include <optional>

#include "base/clock.hpp"
#include "base/date.hpp"
#include "shared/usage_state.hpp"

namespace korvo {

// The root record of the shared file that the host application writes for the widgets.
struct WidgetSnapshot {
  Date date = clock::now();             // when the host wrote this snapshot
  std::optional<double> temperature;    // latest CPU temperature, degrees Celsius
  std::optional<Date> temperatureDate;  // when that temperature was read
  bool temperatureEnabled = false;      // the user switched temperature monitoring on
  UsageState codex;                     // usage state of UsageProvider::codex
  UsageState claude;                    // usage state of UsageProvider::claude

  friend bool operator==(const WidgetSnapshot&, const WidgetSnapshot&) = default;
};

}  // namespace korvo
