#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "cli_fixture.hpp"
#include "support/scoped_environment.hpp"

// Every refusal names what it refuses and why, once, on one line.
namespace korvo {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using testing_support::lines;
using testing_support::ProcessResult;

class CliMessages : public testing_support::Cli {};

TEST_F(CliMessages, AnUnknownSubcommandIsNamed) {
  const ProcessResult result = run({"frobnicate"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.err, HasSubstr("unknown subcommand \"frobnicate\""));
  EXPECT_THAT(result.err, HasSubstr("list, timeline, render"));
  EXPECT_EQ(lines(result.err), 1U) << result.err;
}

TEST_F(CliMessages, NoSubcommandAtAllAsksForOne) {
  const ProcessResult result = run({});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.err, HasSubstr("A subcommand is required"));
}

struct EmptyValueCase {
  const char* name;
  std::vector<std::string> args;
  const char* named;  // what the message names
};

class EmptyValue : public CliMessages, public ::testing::WithParamInterface<EmptyValueCase> {};

TEST_P(EmptyValue, IsAUsageErrorNamingTheOption) {
  std::vector<std::string> args = GetParam().args;
  for (std::string& arg : args) {
    if (arg == "GALLERY") arg = (scratch.path() / "gallery").string();
  }
  const ProcessResult result = run(args);
  EXPECT_EQ(result.exitCode, 2) << result.err;
  EXPECT_THAT(result.err, HasSubstr(GetParam().named));
  EXPECT_EQ(lines(result.err), 1U) << result.err;
  EXPECT_TRUE(result.out.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Options, EmptyValue,
    ::testing::Values(EmptyValueCase{"RenderNow", {"render", "memory", "--now", ""}, "--now"},
                      EmptyValueCase{"TimelineNow", {"timeline", "memory", "--now", ""}, "--now"},
                      EmptyValueCase{
                          "GalleryNow", {"gallery", "-o", "GALLERY", "--now", ""}, "--now"},
                      EmptyValueCase{"Accent", {"render", "memory", "--accent", ""}, "--accent"},
                      EmptyValueCase{"SnapshotCheckFile", {"snapshot", "check", ""}, "FILE"},
                      EmptyValueCase{"GalleryFolder", {"gallery", "-o", ""}, "-o"}),
    [](const auto& info) { return info.param.name; });

TEST_F(CliMessages, NoLocationIsSaidOnce) {
  auto environment = this->environment();
  environment.erase("HOME");
  environment.erase("XDG_DATA_HOME");
  for (const auto& args : {std::vector<std::string>{"snapshot", "path"},
                           std::vector<std::string>{"snapshot", "check"}}) {
    const ProcessResult result = run(args, environment);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.err, HasSubstr("neither XDG_DATA_HOME nor HOME"));
    EXPECT_THAT(result.err, Not(HasSubstr("location: no location")));
  }
}

struct BundleInfoCase {
  const char* name;
  const char* reason;
};

class SpecialBundleInfo : public CliMessages,
                          public ::testing::WithParamInterface<BundleInfoCase> {};

TEST_P(SpecialBundleInfo, IsReportedForWhatItIs) {
  const auto fifo = scratch.path() / "Info.fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  const std::map<std::string, std::string> places{
      {"FIFO", fifo.string()}, {"Directory", scratch.path().string()}, {"DevZero", "/dev/zero"}};
  auto environment = this->environment();
  environment["KORVO_BUNDLE_INFO"] = places.at(GetParam().name);
  const ProcessResult result = run({"snapshot", "path"}, environment);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr(GetParam().reason));
  EXPECT_THAT(result.err, HasSubstr(places.at(GetParam().name)));
  EXPECT_THAT(result.err, Not(HasSubstr("no KorvoAppGroup")));
}

INSTANTIATE_TEST_SUITE_P(Files, SpecialBundleInfo,
                         ::testing::Values(BundleInfoCase{"FIFO", "a FIFO"},
                                           BundleInfoCase{"Directory", "a directory"},
                                           BundleInfoCase{"DevZero", "a character device"}),
                         [](const auto& info) { return info.param.name; });

TEST_F(CliMessages, AMissingBundleInfoHasNoKey) {
  auto environment = this->environment();
  environment["KORVO_BUNDLE_INFO"] = (scratch.path() / "missing.json").string();
  const ProcessResult result = run({"snapshot", "path"}, environment);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.err, HasSubstr("no KorvoAppGroup in " + environment["KORVO_BUNDLE_INFO"]));
}

TEST_F(CliMessages, VersionIsPrinted) {
  const ProcessResult result = run({"--version"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("korvo-widgets " KORVO_VERSION));
}

}  // namespace
}  // namespace korvo
