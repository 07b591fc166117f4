#include "base/command_line_words.hpp"

#include <iostream>
#include <sstream>
#include <vector>

#include "base/display_text.hpp"
#include "base/exit_codes.hpp"
#include "base/standard_output.hpp"
#include "base/text.hpp"

namespace korvo {
namespace {

const CLI::App& deepestCommand(const CLI::App& app) {
  const CLI::App* command = &app;
  while (!command->get_subcommands().empty()) {
    command = command->get_subcommands().front();
  }
  return *command;
}

// The subcommands the deepest command given offers, in the order its help lists them.
std::vector<std::string> subcommandNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::App* subcommand : command.get_subcommands({})) {
    names.push_back(subcommand->get_name());
  }
  return names;
}

// A word left over where a command that takes subcommands (but needs none) expected one.
std::optional<std::string> unknownCommand(const CLI::App& app) {
  const CLI::App& command = deepestCommand(app);
  if (subcommandNames(command).empty()) return std::nullopt;
  for (const std::string& word : command.remaining()) {
    if (!word.empty() && word.front() != '-') return word;
  }
  return std::nullopt;
}

// Values from the command line are echoed in these messages, which stay one line whatever they
// hold.
int usageError(std::string_view program, const std::string& message) {
  std::cerr << program << ": " << displayText(message) << '\n';
  return exitUsage;
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

std::string firstLine(std::string_view text) {
  return std::string(text.substr(0, text.find('\n')));
}

std::string validNames(const CLI::App& app) {
  const CLI::App& command = deepestCommand(app);
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options()) {
    if (option->nonpositional()) names.push_back(option->get_name());
  }
  for (std::string& name : subcommandNames(command)) names.push_back(std::move(name));
  return joined(names, ", ");
}

std::optional<std::string> unknownSubcommand(const CLI::App& app) {
  for (const std::string& word : deepestCommand(app).remaining()) {
    if (!word.empty() && word.front() != '-') return word;
  }
  return std::nullopt;
}

CLI::Option* addTextOption(CLI::App* command, const std::string& name,
                           std::optional<std::string>& target, const std::string& description) {
  return command->add_option_function<std::string>(
      name, [&target](const std::string& value) { target = value; }, description);
}

std::optional<int> parseCommandLine(CLI::App& app, int argc, char** argv, std::string_view program,
                                    const MissingHint& missingHint) {
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& help) {
    return printRequested(app, help, program);
  } catch (const CLI::CallForAllHelp& help) {
    return printRequested(app, help, program);
  } catch (const CLI::CallForVersion& version) {
    return printRequested(app, version, program);
  } catch (const CLI::ExtrasError& error) {
    if (const auto unknown = unknownCommand(app)) {
      return usageError(program, "unknown command \"" + *unknown + "\"; valid: " +
                                     joined(subcommandNames(deepestCommand(app)), ", "));
    }
    return usageError(program, firstLine(error.what()) + "; valid: " + validNames(app));
  } catch (const CLI::RequiredError& error) {
    if (const auto unknown = unknownSubcommand(app)) {
      return usageError(program,
                        "unknown subcommand \"" + *unknown + "\"; valid: " + validNames(app));
    }
    const std::string problem = firstLine(error.what());
    return usageError(
        program,
        problem + "; " + (missingHint ? missingHint(app, problem) : "valid: " + validNames(app)));
  } catch (const CLI::ParseError& error) {
    return usageError(program, firstLine(error.what()));
  } catch (const UsageError& error) {
    return usageError(program, error.what());
  }
  return std::nullopt;
}

int runReportingFailures(std::string_view program, const std::function<int()>& run) noexcept {
  try {
    return run();
  } catch (const std::exception& error) {
    std::cerr << program << ": " << displayText(error.what()) << '\n';
  } catch (...) {
    std::cerr << program << ": unexpected failure\n";
  }
  return exitFailure;
}

}  // namespace korvo
