#pragma once

#include <sqlite3.h>

#include <chrono>
#include <filesystem>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/date.hpp"

namespace korvo {

// One recorded figure: `metric` is "codex.<title>", "claude.<title>", "temperature",
// "memory.used", "memory.pressure" or "cpu.load"; a window's figure carries its reset.
struct HistoryRow {
  Date time;
  std::string metric;
  double value = 0;
  std::optional<Date> resetsAt;

  friend bool operator==(const HistoryRow&, const HistoryRow&) = default;
};

// korvo's record of its figures: $XDG_STATE_HOME/korvo/history.sqlite3, SQLite in WAL mode with
// `user_version` as the schema's version. Raw rows are kept for rawDays, 10-minute averages for
// averagedDays, nothing older. Only figures ever enter it.
class HistoryStore {
 public:
  static constexpr int schemaVersion = 3;
  static constexpr double rawDays = 7;
  static constexpr double averagedDays = 90;
  static constexpr double averageSeconds = 600;

  // $XDG_STATE_HOME/korvo/history.sqlite3 (an absolute XDG_STATE_HOME), else
  // ~/.local/state/korvo/history.sqlite3; none without a home.
  static std::optional<std::filesystem::path> location();

  // Opens `file`, creating it (0600 in a 0700 folder) or bringing an older schema up to date, and
  // waiting at most `patience` for another writer. A file that is not a database korvo can read
  // is renamed aside (`history.sqlite3.corrupt-<date>`) with one line to `log` and a new one
  // started. None, with one line to `log`, when no database can be had.
  static std::optional<HistoryStore> open(const std::filesystem::path& file, std::ostream& log,
                                          Date now, std::chrono::milliseconds patience);

  // The history at location() when there is one; a reader never creates it.
  static std::optional<HistoryStore> openExisting(std::ostream& log, Date now,
                                                  std::chrono::milliseconds patience);

  // Records `rows` in one transaction. False when they cannot be (a full disk, a database locked
  // longer than the patience): they are skipped, nothing else changes.
  bool record(const std::vector<HistoryRow>& rows);

  // Replaces the raw rows older than rawDays before `now` with their 10-minute averages and
  // removes what is older than averagedDays.
  bool compact(Date now);
  // Compacts when raw rows have been over rawDays old for an hour.
  bool compactIfDue(Date now);

  // The rows from `since` to `until` (inclusive), oldest first; only those of `metric` when it
  // is not empty.
  std::vector<HistoryRow> rows(std::optional<Date> since, std::optional<Date> until,
                               const std::string& metric = {}) const;

 private:
  struct Close {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
  };
  explicit HistoryStore(sqlite3* database) : database_(database) {}
  bool execute(const char* sql) const;

  std::unique_ptr<sqlite3, Close> database_;
};

}  // namespace korvo
