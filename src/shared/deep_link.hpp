#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "shared/dashboard_tab.hpp"
#include "shared/url.hpp"

namespace korvo {

// The route words korvo:// links carry, each with the dashboard tab the host application opens
// for it. "resources" and "usage" are host routes rather than tab names; the widgets tap
// "resources" (memory and temperature), "usage" and "awake".
struct DeepLinkRoute {
  std::string_view word;  // the URL's host part
  DashboardTab tab;       // what the dashboard shows for it
};
inline constexpr std::array<DeepLinkRoute, 5> deepLinkRoutes{{
    {"resources", DashboardTab::memory},
    {"usage", DashboardTab::ai},
    {"awake", DashboardTab::awake},
    {"ai", DashboardTab::ai},
    {"memory", DashboardTab::memory},
}};

// The route of a korvo:// URL's host part; none for a word no route has.
std::optional<DeepLinkRoute> deepLinkRoute(std::string_view word);

// "korvo://" followed by `route` as it stands (no escaping). Only fixed route words are passed,
// so a route that does not make a URL is a programming error: the process stops with a message.
Url deepLinkURL(std::string_view route);

}  // namespace korvo
