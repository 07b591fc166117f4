#pragma once

#include <CLI/CLI.hpp>

#include "desktop/core/command_line.hpp"

// The korvo-widgets subcommands. Each registers itself on `app` and, once it has run, leaves its
// exit status in `outcome`; a UsageError thrown while it runs means exit status 2.
namespace korvo::cli {

void addListCommand(CLI::App& app, desktop::CommandOutcome& outcome);
void addTimelineCommand(CLI::App& app, desktop::CommandOutcome& outcome);
void addRenderCommand(CLI::App& app, desktop::CommandOutcome& outcome);
void addGalleryCommand(CLI::App& app, desktop::CommandOutcome& outcome);
void addSnapshotCommand(CLI::App& app, desktop::CommandOutcome& outcome);
void addMemoryCommand(CLI::App& app, desktop::CommandOutcome& outcome);
// `status KIND`: one line for status bars.
void addStatusCommand(CLI::App& app, desktop::CommandOutcome& outcome);
// `run`: hands every argument after it to the desktop host, a separate executable.
void addRunCommand(CLI::App& app, desktop::CommandOutcome& outcome);
// `reload`: asks the running desktop host to ask every provider again.
void addReloadCommand(CLI::App& app, desktop::CommandOutcome& outcome);
// `stop`: ends the running desktop host.
void addStopCommand(CLI::App& app, desktop::CommandOutcome& outcome);

}  // namespace korvo::cli
