#pragma once

#include <stdexcept>

namespace korvo {

// Exit statuses of korvo and korvo-widgets.
inline constexpr int exitSuccess = 0;
inline constexpr int exitFailure = 1;  // the thing asked about is unreadable or failed
inline constexpr int exitUsage = 2;    // unknown kind or setting, bad value, bad option

// A command line that asks for something that does not exist or cannot be; the message is one
// line naming the valid values.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace korvo
