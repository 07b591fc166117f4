#include <CLI/CLI.hpp>
#include <clocale>
#include <csignal>

#include "app/cli_commands.hpp"
#include "app/hand_over.hpp"
#include "app/host_command.hpp"
#include "base/command_line_words.hpp"
#include "base/exit_codes.hpp"

namespace {

int run(int argc, char** argv) {
  CLI::App app(
      "Korvo: the dashboard behind the widgets, Keep Awake sessions, and the service that "
      "publishes the CPU temperature and the AI limits for the widgets. Without a command: the "
      "dashboard.",
      "korvo");
  app.require_subcommand(0, 1);
  app.set_version_flag("--version", std::string("korvo ") + KORVO_VERSION);
  int exitCode = korvo::exitSuccess;
  std::optional<korvo::HostCommand> hostCommand;
  korvo::addDashboardCommands(app, hostCommand);
  korvo::app::addPublishCommand(app, exitCode);
  korvo::app::addTemperatureCommand(app, exitCode);
  korvo::app::addCodexCommand(app, exitCode);
  korvo::app::addUsageCommand(app, exitCode);
  korvo::app::addHistoryCommand(app, exitCode);
  korvo::app::addClaudeStatusLineCommand(app, exitCode);
  korvo::addAwakeCommands(app, hostCommand);
  korvo::app::addSettingsCommand(app, exitCode);

  if (const auto ended = korvo::parseCommandLine(app, argc, argv, "korvo")) return *ended;
  // The dashboard, the service and Keep Awake live in the GTK instance; the arguments are
  // checked here so that a mistake is told before any toolkit loads.
  if (hostCommand || app.get_subcommands().empty()) korvo::app::handOver(argc, argv);
  return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  // Texts and dates follow the user's locale; numbers are formatted in the C locale anyway.
  std::setlocale(LC_ALL, "");
  // A file size limit makes a write fail, which korvo reports or skips (the history does), rather
  // than end it half way.
  std::signal(SIGXFSZ, SIG_IGN);
  return korvo::runReportingFailures("korvo", [&] { return run(argc, argv); });
}
