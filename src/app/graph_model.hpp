#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/forecast.hpp"
#include "app/history_store.hpp"
#include "base/date.hpp"
#include "base/temperature_text.hpp"
#include "shared/usage_window.hpp"

// What the dashboard's graphs show, as plain values: the lines over a span of time, the rules
// across them, and the name and one-line summary a screen reader reads. Drawing is the
// dashboard's; choosing what to draw is here, where it is tested without a display.
namespace korvo::graphs {

// The colour role of a line; the drawing takes each from the card's palette.
enum class Tone { accent, load, heat, limit };

struct Point {
  double time = 0;  // Unix seconds
  double value = 0;

  friend bool operator==(const Point&, const Point&) = default;
};

struct Line {
  std::vector<Point> points;  // oldest first
  Tone tone = Tone::accent;
  bool dashed = false;  // a forecast, not a reading
  bool filled = false;  // the area under it is shaded

  friend bool operator==(const Line&, const Line&) = default;
};

struct Graph {
  std::string name;     // "Codex weekly"
  std::string summary;  // "Codex weekly: 41 % used, at this pace 78 % at the reset on Friday"
  double from = 0;      // the span of time drawn, Unix seconds
  double to = 0;
  double low = 0;  // the span of values drawn
  double high = 100;
  std::vector<Line> lines;
  std::vector<double> rules;  // values marked across the whole span (100 % of a window)

  friend bool operator==(const Graph&, const Graph&) = default;
};

// A line holds at most this many points: more are averaged over equal stretches of time.
inline constexpr std::size_t maxPoints = 600;

// How long a window titled `title` lasts: "5-hour", "N-hour", "Weekly", "Monthly", "Annual";
// none for a title that does not say.
std::optional<double> windowSeconds(const std::string& title);

// A window's use since its period began (`readings` of its metric, oldest first, cut to the
// period), the forecast to its reset dashed, and a rule at 100 %. `name` is "Codex weekly".
Graph usageGraph(const std::string& name, const UsageWindow& window,
                 const std::vector<HistoryRow>& readings,
                 const std::optional<forecast::Forecast>& found, Date now);

// What a machine figure is: its name, unit and the span of its values.
enum class Figure { memoryUsed, memoryPressure, cpuLoad, temperature };

// The history's metric for a figure ("memory.used").
std::string metricOf(Figure figure);

// A figure's `readings` from `from` to `now` as one line; the summary says its latest and its
// highest over the span ("CPU load: 12 %, at most 80 % in the last hour").
Graph figureGraph(Figure figure, const std::vector<Point>& readings, Date from, Date now,
                  TemperatureUnit unit);

}  // namespace korvo::graphs
