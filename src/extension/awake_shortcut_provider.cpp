#include "extension/awake_shortcut_provider.hpp"

#include "base/clock.hpp"

namespace korvo {

MemoryEntry AwakeShortcutProvider::placeholder(const TimelineContext&) const {
  return MemoryEntry{.date = clock::now(), .memory = std::nullopt};
}

void AwakeShortcutProvider::getSnapshot(const TimelineContext& context,
                                        const std::function<void(MemoryEntry)>& completion) const {
  completion(placeholder(context));
}

void AwakeShortcutProvider::getTimeline(
    const TimelineContext& context,
    const std::function<void(Timeline<MemoryEntry>)>& completion) const {
  completion(
      Timeline<MemoryEntry>{.entries = {placeholder(context)}, .policy = ReloadPolicy::never()});
}

}  // namespace korvo
