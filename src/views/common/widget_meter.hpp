#pragma once

#include <optional>

#include "ui/color.hpp"
#include "ui/environment.hpp"
#include "ui/view.hpp"

namespace korvo {

// A 6-point capsule bar of the full offered width showing `fraction`. The rendering mode comes
// from the environment.
struct WidgetMeter {
  double fraction = 0;                           // the filled share, nominally 0…1, kept as given
  std::optional<ui::Color> tint = std::nullopt;  // fill colour; absent = the palette's teal

  // Track: primary at 0.09 (accented: white at 0.22). Fill: width × clamp(fraction) in `tint`
  // (accented: white), the widget's accent group.
  ui::View body(const ui::Environment& environment) const;
  friend bool operator==(const WidgetMeter&, const WidgetMeter&) = default;
};

}  // namespace korvo
