#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <variant>

#include "app/codex_state_file.hpp"
#include "app/settings.hpp"
#include "base/date.hpp"
#include "shared/widget_snapshot.hpp"
#include "shared/widget_snapshot_json.hpp"
#include "sources/codex_rollouts.hpp"
#include "sources/cpu_temperature.hpp"

namespace korvo::publisher {

// How long a publication waits for another writer's lock before it gives up.
inline constexpr std::chrono::seconds lockPatience{10};
// How long a publication waits for another writer of the history before it skips its figures.
inline constexpr std::chrono::seconds historyPatience{2};

// When Codex's app-server is asked.
enum class LiveAsk {
  whenDue,  // when codexLive is on and the last ask is codexLiveMinutes old or more
  now,      // now, whatever the setting and the last ask
};

// What Codex's two sources say.
struct CodexFound {
  // What is published: the newer of the app-server's last answer and the rollouts' reading.
  std::variant<CodexLimits, CodexShortfall> published;
  std::optional<CodexLimits> rollouts;                // the rollouts' reading
  std::optional<codex_state_file::LiveRecord> asked;  // the ask made now, when one was
  RolloutMemo memo;  // the rollouts known to hold no limits, as this reading left it

  friend bool operator==(const CodexFound&, const CodexFound&) = default;
};

// What one publication found, each part only when its setting is on.
struct Collected {
  std::optional<CpuTemperature> temperature;
  std::optional<CodexFound> codex;
  bool claudeStatusLineInstalled = false;  // Claude's settings already run korvo claude-statusline

  friend bool operator==(const Collected&, const Collected&) = default;
};

// Reads the sources that `settings` switch on: the CPU temperature under $KORVO_SYSROOT, Codex's
// rollouts and app-server, and whether Claude's settings run korvo.
Collected collect(const Settings& settings, LiveAsk live = LiveAsk::whenDue);

// Codex's limits: its rollouts (in the codexHome setting, else $CODEX_HOME, else ~/.codex), and
// its app-server's answer, asked as `live` says or as korvo's state last recorded it.
CodexFound findCodex(const Settings& settings, LiveAsk live);

// The Codex state a publication writes from what was found.
UsageState codexState(bool enabled, const std::optional<CodexFound>& found);

// The snapshot a publication writes at `now` over the file's `current` parts: the temperature and
// Codex's state anew, Claude's figures as the file holds them whenever they decode.
WidgetSnapshot compose(const WidgetSnapshotParts& current, const Settings& settings,
                       const Collected& collected, Date now);

// Collects (asking Codex's app-server as `live` says), then under the shared file's lock reads
// it, composes and saves it; then records Codex's readings (plan, credits, other limits, the
// app-server's answer) in korvo's own state (codex_state_file). What went wrong without stopping
// the publication (an app-server that did not answer) goes to `notes`, a line each. Throws
// std::runtime_error with a one-line message when the file has no place or cannot be written, or
// when the lock is not had within lockPatience or before `stop` is requested. The snapshot
// written.
WidgetSnapshot publish(const Settings& settings, std::ostream& notes,
                       const std::stop_token& stop = {}, LiveAsk live = LiveAsk::whenDue);

// The bytes publish would write now, without writing anything.
std::string preview(const Settings& settings);

}  // namespace korvo::publisher
