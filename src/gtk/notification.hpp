#pragma once

#include <string>

namespace korvo::gtk {

// Shows a short desktop notification through the session's notification service, without
// waiting for an answer; does nothing when there is no session bus. `application` names the sender.
void sendNotification(const std::string& summary, const std::string& body,
                      const std::string& application = "Korvo Widgets");

}  // namespace korvo::gtk
