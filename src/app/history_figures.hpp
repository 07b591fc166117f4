#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string_view>
#include <vector>

#include "app/history_store.hpp"
#include "shared/widget_snapshot.hpp"

// What korvo records of a publication or a status-line update.
namespace korvo::history_figures {

// Each window of `snapshot` as "<provider>.<title>" (its used percentage and reset) at `now`.
std::vector<HistoryRow> windowRows(std::string_view provider, const UsageSnapshot& snapshot,
                                   Date now);

// The CPU load in percent of the machine's processors: the one-minute load average of
// `root`/proc/loadavg over the processors online, at most 100. None when it cannot be read.
std::optional<double> cpuLoadPercent(const std::filesystem::path& root);

// What a publication records at `now`: the providers' windows and the CPU temperature as
// published, and the machine's memory (used percent, the kernel's pressure level) and CPU load
// read under `root`.
std::vector<HistoryRow> publicationRows(const WidgetSnapshot& snapshot, Date now,
                                        const std::filesystem::path& root);

// Runs `use` with the history at its location (created when missing), waiting at most
// `patience` for another writer; false, with one line to `notes`, when none can be had. The
// connection is kept for the process's next call while the file stays the same file, so a
// service publishing every minute does not open it each time; calls take turns.
bool withHistory(Date now, std::ostream& notes, std::chrono::milliseconds patience,
                 const std::function<void(HistoryStore&)>& use);

// Records `rows` in the history at `now` (compacting it when due), waiting at most `patience`
// for another writer. A history that is busy, full or cannot be had skips them with one line to
// `notes`; false then.
bool record(const std::vector<HistoryRow>& rows, Date now, std::ostream& notes,
            std::chrono::milliseconds patience);

}  // namespace korvo::history_figures
