#pragma once

#include <filesystem>
#include <optional>

#include "sources/codex_rollouts.hpp"

// Where korvo remembers the Codex rollouts that hold no limits, so it does not read them again:
// $XDG_CACHE_HOME/korvo/codex-rollouts.memo, 0600 in a 0700 folder. Only file names, sizes and
// times, never their contents; losing it costs one slower publication.
namespace korvo::rollout_memo_file {

// $XDG_CACHE_HOME/korvo/codex-rollouts.memo (an absolute XDG_CACHE_HOME), else
// ~/.cache/korvo/codex-rollouts.memo; none without a home.
std::optional<std::filesystem::path> location();

// The memo in the file; empty when it is missing, unreadable or too large.
RolloutMemo load();

// Writes `memo` when it changed. False when it cannot be written.
bool save(const RolloutMemo& memo);

}  // namespace korvo::rollout_memo_file
