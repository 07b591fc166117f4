#include <iostream>
#include <nlohmann/json.hpp>

#include "app/cli_commands.hpp"
#include "app/publisher.hpp"
#include "app/settings_file.hpp"
#include "base/c_format.hpp"
#include "base/display_text.hpp"
#include "base/exit_codes.hpp"
#include "shared/moment_text.hpp"
#include "shared/usage_json.hpp"
#include "sources/cpu_temperature.hpp"
#include "sources/user_paths.hpp"

namespace korvo::app {
namespace {

using Json = nlohmann::ordered_json;

void printTemperature(const CpuTemperature& reading, bool json) {
  if (json) {
    Json document{{"celsius", reading.celsius},
                  {"chip", reading.chip},
                  {"label", reading.label},
                  {"file", displayText(reading.file.string())}};
    print(document.dump() + '\n');
    return;
  }
  std::string line = cFormat("%.1f°C", reading.celsius) + " · " + reading.chip;
  if (!reading.label.empty()) line += " · " + reading.label;
  print(line + " · " + displayText(reading.file.string()) + '\n');
}

void printCodex(const UsageState& state, const std::optional<CodexLimits>& limits, bool json) {
  if (json) {
    const auto encoded = encodeUsageState(state);
    if (!encoded) throw std::runtime_error("the Codex state holds a number JSON cannot carry");
    Json document{{"state", Json::parse(*encoded)}, {"rollout", nullptr}};
    if (limits) document["rollout"] = displayText(limits->rollout.string());
    print(document.dump() + '\n');
    return;
  }
  if (!state.enabled) {
    print("Codex is switched off in korvo's settings\n");
    return;
  }
  std::string text;
  if (state.message) text += *state.message + '\n';
  if (state.snapshot) {
    for (const UsageWindow& window : state.snapshot->windows) {
      text += window.remainingSummary() + " · " + window.resetText() + '\n';
    }
    text += "Fetched " + isoMoment(state.snapshot->fetchedAt) + " from " +
            displayText(limits->rollout.string()) + '\n';
  }
  print(text);
}

}  // namespace

void addTemperatureCommand(CLI::App& app, int& exitCode) {
  auto* command = app.add_subcommand(
      "temperature", "The hottest CPU sensor: degrees Celsius, chip, label and file");
  auto json = std::make_shared<bool>(false);
  command->add_flag("--json", *json, "One JSON object: celsius, chip, label, file");
  command->callback([json, &exitCode] {
    const auto root = systemRoot();
    const auto reading = readCpuTemperature(root);
    if (!reading) {
      std::cerr << "korvo: no CPU temperature sensor under " << displayText((root / "sys").string())
                << '\n';
      exitCode = exitFailure;
      return;
    }
    printTemperature(*reading, *json);
    exitCode = exitSuccess;
  });
}

void addCodexCommand(CLI::App& app, int& exitCode) {
  auto* command = app.add_subcommand(
      "codex", "The Codex state publish would write, and the rollout it came from");
  auto json = std::make_shared<bool>(false);
  command->add_flag("--json", *json, "One JSON object: state (as in the shared file), rollout");
  command->callback([json, &exitCode] {
    const Settings settings = settings_file::load(std::cerr);
    std::optional<std::variant<CodexLimits, CodexShortfall>> found;
    if (settings.codex) found = publisher::readCodex(settings);
    const UsageState state = publisher::codexState(settings.codex, found);
    std::optional<CodexLimits> limits;
    if (found && std::holds_alternative<CodexLimits>(*found))
      limits = std::get<CodexLimits>(*found);
    printCodex(state, limits, *json);
    exitCode = state.enabled && !state.snapshot ? exitFailure : exitSuccess;
  });
}

}  // namespace korvo::app
