#include "app/rollout_memo_file.hpp"

#include "shared/atomic_file.hpp"
#include "shared/file_bytes.hpp"
#include "sources/user_paths.hpp"

namespace korvo::rollout_memo_file {
namespace {

// Tens of thousands of rollouts fit; a larger file is not korvo's and is started anew.
constexpr std::size_t maxBytes = std::size_t{16} << 20;

}  // namespace

std::optional<std::filesystem::path> location() {
  if (auto cache = absolutePathFromEnvironment("XDG_CACHE_HOME")) {
    return *cache / "korvo" / "codex-rollouts.memo";
  }
  if (auto home = homeDirectory()) return *home / ".cache" / "korvo" / "codex-rollouts.memo";
  return std::nullopt;
}

RolloutMemo load() {
  const auto path = location();
  if (!path) return {};
  const auto read = readRegularFile(*path, maxBytes);
  const auto* bytes = std::get_if<std::string>(&read);
  return bytes ? parseMemo(*bytes) : RolloutMemo{};
}

bool save(const RolloutMemo& memo) {
  if (!memo.changed) return true;
  const auto path = location();
  return path && createPrivateDirectories(path->parent_path()) &&
         replaceFileAtomically(*path, memoText(memo), 0600);
}

}  // namespace korvo::rollout_memo_file
