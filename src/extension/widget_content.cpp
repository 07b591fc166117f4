#include "extension/widget_content.hpp"

#include "model/entry_json.hpp"
#include "views/awake/awake_shortcut_view.hpp"
#include "views/memory/memory_widget_view.hpp"
#include "views/monitor/monitor_widget_view.hpp"

namespace korvo::WidgetContent {

AnyEntry memory(const MemoryEntry& entry) {
  return AnyEntry{.date = entry.date,
                  .toJson = [entry] { return entryJSON(entry); },
                  .view =
                      [entry](const ui::Environment& environment) {
                        return MemoryWidgetView{entry}.body(environment);
                      }};
}

AnyEntry awakeShortcut(const AwakeEntry& entry) {
  return AnyEntry{
      .date = entry.date,
      .toJson = [entry] { return entryJSON(entry); },
      .view =
          [](const ui::Environment& environment) { return AwakeShortcutView{}.body(environment); }};
}

AnyEntry monitor(const MonitorEntry& entry, bool temperatureOnly) {
  return AnyEntry{.date = entry.date,
                  .toJson = [entry] { return entryJSON(entry); },
                  .view =
                      [entry, temperatureOnly](const ui::Environment& environment) {
                        return MonitorWidgetView{entry, temperatureOnly}.body(environment);
                      }};
}

}  // namespace korvo::WidgetContent
