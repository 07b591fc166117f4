#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/temperature_text.hpp"
#include "base/words.hpp"
#include "sampling/display_mode.hpp"
#include "shared/decode_result.hpp"

namespace korvo {

// The user's choices for korvo, kept in $XDG_CONFIG_HOME/korvo/settings.json.
struct Settings {
  bool temperature = true;               // publish the CPU temperature
  bool codex = true;                     // publish Codex's limits
  bool claude = true;                    // publish Claude's limits
  std::optional<std::string> codexHome;  // Codex's folder instead of $CODEX_HOME or ~/.codex
  int publishSeconds = 60;               // seconds between the service's publications
  int awakeMinutes = 60;                 // the default length of a Keep Awake session
  DisplayMode memoryDisplayMode = DisplayMode::usedPercent;  // the memory figure's form
  int waybarSignal = 0;      // after a publication, SIGRTMIN+N to the user's waybar; 0 sends none
  bool codexLive = true;     // ask Codex's app-server for its current limits
  int codexLiveMinutes = 5;  // minutes between two asks of a publication
  std::string codexCommand = "codex";  // the Codex program: a path, or a name found on PATH
  bool awakeWhileAgentsWork = true;    // keep the machine awake while Codex or Claude Code writes
  int agentIdleMinutes = 5;  // minutes without a write after which an agent counts as done
  bool agentNotices = true;  // notify when the agents' hold starts and ends
  std::vector<int> alertPercents{80, 95};  // used percentages (1–100, rising) that notify
  int temperatureAlert = 95;               // °C above which a notification says so; 0 says nothing
  TemperatureUnit temperatureUnit = TemperatureUnit::celsius;  // korvo's own temperature texts

  friend bool operator==(const Settings&, const Settings&) = default;
};

enum class SettingKey {
  temperature,
  codex,
  claude,
  codexHome,
  publishSeconds,
  awakeMinutes,
  memoryDisplayMode,
  waybarSignal,
  codexLive,
  codexLiveMinutes,
  codexCommand,
  awakeWhileAgentsWork,
  agentIdleMinutes,
  agentNotices,
  alertPercents,
  temperatureAlert,
  temperatureUnit
};

// The keys of the settings file, in the order they are listed.
inline constexpr Words<SettingKey, 17> settingKeyWords{{
    {"temperature", SettingKey::temperature},
    {"codex", SettingKey::codex},
    {"claude", SettingKey::claude},
    {"codexHome", SettingKey::codexHome},
    {"publishSeconds", SettingKey::publishSeconds},
    {"awakeMinutes", SettingKey::awakeMinutes},
    {"memoryDisplayMode", SettingKey::memoryDisplayMode},
    {"waybarSignal", SettingKey::waybarSignal},
    {"codexLive", SettingKey::codexLive},
    {"codexLiveMinutes", SettingKey::codexLiveMinutes},
    {"codexCommand", SettingKey::codexCommand},
    {"awakeWhileAgentsWork", SettingKey::awakeWhileAgentsWork},
    {"agentIdleMinutes", SettingKey::agentIdleMinutes},
    {"agentNotices", SettingKey::agentNotices},
    {"alertPercents", SettingKey::alertPercents},
    {"temperatureAlert", SettingKey::temperatureAlert},
    {"temperatureUnit", SettingKey::temperatureUnit},
}};

// The key as the settings file writes it.
std::string_view settingKeyWord(SettingKey key);

// Reads a settings document: an object whose keys are all optional (missing means the default)
// and unknown keys ignored; a wrong type or a value out of range fails, naming the key.
Decoded<Settings> parseSettings(std::string_view json);

// Every setting as a JSON object in key order (codexHome only when set).
nlohmann::ordered_json settingsDocument(const Settings& settings);

// The JSON value of the setting `word` names, from a command-line text ("true", "90", "usedGB",
// "/home/a/.codex", "80,95" for alertPercents, where "" is none); null for an empty codexHome
// (which removes it). Throws UsageError naming the key and its valid values, or every key for a
// word that names none.
nlohmann::ordered_json settingValue(std::string_view word, std::string_view text);

}  // namespace korvo
