#include "shared/usage_state.hpp"

#include "base/clock.hpp"
#include "base/date_text.hpp"
#include "base/text.hpp"

namespace korvo {

bool UsageState::isStale() const {
  if (!snapshot) return false;
  return clock::now().secondsSince(snapshot->fetchedAt) > usageStalenessLimitSeconds;
}

std::string UsageState::statusText() const {
  if (!enabled) return _("Enable in Settings to connect your sign-in.");
  if (message) return *message;
  if (isRefreshing) return _("Refreshing…");
  if (!snapshot) return _("Waiting for usage…");
  std::string text = _("Updated ") + shortTime(snapshot->fetchedAt);
  if (snapshot->source) text += " · " + *snapshot->source;
  if (isStale()) text += _(" · Stale");
  return text;
}

}  // namespace korvo
