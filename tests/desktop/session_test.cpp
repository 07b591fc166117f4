#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <string>

#include "support/desktop_harness.hpp"
#include "support/host_environment.hpp"
#include "support/private_buses.hpp"

namespace korvo::desktop_test {
namespace {

namespace fs = std::filesystem;

std::size_t requestCount(const std::string& log, const std::string& kind) {
  const std::string line = "timeline request for " + kind + " at ";
  std::size_t count = 0;
  for (auto found = log.find(line); found != std::string::npos;
       found = log.find(line, found + line.size())) {
    ++count;
  }
  return count;
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// Desktop hosts in one session of the test's own: an X server, a private session bus and a
// runtime folder, so hosts of other tests and of the machine never meet these.
class Session : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_STRNE(KORVO_BINARY, "") << "korvo-widgets was not built";
    server_ = std::make_unique<XServer>(1280, 1024, folder_.path());
    for (const char* name : {"home", "config", "data", "run"}) {
      fs::create_directories(folder_.path() / name);
    }
    ::chmod((folder_.path() / "run").c_str(), 0700);
    const fs::path socket = folder_.path() / "bus";
    bus_ = std::make_unique<Process>(
        std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nopidfile",
                                 "--address=unix:path=" + socket.string()},
        Environment{{"PATH", "/usr/bin:/bin"}}, folder_.path() / "bus.out",
        folder_.path() / "bus.err");
    ASSERT_TRUE(waitFor([&] { return fs::exists(socket); }))
        << readFile(folder_.path() / "bus.err");
    environment_ = hostEnvironment(folder_.path(),
                                   {
                                       {"XDG_RUNTIME_DIR", (folder_.path() / "run").string()},
                                       {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + socket.string()},
                                       {"DISPLAY", server_->display()},
                                       {"GDK_BACKEND", "x11"},
                                       {"NO_AT_BRIDGE", "1"},
                                       {"KORVO_HOST_DEBUG", "1"},
                                   });
  }

  void TearDown() override {
    hosts_.clear();
    bus_.reset();
    server_.reset();
  }

  // Starts `korvo-widgets run` with `arguments`; its standard error goes to log(index).
  Process& startHost(std::vector<std::string> arguments) {
    const std::size_t index = hosts_.size();
    arguments.insert(arguments.begin(), {KORVO_BINARY, "run"});
    hosts_.push_back(std::make_unique<Process>(
        arguments, environment_, folder_.path() / ("host" + std::to_string(index) + ".out"),
        log(index)));
    return *hosts_.back();
  }
  fs::path log(std::size_t index) const {
    return folder_.path() / ("host" + std::to_string(index) + ".err");
  }
  bool requested(std::size_t host, const std::string& kind, std::size_t atLeast = 1) const {
    return requestCount(readFile(log(host)), kind) >= atLeast;
  }
  // A command to its end, standard error with standard output.
  CommandResult run(const std::string& commandLine) const {
    return runCommand({"/bin/sh", "-c", commandLine + " 2>&1"}, environment_);
  }

  TemporaryDirectory folder_;
  std::unique_ptr<XServer> server_;
  std::unique_ptr<Process> bus_;
  Environment environment_;
  std::vector<std::unique_ptr<Process>> hosts_;
};

constexpr const char* memory = "com.tessmoor.Korvo.memory";
constexpr const char* usage = "com.tessmoor.Korvo.usage";

TEST_F(Session, ASecondRunSaysTheHostIsRunningAndExitsZero) {
  Process& first = startHost({"--widget", "memory"});
  ASSERT_TRUE(waitFor([&] { return requested(0, memory); })) << readFile(log(0));

  const CommandResult second = run(std::string(KORVO_BINARY) + " run --widget usage");
  EXPECT_EQ(second.exitStatus, 0);
  EXPECT_TRUE(contains(second.output, "the desktop host is already running in this session"))
      << second.output;
  EXPECT_TRUE(contains(second.output, "--replace takes over")) << second.output;
  EXPECT_TRUE(first.running());
}

TEST_F(Session, ReplaceTakesOverAndTheFirstHostLeaves) {
  Process& first = startHost({"--widget", "memory"});
  ASSERT_TRUE(waitFor([&] { return requested(0, memory); })) << readFile(log(0));

  Process& second = startHost({"--replace", "--widget", "usage"});
  ASSERT_TRUE(waitFor([&] { return !first.running(); })) << readFile(log(0));
  EXPECT_TRUE(contains(readFile(log(0)), "another desktop host took over")) << readFile(log(0));
  ASSERT_TRUE(waitFor([&] { return requested(1, usage); })) << readFile(log(1));
  EXPECT_TRUE(second.running());
  // `reload` now reaches the new host.
  EXPECT_EQ(run(std::string(KORVO_BINARY) + " reload").exitStatus, 0);
  EXPECT_TRUE(waitFor([&] { return requested(1, usage, 2); })) << readFile(log(1));
}

TEST_F(Session, ReloadMakesEveryWidgetAskItsProviderAgainNow) {
  startHost({"--widget", "memory", "--widget", "usage"});
  ASSERT_TRUE(waitFor([&] { return requested(0, memory) && requested(0, usage); }))
      << readFile(log(0));

  const CommandResult reload = run(std::string(KORVO_BINARY) + " reload");
  EXPECT_EQ(reload.exitStatus, 0) << reload.output;
  EXPECT_EQ(reload.output, "");
  // Long before the 900- and 1,800-second reloads, each widget asks again.
  EXPECT_TRUE(waitFor([&] { return requested(0, memory, 2) && requested(0, usage, 2); }))
      << readFile(log(0));
}

