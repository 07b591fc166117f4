#include "shared/deep_link.hpp"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "shared/app_identity.hpp"

namespace korvo {

std::optional<DeepLinkRoute> deepLinkRoute(std::string_view word) {
  for (const DeepLinkRoute& route : deepLinkRoutes) {
    if (route.word == word) return route;
  }
  return std::nullopt;
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
