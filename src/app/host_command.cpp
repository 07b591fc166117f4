#include "app/host_command.hpp"

#include "app/dashboard_link.hpp"
#include "base/command_line_words.hpp"
#include "base/display_text.hpp"
#include "base/exit_codes.hpp"

namespace korvo {
namespace {

AwakeDuration durationOf(const std::string& text) {
  if (auto duration = parseAwakeDuration(text)) return *duration;
  throw UsageError("not a duration: \"" + displayText(text) +
                   "\"; valid: 90s, 15m, 2h, 1h30m (up to a year) or indefinitely");
}

}  // namespace

void addAwakeCommands(CLI::App& app, std::optional<HostCommand>& command) {
  auto* awake = app.add_subcommand("awake", "Keep Awake: start, extend, stop or show a session");
  awake->require_subcommand(1);
  using Action = AwakeCommand::Action;
  for (const auto& [name, action, help] :
       {std::tuple{"start", Action::start,
                   "Start a session for DURATION (default: the awakeMinutes setting)"},
        std::tuple{"extend", Action::extend,
                   "Add DURATION to the session's end (default: awakeMinutes); starts one "
                   "when none runs"}}) {
    auto* sub = awake->add_subcommand(name, help);
    auto text = std::make_shared<std::optional<std::string>>();
    addTextOption(sub, "DURATION", *text, "90s, 15m, 2h, 1h30m or indefinitely");
    sub->callback([&command, text, action = action] {
      AwakeCommand awakeCommand{action, std::nullopt, false};
      if (*text) awakeCommand.duration = durationOf(**text);
      command = awakeCommand;
    });
  }
  awake->add_subcommand("stop", "End the session now")->callback([&command] {
    command = AwakeCommand{Action::stop, std::nullopt, false};
  });
  auto* status = awake->add_subcommand("status",
                                       "Whether a session runs, until when, and "
                                       "which inhibitors it holds");
  auto json = std::make_shared<bool>(false);
  status->add_flag("--json", *json, "One JSON object: active, endsAt, indefinite, inhibitors");
  status->callback([&command, json] {
    command = AwakeCommand{Action::status, std::nullopt, *json};
  });
}

void addDashboardCommands(CLI::App& app, std::optional<HostCommand>& command) {
  auto* open = app.add_subcommand("open", "Show the dashboard at the tab a korvo:// link names");
  auto url = std::make_shared<std::optional<std::string>>();
  addTextOption(open, "URL", *url, "korvo://usage, ai, resources, memory or awake");
  open->callback([&command, url] {
    if (*url) dashboardDestination(**url);  // throws for anything but a korvo:// link
    command = OpenDashboard{*url};
  });
  app.add_subcommand("service",
                     "The background service: publishes at start, every publishSeconds and on a "
                     "settings change, keeps Keep Awake sessions; no window")
      ->callback([&command] { command = RunService{}; });
}

void addHostCommands(CLI::App& app, std::optional<HostCommand>& command) {
  addDashboardCommands(app, command);
  addAwakeCommands(app, command);
}

HostCommand parseHostCommand(const std::vector<std::string>& words) {
  CLI::App app("korvo", "korvo");
  app.require_subcommand(0, 1);
  std::optional<HostCommand> command;
  addHostCommands(app, command);
  std::vector<std::string> reversed(words.rbegin(), words.rend());
  if (!reversed.empty()) reversed.pop_back();  // the program name
  app.parse(reversed);
  return command.value_or(OpenDashboard{});
}

}  // namespace korvo
