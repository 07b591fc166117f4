#include "app/history_figures.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <mutex>
#include <ostream>

#include "base/display_text.hpp"
#include "sampling/small_file.hpp"
#include "sampling/system_sampler.hpp"

namespace korvo::history_figures {

std::vector<HistoryRow> windowRows(std::string_view provider, const UsageSnapshot& snapshot,
                                   Date now) {
  std::vector<HistoryRow> rows;
  for (const UsageWindow& window : snapshot.windows) {
    rows.push_back(
        {now, std::string(provider) + "." + window.title, window.usedPercent, window.resetsAt});
  }
  return rows;
}

std::optional<double> cpuLoadPercent(const std::filesystem::path& root) {
  // A few numbers in one line: written by hand, as no library reads /proc/loadavg.
  std::array<char, 256> buffer{};
  const auto path = (root / "proc/loadavg").string();
  const auto text = readSmallFile(path.c_str(), buffer);
  if (!text) return std::nullopt;
  double load = 0;
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), load);
  const long processors = ::sysconf(_SC_NPROCESSORS_ONLN);
  if (error != std::errc() || end == text->data() || processors <= 0 || load < 0) {
    return std::nullopt;
  }
  // A queue longer than the processors is a full machine, as a graph of percent shows it.
  return std::min(100.0, load / static_cast<double>(processors) * 100);
}

std::vector<HistoryRow> publicationRows(const WidgetSnapshot& snapshot, Date now,
                                        const std::filesystem::path& root) {
  std::vector<HistoryRow> rows;
  for (const auto& [name, state] :
       {std::pair{"codex", &snapshot.codex}, std::pair{"claude", &snapshot.claude}}) {
    if (state->enabled && state->snapshot) {
      auto windows = windowRows(name, *state->snapshot, now);
      rows.insert(rows.end(), windows.begin(), windows.end());
    }
  }
  if (snapshot.temperature) rows.push_back({now, "temperature", *snapshot.temperature, {}});
  const SystemSampler sampler(root);
  if (const auto kernel = sampler.readKernelMemory()) {
    if (const auto memory = sampler.readMemory()) {
      rows.push_back({now, "memory.used", memory->usedFraction() * 100, {}});
    }
    if (kernel->pressureLevel > 0) {
      rows.push_back({now, "memory.pressure", static_cast<double>(kernel->pressureLevel), {}});
    }
  }
  if (const auto load = cpuLoadPercent(root)) rows.push_back({now, "cpu.load", *load, {}});
  return rows;
}

bool withHistory(Date now, std::ostream& notes, std::chrono::milliseconds patience,
                 const std::function<void(HistoryStore&)>& use) {
  struct Kept {
    std::optional<HistoryStore> store;
    std::filesystem::path file;
    int descriptor = -1;  // held open, so the file's inode cannot pass to another file
  };
  static std::mutex guard;
  static Kept kept;
  const std::lock_guard lock(guard);
  const auto file = HistoryStore::location();
  if (!file) return false;
  struct stat named {};
  struct stat held {};
  const bool same = kept.store && kept.file == *file && ::stat(file->c_str(), &named) == 0 &&
                    ::fstat(kept.descriptor, &held) == 0 && named.st_ino == held.st_ino &&
                    named.st_dev == held.st_dev;
  if (!same) {
    // Moved aside, removed or another place: what was kept is not the history any more.
    kept.store.reset();
    if (kept.descriptor >= 0) ::close(kept.descriptor);
    kept.descriptor = -1;
    kept.store = HistoryStore::open(*file, notes, now, patience);
    if (!kept.store) return false;
    kept.file = *file;
    kept.descriptor = ::open(file->c_str(), O_RDONLY | O_CLOEXEC);
  }
  use(*kept.store);
  return true;
}

bool record(const std::vector<HistoryRow>& rows, Date now, std::ostream& notes,
            std::chrono::milliseconds patience) {
  bool recorded = false;
  const bool had = withHistory(now, notes, patience, [&](HistoryStore& store) {
    recorded = store.record(rows);
    if (recorded) store.compactIfDue(now);
  });
  if (had && !recorded) {
    notes << "korvo: the history " << displayText(HistoryStore::location()->string())
          << " is busy or its disk full; these figures are not recorded in it\n";
  }
  return recorded;
}

}  // namespace korvo::history_figures
