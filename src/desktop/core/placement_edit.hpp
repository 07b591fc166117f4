#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "desktop/core/placement.hpp"

namespace korvo::desktop {

// What a card's menu or a drag changes about the placements.
struct SetFamily {
  ui::WidgetFamily family = ui::WidgetFamily::systemSmall;
};
struct MoveToCorner {
  ScreenAnchor anchor = ScreenAnchor::topRight;
};
struct MoveToPosition {
  ui::Point position{};                              // logical pixels from the work area's top-left
  std::optional<std::string> output = std::nullopt;  // the monitor it was dropped on
};
struct AddWidget {
  std::string kind{};  // full kind
};
struct RemoveWidget {};

using PlacementEdit =
    std::variant<SetFamily, MoveToCorner, MoveToPosition, AddWidget, RemoveWidget>;

// `placements` with `edit` made to the one at `index`. A family the kind does not offer, an
// unknown kind or an index past the end changes nothing. A widget added goes to the edited card's
// corner (the top-right one beside a positioned card), in its kind's first family, on its monitor.
std::vector<Placement> editPlacements(std::vector<Placement> placements, std::size_t index,
                                      const PlacementEdit& edit, const KindLookup& lookup);

}  // namespace korvo::desktop
