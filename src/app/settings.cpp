#include "app/settings.hpp"

#include <algorithm>
#include <charconv>
#include <optional>

#include "base/display_text.hpp"
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
constexpr Range agentIdleMinutesRange{1, 240};
// Waybar's module signals count from SIGRTMIN; Linux has 30 of them above it.
constexpr Range waybarSignalRange{0, 30};
constexpr Range codexLiveMinutesRange{1, 1440};
// 0 turns the alert off; the sensors' own range ends at 150 °C.
constexpr Range temperatureAlertRange{0, 150};
constexpr Range alertPercentRange{1, 100};

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

// The key's word as a string, for the reader's paths and for messages.
std::string keyText(SettingKey key) {
  return std::string(settingKeyWord(key));
}

// The range of a whole-number setting; none for the others.
std::optional<Range> wholeRange(SettingKey key) {
  switch (key) {
    case SettingKey::publishSeconds:
      return publishSecondsRange;
    case SettingKey::awakeMinutes:
      return awakeMinutesRange;
    case SettingKey::waybarSignal:
      return waybarSignalRange;
    case SettingKey::codexLiveMinutes:
      return codexLiveMinutesRange;
    case SettingKey::agentIdleMinutes:
      return agentIdleMinutesRange;
    case SettingKey::temperatureAlert:
      return temperatureAlertRange;
    default:
      return std::nullopt;
  }
}

// The number `text` writes for the setting `name`; throws UsageError when it is no whole number in
// `range`.
int wholeValue(const std::string& name, std::string_view text, Range range) {
  int number = 0;
  const auto [ptr, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || error != std::errc() || ptr != text.data() + text.size() ||
      number < range.low || number > range.high) {
    throw UsageError(name + ": not a whole number in " + rangeText(range) + ": \"" +
                     displayText(text) + "\"");
  }
  return number;
}

// Thresholds are kept in rising order, each once, so "the first" and "the last" mean the lowest and
// the highest whatever order the user wrote them in.
std::vector<int> tidiedPercents(std::vector<int> percents) {
  std::sort(percents.begin(), percents.end());
  percents.erase(std::unique(percents.begin(), percents.end()), percents.end());
  return percents;
}

std::vector<int> readPercents(const Json& value, const std::string& key) {
  if (!value.is_array()) {
    throw json_reader::Failure{key + " must be an array of whole numbers in " +
                               rangeText(alertPercentRange)};
  }
  std::vector<int> percents;
  for (const Json& item : value) percents.push_back(readWhole(item, key, alertPercentRange));
  return tidiedPercents(std::move(percents));
}

// "80,95" as [80, 95]; "" as none.
// `text` without the spaces around it.
std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// "80,95", also written "80, 95" as lists are in prose; "" for none.
nlohmann::ordered_json percentsValue(const std::string& name, std::string_view text) {
  std::vector<int> percents;
  text = trimmed(text);
  std::size_t start = 0;
  while (!text.empty() && start <= text.size()) {
    const std::size_t comma = std::min(text.find(',', start), text.size());
    percents.push_back(
        wholeValue(name, trimmed(text.substr(start, comma - start)), alertPercentRange));
    start = comma + 1;
  }
  return tidiedPercents(std::move(percents));
}

}  // namespace

std::string_view settingKeyWord(SettingKey key) {
  return wordFor(settingKeyWords, key);
}

Decoded<Settings> parseSettings(std::string_view json) {
  auto parsed = json_reader::parse(json);
  if (auto* failure = std::get_if<DecodeFailure>(&parsed)) return *failure;
  const Json& root = std::get<Json>(parsed);
  try {
    json_reader::expectObject(root, "");
    Settings settings;
    const auto member = [&](SettingKey key) { return json_reader::optional(root, keyText(key)); };
    const auto boolean = [&](SettingKey key, bool& field) {
      if (const Json* value = member(key)) field = json_reader::readBoolean(*value, keyText(key));
    };
    const auto whole = [&](SettingKey key, int& field) {
      if (const Json* value = member(key))
        field = readWhole(*value, keyText(key), *wholeRange(key));
    };
    boolean(SettingKey::temperature, settings.temperature);
    boolean(SettingKey::codex, settings.codex);
    boolean(SettingKey::claude, settings.claude);
    if (const Json* value = member(SettingKey::codexHome)) {
      settings.codexHome = json_reader::readString(*value, keyText(SettingKey::codexHome));
      if (settings.codexHome->empty() || settings.codexHome->front() != '/') {
        throw json_reader::Failure{keyText(SettingKey::codexHome) + " must be an absolute path"};
      }
    }
    whole(SettingKey::publishSeconds, settings.publishSeconds);
    whole(SettingKey::awakeMinutes, settings.awakeMinutes);
    whole(SettingKey::waybarSignal, settings.waybarSignal);
    boolean(SettingKey::codexLive, settings.codexLive);
    whole(SettingKey::codexLiveMinutes, settings.codexLiveMinutes);
    if (const Json* value = member(SettingKey::codexCommand)) {
      settings.codexCommand = json_reader::readString(*value, keyText(SettingKey::codexCommand));
      if (settings.codexCommand.empty()) {
        throw json_reader::Failure{keyText(SettingKey::codexCommand) + " must not be empty"};
      }
    }
    boolean(SettingKey::awakeWhileAgentsWork, settings.awakeWhileAgentsWork);
    whole(SettingKey::agentIdleMinutes, settings.agentIdleMinutes);
    boolean(SettingKey::agentNotices, settings.agentNotices);
    if (const Json* value = member(SettingKey::alertPercents)) {
      settings.alertPercents = readPercents(*value, keyText(SettingKey::alertPercents));
    }
    whole(SettingKey::temperatureAlert, settings.temperatureAlert);
    if (const Json* value = member(SettingKey::temperatureUnit)) {
      const auto raw = json_reader::readString(*value, keyText(SettingKey::temperatureUnit));
      const auto unit = valueNamed(temperatureUnitWords, raw);
      if (!unit) {
        throw json_reader::Failure{keyText(SettingKey::temperatureUnit) + " must be one of " +
                                   wordList(temperatureUnitWords)};
      }
      settings.temperatureUnit = *unit;
    }
    if (const Json* value = member(SettingKey::memoryDisplayMode)) {
      const auto raw = json_reader::readString(*value, keyText(SettingKey::memoryDisplayMode));
      const auto mode = displayModeFromRaw(raw);
      if (!mode) {
        throw json_reader::Failure{keyText(SettingKey::memoryDisplayMode) + " must be one of " +
                                   wordList(displayModeWords)};
      }
      settings.memoryDisplayMode = *mode;
    }
    return settings;
  } catch (const json_reader::Failure& failure) {
    return DecodeFailure{failure.reason};
  }
}

