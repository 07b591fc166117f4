#include "extension/monitor_provider.hpp"

#include "base/clock.hpp"
#include "extension/sample_data.hpp"
#include "shared/widget_snapshot_store.hpp"

namespace korvo {
namespace {

std::optional<WidgetSnapshot> storedSnapshot(const TimelineContext& context) {
  return WidgetSnapshotStore::load(context.snapshotFile ? context.snapshotFile
                                                        : WidgetSnapshotStore::fileURL());
}

}  // namespace

MonitorEntry MonitorProvider::placeholder(const TimelineContext&) const {
  const Date now = clock::now();
  return MonitorEntry{.date = now, .snapshot = SampleData::widgetSnapshot(now)};
}

void MonitorProvider::getSnapshot(const TimelineContext& context,
                                  const std::function<void(MonitorEntry)>& completion) const {
  if (context.isPreview) {
    completion(placeholder(context));
    return;
  }
  const Date now = clock::now();
  completion(MonitorEntry{.date = now, .snapshot = storedSnapshot(context)});
}

void MonitorProvider::getTimeline(
    const TimelineContext& context,
    const std::function<void(Timeline<MonitorEntry>)>& completion) const {
  const Date now = clock::now();
  completion(Timeline<MonitorEntry>{
      .entries = {MonitorEntry{.date = now, .snapshot = storedSnapshot(context)}},
      .policy = ReloadPolicy::after(now.addingSeconds(reloadInterval))});
}

}  // namespace korvo
