#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/monitor_entry.hpp"
#include "shared/widget_snapshot.hpp"
#include "ui/environment.hpp"
#include "ui/view.hpp"

// The CPU-temperature widget's content: the hottest sensor's reading, or where to switch it on.
namespace korvo::TemperatureContent {

enum class State {
  reading,      // monitoring on and a temperature present
  unavailable,  // monitoring on but no temperature
  disabled,     // no snapshot, or monitoring off (a stored temperature is not shown)
};

State state(const std::optional<WidgetSnapshot>& snapshot);

// A reading as the widget writes it, whole degrees: "54°C".
std::string degreesText(double celsius);

// The items, top to bottom: header, then the reading, its caption and (with a reading date) the
// last-updated footer; or a title and the settings hint.
std::vector<ui::View> items(const MonitorEntry& entry, const ui::Environment& environment);

}  // namespace korvo::TemperatureContent
