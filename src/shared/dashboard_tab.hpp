#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>

#include "shared/raw_value.hpp"

namespace korvo {

// The host application's dashboard tabs; the raw value is also a deep-link route word.
enum class DashboardTab { ai, memory, awake };

// "ai", "memory", "awake".
std::string_view rawValue(DashboardTab tab);
// "AI", "Mem", "Awake" (localisable).
std::string shortTitle(DashboardTab tab);

template <>
std::optional<DashboardTab> fromRaw<DashboardTab>(std::string_view raw);

template <>
constexpr auto allCases<DashboardTab>() {
  return std::array{DashboardTab::ai, DashboardTab::memory, DashboardTab::awake};
}

// The short titles in case order.
inline constexpr std::array<std::string_view, 3> dashboardTabShortTitles{"AI", "Mem", "Awake"};

// Every ordering of the three tabs, in lexicographic order of case position.
inline constexpr std::array<std::array<DashboardTab, 3>, 6> dashboardTabOrderings{{
    {DashboardTab::ai, DashboardTab::memory, DashboardTab::awake},
    {DashboardTab::ai, DashboardTab::awake, DashboardTab::memory},
    {DashboardTab::memory, DashboardTab::ai, DashboardTab::awake},
    {DashboardTab::memory, DashboardTab::awake, DashboardTab::ai},
    {DashboardTab::awake, DashboardTab::ai, DashboardTab::memory},
    {DashboardTab::awake, DashboardTab::memory, DashboardTab::ai},
}};

}  // namespace korvo

// Hashes as its raw value string does.
template <>
struct std::hash<korvo::DashboardTab> {
  std::size_t operator()(korvo::DashboardTab tab) const noexcept {
    return std::hash<std::string_view>{}(korvo::rawValue(tab));
  }
};
