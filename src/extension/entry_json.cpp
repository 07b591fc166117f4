#include "extension/entry_json.hpp"

#include <cmath>
#include <cstdint>

#include "sampling/memory_json.hpp"
#include "shared/widget_snapshot_json.hpp"

namespace korvo {

nlohmann::ordered_json dateJSON(Date date) {
  constexpr double exactIntegers = 9007199254740992.0;  // 2^53
  const double seconds = date.secondsSinceReferenceDate;
  if (std::trunc(seconds) == seconds && std::fabs(seconds) < exactIntegers) {
    return static_cast<std::int64_t>(seconds);
  }
  return seconds;
}

nlohmann::ordered_json entryJSON(const MemoryEntry& entry) {
  nlohmann::ordered_json json;
  json["date"] = dateJSON(entry.date);
  json["memory"] = entry.memory ? toJson(*entry.memory) : nlohmann::ordered_json(nullptr);
  return json;
}

nlohmann::ordered_json entryJSON(const MonitorEntry& entry) {
  nlohmann::ordered_json json;
  json["date"] = dateJSON(entry.date);
  json["snapshot"] = nullptr;
  if (entry.snapshot) {
    // Through the shared file's own encoder, so tools see exactly what a host would write.
    if (const auto bytes = encodeWidgetSnapshot(*entry.snapshot)) {
      json["snapshot"] = nlohmann::ordered_json::parse(*bytes);
    }
  }
  return json;
}

nlohmann::ordered_json reloadJSON(const ReloadPolicy& policy) {
  nlohmann::ordered_json json;
  json["policy"] = policy.date ? "after" : "never";
  if (policy.date) {
    json["date"] = dateJSON(*policy.date);
  }
  return json;
}

}  // namespace korvo
