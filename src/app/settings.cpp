#include "app/settings.hpp"

#include <algorithm>
#include <charconv>

#include "base/exit_codes.hpp"
#include "shared/json_reader.hpp"

namespace korvo {
namespace {

using Json = nlohmann::json;

struct Range {
  int low;
  int high;
};
constexpr Range publishSecondsRange{5, 3600};
constexpr Range awakeMinutesRange{1, 1440};
// Waybar's module signals count from SIGRTMIN; Linux has 30 of them above it.
constexpr Range waybarSignalRange{0, 30};

std::string rangeText(Range range) {
  return std::to_string(range.low) + "–" + std::to_string(range.high);
}

int readWhole(const Json& value, const std::string& key, Range range) {
  const double number = json_reader::readNumber(value, key);
  if (!value.is_number_integer() || number < range.low || number > range.high) {
    throw json_reader::Failure{key + " must be a whole number in " + rangeText(range)};
  }
  return static_cast<int>(number);
}

std::string displayModeNames() {
  std::string names;
  for (const DisplayMode mode : allDisplayModes) {
    names += (names.empty() ? "" : ", ") + std::string(rawValue(mode));
  }
  return names;
}

bool isBooleanKey(std::string_view key) {
  return key == "temperature" || key == "codex" || key == "claude";
}

}  // namespace

Decoded<Settings> parseSettings(std::string_view json) {
  auto parsed = json_reader::parse(json);
  if (auto* failure = std::get_if<DecodeFailure>(&parsed)) return *failure;
  const Json& root = std::get<Json>(parsed);
  try {
    json_reader::expectObject(root, "");
    Settings settings;
    const auto boolean = [&](const char* key, bool& field) {
      if (const Json* value = json_reader::optional(root, key)) {
        field = json_reader::readBoolean(*value, key);
      }
    };
    boolean("temperature", settings.temperature);
    boolean("codex", settings.codex);
    boolean("claude", settings.claude);
    if (const Json* value = json_reader::optional(root, "codexHome")) {
      settings.codexHome = json_reader::readString(*value, "codexHome");
      if (settings.codexHome->empty() || settings.codexHome->front() != '/') {
        throw json_reader::Failure{"codexHome must be an absolute path"};
      }
    }
    if (const Json* value = json_reader::optional(root, "publishSeconds")) {
      settings.publishSeconds = readWhole(*value, "publishSeconds", publishSecondsRange);
    }
    if (const Json* value = json_reader::optional(root, "awakeMinutes")) {
      settings.awakeMinutes = readWhole(*value, "awakeMinutes", awakeMinutesRange);
    }
    if (const Json* value = json_reader::optional(root, "waybarSignal")) {
      settings.waybarSignal = readWhole(*value, "waybarSignal", waybarSignalRange);
    }
    if (const Json* value = json_reader::optional(root, "memoryDisplayMode")) {
      const auto raw = json_reader::readString(*value, "memoryDisplayMode");
      const auto mode = displayModeFromRaw(raw);
      if (!mode)
        throw json_reader::Failure{"memoryDisplayMode must be one of " + displayModeNames()};
      settings.memoryDisplayMode = *mode;
    }
    return settings;
  } catch (const json_reader::Failure& failure) {
    return DecodeFailure{failure.reason};
  }
}

nlohmann::ordered_json settingsDocument(const Settings& settings) {
  nlohmann::ordered_json document = nlohmann::ordered_json::object();
  document["temperature"] = settings.temperature;
  document["codex"] = settings.codex;
  document["claude"] = settings.claude;
  if (settings.codexHome) document["codexHome"] = *settings.codexHome;
  document["publishSeconds"] = settings.publishSeconds;
  document["awakeMinutes"] = settings.awakeMinutes;
  document["memoryDisplayMode"] = std::string(rawValue(settings.memoryDisplayMode));
  document["waybarSignal"] = settings.waybarSignal;
  return document;
}

nlohmann::ordered_json settingValue(std::string_view key, std::string_view text) {
  const std::string name(key);
  if (isBooleanKey(key)) {
    if (text == "true") return true;
    if (text == "false") return false;
    throw UsageError(name + ": not a boolean: \"" + std::string(text) + "\"; valid: true, false");
  }
  if (key == "publishSeconds" || key == "awakeMinutes" || key == "waybarSignal") {
    const Range range = key == "publishSeconds" ? publishSecondsRange
                        : key == "awakeMinutes" ? awakeMinutesRange
                                                : waybarSignalRange;
    int number = 0;
    const auto [ptr, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || ptr != text.data() + text.size() ||
        number < range.low || number > range.high) {
      throw UsageError(name + ": not a whole number in " + rangeText(range) + ": \"" +
                       std::string(text) + "\"");
    }
    return number;
  }
  if (key == "codexHome") {
    if (text.empty()) return nullptr;
    if (text.front() != '/') {
      throw UsageError("codexHome: not an absolute path: \"" + std::string(text) + "\"");
    }
    return std::string(text);
  }
  if (key == "memoryDisplayMode") {
    if (!displayModeFromRaw(text)) {
      throw UsageError("memoryDisplayMode: unknown mode \"" + std::string(text) +
                       "\"; valid: " + displayModeNames());
    }
    return std::string(text);
  }
  std::string keys;
  for (const auto known : settingKeys) keys += (keys.empty() ? "" : ", ") + std::string(known);
  throw UsageError("unknown setting \"" + name + "\"; valid: " + keys);
}

}  // namespace korvo
