#pragma once

#include <optional>

#include "base/date.hpp"
#include "sampling/memory_snapshot.hpp"

namespace korvo {

// What the memory provider hands to the memory view.
struct MemoryEntry {
  Date date;                             // when the entry becomes current: when it was built
  std::optional<MemorySnapshot> memory;  // the reading to show; absent when none could be taken

  friend bool operator==(const MemoryEntry&, const MemoryEntry&) = default;
};

}  // namespace korvo
