#include "views/monitor/monitor_widget_content.hpp"

#include "shared/deep_link.hpp"
#include "views/monitor/temperature_content.hpp"
#include "views/monitor/usage_content.hpp"

namespace korvo {
namespace {

using ui::HorizontalAlignment;

// The temperature widget shares the memory widget's route; "usage" is a host route word rather
// than a dashboard tab.
Url tapURL(bool temperatureOnly) {
  return deepLinkURL(temperatureOnly ? "resources" : "usage");
}

}  // namespace

ui::View MonitorWidgetContent::body(const ui::Environment& environment) const {
  ui::View stack;
  if (temperatureOnly) {
    stack =
        ui::vstack(HorizontalAlignment::leading, 6, TemperatureContent::items(entry, environment));
  } else if (family == ui::WidgetFamily::systemMedium) {
    stack =
        ui::hstack(ui::VerticalAlignment::top, 16, UsageContent::mediumLayout(entry, environment));
  } else {
    stack =
        ui::vstack(HorizontalAlignment::leading, 8, UsageContent::smallLayout(entry, environment));
  }
  const ui::View framed = stack.frame(
      {.maxWidth = ui::infinity, .maxHeight = ui::infinity, .alignment = ui::Alignment::leading()});
  return framed.widgetURL(tapURL(temperatureOnly).string());
}

}  // namespace korvo
