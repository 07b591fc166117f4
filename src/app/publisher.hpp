#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <variant>

#include "app/settings.hpp"
#include "base/date.hpp"
#include "shared/widget_snapshot.hpp"
#include "shared/widget_snapshot_json.hpp"
#include "sources/codex_rollouts.hpp"
#include "sources/cpu_temperature.hpp"

namespace korvo::publisher {

// How long a publication waits for another writer's lock before it gives up.
inline constexpr std::chrono::seconds lockPatience{10};

// What one publication found, each part only when its setting is on.
struct Collected {
  std::optional<CpuTemperature> temperature;
  std::optional<std::variant<CodexLimits, CodexShortfall>> codex;
  bool claudeStatusLineInstalled = false;  // Claude's settings already run korvo claude-statusline

  friend bool operator==(const Collected&, const Collected&) = default;
};

// Reads the sources that `settings` switch on: the CPU temperature under $KORVO_SYSROOT, Codex's
// rollouts, and whether Claude's settings run korvo.
Collected collect(const Settings& settings);

// Codex's limits from its folder: the codexHome setting, else $CODEX_HOME, else ~/.codex.
std::variant<CodexLimits, CodexShortfall> readCodex(const Settings& settings);

// The Codex state a publication writes from what was found.
UsageState codexState(bool enabled,
                      const std::optional<std::variant<CodexLimits, CodexShortfall>>& found);

// The snapshot a publication writes at `now` over the file's `current` parts: the temperature and
// Codex's state anew, Claude's figures as the file holds them whenever they decode.
WidgetSnapshot compose(const WidgetSnapshotParts& current, const Settings& settings,
                       const Collected& collected, Date now);

// Collects, then under the shared file's lock reads it, composes and saves it; then records
// Codex's plan, credits and other limits in korvo's own state (codex_state_file). Throws
// std::runtime_error with a one-line message when the file has no place or cannot be written, or
// when the lock is not had within lockPatience or before `stop` is requested.
void publish(const Settings& settings, const std::stop_token& stop = {});

// The bytes publish would write now, without writing anything.
std::string preview(const Settings& settings);

}  // namespace korvo::publisher
