#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "shared/widget_snapshot_json.hpp"
#include "shared/widget_snapshot_store.hpp"
#include "support/sample_snapshot.hpp"

namespace korvo {
namespace {

using testing::HasSubstr;

const std::filesystem::path corpus = std::filesystem::path(KORVO_FIXTURES_DIR) / "snapshots";

// File name -> the fragment its diagnostic must contain.
std::map<std::string, std::string> expectedCauses() {
  std::map<std::string, std::string> causes;
  std::ifstream table(corpus / "malformed-causes.tsv");
  std::string line;
  while (std::getline(table, line)) {
    const auto tab = line.find('\t');
    if (tab != std::string::npos) causes[line.substr(0, tab)] = line.substr(tab + 1);
  }
  return causes;
}

std::vector<std::filesystem::path> filesIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

TEST(SnapshotCorpusTest, EveryMalformedFileHasAnExpectedCauseAndTheCorpusIsLarge) {
  const auto causes = expectedCauses();
  const auto files = filesIn(corpus / "malformed");
  EXPECT_GE(files.size(), 60u);
  EXPECT_EQ(files.size(), causes.size());
  for (const auto& file : files) EXPECT_TRUE(causes.count(file.filename().string())) << file;
}

TEST(SnapshotCorpusTest, MalformedFilesYieldNoSnapshotAndADiagnosticNamingTheCause) {
  for (const auto& [name, cause] : expectedCauses()) {
    const auto url = Url::file(corpus / "malformed" / name);
    EXPECT_FALSE(WidgetSnapshotStore::load(url)) << name;
    const auto inspected = WidgetSnapshotStore::inspect(url);
    ASSERT_TRUE(std::holds_alternative<DecodeFailure>(inspected)) << name;
    EXPECT_THAT(std::get<DecodeFailure>(inspected).reason, HasSubstr(cause)) << name;
  }
}

TEST(SnapshotCorpusTest, UnusualButValidFilesDecodeAndSurviveReencoding) {
  const auto files = filesIn(corpus / "valid");
  EXPECT_GE(files.size(), 9u);
  for (const auto& file : files) {
    const auto loaded = WidgetSnapshotStore::inspect(Url::file(file));
    ASSERT_TRUE(std::holds_alternative<WidgetSnapshot>(loaded))
        << file << ": " << std::get<DecodeFailure>(loaded).reason;
    const auto encoded = encodeWidgetSnapshot(std::get<WidgetSnapshot>(loaded));
    ASSERT_TRUE(encoded) << file;
    EXPECT_EQ(std::get<WidgetSnapshot>(decodeWidgetSnapshot(*encoded)),
              std::get<WidgetSnapshot>(loaded))
        << file;
  }
}

TEST(SnapshotCorpusTest, ReorderedAndSpacedFilesEqualTheExample) {
  const auto example = WidgetSnapshotStore::load(Url::file(testing_support::exampleSnapshotPath()));
  ASSERT_TRUE(example);
  for (const char* name : {"other-key-order.json", "whitespace-everywhere.json",
                           "leading-byte-order-mark.json", "unknown-keys-deep-nesting.json"}) {
    EXPECT_EQ(WidgetSnapshotStore::load(Url::file(corpus / "valid" / name)), example) << name;
  }
}

TEST(SnapshotCorpusTest, NullOptionalsAreAbsent) {
  const auto snapshot =
      WidgetSnapshotStore::load(Url::file(corpus / "valid" / "null-optionals.json"));
  ASSERT_TRUE(snapshot);
  EXPECT_FALSE(snapshot->temperature);
  EXPECT_FALSE(snapshot->temperatureDate);
  EXPECT_FALSE(snapshot->codex.message);
  EXPECT_FALSE(snapshot->codex.snapshot->source);
  EXPECT_FALSE(snapshot->codex.snapshot->windows[1].resetsAt);
  EXPECT_FALSE(snapshot->claude.snapshot);
}

TEST(SnapshotCorpusTest, HugeFiniteNumbersKeepTheirValues) {
  const auto snapshot =
      WidgetSnapshotStore::load(Url::file(corpus / "valid" / "huge-finite-numbers.json"));
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->temperature, 1.7976931348623157e308);
  EXPECT_EQ(snapshot->date, Date{-1.7976931348623157e308});
  EXPECT_EQ(snapshot->temperatureDate, Date{5e-324});
  EXPECT_EQ(snapshot->codex.snapshot->windows[0].resetsAt, Date{1.2345678901234568e29});
  EXPECT_EQ(snapshot->codex.snapshot->windows[1].usedPercent, 18446744073709551615.0);
}

}  // namespace
}  // namespace korvo
