#pragma once

#include <string>
#include <vector>

#include "desktop/core/placement.hpp"
#include "extension/widget_configuration.hpp"

namespace korvo::desktop {

// The bundle's configurations, built once for the process.
const std::vector<WidgetConfiguration>& widgets();

// "valid kinds: memory, awake, … (or the full kind, …)", for usage errors.
std::string validKinds();

// The bundle's kinds and families, as placements look them up; `widgets` must outlive it.
KindLookup kindLookup(const std::vector<WidgetConfiguration>& widgets);

}  // namespace korvo::desktop
