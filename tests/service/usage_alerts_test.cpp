#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/clock.hpp"
#include "support/keep_awake_fixture.hpp"

// The service's notices of usage and temperature against python3-dbusmock's notification
// template on a private session bus: Claude's figures arrive through its status line, the
// temperature from the fixture machine (its hottest package at 62 °C).
namespace korvo {
namespace {

using namespace keep_awake_test;
using testing::HasSubstr;

constexpr const char* server = "org.freedesktop.Notifications";
constexpr const char* serverPath = "/org/freedesktop/Notifications";

// Claude Code's status-line input with its 5-hour window at `used` percent, resetting at `reset`
// (Unix seconds), and its weekly window at 10 %.
std::string statusLine(double used, long long reset) {
  return R"({"rate_limits":{"five_hour":{"used_percentage":)" + std::to_string(used) +
         R"(,"resets_at":)" + std::to_string(reset) +
         R"(},"seven_day":{"used_percentage":10,"resets_at":)" + std::to_string(reset + 400000) +
         "}}}";
}

std::size_t count(const std::string& text, const std::string& part) {
  std::size_t found = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
  return found;
}

class UsageAlertsTest : public KeepAwakeTest {
 protected:
  void SetUp() override {
    mockNotifications();
    // Publications come only at start and on a settings change: the test says when.
    settings(R"({"codex":false,"temperatureAlert":0,"publishSeconds":3600})");
  }
  void settings(const std::string& json) { world.write("config/korvo/settings.json", json); }
  void claude(double used, long long reset) {
    ASSERT_EQ(korvo({"claude-statusline"}, statusLine(used, reset)).exitCode, 0);
  }
  testing_support::ProcessResult korvo(const std::vector<std::string>& args,
                                       const std::string& input = {}) {
    return testing_support::runProgram(KORVO_APP_BINARY, args, buses, input);
  }
  std::string notices() { return callsTo(server, serverPath); }
  // Waits for a notice whose summary is `summary`, its number of times at least `times`.
  bool noticed(const std::string& summary, std::size_t times = 1) {
    return waitFor([&] { return count(notices(), "<'" + summary + "'>") >= times; });
  }
  // The service publishes once more: the settings change (another key each time).
  void publishAgain(int seconds) {
    const auto rows = history();
    ASSERT_EQ(korvo({"settings", "publishSeconds", std::to_string(seconds)}).exitCode, 0);
    ASSERT_TRUE(waitFor([&] { return history() > rows; })) << "no publication";
  }
  std::size_t history() { return count(korvo({"history", "--csv"}).out, "\n"); }

  const long long reset = static_cast<long long>(clock::now().unixSeconds()) + 3 * 3600;
};

TEST_F(UsageAlertsTest, EachThresholdIsNotifiedOncePerWindowPeriodAlsoAcrossARestart) {
  claude(85, reset);
  startService();
  ASSERT_TRUE(noticed("Claude 5-hour: 85 % used")) << notices();
  EXPECT_THAT(notices(), HasSubstr("<'Past your 80 % alert. Resets "));
  EXPECT_THAT(notices(), HasSubstr("<['open', 'Open AI', 'default', 'Open AI']>"));

  service->stop();
  startService();
  publishAgain(3000);
  EXPECT_EQ(count(notices(), "<'Claude 5-hour: 85 % used'>"), 1U) << "a restart did not repeat";

  claude(96, reset);
  publishAgain(3001);
  ASSERT_TRUE(noticed("Claude 5-hour: 96 % used")) << notices();
  EXPECT_THAT(notices(), HasSubstr("<'Past your 95 % alert. Resets "));

  // The next period, a day later: the thresholds speak again.
  claude(81, reset + 86400);
  publishAgain(3002);
  EXPECT_TRUE(noticed("Claude 5-hour: 81 % used")) << notices();
  EXPECT_EQ(count(notices(), "alert. Resets"), 3U) << notices();
}

TEST_F(UsageAlertsTest, NoThresholdsNoNotices) {
  settings(R"({"codex":false,"temperatureAlert":0,"alertPercents":[],"publishSeconds":3600})");
  claude(99, reset);
  startService();
  publishAgain(3000);
  EXPECT_THAT(notices(), testing::Not(HasSubstr("used'>")));
}

TEST_F(UsageAlertsTest, AHotCpuIsNotifiedInTheUsersUnitWithAnActionToTheMemTab) {
  settings(R"({"codex":false,"claude":false,"temperatureAlert":60,"temperatureUnit":"F"})");
  startService();
  ASSERT_TRUE(noticed("CPU at 144°F")) << notices();
  EXPECT_THAT(notices(), HasSubstr("<'Above the 140°F you set for an alert.'>"));
  EXPECT_THAT(notices(), HasSubstr("<['open', 'Open Mem', 'default', 'Open Mem']>"));
  publishAgain(3000);
  EXPECT_EQ(count(notices(), "<'CPU at 144°F'>"), 1U) << "still hot, not said again";
}

}  // namespace
}  // namespace korvo
