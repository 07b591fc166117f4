#pragma once

#include "ui/environment.hpp"
#include "ui/view.hpp"

namespace korvo {

// The background behind every widget's content. Its one input, the rendering mode, comes from
// the environment.
struct WidgetBackdrop {
  // Full colour: the window background under a top-leading → bottom-trailing gradient
  // (teal 0.18, blue 0.04, clear). Accented: nothing, so the desktop's tinted card shows.
  ui::View body(const ui::Environment& environment) const;
  friend bool operator==(const WidgetBackdrop&, const WidgetBackdrop&) = default;
};

}  // namespace korvo
