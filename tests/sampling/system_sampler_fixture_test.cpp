#include <gtest/gtest.h>

#include <string>

#include "sampling/system_sampler.hpp"
#include "support/base/fixed_clock.hpp"

// Readings of machine-shaped trees under tests/fixtures/proc, 4096-byte pages. Each expected
// figure is worked out by hand from the fixture's meminfo (kB, so a page is 4 kB) and zram bytes:
// active = Active; inactive = Inactive + R; external = Active(file) + Inactive(file);
// purgeable = R; compressed = Zswap + zram; wired = Unevictable + max(0, MemTotal - MemFree -
// Active - Inactive - Unevictable - R - pool).
namespace korvo {
namespace {

class FixtureTreeTest : public ::testing::Test {
 protected:
  const testing_support::FixedClock fixedClock_{Date{784'000'000.5}};

  static SystemSampler sampler(const std::string& machine) {
    return SystemSampler(std::string(KORVO_FIXTURES_DIR) + "/proc/" + machine, 4096);
  }
};

TEST_F(FixtureTreeTest, DesktopWithZramSwap) {
  // MemTotal 16323576, MemFree 1873244, Active 6124348, Inactive 5431236, Active(file) 2873612,
  // Inactive(file) 3016548, Unevictable 96512, KReclaimable 412876, Zswap 0; zram0 325431296 B
  // = 317804 kB; remainder 16323576 - 1873244 - 6124348 - 5431236 - 96512 - 412876 - 317804
  // = 2067556 kB.
  const auto kernel = sampler("desktop-zram").readKernelMemory();
  ASSERT_TRUE(kernel);
  EXPECT_EQ(kernel->pages, (PageCounts{.active = 1531087,                // 6124348 / 4
                                       .inactive = 1461028,              // 5844112 / 4
                                       .wired = 541017,                  // (96512 + 2067556) / 4
                                       .compressed = 79451,              // 317804 / 4
                                       .purgeable = 103219,              // 412876 / 4
                                       .external = 1472540}));           // 5890160 / 4
  EXPECT_EQ(kernel->swap, std::optional<std::uint64_t>(1'177'034'752));  // 1149448 kB
  EXPECT_EQ(kernel->pressureLevel, 2);  // some avg10 12.50, full avg10 3.20

  const auto snapshot = sampler("desktop-zram").readMemory();
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(*snapshot, (MemorySnapshot{.total = 16'715'341'824,    // 16323576 kB
                                       .app = 5'801'394'176,       // 1416356 pages
                                       .wired = 2'216'005'632,     // 541017 pages
                                       .compressed = 325'431'296,  // 79451 pages
                                       .cached = 6'454'308'864,    // 1575759 pages
                                       .swap = 1'177'034'752,
                                       .pressure = MemoryPressure::warning,
                                       .timestamp = Date{784'000'000.5}}));
  EXPECT_EQ(snapshot->used(), 8'342'831'104u);
}

TEST_F(FixtureTreeTest, ServerWithZswap) {
  // MemTotal 65626268, MemFree 4194304, Active 30408704, Inactive 22020096, Active(file)
  // 10485760, Inactive(file) 12582912, Unevictable 262144, KReclaimable 2621440, Zswap 1048576,
  // no zram; remainder 65626268 - 4194304 - 30408704 - 22020096 - 262144 - 2621440 - 1048576
  // = 5071004 kB.
  const auto kernel = sampler("server-zswap").readKernelMemory();
  ASSERT_TRUE(kernel);
  EXPECT_EQ(kernel->pages, (PageCounts{.active = 7602176,                // 30408704 / 4
                                       .inactive = 6160384,              // 24641536 / 4
                                       .wired = 1333287,                 // (262144 + 5071004) / 4
                                       .compressed = 262144,             // 1048576 / 4
                                       .purgeable = 655360,              // 2621440 / 4
                                       .external = 5767168}));           // 23068672 / 4
  EXPECT_EQ(kernel->swap, std::optional<std::uint64_t>(3'221'225'472));  // 3145728 kB
  EXPECT_EQ(kernel->pressureLevel, 4);                                   // full avg10 11.00

  const auto snapshot = sampler("server-zswap").readMemory();
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(*snapshot, (MemorySnapshot{.total = 67'201'298'432,      // 65626268 kB
                                       .app = 30'064'771'072,        // 7340032 pages
                                       .wired = 5'461'143'552,       // 1333287 pages
                                       .compressed = 1'073'741'824,  // 262144 pages
                                       .cached = 26'306'674'688,     // 6422528 pages
                                       .swap = 3'221'225'472,
                                       .pressure = MemoryPressure::critical,
                                       .timestamp = Date{784'000'000.5}}));
}

TEST_F(FixtureTreeTest, MachineWithoutSwap) {
  // MemTotal 8041556, MemFree 2301220, Active 2871236, Inactive 2154120, Active(file) 1204880,
  // Inactive(file) 1520340, Unevictable 32768, KReclaimable 201816, Zswap 0, SwapTotal 0;
  // remainder 8041556 - 2301220 - 2871236 - 2154120 - 32768 - 201816 = 480396 kB.
  const auto kernel = sampler("no-swap").readKernelMemory();
  ASSERT_TRUE(kernel);
  EXPECT_EQ(kernel->pages, (PageCounts{.active = 717809,    // 2871236 / 4
                                       .inactive = 588984,  // 2355936 / 4
                                       .wired = 128291,     // (32768 + 480396) / 4
                                       .compressed = 0,
                                       .purgeable = 50454,     // 201816 / 4
                                       .external = 681305}));  // 2725220 / 4
  EXPECT_EQ(kernel->pressureLevel, 1);

  const auto snapshot = sampler("no-swap").readMemory();
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(*snapshot, (MemorySnapshot{.total = 8'234'553'344,  // 8041556 kB
                                       .app = 2'355'339'264,    // 575034 pages
                                       .wired = 525'479'936,    // 128291 pages
                                       .compressed = 0,
                                       .cached = 2'997'284'864,  // 731759 pages
                                       .swap = 0,
                                       .pressure = MemoryPressure::normal,
                                       .timestamp = Date{784'000'000.5}}));
}

TEST_F(FixtureTreeTest, KernelWithoutPressureStallInformation) {
  // MemTotal 32768000, MemFree 10240000, Active 9830400, Inactive 7372800, Active(file) 4915200,
  // Inactive(file) 3686400, Unevictable 65536, KReclaimable 819200, Zswap 0, swap all free;
  // remainder 32768000 - 10240000 - 9830400 - 7372800 - 65536 - 819200 = 4440064 kB.
  const auto kernel = sampler("no-psi").readKernelMemory();
  ASSERT_TRUE(kernel);
  EXPECT_EQ(kernel->pages, (PageCounts{.active = 2457600,
                                       .inactive = 2048000,  // 8192000 / 4
                                       .wired = 1126400,     // (65536 + 4440064) / 4
                                       .compressed = 0,
                                       .purgeable = 204800,
                                       .external = 2150400}));  // 8601600 / 4
  EXPECT_EQ(kernel->pressureLevel, 0);

  const auto snapshot = sampler("no-psi").readMemory();
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(*snapshot, (MemorySnapshot{.total = 33'554'432'000,
                                       .app = 8'808'038'400,    // 2150400 pages
                                       .wired = 4'613'734'400,  // 1126400 pages
                                       .compressed = 0,
                                       .cached = 9'646'899'200,  // 2355200 pages
                                       .swap = 0,
                                       .pressure = MemoryPressure::unknown,
                                       .timestamp = Date{784'000'000.5}}));
}

TEST_F(FixtureTreeTest, OldKernelWithoutKReclaimableOrZswap) {
  // MemTotal 4046436, MemFree 512344, Active 1720316, Inactive 1100288, Active(file) 640112,
  // Inactive(file) 580224, Unevictable 16384, SReclaimable 120832 (no KReclaimable, no Zswap,
  // no PSI); remainder 4046436 - 512344 - 1720316 - 1100288 - 16384 - 120832 = 576272 kB.
  const auto kernel = sampler("old-kernel").readKernelMemory();
  ASSERT_TRUE(kernel);
  EXPECT_EQ(kernel->pages, (PageCounts{.active = 430079,    // 1720316 / 4
                                       .inactive = 305280,  // 1221120 / 4
                                       .wired = 148164,     // (16384 + 576272) / 4
                                       .compressed = 0,
                                       .purgeable = 30208,             // 120832 / 4
                                       .external = 305084}));          // 1220336 / 4
  EXPECT_EQ(kernel->swap, std::optional<std::uint64_t>(536'870'912));  // 524288 kB
  EXPECT_EQ(kernel->pressureLevel, 0);

  const auto snapshot = sampler("old-kernel").readMemory();
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(*snapshot, (MemorySnapshot{.total = 4'143'550'464,  // 4046436 kB
                                       .app = 1'638'674'432,    // 400067 pages
                                       .wired = 606'879'744,    // 148164 pages
                                       .compressed = 0,
                                       .cached = 1'373'356'032,  // 335292 pages
                                       .swap = 536'870'912,
                                       .pressure = MemoryPressure::unknown,
                                       .timestamp = Date{784'000'000.5}}));
}

TEST_F(FixtureTreeTest, OvershootClampsWiredCompressedAppCachedInThatOrder) {
  // MemTotal 2097152 (2 GiB), MemFree 262144, Active 1048576, Inactive 786432, Active(file)
  // 131072, Inactive(file) 131072, Unevictable 524288, KReclaimable 65536, zram 512 MiB
  // = 524288 kB; the remainder 2097152 - 262144 - 1048576 - 786432 - 524288 - 65536 - 524288
  // is negative, so wired is Unevictable alone.
  const auto kernel = sampler("overshoot").readKernelMemory();
  ASSERT_TRUE(kernel);
  EXPECT_EQ(kernel->pages, (PageCounts{.active = 262144,
                                       .inactive = 212992,  // 851968 / 4
                                       .wired = 131072,
                                       .compressed = 131072,
                                       .purgeable = 16384,
                                       .external = 65536}));
  EXPECT_EQ(kernel->pressureLevel, 4);

  // 524288 pages in all: wired 131072 and compressed 131072 fit; app wants 393216
  // (262144 + 212992 - 16384 - 65536) but only 262144 are left; cached (81920) gets nothing.
  const auto snapshot = sampler("overshoot").readMemory();
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(*snapshot, (MemorySnapshot{.total = 2'147'483'648,
                                       .app = 1'073'741'824,
                                       .wired = 536'870'912,
                                       .compressed = 536'870'912,
                                       .cached = 0,
                                       .swap = 536'870'912,
                                       .pressure = MemoryPressure::critical,
                                       .timestamp = Date{784'000'000.5}}));
  EXPECT_EQ(snapshot->available(), 0u);
}

}  // namespace
}  // namespace korvo
