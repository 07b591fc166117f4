#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/words.hpp"
#include "shared/dashboard_tab.hpp"
#include "shared/url.hpp"

namespace korvo {

// The route words korvo:// links carry (the URL's host part), each with the dashboard tab the
// host application opens for it, in the order messages list them. "resources" and "usage" are
// host routes rather than tab names; the widgets tap "resources" (memory and temperature), "usage"
// and "awake".
inline constexpr Words<DashboardTab, 5> deepLinkRoutes{{
    {"usage", DashboardTab::ai},
    {"ai", DashboardTab::ai},
    {"resources", DashboardTab::memory},
    {"memory", DashboardTab::memory},
    {"awake", DashboardTab::awake},
}};

// The tab of a korvo:// URL's host part; none for a word no route has.
std::optional<DashboardTab> deepLinkTab(std::string_view word);

// "korvo://usage, korvo://ai, …": every route's link, in order, for messages.
std::string deepLinkList();

// "korvo://" followed by `route` as it stands (no escaping). Only fixed route words are passed,
// so a route that does not make a URL is a programming error: the process stops with a message.
Url deepLinkURL(std::string_view route);

}  // namespace korvo
