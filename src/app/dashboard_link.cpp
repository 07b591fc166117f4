#include "app/dashboard_link.hpp"

#include "base/display_text.hpp"
#include "base/exit_codes.hpp"
#include "base/text.hpp"
#include "shared/app_identity.hpp"
#include "shared/deep_link.hpp"
#include "shared/url.hpp"

namespace korvo {
namespace {

// A query or fragment (korvo://usage?from=widget) does not change where a link leads.
std::string_view withoutQuery(std::string_view url) {
  return url.substr(0, url.find_first_of("?#"));
}

}  // namespace

DashboardDestination dashboardDestination(std::string_view url) {
  const auto parsed = Url::parse(withoutQuery(url));
  if (!parsed || parsed->scheme != AppIdentity::urlScheme) {
    throw UsageError("not a korvo:// link: \"" + displayText(url) + "\"; valid: " + deepLinkList());
  }
  if (const auto tab = deepLinkTab(parsed->host)) return {*tab, std::nullopt};
  return {DashboardTab::ai, _("Unknown link: ") + displayText(url)};
}

}  // namespace korvo
