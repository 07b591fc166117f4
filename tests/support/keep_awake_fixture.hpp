#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/korvo_process.hpp"
#include "support/private_buses.hpp"

// korvo's service against mock services on private buses: logind's template on a private system
// bus, org.gnome.SessionManager or org.freedesktop.ScreenSaver (and notifications) on a private
// session bus.
namespace korvo::keep_awake_test {

using namespace bus_test;
using desktop_test::Process;
using desktop_test::waitFor;

constexpr const char* logind = "org.freedesktop.login1";
constexpr const char* sessionManager = "org.gnome.SessionManager";
constexpr const char* screenSaver = "org.freedesktop.ScreenSaver";
constexpr const char* mockInterface = "org.freedesktop.DBus.Mock";

class KeepAwakeTest : public testing::Test {
 protected:
  KeepAwakeTest() : systemBus(world.home(), "system"), sessionBus(world.home(), "session") {
    buses = world.environment();
    buses["DBUS_SYSTEM_BUS_ADDRESS"] = systemBus.address();
    buses["DBUS_SESSION_BUS_ADDRESS"] = sessionBus.address();
    buses["XDG_STATE_HOME"] = (world.home() / "state").string();
  }

  void mockLogind() {
    mocks.push_back(std::make_unique<Mock>(
        buses, world.home(), std::vector<std::string>{"--template", "logind"}, logind, true));
  }
  void mockSessionManager() {
    mocks.push_back(std::make_unique<Mock>(
        buses, world.home(),
        std::vector<std::string>{sessionManager, "/org/gnome/SessionManager", sessionManager},
        sessionManager, false));
    addMethod(sessionManager, "/org/gnome/SessionManager", "Inhibit", "susu", "u", "ret = 42");
    addMethod(sessionManager, "/org/gnome/SessionManager", "Uninhibit", "u", "", "");
  }
  void mockNotifications() {
    mocks.push_back(std::make_unique<Mock>(
        buses, world.home(), std::vector<std::string>{"--template", "notification_daemon"},
        "org.freedesktop.Notifications", false));
  }
  void mockScreenSaver() {
    mocks.push_back(std::make_unique<Mock>(
        buses, world.home(),
        std::vector<std::string>{screenSaver, "/org/freedesktop/ScreenSaver", screenSaver},
        screenSaver, false));
    addMethod(screenSaver, "/org/freedesktop/ScreenSaver", "Inhibit", "ss", "u", "ret = 7");
    addMethod(screenSaver, "/org/freedesktop/ScreenSaver", "UnInhibit", "u", "", "");
  }
  void addMethod(const std::string& name, const std::string& path, const std::string& method,
                 const std::string& in, const std::string& out, const std::string& code) {
    call(buses, false, name, path, std::string(mockInterface) + ".AddMethod",
         {"", method, in, out, code});
  }

  void startService(std::map<std::string, std::string> extra = {}) {
    auto environment = buses;
    environment.insert(extra.begin(), extra.end());
    service = std::make_unique<Process>(std::vector<std::string>{KORVO_APP_BINARY, "service"},
                                        environment, world.home() / "service.out",
                                        world.home() / "service.err");
    ASSERT_TRUE(waitFor([&] { return owned(buses, false, "com.tessmoor.Korvo"); }))
        << desktop_test::readFile(world.home() / "service.err");
  }

  testing_support::ProcessResult korvo(const std::vector<std::string>& args) {
    return testing_support::runProgram(KORVO_APP_BINARY, args, buses);
  }
  nlohmann::json status() {
    const auto result = korvo({"awake", "status", "--json"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    return nlohmann::json::parse(result.out);
  }
  // logind's inhibitors as its mock lists them.
  std::string logindInhibitors() {
    return call(buses, true, logind, "/org/freedesktop/login1",
                "org.freedesktop.login1.Manager.ListInhibitors");
  }
  std::string callsTo(const std::string& name, const std::string& path) {
    return call(buses, false, name, path, std::string(mockInterface) + ".GetCalls");
  }
  std::filesystem::path stateFile() const { return world.home() / "state/korvo/awake.json"; }

  testing_support::KorvoWorld world;
  PrivateBus systemBus;
  PrivateBus sessionBus;
  desktop_test::Environment buses;
  std::vector<std::unique_ptr<Mock>> mocks;
  std::unique_ptr<Process> service;
};

}  // namespace korvo::keep_awake_test
