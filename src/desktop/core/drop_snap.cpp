#include "desktop/core/drop_snap.hpp"

#include <algorithm>
#include <cmath>
#include <optional>

#include "desktop/core/arrangement.hpp"
#include "desktop/core/placement.hpp"

namespace korvo::desktop {
namespace {

// One axis of a drop: where the card's leading edge lands, from the area's start.
struct Axis {
  double origin;  // the leading edge as dropped
  double length;  // the card's length on this axis
  double start;   // the work area's leading edge
  double areaLength;
};

// The candidate nearest `axis.origin` within dropPull, else the grid line nearest it.
double settle(const Axis& axis, const std::vector<double>& candidates) {
  std::optional<double> nearest;
  for (const double candidate : candidates) {
    const double distance = std::abs(candidate - axis.origin);
    if (distance <= dropPull && (!nearest || distance < std::abs(*nearest - axis.origin))) {
      nearest = candidate;
    }
  }
  const double settled =
      nearest.value_or(axis.start + std::round((axis.origin - axis.start) / dropGrid) * dropGrid);
  return std::clamp(settled, axis.start,
                    std::max(axis.start, axis.start + axis.areaLength - axis.length));
}

// Leading edges on one axis that line a card of `length` up with a card from `near` to `far`:
// both leading edges, both trailing edges, and beside it on either side.
void addEdges(std::vector<double>& candidates, double near, double far, double length) {
  candidates.insert(candidates.end(),
                    {near, far - length, far + placementSpacing, near - placementSpacing - length});
}

}  // namespace

ui::Point snapDrop(ui::Point origin, ui::Size size, const std::vector<ui::Rect>& others,
                   ui::Rect workArea) {
  std::vector<double> xs{workArea.x + defaultPlacementMargin,
                         workArea.maxX() - defaultPlacementMargin - size.width};
  std::vector<double> ys{workArea.y + defaultPlacementMargin,
                         workArea.maxY() - defaultPlacementMargin - size.height};
  for (const auto& other : others) {
    addEdges(xs, other.x, other.maxX(), size.width);
    addEdges(ys, other.y, other.maxY(), size.height);
  }
  const double x = settle({origin.x, size.width, workArea.x, workArea.width}, xs);
  const double y = settle({origin.y, size.height, workArea.y, workArea.height}, ys);
  return {x - workArea.x, y - workArea.y};
}

}  // namespace korvo::desktop
