#include <iostream>
#include <sstream>

#include "app/cli_commands.hpp"
#include "app/publisher.hpp"
#include "app/settings_file.hpp"
#include "base/clock.hpp"
#include "base/command_line_words.hpp"
#include "base/display_text.hpp"
#include "base/exit_codes.hpp"
#include "shared/moment_text.hpp"

namespace korvo::app {

void addPublishCommand(CLI::App& app, int& exitCode) {
  auto* command = app.add_subcommand(
      "publish", "Collect the CPU temperature and Codex's limits once and write the shared file");
  struct Options {
    bool print = false;
    std::optional<std::string> now;
  };
  auto options = std::make_shared<Options>();
  command->add_flag("--print", options->print, "Write nothing; print the bytes it would write");
  addTextOption(command, "--now", options->now,
                "The moment to publish at: ISO 8601 with a zone, or Unix seconds");
  command->callback([options, &exitCode] {
    if (options->now) {
      const auto moment = parseMoment(*options->now);
      if (!moment) {
        throw UsageError("--now: not a moment: \"" + displayText(*options->now) +
                         "\"; valid: ISO 8601 with a zone or Unix seconds");
      }
      clock::setFixed(*moment);
    }
    const Settings settings = settings_file::load(std::cerr);
    if (options->print) {
      print(publisher::preview(settings));
    } else {
      // What korvo codex tells, and the service logs, is no news to a one-off publication.
      std::ostringstream notes;
      publisher::publish(settings, notes);
    }
    exitCode = exitSuccess;
  });
}

}  // namespace korvo::app
