#include "sampling/memory_snapshot.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "sampling/checked_arithmetic.hpp"
#include "support/base/fixed_clock.hpp"

namespace korvo {
namespace {

constexpr std::uint64_t sixteenGiB = 17'179'869'184;

class MemorySnapshotTest : public ::testing::Test {
 protected:
  const testing_support::FixedClock fixedClock_{Date{800'000'000.25}};
};

TEST_F(MemorySnapshotTest, PlaceholderReadingFromPageCounts) {
  const auto snapshot =
      MemorySnapshot::fromPageCounts(sixteenGiB, 4096, 1'500'000, 500'000, 250'000, 250'000,
                                     100'000, 200'000, std::nullopt, MemoryPressure::normal);
  EXPECT_EQ(snapshot.total, sixteenGiB);
  EXPECT_EQ(snapshot.wired, 1'024'000'000u);
  EXPECT_EQ(snapshot.compressed, 1'024'000'000u);
  EXPECT_EQ(snapshot.app, 6'963'200'000u);
  EXPECT_EQ(snapshot.cached, 1'228'800'000u);
  EXPECT_EQ(snapshot.swap, std::nullopt);
  EXPECT_EQ(snapshot.pressure, MemoryPressure::normal);
  EXPECT_EQ(snapshot.used(), 9'011'200'000u);
  EXPECT_EQ(snapshot.available(), sixteenGiB - 9'011'200'000u);
  EXPECT_NEAR(snapshot.usedFraction(), 0.52452, 0.00001);
}

TEST_F(MemorySnapshotTest, SplitOfTheSumsDoesNotChangeTheResult) {
  const auto placeholder = MemorySnapshot::fromPageCounts(
      sixteenGiB, 4096, 1'500'000, 500'000, 250'000, 250'000, 100'000, 200'000, std::nullopt);
  const auto regrouped = MemorySnapshot::fromPageCounts(sixteenGiB, 4096, 2'000'000, 0, 250'000,
                                                        250'000, 300'000, 0, std::nullopt);
  EXPECT_EQ(placeholder, regrouped);
}

TEST_F(MemorySnapshotTest, PageCountConstructorStampsTheClockAndDefaultsToUnknownPressure) {
  const auto snapshot =
      MemorySnapshot::fromPageCounts(sixteenGiB, 4096, 1, 1, 1, 1, 0, 0, std::uint64_t{4096});
  EXPECT_EQ(snapshot.timestamp, Date{800'000'000.25});
  EXPECT_EQ(snapshot.pressure, MemoryPressure::unknown);
  EXPECT_EQ(snapshot.swap, std::optional<std::uint64_t>(4096));
}

TEST_F(MemorySnapshotTest, MemberWiseConstructionKeepsEveryField) {
  const MemorySnapshot snapshot{100, 10, 20, 30, 40, 50, MemoryPressure::critical, Date{12.5}};
  EXPECT_EQ(snapshot.total, 100u);
  EXPECT_EQ(snapshot.app, 10u);
  EXPECT_EQ(snapshot.wired, 20u);
  EXPECT_EQ(snapshot.compressed, 30u);
  EXPECT_EQ(snapshot.cached, 40u);
  EXPECT_EQ(snapshot.swap, std::optional<std::uint64_t>(50));
  EXPECT_EQ(snapshot.pressure, MemoryPressure::critical);
  EXPECT_EQ(snapshot.timestamp, Date{12.5});
  EXPECT_EQ(snapshot.used(), 60u);
  EXPECT_EQ(snapshot.available(), 40u);
  EXPECT_DOUBLE_EQ(snapshot.usedFraction(), 0.6);
}

TEST_F(MemorySnapshotTest, ZeroTotalGivesZeroFractionAndZeroFields) {
  const auto snapshot = MemorySnapshot::fromPageCounts(0, 4096, 1000, 1000, 1000, 1000, 10, 10,
                                                       std::nullopt, MemoryPressure::normal);
  EXPECT_EQ(snapshot.app, 0u);
  EXPECT_EQ(snapshot.wired, 0u);
  EXPECT_EQ(snapshot.compressed, 0u);
  EXPECT_EQ(snapshot.cached, 0u);
  EXPECT_EQ(snapshot.usedFraction(), 0.0);
  EXPECT_EQ(snapshot.available(), 0u);
}

TEST_F(MemorySnapshotTest, CachedPagesAboveLruPagesGiveZeroApp) {
  const auto snapshot =
      MemorySnapshot::fromPageCounts(sixteenGiB, 4096, 100, 50, 0, 0, 120, 60, std::nullopt);
  EXPECT_EQ(snapshot.app, 0u);
  EXPECT_EQ(snapshot.cached, 180u * 4096);
}

TEST_F(MemorySnapshotTest, OvershootCutsCachedFirst) {
  // 100 pages of memory; wired 30, compressed 20, app 40 fit, cached 30 gets the last 10.
  const auto snapshot =
      MemorySnapshot::fromPageCounts(100 * 4096, 4096, 60, 10, 30, 20, 10, 20, std::nullopt);
  EXPECT_EQ(snapshot.wired, 30u * 4096);
  EXPECT_EQ(snapshot.compressed, 20u * 4096);
  EXPECT_EQ(snapshot.app, 40u * 4096);
  EXPECT_EQ(snapshot.cached, 10u * 4096);
  EXPECT_EQ(snapshot.available(), 10u * 4096);
}

TEST_F(MemorySnapshotTest, OvershootLetsWiredTakeWhatItCanFirst) {
  // Wired alone exceeds the 100 pages: it takes all of them and nothing is left for the rest.
  const auto snapshot =
      MemorySnapshot::fromPageCounts(100 * 4096, 4096, 50, 50, 150, 20, 10, 10, std::nullopt);
  EXPECT_EQ(snapshot.wired, 100u * 4096);
  EXPECT_EQ(snapshot.compressed, 0u);
  EXPECT_EQ(snapshot.app, 0u);
  EXPECT_EQ(snapshot.cached, 0u);
  EXPECT_EQ(snapshot.available(), 0u);
  EXPECT_DOUBLE_EQ(snapshot.usedFraction(), 1.0);
}

TEST_F(MemorySnapshotTest, OvershootCutsAppAfterCompressed) {
  // 100 pages: wired 40, compressed 50, app 40 gets the last 10, cached nothing.
  const auto snapshot =
      MemorySnapshot::fromPageCounts(100 * 4096, 4096, 40, 10, 40, 50, 5, 5, std::nullopt);
  EXPECT_EQ(snapshot.wired, 40u * 4096);
  EXPECT_EQ(snapshot.compressed, 50u * 4096);
  EXPECT_EQ(snapshot.app, 10u * 4096);
  EXPECT_EQ(snapshot.cached, 0u);
}

TEST_F(MemorySnapshotTest, UsedFractionIsNotClamped) {
  const MemorySnapshot snapshot{100, 100, 0, 0, 0, std::nullopt, MemoryPressure::normal, Date{}};
  EXPECT_DOUBLE_EQ(snapshot.usedFraction(), 1.0);
}

using MemorySnapshotDeathTest = MemorySnapshotTest;

TEST_F(MemorySnapshotDeathTest, PageByteOverflowIsFatal) {
  constexpr auto huge = std::numeric_limits<std::uint64_t>::max() / 2;
  EXPECT_DEATH(MemorySnapshot::fromPageCounts(sixteenGiB, 4096, 0, 0, huge, 0, 0, 0, std::nullopt),
               "overflow in multiplication");
}

TEST_F(MemorySnapshotDeathTest, UsedAboveTotalIsFatalForAvailable) {
  const MemorySnapshot snapshot{10, 20, 0, 0, 0, std::nullopt, MemoryPressure::normal, Date{}};
  EXPECT_DEATH((void)snapshot.available(), "overflow in subtraction");
}

TEST_F(MemorySnapshotDeathTest, UsedSumOverflowIsFatal) {
  constexpr auto max = std::numeric_limits<std::uint64_t>::max();
  const MemorySnapshot snapshot{max, max, 1, 0, 0, std::nullopt, MemoryPressure::normal, Date{}};
  EXPECT_DEATH((void)snapshot.used(), "overflow in addition");
}

TEST(CheckedArithmeticTest, ExactResultsAtTheEdges) {
  constexpr auto max = std::numeric_limits<std::uint64_t>::max();
  EXPECT_EQ(checked::add(max - 1, 1), max);
  EXPECT_EQ(checked::sub(5, 5), 0u);
  EXPECT_EQ(checked::mul(max / 4096, 4096), max / 4096 * 4096);
}

TEST(MemoryPressureTest, RawValuesAreTheLabels) {
  EXPECT_EQ(rawValue(MemoryPressure::normal), "Normal");
  EXPECT_EQ(rawValue(MemoryPressure::warning), "Elevated");
  EXPECT_EQ(rawValue(MemoryPressure::critical), "High");
  EXPECT_EQ(rawValue(MemoryPressure::unknown), "Unavailable");
}

TEST(MemoryPressureTest, OrdinalsFollowTheDeclarationOrder) {
  EXPECT_EQ(static_cast<int>(MemoryPressure::normal), 0);
  EXPECT_EQ(static_cast<int>(MemoryPressure::warning), 1);
  EXPECT_EQ(static_cast<int>(MemoryPressure::critical), 2);
  EXPECT_EQ(static_cast<int>(MemoryPressure::unknown), 3);
}

TEST(MemoryPressureTest, FromRawMatchesExactly) {
  EXPECT_EQ(memoryPressureFromRaw("Normal"), MemoryPressure::normal);
  EXPECT_EQ(memoryPressureFromRaw("Elevated"), MemoryPressure::warning);
  EXPECT_EQ(memoryPressureFromRaw("High"), MemoryPressure::critical);
  EXPECT_EQ(memoryPressureFromRaw("Unavailable"), MemoryPressure::unknown);
}

TEST(MemoryPressureTest, LowerCaseRawValueIsNoPressure) {
  EXPECT_EQ(memoryPressureFromRaw("normal"), std::nullopt);
  EXPECT_EQ(memoryPressureFromRaw("warning"), std::nullopt);
  EXPECT_EQ(memoryPressureFromRaw(""), std::nullopt);
  EXPECT_EQ(memoryPressureFromRaw("Normal "), std::nullopt);
}

struct LevelCase {
  std::int32_t level;
  MemoryPressure expected;
};

class KernelLevelTest : public ::testing::TestWithParam<LevelCase> {};

TEST_P(KernelLevelTest, MapsOnlyOneTwoAndFour) {
  EXPECT_EQ(pressureFromKernelLevel(GetParam().level), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Levels, KernelLevelTest,
    ::testing::Values(LevelCase{1, MemoryPressure::normal}, LevelCase{2, MemoryPressure::warning},
                      LevelCase{4, MemoryPressure::critical}, LevelCase{0, MemoryPressure::unknown},
                      LevelCase{3, MemoryPressure::unknown}, LevelCase{5, MemoryPressure::unknown},
                      LevelCase{1000, MemoryPressure::unknown},
                      LevelCase{std::numeric_limits<std::int32_t>::max(), MemoryPressure::unknown},
                      LevelCase{-1, MemoryPressure::unknown},
                      LevelCase{-4, MemoryPressure::unknown},
                      LevelCase{std::numeric_limits<std::int32_t>::min(),
                                MemoryPressure::unknown}));

}  // namespace
}  // namespace korvo
