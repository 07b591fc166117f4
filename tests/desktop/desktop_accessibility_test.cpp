#include <gtest/gtest.h>
#include <signal.h>

#include <cmath>
#include <cstdio>
#include <ctime>
#include <nlohmann/json.hpp>
#include <sstream>

#include "support/accessible_expectations.hpp"
#include "support/desktop_harness.hpp"
#include "support/host_dumps.hpp"
#include "support/host_environment.hpp"

// The host read as a screen reader reads it: through AT-SPI, on a private session bus with its
// own accessibility bus, against the laid-out tree the host dumps of the same widget and entry.
namespace korvo::desktop_test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

class AccessibleHost : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_STRNE(KORVO_BINARY, "") << "korvo-widgets was not built";
    server_ = std::make_unique<XServer>(1280, 1024, folder_.path());
    // Asking the bus for the accessibility bus starts one, as on a desktop.
    bus_ = std::make_unique<ActivatingSessionBus>(folder_.path(), server_->display());
    const std::string busAddress = bus_->address();
    reader_ = {{"PATH", "/usr/bin:/bin"},
               {"HOME", (folder_.path() / "home").string()},
               {"DISPLAY", server_->display()},
               {"DBUS_SESSION_BUS_ADDRESS", busAddress}};
    environment_ = hostEnvironment(
        folder_.path(), {
                            {"DISPLAY", server_->display()},
                            {"DBUS_SESSION_BUS_ADDRESS", busAddress},
                            {"GDK_BACKEND", "x11"},
                            {"KORVO_TEST_URL_LOG", (folder_.path() / "urls.txt").string()},
                        });
  }

  void TearDown() override {
    host_.reset();
    bus_.reset();
    server_.reset();
  }

  void startHost(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {KORVO_BINARY, "run", "--dump-dir", dumps().string()});
    host_ = std::make_unique<Process>(arguments, environment_, folder_.path() / "host.out",
                                      folder_.path() / "host.err");
  }

  std::vector<std::string> recordedURLs() const {
    std::vector<std::string> urls;
    std::istringstream lines(readFile(folder_.path() / "urls.txt"));
    for (std::string line; std::getline(lines, line);) urls.push_back(line);
    return urls;
  }

  fs::path dumps() const { return folder_.path() / "dump"; }
  fs::path snapshotFile() const {
    return folder_.path() / "data" / "app-groups" / "group.com.tessmoor.Korvo" /
           "usage-snapshot.json";
  }
  std::string hostLog() const { return readFile(folder_.path() / "host.err"); }

  // The host's windows as AT-SPI shows them; null while the host is not on the bus yet.
  Json readHost() const {
    const auto result = runCommand({"/usr/bin/python3", KORVO_A11Y_READER}, reader_);
    if (result.exitStatus != 0) return nullptr;
    return Json::parse(result.output, nullptr, false);
  }

  // The window named `name` once it shows `wanted` children (at least one), else null.
  Json waitForWindow(const std::string& name, std::size_t wanted = 1) const {
    Json found;
    waitFor([&] {
      const Json windows = readHost();
      if (!windows.is_array()) return false;
      for (const auto& window : windows) {
        if (window["name"] == name && window["children"].size() >= wanted) found = window;
      }
      return !found.is_null();
    });
    return found;
  }

  bool doAction(const std::vector<std::string>& path) const {
    std::vector<std::string> arguments{"/usr/bin/python3", KORVO_A11Y_READER};
    arguments.insert(arguments.end(), path.begin(), path.end());
    return runCommand(arguments, reader_).exitStatus == 0;
  }

  // Compares the children of `window` with the dumped tree `dumpFile`.
  void expectReadsAsDumped(const Json& window, const fs::path& dumpFile) const {
    expectReadsAsTree(window, Json::parse(readFile(dumpFile))["tree"], dumpFile.filename());
  }

  TemporaryDirectory folder_;
  std::unique_ptr<XServer> server_;
  std::unique_ptr<ActivatingSessionBus> bus_;
  Environment reader_;
  Environment environment_;
  std::unique_ptr<Process> host_;
};

