#include <array>
#include <iostream>
#include <memory>
#include <optional>

#include "app/history_store.hpp"
#include "app/settings_file.hpp"
#include "app/window_forecast.hpp"
#include "cli/commands.hpp"
#include "cli/status_line.hpp"
#include "cli/widgets.hpp"
#include "extension/memory_provider.hpp"
#include "extension/monitor_provider.hpp"
#include "extension/widget_kind.hpp"

namespace korvo::cli {
namespace {

struct StatusOptions {
  std::string kind;
  std::string format = "text";
  std::string mode = std::string(rawValue(DisplayMode::usedPercent));
  std::optional<std::string> now;
};

// The line of each widget that has one, from the provider the widget itself asks; status bars
// run this every few seconds, so it loads no toolkit and reads only what the line needs.
StatusLine::Line memoryLine(DisplayMode mode, StatusLine::Tooltip tooltip) {
  std::optional<MemoryEntry> entry;
  MemoryProvider{}.getTimeline(
      {}, [&](Timeline<MemoryEntry> timeline) { entry = timeline.entries.front(); });
  return StatusLine::memory(*entry, mode, tooltip);
}

MonitorEntry monitorEntry() {
  std::optional<MonitorEntry> entry;
  MonitorProvider{}.getTimeline(
      {}, [&](Timeline<MonitorEntry> timeline) { entry = std::move(timeline.entries.front()); });
  return *entry;
}

// korvo's settings, for the choices its status texts follow; a bad file is named on standard
// error and the defaults count.
Settings korvoSettings() {
  return settings_file::load(std::cerr);
}

// The user's thresholds, and with the tooltip each window's forecast from korvo's history.
StatusLine::UsageOutlook usageOutlook(const MonitorEntry& entry, StatusLine::Tooltip tooltip) {
  StatusLine::UsageOutlook outlook{korvoSettings().alertPercents, {}};
  if (tooltip == StatusLine::Tooltip::leftOut || !entry.snapshot) return outlook;
  // A status bar must not wait behind a publication writing the history.
  const auto history =
      HistoryStore::openExisting(std::cerr, entry.date, std::chrono::milliseconds(200));
  if (!history) return outlook;
  for (const auto& [name, state] :
       {std::pair{"codex", &entry.snapshot->codex}, std::pair{"claude", &entry.snapshot->claude}}) {
    if (!state->enabled || !state->snapshot) continue;
    for (const UsageWindow& window : state->snapshot->windows) {
      const std::string metric = std::string(name) + "." + window.title;
      if (const auto found = recentForecast(*history, metric, window, entry.date)) {
        outlook.forecasts[metric] = forecastText(*found, entry.date);
      }
    }
  }
  return outlook;
}

struct StatusKind {
  WidgetKind kind;
  StatusLine::Line (*line)(DisplayMode mode, StatusLine::Tooltip tooltip);
};

constexpr std::array statusKinds{
    StatusKind{WidgetKind::memory, memoryLine},
    StatusKind{WidgetKind::usage,
               [](DisplayMode, StatusLine::Tooltip tooltip) {
                 const MonitorEntry entry = monitorEntry();
                 return StatusLine::usage(entry, tooltip, usageOutlook(entry, tooltip));
               }},
    StatusKind{WidgetKind::temperature,
               [](DisplayMode, StatusLine::Tooltip tooltip) {
                 return StatusLine::temperature(monitorEntry(), tooltip,
                                                korvoSettings().temperatureUnit);
               }},
};

std::string statusKindWords() {
  return joined(statusKinds, ", ", [](const StatusKind& status) { return kindWord(status.kind); });
}

const StatusKind& statusKindNamed(const std::string& kind) {
  const WidgetConfiguration& widget = widgetNamed(kind);
  for (const StatusKind& candidate : statusKinds) {
    if (kindWord(candidate.kind) == widget.shortKind()) return candidate;
  }
  throw UsageError("widget " + widget.shortKind() +
                   " has no status line; valid kinds: " + statusKindWords());
}

std::vector<std::string> modeWords() {
  std::vector<std::string> words;
  words.reserve(allDisplayModes.size());
  for (const DisplayMode mode : allDisplayModes) words.emplace_back(rawValue(mode));
  return words;
}

}  // namespace

void addStatusCommand(CLI::App& app, desktop::CommandOutcome& outcome) {
  auto* command = app.add_subcommand(
      "status",
      "Print one line for a status bar (memory, usage, temperature) from the widget's own "
      "provider; \"—\" when there is no data, still exit 0.");
  auto options = std::make_shared<StatusOptions>();
  addKindArgument(command, options->kind);
  command
      ->add_option("--format", options->format,
                   "text: the figure alone; waybar: one JSON object {text, tooltip, class, "
                   "percentage} for a Waybar custom module.")
      ->check(CLI::IsMember({"text", "waybar"}));
  command
      ->add_option("--mode", options->mode,
                   "How the memory figure is written (default usedPercent).")
      ->check(CLI::IsMember(modeWords()));
  addTextOption(command, "--now", options->now,
                "Stand-in for the clock: ISO 8601 with a zone or Unix seconds.");
  command->callback([options, &outcome] {
    const StatusKind& kind = statusKindNamed(options->kind);
    pinClock(options->now);
    const bool waybar = options->format == "waybar";
    const StatusLine::Line line =
        kind.line(*displayModeFromRaw(options->mode),
                  waybar ? StatusLine::Tooltip::included : StatusLine::Tooltip::leftOut);
    std::cout << (waybar ? StatusLine::waybarJson(line) : line.text) << '\n';
    outcome.exitCode = exitSuccess;
  });
}

}  // namespace korvo::cli
