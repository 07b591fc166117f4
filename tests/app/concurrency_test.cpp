#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <thread>
#include <vector>

#include "shared/url.hpp"
#include "shared/widget_snapshot_store.hpp"
#include "support/korvo_process.hpp"

namespace korvo {
namespace {

using testing_support::KorvoWorld;

constexpr int statusLineProcesses = 20;
constexpr int writesEach = 500;
constexpr int loads = 5000;

// Status-line input whose figures name the writer and its step, so the file tells who wrote last.
std::string input(int writer, int step) {
  return R"({"rate_limits":{"five_hour":{"used_percentage":)" + std::to_string(step) +
         R"(},"seven_day":{"used_percentage":)" + std::to_string(writer) + "}}}";
}

// The publisher and twenty status lines write at once while a widget reads: every read decodes,
// and neither writer's part is lost to the other.
TEST(ConcurrencyTest, WritersNeverLoseEachOthersFiguresAndReadersAlwaysDecode) {
  // Every save is flushed to disk under the lock; on a memory file system the ten thousand
  // writes test the locking in a minute or two instead of the disk for many.
  if (::access("/dev/shm", W_OK) == 0) ::setenv("TMPDIR", "/dev/shm", 1);
  KorvoWorld world;
  const auto sysroot = world.home() / "sys-tree";
  const auto sensor = sysroot / "sys/class/hwmon/hwmon0";
  std::filesystem::create_directories(sensor);
  world.write("sys-tree/sys/class/hwmon/hwmon0/name", "coretemp\n");
  world.write("sys-tree/sys/class/hwmon/hwmon0/temp1_label", "Package id 0\n");
  world.write("sys-tree/sys/class/hwmon/hwmon0/temp1_input", "40000\n");
  world.setSysroot(sysroot);
  ASSERT_EQ(world.korvo({"publish"}).exitCode, 0);

  std::atomic<int> writersLeft = statusLineProcesses;
  std::vector<std::thread> writers;
  for (int writer = 0; writer < statusLineProcesses; ++writer) {
    writers.emplace_back([&, writer] {
      for (int step = 1; step <= writesEach; ++step)
        world.korvo({"claude-statusline"}, input(writer, step));
      --writersLeft;
    });
  }
  int lastMillidegrees = 40000;
  std::thread publisher([&] {
    while (writersLeft > 0) {
      lastMillidegrees += 10;
      world.write("sys-tree/sys/class/hwmon/hwmon0/temp1_input",
                  std::to_string(lastMillidegrees) + "\n");
      world.korvo({"publish"});
    }
  });
  // The reader keeps reading while anyone writes, at least `loads` times.
  int undecodable = 0;
  int loaded = 0;
  const auto url = Url::file(world.sharedFile());
  while (writersLeft > 0 || loaded < loads) {
    if (!WidgetSnapshotStore::load(url)) ++undecodable;
    ++loaded;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  for (auto& writer : writers) writer.join();
  publisher.join();

  EXPECT_EQ(undecodable, 0);
  EXPECT_GE(loaded, loads);
  const auto snapshot = WidgetSnapshotStore::load(url);
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->temperature, lastMillidegrees / 1000.0);
  ASSERT_TRUE(snapshot->claude.snapshot);
  const auto& windows = snapshot->claude.snapshot->windows;
  ASSERT_EQ(windows.size(), 2u);
  // Whoever wrote last, it was that writer's last step.
  EXPECT_EQ(windows[0].usedPercent, writesEach);
  EXPECT_GE(windows[1].usedPercent, 0);
  EXPECT_LT(windows[1].usedPercent, statusLineProcesses);
}

}  // namespace
}  // namespace korvo
