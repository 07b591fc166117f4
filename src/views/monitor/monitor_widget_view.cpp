#include "views/monitor/monitor_widget_view.hpp"

#include "views/common/widget_backdrop.hpp"
#include "views/monitor/monitor_widget_content.hpp"

namespace korvo {

ui::View MonitorWidgetView::body(const ui::Environment& environment) const {
  const ui::View content =
      MonitorWidgetContent{entry, temperatureOnly, environment.family}.body(environment);
  const ui::View backdrop = WidgetBackdrop{}.body(environment);
  if (environment.hostSuppliesContainerBackground) return content.containerBackground(backdrop);
  return content.padding(16).background(backdrop);
}

}  // namespace korvo
