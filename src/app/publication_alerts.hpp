#pragma once

#include <iosfwd>
#include <vector>

#include "app/history_store.hpp"
#include "app/settings.hpp"
#include "app/usage_alerts.hpp"
#include "shared/widget_snapshot.hpp"

// The notices a publication's figures call for, with what was given before kept in korvo's
// state.
namespace korvo::publication_alerts {

// Each enabled provider's windows in `snapshot` with their forecasts from `history` (none
// without one), and its CPU temperature, at the snapshot's date.
usage_alerts::Readings readings(const WidgetSnapshot& snapshot, const HistoryStore* history);

// The notices `snapshot` calls for under `settings`; what was given goes to the alerts state.
// Trouble with the history or the state goes to `notes`, one line each.
std::vector<usage_alerts::Alert> raise(const WidgetSnapshot& snapshot, const Settings& settings,
                                       std::ostream& notes);

}  // namespace korvo::publication_alerts
