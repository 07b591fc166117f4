#pragma once

#include <optional>

#include "base/date.hpp"
#include "shared/widget_snapshot.hpp"

namespace korvo {

// What the monitor provider hands to the usage and temperature views.
struct MonitorEntry {
  Date date;                               // when the entry becomes current: when it was built
  std::optional<WidgetSnapshot> snapshot;  // the shared file's content; absent when unreadable

  friend bool operator==(const MonitorEntry&, const MonitorEntry&) = default;
};

}  // namespace korvo
