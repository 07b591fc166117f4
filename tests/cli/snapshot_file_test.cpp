#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "cli_fixture.hpp"
#include "support/scoped_environment.hpp"
#include "support/unprivileged.hpp"

namespace korvo {
namespace {

using ::testing::HasSubstr;
using testing_support::lines;
using testing_support::ProcessResult;

class CliSnapshotFile : public testing_support::Cli {};

// A snapshot file named on the command line that cannot be read is said so; the card still shows
// what the widget shows without data.
struct SnapshotFileCase {
  const char* name;
  const char* reason;
};

class UnreadableSnapshotFile : public CliSnapshotFile,
                               public ::testing::WithParamInterface<SnapshotFileCase> {};

TEST_P(UnreadableSnapshotFile, IsReportedAndTheCardStaysAsWithoutData) {
  const auto fifo = scratch.path() / "snapshot.fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  const auto broken = scratch.write("broken.json", R"({"date": 1})");
  const std::map<std::string, std::string> places{
      {"Missing", (scratch.path() / "no.json").string()},
      {"FIFO", fifo.string()},
      {"Directory", scratch.path().string()},
      {"Broken", broken.string()}};
  const std::string file = places.at(GetParam().name);
  const ProcessResult result =
      run({"render", "usage", "--snapshot-file", file, "--format", "json"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_THAT(result.err, HasSubstr("--snapshot-file " + file));
  EXPECT_THAT(result.err, HasSubstr(GetParam().reason));
  EXPECT_EQ(lines(result.err), 1U) << result.err;
  EXPECT_THAT(result.out, HasSubstr("Enable in Korvo"));
}

INSTANTIATE_TEST_SUITE_P(Files, UnreadableSnapshotFile,
                         ::testing::Values(SnapshotFileCase{"Missing", "missing file"},
                                           SnapshotFileCase{"FIFO", "a FIFO"},
                                           SnapshotFileCase{"Directory", "a directory"},
                                           SnapshotFileCase{"Broken", "missing key"}),
                         [](const auto& info) { return info.param.name; });

TEST_F(CliSnapshotFile, AnUnreadableSnapshotFileIsReportedWithWhy) {
  const auto file = scratch.write("unreadable.json",
                                  testing_support::readFile(std::string(KORVO_SOURCE_DIR) +
                                                            "/data/samples/usage-snapshot.json"));
  KORVO_AS_UNPRIVILEGED_USER(scratch.path());
  ASSERT_EQ(::chmod(file.c_str(), 0), 0);
  const ProcessResult result =
      run({"render", "usage", "--snapshot-file", file.string(), "--format", "json"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_THAT(result.err, HasSubstr("--snapshot-file " + file.string()));
  EXPECT_THAT(result.err, HasSubstr("Permission denied"));
  EXPECT_EQ(lines(result.err), 1U) << result.err;
  EXPECT_THAT(result.out, HasSubstr("Enable in Korvo"));
}

TEST_F(CliSnapshotFile, AReadableSnapshotFileRendersWithoutAWord) {
  const ProcessResult result = run(
      {"render", "usage", "--snapshot-file",
       std::string(KORVO_SOURCE_DIR) + "/data/samples/usage-snapshot.json", "--format", "json"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err, "");
}

}  // namespace
}  // namespace korvo
