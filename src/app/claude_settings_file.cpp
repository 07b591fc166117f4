#include "app/claude_settings_file.hpp"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include "app/claude_settings.hpp"
#include "app/user_file.hpp"
#include "base/display_text.hpp"
#include "shared/atomic_file.hpp"
#include "shared/file_bytes.hpp"
#include "sources/user_paths.hpp"

namespace korvo::claude_settings_file {
namespace {

using claude_settings::Document;

std::filesystem::path backupOf(const std::filesystem::path& file) {
  return file.parent_path() / (file.filename().string() + ".korvo-backup");
}

// A path as a message may show it: on one line, whatever bytes it holds.
std::string shown(const std::filesystem::path& path) {
  return displayText(path.string());
}

bool isPresent(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

std::filesystem::path requiredLocation() {
  auto path = location();
  if (!path) throw std::runtime_error("no Claude settings: set HOME or CLAUDE_CONFIG_DIR");
  return *path;
}

std::string readBytes(const std::filesystem::path& path) {
  auto bytes = readRegularFile(path, claude_settings::maxBytes);
  if (auto* failure = std::get_if<DecodeFailure>(&bytes)) {
    throw std::runtime_error(shown(path) + ": " + failure->reason + "; left untouched");
  }
  return std::get<std::string>(std::move(bytes));
}

Document parseOrRefuse(const std::filesystem::path& path, const std::string& bytes) {
  auto parsed = claude_settings::parse(bytes);
  if (auto* failure = std::get_if<DecodeFailure>(&parsed)) {
    throw std::runtime_error(shown(path) + ": " + failure->reason + "; left untouched");
  }
  return std::get<Document>(std::move(parsed));
}

void write(const std::filesystem::path& path, std::string_view bytes) {
  if (const auto fault = user_file::replace(path, bytes, 0600)) {
    throw std::runtime_error(shown(path) + ": " + *fault + "; left untouched");
  }
}

}  // namespace

std::optional<std::filesystem::path> location() {
  if (auto directory = claudeConfigDirectory()) return *directory / "settings.json";
  return std::nullopt;
}

std::filesystem::path korvoExecutable() {
  std::error_code error;
  auto self = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) throw std::runtime_error("cannot find korvo's own path: " + error.message());
  if (self.filename() != "korvo-service") return self;
  // The status line runs the light front, korvo, beside the GTK side or in bin/.
  auto beside = self.parent_path() / "korvo";
  if (std::filesystem::exists(beside, error)) return beside;
  return (self.parent_path() / ".." / ".." / "bin" / "korvo").lexically_normal();
}

bool runsKorvo() {
  const auto path = location();
  if (!path) return false;
  auto bytes = readRegularFile(*path, claude_settings::maxBytes);
  if (!std::holds_alternative<std::string>(bytes)) return false;
  auto parsed = claude_settings::parse(std::get<std::string>(bytes));
  try {
    return std::holds_alternative<Document>(parsed) &&
           claude_settings::runsKorvo(std::get<Document>(parsed), korvoExecutable());
  } catch (const std::runtime_error&) {
    return false;
  }
}

std::string install(const std::filesystem::path& korvo) {
  const auto path = requiredLocation();
  const bool present = isPresent(path);
  const std::string original = present ? readBytes(path) : "{}\n";
  const Document settings = parseOrRefuse(path, original);
  if (claude_settings::runsKorvo(settings, korvo)) {
    return "Claude's status line already runs korvo (" + shown(path) + ")";
  }
  // The command goes into a JSON document, whose strings are UTF-8 alone.
  if (!isUtf8(korvo.string())) {
    throw std::runtime_error("korvo's own path is not UTF-8, which " + shown(path) +
                             " cannot hold: " + shown(korvo) + "; left untouched");
  }
  auto installed = claude_settings::install(original, korvo);
  if (auto* failure = std::get_if<DecodeFailure>(&installed)) {
    throw std::runtime_error(shown(path) + ": " + failure->reason + "; left untouched");
  }
  if (!createPrivateDirectories(path.parent_path())) {
    throw std::runtime_error("cannot create the folder " + shown(path.parent_path()) + ": " +
                             std::strerror(errno));
  }
  // Refused before the backup is taken, so a refusal leaves nothing behind.
  if (const auto refused = user_file::refusal(path)) {
    throw std::runtime_error(shown(path) + ": " + *refused + "; left untouched");
  }
  if (!replaceFileAtomically(backupOf(path), original, 0600)) {
    throw std::runtime_error("cannot write " + shown(backupOf(path)) + ": " + std::strerror(errno) +
                             "; " + shown(path) + " left untouched");
  }
  write(path, std::get<std::string>(installed));
  return "Claude's status line now runs korvo (" + shown(path) + ", backup " +
         shown(backupOf(path).filename()) + ")";
}

std::string uninstall(const std::filesystem::path& korvo) {
  const auto path = requiredLocation();
  if (!isPresent(path)) return "Claude's status line does not run korvo";
  const std::string current = readBytes(path);
  const Document settings = parseOrRefuse(path, current);
  if (!claude_settings::runsKorvo(settings, korvo))
    return "Claude's status line does not run korvo";
  std::optional<std::string> backup;
  const auto backupPath = backupOf(path);
  if (auto bytes = readRegularFile(backupPath, claude_settings::maxBytes);
      std::holds_alternative<std::string>(bytes) &&
      std::holds_alternative<Document>(claude_settings::parse(std::get<std::string>(bytes)))) {
    backup = std::get<std::string>(std::move(bytes));
  }
  write(path, claude_settings::uninstall(current, backup, korvo));
  // Only now is the backup no longer the one copy of the user's status line.
  std::error_code error;
  std::filesystem::remove(backupPath, error);
  return "Claude's status line is back as it was (" + shown(path) + ")";
}

}  // namespace korvo::claude_settings_file
