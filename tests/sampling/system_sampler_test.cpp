#include "sampling/system_sampler.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <string>

#include "support/temporary_directory.hpp"

namespace korvo {
namespace {

using testing_support::TemporaryDirectory;

// A small, self-consistent meminfo (kB): 1000 pages of 4 kB.
constexpr std::string_view meminfo =
    "MemTotal:           4000 kB\n"
    "MemFree:             400 kB\n"
    "Active:             1200 kB\n"
    "Inactive:            800 kB\n"
    "Active(file):        480 kB\n"
    "Inactive(file):      320 kB\n"
    "Unevictable:         160 kB\n"
    "SwapTotal:          2048 kB\n"
    "SwapFree:           1024 kB\n"
    "Zswap:                 0 kB\n"
    "KReclaimable:        240 kB\n"
    "SReclaimable:        200 kB\n";

constexpr std::string_view calm =
    "some avg10=0.00 avg60=0.00 avg300=0.00 total=0\n"
    "full avg10=0.00 avg60=0.00 avg300=0.00 total=0\n";

std::string without(std::string_view text, std::string_view name) {
  std::string result(text);
  const auto start = result.find(std::string(name) + ":");
  result.erase(start, result.find('\n', start) - start + 1);
  return result;
}

TEST(SystemSamplerTest, ReadsTheRootsFiles) {
  TemporaryDirectory root;
  root.write("proc/meminfo", meminfo);
  root.write("proc/pressure/memory", calm);
  const SystemSampler sampler(root.path(), 4096);
  EXPECT_EQ(sampler.total(), std::optional<std::uint64_t>(4000 * 1024));
  const auto kernel = sampler.readKernelMemory();
  ASSERT_TRUE(kernel);
  // remainder 4000 - 400 - 1200 - 800 - 160 - 240 = 1200 kB; wired (160 + 1200) / 4.
  EXPECT_EQ(kernel->pages, (PageCounts{300, 260, 340, 0, 60, 200}));
  EXPECT_EQ(kernel->swap, std::optional<std::uint64_t>(1024 * 1024));
  EXPECT_EQ(kernel->pressureLevel, 1);
  const auto snapshot = sampler.readMemory();
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->pressure, MemoryPressure::normal);
  EXPECT_EQ(snapshot->used() + snapshot->cached + 400 * 1024, snapshot->total);
}

TEST(SystemSamplerTest, MissingMeminfoIsNoReading) {
  TemporaryDirectory root;
  const SystemSampler sampler(root.path(), 4096);
  EXPECT_EQ(sampler.total(), std::nullopt);
  EXPECT_EQ(sampler.readMemory(), std::nullopt);
}

std::string replacing(std::string_view text, std::string_view from, std::string_view to) {
  std::string result(text);
  result.replace(result.find(from), from.size(), to);
  return result;
}

struct BrokenMeminfo {
  const char* name;
  std::string text;
};

class BrokenMeminfoTest : public ::testing::TestWithParam<BrokenMeminfo> {};

TEST_P(BrokenMeminfoTest, IsNoReading) {
  TemporaryDirectory root;
  root.write("proc/meminfo", GetParam().text);
  EXPECT_EQ(SystemSampler(root.path(), 4096).readMemory(), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    SystemSamplerTest, BrokenMeminfoTest,
    ::testing::Values(BrokenMeminfo{"Empty", ""},
                      BrokenMeminfo{"MissingRequiredLine", without(meminfo, "Unevictable")},
                      BrokenMeminfo{"NonNumber", replacing(meminfo, "1200 kB", "12OO kB")},
                      BrokenMeminfo{"ByteCountBeyondSixtyFourBits",
                                    replacing(meminfo, "400 kB", "18014398509481984 kB")}),
    [](const ::testing::TestParamInfo<BrokenMeminfo>& info) { return info.param.name; });

TEST(SystemSamplerTest, MeminfoVanishingAfterConstructionIsNoReading) {
  TemporaryDirectory root;
  root.write("proc/meminfo", meminfo);
  const SystemSampler sampler(root.path(), 4096);
  std::filesystem::remove(root.path() / "proc/meminfo");
  EXPECT_EQ(sampler.readMemory(), std::nullopt);
}

TEST(SystemSamplerTest, TotalIsReadOnceAtConstruction) {
  TemporaryDirectory root;
  root.write("proc/meminfo", meminfo);
  const SystemSampler sampler(root.path(), 4096);
  std::string larger(meminfo);
  larger.replace(larger.find("4000 kB"), 4, "8000");
  root.write("proc/meminfo", larger);
  const auto snapshot = sampler.readMemory();
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->total, 4000u * 1024);
}

TEST(SystemSamplerTest, MissingSwapLinesGiveAReadingWithoutSwap) {
  TemporaryDirectory root;
  root.write("proc/meminfo", without(without(meminfo, "SwapTotal"), "SwapFree"));
  const auto snapshot = SystemSampler(root.path(), 4096).readMemory();
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->swap, std::nullopt);
  EXPECT_EQ(snapshot->wired, 340u * 4096);
}

