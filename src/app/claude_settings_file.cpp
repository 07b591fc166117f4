#include "app/claude_settings_file.hpp"

#include <sys/stat.h>

#include <stdexcept>
#include <system_error>

#include "app/claude_settings.hpp"
#include "shared/atomic_file.hpp"
#include "shared/file_bytes.hpp"
#include "sources/user_paths.hpp"

namespace korvo::claude_settings_file {
namespace {

using claude_settings::Document;

std::filesystem::path backupOf(const std::filesystem::path& file) {
  return file.parent_path() / (file.filename().string() + ".korvo-backup");
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
    throw std::runtime_error(path.string() + ": " + failure->reason + "; left untouched");
  }
  return std::get<std::string>(std::move(bytes));
}

Document parseOrRefuse(const std::filesystem::path& path, const std::string& bytes) {
  auto parsed = claude_settings::parse(bytes);
  if (auto* failure = std::get_if<DecodeFailure>(&parsed)) {
    throw std::runtime_error(path.string() + ": " + failure->reason + "; left untouched");
  }
  return std::get<Document>(std::move(parsed));
}

// The file's permissions, so a settings file kept private stays private.
mode_t modeOf(const std::filesystem::path& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return 0600;
  return status.st_mode & 07777;
}

void write(const std::filesystem::path& path, std::string_view bytes, mode_t mode) {
  if (!replaceFileAtomically(path, bytes, mode)) {
    throw std::runtime_error("cannot write " + path.string() + "; left untouched");
  }
}

std::string documentBytes(const Document& document) {
  return document.dump(2) + "\n";
}

}  // namespace

std::optional<std::filesystem::path> location() {
  if (auto directory = claudeConfigDirectory()) return *directory / "settings.json";
  return std::nullopt;
}

bool runsKorvo() {
  const auto path = location();
  if (!path) return false;
  auto bytes = readRegularFile(*path, claude_settings::maxBytes);
  if (!std::holds_alternative<std::string>(bytes)) return false;
  auto parsed = claude_settings::parse(std::get<std::string>(bytes));
  return std::holds_alternative<Document>(parsed) &&
         claude_settings::runsKorvo(std::get<Document>(parsed));
}

std::string install(const std::filesystem::path& korvo) {
  const auto path = requiredLocation();
  const bool present = isPresent(path);
  const std::string original = present ? readBytes(path) : "{}\n";
  const Document settings = parseOrRefuse(path, original);
  if (claude_settings::runsKorvo(settings)) {
    return "Claude's status line already runs korvo (" + path.string() + ")";
  }
  auto installed = claude_settings::install(settings, korvo);
  if (auto* failure = std::get_if<DecodeFailure>(&installed)) {
    throw std::runtime_error(path.string() + ": " + failure->reason + "; left untouched");
  }
  if (!createPrivateDirectories(path.parent_path())) {
    throw std::runtime_error("cannot create the folder " + path.parent_path().string());
  }
  const mode_t mode = present ? modeOf(path) : 0600;
  write(backupOf(path), original, mode);
  write(path, documentBytes(std::get<Document>(installed)), mode);
  return "Claude's status line now runs korvo (" + path.string() + ", backup " +
         backupOf(path).filename().string() + ")";
}

std::string uninstall() {
  const auto path = requiredLocation();
  if (!isPresent(path)) return "Claude's status line does not run korvo";
  const Document settings = parseOrRefuse(path, readBytes(path));
  if (!claude_settings::runsKorvo(settings)) return "Claude's status line does not run korvo";
  std::optional<Document> backup;
  const auto backupPath = backupOf(path);
  if (auto bytes = readRegularFile(backupPath, claude_settings::maxBytes);
      std::holds_alternative<std::string>(bytes)) {
    auto parsed = claude_settings::parse(std::get<std::string>(bytes));
    if (auto* document = std::get_if<Document>(&parsed)) backup = std::move(*document);
  }
  write(path, documentBytes(claude_settings::uninstall(settings, backup)), modeOf(path));
  std::error_code error;
  std::filesystem::remove(backupPath, error);
  return "Claude's status line is back as it was (" + path.string() + ")";
}

}  // namespace korvo::claude_settings_file