nlohmann::ordered_json settingsDocument(const Settings& settings) {
  nlohmann::ordered_json document = nlohmann::ordered_json::object();
  const auto set = [&](SettingKey key, nlohmann::ordered_json value) {
    document[keyText(key)] = std::move(value);
  };
  set(SettingKey::temperature, settings.temperature);
  set(SettingKey::codex, settings.codex);
  set(SettingKey::claude, settings.claude);
  if (settings.codexHome) set(SettingKey::codexHome, *settings.codexHome);
  set(SettingKey::publishSeconds, settings.publishSeconds);
  set(SettingKey::awakeMinutes, settings.awakeMinutes);
  set(SettingKey::memoryDisplayMode, std::string(rawValue(settings.memoryDisplayMode)));
  set(SettingKey::waybarSignal, settings.waybarSignal);
  set(SettingKey::codexLive, settings.codexLive);
  set(SettingKey::codexLiveMinutes, settings.codexLiveMinutes);
  set(SettingKey::codexCommand, settings.codexCommand);
  set(SettingKey::awakeWhileAgentsWork, settings.awakeWhileAgentsWork);
  set(SettingKey::agentIdleMinutes, settings.agentIdleMinutes);
  set(SettingKey::agentNotices, settings.agentNotices);
  set(SettingKey::alertPercents, settings.alertPercents);
  set(SettingKey::temperatureAlert, settings.temperatureAlert);
  set(SettingKey::temperatureUnit,
      std::string(wordFor(temperatureUnitWords, settings.temperatureUnit)));
  return document;
}

nlohmann::ordered_json settingValue(std::string_view word, std::string_view text) {
  const std::string name(word);
  const auto key = valueNamed(settingKeyWords, word);
  if (!key) {
    throw UsageError("unknown setting \"" + displayText(name) +
                     "\"; valid: " + wordList(settingKeyWords));
  }
  switch (*key) {
    case SettingKey::codexHome:
      if (text.empty()) return nullptr;
      if (text.front() != '/') {
        throw UsageError(name + ": not an absolute path: \"" + displayText(text) + "\"");
      }
      // The settings file is JSON, whose strings are UTF-8 alone.
      if (!isUtf8(text)) {
        throw UsageError(name + ": not UTF-8, which the settings file cannot hold: \"" +
                         displayText(text) + "\"");
      }
      return std::string(text);
    case SettingKey::codexCommand:
      if (text.empty() || !isUtf8(text)) {
        throw UsageError(name + ": not a program name or path: \"" + displayText(text) + "\"");
      }
      return std::string(text);
    case SettingKey::memoryDisplayMode:
      if (!displayModeFromRaw(text)) {
        throw UsageError(name + ": unknown mode \"" + displayText(text) +
                         "\"; valid: " + wordList(displayModeWords));
      }
      return std::string(text);
    case SettingKey::alertPercents:
      return percentsValue(name, text);
    case SettingKey::temperatureUnit:
      if (!valueNamed(temperatureUnitWords, text)) {
        throw UsageError(name + ": unknown unit \"" + displayText(text) +
                         "\"; valid: " + wordList(temperatureUnitWords));
      }
      return std::string(text);
    case SettingKey::temperature:
    case SettingKey::codex:
    case SettingKey::claude:
    case SettingKey::codexLive:
    case SettingKey::awakeWhileAgentsWork:
    case SettingKey::agentNotices:
      if (text == "true") return true;
      if (text == "false") return false;
      throw UsageError(name + ": not a boolean: \"" + displayText(text) + "\"; valid: true, false");
    case SettingKey::publishSeconds:
    case SettingKey::awakeMinutes:
    case SettingKey::waybarSignal:
    case SettingKey::codexLiveMinutes:
    case SettingKey::agentIdleMinutes:
    case SettingKey::temperatureAlert:
      return wholeValue(name, text, *wholeRange(*key));
  }
  return nullptr;
}

}  // namespace korvo