TEST_F(AccessibleHost, EveryWidgetReadsAsItsLaidOutTreeWithBoundsOnScreen) {
  // Read two and a half minutes ago: the relative texts say "2 min" while the test runs, in the
  // dump and on the bus alike.
  writeFile(snapshotFile(), usageSnapshot(10, 54, static_cast<double>(std::time(nullptr)) - 150));
  startHost({"--widget", "memory:medium", "--widget", "awake", "--widget", "usage:small",
             "--widget", "temperature"});
  const std::vector<std::pair<std::string, std::string>> windows{
      {"Memory", "1-memory-medium.json"},
      {"Keep Awake", "2-awake-small.json"},
      {"AI Usage", "3-usage-small.json"},
      {"CPU Temperature", "4-temperature-small.json"},
  };
  for (const auto& [name, dumpFile] : windows) {
    const Json window = waitForWindow(name);
    ASSERT_FALSE(window.is_null()) << name << " was never read; host log:\n" << hostLog();
    EXPECT_EQ(window["role"], "frame");
    expectReadsAsDumped(window, dumps() / dumpFile);
  }

  // What the issue asked for, in so many words.
  const Json memory = waitForWindow("Memory");
  const auto meter = std::find_if(memory["children"].begin(), memory["children"].end(),
                                  [](const Json& child) { return child["role"] == "level bar"; });
  ASSERT_NE(meter, memory["children"].end());
  EXPECT_EQ((*meter)["name"], "Memory used");
  // The spoken value is the level in whole percent, the figure the card draws above it.
  char figure[32];
  std::snprintf(figure, sizeof figure, "%.0f", (*meter)["value"].get<double>());
  EXPECT_EQ((*meter)["valueText"], std::string(figure) + " percent");
  EXPECT_TRUE(
      std::any_of(memory["children"].begin(), memory["children"].end(),
                  [&](const Json& child) { return child["name"] == std::string(figure) + "%"; }))
      << memory.dump(1);
  const Json usage = waitForWindow("AI Usage");
  std::vector<std::string> names;
  for (const auto& child : usage["children"]) names.push_back(child["name"]);
  EXPECT_NE(std::find(names.begin(), names.end(), "90%"), names.end());
  EXPECT_NE(std::find(names.begin(), names.end(), "Enable in Korvo"), names.end());
  EXPECT_TRUE(host_->running());
}

TEST_F(AccessibleHost, ANewSnapshotRenamesTheFigures) {
  const double start = static_cast<double>(std::time(nullptr));
  writeFile(snapshotFile(), usageSnapshot(10, 54, start));
  // 300 clock seconds per real second: the 900-second reload comes after three real seconds.
  startHost({"--widget", "usage:medium", "--time-rate", "300"});
  const auto names = [&] {
    std::vector<std::string> out;
    const Json window = waitForWindow("AI Usage");
    if (!window.is_null()) {
      for (const auto& child : window["children"]) out.push_back(child["name"]);
    }
    return out;
  };
  const auto shows = [&](const std::string& name) {
    return waitFor([&] {
      const auto shown = names();
      return std::find(shown.begin(), shown.end(), name) != shown.end();
    });
  };
  ASSERT_TRUE(shows("90")) << hostLog();

  writeFile(snapshotFile(), usageSnapshot(37, 54, start));
  ASSERT_TRUE(shows("63")) << "the figure was never renamed; host log:\n" << hostLog();
  const auto shown = names();
  EXPECT_EQ(std::find(shown.begin(), shown.end(), "90"), shown.end());
  EXPECT_TRUE(host_->running());
}

TEST_F(AccessibleHost, ARelativeTextIsReadAsItReadsNow) {
  writeFile(snapshotFile(), usageSnapshot(10, 54, static_cast<double>(std::time(nullptr)) - 150));
  // 20 clock seconds per real second: "2 min" turns "3 min" within two seconds, long before the
  // reload 45 seconds on, so only the advancing text can rename it.
  startHost({"--widget", "usage:medium", "--time-rate", "20"});
  const auto relativeNames = [&] {
    std::vector<std::string> out;
    const Json window = waitForWindow("AI Usage");
    if (window.is_null()) return out;
    for (const auto& child : window["children"]) {
      const std::string name = child["name"];
      if (name.find(" min") != std::string::npos) out.push_back(name);
    }
    return out;
  };
  const auto first = relativeNames();
  ASSERT_FALSE(first.empty()) << "no relative text was read; host log:\n" << hostLog();
  ASSERT_TRUE(waitFor([&] {
    const auto now = relativeNames();
    return !now.empty() && now != first;
  })) << "\""
      << first.front() << "\" was never read anew; host log:\n"
      << hostLog();
  EXPECT_TRUE(host_->running());
}

TEST_F(AccessibleHost, TheWindowsActionOpensTheWidgetURLAndTheLinksOpensItsOwn) {
  registerUrlRecorder(folder_.path());
  startHost({"--widget", "memory:medium"});
  ASSERT_FALSE(waitForWindow("Memory").is_null()) << hostLog();

  ASSERT_TRUE(doAction({"Memory"}));
  ASSERT_TRUE(waitFor([&] { return recordedURLs().size() == 1; })) << hostLog();
  EXPECT_EQ(recordedURLs()[0], "korvo://resources");

  ASSERT_TRUE(doAction({"Memory", "Keep Awake"}));
  ASSERT_TRUE(waitFor([&] { return recordedURLs().size() == 2; })) << hostLog();
  EXPECT_EQ(recordedURLs()[1], "korvo://awake");
  EXPECT_TRUE(host_->running());
}

}  // namespace
}  // namespace korvo::desktop_test
