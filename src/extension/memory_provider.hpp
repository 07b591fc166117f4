#pragma once

#include <functional>

#include "extension/timeline_context.hpp"
#include "model/memory_entry.hpp"
#include "model/timeline.hpp"

namespace korvo {

// Answers the memory widget's requests with a fresh reading of the machine, taken by a sampler
// that lives only for the request. Every request reads the clock once.
struct MemoryProvider {
  // How long a timeline's reading stays current before the host asks again, seconds.
  static constexpr double reloadInterval = 1'800;

  // The sample reading, without any I/O.
  MemoryEntry placeholder(const TimelineContext& context) const;
  // The sample reading in the gallery; a fresh reading (or none) anywhere else.
  void getSnapshot(const TimelineContext& context,
                   const std::function<void(MemoryEntry)>& completion) const;
  // One entry with a fresh reading (or none), reloaded reloadInterval seconds after it.
  void getTimeline(const TimelineContext& context,
                   const std::function<void(Timeline<MemoryEntry>)>& completion) const;
};

}  // namespace korvo
