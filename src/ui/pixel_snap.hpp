#pragma once

#include "ui/layout_node.hpp"

namespace korvo::ui {

// Moves every edge of every frame in `node` to the nearest device pixel of `scale` (pixels per
// point), so that bars and hairlines stay crisp. Done once, after layout.
void snapToPixels(LayoutNode& node, double scale);

}  // namespace korvo::ui
