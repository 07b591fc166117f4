#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "shared/widget_snapshot_store.hpp"
#include "support/files.hpp"
#include "support/sample_snapshot.hpp"
#include "support/temporary_directory.hpp"
#include "support/unprivileged.hpp"

// Whatever sits at the snapshot path, loading returns promptly with no snapshot: the test
// program's TIMEOUT property turns a hang into a failure.
namespace korvo {
namespace {

using testing::HasSubstr;

class SpecialFilesTest : public testing::Test {
 protected:
  std::filesystem::path target() const { return directory.path() / "usage-snapshot.json"; }
  std::string reason() const {
    const auto result = WidgetSnapshotStore::inspect(Url::file(target()));
    EXPECT_FALSE(WidgetSnapshotStore::load(Url::file(target())));
    if (const auto* failure = std::get_if<DecodeFailure>(&result)) return failure->reason;
    return "(decoded)";
  }

  testing_support::TemporaryDirectory directory;
};

TEST_F(SpecialFilesTest, FifoWithoutAWriterIsRefusedWithoutBlocking) {
  ASSERT_EQ(::mkfifo(target().c_str(), 0600), 0);
  EXPECT_THAT(reason(), HasSubstr("not a regular file"));
  EXPECT_THAT(reason(), HasSubstr("a FIFO"));
}

TEST_F(SpecialFilesTest, FifoWithAWriterHoldingItOpenIsRefusedWithoutBlocking) {
  ASSERT_EQ(::mkfifo(target().c_str(), 0600), 0);
  const int reader = ::open(target().c_str(), O_RDONLY | O_NONBLOCK);
  const int writer = ::open(target().c_str(), O_WRONLY | O_NONBLOCK);
  ASSERT_GE(writer, 0);
  EXPECT_THAT(reason(), HasSubstr("a FIFO"));
  ::close(writer);
  ::close(reader);
}

TEST_F(SpecialFilesTest, DirectoryIsRefused) {
  std::filesystem::create_directory(target());
  EXPECT_THAT(reason(), HasSubstr("a directory"));
}

TEST_F(SpecialFilesTest, SymlinkToDevZeroIsRefused) {
  std::filesystem::create_symlink("/dev/zero", target());
  EXPECT_THAT(reason(), HasSubstr("a character device"));
}

TEST_F(SpecialFilesTest, SymlinkToARegularFileIsFollowed) {
  std::filesystem::create_symlink(testing_support::exampleSnapshotPath(), target());
  EXPECT_TRUE(WidgetSnapshotStore::load(Url::file(target())));
}

TEST_F(SpecialFilesTest, DanglingSymlinkIsAMissingFile) {
  std::filesystem::create_symlink(directory.path() / "nowhere", target());
  EXPECT_THAT(reason(), HasSubstr("missing file"));
}

TEST_F(SpecialFilesTest, FiveMebibyteFileIsRefusedAsTooLarge) {
  std::string big = testing_support::readFile(testing_support::exampleSnapshotPath());
  big.insert(1, std::string(5 * 1024 * 1024, ' '));
  testing_support::writeFile(target(), big);
  EXPECT_THAT(reason(), HasSubstr("too large"));
}

TEST_F(SpecialFilesTest, FileOfExactlyTheLimitIsRead) {
  std::string padded = testing_support::readFile(testing_support::exampleSnapshotPath());
  padded.insert(1, std::string(WidgetSnapshotStore::maxFileBytes - padded.size(), ' '));
  ASSERT_EQ(padded.size(), 4194304u);
  testing_support::writeFile(target(), padded);
  EXPECT_TRUE(WidgetSnapshotStore::load(Url::file(target())));
  padded.insert(1, " ");
  testing_support::writeFile(target(), padded);
  EXPECT_THAT(reason(), HasSubstr("too large"));
}

TEST_F(SpecialFilesTest, UnreadableFileIsRefused) {
  KORVO_AS_UNPRIVILEGED_USER(directory.path());
  std::filesystem::copy_file(testing_support::exampleSnapshotPath(), target());
  ::chmod(target().c_str(), 0);
  EXPECT_THAT(reason(), HasSubstr("cannot open"));
}

}  // namespace
}  // namespace korvo
