#pragma once

#include <CLI/CLI.hpp>
#include <string_view>

namespace korvo::app {

// Each adds one subcommand of korvo; the subcommand's callback leaves its exit status in
// `exitCode` and throws UsageError or std::runtime_error for main to report.
void addPublishCommand(CLI::App& app, int& exitCode);
void addTemperatureCommand(CLI::App& app, int& exitCode);
void addCodexCommand(CLI::App& app, int& exitCode);
void addClaudeStatusLineCommand(CLI::App& app, int& exitCode);
void addSettingsCommand(CLI::App& app, int& exitCode);
void addHistoryCommand(CLI::App& app, int& exitCode);
void addUsageCommand(CLI::App& app, int& exitCode);

// Writes `text` to standard output now; throws std::runtime_error with the reason when it could
// not all be written, so a full disk or a closed pipe is not taken for success.
void print(std::string_view text);

}  // namespace korvo::app
