#include <CLI/CLI.hpp>
#include <clocale>
#include <string>

#include "cli/commands.hpp"
#include "desktop/core/command_line.hpp"

namespace {

int run(int argc, char** argv) {
  CLI::App app(
      "Four desktop widgets (Memory, Keep Awake, AI Usage, CPU Temperature): list them, "
      "ask their providers for timelines, render them headless, check the shared file, and "
      "show them on the desktop.",
      "korvo-widgets");
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("korvo-widgets ") + KORVO_VERSION);
  korvo::desktop::CommandOutcome outcome;
  korvo::cli::addListCommand(app, outcome);
  korvo::cli::addTimelineCommand(app, outcome);
  korvo::cli::addRenderCommand(app, outcome);
  korvo::cli::addGalleryCommand(app, outcome);
  korvo::cli::addSnapshotCommand(app, outcome);
  korvo::cli::addMemoryCommand(app, outcome);
  korvo::cli::addStatusCommand(app, outcome);
  korvo::cli::addRunCommand(app, outcome);
  korvo::cli::addReloadCommand(app, outcome);
  korvo::cli::addStopCommand(app, outcome);
  return korvo::desktop::parseAndRun(app, argc, argv, "korvo-widgets", outcome);
}

}  // namespace

int main(int argc, char** argv) {
  // Texts, dates and spans follow the user's locale; numbers are formatted in the C locale anyway.
  std::setlocale(LC_ALL, "");
  return korvo::runReportingFailures("korvo-widgets", [&] { return run(argc, argv); });
}
