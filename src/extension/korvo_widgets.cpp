#include "extension/korvo_widgets.hpp"

#include "base/text.hpp"
#include "extension/awake_shortcut_provider.hpp"
#include "extension/memory_provider.hpp"
#include "extension/monitor_provider.hpp"
#include "extension/widget_content.hpp"
#include "extension/widget_kind.hpp"

namespace korvo {
namespace {

using ui::WidgetFamily;

struct Description {
  std::string kind;
  std::string displayName;
  std::string description;
  std::vector<WidgetFamily> supportedFamilies;
  bool readsSharedFile = false;
};

// A configuration around a typed provider: each request is passed on and its entries wrapped by
// `content`, the configuration's content closure.
template <class Provider, class Content>
WidgetConfiguration configuration(Description description, Provider provider, Content content) {
  WidgetConfiguration widget;
  widget.kind = std::move(description.kind);
  widget.displayName = std::move(description.displayName);
  widget.description = std::move(description.description);
  widget.supportedFamilies = std::move(description.supportedFamilies);
  widget.readsSharedFile = description.readsSharedFile;
  widget.placeholder = [provider, content](const TimelineContext& context) {
    return content(provider.placeholder(context));
  };
  widget.getSnapshot = [provider, content](const TimelineContext& context,
                                           const std::function<void(AnyEntry)>& completion) {
    provider.getSnapshot(context, [&](const auto& entry) { completion(content(entry)); });
  };
  widget.getTimeline = [provider, content](const TimelineContext& context,
                                           const std::function<void(AnyTimeline)>& completion) {
    provider.getTimeline(context, [&](const auto& timeline) {
      AnyTimeline erased{.entries = {}, .policy = timeline.policy};
      for (const auto& entry : timeline.entries) {
        erased.entries.push_back(content(entry));
      }
      completion(std::move(erased));
    });
  };
  return widget;
}

}  // namespace

WidgetConfiguration KorvoMemoryWidget::body() const {
  return configuration(
      {.kind = fullKind(WidgetKind::memory),
       .displayName = _("Memory"),
       .description = _("A recent memory snapshot. Open Korvo for live readings and Keep Awake "
                        "controls."),
       .supportedFamilies = {WidgetFamily::systemSmall, WidgetFamily::systemMedium}},
      MemoryProvider{}, WidgetContent::memory);
}

WidgetConfiguration KorvoAwakeWidget::body() const {
  return configuration(
      {.kind = fullKind(WidgetKind::awake),
       .displayName = _("Keep Awake"),
       .description = _("Open Korvo to start, extend, or stop a session. This shortcut does not "
                        "show session status."),
       .supportedFamilies = {WidgetFamily::systemSmall}},
      AwakeShortcutProvider{}, WidgetContent::awakeShortcut);
}

WidgetConfiguration KorvoUsageWidget::body() const {
  return configuration(
      {.kind = fullKind(WidgetKind::usage),
       .displayName = _("AI Usage"),
       .description = _("Recent Codex and Claude subscription limits. Enable providers and keep "
                        "Korvo running to update snapshots."),
       .supportedFamilies = {WidgetFamily::systemSmall, WidgetFamily::systemMedium},
       .readsSharedFile = true},
      MonitorProvider{},
      [](const MonitorEntry& entry) { return WidgetContent::monitor(entry, false); });
}

WidgetConfiguration KorvoTemperatureWidget::body() const {
  return configuration(
      {.kind = fullKind(WidgetKind::temperature),
       .displayName = _("CPU Temperature"),
       .description = _("A recent CPU temperature snapshot from Korvo. Enable temperature "
                        "monitoring in the app."),
       .supportedFamilies = {WidgetFamily::systemSmall},
       .readsSharedFile = true},
      MonitorProvider{},
      [](const MonitorEntry& entry) { return WidgetContent::monitor(entry, true); });
}

std::vector<WidgetConfiguration> KorvoWidgets::body() const {
  return {KorvoMemoryWidget{}.body(), KorvoAwakeWidget{}.body(), KorvoUsageWidget{}.body(),
          KorvoTemperatureWidget{}.body()};
}

const WidgetConfiguration* findWidget(const std::vector<WidgetConfiguration>& widgets,
                                      std::string_view kind) {
  for (const WidgetConfiguration& widget : widgets) {
    if (widget.kind == kind || widget.shortKind() == kind) {
      return &widget;
    }
  }
  return nullptr;
}

}  // namespace korvo
