#pragma once

#include "ui/widget_layout.hpp"

// Cairo's context type, declared here so that users of the painter need not include Cairo.
using cairo_t = struct _cairo;

namespace korvo::render {

// Paints the card (clipped to its rounded rectangle) onto `cr` at the context's current origin.
// The context's transformation must already map points to device pixels; text is drawn unhinted,
// so it is sharp at whatever scale that transformation sets.
void paintWidget(cairo_t* cr, const ui::WidgetLayout& widget);

}  // namespace korvo::render
