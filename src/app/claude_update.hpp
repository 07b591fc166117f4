#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "app/settings.hpp"
#include "base/date.hpp"
#include "shared/widget_snapshot.hpp"
#include "shared/widget_snapshot_json.hpp"
#include "sources/claude_status_line.hpp"

namespace korvo::claude_update {

// Stored Claude figures older than this are written again even when unchanged, so the widgets
// can tell live figures from old ones.
inline constexpr double refreshSeconds = 60;

// How long the status line waits for another writer's lock before it prints without saving.
inline constexpr std::chrono::seconds lockPatience{2};
// How long it waits for another writer of the history before it leaves its figures out of it.
inline constexpr std::chrono::milliseconds historyPatience{300};

// The snapshot with Claude's `windows` merged in at `now` (windows of those titles replaced,
// others kept, "5-hour" before "Weekly"; fetchedAt now, source "Claude Code", no message); none
// when nothing needs writing: no windows, Claude switched off, or the same figures stored less
// than refreshSeconds ago. The file's other parts are kept where they decode; a part that is
// missing or malformed starts as the settings say.
std::optional<WidgetSnapshot> merge(const WidgetSnapshotParts& current,
                                    const std::vector<UsageWindow>& windows,
                                    const Settings& settings, Date now);

// The short line a status line shows: "5-hour · 72% left | Weekly · 58% left"; without windows
// what the input says of the session ("Opus 4.1 · context 42% used").
std::string statusText(const claude_status_line::Input& input);

// Merges under the shared file's lock and saves when needed, then records what it saved in the
// history; every failure is silent, because a broken status line must never break Claude Code.
// When another process holds the lock longer than lockPatience, nothing is saved.
void apply(const std::vector<UsageWindow>& windows, const Settings& settings);

}  // namespace korvo::claude_update
