#include "app/settings_file.hpp"

#include <cerrno>
#include <cstring>
#include <ostream>
#include <stdexcept>
#include <system_error>

#include "app/user_file.hpp"
#include "base/display_text.hpp"
#include "shared/atomic_file.hpp"
#include "shared/file_bytes.hpp"
#include "sources/user_paths.hpp"

namespace korvo::settings_file {
namespace {

bool isMissing(const std::filesystem::path& path) {
  std::error_code error;
  return !std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

}  // namespace

std::optional<std::filesystem::path> location() {
  if (auto config = absolutePathFromEnvironment("XDG_CONFIG_HOME")) {
    return *config / "korvo" / "settings.json";
  }
  if (auto home = homeDirectory()) return *home / ".config" / "korvo" / "settings.json";
  return std::nullopt;
}

Settings load(std::ostream& warnings) {
  const auto path = location();
  if (!path || isMissing(*path)) return {};
  auto bytes = readRegularFile(*path, maxBytes);
  if (auto* failure = std::get_if<DecodeFailure>(&bytes)) {
    warnings << "korvo: settings " << displayText(path->string()) << ": " << failure->reason
             << "; using the defaults\n";
    return {};
  }
  auto settings = parseSettings(std::get<std::string>(bytes));
  if (auto* failure = std::get_if<DecodeFailure>(&settings)) {
    warnings << "korvo: settings " << displayText(path->string()) << ": " << failure->reason
             << "; using the defaults\n";
    return {};
  }
  return std::get<Settings>(settings);
}

void set(std::string_view key, const nlohmann::ordered_json& value) {
  const auto path = location();
  if (!path) throw std::runtime_error("no place for settings: set HOME or XDG_CONFIG_HOME");
  const std::string name = displayText(path->string());
  nlohmann::ordered_json document = nlohmann::ordered_json::object();
  if (!isMissing(*path)) {
    auto bytes = readRegularFile(*path, maxBytes);
    if (auto* failure = std::get_if<DecodeFailure>(&bytes)) {
      throw std::runtime_error("settings " + name + ": " + failure->reason + "; left as it is");
    }
    const auto& text = std::get<std::string>(bytes);
    // Checked strictly first, so a file korvo would not read is never rewritten.
    if (auto checked = parseSettings(text); std::holds_alternative<DecodeFailure>(checked)) {
      throw std::runtime_error("settings " + name + ": " + std::get<DecodeFailure>(checked).reason +
                               "; left as it is");
    }
    document = nlohmann::ordered_json::parse(text);
  }
  if (value.is_null()) {
    document.erase(std::string(key));
  } else {
    document[std::string(key)] = value;
  }
  if (!createPrivateDirectories(path->parent_path())) {
    throw std::runtime_error("cannot write settings " + name +
                             ": cannot create its folder: " + std::strerror(errno));
  }
  // Through a symbolic link to the file it leads to, which keeps its permissions.
  if (const auto fault = user_file::replace(*path, document.dump(2) + "\n", 0600)) {
    throw std::runtime_error("settings " + name + ": " + *fault + "; left as it is");
  }
}

}  // namespace korvo::settings_file
