#include "views/monitor/usage_windows.hpp"

#include <cmath>

#include "base/c_format.hpp"

namespace korvo::UsageWindows {

std::optional<UsageWindow> weekly(const UsageState& state) {
  if (!state.enabled || !state.snapshot) return std::nullopt;
  for (const UsageWindow& window : state.snapshot->windows) {
    if (window.title == UsageWindowTitle::weekly) return window;
  }
  return std::nullopt;
}

std::optional<UsageWindow> fiveHour(const UsageSnapshot& snapshot) {
  for (const UsageWindow& window : snapshot.windows) {
    if (window.title == UsageWindowTitle::fiveHour || window.title == UsageWindowTitle::session)
      return window;
  }
  return std::nullopt;
}

double remainingPercent(const UsageWindow& window) {
  const double remaining = 100 - window.usedPercent;
  if (std::isnan(remaining) || remaining < 0) return 0;
  return remaining;
}

std::string remainingText(const UsageWindow& window) {
  return cFormat("%.0f%%", remainingPercent(window));
}

ui::Color tint(UsageProvider provider, const ui::Palette& palette) {
  return provider == UsageProvider::codex ? palette.teal : palette.orange;
}

}  // namespace korvo::UsageWindows
