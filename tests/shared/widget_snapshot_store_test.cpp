#include "shared/widget_snapshot_store.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/clock.hpp"
#include "shared/app_group.hpp"
#include "shared/widget_snapshot_json.hpp"
#include "support/files.hpp"
#include "support/sample_snapshot.hpp"
#include "support/scoped_environment.hpp"
#include "support/temporary_directory.hpp"
#include "support/unprivileged.hpp"

namespace korvo {
namespace {

using testing::HasSubstr;
using testing_support::ScopedEnvironment;
using testing_support::TemporaryDirectory;

// Each test points the bundle information and the data home into its own temporary directory.
class WidgetSnapshotStoreTest : public testing::Test {
 protected:
  void writeInfo(const std::string& json) {
    testing_support::writeFile(directory.path() / "Info.json", json);
  }
  std::filesystem::path container() const {
    return directory.path() / "data" / "app-groups" / "group.test";
  }

  TemporaryDirectory directory;
  ScopedEnvironment info{"KORVO_BUNDLE_INFO", (directory.path() / "Info.json").string()};
  ScopedEnvironment dataHome{"XDG_DATA_HOME", (directory.path() / "data").string()};
  ScopedEnvironment home{"HOME", (directory.path() / "home").string()};
};

WidgetSnapshot example() {
  return std::get<WidgetSnapshot>(
      decodeWidgetSnapshot(testing_support::readFile(testing_support::exampleSnapshotPath())));
}

TEST_F(WidgetSnapshotStoreTest, FileUrlIsTheFileInTheGroupContainerUnderXdgDataHome) {
  writeInfo(R"({"KorvoAppGroup":"group.test"})");
  EXPECT_EQ(WidgetSnapshotStore::fileURL(), Url::file(container() / "usage-snapshot.json"));
}

TEST_F(WidgetSnapshotStoreTest, WithoutXdgDataHomeTheContainerIsUnderHome) {
  writeInfo(R"({"KorvoAppGroup":"group.test"})");
  ScopedEnvironment unset{"XDG_DATA_HOME", std::nullopt};
  EXPECT_EQ(
      WidgetSnapshotStore::fileURL(),
      Url::file(directory.path() / "home/.local/share/app-groups/group.test/usage-snapshot.json"));
}

TEST_F(WidgetSnapshotStoreTest, RelativeXdgDataHomeIsIgnored) {
  writeInfo(R"({"KorvoAppGroup":"group.test"})");
  ScopedEnvironment relative{"XDG_DATA_HOME", "relative/data"};
  EXPECT_EQ(
      WidgetSnapshotStore::fileURL(),
      Url::file(directory.path() / "home/.local/share/app-groups/group.test/usage-snapshot.json"));
}

TEST_F(WidgetSnapshotStoreTest, NoAbsoluteBaseDirectoryMeansNoLocation) {
  writeInfo(R"({"KorvoAppGroup":"group.test"})");
  ScopedEnvironment relative{"XDG_DATA_HOME", ""};
  ScopedEnvironment relativeHome{"HOME", "home"};
  EXPECT_FALSE(WidgetSnapshotStore::fileURL());
  ScopedEnvironment noHome{"HOME", std::nullopt};
  EXPECT_FALSE(WidgetSnapshotStore::fileURL());
  EXPECT_THAT(std::get<DecodeFailure>(WidgetSnapshotStore::locate()).reason,
              HasSubstr("neither XDG_DATA_HOME nor HOME"));
}

TEST_F(WidgetSnapshotStoreTest, GroupThatIsNoSafeSinglePathComponentMeansNoLocation) {
  for (const char* info :
       {R"({"KorvoAppGroup":"."})", R"({"KorvoAppGroup":".."})", R"({"KorvoAppGroup":"a/b"})",
        R"({"KorvoAppGroup":"/abs"})", R"({"KorvoAppGroup":"a\u0000b"})"}) {
    writeInfo(info);
    EXPECT_FALSE(WidgetSnapshotStore::fileURL()) << info;
  }
}

TEST_F(WidgetSnapshotStoreTest, MissingOrEmptyOrNonStringGroupMeansNoLocation) {
  for (const char* info : {R"({})", R"({"KorvoAppGroup":""})", R"({"KorvoAppGroup":7})",
                           R"({"KorvoAppGroup":null})", R"(["group.test"])"}) {
    writeInfo(info);
    EXPECT_FALSE(WidgetSnapshotStore::fileURL()) << info;
    EXPECT_THAT(std::get<DecodeFailure>(WidgetSnapshotStore::locate()).reason,
                HasSubstr("no KorvoAppGroup"))
        << info;
  }
}

TEST_F(WidgetSnapshotStoreTest, BundleInformationThatIsNoJSONIsNamedWithItsFault) {
  writeInfo("not json");
  EXPECT_FALSE(WidgetSnapshotStore::fileURL());
  const std::string reason = std::get<DecodeFailure>(WidgetSnapshotStore::locate()).reason;
  EXPECT_THAT(reason, HasSubstr("Info.json: not JSON at byte 2"));
}

TEST_F(WidgetSnapshotStoreTest, MissingBundleInformationMeansNoLocation) {
  EXPECT_FALSE(WidgetSnapshotStore::fileURL());
}

TEST_F(WidgetSnapshotStoreTest, NoLocationLoadsNothingAndTouchesNoFiles) {
  writeInfo(R"({"KorvoAppGroup":""})");
  const auto url = WidgetSnapshotStore::fileURL();
  EXPECT_FALSE(WidgetSnapshotStore::load(url));
  EXPECT_FALSE(std::filesystem::exists(directory.path() / "data"));
}

TEST_F(WidgetSnapshotStoreTest, BundleInformationVariableIsTheOnlyPlaceWhenSet) {
  ScopedEnvironment elsewhere{"KORVO_BUNDLE_INFO", (directory.path() / "absent.json").string()};
  EXPECT_EQ(bundleInfoPath(), directory.path() / "absent.json");
  EXPECT_FALSE(WidgetSnapshotStore::fileURL());
}

TEST_F(WidgetSnapshotStoreTest, WithoutTheVariableTheBuildTreeCopyIsFound) {
  ScopedEnvironment unset{"KORVO_BUNDLE_INFO", std::nullopt};
  EXPECT_EQ(bundleInfoPath(), std::filesystem::path(KORVO_BUILD_DATA_DIR) / "Info.json");
  EXPECT_EQ(std::get<std::string>(appGroupIdentifier()), "group.com.tessmoor.Korvo");
}

TEST_F(WidgetSnapshotStoreTest, MissingFileLoadsNothingAndSaysSo) {
  const auto url = Url::file(container() / "usage-snapshot.json");
  EXPECT_FALSE(WidgetSnapshotStore::load(url));
  EXPECT_THAT(std::get<DecodeFailure>(WidgetSnapshotStore::inspect(url)).reason,
              HasSubstr("missing file"));
}

TEST_F(WidgetSnapshotStoreTest, EmptyFileAndEmptyObjectLoadNothing) {
  std::filesystem::create_directories(container());
  const auto path = container() / "usage-snapshot.json";
  for (const char* content : {"", "{}"}) {
    testing_support::writeFile(path, content);
    EXPECT_FALSE(WidgetSnapshotStore::load(Url::file(path))) << content;
  }
}

TEST_F(WidgetSnapshotStoreTest, SaveCreatesMissingDirectoriesAndLoadsBackEqual) {
  writeInfo(R"({"KorvoAppGroup":"group.test"})");
  ASSERT_FALSE(std::filesystem::exists(directory.path() / "data"));
  const auto url = WidgetSnapshotStore::fileURL();
  const WidgetSnapshot snapshot = example();
  EXPECT_TRUE(WidgetSnapshotStore::save(snapshot, url));
  EXPECT_EQ(WidgetSnapshotStore::load(url), snapshot);
  EXPECT_EQ(testing_support::readFile(container() / "usage-snapshot.json"),
            testing_support::readFile(testing_support::exampleSnapshotPath()));
}

TEST_F(WidgetSnapshotStoreTest, SaveIntoAnExistingDirectoryReplacesTheFileAndLeavesNoTemporary) {
  std::filesystem::create_directories(container());
  const auto url = Url::file(container() / "usage-snapshot.json");
  WidgetSnapshot first = example();
  WidgetSnapshot second = example();
  second.temperature = 61.25;
  ASSERT_TRUE(WidgetSnapshotStore::save(first, url));
  ASSERT_TRUE(WidgetSnapshotStore::save(second, url));
  EXPECT_EQ(WidgetSnapshotStore::load(url), second);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(container()),
                          std::filesystem::directory_iterator()),
            1);
}

