#pragma once

#include <string>
#include <string_view>

#include "base/words.hpp"
#include "shared/raw_value.hpp"

namespace korvo {

// The host application's dashboard tabs; the raw value is also a deep-link route word.
enum class DashboardTab { ai, memory, awake };

// "ai", "memory", "awake": the raw values, in case order.
inline constexpr Words<DashboardTab, 3> dashboardTabWords{{
    {"ai", DashboardTab::ai},
    {"memory", DashboardTab::memory},
    {"awake", DashboardTab::awake},
}};

// The tab's raw value.
std::string_view rawValue(DashboardTab tab);
// "AI", "Mem", "Awake" (localisable).
std::string shortTitle(DashboardTab tab);
// "AI Usage", "Memory", "Keep Awake": the page's name where there is room (localisable).
std::string title(DashboardTab tab);

template <>
std::optional<DashboardTab> fromRaw<DashboardTab>(std::string_view raw);

template <>
constexpr auto allCases<DashboardTab>() {
  return valuesOf(dashboardTabWords);
}

}  // namespace korvo
