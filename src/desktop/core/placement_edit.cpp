#include "desktop/core/placement_edit.hpp"

#include <algorithm>

namespace korvo::desktop {
namespace {

// Applies one kind of edit to the placement at `index`.
struct Editor {
  std::vector<Placement>& placements;
  std::size_t index;
  const KindLookup& lookup;

  void operator()(const SetFamily& edit) const {
    auto& placement = placements[index];
    const auto known = lookup(placement.kind);
    if (!known || std::find(known->families.begin(), known->families.end(), edit.family) ==
                      known->families.end()) {
      return;
    }
    placement.family = edit.family;
  }

  void operator()(const MoveToCorner& edit) const {
    auto& placement = placements[index];
    placement.position.reset();
    placement.anchor = edit.anchor;
  }

  void operator()(const MoveToPosition& edit) const {
    auto& placement = placements[index];
    placement.position = edit.position;
    placement.output = edit.output;
  }

  void operator()(const AddWidget& edit) const {
    const auto known = lookup(edit.kind);
    if (!known || known->families.empty()) return;
    const auto& beside = placements[index];
    Placement added;
    added.kind = known->kind;
    added.family = known->families.front();
    added.anchor = beside.position ? ScreenAnchor::topRight : beside.anchor;
    added.margin = beside.position ? defaultPlacementMargin : beside.margin;
    added.output = beside.output;
    placements.push_back(std::move(added));
  }

  void operator()(const RemoveWidget&) const {
    placements.erase(placements.begin() + static_cast<std::ptrdiff_t>(index));
  }
};

}  // namespace

std::vector<Placement> editPlacements(std::vector<Placement> placements, std::size_t index,
                                      const PlacementEdit& edit, const KindLookup& lookup) {
  if (index >= placements.size()) return placements;
  std::visit(Editor{placements, index, lookup}, edit);
  return placements;
}

}  // namespace korvo::desktop
