#pragma once

#include <optional>
#include <string>

#include "app/forecast.hpp"
#include "app/history_store.hpp"

namespace korvo {

// The forecast of `window` at `now` from the readings `history` holds of `metric`
// ("codex.Weekly") over the recent stretch the pace is taken from.
std::optional<forecast::Forecast> recentForecast(const HistoryStore& history,
                                                 const std::string& metric,
                                                 const UsageWindow& window, Date now);

// "at this pace runs out 3:20 PM" or "at this pace 78% used at the reset".
std::string forecastText(const forecast::Forecast& found, Date now);

}  // namespace korvo
