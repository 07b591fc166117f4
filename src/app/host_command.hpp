#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <variant>

#include "app/awake_duration.hpp"

namespace korvo {

// The commands the running korvo instance carries out (the GTK application): everything but the
// file commands. The front checks them, then hands the same words to the instance.
struct OpenDashboard {
  std::optional<std::string> url;  // a korvo:// link; none opens the dashboard as it was
  friend bool operator==(const OpenDashboard&, const OpenDashboard&) = default;
};
struct RunService {
  friend bool operator==(const RunService&, const RunService&) = default;
};
struct AwakeCommand {
  enum class Action { start, extend, stop, status };
  Action action = Action::status;
  std::optional<AwakeDuration> duration;  // start and extend; none: the awakeMinutes setting
  bool json = false;                      // status --json
  friend bool operator==(const AwakeCommand&, const AwakeCommand&) = default;
};
using HostCommand = std::variant<OpenDashboard, RunService, AwakeCommand>;

// Add the host's commands to `app`: `open` and `service`, `awake`, or all three; the one the
// command line gives is left in `command` once parsed. A malformed duration or link, or an empty
// one, throws UsageError with one line.
void addDashboardCommands(CLI::App& app, std::optional<HostCommand>& command);
void addAwakeCommands(CLI::App& app, std::optional<HostCommand>& command);
void addHostCommands(CLI::App& app, std::optional<HostCommand>& command);

// Parses words as `korvo` received them (program name first) into a host command; no words
// after the program name open the dashboard. Throws CLI::ParseError or UsageError.
HostCommand parseHostCommand(const std::vector<std::string>& words);

}  // namespace korvo
