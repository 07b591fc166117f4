#include "app/claude_update.hpp"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "app/history_figures.hpp"
#include "app/shared_file.hpp"
#include "app/shared_file_lock.hpp"
#include "app/status_bar_signal.hpp"
#include "base/c_format.hpp"
#include "base/clock.hpp"
#include "base/text.hpp"
#include "shared/usage_window.hpp"
#include "shared/widget_snapshot_store.hpp"
#include "sources/claude_status_line.hpp"

namespace korvo::claude_update {
namespace {

// Where a window goes in the list: the five-hour window first, the weekly one next, others after.
int order(const UsageWindow& window) {
  if (window.title == UsageWindowTitle::fiveHour) return 0;
  if (window.title == UsageWindowTitle::weekly) return 1;
  return 2;
}

std::vector<UsageWindow> mergedWindows(const std::vector<UsageWindow>& stored,
                                       const std::vector<UsageWindow>& fresh) {
  std::vector<UsageWindow> merged = fresh;
  for (const UsageWindow& window : stored) {
    const bool replaced = std::any_of(
        fresh.begin(), fresh.end(), [&](const UsageWindow& f) { return f.title == window.title; });
    if (!replaced) merged.push_back(window);
  }
  std::stable_sort(merged.begin(), merged.end(),
                   [](const UsageWindow& a, const UsageWindow& b) { return order(a) < order(b); });
  return merged;
}

}  // namespace

std::optional<WidgetSnapshot> merge(const WidgetSnapshotParts& current,
                                    const std::vector<UsageWindow>& windows,
                                    const Settings& settings, Date now) {
  if (windows.empty() || !settings.claude) return std::nullopt;
  WidgetSnapshot snapshot;
  if (current.temperature) {
    snapshot.temperature = current.temperature->celsius;
    snapshot.temperatureDate = current.temperature->date;
    snapshot.temperatureEnabled = current.temperature->enabled;
  } else {
    snapshot.temperatureEnabled = settings.temperature;
  }
  if (current.codex) {
    snapshot.codex = *current.codex;
  } else {
    snapshot.codex.enabled = settings.codex;
  }
  const UsageState before = current.claude.value_or(UsageState{});
  const std::vector<UsageWindow> stored =
      before.snapshot ? before.snapshot->windows : std::vector<UsageWindow>{};
  UsageState after{true,
                   UsageSnapshot{mergedWindows(stored, windows), now,
                                 std::string(claude_status_line::sourceName)},
                   std::nullopt, false};
  if (before.snapshot) {
    UsageState unchanged = after;
    unchanged.snapshot->fetchedAt = before.snapshot->fetchedAt;
    const bool fresh = now.secondsSince(before.snapshot->fetchedAt) <= refreshSeconds;
    if (unchanged == before && fresh) return std::nullopt;
  }
  snapshot.claude = std::move(after);
  snapshot.date = now;
  return snapshot;
}

std::string statusText(const claude_status_line::Input& input) {
  if (!input.windows.empty()) return joined(input.windows, " | ", &UsageWindow::remainingSummary);
  std::string line = input.model ? *input.model : _("Claude");
  if (input.contextUsedPercent) {
    line += " · " + cFormat(_("context %.0f%% used").c_str(), *input.contextUsedPercent);
  } else if (!input.model) {
    line += " · " + std::string(_("no limits yet"));
  }
  return line;
}

void apply(const std::vector<UsageWindow>& windows, const Settings& settings) {
  if (windows.empty() || !settings.claude) return;
  const Date now = clock::now();
  std::optional<UsageSnapshot> saved;
  try {
    const auto file = shared_file::path();
    const auto lock = SharedFileLock::acquire(file, lockPatience);
    const auto url = Url::file(file);
    if (auto snapshot = merge(WidgetSnapshotStore::loadParts(url), windows, settings, now)) {
      if (WidgetSnapshotStore::save(*snapshot, url)) {
        status_bar::refresh(settings.waybarSignal);
        saved = snapshot->claude.snapshot;
      }
    }
  } catch (const std::exception&) {
    // No place for the shared file, or its lock held too long: the status line still prints.
  }
  if (saved) {
    std::ostringstream ignored;  // nobody reads a status line's complaints
    history_figures::record(history_figures::windowRows("claude", *saved, now), now, ignored,
                            historyPatience);
  }
}

}  // namespace korvo::claude_update