TEST_F(Session, TheHostAnswersReloadOnTheSessionBusToo) {
  startHost({"--widget", "memory"});
  ASSERT_TRUE(waitFor([&] { return requested(0, memory); })) << readFile(log(0));

  const CommandResult call =
      run("gdbus call --session --dest com.tessmoor.Korvo.Widgets --object-path "
          "/com/tessmoor/Korvo/Widgets --method com.tessmoor.Korvo.Widgets.Reload");
  EXPECT_EQ(call.exitStatus, 0) << call.output;
  EXPECT_TRUE(waitFor([&] { return requested(0, memory, 2); })) << readFile(log(0));
}

TEST_F(Session, ReloadWithoutAHostSaysSoOnOneLineAndExitsOne) {
  const CommandResult reload = run(std::string(KORVO_BINARY) + " reload");
  EXPECT_EQ(reload.exitStatus, 1);
  EXPECT_TRUE(contains(reload.output, "korvo-widgets: no desktop host is running"))
      << reload.output;
  EXPECT_EQ(std::count(reload.output.begin(), reload.output.end(), '\n'), 1);
}

TEST_F(Session, ARecordLeftByAHostThatIsGoneIsNotAHost) {
  // A process id that is not a desktop host: this test's own.
  writeFile(folder_.path() / "run" / "korvo-widgets" / "desktop.pid",
            std::to_string(::getpid()) + "\n");
  EXPECT_EQ(run(std::string(KORVO_BINARY) + " reload").exitStatus, 1);
}

TEST_F(Session, StopEndsTheRunningHostAndAfterItStopSaysNoneRunsAndExitsOne) {
  Process& host = startHost({"--widget", "memory"});
  ASSERT_TRUE(waitFor([&] { return requested(0, memory); })) << readFile(log(0));

  const CommandResult stop = run(std::string(KORVO_BINARY) + " stop");
  EXPECT_EQ(stop.exitStatus, 0) << stop.output;
  EXPECT_EQ(stop.output, "");
  // `stop` returns once the host has gone.
  EXPECT_FALSE(fs::exists(folder_.path() / "run" / "korvo-widgets" / "desktop.pid"));
  EXPECT_TRUE(waitFor([&] { return !host.running(); }));

  const CommandResult again = run(std::string(KORVO_BINARY) + " stop");
  EXPECT_EQ(again.exitStatus, 1);
  EXPECT_TRUE(contains(again.output, "korvo-widgets: no desktop host is running")) << again.output;
  EXPECT_EQ(std::count(again.output.begin(), again.output.end(), '\n'), 1);
}

// A host started at login has no terminal: a bad placements file is also said in a notification
// naming the file and the fault, once for each version of the file.
TEST_F(Session, ABadPlacementsFileIsNotifiedOnceForEachVersionOfIt) {
  const bus_test::Mock notifications(environment_, folder_.path(),
                                     {"--template", "notification_daemon"},
                                     "org.freedesktop.Notifications", false);
  const auto notified = [&] {
    const std::string calls =
        bus_test::call(environment_, false, "org.freedesktop.Notifications",
                       "/org/freedesktop/Notifications", "org.freedesktop.DBus.Mock.GetCalls");
    std::vector<std::string> bodies;
    for (auto at = calls.find("'Notify'"); at != std::string::npos;
         at = calls.find("'Notify'", at + 1)) {
      bodies.push_back(calls.substr(at, calls.find("'Notify'", at + 1) - at));
    }
    return bodies;
  };
  const auto placements = folder_.path() / "config" / "korvo-widgets" / "placements.json";
  writeFile(placements, R"([{"kind": "memory", "family": "large"}])");
  startHost({});
  ASSERT_TRUE(waitFor([&] { return notified().size() == 1; })) << readFile(log(0));
  EXPECT_TRUE(contains(notified()[0],
                       placements.string() + ": [0].family: \"large\" is not offered by memory"))
      << notified()[0];
  EXPECT_TRUE(contains(notified()[0], "showing the default widgets")) << notified()[0];

  // Read again unchanged (SIGHUP): the log says it again, the notification does not.
  const auto complaints = [&] {
    const auto text = readFile(log(0));
    return std::count_if(text.begin(), text.end(), [](char c) { return c == '\n'; });
  };
  const auto before = complaints();
  hosts_[0]->signal(SIGHUP);
  ASSERT_TRUE(waitFor([&] { return complaints() > before; })) << readFile(log(0));
  EXPECT_EQ(notified().size(), 1U);

  // Another fault is another version of the file: notified once more.
  writeFile(placements, R"([{"kind": "clock"}])");
  ASSERT_TRUE(waitFor([&] { return notified().size() == 2; })) << readFile(log(0));
  EXPECT_TRUE(contains(notified()[1], "[0].kind: unknown widget \"clock\"")) << notified()[1];
  EXPECT_TRUE(contains(notified()[1], "keeping the widgets shown")) << notified()[1];
}

}  // namespace
}  // namespace korvo::desktop_test
