#include "shared/deep_link.hpp"

#include <cstdio>
#include <cstdlib>

#include "shared/app_identity.hpp"

namespace korvo {

std::optional<DashboardTab> deepLinkTab(std::string_view word) {
  return valueNamed(deepLinkRoutes, word);
}

std::string deepLinkList() {
  return joined(deepLinkRoutes, ", ", [](const Word<DashboardTab>& route) {
    return std::string(AppIdentity::urlScheme) + "://" + std::string(route.word);
  });
}

Url deepLinkURL(std::string_view route) {
  std::string text(AppIdentity::urlScheme);
  text += "://";
  text += route;
  auto url = Url::parse(text);
  if (!url) {
    std::fprintf(stderr, "korvo: deep link does not parse as a URL: %s\n", text.c_str());
    std::abort();
  }
  return *url;
}

}  // namespace korvo
