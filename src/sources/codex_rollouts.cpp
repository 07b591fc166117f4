#include "sources/codex_rollouts.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <set>
#include <system_error>
#include <tuple>

#include "base/text.hpp"
#include "sources/reverse_line_reader.hpp"
#include "sources/zstd_line_reader.hpp"

namespace korvo {
namespace {

using codex_rollout::LineLimits;

// Bounds on the listing, so a strange tree cannot make the reader run long.
constexpr int maxEntriesPerDirectory = 100'000;
constexpr int maxArchivedEntries = 100'000;

constexpr std::string_view plainSuffix = ".jsonl";
constexpr std::string_view compressedSuffix = ".jsonl.zst";

struct Rollout {
  struct timespec modified {};
  std::filesystem::path path;
  bool compressed = false;
  std::uint64_t size = 0;
};

double seconds(const struct timespec& moment) {
  return static_cast<double>(moment.tv_sec) + static_cast<double>(moment.tv_nsec) * 1e-9;
}

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
  return name.starts_with("rollout-") &&
         (name.ends_with(plainSuffix) || name.ends_with(compressedSuffix));
}

void addRollout(std::filesystem::path file, std::vector<Rollout>& rollouts) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return;
  const bool compressed = file.native().ends_with(compressedSuffix);
  rollouts.push_back(
      {status.st_mtim, std::move(file), compressed, static_cast<std::uint64_t>(status.st_size)});
}

void sessionRollouts(const std::filesystem::path& sessions, std::vector<Rollout>& rollouts) {
  const auto year = [](const std::string& name) { return allDigits(name, 4); };
  const auto twoDigits = [](const std::string& name) { return allDigits(name, 2); };
  for (const auto& yearDir : entries(sessions, year)) {
    for (const auto& monthDir : entries(yearDir, twoDigits)) {
      for (const auto& dayDir : entries(monthDir, twoDigits)) {
        for (auto& file : entries(dayDir, isRolloutName)) addRollout(std::move(file), rollouts);
      }
    }
  }
}

void archivedRollouts(const std::filesystem::path& archived, std::vector<Rollout>& rollouts) {
  std::error_code error;
  std::filesystem::recursive_directory_iterator listing(
      archived, std::filesystem::directory_options::skip_permission_denied, error);
  int seen = 0;
  for (; !error && listing != std::filesystem::recursive_directory_iterator();
       listing.increment(error)) {
    if (++seen > maxArchivedEntries) break;
    if (isRolloutName(listing->path().filename().string())) {
      addRollout(listing->path(), rollouts);
    }
  }
}

std::vector<Rollout> rolloutsNewestFirst(const std::filesystem::path& codexHome) {
  std::vector<Rollout> rollouts;
  sessionRollouts(codexHome / "sessions", rollouts);
  archivedRollouts(codexHome / "archived_sessions", rollouts);
  // A plain rollout beside its compressed copy is the one Codex still writes to.
  std::set<std::filesystem::path> plain;
  for (const Rollout& rollout : rollouts) {
    if (!rollout.compressed) plain.insert(rollout.path);
  }
  std::erase_if(rollouts, [&](const Rollout& rollout) {
    if (!rollout.compressed) return false;
    const auto& name = rollout.path.native();
    return plain.contains(name.substr(0, name.size() - std::string_view(".zst").size()));
  });
  std::sort(rollouts.begin(), rollouts.end(), [](const Rollout& a, const Rollout& b) {
    return std::tie(a.modified.tv_sec, a.modified.tv_nsec, a.path) >
           std::tie(b.modified.tv_sec, b.modified.tv_nsec, b.path);
  });
  return rollouts;
}

// What one file gives: its last usable line, and its newest figures of other limit ids.
struct FileReading {
  std::optional<LineLimits> codex;
  std::map<std::string, LineLimits> others;
  std::uint64_t bytesRead = 0;
  bool whole = false;  // every line of the file was looked at

  bool fruitless() const { return whole && !codex && others.empty(); }
};

RolloutMemo::Seen seen(const Rollout& rollout) {
  return {rollout.size, static_cast<std::int64_t>(rollout.modified.tv_sec) * 1'000'000'000 +
                            rollout.modified.tv_nsec};
}

// Whether the memo knows the file as it is now; a file changed since is forgotten.
bool knownFruitless(RolloutMemo* memo, const Rollout& rollout) {
  if (memo == nullptr) return false;
  const auto found = memo->fruitless.find(rollout.path.native());
  if (found == memo->fruitless.end()) return false;
  if (found->second == seen(rollout)) return true;
  memo->fruitless.erase(found);
  memo->changed = true;
  return false;
}

// Keeps only the files still listed, so the memo never outgrows the folder.
void forgetUnlisted(RolloutMemo& memo, const std::vector<Rollout>& rollouts) {
  std::set<std::string_view> listed;
  for (const Rollout& rollout : rollouts) listed.insert(rollout.path.native());
  const auto before = memo.fruitless.size();
  std::erase_if(memo.fruitless, [&](const auto& entry) { return !listed.contains(entry.first); });
  if (memo.fruitless.size() != before) memo.changed = true;
}

void keepNewest(std::map<std::string, LineLimits>& others, LineLimits limits) {
  const auto found = others.find(*limits.limitId);
  if (found == others.end()) {
    others.emplace(*limits.limitId, std::move(limits));
  } else if (limits.snapshot.fetchedAt.secondsSinceReferenceDate >=
             found->second.snapshot.fetchedAt.secondsSinceReferenceDate) {
    found->second = std::move(limits);
  }
}

