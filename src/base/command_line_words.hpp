#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace korvo {

// The words both programs' command lines answer a mistake with: one line on standard error,
// "program: problem; valid: …", exit status 2.

// CLI11's own messages can span lines; the first one names the problem.
std::string firstLine(std::string_view text);

// The options and subcommands of the deepest subcommand given, as a hint after a usage error.
std::string validNames(const CLI::App& app);

// The word given where a subcommand belongs that names none (CLI11 reports it as a missing
// subcommand); none when the subcommand was simply left out.
std::optional<std::string> unknownSubcommand(const CLI::App& app);

// An option or argument kept as the user wrote it: absent when not given, and an empty value
// stays an empty text (a plain optional would read "" as absent).
CLI::Option* addTextOption(CLI::App* command, const std::string& name,
                           std::optional<std::string>& target, const std::string& description);

// What follows a missing argument's problem in its message; by default the valid names.
using MissingHint = std::function<std::string(const CLI::App& app, const std::string& problem)>;

// Parses `argv` into `app`, whose callbacks run the command given. Help and the version go to
// standard output; usage errors, CLI11's and UsageError, are reported as above. Returns the exit
// status when parsing ended the program, none when the command ran; anything else a callback
// throws passes through.
std::optional<int> parseCommandLine(CLI::App& app, int argc, char** argv, std::string_view program,
                                    const MissingHint& missingHint = {});

// Runs a program's `run` and returns its exit status; a failure it throws is said on one line,
// "program: reason" with the reason escaped, and ends it with exitFailure.
int runReportingFailures(std::string_view program, const std::function<int()>& run) noexcept;

}  // namespace korvo
