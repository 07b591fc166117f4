// What the AI tab does for its graphs when it opens, with the history at
// $XDG_STATE_HOME/korvo/history.sqlite3 (bench/history.sh runs it with 90 days of history and
// with none): for Codex's and Claude's 5-hour and weekly windows, read the window's period from
// the history, forecast, build the graph and paint it with Cairo at scale 2.
#include <benchmark/benchmark.h>
#include <cairo.h>

#include <chrono>
#include <sstream>

#include "app/forecast.hpp"
#include "app/graph_model.hpp"
#include "app/history_store.hpp"
#include "base/clock.hpp"
#include "dashboard/graph_painter.hpp"

namespace korvo {
namespace {

void BM_AiTabGraphs(benchmark::State& state) {
  const Date now = clock::now();
  const std::pair<const char*, UsageWindow> windows[] = {
      {"codex.5-hour", {"5-hour", 40, now.addingSeconds(3 * 3600)}},
      {"codex.Weekly", {"Weekly", 60, now.addingSeconds(2 * 86400)}},
      {"claude.5-hour", {"5-hour", 30, now.addingSeconds(2 * 3600)}},
      {"claude.Weekly", {"Weekly", 50, now.addingSeconds(3 * 86400)}},
  };
  ui::Environment environment;
  const ui::Palette palette = environment.palette();
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1280, 192);
  std::size_t points = 0;
  for (auto _ : state) {
    std::ostringstream log;
    const auto history = HistoryStore::openExisting(log, now, std::chrono::milliseconds(200));
    for (const auto& [metric, window] : windows) {
      const Date start = window.resetsAt->addingSeconds(-*graphs::windowSeconds(window.title));
      const auto readings = history ? history->rows(start, now, metric) : std::vector<HistoryRow>{};
      points += readings.size();
      const auto graph = graphs::usageGraph(metric, window, readings,
                                            forecast::forecast(readings, window, now), now);
      cairo_t* cr = cairo_create(surface);
      cairo_scale(cr, 2, 2);
      graph_painter::paint(cr, graph, 640, 96, palette, now.unixSeconds());
      cairo_destroy(cr);
    }
  }
  cairo_surface_destroy(surface);
  state.counters["readings"] =
      benchmark::Counter(static_cast<double>(points), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_AiTabGraphs)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace korvo
