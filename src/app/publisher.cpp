#include "app/publisher.hpp"

#include <cerrno>
#include <cstring>
#include <ostream>
#include <stdexcept>

#include "app/claude_settings_file.hpp"
#include "app/codex_live.hpp"
#include "app/codex_state_file.hpp"
#include "app/history_figures.hpp"
#include "app/rollout_memo_file.hpp"
#include "app/shared_file.hpp"
#include "app/shared_file_lock.hpp"
#include "app/status_bar_signal.hpp"
#include "base/clock.hpp"
#include "base/display_text.hpp"
#include "base/text.hpp"
#include "shared/url.hpp"
#include "shared/widget_snapshot_json.hpp"
#include "shared/widget_snapshot_store.hpp"
#include "sources/user_paths.hpp"

namespace korvo::publisher {
namespace {

UsageState claudeState(const std::optional<UsageState>& current, bool enabled,
                       bool statusLineInstalled) {
  if (!enabled) return {};
  UsageState state = current.value_or(UsageState{});
  state.enabled = true;
  state.isRefreshing = false;
  if (!state.snapshot) {
    state.message =
        statusLineInstalled ? std::nullopt : std::optional(_("Claude status line not set up"));
  }
  return state;
}

WidgetSnapshotParts currentParts(const std::filesystem::path& file) {
  return WidgetSnapshotStore::loadParts(Url::file(file));
}

}  // namespace

CodexFound findCodex(const Settings& settings, LiveAsk live) {
  const Date now = clock::now();
  const auto home =
      settings.codexHome ? std::filesystem::path(*settings.codexHome) : codexHomeDirectory();
  CodexFound found{CodexShortfall::noSessions, std::nullopt, std::nullopt,
                   rollout_memo_file::load()};
  if (home) found.published = readCodexLimits(*home, now, &found.memo);
  if (const auto* limits = std::get_if<CodexLimits>(&found.published)) found.rollouts = *limits;
  if (!settings.codexLive && live == LiveAsk::whenDue) return found;

  auto last = codex_state_file::load().live;
  const double interval = settings.codexLiveMinutes * 60.0;
  if (live == LiveAsk::now || !last || now.secondsSince(last->askedAt) >= interval ||
      now.secondsSince(last->askedAt) < 0) {
    auto outcome = codex_live::ask(settings.codexCommand, codex_live::deadline,
                                   codex_state_file::liveLockLocation());
    // Neither: another korvo is asking right now, and will record its answer.
    if (outcome.limits || outcome.failure) {
      // A failed ask keeps the last good answer: it is still the newest Codex said.
      auto reading =
          outcome.limits ? std::move(outcome.limits) : (last ? last->reading : std::nullopt);
      last = codex_state_file::LiveRecord{now, std::move(outcome.failure), std::move(reading)};
      found.asked = last;
    }
  }
  if (last && last->reading) {
    const auto* rollouts = std::get_if<CodexLimits>(&found.published);
    if (rollouts == nullptr || last->reading->snapshot.fetchedAt > rollouts->snapshot.fetchedAt) {
      found.published = *last->reading;
    }
  }
  return found;
}

Collected collect(const Settings& settings, LiveAsk live) {
  Collected collected;
  if (settings.temperature) collected.temperature = readCpuTemperature(systemRoot());
  if (settings.codex) collected.codex = findCodex(settings, live);
  if (settings.claude) collected.claudeStatusLineInstalled = claude_settings_file::runsKorvo();
  return collected;
}

UsageState codexState(bool enabled, const std::optional<CodexFound>& found) {
  if (!enabled) return {};
  UsageState state{true, std::nullopt, std::nullopt, false};
  if (!found) return state;
  if (const auto* limits = std::get_if<CodexLimits>(&found->published)) {
    state.snapshot = limits->snapshot;
  } else {
    state.message = message(std::get<CodexShortfall>(found->published));
  }
  return state;
}

WidgetSnapshot compose(const WidgetSnapshotParts& current, const Settings& settings,
                       const Collected& collected, Date now) {
  WidgetSnapshot snapshot;
  snapshot.date = now;
  snapshot.temperatureEnabled = settings.temperature;
  if (settings.temperature && collected.temperature) {
    snapshot.temperature = collected.temperature->celsius;
    snapshot.temperatureDate = now;
  }
  snapshot.codex = codexState(settings.codex, collected.codex);
  snapshot.claude =
      claudeState(current.claude, settings.claude, collected.claudeStatusLineInstalled);
  return snapshot;
}

WidgetSnapshot publish(const Settings& settings, std::ostream& notes, const std::stop_token& stop,
                       LiveAsk live) {
  const auto file = shared_file::path();
  const Collected collected = collect(settings, live);
  const Date now = clock::now();
  WidgetSnapshot snapshot;
  {
    const auto lock = SharedFileLock::acquire(file, lockPatience, stop);
    snapshot = compose(currentParts(file), settings, collected, now);
    if (!WidgetSnapshotStore::save(snapshot, Url::file(file))) {
      throw std::runtime_error("cannot write the shared file " + displayText(file.string()) + ": " +
                               std::strerror(errno));
    }
    status_bar::refresh(settings.waybarSignal);
    if (collected.codex) {
      // Only korvo reads it; the shared file, which the widgets read, is written.
      codex_state_file::save({collected.codex->rollouts, collected.codex->asked});
      rollout_memo_file::save(collected.codex->memo);
      if (collected.codex->asked && collected.codex->asked->failure) {
        notes << "korvo: " << *collected.codex->asked->failure << '\n';
      }
    }
  }
  // After the lock: a status line waiting for it need not wait for the history too.
  history_figures::record(history_figures::publicationRows(snapshot, now, systemRoot()), now, notes,
                          historyPatience);
  return snapshot;
}

std::string preview(const Settings& settings) {
  const auto file = shared_file::path();
  const auto snapshot = compose(currentParts(file), settings, collect(settings), clock::now());
  auto bytes = encodeWidgetSnapshot(snapshot);
  if (!bytes) throw std::runtime_error("the snapshot holds a number JSON cannot carry");
  return *bytes;
}

}  // namespace korvo::publisher
