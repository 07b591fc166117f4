#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <nlohmann/json.hpp>

#include "base/clock.hpp"
#include "base/date_text.hpp"
#include "shared/moment_text.hpp"
#include "support/english_in_utc.hpp"
#include "support/keep_awake_fixture.hpp"
#include "support/lock_holder.hpp"

// Keep Awake against mock services on private buses: logind's template on a private system bus,
// org.gnome.SessionManager or org.freedesktop.ScreenSaver on a private session bus.
namespace korvo {
namespace {

using namespace keep_awake_test;
using testing::HasSubstr;
using testing::Not;

constexpr const char* heldByKorvo = "('idle:sleep', 'Korvo', 'Keep Awake session', 'block'";

TEST_F(KeepAwakeTest, StartTakesLogindsAndTheSessionsInhibitorsAndStatusReportsThem) {
  mockLogind();
  mockSessionManager();
  startService();
  const double before = clock::now().secondsSinceReferenceDate;
  const auto started = korvo({"awake", "start", "2m"});
  ASSERT_EQ(started.exitCode, 0) << started.err;
  EXPECT_THAT(started.out, HasSubstr("Keep Awake until"));

  EXPECT_THAT(logindInhibitors(), HasSubstr(heldByKorvo));
  EXPECT_THAT(callsTo(sessionManager, "/org/gnome/SessionManager"),
              HasSubstr("'Inhibit', [<'Korvo'>, <uint32 0>, <'Keep Awake session'>, <uint32 12>]"));
  const auto document = status();
  EXPECT_EQ(document["active"], true);
  EXPECT_EQ(document["indefinite"], false);
  EXPECT_EQ(document["inhibitors"], nlohmann::json::array({"logind", "session"}));
  const double endsAt = document["endsAt"].get<double>();
  EXPECT_GE(endsAt, before + 120);
  EXPECT_LE(endsAt, clock::now().secondsSinceReferenceDate + 120);
  // The same end for readers that do not count from 2001.
  EXPECT_EQ(document["endsAtISO"], isoMoment(Date{endsAt}));
}

TEST_F(KeepAwakeTest, StopClosesLogindsDescriptorAndUninhibitsTheSession) {
  mockLogind();
  mockSessionManager();
  startService();
  ASSERT_EQ(korvo({"awake", "start", "2m"}).exitCode, 0);
  ASSERT_TRUE(std::filesystem::exists(stateFile()));
  const auto stopped = korvo({"awake", "stop"});
  EXPECT_EQ(stopped.exitCode, 0);
  EXPECT_TRUE(waitFor([&] { return logindInhibitors().find(heldByKorvo) == std::string::npos; }));
  EXPECT_THAT(callsTo(sessionManager, "/org/gnome/SessionManager"),
              HasSubstr("'Uninhibit', [<uint32 42>]"));
  EXPECT_EQ(status()["active"], false);
  EXPECT_EQ(status()["inhibitors"], nlohmann::json::array());
  EXPECT_FALSE(std::filesystem::exists(stateFile()));
}

TEST_F(KeepAwakeTest, TheSessionEndsAtItsEndReleasesBothAndSaysSo) {
  mockLogind();
  mockSessionManager();
  mockNotifications();
  startService({{"KORVO_TIME_RATE", "60"}});  // two minutes pass in two seconds
  ASSERT_EQ(korvo({"awake", "start", "2m"}).exitCode, 0);
  EXPECT_THAT(logindInhibitors(), HasSubstr(heldByKorvo));
  EXPECT_TRUE(waitFor([&] { return logindInhibitors().find(heldByKorvo) == std::string::npos; }));
  EXPECT_TRUE(waitFor([&] {
    return callsTo(sessionManager, "/org/gnome/SessionManager").find("Uninhibit") !=
           std::string::npos;
  }));
  EXPECT_EQ(status()["active"], false);
  EXPECT_THAT(callsTo("org.freedesktop.Notifications", "/org/freedesktop/Notifications"),
              HasSubstr("'Keep Awake ended'"));
}

TEST_F(KeepAwakeTest, TheEndNoticeCarriesTheIconAndItsExtendActionStartsHalfAnHourMore) {
  mockLogind();
  mockSessionManager();
  mockNotifications();
  startService();
  const auto notices = [&] {
    return callsTo("org.freedesktop.Notifications", "/org/freedesktop/Notifications");
  };
  ASSERT_EQ(korvo({"awake", "start", "1s"}).exitCode, 0);
  ASSERT_TRUE(waitFor([&] { return notices().find("'Keep Awake ended'") != std::string::npos; }));
  EXPECT_THAT(notices(), HasSubstr("'Notify', [<'Korvo'>, <uint32 0>, <'com.tessmoor.Korvo'>, "
                                   "<'Keep Awake ended'>"));
  EXPECT_THAT(notices(), HasSubstr("<['extend', 'Extend 30 min', 'open', 'Open Keep Awake', "
                                   "'default', 'Open Keep Awake']>"));
  EXPECT_EQ(status()["active"], false);

  const double before = clock::now().secondsSinceReferenceDate;
  call(buses, false, "org.freedesktop.Notifications", "/org/freedesktop/Notifications",
       std::string(mockInterface) + ".EmitSignal",
       {"org.freedesktop.Notifications", "ActionInvoked", "us", "[<uint32 1>, <'extend'>]"});
  ASSERT_TRUE(waitFor([&] { return status()["active"] == true; }));
  const double endsAt = status()["endsAt"].get<double>();
  EXPECT_GE(endsAt, before + 1800);
  EXPECT_LE(endsAt, clock::now().secondsSinceReferenceDate + 1800);
  EXPECT_THAT(logindInhibitors(), HasSubstr(heldByKorvo));
}

TEST_F(KeepAwakeTest, AKilledServiceLeavesNoLogindInhibitorBehind) {
  mockLogind();
  mockSessionManager();
  startService();
  ASSERT_EQ(korvo({"awake", "start", "indefinitely"}).exitCode, 0);
  EXPECT_THAT(logindInhibitors(), HasSubstr(heldByKorvo));
  service->signal(SIGKILL);
  EXPECT_TRUE(waitFor([&] { return logindInhibitors().find(heldByKorvo) == std::string::npos; }));
}

// The service's first publish waits for a lock another process holds; it gives up after 10 s with
// a line in the log. Keep Awake answers before that line, and SIGTERM ends the service without it.
TEST_F(KeepAwakeTest, ItAnswersWhileAPublishWaitsForTheLockAndSigtermStillEndsIt) {
  mockLogind();
  mockSessionManager();
  std::filesystem::create_directories(world.sharedFile().parent_path());
  testing_support::LockHolder holder(world.sharedFile().parent_path() / ".usage-snapshot.lock");
  startService();
  const auto log = [&] { return desktop_test::readFile(world.home() / "service.err"); };
  EXPECT_EQ(status()["active"], false);
  const auto started = korvo({"awake", "start", "2m"});
  EXPECT_EQ(started.exitCode, 0) << started.err;
  EXPECT_THAT(log(), Not(HasSubstr("gave up"))) << "answered while the publish waited";
  EXPECT_EQ(status()["active"], true);
  EXPECT_THAT(logindInhibitors(), HasSubstr(heldByKorvo));
  EXPECT_FALSE(std::filesystem::exists(world.sharedFile()));

  service->signal(SIGTERM);
  EXPECT_TRUE(waitFor([&] { return !service->running(); }));
  EXPECT_THAT(log(), Not(HasSubstr("gave up"))) << "ended while the publish waited";
  EXPECT_TRUE(holder.holding());
}

TEST_F(KeepAwakeTest, AnEndOnAnotherDayIsShownWithItsDate) {
  mockLogind();
  mockSessionManager();
  startService();
  // A year away is never today, whenever the test runs.
  const auto started = korvo({"awake", "start", "8760h"});
  ASSERT_EQ(started.exitCode, 0) << started.err;
  const Date endsAt{status()["endsAt"].get<double>()};
  testing_support::useEnglishInUtc();
  const std::string until = abbreviatedDateShortTime(endsAt);
  EXPECT_EQ(started.out, "Keep Awake until " + until + ".\n");
  EXPECT_EQ(korvo({"awake", "status"}).out,
            "Keep Awake is on until " + until + " (logind, session).\n");
}

TEST_F(KeepAwakeTest, ExtendMovesTheEndAndStartsASessionWhenNoneRuns) {
  mockLogind();
  mockSessionManager();
  startService();
  ASSERT_EQ(korvo({"awake", "extend", "15m"}).exitCode, 0);
  const auto first = status();
  EXPECT_EQ(first["active"], true);
  ASSERT_EQ(korvo({"awake", "extend", "1h30m"}).exitCode, 0);
  const auto second = status();
  EXPECT_DOUBLE_EQ(second["endsAt"].get<double>(), first["endsAt"].get<double>() + 5400);
  ASSERT_EQ(korvo({"awake", "extend", "indefinitely"}).exitCode, 0);
  EXPECT_EQ(status()["indefinite"], true);
  EXPECT_EQ(status()["endsAt"], nullptr);
  EXPECT_EQ(status()["endsAtISO"], nullptr);
}

TEST_F(KeepAwakeTest, ARestartedServiceResumesASessionWithTimeLeft) {
  mockLogind();
  mockSessionManager();
  startService();
  ASSERT_EQ(korvo({"awake", "start", "1h"}).exitCode, 0);
  const double endsAt = status()["endsAt"].get<double>();
  service->stop();
  ASSERT_TRUE(waitFor([&] { return logindInhibitors().find(heldByKorvo) == std::string::npos; }));
  ASSERT_TRUE(std::filesystem::exists(stateFile()));
  startService();
  EXPECT_TRUE(waitFor([&] { return logindInhibitors().find(heldByKorvo) != std::string::npos; }));
  const auto resumed = status();
  EXPECT_EQ(resumed["active"], true);
  EXPECT_DOUBLE_EQ(resumed["endsAt"].get<double>(), endsAt);
}

TEST_F(KeepAwakeTest, ASessionWhoseEndPassedWhileNoServiceRanIsNotResumed) {
  mockLogind();
  mockSessionManager();
  world.write("state/korvo/awake.json", R"({"endsAt":1000,"indefinite":false})");
  startService();
  EXPECT_EQ(status()["active"], false);
  EXPECT_THAT(logindInhibitors(), Not(HasSubstr(heldByKorvo)));
}

TEST_F(KeepAwakeTest, WithoutLogindTheSessionInhibitorIsHeldAloneAndSaysSo) {
  mockSessionManager();
  startService();
  const auto started = korvo({"awake", "start", "2m"});
  EXPECT_EQ(started.exitCode, 0);
  EXPECT_THAT(started.out, HasSubstr("with the session's idle inhibitor alone"));
  EXPECT_EQ(status()["inhibitors"], nlohmann::json::array({"session"}));
}

TEST_F(KeepAwakeTest, WithoutASystemBusTheSessionInhibitorIsHeldAlone) {
  mockSessionManager();
  buses["DBUS_SYSTEM_BUS_ADDRESS"] = "unix:path=" + (world.home() / "no-bus").string();
  startService();
  EXPECT_EQ(korvo({"awake", "start", "2m"}).exitCode, 0);
  EXPECT_EQ(status()["inhibitors"], nlohmann::json::array({"session"}));
  EXPECT_EQ(korvo({"awake", "stop"}).exitCode, 0);
}

TEST_F(KeepAwakeTest, WithoutAGnomeSessionTheScreenSaverIsAsked) {
  mockLogind();
  mockScreenSaver();
  startService();
  ASSERT_EQ(korvo({"awake", "start", "2m"}).exitCode, 0);
  EXPECT_THAT(callsTo(screenSaver, "/org/freedesktop/ScreenSaver"),
              HasSubstr("'Inhibit', [<'Korvo'>, <'Keep Awake session'>]"));
  ASSERT_EQ(korvo({"awake", "stop"}).exitCode, 0);
  EXPECT_THAT(callsTo(screenSaver, "/org/freedesktop/ScreenSaver"),
              HasSubstr("'UnInhibit', [<uint32 7>]"));
}

TEST_F(KeepAwakeTest, WithNeitherInhibitorStartFailsAndSaysWhy) {
  startService();
  const auto started = korvo({"awake", "start", "2m"});
  EXPECT_EQ(started.exitCode, 1);
  EXPECT_THAT(started.err, HasSubstr("korvo: Cannot keep this machine awake: logind: "));
  EXPECT_EQ(std::count(started.err.begin(), started.err.end(), '\n'), 1);
  EXPECT_EQ(status()["active"], false);
}

TEST_F(KeepAwakeTest, StartFailsInOneLineWhenItsStateFileCannotBeWritten) {
  mockLogind();
  mockSessionManager();
  std::filesystem::create_directories(stateFile() / "kept");
  startService();
  const auto started = korvo({"awake", "start", "2m"});
  EXPECT_EQ(started.exitCode, 1);
  EXPECT_EQ(started.err, "korvo: cannot write the Keep Awake state " + stateFile().string() +
                             ": Is a directory; Keep Awake not started\n");
  EXPECT_EQ(started.out, "");
  EXPECT_EQ(status()["active"], false);
  EXPECT_TRUE(waitFor([&] { return logindInhibitors().find(heldByKorvo) == std::string::npos; }));
  EXPECT_TRUE(std::filesystem::is_directory(stateFile() / "kept"));
}

TEST_F(KeepAwakeTest, StopLeavesADirectoryStandingWhereTheStateFileGoes) {
  mockLogind();
  mockSessionManager();
  startService();
  ASSERT_EQ(korvo({"awake", "start", "2m"}).exitCode, 0);
  std::filesystem::remove(stateFile());
  std::filesystem::create_directory(stateFile());
  EXPECT_EQ(korvo({"awake", "stop"}).exitCode, 0);
  EXPECT_EQ(status()["active"], false);
  EXPECT_TRUE(std::filesystem::is_directory(stateFile()));
}

TEST_F(KeepAwakeTest, AStatusThatCannotBeWrittenFailsInOneLine) {
  startService();
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"awake", "status"},
        std::vector<std::string>{"awake", "status", "--json"}}) {
    const auto result = testing_support::runProgram(KORVO_APP_BINARY, args, buses, "", "/dev/full");
    EXPECT_EQ(result.exitCode, 1) << args.size();
    // GLib wrote it, so the reason may be lost: the line says what failed.
    EXPECT_THAT(result.err, testing::StartsWith("korvo: cannot write standard output: "));
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
  }
}

TEST_F(KeepAwakeTest, ASecondServiceRefusesToStartBesideTheFirst) {
  startService();
  const auto second = korvo({"service"});
  EXPECT_EQ(second.exitCode, 1);
  EXPECT_THAT(second.err, HasSubstr("the service is already running in this session"));
}

TEST_F(KeepAwakeTest, MalformedDurationsAreOneLineUsageErrors) {
  for (const std::string duration : {"5x", "90", "0m", "m", "1m1h", "-5m", "400d"}) {
    const auto result = korvo({"awake", "start", duration});
    EXPECT_EQ(result.exitCode, 2) << duration;
    EXPECT_THAT(result.err, HasSubstr("not a duration: \"" + duration + "\"")) << duration;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << duration;
  }
}

}  // namespace
}  // namespace korvo
