#include "shared/usage_window.hpp"

#include <cmath>
#include <cstdint>

#include "base/c_format.hpp"
#include "base/date_text.hpp"
#include "base/text.hpp"

namespace korvo {
namespace {

// One hundred 365-day years of minutes: the countdown never shows more.
constexpr double maxCountdownMinutes = 52'560'000;

}  // namespace

std::string UsageWindow::remainingSummary() const {
  double remaining = 100 - usedPercent;
  if (std::isnan(remaining) || remaining < 0) remaining = 0;
  return cFormat(_("%s · %s%% left").c_str(), title.c_str(), wholeFigure(remaining).c_str());
}

std::string UsageWindow::resetText() const {
  if (!resetsAt) return _("Reset time unavailable");
  return _("Resets ") + abbreviatedDateShortTime(*resetsAt);
}

std::string UsageWindow::resetCountdown(Date now) const {
  if (!resetsAt) return _("Reset time unavailable");
  const double seconds = resetsAt->secondsSince(now);
  if (!std::isfinite(seconds)) return _("Reset time unavailable");
  if (seconds <= 0) return _("Reset due · refresh");
  const auto minutes = static_cast<std::int64_t>(
      std::min(std::max(std::ceil(seconds / 60), 1.0), maxCountdownMinutes));
  const auto count = [](std::int64_t value) {
    return cFormat("%lld", static_cast<long long>(value));
  };
  if (minutes < 60) return _("Resets in ") + count(minutes) + "m";
  if (minutes < 1440) {
    return _("Resets in ") + count(minutes / 60) + "h " + count(minutes % 60) + "m";
  }
  return _("Resets in ") + count(minutes / 1440) + "d " + count((minutes % 1440) / 60) + "h";
}

}  // namespace korvo
