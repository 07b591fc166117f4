#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "base/clock.hpp"
#include "support/dashboard_environment.hpp"
#include "support/private_buses.hpp"
#include "support/process_run.hpp"

// The actions of the service's usage and temperature notices open the dashboard at their tab,
// through python3-dbusmock's notification template on a private session bus under Xvfb.
namespace korvo {
namespace {

using namespace desktop_test;

constexpr const char* server = "org.freedesktop.Notifications";
constexpr const char* serverPath = "/org/freedesktop/Notifications";

class AlertActionsTest : public testing::Test {
 protected:
  void SetUp() override {
    display = std::make_unique<XServer>(1024, 768, folder.path());
    bus = std::make_unique<bus_test::PrivateBus>(folder.path(), "session");
    // The fixture machine's hottest package is at 62 °C.
    environment =
        dashboard_test::dashboardEnvironment(folder.path(), display->display(), bus->address(),
                                             KORVO_FIXTURES_DIR "/hwmon/coretemp_two_packages");
    notifications = std::make_unique<bus_test::Mock>(
        environment, folder.path(), std::vector<std::string>{"--template", "notification_daemon"},
        server, false);
  }
  void TearDown() override {
    service.reset();
    notifications.reset();
    bus.reset();
    display.reset();
  }
  testing_support::ProcessResult korvo(const std::vector<std::string>& args,
                                       const std::string& input = {}) {
    return testing_support::runProgram(KORVO_APP_BINARY, args, environment, input);
  }
  std::string notices() const {
    return bus_test::call(environment, false, server, serverPath,
                          "org.freedesktop.DBus.Mock.GetCalls");
  }
  void invoke(int id, const std::string& action) const {
    bus_test::call(environment, false, server, serverPath, "org.freedesktop.DBus.Mock.EmitSignal",
                   {server, "ActionInvoked", "us",
                    "[<uint32 " + std::to_string(id) + ">, <'" + action + "'>]"});
  }
  std::string page() const {
    const auto text = readFile(folder.path() / "dashboard.json");
    return text.empty() ? "" : nlohmann::json::parse(text).value("page", "");
  }

  TemporaryDirectory folder;
  std::unique_ptr<XServer> display;
  std::unique_ptr<bus_test::PrivateBus> bus;
  std::unique_ptr<bus_test::Mock> notifications;
  Environment environment;
  std::unique_ptr<Process> service;
};

TEST_F(AlertActionsTest, TheUsageNoticeOpensTheAiTabAndTheTemperatureNoticeTheMemTab) {
  const auto reset = static_cast<long long>(clock::now().unixSeconds()) + 3 * 3600;
  ASSERT_EQ(korvo({"settings", "temperatureAlert", "60"}).exitCode, 0);
  ASSERT_EQ(korvo({"settings", "codex", "false"}).exitCode, 0);
  ASSERT_EQ(korvo({"claude-statusline"},
                  R"({"rate_limits":{"five_hour":{"used_percentage":85,"resets_at":)" +
                      std::to_string(reset) + "}}}")
                .exitCode,
            0);
  service =
      std::make_unique<Process>(std::vector<std::string>{KORVO_APP_BINARY, "service"}, environment,
                                folder.path() / "service.out", folder.path() / "service.err");
  // The window's notice comes first (id 1), the temperature's second (id 2).
  ASSERT_TRUE(waitFor([&] { return notices().find("'CPU at 62°C'") != std::string::npos; }))
      << notices() << readFile(folder.path() / "service.err");
  ASSERT_THAT(notices(), testing::HasSubstr("'Claude 5-hour: 85 % used'"));
  EXPECT_EQ(page(), "") << "no dashboard before an action";
  invoke(2, "open");
  EXPECT_TRUE(waitFor([&] { return page() == "memory"; })) << page();
  invoke(1, "default");
  EXPECT_TRUE(waitFor([&] { return page() == "ai"; })) << page();
}

}  // namespace
}  // namespace korvo
