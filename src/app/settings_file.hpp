#pragma once

#include <filesystem>
#include <iosfwd>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

#include "app/settings.hpp"

namespace korvo::settings_file {

// Settings documents larger than this are refused unread.
inline constexpr std::size_t maxBytes = std::size_t{1024} * 1024;

// $XDG_CONFIG_HOME/korvo/settings.json (an absolute XDG_CONFIG_HOME), else
// $HOME/.config/korvo/settings.json; none when neither gives an absolute path.
std::optional<std::filesystem::path> location();

// The settings in the file; the defaults when there is no file. A file that cannot be used is
// left as it is: one line naming it and its fault goes to `warnings`, and the defaults count.
Settings load(std::ostream& warnings);

// Sets `key` to `value` (null removes it) in the file, keeping every other key, and writes it
// atomically. Throws std::runtime_error with a one-line message when the file cannot be used or
// written; the file is then left as it is.
void set(std::string_view key, const nlohmann::ordered_json& value);

}  // namespace korvo::settings_file
