#include <CLI/CLI.hpp>
#include <clocale>
#include <iostream>

#include "app/cli_commands.hpp"
#include "app/hand_over.hpp"
#include "app/host_command.hpp"
#include "base/exit_codes.hpp"
#include "base/standard_output.hpp"

namespace {

// CLI11's own messages can span lines; the first one names the problem.
std::string firstLine(const std::string& text) {
  return text.substr(0, text.find('\n'));
}

// The help goes to standard output like any other text, and is as much checked.
int printed(int exitCode) {
  if (const auto failure = korvo::standardOutputFailure()) {
    std::cerr << "korvo: " << *failure << '\n';
    return korvo::exitFailure;
  }
  return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  // Texts and dates follow the user's locale; numbers are formatted in the C locale anyway.
  std::setlocale(LC_ALL, "");

  CLI::App app(
      "Korvo: the dashboard behind the widgets, Keep Awake sessions, and the service that "
      "publishes the CPU temperature and the AI limits for the widgets. Without a command: the "
      "dashboard.",
      "korvo");
  app.require_subcommand(0, 1);
  int exitCode = korvo::exitSuccess;
  korvo::app::addPublishCommand(app, exitCode);
  korvo::app::addTemperatureCommand(app, exitCode);
  korvo::app::addCodexCommand(app, exitCode);
  korvo::app::addClaudeStatusLineCommand(app, exitCode);
  korvo::app::addSettingsCommand(app, exitCode);
  std::optional<korvo::HostCommand> hostCommand;
  korvo::addHostCommands(app, hostCommand);

  try {
    app.parse(argc, argv);
    // The dashboard, the service and Keep Awake live in the GTK instance; the arguments are
    // checked here so that a mistake is told before any toolkit loads.
    if (hostCommand || app.get_subcommands().empty()) korvo::app::handOver(argc, argv);
  } catch (const CLI::CallForHelp& help) {
    return printed(app.exit(help));
  } catch (const CLI::CallForAllHelp& help) {
    return printed(app.exit(help));
  } catch (const CLI::ParseError& error) {
    std::cerr << "korvo: " << firstLine(error.what()) << '\n';
    return korvo::exitUsage;
  } catch (const korvo::UsageError& error) {
    std::cerr << "korvo: " << error.what() << '\n';
    return korvo::exitUsage;
  } catch (const std::exception& error) {
    std::cerr << "korvo: " << error.what() << '\n';
    return korvo::exitFailure;
  }
  return exitCode;
}
