#include "app/history_store.hpp"

#include <cmath>
#include <ostream>
#include <system_error>

#include "base/display_text.hpp"
#include "shared/atomic_file.hpp"
#include "shared/moment_text.hpp"
#include "sources/user_paths.hpp"

namespace korvo {
namespace {

constexpr double daySeconds = 24 * 3600;

// Each version's step from the one before: version 1 kept figures, version 2 added a window's
// reset and the index the graphs read by, version 3 an index of the raw rows alone, so that a
// publication asking whether any is due for averaging does not walk months of averages.
constexpr const char* migrations[] = {
    "CREATE TABLE samples(time REAL NOT NULL, metric TEXT NOT NULL, value REAL NOT NULL);",
    "ALTER TABLE samples ADD COLUMN resets_at REAL;"
    "ALTER TABLE samples ADD COLUMN averaged INTEGER NOT NULL DEFAULT 0;"
    "CREATE INDEX samples_by_metric ON samples(metric, time);"
    "CREATE INDEX samples_by_time ON samples(time);",
    "CREATE INDEX samples_raw_by_time ON samples(time) WHERE averaged = 0;",
};
static_assert(std::size(migrations) == HistoryStore::schemaVersion);

class Statement {
 public:
  Statement(sqlite3* database, const char* sql) {
    sqlite3_prepare_v2(database, sql, -1, &statement_, nullptr);
  }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement() { sqlite3_finalize(statement_); }
  sqlite3_stmt* get() const { return statement_; }
  bool ok() const { return statement_ != nullptr; }

