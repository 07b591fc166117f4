#pragma once

#include <CLI/CLI.hpp>

namespace korvo::app {

// Each adds one subcommand of korvo; the subcommand's callback leaves its exit status in
// `exitCode` and throws UsageError or std::runtime_error for main to report.
void addPublishCommand(CLI::App& app, int& exitCode);
void addTemperatureCommand(CLI::App& app, int& exitCode);
void addCodexCommand(CLI::App& app, int& exitCode);
void addClaudeStatusLineCommand(CLI::App& app, int& exitCode);
void addSettingsCommand(CLI::App& app, int& exitCode);

}  // namespace korvo::app
