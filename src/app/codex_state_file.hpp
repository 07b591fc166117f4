#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "base/date.hpp"
#include "sources/codex_rollouts.hpp"

// korvo's own record of what Codex said beyond the shared file's windows (the plan, credits, other
// limits, and the app-server's last answer), for the dashboard and for the publications between
// two asks: $XDG_STATE_HOME/korvo/codex.json, 0600 in a 0700 folder. Only figures enter it, never
// a line, prompt or path of the user's conversations.
namespace korvo::codex_state_file {

// What the last ask of Codex's app-server came to.
struct LiveRecord {
  Date askedAt;
  std::optional<std::string> failure;  // why the last ask failed, when it did
  std::optional<CodexLimits> reading;  // the last good answer, kept through failures

  friend bool operator==(const LiveRecord&, const LiveRecord&) = default;
};

// The file's two parts; each absent when the file has none (or a broken one).
struct Record {
  std::optional<CodexLimits> rollouts;  // the rollouts' reading (its rollout path is not kept)
  std::optional<LiveRecord> live;

  friend bool operator==(const Record&, const Record&) = default;
};

// $XDG_STATE_HOME/korvo/codex.json (an absolute XDG_STATE_HOME), else
// ~/.local/state/korvo/codex.json; none without a home.
std::optional<std::filesystem::path> location();

// The lock that keeps two asks of the app-server from running at once, beside the file.
std::optional<std::filesystem::path> liveLockLocation();

// The record in the file's bytes.
Record read(const std::string& bytes);

// The record in the file; empty when it is missing or unreadable.
Record load();

// The file's bytes with the parts `changes` holds replaced: a reading is {"source", "fetchedAt",
// "windows": [{"title", "usedPercent", "resetsAt"}], "planType", "credits": {"hasCredits",
// "unlimited", "balance"}, "otherLimits": [{"limitId", "limitName", "fetchedAt", "windows"}]},
// under "rollouts", and under "live" as {"askedAt", "failure", "reading"}. Every other key of
// `current` is kept when it is a JSON object.
std::string document(const std::string& current, const Record& changes);

// Records the parts `changes` holds in the file, writing only when its bytes change. False when
// it cannot be written.
bool save(const Record& changes);

}  // namespace korvo::codex_state_file