TEST(SystemSamplerTest, SwapFreeAboveSwapTotalGivesAReadingWithoutSwap) {
  TemporaryDirectory root;
  std::string text(meminfo);
  text.replace(text.find("1024 kB"), 4, "4096");
  root.write("proc/meminfo", text);
  const auto snapshot = SystemSampler(root.path(), 4096).readMemory();
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->swap, std::nullopt);
}

TEST(SystemSamplerTest, MissingPressureFileIsUnknown) {
  TemporaryDirectory root;
  root.write("proc/meminfo", meminfo);
  const auto snapshot = SystemSampler(root.path(), 4096).readMemory();
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->pressure, MemoryPressure::unknown);
}

TEST(SystemSamplerTest, GarbledPressureFileIsUnknown) {
  TemporaryDirectory root;
  root.write("proc/meminfo", meminfo);
  root.write("proc/pressure/memory", "some avg10=banana\nfull avg10=\n");
  const auto snapshot = SystemSampler(root.path(), 4096).readMemory();
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->pressure, MemoryPressure::unknown);
}

TEST(SystemSamplerTest, PressureDirectoryInPlaceOfTheFileIsUnknown) {
  TemporaryDirectory root;
  root.write("proc/meminfo", meminfo);
  std::filesystem::create_directories(root.path() / "proc/pressure/memory");
  const auto snapshot = SystemSampler(root.path(), 4096).readMemory();
  ASSERT_TRUE(snapshot);
  EXPECT_EQ(snapshot->pressure, MemoryPressure::unknown);
}

TEST(SystemSamplerTest, ZramFiguresAreBytesSummedOverDevices) {
  TemporaryDirectory root;
  root.write("proc/meminfo", meminfo);
  // 81920 + 40960 bytes = 120 kB = 30 pages; the remainder shrinks by the same 120 kB.
  root.write("sys/block/zram0/mm_stat", "409600 102400 81920 0 81920 0 0 0 0\n");
  root.write("sys/block/zram1/mm_stat", "204800 51200 40960 0 40960 0 0 0 0\n");
  root.write("sys/block/sda/size", "1000\n");
  const auto kernel = SystemSampler(root.path(), 4096).readKernelMemory();
  ASSERT_TRUE(kernel);
  EXPECT_EQ(kernel->pages.compressed, 30u);
  EXPECT_EQ(kernel->pages.wired, (160u + 1200 - 120) / 4);
}

TEST(SystemSamplerTest, GarbledZramDeviceCountsNothing) {
  TemporaryDirectory root;
  root.write("proc/meminfo", meminfo);
  root.write("sys/block/zram0/mm_stat", "not a statistic\n");
  const auto kernel = SystemSampler(root.path(), 4096).readKernelMemory();
  ASSERT_TRUE(kernel);
  EXPECT_EQ(kernel->pages.compressed, 0u);
}

TEST(SystemSamplerTest, FifoInPlaceOfMeminfoIsNoReadingWithoutHanging) {
  TemporaryDirectory root;
  std::filesystem::create_directories(root.path() / "proc");
  ASSERT_EQ(::mkfifo((root.path() / "proc/meminfo").c_str(), 0600), 0);
  const SystemSampler sampler(root.path(), 4096);
  EXPECT_EQ(sampler.readMemory(), std::nullopt);
}

