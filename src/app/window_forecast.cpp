#include "app/window_forecast.hpp"

#include "base/c_format.hpp"
#include "base/date_text.hpp"
#include "base/text.hpp"

namespace korvo {

std::optional<forecast::Forecast> recentForecast(const HistoryStore& history,
                                                 const std::string& metric,
                                                 const UsageWindow& window, Date now) {
  // Twice the pace's span, so the reading that opens the span is there however the publications
  // fell.
  const auto readings = history.rows(now.addingSeconds(-2 * forecast::paceSeconds), now, metric);
  return forecast::forecast(readings, window, now);
}

std::string forecastText(const forecast::Forecast& found, Date now) {
  if (found.exhaustsAt)
    return _("at this pace runs out ") + shortTimeOrDateTime(*found.exhaustsAt, now);
  return _("at this pace ") + cFormat("%.0f%%", found.usedAtReset.value_or(0)) +
         _(" used at the reset");
}

}  // namespace korvo
