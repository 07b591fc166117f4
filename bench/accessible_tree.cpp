// What a reload costs the accessible children, toolkit aside: the element list of the new layout
// and the edits from the old one, for the busiest card (usage, medium). The anchor is laying the
// same card out, which every reload pays anyway.
#include "ui/accessible_tree.hpp"

#include <benchmark/benchmark.h>

#include "base/clock.hpp"
#include "model/memory_entry.hpp"
#include "model/monitor_entry.hpp"
#include "render/pango_text_measurer.hpp"
#include "ui/widget_layout.hpp"
#include "views/memory/memory_widget_view.hpp"
#include "views/monitor/monitor_widget_view.hpp"

namespace korvo {
namespace {

constexpr Date now = Date::fromUnixSeconds(1'794'707'100);

MonitorEntry usageEntry(double weeklyUsed) {
  UsageState state;
  state.enabled = true;
  state.snapshot = UsageSnapshot{{UsageWindow{"5-hour", 28, now.addingSeconds(7200)},
                                  UsageWindow{"Weekly", weeklyUsed, now.addingSeconds(172800)}},
                                 now.addingSeconds(-240),
                                 {}};
  WidgetSnapshot snapshot;
  snapshot.date = now;
  snapshot.codex = state;
  snapshot.claude = state;
  return {now, snapshot};
}

ui::WidgetLayout usageCard(const MonitorEntry& entry, Date at) {
  clock::setFixed(at);
  ui::Environment environment;
  environment.family = ui::WidgetFamily::systemMedium;
  environment.now = at;
  return ui::layoutWidget("bench", MonitorWidgetView{entry, false}.body(environment), environment,
                          render::PangoTextMeasurer::shared(), 2);
}

// Layout of the card: the work a reload does before the accessible children.
void layoutAnchor(benchmark::State& state) {
  const MonitorEntry entry = usageEntry(42);
  usageCard(entry, now);
  for (auto _ : state) benchmark::DoNotOptimize(usageCard(entry, now));
  clock::reset();
}

void childrenUpdate(benchmark::State& state, const ui::WidgetLayout& before,
                    const ui::WidgetLayout& after) {
  const auto shown = ui::accessibleElements(before);
  for (auto _ : state) {
    const auto next = ui::accessibleElements(after);
    benchmark::DoNotOptimize(ui::accessibleEdits(shown, next));
  }
  state.counters["elements"] = static_cast<double>(shown.size());
  state.counters["edits"] =
      static_cast<double>(ui::accessibleEdits(shown, ui::accessibleElements(after)).size());
}

// The same entry laid out again with nothing changed (an appearance change).
void unchanged(benchmark::State& state) {
  const auto card = usageCard(usageEntry(42), now);
  childrenUpdate(state, card, card);
  clock::reset();
}

// "4 min ago" becoming "5 min ago" on both cards.
void liveTextAdvanced(benchmark::State& state) {
  const MonitorEntry entry = usageEntry(42);
  childrenUpdate(state, usageCard(entry, now), usageCard(entry, now.addingSeconds(60)));
  clock::reset();
}

// A reload with new weekly figures on both cards.
void newEntry(benchmark::State& state) {
  childrenUpdate(state, usageCard(usageEntry(42), now), usageCard(usageEntry(55), now));
  clock::reset();
}

BENCHMARK(layoutAnchor)->Unit(benchmark::kMicrosecond);
BENCHMARK(unchanged)->Unit(benchmark::kMicrosecond);
BENCHMARK(liveTextAdvanced)->Unit(benchmark::kMicrosecond);
BENCHMARK(newEntry)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace korvo
