#include "app/history_store.hpp"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <cmath>
#include <sstream>

#include "app/history_figures.hpp"
#include "shared/moment_text.hpp"
#include "support/files.hpp"
#include "support/scoped_environment.hpp"
#include "support/temporary_directory.hpp"

namespace korvo {
namespace {

using namespace std::chrono_literals;
using testing_support::readFile;
using testing_support::TemporaryDirectory;
using testing_support::writeFile;

const Date now = *parseIsoMoment("2026-11-25T12:00:00Z");

mode_t permissions(const std::filesystem::path& path) {
  struct stat status {};
  ::stat(path.c_str(), &status);
  return status.st_mode & 07777;
}

// A statement's first column, read straight from the file.
std::string scalar(const std::filesystem::path& file, const char* sql) {
  sqlite3* database = nullptr;
  sqlite3_open(file.c_str(), &database);
  sqlite3_stmt* statement = nullptr;
  std::string value;
  if (sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) == SQLITE_OK &&
      sqlite3_step(statement) == SQLITE_ROW) {
    const auto* text = sqlite3_column_text(statement, 0);
    value = text != nullptr ? reinterpret_cast<const char*>(text) : "";
  }
  sqlite3_finalize(statement);
  sqlite3_close(database);
  return value;
}

class HistoryStoreTest : public testing::Test {
 protected:
  std::optional<HistoryStore> open() { return HistoryStore::open(file, log, now, 200ms); }

  TemporaryDirectory folder;
  std::filesystem::path file = folder.path() / "state/korvo/history.sqlite3";
  std::ostringstream log;
};

TEST_F(HistoryStoreTest, ANewHistoryIsAPrivateWalDatabaseOfTheCurrentSchema) {
  const mode_t previous = ::umask(0);
  ASSERT_TRUE(open());
  ::umask(previous);
  EXPECT_EQ(scalar(file, "PRAGMA user_version;"), std::to_string(HistoryStore::schemaVersion));
  EXPECT_EQ(scalar(file, "PRAGMA journal_mode;"), "wal");
  EXPECT_EQ(permissions(file), 0600u);
  EXPECT_EQ(permissions(file.parent_path()), 0700u);
  EXPECT_EQ(log.str(), "");
}

TEST_F(HistoryStoreTest, RowsComeBackOldestFirstBetweenTheMomentsAndByMetric) {
  auto store = open();
  ASSERT_TRUE(store);
  const std::vector<HistoryRow> rows{
      {now.addingSeconds(-120), "codex.5-hour", 20, now.addingSeconds(3600)},
      {now.addingSeconds(-120), "temperature", 61.5, std::nullopt},
      {now.addingSeconds(-60), "codex.5-hour", 22, now.addingSeconds(3600)},
      {now, "codex.Weekly", 40, std::nullopt},
  };
  ASSERT_TRUE(store->record(rows));
  EXPECT_EQ(store->rows(std::nullopt, std::nullopt), rows);
  EXPECT_EQ(store->rows(now.addingSeconds(-60), std::nullopt),
            (std::vector<HistoryRow>{rows[2], rows[3]}));
  EXPECT_EQ(store->rows(std::nullopt, now.addingSeconds(-120)),
            (std::vector<HistoryRow>{rows[0], rows[1]}));
  EXPECT_EQ(store->rows(std::nullopt, std::nullopt, "codex.5-hour"),
            (std::vector<HistoryRow>{rows[0], rows[2]}));
  // A second writer's rows join the same history.
  auto second = open();
  ASSERT_TRUE(second);
  ASSERT_TRUE(second->record({{now, "cpu.load", 12, std::nullopt}}));
  EXPECT_EQ(store->rows(std::nullopt, std::nullopt).size(), 5u);
}

TEST_F(HistoryStoreTest, AHistoryOfTheFirstSchemaIsBroughtUpToDateWithItsRows) {
  std::filesystem::create_directories(file.parent_path());
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(database,
                         "CREATE TABLE samples(time REAL NOT NULL, metric TEXT NOT NULL, value "
                         "REAL NOT NULL); INSERT INTO samples VALUES(1795600000, 'temperature', "
                         "55); PRAGMA user_version = 1;",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  sqlite3_close(database);
  auto store = open();
  ASSERT_TRUE(store);
  EXPECT_EQ(scalar(file, "PRAGMA user_version;"), std::to_string(HistoryStore::schemaVersion));
  EXPECT_EQ(store->rows(std::nullopt, std::nullopt),
            (std::vector<HistoryRow>{
                {Date::fromUnixSeconds(1795600000), "temperature", 55, std::nullopt}}));
}

TEST_F(HistoryStoreTest, APublicationCompactsOnceRawRowsAreAnHourPastTheWeek) {
  auto store = open();
  ASSERT_TRUE(store);
  const Date weekAndHalfAnHour = now.addingSeconds(-7 * 86400 - 1800);
  ASSERT_TRUE(store->record(
      {{weekAndHalfAnHour, "cpu.load", 10, std::nullopt}, {now, "cpu.load", 20, std::nullopt}}));
  ASSERT_TRUE(store->compactIfDue(now));
  EXPECT_EQ(scalar(file, "SELECT COUNT(*) FROM samples WHERE averaged = 1;"), "0") << "not due";
  ASSERT_TRUE(store->compactIfDue(now.addingSeconds(3600)));
  EXPECT_EQ(scalar(file, "SELECT COUNT(*) FROM samples WHERE averaged = 1;"), "1");
  EXPECT_EQ(scalar(file, "SELECT COUNT(*) FROM samples WHERE averaged = 0;"), "1");
}

TEST_F(HistoryStoreTest, AWeekOldRowsBecomeTenMinuteAveragesAndNinetyDayOldOnesGo) {
  auto store = open();
  ASSERT_TRUE(store);
  const Date eightDaysAgo =
      Date::fromUnixSeconds(std::floor(now.addingSeconds(-8 * 86400).unixSeconds() / 600) * 600);
  std::vector<HistoryRow> rows;
  for (int minute = 0; minute < 20; ++minute) {  // two buckets of ten readings
    rows.push_back({eightDaysAgo.addingSeconds(minute * 60), "memory.used",
                    static_cast<double>(minute), std::nullopt});
  }
  rows.push_back({now.addingSeconds(-91 * 86400), "memory.used", 99, std::nullopt});
  rows.push_back({now.addingSeconds(-60), "memory.used", 50, std::nullopt});
  ASSERT_TRUE(store->record(rows));
  ASSERT_TRUE(store->compact(now));
  EXPECT_EQ(
      store->rows(std::nullopt, std::nullopt),
      (std::vector<HistoryRow>{{eightDaysAgo, "memory.used", 4.5, std::nullopt},
                               {eightDaysAgo.addingSeconds(600), "memory.used", 14.5, std::nullopt},
                               rows.back()}));
  // Compacting again changes nothing: averages are not averaged twice.
  ASSERT_TRUE(store->compact(now));
  EXPECT_EQ(store->rows(std::nullopt, std::nullopt).size(), 3u);
}

TEST_F(HistoryStoreTest, ACorruptFileIsMovedAsideWithOneLineAndANewOneStarted) {
  const std::string garbage(8192, 'x');
  writeFile(file, garbage);
  auto store = open();
  ASSERT_TRUE(store);
  ASSERT_TRUE(store->record({{now, "temperature", 60, std::nullopt}}));
  const auto aside = file.string() + ".corrupt-2026-11-25T12:00:00Z";
  EXPECT_EQ(readFile(aside), garbage);
  EXPECT_EQ(log.str(), "korvo: " + file.string() + " is not a history korvo can read; moved to " +
                           aside + " and started anew\n");
}

TEST_F(HistoryStoreTest, ALockedHistorySkipsTheRowsWithinItsPatience) {
  auto store = open();
  ASSERT_TRUE(store);
  sqlite3* holder = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &holder), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(holder, "BEGIN IMMEDIATE;", nullptr, nullptr, nullptr), SQLITE_OK);
  EXPECT_FALSE(store->record({{now, "temperature", 60, std::nullopt}}));
  sqlite3_exec(holder, "ROLLBACK;", nullptr, nullptr, nullptr);
  sqlite3_close(holder);
  EXPECT_TRUE(store->record({{now, "temperature", 61, std::nullopt}}));
  EXPECT_EQ(store->rows(std::nullopt, std::nullopt),
            (std::vector<HistoryRow>{{now, "temperature", 61, std::nullopt}}));
}

