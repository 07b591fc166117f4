#pragma once

#include "extension/any_entry.hpp"
#include "model/awake_entry.hpp"
#include "model/memory_entry.hpp"
#include "model/monitor_entry.hpp"

// The configurations' content closures: each wraps a typed entry with its view and JSON form.
namespace korvo::WidgetContent {

// MemoryWidgetView of the entry.
AnyEntry memory(const MemoryEntry& entry);
// AwakeShortcutView; the entry only lends its date.
AnyEntry awakeShortcut(const AwakeEntry& entry);
// MonitorWidgetView of the entry with the configuration's fixed temperatureOnly flag.
AnyEntry monitor(const MonitorEntry& entry, bool temperatureOnly);

}  // namespace korvo::WidgetContent
