#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "ui/environment.hpp"
#include "ui/geometry.hpp"

namespace korvo::desktop {

// The screen corner a widget is pinned to; widgets sharing a corner stack into a column.
enum class ScreenAnchor { topLeft, topRight, bottomLeft, bottomRight };

// Distance from the screen edges when a placement names none, logical pixels.
inline constexpr double defaultPlacementMargin = 16;

// Where one widget sits on the desktop.
struct Placement {
  std::string kind{};  // full widget kind, "com.tessmoor.Korvo.memory"
  ui::WidgetFamily family = ui::WidgetFamily::systemSmall;
  // Top-left corner in logical pixels from the work area's top-left; absent = at `anchor`.
  std::optional<ui::Point> position = std::nullopt;
  ScreenAnchor anchor = ScreenAnchor::topRight;
  double margin = defaultPlacementMargin;  // logical pixels from both edges of the corner
  // The monitor's connector name ("DP-1"); absent, or not connected = the primary monitor.
  std::optional<std::string> output = std::nullopt;
  friend bool operator==(const Placement&, const Placement&) = default;
};

// What the host knows of a kind: its full name and the families it offers.
struct KindFamilies {
  std::string kind{};
  std::vector<ui::WidgetFamily> families{};
};

// Resolves a full kind or its last word ("memory"); nothing for an unknown kind.
using KindLookup = std::function<std::optional<KindFamilies>(std::string_view)>;

// A one-line description of what is wrong, naming the key ("[1].family: …").
struct PlacementError {
  std::string message{};
  friend bool operator==(const PlacementError&, const PlacementError&) = default;
};

using PlacementsResult = std::variant<std::vector<Placement>, PlacementError>;

// Reads the placements document: a JSON array of {kind, family?, position {x, y}? | anchor?,
// margin?, output?}. Family defaults to the kind's first; anchor to "top-right"; margin to 16.
PlacementsResult parsePlacements(std::string_view json, const KindLookup& lookup);

// `--widget memory:medium`: a kind and an optional family, stacked at the top-right corner.
PlacementsResult parseWidgetArguments(const std::vector<std::string>& arguments,
                                      const KindLookup& lookup);

// Memory, Keep Awake, AI Usage (medium) and CPU Temperature in a column at the right edge.
std::vector<Placement> defaultPlacements(const KindLookup& lookup);

// "top-left", "top-right", "bottom-left", "bottom-right".
std::optional<ScreenAnchor> anchorFromName(std::string_view name);
std::string_view anchorName(ScreenAnchor anchor);

// The placements document for `placements`, as parsePlacements reads it back: full kinds,
// families and anchors by their words, the margin and output only where they are not the
// defaults.
std::string placementsText(const std::vector<Placement>& placements);

}  // namespace korvo::desktop
