#pragma once

#include <string>

#include "model/memory_entry.hpp"
#include "ui/environment.hpp"
#include "ui/view.hpp"

namespace korvo {

// The memory widget's content: the primary column (header, percentage, meter, gigabytes, time of
// day) and, in the medium family, a detail column with the breakdown and the keep-awake link.
// A click anywhere opens "korvo://resources".
struct MemoryWidgetContent {
  MemoryEntry entry;          // the reading to show and its date
  ui::WidgetFamily family{};  // medium adds the detail column

  ui::View body(const ui::Environment& environment) const;
  friend bool operator==(const MemoryWidgetContent&, const MemoryWidgetContent&) = default;
};

// "Normal pressure", "Elevated pressure", "High pressure" or "Pressure unavailable".
std::string pressureLine(MemoryPressure pressure);

}  // namespace korvo
