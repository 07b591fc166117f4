#pragma once

#include <vector>

#include "model/monitor_entry.hpp"
#include "shared/usage_provider.hpp"
#include "shared/usage_state.hpp"
#include "ui/environment.hpp"
#include "ui/view.hpp"

// The AI-usage widget's content: Codex, then Claude, each with what is left of its quota.
namespace korvo::UsageContent {

// The provider's state in the entry's snapshot; the disabled default when there is no snapshot.
UsageState state(const MonitorEntry& entry, UsageProvider provider);

// The small layout's items, top to bottom: header, Codex row, Claude row, footer hint.
std::vector<ui::View> smallLayout(const MonitorEntry& entry, const ui::Environment& environment);

// The medium layout's items, leading to trailing: Codex card, divider, Claude card.
std::vector<ui::View> mediumLayout(const MonitorEntry& entry, const ui::Environment& environment);

}  // namespace korvo::UsageContent
