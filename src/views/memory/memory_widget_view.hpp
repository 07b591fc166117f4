#pragma once

#include "model/memory_entry.hpp"
#include "ui/environment.hpp"
#include "ui/view.hpp"

namespace korvo {

// The memory widget's entry view: its content for the environment's family, over the backdrop.
struct MemoryWidgetView {
  MemoryEntry entry;  // the reading to show and its date

  ui::View body(const ui::Environment& environment) const;
  friend bool operator==(const MemoryWidgetView&, const MemoryWidgetView&) = default;
};

}  // namespace korvo
