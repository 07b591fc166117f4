#include "model/entry_json.hpp"

#include <gtest/gtest.h>

#include <string>

#include "sampling/memory_snapshot.hpp"
#include "shared/widget_snapshot_json.hpp"
#include "support/files.hpp"

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
  MemorySnapshot memory = MemorySnapshot::fromPageCounts(
      17'179'869'184, 4'096, /*active=*/1'500'000, /*inactive=*/500'000, /*wired=*/250'000,
      /*compressed=*/250'000, /*purgeable=*/100'000, /*external=*/200'000, /*swap=*/std::nullopt,
      MemoryPressure::normal);
  memory.timestamp = now;
  const auto json = entryJSON(MemoryEntry{.date = now, .memory = memory});
  EXPECT_EQ(json["memory"].dump(),
            R"({"total":17179869184,"app":6963200000,"wired":1024000000,"compressed":1024000000,)"
            R"("cached":1228800000,"swap":null,"pressure":"Normal","timestamp":816399900,)"
            R"("used":9011200000,"available":8168669184,"usedFraction":0.5245208740234375})");
}

TEST(EntryJSON, MonitorEntryWritesTheSnapshotInTheSharedFilesOwnForm) {
  const std::string bytes = testing_support::readFile(sampleFile);
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

TEST(EntryJSON, DocumentTextWritesEveryDateInItsShortestRoundTripForm) {
  // The library's own writer gives 742502552.2800649 and 187891.79016439721 for these.
  const struct {
    double seconds;
    const char* text;
  } cases[] = {{742502552.280065, "742502552.280065"},
               {187891.7901643972, "187891.7901643972"},
               {816399900.5, "816399900.5"},
               {1e300, "1e+300"}};
  for (const auto& c : cases) {
    EXPECT_EQ(documentText(dateJSON(Date{c.seconds})), c.text);
    EXPECT_EQ(std::stod(documentText(dateJSON(Date{c.seconds}))), c.seconds);
  }
}

TEST(EntryJSON, DocumentTextLaysOutLikeTheLibrarysDump) {
  const auto document = nlohmann::ordered_json::parse(
      R"({"widget":"com.tessmoor.Korvo.memory","none":null,"yes":true,"count":-3,)"
      R"("big":17179869184,"half":0.5,"text":"a\"b\u00b7\n","empty":{},"list":[],)"
      R"("nested":{"entries":[{"date":1.5},{"date":2}],"reload":{"policy":"never"}}})");
  EXPECT_EQ(documentText(document), document.dump());
  EXPECT_EQ(documentText(document, 2), document.dump(2));
}

TEST(EntryJSON, MonitorEntryDocumentKeepsTheSharedFilesNumbersExactly) {
  const std::string bytes = R"({"date":742502552.280065,"temperature":187891.7901643972,)"
                            R"("temperatureDate":742502552.280065,"temperatureEnabled":true,)"
                            R"("codex":{"enabled":false,"isRefreshing":false},)"
                            R"("claude":{"enabled":false,"isRefreshing":false}})";
  const auto decoded = decodeWidgetSnapshot(bytes);
  ASSERT_TRUE(std::holds_alternative<WidgetSnapshot>(decoded));
  const auto json = entryJSON(
      MonitorEntry{.date = Date{742502552.280065}, .snapshot = std::get<WidgetSnapshot>(decoded)});
  EXPECT_EQ(documentText(json), R"({"date":742502552.280065,"snapshot":)" + bytes + "}");
}

}  // namespace
}  // namespace korvo
