#include "app/dashboard_link.hpp"

#include "base/exit_codes.hpp"
#include "base/text.hpp"
#include "shared/app_identity.hpp"
#include "shared/deep_link.hpp"
#include "shared/url.hpp"

namespace korvo {

DashboardDestination dashboardDestination(std::string_view url) {
  const auto parsed = Url::parse(url);
  if (!parsed || parsed->scheme != AppIdentity::urlScheme) {
    throw UsageError("not a korvo:// link: \"" + std::string(url) + "\"; valid: " + deepLinkList());
  }
  if (const auto tab = deepLinkTab(parsed->host)) return {*tab, std::nullopt};
  return {DashboardTab::ai, _("Unknown link: ") + std::string(url)};
}

}  // namespace korvo