 private:
  sqlite3_stmt* statement_ = nullptr;
};

int userVersion(sqlite3* database) {
  const Statement query(database, "PRAGMA user_version;");
  if (!query.ok() || sqlite3_step(query.get()) != SQLITE_ROW) return -1;
  return sqlite3_column_int(query.get(), 0);
}

enum class Schema { ready, unavailable, foreign, later };

// What the last failure says of the file: not a database korvo can read, or only not now (busy,
// locked, a full disk, an I/O error), which must never cost the user their history.
Schema failure(sqlite3* database) {
  const int code = sqlite3_errcode(database);
  return code == SQLITE_NOTADB || code == SQLITE_CORRUPT || code == SQLITE_ERROR
             ? Schema::foreign
             : Schema::unavailable;
}

// Brings the schema to schemaVersion in one transaction.
Schema migrate(sqlite3* database) {
  const int version = userVersion(database);
  if (version < 0) return failure(database);
  if (version > HistoryStore::schemaVersion) return Schema::later;
  if (version == HistoryStore::schemaVersion) {
    // A version that matches but tables that do not: not korvo's file.
    const Statement check(database, "SELECT time, metric, value, resets_at FROM samples LIMIT 0;");
    return check.ok() ? Schema::ready : failure(database);
  }
  std::string steps = "BEGIN IMMEDIATE;";
  for (int step = version; step < HistoryStore::schemaVersion; ++step) steps += migrations[step];
  steps += "PRAGMA user_version = " + std::to_string(HistoryStore::schemaVersion) + ";COMMIT;";
  if (sqlite3_exec(database, steps.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK) {
    return Schema::ready;
  }
  const Schema failed = failure(database);
  sqlite3_exec(database, "ROLLBACK;", nullptr, nullptr, nullptr);
  return failed;
}

sqlite3* openDatabase(const std::filesystem::path& file, std::chrono::milliseconds patience) {
  sqlite3* database = nullptr;
  if (sqlite3_open_v2(file.c_str(), &database,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOFOLLOW,
                      nullptr) != SQLITE_OK) {
    sqlite3_close(database);
    return nullptr;
  }
  sqlite3_busy_timeout(database, static_cast<int>(patience.count()));
  return database;
}

}  // namespace

std::optional<std::filesystem::path> HistoryStore::location() {
  if (auto state = absolutePathFromEnvironment("XDG_STATE_HOME")) {
    return *state / "korvo" / "history.sqlite3";
  }
  if (auto home = homeDirectory()) return *home / ".local/state/korvo/history.sqlite3";
  return std::nullopt;
}

std::optional<HistoryStore> HistoryStore::open(const std::filesystem::path& file, std::ostream& log,
                                               Date now, std::chrono::milliseconds patience) {
  if (!createPrivateDirectories(file.parent_path())) {
    log << "korvo: cannot create the folder of " << displayText(file.string()) << '\n';
    return std::nullopt;
  }
  for (int attempt = 0; attempt < 2; ++attempt) {
    sqlite3* database = openDatabase(file, patience);
    if (database == nullptr) break;
    HistoryStore store(database);
    // WAL lets the dashboard read while a publication writes; a figure lost to a power cut is not
    // worth a disk flush on every status-line change.
    store.execute("PRAGMA journal_mode=WAL;");
    store.execute("PRAGMA synchronous=NORMAL;");
    const Schema schema = migrate(database);
    if (schema == Schema::ready) {
      std::error_code ignored;
      std::filesystem::permissions(
          file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, ignored);
      return store;
    }
    if (schema != Schema::foreign || attempt > 0) break;
    store.database_.reset();
    const auto aside = file.string() + ".corrupt-" + isoMoment(now);
    std::error_code error;
    std::filesystem::rename(file, aside, error);
    for (const char* suffix : {"-wal", "-shm"}) {
      std::filesystem::remove(file.string() + suffix, error);
    }
    log << "korvo: " << displayText(file.string()) << " is not a history korvo can read; moved to "
        << displayText(aside) << " and started anew\n";
  }
  log << "korvo: cannot open the history " << displayText(file.string()) << '\n';
  return std::nullopt;
}

std::optional<HistoryStore> HistoryStore::openExisting(std::ostream& log, Date now,
                                                       std::chrono::milliseconds patience) {
  const auto file = location();
  std::error_code error;
  if (!file || !std::filesystem::exists(*file, error)) return std::nullopt;
  return open(*file, log, now, patience);
}

bool HistoryStore::execute(const char* sql) const {
  return sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool HistoryStore::record(const std::vector<HistoryRow>& rows) {
  if (rows.empty()) return true;
  if (!execute("BEGIN IMMEDIATE;")) return false;
  const Statement insert(database_.get(),
                         "INSERT INTO samples(time, metric, value, resets_at) VALUES(?, ?, ?, ?);");
  bool written = insert.ok();
  for (const HistoryRow& row : rows) {
    if (!written) break;
    if (!std::isfinite(row.value)) continue;
    sqlite3_bind_double(insert.get(), 1, row.time.unixSeconds());
    sqlite3_bind_text(insert.get(), 2, row.metric.c_str(), static_cast<int>(row.metric.size()),
                      SQLITE_TRANSIENT);
    sqlite3_bind_double(insert.get(), 3, row.value);
    if (row.resetsAt) {
      sqlite3_bind_double(insert.get(), 4, row.resetsAt->unixSeconds());
    } else {
      sqlite3_bind_null(insert.get(), 4);
    }
    written = sqlite3_step(insert.get()) == SQLITE_DONE;
    sqlite3_reset(insert.get());
  }
  if (written && execute("COMMIT;")) return true;
  execute("ROLLBACK;");
  return false;
}

bool HistoryStore::compactIfDue(Date now) {
  // Due once the oldest raw row is an hour past the raw span: a publication a minute need not
  // rewrite the table each time.
  const Statement due(database_.get(),
                      "SELECT 1 FROM samples WHERE time < ? AND averaged = 0 LIMIT 1;");
  if (!due.ok()) return false;
  sqlite3_bind_double(due.get(), 1, now.unixSeconds() - rawDays * daySeconds - 3600);
  const bool isDue = sqlite3_step(due.get()) == SQLITE_ROW;
  // A statement still reading the table would keep compact's DROP TABLE from running.
  sqlite3_reset(due.get());
  return !isDue || compact(now);
}

bool HistoryStore::compact(Date now) {
  const std::string rawBefore = std::to_string(now.unixSeconds() - rawDays * daySeconds);
  const std::string keepAfter = std::to_string(now.unixSeconds() - averagedDays * daySeconds);
  const std::string bucket = std::to_string(averageSeconds);
  const std::string sql =
      "BEGIN IMMEDIATE;"
      "DELETE FROM samples WHERE time < " +
      keepAfter +
      ";"
      "CREATE TEMP TABLE averages AS SELECT (CAST(time / " +
      bucket + " AS INTEGER) * " + bucket +
      ") AS bucket, metric, AVG(value) AS value, MAX(resets_at) AS resets_at FROM samples "
      "WHERE time < " +
      rawBefore +
      " AND averaged = 0 GROUP BY bucket, metric;"
      "DELETE FROM samples WHERE time < " +
      rawBefore +
      " AND averaged = 0;"
      "INSERT INTO samples(time, metric, value, resets_at, averaged) "
      "SELECT bucket, metric, value, resets_at, 1 FROM averages;"
      "DROP TABLE averages;"
      "COMMIT;";
  if (sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK) {
    return true;
  }
  execute("ROLLBACK;");
  return false;
}

std::vector<HistoryRow> HistoryStore::rows(std::optional<Date> since, std::optional<Date> until,
                                           const std::string& metric) const {
  // One metric's rows walk the index by metric and time: the graphs read a window's week among
  // the figures of every other metric.
  const Statement query(database_.get(),
                        metric.empty() ? "SELECT time, metric, value, resets_at FROM samples "
                                         "WHERE time >= ?1 AND time <= ?2 ORDER BY time, rowid;"
                                       : "SELECT time, metric, value, resets_at FROM samples "
                                         "WHERE metric = ?3 AND time >= ?1 AND time <= ?2 "
                                         "ORDER BY time, rowid;");
  std::vector<HistoryRow> found;
  if (!query.ok()) return found;
  sqlite3_bind_double(query.get(), 1, since ? since->unixSeconds() : -HUGE_VAL);
  sqlite3_bind_double(query.get(), 2, until ? until->unixSeconds() : HUGE_VAL);
  if (!metric.empty()) {
    sqlite3_bind_text(query.get(), 3, metric.c_str(), static_cast<int>(metric.size()),
                      SQLITE_TRANSIENT);
  }
  while (sqlite3_step(query.get()) == SQLITE_ROW) {
    HistoryRow row;
    row.time = Date::fromUnixSeconds(sqlite3_column_double(query.get(), 0));
    const auto* metric = reinterpret_cast<const char*>(sqlite3_column_text(query.get(), 1));
    row.metric = metric != nullptr ? metric : "";
    row.value = sqlite3_column_double(query.get(), 2);
    if (sqlite3_column_type(query.get(), 3) != SQLITE_NULL) {
      row.resetsAt = Date::fromUnixSeconds(sqlite3_column_double(query.get(), 3));
    }
    found.push_back(std::move(row));
  }
  return found;
}

}  // namespace korvo
