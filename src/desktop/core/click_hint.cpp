#include "desktop/core/click_hint.hpp"

#include "base/text.hpp"
#include "shared/app_identity.hpp"
#include "shared/deep_link.hpp"

namespace korvo::desktop {

std::string clickHint(std::string_view url) {
  const std::string prefix = std::string(AppIdentity::urlScheme) + "://";
  if (!url.starts_with(prefix)) return _("Open") + " " + std::string(url);
  std::string_view route = url.substr(prefix.size());
  route = route.substr(0, route.find_first_of("/?#"));
  const auto tab = deepLinkTab(route);
  if (!tab) return _("Open Korvo");
  if (*tab == DashboardTab::ai) return _("Open AI usage in Korvo");
  if (*tab == DashboardTab::awake) return _("Open Keep Awake in Korvo");
  // The Mem tab: memory, CPU load and the CPU temperature.
  return _("Open memory and CPU in Korvo");
}

}  // namespace korvo::desktop
