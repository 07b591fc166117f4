#include "model/timeline_cursor.hpp"

#include <gtest/gtest.h>

#include "model/awake_entry.hpp"

namespace korvo {
namespace {

Timeline<AwakeEntry> timelineOf(std::vector<double> dates, std::optional<double> reload) {
  Timeline<AwakeEntry> timeline;
  for (const double date : dates) timeline.entries.push_back(AwakeEntry{Date{date}});
  timeline.policy = reload ? ReloadPolicy::after(Date{*reload}) : ReloadPolicy::never();
  return timeline;
}

struct CursorCase {
  const char* name;
  std::vector<double> dates;
  std::optional<double> reload;
  double now;
  double shown;                      // the date of the entry on screen
  std::optional<double> nextEntry;   // when the next entry takes over
  std::optional<double> nextChange;  // when the host must act
};

TEST(TimelineCursorTest, ShowsTheLatestEntryDueAndWakesForTheNextOrTheReload) {
  const CursorCase cases[] = {
      {"one entry, reload later", {100}, 1000, 100, 100, std::nullopt, 1000},
      {"one entry, never reloads", {100}, std::nullopt, 500, 100, std::nullopt, std::nullopt},
      {"before every entry: the first", {100, 200}, 1000, 50, 100, 200, 200},
      {"between entries", {100, 200, 300}, 1000, 250, 200, 300, 300},
      {"an entry dated exactly now", {100, 200}, 1000, 200, 200, std::nullopt, 1000},
      {"next entry after the reload: the reload wins",
       {100, 2000},
       1000,
       150,
       100,
       std::nullopt,
       1000},
      {"next entry at the reload date: the reload wins",
       {100, 1000},
       1000,
       150,
       100,
       std::nullopt,
       1000},
      {"future entries without a reload", {100, 200}, std::nullopt, 150, 100, 200, 200},
  };
  for (const CursorCase& c : cases) {
    SCOPED_TRACE(c.name);
    const TimelineCursor cursor(timelineOf(c.dates, c.reload), Date{c.now});
    EXPECT_EQ(cursor.current().date, Date{c.shown});
    EXPECT_EQ(cursor.nextEntryDate(),
              c.nextEntry ? std::optional(Date{*c.nextEntry}) : std::nullopt);
    EXPECT_EQ(cursor.nextChange(),
              c.nextChange ? std::optional(Date{*c.nextChange}) : std::nullopt);
  }
}

TEST(TimelineCursorTest, MovesOnWhenTheClockPassesTheNextEntry) {
  TimelineCursor cursor(timelineOf({100, 200, 300}, 1000), Date{100});
  EXPECT_EQ(cursor.current().date, Date{100});
  cursor.moveTo(Date{310});
  EXPECT_EQ(cursor.current().date, Date{300});
  EXPECT_EQ(cursor.nextChange(), Date{1000});
}

TEST(TimelineCursorTest, AnEmptyTimelineHasNothingToShow) {
  const TimelineCursor cursor(timelineOf({}, 1000), Date{0});
  EXPECT_TRUE(cursor.empty());
  EXPECT_EQ(cursor.nextChange(), Date{1000});
}

}  // namespace
}  // namespace korvo
