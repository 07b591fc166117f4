#include "shared/widget_snapshot_json.hpp"

#include "shared/json_reader.hpp"
#include "shared/usage_json_parts.hpp"

namespace korvo {

std::optional<std::string> encodeWidgetSnapshot(const WidgetSnapshot& snapshot) {
  JsonWriter writer;
  writer.beginObject();
  writer.key("date");
  writer.number(snapshot.date.secondsSinceReferenceDate);
  if (snapshot.temperature) {
    writer.key("temperature");
    writer.number(*snapshot.temperature);
  }
  if (snapshot.temperatureDate) {
    writer.key("temperatureDate");
    writer.number(snapshot.temperatureDate->secondsSinceReferenceDate);
  }
  writer.key("temperatureEnabled");
  writer.boolean(snapshot.temperatureEnabled);
  writer.key("codex");
  usage_json::write(writer, snapshot.codex);
  writer.key("claude");
  usage_json::write(writer, snapshot.claude);
  writer.endObject();
  return std::move(writer).finish();
}

Decoded<WidgetSnapshot> decodeWidgetSnapshot(std::string_view json) {
  using namespace json_reader;
  auto document = parse(json);
  if (auto* failure = std::get_if<DecodeFailure>(&document)) return *failure;
  const nlohmann::json& root = std::get<nlohmann::json>(document);
  try {
    expectObject(root, "");
    WidgetSnapshot snapshot;
    snapshot.date = readDate(required(root, "", "date"), "date");
    if (const auto* temperature = optional(root, "temperature")) {
      snapshot.temperature = readNumber(*temperature, "temperature");
    }
    if (const auto* temperatureDate = optional(root, "temperatureDate")) {
      snapshot.temperatureDate = readDate(*temperatureDate, "temperatureDate");
    }
    snapshot.temperatureEnabled =
        readBoolean(required(root, "", "temperatureEnabled"), "temperatureEnabled");
    snapshot.codex = usage_json::readState(required(root, "", "codex"), "codex");
    snapshot.claude = usage_json::readState(required(root, "", "claude"), "claude");
    return snapshot;
  } catch (const Failure& failure) {
    return DecodeFailure{failure.reason};
  }
}

WidgetSnapshotParts::WidgetSnapshotParts(const WidgetSnapshot& snapshot)
    : temperature(
          Temperature{snapshot.temperature, snapshot.temperatureDate, snapshot.temperatureEnabled}),
      codex(snapshot.codex),
      claude(snapshot.claude) {}

WidgetSnapshotParts decodeWidgetSnapshotParts(std::string_view json) {
  using namespace json_reader;
  auto whole = decodeWidgetSnapshot(json);
  if (auto* snapshot = std::get_if<WidgetSnapshot>(&whole)) return *snapshot;
  auto document = parse(json);
  const auto* root = std::get_if<nlohmann::json>(&document);
  if (root == nullptr || !root->is_object()) return {};
  WidgetSnapshotParts parts;
  const auto state = [&](const char* key) -> std::optional<UsageState> {
    try {
      return usage_json::readState(required(*root, "", key), key);
    } catch (const Failure&) {
      return std::nullopt;
    }
  };
  parts.codex = state("codex");
  parts.claude = state("claude");
  try {
    WidgetSnapshotParts::Temperature temperature;
    temperature.enabled =
        readBoolean(required(*root, "", "temperatureEnabled"), "temperatureEnabled");
    if (const auto* celsius = optional(*root, "temperature")) {
      temperature.celsius = readNumber(*celsius, "temperature");
    }
    if (const auto* date = optional(*root, "temperatureDate")) {
      temperature.date = readDate(*date, "temperatureDate");
    }
    parts.temperature = temperature;
  } catch (const Failure&) {
    // Malformed: the writer starts this part afresh.
  }
  return parts;
}

}  // namespace korvo
