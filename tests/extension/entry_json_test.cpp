#include "extension/entry_json.hpp"

#include <gtest/gtest.h>

#include "extension/sample_data.hpp"
#include "scoped_environment.hpp"
#include "shared/widget_snapshot_json.hpp"

namespace korvo {
namespace {

const std::string sampleFile = std::string(KORVO_SOURCE_DIR) + "/data/samples/usage-snapshot.json";

TEST(EntryJSON, DatesAreWrittenInTheirShortestRoundTripForm) {
  const struct {
    double seconds;
    const char* text;
  } cases[] = {{816399900, "816399900"},
               {816399900.5, "816399900.5"},
               {0.1, "0.1"},
               {-3, "-3"},
               {816933060.9240389, "816933060.9240389"}};
  for (const auto& c : cases) {
    EXPECT_EQ(dateJSON(Date{c.seconds}).dump(), c.text);
  }
}

TEST(EntryJSON, MemoryEntryWithoutAReadingWritesNull) {
  EXPECT_EQ(entryJSON(MemoryEntry{.date = Date{816399900}, .memory = std::nullopt}).dump(),
            R"({"date":816399900,"memory":null})");
}

TEST(EntryJSON, MemoryEntryWritesTheEightFieldsAndTheDerivedFigures) {
  const Date now{816399900};
  const auto json = entryJSON(MemoryEntry{.date = now, .memory = SampleData::memoryReading(now)});
  EXPECT_EQ(json["memory"].dump(),
            R"({"total":17179869184,"app":6963200000,"wired":1024000000,"compressed":1024000000,)"
            R"("cached":1228800000,"swap":null,"pressure":"Normal","timestamp":816399900,)"
            R"("used":9011200000,"available":8168669184,"usedFraction":0.5245208740234375})");
}

TEST(EntryJSON, MonitorEntryWritesTheSnapshotInTheSharedFilesOwnForm) {
  const std::string bytes = testing::readFile(sampleFile);
  const auto decoded = decodeWidgetSnapshot(bytes);
  ASSERT_TRUE(std::holds_alternative<WidgetSnapshot>(decoded));
  const auto json = entryJSON(
      MonitorEntry{.date = Date{816399900}, .snapshot = std::get<WidgetSnapshot>(decoded)});
  EXPECT_EQ(json["snapshot"].dump(), bytes);
  EXPECT_EQ(entryJSON(MonitorEntry{.date = Date{1.5}, .snapshot = std::nullopt}).dump(),
            R"({"date":1.5,"snapshot":null})");
}

TEST(EntryJSON, ReloadPoliciesNameTheirKindAndOnlyAfterHasADate) {
  EXPECT_EQ(reloadJSON(ReloadPolicy::after(Date{816401700})).dump(),
            R"({"policy":"after","date":816401700})");
  EXPECT_EQ(reloadJSON(ReloadPolicy::never()).dump(), R"({"policy":"never"})");
}

}  // namespace
}  // namespace korvo
