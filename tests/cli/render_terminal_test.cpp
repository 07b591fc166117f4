#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <thread>

#include "support/files.hpp"
#include "support/process_run.hpp"
#include "support/scoped_environment.hpp"
#include "support/temporary_directory.hpp"

namespace korvo {
namespace {

using ::testing::HasSubstr;
using testing_support::ProcessResult;

// A PNG on a terminal is noise that can upset it: the picture has to go to a file.
class RenderToATerminal : public ::testing::Test {
 protected:
  ProcessResult runTo(const std::vector<std::string>& args, const std::string& out) const {
    return testing_support::runWidgets(
        args,
        {{"KORVO_SYSROOT", std::string(KORVO_FIXTURES_DIR) + "/proc/desktop-zram"},
         {"KORVO_BUNDLE_INFO", std::string(KORVO_BUILD_DATA_DIR) + "/Info.json"},
         {"HOME", scratch.path().string()},
         {"LANG", "C.UTF-8"},
         {"TZ", "UTC"}},
        out);
  }
  void SetUp() override {
    master_ = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(master_, 0);
    ASSERT_EQ(::grantpt(master_), 0);
    ASSERT_EQ(::unlockpt(master_), 0);
    terminal_ = ::ptsname(master_);
    // Whatever reaches the terminal is read, so a writer never waits on a full terminal.
    drain_ = std::thread([fd = master_] {
      char buffer[4096];
      while (::read(fd, buffer, sizeof buffer) > 0) {
      }
    });
  }
  void TearDown() override {
    if (master_ >= 0) ::close(master_);
    if (drain_.joinable()) drain_.join();
  }
  std::string terminal_;
  testing_support::TemporaryDirectory scratch;

 private:
  int master_ = -1;
  std::thread drain_;
};

TEST_F(RenderToATerminal, OfAPNGIsRefusedPointingToTheOutputOption) {
  const ProcessResult result = runTo({"render", "memory"}, terminal_);
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.err, HasSubstr("standard output is a terminal"));
  EXPECT_THAT(result.err, HasSubstr("-o FILE"));
}

TEST_F(RenderToATerminal, WithAnOutputFileWritesThePNG) {
  const auto target = scratch.path() / "memory.png";
  const ProcessResult result = runTo({"render", "memory", "-o", target.string()}, terminal_);
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(testing_support::readFile(target).substr(1, 3), "PNG");
}

}  // namespace
}  // namespace korvo
