#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "base/standard_output.hpp"
#include "cli/commands.hpp"
#include "cli/widgets.hpp"
#include "model/entry_json.hpp"
#include "shared/moment_text.hpp"

namespace korvo::cli {
namespace {

struct TimelineOptions {
  std::string kind;
  bool preview = false;
  bool json = false;
  std::optional<std::string> now;
};

std::string text(const WidgetConfiguration& widget, const AnyEntry& placeholder,
                 const AnyEntry& snapshot, const AnyTimeline& timeline) {
  std::ostringstream out;
  out << "widget " << widget.kind << '\n';
  out << "placeholder  " << isoMoment(placeholder.date) << "  "
      << documentText(placeholder.toJson()) << '\n';
  out << "snapshot     " << isoMoment(snapshot.date) << "  " << documentText(snapshot.toJson())
      << '\n';
  for (const AnyEntry& entry : timeline.entries) {
    out << "timeline     " << isoMoment(entry.date) << "  " << documentText(entry.toJson()) << '\n';
  }
  out << "reload       "
      << (timeline.policy.date ? "after " + isoMoment(*timeline.policy.date) : "never") << '\n';
  return out.str();
}

}  // namespace

void addTimelineCommand(CLI::App& app, desktop::CommandOutcome& outcome) {
  auto* command = app.add_subcommand(
      "timeline",
      "Ask a widget's provider for its placeholder, snapshot and timeline, and print the entries "
      "and the reload policy.");
  auto options = std::make_shared<TimelineOptions>();
  addKindArgument(command, options->kind);
  command->add_flag("--preview", options->preview,
                    "Ask for the snapshot as the widget gallery does (sample data).");
  command->add_flag("--json", options->json,
                    "Print {widget, placeholder, snapshot, timeline: {entries, reload}}; dates in "
                    "seconds since 2001-01-01 UTC.");
  addTextOption(command, "--now", options->now,
                "Stand-in for the clock: ISO 8601 with a zone or Unix seconds.");
  command->callback([options, &outcome] {
    const WidgetConfiguration& widget = widgetNamed(options->kind);
    pinClock(options->now);
    const TimelineContext context{.isPreview = options->preview};
    const AnyEntry placeholder = widget.placeholder(context);
    std::optional<AnyEntry> snapshot;
    widget.getSnapshot(context, [&](AnyEntry entry) { snapshot = std::move(entry); });
    std::optional<AnyTimeline> timeline;
    widget.getTimeline(TimelineContext{},
                       [&](AnyTimeline answer) { timeline = std::move(answer); });

    std::string output;
    if (options->json) {
      nlohmann::ordered_json entries = nlohmann::ordered_json::array();
      for (const AnyEntry& entry : timeline->entries) {
        entries.push_back(entry.toJson());
      }
      nlohmann::ordered_json document;
      document["widget"] = widget.kind;
      document["placeholder"] = placeholder.toJson();
      document["snapshot"] = snapshot->toJson();
      document["timeline"]["entries"] = entries;
      document["timeline"]["reload"] = reloadJSON(timeline->policy);
      output = documentText(document, 2) + '\n';
    } else {
      output = text(widget, placeholder, *snapshot, *timeline);
    }
    if (const auto failure = writeStandardOutput(output)) {
      std::cerr << "korvo-widgets: " << *failure << '\n';
      outcome.exitCode = exitFailure;
      return;
    }
    outcome.exitCode = exitSuccess;
  });
}

}  // namespace korvo::cli
