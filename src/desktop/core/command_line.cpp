#include "desktop/core/command_line.hpp"

#include <iostream>
#include <string>

#include "base/standard_output.hpp"
#include "desktop/core/widget_lookup.hpp"

namespace korvo::desktop {

int parseAndRun(CLI::App& app, int argc, char** argv, std::string_view program,
                const CommandOutcome& outcome) {
  // A missing widget kind is answered with the kinds, anything else with the options.
  const auto missingHint = [](const CLI::App& command, const std::string& problem) {
    return problem.find("KIND") != std::string::npos ? validKinds()
                                                     : "valid: " + validNames(command);
  };
  if (const auto ended = parseCommandLine(app, argc, argv, program, missingHint)) return *ended;
  // Output that never arrived is a failure (a command that failed has said why already).
  if (outcome.exitCode != exitSuccess) return outcome.exitCode;
  if (const auto failure = standardOutputFailure()) {
    std::cerr << program << ": " << *failure << '\n';
    return exitFailure;
  }
  return outcome.exitCode;
}

}  // namespace korvo::desktop
