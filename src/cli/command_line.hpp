#pragma once

#include <CLI/CLI.hpp>
#include <stdexcept>
#include <string>
#include <string_view>

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

// Parses and runs `app`; usage errors become one line "program: problem; valid: …" on standard
// error and exit status 2, help goes to standard output. Returns the exit status.
int parseAndRun(CLI::App& app, int argc, char** argv, std::string_view program,
                const CommandOutcome& outcome);

}  // namespace korvo::cli
