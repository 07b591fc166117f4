#include "views/memory/memory_widget_view.hpp"

#include "views/common/widget_backdrop.hpp"
#include "views/memory/memory_widget_content.hpp"

namespace korvo {

ui::View MemoryWidgetView::body(const ui::Environment& environment) const {
  const ui::View content = MemoryWidgetContent{entry, environment.family}.body(environment);
  const ui::View backdrop = WidgetBackdrop{}.body(environment);
  if (environment.hostSuppliesContainerBackground) return content.containerBackground(backdrop);
  return content.padding(16).background(backdrop);
}

}  // namespace korvo