TEST_F(WidgetSnapshotStoreTest, SaveWithoutAUrlIsFalseAndWritesNothing) {
  EXPECT_FALSE(WidgetSnapshotStore::save(example(), std::nullopt));
  EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST_F(WidgetSnapshotStoreTest, SaveOfANonFiniteNumberIsFalseAndLeavesTheOldFile) {
  std::filesystem::create_directories(container());
  const auto url = Url::file(container() / "usage-snapshot.json");
  ASSERT_TRUE(WidgetSnapshotStore::save(example(), url));
  WidgetSnapshot broken = example();
  broken.temperature = std::numeric_limits<double>::infinity();
  EXPECT_FALSE(WidgetSnapshotStore::save(broken, url));
  EXPECT_EQ(WidgetSnapshotStore::load(url), example());
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(container()),
                          std::filesystem::directory_iterator()),
            1);
}

TEST_F(WidgetSnapshotStoreTest, SaveIntoAnUnwritableDirectoryIsFalseAndLeavesNoTemporary) {
  KORVO_AS_UNPRIVILEGED_USER(directory.path());
  std::filesystem::create_directories(container());
  ::chmod(container().c_str(), 0555);
  EXPECT_FALSE(
      WidgetSnapshotStore::save(example(), Url::file(container() / "usage-snapshot.json")));
  ::chmod(container().c_str(), 0755);
  EXPECT_TRUE(std::filesystem::is_empty(container()));
}

