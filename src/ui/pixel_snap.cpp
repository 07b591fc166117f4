#include "ui/pixel_snap.hpp"

#include <cmath>

namespace korvo::ui {

void snapToPixels(LayoutNode& node, double scale) {
  if (!(scale > 0) || !std::isfinite(scale)) return;
  auto snap = [scale](double value) { return std::round(value * scale) / scale; };
  const double left = snap(node.frame.x);
  const double top = snap(node.frame.y);
  const double right = snap(node.frame.maxX());
  const double bottom = snap(node.frame.maxY());
  node.frame = {left, top, right - left, bottom - top};
  for (LayoutNode& child : node.children) snapToPixels(child, scale);
}

}  // namespace korvo::ui
