#pragma once

#include <functional>

#include "extension/entries/memory_entry.hpp"
#include "extension/timeline.hpp"
#include "extension/timeline_context.hpp"

namespace korvo {

// Answers the keep-awake shortcut's requests. Its view shows nothing that changes, so every entry
// only carries the request's date and the timeline never asks to be reloaded.
struct AwakeShortcutProvider {
  MemoryEntry placeholder(const TimelineContext& context) const;
  void getSnapshot(const TimelineContext& context,
                   const std::function<void(MemoryEntry)>& completion) const;
  void getTimeline(const TimelineContext& context,
                   const std::function<void(Timeline<MemoryEntry>)>& completion) const;
};

}  // namespace korvo
