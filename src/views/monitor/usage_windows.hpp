#pragma once

#include <optional>
#include <string>

#include "shared/usage_provider.hpp"
#include "shared/usage_snapshot.hpp"
#include "shared/usage_state.hpp"
#include "shared/usage_window.hpp"
#include "ui/color.hpp"
#include "ui/environment.hpp"

// Which of a provider's windows the usage widget shows, and how.
namespace korvo::UsageWindows {

// The first window titled exactly "Weekly"; none while the provider is disabled or has no usage.
std::optional<UsageWindow> weekly(const UsageState& state);

// The first window titled exactly "5-hour" or "Session", whichever comes first in the list.
std::optional<UsageWindow> fiveHour(const UsageSnapshot& snapshot);

// 100 − usedPercent, raised to 0 when negative (or not a number) and never capped at 100, percent.
double remainingPercent(const UsageWindow& window);

// The remaining percentage as the widget writes it: "58%".
std::string remainingText(const UsageWindow& window);

// Codex in teal, every other provider in orange.
ui::Color tint(UsageProvider provider, const ui::Palette& palette);

}  // namespace korvo::UsageWindows
