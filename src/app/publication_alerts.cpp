#include "app/publication_alerts.hpp"

#include <ostream>

#include "app/alert_state_file.hpp"
#include "app/history_figures.hpp"
#include "app/publisher.hpp"
#include "app/window_forecast.hpp"

namespace korvo::publication_alerts {

usage_alerts::Readings readings(const WidgetSnapshot& snapshot, const HistoryStore* history) {
  usage_alerts::Readings found{{}, snapshot.temperature, snapshot.date};
  for (const auto& [name, metric, state] : {std::tuple{"Codex", "codex.", &snapshot.codex},
                                            std::tuple{"Claude", "claude.", &snapshot.claude}}) {
    if (!state->enabled || !state->snapshot) continue;
    for (const UsageWindow& window : state->snapshot->windows) {
      const std::string key = metric + window.title;
      found.windows.push_back({name, key, window,
                               history != nullptr
                                   ? recentForecast(*history, key, window, snapshot.date)
                                   : std::nullopt});
    }
  }
  return found;
}

std::vector<usage_alerts::Alert> raise(const WidgetSnapshot& snapshot, const Settings& settings,
                                       std::ostream& notes) {
  if (settings.alertPercents.empty() && settings.temperatureAlert == 0) return {};
  // Forecasts only matter to the runs-out notice, which needs thresholds; the publication has
  // just written the history, which stays open for this.
  usage_alerts::Readings found = readings(snapshot, nullptr);
  if (!settings.alertPercents.empty()) {
    history_figures::withHistory(
        snapshot.date, notes, publisher::historyPatience,
        [&](HistoryStore& history) { found = readings(snapshot, &history); });
  }
  auto memory = alert_state_file::load(notes);
  const auto before = memory;
  auto alerts = usage_alerts::check(found, settings, memory);
  if (memory != before && !alert_state_file::save(memory)) {
    notes << "korvo: cannot keep the alerts given in korvo's state; they may be given again\n";
  }
  return alerts;
}

}  // namespace korvo::publication_alerts
