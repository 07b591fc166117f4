#include "views/common/widget_backdrop.hpp"

namespace korvo {

ui::View WidgetBackdrop::body(const ui::Environment& environment) const {
  if (environment.renderingMode != ui::RenderingMode::fullColor) return {};
  const ui::Palette palette = environment.palette();
  return ui::zstack({
      ui::colorFill(palette.windowBackground),
      ui::linearGradient({{palette.teal.opacity(0.18), 0},
                          {palette.blue.opacity(0.04), 0.5},
                          {ui::Color::clear(), 1}},
                         ui::UnitPoint::topLeading(), ui::UnitPoint::bottomTrailing()),
  });
}

}  // namespace korvo
