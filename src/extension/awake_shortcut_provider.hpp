#pragma once

#include <functional>

#include "extension/timeline_context.hpp"
#include "model/awake_entry.hpp"
#include "model/timeline.hpp"

namespace korvo {

// Answers the keep-awake shortcut's requests. Its view shows nothing that changes, so every entry
// only carries the request's date and the timeline never asks to be reloaded.
struct AwakeShortcutProvider {
  AwakeEntry placeholder(const TimelineContext& context) const;
  void getSnapshot(const TimelineContext& context,
                   const std::function<void(AwakeEntry)>& completion) const;
  void getTimeline(const TimelineContext& context,
                   const std::function<void(Timeline<AwakeEntry>)>& completion) const;
};

}  // namespace korvo
