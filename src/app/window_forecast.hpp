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

}  // namespace korvo
