#include <gtest/gtest.h>

#include "base/clock.hpp"
#include "extension/awake_shortcut_provider.hpp"
#include "extension/memory_provider.hpp"
#include "extension/monitor_provider.hpp"
#include "extension/sample_data.hpp"
#include "sampling/system_sampler.hpp"
#include "shared/widget_snapshot_store.hpp"
#include "support/base/fixed_clock.hpp"
#include "support/files.hpp"
#include "support/scoped_environment.hpp"
#include "support/temporary_directory.hpp"

namespace korvo {
namespace {

using testing_support::ScopedEnvironment;
using testing_support::TemporaryDirectory;

const Date now = Date::fromUnixSeconds(1'794'707'100);  // 2026-11-15T01:45:00Z
const std::filesystem::path desktopRoot = std::string(KORVO_FIXTURES_DIR) + "/proc/desktop-zram";
const std::string sampleFile = std::string(KORVO_SOURCE_DIR) + "/data/samples/usage-snapshot.json";

// A machine whose /proc cannot be read and whose shared file has no location at all.
class NoMachine : public ::testing::Test {
 protected:
  void SetUp() override {
    environment.set("KORVO_SYSROOT", empty.path().string());
    environment.unset("XDG_DATA_HOME");
    environment.unset("HOME");
    environment.set("KORVO_BUNDLE_INFO", (empty.path() / "missing-Info.json").string());
  }

  TemporaryDirectory empty;
  ScopedEnvironment environment;
  const testing_support::FixedClock fixedClock_{now};
};

// A machine with fixture /proc figures and the sample shared file in its group container.
class FixtureMachine : public ::testing::Test {
 protected:
  void SetUp() override { testing_support::useMachine(environment, desktopRoot, dataHome.path()); }

  void writeSharedFile() const {
    dataHome.write(testing_support::sharedFileRelative(), testing_support::readFile(sampleFile));
  }
  WidgetSnapshot storedSnapshot() const {
    return *WidgetSnapshotStore::load(WidgetSnapshotStore::fileURL());
  }

  TemporaryDirectory dataHome;
  ScopedEnvironment environment;
  const testing_support::FixedClock fixedClock_{now};
};

template <class Entry, class Provider>
Entry snapshotOf(const Provider& provider, const TimelineContext& context) {
  std::optional<Entry> answer;
  provider.getSnapshot(context, [&](Entry entry) { answer = std::move(entry); });
  return *answer;
}

template <class Entry, class Provider>
Timeline<Entry> timelineOf(const Provider& provider, const TimelineContext& context) {
  std::optional<Timeline<Entry>> answer;
  provider.getTimeline(context, [&](Timeline<Entry> timeline) { answer = std::move(timeline); });
  return *answer;
}

TEST(SampleData, MemoryReadingHasTheStatedFigures) {
  const MemorySnapshot sample = SampleData::memoryReading(now);
  EXPECT_EQ(sample.total, 17'179'869'184u);
  EXPECT_EQ(sample.wired, 1'024'000'000u);
  EXPECT_EQ(sample.compressed, 1'024'000'000u);
  EXPECT_EQ(sample.app, 6'963'200'000u);
  EXPECT_EQ(sample.cached, 1'228'800'000u);
  EXPECT_FALSE(sample.swap.has_value());
  EXPECT_EQ(sample.pressure, MemoryPressure::normal);
  EXPECT_EQ(sample.timestamp, now);
}

TEST(SampleData, WidgetSnapshotHasTheStatedWindowsAndDates) {
  const WidgetSnapshot sample = SampleData::widgetSnapshot(now);
  EXPECT_EQ(sample.date, now);
  EXPECT_EQ(sample.temperature, 54.0);
  EXPECT_EQ(sample.temperatureDate, now);
  EXPECT_TRUE(sample.temperatureEnabled);
  EXPECT_TRUE(sample.codex.enabled);
  EXPECT_FALSE(sample.codex.message.has_value());
  EXPECT_FALSE(sample.codex.isRefreshing);
  ASSERT_TRUE(sample.codex.snapshot.has_value());
  const UsageSnapshot& usage = *sample.codex.snapshot;
  EXPECT_EQ(usage.fetchedAt, now);
  EXPECT_FALSE(usage.source.has_value());
  ASSERT_EQ(usage.windows.size(), 2u);
  EXPECT_EQ(
      usage.windows[0],
      (UsageWindow{.title = "5-hour", .usedPercent = 28, .resetsAt = now.addingSeconds(7'200)}));
  EXPECT_EQ(
      usage.windows[1],
      (UsageWindow{.title = "Weekly", .usedPercent = 42, .resetsAt = now.addingSeconds(172'800)}));
}

TEST(SampleData, WidgetSnapshotsTwoUsageStatesAreEqual) {
  const WidgetSnapshot sample = SampleData::widgetSnapshot(now);
  EXPECT_EQ(sample.codex, sample.claude);
}

TEST_F(NoMachine, MemoryPlaceholderIsTheSampleWithoutReadingProc) {
  const MemoryEntry entry = MemoryProvider{}.placeholder({});
  EXPECT_EQ(entry, (MemoryEntry{.date = now, .memory = SampleData::memoryReading(now)}));
}

TEST_F(NoMachine, MonitorPlaceholderIsTheSampleWithoutAContainer) {
  const MonitorEntry entry = MonitorProvider{}.placeholder({});
  EXPECT_EQ(entry, (MonitorEntry{.date = now, .snapshot = SampleData::widgetSnapshot(now)}));
}

TEST_F(NoMachine, AwakePlaceholderCarriesOnlyTheDate) {
  EXPECT_EQ(AwakeShortcutProvider{}.placeholder({}), AwakeEntry{now});
}

TEST_F(NoMachine, MemorySnapshotOutsideTheGalleryIsAbsentWhenTheKernelRefuses) {
  const auto entry = snapshotOf<MemoryEntry>(MemoryProvider{}, {.isPreview = false});
  EXPECT_EQ(entry, (MemoryEntry{.date = now, .memory = std::nullopt}));
}

TEST_F(NoMachine, MemoryTimelineHoldsOneEntryWithoutAReadingWhenTheKernelRefuses) {
  const auto timeline = timelineOf<MemoryEntry>(MemoryProvider{}, {});
  ASSERT_EQ(timeline.entries.size(), 1u);
  EXPECT_FALSE(timeline.entries[0].memory.has_value());
  EXPECT_EQ(timeline.policy, ReloadPolicy::after(now.addingSeconds(1'800)));
}

TEST_F(NoMachine, MonitorTimelineWithoutAContainerHoldsOneEntryWithoutSnapshot) {
  const auto timeline = timelineOf<MonitorEntry>(MonitorProvider{}, {});
  ASSERT_EQ(timeline.entries.size(), 1u);
  EXPECT_EQ(timeline.entries[0], (MonitorEntry{.date = now, .snapshot = std::nullopt}));
}

TEST_F(FixtureMachine, MemoryTimelineIsOneFreshReadingReloadedAfter1800Seconds) {
  const auto timeline = timelineOf<MemoryEntry>(MemoryProvider{}, {});
  ASSERT_EQ(timeline.entries.size(), 1u);
  EXPECT_EQ(timeline.entries[0].date, now);
  const auto expected = SystemSampler(desktopRoot).readMemory();
  ASSERT_TRUE(expected.has_value());
  EXPECT_EQ(timeline.entries[0].memory, expected);
  ASSERT_TRUE(timeline.policy.date.has_value());
  EXPECT_EQ(timeline.policy.date->secondsSince(timeline.entries[0].date), 1'800);
}

TEST_F(FixtureMachine, MemoryTimelineReadsTheContextsRootOverTheEnvironments) {
  TemporaryDirectory empty;
  const auto timeline = timelineOf<MemoryEntry>(MemoryProvider{}, {.systemRoot = empty.path()});
  ASSERT_EQ(timeline.entries.size(), 1u);
  EXPECT_FALSE(timeline.entries[0].memory.has_value());
}

TEST_F(FixtureMachine, MemorySnapshotInTheGalleryIsTheSampleEvenWithARealReading) {
  const auto entry = snapshotOf<MemoryEntry>(MemoryProvider{}, {.isPreview = true});
  EXPECT_EQ(entry, (MemoryEntry{.date = now, .memory = SampleData::memoryReading(now)}));
}

TEST_F(FixtureMachine, MemorySnapshotOutsideTheGalleryIsAFreshReading) {
  const auto entry = snapshotOf<MemoryEntry>(MemoryProvider{}, {.isPreview = false});
  EXPECT_EQ(entry.memory, SystemSampler(desktopRoot).readMemory());
  EXPECT_NE(entry.memory, SampleData::memoryReading(now));
}

TEST_F(FixtureMachine, MonitorTimelineIsTheStoredSnapshotReloadedAfter900Seconds) {
  writeSharedFile();
  const auto timeline = timelineOf<MonitorEntry>(MonitorProvider{}, {});
  ASSERT_EQ(timeline.entries.size(), 1u);
  EXPECT_EQ(timeline.entries[0], (MonitorEntry{.date = now, .snapshot = storedSnapshot()}));
  EXPECT_EQ(timeline.policy, ReloadPolicy::after(now.addingSeconds(900)));
}

TEST_F(FixtureMachine, MonitorTimelineWithoutTheFileHoldsOneEntryWithoutSnapshot) {
  const auto timeline = timelineOf<MonitorEntry>(MonitorProvider{}, {});
  ASSERT_EQ(timeline.entries.size(), 1u);
  EXPECT_FALSE(timeline.entries[0].snapshot.has_value());
  EXPECT_EQ(timeline.policy, ReloadPolicy::after(now.addingSeconds(900)));
}

TEST_F(FixtureMachine, MonitorTimelineWithAnUndecodableFileHoldsOneEntryWithoutSnapshot) {
  dataHome.write(testing_support::sharedFileRelative(), "{\"date\": 1");
  const auto timeline = timelineOf<MonitorEntry>(MonitorProvider{}, {});
  ASSERT_EQ(timeline.entries.size(), 1u);
  EXPECT_FALSE(timeline.entries[0].snapshot.has_value());
}

TEST_F(FixtureMachine, MonitorSnapshotInTheGalleryIsTheSampleEvenWithAStoredFile) {
  writeSharedFile();
  const auto entry = snapshotOf<MonitorEntry>(MonitorProvider{}, {.isPreview = true});
  EXPECT_EQ(entry, (MonitorEntry{.date = now, .snapshot = SampleData::widgetSnapshot(now)}));
}

TEST_F(FixtureMachine, MonitorSnapshotOutsideTheGalleryIsTheStoredFile) {
  writeSharedFile();
  const auto entry = snapshotOf<MonitorEntry>(MonitorProvider{}, {.isPreview = false});
  EXPECT_EQ(entry, (MonitorEntry{.date = now, .snapshot = storedSnapshot()}));
}

TEST_F(FixtureMachine, MonitorSnapshotOutsideTheGalleryIsAbsentWithoutTheFile) {
  const auto entry = snapshotOf<MonitorEntry>(MonitorProvider{}, {.isPreview = false});
  EXPECT_EQ(entry, (MonitorEntry{.date = now, .snapshot = std::nullopt}));
}

TEST_F(FixtureMachine, MonitorReadsTheContextsFileOverTheContainers) {
  writeSharedFile();
  WidgetSnapshot other = storedSnapshot();
  other.temperature = 71.5;
  const auto path = dataHome.path() / "elsewhere.json";
  ASSERT_TRUE(WidgetSnapshotStore::save(other, Url::file(path)));
  const auto timeline =
      timelineOf<MonitorEntry>(MonitorProvider{}, {.snapshotFile = Url::file(path)});
  ASSERT_EQ(timeline.entries.size(), 1u);
  EXPECT_EQ(timeline.entries[0].snapshot, other);
}

TEST_F(FixtureMachine, AwakeTimelineHoldsOneDateOnlyEntryAndNeverReloads) {
  const auto timeline = timelineOf<AwakeEntry>(AwakeShortcutProvider{}, {});
  ASSERT_EQ(timeline.entries.size(), 1u);
  EXPECT_EQ(timeline.entries[0], AwakeEntry{now});
  EXPECT_EQ(timeline.policy, ReloadPolicy::never());
  EXPECT_FALSE(timeline.policy.date.has_value());
}

TEST_F(FixtureMachine, AwakeSnapshotIsDateOnlyInAndOutsideTheGallery) {
  for (const bool preview : {true, false}) {
    const auto entry = snapshotOf<AwakeEntry>(AwakeShortcutProvider{}, {.isPreview = preview});
    EXPECT_EQ(entry, AwakeEntry{now}) << preview;
  }
}

// Every request of every provider answers through its completion exactly once before returning.
TEST_F(FixtureMachine, EveryCompletionIsCalledExactlyOnce) {
  writeSharedFile();
  int calls = 0;
  const auto count = [&](auto&&) { ++calls; };
  for (const bool preview : {true, false}) {
    const TimelineContext context{.isPreview = preview};
    MemoryProvider{}.getSnapshot(context, count);
    MemoryProvider{}.getTimeline(context, count);
    AwakeShortcutProvider{}.getSnapshot(context, count);
    AwakeShortcutProvider{}.getTimeline(context, count);
    MonitorProvider{}.getSnapshot(context, count);
    MonitorProvider{}.getTimeline(context, count);
  }
  EXPECT_EQ(calls, 12);
}

// With a clock that runs a million times as fast, two readings of it never agree; the dates of
// one answer still do, because each request reads the clock once.
class FastClock : public FixtureMachine {
 protected:
  void SetUp() override {
    FixtureMachine::SetUp();
    clock::setFixed(std::nullopt);
    clock::setWarp(0, 1e6);
  }
};

TEST_F(FastClock, MemoryTimelineReloadComesFromTheEntrysReadingOfTheClock) {
  const auto timeline = timelineOf<MemoryEntry>(MemoryProvider{}, {});
  ASSERT_TRUE(timeline.entries[0].memory.has_value());
  EXPECT_EQ(*timeline.policy.date, timeline.entries[0].date.addingSeconds(1'800));
}

TEST_F(FastClock, PlaceholderSampleDatesComeFromOneReadingOfTheClock) {
  const MemoryEntry memory = MemoryProvider{}.placeholder({});
  EXPECT_EQ(memory.memory->timestamp, memory.date);
  const MonitorEntry monitor = MonitorProvider{}.placeholder({});
  EXPECT_EQ(monitor.snapshot, SampleData::widgetSnapshot(monitor.date));
}

TEST_F(FastClock, MonitorTimelineReloadComesFromTheEntrysReadingOfTheClock) {
  const auto timeline = timelineOf<MonitorEntry>(MonitorProvider{}, {});
  EXPECT_EQ(*timeline.policy.date, timeline.entries[0].date.addingSeconds(900));
}

}  // namespace
}  // namespace korvo