// Reads back from the end to the last usable line, or until `budget` bytes are read.
FileReading readPlain(const std::filesystem::path& path, std::uint64_t budget) {
  FileReading reading;
  auto reader = ReverseLineReader::open(path);
  if (!reader) return reading;
  while (reader->bytesRead() < budget) {
    const auto line = reader->previous();
    if (!line) {
      reading.whole = true;
      break;
    }
    auto limits = codex_rollout::parseLine(*line);
    if (!limits) continue;
    if (!limits->limitId) {
      reading.codex = std::move(limits);
      break;
    }
    // Read backwards, the first figures met of an id are its newest.
    if (!reading.others.contains(*limits->limitId)) keepNewest(reading.others, std::move(*limits));
  }
  reading.bytesRead = reader->bytesRead();
  return reading;
}

FileReading readCompressed(const std::filesystem::path& path) {
  FileReading reading;
  const auto outcome = zstd_lines::forEachLine(path, [&](std::string_view line) {
    auto limits = codex_rollout::parseLine(line);
    if (!limits) return;
    if (limits->limitId) {
      keepNewest(reading.others, std::move(*limits));
    } else {
      reading.codex = std::move(limits);
    }
  });
  if (!outcome.complete) reading = {};
  reading.bytesRead = outcome.bytesRead;
  reading.whole = outcome.complete;
  return reading;
}

// Reads `rollout` unless the memo knows it holds nothing, and tells the memo when it does. None
// when it is not read.
std::optional<FileReading> readRollout(const Rollout& rollout, std::uint64_t left,
                                       RolloutMemo* memo) {
  // A compressed file is read from its start, so only whole ones are worth reading.
  if (rollout.compressed && rollout.size > left) return std::nullopt;
  if (knownFruitless(memo, rollout)) return std::nullopt;
  FileReading reading =
      rollout.compressed ? readCompressed(rollout.path) : readPlain(rollout.path, left);
  if (memo != nullptr && reading.fruitless()) {
    memo->fruitless[rollout.path.native()] = seen(rollout);
    memo->changed = true;
  }
  return reading;
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

std::string memoText(const RolloutMemo& memo) {
  std::string text;
  for (const auto& [path, seen] : memo.fruitless) {
    if (path.find('\n') != std::string::npos) continue;
    text += std::to_string(seen.size) + ' ' + std::to_string(seen.modifiedNanoseconds) + ' ' +
            path + '\n';
  }
  return text;
}

RolloutMemo parseMemo(std::string_view text) {
  RolloutMemo memo;
  while (!text.empty()) {
    const auto end = text.find('\n');
    if (end == std::string_view::npos) break;  // an unfinished last line
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 1);
    RolloutMemo::Seen seen;
    const char* cursor = line.data();
    const char* const last = line.data() + line.size();
    auto [afterSize, sizeError] = std::from_chars(cursor, last, seen.size);
    if (sizeError != std::errc() || afterSize == last || *afterSize != ' ') continue;
    auto [afterTime, timeError] = std::from_chars(afterSize + 1, last, seen.modifiedNanoseconds);
    if (timeError != std::errc() || afterTime == last || *afterTime != ' ') continue;
    const std::string_view path(afterTime + 1, static_cast<std::size_t>(last - afterTime - 1));
    if (path.empty() || path.front() != '/') continue;
    memo.fruitless[std::string(path)] = seen;
  }
  return memo;
}

std::variant<CodexLimits, CodexShortfall> readCodexLimits(const std::filesystem::path& codexHome,
                                                          Date now, RolloutMemo* memo) {
  using namespace codex_rollouts;
  const auto rollouts = rolloutsNewestFirst(codexHome);
  if (memo != nullptr) forgetUnlisted(*memo, rollouts);
  if (rollouts.empty()) return CodexShortfall::noSessions;
  const double oldest = now.unixSeconds() - recentSeconds;
  std::optional<CodexLimits> best;
  std::optional<double> groupFloor;  // files modified before this cannot hold the reading
  std::map<std::string, LineLimits> others;
  std::uint64_t spent = 0;
  for (std::size_t index = 0; index < rollouts.size(); ++index) {
    const Rollout& rollout = rollouts[index];
    const double modified = seconds(rollout.modified);
    const bool newest = index == 0;
    if (!newest &&
        (modified < oldest || (groupFloor && modified < *groupFloor) || spent >= readBudgetBytes)) {
      break;
    }
    const std::uint64_t left = newest ? UINT64_MAX : readBudgetBytes - spent;
    auto read = readRollout(rollout, left, memo);
    if (!read) continue;
    FileReading& reading = *read;
    spent += reading.bytesRead;
    for (auto& [id, limits] : reading.others) keepNewest(others, std::move(limits));
    if (!reading.codex) continue;
    if (!groupFloor) groupFloor = modified - parallelSeconds;
    if (!best || reading.codex->snapshot.fetchedAt.secondsSinceReferenceDate >
                     best->snapshot.fetchedAt.secondsSinceReferenceDate) {
      best = CodexLimits{std::move(reading.codex->snapshot),
                         rollout.path,
                         std::move(reading.codex->planType),
                         std::move(reading.codex->credits),
                         {}};
    }
  }
  if (!best) return CodexShortfall::noLimits;
  for (auto& [id, limits] : others) best->otherLimits.push_back(std::move(limits));
  return std::move(*best);
}

}  // namespace korvo
