#pragma once

#include "model/monitor_entry.hpp"
#include "ui/environment.hpp"
#include "ui/view.hpp"

namespace korvo {

// The entry view of the AI-usage (`temperatureOnly` false) and CPU-temperature (true) widgets:
// their content for the environment's family, over the backdrop.
struct MonitorWidgetView {
  MonitorEntry entry;      // the shared snapshot to show and its date
  bool temperatureOnly{};  // fixed by the widget's configuration, never read from data

  ui::View body(const ui::Environment& environment) const;
  friend bool operator==(const MonitorWidgetView&, const MonitorWidgetView&) = default;
};

}  // namespace korvo
