#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "model/monitor_entry.hpp"
#include "support/ui/view_tree_query.hpp"

// Building blocks for monitor entries in the tests.
namespace korvo::viewtest {

inline UsageWindow window(std::string title, double usedPercent) {
  return UsageWindow{std::move(title), usedPercent, testNow.addingSeconds(7200)};
}

// An enabled provider whose usage was fetched `ageSeconds` before now.
inline UsageState enabledWith(std::vector<UsageWindow> windows, double ageSeconds = 240) {
  UsageState state;
  state.enabled = true;
  state.snapshot = UsageSnapshot{std::move(windows), testNow.addingSeconds(-ageSeconds), {}};
  return state;
}

inline WidgetSnapshot snapshotWith(UsageState codex, UsageState claude) {
  WidgetSnapshot snapshot;
  snapshot.date = testNow;
  snapshot.codex = std::move(codex);
  snapshot.claude = std::move(claude);
  return snapshot;
}

inline MonitorEntry entryWith(std::optional<WidgetSnapshot> snapshot) {
  return MonitorEntry{testNow, std::move(snapshot)};
}

}  // namespace korvo::viewtest
