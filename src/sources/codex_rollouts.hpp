#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "base/date.hpp"
#include "shared/usage_snapshot.hpp"
#include "sources/codex_rollout_line.hpp"

namespace korvo {

// Codex's rate limits as its rollouts last logged them, and the rollout they came from.
struct CodexLimits {
  UsageSnapshot snapshot;         // windows shortest first, source "Codex CLI"
  std::filesystem::path rollout;  // the rollout file the event was read from
  // For the dashboard only, never the shared file: the reading line's plan and credits, and the
  // newest figures of every other limit id met on the way.
  std::optional<std::string> planType;
  std::optional<codex_rollout::Credits> credits;
  std::vector<codex_rollout::LineLimits> otherLimits;  // by id

  friend bool operator==(const CodexLimits&, const CodexLimits&) = default;
};

// Why there are no limits to show.
enum class CodexShortfall {
  noSessions,  // no rollout files at all (no sessions folder, or an empty one)
  noLimits,    // rollouts, but none with a usable token_count event
};

// "No Codex sessions found", "No limits in Codex logs yet".
std::string message(CodexShortfall shortfall);

namespace codex_rollouts {
// Files modified longer than this before the clock are not read (but for the newest one).
inline constexpr double recentSeconds = 8 * 24 * 3600;
// At most this many bytes are read from the files after the newest one.
inline constexpr std::uint64_t readBudgetBytes = 64ULL * 1024 * 1024;
// Parallel sessions write in turns: files modified this close to the newest one with a reading
// may hold a later line.
inline constexpr double parallelSeconds = 10 * 60;
}  // namespace codex_rollouts

// Rollouts that were read whole without a usable line, with the size and modification time they
// had then: while those stay the same the file is not read again, so accounts whose rollouts carry
// no limits cost a listing, not a gigabyte, on every publication.
struct RolloutMemo {
  struct Seen {
    std::uint64_t size = 0;
    std::int64_t modifiedNanoseconds = 0;
    friend bool operator==(const Seen&, const Seen&) = default;
  };
  std::unordered_map<std::string, Seen> fruitless;  // by path
  bool changed = false;  // entries were added or dropped by the last read

  friend bool operator==(const RolloutMemo&, const RolloutMemo&) = default;
};

// The memo as text, a line per file ("<size> <mtime ns> <path>"), and back; lines that do not
// read so (and paths with a newline, which are never written) are left out.
std::string memoText(const RolloutMemo& memo);
RolloutMemo parseMemo(std::string_view text);

// Codex's limits at `now` from `codexHome`/sessions/YYYY/MM/DD/ and `codexHome`/archived_sessions/
// (any depth): `rollout-*.jsonl`, and `rollout-*.jsonl.zst` where no plain sibling exists. Files
// are looked through newest-modified first: the newest always, then those modified within
// recentSeconds before `now`, at most readBudgetBytes read in all. The reading is the line with
// the latest timestamp among the last usable lines of the files modified within parallelSeconds
// of the newest file that has one. Plain files are read from their end in chunks, compressed ones
// streaming; a compressed file that is truncated, corrupt or too large gives nothing.
// With a `memo`, files it knows are skipped, files read whole without a usable line are added and
// files no longer listed dropped.
std::variant<CodexLimits, CodexShortfall> readCodexLimits(const std::filesystem::path& codexHome,
                                                          Date now, RolloutMemo* memo = nullptr);

}  // namespace korvo
