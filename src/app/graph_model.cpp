#include "app/graph_model.hpp"

#include <algorithm>
#include <cmath>

#include "base/c_format.hpp"
#include "base/date_text.hpp"
#include "base/text.hpp"

namespace korvo::graphs {
namespace {

constexpr double hourSeconds = 3600;
constexpr double daySeconds = 24 * hourSeconds;

std::string percentText(double percent) {
  return cFormat("%.0f", percent) + " %";
}

// The value axis: from 0 to at least `floor`, with room above the highest value.
double ceiling(const Graph& graph, double floor) {
  double highest = floor;
  for (const Line& line : graph.lines) {
    for (const Point& point : line.points) highest = std::max(highest, point.value);
  }
  return highest > floor ? std::ceil(highest / 10) * 10 : floor;
}

// At most `most` points: beyond that, the mean of each of `most` equal stretches of time, so a
// day of readings a second draws in as many strokes as the graph has room for.
std::vector<Point> thinned(std::vector<Point> points, double from, double to, std::size_t most) {
  if (points.size() <= most || to <= from) return points;
  std::vector<Point> kept;
  const double stretch = (to - from) / static_cast<double>(most);
  double sumTime = 0;
  double sumValue = 0;
  int count = 0;
  double bucket = std::floor((points.front().time - from) / stretch);
  for (const Point& point : points) {
    const double at = std::floor((point.time - from) / stretch);
    if (at != bucket && count > 0) {
      kept.push_back({sumTime / count, sumValue / count});
      sumTime = sumValue = 0;
      count = 0;
    }
    bucket = at;
    sumTime += point.time;
    sumValue += point.value;
    ++count;
  }
  if (count > 0) kept.push_back({sumTime / count, sumValue / count});
  // The latest reading stays as it was: the summary and the line's end agree.
  kept.back() = points.back();
  return kept;
}

std::string spanWords(double seconds) {
  return seconds <= hourSeconds + 1 ? _("in the last hour") : _("in the last day");
}

}  // namespace

std::optional<double> windowSeconds(const std::string& title) {
  if (title == "Weekly") return 7 * daySeconds;
  if (title == "Monthly") return 30 * daySeconds;
  if (title == "Annual") return 365 * daySeconds;
  constexpr std::string_view hour = "-hour";
  if (title.size() > hour.size() && title.ends_with(hour)) {
    int hours = 0;
    for (const char digit : title.substr(0, title.size() - hour.size())) {
      if (digit < '0' || digit > '9') return std::nullopt;
      hours = hours * 10 + (digit - '0');
      if (hours > 10000) return std::nullopt;
    }
    return hours * hourSeconds;
  }
  return std::nullopt;
}

Graph usageGraph(const std::string& name, const UsageWindow& window,
                 const std::vector<HistoryRow>& readings,
                 const std::optional<forecast::Forecast>& found, Date now) {
  Graph graph;
  graph.name = name;
  const auto length = windowSeconds(window.title);
  const double end = window.resetsAt ? window.resetsAt->unixSeconds() : now.unixSeconds();
  graph.to = std::max(end, now.unixSeconds());
  // A reset further off than the window is long (a stale reset) still shows now.
  graph.from = length             ? std::min(end - *length, now.unixSeconds() - *length / 10)
               : readings.empty() ? now.unixSeconds() - hourSeconds
                                  : readings.front().time.unixSeconds();
  Line used{{}, Tone::accent, false, true};
  for (const HistoryRow& row : readings) {
    const double time = row.time.unixSeconds();
    if (time >= graph.from && time <= now.unixSeconds()) used.points.push_back({time, row.value});
  }
  used.points.push_back({now.unixSeconds(), window.usedPercent});
  used.points = thinned(std::move(used.points), graph.from, now.unixSeconds(), maxPoints);
  graph.lines.push_back(std::move(used));

  graph.summary = name + ": " + percentText(window.usedPercent) + _(" used");
  if (found && found->exhaustsAt) {
    graph.lines.push_back(
        {{{now.unixSeconds(), window.usedPercent}, {found->exhaustsAt->unixSeconds(), 100}},
         Tone::limit,
         true,
         false});
    graph.summary += _(", at this pace it runs out ") + dayText(*found->exhaustsAt, now) + " " +
                     _("at ") + shortTime(*found->exhaustsAt);
  } else if (found && found->usedAtReset && window.resetsAt) {
    graph.lines.push_back({{{now.unixSeconds(), window.usedPercent},
                            {window.resetsAt->unixSeconds(), *found->usedAtReset}},
                           Tone::accent,
                           true,
                           false});
    graph.summary += _(", at this pace ") + percentText(*found->usedAtReset) + _(" at the reset ") +
                     dayText(*window.resetsAt, now);
  } else if (window.resetsAt) {
    graph.summary += _(", resets ") + dayText(*window.resetsAt, now) + " " + _("at ") +
                     shortTime(*window.resetsAt);
  }
  graph.rules.push_back(100);
  graph.high = ceiling(graph, 100);
  return graph;
}

std::string metricOf(Figure figure) {
  switch (figure) {
    case Figure::memoryUsed:
      return "memory.used";
    case Figure::memoryPressure:
      return "memory.pressure";
    case Figure::cpuLoad:
      return "cpu.load";
    case Figure::temperature:
      break;
  }
  return "temperature";
}

Graph figureGraph(Figure figure, const std::vector<Point>& readings, Date from, Date now,
                  TemperatureUnit unit) {
  Graph graph;
  graph.from = from.unixSeconds();
  graph.to = now.unixSeconds();
  Line line{{}, Tone::accent, false, true};
  for (const Point& point : readings) {
    if (point.time < graph.from || point.time > graph.to) continue;
    line.points.push_back(point);
    if (figure == Figure::temperature) line.points.back().value = inUnit(point.value, unit);
  }
  const auto text = [&](double value) {
    switch (figure) {
      case Figure::memoryPressure:
        // The kernel's levels: 1 normal, 2 warning, 4 critical, named as the Mem tab names them.
        return value >= 4 ? _("High") : value >= 2 ? _("Elevated") : _("Normal");
      case Figure::temperature:
        return cFormat("%.0f", value) + (unit == TemperatureUnit::fahrenheit ? "°F" : "°C");
      default:
        return percentText(value);
    }
  };
  switch (figure) {
    case Figure::memoryUsed:
      graph.name = _("Memory used");
      break;
    case Figure::memoryPressure:
      graph.name = _("Memory pressure");
      line.tone = Tone::heat;
      graph.high = 4;
      break;
    case Figure::cpuLoad:
      graph.name = _("CPU load");
      line.tone = Tone::load;
      break;
    case Figure::temperature:
      graph.name = _("CPU temperature");
      line.tone = Tone::heat;
      graph.high = unit == TemperatureUnit::fahrenheit ? 220 : 100;
      break;
  }
  const double span = graph.to - graph.from;
  if (line.points.empty()) {
    graph.summary = graph.name + ": " + _("no readings ") + spanWords(span);
  } else {
    // The highest reading, before thinning averages it away.
    double highest = line.points.front().value;
    for (const Point& point : line.points) highest = std::max(highest, point.value);
    graph.summary = graph.name + ": " + text(line.points.back().value) + _(", at most ") +
                    text(highest) + " " + spanWords(span);
  }
  line.points = thinned(std::move(line.points), graph.from, graph.to, maxPoints);
  graph.lines.push_back(std::move(line));
  if (figure != Figure::memoryPressure) graph.high = ceiling(graph, graph.high);
  return graph;
}

}  // namespace korvo::graphs
