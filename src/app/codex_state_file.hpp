#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "sources/codex_rollouts.hpp"

// korvo's own record of what Codex said beyond the shared file's windows (the plan, credits and
// other limits), for the dashboard: $XDG_STATE_HOME/korvo/codex.json, 0600 in a 0700 folder.
// Only figures enter it, never a line, prompt or path of the user's conversations.
namespace korvo::codex_state_file {

// $XDG_STATE_HOME/korvo/codex.json (an absolute XDG_STATE_HOME), else
// ~/.local/state/korvo/codex.json; none without a home.
std::optional<std::filesystem::path> location();

// The file's bytes with the rollout reading under "rollouts" ({"source", "fetchedAt", "planType",
// "credits": {"hasCredits", "unlimited", "balance"}, "otherLimits": [{"limitId", "limitName",
// "fetchedAt", "windows": [{"title", "usedPercent", "resetsAt"}]}]}), every other key of
// `current` kept when it is a JSON object.
std::string document(const std::string& current, const CodexLimits& limits);

// Records `limits` in the file, writing only when its bytes change. False when it cannot be
// written.
bool save(const CodexLimits& limits);

}  // namespace korvo::codex_state_file
