#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

#include "extension/korvo_widgets.hpp"
#include "extension/memory_provider.hpp"
#include "extension/monitor_provider.hpp"

namespace korvo {
namespace {

const std::string sampleFile = std::string(KORVO_SOURCE_DIR) + "/data/samples/usage-snapshot.json";

void placeholderRequests(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(MemoryProvider{}.placeholder({}));
    benchmark::DoNotOptimize(MonitorProvider{}.placeholder({}));
  }
}
BENCHMARK(placeholderRequests);

// One fresh reading of this machine's /proc, as the memory widget's timeline takes it.
void memoryTimeline(benchmark::State& state) {
  for (auto _ : state) {
    MemoryProvider{}.getTimeline(
        {}, [](Timeline<MemoryEntry> timeline) { benchmark::DoNotOptimize(timeline); });
  }
}
BENCHMARK(memoryTimeline);

// The example shared file loaded and decoded, as the usage widget's timeline does.
void monitorTimeline(benchmark::State& state) {
  const TimelineContext context{.snapshotFile = Url::file(sampleFile)};
  for (auto _ : state) {
    MonitorProvider{}.getTimeline(
        context, [](Timeline<MonitorEntry> timeline) { benchmark::DoNotOptimize(timeline); });
  }
}
BENCHMARK(monitorTimeline);

// The same request through the registry, with the entry's view built.
void usageTimelineWithView(benchmark::State& state) {
  const WidgetConfiguration widget = KorvoUsageWidget{}.body();
  const TimelineContext context{.snapshotFile = Url::file(sampleFile)};
  const ui::Environment environment{.family = ui::WidgetFamily::systemMedium};
  for (auto _ : state) {
    widget.getTimeline(context, [&](AnyTimeline timeline) {
      benchmark::DoNotOptimize(timeline.entries.front().view(environment));
    });
  }
}
BENCHMARK(usageTimelineWithView);

}  // namespace
}  // namespace korvo
