#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "model/awake_entry.hpp"
#include "model/memory_entry.hpp"
#include "model/monitor_entry.hpp"
#include "model/reload_policy.hpp"

namespace korvo {

// Dates as the system counts them (seconds since 2001-01-01 UTC): integral values as integers,
// every other value in its shortest form that reads back to the same double.
nlohmann::ordered_json dateJSON(Date date);

// {"date": …, "memory": the reading with used, available and usedFraction | null}.
nlohmann::ordered_json entryJSON(const MemoryEntry& entry);
// {"date": …, "memory": null}: the keep-awake entry keeps the memory entry's form for tools.
nlohmann::ordered_json entryJSON(const AwakeEntry& entry);
// {"date": …, "snapshot": the shared file's own JSON form | null}.
nlohmann::ordered_json entryJSON(const MonitorEntry& entry);
// {"policy": "after", "date": …} or {"policy": "never"}.
nlohmann::ordered_json reloadJSON(const ReloadPolicy& policy);

// The document as `dump(indent)` lays it out, but with every non-integral number in its shortest
// form that reads back to the same double (the library's own writer is not always shortest).
std::string documentText(const nlohmann::ordered_json& document, int indent = -1);

}  // namespace korvo
