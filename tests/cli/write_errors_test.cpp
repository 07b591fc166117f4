#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "cli_fixture.hpp"
#include "support/scoped_environment.hpp"

// Output that cannot be written is a failure like any other: every command checks what it wrote,
// says on one line what could not be written and why, and exits 1.
namespace korvo {
namespace {

using ::testing::HasSubstr;
using testing_support::ProcessResult;

class CliWriteErrors : public testing_support::Cli {
 protected:
  testing_support::ProcessResult runTo(const std::vector<std::string>& args,
                                       const std::string& out) const {
    return testing_support::runWidgets(args, environment(), out);
  }
};

struct FullOutputCase {
  const char* name;
  std::vector<std::string> args;
};

class StandardOutputFull : public CliWriteErrors,
                           public ::testing::WithParamInterface<FullOutputCase> {};

TEST_P(StandardOutputFull, ExitsOneSayingWhatAndWhy) {
  dataHome.write(testing_support::sharedFileRelative(),
                 testing_support::readFile(testing_support::sampleFile));
  std::vector<std::string> args = GetParam().args;
  for (std::string& arg : args) {
    if (arg == "GALLERY") arg = (scratch.path() / "gallery").string();
  }
  const ProcessResult result = runTo(args, "/dev/full");
  EXPECT_EQ(result.exitCode, 1) << result.err;
  EXPECT_THAT(result.err, HasSubstr("cannot write standard output: No space left on device"));
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'),
            GetParam().args.back() == "--reencode" ? 2 : 1)
      << result.err;
}

INSTANTIATE_TEST_SUITE_P(
    Commands, StandardOutputFull,
    ::testing::Values(
        FullOutputCase{"List", {"list"}}, FullOutputCase{"ListJson", {"list", "--json"}},
        FullOutputCase{"Timeline", {"timeline", "usage", "--now", "2026-11-15T01:45:00Z"}},
        FullOutputCase{"TimelineJson", {"timeline", "memory", "--json"}},
        FullOutputCase{"Memory", {"memory"}}, FullOutputCase{"MemoryJson", {"memory", "--json"}},
        FullOutputCase{"SnapshotPath", {"snapshot", "path"}},
        FullOutputCase{"SnapshotCheck", {"snapshot", "check"}},
        FullOutputCase{"SnapshotCheckReencode", {"snapshot", "check", "--reencode"}},
        FullOutputCase{"RenderPng", {"render", "memory"}},
        FullOutputCase{"RenderJson", {"render", "usage", "--format", "json"}},
        FullOutputCase{"Gallery", {"gallery", "-o", "GALLERY"}},
        FullOutputCase{"Status", {"status", "memory"}},
        FullOutputCase{"StatusWaybar", {"status", "usage", "--format", "waybar"}},
        FullOutputCase{"Version", {"--version"}}, FullOutputCase{"Help", {"--help"}},
        FullOutputCase{"SubcommandHelp", {"render", "--help"}}),
    [](const auto& info) { return info.param.name; });

TEST_F(CliWriteErrors, RenderToAFullFileNamesItAndWhy) {
  const ProcessResult result = runTo({"render", "memory", "-o", "/dev/full"}, "/dev/null");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "korvo-widgets: cannot write /dev/full: No space left on device\n");
}

TEST_F(CliWriteErrors, RenderIntoAMissingFolderNamesTheFileAndWhy) {
  const auto target = scratch.path() / "missing" / "memory.png";
  const ProcessResult result = runTo({"render", "memory", "-o", target.string()}, "/dev/null");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err,
            "korvo-widgets: cannot write " + target.string() + ": No such file or directory\n");
}

TEST_F(CliWriteErrors, GalleryNamesThePictureItCannotWriteAndWhy) {
  const auto folder = scratch.path() / "gallery";
  std::filesystem::create_directories(folder / "memory-small-light-placeholder.png");
  const ProcessResult result = runTo({"gallery", "-o", folder.string()}, "/dev/null");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, "korvo-widgets: cannot write " +
                            (folder / "memory-small-light-placeholder.png").string() +
                            ": Is a directory\n");
}

}  // namespace
}  // namespace korvo
