#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "shared/dashboard_tab.hpp"

namespace korvo {

// Where the dashboard goes for a korvo:// link: the tab, and the line it shows for a route it
// does not know ("Unknown link: korvo://…"), which then opens the AI tab.
struct DashboardDestination {
  DashboardTab tab = DashboardTab::ai;
  std::optional<std::string> notice;  // shown above the tabs; none for a known route

  friend bool operator==(const DashboardDestination&, const DashboardDestination&) = default;
};

// The destination of `url`. A text that is not a URL of the korvo scheme is the caller's mistake:
// throws UsageError naming it ("not a korvo:// link: https://…").
DashboardDestination dashboardDestination(std::string_view url);

}  // namespace korvo
