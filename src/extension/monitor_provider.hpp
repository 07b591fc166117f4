#pragma once

#include <functional>

#include "extension/timeline_context.hpp"
#include "model/monitor_entry.hpp"
#include "model/timeline.hpp"

namespace korvo {

// Answers the usage and temperature widgets' requests with the shared snapshot file as the host
// application last wrote it, loaded anew for every request. Every request reads the clock once.
struct MonitorProvider {
  // How long a timeline's snapshot stays current before the host asks again, seconds.
  static constexpr double reloadInterval = 900;

  // The sample snapshot, without any I/O.
  MonitorEntry placeholder(const TimelineContext& context) const;
  // The sample snapshot in the gallery; the stored snapshot (or none) anywhere else.
  void getSnapshot(const TimelineContext& context,
                   const std::function<void(MonitorEntry)>& completion) const;
  // One entry with the stored snapshot (or none), reloaded reloadInterval seconds after it.
  void getTimeline(const TimelineContext& context,
                   const std::function<void(Timeline<MonitorEntry>)>& completion) const;
};

}  // namespace korvo
