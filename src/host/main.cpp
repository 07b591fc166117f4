#include <CLI/CLI.hpp>
#include <clocale>
#include <iostream>
#include <optional>
#include <string>

#include "host/cli_commands.hpp"
#include "host/cli_widgets.hpp"
#ifdef KORVO_DESKTOP_HOST
#include "host/run_command.hpp"
#endif

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
  std::string names;
  for (const CLI::Option* option : command->get_options()) {
    if (option->nonpositional()) {
      names += (names.empty() ? "" : ", ") + option->get_name();
    }
  }
  for (const CLI::App* subcommand : command->get_subcommands({})) {
    names += (names.empty() ? "" : ", ") + subcommand->get_name();
  }
  return names;
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

}  // namespace

int main(int argc, char** argv) {
  // Texts, dates and spans follow the user's locale; numbers are formatted in the C locale anyway.
  std::setlocale(LC_ALL, "");

  CLI::App app(
      "Four desktop widgets (Memory, Keep Awake, AI Usage, CPU Temperature): list them, "
      "ask their providers for timelines, render them headless, check the shared file.",
      "korvo-widgets");
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("korvo-widgets ") + KORVO_VERSION);
  korvo::cli::CommandOutcome outcome;
  korvo::cli::addListCommand(app, outcome);
  korvo::cli::addTimelineCommand(app, outcome);
  korvo::cli::addRenderCommand(app, outcome);
  korvo::cli::addGalleryCommand(app, outcome);
  korvo::cli::addSnapshotCommand(app, outcome);
  korvo::cli::addMemoryCommand(app, outcome);
#ifdef KORVO_DESKTOP_HOST
  korvo::addRunCommand(app);
#endif

  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& help) {
    return app.exit(help);
  } catch (const CLI::CallForAllHelp& help) {
    return app.exit(help);
  } catch (const CLI::CallForVersion& version) {
    return app.exit(version);
  } catch (const CLI::ExtrasError& error) {
    std::cerr << "korvo-widgets: " << firstLine(error.what()) << "; valid: " << validNames(app)
              << '\n';
    return korvo::cli::exitUsage;
  } catch (const CLI::RequiredError& error) {
    if (const auto unknown = unknownSubcommand(app)) {
      std::cerr << "korvo-widgets: unknown subcommand \"" << *unknown
                << "\"; valid: " << validNames(app) << '\n';
      return korvo::cli::exitUsage;
    }
    const std::string problem = firstLine(error.what());
    // A missing widget kind is answered with the kinds, anything else with the options.
    const std::string valid = problem.find("KIND") != std::string::npos
                                  ? korvo::cli::validKinds()
                                  : "valid: " + validNames(app);
    std::cerr << "korvo-widgets: " << problem << "; " << valid << '\n';
    return korvo::cli::exitUsage;
  } catch (const CLI::ParseError& error) {
    std::cerr << "korvo-widgets: " << firstLine(error.what()) << '\n';
    return korvo::cli::exitUsage;
  } catch (const korvo::cli::UsageError& error) {
    std::cerr << "korvo-widgets: " << error.what() << '\n';
    return korvo::cli::exitUsage;
  }
  // Output that never arrived is a failure (a command that failed has said why already).
  if (outcome.exitCode != korvo::cli::exitSuccess) return outcome.exitCode;
  if (const auto failure = korvo::cli::standardOutputFailure()) {
    std::cerr << "korvo-widgets: " << *failure << '\n';
    return korvo::cli::exitFailure;
  }
  return outcome.exitCode;
}
