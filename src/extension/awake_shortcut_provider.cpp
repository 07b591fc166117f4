#include "extension/awake_shortcut_provider.hpp"

#include "base/clock.hpp"

namespace korvo {

AwakeEntry AwakeShortcutProvider::placeholder(const TimelineContext&) const {
  return AwakeEntry{.date = clock::now()};
}

void AwakeShortcutProvider::getSnapshot(const TimelineContext& context,
                                        const std::function<void(AwakeEntry)>& completion) const {
  completion(placeholder(context));
}

void AwakeShortcutProvider::getTimeline(
    const TimelineContext& context,
    const std::function<void(Timeline<AwakeEntry>)>& completion) const {
  completion(
      Timeline<AwakeEntry>{.entries = {placeholder(context)}, .policy = ReloadPolicy::never()});
}

}  // namespace korvo
