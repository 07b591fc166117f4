#pragma once

#include <optional>
#include <string>

#include "shared/usage_snapshot.hpp"

namespace korvo {

// Age in seconds beyond which a provider's usage counts as stale (exactly this age is not stale).
inline constexpr double usageStalenessLimitSeconds = 900;

// Everything the host knows about one provider; the default is the disabled state.
struct UsageState {
  bool enabled = false;                   // the user switched the provider on in the host
  std::optional<UsageSnapshot> snapshot;  // the last fetched usage, absent while there is none
  std::optional<std::string> message;     // a host text that replaces the status line
  bool isRefreshing = false;              // the host is fetching right now

  // True when a snapshot exists and clock::now() − fetchedAt exceeds the staleness limit.
  bool isStale() const;
  // The status line ("Updated 1:44 AM · Stale", "Refreshing…", …), read against clock::now().
  std::string statusText() const;

  friend bool operator==(const UsageState&, const UsageState&) = default;
};

}  // namespace korvo
