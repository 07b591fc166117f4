#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "shared/widget_snapshot_json.hpp"
#include "shared/widget_snapshot_store.hpp"
#include "support/files.hpp"
#include "support/sample_snapshot.hpp"
#include "support/temporary_directory.hpp"

// JSON has no place for a NUL byte, so a file holding one is not a snapshot wherever it sits:
// the reader sees the whole file, not the part before the first NUL.
namespace korvo {
namespace {

using testing::HasSubstr;

std::string example() {
  return testing_support::readFile(testing_support::exampleSnapshotPath());
}

std::string reasonFor(const std::string& bytes) {
  const auto decoded = decodeWidgetSnapshot(bytes);
  if (const auto* failure = std::get_if<DecodeFailure>(&decoded)) return failure->reason;
  return "(decoded)";
}

TEST(NulByte, AfterAValidDocumentAndBeforeGarbageMakesTheFileUnreadable) {
  EXPECT_THAT(reasonFor(example() + std::string(1, '\0') + "garbage"), HasSubstr("NUL byte"));
}

TEST(NulByte, AloneAfterAValidDocumentMakesTheFileUnreadable) {
  EXPECT_THAT(reasonFor(example() + std::string(1, '\0')), HasSubstr("NUL byte"));
}

TEST(NulByte, InsideAStringMakesTheFileUnreadable) {
  std::string bytes = example();
  const auto title = bytes.find("Weekly");
  ASSERT_NE(title, std::string::npos);
  bytes[title + 1] = '\0';
  EXPECT_THAT(reasonFor(bytes), HasSubstr("NUL byte"));
}

TEST(NulByte, ItsOffsetIsNamed) {
  EXPECT_THAT(reasonFor("{}\n" + std::string(1, '\0')), HasSubstr("at byte 4"));
}

TEST(NulByte, InTheSharedFileOnDiskIsNoSnapshot) {
  testing_support::TemporaryDirectory directory;
  const auto file = directory.write("usage-snapshot.json", example() + std::string(1, '\0') + "x");
  EXPECT_EQ(WidgetSnapshotStore::load(Url::file(file)), std::nullopt);
}

}  // namespace
}  // namespace korvo
