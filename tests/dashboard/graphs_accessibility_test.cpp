#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "app/history_store.hpp"
#include "base/clock.hpp"
#include "support/dashboard_environment.hpp"
#include "support/desktop_harness.hpp"
#include "support/process_run.hpp"

// The dashboard's graphs as a screen reader reads them, through AT-SPI: each an image named for
// what it draws and described by its one-line summary.
namespace korvo {
namespace {

using namespace desktop_test;
using Json = nlohmann::json;
using testing::HasSubstr;

class GraphsAccessibility : public testing::Test {
 protected:
  void start(const std::filesystem::path& sysroot) {
    server = std::make_unique<XServer>(1280, 1024, folder.path());
    bus = std::make_unique<ActivatingSessionBus>(folder.path(), server->display());
    environment = dashboard_test::dashboardEnvironment(folder.path(), server->display(),
                                                       bus->address(), sysroot);
    environment.erase("NO_AT_BRIDGE");
    reader = {{"PATH", "/usr/bin:/bin"},
              {"HOME", (folder.path() / "home").string()},
              {"DISPLAY", server->display()},
              {"DBUS_SESSION_BUS_ADDRESS", environment["DBUS_SESSION_BUS_ADDRESS"]}};
  }
  void TearDown() override {
    service.reset();
    bus.reset();
    server.reset();
  }
  testing_support::ProcessResult korvo(const std::vector<std::string>& args,
                                       const std::string& input = {}) {
    return testing_support::runProgram(KORVO_APP_BINARY, args, environment, input);
  }
  void open(const std::string& url) {
    service = std::make_unique<Process>(std::vector<std::string>{KORVO_APP_BINARY, "open", url},
                                        environment, folder.path() / "service.out",
                                        folder.path() / "service.err");
  }
  // The children of the panel named `name`, as AT-SPI reports them; empty until it is there.
  Json panel(const std::string& name) const {
    const auto result = runCommand({"/usr/bin/python3", KORVO_A11Y_READER, "--application",
                                    "com.tessmoor.Korvo", "--card", name},
                                   reader);
    if (result.exitStatus != 0) return Json::array();
    return Json::parse(result.output, nullptr, false).value("children", Json::array());
  }
  // The image named `name` in the panel `panelName` once its description contains `part`.
  Json image(const std::string& panelName, const std::string& name, const std::string& part) {
    Json found;
    waitFor([&] {
      for (const Json& child : panel(panelName)) {
        if (child.value("name", "") == name && child.value("role", "") == "image" &&
            child.value("description", "").find(part) != std::string::npos) {
          found = child;
          return true;
        }
      }
      return false;
    });
    return found;
  }

  TemporaryDirectory folder;
  std::unique_ptr<XServer> server;
  std::unique_ptr<ActivatingSessionBus> bus;
  Environment environment;
  Environment reader;
  std::unique_ptr<Process> service;
};

TEST_F(GraphsAccessibility, EachWindowsGraphSaysItsUseAndWhereItsPaceLeadsAtTheReset) {
  start(KORVO_FIXTURES_DIR "/proc/desktop-zram");
  ASSERT_EQ(korvo({"settings", "codex", "false"}).exitCode, 0);
  const Date now = clock::now();
  const auto reset = static_cast<long long>(now.unixSeconds()) + 3 * 3600;
  // The last hour rose from 30 to 40 %: 70 % at the reset three hours on.
  std::ostringstream log;
  auto history = HistoryStore::open(folder.path() / "state/korvo/history.sqlite3", log, now,
                                    std::chrono::seconds(1));
  ASSERT_TRUE(history) << log.str();
  std::vector<HistoryRow> rows;
  for (int minute = 60; minute >= 10; minute -= 10) {
    rows.push_back({now.addingSeconds(-60.0 * minute), "claude.5-hour", 40 - minute / 6.0,
                    Date::fromUnixSeconds(static_cast<double>(reset))});
  }
  ASSERT_TRUE(history->record(rows));
  history.reset();
  ASSERT_EQ(korvo({"claude-statusline"},
                  R"({"rate_limits":{"five_hour":{"used_percentage":40,"resets_at":)" +
                      std::to_string(reset) + "}}}")
                .exitCode,
            0);
  open("korvo://usage");
  const Json graph = image("Usage graphs", "Claude 5-hour", "at this pace");
  ASSERT_FALSE(graph.is_null()) << panel("Usage graphs").dump(1)
                                << readFile(folder.path() / "service.err");
  EXPECT_THAT(graph["description"].get<std::string>(),
              HasSubstr("Claude 5-hour: 40 % used, at this pace 70 % at the reset "));
  EXPECT_GT(graph["bounds"]["width"].get<int>(), 200);
  EXPECT_GT(graph["bounds"]["height"].get<int>(), 50);
}

TEST_F(GraphsAccessibility, TheMachineGraphsSayTheirLatestInTheUsersUnit) {
  // The fixture machine's hottest package is at 62 °C: 144 °F.
  start(KORVO_FIXTURES_DIR "/hwmon/coretemp_two_packages");
  ASSERT_EQ(korvo({"settings", "temperatureUnit", "F"}).exitCode, 0);
  open("korvo://memory");
  const Json graph = image("Machine graphs", "CPU temperature", "144°F");
  ASSERT_FALSE(graph.is_null()) << panel("Machine graphs").dump(1);
  EXPECT_EQ(graph["description"], "CPU temperature: 144°F, at most 144°F in the last hour");
  const Json load = image("Machine graphs", "CPU load", "");
  EXPECT_FALSE(load.is_null()) << panel("Machine graphs").dump(1);
}

}  // namespace
}  // namespace korvo
