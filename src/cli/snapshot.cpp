#include <filesystem>
#include <iostream>

#include "base/c_format.hpp"
#include "base/standard_output.hpp"
#include "cli/commands.hpp"
#include "cli/widgets.hpp"
#include "shared/moment_text.hpp"
#include "shared/widget_snapshot_json.hpp"
#include "shared/widget_snapshot_store.hpp"

namespace korvo::cli {
namespace {

struct CheckOptions {
  std::optional<std::string> file;
  bool reencode = false;
};

void printPath(desktop::CommandOutcome& outcome) {
  const auto location = WidgetSnapshotStore::locate();
  if (const auto* failure = std::get_if<DecodeFailure>(&location)) {
    std::cerr << "korvo-widgets: " << failure->reason << '\n';
    outcome.exitCode = exitFailure;
    return;
  }
  std::cout << std::get<Url>(location).path << '\n';
  outcome.exitCode = exitSuccess;
}

std::string usageSummary(std::string_view name, const UsageState& state) {
  std::string line = std::string(name) + ": " + (state.enabled ? "enabled" : "disabled");
  if (state.snapshot) {
    line += cFormat(", %zu window(s) fetched %s", state.snapshot->windows.size(),
                    isoMoment(state.snapshot->fetchedAt).c_str());
  } else {
    line += ", no usage";
  }
  return line;
}

void check(const CheckOptions& options, desktop::CommandOutcome& outcome) {
  if (options.file && options.file->empty()) {
    throw UsageError("FILE: an empty name names no file (leave FILE out to check the shared file)");
  }
  std::optional<Url> url;
  if (!options.file) {
    const auto location = WidgetSnapshotStore::locate();
    if (const auto* failure = std::get_if<DecodeFailure>(&location)) {
      std::cerr << "korvo-widgets: " << failure->reason << '\n';
      outcome.exitCode = exitFailure;
      return;
    }
    url = std::get<Url>(location);
  } else {
    std::error_code error;
    url = Url::file(std::filesystem::absolute(*options.file, error));
  }
  const std::string where = url ? url->path : options.file.value_or("");

  const Decoded<WidgetSnapshot> decoded = WidgetSnapshotStore::inspect(url);
  if (const auto* failure = std::get_if<DecodeFailure>(&decoded)) {
    std::cerr << "korvo-widgets: the widgets cannot read " << where << ": " << failure->reason
              << '\n';
    outcome.exitCode = exitFailure;
    return;
  }
  const auto& snapshot = std::get<WidgetSnapshot>(decoded);
  if (options.reencode) {
    const std::optional<std::string> bytes = encodeWidgetSnapshot(snapshot);
    if (!bytes) {
      std::cerr << "korvo-widgets: " << where << " decodes but cannot be encoded again\n";
      outcome.exitCode = exitFailure;
      return;
    }
    std::cerr << "korvo-widgets: " << where << " is readable; its encoding follows\n";
    if (const auto failure = writeStandardOutput(*bytes)) {
      std::cerr << "korvo-widgets: " << *failure << '\n';
      outcome.exitCode = exitFailure;
      return;
    }
    outcome.exitCode = exitSuccess;
    return;
  }
  std::cout << where << ": readable\n";
  std::cout << "written " << isoMoment(snapshot.date) << '\n';
  std::cout << "temperature: " << (snapshot.temperatureEnabled ? "enabled" : "disabled")
            << (snapshot.temperature ? cFormat(", %.1f °C", *snapshot.temperature)
                                     : std::string(", no reading"))
            << '\n';
  std::cout << usageSummary("codex", snapshot.codex) << '\n';
  std::cout << usageSummary("claude", snapshot.claude) << '\n';
  outcome.exitCode = exitSuccess;
}

}  // namespace

void addSnapshotCommand(CLI::App& app, desktop::CommandOutcome& outcome) {
  auto* command = app.add_subcommand(
      "snapshot",
      "Where the widgets look for the shared snapshot file, and whether they can read it.");
  command->require_subcommand(1);

  auto* path = command->add_subcommand(
      "path",
      "Print the shared file's path (from Info.json, XDG_DATA_HOME or HOME); exit 1 when "
      "there is none.");
  path->callback([&outcome] { printPath(outcome); });

  auto options = std::make_shared<CheckOptions>();
  auto* checkCommand = command->add_subcommand(
      "check",
      "Decode the shared file (or FILE) as the widgets do and say why it is unreadable; exit 1 "
      "when it is.");
  addTextOption(checkCommand, "FILE", options->file, "Check this file instead of the shared file.");
  checkCommand->add_flag("--reencode", options->reencode,
                         "Print exactly the bytes the encoder writes for the decoded file, with "
                         "no newline; messages go to standard error.");
  checkCommand->callback([options, &outcome] { check(*options, outcome); });
}

}  // namespace korvo::cli
