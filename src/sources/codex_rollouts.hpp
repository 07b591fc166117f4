#pragma once

#include <filesystem>
#include <string>
#include <variant>

#include "shared/usage_snapshot.hpp"

namespace korvo {

// Codex's rate limits as its newest rollout last logged them, and the rollout they came from.
struct CodexLimits {
  UsageSnapshot snapshot;         // windows shortest first, source "Codex CLI"
  std::filesystem::path rollout;  // the rollout file the event was read from

  friend bool operator==(const CodexLimits&, const CodexLimits&) = default;
};

// Why there are no limits to show.
enum class CodexShortfall {
  noSessions,  // no rollout files at all (no sessions folder, or an empty one)
  noLimits,    // rollouts, but none with a usable token_count event
};

// "No Codex sessions found", "No limits in Codex logs yet".
std::string message(CodexShortfall shortfall);

// Looks through `codexHome`/sessions/YYYY/MM/DD/rollout-*.jsonl newest-modified first and takes,
// in the first file that has one, its last usable token_count event. Files are read from their
// end in chunks, never whole.
std::variant<CodexLimits, CodexShortfall> readCodexLimits(const std::filesystem::path& codexHome);

}  // namespace korvo
