#include "views/common/widget_meter.hpp"

namespace korvo {

ui::View WidgetMeter::body(const ui::Environment& environment) const {
  const ui::Palette palette = environment.palette();
  if (environment.renderingMode == ui::RenderingMode::accented) {
    return ui::meter(fraction, ui::Color::white(0.22), ui::Color::white());
  }
  return ui::meter(fraction, palette.primary.opacity(0.09), tint.value_or(palette.teal));
}

}  // namespace korvo
