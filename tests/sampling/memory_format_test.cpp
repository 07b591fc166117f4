#include "sampling/memory_format.hpp"

#include <gtest/gtest.h>

#include <clocale>

namespace korvo {
namespace {

constexpr std::uint64_t gib = 1'073'741'824;

MemorySnapshot placeholder() {
  return MemorySnapshot::fromPageCounts(16 * gib, 4096, 1'500'000, 500'000, 250'000, 250'000,
                                        100'000, 200'000, std::nullopt, MemoryPressure::normal);
}

TEST(DisplayModeTest, RawValuesAndLabelsInOrder) {
  ASSERT_EQ(allDisplayModes.size(), 5u);
  const std::array<std::pair<std::string_view, std::string_view>, 5> expected{{
      {"usedPercent", "Used percentage"},
      {"usedGB", "Used GB"},
      {"availablePercent", "Available percentage"},
      {"availableGB", "Available GB"},
      {"usedOfTotal", "Used / total GB"},
  }};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(rawValue(allDisplayModes[i]), expected[i].first);
    EXPECT_EQ(label(allDisplayModes[i]), expected[i].second);
  }
}

TEST(DisplayModeTest, FromRawRoundTripsEveryMode) {
  for (const DisplayMode mode : allDisplayModes) {
    EXPECT_EQ(displayModeFromRaw(rawValue(mode)), mode);
  }
}

TEST(DisplayModeTest, CapitalisedRawValueIsNoMode) {
  EXPECT_EQ(displayModeFromRaw("UsedGB"), std::nullopt);
  EXPECT_EQ(displayModeFromRaw("usedgb"), std::nullopt);
  EXPECT_EQ(displayModeFromRaw("Used GB"), std::nullopt);
  EXPECT_EQ(displayModeFromRaw(""), std::nullopt);
}

TEST(MemoryFormatTest, GigabyteIsTwoToTheThirtieth) {
  EXPECT_EQ(MemoryFormat::bytesPerGigabyte, std::uint64_t{1} << 30);
}

TEST(MemoryFormatTest, GigabytesWithOneDecimal) {
  EXPECT_EQ(MemoryFormat::gigabytes(gib * 15 / 2), "7.5 GB");
  EXPECT_EQ(MemoryFormat::gigabytes(0), "0.0 GB");
  EXPECT_EQ(MemoryFormat::gigabytes(16 * gib), "16.0 GB");
  // 7.25 is exact in binary and rounds half to even.
  EXPECT_EQ(MemoryFormat::gigabytes(gib * 29 / 4), "7.2 GB");
}

TEST(MemoryFormatTest, CompactSizeJustBelowOneGigabyteIsMegabytes) {
  EXPECT_EQ(MemoryFormat::compactSize(1'073'741'823), "1024 MB");
}

TEST(MemoryFormatTest, CompactSizeAtOneGigabyteIsGigabytes) {
  EXPECT_EQ(MemoryFormat::compactSize(1'073'741'824), "1.0 GB");
}

TEST(MemoryFormatTest, CompactSizeSmallFigures) {
  EXPECT_EQ(MemoryFormat::compactSize(0), "0 MB");
  EXPECT_EQ(MemoryFormat::compactSize(512 * 1024 * 1024), "512 MB");
  EXPECT_EQ(MemoryFormat::compactSize(1'572'864), "2 MB");  // 1.5 MB, half to even
}

TEST(MemoryFormatTest, ModeTextsOfThePlaceholderReading) {
  const MemorySnapshot snapshot = placeholder();
  EXPECT_EQ(MemoryFormat::modeText(snapshot, DisplayMode::usedPercent), "52%");
  EXPECT_EQ(MemoryFormat::modeText(snapshot, DisplayMode::usedGB), "8.4 GB");
  EXPECT_EQ(MemoryFormat::modeText(snapshot, DisplayMode::availablePercent), "48% free");
  EXPECT_EQ(MemoryFormat::modeText(snapshot, DisplayMode::availableGB), "7.6 GB free");
  EXPECT_EQ(MemoryFormat::modeText(snapshot, DisplayMode::usedOfTotal), "8.4/16 GB");
}

TEST(MemoryFormatTest, UsedOfTotalShowsTheTotalWithoutDecimals) {
  const MemorySnapshot snapshot{16 * gib, 9 * gib, 0, 0, 0, std::nullopt, MemoryPressure::normal,
                                Date{}};
  EXPECT_EQ(MemoryFormat::modeText(snapshot, DisplayMode::usedOfTotal), "9.0/16 GB");
}

TEST(MemoryFormatTest, ZeroTotalIsZeroPercentAndAllFree) {
  const MemorySnapshot snapshot{0, 0, 0, 0, 0, std::nullopt, MemoryPressure::unknown, Date{}};
  EXPECT_EQ(MemoryFormat::modeText(snapshot, DisplayMode::usedPercent), "0%");
  EXPECT_EQ(MemoryFormat::modeText(snapshot, DisplayMode::availablePercent), "100% free");
}

TEST(MemoryFormatTest, GermanProcessLocaleStillWritesAPoint) {
  ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
  const MemorySnapshot snapshot = placeholder();
  EXPECT_EQ(MemoryFormat::gigabytes(gib * 15 / 2), "7.5 GB");
  EXPECT_EQ(MemoryFormat::compactSize(1'073'741'824), "1.0 GB");
  EXPECT_EQ(MemoryFormat::modeText(snapshot, DisplayMode::availableGB), "7.6 GB free");
  EXPECT_EQ(MemoryFormat::modeText(snapshot, DisplayMode::usedOfTotal), "8.4/16 GB");
  std::setlocale(LC_ALL, "C");
}

}  // namespace
}  // namespace korvo
