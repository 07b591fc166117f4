#pragma once

#include "base/date.hpp"

namespace korvo {

// What the keep-awake provider hands to its view: only a date, since the card shows nothing that
// changes.
struct AwakeEntry {
  Date date;  // when the entry becomes current: when it was built

  friend bool operator==(const AwakeEntry&, const AwakeEntry&) = default;
};

}  // namespace korvo
