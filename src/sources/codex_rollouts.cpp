#include "sources/codex_rollouts.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <system_error>
#include <tuple>
#include <vector>

#include "base/text.hpp"
#include "sources/codex_rollout_line.hpp"
#include "sources/reverse_line_reader.hpp"

namespace korvo {
namespace {

// Bounds on one folder's listing, so a strange tree cannot make the reader run long.
constexpr int maxEntriesPerDirectory = 100'000;

struct Rollout {
  struct timespec modified {};
  std::filesystem::path path;
};

bool allDigits(std::string_view text, std::size_t count) {
  return text.size() == count &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

template <class Accept>
std::vector<std::filesystem::path> entries(const std::filesystem::path& directory, Accept accept) {
  std::vector<std::filesystem::path> found;
  std::error_code error;
  std::filesystem::directory_iterator listing(directory, error);
  int seen = 0;
  for (; !error && listing != std::filesystem::directory_iterator(); listing.increment(error)) {
    if (++seen > maxEntriesPerDirectory) break;
    if (accept(listing->path().filename().string())) found.push_back(listing->path());
  }
  return found;
}

bool isRolloutName(const std::string& name) {
  return name.starts_with("rollout-") && name.ends_with(".jsonl");
}

std::vector<Rollout> rolloutsNewestFirst(const std::filesystem::path& sessions) {
  std::vector<Rollout> rollouts;
  const auto year = [](const std::string& name) { return allDigits(name, 4); };
  const auto twoDigits = [](const std::string& name) { return allDigits(name, 2); };
  for (const auto& yearDir : entries(sessions, year)) {
    for (const auto& monthDir : entries(yearDir, twoDigits)) {
      for (const auto& dayDir : entries(monthDir, twoDigits)) {
        for (auto& file : entries(dayDir, isRolloutName)) {
          struct stat status {};
          if (::stat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
          rollouts.push_back({status.st_mtim, std::move(file)});
        }
      }
    }
  }
  std::sort(rollouts.begin(), rollouts.end(), [](const Rollout& a, const Rollout& b) {
    return std::tie(a.modified.tv_sec, a.modified.tv_nsec, a.path) >
           std::tie(b.modified.tv_sec, b.modified.tv_nsec, b.path);
  });
  return rollouts;
}

std::optional<UsageSnapshot> lastLimits(const std::filesystem::path& rollout) {
  auto reader = ReverseLineReader::open(rollout);
  if (!reader) return std::nullopt;
  while (const auto line = reader->previous()) {
    if (auto snapshot = codex_rollout::parseLine(*line)) return snapshot;
  }
  return std::nullopt;
}

}  // namespace

std::string message(CodexShortfall shortfall) {
  switch (shortfall) {
    case CodexShortfall::noSessions:
      return _("No Codex sessions found");
    case CodexShortfall::noLimits:
      return _("No limits in Codex logs yet");
  }
  return {};
}

std::variant<CodexLimits, CodexShortfall> readCodexLimits(const std::filesystem::path& codexHome) {
  const auto rollouts = rolloutsNewestFirst(codexHome / "sessions");
  if (rollouts.empty()) return CodexShortfall::noSessions;
  for (const Rollout& rollout : rollouts) {
    if (auto snapshot = lastLimits(rollout.path)) {
      return CodexLimits{std::move(*snapshot), rollout.path};
    }
  }
  return CodexShortfall::noLimits;
}

}  // namespace korvo
