#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/date.hpp"
#include "shared/usage_window.hpp"

namespace korvo {

// One provider's usage as the host fetched it at one moment.
struct UsageSnapshot {
  std::vector<UsageWindow> windows;   // in the host's order, kept through coding
  Date fetchedAt;                     // when the host fetched the figures
  std::optional<std::string> source;  // where the figures came from, shown in the status line

  friend bool operator==(const UsageSnapshot&, const UsageSnapshot&) = default;
};

}  // namespace korvo
