#include "desktop/core/command_line.hpp"

#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "base/standard_output.hpp"
#include "base/text.hpp"
#include "desktop/core/widget_lookup.hpp"

namespace korvo::desktop {
namespace {

// CLI11's own messages can span lines; the first one names the problem.
std::string firstLine(std::string text) {
  const auto newline = text.find('\n');
  return newline == std::string::npos ? text : text.substr(0, newline);
}

// The options and subcommands of the deepest subcommand given, as a hint after a usage error.
std::string validNames(const CLI::App& app) {
  const CLI::App* command = &app;
  while (!command->get_subcommands().empty()) {
    command = command->get_subcommands().front();
  }
  std::vector<std::string> names;
  for (const CLI::Option* option : command->get_options()) {
    if (option->nonpositional()) names.push_back(option->get_name());
  }
  for (const CLI::App* subcommand : command->get_subcommands({})) {
    names.push_back(subcommand->get_name());
  }
  return joined(names, ", ");
}

// The word given where a subcommand belongs that names none (CLI11 reports it as a missing
// subcommand); none when the subcommand was simply left out.
std::optional<std::string> unknownSubcommand(const CLI::App& app) {
  const CLI::App* command = &app;
  while (!command->get_subcommands().empty()) {
    command = command->get_subcommands().front();
  }
  for (const std::string& word : command->remaining()) {
    if (!word.empty() && word.front() != '-') return word;
  }
  return std::nullopt;
}

// Help and the version are output like any other, and said when they cannot be written.
int printRequested(const CLI::App& app, const CLI::Error& request, std::string_view program) {
  std::ostringstream text;
  const int code = app.exit(request, text);
  if (const auto failure = writeStandardOutput(text.str())) {
    std::cerr << program << ": " << *failure << '\n';
    return exitFailure;
  }
  return code;
}

}  // namespace

int parseAndRun(CLI::App& app, int argc, char** argv, std::string_view program,
                const CommandOutcome& outcome) {
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& help) {
    return printRequested(app, help, program);
  } catch (const CLI::CallForAllHelp& help) {
    return printRequested(app, help, program);
  } catch (const CLI::CallForVersion& version) {
    return printRequested(app, version, program);
  } catch (const CLI::ExtrasError& error) {
    std::cerr << program << ": " << firstLine(error.what()) << "; valid: " << validNames(app)
              << '\n';
    return exitUsage;
  } catch (const CLI::RequiredError& error) {
    if (const auto unknown = unknownSubcommand(app)) {
      std::cerr << program << ": unknown subcommand \"" << *unknown
                << "\"; valid: " << validNames(app) << '\n';
      return exitUsage;
    }
    const std::string problem = firstLine(error.what());
    // A missing widget kind is answered with the kinds, anything else with the options.
    const std::string valid =
        problem.find("KIND") != std::string::npos ? validKinds() : "valid: " + validNames(app);
    std::cerr << program << ": " << problem << "; " << valid << '\n';
    return exitUsage;
  } catch (const CLI::ParseError& error) {
    std::cerr << program << ": " << firstLine(error.what()) << '\n';
    return exitUsage;
  } catch (const UsageError& error) {
    std::cerr << program << ": " << error.what() << '\n';
    return exitUsage;
  }
  // Output that never arrived is a failure (a command that failed has said why already).
  if (outcome.exitCode != exitSuccess) return outcome.exitCode;
  if (const auto failure = standardOutputFailure()) {
    std::cerr << program << ": " << *failure << '\n';
    return exitFailure;
  }
  return outcome.exitCode;
}

CLI::Option* addTextOption(CLI::App* command, const std::string& name,
                           std::optional<std::string>& target, const std::string& description) {
  return command->add_option_function<std::string>(
      name, [&target](const std::string& value) { target = value; }, description);
}

}  // namespace korvo::desktop
