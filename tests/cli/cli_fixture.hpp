#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "support/process_run.hpp"
#include "support/scoped_environment.hpp"
#include "support/temporary_directory.hpp"

namespace korvo::testing_support {

const std::string fixtureRoot = std::string(KORVO_FIXTURES_DIR) + "/proc/desktop-zram";
const std::string sampleFile = std::string(KORVO_SOURCE_DIR) + "/data/samples/usage-snapshot.json";
// 2026-11-15T01:45:00Z: 816,399,900 seconds after 2001-01-01.
constexpr const char* nowISO = "2026-11-15T01:45:00Z";
constexpr double nowReference = 816'399'900;

// How many lines a text holds: one-line messages end in exactly one newline.
inline std::size_t lines(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// A machine of the test's making: fixture /proc, a data home with the group container, the build
// tree's bundle information.
class Cli : public ::testing::Test {
 protected:
  std::map<std::string, std::string> environment() const {
    return {{"KORVO_SYSROOT", fixtureRoot},
            {"XDG_DATA_HOME", dataHome.path().string()},
            {"HOME", dataHome.path().string()},
            {"KORVO_BUNDLE_INFO", std::string(KORVO_BUILD_DATA_DIR) + "/Info.json"},
            {"LANG", "C.UTF-8"},
            {"TZ", "UTC"},
            {"PATH", "/usr/bin:/bin"}};
  }
  testing_support::ProcessResult run(const std::vector<std::string>& args) const {
    return testing_support::runWidgets(args, environment());
  }
  testing_support::ProcessResult run(const std::vector<std::string>& args,
                                     const std::map<std::string, std::string>& environment) const {
    return testing_support::runWidgets(args, environment);
  }
  void writeSharedFile(std::string_view bytes) const {
    dataHome.write(testing_support::sharedFileRelative(), bytes);
  }
  std::string sharedFilePath() const {
    return (dataHome.path() / testing_support::sharedFileRelative()).string();
  }

  testing_support::TemporaryDirectory dataHome;
  testing_support::TemporaryDirectory scratch;
};

}  // namespace korvo::testing_support
