#pragma once

#include <functional>
#include <nlohmann/json.hpp>

#include "base/date.hpp"
#include "model/timeline.hpp"
#include "ui/environment.hpp"
#include "ui/view.hpp"

namespace korvo {

// A timeline entry of any widget together with its configuration's view, so that hosts and tools
// treat every widget alike.
struct AnyEntry {
  Date date;  // when the entry becomes current
  // The entry as tools see it: {"date": …, "memory": {…}|null} or {"date": …, "snapshot": …}.
  std::function<nlohmann::ordered_json()> toJson;
  // The configuration's view of this entry in `environment` (family, scheme, rendering mode…).
  std::function<ui::View(const ui::Environment& environment)> view;
};

// A timeline of type-erased entries with its reload policy.
using AnyTimeline = Timeline<AnyEntry>;

}  // namespace korvo
