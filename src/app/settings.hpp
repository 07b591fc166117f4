#pragma once

#include <array>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

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
  int waybarSignal = 0;  // after a publication, SIGRTMIN+N to the user's waybar; 0 sends none

  friend bool operator==(const Settings&, const Settings&) = default;
};

// The keys of the settings file, in the order they are listed.
inline constexpr std::array<std::string_view, 8> settingKeys{
    "temperature",       "codex",       "claude", "codexHome", "publishSeconds", "awakeMinutes",
    "memoryDisplayMode", "waybarSignal"};

// Reads a settings document: an object whose keys are all optional (missing means the default)
// and unknown keys ignored; a wrong type or a value out of range fails, naming the key.
Decoded<Settings> parseSettings(std::string_view json);

// Every setting as a JSON object in key order (codexHome only when set).
nlohmann::ordered_json settingsDocument(const Settings& settings);

// The JSON value of `key` from a command-line text ("true", "90", "usedGB", "/home/a/.codex");
// null for an empty codexHome (which removes it). Throws UsageError naming the key and its
// valid values.
nlohmann::ordered_json settingValue(std::string_view key, std::string_view text);

}  // namespace korvo
