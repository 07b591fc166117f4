#pragma once

#include <functional>
#include <string>
#include <vector>

#include "extension/any_entry.hpp"
#include "extension/timeline_context.hpp"
#include "ui/environment.hpp"

namespace korvo {

// One widget as the desktop offers it: what it is called, where it may be placed, the provider
// that answers the host's three requests and, inside each entry, the view that renders it.
struct WidgetConfiguration {
  std::string kind;         // stable identifier the host keys placed widgets by
  std::string displayName;  // the gallery's title, localised
  std::string description;  // the gallery's explanation, localised
  std::vector<ui::WidgetFamily> supportedFamilies;  // small before medium
  // The provider reads the shared file, so a host asks it again as soon as the file changes.
  bool readsSharedFile = false;

  // The provider's requests; each completion is called exactly once before the call returns.
  std::function<AnyEntry(const TimelineContext&)> placeholder;
  std::function<void(const TimelineContext&, const std::function<void(AnyEntry)>&)> getSnapshot;
  std::function<void(const TimelineContext&, const std::function<void(AnyTimeline)>&)> getTimeline;

  bool supports(ui::WidgetFamily family) const;
  // The last dot-separated word of the kind: "memory" for "com.tessmoor.Korvo.memory".
  std::string shortKind() const;
};

}  // namespace korvo