TEST_F(HistoryStoreTest, AHistoryOfALaterKorvoIsLeftAsItIs) {
  std::filesystem::create_directories(file.parent_path());
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
  sqlite3_exec(database, "CREATE TABLE x(y); PRAGMA user_version = 9;", nullptr, nullptr, nullptr);
  sqlite3_close(database);
  EXPECT_FALSE(open());
  EXPECT_EQ(scalar(file, "PRAGMA user_version;"), "9");
  EXPECT_EQ(log.str(), "korvo: cannot open the history " + file.string() + "\n");
}

TEST_F(HistoryStoreTest, APublicationsKeptHistoryFollowsTheFileMovedAsideOrAnotherPlace) {
  testing_support::ScopedEnvironment state("XDG_STATE_HOME", (folder.path() / "state").string());
  const auto recorded = [&](double value) {
    return history_figures::record({{now, "cpu.load", value, std::nullopt}}, now, log, 200ms);
  };
  ASSERT_TRUE(recorded(1));
  ASSERT_TRUE(recorded(2));
  EXPECT_EQ(scalar(file, "SELECT COUNT(*) FROM samples;"), "2");
  // Moved aside as a corrupt file is: the next rows start a new history, not the moved one.
  std::filesystem::rename(file, folder.path() / "aside.sqlite3");
  ASSERT_TRUE(recorded(3));
  EXPECT_EQ(scalar(file, "SELECT group_concat(value) FROM samples;"), "3.0");
  const testing_support::ScopedEnvironment other("XDG_STATE_HOME",
                                                 (folder.path() / "other").string());
  ASSERT_TRUE(recorded(4));
  EXPECT_EQ(scalar(folder.path() / "other/korvo/history.sqlite3", "SELECT COUNT(*) FROM samples;"),
            "1");
  EXPECT_EQ(log.str(), "");
}

}  // namespace
}  // namespace korvo
