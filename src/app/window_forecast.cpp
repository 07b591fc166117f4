#include "app/window_forecast.hpp"

namespace korvo {

std::optional<forecast::Forecast> recentForecast(const HistoryStore& history,
                                                 const std::string& metric,
                                                 const UsageWindow& window, Date now) {
  // Twice the pace's span, so the reading that opens the span is there however the publications
  // fell.
  const auto readings = history.rows(now.addingSeconds(-2 * forecast::paceSeconds), now, metric);
  return forecast::forecast(readings, window, now);
}

}  // namespace korvo
