#pragma once

#include <string>

namespace korvo::gtk {

// Hands `url` to the desktop's default handler of its scheme. When none takes it, says so in one
// line on standard error and in a short desktop notification, and returns false.
bool openURL(const std::string& url);

}  // namespace korvo::gtk
