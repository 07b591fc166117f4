#include <iostream>
#include <nlohmann/json.hpp>

#include "app/cli_commands.hpp"
#include "app/codex_state_file.hpp"
#include "app/publisher.hpp"
#include "app/settings_file.hpp"
#include "app/usage_origin.hpp"
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

void printCodexJson(const UsageState& state, const publisher::CodexFound* found) {
  const auto* limits = found ? std::get_if<CodexLimits>(&found->published) : nullptr;
  const auto encoded = encodeUsageState(state);
  if (!encoded) throw std::runtime_error("the Codex state holds a number JSON cannot carry");
  Json document{{"state", Json::parse(*encoded)}, {"rollout", nullptr}, {"source", nullptr}};
  if (limits) {
    if (!limits->rollout.empty()) document["rollout"] = displayText(limits->rollout.string());
    document["source"] = limits->snapshot.source.value_or("");
    document["planType"] = limits->planType ? Json(*limits->planType) : Json(nullptr);
  }
  if (found && found->asked && found->asked->failure) {
    document["liveFailure"] = *found->asked->failure;
  }
  print(document.dump() + '\n');
}

// The windows, where they came from, the plan, credits and the other limits, a line each.
std::string limitsText(const CodexLimits& limits) {
  std::string text;
  for (const UsageWindow& window : limits.snapshot.windows) {
    text += window.remainingSummary() + " · " + window.resetText() + '\n';
  }
  const std::string origin = limits.rollout.empty() ? limits.snapshot.source.value_or("")
                                                    : displayText(limits.rollout.string());
  text += "Fetched " + isoMoment(limits.snapshot.fetchedAt) + " from " + origin + '\n';
  if (limits.planType) text += "Plan " + *limits.planType + '\n';
  if (limits.credits) text += "Credits " + usage_origin::creditsText(*limits.credits) + '\n';
  for (const auto& other : limits.otherLimits) {
    const std::string name = other.limitName.value_or(other.limitId.value_or(""));
    for (const UsageWindow& window : other.snapshot.windows) {
      text += name + " " + window.remainingSummary() + '\n';
    }
  }
  return text;
}

void printCodexText(const UsageState& state, const publisher::CodexFound* found) {
  if (!state.enabled) {
    print("Codex is switched off in korvo's settings\n");
    return;
  }
  std::string text;
  if (state.message) text += *state.message + '\n';
  if (const auto* limits = found ? std::get_if<CodexLimits>(&found->published) : nullptr) {
    text += limitsText(*limits);
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
  auto* command =
      app.add_subcommand("codex", "The Codex state publish would write, and where it came from");
  auto json = std::make_shared<bool>(false);
  auto live = std::make_shared<bool>(false);
  command->add_flag("--json", *json,
                    "One JSON object: state (as in the shared file), rollout, source, planType, "
                    "liveFailure");
  command->add_flag("--live", *live, "Ask Codex's app-server now");
  command->callback([json, live, &exitCode] {
    const Settings settings = settings_file::load(std::cerr);
    std::optional<publisher::CodexFound> found;
    if (settings.codex) {
      found = publisher::findCodex(settings,
                                   *live ? publisher::LiveAsk::now : publisher::LiveAsk::whenDue);
      if (found->asked) codex_state_file::save({std::nullopt, found->asked});
    }
    const UsageState state = publisher::codexState(settings.codex, found);
    const publisher::CodexFound* shown = found ? &*found : nullptr;
    if (*json) {
      printCodexJson(state, shown);
    } else {
      printCodexText(state, shown);
    }
    const bool liveFailed = *live && found && found->asked && found->asked->failure;
    if (liveFailed) std::cerr << "korvo: " << *found->asked->failure << '\n';
    exitCode = (state.enabled && !state.snapshot) || liveFailed ? exitFailure : exitSuccess;
  });
}

}  // namespace korvo::app
