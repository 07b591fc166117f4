#pragma once

#include <string>
#include <vector>

#include "desktop/core/placement.hpp"
#include "ui/environment.hpp"
#include "ui/geometry.hpp"

namespace korvo::desktop {

// Gap between two cards a column stacks or wraps, logical pixels.
inline constexpr double placementSpacing = 12;

// A card's window in logical pixels at `scale`: the family's points times the scale, rounded up
// to whole pixels.
ui::Size cardSize(ui::WidgetFamily family, double scale);

// Where the windows go, and a line for each one that had to be moved to be seen.
struct Arrangement {
  std::vector<ui::Point> origins{};  // top-left corners, logical pixels from the screen origin
  std::vector<std::string> moved{};  // "com.tessmoor.Korvo.usage at 2000, 400 lies outside …"
  bool fits = true;                  // every window inside the work area and clear of every other
};

// The windows of `sizes` (one per placement) inside `workArea`. Positioned ones go where they say,
// or to the nearest place that covers no other; then each corner's windows stack from it in a
// column aligned to that corner's edge, in the order given, and wrap into the next column inward
// where the work area or another window stops the column. A window that finds no room is put at
// its corner (or position) moved inside the work area, and `fits` says so.
Arrangement arrangeWindows(const std::vector<Placement>& placements,
                           const std::vector<ui::Size>& sizes, ui::Rect workArea);

// An arrangement of the placements' cards and the scale they are drawn at.
struct FittedArrangement {
  double scale = 1;               // logical pixels per point
  std::vector<ui::Size> sizes{};  // each card's window at that scale
  Arrangement arrangement{};
};

// The cards at `scale` or, when they do not all fit the work area side by side, at the largest
// scale below it (in sixteenths of it, down to a quarter) at which they do.
FittedArrangement arrangeToFit(const std::vector<Placement>& placements, double scale,
                               ui::Rect workArea);

}  // namespace korvo::desktop
