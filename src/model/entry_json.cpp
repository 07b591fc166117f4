#include "model/entry_json.hpp"

#include <cmath>
#include <cstdint>

#include "base/json_number.hpp"
#include "sampling/memory_json.hpp"
#include "shared/widget_snapshot_json.hpp"

namespace korvo {

namespace {

void appendNumber(std::string& out, double value) {
  if (!std::isfinite(value)) {
    out += "null";
    return;
  }
  const std::size_t start = out.size();
  appendJsonNumber(out, value);
  // A float stays recognisable as one, as the library writes it.
  if (out.find_first_of(".eE", start) == std::string::npos) out += ".0";
}

void appendValue(std::string& out, const nlohmann::ordered_json& value, int indent, int depth) {
  const bool pretty = indent >= 0;
  const auto newline = [&](int level) {
    if (!pretty) return;
    out += '\n';
    out.append(static_cast<std::size_t>(indent) * static_cast<std::size_t>(level), ' ');
  };
  if (value.is_number_float()) {
    appendNumber(out, value.get<double>());
  } else if (value.is_object() && !value.empty()) {
    out += '{';
    bool first = true;
    for (const auto& [key, member] : value.items()) {
      if (!first) out += ',';
      first = false;
      newline(depth + 1);
      out += nlohmann::ordered_json(key).dump();
      out += pretty ? ": " : ":";
      appendValue(out, member, indent, depth + 1);
    }
    newline(depth);
    out += '}';
  } else if (value.is_array() && !value.empty()) {
    out += '[';
    bool first = true;
    for (const auto& element : value) {
      if (!first) out += ',';
      first = false;
      newline(depth + 1);
      appendValue(out, element, indent, depth + 1);
    }
    newline(depth);
    out += ']';
  } else {
    out += value.dump();
  }
}

}  // namespace

std::string documentText(const nlohmann::ordered_json& document, int indent) {
  std::string out;
  appendValue(out, document, indent, 0);
  return out;
}

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

nlohmann::ordered_json entryJSON(const AwakeEntry& entry) {
  return entryJSON(MemoryEntry{.date = entry.date, .memory = std::nullopt});
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
