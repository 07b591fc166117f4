#include "render/pango_text_measurer.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "base/c_format.hpp"

namespace korvo::ui {
namespace {

constexpr double unlimited = std::numeric_limits<double>::infinity();

void expectSameMetrics(const TextMetrics& actual, const TextMetrics& expected) {
  EXPECT_EQ(actual.lines, expected.lines);
  EXPECT_EQ(actual.lineWidths, expected.lineWidths);
  EXPECT_EQ(actual.width, expected.width);
  EXPECT_EQ(actual.height, expected.height);
  EXPECT_EQ(actual.lineHeight, expected.lineHeight);
  EXPECT_EQ(actual.baseline, expected.baseline);
}

// A footer text as a long-running host shows it, different for every minute of age.
std::string ageText(int minutes) {
  return cFormat("Updated %d days, %d hr, %d min ago", minutes / 1440, minutes / 60 % 24,
                 minutes % 60);
}

TEST(PangoTextMeasurer, CacheStaysAtItsCapacityWhateverTextsComeThrough) {
  render::PangoTextMeasurer measurer;
  std::size_t largest = 0;
  for (int minutes = 0; minutes < 10'000; ++minutes) {
    measurer.measure(ageText(minutes), Font::system(9), 0, unlimited);
    largest = std::max(largest, measurer.cachedCount());
  }
  EXPECT_EQ(largest, render::PangoTextMeasurer::defaultCapacity);
  EXPECT_EQ(measurer.cachedCount(), render::PangoTextMeasurer::defaultCapacity);
}

TEST(PangoTextMeasurer, SmallCapacityHoldsOnlyThatMany) {
  render::PangoTextMeasurer measurer(3);
  for (int minutes = 0; minutes < 10; ++minutes) {
    measurer.measure(ageText(minutes), Font::caption(), 0, unlimited);
    EXPECT_LE(measurer.cachedCount(), 3u);
  }
  EXPECT_EQ(measurer.cachedCount(), 3u);
}

TEST(PangoTextMeasurer, CachedMeasurementEqualsAFreshOne) {
  render::PangoTextMeasurer measurer;
  const Font font = Font::system(13, FontWeight::semibold);
  const TextMetrics first = measurer.measure("6.7 GB available", font, 0.5, 60);
  const TextMetrics cached = measurer.measure("6.7 GB available", font, 0.5, 60);
  render::PangoTextMeasurer fresh;
  const TextMetrics reference = fresh.measure("6.7 GB available", font, 0.5, 60);
  ASSERT_GT(reference.lines.size(), 1u);  // wrapped at 60 points
  expectSameMetrics(first, reference);
  expectSameMetrics(cached, reference);
}

TEST(PangoTextMeasurer, EvictedTextIsMeasuredAgainTheSame) {
  render::PangoTextMeasurer measurer(8);
  const TextMetrics before = measurer.measure("9.3 GB of 16.0 GB", Font::caption2(), 0, unlimited);
  for (int minutes = 0; minutes < 50; ++minutes) {
    measurer.measure(ageText(minutes), Font::caption2(), 0, unlimited);
  }
  expectSameMetrics(measurer.measure("9.3 GB of 16.0 GB", Font::caption2(), 0, unlimited), before);
}

TEST(PangoTextMeasurer, RecentlyUsedTextOutlivesOlderOnes) {
  render::PangoTextMeasurer measurer(4);
  const Font font = Font::body();
  const TextMetrics kept = measurer.measure("Memory", font, 0, unlimited);
  for (int minutes = 0; minutes < 20; ++minutes) {
    measurer.measure(ageText(minutes), font, 0, unlimited);
    expectSameMetrics(measurer.measure("Memory", font, 0, unlimited), kept);
  }
  EXPECT_EQ(measurer.cachedCount(), 4u);
}

// One cache serves every variant of a text; each answer must be the one its own inputs give.
TEST(PangoTextMeasurer, EveryInputOfAMeasurementKeepsItsOwnResult) {
  struct Case {
    const char* name;
    Font font;
    double tracking;
    double maxWidth;
  };
  const Font base = Font::system(12);
  const Case cases[] = {
      {"plain", base, 0, unlimited},
      {"larger", Font::system(18), 0, unlimited},
      {"bold", base.withWeight(FontWeight::bold), 0, unlimited},
      {"rounded", Font::system(12, FontWeight::regular, FontDesign::rounded), 0, unlimited},
      {"tabular digits", base.withMonospacedDigits(), 0, unlimited},
      {"tracked", base, 2, unlimited},
      {"negative zero tracking", base, -0.0, unlimited},
      {"wrapped", base, 0, 40},
      {"no room", base, 0, 0},
  };
  render::PangoTextMeasurer shared;
  for (int round = 0; round < 2; ++round) {
    for (const Case& c : cases) {
      SCOPED_TRACE(c.name);
      render::PangoTextMeasurer fresh;
      expectSameMetrics(shared.measure("1,111 MB free", c.font, c.tracking, c.maxWidth),
                        fresh.measure("1,111 MB free", c.font, c.tracking, c.maxWidth));
    }
  }
}

TEST(PangoTextMeasurer, SymbolAndTextOfOneNameAreCachedApart) {
  render::PangoTextMeasurer measurer;
  const Font font = Font::body();
  const TextMetrics symbol = measurer.measureSymbol("memorychip", font);
  const TextMetrics text = measurer.measure("memorychip", font, 0, 0);
  render::PangoTextMeasurer fresh;
  expectSameMetrics(symbol, fresh.measureSymbol("memorychip", font));
  expectSameMetrics(text, fresh.measure("memorychip", font, 0, 0));
  EXPECT_NE(symbol.width, text.width);
}

}  // namespace
}  // namespace korvo::ui
