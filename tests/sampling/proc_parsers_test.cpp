#include "sampling/proc_parsers.hpp"

#include <gtest/gtest.h>

#include <string>

namespace korvo {
namespace {

constexpr std::string_view modernMeminfo =
    "MemTotal:       16323576 kB\n"
    "MemFree:         1873244 kB\n"
    "MemAvailable:    9000000 kB\n"
    "Active:          6124348 kB\n"
    "Inactive:        5431236 kB\n"
    "Active(anon):    3250736 kB\n"
    "Inactive(anon):  2414688 kB\n"
    "Active(file):    2873612 kB\n"
    "Inactive(file):  3016548 kB\n"
    "Unevictable:       96512 kB\n"
    "SwapTotal:       8161788 kB\n"
    "SwapFree:        7012340 kB\n"
    "Zswap:              2048 kB\n"
    "KReclaimable:     412876 kB\n"
    "SReclaimable:     398220 kB\n"
    "HugePages_Total:       0\n"
    "Hugepagesize:       2048 kB\n";

std::string without(std::string_view text, std::string_view linePrefix) {
  std::string result(text);
  const auto start = result.find(std::string(linePrefix) + ":");
  if (start != std::string::npos) result.erase(start, result.find('\n', start) - start + 1);
  return result;
}

std::string replaced(std::string_view text, std::string_view from, std::string_view to) {
  std::string result(text);
  result.replace(result.find(from), from.size(), to);
  return result;
}

TEST(ParseMeminfoTest, ReadsEveryFigureInBytes) {
  const auto meminfo = parse_meminfo(modernMeminfo);
  ASSERT_TRUE(meminfo);
  EXPECT_EQ(meminfo->memTotal, 16323576ull * 1024);
  EXPECT_EQ(meminfo->memFree, 1873244ull * 1024);
  EXPECT_EQ(meminfo->active, 6124348ull * 1024);
  EXPECT_EQ(meminfo->inactive, 5431236ull * 1024);
  EXPECT_EQ(meminfo->activeFile, 2873612ull * 1024);
  EXPECT_EQ(meminfo->inactiveFile, 3016548ull * 1024);
  EXPECT_EQ(meminfo->unevictable, 96512ull * 1024);
  EXPECT_EQ(meminfo->reclaimable, 412876ull * 1024);
  EXPECT_EQ(meminfo->zswap, 2048ull * 1024);
  EXPECT_EQ(meminfo->swapTotal, std::optional<std::uint64_t>(8161788ull * 1024));
  EXPECT_EQ(meminfo->swapFree, std::optional<std::uint64_t>(7012340ull * 1024));
}

TEST(ParseMeminfoTest, SReclaimableStandsInWhenKReclaimableIsAbsent) {
  const auto meminfo = parse_meminfo(without(modernMeminfo, "KReclaimable"));
  ASSERT_TRUE(meminfo);
  EXPECT_EQ(meminfo->reclaimable, 398220ull * 1024);
}

TEST(ParseMeminfoTest, SReclaimableIsNotRequiredWhenKReclaimableIsThere) {
  const auto meminfo = parse_meminfo(without(modernMeminfo, "SReclaimable"));
  ASSERT_TRUE(meminfo);
  EXPECT_EQ(meminfo->reclaimable, 412876ull * 1024);
}

TEST(ParseMeminfoTest, NeitherReclaimableLineIsNoReading) {
  EXPECT_EQ(parse_meminfo(without(without(modernMeminfo, "KReclaimable"), "SReclaimable")),
            std::nullopt);
}

class MissingRequiredLineTest : public ::testing::TestWithParam<const char*> {};

TEST_P(MissingRequiredLineTest, IsNoReading) {
  EXPECT_EQ(parse_meminfo(without(modernMeminfo, GetParam())), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Lines, MissingRequiredLineTest,
                         ::testing::Values("MemTotal", "MemFree", "Active", "Inactive",
                                           "Active(file)", "Inactive(file)", "Unevictable"),
                         [](const auto& info) {
                           std::string name;
                           for (const char c : std::string_view(info.param)) {
                             if (std::isalnum(static_cast<unsigned char>(c))) name += c;
                           }
                           return name;
                         });

TEST(ParseMeminfoTest, MissingZswapLineCountsZero) {
  const auto meminfo = parse_meminfo(without(modernMeminfo, "Zswap"));
  ASSERT_TRUE(meminfo);
  EXPECT_EQ(meminfo->zswap, 0u);
}

TEST(ParseMeminfoTest, MissingSwapLinesLeaveSwapAbsent) {
  const auto meminfo = parse_meminfo(without(without(modernMeminfo, "SwapTotal"), "SwapFree"));
  ASSERT_TRUE(meminfo);
  EXPECT_EQ(meminfo->swapTotal, std::nullopt);
  EXPECT_EQ(meminfo->swapFree, std::nullopt);
  EXPECT_EQ(swap_used(*meminfo), std::nullopt);
}

struct MalformedCase {
  const char* name;
  std::string_view from;
  std::string_view to;
};

class MalformedFigureTest : public ::testing::TestWithParam<MalformedCase> {};

TEST_P(MalformedFigureTest, IsNoReading) {
  EXPECT_EQ(parse_meminfo(replaced(modernMeminfo, GetParam().from, GetParam().to)), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Figures, MalformedFigureTest,
    ::testing::Values(
        MalformedCase{"Letters", "MemFree:         1873244 kB", "MemFree:         abc kB"},
        MalformedCase{"TrailingLetters", "Active:          6124348 kB",
                      "Active:          6124348x kB"},
        MalformedCase{"Negative", "Inactive:        5431236 kB", "Inactive:        -5431236 kB"},
        MalformedCase{"Empty", "Unevictable:       96512 kB", "Unevictable:"},
        MalformedCase{"NoUnit", "MemTotal:       16323576 kB", "MemTotal:       16323576"},
        MalformedCase{"OtherUnit", "MemTotal:       16323576 kB", "MemTotal:       16323576 MB"},
        MalformedCase{"Fraction", "MemTotal:       16323576 kB", "MemTotal:       16323.5 kB"},
        MalformedCase{"BeyondSixtyFourBits", "MemTotal:       16323576 kB",
                      "MemTotal:       99999999999999999999 kB"},
        // 2^54 kB is 2^64 bytes: the figure parses but its byte count does not fit.
        MalformedCase{"BytesBeyondSixtyFourBits", "MemFree:         1873244 kB",
                      "MemFree:         18014398509481984 kB"},
        MalformedCase{"GarbledReclaimable", "KReclaimable:     412876 kB",
                      "KReclaimable:     0x10 kB"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ParseMeminfoTest, GarbledSwapLineLeavesSwapAbsent) {
  const auto meminfo = parse_meminfo(
      replaced(modernMeminfo, "SwapFree:        7012340 kB", "SwapFree:        ? kB"));
  ASSERT_TRUE(meminfo);
  EXPECT_EQ(swap_used(*meminfo), std::nullopt);
  EXPECT_EQ(meminfo->memTotal, 16323576ull * 1024);
}

TEST(ParseMeminfoTest, LargestFigureThatFitsInBytesIsRead) {
  // 2^54 - 1 kB is just below 2^64 bytes.
  const auto meminfo = parse_meminfo(replaced(modernMeminfo, "MemTotal:       16323576 kB",
                                              "MemTotal:       18014398509481983 kB"));
  ASSERT_TRUE(meminfo);
  EXPECT_EQ(meminfo->memTotal, 18014398509481983ull * 1024);
}

TEST(ParseMeminfoTest, EmptyTextIsNoReading) {
  EXPECT_EQ(parse_meminfo(""), std::nullopt);
}

TEST(ParseMeminfoTest, BinaryGarbageIsNoReading) {
  EXPECT_EQ(parse_meminfo(std::string_view("\0\xff\n:::\n\n", 8)), std::nullopt);
}

TEST(ParseMeminfoTest, TextWithoutFinalNewlineIsRead) {
  std::string text(modernMeminfo);
  text.pop_back();
  EXPECT_TRUE(parse_meminfo(text));
}

TEST(ParseMemTotalTest, ReadsTheFirstLineAlone) {
  EXPECT_EQ(parse_mem_total("MemTotal:        4046436 kB\n"),
            std::optional<std::uint64_t>(4046436ull * 1024));
  EXPECT_EQ(parse_mem_total("MemFree: 1 kB\n"), std::nullopt);
  EXPECT_EQ(parse_mem_total("MemTotal: lots kB\n"), std::nullopt);
}

TEST(SwapUsedTest, TotalMinusFree) {
  Meminfo meminfo;
  meminfo.swapTotal = 8192;
  meminfo.swapFree = 2048;
  EXPECT_EQ(swap_used(meminfo), std::optional<std::uint64_t>(6144));
}

TEST(SwapUsedTest, NoSwapDeviceIsZeroInUse) {
  Meminfo meminfo;
  meminfo.swapTotal = 0;
  meminfo.swapFree = 0;
  EXPECT_EQ(swap_used(meminfo), std::optional<std::uint64_t>(0));
}

TEST(SwapUsedTest, FreeAboveTotalIsAbsent) {
  Meminfo meminfo;
  meminfo.swapTotal = 2048;
  meminfo.swapFree = 2049;
  EXPECT_EQ(swap_used(meminfo), std::nullopt);
}

TEST(SwapUsedTest, EitherLineMissingIsAbsent) {
  EXPECT_EQ(swap_used(*parse_meminfo(without(modernMeminfo, "SwapTotal"))), std::nullopt);
  EXPECT_EQ(swap_used(*parse_meminfo(without(modernMeminfo, "SwapFree"))), std::nullopt);
}

struct PressureCase {
  const char* name;
  std::string_view text;
  std::int32_t level;
};

class PressureLevelTest : public ::testing::TestWithParam<PressureCase> {};

TEST_P(PressureLevelTest, GivesTheKernelLevel) {
  EXPECT_EQ(parse_pressure_level(GetParam().text), GetParam().level);
}

INSTANTIATE_TEST_SUITE_P(
    Files, PressureLevelTest,
    ::testing::Values(
        PressureCase{"Calm",
                     "some avg10=0.00 avg60=0.00 avg300=0.00 total=0\n"
                     "full avg10=0.00 avg60=0.00 avg300=0.00 total=0\n",
                     1},
        PressureCase{"SomeJustBelowTen",
                     "some avg10=9.99 avg60=12.00 avg300=20.00 total=5\n"
                     "full avg10=9.99 avg60=0.00 avg300=0.00 total=1\n",
                     1},
        PressureCase{"SomeAtTen",
                     "some avg10=10.00 avg60=0.00 avg300=0.00 total=5\n"
                     "full avg10=0.50 avg60=0.00 avg300=0.00 total=1\n",
                     2},
        PressureCase{"FullAtTen",
                     "some avg10=10.00 avg60=0.00 avg300=0.00 total=5\n"
                     "full avg10=10.00 avg60=0.00 avg300=0.00 total=1\n",
                     4},
        PressureCase{"FullHigh",
                     "some avg10=97.31 avg60=80.00 avg300=40.00 total=99\n"
                     "full avg10=55.20 avg60=40.00 avg300=20.00 total=77\n",
                     4},
        PressureCase{"NoFinalNewline",
                     "some avg10=12.00 avg60=0.00 avg300=0.00 total=5\n"
                     "full avg10=1.00 avg60=0.00 avg300=0.00 total=1",
                     2},
        PressureCase{"Empty", "", 0},
        PressureCase{"OnlySome", "some avg10=50.00 avg60=0.00 avg300=0.00 total=5\n", 0},
        PressureCase{"OnlyFull", "full avg10=50.00 avg60=0.00 avg300=0.00 total=5\n", 0},
        PressureCase{"NotANumber",
                     "some avg10=high avg60=0.00 avg300=0.00 total=5\n"
                     "full avg10=0.00 avg60=0.00 avg300=0.00 total=1\n",
                     0},
        PressureCase{"MissingAvg10",
                     "some avg60=0.00 avg300=0.00 total=5\n"
                     "full avg10=0.00 avg60=0.00 avg300=0.00 total=1\n",
                     0},
        PressureCase{"CommaDecimal",
                     "some avg10=12,50 avg60=0.00 avg300=0.00 total=5\n"
                     "full avg10=0.00 avg60=0.00 avg300=0.00 total=1\n",
                     0},
        PressureCase{"Garbage", "\x01\x02 nonsense\n", 0}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ZramMmStatTest, ThirdFieldIsMemUsedTotal) {
  EXPECT_EQ(parse_zram_mm_stat("1170411520 312567808 325431296        0 341835776    20581     "
                               "1043     3010     3010\n"),
            std::optional<std::uint64_t>(325431296));
}

TEST(ZramMmStatTest, UninitialisedDeviceIsZero) {
  EXPECT_EQ(parse_zram_mm_stat("       0        0        0        0        0        0        0  "
                               "      0        0\n"),
            std::optional<std::uint64_t>(0));
}

TEST(ZramMmStatTest, ShortOrGarbledIsNoFigure) {
  EXPECT_EQ(parse_zram_mm_stat("1 2\n"), std::nullopt);
  EXPECT_EQ(parse_zram_mm_stat("1 2 x3 4\n"), std::nullopt);
  EXPECT_EQ(parse_zram_mm_stat(""), std::nullopt);
}

TEST(CpuTicksTest, ListIsUserSystemIdleNice) {
  EXPECT_EQ(parse_cpu_ticks("cpu  2361 17 1933 67227 280 0 41 8 0 0\ncpu0 1 2 3 4 5 6 7 8 9 10\n"),
            std::optional<CpuTicks>(CpuTicks{2361, 1933, 67227, 17}));
}

TEST(CpuTicksTest, OldKernelWithFourFieldsIsRead) {
  EXPECT_EQ(parse_cpu_ticks("cpu 10 20 30 40\n"),
            std::optional<CpuTicks>(CpuTicks{10, 30, 40, 20}));
}

TEST(CpuTicksTest, MalformedFirstLineIsNoTicks) {
  EXPECT_EQ(parse_cpu_ticks(""), std::nullopt);
  EXPECT_EQ(parse_cpu_ticks("cpu0 1 2 3 4\n"), std::nullopt);
  EXPECT_EQ(parse_cpu_ticks("cpu 1 2 3\n"), std::nullopt);
  EXPECT_EQ(parse_cpu_ticks("cpu 1 2 x 4\n"), std::nullopt);
  EXPECT_EQ(parse_cpu_ticks("intr 1 2 3 4\ncpu 1 2 3 4\n"), std::nullopt);
}

TEST(PageCountsTest, MapsMeminfoOntoTheSixCounts) {
  // kB: total 1000, free 100, active 300, inactive 200, active(file) 120, inactive(file) 80,
  // unevictable 40, reclaimable 60, zswap 20; zram 40 kB. Page 4 kB.
  const Meminfo meminfo{1000 * 1024, 100 * 1024, 300 * 1024, 200 * 1024,   120 * 1024,  80 * 1024,
                        40 * 1024,   60 * 1024,  20 * 1024,  std::nullopt, std::nullopt};
  const auto pages = page_counts(meminfo, 40 * 1024, 4096);
  ASSERT_TRUE(pages);
  EXPECT_EQ(pages->active, 75u);      // 300 / 4
  EXPECT_EQ(pages->inactive, 65u);    // (200 + 60) / 4
  EXPECT_EQ(pages->external, 50u);    // (120 + 80) / 4
  EXPECT_EQ(pages->purgeable, 15u);   // 60 / 4
  EXPECT_EQ(pages->compressed, 15u);  // (20 + 40) / 4
  // unevictable 40 + (1000 - 100 - 300 - 200 - 40 - 60 - 60 = 240) = 280 kB
  EXPECT_EQ(pages->wired, 70u);
}

TEST(PageCountsTest, NegativeRemainderCountsZeroWithoutWrapping) {
  // Accounted 100 + 600 + 400 + 40 + 0 + 0 = 1140 kB exceeds the 1000 kB total.
  const Meminfo meminfo{1000 * 1024, 100 * 1024, 600 * 1024, 400 * 1024,   0,           0,
                        40 * 1024,   0,          0,          std::nullopt, std::nullopt};
  const auto pages = page_counts(meminfo, 0, 4096);
  ASSERT_TRUE(pages);
  EXPECT_EQ(pages->wired, 10u);  // unevictable alone
}

TEST(PageCountsTest, PoolSumBeyondSixtyFourBitsIsNoReading) {
  Meminfo meminfo;
  meminfo.memTotal = 1024;
  meminfo.zswap = std::numeric_limits<std::uint64_t>::max();
  EXPECT_EQ(page_counts(meminfo, 1, 4096), std::nullopt);
}

TEST(PageCountsTest, ZeroPageSizeIsNoReading) {
  EXPECT_EQ(page_counts(Meminfo{}, 0, 0), std::nullopt);
}

}  // namespace
}  // namespace korvo
