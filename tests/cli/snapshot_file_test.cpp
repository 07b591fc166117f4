#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "cli_process.hpp"
#include "support/scoped_environment.hpp"
#include "support/unprivileged.hpp"

namespace korvo {
namespace {

using testing::CliResult;
using ::testing::HasSubstr;

class CliSnapshotFile : public ::testing::Test {
 protected:
  std::map<std::string, std::string> environment() const {
    return {{"KORVO_SYSROOT", std::string(KORVO_FIXTURES_DIR) + "/proc/desktop-zram"},
            {"XDG_DATA_HOME", dataHome.path().string()},
            {"HOME", dataHome.path().string()},
            {"KORVO_BUNDLE_INFO", std::string(KORVO_BUILD_DATA_DIR) + "/Info.json"},
            {"LANG", "C.UTF-8"},
            {"TZ", "UTC"},
            {"PATH", "/usr/bin:/bin"}};
  }
  CliResult run(const std::vector<std::string>& args) const {
    return testing::runCli(args, environment(), scratch.path());
  }
  CliResult run(const std::vector<std::string>& args,
                const std::map<std::string, std::string>& environment) const {
    return testing::runCli(args, environment, scratch.path());
  }

  testing::TempDir dataHome;
  testing::TempDir scratch;
};

std::size_t lines(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

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
  const CliResult result = run({"render", "usage", "--snapshot-file", file, "--format", "json"});
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
  const auto file = scratch.write(
      "unreadable.json",
      testing::slurp(std::string(KORVO_SOURCE_DIR) + "/data/samples/usage-snapshot.json"));
  KORVO_AS_UNPRIVILEGED_USER(scratch.path());
  ASSERT_EQ(::chmod(file.c_str(), 0), 0);
  const CliResult result =
      run({"render", "usage", "--snapshot-file", file.string(), "--format", "json"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_THAT(result.err, HasSubstr("--snapshot-file " + file.string()));
  EXPECT_THAT(result.err, HasSubstr("Permission denied"));
  EXPECT_EQ(lines(result.err), 1U) << result.err;
  EXPECT_THAT(result.out, HasSubstr("Enable in Korvo"));
}

TEST_F(CliSnapshotFile, AReadableSnapshotFileRendersWithoutAWord) {
  const CliResult result = run({"render", "usage", "--snapshot-file",
                                std::string(KORVO_SOURCE_DIR) + "/data/samples/usage-snapshot.json",
                                "--format", "json"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.err, "");
}

}  // namespace
}  // namespace korvo
