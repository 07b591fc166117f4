// View build, layout and paint of each widget at 2×, warm: the first frame (font loading) is
// taken before timing starts.
#include <benchmark/benchmark.h>
#include <cairo.h>

#include <cmath>
#include <functional>
#include <optional>
#include <vector>

#include "base/clock.hpp"
#include "model/memory_entry.hpp"
#include "model/monitor_entry.hpp"
#include "render/image_output.hpp"
#include "render/painter.hpp"
#include "render/pango_text_measurer.hpp"
#include "ui/widget_layout.hpp"
#include "views/awake/awake_shortcut_view.hpp"
#include "views/memory/memory_widget_view.hpp"
#include "views/monitor/monitor_widget_view.hpp"

namespace korvo {
namespace {

constexpr Date now = Date::fromUnixSeconds(1'794'707'100);
constexpr double scale = 2;

MemoryEntry memoryEntry() {
  clock::setFixed(now);
  return {now,
          MemorySnapshot::fromPageCounts(17'179'869'184, 4096, 1'500'000, 500'000, 250'000, 250'000,
                                         100'000, 200'000, std::nullopt, MemoryPressure::warning)};
}

MonitorEntry monitorEntry() {
  UsageState state;
  state.enabled = true;
  state.snapshot = UsageSnapshot{{UsageWindow{"5-hour", 28, now.addingSeconds(7200)},
                                  UsageWindow{"Weekly", 42, now.addingSeconds(172800)}},
                                 now.addingSeconds(-240),
                                 {}};
  WidgetSnapshot snapshot;
  snapshot.date = now;
  snapshot.temperature = 54;
  snapshot.temperatureDate = now.addingSeconds(-120);
  snapshot.temperatureEnabled = true;
  snapshot.codex = state;
  snapshot.claude = state;
  return {now, snapshot};
}

using ViewBuilder = std::function<ui::View(const ui::Environment&)>;

void renderWidget(benchmark::State& state, ui::WidgetFamily family, const ViewBuilder& build) {
  clock::setFixed(now);
  ui::Environment environment;
  environment.family = family;
  environment.now = now;
  ui::TextMeasurer& measurer = render::PangoTextMeasurer::shared();
  const ui::Size size = ui::familySize(family);
  cairo_surface_t* surface = cairo_image_surface_create(
      CAIRO_FORMAT_ARGB32, static_cast<int>(std::ceil(size.width * scale)),
      static_cast<int>(std::ceil(size.height * scale)));
  auto frame = [&] {
    const ui::WidgetLayout widget =
        ui::layoutWidget("bench", build(environment), environment, measurer, scale);
    cairo_t* cr = cairo_create(surface);
    cairo_scale(cr, scale, scale);
    render::paintWidget(cr, widget);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
  };
  frame();
  for (auto _ : state) frame();
  cairo_surface_destroy(surface);
  clock::reset();
}

void memorySmall(benchmark::State& state) {
  const MemoryEntry entry = memoryEntry();
  renderWidget(state, ui::WidgetFamily::systemSmall,
               [&](const ui::Environment& env) { return MemoryWidgetView{entry}.body(env); });
}
void memoryMedium(benchmark::State& state) {
  const MemoryEntry entry = memoryEntry();
  renderWidget(state, ui::WidgetFamily::systemMedium,
               [&](const ui::Environment& env) { return MemoryWidgetView{entry}.body(env); });
}
void usageSmall(benchmark::State& state) {
  const MonitorEntry entry = monitorEntry();
  renderWidget(state, ui::WidgetFamily::systemSmall, [&](const ui::Environment& env) {
    return MonitorWidgetView{entry, false}.body(env);
  });
}
void usageMedium(benchmark::State& state) {
  const MonitorEntry entry = monitorEntry();
  renderWidget(state, ui::WidgetFamily::systemMedium, [&](const ui::Environment& env) {
    return MonitorWidgetView{entry, false}.body(env);
  });
}
void temperatureSmall(benchmark::State& state) {
  const MonitorEntry entry = monitorEntry();
  renderWidget(state, ui::WidgetFamily::systemSmall, [&](const ui::Environment& env) {
    return MonitorWidgetView{entry, true}.body(env);
  });
}
void awakeSmall(benchmark::State& state) {
  renderWidget(state, ui::WidgetFamily::systemSmall,
               [](const ui::Environment& env) { return AwakeShortcutView{}.body(env); });
}

// View construction alone, to separate it from layout and paint.
void memoryMediumViewOnly(benchmark::State& state) {
  const MemoryEntry entry = memoryEntry();
  ui::Environment environment;
  environment.family = ui::WidgetFamily::systemMedium;
  for (auto _ : state) benchmark::DoNotOptimize(MemoryWidgetView{entry}.body(environment));
  clock::reset();
}

BENCHMARK(memorySmall)->Unit(benchmark::kMicrosecond);
BENCHMARK(memoryMedium)->Unit(benchmark::kMicrosecond);
BENCHMARK(usageSmall)->Unit(benchmark::kMicrosecond);
BENCHMARK(usageMedium)->Unit(benchmark::kMicrosecond);
BENCHMARK(temperatureSmall)->Unit(benchmark::kMicrosecond);
BENCHMARK(awakeSmall)->Unit(benchmark::kMicrosecond);
BENCHMARK(memoryMediumViewOnly)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace korvo
