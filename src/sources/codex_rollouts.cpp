#include "sources/codex_rollouts.hpp"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <tuple>
#include <unordered_set>

#include "base/text.hpp"
#include "sources/reverse_line_reader.hpp"
#include "sources/zstd_line_reader.hpp"

namespace korvo {
namespace {

using codex_rollout::LineLimits;

// Bounds on the listing, so a strange tree cannot make the reader run long.
constexpr int maxEntriesPerDirectory = 100'000;
constexpr int maxArchivedEntries = 100'000;
constexpr int maxArchivedDepth = 8;

constexpr std::string_view plainSuffix = ".jsonl";
constexpr std::string_view compressedSuffix = ".jsonl.zst";

struct Rollout {
  struct timespec modified {};
  std::string path;
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

bool isRolloutName(std::string_view name) {
  return name.starts_with("rollout-") &&
         (name.ends_with(plainSuffix) || name.ends_with(compressedSuffix));
}

// Calls `visit(folder, name, type)` for each entry of `directory` but "." and "..", at most
// `limit` of them. Listed with readdir, not std::filesystem: a heavy user has thousands of
// rollouts, and a path object per entry costs more than the listing itself.
template <class Visit>
void forEachEntry(const std::string& directory, int limit, Visit visit) {
  DIR* folder = ::opendir(directory.c_str());
  if (folder == nullptr) return;
  int seen = 0;
  while (const dirent* entry = ::readdir(folder)) {
    const std::string_view name = entry->d_name;
    if (name == "." || name == "..") continue;
    if (++seen > limit) break;
    visit(::dirfd(folder), name, entry->d_type);
  }
  ::closedir(folder);
}

void addRollout(int folder, std::string_view name, const std::string& directory,
                std::vector<Rollout>& rollouts) {
  struct stat status {};
  const std::string nameText(name);
  if (::fstatat(folder, nameText.c_str(), &status, 0) != 0 || !S_ISREG(status.st_mode)) return;
  rollouts.push_back({status.st_mtim, directory + '/' + nameText, name.ends_with(compressedSuffix),
                      static_cast<std::uint64_t>(status.st_size)});
}

void sessionRollouts(const std::string& sessions, std::vector<Rollout>& rollouts) {
  const auto subfolders = [](const std::string& directory, std::size_t digits) {
    std::vector<std::string> found;
    forEachEntry(directory, maxEntriesPerDirectory, [&](int, std::string_view name, unsigned char) {
      if (allDigits(name, digits)) found.push_back(directory + '/' + std::string(name));
    });
    return found;
  };
  for (const auto& year : subfolders(sessions, 4)) {
    for (const auto& month : subfolders(year, 2)) {
      for (const auto& day : subfolders(month, 2)) {
        forEachEntry(day, maxEntriesPerDirectory,
                     [&](int folder, std::string_view name, unsigned char) {
                       if (isRolloutName(name)) addRollout(folder, name, day, rollouts);
                     });
      }
    }
  }
}

// Archived rollouts at any depth (up to maxArchivedDepth), not following linked folders.
void archivedRollouts(const std::string& directory, int depth, int& seen,
                      std::vector<Rollout>& rollouts) {
  std::vector<std::string> subfolders;
  forEachEntry(directory, maxArchivedEntries,
               [&](int folder, std::string_view name, unsigned char type) {
                 if (++seen > maxArchivedEntries) return;
                 if (isRolloutName(name)) {
                   addRollout(folder, name, directory, rollouts);
                 } else if (type == DT_DIR && depth < maxArchivedDepth) {
                   subfolders.push_back(directory + '/' + std::string(name));
                 }
               });
  for (const auto& subfolder : subfolders) archivedRollouts(subfolder, depth + 1, seen, rollouts);
}

std::vector<Rollout> rolloutsNewestFirst(const std::filesystem::path& codexHome) {
  std::vector<Rollout> rollouts;
  sessionRollouts((codexHome / "sessions").native(), rollouts);
  int seen = 0;
  archivedRollouts((codexHome / "archived_sessions").native(), 0, seen, rollouts);
  // A plain rollout beside its compressed copy is the one Codex still writes to.
  std::unordered_set<std::string> plain;
  for (const Rollout& rollout : rollouts) {
    if (!rollout.compressed) plain.insert(rollout.path);
  }
  std::erase_if(rollouts, [&](const Rollout& rollout) {
    if (!rollout.compressed) return false;
    const std::string_view name = rollout.path;
    return plain.contains(
        std::string(name.substr(0, name.size() - std::string_view(".zst").size())));
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
  const auto found = memo->fruitless.find(rollout.path);
  if (found == memo->fruitless.end()) return false;
  if (found->second == seen(rollout)) return true;
  memo->fruitless.erase(found);
  memo->changed = true;
  return false;
}

// Keeps only the files still listed, so the memo never outgrows the folder.
void forgetUnlisted(RolloutMemo& memo, const std::vector<Rollout>& rollouts) {
  std::unordered_set<std::string_view> listed;
  for (const Rollout& rollout : rollouts) listed.insert(rollout.path);
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
    memo->fruitless[rollout.path] = seen(rollout);
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
  // In path order, so an unchanged memo is an unchanged file.
  std::vector<std::pair<std::string_view, RolloutMemo::Seen>> entries(memo.fruitless.begin(),
                                                                      memo.fruitless.end());
  std::sort(entries.begin(), entries.end(),
            [](const auto& a, const auto& b) { return a.first < b.first; });
  std::string text;
  for (const auto& [path, seen] : entries) {
    if (path.find('\n') != std::string::npos) continue;
    text += std::to_string(seen.size) + ' ' + std::to_string(seen.modifiedNanoseconds) + ' ' +
            std::string(path) + '\n';
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
