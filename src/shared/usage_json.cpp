#include "shared/usage_json.hpp"

#include "shared/json_reader.hpp"
#include "shared/usage_json_parts.hpp"

namespace korvo {
namespace usage_json {

using nlohmann::json;
using namespace json_reader;

void write(JsonWriter& writer, const UsageWindow& window) {
  writer.beginObject();
  writer.key("title");
  writer.string(window.title);
  writer.key("usedPercent");
  writer.number(window.usedPercent);
  if (window.resetsAt) {
    writer.key("resetsAt");
    writer.number(window.resetsAt->secondsSinceReferenceDate);
  }
  writer.endObject();
}

void write(JsonWriter& writer, const UsageSnapshot& snapshot) {
  writer.beginObject();
  writer.key("windows");
  writer.beginArray();
  for (const UsageWindow& window : snapshot.windows) write(writer, window);
  writer.endArray();
  writer.key("fetchedAt");
  writer.number(snapshot.fetchedAt.secondsSinceReferenceDate);
  if (snapshot.source) {
    writer.key("source");
    writer.string(*snapshot.source);
  }
  writer.endObject();
}

void write(JsonWriter& writer, const UsageState& state) {
  writer.beginObject();
  writer.key("enabled");
  writer.boolean(state.enabled);
  if (state.snapshot) {
    writer.key("snapshot");
    write(writer, *state.snapshot);
  }
  if (state.message) {
    writer.key("message");
    writer.string(*state.message);
  }
  writer.key("isRefreshing");
  writer.boolean(state.isRefreshing);
  writer.endObject();
}

std::string elementPath(const std::string& array, std::size_t index) {
  std::string path = array;
  path += '[';
  path += std::to_string(index);
  path += ']';
  return path;
}

UsageWindow readWindow(const json& value, const std::string& path) {
  expectObject(value, path);
  UsageWindow window;
  window.title = readString(required(value, path, "title"), memberPath(path, "title"));
  window.usedPercent =
      readNumber(required(value, path, "usedPercent"), memberPath(path, "usedPercent"));
  if (const json* resetsAt = optional(value, "resetsAt")) {
    window.resetsAt = readDate(*resetsAt, memberPath(path, "resetsAt"));
  }
  return window;
}

UsageSnapshot readSnapshot(const json& value, const std::string& path) {
  expectObject(value, path);
  UsageSnapshot snapshot;
  const std::string windowsPath = memberPath(path, "windows");
  const json& windows = required(value, path, "windows");
  expectArray(windows, windowsPath);
  snapshot.windows.reserve(windows.size());
  for (std::size_t index = 0; index < windows.size(); ++index) {
    snapshot.windows.push_back(readWindow(windows[index], elementPath(windowsPath, index)));
  }
  snapshot.fetchedAt = readDate(required(value, path, "fetchedAt"), memberPath(path, "fetchedAt"));
  if (const json* source = optional(value, "source")) {
    snapshot.source = readString(*source, memberPath(path, "source"));
  }
  return snapshot;
}

UsageState readState(const json& value, const std::string& path) {
  expectObject(value, path);
  UsageState state;
  state.enabled = readBoolean(required(value, path, "enabled"), memberPath(path, "enabled"));
  if (const json* snapshot = optional(value, "snapshot")) {
    state.snapshot = readSnapshot(*snapshot, memberPath(path, "snapshot"));
  }
  if (const json* message = optional(value, "message")) {
    state.message = readString(*message, memberPath(path, "message"));
  }
  state.isRefreshing =
      readBoolean(required(value, path, "isRefreshing"), memberPath(path, "isRefreshing"));
  return state;
}

}  // namespace usage_json

namespace {

template <class Record>
std::optional<std::string> encode(const Record& record) {
  JsonWriter writer;
  usage_json::write(writer, record);
  return std::move(writer).finish();
}

template <class Record, class Read>
Decoded<Record> decode(std::string_view bytes, Read read) {
  auto document = json_reader::parse(bytes);
  if (auto* failure = std::get_if<DecodeFailure>(&document)) return *failure;
  try {
    return read(std::get<nlohmann::json>(document), std::string{});
  } catch (const json_reader::Failure& failure) {
    return DecodeFailure{failure.reason};
  }
}

}  // namespace

std::optional<std::string> encodeUsageWindow(const UsageWindow& window) {
  return encode(window);
}
std::optional<std::string> encodeUsageSnapshot(const UsageSnapshot& snapshot) {
  return encode(snapshot);
}
std::optional<std::string> encodeUsageState(const UsageState& state) {
  return encode(state);
}

std::string encodeUsageProvider(UsageProvider provider) {
  JsonWriter writer;
  writer.string(rawValue(provider));
  return *std::move(writer).finish();
}

Decoded<UsageWindow> decodeUsageWindow(std::string_view json) {
  return decode<UsageWindow>(json, usage_json::readWindow);
}
Decoded<UsageSnapshot> decodeUsageSnapshot(std::string_view json) {
  return decode<UsageSnapshot>(json, usage_json::readSnapshot);
}
Decoded<UsageState> decodeUsageState(std::string_view json) {
  return decode<UsageState>(json, usage_json::readState);
}

Decoded<UsageProvider> decodeUsageProvider(std::string_view json) {
  return decode<UsageProvider>(json, [](const nlohmann::json& value, const std::string&) {
    const std::string raw = json_reader::readString(value, "the top level");
    auto provider = fromRaw<UsageProvider>(raw);
    if (!provider) throw json_reader::Failure{"unknown provider \"" + raw + "\""};
    return *provider;
  });
}

}  // namespace korvo
