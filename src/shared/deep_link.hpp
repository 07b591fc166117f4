#pragma once

#include <string_view>

#include "shared/url.hpp"

namespace korvo {

// "korvo://" followed by `route` as it stands (no escaping). Only fixed route words are passed,
// so a route that does not make a URL is a programming error: the process stops with a message.
Url deepLinkURL(std::string_view route);

}  // namespace korvo