TEST(SystemSamplerTest, EndlessDeviceInPlaceOfMeminfoIsNoReading) {
  TemporaryDirectory root;
  std::filesystem::create_directories(root.path() / "proc");
  std::filesystem::create_symlink("/dev/zero", root.path() / "proc/meminfo");
  const SystemSampler sampler(root.path(), 4096);
  EXPECT_EQ(sampler.readMemory(), std::nullopt);
}

TEST(SystemSamplerTest, EnvironmentChoosesTheRoot) {
  TemporaryDirectory root;
  root.write("proc/meminfo", meminfo);
  ASSERT_EQ(::setenv("KORVO_SYSROOT", root.path().c_str(), 1), 0);
  const SystemSampler sampler = SystemSampler::fromEnvironment();
  ::unsetenv("KORVO_SYSROOT");
  EXPECT_EQ(sampler.total(), std::optional<std::uint64_t>(4000 * 1024));
}

TEST(SystemSamplerTest, PageSizeComesFromTheSystem) {
  EXPECT_EQ(SystemSampler::systemPageSize(), static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)));
}

class CpuReadingTest : public ::testing::Test {
 protected:
  void writeTicks(std::uint64_t user, std::uint64_t nice, std::uint64_t system,
                  std::uint64_t idle) {
    root_.write("proc/stat", "cpu  " + std::to_string(user) + " " + std::to_string(nice) + " " +
                                 std::to_string(system) + " " + std::to_string(idle) +
                                 " 777 0 55 0 0 0\ncpu0 1 2 3 4 5 6 7 8 9 10\nctxt 99\n");
  }
  TemporaryDirectory root_;
  SystemSampler sampler_{root_.path(), 4096};
};

TEST_F(CpuReadingTest, FirstCallIsAbsent) {
  writeTicks(100, 10, 50, 1000);
  EXPECT_EQ(sampler_.readCPU(), std::nullopt);
}

TEST_F(CpuReadingTest, FractionOfNonIdleTicks) {
  writeTicks(100, 10, 50, 1000);
  ASSERT_EQ(sampler_.readCPU(), std::nullopt);
  // user +30, nice +10, system +20, idle +40; iowait is not among the counted ticks.
  writeTicks(130, 20, 70, 1040);
  EXPECT_EQ(sampler_.readCPU(), std::optional<double>(0.6));
}

TEST_F(CpuReadingTest, TickCounterWrapGivesTheSmallIncrement) {
  writeTicks(4'294'967'290, 0, 0, 0);
  ASSERT_EQ(sampler_.readCPU(), std::nullopt);
  // user 4,294,967,290 -> 6 is 12 ticks; idle +12.
  writeTicks(6, 0, 0, 12);
  EXPECT_EQ(sampler_.readCPU(), std::optional<double>(0.5));
}

TEST_F(CpuReadingTest, NoElapsedTicksIsAbsent) {
  writeTicks(100, 10, 50, 1000);
  ASSERT_EQ(sampler_.readCPU(), std::nullopt);
  EXPECT_EQ(sampler_.readCPU(), std::nullopt);
  writeTicks(100, 10, 50, 1010);
  EXPECT_EQ(sampler_.readCPU(), std::optional<double>(0.0));
}

TEST_F(CpuReadingTest, EachReadingStoresItsTicksForTheNext) {
  writeTicks(0, 0, 0, 0);
  ASSERT_EQ(sampler_.readCPU(), std::nullopt);
  writeTicks(10, 0, 0, 10);
  ASSERT_EQ(sampler_.readCPU(), std::optional<double>(0.5));
  writeTicks(10, 0, 0, 20);
  EXPECT_EQ(sampler_.readCPU(), std::optional<double>(0.0));
}

TEST_F(CpuReadingTest, UnreadableStatIsAbsentAndKeepsThePreviousTicks) {
  writeTicks(100, 0, 0, 100);
  ASSERT_EQ(sampler_.readCPU(), std::nullopt);
  root_.write("proc/stat", "garbage\n");
  EXPECT_EQ(sampler_.readCPU(), std::nullopt);
  writeTicks(103, 0, 0, 101);
  EXPECT_EQ(sampler_.readCPU(), std::optional<double>(0.75));
}

TEST_F(CpuReadingTest, MissingStatIsAbsent) {
  EXPECT_EQ(sampler_.readCPU(), std::nullopt);
}

}  // namespace
}  // namespace korvo
