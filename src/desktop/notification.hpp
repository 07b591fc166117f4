#pragma once

#include <string>

namespace korvo::desktop {

// Shows a short desktop notification through the session's notification service, without
// waiting for an answer; does nothing when there is no session bus.
void sendNotification(const std::string& summary, const std::string& body);

}  // namespace korvo::desktop
