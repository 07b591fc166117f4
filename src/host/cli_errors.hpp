#pragma once

#include <stdexcept>
#include <string>

namespace korvo::cli {

// Exit statuses of korvo-widgets.
inline constexpr int exitSuccess = 0;
inline constexpr int exitFailure = 1;  // the thing asked about is unreadable or failed
inline constexpr int exitUsage = 2;    // unknown kind, family not offered, bad option

// A command line that names something that does not exist; the message is one line naming the
// valid values.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// What a subcommand reports once it has run.
struct CommandOutcome {
  int exitCode = exitSuccess;
};

}  // namespace korvo::cli
