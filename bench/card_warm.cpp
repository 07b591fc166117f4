// A warm frame of the medium AI Usage card (fonts loaded, measurements cached): the widget's view
// build, layout and paint against the same card drawn by hand, in one process so their ratio is
// taken under the same conditions. Run them in turns:
//   card_warm_bench --benchmark_enable_random_interleaving=true --benchmark_repetitions=10
#include <benchmark/benchmark.h>
#include <pango/pangocairo.h>

#include "base/clock.hpp"
#include "model/monitor_entry.hpp"
#include "render/painter.hpp"
#include "render/pango_text_measurer.hpp"
#include "ui/widget_layout.hpp"
#include "usage_card_by_hand.hpp"
#include "views/monitor/monitor_widget_view.hpp"

namespace korvo {
namespace {

constexpr Date now = Date::fromUnixSeconds(1'794'707'100);
constexpr double scale = 2;

// What the sample shared file holds, fetched 50 seconds ago: the card drawUsageCardByHand draws.
MonitorEntry sampleEntry() {
  UsageState codex;
  codex.enabled = true;
  codex.snapshot = UsageSnapshot{{UsageWindow{"5-hour", 28, now.addingSeconds(7200)},
                                  UsageWindow{"Weekly", 42, now.addingSeconds(172800)}},
                                 now.addingSeconds(-50),
                                 {}};
  WidgetSnapshot snapshot;
  snapshot.date = now.addingSeconds(-50);
  snapshot.codex = codex;
  snapshot.claude.enabled = false;
  return {now, snapshot};
}

template <class Draw>
void frames(benchmark::State& state, Draw draw) {
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 728, 340);
  auto frame = [&] {
    cairo_t* cr = cairo_create(surface);
    cairo_scale(cr, scale, scale);
    draw(cr);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
  };
  frame();
  for (auto _ : state) frame();
  cairo_surface_destroy(surface);
}

void BM_UsageMediumByHand(benchmark::State& state) {
  frames(state, [](cairo_t* cr) {
    PangoLayout* layout = pango_cairo_create_layout(cr);
    bench::useUnhintedText(layout);
    bench::drawUsageCardByHand(cr, layout);
    g_object_unref(layout);
  });
}

void BM_UsageMediumWidget(benchmark::State& state) {
  clock::setFixed(now);
  const MonitorEntry entry = sampleEntry();
  ui::Environment environment;
  environment.family = ui::WidgetFamily::systemMedium;
  environment.now = now;
  frames(state, [&](cairo_t* cr) {
    const ui::WidgetLayout widget =
        ui::layoutWidget("bench", MonitorWidgetView{entry, false}.body(environment), environment,
                         render::PangoTextMeasurer::shared(), scale);
    render::paintWidget(cr, widget);
  });
  clock::reset();
}

BENCHMARK(BM_UsageMediumByHand)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_UsageMediumWidget)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace korvo
