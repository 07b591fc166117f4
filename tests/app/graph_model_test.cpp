#include "app/graph_model.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/english_in_utc.hpp"

namespace korvo {
namespace {

using graphs::Figure;
using graphs::Graph;
using graphs::Point;
using graphs::Tone;

// A Wednesday noon, UTC.
const Date now = Date::fromUnixSeconds(1'795'608'000);

class GraphModelTest : public testing::Test {
 protected:
  void SetUp() override { testing_support::useEnglishInUtc(); }
};

TEST_F(GraphModelTest, AWindowsLengthComesFromItsTitle) {
  EXPECT_EQ(graphs::windowSeconds("5-hour"), 5 * 3600.0);
  EXPECT_EQ(graphs::windowSeconds("24-hour"), 24 * 3600.0);
  EXPECT_EQ(graphs::windowSeconds("Weekly"), 7 * 86400.0);
  EXPECT_EQ(graphs::windowSeconds("Monthly"), 30 * 86400.0);
  EXPECT_EQ(graphs::windowSeconds("Session"), std::nullopt);
  EXPECT_EQ(graphs::windowSeconds("x-hour"), std::nullopt);
}

TEST_F(GraphModelTest, AWindowIsDrawnFromItsStartWithTheForecastDashedToTheResetAndARuleAt100) {
  const Date reset = now.addingSeconds(2 * 86400.0);  // Friday noon
  const UsageWindow window{"Weekly", 41, reset};
  const std::vector<HistoryRow> readings{
      {now.addingSeconds(-8 * 86400.0), "codex.Weekly", 90, reset.addingSeconds(-7 * 86400.0)},
      {now.addingSeconds(-86400), "codex.Weekly", 20, reset},
      {now.addingSeconds(-3600), "codex.Weekly", 40, reset},
  };
  const Graph graph = graphs::usageGraph("Codex weekly", window, readings,
                                         forecast::Forecast{std::nullopt, 78.0}, now);
  EXPECT_EQ(graph.name, "Codex weekly");
  EXPECT_EQ(graph.summary, "Codex weekly: 41 % used, at this pace 78 % at the reset on Friday");
  EXPECT_EQ(graph.from, reset.unixSeconds() - 7 * 86400);
  EXPECT_EQ(graph.to, reset.unixSeconds());
  EXPECT_EQ(graph.rules, std::vector<double>{100});
  EXPECT_EQ(graph.high, 100);
  ASSERT_EQ(graph.lines.size(), 2U);
  // The reading of the last period is left out; the latest figure closes the line.
  EXPECT_EQ(graph.lines[0].points, (std::vector<Point>{{now.unixSeconds() - 86400, 20},
                                                       {now.unixSeconds() - 3600, 40},
                                                       {now.unixSeconds(), 41}}));
  EXPECT_FALSE(graph.lines[0].dashed);
  EXPECT_TRUE(graph.lines[1].dashed);
  EXPECT_EQ(graph.lines[1].points,
            (std::vector<Point>{{now.unixSeconds(), 41}, {reset.unixSeconds(), 78}}));
}

TEST_F(GraphModelTest, AWindowThatRunsOutSaysWhenAndItsDashedLineEndsAt100) {
  const Date reset = now.addingSeconds(3 * 3600.0);
  const Date exhausts = now.addingSeconds(3600);
  const Graph graph = graphs::usageGraph("Claude 5-hour", UsageWindow{"5-hour", 90, reset}, {},
                                         forecast::Forecast{exhausts, std::nullopt}, now);
  EXPECT_EQ(graph.summary, "Claude 5-hour: 90 % used, at this pace it runs out today at 1:00 PM");
  ASSERT_EQ(graph.lines.size(), 2U);
  EXPECT_EQ(graph.lines[1].tone, Tone::limit);
  EXPECT_EQ(graph.lines[1].points.back(), (Point{exhausts.unixSeconds(), 100}));
}

TEST_F(GraphModelTest, AnOverrunRaisesTheScaleAndNoForecastSaysTheReset) {
  const Date reset = now.addingSeconds(86400);
  const Graph graph =
      graphs::usageGraph("Codex 5-hour", UsageWindow{"5-hour", 112, reset}, {}, std::nullopt, now);
  EXPECT_EQ(graph.high, 120);
  EXPECT_EQ(graph.summary, "Codex 5-hour: 112 % used, resets tomorrow at 12:00 PM");
}

TEST_F(GraphModelTest, AMachineFigureSaysItsLatestAndHighestOverItsSpan) {
  const std::vector<Point> readings{
      {now.unixSeconds() - 7200, 99}, {now.unixSeconds() - 1800, 80}, {now.unixSeconds() - 60, 12}};
  const Graph load =
      graphs::figureGraph(Figure::cpuLoad, readings, now.addingSeconds(-3600), now, {});
  EXPECT_EQ(load.name, "CPU load");
  EXPECT_EQ(load.summary, "CPU load: 12 %, at most 80 % in the last hour");
  EXPECT_EQ(load.lines.front().points.size(), 2U);

  const Graph heat =
      graphs::figureGraph(Figure::temperature, {{now.unixSeconds() - 60, 100}},
                          now.addingSeconds(-86400), now, TemperatureUnit::fahrenheit);
  EXPECT_EQ(heat.summary, "CPU temperature: 212°F, at most 212°F in the last day");
  EXPECT_EQ(heat.lines.front().points.front().value, 212);
  EXPECT_EQ(heat.high, 220);

  const Graph pressure =
      graphs::figureGraph(Figure::memoryPressure, {}, now.addingSeconds(-3600), now, {});
  EXPECT_EQ(pressure.summary, "Memory pressure: no readings in the last hour");
}

TEST_F(GraphModelTest, ADayOfReadingsASecondIsThinnedToWhatAGraphCanDrawEndingOnTheLatest) {
  std::vector<Point> readings;
  for (int second = 86400; second > 0; --second) {
    readings.push_back({now.unixSeconds() - second, second % 2 == 0 ? 10.0 : 30.0});
  }
  readings.push_back({now.unixSeconds(), 25});
  const Graph graph =
      graphs::figureGraph(Figure::memoryUsed, readings, now.addingSeconds(-86400), now, {});
  const auto& points = graph.lines.front().points;
  EXPECT_LE(points.size(), graphs::maxPoints + 1);
  EXPECT_GE(points.size(), graphs::maxPoints - 1);
  EXPECT_NEAR(points[points.size() / 2].value, 20, 0.5) << "each stretch is its mean";
  EXPECT_EQ(points.back(), (Point{now.unixSeconds(), 25}));
  EXPECT_EQ(graph.summary, "Memory used: 25 %, at most 30 % in the last day");
}

}  // namespace
}  // namespace korvo
