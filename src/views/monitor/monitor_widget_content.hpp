#pragma once

#include "model/monitor_entry.hpp"
#include "ui/environment.hpp"
#include "ui/view.hpp"

namespace korvo {

// The content shared by the AI-usage and CPU-temperature widgets: the temperature layout when
// `temperatureOnly`, else the medium or small usage layout by family; filling the widget from its
// leading edge, with the widget's tap URL.
struct MonitorWidgetContent {
  MonitorEntry entry;         // the shared snapshot to show and its date
  bool temperatureOnly{};     // the temperature layout, whatever the family
  ui::WidgetFamily family{};  // medium selects the usage cards, every other the usage rows

  ui::View body(const ui::Environment& environment) const;
  friend bool operator==(const MonitorWidgetContent&, const MonitorWidgetContent&) = default;
};

}  // namespace korvo
