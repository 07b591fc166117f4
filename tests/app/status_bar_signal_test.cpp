#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "support/korvo_process.hpp"

// After a publication korvo sends the signal Waybar's modules are configured with to the user's
// waybar, so the bar shows the new figures at once. A stand-in named waybar records what it gets.
namespace korvo {
namespace {

using testing_support::KorvoWorld;
using testing_support::readFile;
namespace fs = std::filesystem;

class StandInWaybar {
 public:
  StandInWaybar(const KorvoWorld& world, const std::string& name)
      : program_(world.write(name + "/waybar", "")), record_(world.home() / name / "signals") {
    // Its process name is its file's name, as for the real bar; it never forks, so nothing else
    // of that name is around to be signalled.
    std::ofstream(program_) << "#!/usr/bin/python3\n"
                               "import signal, sys\n"
                               "def record(number, frame):\n"
                               "    with open(sys.argv[1], 'a') as out:\n"
                               "        out.write('RTMIN+%d\\n' % (number - signal.SIGRTMIN))\n"
                               "for offset in range(1, 31):\n"
                               "    signal.signal(signal.SIGRTMIN + offset, record)\n"
                               "open(sys.argv[1], 'w').close()\n"
                               "while True:\n"
                               "    signal.pause()\n";
    fs::permissions(program_, fs::perms::owner_all);
    pid_ = ::fork();
    if (pid_ == 0) {
      ::execl(program_.c_str(), program_.c_str(), record_.c_str(), nullptr);
      ::_exit(127);
    }
    waitFor([&] { return fs::exists(record_); });
  }
  ~StandInWaybar() {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }

  // The signals it has recorded, once `expected` lines are there or after a few seconds.
  std::string received(std::size_t expected) const {
    waitFor([&] {
      const std::string text = readFile(record_);
      return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) >= expected;
    });
    return readFile(record_);
  }

 private:
  template <typename Condition>
  static void waitFor(Condition condition) {
    for (int tries = 0; tries < 250 && !condition(); ++tries) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  }

  fs::path program_;
  fs::path record_;
  pid_t pid_ = -1;
};

// One test, so that no other stand-in of this suite can receive its signals.
TEST(StatusBarSignalTest, PublicationsSignalWaybarOnlyWithTheConfiguredSignal) {
  KorvoWorld world;
  {
    StandInWaybar waybar(world, "first");
    ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
    ASSERT_EQ(world.korvo({"settings", "waybarSignal", "8"}).exitCode, 0);
    const auto result = world.korvo({"publish"});
    ASSERT_EQ(result.exitCode, 0) << result.err;
    // The first publication, without the setting, sent nothing.
    EXPECT_EQ(waybar.received(1), "RTMIN+8\n");
  }
  {
    StandInWaybar waybar(world, "second");
    ASSERT_EQ(world.korvo({"settings", "waybarSignal", "9"}).exitCode, 0);
    world.korvo({"claude-statusline"}, R"({"rate_limits":{"five_hour":{"used_percentage":30}}})");
    EXPECT_EQ(waybar.received(1), "RTMIN+9\n");
  }
  {
    StandInWaybar waybar(world, "third");
    ASSERT_EQ(world.korvo({"settings", "waybarSignal", "0"}).exitCode, 0);
    ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);
    world.korvo({"claude-statusline"}, R"({"rate_limits":{"five_hour":{"used_percentage":40}}})");
    // A signal would have arrived by now; the bar got none.
    EXPECT_EQ(waybar.received(1), "");
  }
}

TEST(StatusBarSignalTest, SignalsBeyondTheRealTimeRangeAreUsageErrors) {
  KorvoWorld world;
  const auto result = world.korvo({"settings", "waybarSignal", "31"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.err, "korvo: waybarSignal: not a whole number in 0–30: \"31\"\n");
}

}  // namespace
}  // namespace korvo
