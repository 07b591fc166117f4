#include "desktop/core/arrangement.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

#include "base/c_format.hpp"

namespace korvo::desktop {
namespace {

// Whether two windows come closer than `gap` to each other.
bool overlaps(const ui::Rect& first, const ui::Rect& second, double gap) {
  return first.x < second.maxX() + gap && second.x < first.maxX() + gap &&
         first.y < second.maxY() + gap && second.y < first.maxY() + gap;
}

bool inside(const ui::Rect& window, const ui::Rect& area) {
  return window.x >= area.x && window.y >= area.y && window.maxX() <= area.maxX() &&
         window.maxY() <= area.maxY();
}

// `origin` on one axis moved inside the area; the leading edge wins when the window is the larger.
double within(double origin, double length, double start, double areaLength) {
  return std::max(start, std::min(origin, start + areaLength - length));
}

ui::Point within(ui::Point origin, ui::Size size, const ui::Rect& area) {
  return {within(origin.x, size.width, area.x, area.width),
          within(origin.y, size.height, area.y, area.height)};
}

bool isFree(const ui::Rect& window, const std::vector<ui::Rect>& taken, double gap) {
  return std::none_of(taken.begin(), taken.end(),
                      [&](const ui::Rect& other) { return overlaps(window, other, gap); });
}

// The place nearest `wanted` inside the area that covers no taken window: `wanted` itself, or
// beside one of the taken windows on either axis. Nothing when none of those is free.
std::optional<ui::Point> nearestFree(ui::Point wanted, ui::Size size, const ui::Rect& area,
                                     const std::vector<ui::Rect>& taken) {
  std::vector<ui::Point> candidates{wanted};
  for (const auto& other : taken) {
    candidates.push_back({other.maxX() + placementSpacing, wanted.y});
    candidates.push_back({other.x - placementSpacing - size.width, wanted.y});
    candidates.push_back({wanted.x, other.maxY() + placementSpacing});
    candidates.push_back({wanted.x, other.y - placementSpacing - size.height});
  }
  std::optional<ui::Point> best;
  double bestDistance = 0;
  for (const auto& candidate : candidates) {
    const ui::Point origin = within(candidate, size, area);
    const ui::Rect window{origin.x, origin.y, size.width, size.height};
    if (!inside(window, area) || !isFree(window, taken, 0)) continue;
    const double distance = std::hypot(origin.x - wanted.x, origin.y - wanted.y);
    if (!best || distance < bestDistance) {
      best = origin;
      bestDistance = distance;
    }
  }
  return best;
}

// One corner's stack. Lengths are logical pixels measured inward from the corner.
struct Column {
  double margin = 0;  // from both edges of the corner
  double offset = 0;  // from the corner's side edge to the current column's near side
  double along = 0;   // from the corner's top or bottom edge to where the next window goes
  double width = 0;   // the widest window in the current column
};

// The first free place for a window of `size` in its corner's columns, wrapping inward; nothing
// when the columns reach the far side of the work area first.
std::optional<ui::Point> stack(Column& column, ScreenAnchor anchor, ui::Size size,
                               const ui::Rect& area, const std::vector<ui::Rect>& taken) {
  const bool right = anchor == ScreenAnchor::topRight || anchor == ScreenAnchor::bottomRight;
  const bool bottom = anchor == ScreenAnchor::bottomLeft || anchor == ScreenAnchor::bottomRight;
  while (true) {
    const double x = right ? area.maxX() - column.offset - size.width : area.x + column.offset;
    if (x < area.x || x + size.width > area.maxX()) return std::nullopt;
    if (column.along + size.height > area.height - column.margin) {
      // A window taller than the whole column fits in no column.
      if (column.along == column.margin && column.width == 0) return std::nullopt;
      // Past the widest window of this column; past this one when windows of other corners took
      // the whole column.
      column.offset += (column.width > 0 ? column.width : size.width) + placementSpacing;
      column.along = column.margin;
      column.width = 0;
      continue;
    }
    const double y = bottom ? area.maxY() - column.along - size.height : area.y + column.along;
    const ui::Rect window{x, y, size.width, size.height};
    const auto blocker = std::find_if(taken.begin(), taken.end(), [&](const ui::Rect& other) {
      return overlaps(window, other, placementSpacing);
    });
    if (blocker != taken.end()) {
      // Past the window in the way, further along the same column.
      column.along =
          placementSpacing + (bottom ? area.maxY() - blocker->y : blocker->maxY() - area.y);
      continue;
    }
    column.along += size.height + placementSpacing;
    column.width = std::max(column.width, size.width);
    return ui::Point{x, y};
  }
}

// Where an anchored window goes when its columns are full: its corner.
ui::Point cornerOrigin(const Placement& placement, ui::Size size, const ui::Rect& area) {
  const bool right =
      placement.anchor == ScreenAnchor::topRight || placement.anchor == ScreenAnchor::bottomRight;
  const bool bottom =
      placement.anchor == ScreenAnchor::bottomLeft || placement.anchor == ScreenAnchor::bottomRight;
  return {right ? area.maxX() - placement.margin - size.width : area.x + placement.margin,
          bottom ? area.maxY() - placement.margin - size.height : area.y + placement.margin};
}

}  // namespace

ui::Size cardSize(ui::WidgetFamily family, double scale) {
  const auto points = ui::familySize(family);
  return {std::ceil(points.width * scale), std::ceil(points.height * scale)};
}

Arrangement arrangeWindows(const std::vector<Placement>& placements,
                           const std::vector<ui::Size>& sizes, ui::Rect workArea) {
  Arrangement arrangement;
  const std::size_t count = std::min(placements.size(), sizes.size());
  arrangement.origins.resize(count);
  std::vector<ui::Rect> taken;
  const auto settle = [&](std::size_t index, ui::Point origin) {
    arrangement.origins[index] = origin;
    taken.push_back({origin.x, origin.y, sizes[index].width, sizes[index].height});
  };
  const auto relative = [&](ui::Point point) {
    return ui::Point{point.x - workArea.x, point.y - workArea.y};
  };
  // Positions first: the user put those cards there, and the columns flow around them.
  for (std::size_t index = 0; index < count; ++index) {
    const auto& placement = placements[index];
    if (!placement.position) continue;
    const ui::Size size = sizes[index];
    const ui::Point wanted{workArea.x + placement.position->x, workArea.y + placement.position->y};
    const ui::Point inArea = within(wanted, size, workArea);
    if (inArea != wanted) {
      const auto to = relative(inArea);
      arrangement.moved.push_back(
          cFormat("%s at %g, %g lies outside the work area (%g, %g, %g x %g); moved to %g, %g",
                  placement.kind.c_str(), placement.position->x, placement.position->y, workArea.x,
                  workArea.y, workArea.width, workArea.height, to.x, to.y));
    }
    const auto free = nearestFree(inArea, size, workArea, taken);
    if (!free) arrangement.fits = false;
    if (free && *free != inArea) {
      const auto from = relative(inArea);
      const auto to = relative(*free);
      arrangement.moved.push_back(
          cFormat("%s at %g, %g would cover another widget; moved to %g, %g",
                  placement.kind.c_str(), from.x, from.y, to.x, to.y));
    }
    settle(index, free.value_or(inArea));
  }
  std::map<ScreenAnchor, Column> columns;
  for (std::size_t index = 0; index < count; ++index) {
    const auto& placement = placements[index];
    if (placement.position) continue;
    const ui::Size size = sizes[index];
    auto& column = columns
                       .try_emplace(placement.anchor,
                                    Column{placement.margin, placement.margin, placement.margin, 0})
                       .first->second;
    if (const auto origin = stack(column, placement.anchor, size, workArea, taken)) {
      settle(index, *origin);
      continue;
    }
    arrangement.fits = false;
    const ui::Point corner = cornerOrigin(placement, size, workArea);
    const ui::Point origin = within(corner, size, workArea);
    const auto from = relative(corner);
    const auto to = relative(origin);
    arrangement.moved.push_back(
        cFormat("%s at %g, %g does not fit in the work area (%g, %g, %g x %g) beside the others; "
                "placed at %g, %g",
                placement.kind.c_str(), from.x, from.y, workArea.x, workArea.y, workArea.width,
                workArea.height, to.x, to.y));
    settle(index, origin);
  }
  return arrangement;
}

FittedArrangement arrangeToFit(const std::vector<Placement>& placements, double scale,
                               ui::Rect workArea) {
  constexpr int steps = 16;
  constexpr int smallestStep = 4;  // a quarter of the scale asked for
  FittedArrangement fitted;
  for (int step = steps; step >= smallestStep; --step) {
    fitted.scale = scale * step / steps;
    fitted.sizes.clear();
    for (const auto& placement : placements) {
      fitted.sizes.push_back(cardSize(placement.family, fitted.scale));
    }
    fitted.arrangement = arrangeWindows(placements, fitted.sizes, workArea);
    if (fitted.arrangement.fits) break;
  }
  return fitted;
}

}  // namespace korvo::desktop
