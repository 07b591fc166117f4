#include "views/monitor/monitor_widget_content.hpp"

#include <optional>

#include "shared/url.hpp"
#include "views/monitor/temperature_content.hpp"
#include "views/monitor/usage_content.hpp"

namespace korvo {
namespace {

using ui::HorizontalAlignment;

// Parsed from the literals: the temperature widget shares the memory widget's route, and "usage"
// is a host route word rather than a dashboard tab.
// An unparsable literal would leave the widget without a tap target.
std::optional<Url> tapURL(bool temperatureOnly) {
  return Url::parse(temperatureOnly ? "korvo://resources" : "korvo://usage");
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
  const std::optional<Url> url = tapURL(temperatureOnly);
  return url ? framed.widgetURL(url->string()) : framed;
}

}  // namespace korvo