TEST_F(WidgetSnapshotStoreTest, SaveWhereTheTargetIsADirectoryIsFalseAndLeavesNoTemporary) {
  std::filesystem::create_directories(container() / "usage-snapshot.json");
  EXPECT_FALSE(
      WidgetSnapshotStore::save(example(), Url::file(container() / "usage-snapshot.json")));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(container()),
                          std::filesystem::directory_iterator()),
            1);
}

TEST_F(WidgetSnapshotStoreTest, RoundTripKeepsFullDoublePrecision) {
  std::filesystem::create_directories(container());
  const auto url = Url::file(container() / "usage-snapshot.json");
  const WidgetSnapshot snapshot{
      Date{816399900.123456789},
      0.1 + 0.2,
      Date{1.0 / 3.0},
      true,
      {true,
       UsageSnapshot{{{"5-hour", 28.000000000000004, Date{816407100.00000012}}},
                     Date{-0.000123456789},
                     "web"},
       "note", true},
      {false, std::nullopt, std::nullopt, false}};
  ASSERT_TRUE(WidgetSnapshotStore::save(snapshot, url));
  const auto loaded = WidgetSnapshotStore::load(url);
  ASSERT_TRUE(loaded);
  EXPECT_EQ(*loaded, snapshot);
  EXPECT_EQ(loaded->date.secondsSinceReferenceDate, 816399900.123456789);
  EXPECT_EQ(loaded->temperature, 0.1 + 0.2);
}

TEST_F(WidgetSnapshotStoreTest, LoadReadsTheFileAgainOnEveryCall) {
  std::filesystem::create_directories(container());
  const auto url = Url::file(container() / "usage-snapshot.json");
  ASSERT_TRUE(WidgetSnapshotStore::save(example(), url));
  ASSERT_TRUE(WidgetSnapshotStore::load(url));
  std::filesystem::remove(container() / "usage-snapshot.json");
  EXPECT_FALSE(WidgetSnapshotStore::load(url));
}

TEST_F(WidgetSnapshotStoreTest, OnlyLocalFileUrlsAreRead) {
  EXPECT_THAT(
      std::get<DecodeFailure>(WidgetSnapshotStore::inspect(Url::parse("korvo://usage"))).reason,
      HasSubstr("not a local file URL"));
}

}  // namespace
}  // namespace korvo
